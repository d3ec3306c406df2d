// Postings of several lines.
#include "support/books.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using namespace vldb98;

using Splits = Books;

const char kFirst[] = "Bei einer Splitbuchung müssen im ersten Split beide Kontonummern angegeben werden!",
           kOneSide[] =
               "Bei einer Splitbuchung muss entweder das Soll- oder das Habenkonto jeder Teilbuchung gleich sein!",
           kPersonal[] = "Auf der gesplitteten Seite darf kein Personenkonto vorkommen!";

struct Line {
  const char *debit;
  int32_t debitKind;
  const char *credit;
  int32_t creditKind;
};

void setLines(ZELK_SPLITBUCHUNG &posting, const std::vector<Line> &lines) {
  posting.Teilbuchungsanzahl = int32_t(lines.size());
  for (size_t i = 0; i < lines.size(); ++i) {
    ZELK_TEILBUCHUNG &line = posting.Teilbuchung[i];
    put(line.Sollkonto, lines[i].debit);
    line.Sollart = lines[i].debitKind;
    put(line.Habenkonto, lines[i].credit);
    line.Habenart = lines[i].creditKind;
  }
}

TEST_F(Splits, HaveOneSideThatStays) {
  static const struct {
    std::vector<Line> lines;
    ZelkResult result;
    const char *message;
  } rows[] = {
      {{{"1200", 1, "1000", 1}, {"1200", 1, "1010", 1}}, 1, ""},
      {{{"1000", 1, "1200", 1}, {"1010", 1, "1200", 1}, {"1360", 1, "1200", 1}}, 1, ""},
      {{{"1200", 1, "1000", 1}, {" 1200", 1, "1010", 1}}, 1, ""},
      {{{"1200", 1, "1000", 1}, {"1200", 1, "1000", 1}}, 1, ""},
      {{{"1200", 1, "1000", 1}, {"1210", 1, "1010", 1}}, -26, kOneSide},
      {{{"1200", 1, "1000", 1}, {"1000", 1, "1200", 1}}, -26, kOneSide},
      {{{"1200", 1, "1000", 1}, {"1200", 1, "1010", 1}, {"1210", 1, "1000", 1}}, -26, kOneSide},
      {{{"", 1, "1000", 1}, {"1200", 1, "1000", 1}}, -26, kFirst},
      {{{"1200", 1, " ", 1}, {"1200", 1, "1000", 1}}, -26, kFirst},
      {{{"1200", 1, "1000", 1}, {"", 1, "1000", 1}}, -8, "Teilbuchung 2: Die Sollkontonummer ist unzulässig!"},
      // A personal account on the side that stays, and on the other one.
      {{{"10010", 4, "1000", 1}, {"10010", 4, "1010", 1}}, 1, ""},
      {{{"1000", 1, "70010", 2}, {"1010", 1, "70010", 2}}, 1, ""},
      {{{"10010", 4, "1000", 1}, {"10020", 4, "1000", 1}}, -26, kPersonal},
      {{{"1000", 1, "1200", 1}, {"1000", 1, "70010", 2}}, -26, kPersonal},
      {{{"70010", 2, "1200", 1}, {"1000", 1, "1200", 1}}, -26, kPersonal},
      {{{"10010", 4, "70010", 2}, {"10010", 4, "1000", 1}}, -26, kPersonal},
      // Both sides stay: a personal account on one of them is no matter.
      {{{"10010", 4, "1000", 1}, {"10010", 4, "1000", 1}}, 1, ""},
      {{{"1000", 1, "10010", 4}, {"1000", 1, "10010", 4}}, 1, ""},
      {{{"10010", 4, "70010", 2}, {"10010", 4, "70010", 2}}, -26, kPersonal},
      // The kinds that the posting names count here; that they are wrong is found later.
      {{{"1200", 1, "1000", 1}, {"1200", 1, "1010", 4}}, -26, kPersonal},
      {{{"1200", 1, "1000", 1}, {"1200", 1, "10010", 1}}, -9, "Teilbuchung 2: Die Habenkontonummer ist unzulässig!"},
      {{{"1200", 1, "1000", 1}, {"1200", 1, "4998", 1}}, -9, "Teilbuchung 2: Die Habenkontonummer ist unzulässig!"},
      {{{"1200", 1, "1000", 1}, {"1200", 1, "1010", 1}, {"1200", 1, "1200", 1}},
       -10,
       "Teilbuchung 3: Soll- und Habenkontonummern sind gleich!"}};
  auto other = session(std::chrono::milliseconds(0));
  for (const auto &row : rows) {
    ZELK_SPLITBUCHUNG posting = validSplit(int(row.lines.size()));
    setLines(posting, row.lines);
    std::string trace = std::string(row.lines[0].debit) + '/' + row.lines[0].credit + ' ' + row.lines[1].debit + '/' +
                        row.lines[1].credit;
    std::string before = dump(*other, 1, {kStapel, kBatchbuchung, kSplit});
    EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 1), row.result) << trace;
    EXPECT_EQ(recorder.takeText(), row.message) << trace;
    EXPECT_EQ(dump(*other, 1, {kStapel, kBatchbuchung, kSplit}) == before, row.result != ZELK_OK) << trace;
    EXPECT_TRUE(nothingLocked(*other, 1)) << trace;
  }
}

TEST_F(Splits, HaveUpToTenLines) {
  for (int count = 1; count <= 10; ++count) {
    ZELK_SPLITBUCHUNG posting = validSplit(count);
    ASSERT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), ZELK_OK);
  }
  auto all = postingsOf(1, 3);
  ASSERT_EQ(all.size(), 10u);
  for (int count = 1; count <= 10; ++count) {
    const ZELK_SPLITBUCHUNG &read = all[size_t(count - 1)];
    ZELK_SPLITBUCHUNG given = validSplit(count);
    EXPECT_EQ(+read.Teilbuchungsanzahl, count);
    for (int i = 0; i < 10; ++i) {
      EXPECT_STREQ(read.Teilbuchung[i].Habenkonto, given.Teilbuchung[i].Habenkonto) << count << ' ' << i;
      EXPECT_STREQ(read.Teilbuchung[i].Text, given.Teilbuchung[i].Text) << count << ' ' << i;
      EXPECT_EQ(read.Teilbuchung[i].Bruttobetrag, i < count ? "000000" + std::to_string(100 + i) + ",00" : "") << count;
    }
  }
}

TEST_F(Splits, OpeningsGiveOneAccountInEachLine) {
  static const struct {
    std::vector<Line> lines;
    ZelkResult result;
    const char *message;
  } rows[] = {{{{"1000", 1, "", 0}, {"1200", 1, "", 0}}, 1, ""},
              {{{"", 0, "1000", 1}, {"", 0, "1200", 1}}, 1, ""},
              {{{"1000", 1, "", 0}, {"1200", 1, "1010", 1}}, -10, "Teilbuchung 2: "},
              {{{"1000", 1, "", 0}, {"", 1, "", 1}}, -10, "Teilbuchung 2: "},
              // Different kinds have different balance-forward accounts, so that no side stays.
              {{{"1000", 1, "", 0}, {"10010", 4, "", 0}}, -26, kOneSide}};
  for (const auto &row : rows) {
    ZELK_SPLITBUCHUNG posting = validSplit(2);
    posting.Eroeffnungsbuchung = 1;
    setLines(posting, row.lines);
    EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 1), row.result);
    EXPECT_EQ(recorder.takeText().rfind(row.message, 0), 0u);
  }
  auto all = postingsOf(1, 3);
  ASSERT_EQ(all.size(), 2u);
  for (int i : {0, 1}) {
    EXPECT_STREQ(all[0].Teilbuchung[i].Habenkonto, "9000");
    EXPECT_STREQ(all[1].Teilbuchung[i].Sollkonto, "9000");
  }
}

TEST_F(Splits, RefusedInTheLastLineLeaveNothing) {
  auto other = session(std::chrono::milliseconds(0));
  std::string before = dump(*other, 1, {kStapel, kBatchbuchung, kSplit, kKobu});
  ZELK_SPLITBUCHUNG posting = validSplit(10);
  put(posting.Teilbuchung[9].Bruttobetrag, "viel");
  EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 1), ZELKERR_uzl_Bruttobetrag);
  EXPECT_EQ(recorder.takeText(), "Teilbuchung 10: Der Bruttobetrag ist unzulässig!");
  EXPECT_EQ(dump(*other, 1, {kStapel, kBatchbuchung, kSplit, kKobu}), before);
  // The lines of the refused posting are not in the next one.
  posting = validSplit(1);
  EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 1), ZELK_OK);
  ASSERT_EQ(postingsOf(1, 3).size(), 1u);
  EXPECT_EQ(+postingsOf(1, 3)[0].Teilbuchungsanzahl, 1);
}

} // namespace
} // namespace test
