// The names and texts of result codes, and the message boxes.
#include <cstring>

#include "frame/call.h"
#include "frame/messages.h"
#include "support/books.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using Results = Environment;

struct Texts {
  ZelkResult result;
  std::string name, text; // UTF-8
};

Texts textsOf(int32_t code) {
  char name[50], text[250];
  std::memset(name, '?', sizeof name);
  std::memset(text, '?', sizeof text);
  ZelkResult result = ZELK_HoleFehlertext(code, name, text);
  if (result != ZELK_OK) {
    EXPECT_EQ(std::string(name, sizeof name), std::string(sizeof name, '?')) << code;
    EXPECT_EQ(std::string(text, sizeof text), std::string(sizeof text, '?')) << code;
    return {result, "", ""};
  }
  return {result, vlba98::toUtf8(name), vlba98::toUtf8(text)};
}

TEST_F(Results, HaveNamesAndTexts) {
  static const struct {
    int32_t code;
    const char *name, *text;
  } rows[] = {
      {2, "ZELK_letzterDatensatz", "Dies ist der letzte Datensatz."},
      {1, "ZELK_OK", "mehrdeutig: OK / es gibt einen weiteren Datensatz"},
      {0, "ZELK_keinKonto",
       "mehrdeutig (kein Fehler): Abbruch des Dialoges / Kontonummer nicht verwendet / Kürzel nicht verwendet / Kein "
       "Datensatz"},
      {-4, "(leer)", "(Diese Fehlernummer wird nicht mehr zurückgegeben.)"},
      {-13, "ZELKERR_uzl_Steuersatz", "Der angegebene Steuersatz ist unzulässig (Format? Passend zum Steuerbetrag?). "},
      {-24, "ZELKERR_uzl_Kostenrechnung",
       "Sachkonten: Die Optionen Kostenart, Umsatzerlöse und Aufbauzuordnung passen nicht zueinander.\n"
       "Buchungen: Die Kostenaufteilung konnte nicht durchgeführt werden."},
      {-54, "ZELKERR_uzl_TagInMonat", "Die Angabe \"Tag in Monat\" ist unzulässig (Bereich 0 - 31)."},
      {-74, "ZELKERR_Verbindung_unterbrochen", "Der SQL-Modus ist deaktiviert."},
      {-75, "ZELKERR_kein_SQL_Modus", "Allgemeiner SQL-Fehler."},
      {-76, "ZELKERR_Fehler", "(leer)"},
      {-77, "(leer)", "(leer)"},
      {-80, "(leer)", "(Diese Fehlernummer wird nicht mehr zurückgegeben.)"},
      {-103, "ZELKERR_neuerer_Mandant",
       "Der angegebene Mandant wurde bereits auf eine höhere Programmversion konvertiert."}};
  for (const auto &row : rows) {
    Texts texts = textsOf(row.code);
    EXPECT_EQ(texts.result, ZELK_OK) << row.code;
    EXPECT_EQ(texts.name, row.name) << row.code;
    EXPECT_EQ(texts.text, row.text) << row.code;
  }
  for (int32_t code = -103; code <= 2; ++code) {
    Texts texts = textsOf(code);
    EXPECT_EQ(texts.result, ZELK_OK) << code;
    bool retired = texts.name == "(leer)";
    EXPECT_TRUE(retired || texts.name.rfind(code < 0 ? "ZELKERR_" : "ZELK_", 0) == 0) << code << ' ' << texts.name;
    EXPECT_FALSE(texts.text.empty()) << code;
  }
}

TEST_F(Results, OutsideTheCodesTouchNothing) {
  for (int32_t code : {3, 4, 1000, -104, -1000, INT32_MAX, INT32_MIN})
    EXPECT_EQ(textsOf(code).result, ZELKERR_keine_Fehlernummer) << code;
}

TEST_F(Results, AreCutAndInTheCodePageOfTheHost) {
  char name[50], text[251];
  std::memset(text, '?', sizeof text);
  // Of 371 characters 249 remain, and nothing is written beyond the buffer.
  ASSERT_EQ(ZELK_HoleFehlertext(-38, name, text), ZELK_OK);
  EXPECT_EQ(std::strlen(text), 249u);
  EXPECT_EQ(text[250], '?');
  std::string shown = vlba98::toUtf8(text),
              start = "Die gewünschte Aktion ist nicht möglich.\nMandantenanlage: Die Maximal";
  EXPECT_EQ(shown.substr(0, start.size()), start);
  std::string end = "100KB verfügbar oder es gibt ein Problem mit der Zuordnung zu den Aufbauten.\nMandanteninfo: ";
  EXPECT_NE(shown.find(end.substr(0, 20)), std::string::npos);

  ASSERT_EQ(ZELK_HoleFehlertext(-7, nullptr, text), ZELK_OK);
  EXPECT_STREQ(text, "Die angegebene Kontoart ist unzul\xE4ssig.");
  ASSERT_EQ(ZELK_HoleFehlertext(-7, name, nullptr), ZELK_OK);
  EXPECT_STREQ(name, "ZELKERR_uzl_Kontoart");
  EXPECT_EQ(ZELK_HoleFehlertext(-7, nullptr, nullptr), ZELK_OK);
}

TEST_F(Results, AreShownUnderTheNameOfTheirFamily) {
  using frame::Export;
  static constexpr Export plain{.name = "plain"}, fetch{.name = "fetch", .fetch = true},
      dialog{.name = "dialog", .dialog = true}, clients{.name = "clients", .fetch = true, .companion = 80},
      batches{.name = "batches", .dialog = true, .companion = 81}, terms{.name = "terms", .companion = 83};
  static const struct {
    const Export &self;
    ZelkResult result;
    const char *name;
  } rows[] = {{plain, 2, "ZELK_letzterDatensatz"},
              {plain, 1, "ZELK_OK"},
              {plain, 0, "ZELK_keinKonto"},
              {plain, -1, "ZELKERR_keine_Mandanten"},
              {plain, 3, ""},
              {plain, -104, ""},
              {fetch, 2, "ZELK_letzterDatensatz"},
              {fetch, 1, "ZELK_weitererDatensatz"},
              {fetch, 0, "ZELK_keinDatensatz"},
              {fetch, -1, "ZELKERR_keine_Mandanten"},
              {dialog, 1, "ZELK_OK"},
              {dialog, 0, "ZELKERR_Abbruch"},
              {clients, 1, "ZELK_weitererDatensatz"},
              {clients, -1, "ZELKERR_keine_Mandanten"},
              {batches, 0, "ZELKERR_Abbruch"},
              {batches, -1, "ZELKERR_keine_Stapel"},
              {batches, -2, "ZELKERR_sonst"},
              {terms, 0, "ZELK_keinKonto"},
              {terms, -1, "ZELKERR_keine_Zahlungsziele"}};
  for (const auto &row : rows) {
    int id = frame::resultNameId(row.self, row.result);
    EXPECT_EQ(id ? resources::text(id) : "", row.name) << row.self.name << ' ' << row.result;
  }
}

TEST_F(Results, MessagesHaveTheStyleOfTheirGroup) {
  using platform::BoxButtons, platform::BoxIcon;
  static const struct {
    int first, last;
    BoxIcon icon;
    BoxButtons buttons;
  } groups[] = {{1000, 1199, BoxIcon::Information, BoxButtons::Ok},
                {1200, 1399, BoxIcon::Information, BoxButtons::OkCancel},
                {1400, 1599, BoxIcon::Exclamation, BoxButtons::Ok},
                {1600, 1799, BoxIcon::Exclamation, BoxButtons::OkCancel},
                {1800, 1999, BoxIcon::Question, BoxButtons::YesNo},
                {2000, 2199, BoxIcon::Question, BoxButtons::YesNoCancel},
                {2200, 2399, BoxIcon::Question, BoxButtons::YesNoDefaultNo},
                {2400, 2599, BoxIcon::Exclamation, BoxButtons::Ok}};
  for (const auto &group : groups)
    for (int message : {group.first, group.last}) {
      recorder.shown.clear();
      frame::showMessage(message);
      ASSERT_EQ(recorder.shown.size(), 1u);
      EXPECT_EQ(recorder.shown[0].icon, group.icon) << message;
      EXPECT_EQ(recorder.shown[0].buttons, group.buttons) << message;
    }
}

TEST_F(Results, MessagesAreFilled) {
  static const struct {
    int message, partial;
    const char *fill, *shown;
  } rows[] = {{1408, -1, "Mandant", "Der Mandant existiert nicht!"},
              {1408, 0, "Stapel", "Teilbuchung 1: Der Stapel existiert nicht!"},
              {1436, 9, "", "Teilbuchung 10: Soll- und Habenkontonummern sind gleich!"},
              {1408, -1, "K\xFCrzel", "Der Kürzel existiert nicht!"},
              {1408, -1, "%s%i", "Der %s%i existiert nicht!"},
              {1001, -1, "x", "Die Meldung Nr. 1001 kann nicht geladen werden!"},
              {1001, 1, "", "Teilbuchung 2: Die Meldung Nr. 1001 kann nicht geladen werden!"},
              {99999, -1, "", "Die Meldung Nr. 99999 kann nicht geladen werden!"}};
  for (const auto &row : rows) {
    frame::showMessage(row.message, row.fill, row.partial);
    EXPECT_EQ(recorder.takeText(), row.shown);
  }
}

TEST_F(Results, MessagesTellTheButtonPressed) {
  using platform::Button;
  static const struct {
    int message;
    Button pressed;
    int result;
  } rows[] = {{1408, Button::Ok, 1},  {1600, Button::Ok, 1},  {1600, Button::Cancel, 0}, {1800, Button::Yes, 1},
              {1800, Button::No, 0},  {2000, Button::Yes, 6}, {2000, Button::No, 7},     {2000, Button::Cancel, 2},
              {2200, Button::Yes, 1}, {2200, Button::No, 0},  {2400, Button::Ok, 1},     {1200, Button::Cancel, 0}};
  for (const auto &row : rows) {
    recorder.answers = {row.pressed};
    EXPECT_EQ(frame::showMessage(row.message), row.result) << row.message << ' ' << int(row.pressed);
  }
}

} // namespace
} // namespace test
