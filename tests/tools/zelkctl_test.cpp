// The verbs of zelkctl.
#include "support/items.h"
#include "tools/zelkctl.h"

namespace test {
namespace {

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
      {"zahlungsziel aendern 1 NEU --skontotage1 1", 0, "Zahlungsziel 6 geändert."},
      {"zahlungsziel zeigen 1 NEU", 0, "Skonto 1:     1 Tag 3,00 %"},
      {"zahlungsziel aendern 1 NEU --skontotage1 10", 0, "Zahlungsziel 6 geändert."},
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
  ASSERT_TRUE(store->UsedGet(record, key, found, vldb98::kSachkonto) && found);
  put(record.Sachkonto.Werte.Eroeffnung.Soll, "000001000,00");
  put(record.Sachkonto.Werte.Monat[4].Haben, "000012345,67");
  put(record.Sachkonto.EuroWerte.Monat[4].Haben, "000000500,00");
  put(record.Sachkonto.Sollwerte.Monat[11], "000001200,00");
  put(record.Sachkonto.Sollwerte.Gesamt, "000001200,00");
  ASSERT_TRUE(store->Update(record, vldb98::kSachkonto));
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
      {"saldo 1 --art kost", 0, "0,00        0,00\nSumme     2 "},
      {"saldo 1 --art kost --csv --dimension 2", 0, "Euro-Saldo\nNORD;2;;NORD;"},
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
      put(record.Ophistorie.Zahldatum, number == 5 ? "460101" : "460301");
    }
    ASSERT_TRUE(store->Insert(record, vldb98::FileNumber(table)));
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
  EXPECT_OUTCOME("op 1 --historisch --ab 01.02.2026", 0,
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
  std::filesystem::path output = folder() / "host.txt";
  EXPECT_EQ(runProgram(ZELK_HOST, "1 3", output.string()), 0);
  std::string text = platform::readFile(output.string()).value_or("");
  EXPECT_NE(text.find("client 1: Musterhandel KG"), std::string::npos) << text;
  EXPECT_NE(text.find("210126 HOST-1 1200 an 1000 000001234,50"), std::string::npos) << text;
  EXPECT_EQ(runProgram(ZELK_HOST, "1 77", output.string()), 1);
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

#ifdef __linux__
TEST_F(Zelkctl, SaysWhenItsOutputIsLost) {
  provisionByProgram();
  ASSERT_EQ(run("anlegen " + sample("musterhandel")).code, 0);
  for (const char *arguments : {"--hilfe", "mandanten", "konten 1", "op 1 --csv", "stapel leeren 1 8"})
    EXPECT_EQ(runProgram(ZELK_ZELKCTL, arguments, "/dev/full"), 3) << arguments;
  // A pipe without a reader.
  const std::string shell = "-c 'mkfifo \"$1\"; exec 3<>\"$1\" 4>\"$1\" 3<&-; \"$0\" konten 1 >&4' " ZELK_ZELKCTL " ";
  EXPECT_EQ(runProgram("/bin/sh", shell + quoted(folder() / "pipe"), (folder() / "output.txt").string()), 3);
}
#endif

TEST_F(Zelkctl, SaysWhatIsWrongWithTheCommand) {
  const struct {
    const char *arguments, *text;
  } rows[] = {{"", "Es fehlt eine Angabe: BEFEHL\nHilfe: zelkctl --hilfe\n"},
              {"buchen", "Es fehlt eine Angabe: MANDANT\nHilfe: zelkctl buchen --hilfe\n"},
              {"buchen 1 drei x.csv", "Eine Angabe ist keine Zahl: STAPEL = drei\n"},
              {"konten 1 --art farben", "Eine Angabe ist nicht zulässig: --art: farben; zulässig: {"},
              {"konten 1 --sortierung 3", "Eine Angabe ist nicht zulässig: --sortierung: "},
              {"tanzen", "Unbekannter Befehl: tanzen\nHilfe: zelkctl --hilfe\n"},
              {"--tanzen", "Unbekannte Option: --tanzen\n"},
              {"zahlungsziel tanzen 1", "Unbekannter Befehl: zahlungsziel tanzen\nHilfe: zelkctl zahlungsziel --hilfe"},
              {"stapel tanzen", "Eine Angabe ist weder Befehl noch Zahl: MANDANT = tanzen\n"},
              {"konten 1 2", "Eine Angabe ist unbekannt oder zu viel: 2\n"},
              {"konten 1 --farbe rot", "Unbekannte Option: --farbe\n"}};
  for (const auto &row : rows) {
    SCOPED_TRACE(row.arguments);
    EXPECT_OUTCOME(row.arguments, 2, row.text);
  }
  EXPECT_OUTCOME("--hilfe", 0, "einrichten");
  EXPECT_OUTCOME("stapel loeschen --help", 0, "STAPEL");
  EXPECT_OUTCOME("buchen --hilfe", 0, "STAPEL");
  EXPECT_OUTCOME("--version", 0, "zelkctl ");
}

} // namespace
} // namespace test
