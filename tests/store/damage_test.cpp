// A database that is missing, is none, is damaged, write-protected or out of space: what the exports say, and that they
// go on when it is good again.
#include <cstring>
#include <fstream>

#include "sqlite/sqlite_connection.h"
#include "support/books.h"
#include "support/process.h"

namespace test {
namespace {

namespace fs = std::filesystem;

ZELK_BUCHUNG posting(const std::string &document) {
  ZELK_BUCHUNG made = validPosting();
  put(made.Belegnummer, document);
  return made;
}

ZELK_SPLITBUCHUNG splitPosting() {
  ZELK_SPLITBUCHUNG made{};
  made.Mandantennummer = 1;
  made.Stapelnummer = 3;
  made.Teilbuchungsanzahl = 1;
  put(made.Belegdatum, "210126");
  put(made.Belegnummer, "S-1");
  ZELK_TEILBUCHUNG &line = made.Teilbuchung[0];
  line.Sollart = line.Habenart = ZELK_SACHKONTO;
  put(line.Sollkonto, "1200");
  put(line.Habenkonto, "1000");
  put(line.Bruttobetrag, "1,00");
  return made;
}

/// The document numbers of batch 3; the code where it cannot be read.
std::string documents() {
  ZelkResult result = ZELK_InitHoleBatch(1, 3, 0);
  std::string all;
  ZELK_SPLITBUCHUNG read;
  while (result == ZELK_OK) {
    result = ZELK_HoleBatch(&read);
    if (result > 0) all += std::string(read.Belegnummer) + " ";
  }
  return result >= 0 ? all : std::to_string(result);
}

struct Call {
  const char *name;
  ZelkResult (*run)();
  ZelkResult good; ///< its code on good books
};

const Call kCalls[] = {
    {"ZELK_InitHoleMandant", [] { return ZELK_InitHoleMandant(); }, 1},
    {"ZELK_HoleMandantenInfo",
     [] {
       ZELK_MANDANTENINFO info;
       return ZELK_HoleMandantenInfo(1, &info, 0);
     },
     1},
    {"ZELK_HoleMandantenInfoDirekt",
     [] {
       int32_t year;
       return ZELK_HoleMandantenInfoDirekt(1, &year, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0);
     },
     1},
    {"ZELK_HoleMandantenVersion", [] { return ZELK_HoleMandantenVersion(1); }, 98},
    {"ZELK_HoleStartJahr", [] { return ZELK_HoleStartJahr(1); }, 2025},
    {"ZELK_ExistiertKonto", [] { return ZELK_ExistiertKonto(1, "1200", ZELK_SACHKONTO, 0, nullptr); }, 1},
    {"ZELK_InitHoleKonto", [] { return ZELK_InitHoleKonto(1, ZELK_SACHKONTO, 0, nullptr, 0); }, 1},
    {"ZELK_InitHoleStapel", [] { return ZELK_InitHoleStapel(1, 0); }, 1},
    {"ZELK_BuchungEinfuegen",
     [] {
       ZELK_BUCHUNG made = posting("B-2");
       return ZELK_BuchungEinfuegen(&made, 0);
     },
     1},
    {"ZELK_SplitBuchungEinfuegen",
     [] {
       ZELK_SPLITBUCHUNG made = splitPosting();
       return ZELK_SplitBuchungEinfuegen(&made, 0);
     },
     1},
    {"ZELK_InitHoleBatch", [] { return ZELK_InitHoleBatch(1, 3, 0); }, 1},
};

class Damage : public Books {
protected:
  Damage() {
    if (onServer()) return;
    ZELK_BUCHUNG made = posting("B-1");
    EXPECT_EQ(ZELK_BuchungEinfuegen(&made, 0), ZELK_OK);
    ZELK_Detach();
    fs::copy_file(database(), good_);
  }

  void SetUp() override { ZELK_ONLY_EMBEDDED(); }

  fs::path database() const { return dataFolder() / vldb98::kDatabaseFile; }
  fs::path lockFile() const { return dataFolder() / vldb98::kLockFile; }

  static std::string content(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  static void write(const fs::path &path, const std::string &content) {
    std::ofstream(path, std::ios::binary) << content;
  }

  void expectFailures() {
    for (const Call &call : kCalls)
      EXPECT_EQ(call.run(), ZELKERR_Datenbank) << call.name;
  }
  void expectGood() {
    EXPECT_EQ(documents(), "B-1 ");
    for (const Call &call : kCalls)
      EXPECT_EQ(call.run(), call.good) << call.name;
    EXPECT_EQ(documents(), "B-1 B-2 S-1 ");
  }
  void restore() {
    fs::create_directory(dataFolder());
    fs::remove_all(database());
    fs::copy_file(good_, database());
  }

  fs::path good_ = folder() / "good.db";
};

TEST_F(Damage, InPlaceOfTheDatabase) {
  const std::string good = content(good_);
  struct Row {
    const char *what;
    std::function<void()> damage;
  };
  const Row rows[] = {
      {"nothing", [] {}},
      {"not even its folder", [&] { fs::remove_all(dataFolder()); }},
      {"a directory", [&] { fs::create_directory(database()); }},
      {"a text", [&] { write(database(), std::string(5000, 'x')); }},
      {"an empty file", [&] { write(database(), ""); }},
      {"half a header", [&] { write(database(), good.substr(0, 50)); }},
      {"one page", [&] { write(database(), good.substr(0, 4096)); }},
      {"all but the last page", [&] { write(database(), good.substr(0, good.size() - 4096)); }},
      {"half of it, cut inside a page", [&] { write(database(), good.substr(0, good.size() / 2 + 77)); }},
      {"another program's database",
       [&] {
         {
           auto foreign = vldb98::openSqlite(database().string(), {std::chrono::seconds(1), true, false});
           ASSERT_TRUE(foreign);
         }
         std::string bytes = content(database());
         // The application id in the header of the file format.
         std::memset(bytes.data() + 68, 0, 4);
         write(database(), bytes);
       }},
      {"a database without tables",
       [&] {
         ASSERT_TRUE(vldb98::openSqlite(database().string(), {std::chrono::seconds(1), true, false}));
       }},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.what);
    ZELK_Detach();
    fs::remove_all(database());
    row.damage();
    bool there = fs::exists(database());
    std::string before = there && !fs::is_directory(database()) ? content(database()) : "";
    expectFailures();
    EXPECT_EQ(fs::exists(database()), there);
    if (!before.empty()) {
      EXPECT_TRUE(content(database()) == before) << "changed what is not its own";
    }
    // What was opened meanwhile lies in another file than the good one that takes its place.
    if (std::string(row.what) == "a database without tables") ZELK_Detach();
    restore();
    expectGood();
  }
}

#if !defined(_WIN32) // where open files stay in their places
TEST_F(Damage, FileThatLeavesItsPlaceUnderTheHost) {
  const fs::path aside = folder() / "aside";
  auto swap = [](const fs::path &from, const fs::path &to) { return [=] { fs::rename(from, to); }; };
  struct Row {
    const char *what;
    std::function<void()> away, back;
  };
  const Row missing[] = {{"renamed", swap(database(), aside), swap(aside, database())},
                         {"in a folder that is renamed", swap(dataFolder(), aside), swap(aside, dataFolder())},
                         {"removed",
                          [&] {
                            for (const char *end : {"", "-wal", "-shm"})
                              fs::remove(database().string() + end);
                          },
                          [&] { restore(); }}};
  for (const Row &row : missing)
    for (const Call &call : kCalls) {
      SCOPED_TRACE(std::string(row.what) + ", " + call.name);
      ZELK_Detach();
      restore();
      ASSERT_EQ(documents(), "B-1 ");
      row.away();
      EXPECT_EQ(call.run(), ZELKERR_Datenbank);
      EXPECT_FALSE(fs::exists(database()));
      row.back();
      EXPECT_EQ(call.run(), call.good);
    }
  // Another file in its place is the one to go on with.
  ZELK_Detach();
  restore();
  swap(dataFolder(), aside)();
  fs::create_directory_symlink(aside, dataFolder());
  const std::function<void()> replacements[] = {[&] { restore(); },
                                                [&] {
                                                  fs::copy(aside, folder() / "other", fs::copy_options::recursive);
                                                  fs::remove(dataFolder());
                                                  fs::create_directory_symlink(folder() / "other", dataFolder());
                                                }};
  for (const auto &replace : replacements) {
    const std::string before = documents();
    replace();
    ZELK_BUCHUNG made = posting("B-9");
    EXPECT_EQ(ZELK_BuchungEinfuegen(&made, 0), ZELK_OK);
    ZELK_Detach();
    EXPECT_EQ(documents(), before + "B-9 ");
  }
}
#endif

TEST_F(Damage, LockFileThatCannotBeOpened) {
  fs::remove(lockFile());
  fs::create_directory(lockFile());
  expectFailures();
  fs::remove(lockFile());
  expectGood();
  EXPECT_TRUE(fs::is_regular_file(lockFile()));
}

// Pages of garbage: some calls find out at once, others do not meet one; none gives anything but its answer or -3.
TEST_F(Damage, GarbageInside) {
  const std::string good = content(good_);
  int failures = 0;
  for (size_t at = 4096; at < good.size(); at += 7 * 4096) {
    SCOPED_TRACE(at);
    ZELK_Detach();
    fs::remove_all(database());
    std::string bytes = good;
    for (size_t i = at; i < std::min(at + 3 * 4096, bytes.size()); ++i)
      bytes[i] = char(i * 37 + i / 256);
    write(database(), bytes);
    for (const Call &call : kCalls) {
      ZelkResult result = call.run();
      EXPECT_TRUE(result == call.good || result == ZELKERR_Datenbank) << call.name << ": " << result;
      failures += result == ZELKERR_Datenbank;
    }
  }
  EXPECT_GT(failures, 0);
  ZELK_Detach();
  restore();
  expectGood();
}

// Exit codes of the children below.
constexpr int kPassed = 0, kUnable = 77;

struct ChildBooks : Environment {
  void TestBody() override {}
  using Environment::session;
};

ChildRole writeProtected("write-protected", [](const std::string &) {
  if (!becomeOrdinaryUser()) return kUnable;
  ChildBooks books;
  for (size_t i = 0; i < std::size(kCalls); ++i)
    if (kCalls[i].run() != ZELKERR_Datenbank) return int(i) + 1;
  return kPassed;
});

TEST_F(Damage, WriteProtectedDatabase) {
  auto protect = [&](fs::perm_options change) {
    for (const fs::path &path : {database(), lockFile()})
      fs::permissions(path, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write, change);
  };
  std::string before = content(database());
  std::error_code none; // where settings are no file
  fs::permissions(folder() / "settings.ini", fs::perms::others_read, fs::perm_options::add, none);
  protect(fs::perm_options::remove);
  int code = runChild("write-protected");
  protect(fs::perm_options::add);
  EXPECT_EQ(content(database()), before);
  expectGood();
  if (code == kUnable) GTEST_SKIP() << "there is no user here whom write protection stops";
  EXPECT_EQ(code, kPassed) << "number of the call that did not return -3";
}

ChildRole fullDisk("full-disk", [](const std::string &) {
  ChildBooks books;
  int number = 0, failed = 0;
  std::string expected = documents();
  // Each number of pages that the disk may still hold, from a fresh session and from one that has failed before.
  for (uint64_t room = 1; room < 100'000; room += 4096) {
    if (number % 2) ZELK_Detach();
    ZELK_BUCHUNG made = posting("F-" + std::to_string(++number));
    if (!limitFileSize(room)) return kUnable;
    ZelkResult result = ZELK_BuchungEinfuegen(&made, 0);
    limitFileSize(0);
    if (result == ZELK_OK)
      expected += std::string(made.Belegnummer) + " ";
    else if (result != ZELKERR_Datenbank)
      return 1;
    failed += result != ZELK_OK;
    if (documents() != expected) return 2;
    // With room again, the same session writes.
    put(made.Belegnummer, "R-" + std::to_string(number));
    if (ZELK_BuchungEinfuegen(&made, 0) != ZELK_OK) return 3;
    expected += std::string(made.Belegnummer) + " ";
  }
  return failed > 0 ? kPassed : 4;
});

TEST_F(Damage, FullDisk) {
  int code = runChild("full-disk");
  if (code == kUnable) GTEST_SKIP() << "this system has no limit of a process's files";
  EXPECT_EQ(code, kPassed) << "1: another code than -3, 2: a refused posting is there or a posted one is not, 3: the "
                              "session does not recover, 4: the disk was never full";
  // Whole postings only.
  auto store = session();
  ASSERT_TRUE(store);
  EXPECT_EQ(dump(*store, 1, {vldb98::kBatchbuchung}).size() / (sizeof(vldb98::BATCHBUCHUNG) + sizeof "Batchbuchung:"),
            dump(*store, 1, {vldb98::kSplit}).size() / (sizeof(vldb98::SPLIT) + sizeof "Split:"));
}

ChildRole fullInside("full-inside-a-transaction", [](const std::string &) {
  using namespace vldb98;
  ChildBooks books;
  auto store = books.session();
  uint8_t found;
  if (!store || !store->SetzeFista(1, found) || !store->Transaktion(1, 0)) return 1;
  if (!limitFileSize(64 * 1024)) return kUnable;
  auto insert = [&](int number) {
    DATENBANK record{};
    put(record.Personenkonto.Nr, ("N" + std::to_string(number) + "       ").substr(0, 7));
    put(record.Personenkonto.Sammelkonto, "1400   ");
    return store->Insert(record, kDebitor);
  };
  // More than the engine keeps in memory, so that it writes before the commit.
  int number = 0;
  while (number < 100'000 && insert(number))
    ++number;
  if (number == 100'000) return 2;
  limitFileSize(0);
  if (insert(900'000)) return 3;
  if (store->Transaktion(2, 0)) return 4;
  if (!store->Used(KeyBuilder().account("N900000"), found, kDebitor) || found) return 5;
  return insert(900'001) ? kPassed : 6;
});

TEST_F(Damage, FullDiskInsideATransaction) {
  int code = runChild("full-inside-a-transaction");
  if (code == kUnable) GTEST_SKIP() << "this system has no limit of a process's files";
  EXPECT_EQ(code, kPassed)
      << "2: the disk was never full, 3 to 5: what came after the failure was written by itself, 6: "
         "the session does not recover";
}

} // namespace
} // namespace test
