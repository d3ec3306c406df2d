// zelkctl as people use it, as a program: what it prints, what it leaves, its exit codes.
#include <fstream>
#include <sstream>

#include "platform/files.h"
#include "support/books.h"
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
    return {code, platform::readFile(output.string()).value_or("")};
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
  EXPECT_OUTCOME("konten 3", 2, "-5 ZELKERR_uzl_Mandnr");
  EXPECT_OUTCOME("stapel 1 3", 0, "Der Stapel hat keine Buchungen.");
  EXPECT_OUTCOME("buchen 1 3 " + sample("musterhandel-buchungen.csv"), 0,
                 "300 Zeilen gelesen, 300 gebucht, 0 abgelehnt.");
  EXPECT_OUTCOME("buchen 2 2 " + sample("alpenwerk-buchungen.csv"), 0, "40 Zeilen gelesen, 40 gebucht, 0 abgelehnt.");
  EXPECT_OUTCOME("stapel 1 3", 0, "300 Zeilen");
  EXPECT_OUTCOME("stapel 1", 0, "ja");
  EXPECT_OUTCOME("fehlertext -12", 0, "ZELKERR_uzl_Bruttobetrag");
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
  EXPECT_NE(outcome.text.find("21 Zeilen gelesen, 11 gebucht, 10 abgelehnt."), std::string::npos) << outcome.text;
  struct Refusal {
    const char *line, *code, *name, *field;
  };
  const Refusal refusals[] = {{"3", "-10", "ZELKERR_uzl_Kontonr", "Sollkonto, Habenkonto"},
                              {"5", "-12", "ZELKERR_uzl_Bruttobetrag", "Bruttobetrag"},
                              {"7", "-11", "ZELKERR_uzl_Belegdatum", "Belegdatum"},
                              {"9", "-37", "ZELKERR_Ueberlauf", "Text"},
                              {"11", "-62", "ZELKERR_uzl_Belegnr", "Belegnummer"},
                              {"15", "-8", "ZELKERR_uzl_Sollkontonr", "Sollkonto"},
                              {"19", "-61", "ZELKERR_uzl_Valutadatum", "Valutadatum"}};
  for (const Refusal &r : refusals) {
    bool named = false;
    std::istringstream lines(outcome.text);
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      std::string number, code, name;
      words >> number >> code >> name;
      if (number == r.line) named = code == r.code && name == r.name && line.find(r.field) != std::string::npos;
    }
    EXPECT_TRUE(named) << r.line << "\n" << outcome.text;
  }
  EXPECT_OUTCOME("stapel 1 3", 0, "11 Zeilen");
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
    if (table.number == vldb98::kBatchbuchung || table.number == vldb98::kSplit || table.number == vldb98::kKobu ||
        table.number == vldb98::kDmsId)
      continue;
    for (const vldb98::Field &field : table.fields)
      EXPECT_NE(text.find("`" + std::string(field.name) + "`"), std::string::npos) << table.name << "." << field.name;
  }
}

} // namespace
} // namespace test
