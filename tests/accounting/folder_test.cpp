// What a client folder may say about tax keys, exchange rates and costs, tried on copies of the sample books.
#include <algorithm>
#include <fstream>

#include "support/books.h"
#include "zelkctl/verbs.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using namespace vldb98;

class Folders : public Environment {
protected:
  void SetUp() override { provision(); }

  /// A copy of client 1 with a row more, whose last columns may be left out; where a header comes with it, in a file of
  /// its own.
  std::string copyWith(const std::string &file, const std::string &row) {
    fs::path copy = folder() / "kopie";
    fs::remove_all(copy);
    fs::copy(sourceFolder() / "samples" / "musterhandel", copy);
    auto mode = row.find('\n') == std::string::npos ? std::ios::app : std::ios::trunc;
    if (file.empty()) return copy.string();
    std::string header;
    std::getline(std::ifstream(copy / file, std::ios::binary), header);
    auto separators = [](const std::string &line) { return std::count(line.begin(), line.end(), ';'); };
    const auto missing = mode == std::ios::app ? separators(header) - separators(row) : 0;
    std::ofstream(copy / file, std::ios::binary | mode) << row << std::string(size_t(missing), ';') << '\n';
    return copy.string();
  }

  struct Outcome {
    int code;
    std::string errors;
  };
  Outcome create(const std::string &path) {
    ::testing::internal::CaptureStdout();
    ::testing::internal::CaptureStderr();
    int code = zelkctl::createClient(path);
    ::testing::internal::GetCapturedStdout();
    return {code, ::testing::internal::GetCapturedStderr()};
  }
};

TEST_F(Folders, AreRefusedForWhatCannotBe) {
  const struct {
    const char *file, *row, *complaint;
  } rows[] = {
      {"steuerschluessel.csv", "11;01.01.2021;x;19,00;2;100;;;", "Anteil muss von 0 bis 99 gehen."},
      {"steuerschluessel.csv", "11;01.01.2021;x;19,00;2;-1;;;", "Anteil muss von 0 bis 99 gehen."},
      {"steuerschluessel.csv", "11;01.01.2021;x;19,00;5;;;;", "Art muss von 0 bis 4 gehen."},
      {"steuerschluessel.csv", "32;01.01.2021;x;19,00;2;;;;", "darf nicht 32 sein."},
      {"steuerschluessel.csv", "11;;x;19,00;2;;;;", "GueltigAb fehlt."},
      {"steuerschluessel.csv", "3;01.01.2021;x;19,00;1;;;;", "Den Schlüssel des Datensatzes gibt es schon."},
      {"kurs.csv", "GBP;01.01.2026;1,1234567;1", "Kurs muss eine Zahl über null"},
      {"kurs.csv", "GBP;01.01.2026;0;1", "Kurs muss eine Zahl über null"},
      {"kurs.csv", "GBP;01.01.2026;1,15;0", "Einheiten muss mindestens 1 sein."},
      {"kurs.csv", "GBP;01.01.2026;1,15;", "Einheiten muss mindestens 1 sein."},
      {"kurs.csv", "gbp;01.01.2026;1,15;1", "Waehrung muss aus drei Großbuchstaben bestehen."},
      {"kurs.csv", "USD;02.01.2026;1,15;1", "Den Schlüssel des Datensatzes gibt es schon."},
      {"kostenstelle.csv", "700;6;;X;x;;;", "Dimension muss von 0 bis 5 gehen."},
      {"kostenstelle.csv", "700;-1;;X;x;;;", "Dimension muss von 0 bis 5 gehen."},
      {"kostenschablone.csv", "0;x", "Nr muss mindestens 1 sein."},
      {"kostenschablone.csv", "4;x", "Den Schlüssel des Datensatzes gibt es schon."},
      {"kostenschablonenzeile.csv", "9;1;100;;0;1", "Schablone 9 gibt es nicht in der Tabelle Kostenschablone."},
      {"kostenschablonenzeile.csv", "1;4;999;;0;1", "Kostenstelle1 999 gibt es nicht"},
      {"kostenschablonenzeile.csv", "1;4;5001;;0;1", "Kostenstelle1 5001 gibt es nicht"},
      {"kostenschablonenzeile.csv", "1;4;100;200;0;1",
       "Kostenstelle2 200 gibt es nicht in der Tabelle Kostenstelle in der Dimension 1."},
      {"kostenschablonenzeile.csv", "1;4;;;0;1", "Es ist keine Kostenstelle genannt."},
      {"kostenschablonenzeile.csv", "1;4;100;;3;1", "Kostenkennung muss von 0 bis 2 gehen."},
      {"kostenschablonenzeile.csv", "1;4;100;;0;0,00", "Anteil muss über null liegen."},
      {"kostenschablonenzeile.csv", "1;4;100;;0;", "Anteil muss über null liegen."},
      {"kostenschablonenzeile.csv", "1;4;100;;0;-1", "Anteil muss über null liegen."},
      {"kombination.csv", "4999;100", "Kostenart 4999 gibt es nicht in der Tabelle Sachkonto."},
      {"kombination.csv", "4600;999", "Kostenstelle 999 gibt es nicht in der Tabelle Kostenstelle."},
      {"sachkonto.csv", "4999;X;x;1;;1;9;;;", "Kostenschablone 9 gibt es nicht in der Tabelle Kostenschablone."},
      {"dmsid.csv", "Nr;Id;Kostenschablone\n1;D-1;9",
       "Kostenschablone 9 gibt es nicht in der Tabelle Kostenschablone."},
  };
  for (const auto &row : rows) {
    const Outcome outcome = create(copyWith(row.file, row.row));
    EXPECT_EQ(outcome.code, zelkctl::kRefused) << row.file << ": " << row.row;
    EXPECT_NE(outcome.errors.find(row.complaint), std::string::npos) << row.row << "\n" << outcome.errors;
    EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten);
  }
  EXPECT_EQ(create(copyWith("dmsid.csv", "Nr;Id;Kostenschablone\n1;D-1;2")).code, zelkctl::kDone);
}

TEST_F(Folders, AreNotBlamedForAFailingDatabase) {
  const std::string path = copyWith("", "");
  Faults faults;
  for (int n : {1, 2, 3, 4, 5, 10, 50, 100, 200, 300, 400, 500}) {
    faults.failAt(n);
    const Outcome outcome = create(path);
    EXPECT_EQ(outcome.code, zelkctl::kFailed) << n;
    EXPECT_EQ(outcome.errors, "Fehler beim Zugriff auf die Datenbank. Es wurde nichts angelegt.\n") << n;
  }
  faults.failAt(0);
  EXPECT_EQ(create(path).code, zelkctl::kDone);
  EXPECT_GT(faults.operations(), 500);
}

} // namespace
} // namespace test
