// The checks that a posting goes through: what each of them refuses, what just passes, and their order.
#include <cstring>

#include "support/books.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using namespace vldb98;

constexpr std::initializer_list<int> kAll = {kStapel, kBatchbuchung, kSplit, kKobu, kDmsId, kSachkonto};

class PostingChecks : public Books {
protected:
  /// Inserts without and with messages, and sees that a refusal changes nothing and leaves nothing locked.
  void expect(const ZELK_SPLITBUCHUNG &posting, ZelkResult result, const std::string &message) {
    uint16_t client = posting.Mandantennummer == 2 ? 2 : 1;
    std::string before = dump(*other_, client, kAll);
    EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), result);
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, -1), result);
    EXPECT_EQ(recorder.takeText(), message);
    EXPECT_EQ(dump(*other_, client, kAll) == before, result != ZELK_OK);
    EXPECT_TRUE(nothingLocked(*other_, client));
  }

  std::unique_ptr<Store> other_ = session(std::chrono::milliseconds(0));
};

using Change = std::function<void(ZELK_SPLITBUCHUNG &)>;

struct Check {
  const char *name;
  Change change; // to a valid posting of one line
  ZelkResult result;
  const char *message;
};

ZELK_TEILBUCHUNG &line(ZELK_SPLITBUCHUNG &posting, int index = 0) {
  return posting.Teilbuchung[index];
}

void toSwiss(ZELK_SPLITBUCHUNG &posting) {
  posting.Mandantennummer = 2;
  posting.Stapelnummer = 2;
  put(line(posting).Sollkonto, "1020");
}

Change gross(const char *amount) {
  return [amount](ZELK_SPLITBUCHUNG &p) { put(line(p).Bruttobetrag, amount); };
}
Change tax(const char *rate, const char *amount) {
  return [rate, amount](ZELK_SPLITBUCHUNG &p) {
    put(line(p).Steuersatz, rate);
    put(line(p).Steuerbetrag, amount);
  };
}
Change date(const char *day) {
  return [day](ZELK_SPLITBUCHUNG &p) { put(p.Belegdatum, day); };
}
Change accounts(const char *debit, int32_t debitKind, const char *credit, int32_t creditKind) {
  return [=](ZELK_SPLITBUCHUNG &p) {
    put(line(p).Sollkonto, debit);
    line(p).Sollart = debitKind;
    put(line(p).Habenkonto, credit);
    line(p).Habenart = creditKind;
  };
}
Change opening(Change change) {
  return [=](ZELK_SPLITBUCHUNG &p) {
    p.Eroeffnungsbuchung = 1;
    line(p).Habenkonto[0] = 0;
    change(p);
  };
}

const char kDate[] = "Das Buchungsdatum ist unzulässig!", kGross[] = "Der Bruttobetrag ist unzulässig!",
           kRate[] = "Der Steuersatz ist unzulässig!", kTax[] = "Der Steuerbetrag ist unzulässig!",
           kNoTax[] = "In dieser Buchung darf keine Steuer angegeben werden!",
           kDebit[] = "Die Sollkontonummer ist unzulässig!", kCredit[] = "Die Habenkontonummer ist unzulässig!",
           kNoDebit[] = "Die angegebene Sollkontonummer ist unzulässig.",
           kNoCredit[] = "Die angegebene Habenkontonummer ist unzulässig.",
           kLetters[] = "Das Währungskürzel darf nur (max. 3) Buchstaben enthalten!",
           kForeign[] = "In der Basisversion kann nicht mit Fremdwährung gebucht werden. Bitte übergeben Sie Ihre "
                        "Buchungen in der Mandantenwährung.",
           kOpening[] =
               "Bei einer Eröffnungsbuchung muss eines der Konten leer übergeben werden (wird ersetzt durch das "
               "entsprechende Saldovortragskonto)!";

const Check kChecks[] = {
    {"valid", [](auto &) {}, 1, ""},
    {"client 99", [](auto &p) { p.Mandantennummer = 99; }, -5, "Der Mandant existiert nicht!"},
    {"client 65537", [](auto &p) { p.Mandantennummer = 65537; }, -5, "Der Mandant existiert nicht!"},
    {"batch 11", [](auto &p) { p.Stapelnummer = 11; }, -6, "Der Stapel existiert nicht!"},
    {"batch -1", [](auto &p) { p.Stapelnummer = -1; }, -6, "Der Stapel existiert nicht!"},
    {"batch of the other client", [](auto &p) { toSwiss(p), p.Stapelnummer = 5; }, -6, "Der Stapel existiert nicht!"},
    {"batch of cost accounting", [](auto &p) { p.Stapelnummer = 10; }, -6,
     "Der angebene Stapel ist ein KORE-Stapel und daher unzulässig!"},
    {"last batch of postings", [](auto &p) { p.Stapelnummer = 9; }, 1, ""},

    {"no date", date(""), -11, kDate},
    {"no day", date("310426"), -11, kDate},
    {"29.02.2025", date("290225"), -11, kDate},
    {"letters", date("2101xx"), -11, kDate},
    {"short", date("21012"), -11, kDate},
    {"day before the first year", date("311224"), -11, kDate},
    {"first day", date("010125"), 1, ""},
    {"last day of the first year", date("311225"), 1, ""},
    {"last day", date("311226"), 1, ""},
    {"day after the last year", date("010127"), -11, kDate},
    {"with dots", date("1.2.26"), 1, ""},
    {"year from July on: before", [](auto &p) { toSwiss(p), put(p.Belegdatum, "300625"); }, -11, kDate},
    {"year from July on: first day", [](auto &p) { toSwiss(p), put(p.Belegdatum, "010725"); }, 1, ""},
    {"year from July on: last day", [](auto &p) { toSwiss(p), put(p.Belegdatum, "300627"); }, 1, ""},
    {"year from July on: after", [](auto &p) { toSwiss(p), put(p.Belegdatum, "010727"); }, -11, kDate},

    {"no lines", [](auto &p) { p.Teilbuchungsanzahl = 0; }, -25, "Die Anzahl der Teilbuchungen ist nicht korrekt!"},
    {"-1 lines", [](auto &p) { p.Teilbuchungsanzahl = -1; }, -25, "Die Anzahl der Teilbuchungen ist nicht korrekt!"},
    {"11 lines", [](auto &p) { p.Teilbuchungsanzahl = 11; }, -25, "Die Anzahl der Teilbuchungen ist nicht korrekt!"},
    {"endless lines", [](auto &p) { p.Teilbuchungsanzahl = INT32_MAX; }, -25,
     "Die Anzahl der Teilbuchungen ist nicht korrekt!"},

    {"opening with both accounts", [](auto &p) { p.Eroeffnungsbuchung = 1; }, -10, kOpening},
    {"opening without accounts", opening([](auto &p) { put(line(p).Sollkonto, "  "); }), -10, kOpening},
    {"opening", opening([](auto &) {}), 1, ""},
    {"opening with a blank account", opening([](auto &p) { put(line(p).Habenkonto, "   "); }), 1, ""},
    {"opening with tax", opening(tax("", "19,00")), -14, "Eine Eröffnungsbuchung muss steuerfrei sein!"},
    {"opening with a rate", opening(tax("19,00", "")), -14, "Eine Eröffnungsbuchung muss steuerfrei sein!"},
    {"opening with tax 0", opening(tax("0,00", "0,00")), 1, ""},
    {"opening of an unknown account", opening(accounts("4999", 1, "", 1)), -10, kNoDebit},
    {"opening of the balance-forward account", opening(accounts("9000", 1, "", 1)), -10,
     "Soll- und Habenkontonummern sind gleich!"},

    {"payment slip outside Switzerland", [](auto &p) { put(p.ESR, "210000000003139471430009017"); }, -60,
     "Die Angabe einer ESR-Nummer (210000000003139471430009017) ist nur bei schweizer Mandanten gestattet!"},
    {"payment slip", [](auto &p) { toSwiss(p), put(p.ESR, "210000000003139471430009017"); }, 1, ""},
    {"payment slip with a wrong digit", [](auto &p) { toSwiss(p), put(p.ESR, "210000000003139471430009018"); }, -60,
     "Die angegeben ESR-Nummer '210000000003139471430009018' ist nicht korrekt!"},
    {"blank payment slip", [](auto &p) { put(p.ESR, "   "); }, 1, ""},

    {"payment term 5", [](auto &p) { p.Zahlungsziel = 5; }, 1, ""},
    {"payment term 6", [](auto &p) { p.Zahlungsziel = 6; }, -27,
     "Das angegebene Zahlungsziel ist unzulässig (Existenz?)."},
    {"payment term -1", [](auto &p) { p.Zahlungsziel = -1; }, -27,
     "Das angegebene Zahlungsziel ist unzulässig (Existenz?)."},

    {"client's currency", [](auto &p) { put(p.Waehrung, "EUR"); }, 1, ""},
    {"in small letters", [](auto &p) { put(p.Waehrung, "eur"); }, 1, ""},
    {"foreign currency", [](auto &p) { put(p.Waehrung, "USD"); }, -83, kForeign},
    {"client's currency of Switzerland", [](auto &p) { toSwiss(p), put(p.Waehrung, "CHF"); }, 1, ""},
    {"foreign currency in Switzerland", [](auto &p) { toSwiss(p), put(p.Waehrung, "EUR"); }, -83, kForeign},
    {"digit in the currency", [](auto &p) { put(p.Waehrung, "EU1"); }, -83, kLetters},
    {"umlaut in the currency", [](auto &p) { put(p.Waehrung, "E\xDCR"); }, -83, kLetters},
    {"bracket in the currency", [](auto &p) { put(p.Waehrung, "[UR"); }, -83, kLetters},

    {"unknown debit account", accounts("4999", 1, "1000", 1), -10, kNoDebit},
    {"no debit account", accounts("", 1, "1000", 1), -10, kNoDebit},
    {"unknown credit account", accounts("1200", 1, "99999", 4), -10, kNoCredit},
    {"cost centre as an account", accounts("1200", 1, "100", 8), -10, kNoCredit},
    {"leading zeros left out", accounts("27", 1, "1000", 1), 1, ""},
    {"blanks around", accounts(" 1200 ", 1, " 1000", 1), 1, ""},
    {"account of 2026 only", accounts("4964", 1, "1200", 1), 1, ""},
    {"account of 2026 only, in 2025", [](auto &p) { accounts("4964", 1, "1200", 1)(p), put(p.Belegdatum, "310125"); },
     -10, kNoDebit},
    {"creditor and debtor", accounts("70010", 2, "10010", 4), 1, ""},

    {"no document number", [](auto &p) { put(p.Belegnummer, ""); }, -62, "Bitte vergeben Sie eine Belegnummer!"},
    {"blank document number", [](auto &p) { put(p.Belegnummer, "                "); }, -62,
     "Bitte vergeben Sie eine Belegnummer!"},
    {"longest document number", [](auto &p) { put(p.Belegnummer, "1234567890123456"); }, 1, ""},
    {"value date", [](auto &p) { put(p.Valutadatum, "311299"); }, 1, ""},
    {"no value date", [](auto &p) { put(p.Valutadatum, "    "); }, 1, ""},
    {"wrong value date", [](auto &p) { put(p.Valutadatum, "320126"); }, -61, "Das Valutadatum ist unzulässig!"},

    {"equal accounts", accounts("1200", 1, "1200", 1), -10, "Soll- und Habenkontonummern sind gleich!"},
    {"equal in two notations", accounts("0027", 1, " 27", 1), -10, "Soll- und Habenkontonummern sind gleich!"},
    {"debit of another kind", accounts("1200", 2, "1000", 1), -8, kDebit},
    {"debit without a kind", accounts("1200", 0, "1000", 1), -8, kDebit},
    {"credit of another kind", accounts("1200", 1, "1000", 4), -9, kCredit},
    {"credit of no kind", accounts("1200", 1, "1000", 3), -9, kCredit},
    {"debtor as creditor", accounts("10010", 2, "1000", 1), -8, kDebit},
    {"locked account", accounts("1590", 1, "1000", 1), -8, kDebit},
    {"locked debtor", accounts("1200", 1, "10180", 4), -9, kCredit},
    {"locked creditor", accounts("70140", 2, "1200", 1), -8, kDebit},

    {"greatest amount", gross("999999999,99"), 1, ""},
    {"least amount", gross("-99999999,99"), 1, ""},
    {"greatest credit", gross("999999999-99"), 1, ""},
    {"too great", gross("1000000000"), -12, kGross},
    {"no amount", gross(""), 1, ""},
    {"amount 0", gross("0"), 1, ""},
    {"whole", gross("12"), 1, ""},
    {"one decimal", gross("12,5"), 1, ""},
    {"grouped", gross("1.234.567,89"), 1, ""},
    {"minus behind", gross("12,50-"), 1, ""},
    {"plus", gross("+12,50"), 1, ""},
    {"blanks", gross("  12,50  "), 1, ""},
    {"three decimals", gross("12,505"), -12, kGross},
    {"decimal point", gross("12.50"), -12, kGross},
    {"wrong groups", gross("1.23,00"), -12, kGross},
    {"two signs", gross("-12,50-"), -12, kGross},
    {"no digits before", gross(",50"), -12, kGross},
    {"letters in it", gross("12,5O"), -12, kGross},
    {"blank inside", gross("1 234,00"), -12, kGross},
    {"rate 0", tax("0", ""), 1, ""},
    {"rate and tax 0", tax("00,00", "000000000,00"), 1, ""},
    {"rate of a wrong form", tax("19,0x", ""), -13, kRate},
    {"rate below zero", tax("-1", ""), -13, kRate},
    {"rate of three digits", tax("100", ""), -13, kRate},
    {"tax of a wrong form", tax("", "1,2,3"), -14, kTax},
    {"cost template", [](auto &p) { line(p).Kostenschablone = 1; }, -82,
     "Die angegebenen Kostenschablone existiert nicht."},
    {"rate", tax("19,00", ""), -13, kNoTax},
    {"tax", tax("", "19,00"), -14, kNoTax},
    {"rate and tax", tax("19,00", "19,00"), -14, kNoTax},
    {"tax of another sign", tax("", "-0,01"), -14, kNoTax}};

TEST_F(PostingChecks, RefuseAndPass) {
  for (const Check &check : kChecks) {
    SCOPED_TRACE(check.name);
    ZELK_SPLITBUCHUNG posting = validSplit(1);
    check.change(posting);
    expect(posting, check.result, check.message);
  }
}

TEST_F(PostingChecks, OfClosedYears) {
  uint8_t found;
  ASSERT_TRUE(other_->SetzeFista(1, found) && found);
  DATENBANK year{};
  ASSERT_TRUE(other_->UsedGet(year, KeyBuilder().number(int16_t(2025)), found, kGeschaeftsjahr, ZELK_ENG_DEFAULT) &&
              found);
  year.Geschaeftsjahr.Abgeschlossen = 1;
  ASSERT_TRUE(other_->Update(year, kGeschaeftsjahr, ZELK_ENG_DEFAULT));
  static const struct {
    const char *setting, *day;
    ZelkResult result;
  } rows[] = {{"", "311225", -11}, {"", "010126", 1},    {"n", "311225", -11}, {"J", "311225", -11},
              {"j", "311225", 1},  {"j", "311224", -11}, {"j", "010127", -11}};
  for (const auto &row : rows) {
    SCOPED_TRACE(std::string(row.setting) + ' ' + row.day);
    ASSERT_TRUE(MFWritePrivateProfileString("MFIBU", "NoGejaCheck", row.setting, nullptr));
    ZELK_Detach();
    ZELK_SPLITBUCHUNG posting = validSplit(1);
    put(posting.Belegdatum, row.day);
    expect(posting, row.result, row.result == 1 ? "" : kDate);
  }
}

// In the order of the checks, each to a posting of two lines; none undoes another, when the later one is made first.
const Check kOrder[] = {
    {"client", [](auto &p) { p.Mandantennummer = 99; }, -5, "Der Mandant existiert nicht!"},
    {"batch", [](auto &p) { p.Stapelnummer = 99; }, -6, "Der Stapel existiert nicht!"},
    {"date", date("310426"), -11, kDate},
    {"line count", [](auto &p) { p.Teilbuchungsanzahl = 11; }, -25, "Die Anzahl der Teilbuchungen ist nicht korrekt!"},
    {"opening", [](auto &p) { p.Eroeffnungsbuchung = 1; }, -10, "Teilbuchung 1: "},
    {"payment slip", [](auto &p) { put(p.ESR, "1"); }, -60,
     "Die Angabe einer ESR-Nummer (1) ist nur bei schweizer Mandanten gestattet!"},
    {"shape", [](auto &p) { put(line(p, 1).Sollkonto, "1360"); }, -26,
     "Bei einer Splitbuchung muss entweder das Soll- oder das Habenkonto jeder Teilbuchung gleich sein!"},
    {"payment term", [](auto &p) { p.Zahlungsziel = 99; }, -27,
     "Das angegebene Zahlungsziel ist unzulässig (Existenz?)."},
    {"currency letters", [](auto &p) { put(p.Waehrung, "12"); }, -83, kLetters},
    {"debit account", [](auto &p) { put(line(p).Sollkonto, "4999"), put(line(p, 1).Sollkonto, "4999"); }, -10,
     kNoDebit},
    {"credit account", [](auto &p) { put(line(p).Habenkonto, "4998"); }, -10, kNoCredit},
    {"document number", [](auto &p) { p.Belegnummer[0] = 0; }, -62, "Bitte vergeben Sie eine Belegnummer!"},
    {"value date", [](auto &p) { put(p.Valutadatum, "x"); }, -61, "Das Valutadatum ist unzulässig!"},
    {"first line", [](auto &p) { line(p).Kostenschablone = 1; }, -82,
     "Teilbuchung 1: Die angegebenen Kostenschablone existiert nicht."},
    {"equal accounts", [](auto &p) { put(line(p, 1).Habenkonto, "1200"); }, -10,
     "Teilbuchung 2: Soll- und Habenkontonummern sind gleich!"},
    {"debit kind", [](auto &p) { line(p, 1).Sollart = 4; }, -8, "Teilbuchung 2: Die Sollkontonummer ist unzulässig!"},
    {"credit kind", [](auto &p) { line(p, 1).Habenart = 0; }, -9,
     "Teilbuchung 2: Die Habenkontonummer ist unzulässig!"},
    {"gross", [](auto &p) { put(line(p, 1).Bruttobetrag, "x"); }, -12,
     "Teilbuchung 2: Der Bruttobetrag ist unzulässig!"},
    {"rate", [](auto &p) { put(line(p, 1).Steuersatz, "x"); }, -13, "Teilbuchung 2: Der Steuersatz ist unzulässig!"},
    {"tax", [](auto &p) { put(line(p, 1).Steuerbetrag, "x"); }, -14, "Teilbuchung 2: Der Steuerbetrag ist unzulässig!"},
    {"cost template", [](auto &p) { line(p, 1).Kostenschablone = 1; }, -82,
     "Teilbuchung 2: Die angegebenen Kostenschablone existiert nicht."},
    {"no tax", [](auto &p) { put(line(p, 1).Steuerbetrag, "1,00"); }, -14,
     "Teilbuchung 2: In dieser Buchung darf keine Steuer angegeben werden!"}};

TEST_F(PostingChecks, ComeInTheirOrder) {
  std::string before = dump(*other_, 1, kAll);
  for (const Check *first = std::begin(kOrder); first != std::end(kOrder); ++first)
    for (const Check *second = first; second != std::end(kOrder); ++second) {
      ZELK_SPLITBUCHUNG posting = validSplit(2);
      second->change(posting);
      first->change(posting);
      EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 1), first->result) << first->name << ", " << second->name;
      EXPECT_EQ(recorder.takeText().rfind(first->message, 0), 0u) << first->name << ", " << second->name;
    }
  EXPECT_EQ(dump(*other_, 1, kAll), before);
  EXPECT_TRUE(nothingLocked(*other_, 1));
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
