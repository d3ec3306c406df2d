// The shape of a posting of several lines.
#include "support/drafts.h"

namespace test {
namespace {

using Splits = PostingBooks;

const std::string kFirst = "-26 Bei einer Splitbuchung müssen im ersten Split beide Kontonummern angegeben werden!",
                  kOneSide = "-26 Bei einer Splitbuchung muss entweder das Soll- oder das Habenkonto jeder "
                             "Teilbuchung gleich sein!",
                  kPersonal = "-26 Auf der gesplitteten Seite darf kein Personenkonto vorkommen!",
                  kCredit = "-9 Teilbuchung 2: Die Habenkontonummer ist unzulässig!",
                  kOpening = "-10 Teilbuchung 2: Bei einer Eröffnungsbuchung muss eines der Konten leer übergeben "
                             "werden (wird ersetzt durch das entsprechende Saldovortragskonto)!";

DraftLine ofKinds(const char *debit, int32_t debitKind, const char *credit, int32_t creditKind) {
  return {debit, credit, "1", "", "", {}, 0, debitKind, creditKind};
}

TEST_F(Splits, HaveOneSideThatStays) {
  static const struct {
    std::vector<DraftLine> lines;
    std::string outcome;
  } rows[] = {{{{"1200", "1000"}, {"1200", "1010"}}, "1"},
              {{{"1000", "1200"}, {"1010", "1200"}, {"1360", "1200"}}, "1"},
              {{{"1200", "1000"}, ofKinds(" 1200", 1, "1010", 1)}, "1"},
              {{{"27", "1000"}, {"0027", "1010"}}, "1"},
              {{{"1200", "1000"}, {"1210", "1010"}}, kOneSide},
              {{{"1200", "1000"}, {"1000", "1200"}}, kOneSide},
              {{{"1200", "1000"}, {"1200", "1010"}, {"1210", "1000"}}, kOneSide},
              {{{"", "1000"}, {"1200", "1000"}}, kFirst},
              {{{"1200", " "}, {"1200", "1000"}}, kFirst},
              {{{"1200", "1000"}, {"", "1000"}}, "-8 Teilbuchung 2: Die Sollkontonummer ist unzulässig!"},
              // A personal account on the side that stays, and on the other one.
              {{{"10010", "1000"}, {"10010", "1010"}}, "1"},
              {{{"1000", "70010"}, {"1010", "70010"}}, "1"},
              {{{"10010", "1000"}, {"10020", "1000"}}, kPersonal},
              {{{"1000", "1200"}, {"1000", "70010"}}, kPersonal},
              {{{"10010", "70010"}, {"10010", "1000"}}, kPersonal},
              // Both sides stay: a personal account on one of them is no matter.
              {{{"10010", "1000"}, {"10010", "1000"}}, "1"},
              {{{"10010", "70010"}, {"10010", "70010"}}, kPersonal},
              // The kinds that the posting names count here; that they are wrong is found later.
              {{{"1200", "1000"}, ofKinds("1200", 1, "1010", 4)}, kPersonal},
              {{{"1200", "1000"}, ofKinds("1200", 1, "10010", 1)}, kCredit},
              {{{"1200", "1000"}, {"1200", "4998"}}, kCredit},
              // A refusal in the last line leaves nothing, not even for the posting after it.
              {{{"1200", "1000"}, {"1200", "1010"}, {"1200", "1210", "viel"}},
               "-12 Teilbuchung 3: Der Bruttobetrag ist unzulässig!"},
              {{{"1200", "1000"}}, "1"}};
  for (const auto &row : rows)
    for (Way way : {Way::Whole, Way::Pieces}) {
      Draft draft{1, 3, row.lines};
      SCOPED_TRACE(testing::Message() << "row " << &row - rows);
      EXPECT_EQ(insert(draft, way), row.outcome);
      EXPECT_TRUE(row.outcome != "1" || last(draft).lines.size() == row.lines.size());
    }
}

TEST_F(Splits, OpeningsGiveOneAccountInEachLine) {
  static const struct {
    std::vector<DraftLine> lines;
    std::string outcome, debit, credit;
  } rows[] = {{{{"1000", ""}, {"1200", ""}}, "1", "1200", "9000"},
              {{{"", "1000"}, {"", "1200"}}, "1", "9000", "1200"},
              {{{"1000", ""}, {"1200", "1010"}}, kOpening, "", ""},
              {{{"1000", ""}, {"", ""}}, kOpening, "", ""},
              // Different kinds have different balance-forward accounts, so that no side stays.
              {{{"1000", ""}, {"10010", ""}}, kOneSide, "", ""}};
  for (const auto &row : rows) {
    Draft draft{1, 3, row.lines};
    draft.opening = 1;
    EXPECT_EQ(insert(draft, Way::Whole), row.outcome);
    if (row.outcome != "1") continue;
    vldb98::SPLIT line = last(draft).lines.at(1);
    EXPECT_EQ(line.Sollkonto, row.debit + "   ");
    EXPECT_EQ(line.Habenkonto, row.credit + "   ");
  }
}

} // namespace
} // namespace test
