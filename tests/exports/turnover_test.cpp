// Turnover and balances of accounts: periods and flags, output forms, refusals, balances on a day.
#include <array>
#include <set>

#include "frame/money_output.h"
#include "support/figure_books.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using namespace vldb98;

using Turnover = FigureBooks;

/// A debit and a credit for the opening, the closing and each month, in both currencies; of a cost centre the debits of
/// the months.
struct Values {
  std::array<int64_t, 14> debit{}, credit{}, euroDebit{}, euroCredit{}; // 0 opening, 1 to 12, 13 closing

  explicit Values(std::mt19937 &random) {
    for (auto side : {&debit, &credit, &euroDebit, &euroCredit})
      for (int64_t &value : *side)
        value = int64_t(random() % 20'000'001) - 5'000'000;
  }
  void write(KONTOWERTE &target, const std::array<int64_t, 14> &debits, const std::array<int64_t, 14> &credits) const {
    put(target.Eroeffnung.Soll, internalForm(debits[0]));
    put(target.Eroeffnung.Haben, internalForm(credits[0]));
    put(target.Abschluss.Soll, internalForm(debits[13]));
    put(target.Abschluss.Haben, internalForm(credits[13]));
    for (int month = 1; month <= 12; ++month) {
      put(target.Monat[month - 1].Soll, internalForm(debits[size_t(month)]));
      put(target.Monat[month - 1].Haben, internalForm(credits[size_t(month)]));
    }
  }
  template <class Record> void writeTo(Record &account) const {
    write(account.Werte, debit, credit);
    write(account.EuroWerte, euroDebit, euroCredit);
  }
  void writeTo(KOST &centre) const {
    for (int month = 1; month <= 12; ++month) {
      put(centre.Kosten[month - 1], internalForm(debit[size_t(month)]));
      put(centre.EuroKosten[month - 1], internalForm(euroDebit[size_t(month)]));
    }
  }
};

enum Side { AsFlags, Always, Never };
struct PeriodRow {
  int first, last; // months; 0: none
  Side opening, closing;
};
constexpr PeriodRow kRefused{-1, -1, Never, Never};
// By the low five bits of the period code.
constexpr PeriodRow kPeriods[32] = {kRefused,
                                    {1, 1, AsFlags, AsFlags},
                                    {2, 2, AsFlags, AsFlags},
                                    {3, 3, AsFlags, AsFlags},
                                    {4, 4, AsFlags, AsFlags},
                                    {5, 5, AsFlags, AsFlags},
                                    {6, 6, AsFlags, AsFlags},
                                    {7, 7, AsFlags, AsFlags},
                                    {8, 8, AsFlags, AsFlags},
                                    {9, 9, AsFlags, AsFlags},
                                    {10, 10, AsFlags, AsFlags},
                                    {11, 11, AsFlags, AsFlags},
                                    {12, 12, AsFlags, AsFlags},
                                    {1, 3, AsFlags, AsFlags},
                                    {4, 6, AsFlags, AsFlags},
                                    {7, 9, AsFlags, AsFlags},
                                    {10, 12, AsFlags, AsFlags},
                                    {0, 0, Always, Never},
                                    {1, 12, AsFlags, AsFlags},
                                    {0, 0, Never, Always},
                                    {1, 12, Always, Always},
                                    kRefused,
                                    kRefused,
                                    kRefused,
                                    kRefused,
                                    kRefused,
                                    kRefused,
                                    kRefused,
                                    kRefused,
                                    kRefused,
                                    kRefused,
                                    kRefused};

/// The indexes of Values that count; nothing for a period that is refused.
std::optional<std::set<size_t>> counted(int32_t code) {
  const PeriodRow &row = kPeriods[code & 31];
  if (row.first < 0) return std::nullopt;
  std::set<size_t> months;
  for (int month = row.first; month <= row.last && month > 0; ++month)
    months.insert(size_t(month));
  if ((code & 128) && !months.empty())
    for (size_t month = 1; month < *months.rbegin(); ++month)
      months.insert(month);
  std::set<size_t> all = months;
  if (row.opening == Always || (row.opening == AsFlags && (code & 32) && months.count(1))) all.insert(0);
  if (row.closing == Always || (row.closing == AsFlags && (code & 64) && months.count(12))) all.insert(13);
  return all;
}

struct Outputs {
  char debit[16] = "?", credit[16] = "?", balance[16] = "?", euroDebit[16] = "?", euroCredit[16] = "?",
       euroBalance[16] = "?";
  std::string all() const {
    return std::string(debit) + " " + credit + " " + balance + " | " + euroDebit + " " + euroCredit + " " + euroBalance;
  }
};

ZelkResult turnoverOf(const char *account, int32_t kind, int32_t period, int32_t year, Outputs &out) {
  return ZELK_HoleUmsatz(1, account, kind, period, year, 0, 2, out.debit, out.credit, out.balance, out.euroDebit,
                         out.euroCredit, out.euroBalance, 0, "");
}

TEST_F(Turnover, OfEveryPeriodWithEveryFlag) {
  static const struct {
    int32_t kind;
    int table;
    const char *number;
  } accounts[] = {{1, kSachkonto, "8400"}, {2, kKreditor, "70010"}, {4, kDebitor, "10010"}, {8, kKost, "100"}};
  for (int year : {2026, 2025})
    for (const auto &account : accounts) {
      const Values values(random);
      open(1, year);
      change(account.table, account.number, [&](DATENBANK &record) {
        if (account.table == kSachkonto)
          values.writeTo(record.Sachkonto);
        else if (account.table == kKost)
          values.writeTo(record.Kost);
        else
          values.writeTo(record.Personenkonto);
      });
      for (int32_t code = 0; code < 256; ++code) {
        Outputs out;
        const auto which = counted(code);
        const int32_t asked = year == 2026 && code % 2 ? -1 : year;
        ASSERT_EQ(turnoverOf(account.number, account.kind, code, asked, out), which ? ZELK_OK : ZELKERR_uzl_Zeitraum);
        if (!which) {
          EXPECT_EQ(out.all(), "? ? ? | ? ? ?");
          continue;
        }
        int64_t debit = 0, credit = 0, euroDebit = 0, euroCredit = 0;
        for (size_t i : *which) {
          if (account.kind == 8 && (i == 0 || i == 13)) continue;
          debit += values.debit[i];
          credit += values.credit[i];
          euroDebit += values.euroDebit[i];
          euroCredit += values.euroCredit[i];
        }
        const std::string expected = account.kind == 8 ? "? ? " + plain(debit) + " | ? ? " + plain(euroDebit)
                                                       : plain(debit) + " " + plain(credit) + " " +
                                                             plain(debit - credit) + " | " + plain(euroDebit) + " " +
                                                             plain(euroCredit) + " " + plain(euroDebit - euroCredit);
        ASSERT_EQ(out.all(), expected) << account.number << ' ' << code << ' ' << year;
        if (code != 20 || year != 2026) continue;
        char balance[16], euro[16];
        ASSERT_EQ(ZELK_HoleSaldo(1, account.number, account.kind, 0, 2, balance, euro, "", 0, nullptr), ZELK_OK);
        EXPECT_EQ(std::string(balance) + euro, std::string(out.balance) + out.euroBalance);
      }
    }
  // Flags above the known ones count for nothing, whatever their sign.
  Outputs out, same;
  ASSERT_EQ(turnoverOf("8400", 1, 3, 2026, out), ZELK_OK);
  ASSERT_EQ(turnoverOf("8400", 1, INT32_MIN + 3, 2026, same), ZELK_OK);
  EXPECT_EQ(out.all(), same.all());
}

TEST_F(Turnover, InThreeForms) {
  static const struct {
    int64_t balance;
    const char *fixed, *plainForm, *grouped;
  } rows[] = {{0, "0000000000,00", "0,00", "0,00"},
              {-1250, "-000000012,50", "-12,50", "-12,50"},
              {1, "+000000000,01", "0,01", "0,01"},
              {-1, "-000000000,01", "-0,01", "-0,01"},
              {123456789, "+001234567,89", "1234567,89", "1.234.567,89"},
              {99999999999, "+999999999,99", "999999999,99", "999999999,99"},
              {-99999999999, "-999999999,99", "-999999999,99", "-999999999,99"}};
  for (const auto &row : rows) {
    change(kSachkonto, "1000", [&](DATENBANK &record) {
      put(record.Sachkonto.Werte.Monat[4].Haben, internalForm(row.balance < 0 ? -row.balance : 0));
      put(record.Sachkonto.EuroWerte.Monat[4].Soll, internalForm(row.balance));
      put(record.Sachkonto.Werte.Monat[4].Soll, row.balance < 0 ? "" : internalForm(row.balance));
    });
    const char *const expected[] = {row.fixed, row.plainForm, row.grouped};
    for (int32_t form = 1; form <= 3; ++form) {
      char balance[frame::kAmountSize], euro[frame::kAmountSize];
      ASSERT_EQ(ZELK_HoleUmsatz(1, "1000", 1, 5, 2026, 0, form, nullptr, nullptr, balance, nullptr, nullptr, euro, 0,
                                nullptr),
                ZELK_OK);
      EXPECT_STREQ(balance, expected[form - 1]);
      EXPECT_STREQ(euro, expected[form - 1]);
    }
  }
}

TEST_F(Turnover, IsRefused) {
  struct Row {
    int32_t client;
    const char *number;
    int32_t kind, period, year, form;
    ZelkResult result;
    const char *message;
  };
  // Each row has the faults of the next ones too, as far as they can come together.
  static const Row rows[] = {{99, "12345678", 3, 0, 1999, 0, ZELKERR_uzl_Format, "Das Ausgabeformat ist unzulässig!"},
                             {99, "12345678", 3, 0, 1999, 4, ZELKERR_uzl_Format, "Das Ausgabeformat ist unzulässig!"},
                             {99, "12345678", 3, 0, 1999, 1, ZELKERR_uzl_Kontoart, "Die Kontoart ist unzulässig!"},
                             {99, "12345678", 1, 0, 1999, 1, ZELKERR_uzl_Kontonr, "Die Kontonummer ist unzulässig!"},
                             {99, "4711", 1, 0, 1999, 1, ZELKERR_uzl_Zeitraum, "Die Zeitraumangabe ist unzulässig!"},
                             {99, "4711", 1, 21, 1999, 1, ZELKERR_uzl_Zeitraum, "Die Zeitraumangabe ist unzulässig!"},
                             {99, "4711", 1, -1, 1999, 1, ZELKERR_uzl_Zeitraum, "Die Zeitraumangabe ist unzulässig!"},
                             {99, "4711", 1, 1, 1999, 1, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"},
                             {1, "4711", 1, 1, 1999, 1, ZELKERR_uzl_Zeitraum, "Das Geschäftsjahr ist unzulässig!"},
                             {1, "4711", 1, 1, 0, 1, ZELKERR_uzl_Zeitraum, "Das Geschäftsjahr ist unzulässig!"},
                             {1, "4711", 1, 1, 2080, 1, ZELKERR_uzl_Zeitraum, "Das Geschäftsjahr ist unzulässig!"},
                             {1, "4711", 1, 1, 2026, 1, ZELKERR_uzl_Kontonr, "Die Kontonummer ist unzulässig!"},
                             {1, "4711", 2, 1, -1, 1, ZELKERR_uzl_Kontonr, "Die Kontonummer ist unzulässig!"},
                             {1, nullptr, 4, 1, -1, 1, ZELKERR_uzl_Kontonr, "Die Kontonummer ist unzulässig!"},
                             {1, "600", 8, 1, 2025, 1, ZELKERR_uzl_Kostenstelle, "Die Kostenstelle ist unzulässig!"},
                             {1, "5001", 8, 1, -1, 1, ZELKERR_uzl_Kostenstelle, "Die Kostenstelle ist unzulässig!"}};
  for (const Row &row : rows) {
    Outputs out;
    expectRefused(
        [&](int32_t flag) {
          return ZELK_HoleUmsatz(row.client, row.number, row.kind, row.period, row.year, flag, row.form, out.debit,
                                 out.credit, out.balance, out.euroDebit, out.euroCredit, out.euroBalance, 0, nullptr);
        },
        row.result, row.message);
    EXPECT_EQ(out.all(), "? ? ? | ? ? ?");
  }
  struct OnDay {
    int32_t client;
    const char *number;
    int32_t kind;
    const char *date;
    int32_t form;
    ZelkResult result;
    const char *message;
  };
  static const OnDay days[] = {
      {99, "12345678", 3, "310226", 0, ZELKERR_uzl_Format, "Das Ausgabeformat ist unzulässig!"},
      {99, "12345678", 3, "310226", 1, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"},
      {1, "12345678", 3, "310226", 1, ZELKERR_uzl_Kontoart, "Die Kontoart ist unzulässig!"},
      {1, "12345678", 1, "310226", 1, ZELKERR_uzl_Datum, "Das Datum ist unzulässig!"},
      {1, "12345678", 8, " ", 1, ZELKERR_uzl_Datum, "Das Datum ist unzulässig!"},
      {1, "1000", 1, "21.01.2026x", 1, ZELKERR_uzl_Datum, "Das Datum ist unzulässig!"},
      {1, "10000000", 1, "210126", 1, ZELKERR_uzl_Kontonr, "Die Kontonummer ist unzulässig!"},
      {1, "1000", 1, "210124", 1, ZELKERR_uzl_Kontonr, "Die Kontonummer ist unzulässig!"},
      {1, "4711", 2, "210126", 1, ZELKERR_uzl_Kontonr, "Die Kontonummer ist unzulässig!"},
      {1, "4711", 8, "210126", 1, ZELKERR_uzl_Kostenstelle, "Die Kostenstelle ist unzulässig!"},
      {99, "4711", 1, "", 1, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"},
      {1, "4711", 1, nullptr, 1, ZELKERR_uzl_Kontonr, "Die Kontonummer ist unzulässig!"}};
  for (const OnDay &row : days) {
    char balance[16] = "?", euro[16] = "?";
    expectRefused(
        [&](int32_t flag) {
          return ZELK_HoleSaldo(row.client, row.number, row.kind, flag, row.form, balance, euro, row.date, 0, "");
        },
        row.result, row.message);
    EXPECT_EQ(std::string(balance) + euro, "??");
  }
}

TEST_F(Turnover, BeyondNineDigitsIsRefusedWhereItIsWanted) {
  change(kSachkonto, "1000", [&](DATENBANK &record) {
    for (int month : {1, 2}) {
      put(record.Sachkonto.Werte.Monat[month].Soll, internalForm(99999999999));
      put(record.Sachkonto.Werte.Monat[month].Haben, internalForm(99999999999));
      put(record.Sachkonto.EuroWerte.Monat[month].Haben, internalForm(99999999999));
    }
  });
  const char *const message = "Der ermittelte Betrag ist größer als 999.999.999,99 und kann nicht übergeben werden!";
  char first[16] = "?", second[16] = "?";
  expectRefused(
      [&](int32_t flag) {
        return ZELK_HoleUmsatz(1, "1000", 1, 20, -1, flag, 1, first, nullptr, second, nullptr, nullptr, nullptr, 0, "");
      },
      ZELKERR_sonst, message);
  expectRefused([&](int32_t flag) { return ZELK_HoleSaldo(1, "1000", 1, flag, 1, first, second, "311226", 0, ""); },
                ZELKERR_sonst, message);
  EXPECT_EQ(std::string(first) + second, "??");
  EXPECT_EQ(ZELK_HoleSaldo(1, "1000", 1, 1, 2, first, nullptr, nullptr, 0, ""), ZELK_OK);
  EXPECT_STREQ(first, "0,00");
}

/// An entry of an account.
struct Entry {
  vlba98::Date day;
  int16_t kind; // 0 of the year, 1 opening, 2 closing
  int64_t debit, credit, euroDebit, euroCredit;
};

class BalanceOnDay : public FigureBooks, public ::testing::WithParamInterface<int> {
protected:
  /// Random entries of an account over both fiscal years and beside it those of accounts that resemble it.
  std::vector<Entry> post(int table, const std::string &number, vlba98::Date from) {
    std::vector<Entry> entries;
    BUCHUNGSBELEG row{};
    put(row.Gegenkonto, padded(""));
    auto amount = [&] { return int64_t(random() % 2'000'001) - 500'000; };
    EXPECT_TRUE(other->Transaktion(1, 0));
    for (int i = 0; i < 400; ++i) {
      const auto day = *vlba98::addDays(from, int(random() % 365));
      Entry entry{day, int16_t(i % 40 == 0 ? 1 : i % 40 == 1 ? 2 : 0), amount(), amount(), amount(), amount()};
      ++row.Nr;
      row.Kontotabelle = int16_t(i % 9 == 0 ? kDebitor - table : table);
      const bool own = i % 9 && i % 7;
      put(row.Konto, padded(i % 7 ? number : number + "1"));
      row.Art = entry.kind;
      put(row.Datum, vlba98::toReversed(day).data());
      put(row.Soll, internalForm(entry.debit));
      put(row.Haben, internalForm(entry.credit));
      put(row.EuroSoll, internalForm(entry.euroDebit));
      put(row.EuroHaben, internalForm(entry.euroCredit));
      insert(&DATENBANK::Buchungsbeleg, row, kBuchungsbeleg);
      if (own) entries.push_back(entry);
    }
    EXPECT_TRUE(other->Transaktion(2, 0));
    return entries;
  }
};

void add(char (&value)[13], int64_t amount) {
  char before[13];
  std::memcpy(before, value, sizeof before);
  int64_t sum = amount;
  if (*before) {
    const int64_t size = std::stoll(std::string(before, 9)) * 100 + std::stoi(before + 10);
    sum += before[9] == '-' ? -size : size;
  }
  put(value, internalForm(sum));
}

TEST_P(BalanceOnDay, IsThatOfItsEntries) {
  // Client 1 has calendar years, client 2 begins its years in July.
  const auto client = uint16_t(GetParam());
  const std::string number = client == 1 ? "10010" : "1020";
  const int32_t kind = client == 1 ? ZELK_DEBITOR : ZELK_SACHKONTO;
  const int table = client == 1 ? kDebitor : kSachkonto, beginsIn = client == 1 ? 1 : 7;
  for (int year : {2025, 2026}) {
    open(client, year);
    const vlba98::Date begin{year, beginsIn, 1};
    const std::vector<Entry> entries = post(table, number, begin);
    change(table, number, [&](DATENBANK &record) {
      KONTOWERTE &own = client == 1 ? record.Personenkonto.Werte : record.Sachkonto.Werte;
      KONTOWERTE &euro = client == 1 ? record.Personenkonto.EuroWerte : record.Sachkonto.EuroWerte;
      for (const Entry &entry : entries) {
        const size_t month = size_t((entry.day.month - beginsIn + 12) % 12);
        auto pair = [&](KONTOWERTE &values) -> WERTEPAAR & {
          return entry.kind == 1 ? values.Eroeffnung : entry.kind == 2 ? values.Abschluss : values.Monat[month];
        };
        add(pair(own).Soll, entry.debit);
        add(pair(own).Haben, entry.credit);
        add(pair(euro).Soll, entry.euroDebit);
        add(pair(euro).Haben, entry.euroCredit);
      }
    });
    for (int i = 0; i < 365; ++i) {
      const auto day = *vlba98::addDays(begin, i);
      int64_t balance = 0, euro = 0;
      for (const Entry &entry : entries)
        if (entry.kind == 1 || (entry.kind == 0 && entry.day <= day)) {
          balance += entry.debit - entry.credit;
          euro += entry.euroDebit - entry.euroCredit;
        }
      char first[16], second[16];
      const std::string date = i % 2 ? vlba98::toDisplay(day).data() : vlba98::toExternal6(day).data();
      ASSERT_EQ(
          ZELK_HoleSaldo(client, number.c_str(), kind, 0, 2, first, i % 3 ? second : nullptr, date.c_str(), 0, nullptr),
          ZELK_OK);
      ASSERT_EQ(first, plain(balance)) << date;
      if (i % 3) {
        ASSERT_EQ(second, plain(euro)) << date;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Clients, BalanceOnDay, ::testing::Values(1, 2));

} // namespace
} // namespace test
