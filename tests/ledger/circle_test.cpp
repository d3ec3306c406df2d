// The whole circle: postings by chance as a file, through the exports into a batch, to the ledger; then every figure
// there equals what plain integers make of the file.
#include <fstream>

#include "base/random.h"
#include "ledger/ledger_books.h"
#include "ledger/random_postings.h"
#include "ledger/reckoning.h"
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

  void compareItems(const Cast &cast, const Reckoning &reckoning) {
    std::map<ItemKey, Item> items;
    std::map<AccountKey, int64_t> left, balances;
    std::vector<std::string> payments;
    for (int year : reckoning.years()) {
      openYear(uint16_t(cast.client), year);
      for (auto [table, accounts] : {std::pair{kHistOPKreditor, 2}, {kHistOPDebitor, 3}})
        eachRow(*store_, table, [&, kind = accounts](const DATENBANK &record) {
          const OPHISTORIE payment = record.Ophistorie;
          payments.push_back(Reckoning::paymentText(year, {kind, number(payment.OP.Konto), payment.OP.OPBelegnummer},
                                                    payment.Zeile, cents(payment.Zahlung), cents(payment.Skontobetrag),
                                                    cents(payment.OP.Ausstand), cents(payment.OP.Ausstand2)));
        });
    }
    for (auto [table, accounts] : {std::pair{kOPKreditor, 2}, {kOPDebitor, 3}})
      eachRow(*store_, table, [&, kind = accounts](const DATENBANK &record) {
        const OPBELEG stored = record.Opbeleg;
        Item &item = items[{kind, number(stored.Konto), stored.OPBelegnummer}];
        item = {cents(stored.Brutto),   cents(stored.Ausstand),  stored.Waehrung,
                cents(stored.BetragFW), cents(stored.Ausstand2), 0};
        left[{kind, number(stored.Konto)}] += item.left;
      });
    std::map<ItemKey, Item> expected = reckoning.items;
    for (auto &[key, item] : expected)
      item.payments = 0;
    EXPECT_TRUE(items == expected);
    std::vector<std::string> expectedPayments = reckoning.payments;
    std::sort(payments.begin(), payments.end());
    std::sort(expectedPayments.begin(), expectedPayments.end());
    EXPECT_EQ(payments, expectedPayments);
    EXPECT_GT(payments.size(), 20u);
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
  }
}

} // namespace
} // namespace test
