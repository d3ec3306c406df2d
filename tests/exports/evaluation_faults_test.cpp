// Store operations that fail under the functions that deliver figures: -3, nothing delivered, nothing locked, and the
// next call as good as ever.
#include "support/figure_books.h"

namespace test {
namespace {

using namespace vldb98;

char delivered[3][16];

struct Scenario {
  const char *name;
  std::function<void()> prepare;
  std::function<ZelkResult()> call;
};

void nothing() {}
const std::function<ZelkResult()> nextBudget = [] {
  return ZELK_HoleSollwerte(nullptr, nullptr, nullptr, 1, delivered[0], nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, delivered[1], nullptr);
};

const Scenario kScenarios[] = {
    {"HoleUmsatz of another year", nothing,
     [] {
       return ZELK_HoleUmsatz(1, "1000", 1, 18, 2025, 1, 1, delivered[0], nullptr, delivered[1], nullptr, nullptr,
                              delivered[2], 0, nullptr);
     }},
    {"HoleSaldo", nothing,
     [] { return ZELK_HoleSaldo(1, "100", 8, 1, 1, delivered[0], delivered[1], nullptr, 0, nullptr); }},
    {"HoleSaldo on a day", nothing,
     [] { return ZELK_HoleSaldo(1, "1000", 1, 1, 1, delivered[0], delivered[1], "150625", 0, nullptr); }},
    {"HoleSaldo of a cost centre on a day", nothing,
     [] { return ZELK_HoleSaldo(1, "100", 8, 1, 1, delivered[0], delivered[1], "150626", 0, nullptr); }},
    {"HoleKostenSaldo", nothing,
     [] { return ZELK_HoleKostenSaldo(1, "100", "4210", 3, 17, 2025, 1, 1, delivered[0], 0, "R"); }},
    {"InitHoleSollwerte", nothing, [] { return ZELK_InitHoleSollwerte(1, 8, 2025, 2, "", 1, "", 1); }},
    {"HoleSollwerte", [] { ZELK_InitHoleSollwerte(1, 8, 2025, 0, "", 1, "", 0); }, nextBudget},
    {"InitHoleAufbau", nothing, [] { return ZELK_InitHoleAufbau(1, 3, 1); }},
    {"HoleAufbau", [] { ZELK_InitHoleAufbau(1, 3, 0); },
     [] { return ZELK_HoleAufbauID(nullptr, delivered[0], nullptr, delivered[1]); }}};

using FaultyFigures = FigureBooks;

TEST_F(FaultyFigures, LeaveNoTrace) {
  for (int32_t number : {1, 2, 3, 4, 5}) {
    AUFBAU line{};
    line.Nr = number;
    line.Vater = number == 3 ? 2 : 1;
    line.Kind = number == 1 ? 2 : number == 2 ? 3 : 0;
    line.Naechste = number == 2 ? 4 : number == 4 ? 5 : 0;
    line.Flags = number == 4 ? 4 : 1;
    put(line.Name, "100");
    insert(&DATENBANK::Aufbau, line, kStructureTables[3]);
  }
  KOSTENBELEG cost{};
  for (auto field : {&KOSTENBELEG::Kostenstelle1, &KOSTENBELEG::Kostenstelle2, &KOSTENBELEG::Kostenstelle3,
                     &KOSTENBELEG::Kostenstelle4, &KOSTENBELEG::Kostenstelle5, &KOSTENBELEG::Kostenstelle6})
    put(cost.*field, padded("100"));
  put(cost.Kostenart, padded("4210"));
  for (int year : {2025, 2026}) {
    open(1, year);
    put(cost.Datum, std::to_string(year - 1980) + "0610");
    insert(&DATENBANK::Kostenbeleg, cost, kKostenbeleg);
  }
  Faults faults;
  for (const Scenario &scenario : kScenarios) {
    SCOPED_TRACE(scenario.name);
    auto prepare = [&] {
      scenario.prepare();
      for (auto &buffer : delivered)
        put(buffer, "?");
    };
    prepare();
    const ZelkResult expected = scenario.call();
    const auto [operations, last] = sweep(faults, prepare, scenario.call, [&](ZelkResult result) {
      EXPECT_EQ(result, ZELKERR_Datenbank);
      for (const auto &buffer : delivered)
        EXPECT_STREQ(buffer, "?");
      EXPECT_EQ(recorder.takeText(), "");
      EXPECT_TRUE(nothingLocked(*other, 1));
      scenario.prepare();
      EXPECT_EQ(scenario.call(), expected);
    });
    EXPECT_EQ(last, expected);
    EXPECT_TRUE(expected > 0 && operations > 0);
  }
}

} // namespace
} // namespace test
