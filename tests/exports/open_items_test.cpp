// Open and historical items: their parameters, what selects them, what refuses a fetch.
#include <cstdlib>
#include <regex>

#include "frame/money_output.h"
#include "platform/files.h"
#include "support/items.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using namespace vldb98;

using OpenItems = ItemBooks;

TEST(AmountOutput, HasThreeForms) {
  static const struct {
    const char *internal, *fixed, *plain, *grouped;
  } rows[] = {{"000000012-50", "-000000012,50", "-12,50", "-12,50"},
              {"000001234,50", "+000001234,50", "1234,50", "1.234,50"},
              {"999999999-99", "-999999999,99", "-999999999,99", "-999999999,99"},
              {"012345678,90", "+012345678,90", "12345678,90", "12.345.678,90"},
              {"012345678-90", "-012345678,90", "-12345678,90", "-12345678,90"},
              {"000000000,01", "+000000000,01", "0,01", "0,01"},
              {"000000000,00", "0000000000,00", "0,00", "0,00"},
              {"000000000-00", "0000000000,00", "0,00", "0,00"},
              {"", "0000000000,00", "0,00", "0,00"},
              {nullptr, "0000000000,00", "0,00", "0,00"}};
  for (const auto &row : rows) {
    char buffer[frame::kAmountSize];
    for (auto [form, expected] : {std::pair{1, row.fixed}, {2, row.plain}, {3, row.grouped}, {0, row.grouped}}) {
      frame::formatAmount(form, buffer, row.internal);
      EXPECT_STREQ(buffer, expected) << form;
    }
  }
  frame::formatAmount(1, nullptr, "000000000,00");
}

// A value in every field, each another one.
OPBELEG fullItem() {
  OPBELEG item = itemOf(7, "10010", "RE-4711");
  put(item.Kuerzel, "AHORN");
  put(item.Name, "Ahornblatt Verlagskontor GmbH");
  put(item.OPBelegnummer, "OP-4711");
  put(item.Valutadatum, "460122");
  put(item.Skontodatum1, "460131");
  put(item.Skontosatz1, "03,00");
  put(item.Skontodatum2, "460210");
  put(item.Skontosatz2, "02,00");
  put(item.Faelligkeit, "460220");
  put(item.Text, "Papier");
  put(item.Brutto, "000001190,00");
  put(item.Ausstand, "000000090-50");
  put(item.Waehrung, "USD");
  item.Waehrungsindex = 1;
  item.Mahnstufe = 2;
  put(item.Mahndatum, "05.03.2026");
  put(item.Bemerkung, "Ratenzahlung");
  put(item.Gegenkonto, "8400   ");
  item.Zahlungsziel = 3;
  item.Flags = 8 + 16;
  put(item.Skontokonto1, "8730   ");
  put(item.Skontokonto2, "8731   ");
  put(item.Steuersatz1, "19,00");
  put(item.Steuersatz2, "07,00");
  put(item.Ausstand2, "000000012,34");
  put(item.BetragFW, "000001300,00");
  put(item.Text2, "Zweiter Text");
  item.DMSNr = 1;
  item.InkassoAkte = 501;
  item.InkassoForderung = 502;
  item.InkassoMahnkosten = 503;
  return item;
}

const ItemRow kFull = {"10010",
                       "AHORN",
                       "Ahornblatt Verlagskontor GmbH",
                       "RE-4711",
                       "OP-4711",
                       "21.01.2026",
                       "22.01.2026",
                       "31.01.2026",
                       "03,00",
                       "10.02.2026",
                       "02,00",
                       "20.02.2026",
                       "Papier",
                       "~",
                       "+000001190,00",
                       "-000000090,50",
                       "USD",
                       "2",
                       "05.03.2026",
                       "Ratenzahlung",
                       "8400",
                       "3",
                       "1",
                       "8730",
                       "8731",
                       "19,00",
                       "07,00",
                       "+000000012,34",
                       "+000001300,00",
                       "0",
                       "Zweiter Text",
                       "EINGANG-2026-0001",
                       "1",
                       "501",
                       "502",
                       "503"},
              // Nothing but what a record cannot lack, of a creditor in client 2.
    kEmpty = {"70010",
              "",
              "",
              "R-1",
              "R-1",
              "21.01.2026",
              "",
              "",
              "",
              "",
              "",
              "",
              "",
              "~",
              "+000000100,00",
              "+000000100,00",
              "CHF",
              "~",
              "",
              "",
              "8400",
              "0",
              "0",
              "",
              "",
              "",
              "",
              "0000000000,00",
              "",
              "1",
              "",
              "",
              "0",
              "9",
              "0",
              "0"};

// The payment's fields stand between the others.
ItemRow historical(const ItemRow &open, const ItemRow &payment, const std::string &text2) {
  ItemRow row(open.begin(), open.begin() + 30);
  row.insert(row.end(), payment.begin(), payment.end());
  row.push_back(open[30]);
  row.push_back(text2);
  row.insert(row.end(), open.begin() + 31, open.end());
  return row;
}

TEST_F(OpenItems, DeliverEveryParameter) {
  DATENBANK user{};
  user.Benutzer.Nr = 4;
  put(user.Benutzer.Name, "Erika Beispiel");
  insertRecord(kBenutzer, user);
  OPBELEG bare = itemOf(1, "70010");
  bare.Mahnstufe = -1;
  bare.InkassoAkte = 9;
  bare.InkassoForderung = 10; // no longer there: the mark is gone
  OPHISTORIE payment = paymentOf(fullItem(), 1), barePayment{};
  barePayment.OP = bare;
  payment.Benutzer = 4;
  put(payment.Zahlung, "000001154,30");
  put(payment.Skontobetrag, "000000035,70");
  put(payment.Zahlbelegnummer, "BA-12");
  put(payment.Zahltext, "Zahlung");
  put(payment.Zahltext2, "mit Skonto");
  payment.Zahlungsart = 5;
  insert(kOPDebitor, fullItem());
  insert(kOPKreditor, bare, 2);
  insert(kHistOPDebitor, payment);
  barePayment.Benutzer = 77;
  insert(kHistOPKreditor, barePayment, "45", 2);
  const ItemRow paid = historical(
                    kFull, {"+000001154,30", "21.02.2026", "Erika Beispiel", "+000000035,70", "BA-12", "Zahlung", "5"},
                    "mit Skonto"),
                barePaid = historical(kEmpty, {"0000000000,00", "", "", "0000000000,00", "", "", "0"}, "");

  ASSERT_EQ(ZELK_InitHoleOP(1, "10010", ZELK_DEBITOR, 1), 1);
  FetchedItem fetched = fetchItem(ZELK_HoleOP);
  EXPECT_EQ(fetched.result, 2);
  EXPECT_EQ(fetched.row, kFull);
  ASSERT_EQ(ZELK_InitHoleOP(2, nullptr, ZELK_KREDITOR, 1), 1);
  EXPECT_EQ(fetchItem(ZELK_HoleOP).row, kEmpty);
  ASSERT_EQ(ZELK_InitHoleHistOP(1, nullptr, ZELK_DEBITOR, nullptr, nullptr, nullptr, 1), 1);
  fetched = fetchItem(ZELK_HoleHistOP);
  EXPECT_EQ(fetched.result, 2);
  EXPECT_EQ(fetched.row, paid);
  ASSERT_EQ(ZELK_InitHoleHistOP(2, nullptr, ZELK_KREDITOR, nullptr, nullptr, nullptr, 1), 1);
  EXPECT_EQ(fetchItem(ZELK_HoleHistOP).row, barePaid);

  // Each alone, with null for all others, and amounts in the other forms.
  for (size_t only = 0; only < paid.size(); ++only) {
    ItemRow expected(paid.size(), "~");
    expected[only] = paid[only];
    ASSERT_EQ(ZELK_InitHoleHistOP(1, nullptr, ZELK_DEBITOR, nullptr, nullptr, nullptr, 1), 1);
    EXPECT_EQ(fetchItem(ZELK_HoleHistOP, 1, only).row, expected) << only;
  }
  for (auto [form, gross, left, foreign] :
       {std::tuple{2, "1190,00", "-90,50", "1300,00"}, {3, "1.190,00", "-90,50", "1.300,00"}}) {
    ASSERT_EQ(ZELK_InitHoleOP(1, nullptr, ZELK_DEBITOR, 1), 1);
    fetched = fetchItem(ZELK_HoleOP, form);
    EXPECT_EQ(fetched.row[14], gross);
    EXPECT_EQ(fetched.row[15], left);
    EXPECT_EQ(fetched.row[28], foreign);
  }
  // A blocked debtor.
  bare.Nr = 8;
  put(bare.Konto, "10020  ");
  insert(kOPDebitor, bare);
  ASSERT_EQ(ZELK_InitHoleOP(1, "10020", ZELK_DEBITOR, 1), 1);
  fetched = fetchItem(ZELK_HoleOP);
  EXPECT_EQ(fetched.row[17] + " " + fetched.row[29], "65535 1");
  EXPECT_EQ(fetched.row[16], "EUR");
}

TEST_F(OpenItems, StandInTheCallProtocolUnderTheirLabels) {
  insert(kHistOPDebitor, paymentOf(fullItem(), 1));
  insert(kOPDebitor, fullItem());
  std::string file = (folder() / "protokoll.txt").string();
  ASSERT_EQ(ZELK_Protokoll(0, 2, file.data()), ZELK_OK);
  ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  ZELK_InitHoleHistOP(1, "10010", ZELK_DEBITOR, "010126", "B", "O", 0);
  fetchItem(ZELK_HoleHistOP, 3);
  ZELK_InitHoleOP(1, "10010", ZELK_DEBITOR, 0);
  fetchItem(ZELK_HoleOP, 2, 34);
  ZELK_HoleAktMahnstufe(1, "10010");
  ZELK_ErmittleBonitaet(nullptr, 0, 1, "A", 2, "B", "C", "D", "E", "F", "G", "H", "I");
  ZELK_ProtokollEnde();
  std::string text = vlba98::toUtf8(platform::readFile(file).value_or(""));
  const std::string
      common =
          "Kontonummer: #|Kürzel: #|Name: #|Belegnummer: #|OP-Belegnummer: #|Belegdatum: #|Valutadatum: "
          "#|Skontodatum1: "
          "#|Skontosatz1: #|Skontodatum2: #|Skontosatz2: #|Fälligkeitsdatum: #|Text: #|Ausgabeart: @|Bruttobetrag: "
          "#|Ausstand: #|Währung: #|Mahnstufe: #|Mahndatum: #|Bemerkung: #|Gegenkonto: #|Zahlziel: #|Zahungssperre: "
          "#|Skontokonto1: #|Skontokonto2: #|Steuersatz1: #|Steuersatz2: #|Ausstand2: #|GW-Betrag: #|Mahnsperre: #|",
      collection = "DMS-ID: #|Inkasso: #|Inkasso-Akte: #|Inkasso-Forderung: %|Inkasso-Mahnkosten: #|";
  auto filled = [](std::string pattern, const char *form, const char *others, const char *claim) {
    for (auto [mark, value] : {std::pair{"@", form}, {"#", others}, {"%", claim}, {"\\|", "\r\n"}})
      pattern = std::regex_replace(pattern, std::regex(mark), value);
    return pattern;
  };
  for (const std::string &expected :
       {filled("Mandantennummer: 1|Kontonummer: 10010|Kontoart: 4|Buchungsdatum: 010126|Belegnr: B|OP-Belegnr: "
               "O|Fehlermeldungen: 0|",
               "", "", ""),
        filled(common +
                   "Zahlung: #|Zahldatum: #|Benutzer: #|Skontobetrag: #|Zahlbelegnr.: #|Zahltext: #|Zahlungsart: "
                   "#|Text 2: #|Zahltext 2: #|" +
                   collection,
               "3", "gegeben", "gegeben"),
        filled(common + "Text 2: #|" + collection, "2", "NULL", "gegeben"),
        filled("Mandantennummer: 1|Debi-Konto: 10010|", "", "", ""),
        filled("Handle-Parnet: NULL|Mandantenummer: 0|Kontoart: 1|Kontonr: A|Suchtyp: 2|Name: B|Zusatz: C|Strasse: "
               "D|PLZ: E|Ort: F|Vorname: G|Datum: H|Registernummer: I|",
               "", "", "")})
    EXPECT_NE(text.find("\r\n" + expected), std::string::npos) << expected << text;
}

TEST_F(OpenItems, AreRefused) {
  const std::string kind = "-7 Die Kontoart ist unzulässig!", account = "-10 Die Kontonummer ist unzulässig!",
                    client = "-5 Der Mandant existiert nicht!", date = "-64 Das Datum ist unzulässig!";
  insert(kOPDebitor, itemOf(1, "10010"));
  insert(kHistOPDebitor, paymentOf(itemOf(2, "10010"), 1));
  const struct {
    int32_t client;
    const char *account;
    int32_t kind;
    std::string expected;
  } open[] = {{99, "x", 1, kind},       {99, "x", 0, kind},           {99, "x", 8, kind},   {99, "x", 6, kind},
              {99, "x", 4, client},     {0, nullptr, 4, client},      {1, "x", 4, account}, {1, "70010", 4, account},
              {1, "10010", 2, account}, {1, "100100000", 4, account}, {1, "10020", 4, "0"}, {1, nullptr, 2, "0"},
              {1, "10010", 4, "1"},     {1, " 10010 ", 4, "1"},       {1, "  ", 4, "1"},    {2, nullptr, 4, "0"}};
  for (const auto &row : open)
    EXPECT_EQ(outcome(ZELK_InitHoleOP(row.client, row.account, row.kind, 1)), row.expected)
        << row.client << ' ' << (row.account ? row.account : "(null)") << ' ' << row.kind;
  EXPECT_EQ(outcome(ZELK_InitHoleOP(1, "x", 4, 0)), "-10");

  const struct {
    int32_t client;
    const char *account;
    int32_t kind;
    const char *date, *document, *openItem;
    std::string expected;
  } past[] = {{99, "x", 1, "x", "", "", kind},
              {99, "x", 4, "x", "", "", client},
              {1, "x", 4, "x", "", "", date},
              {1, "x", 4, "310226", "R-1", "R-1", date},
              {1, "x", 4, "01.01.2026", "x", "x", "1"},
              {1, "x", 4, "220226", "R-1", "R-1", "0"},
              {1, "x", 4, "", "R-1", "x", "1"},
              {1, "x", 4, "", "R-2", "R-1", "0"},
              {1, "x", 4, "", "", "R-1", "1"},
              {1, "x", 4, nullptr, nullptr, nullptr, "0"},
              {1, "100100000", 4, nullptr, nullptr, nullptr, account},
              {1, "10010", 4, nullptr, nullptr, nullptr, "1"},
              {1, "10010", 2, nullptr, nullptr, nullptr, "0"}};
  for (const auto &row : past)
    EXPECT_EQ(outcome(ZELK_InitHoleHistOP(row.client, row.account, row.kind, row.date, row.document, row.openItem, 1)),
              row.expected)
        << row.expected;
  setting("MFIBU", "Edition", "Basis");
  EXPECT_EQ(outcome(ZELK_InitHoleHistOP(99, "x", 9, "x", "", "", 1)),
            "-96 Die historischen OPs lassen sich nur in der Plus-Version holen.");
  EXPECT_EQ(outcome(ZELK_InitHoleOP(1, nullptr, 4, 1)), "1");
}

TEST_F(OpenItems, AreFetchedInTurn) {
  for (int number : {1, 2}) {
    insert(kOPDebitor, itemOf(number, "10010"));
    insert(kHistOPDebitor, paymentOf(itemOf(number, "10010"), 1));
  }
  auto initOpen = [] { return ZELK_InitHoleOP(1, nullptr, 4, 0); };
  auto initNone = [] { return ZELK_InitHoleOP(1, "10020", 4, 0); };
  auto initPast = [] { return ZELK_InitHoleHistOP(1, nullptr, 4, nullptr, nullptr, nullptr, 0); };
  auto initAccounts = [] { return ZELK_InitHoleKonto(1, 4, 0, nullptr, 0); };
  auto open = [] { return fetchItem(ZELK_HoleOP).result; };
  auto past = [] { return fetchItem(ZELK_HoleHistOP).result; };
  auto wrongForm = [] { return fetchItem(ZELK_HoleOP, 4, 15).result; };
  auto otherAmount = [] { return fetchItem(ZELK_HoleOP, 4, 27).result; };
  auto wrongFormPast = [] { return fetchItem(ZELK_HoleHistOP, 0, 14).result; };
  auto end = [] { return ZELK_BeendeHolen(); };
  const struct {
    const char *name;
    std::vector<std::pair<std::function<ZelkResult()>, ZelkResult>> calls;
  } rows[] = {
      {"without Init", {{open, -40}, {past, -40}, {wrongForm, -40}, {wrongFormPast, -40}}},
      {"to the end", {{initOpen, 1}, {open, 1}, {open, 2}, {open, -39}, {past, -40}, {wrongForm, -20}}},
      {"historical ones", {{initPast, 1}, {past, 1}, {past, 2}, {past, -40}, {open, -40}}},
      {"of the other pair", {{initPast, 1}, {open, -40}, {past, 1}, {initOpen, 1}, {past, -40}, {open, 1}}},
      {"form", {{initOpen, 1}, {wrongForm, -20}, {otherAmount, 1}, {open, 2}}},
      {"form, historical", {{initPast, 1}, {wrongFormPast, -20}, {past, 1}, {past, 2}}},
      {"nothing found", {{initOpen, 1}, {initNone, 0}, {open, -40}}},
      {"another fetch", {{initOpen, 1}, {initAccounts, 1}, {open, -40}, {past, -40}}},
      {"ended", {{initOpen, 1}, {end, 1}, {open, -40}, {initPast, 1}, {end, 1}, {past, -40}}},
      {"begun anew", {{initOpen, 1}, {open, 1}, {initOpen, 1}, {open, 1}, {open, 2}}},
  };
  for (const auto &row : rows) {
    ZELK_BeendeHolen();
    int step = 0;
    for (const auto &[call, expected] : row.calls)
      EXPECT_EQ(call(), expected) << row.name << ", call " << ++step;
  }
}

} // namespace
} // namespace test
