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
    const ledger::BatchOutcome outcome = post(cast.client, cast.batch);
    ASSERT_EQ(outcome.state, ledger::BatchOutcome::Posted)
        << (outcome.refused.empty() ? "" : outcome.refused.front().reason);
    reckoning.post(path);
  }

  struct Turnover {
    int64_t debit = 0, credit = 0, euroDebit = 0, euroCredit = 0;
    bool operator==(const Turnover &) const = default;
  };

  // Months, opening and closing values that a period code means.
  struct Span {
    int first = 1, last = 0;
    bool opening, closing;
    explicit Span(int code) : opening(code & 32), closing(code & 64) {
      const int period = code & 31;
      if (period <= 12) first = last = period;
      if (period >= 13 && period <= 16) first = (period - 13) * 3 + 1, last = first + 2;
      if (period == 18 || period == 20) last = 12;
      if (first <= last && (code & 128)) first = 1;
      if (period == 17) opening = true, closing = false;
      if (period == 19) opening = false, closing = true;
      if (period == 20) opening = closing = true;
      if (period != 17 && period < 19) {
        opening = opening && first == 1 && last > 0;
        closing = closing && last == 12;
      }
    }
    bool holds(const Move &move) const {
      return move.kind == 1 ? opening : move.kind == 2 ? closing : first <= move.month && move.month <= last;
    }
  };

  template <class Counts> static Turnover sumOf(const std::vector<Move> &moves, Counts &&counts) {
    Turnover sum;
    for (const Move &move : moves)
      if (counts(move)) {
        (move.debit ? sum.debit : sum.credit) += move.own;
        (move.debit ? sum.euroDebit : sum.euroCredit) += move.euro;
      }
    return sum;
  }

  void compareTurnover(const Cast &cast, const Reckoning &reckoning) {
    constexpr int32_t plainForm = 2, withSigns = 1;
    constexpr int32_t kinds[] = {ZELK_SACHKONTO, 0, ZELK_KREDITOR, ZELK_DEBITOR};
    for (const auto &[account, moves] : reckoning.moves)
      for (int year : reckoning.years())
        for (int period = 1; period <= 20; ++period)
          for (int flags : {0, 32, 64, 96, 128, 224}) {
            char text[6][16] = {};
            const int code = period | flags;
            ASSERT_EQ(ZELK_HoleUmsatz(cast.client, account.second.c_str(), kinds[account.first], code, year, 0,
                                      code % 2 ? plainForm : withSigns, text[0], text[1], text[2], text[3], text[4],
                                      text[5], 0, nullptr),
                      ZELK_OK);
            const Turnover expected =
                sumOf(moves, [&, span = Span(code)](const Move &m) { return m.year == year && span.holds(m); });
            ASSERT_TRUE((Turnover{cents(text[0]), cents(text[1]), cents(text[3]), cents(text[4])} == expected))
                << account.second << ' ' << year << ' ' << code;
            ASSERT_EQ(cents(text[2]), expected.debit - expected.credit) << account.second << ' ' << year << ' ' << code;
            ASSERT_EQ(cents(text[5]), expected.euroDebit - expected.euroCredit) << account.second << ' ' << code;
          }
  }

  void compareBalances(const Cast &cast, const Reckoning &reckoning, std::mt19937_64 &random) {
    constexpr int32_t plainForm = 2;
    constexpr int32_t kinds[] = {ZELK_SACHKONTO, 0, ZELK_KREDITOR, ZELK_DEBITOR};
    const int current = reckoning.years().back();
    auto compare = [&](const AccountKey &account, const std::string &day, const Turnover &expected) {
      char own[16] = "", euro[16] = "";
      ASSERT_EQ(ZELK_HoleSaldo(cast.client, account.second.c_str(), kinds[account.first], 0, plainForm, own, euro,
                               day.empty() ? nullptr : day.c_str(), 0, nullptr),
                ZELK_OK);
      ASSERT_EQ(cents(own), expected.debit - expected.credit) << account.second << ' ' << day;
      ASSERT_EQ(cents(euro), expected.euroDebit - expected.euroCredit) << account.second << ' ' << day;
    };
    for (const auto &[account, moves] : reckoning.moves) {
      compare(account, "", sumOf(moves, [&](const Move &m) { return m.year == current; }));
      for (int i = 0; i < 12; ++i) {
        // Days of postings and others.
        const Move &near = moves[random() % moves.size()];
        const Day day = random() % 2 ? near.day : near.day / 100 * 100 + 1 + int(random() % 28);
        std::string text = std::to_string(day);
        text = text.substr(6) + '.' + text.substr(4, 2) + '.' + text.substr(0, 4);
        compare(account, text, sumOf(moves, [&](const Move &m) {
                  return m.year == near.year && (m.kind == 1 || (m.kind == 0 && m.day <= day));
                }));
      }
    }
  }

  void compareCosts(const Cast &cast, const Reckoning &reckoning) {
    constexpr int32_t plainForm = 2;
    for (int dimension : {0, 1})
      for (const char *centre : dimension == 0 ? cast.centres : cast.units)
        for (int year : reckoning.years())
          for (int period = 1; period <= 18; ++period) {
            const int span = period == 17 ? 18 : period; // the year has another number for cost postings
            int64_t own = 0, euro = 0, euroOfType = 0;
            for (const CostMove &cost : reckoning.costs) {
              const Span months(span);
              if (cost.year != year || cost.month < months.first || months.last < cost.month ||
                  std::find(cost.centres.begin(), cost.centres.end(), centre) == cost.centres.end())
                continue;
              own += cost.own;
              euro += cost.euro;
              if (cost.costType == cast.costTypes.front()) euroOfType += cost.euro;
            }
            char text[16] = "", euroText[16] = "";
            ASSERT_EQ(ZELK_HoleUmsatz(cast.client, centre, ZELK_KOSTENSTELLE, span, year, 0, plainForm, nullptr,
                                      nullptr, text, nullptr, nullptr, euroText, dimension, nullptr),
                      ZELK_OK);
            ASSERT_EQ(cents(text), own) << centre << ' ' << year << ' ' << period;
            ASSERT_EQ(cents(euroText), euro) << centre << ' ' << year << ' ' << period;
            if (period == 18) continue;
            for (const char *type : {static_cast<const char *>(nullptr), cast.costTypes.front()}) {
              ASSERT_EQ(ZELK_HoleKostenSaldo(cast.client, centre, type, 0, period, year, 0, plainForm, euroText,
                                             dimension, nullptr),
                        ZELK_OK);
              ASSERT_EQ(cents(euroText), type ? euroOfType : euro) << centre << ' ' << year << ' ' << period;
            }
          }
  }

  // The general ledger balances in every entry, and the entries of each day are those reckoned.
  void compareEntries(const Cast &cast, const Reckoning &reckoning) {
    std::map<std::tuple<AccountKey, Day, int>, std::pair<int64_t, int64_t>> entries, expected;
    for (int year : reckoning.years()) {
      std::map<int32_t, std::pair<int64_t, int64_t>> balances;
      openYear(uint16_t(cast.client), year);
      eachRow(*store_, kBuchungsbeleg, [&](const DATENBANK &record) {
        const BUCHUNGSBELEG row = record.Buchungsbeleg;
        const int64_t own = cents(row.Soll) - cents(row.Haben), euro = cents(row.EuroSoll) - cents(row.EuroHaben);
        const Day day = std::stoi(row.Datum) + 19'800'000;
        auto &sum = entries[{{row.Kontotabelle, number(row.Konto)}, day, row.Art}];
        sum.first += own;
        sum.second += euro;
        if (row.Kontotabelle != kSachkonto) return;
        balances[row.Nr].first += own;
        balances[row.Nr].second += euro;
      });
      for (auto [entry, balance] : balances)
        EXPECT_EQ(balance, std::pair(int64_t{0}, int64_t{0})) << year << ' ' << entry;
    }
    for (const auto &[account, moves] : reckoning.moves)
      for (const Move &move : moves) {
        auto &sum = expected[{account, move.day, move.kind}];
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
    ASSERT_NO_FATAL_FAILURE(compareTurnover(*cast, reckoning));
    ASSERT_NO_FATAL_FAILURE(compareBalances(*cast, reckoning, random));
    ASSERT_NO_FATAL_FAILURE(compareCosts(*cast, reckoning));
    compareEntries(*cast, reckoning);
    compareItems(*cast, reckoning);
    compareStoredItems(*cast, reckoning);
  }
}

} // namespace
} // namespace test
