// The whole circle: postings by chance as a file, through the exports into a batch, to the ledger; then every figure
// there equals what plain integers make of the file.
#include <algorithm>
#include <fstream>
#include <set>

#include "base/random.h"
#include "ledger/ledger_books.h"
#include "ledger/random_postings.h"
#include "ledger/reckoning.h"
#include "support/items.h"
#include "vlba98/text.h"
#include "zelkctl/verbs.h"

namespace test {
namespace {

using namespace vldb98;

std::string number(const char *keyText) {
  return std::string(vlba98::trimmed(keyText));
}

class Circle : public LedgerBooks {
protected:
  void postFile(const Cast &cast, Reckoning &reckoning, const std::string &text) {
    const std::string path = (folder() / "buchungen.csv").string();
    std::ofstream(path, std::ios::binary) << text;
    ::testing::internal::CaptureStdout();
    const int imported = zelkctl::importPostings(cast.client, cast.batch, path);
    const std::string output = ::testing::internal::GetCapturedStdout();
    ASSERT_EQ(imported, zelkctl::kDone) << output;
    const ledger::Outcome outcome = post(cast.client, cast.batch);
    ASSERT_EQ(outcome.state, ledger::Outcome::Posted)
        << (outcome.refused.empty() ? "" : outcome.refused.front().reason);
    reckoning.post(path);
  }

  void compareAccounts(const Cast &cast, const Reckoning &reckoning, int year) {
    openYear(uint16_t(cast.client), year);
    for (int table : {int(kSachkonto), int(kKreditor), int(kDebitor)})
      eachRow(*store_, table, [&](const DATENBANK &record) {
        const std::string account = number(record.Sachkonto.Nr);
        const bool ledgerAccount = table == kSachkonto;
        const KONTOWERTE values[] = {ledgerAccount ? record.Sachkonto.Werte : record.Personenkonto.Werte,
                                     ledgerAccount ? record.Sachkonto.EuroWerte : record.Personenkonto.EuroWerte};
        // Opening, closing, and the months, debit and credit, in both currencies.
        std::map<std::tuple<int, int, bool>, int64_t> expected[2];
        auto moved = reckoning.moves.find({table, account});
        if (moved != reckoning.moves.end())
          for (const Move &move : moved->second)
            if (move.year == year) {
              expected[0][{move.art, move.art ? 0 : move.month, move.debit}] += move.own;
              expected[1][{move.art, move.art ? 0 : move.month, move.debit}] += move.euro;
            }
        for (int currency : {0, 1})
          for (int pair = 0; pair < 14; ++pair) {
            const int art = pair < 12 ? 0 : pair - 11, month = pair < 12 ? pair + 1 : 0;
            const WERTEPAAR stored = pair < 12    ? values[currency].Monat[pair]
                                     : pair == 12 ? values[currency].Eroeffnung
                                                  : values[currency].Abschluss;
            EXPECT_EQ(cents(stored.Soll), (expected[currency][{art, month, true}])) << account << ' ' << pair;
            EXPECT_EQ(cents(stored.Haben), (expected[currency][{art, month, false}])) << account << ' ' << pair;
          }
      });
    std::map<std::pair<int, std::string>, int64_t> centres, expected; // by month and number
    for (const CostMove &cost : reckoning.costs)
      if (cost.year == year)
        for (const std::string &centre : cost.centres) {
          expected[{cost.month, centre}] += cost.own;
          expected[{cost.month + 100, centre}] += cost.euro;
        }
    eachRow(*store_, kKost, [&](const DATENBANK &record) {
      for (int month = 1; month <= 12; ++month) {
        if (*record.Kost.Kosten[month - 1])
          centres[{month, number(record.Kost.Nr)}] = cents(record.Kost.Kosten[month - 1]);
        if (*record.Kost.EuroKosten[month - 1])
          centres[{month + 100, number(record.Kost.Nr)}] = cents(record.Kost.EuroKosten[month - 1]);
      }
    });
    EXPECT_EQ(centres, expected);
  }

  // The general ledger balances in every entry, and the entries of each day are those reckoned.
  void compareEntries(const Cast &cast, const Reckoning &reckoning) {
    std::map<std::tuple<AccountKey, Day, int>, std::pair<int64_t, int64_t>> entries, expected;
    for (int year : reckoning.years()) {
      std::map<int32_t, int64_t> balances;
      openYear(uint16_t(cast.client), year);
      eachRow(*store_, kBuchungsbeleg, [&](const DATENBANK &record) {
        const BUCHUNGSBELEG row = record.Buchungsbeleg;
        const int64_t own = cents(row.Soll) - cents(row.Haben), euro = cents(row.EuroSoll) - cents(row.EuroHaben);
        const Day day = std::stoi(row.Datum) + 19'800'000;
        auto &sum = entries[{{row.Kontotabelle, number(row.Konto)}, day, row.Art}];
        sum.first += own;
        sum.second += euro;
        if (row.Kontotabelle == kSachkonto) balances[row.Nr] += own;
      });
      for (auto [entry, balance] : balances)
        EXPECT_EQ(balance, 0) << year << ' ' << entry;
    }
    for (const auto &[account, moves] : reckoning.moves)
      for (const Move &move : moves) {
        auto &sum = expected[{account, move.day, move.art}];
        sum.first += move.debit ? move.own : -move.own;
        sum.second += move.debit ? move.euro : -move.euro;
      }
    EXPECT_TRUE(entries == expected);
  }

  // All items, open and historical, as the exports deliver them.
  void compareItems(const Cast &cast, const Reckoning &reckoning) {
    enum Column : size_t { Left = 15, Currency = 16, ForeignLeft = 27, ForeignGross = 28, Paid = 30, Discount = 33 };
    std::map<ItemKey, Item> items, expected = reckoning.items;
    std::vector<Payment> payments, expectedPayments = reckoning.payments;
    constexpr int32_t plainForm = 2;
    for (auto [kind, table] : {std::pair{int32_t(ZELK_KREDITOR), int(kKreditor)}, {ZELK_DEBITOR, kDebitor}}) {
      auto keyOf = [table = table](const ItemRow &row) { return ItemKey{table, row[kKonto], row[kOPBelegnummer]}; };
      ZelkResult result = ZELK_InitHoleOP(cast.client, nullptr, kind, 0);
      while (result == ZELK_OK) {
        const FetchedItem fetched = fetchItem(&ZELK_HoleOP, plainForm);
        const ItemRow &row = fetched.row;
        std::string currency = row[Currency] == reckoning.client().at("Waehrung") ? "" : row[Currency];
        items[keyOf(row)] = {cents(row[kBrutto]),      cents(row[Left]),        currency,
                             cents(row[ForeignGross]), cents(row[ForeignLeft]), 0};
        result = fetched.result;
      }
      result = ZELK_InitHoleHistOP(cast.client, nullptr, kind, nullptr, nullptr, nullptr, 0);
      while (result == ZELK_OK) {
        const FetchedItem fetched = fetchItem(&ZELK_HoleHistOP, plainForm);
        const ItemRow &row = fetched.row;
        payments.push_back(
            {0, 0, keyOf(row), cents(row[Paid]), cents(row[Discount]), cents(row[Left]), cents(row[ForeignLeft])});
        result = fetched.result;
      }
    }
    // Neither the year nor the number of a payment is delivered.
    for (Payment &payment : expectedPayments)
      payment.year = payment.line = 0;
    for (auto &[key, item] : expected)
      item.payments = 0;
    std::sort(payments.begin(), payments.end());
    std::sort(expectedPayments.begin(), expectedPayments.end());
    EXPECT_TRUE(items == expected);
    EXPECT_TRUE(payments == expectedPayments);
    EXPECT_GT(items.size(), 20u);
    EXPECT_GT(payments.size(), 20u);
  }

  // Each payment lies in its year under its number; item numbers are unique.
  void compareStoredItems(const Cast &cast, const Reckoning &reckoning) {
    std::vector<Payment> payments, expected = reckoning.payments;
    for (int year : reckoning.years()) {
      openYear(uint16_t(cast.client), year);
      for (auto [table, accounts] : {std::pair{kHistOPKreditor, 2}, {kHistOPDebitor, 3}})
        eachRow(*store_, table, [&, kind = accounts](const DATENBANK &record) {
          const OPHISTORIE payment = record.Ophistorie;
          payments.push_back({year, payment.Zeile, ItemKey{kind, number(payment.OP.Konto), payment.OP.OPBelegnummer},
                              cents(payment.Zahlung), cents(payment.Skontobetrag), cents(payment.OP.Ausstand),
                              cents(payment.OP.Ausstand2)});
        });
    }
    std::sort(payments.begin(), payments.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_TRUE(payments == expected);
    std::set<int32_t> numbers;
    size_t count = 0;
    for (int table : {int(kOPKreditor), int(kOPDebitor)})
      eachRow(*store_, table, [&](const DATENBANK &record) {
        numbers.insert(record.Opbeleg.Nr);
        ++count;
      });
    EXPECT_EQ(numbers.size(), count);
  }
};

TEST_F(Circle, EndsInTheFiguresOfTheFile) {
  std::mt19937_64 random = generator();
  for (const Cast *cast : {&kGermanCast, &kSwissCast}) {
    SCOPED_TRACE(cast->folder);
    Reckoning reckoning((sourceFolder() / "samples" / cast->folder).string());
    RandomPostings postings(*cast, random);
    for (int batch = 0; batch < 2; ++batch)
      ASSERT_NO_FATAL_FAILURE(postFile(*cast, reckoning, postings.file(250)));
    for (int year : reckoning.years())
      compareAccounts(*cast, reckoning, year);
    compareEntries(*cast, reckoning);
    compareItems(*cast, reckoning);
    compareStoredItems(*cast, reckoning);
  }
}

} // namespace
} // namespace test
