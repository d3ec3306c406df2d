// Attach and detach, the connection, and the frame that every call runs in.
#include <cstring>
#include <stdexcept>

#include "frame/call.h"
#include "platform/files.h"
#include "store/database.h"
#include "support/books.h"

namespace test {
namespace {

namespace fs = std::filesystem;

/// Every framed export, called with nothing but null pointers and zeros, and what it returns then on empty books.
struct Call {
  const char *name;
  std::function<ZelkResult()> run;
  ZelkResult onEmptyBooks;
};

const Call kFramed[] = {
    {"GetUsedEngine", [] { return ZELK_GetUsedEngine(); }, onServer() ? 2 : 1},
    {"SQLInit", [] { return ZELK_SQLInit(0, 0, nullptr, nullptr, nullptr, 0, nullptr, nullptr); }, 1},
    {"InitHoleMandant", [] { return ZELK_InitHoleMandant(); }, ZELKERR_keine_Mandanten},
    {"HoleMandant", [] { return ZELK_HoleMandant(nullptr, nullptr, nullptr); }, ZELKERR_keinInit},
    {"HoleMandantenInfo", [] { return ZELK_HoleMandantenInfo(0, nullptr, 0); }, ZELKERR_nicht_moeglich},
    {"HoleMandantenInfoDirekt",
     [] {
       return ZELK_HoleMandantenInfoDirekt(0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0);
     },
     ZELKERR_uzl_Mandnr},
    {"HoleMandantenVersion", [] { return ZELK_HoleMandantenVersion(0); }, ZELKERR_uzl_Mandnr},
    {"HoleStartJahr", [] { return ZELK_HoleStartJahr(0); }, ZELKERR_uzl_Mandnr},
    {"BeendeHolen", [] { return ZELK_BeendeHolen(); }, ZELK_OK},
    {"ExistiertKonto", [] { return ZELK_ExistiertKonto(0, nullptr, 1, 0, nullptr); }, ZELKERR_uzl_Mandnr},
    {"InitHoleKonto", [] { return ZELK_InitHoleKonto(0, 1, 0, nullptr, 0); }, ZELKERR_uzl_Mandnr},
    {"HoleSako", [] { return ZELK_HoleSako(nullptr); }, ZELKERR_keinInit},
    {"HolePeko", [] { return ZELK_HolePeko(nullptr); }, ZELKERR_keinInit},
    {"HoleKost", [] { return ZELK_HoleKost(nullptr); }, ZELKERR_keinInit},
    {"InitHoleStapel", [] { return ZELK_InitHoleStapel(0, 0); }, ZELKERR_uzl_Mandnr},
    {"HoleStapel", [] { return ZELK_HoleStapel(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); },
     ZELKERR_keinInit},
    {"BuchungEinfuegen", [] { return ZELK_BuchungEinfuegen(nullptr, 1); }, ZELKERR_nicht_moeglich},
    {"SplitBuchungEinfuegen", [] { return ZELK_SplitBuchungEinfuegen(nullptr, 1); }, ZELKERR_nicht_moeglich},
    {"InitHoleBatch", [] { return ZELK_InitHoleBatch(0, 0, 0); }, ZELKERR_uzl_Mandnr},
    {"HoleBatch", [] { return ZELK_HoleBatch(nullptr); }, ZELKERR_keinInit},
    // The last one: it ends the others.
    {"SQLDeInit", [] { return ZELK_SQLDeInit(); }, ZELK_OK}};

void setSetting(const char *section, const char *key, const std::string &value) {
  ASSERT_TRUE(MFWritePrivateProfileString(section, key, value.c_str(), nullptr));
}

using Lifecycle = Environment;

TEST_F(Lifecycle, WithoutSettingsNothingWorksUntilDetached) {
  EXPECT_EQ(ZELK_Status(), ZELK_OK) << "nothing has failed yet";
  for (const Call &call : kFramed)
    EXPECT_EQ(call.run(), ZELKERR_Ini) << call.name;
  EXPECT_EQ(ZELK_Status(), ZELKERR_Ini);
  EXPECT_EQ(ZELK_HoleFehlertext(ZELKERR_Ini, nullptr, nullptr), ZELK_OK);
  provision();
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_Ini) << "not tried again";
  EXPECT_EQ(ZELK_Attach(true), 1);
  EXPECT_EQ(ZELK_Status(), ZELKERR_Ini);
  EXPECT_EQ(ZELK_Detach(), 1);
  EXPECT_EQ(ZELK_Status(), ZELK_OK) << "the failure is forgotten";
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten);
  EXPECT_EQ(ZELK_Status(), ZELK_OK);
}

TEST_F(Lifecycle, NullPointersAreTakenEverywhere) {
  provision();
  for (const Call &call : kFramed) {
    EXPECT_EQ(call.run(), call.onEmptyBooks) << call.name;
    EXPECT_EQ(recorder.takeText(), std::strstr(call.name, "Einfuegen") ? resources::text(338) : "") << call.name;
  }
}

TEST_F(Lifecycle, EndsForTheProcessWithSQLDeInit) {
  provision();
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten);
  EXPECT_EQ(vldb98::HoleLongDbPfad(), vldb98::HoleDbPfad());
  // A database that was only closed can be opened again.
  vldb98::SchliessDB();
  EXPECT_FALSE(vldb98::IsDbOffen());
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_Datenbank);
  EXPECT_EQ(ZELK_SQLInit(0, 0, nullptr, nullptr, nullptr, 0, nullptr, nullptr), ZELK_OK);
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten);
  EXPECT_EQ(ZELK_SQLDeInit(), ZELK_OK);
  EXPECT_EQ(vldb98::ConnectSQL(vldb98::kConnectSilently, vldb98::ZELK_ENG_DEFAULT, nullptr, nullptr, nullptr, 0,
                               nullptr, nullptr),
            vldb98::ConnectResult::Failed);
  for (const Call &call : kFramed)
    EXPECT_EQ(call.run(), ZELKERR_Datenbank) << call.name;
  char name[50];
  EXPECT_EQ(ZELK_HoleFehlertext(ZELKERR_Datenbank, name, nullptr), ZELK_OK);
  EXPECT_STREQ(name, "ZELKERR_Datenbank");
  EXPECT_EQ(ZELK_Status(), ZELK_OK);
  EXPECT_EQ(ZELK_Detach(), 1);
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_Datenbank) << "also after attaching again";
}

TEST_F(Lifecycle, FindsTheProgramDirectoryInThreePlaces) {
  ZELK_ONLY_EMBEDDED();
  provision();
  std::string good = (folder() / "programm").string(), bad = (folder() / "nirgends").string();
  const std::string separator(1, platform::kPathSeparator);
  const struct {
    std::string first, second, third;
    ZelkResult result;
  } rows[] = {{good, bad, bad, ZELKERR_keine_Mandanten},
              {good + separator, "", "", ZELKERR_keine_Mandanten},
              {bad, good, good, ZELKERR_Datenbank},
              {"", good, bad, ZELKERR_keine_Mandanten},
              {"", good + separator, "", ZELKERR_keine_Mandanten},
              {"", bad, good, ZELKERR_Datenbank},
              {"", "", good, ZELKERR_keine_Mandanten},
              {"", "", good + separator, ZELKERR_keine_Mandanten},
              {"", "", "", ZELKERR_Ini}};
  for (const auto &row : rows) {
    setSetting("MFIBU", "ProgPfad98", row.first);
    setSetting("MFIBU", "ProgPfad", row.second);
    setSetting("ZELK", "ProgPfad", row.third);
    EXPECT_EQ(ZELK_InitHoleMandant(), row.result) << row.first << '|' << row.second << '|' << row.third;
    ZELK_Detach();
  }
}

TEST_F(Lifecycle, DataDirectoryCanLieElsewhere) {
  ZELK_ONLY_EMBEDDED();
  provision();
  fs::rename(dataFolder(), folder() / "daten anderswo");
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_Datenbank);
  EXPECT_EQ(ZELK_Status(), ZELK_OK) << "a missing database is no failed attach";
  ZELK_Detach();
  setSetting("ZELK", "DatenPfad", (folder() / "daten anderswo").string());
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten);
}

TEST_F(Lifecycle, DatabaseThatAppearsLaterIsFound) {
  ZELK_ONLY_EMBEDDED();
  setSetting("MFIBU", "ProgPfad98", (folder() / "programm").string());
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_Datenbank);
  EXPECT_FALSE(fs::exists(dataFolder())) << "reading creates nothing";
  provision();
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten);
}

TEST_F(Lifecycle, DetachGivesUpTheFetchesAndAttachesAgain) {
  provision();
  load("musterhandel");
  for (int round = 0; round < 3; ++round) {
    ASSERT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
    ASSERT_EQ(ZELK_InitHoleStapel(1, 0), ZELK_OK);
    EXPECT_EQ(ZELK_Detach(), 1);
    EXPECT_EQ(ZELK_Detach(), 1);
    EXPECT_EQ(ZELK_HoleMandant(nullptr, nullptr, nullptr), ZELKERR_keinInit);
    EXPECT_EQ(ZELK_HoleStapel(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), ZELKERR_keinInit);
  }
}

TEST_F(Lifecycle, ConnectsAndKeepsTheConnectionWhenAnotherFails) {
  ZELK_ONLY_EMBEDDED();
  provision();
  fs::copy(dataFolder(), folder() / "leer");
  fs::create_directories(folder() / "ohne");
  load("musterhandel");
  const std::string empty = (folder() / "leer").string(), books = dataFolder().string(),
                    nothing = (folder() / "ohne").string(), missing = (folder() / "nirgends").string();
  const struct {
    int32_t engine, port;
    const std::string *database;
    ZelkResult result, clients;
  } rows[] = {{1, 0, &empty, ZELK_OK, ZELKERR_keine_Mandanten},
              {1, 0, &missing, ZELKERR_Verbindungsfehler, ZELKERR_keine_Mandanten},
              {1, 0, &nothing, ZELKERR_Verbindungsfehler, ZELKERR_keine_Mandanten},
              {7, 70000, &books, ZELK_OK, ZELK_OK},
              // Nobody listens on this port.
              {2, 1, &empty, ZELKERR_Verbindungsfehler, ZELK_OK},
              {3, 1, &empty, ZELKERR_Verbindungsfehler, ZELK_OK},
              {-1, -5, &empty, ZELK_OK, ZELKERR_keine_Mandanten},
              {0, 65536, &books, ZELK_OK, ZELK_OK}};
  for (const auto &row : rows) {
    SCOPED_TRACE(std::to_string(row.engine) + ' ' + *row.database);
    EXPECT_EQ(ZELK_SQLInit(row.engine, 0, "127.0.0.1", "niemand", "", row.port, "", row.database->c_str()), row.result);
    EXPECT_EQ(ZELK_InitHoleMandant(), row.clients);
    EXPECT_EQ(ZELK_GetUsedEngine(), 1);
  }
  EXPECT_TRUE(fs::is_empty(nothing)) << "a connection creates no database";
}

TEST_F(Lifecycle, CurrentDirectoryIsTheHostsAfterEveryCall) {
  ZELK_ONLY_EMBEDDED();
  provision();
  load("musterhandel");
  fs::path first = folder() / "zuerst", later = folder() / "spaeter", changed = folder() / "gewechselt";
  for (const fs::path &path : {first, later, changed})
    fs::create_directories(path);
  fs::path before = fs::current_path();
  static constexpr frame::Export self{.name = "probe"};
  auto inside = [](const fs::path &change) {
    fs::path seen;
    frame::run(self, {}, [&](frame::ThreadContext *) -> ZelkResult {
      seen = fs::current_path();
      if (!change.empty()) fs::current_path(change);
      return ZELK_OK;
    });
    return seen;
  };
  fs::current_path(first);
  ZELK_InitHoleMandant();
  EXPECT_TRUE(fs::equivalent(fs::current_path(), first));
  fs::current_path(later);
  EXPECT_TRUE(fs::equivalent(inside({}), first)) << "calls run where the first one found itself";
  for (const Call &call : kFramed) {
    call.run();
    EXPECT_TRUE(fs::equivalent(fs::current_path(), later)) << call.name;
    if (std::strcmp(call.name, "HoleBatch") == 0) break;
  }
  ZELK_BUCHUNG posting = validPosting();
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK);
  put(posting.Sollkonto, "9999");
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELKERR_uzl_Kontonr);
  EXPECT_TRUE(fs::equivalent(fs::current_path(), later));
  inside(changed);
  EXPECT_TRUE(fs::equivalent(fs::current_path(), later));
  EXPECT_TRUE(fs::equivalent(inside({}), changed)) << "a call that changes it moves the directory of later calls";
  std::error_code error;
  if (fs::remove(later, error)) { // where a current directory can be
    EXPECT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
    EXPECT_TRUE(fs::current_path(error).empty()) << "still where it was";
  }
  fs::current_path(before);
}

TEST_F(Lifecycle, FrameTurnsExceptionsIntoAResult) {
  ZELK_ONLY_EMBEDDED();
  provision();
  static constexpr frame::Export self{.name = "probe"};
  fs::path before = fs::current_path();
  auto elsewhere = [&] { fs::current_path(folder()); };
  EXPECT_EQ(frame::run(self, {},
                       [&](frame::ThreadContext *) -> ZelkResult {
                         elsewhere();
                         throw std::runtime_error("x");
                       }),
            ZELKERR_sonst);
  EXPECT_EQ(frame::run(self, {},
                       [&](frame::ThreadContext *) -> ZelkResult {
                         elsewhere();
                         throw 1;
                       }),
            ZELKERR_sonst);
  EXPECT_EQ(fs::current_path(), before);
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten);
}

TEST_F(Lifecycle, FrameRefusesTextsWithoutAnEnd) {
  provision();
  struct Record {
    char first[4], second[6];
  } record;
  static constexpr frame::Export self{.name = "probe"};
  int runs = 0;
  auto call = [&](int32_t flag) {
    return frame::run(
        self, {frame::field("Eins:", record.first), frame::field("Zwei:", record.second), frame::messages(flag)},
        [&](frame::ThreadContext *) -> ZelkResult { return ++runs, ZELK_OK; });
  };
  static const struct {
    const char *bytes;
    ZelkResult result;
    const char *message;
  } rows[] = {{"abc\0abcde\0", ZELK_OK, ""},
              {"\0bcdabc\0ef", ZELK_OK, ""},
              {"abcdabcde\0", ZELKERR_Ueberlauf,
               "Der Text 'abcd' hat in der Struktur einen Überlauf verursacht. Die maximale Länge (3 Zeichen) wurde "
               "überschritten."},
              {"abc\0%s %i\xFC", ZELKERR_Ueberlauf,
               "Der Text '%s %iü' hat in der Struktur einen Überlauf verursacht. Die maximale Länge (5 Zeichen) wurde "
               "überschritten."},
              {"\x80"
               "bcdabcdef",
               ZELKERR_Ueberlauf,
               "Der Text '€bcd' hat in der Struktur einen Überlauf verursacht. Die maximale Länge (3 Zeichen) wurde "
               "überschritten."}};
  for (const auto &row : rows) {
    std::memcpy(&record, row.bytes, sizeof record);
    runs = 0;
    for (int32_t flag : {0, 1}) {
      EXPECT_EQ(call(flag), row.result);
      EXPECT_EQ(recorder.takeText(), flag ? row.message : "");
      EXPECT_EQ(frame::threadContext()->messages, flag) << "kept, whatever became of the call";
    }
    EXPECT_EQ(runs, row.result == ZELK_OK ? 2 : 0);
  }
}

} // namespace
} // namespace test
