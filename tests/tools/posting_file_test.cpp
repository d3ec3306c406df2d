// Posting files: what is posted of them, what is refused and how it is said.
#include <sstream>

#include "tools/zelkctl.h"

namespace test {
namespace {

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
                              {"3", "-10 ", "F26-002  Soll 4999  "},
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
  EXPECT_OUTCOME("buchen 1 3 " + quoted(folder() / "gut.csv"), 0,
                 "1 Zeile gelesen, 1 Buchung: 1 gebucht, 0 abgelehnt.");
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

} // namespace
} // namespace test
