// Cost postings of a posting: given ones, those of cost templates, and mandatory cost centres.
#include "support/drafts.h"

namespace test {
namespace {

using namespace vldb98;

const std::string kSum = "-47 Der Gesamtbetrag der Kostenbuchungen entspricht nicht dem Nettobetrag der Buchung.",
                  kAmount = "-47 Der Kostenbuchungsbetrag ist unzulässig!",
                  kUnit = "-100 Der Einheitenwechsel ist unzulässig!", kKind = "-46 Die Kostenkennung ist unzulässig!",
                  kNone = "-23 Keine Kostenstelle gegeben",
                  kTime = "-97 Das Datum liegt ausserhalb der Laufzeitbeschränkung der Kostenstelle/des Kostenträgers "
                          "'600'.",
                  kPair = "-24 Die Kostenarten/Kostenstellen-Kombination ist nicht zulässig!",
                  kTwo = "-24 Bei einer Buchung zweier kostenpflichtiger Konten können keine Kostenstellen eingebucht "
                         "werden. Buchen Sie diese Buchung daher bitte in zwei Buchungen über ein Bilanz-Transitkonto, "
                         "welches nicht als Kostenart gekennzeichnet ist.",
                  kIncome = "-24 Bei einer GuV-Umbuchung können keine Kostenstellen eingebucht werden. Buchen Sie "
                            "diese Buchung daher bitte in zwei Buchungen über ein Bilanz-Transitkonto.",
                  kMandatory = "-24 Bei aktivierter Kostenstellenpflicht muss bei Buchungen auf GuV-Konten zumindest "
                               "eine Kostenstelle bebucht werden.",
                  kMandatoryTemplate =
                      "-24 Bei Buchungen auf GuV-Konten muss zumindest eine Kostenstelle bebucht werden. Dazu müssen "
                      "Sie eine Kostenschablone im GuV-Konto hinterlegen und die Kostenaufteilung mit <OK> "
                      "abschliessen. Bei laufzeitbeschränkten Kostenstellen muss die Buchung innerhalb der "
                      "Laufzeitbeschränkung liegen. Ist eine Kostenstellen/Kostenarten-Kombination angegeben, so muss "
                      "auch dies passen. Des weiteren darf der entsprechende Zeitraum in der MERKA KORE noch nicht "
                      "abgeschlossen sein.";

class PostingCosts : public PostingBooks {
protected:
  /// Centres, amounts and shares that are stored, or the refusal.
  std::string distribute(const Draft &draft, Way way) {
    std::string outcome = insert(draft, way);
    return outcome == "1" ? costsOf(last(draft)) : outcome;
  }
  void demandCostCentres() {
    change(1, kFistaExt, KeyBuilder().number(uint16_t(1)), [](auto &r) { r.FistaExt.Kostenstellenpflicht = 1; });
  }
  void setTemplate(const char *account, int32_t number) {
    change(1, kSachkonto, KeyBuilder().account(account), [=](auto &r) { r.Sachkonto.Kostenschablone = number; });
  }
};

TEST_F(PostingCosts, GivenOnesAreCheckedAndStored) {
  static const struct {
    DraftLine line;
    std::string outcome;
    const char *date = "210126";
  } rows[] = {
      {{"4120", "1200", "100", "", "", {{{"200"}, "100"}}}, "200:100,00/100,00%"},
      {{"1200", "4120", "-100", "", "", {{{"200"}, "-100"}}}, "200:-100,00/100,00%"},
      {{"4120", "1200", "100", "", "", {{{"200"}, "-50"}, {{"300"}, "150"}}}, "200:-50,00/-50,00% 300:150,00/150,00%"},
      {{"4120", "1200", "0", "", "", {{{"200"}, "-5"}, {{"300"}, "5"}}}, "200:-5,00/0,00% 300:5,00/0,00%"},
      {{"4120", "1200", "3", "", "", {{{"200"}, "1"}, {{"300"}, "2"}}}, "200:1,00/33,33% 300:2,00/66,67%"},
      {{"4120", "1200", "100", "", "", {{{"", "5001"}, "100"}}}, ".5001:100,00/100,00%"},
      {{"4120", "1200", "100", "", "", {{{"200", "5001", "NORD", "", "", ""}, "100"}}}, "200.5001.NORD:100,00/100,00%"},
      {{"4120", "1200", "100", "", "", {{{" 200"}, "100", 2, "-5", "Std"}, {{"300"}, "0", 1, "", "Std"}}},
       "200:100,00/100,00% 300:0,00/0,00%"},

      {{"4120", "1200", "100", "", "", {{{"999"}, "100"}}}, "-23 Die Kostenstelle 999 existiert nicht!"},
      {{"4120", "1200", "100", "", "", {{{"5001"}, "100"}}}, "-23 Die Kostenstelle 5001 existiert nicht!"},
      {{"4120", "1200", "100", "", "", {{{"200", "200"}, "100"}}}, "-23 Die Kostenstelle 200 existiert nicht!"},
      {{"4120", "1200", "100", "", "", {{{"200", "", "", "NORD"}, "100"}}},
       "-23 Die Kostenstelle NORD existiert nicht!"},
      {{"4120", "1200", "100", "", "", {{{"600", "999"}, "100"}}}, kTime, "280226"},
      {{"4120", "1200", "100", "", "", {{{"600"}, "100"}}}, "600:100,00/100,00%", "010326"},
      {{"4120", "1200", "100", "", "", {{{"600"}, "100"}}}, "600:100,00/100,00%", "300926"},
      {{"4120", "1200", "100", "", "", {{{"600"}, "100"}}}, kTime, "011026"},
      {{"4120", "1200", "100", "", "", {{{}, "100"}}}, kNone},
      {{"4120", "1200", "100", "", "", {{{" ", ""}, "100"}}}, kNone},
      {{"4120", "1200", "100", "", "", {{{"200"}, "100", 3}}}, kKind},
      {{"4120", "1200", "100", "", "", {{{"200"}, "100", -1}}}, kKind},
      {{"4120", "1200", "100", "", "", {{{"200"}, "100", 0, "1,2,3"}}}, "-99 Die Kostenbuchungsmenge ist unzulässig."},
      {{"4120", "1200", "100", "", "", {{{"200"}, "50", 0, "", "Std"}, {{"200"}, "50", 0, "", "kg"}}}, kUnit},
      {{"4120", "1200", "100", "", "", {{{"200"}, "50", 0, "", "Std"}, {{"200"}, "50"}}}, kUnit},
      {{"4120", "1200", "100", "", "", {{{"200"}, ""}}}, kAmount},
      {{"4120", "1200", "100", "", "", {{{"200"}, "100,005"}}}, kAmount},
      {{"4610", "1200", "100", "", "", {{{"200"}, "100"}}}, kPair},
      {{"4610", "1200", "100", "", "", {{{"400", "5001"}, "100"}}}, kPair},
      {{"4610", "1200", "100", "", "", {{{"400"}, "50"}, {{"420"}, "50"}}}, "400:50,00/50,00% 420:50,00/50,00%"},
      {{"1000", "1200", "100", "", "", {{{"200"}, "100"}}}, kPair},
      {{"4120", "1200", "100", "", "", {{{"200"}, "99,99"}}}, kSum},
      {{"4120", "1200", "100", "", "", {{{"200"}, "50"}, {{"300"}, "50,01"}}}, kSum},
      // The net amount counts.
      {{"4920", "70010", "119", "19", "", {{{"200"}, "119"}}}, kSum},
      {{"4920", "70010", "119", "19", "", {{{"200"}, "100"}}}, "200:100,00/100,00%"},
      {{"4535", "70010", "119", "19", "", {{{"200"}, "109,50"}}}, "200:109,50/100,00%"},
      {{"4120", "4190", "100", "", "", {{{"200"}, "100"}}}, kTwo},
      {{"4120", "8400", "100", "", "", {{{"200"}, "100"}}}, kIncome},
      {{"8400", "1200", "100", "", "", {{{"200"}, "100"}}}, kPair}};
  for (const auto &row : rows) {
    SCOPED_TRACE(testing::Message() << row.line.debit << '/' << row.line.credit << ' ' << &row - rows);
    EXPECT_EQ(distribute({1, 3, {row.line}, "", row.date}, Way::Pieces), row.outcome);
  }
  // One unit for all lines, and cost postings of several of them.
  Draft draft{1,
              3,
              {{"4120", "1200", "100", "", "", {{{"200"}, "100", 0, "1", "Std"}}},
               {"1000", "1200"},
               {"4130", "1200", "50", "", "", {{{"300"}, "20", 0, "1", "kg"}, {{"400"}, "30", 0, "1", "kg"}}}}};
  EXPECT_EQ(insert(draft, Way::Pieces), "-100 Teilbuchung 3: Der Einheitenwechsel ist unzulässig!");
  for (DraftCost &cost : draft.lines[2].costs)
    cost.unit = "Std";
  EXPECT_EQ(insert(draft, Way::Pieces), "1");
  EXPECT_EQ(costsOf(last(draft), 0) + " | " + costsOf(last(draft), 1) + " | " + costsOf(last(draft), 2),
            "200:100,00/100,00% |  | 300:20,00/40,00% 400:30,00/60,00%");
}

const std::string kSpace = "300:55,00/55,00% 410:30,00/30,00% 500:15,00/15,00%",
                  kGoods = "410.5001:40,00/40,00% 420.5001:33,33/33,33% 420.5002:26,67/26,67%";

TEST_F(PostingCosts, TemplatesDistributeTheNetAmount) {
  DATENBANK scan{};
  put(scan.DmsId.Id, "Scan");
  scan.DmsId.Kostenschablone = 1;
  uint8_t found;
  ASSERT_TRUE(other_->SetzeFista(1, found) && other_->Insert(scan, kDmsId));
  setTemplate("4650", 4);
  static const struct {
    DraftLine line;
    std::string outcome;
    const char *date = "210126", *document = "";
  } rows[] = {
      // The one of the line, which has to fit.
      {{"4210", "1200", "100", "", "", {}, 1}, kSpace},
      {{"1200", "4210", "100", "", "", {}, 1}, kSpace},
      {{"4210", "1200", "100", "", "", {}, 2}, "100:21,43/21,43% 200:14,28/14,28% 400:28,58/28,58% 500:35,71/35,71%"},
      {{"4210", "1200", "-0,05", "", "", {}, 1}, "300:-0,03/60,00% 410:-0,01/20,00% 500:-0,01/20,00%"},
      {{"4920", "1200", "119", "19", "", {}, 1}, kSpace},
      {{"4600", "1200", "100", "", "", {}, 1}, kSpace},
      {{"4210", "1200", "100", "", "", {}, 99}, "-82 Die angegebenen Kostenschablone existiert nicht."},
      {{"4210", "1200", "100", "", "", {}, 4}, kTime},
      {{"4210", "1200", "100", "", "", {}, 4}, "600:70,00/70,00% 300:30,00/30,00%", "210426"},
      {{"4610", "1200", "100", "", "", {}, 3}, kPair},
      {{"1000", "1200", "100", "", "", {}, 1}, kPair},
      {{"4120", "8400", "100", "", "", {}, 1}, kIncome},
      {{"4120", "4190", "100", "", "", {}, 1}, kTwo},
      // The account's, where it fits.
      {{"4600", "1200"}, kGoods},
      {{"1200", "4600"}, kGoods},
      {{"4600", "8400"}, ""},
      {{"4600", "4120"}, ""},
      {{"4650", "1200"}, ""},
      {{"4650", "1200"}, "600:70,00/70,00% 300:30,00/30,00%", "210426"},
      // The captured document's, which comes before the account's.
      {{"4210", "1200"}, kSpace, "210126", "Scan"},
      {{"4600", "1200"}, kSpace, "210126", "Scan"},
      {{"4600", "1200"}, kGoods, "210126", "Brief"},
      {{"4210", "1200", "100", "", "", {}, 3}, kGoods, "210126", "Scan"},
      {{"4610", "1200"}, "", "210126", "Scan"},
      {{"1000", "1200"}, "", "210126", "Scan"},
      {{"4210", "1200"}, "", "210126", "Brief"}};
  for (const auto &row : rows)
    for (Way way : {Way::Whole, Way::Pieces}) {
      SCOPED_TRACE(testing::Message() << row.line.debit << '/' << row.line.credit << ' ' << row.line.costTemplate << ' '
                                      << row.date);
      EXPECT_EQ(distribute({1, 3, {row.line}, "", row.date, "B-1", "", "", "", row.document}, way), row.outcome);
    }
  // Those that are given come before any template.
  DraftLine given{"4600", "1200", "100", "", "", {{{"200"}, "100"}}, 1};
  EXPECT_EQ(distribute({1, 3, {given}}, Way::Pieces), "200:100,00/100,00%");
  // The basic edition has no cost accounting: who asks for it is told, a default is left out, nothing is mandatory.
  setting("MFIBU", "Edition", "Basis");
  demandCostCentres();
  for (Way way : {Way::Whole, Way::Pieces}) {
    EXPECT_EQ(distribute({1, 3, {{"4210", "1200", "100", "", "", {}, 1}}}, way),
              "-24 In der Basisversion können keine Kostenstellen bebucht werden. Bitte übergeben Sie Ihre Buchungen "
              "ohne Kostenschablone.");
    EXPECT_EQ(distribute({1, 3, {{"4600", "1200"}}}, way), "");
    EXPECT_EQ(distribute({1, 3, {{"4120", "8400"}}}, way), "");
  }
}

TEST_F(PostingCosts, MandatoryCostCentres) {
  setTemplate("4650", 4);
  struct Row {
    DraftLine line;
    std::string whole, pieces; ///< where they are mandatory
    int32_t opening = 0, closing = 0;
  };
  const Row rows[] = {{{"4120", "1200"}, kMandatoryTemplate, kMandatory},
                      {{"10010", "8400"}, kMandatoryTemplate, kMandatory},
                      {{"4650", "1200"}, kMandatoryTemplate, kMandatory}, // its default does not fit
                      {{"4600", "1200"}, kGoods, kGoods},
                      {{"1200", "8400", "100", "", "", {}, 1}, kSpace, kSpace},
                      {{"1000", "1200"}, "", ""},
                      {{"4120", "8400"}, kIncome, kIncome},
                      {{"4120", "9000"}, "", kMandatory, 0, 1},
                      {{"4120", "8400"}, "", kIncome, 0, 1},
                      {{"4120", ""}, "", "", 1, 0}};
  for (bool mandatory : {false, true}) {
    if (mandatory) demandCostCentres();
    for (const Row &row : rows)
      for (Way way : {Way::Whole, Way::Pieces}) {
        // Opening postings are not built piece by piece.
        if (row.opening && way == Way::Pieces) continue;
        SCOPED_TRACE(row.line.debit + '/' + row.line.credit);
        Draft draft{1, 3, {row.line}, "", "210126"};
        draft.opening = row.opening, draft.closing = row.closing;
        // A template fits no account that bears no costs.
        if (!mandatory && row.line.costTemplate) continue;
        std::string expected = way == Way::Whole ? row.whole : row.pieces;
        EXPECT_EQ(distribute(draft, way), mandatory || expected[0] != '-' ? expected : "");
      }
  }
  // Any income-statement account bears costs then.
  EXPECT_EQ(distribute({1, 3, {{"1200", "8400", "100", "", "", {{{"200"}, "100"}}}}}, Way::Pieces),
            "200:100,00/100,00%");
}

} // namespace
} // namespace test
