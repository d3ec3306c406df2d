// A client folder: how it is checked and loaded.
#include "records/schema.h"
#include "tools/zelkctl.h"

namespace test {
namespace {

namespace fs = std::filesystem;

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
      {"debitor.csv", "Nr;Name\n10000\n", "Die Zeile hat 1 Feld, die Kopfzeile 2."},
      {"debitor.csv", "Nr;Name;Sammelkonto\n10000;Kunde;1400\n", "Zeile 2: Sammelkonto 1400 gibt es nicht"},
      {"debitor.csv", "Nr;Name;Zahlungsziel\n10000;Kunde;4\n", "Zahlungsziel 4 gibt es nicht"},
      {"aufbau0.csv", "Nr;Vater;Name\n1;0;Bilanz\n2;9;Aktiva\n", "Die Zeile 9 (Vater) gibt es nicht."},
      {"aufbau0.csv", "Nr;Vater;Name\n2;3;A\n3;2;B\n1;0;Bilanz\n4;3;C\n",
       "aufbau0.csv, Zeile 3: Die Nr 3 ist nicht zu"},
      {"aufbau0.csv", "Nr;Vater;Name\n1;0;Bilanz\n2;2;A\n", "aufbau0.csv, Zeile 3: Die Nr 2 ist ihr eigener Vater."},
      {"aufbau0.csv", "Nr;Vater;Name\n1;0;Bilanz\n2;0;GuV\n", "aufbau0.csv, Zeile 3: Nur die Wurzel (Nr 1)"},
      {"aufbau0.csv", "Nr;Vater;Name\n1;2;Bilanz\n2;1;A\n",
       "aufbau0.csv, Zeile 2: Die Zeile mit der Nr 1 ist die Wurzel"},
      {"aufbau0.csv", "Nr;Vater;Name\n2;0;Bilanz\n", "aufbau0.csv: Die Zeile mit der Nr 1, die Wurzel, fehlt."},
      {"aufbau0.csv", "Nr;Vater;Name\n1;0;Bilanz\n1;1;A\n", "aufbau0.csv, Zeile 3: Die Nr 1 steht schon"},
      {"aufbau0.csv", "Nr;Vater;Name\n1;0;Bilanz\n-2;1;A\n", "Zeile 3: Nr muss mindestens 1 sein."},
      {"aufbau32.csv", "Nr;Vater;Flags;Name\n1;0;8;Bilanz\n", "aufbau32.csv, Zeile 2: Flags muss von 0 bis 7 gehen."},
      {"aufbau0.csv", "Nr;Vater;Flags2;Name\n1;0;1;Bilanz\n", "aufbau0.csv, Zeile 2: Flags2 muss 0 oder 4 sein."},
      {"zahlungsziel.csv", "Nr;Kuerzel\n1; NETTO\n", "Zeile 2: Kuerzel hat am Anfang oder Ende Leerzeichen."},
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
    ASSERT_TRUE(store->UsedGet(record, vldb98::KeyBuilder().number(line.number), found, 7) && found);
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
