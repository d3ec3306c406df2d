// The call protocol: its file, who opens, shares and empties it, and the entry of each call.
#include <cstdlib>
#include <fstream>
#include <regex>
#include <stdexcept>
#if !defined(_WIN32)
#include <sys/stat.h>
#endif

#include "frame/call.h"
#include "frame/protocol.h"
#include "platform/files.h"
#include "platform/named_mutex.h"
#include "platform/registry.h"
#include "platform/system.h"
#include "support/books.h"
#include "support/process.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

namespace fs = std::filesystem;
using platform::Hive;

const std::string kKey = "Software\\Velta\\ZELK", kValue = "Protokolldatei";

uint32_t users() {
  return platform::readRegistryNumber(Hive::LocalMachine, kKey, kValue).value_or(0);
}
void setUsers(uint32_t count) {
  ASSERT_TRUE(platform::writeRegistryNumber(Hive::LocalMachine, kKey, kValue, count));
}

ZelkResult choose(const fs::path &file) {
  std::string name = file.string();
  return ZELK_Protokoll(0, 2, name.data());
}

std::string bytesOf(const fs::path &file) {
  return platform::readFile(file.string()).value_or("(no file)");
}

/// A protocol in UTF-8, with '#' for the numbers of threads and processes and '@' for date and time.
std::string textOf(const fs::path &file) {
  std::string text = vlba98::toUtf8(bytesOf(file));
  EXPECT_FALSE(std::regex_search(text, std::regex("[^\r]\n|\r[^\n]"))) << "a line without CR LF";
  text = std::regex_replace(text, std::regex("\r"), "");
  text = std::regex_replace(text, std::regex("(ThreadID|ProcessID): [0-9]+"), "$1: #");
  return std::regex_replace(text, std::regex("[0-9]{2}\\.[0-9]{2}\\.[0-9]{4} [0-9]{2}:[0-9]{2}:[0-9]{2}"), "@");
}

const std::string kStart = "Start des Protokolls. Systemdatum und Zeit: @\n", kOrigin = ", ThreadID: #, ProcessID: #\n",
                  kEnd = "Ende des Protokolls. Systemdatum und Zeit: @\n",
                  kBySetting = "\tStart des Protokolls erfolgte durch Registry-Eintrag.\n";

std::string closing(const std::string &name, const std::string &result) {
  return "Rückgabe von " + name + ": " + result + kOrigin;
}
std::string entry(const std::string &name, const std::string &dump, const std::string &result) {
  return name + ":\n" + kOrigin + dump + closing(name, result);
}
const std::string kStarted = kStart + closing("ZELK_ProtokollStart", "1 ZELK_OK");
const std::string kEnded = kEnd + entry("ZELK_ProtokollEnde", "", "1 ZELK_OK");

class CallProtocol : public Books {
protected:
  CallProtocol() { choose(file); }
  ~CallProtocol() override { ZELK_ProtokollEnde(); }

  /// What a call leaves in a protocol that was started before it.
  std::string trace(const std::function<void()> &call) {
    EXPECT_EQ(ZELK_ProtokollStart(), ZELK_OK);
    call();
    std::string text = textOf(file);
    ZELK_ProtokollEnde();
    EXPECT_EQ(text.substr(0, kStarted.size()), kStarted);
    return text.substr(std::min(text.size(), kStarted.size()));
  }

  const fs::path file = folder() / "protokoll.txt";
};

TEST_F(CallProtocol, HoldsTheBytesOfAnEntry) {
  ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  std::string before = bytesOf(file);
  EXPECT_EQ(ZELK_InitHoleKonto(1, 3, 0,
                               "M\xFC\xDF"
                               "e",
                               0),
            ZELKERR_uzl_Kontoart);
  std::string origin = ", ThreadID: " + std::to_string(platform::threadId()) +
                       ", ProcessID: " + std::to_string(platform::processId()) + "\r\n";
  EXPECT_EQ(bytesOf(file).substr(before.size()),
            "ZELK_InitHoleKonto:\r\n" + origin +
                "Mandantennummer: 1\r\nKontoart: 3\r\nSortierung: 0\r\nAb: M\xFC\xDF"
                "e\r\nFehlermeldungen: 0\r\nFehlermeldungen:\r\n\tDie Kontoart ist unzul\xE4ssig!\r\n"
                "R\xFC"
                "ckgabe von ZELK_InitHoleKonto: -7 ZELKERR_uzl_Kontoart" +
                origin);
}

TEST_F(CallProtocol, HasAnEntryForEachCall) {
  ZELK_ONLY_EMBEDDED();
  char text[260] = "nicht gelesen";
  int32_t year = 0;
  uint32_t number = 0;
  const std::string balance = "Aufbau: 0\nZeitraum: 1\nJahr: 2026\nFehlermeldungen: 0\nAusgabeart: 1\nEurosaldo: NULL\n"
                              "Dimension: 0\nKostref: NULL\n";
  const struct {
    const char *what;
    std::function<void()> call;
    std::string expected;
  } rows[] = {
      {"fetch", [] { ZELK_InitHoleMandant(); }, entry("ZELK_InitHoleMandant", "", "1 ZELK_weitererDatensatz")},
      {"out pointers", [&] { ZELK_HoleMandant(&number, nullptr, text); },
       entry("ZELK_HoleMandant", "Mandantennummer: gegeben\nName: NULL\nZusatz: gegeben\n",
             "1 ZELK_weitererDatensatz")},
      {"one line",
       [&] {
         ZELK_HoleMandantenInfoDirekt(1, &year, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                      nullptr, nullptr, nullptr, nullptr, nullptr, text, nullptr, 7);
       },
       entry("ZELK_HoleMandantenInfoDirekt",
             "Mandatennummer: 1; Aktuelles Jahr: gegeben; Gejabeginn: NULL; Kontenrahmen: NULL; Istversteuerer: NULL; "
             "EÜ-Rechner: NULL; Steuerfrei: NULL; Euro: NULL; USt-ID-Nr: NULL; Land: NULL; Währung: NULL; Eurokurs: "
             "NULL; SV Sako: NULL; SV Kred: NULL; SV Debi: NULL; Name: gegeben; Zusatz: NULL; Option: 7.\n",
             "1 ZELK_OK")},
      {"null text, neutral result", [] { ZELK_ExistiertKonto(1, "4711", 1, -2, nullptr); },
       entry("ZELK_ExistiertKonto",
             "Mandantennummer: 1\nKontonummer: 4711\nKontoart: 1\nDimension: -2\nKostref: NULL\n", "0 ZELK_keinKonto")},
      {"text of a refusal", [] { ZELK_InitHoleBatch(9, 1, 1); },
       entry("ZELK_InitHoleBatch",
             "Mandantennummer: 9\nStapelnummer: 1\nFehlermeldungen: 1\n"
             "Fehlermeldungen:\n\tDer Mandant existiert nicht!\n",
             "-5 ZELKERR_uzl_Mandnr")},
      {"line ends in a text, and in the refusal that names it",
       [] { ZELK_HoleKostenSaldo(1, "1\r\n\tRückgabe", nullptr, 0, 1, 2026, 0, 1, nullptr, 0, nullptr); },
       entry("ZELK_HoleKostenSaldo",
             "Mandantennummer: 1\nKontonummer: 1???RÃ¼ckgabe\nKostenart: NULL\n" + balance +
                 "Fehlermeldungen:\n\tDie Kostenstelle 1???RÃ¼ckgabe ist unzulässig!\n",
             "-10 ZELKERR_uzl_Kontonr")},
      {"a refusal of several lines", [] { ZELK_BuchungEinfuegen(nullptr, 0); },
       entry("ZELK_BuchungEinfuegen",
             "Fehlermeldungen: 0\nFehlermeldungen:\n\t" +
                 std::regex_replace(std::string(resources::text(338)), std::regex("\n"), "\n\t") + "\n",
             "-38 ZELKERR_nicht_moeglich")},
      {"a balance with the names of a fetch",
       [] { ZELK_HoleKostenSaldo(1, nullptr, "4210", 0, 1, 2026, 0, 1, nullptr, 0, nullptr); },
       entry("ZELK_HoleKostenSaldo", "Mandantennummer: 1\nKontonummer: NULL\nKostenart: 4210\n" + balance,
             "1 ZELK_weitererDatensatz")},
      {"a number as result", [] { ZELK_HoleStartJahr(1); },
       entry("ZELK_HoleStartJahr", "Mandantennummer: 1\n", "2025")},
      {"engine as result", [] { ZELK_GetUsedEngine(); }, entry("ZELK_GetUsedEngine", "", "1 ZELK_ENG_BTRIEVE")},
      {"engine as parameter, no password",
       [] {
         ZELK_SQLInit(2, 0, "127.0.0.1", nullptr, "geheim", 1,
                      "PWD=geheim;FORCETLS=1;;sslKeyPassword = {ge}};heim};Pwd=ge;heim;TLSKEY=pass;INITSTMT=SET "
                      "PASSWORD='geheim';Kennwort={geheim;X=1",
                      "x;passwd=geheim");
       },
       entry("ZELK_SQLInit",
             "Enginetyp: ZELK_ENG_MYSQL\nDialog: 0\nHost: 127.0.0.1\nUser: NULL\nPasswort: gegeben\nPort: 1\nZusatz: "
             "PWD=***;FORCETLS=1;;sslKeyPassword =***;Pwd=***;***;TLSKEY=***;INITSTMT=***;Kennwort=***\n"
             "Datenbank: x;passwd=***\n",
             "-72 ZELKERR_Verbindungsfehler")},
      {"other engine", [] { ZELK_SQLInit(9, 1, nullptr, nullptr, nullptr, -1, nullptr, nullptr); },
       entry("ZELK_SQLInit",
             "Enginetyp: ZELK_ENG_DEFAULT\nDialog: 1\nHost: NULL\nUser: NULL\nPasswort: NULL\nPort: -1\nZusatz: NULL\n"
             "Datenbank: NULL\n",
             "1 ZELK_OK")},
      {"status", [] { ZELK_Status(); }, entry("ZELK_Status", "", "1 ZELK_OK")},
      {"cancelled dialog", [&] { ZELK_Protokoll(5, 1, text); },
       entry("ZELK_Protokoll", "Fenster: 5\nAktion: 1\nDateiname: gegeben\n", "0 ZELKERR_Abbruch")},
      {"call within a call",
       [] {
         static constexpr frame::Export outer{.name = "probe"};
         frame::run(outer, {}, [](frame::ThreadContext *) {
           ZelkResult inner = ZELK_BeendeHolen();
           frame::protocolLine("Zeile");
           return inner;
         });
       },
       "probe:\n" + kOrigin + entry("ZELK_BeendeHolen", "", "1 ZELK_OK") + "Zeile\n" + closing("probe", "1 ZELK_OK")},
      {"cancelled selection", [] { ZELK_HoleStapelNr(nullptr, 1, 0); },
       entry("ZELK_HoleStapelNr", "Handle-Parent: NULL\nMandantennummer: 1\nFehlermeldungen: 0\n",
             "0 ZELKERR_Abbruch")},
      {"a parameter that is not shown",
       [] { ZELK_Zahlungsziel(1, 1, 9, "NEU", 10, "3", 0, nullptr, 30, 0, 0, "", 4, 0); },
       entry("ZELK_Zahlungsziel",
             "Mandantennummer: 1\nAktion: 1\nZahlzielnummer: 9\nName: NEU\nSkontotage1: 10\nSkontosatz1: "
             "3\nSkontotage2: 0\nSkontosatz2: NULL\nZahltage: 30\nTagInMonat: 0\nMonatePlus: 0\nBemerkung: "
             "\nFehlermeldungen: 0\n",
             "6")},
      {"end of all calls",
       [] {
         ZELK_SQLDeInit();
         ZELK_HoleStartJahr(1);
       },
       "ZELK_SQLDeInit: (Dummy in der MERKA FIBU)\n" + kOrigin + closing("ZELK_SQLDeInit", "1 ZELK_OK")}};
  ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  for (const auto &row : rows) {
    size_t before = textOf(file).size();
    row.call();
    EXPECT_EQ(textOf(file).substr(before), row.expected) << row.what;
  }
  size_t before = textOf(file).size();
  EXPECT_EQ(ZELK_ProtokollEnde(), ZELK_OK) << "also after the end";
  EXPECT_EQ(textOf(file).substr(before), kEnded);
  EXPECT_EQ(users(), 0u);
}

TEST_F(CallProtocol, ShowsFieldsAsTheirFlagsSay) {
  static constexpr frame::Export self{.name = "probe"};
  const char full[4] = {'a', '\n', '\r', 'd'}, ended[6] = "xyz", hidden[4] = "h";
  auto call = [&](const frame::Parameter &first) {
    frame::run(self, {first, frame::unprinted(frame::field("Zwei:", hidden)), frame::field("Drei:", ended, 6)},
               [](frame::ThreadContext *) -> ZelkResult { throw std::runtime_error("x"); });
  };
  std::string dump = "Eins: a??d\nDrei: xyz\n";
  EXPECT_EQ(trace([&] { call(frame::unchecked(frame::field("Eins:", full))); }),
            entry("probe", dump, "-2 ZELKERR_sonst"));
  // A text that does not end is refused, and the reason stands in the entry though nobody is shown it.
  EXPECT_EQ(trace([&] { call(frame::field("Eins:", full)); }),
            entry("probe",
                  dump + "Fehlermeldungen:\n\tDer Text 'a??d' hat in der Struktur einen Überlauf verursacht. Die "
                         "maximale Länge (3 Zeichen) wurde überschritten.\n",
                  "-37 ZELKERR_Ueberlauf"));
  EXPECT_EQ(recorder.takeText(), "");
}

TEST_F(CallProtocol, SaysThatAPostingWasSkipped) {
  ASSERT_TRUE(MFWritePrivateProfileString("ZELK", "Sperrwartezeit", "20", nullptr));
  ZELK_Detach();
  auto other = session();
  uint8_t found;
  ASSERT_TRUE(other->SetzeFista(1, found) && other->Lock(vldb98::kStapel, nullptr, 0));
  ZELK_BUCHUNG posting = validPosting();
  std::string text = trace([&] { EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 1), ZELK_OK); });
  EXPECT_NE(text.find("\nDie Buchung wurde übersprungen: "), std::string::npos) << text;
  EXPECT_NE(text.find("Belegnummer: B-1\n"), std::string::npos) << text;
  other.reset();
  text = trace([&] { EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 1), ZELK_OK); });
  EXPECT_EQ(text.find("übersprungen"), std::string::npos) << text;
}

TEST_F(CallProtocol, IsStartedAndEndedByCalls) {
  EXPECT_EQ(ZELK_ProtokollEnde(), ZELK_OK);
  EXPECT_FALSE(fs::exists(file));
  EXPECT_EQ(users(), 0u);
  ZELK_BeendeHolen();
  EXPECT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  EXPECT_EQ(users(), 1u);
  EXPECT_EQ(ZELK_ProtokollStart(), ZELKERR_bereits_Protokolldatei);
  EXPECT_EQ(users(), 1u);
  EXPECT_EQ(ZELK_ProtokollEnde(), ZELK_OK);
  EXPECT_EQ(users(), 0u);
  ZELK_BeendeHolen();
  std::string again = "ZELK_ProtokollStart:\n" + kOrigin + kStart +
                      closing("ZELK_ProtokollStart", "-59 ZELKERR_bereits_Protokolldatei");
  EXPECT_EQ(textOf(file), kStarted + again + kEnded);
  setUsers(3);
  EXPECT_EQ(ZELK_ProtokollEnde(), ZELK_OK) << "nothing was open";
  EXPECT_EQ(users(), 3u);
  EXPECT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  EXPECT_EQ(users(), 4u);
  ZELK_Detach();
  EXPECT_EQ(users(), 3u) << "detach closes it, too";
  EXPECT_EQ(textOf(file), kStarted + again + kEnded + kStarted + kEnd);
}

TEST_F(CallProtocol, IsEmptiedByItsFirstUserOnly) {
  const struct {
    uint32_t before;
    const char *totalRecall;
    bool emptied;
  } rows[] = {{0, "", true}, {1, "", false}, {0, "97", true}, {0, "98", false}};
  for (const auto &row : rows) {
    ASSERT_TRUE(MFWritePrivateProfileString("MFIBU", "TotalRecall", row.totalRecall, nullptr));
    ZELK_Detach();
    setUsers(row.before);
    std::ofstream(file, std::ios::binary) << "Start des Protokolls. Systemdatum und Zeit: frueher\r\n";
    EXPECT_EQ(ZELK_ProtokollStart(), ZELK_OK);
    EXPECT_EQ(textOf(file), (row.emptied ? "" : kStart.substr(0, 44) + "frueher\n") + kStarted)
        << row.before << ' ' << row.totalRecall;
    ZELK_ProtokollEnde();
    EXPECT_EQ(users(), row.before);
  }
}

TEST_F(CallProtocol, IsNeverAnotherFile) {
  const fs::path foreign = folder() / "fremd.txt", database = dataFolder() / "MERKA.DB";
  std::ofstream(foreign) << "Start des Protokolls, aber nicht dieses: Systemdatum und Zeit\n";
  std::vector<fs::path> files = {folder(),
                                 foreign,
                                 database,
                                 dataFolder() / "MERKA.DB-wal",
                                 dataFolder() / "MERKA.LCK",
                                 folder() / "merka.db-SHM"};
#if !defined(_WIN32)
  const fs::path link = folder() / "link", hardLink = folder() / "zweiter name", pipe = folder() / "pipe";
  if (fs::exists(database)) {
    fs::create_symlink(dataFolder() / "MERKA.LCK", link);
    fs::create_hard_link(database, hardLink);
    files.insert(files.end(), {link, hardLink});
  }
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  files.insert(files.end(), {pipe, "/dev/null", folder() / "settings.ini", folder() / "settings.ini.lock",
                             folder() / "VELTA_ZELK_MUTEX_PROTOKOLL_WRITE"});
#endif
  uint32_t counted = users();
  for (const fs::path &other : files) {
    ASSERT_EQ(choose(other), ZELK_OK);
    EXPECT_EQ(ZELK_ProtokollStart(), ZELKERR_keine_Protokolldatei) << other;
    EXPECT_EQ(bytesOf(other).find("Zeit: "), std::string::npos) << other;
    ZELK_ProtokollEnde();
    EXPECT_EQ(users(), ++counted) << "stays counted";
  }
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELK_OK) << "the books are there";
  ASSERT_EQ(choose(file), ZELK_OK);
  EXPECT_EQ(ZELK_ProtokollStart(), ZELK_OK);
}

TEST_F(CallProtocol, BeginsAnewWhenItsFileIsGone) {
  const fs::path moved = folder() / "alt.txt";
  const std::string ended = entry("ZELK_BeendeHolen", "", "1 ZELK_OK");
  const struct {
    const char *what;
    std::function<void(std::error_code &)> work;
    std::string expected;
  } rows[] = {{"emptied", [&](std::error_code &error) { fs::resize_file(file, 0, error); }, kStart + ended},
              {"deleted", [&](std::error_code &error) { fs::remove(file, error); }, kStart + ended},
              {"moved", [&](std::error_code &error) { fs::rename(file, moved, error); }, kStart + ended},
              {"replaced",
               [&](std::error_code &error) {
                 std::ofstream(moved, std::ios::binary) << "fremd\r\n";
                 fs::rename(moved, file, error);
               },
               "fremd\n"}};
  for (const auto &row : rows) {
    ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK) << row.what;
    std::error_code error;
    row.work(error);
    ZELK_BeendeHolen();
    // An open file may be protected from it.
    EXPECT_EQ(textOf(file), error ? kStarted + ended : row.expected) << row.what;
    ZELK_ProtokollEnde();
    EXPECT_EQ(users(), 0u);
  }
}

TEST_F(CallProtocol, LosesWholePiecesWhenTheDiskIsFull) {
  ZELK_ONLY_EMBEDDED();
  ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  std::string before = textOf(file);
  if (!limitFileSize(bytesOf(file).size() + 20)) GTEST_SKIP() << "no such limit here";
  EXPECT_EQ(ZELK_GetUsedEngine(), 1);
  EXPECT_EQ(textOf(file), before);
  limitFileSize(0);
  ZELK_GetUsedEngine();
  EXPECT_EQ(textOf(file), before + entry("ZELK_GetUsedEngine", "", "1 ZELK_ENG_BTRIEVE"));
}

TEST_F(CallProtocol, NameIsChosenKeptAndTold) {
  char name[260], longest[261];
  std::memset(longest, 'x', 260);
  longest[260] = 0;
  ASSERT_EQ(ZELK_Protokoll(0, 4, name), ZELK_OK);
  EXPECT_EQ(name, file.string());
  for (int32_t action : {0, 3, 5, -1})
    EXPECT_EQ(ZELK_Protokoll(0, action, name), ZELKERR_uzl_Aktion) << action;
  EXPECT_EQ(ZELK_Protokoll(0, 4, nullptr), ZELKERR_keine_Protokolldatei);
  EXPECT_EQ(ZELK_Protokoll(0, 2, nullptr), ZELKERR_keine_Protokolldatei);
  EXPECT_EQ(choose(""), ZELKERR_keine_Protokolldatei);
  EXPECT_EQ(ZELK_Protokoll(0, 2, longest), ZELKERR_keine_Protokolldatei);
  EXPECT_EQ(ZELK_Protokoll(0, 1, nullptr), ZELK_keinKonto) << "cancelled";
  EXPECT_EQ(recorder.savePatterns, std::vector<std::string>{"Textdateien  (*.txt)|*.txt"});
  ASSERT_EQ(ZELK_Protokoll(0, 4, name), ZELK_OK);
  EXPECT_EQ(name, file.string()) << "as before";

  recorder.saveChoice = (folder() / "gew").string() + "ählt.txt";
  EXPECT_EQ(ZELK_Protokoll(0, 1, nullptr), ZELK_OK);
  ASSERT_EQ(ZELK_Protokoll(0, 4, name), ZELK_OK);
  EXPECT_EQ(vlba98::toUtf8(name), *recorder.saveChoice);
  EXPECT_EQ(platform::readRegistry(Hive::CurrentUser, kKey, kValue), recorder.saveChoice);
  EXPECT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  EXPECT_TRUE(platform::isFile(*recorder.saveChoice));
  longest[259] = 0;
  EXPECT_EQ(ZELK_Protokoll(0, 2, longest), ZELK_OK);
}

struct ChildBooks : Environment {
  void TestBody() override {}
};

ChildRole sharer("share the protocol", [](const std::string &expectedName) {
  ChildBooks books;
  char name[260] = "";
  if (ZELK_Protokoll(0, 4, name) != ZELK_OK || name != expectedName) return 1;
  const uint32_t others = users();
  if (ZELK_ProtokollStart() != ZELK_OK || users() != others + 1) return 2;
  ZELK_BeendeHolen();
  return ZELK_ProtokollEnde() == ZELK_OK && users() == others ? 0 : 3;
});

ChildRole dier("die with the protocol", [](const std::string &) -> int {
  ChildBooks books;
  if (ZELK_ProtokollStart() != ZELK_OK) return 1;
  for (const char *name : {"VELTA_ZELK_MUTEX_PROTOKOLL_REGISTRY", "VELTA_ZELK_MUTEX_PROTOKOLL_WRITE"})
    platform::NamedMutex::open(name).release()->lock();
  std::_Exit(0);
});

TEST_F(CallProtocol, IsSharedWithOtherProcesses) {
  const std::string ended = entry("ZELK_BeendeHolen", "", "1 ZELK_OK");
  // 0: the other one has settings of its own, in which nobody is counted.
  for (uint32_t counted : {1u, 0u}) {
    ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK);
    setUsers(counted);
    EXPECT_EQ(runChild("share the protocol", file.string()), 0);
    ZELK_BeendeHolen();
    EXPECT_EQ(textOf(file), kStarted + kStarted + ended + kEnded + ended) << counted;
    EXPECT_EQ(users(), counted);
    ZELK_ProtokollEnde();
  }
}

TEST_F(CallProtocol, OutlivesTheDeathOfAProcess) {
  EXPECT_EQ(runChild("die with the protocol"), 0);
  EXPECT_EQ(users(), 1u) << "it could not take itself off";
  // What it had locked is free, and since it still counts, nothing is emptied.
  EXPECT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  EXPECT_EQ(textOf(file), kStarted + kStarted);
  ZELK_ProtokollEnde();
  EXPECT_EQ(users(), 1u);
}

class ProtocolBySetting : public Environment {
protected:
  ProtocolBySetting() { provision(); }
  void set(const char *value) {
    ASSERT_TRUE(MFWritePrivateProfileString("ZELK", "Protokoll", value, nullptr));
    ZELK_Detach();
  }
  const fs::path standard = folder() / "programm" / "ZELKPROT.TXT";
};

TEST_F(ProtocolBySetting, StartsAtAttachAndEndsAtDetach) {
  const std::string none = entry("ZELK_InitHoleMandant", "", "-1 ZELKERR_keine_Mandanten");
  for (const char *value : {"j", "J", "ja", "jein und mehr"}) {
    set(value);
    EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten);
    EXPECT_EQ(users(), 1u);
    ZELK_Detach();
    EXPECT_EQ(textOf(standard), kStart + kBySetting + none + kEnd) << value;
    EXPECT_EQ(users(), 0u);
    fs::remove(standard);
  }
  for (const char *value : {"n", "", "xj", "1"}) {
    set(value);
    ZELK_InitHoleMandant();
    EXPECT_FALSE(fs::exists(standard)) << value;
  }
}

TEST_F(ProtocolBySetting, DecidesAboutTheFile) {
  char name[260];
  EXPECT_EQ(ZELK_Protokoll(0, 4, name), ZELKERR_keine_Protokolldatei) << "nothing chosen, nothing used";
  ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK) << "in the program directory";
  EXPECT_EQ(textOf(standard), kStarted);
  ASSERT_EQ(ZELK_Protokoll(0, 4, name), ZELK_OK);
  EXPECT_EQ(fs::path(name), standard);
  ZELK_ProtokollEnde();
  const fs::path chosen = folder() / "eigenes.txt";
  ASSERT_EQ(choose(chosen), ZELK_OK);
  ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  EXPECT_EQ(textOf(chosen), kStarted);
  ZELK_ProtokollEnde();
  fs::remove(standard);
  ASSERT_TRUE(MFWritePrivateProfileString("ZELK", "Protokoll", "j", nullptr));
  ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK) << "the setting is stronger than the choice";
  EXPECT_EQ(textOf(standard), kStarted);
}

} // namespace
} // namespace test
