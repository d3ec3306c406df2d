// zelkctl as people use it, as a program: what it prints, what it leaves, its exit codes.
#include <fstream>
#include <sstream>

#include "platform/files.h"
#include "support/items.h"
#include "support/process.h"
#include "vldb98/schema.h"

namespace test {
namespace {

namespace fs = std::filesystem;

class Zelkctl : public Environment {
protected:
  void SetUp() override {
    if (!shareSettings()) GTEST_SKIP() << "would change the settings of this machine";
  }

  struct Outcome {
    int code;
    std::string text; ///< standard output and standard error
  };

  Outcome run(const std::string &arguments) {
    fs::path output = folder() / "output.txt";
    int code = runProgram(ZELK_ZELKCTL, arguments, output.string());
    std::string text = platform::readFile(output.string()).value_or("");
    std::erase(text, '\r'); // of the line ends on Windows
    return {code, text};
  }

  void provisionByProgram() { ASSERT_EQ(run("einrichten " + quoted(folder() / "programm")).code, 0); }

  static std::string quoted(const fs::path &path) { return "\"" + path.generic_string() + "\""; }
  static std::string sample(const std::string &name) { return quoted(sourceFolder() / "samples" / name); }

  std::string write(const std::string &name, const std::string &text) {
    fs::create_directories((folder() / name).parent_path());
    std::ofstream(folder() / name, std::ios::binary) << text;
    return quoted(folder() / name);
  }
};

#define EXPECT_OUTCOME(arguments, expectedCode, expectedText)                                                          \
  do {                                                                                                                 \
    Outcome checked = run(arguments);                                                                                  \
    EXPECT_EQ(checked.code, expectedCode) << checked.text;                                                             \
    EXPECT_NE(checked.text.find(expectedText), std::string::npos) << checked.text;                                     \
  } while (false)

TEST_F(Zelkctl, ProvisionsLoadsPostsAndShows) {
  EXPECT_OUTCOME("mandanten", 2, "-36 ZELKERR_Ini");
  EXPECT_OUTCOME("anlegen " + sample("musterhandel"), 2, "zelkctl einrichten VERZEICHNIS");
  EXPECT_OUTCOME("einrichten " + quoted(folder() / "programm"), 0, "Datenbank angelegt");
  EXPECT_OUTCOME("einrichten " + quoted(folder() / "programm"), 0, "Datenbank besteht bereits");
  EXPECT_OUTCOME("mandanten", 0, "Es gibt keine Mandanten.");
  EXPECT_OUTCOME("anlegen " + sample("musterhandel"), 0, "Mandant 1 angelegt.");
  EXPECT_OUTCOME("anlegen " + sample("musterhandel"), 1, "Mandant 1 besteht bereits.");
  EXPECT_OUTCOME("anlegen " + sample("alpenwerk"), 0, "Mandant 2 angelegt.");
  EXPECT_OUTCOME("mandanten", 0, "1  Musterhandel KG");
  EXPECT_OUTCOME("konten 1 --art debitoren --sortierung 2", 0, "Mustermann");
  EXPECT_OUTCOME("konten 1 --art kostenstellen", 0, "Dimension");
  EXPECT_OUTCOME("konten 1 --art debitoren --sortierung 2 --ab Öl", 0, "10140");
  EXPECT_OUTCOME("konten 1 --ab 漢", 2, "--ab 漢");
  EXPECT_OUTCOME("frei 1 debitoren", 0, "10241");
  EXPECT_OUTCOME("frei 1 kreditoren --von 75000 --bis 75999", 0, "75000");
  EXPECT_OUTCOME("frei 1 debitoren --von 10240 --bis 10240", 2, "-37 ZELKERR_Ueberlauf");
  EXPECT_OUTCOME("frei 1 kostenstellen", 2, "zulässig");
  EXPECT_OUTCOME("konten 3", 2, "-5 ZELKERR_uzl_Mandnr");
  EXPECT_OUTCOME("stapel 1 3", 0, "Der Stapel hat keine Buchungen.");
  EXPECT_OUTCOME("buchen 1 3 " + sample("musterhandel-buchungen.csv"), 0,
                 "363 Zeilen gelesen, 300 Buchungen: 300 gebucht, 0 abgelehnt.");
  EXPECT_OUTCOME("buchen 2 2 " + sample("alpenwerk-buchungen.csv"), 0, "40 gebucht, 0 abgelehnt.");
  EXPECT_OUTCOME("stapel 1 3", 0, "300 Buchungen, 336 Zeilen, 106 Kostenbuchungen");
  EXPECT_OUTCOME("stapel 1", 0, "ja");
  EXPECT_OUTCOME("verbuchen 1 3 --tag 31.02.2026", 2, "erwartet wird ein Datum");
  EXPECT_OUTCOME("verbuchen 1 3 --benutzer 9", 1, "Den Benutzer 9 gibt es nicht.");
  EXPECT_OUTCOME("verbuchen 1 3 --tag 21.11.2026 --benutzer 1", 0, "2025                 171          476");
  EXPECT_OUTCOME("verbuchen 1 3", 0, "Es gibt nichts zu verbuchen.");
  EXPECT_OUTCOME("verbuchen 1 2", 1, "Ein wiederkehrender Stapel ist eine Vorlage");
  EXPECT_OUTCOME("buchen 1 3 " + sample("musterhandel-eroeffnung.csv"), 0, "34 gebucht, 0 abgelehnt.");
  EXPECT_OUTCOME("verbuchen 1 3", 0, "Offene Posten: 0 angelegt, 0 erhöht, 0 Zahlungen, 0 ausgeglichen.");
  EXPECT_OUTCOME("fehlertext -12", 0, "ZELKERR_uzl_Bruttobetrag");
}

TEST_F(Zelkctl, KeepsBatchesAndPaymentTerms) {
  provisionByProgram();
  ASSERT_EQ(run("anlegen " + sample("musterhandel")).code, 0);
  const struct {
    const char *arguments;
    int code;
    const char *text;
  } steps[] = {
      {"stapel", 2, "Es fehlt eine Angabe: MANDANT"},
      {"stapel anlegen 1 \"Löhne\" --wiederkehr 1 --abstimm0 ja", 0, "Stapel 11 angelegt."},
      {"stapel anlegen 1 Shop --nummer 50", 0, "Stapel 50 angelegt."},
      {"stapel anlegen 1 Shop", 2, "-81 ZELKERR_uzl_Name"},
      {"stapel anlegen 1 漢", 2, "NAME 漢"},
      {"stapel aendern 1 11 --transitorisch vielleicht", 2, "zulässig"},
      {"stapel aendern 1 11 --transitorisch ja --abstimm0 nein", 0, "Stapel 11 geändert."},
      {"stapel zeigen 1", 0, "11  Löhne                                    1  ja"},
      {"stapel aendern 1 99 --name x", 2, "-6 ZELKERR_uzl_Stapelnr"},
      {"stapel aendern 9 1 --name x", 2, "-5 ZELKERR_uzl_Mandnr"},
      {"stapel aendern 1 7 --name x", 2, "-91 ZELKERR_StapelPasswort"},
      {"stapel leeren 1 3", 1, "Stapel 3 ist geschützt."},
      {"stapel leeren 1 50", 0, "Stapel 50 geleert."},
      {"stapel zeigen 1 50", 0, "keine Buchungen"},
      {"stapel loeschen 1 50", 0, "Stapel 50 gelöscht."},
      {"stapel 1 50", 2, "-6 ZELKERR_uzl_Stapelnr"},
      {"stapel loeschen --hilfe", 0, "STAPEL"},
      {"zahlungsziel anlegen 1 NEU --skontotage1 10 --skontosatz1 3 --zahltage 30", 0, "Zahlungsziel 6 angelegt."},
      {"zahlungsziel anlegen 1 NEU", 2, "-50 ZELKERR_ZZ_existiert"},
      {"zahlungsziel anlegen 1 ABCDEFGHIJK", 2, "höchstens 10 Zeichen"},
      {"zahlungsziel aendern 1 NEU --skontotage2 20 --skontosatz2 2 --bemerkung Öfter", 0, "Zahlungsziel 6 geändert."},
      {"zahlungsziel aendern 1 6 --kuerzel \"30 NETTO\"", 2, "-32 ZELKERR_Kuerzel_existiert"},
      {"zahlungsziel zeigen 1 NEU", 0, "Skonto 2:     20 Tage 2,00 %"},
      {"zahlungsziel zeigen 1 FEHLT", 2, "-27 ZELKERR_uzl_Zahlungsziel"},
      {"zahlungsziel liste 1", 0, "6  NEU        10 Tage 3,00 %  20 Tage 2,00 %        30"},
      {"zahlungsziel liste 9", 2, "-5 ZELKERR_uzl_Mandnr"},
  };
  for (const auto &step : steps) {
    SCOPED_TRACE(step.arguments);
    EXPECT_OUTCOME(step.arguments, step.code, step.text);
  }
}

TEST_F(Zelkctl, ShowsFiguresAndStructures) {
  provisionByProgram();
  ASSERT_EQ(run("anlegen " + sample("musterhandel")).code, 0);
  auto store = session();
  uint8_t found = 0;
  ASSERT_TRUE(store->SetzeFista(1, found) && found);
  vldb98::DATENBANK record{};
  const auto key = vldb98::KeyBuilder().account("1000");
  ASSERT_TRUE(store->UsedGet(record, key, found, vldb98::kSachkonto, vldb98::ZELK_ENG_DEFAULT) && found);
  put(record.Sachkonto.Werte.Eroeffnung.Soll, "000001000,00");
  put(record.Sachkonto.Werte.Monat[4].Haben, "000012345,67");
  put(record.Sachkonto.EuroWerte.Monat[4].Haben, "000000500,00");
  put(record.Sachkonto.Sollwerte.Monat[11], "000001200,00");
  put(record.Sachkonto.Sollwerte.Gesamt, "000001200,00");
  ASSERT_TRUE(store->Update(record, vldb98::kSachkonto, vldb98::ZELK_ENG_DEFAULT));
  const struct {
    const char *arguments;
    int code;
    const char *text;
  } steps[] = {
      {"saldo 1 1000", 0, "1000   KASSE   Hauptkasse  -11.345,67     -500,00\n"},
      {"saldo 1 1000 --csv", 0, "Konto;Kürzel;Name;Saldo;Euro-Saldo\n1000;KASSE;Hauptkasse;-11345,67;-500,00\n"},
      {"saldo 1", 0, "\nSumme                                                      -11.345,67     -500,00\n"},
      {"saldo 1 --datum 30.04.2026", 0, "\nSumme                                                      1.000,00"},
      {"saldo 1 --datum 30.04.2024", 0, "Es gibt keine Konten."},
      {"saldo 1 1000 --datum 31.02.2026", 2, "-64 ZELKERR_uzl_Datum"},
      {"saldo 1 --art kost", 0, "5001      1"},
      {"saldo 1 5001 --dimension 1", 0, "Papier und Schreibwaren"},
      {"saldo 1 5001", 2, "-10 ZELKERR_uzl_Kontonr"},
      {"saldo 1 漢", 2, "KONTO 漢"},
      {"saldo 9", 2, "-5 ZELKERR_uzl_Mandnr"},
      {"saldo 1 --art bank", 2, "zulässig"},
      {"umsatz 1 1000", 0, "5 Mai            0,00  12.345,67  -12.345,67"},
      {"umsatz 1 1000", 0, "2. Quartal       0,00  12.345,67  -12.345,67"},
      {"umsatz 1 1000 --csv", 0, "\nJahr;1000,00;12345,67;-11345,67;0,00;500,00;-500,00\n"},
      {"umsatz 1 100", 0, "Zeitraum     Kosten  Euro-Kosten"},
      {"umsatz 1 1000 --jahr 2030", 2, "-44 ZELKERR_uzl_Zeitraum"},
      {"sollwerte 1", 0, "1000   KASSE       1.200,00  EUR            0,00        0,00"},
      {"sollwerte 1 --csv", 0, "\n1000;KASSE;Hauptkasse;1200,00;EUR;0,00;0,00;"},
      {"sollwerte 1 --art kred", 0, "Es gibt keine Sollwerte."},
      {"sollwerte 1 --art debi --alle", 0, "10010"},
      {"sollwerte 1 --jahr 2030", 2, "-44 ZELKERR_uzl_Zeitraum"},
      {"aufbau 1 0", 0, "\n    Immaterielle Vermögensgegenstände                 A.A.I\n      0027  EDV-Software\n"},
      {"aufbau 1 0 --alle", 0, "1592  Verrechnung Wareneingang  (verborgen)"},
      {"aufbau 1 0 --csv", 0, "Ebene;Art;Name;Kennung;Bezeichnung\n1;0;Aktiva;AKTIVA;\n"},
      {"aufbau 1 5", 0, "Der Aufbau hat keine Zeilen."},
      {"aufbau 1 33", 2, "-67 ZELKERR_uzl_Klasse"},
  };
  for (const auto &step : steps) {
    SCOPED_TRACE(step.arguments);
    EXPECT_OUTCOME(step.arguments, step.code, step.text);
  }
}

TEST_F(Zelkctl, ShowsItemsAndDunningLevels) {
  provisionByProgram();
  ASSERT_EQ(run("anlegen " + sample("musterhandel")).code, 0);
  auto store = session();
  uint8_t found = 0;
  ASSERT_TRUE(store->SetzeFista(1, found) && found);
  auto insert = [&](int table, int32_t number, const char *account, const char *gross, const char *left) {
    vldb98::DATENBANK record{};
    vldb98::OPBELEG &item = record.Opbeleg;
    item = itemOf(number, account, "R-" + std::to_string(number));
    put(item.Kuerzel, account);
    put(item.Brutto, gross);
    put(item.Ausstand, left);
    put(item.Text, "mit;\"Zeichen\"");
    item.Mahnstufe = int16_t(number);
    if (table == vldb98::kHistOPDebitor) {
      record.Ophistorie.Zeile = 1;
      put(record.Ophistorie.Zahlung, gross);
    }
    ASSERT_TRUE(store->Insert(record, vldb98::FileNumber(table), vldb98::ZELK_ENG_DEFAULT));
  };
  insert(vldb98::kOPDebitor, 1, "10010", "000001234,50", "000001000,00");
  insert(vldb98::kOPDebitor, 2, "10020", "999999999,99", "999999999,99");
  insert(vldb98::kOPDebitor, 3, "10010", "000000012-50", "000000000-05");
  insert(vldb98::kOPKreditor, 4, "70010", "000000001,00", "000000001,00");
  insert(vldb98::kHistOPDebitor, 5, "10010", "000000070,00", "000000000,00");
  insert(vldb98::kHistOPDebitor, 6, "10020", "000000007,00", "000000000,00");
  EXPECT_OUTCOME(
      "op 1", 0,
      "Konto  Kürzel  Beleg  OP  Datum     Fällig          Brutto          Ausstand  FW offen  Wä.  Mahnst.  "
      "Text\n");
  EXPECT_OUTCOME("op 1", 0, "\n10010  10010   R-1        21.01.26                1.234,50          1.000,00");
  EXPECT_OUTCOME("op 1", 0, "\nSumme                                                       1.000.000.999,94\n");
  EXPECT_OUTCOME("op 1 10010", 0, "\nSumme                                                   999,95\n");
  EXPECT_OUTCOME("op 1 70010", 0, "70010   R-4");
  EXPECT_OUTCOME("op 1 70010 --art debi", 2, "-10 ZELKERR_uzl_Kontonr");
  EXPECT_OUTCOME("op 1 10030", 0, "Es gibt keine offenen Posten.");
  EXPECT_OUTCOME("op 1 10010 --csv", 0, ";\"mit;\"\"Zeichen\"\"\";;-12,50;-0,05;EUR;");
  EXPECT_OUTCOME("op 1 --historisch", 0,
                 "\nSumme                                                       77,00    0,00\n");
  EXPECT_OUTCOME("op 1 10020 --historisch --ab 01.01.2026", 0,
                 "\nSumme                                                        7,00    0,00\n");
  EXPECT_OUTCOME("op 1 10020 --historisch --beleg R-5", 0, "Es gibt keine solchen historischen Posten.");
  EXPECT_OUTCOME("op 1 --historisch --op R-6 --csv", 0, ";Zahlbelegnummer;");
  EXPECT_OUTCOME("op 1 --historisch --ab gestern", 2, "-64 ZELKERR_uzl_Datum");
  EXPECT_OUTCOME("op 1 --beleg R-5", 2, "--beleg nur mit --historisch");
  EXPECT_OUTCOME("op 1 漢", 2, "KONTO 漢");
  EXPECT_OUTCOME("op --hilfe", 0, "Kontonummer; ohne sie die Posten aller Konten");
  EXPECT_OUTCOME("mahnstufe 1 10010", 0, "10010  Ahornblatt Verlagskontor GmbH          3\n");
  EXPECT_OUTCOME("mahnstufe 1 10010 --csv", 0, "Konto;Name;Mahnstufe\n10010;Ahornblatt Verlagskontor GmbH;3\n");
  EXPECT_OUTCOME("mahnstufe 1 70010", 2, "-10 ZELKERR_uzl_Kontonr");
}

TEST_F(Zelkctl, MakesBooksForAHostInC) {
  provisionByProgram();
  ASSERT_EQ(run("anlegen " + sample("musterhandel")).code, 0);
  fs::path output = folder() / "host.txt";
  EXPECT_EQ(runProgram(ZELK_HOST, "1 3", output.string()), 0);
  std::string text = platform::readFile(output.string()).value_or("");
  EXPECT_NE(text.find("client 1: Musterhandel KG"), std::string::npos) << text;
  EXPECT_NE(text.find("210126 HOST-1 1200 an 1000 000001234,50"), std::string::npos) << text;
  EXPECT_EQ(runProgram(ZELK_HOST, "1 77", output.string()), 1);
}

TEST_F(Zelkctl, NamesEachRefusalAndPostsTheRest) {
  provisionByProgram();
  ASSERT_EQ(run("anlegen " + sample("musterhandel")).code, 0);
  Outcome outcome = run("buchen 1 3 " + sample("fehlerhaft.csv"));
  EXPECT_EQ(outcome.code, 1);
  EXPECT_NE(outcome.text.find("56 Zeilen gelesen, 50 Buchungen: 14 gebucht, 36 abgelehnt."), std::string::npos)
      << outcome.text;
  struct Refusal {
    const char *lines, *code, *field; // code empty: zelkctl refuses the rows itself
  };
  const Refusal refusals[] = {{"3", "-10 ", "Sollkonto, Habenkonto"},
                              {"5", "-12 ", "Bruttobetrag"},
                              {"7", "-11 ", "Belegdatum"},
                              {"9", "-37 ", "Text "},
                              {"11", "-62 ", "Belegnummer"},
                              {"15", "-8 ", "Sollkonto"},
                              {"19", "-61 ", "Valutadatum"},
                              {"21", "", "6 Felder"},
                              {"24", "-13 ", "Steuersatz"},
                              {"25", "-14 ", "Steuerbetrag"},
                              {"26", "-13 ", "Steuersatz"},
                              {"27", "-82 ", "Kostenschablone"},
                              {"28", "-83 ", "Währung"},
                              {"29", "-83 ", "Währung"},
                              {"30", "-63 ", "Währung"},
                              {"31", "-65 ", "Währung"},
                              {"34", "-23 ", "Kostenstelle"},
                              {"35", "-97 ", "Kostenstelle"},
                              {"36", "-23 ", "Kostenstelle"},
                              {"37", "-46 ", "Kostenkennung"},
                              {"38", "-47 ", "Kostenbetrag"},
                              {"39", "-99 ", "Menge"},
                              {"40-41", "-100 ", "Einheit"},
                              {"42", "-24 ", "Kostenstelle"},
                              {"43", "-24 ", "Kostenstelle"},
                              {"44-45", "-26 ", "Split"},
                              {"46-47", "-26 ", "Split"},
                              {"48-49", "-26 ", "Split"},
                              {"50-51", "", "Belegnummer"},
                              {"52", "", "Vor der Kostenbuchung"},
                              {"53", "", "nicht beisammen"},
                              {"55", "", "nicht beisammen"},
                              {"56", "-37 ", "Bemerkung"},
                              {"57", "", "Eröffnungs- und Abschlussbuchungen"}};
  for (const Refusal &r : refusals) {
    bool named = false;
    std::istringstream lines(outcome.text);
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      std::string rows, code;
      words >> rows >> code;
      if (rows == r.lines && line.find(r.field) != std::string::npos)
        named = *r.code ? code + " " == r.code : line.find("ZELKERR") == std::string::npos;
    }
    EXPECT_TRUE(named) << r.lines << "\n" << outcome.text;
  }
  EXPECT_OUTCOME("stapel 1 3", 0, "14 Buchungen");
}

TEST_F(Zelkctl, PostsAndShowsSplitsCostsAndCurrencies) {
  provisionByProgram();
  ASSERT_EQ(run("anlegen " + sample("musterhandel")).code, 0);
  std::string rows = "Belegdatum;Belegnummer;Split;Text;Sollkonto;Habenkonto;Bruttobetrag;Steuersatz;Währung;"
                     "Kostenstelle;Kostenträger;Kostenstelle 3;Kostenkennung;Kostenbetrag;Menge;Einheit;Bemerkung\n"
                     "21.01.2026;B1;a;Büromaterial;4930;70010;119,00;19,00;;400;;NORD;1;60,00;;Std;\n"
                     ";;a;;;;;;;500;5001;;2;40,00;12,00;Std;Lager\n"
                     "21.01.2026;;a;Ein Fachbuch mit recht langem Titel;4940;70010;10,70;7,00;;;;;;;;;\n"
                     "22.01.2026;B2;;Ausfuhr;10240;8120;1.200,00;;USD;;;;;;;;\n";
  for (int i = 3; i <= 14; ++i) // more lines than the record of a split posting holds
    rows +=
        std::string(i == 3 ? "23.01.2026;B3" : ";") + ";b;Zeile " + std::to_string(i) + ";4970;1200;1,00;;;;;;;;;;\n";
  EXPECT_OUTCOME("buchen 1 3 " + write("teile.csv", rows), 0, "16 Zeilen gelesen, 3 Buchungen: 3 gebucht");
  EXPECT_OUTCOME("stapel 1 3", 0,
                 R"(Datum     Beleg  Soll   Haben    Brutto  Wä.   %  Steuer     Netto  Fällig    Text
--------  -----  -----  -----  --------  ---  --  ------  --------  --------  ------------------------------------------
21.01.26  B1     4930   70010    119,00       19   19,00    100,00  20.02.26  Büromaterial
                                                             60,00            KSt 400 KSt3 NORD 60,00 % fix
                                                             40,00            KSt 500 KTr 5001 40,00 % var. 12,00 Std L…
                 4940   70010     10,70        7    0,70     10,00  20.02.26  Ein Fachbuch mit recht langem Titel
22.01.26  B2     10240  8120   1.023,00                   1.023,00  21.02.26  Ausfuhr
                               1.200,00  USD              1.200,00
23.01.26  B3     4970   1200       1,00                       1,00            Zeile 3
                 4970   1200       1,00                       1,00            Zeile 4
)");
  EXPECT_OUTCOME("stapel 1 3", 0, "3 Buchungen, 15 Zeilen, 2 Kostenbuchungen");
}

TEST_F(Zelkctl, RefusesFilesThatAreNoPostings) {
  provisionByProgram();
  ASSERT_EQ(run("anlegen " + sample("musterhandel")).code, 0);
  const std::string header = "Belegdatum;Belegnummer;Sollkonto;Habenkonto;Bruttobetrag";
  EXPECT_OUTCOME("buchen 1 3 " + quoted(folder() / "nirgends.csv"), 2, "kann nicht gelesen werden");
  EXPECT_OUTCOME("buchen 1 3 " + write("leer.csv", ""), 2, "Die Datei ist leer.");
  EXPECT_OUTCOME("buchen 1 3 " + write("kurz.csv", "Belegdatum;Belegnummer\n"), 2, "Die Spalte \"Sollkonto\" fehlt.");
  EXPECT_OUTCOME("buchen 1 3 " + write("fremd.csv", header + ";Farbe\n"), 2, "Die Spalte \"Farbe\" gibt es nicht.");
  EXPECT_OUTCOME("buchen 9 3 " + write("gut.csv", header + "\n21.01.2026;B1;1200;1000;5,00\n"), 2,
                 "Abgebrochen in Zeile 2");
  EXPECT_OUTCOME("buchen 1 99 " + quoted(folder() / "gut.csv"), 2, "-6");
  // A date is a date as a whole, not where its beginning is one; a number is one of 32 bits.
  EXPECT_OUTCOME(
      "buchen 1 3 " +
          write("datum.csv",
                header + "\n2101269;B1;1200;1000;5,00\n1.1.26 Uhr;B2;1200;1000;5\n12345\xC3\xBC;B3;1200;1000;5\n"),
      1, "3 abgelehnt");
  EXPECT_OUTCOME("buchen 1 3 " + write("ziel.csv", header + ";Zahlungsziel\n21.01.2026;B1;1200;1000;5,00;4294967297\n"),
                 1, "keine ganze Zahl");
  // The kinds of the accounts are looked up when the file leaves them out.
  EXPECT_OUTCOME("buchen 1 3 " +
                     write("arten.csv", header + "\n21.01.2026;B1;1200;10000;5,00\n21.01.2026;B2;70000;1200;5\n"),
                 0, "2 gebucht");
  EXPECT_OUTCOME("buchen 1 3 " + write("ansi.csv", header + ";Text\n21.01.2026;B1;1200;1000;5,00;Gr\xFC\xDF"
                                                            "e\n"),
                 1, "kein UTF-8");
}

TEST_F(Zelkctl, SwitchesAndShowsTheCallProtocol) {
  EXPECT_OUTCOME("protokoll an", 2, "zelkctl einrichten VERZEICHNIS");
  provisionByProgram();
  EXPECT_OUTCOME("protokoll zeigen", 1, "Es gibt noch kein Protokoll.");
  EXPECT_OUTCOME("protokoll an", 0, "ZELKPROT.TXT");
  EXPECT_OUTCOME("konten 9 --ab Müß", 2, "-5");
  for (int i = 0; i < 2; ++i) // what shows it does not empty it
    EXPECT_OUTCOME("protokoll zeigen", 0, "Ab: Müß");
  EXPECT_OUTCOME("protokoll aus", 0, "nicht mehr");
  EXPECT_OUTCOME("konten 8", 2, "-5");
  EXPECT_OUTCOME("protokoll zeigen", 0, "Mandantennummer: 9");
  EXPECT_OUTCOME("protokoll datei " + quoted(folder() / "eigenes.txt"), 0, "ZELK_ProtokollStart");
  EXPECT_OUTCOME("protokoll zeigen", 1, "eigenes.txt");
  EXPECT_OUTCOME("protokoll zeigen " + quoted(folder() / "programm" / "ZELKPROT.TXT"), 0, "Ende des Protokolls.");
}

TEST_F(Zelkctl, SaysWhatIsWrongWithTheCommand) {
  for (const char *arguments : {"", "buchen", "buchen 1 drei x.csv", "konten 1 --art farben", "konten 1 --sortierung 3",
                                "tanzen", "konten 1 2"}) {
    Outcome outcome = run(arguments);
    EXPECT_EQ(outcome.code, 2) << arguments;
    EXPECT_NE(outcome.text.find("Hilfe: zelkctl --hilfe"), std::string::npos) << outcome.text;
  }
  EXPECT_OUTCOME("--hilfe", 0, "einrichten");
  EXPECT_OUTCOME("buchen --hilfe", 0, "STAPEL");
  EXPECT_OUTCOME("--version", 0, "zelkctl ");
}

/// A client folder that is complete but for what a case does to one of its files.
class ClientFolder : public Zelkctl {
protected:
  void writeGood() {
    write("m/firmenstamm.csv", "Nummer;Name;AktJahr;Gejabeginn;Waehrung;Kontolaenge\n7;Prüfling;2026;1;EUR;4\n");
    write("m/geschaeftsjahr.csv", "Jahr;Beginn;Ende\n2025;01.01.2025;31.12.2025\n2026;01.01.2026;31.12.2026\n");
    write("m/sachkonto.csv", "Nr;Name\n1000;Kasse\n1200;Bank\n");
    write("m/debitor.csv", "Nr;Name;Kreditlimit\n10000;Kunde;1.500,00\n");
    write("m/stapel.csv", "Nr;Name\n1;Stapel\n");
  }
};

TEST_F(ClientFolder, IsLoadedWholeOrNotAtAll) {
  provisionByProgram();
  struct Case {
    const char *file, *text, *expected;
  };
  const Case cases[] = {
      {"firmenstamm.csv", "Nummer;Name\n", "genau einer Zeile"},
      {"firmenstamm.csv", "Nummer;Name;AktJahr\n0;x;2026\n", "Nummer"},
      {"firmenstamm.csv", "Nummer;Name;AktJahr;Gejabeginn;Waehrung;Kontolaenge\n7;x;2026;1;EUR;8\n",
       "Kontolaenge muss"},
      {"firmenstamm.csv", "Nummer;Name;AktJahr;Gejabeginn\n7;x;2026;1\n", "Waehrung fehlt."},
      {"geschaeftsjahr.csv", "Jahr;Beginn;Ende\n1970;01.01.2026;31.12.2026\n", "Jahr muss von 1980 bis 2079 gehen."},
      {"sachkonto.csv", "Nr;Name;Jahr\n1000;Kasse;x2026\n", "erwartet wird ein Jahr"},
      {"firmenstamm.csv", "Nummer;Name;AktJahr\n70000;x;2026\n",
       "Zeile 2: Nummer = \"70000\": erwartet wird eine Zahl von 1 bis 65535"},
      {"firmenstamm.csv", "Nummer;Name;AktJahr\n7;x;2024\n", "AktJahr ist keines der Geschäftsjahre"},
      {"geschaeftsjahr.csv", "Jahr;Beginn;Ende\n2026;31.12.2026;01.01.2026\n", "vertauscht"},
      {"geschaeftsjahr.csv", "Jahr;Beginn;Ende\n2026;01.01.2026;31.02.2026\n", "erwartet wird ein Datum TT.MM.JJJJ"},
      {"sachkonto.csv", "Nr;Farbe\n1000;rot\n", "Die Spalte \"Farbe\" gibt es nicht."},
      {"sachkonto.csv", "Nr;Name\n12345678;Zu lang\n", "höchstens 7 Zeichen"},
      {"sachkonto.csv", "Nr;Name\n;Ohne\n", "Die Kontonummer fehlt."},
      {"sachkonto.csv", "Nr;Name\n1000;Kasse\n10000;Kunde\n", "Konto 10000"},
      {"sachkonto.csv", "Nr;Name\n1000;Kasse\n1000;Kasse\n", "Zeile 3"},
      {"sachkonto.csv", "Nr;Name;GuV\n1000;Kasse;2\n", "erwartet wird 0 oder 1"},
      {"sachkonto.csv", "Nr;Name;Jahr\n1000;Kasse;2031\n", "Jahr 2031 ist keines der Geschäftsjahre"},
      {"debitor.csv", "Nr;Name;Kreditlimit\n10000;Kunde;1,500.00\n", "erwartet wird ein Betrag"},
      {"debitor.csv", "Nr;Name\n10000\n", "Die Zeile hat 1 Felder, die Kopfzeile 2."},
      {"debitor.csv", "Nr;Name;Sammelkonto\n10000;Kunde;1400\n", "Zeile 2: Sammelkonto 1400 gibt es nicht"},
      {"debitor.csv", "Nr;Name;Zahlungsziel\n10000;Kunde;4\n", "Zahlungsziel 4 gibt es nicht"},
      {"aufbau0.csv", "Nr;Vater;Name\n1;0;Bilanz\n2;9;Aktiva\n", "Die Zeile 9 (Vater) gibt es nicht."},
      {"batchbuchung.csv", "Stapel\n1\n", "Zu diesem Namen gibt es keine Tabelle."},
      {"farben.csv", "Nr\n1\n", "Zu diesem Namen gibt es keine Tabelle."},
  };
  for (const Case &c : cases) {
    fs::remove_all(folder() / "m");
    writeGood();
    write(std::string("m/") + c.file, c.text);
    Outcome outcome = run("anlegen " + quoted(folder() / "m"));
    EXPECT_EQ(outcome.code, 1) << c.file << "\n" << c.text;
    EXPECT_NE(outcome.text.find(c.expected), std::string::npos) << c.expected << "\n" << outcome.text;
    EXPECT_NE(outcome.text.find("Es wurde nichts angelegt."), std::string::npos) << outcome.text;
    EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten) << c.file << "\n" << c.text;
  }
  fs::remove_all(folder() / "m");
  writeGood();
  EXPECT_OUTCOME("anlegen " + quoted(folder() / "m"), 0, "Mandant 7 angelegt.");
  EXPECT_EQ(ZELK_ExistiertKonto(7, "10000", ZELK_DEBITOR, 0, nullptr), ZELK_OK);
}

TEST_F(ClientFolder, LinksTheLinesOfAStructure) {
  provisionByProgram();
  writeGood();
  write("m/aufbau0.csv", "Nr;Vater;Name\n1;0;Bilanz\n2;1;Aktiva\n9;2;Kasse\n3;1;Passiva\n4;2;Bank\n");
  ASSERT_EQ(run("anlegen " + quoted(folder() / "m")).code, 0);
  auto store = session();
  uint8_t found;
  ASSERT_TRUE(store->SetzeFista(7, found) && found);
  struct Line {
    int32_t number, child, next;
  };
  for (const Line &line : {Line{1, 2, 0}, {2, 9, 3}, {9, 0, 4}, {4, 0, 0}, {3, 0, 0}}) {
    vldb98::DATENBANK record{};
    ASSERT_TRUE(store->UsedGet(record, vldb98::KeyBuilder().number(line.number), found, 7, vldb98::ZELK_ENG_DEFAULT) &&
                found);
    EXPECT_EQ(record.Aufbau.Kind, line.child) << line.number;
    EXPECT_EQ(record.Aufbau.Naechste, line.next) << line.number;
  }
}

TEST(ClientFolderDocumentation, NamesEveryField) {
  std::string text = platform::readFile((sourceFolder() / "docs" / "mandantenordner.md").string()).value_or("");
  for (const vldb98::Table &table : vldb98::allTables()) {
    if (table.origin != vldb98::Origin::MasterData || table.number == vldb98::kDmsId) continue;
    for (const vldb98::Field &field : table.fields) {
      if (field.origin != vldb98::Origin::MasterData) continue;
      EXPECT_NE(text.find("`" + std::string(field.name) + "`"), std::string::npos) << table.name << "." << field.name;
    }
  }
}

} // namespace
} // namespace test
