// Balances of cost postings, and of cost centres on a day.
#include <algorithm>

#include "support/figure_books.h"

namespace test {
namespace {

using namespace vldb98;

/// A cost posting as the test keeps it.
struct Cost {
  vlba98::Date day;
  std::string type, centres[6], reference; // of the fourth cost centre
  int64_t own, euro;                       // with its sign
};

class CostBalance : public FigureBooks {
protected:
  /// Random cost postings over a fiscal year of client 1, and a report structure (class 7) that names cost centres.
  void post(int year) {
    open(1, year);
    static const std::string types[] = {"4210", "4600", "4920"};
    static const std::vector<std::string> centres[6] = {
        {"", "100", "200", "300"}, {"", "5001", "5002", "100"}, {"", "NORD", "SUED"}, {"", "R"}, {""}, {"", "100"}};
    KOSTENBELEG row{};
    ASSERT_TRUE(other->Transaktion(1, 0));
    for (int i = 0; i < 300; ++i) {
      Cost cost{*vlba98::addDays({year, 1, 1}, int(random() % 365)), types[random() % 3], {}, "", 0, 0};
      for (int n = 0; n < 6; ++n)
        cost.centres[n] = centres[n][random() % centres[n].size()];
      ++row.Nr;
      put(row.Datum, vlba98::toReversed(cost.day).data());
      put(row.Kostenart, padded(cost.type));
      put(row.Kostenstelle1, padded(cost.centres[0]));
      put(row.Kostenstelle2, padded(cost.centres[1]));
      put(row.Kostenstelle3, padded(cost.centres[2]));
      put(row.Kostenstelle4, padded(cost.centres[3]));
      put(row.Kostenstelle5, padded(cost.centres[4]));
      put(row.Kostenstelle6, padded(cost.centres[5]));
      cost.reference = random() % 2 ? "R1" : "R2";
      put(row.Kostref4, padded(cost.reference));
      row.Flags = int16_t(random() % 3 + (random() % 4 ? 0 : 32));
      const int64_t own = int64_t(random() % 100000) - 10000, euro = own + 7;
      put(row.Betrag, internalForm(own));
      put(row.EuroBetrag, internalForm(euro));
      cost.own = row.Flags & 32 ? -own : own;
      cost.euro = row.Flags & 32 ? -euro : euro;
      insert(&DATENBANK::Kostenbeleg, row, kKostenbeleg);
      costs[year].push_back(cost);
    }
    ASSERT_TRUE(other->Transaktion(2, 0));
  }

  void addLine(int32_t number, int32_t flags, const char *name) {
    AUFBAU line{};
    line.Nr = number;
    line.Flags = flags;
    put(line.Name, name);
    insert(&DATENBANK::Aufbau, line, kStructureTables[7]);
  }

  void addCentre(const char *number, int16_t dimension, const char *reference) {
    KOST centre{};
    put(centre.Nr, padded(number));
    centre.Dimension = dimension;
    put(centre.Kostref, padded(reference));
    insert(&DATENBANK::Kost, centre, kKost);
  }

  static ZelkResult euroBalance(const char *centre, const char *type, int32_t structure, int32_t period, int32_t year,
                                int32_t dimension, const char *reference, std::string &balance) {
    char euro[16] = "?";
    ZelkResult result =
        ZELK_HoleKostenSaldo(1, centre, type, structure, period, year, 0, 2, euro, dimension, reference);
    balance = euro;
    return result;
  }

  std::map<int, std::vector<Cost>> costs;
};

TEST_F(CostBalance, AddsUpWhatIsSelected) {
  post(2025);
  post(2026);
  open(1, 2026);
  addCentre("R", 3, "R1");
  addCentre("R", 3, "R2");
  addLine(1, 0, "100");
  addLine(2, 1, "200");
  addLine(3, 3, "5002");
  addLine(4, 5, "300"); // hidden
  using Numbers = std::vector<std::string>;
  struct Row {
    const char *centre, *type;
    int32_t structure, dimension;
    const char *reference;
    Numbers numbers; // of the cost centres that count; none: all
  };
  const Row rows[] = {{"100", "", 0, 0, "", {"100"}},
                      {"100", nullptr, 0, 1, "", {}}, // no cost centre of that dimension
                      {"100 ", "4600", 0, 0, nullptr, {"100"}},
                      {"100", "4600", -5, -1, "", {"100"}}, // in whichever dimension
                      {"5001", "", 0, 1, "", {"5001"}},
                      {"5002", "4210", 0, 6, "", {"5002"}},
                      {"SUED", "", 0, 2, "", {"SUED"}},
                      {"", "4920", 0, 0, "", {}},
                      {nullptr, "4920", 0, 9, "R1", {"R"}},
                      {"", "4920", 7, 0, "", {"200"}},
                      {"", "4920", 7, 1, "", {"5002"}},
                      {"200", "", 7, 0, "", {"200"}},
                      {"R", "", 0, 3, "", {"R"}},
                      {"R", "", 0, 3, "R1", {"R"}},
                      {"", "4600", 0, 3, "R2", {"R"}},
                      {"R", "4600", 0, 3, "R2", {"R"}}};
  for (const Row &row : rows)
    for (int32_t period = 1; period <= 17; ++period) {
      const int first = period <= 12 ? period : period < 17 ? 3 * (period - 13) + 1 : 1;
      const int last = period <= 12 ? period : period < 17 ? first + 2 : 12;
      int64_t sum = 0;
      for (const Cost &cost : costs[2026]) {
        bool counts = cost.day.month >= first && cost.day.month <= last;
        counts = counts && (!row.type || !*row.type || cost.type == row.type);
        bool named = row.numbers.empty();
        for (int n = 0; n < 6; ++n)
          if (row.dimension == n || row.dimension < 0 || row.dimension > 5)
            named = named || (std::count(row.numbers.begin(), row.numbers.end(), cost.centres[n]) > 0 &&
                              (!row.reference || !*row.reference || (n == 3 && cost.reference == row.reference)));
        if (counts && named) sum += cost.euro;
      }
      std::string balance;
      const bool none = row.centre && std::string(row.centre) == "100" && row.dimension == 1;
      ASSERT_EQ(euroBalance(row.centre, row.type, row.structure, period, 2026, row.dimension, row.reference, balance),
                none ? ZELKERR_uzl_Kontonr : ZELK_OK);
      ASSERT_EQ(balance, none ? "?" : plain(sum)) << (row.centre ? row.centre : "") << ' ' << row.dimension;
    }
  // The year before has no references, so that they do not count there.
  std::string with, without;
  ASSERT_EQ(euroBalance("200", "", 0, 17, 2025, 0, "R1", with), ZELK_OK);
  ASSERT_EQ(euroBalance("200", "", 0, 17, 2025, 0, "", without), ZELK_OK);
  EXPECT_EQ(with, without);
  for (int32_t dimension : {0, 9})
    EXPECT_EQ(euroBalance("200", "", 0, 17, 2026, dimension, "R1", with), ZELKERR_uzl_Kontonr);
}

TEST_F(CostBalance, IsRefused) {
  struct Row {
    int32_t client;
    const char *centre, *type;
    int32_t structure, period, year, form;
    ZelkResult result;
    const char *message;
  };
  static const Row rows[] = {
      {99, "", nullptr, 33, 20, 2027, 0, ZELKERR_uzl_Format, "Das Ausgabeformat ist unzulässig!"},
      {99, "", nullptr, 33, 20, 2027, 1, ZELKERR_uzl_Kontonr,
       "Es muss mindestens eine Kostenstelle/ein Kostenträger oder eine Kostenart angegeben werden."},
      {99, "1234567890", "1234567890", 33, 20, 2027, 1, ZELKERR_uzl_Kontonr,
       "Die Kostenstelle 1234567890 ist unzulässig!"},
      {99, "123456789", "12345 7890", 33, 20, 2027, 1, ZELKERR_uzl_Kontonr, "Die Kostenart 12345 7890 ist unzulässig!"},
      {99, "123456789", "4711", 33, 20, 2027, 1, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"},
      {1, "123456789", "4711", 33, 20, 2027, 1, ZELKERR_uzl_Zeitraum, "Das Geschäftsjahr ist unzulässig!"},
      {1, "123456789", "4711", 33, 20, 2024, 1, ZELKERR_uzl_Zeitraum, "Das Geschäftsjahr ist unzulässig!"},
      {1, "123456789", "4711", 33, 20, -1, 1, ZELKERR_uzl_Zeitraum, "Das Geschäftsjahr ist unzulässig!"},
      {1, "123456789", "4711", 33, 20, 2026, 1, ZELKERR_uzl_Kontonr, "Die Kostenart ist unzulässig!"},
      {1, "123456789", "42100000", 33, 20, 2026, 1, ZELKERR_uzl_Kontonr, "Die Kostenart ist unzulässig!"},
      {1, "123456789", "4210", 33, 20, 2026, 1, ZELKERR_uzl_Kontonr, "Der Aufbau ist unzulässig!"},
      {1, "123456789", "4210", 0, 20, 2026, 1, ZELKERR_uzl_Kontonr, "Die Kostenstelle ist unzulässig!"},
      {1, "", "4210", 32, 20, 2026, 1, ZELKERR_uzl_Kontonr, "Die Kostenstelle ist unzulässig!"},
      {1, "100", "4210", 0, 0, 2026, 1, ZELKERR_uzl_Zeitraum, "Der Zeitraum ist unzulässig!"},
      {1, "100", "4210", 0, 18, 2026, 1, ZELKERR_uzl_Zeitraum, "Der Zeitraum ist unzulässig!"},
      {1, "100", "4210", 0, 20, 2026, 1, ZELKERR_uzl_Zeitraum, "Der Zeitraum ist unzulässig!"},
      {1, "100", "4210", 0, 33, 2026, 1, ZELKERR_uzl_Zeitraum, "Der Zeitraum ist unzulässig!"}};
  for (const Row &row : rows) {
    char euro[16] = "?";
    expectRefused(
        [&](int32_t flag) {
          return ZELK_HoleKostenSaldo(row.client, row.centre, row.type, row.structure, row.period, row.year, flag,
                                      row.form, euro, 0, "");
        },
        row.result, row.message);
    EXPECT_STREQ(euro, "?");
  }
  EXPECT_EQ(ZELK_HoleKostenSaldo(1, "100", "4210", 0, 1, 2026, 0, 1, nullptr, 0, ""), ZELK_OK);
}

TEST_F(CostBalance, OfACentreOnADay) {
  post(2026);
  addCentre("100", 0, "R1"); // postings that name 100 belong to the one without a reference
  KOST values{};
  std::array<std::array<int64_t, 2>, 12> months{};
  for (size_t month = 0; month < 12; ++month) {
    for (const Cost &cost : costs[2026])
      if (cost.day.month == int(month) + 1 && cost.centres[0] == "100") {
        months[month][0] += cost.own;
        months[month][1] += cost.euro;
      }
    put(values.Kosten[month], internalForm(months[month][0]));
    put(values.EuroKosten[month], internalForm(months[month][1]));
  }
  for (const char *reference : {"", "R1"})
    change(kKost, KeyBuilder().account("100").number(int16_t{0}).account(reference), [&](DATENBANK &record) {
      std::memcpy(record.Kost.Kosten, values.Kosten, sizeof values.Kosten);
      std::memcpy(record.Kost.EuroKosten, values.EuroKosten, sizeof values.EuroKosten);
    });
  for (int i = 0; i < 365; i += 3) {
    const auto day = *vlba98::addDays({2026, 1, 1}, i);
    int64_t own = 0, euro = 0, before = 0;
    for (const Cost &cost : costs[2026])
      if (cost.centres[0] == "100" && cost.day <= day) {
        own += cost.own;
        euro += cost.euro;
        if (cost.day.month < day.month) before += cost.own;
      }
    char first[16], second[16];
    const auto date = vlba98::toDisplay(day);
    ASSERT_EQ(ZELK_HoleSaldo(1, "100", ZELK_KOSTENSTELLE, 0, 2, first, second, date.data(), 0, ""), ZELK_OK);
    ASSERT_EQ(std::string(first) + " " + second, plain(own) + " " + plain(euro)) << date.data();
    ASSERT_EQ(ZELK_HoleSaldo(1, "100", ZELK_KOSTENSTELLE, 0, 2, first, second, date.data(), 0, "R1"), ZELK_OK);
    ASSERT_EQ(first, plain(before)) << date.data();
  }
}

TEST_F(CostBalance, FollowsTheMonthsOfTheFiscalYear) {
  open(2, 2025); // July 2025 to June 2026
  for (int i = 0; i < 12; ++i) {
    KOSTENBELEG row{};
    row.Nr = i + 1;
    put(row.Datum, vlba98::toReversed(*vlba98::addMonths({2025, 7, 31}, i)).data());
    for (auto field : {&KOSTENBELEG::Kostenart, &KOSTENBELEG::Kostenstelle1, &KOSTENBELEG::Kostenstelle2,
                       &KOSTENBELEG::Kostenstelle3, &KOSTENBELEG::Kostenstelle4, &KOSTENBELEG::Kostenstelle5,
                       &KOSTENBELEG::Kostenstelle6})
      put(row.*field, padded(""));
    put(row.Kostenstelle1, padded("10"));
    put(row.EuroBetrag, internalForm(int64_t{1} << i));
    insert(&DATENBANK::Kostenbeleg, row, kKostenbeleg);
  }
  for (int32_t period = 1; period <= 17; ++period) {
    int64_t bits = period <= 12 ? int64_t{1} << (period - 1) : period < 17 ? int64_t{7} << 3 * (period - 13) : 4095;
    char euro[16];
    ASSERT_EQ(ZELK_HoleKostenSaldo(2, "10", "", 0, period, 2025, 0, 2, euro, 0, ""), ZELK_OK);
    EXPECT_EQ(euro, plain(bits)) << period;
  }
}

} // namespace
} // namespace test
