// The order of the checks: of two that a posting breaks, the earlier one names the code.
#include "support/drafts.h"

namespace test {
namespace {

using namespace vldb98;

struct Check {
  const char *name;
  std::function<void(Draft &)> change;
  const char *outcome; ///< begins so
};

DraftLine &first(Draft &draft) {
  return draft.lines[0];
}
DraftLine &second(Draft &draft) {
  return draft.lines[1];
}
DraftCost &cost(Draft &draft) {
  return draft.lines[1].costs[0];
}

// In the order of the checks. None undoes another that stands before it.
const Check kOrder[] = {
    {"client", [](Draft &d) { d.client = 99; }, "-5 "},
    {"batch", [](Draft &d) { d.batch = 99; }, "-6 Der Stapel"},
    {"date", [](Draft &d) { d.date = "310426"; }, "-11 "},
    {"line count", [](Draft &d) { d.lines.clear(); }, "-25 "},
    {"opening", [](Draft &d) { d.opening = 1; }, "-10 Teilbuchung 1: Bei einer"},
    {"payment slip", [](Draft &d) { d.slip = "1"; }, "-60 "},
    {"split", [](Draft &d) { second(d).credit = "1000"; }, "-26 "},
    {"payment term", [](Draft &d) { d.term = 99; }, "-27 "},
    {"currency", [](Draft &d) { d.currency = "12"; }, "-83 "},
    {"debit account", [](Draft &d) { first(d).debit = "4999"; }, "-10 Die angegebene Sollkontonummer"},
    {"credit account", [](Draft &d) { first(d).credit = second(d).credit = "4998"; },
     "-10 Die angegebene Habenkontonummer"},
    {"account's currency", [](Draft &d) { d.currency = "USD", first(d).debit = "1030"; }, "-63 Die Währung"},
    {"document number", [](Draft &d) { d.number = ""; }, "-62 "},
    {"value date", [](Draft &d) { d.valueDate = "x"; }, "-61 "},
    {"first line", [](Draft &d) { first(d).costTemplate = 99; }, "-82 Teilbuchung 1: "},
    {"rate of exchange", [](Draft &d) { d.currency = "GBP"; }, "-65 "},
    {"equal accounts", [](Draft &d) { second(d).debit = "1020"; }, "-10 Teilbuchung 2: Soll- und"},
    {"debit kind", [](Draft &d) { second(d).debitKind = 8; }, "-8 Teilbuchung 2: "},
    {"credit kind", [](Draft &d) { second(d).creditKind = 0; }, "-9 Teilbuchung 2: "},
    {"line's currency", [](Draft &d) { d.currency = "USD", second(d).debit = "1030"; }, "-63 Teilbuchung 2: "},
    {"gross", [](Draft &d) { second(d).gross = "x"; }, "-12 Teilbuchung 2: Der Bruttobetrag ist"},
    {"rate", [](Draft &d) { second(d).rate = "x"; }, "-13 Teilbuchung 2: Der Steuersatz ist"},
    {"tax", [](Draft &d) { second(d).tax = "x"; }, "-14 Teilbuchung 2: Der Steuerbetrag ist"},
    {"template", [](Draft &d) { second(d).costTemplate = 99; }, "-82 Teilbuchung 2: "},
    {"own gross", [](Draft &d) { second(d).ownGross = "x"; }, "-12 Teilbuchung 2: Der Bruttobetrag (EW)"},
    {"own tax", [](Draft &d) { second(d).ownTax = "x"; }, "-14 Teilbuchung 2: Der Steuerbetrag (EW)"},
    {"no tax", [](Draft &d) { second(d).debit = "5000", second(d).tax = ""; }, "-13 Teilbuchung 2: In dieser Buchung"},
    {"rate of the key", [](Draft &d) { second(d).rate = "5"; }, "-13 Teilbuchung 2: Der Steuersatz ist"},
    {"fitting tax", [](Draft &d) { second(d).tax = "1"; }, "-14 Teilbuchung 2: Der angegebene"},
    {"sign", [](Draft &d) { second(d).gross = "0,01", second(d).tax = "0,05"; },
     "-14 Teilbuchung 2: Der Steuerbetrag ist"},
    {"fitting own tax", [](Draft &d) { second(d).ownGross = "100", second(d).ownTax = "50"; },
     "-14 Teilbuchung 2: Der Steuerbetrag (EW)"},
    {"centre", [](Draft &d) { cost(d).centres = {"99"}; }, "-23 Teilbuchung 2: Die Kostenstelle"},
    {"running time", [](Draft &d) { cost(d).centres = {"40"}, d.date = "010526"; }, "-97 Teilbuchung 2: "},
    {"no centre", [](Draft &d) { cost(d).centres = {}; }, "-23 Teilbuchung 2: Keine"},
    {"cost kind", [](Draft &d) { cost(d).kind = 3; }, "-46 Teilbuchung 2: "},
    {"quantity", [](Draft &d) { cost(d).quantity = "x"; }, "-99 Teilbuchung 2: "},
    {"unit", [](Draft &d) { cost(d).unit = "kg"; }, "-100 Teilbuchung 2: "},
    {"cost amount", [](Draft &d) { cost(d).amount = "x"; }, "-47 Teilbuchung 2: Der Kostenbuchungsbetrag"},
    {"combination", [](Draft &d) { cost(d).centres = {"30"}; }, "-24 Teilbuchung 2: Die Kostenarten"},
    {"sum", [](Draft &d) { cost(d).amount = "99,99"; }, "-47 Teilbuchung 2: Der Gesamtbetrag"}};

Draft valid() {
  Draft draft{2,
              2,
              {{"6500", "1020", "108,10", "8,1", "", {{{"10"}, "100", 0, "1", "Std"}}},
               {"4200", "1020", "108,10", "8,1", "", {{{"20"}, "100", 0, "1", "Std"}}}},
              "EUR"};
  draft.ex = true;
  return draft;
}

using PostingOrder = PostingBooks;

TEST_F(PostingOrder, OfTheChecks) {
  uint8_t found;
  DATENBANK pair{};
  put(pair.Kombination.Kostenart, "4200   ");
  put(pair.Kombination.Kostenstelle, "20     ");
  ASSERT_TRUE(other_->SetzeFista(2, found) && other_->Insert(pair, kKombination));
  std::string before = dumpAll();
  for (const Check *earlier = std::begin(kOrder); earlier != std::end(kOrder); ++earlier)
    for (const Check *later = earlier; later != std::end(kOrder); ++later) {
      Draft draft = valid();
      later->change(draft);
      if (draft.lines.empty() && earlier != later) continue;
      earlier->change(draft);
      ZelkResult result = draft.opening ? insertWhole(draft) : insertInPieces(draft);
      std::string outcome = std::to_string(result) + ' ' + recorder.takeText();
      EXPECT_EQ(outcome.substr(0, std::string(earlier->outcome).size()), earlier->outcome)
          << earlier->name << ", " << later->name;
    }
  EXPECT_EQ(dumpAll(), before);
  EXPECT_TRUE(nothingLocked(*other_, 2));
  EXPECT_EQ(insert(valid(), Way::Pieces), "1");
}

} // namespace
} // namespace test
