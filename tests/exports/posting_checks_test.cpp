// The checks that any posting goes through: what each of them refuses, and what just passes.
#include <cstring>

#include "support/drafts.h"

namespace test {
namespace {

using namespace vldb98;

const std::string kNoClient = "-5 Der Mandant existiert nicht!", kNoBatch = "-6 Der Stapel existiert nicht!",
                  kDate = "-11 Das Buchungsdatum ist unzulässig!",
                  kCount = "-25 Die Anzahl der Teilbuchungen ist nicht korrekt!",
                  kTerm = "-27 Das angegebene Zahlungsziel ist unzulässig (Existenz?).",
                  kNoDebit = "-10 Die angegebene Sollkontonummer ist unzulässig.",
                  kNoCredit = "-10 Die angegebene Habenkontonummer ist unzulässig.",
                  kDebit = "-8 Die Sollkontonummer ist unzulässig!",
                  kCredit = "-9 Die Habenkontonummer ist unzulässig!",
                  kEqual = "-10 Soll- und Habenkontonummern sind gleich!",
                  kNoNumber = "-62 Bitte vergeben Sie eine Belegnummer!",
                  kOpening = "-10 Bei einer Eröffnungsbuchung muss eines der Konten leer übergeben werden (wird "
                             "ersetzt durch das entsprechende Saldovortragskonto)!",
                  kOpeningTax = "-14 Eine Eröffnungsbuchung muss steuerfrei sein!",
                  kGross = "-12 Der Bruttobetrag ist unzulässig!", kRate = "-13 Der Steuersatz ist unzulässig!",
                  kTax = "-14 Der Steuerbetrag ist unzulässig!";

using Change = std::function<void(Draft &)>;

void toSwiss(Draft &draft) {
  draft.client = draft.batch = 2;
  draft.lines[0].debit = "1020";
}
Change date(const char *day, bool swiss = false) {
  return [=](Draft &d) {
    if (swiss) toSwiss(d);
    d.date = day;
  };
}
Change line(DraftLine line) {
  return [=](Draft &d) { d.lines = {line}; };
}
Change kinds(const char *debit, int32_t debitKind, const char *credit, int32_t creditKind) {
  return line({debit, credit, "1", "", "", {}, 0, debitKind, creditKind});
}
Change opening(DraftLine line) {
  return [=](Draft &d) {
    d.lines = {line};
    d.opening = 1;
  };
}

struct Check {
  Change change; // to 1200 to 1000, 100,00, 21.01.2026
  std::string outcome;
};

const Check kChecks[] = {
    {[](Draft &d) { d.client = 99; }, kNoClient},
    {[](Draft &d) { d.client = 65537; }, kNoClient},
    {[](Draft &d) { d.batch = 11; }, kNoBatch},
    {[](Draft &d) { toSwiss(d), d.batch = 5; }, kNoBatch},
    {[](Draft &d) { d.batch = 10; }, "-6 Der angebene Stapel ist ein KORE-Stapel und daher unzulässig!"},
    {[](Draft &d) { d.batch = 9; }, "1"},

    {date(""), kDate},
    {date("310426"), kDate},
    {date("290225"), kDate},
    {date("21012"), kDate},
    {date("311224"), kDate},
    {date("010125"), "1"},
    {date("311226"), "1"},
    {date("010127"), kDate},
    {date("1.2.26"), kDate},
    {date("300625", true), kDate},
    {date("010725", true), "1"},
    {date("300627", true), "1"},
    {date("010727", true), kDate},

    {[](Draft &d) { d.lines.clear(); }, kCount},
    {[](Draft &d) { d.lines.resize(11, d.lines[0]); }, kCount},

    {opening({"1200", "1000"}), kOpening},
    {opening({"  ", ""}), kOpening},
    {opening({"1200", ""}), "1"},
    {opening({"   ", "1200"}), "1"},
    {opening({"1200", "", "1", "", "19,00"}), kOpeningTax},
    {opening({"8400", "", "1", "19,00"}), kOpeningTax},
    {opening({"1200", "", "1", "0,00", "0,00"}), "1"},
    {opening({"4999", ""}), kNoDebit},
    {opening({"9000", ""}), kEqual},

    {[](Draft &d) { d.slip = "210000000003139471430009017"; },
     "-60 Die Angabe einer ESR-Nummer (210000000003139471430009017) ist nur bei schweizer Mandanten gestattet!"},
    {[](Draft &d) { toSwiss(d), d.slip = "210000000003139471430009017"; }, "1"},
    {[](Draft &d) { toSwiss(d), d.slip = "210000000003139471430009018"; },
     "-60 Die angegeben ESR-Nummer '210000000003139471430009018' ist nicht korrekt!"},
    {[](Draft &d) { d.slip = "   "; }, "1"},

    {[](Draft &d) { d.term = 5; }, "1"},
    {[](Draft &d) { d.term = 6; }, kTerm},
    {[](Draft &d) { d.term = -1; }, kTerm},

    {line({"4999", "1000"}), kNoDebit},
    {line({"", "1000"}), kNoDebit},
    {line({"1200", "99999"}), kNoCredit},
    {kinds("1200", 1, "100", 8), kNoCredit}, // a cost centre
    {line({"27", "1000"}), "1"},
    {kinds(" 1200 ", 1, " 1000", 1), "1"},
    {line({"4964", "1200"}), "1"},
    {[](Draft &d) {
       d.lines = {{"4964", "1200"}}, d.date = "310125";
     },
     kNoDebit}, // an account of 2026
    {line({"70010", "10010"}), "1"},

    {[](Draft &d) { d.number = ""; }, kNoNumber},
    {[](Draft &d) { d.number = std::string(16, ' '); }, kNoNumber},
    {[](Draft &d) { d.valueDate = "311299"; }, "1"},
    {[](Draft &d) { d.valueDate = "    "; }, "1"},
    {[](Draft &d) { d.valueDate = "320126"; }, "-61 Das Valutadatum ist unzulässig!"},

    {line({"1200", "1200"}), kEqual},
    {line({"0027", "27"}), kEqual},
    {kinds("1200", 2, "1000", 1), kDebit},
    {kinds("1200", 0, "1000", 1), kDebit},
    {kinds("1200", 1, "1000", 4), kCredit},
    {kinds("10010", 2, "1000", 1), kDebit},
    {line({"1590", "1000"}), kDebit}, // locked accounts
    {line({"1200", "10180"}), kCredit},
    {line({"70140", "1200"}), kDebit},

    {line({"1200", "1000", "999999999-99"}), "1"},
    {line({"1200", "1000", "1000000000"}), kGross},
    {line({"1200", "1000", ""}), "1"},
    {line({"1200", "1000", "1.234.567,89"}), "1"},
    {line({"1200", "1000", "12,505"}), kGross},
    {line({"1200", "1000", "1 234,00"}), kGross},
    {line({"1200", "1000", "1", "19,0x"}), kRate},
    {line({"1200", "1000", "1", "-1"}), kRate},
    {line({"1200", "1000", "1", "100"}), kRate},
    {line({"1200", "1000", "1", "", "1,2,3"}), kTax}};

using PostingChecks = PostingBooks;

TEST_F(PostingChecks, RefuseAndPass) {
  for (const Check &check : kChecks)
    for (Way way : {Way::Whole, Way::Pieces}) {
      Draft draft{1, 3, {{"1200", "1000"}}};
      check.change(draft);
      // Only a record can be an opening posting, and only pieces have room for more than ten lines.
      if (way == Way::Pieces && (draft.opening || draft.lines.size() > 10)) continue;
      SCOPED_TRACE(testing::Message() << "row " << &check - kChecks << (way == Way::Pieces ? ", in pieces" : ""));
      EXPECT_EQ(insert(draft, way), check.outcome);
    }
  ZELK_SPLITBUCHUNG posting = validSplit(1);
  for (int32_t count : {-1, INT32_MAX}) {
    posting.Teilbuchungsanzahl = count;
    EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), ZELKERR_uzl_Teilbuchungsanzahl) << count;
  }
  EXPECT_EQ(recorder.takeText(), "") << "without the flag";
}

TEST_F(PostingChecks, OfClosedYears) {
  change(1, kGeschaeftsjahr, KeyBuilder().number(int16_t(2025)), [](auto &r) { r.Geschaeftsjahr.Abgeschlossen = 1; });
  static const struct {
    const char *setting, *day;
    std::string outcome;
  } rows[] = {{"", "311225", kDate}, {"", "010126", "1"},    {"J", "311225", kDate},
              {"j", "311225", "1"},  {"j", "311224", kDate}, {"j", "010127", kDate}};
  for (const auto &row : rows) {
    setting("MFIBU", "NoGejaCheck", row.setting);
    EXPECT_EQ(insert({1, 3, {{"1200", "1000"}}, "", row.day}, Way::Whole), row.outcome)
        << row.setting << ' ' << row.day;
  }
}

struct TextField {
  size_t offset, width;
};
#define TEXT_FIELD(record, field)                                                                                      \
  TextField {                                                                                                          \
    offsetof(record, field), sizeof(record::field)                                                                     \
  }
#define LINE_FIELD(index, field)                                                                                       \
  TextField {                                                                                                          \
    offsetof(ZELK_SPLITBUCHUNG, Teilbuchung) + index * sizeof(ZELK_TEILBUCHUNG) + offsetof(ZELK_TEILBUCHUNG, field),   \
        sizeof(ZELK_TEILBUCHUNG::field)                                                                                \
  }

/// Every field without its end, in the order in which they are looked at.
template <class Record, class Insert>
void expectOverflows(Recorder &recorder, Record valid, const std::vector<TextField> &fields, Insert insert) {
  // Before the client is opened.
  valid.Mandantennummer = 99;
  for (size_t i = 0; i < fields.size(); ++i) {
    Record posting = valid;
    char *bytes = reinterpret_cast<char *>(&posting);
    for (size_t j = fields.size(); j-- > i;)
      std::memset(bytes + fields[j].offset, 'a' + int(j % 26), fields[j].width);
    EXPECT_EQ(insert(posting, 0), ZELKERR_Ueberlauf) << i;
    EXPECT_EQ(recorder.takeText(), "") << i;
    EXPECT_EQ(insert(posting, 1), ZELKERR_Ueberlauf) << i;
    EXPECT_EQ(recorder.takeText(), "Der Text '" + std::string(fields[i].width, char('a' + i % 26)) +
                                       "' hat in der Struktur einen Überlauf verursacht. Die maximale Länge (" +
                                       std::to_string(fields[i].width - 1) + " Zeichen) wurde überschritten.");
    bytes[fields[i].offset + fields[i].width - 1] = 0;
    for (size_t j = i + 1; j < fields.size(); ++j)
      bytes[fields[j].offset] = 0;
    EXPECT_EQ(insert(posting, 0), ZELKERR_uzl_Mandnr) << i << ": the whole width but the end";
  }
}

TEST_F(PostingChecks, TextsMustEndWithinTheirWidth) {
  using B = ZELK_BUCHUNG;
  using S = ZELK_SPLITBUCHUNG;
  // The last one of a single posting is found by the split posting that it becomes.
  expectOverflows(recorder, validPosting(),
                  {TEXT_FIELD(B, Belegdatum), TEXT_FIELD(B, Belegnummer), TEXT_FIELD(B, Text), TEXT_FIELD(B, Text2),
                   TEXT_FIELD(B, Sollkonto), TEXT_FIELD(B, Habenkonto), TEXT_FIELD(B, Bruttobetrag),
                   TEXT_FIELD(B, Steuersatz), TEXT_FIELD(B, Steuerbetrag), TEXT_FIELD(B, OPBelegnummer),
                   TEXT_FIELD(B, Valutadatum), TEXT_FIELD(B, Waehrung), TEXT_FIELD(B, ESR), TEXT_FIELD(B, DMSID)},
                  [](const B &posting, int32_t flag) { return ZELK_BuchungEinfuegen(&posting, flag); });
  std::vector<TextField> fields = {TEXT_FIELD(S, Belegdatum),  TEXT_FIELD(S, Belegnummer), TEXT_FIELD(S, OPBelegnummer),
                                   TEXT_FIELD(S, Valutadatum), TEXT_FIELD(S, Waehrung),    TEXT_FIELD(S, ESR),
                                   TEXT_FIELD(S, DMSID)};
  for (int index : {0, 1, 9})
    for (const TextField &field : {LINE_FIELD(index, Sollkonto), LINE_FIELD(index, Habenkonto),
                                   LINE_FIELD(index, Bruttobetrag), LINE_FIELD(index, Steuersatz),
                                   LINE_FIELD(index, Steuerbetrag), LINE_FIELD(index, Text), LINE_FIELD(index, Text2)})
      fields.push_back(field);
  auto insert = [](const S &posting, int32_t flag) { return ZELK_SplitBuchungEinfuegen(&posting, flag); };
  expectOverflows(recorder, validSplit(10), fields, insert);
  S posting = validSplit(2);
  std::memset(&posting.Teilbuchung[2], 'x', 8 * sizeof(ZELK_TEILBUCHUNG));
  EXPECT_EQ(insert(posting, 1), ZELK_OK) << "lines that are not used";
  EXPECT_EQ(recorder.takeText(), "");
}

} // namespace
} // namespace test
