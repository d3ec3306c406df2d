// The fetch of budget values.
#include <algorithm>

#include "support/figure_books.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using namespace vldb98;

/// What one fetch delivered: "number;short name;value of month 1;...;year;in Euro".
struct Fetched {
  ZelkResult result;
  std::string line;
};

Fetched fetch(int32_t form = 2) {
  char number[8], shortName[9], name[41], values[13][16];
  int32_t inEuro = -1;
  ZelkResult result = ZELK_HoleSollwerte(number, shortName, name, form, values[0], values[1], values[2], values[3],
                                         values[4], values[5], values[6], values[7], values[8], values[9], values[10],
                                         values[11], values[12], &inEuro);
  if (result < 0) return {result, ""};
  std::string line = std::string(number) + ";" + shortName;
  for (const auto &value : values)
    line += std::string(";") + value;
  return {result, line + ";" + std::to_string(inEuro)};
}

class BudgetValues : public FigureBooks {
protected:
  /// Gives every account of a table random budget values in both fiscal years.
  void plan(int table) {
    for (int year : {2025, 2026}) {
      open(1, year);
      DATENBANK record{};
      uint8_t found = 0;
      ASSERT_TRUE(other->GetFirstExt(record, found, FileNumber(table)));
      while (found) {
        auto fill = [&](SOLLWERTE &budget) {
          for (int i = 0; i < 13; ++i) {
            sums[i] = int64_t(random() % 1000000) - 200000;
            put(i < 12 ? budget.Monat[i] : budget.Gesamt, internalForm(sums[i]));
            total[i] += sums[i];
          }
        };
        std::fill(std::begin(total), std::end(total), 0);
        std::string number, reference, text;
        int dimension = 0;
        auto take = [&](auto &account) {
          account.SWinEuro = uint8_t(random() % 2);
          fill(account.Sollwerte);
          number = std::string(account.Nr, std::find(account.Nr, account.Nr + 7, ' '));
          shortName = account.Kuerzel;
          name = account.Name;
          inEuro = account.SWinEuro;
        };
        if (table == kSachkonto)
          take(record.Sachkonto);
        else if (table == kKost) {
          take(record.Kost);
          fill(record.Kost.Sollwerte2);
          dimension = record.Kost.Dimension;
          reference = std::string(record.Kost.Kostref, 7);
        } else
          take(record.Personenkonto);
        ASSERT_TRUE(other->Update(record, FileNumber(table)));
        text = number + ";" + shortName;
        for (int64_t value : total)
          text += ";" + plain(value);
        model.push_back(
            {table, year, dimension, number, shortName, name, reference, text + ";" + std::to_string(inEuro)});
        ASSERT_TRUE(other->GetNextExt(record, found, FileNumber(table)));
      }
    }
    open(1);
  }

  struct Planned {
    int table, year, dimension;
    std::string number, shortName, name, reference, line;
  };
  std::vector<Planned> model;
  int64_t sums[13], total[13];
  std::string shortName, name;
  int inEuro = 0;
};

TEST_F(BudgetValues, AreWalkedInOrder) {
  for (auto [number, dimension, reference] :
       {std::tuple{"100", 0, "R1"}, {"100", 2, "R1"}, {"110", 0, "R1"}, {"50", 0, "R2"}}) {
    KOST centre{};
    put(centre.Nr, padded(number));
    centre.Dimension = int16_t(dimension);
    put(centre.Kostref, padded(reference));
    put(centre.Kuerzel, std::string("K") + number + reference);
    put(centre.Name, std::string("Neu ") + number + reference);
    insert(&DATENBANK::Kost, centre, kKost);
  }
  for (int table : {kSachkonto, kKreditor, kDebitor, kKost})
    plan(table);
  struct Row {
    int32_t kind, year, order;
    const char *from;
    int32_t dimension;
    const char *reference;
  };
  const Row rows[] = {{1, 0, 0, "", 0, nullptr},     {1, 2026, 1, nullptr, 7, "R1"}, {1, 2025, 2, "", 0, ""},
                      {1, 0, 0, "8", 0, ""},         {1, 0, 1, "KASSE", 0, ""},      {1, 0, 2, "W", 0, ""},
                      {1, 0, 0, "9999999", 0, ""},   {2, 0, 0, "70020", 0, ""},      {3, 2025, 2, "M", 0, ""},
                      {0, 0, 1, "", 0, ""},          {-1, 0, 0, "", 0, ""},          {4, 0, 2, "", 0, ""},
                      {4, 2025, 1, "MUSTER", 0, ""}, {8, 0, 0, "", 0, ""},           {8, 2025, 1, "", 0, ""},
                      {8, 0, 2, "", 0, nullptr},     {8, 0, 0, "200", 0, ""},        {8, 0, 0, "", 2, ""},
                      {8, 0, 2, "", 2, "R1"},        {8, 0, 0, "", 0, "R1"},         {8, 0, 1, "K11", 0, "R1"},
                      {8, 0, 0, "", 0, "R3"},        {8, 0, 0, "", 70000, ""},       {8, 2025, 0, "", 0, "R1"}};
  for (const Row &row : rows) {
    const int table = row.kind == 8 ? int(kKost) : row.kind == 1 ? int(kSachkonto) : row.kind == 4 ? 3 : 2;
    std::vector<Planned> expected;
    for (const Planned &account : model) {
      const std::string &by = row.order == 0 ? account.number : row.order == 1 ? account.shortName : account.name;
      if (account.table == table && account.year == (row.year ? row.year : 2026) && by >= (row.from ? row.from : "") &&
          (table != kKost || (account.dimension == row.dimension &&
                              (!row.reference || !*row.reference || account.reference == padded(row.reference)))))
        expected.push_back(account);
    }
    std::stable_sort(expected.begin(), expected.end(), [&](const Planned &a, const Planned &b) {
      if (row.order == 1 && a.shortName != b.shortName) return a.shortName < b.shortName;
      if (row.order == 2 && a.name != b.name) return a.name < b.name;
      return std::tie(a.number, a.dimension, a.reference) < std::tie(b.number, b.dimension, b.reference);
    });
    SCOPED_TRACE(std::to_string(row.kind) + " " + std::to_string(row.order) + " " + (row.from ? row.from : ""));
    ASSERT_EQ(ZELK_InitHoleSollwerte(1, row.kind, row.year, row.order, row.from, row.dimension, row.reference, 1),
              expected.empty() ? ZELK_keinKonto : ZELK_OK);
    for (size_t i = 0; i < expected.size(); ++i) {
      const Fetched got = fetch();
      ASSERT_EQ(got.line, expected[i].line);
      ASSERT_EQ(got.result, i + 1 < expected.size() ? ZELK_OK : ZELK_letzterDatensatz);
    }
    EXPECT_EQ(fetch().result, expected.empty() ? ZELKERR_keinInit : ZELKERR_keinDatensatz);
  }
  EXPECT_EQ(recorder.takeText(), "");
}

TEST_F(BudgetValues, AreRefused) {
  struct Row {
    int32_t client, year, order;
    ZelkResult result;
    const char *message;
  };
  static const Row rows[] = {{99, 2027, 3, ZELKERR_uzl_Sortierung, "Die Sortierung ist unzulässig!"},
                             {99, 2027, -1, ZELKERR_uzl_Sortierung, "Die Sortierung ist unzulässig!"},
                             {99, 2027, 0, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"},
                             {1, 2027, 0, ZELKERR_uzl_Zeitraum, "Der Zeitraum ist unzulässig!"},
                             {1, 2024, 0, ZELKERR_uzl_Zeitraum, "Der Zeitraum ist unzulässig!"},
                             {1, -1, 0, ZELKERR_uzl_Zeitraum, "Der Zeitraum ist unzulässig!"}};
  for (const Row &row : rows) {
    expectRefused(
        [&](int32_t flag) { return ZELK_InitHoleSollwerte(row.client, 1, row.year, row.order, "", 0, "", flag); },
        row.result, row.message);
    EXPECT_EQ(fetch().result, ZELKERR_keinInit);
  }
  ASSERT_EQ(ZELK_InitHoleSollwerte(1, 1, 0, 0, "", 0, "", 0), ZELK_OK);
  EXPECT_EQ(fetch(0).result, ZELKERR_uzl_Format);
  EXPECT_EQ(fetch(4).result, ZELKERR_uzl_Format);
  // A form that nothing is delivered in is not looked at.
  EXPECT_EQ(ZELK_HoleSollwerte(nullptr, nullptr, nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr),
            ZELK_OK);
  EXPECT_TRUE(nothingLocked(*other, 1));
}

TEST_F(BudgetValues, GoOnWhateverComesBetween) {
  plan(kDebitor);
  std::vector<std::string> expected;
  for (const Planned &account : model)
    if (account.year == 2025) expected.push_back(account.line);
  ASSERT_GT(expected.size(), 3u);
  ASSERT_EQ(ZELK_InitHoleSollwerte(1, 4, 2025, 0, "", 0, "", 0), ZELK_OK);
  for (size_t i = 0; i < expected.size(); ++i) {
    char balance[16];
    // Another client, another year; a record that is deleted after it was read.
    ASSERT_EQ(ZELK_HoleSaldo(2, "1020", 1, 0, 1, balance, nullptr, "", 0, ""), ZELK_OK);
    open(1, 2025);
    DATENBANK record{};
    uint8_t found = 0;
    const std::string number = expected[i].substr(0, expected[i].find(';'));
    ASSERT_TRUE(other->UsedGet(record, KeyBuilder().account(number), found, kDebitor) && found);
    ASSERT_TRUE(other->Delete(kDebitor));
    EXPECT_EQ(fetch().line, expected[i]);
  }
  EXPECT_EQ(fetch().result, ZELKERR_keinDatensatz);
  // Another fetch of the shared kind ends it, as does its end.
  ASSERT_EQ(ZELK_InitHoleSollwerte(1, 1, 0, 0, "", 0, "", 0), ZELK_OK);
  ASSERT_EQ(ZELK_InitHoleKonto(1, 1, 0, "", 0), ZELK_OK);
  EXPECT_EQ(fetch().result, ZELKERR_keinInit);
  ASSERT_EQ(ZELK_InitHoleSollwerte(1, 1, 0, 0, "", 0, "", 0), ZELK_OK);
  ZELK_SAKO account;
  EXPECT_EQ(ZELK_HoleSako(&account), ZELKERR_keinInit);
  ASSERT_EQ(ZELK_BeendeHolen(), ZELK_OK);
  EXPECT_EQ(fetch().result, ZELKERR_keinInit);
}

} // namespace
} // namespace test
