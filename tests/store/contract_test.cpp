// What the store promises of positions, keys, scopes and numbers.
#include <cstring>
#include <set>

#include "support/engines.h"

namespace test {
namespace {

using namespace vldb98;

TEST(FileNumbers, AreTablePlus127TimesKeyIndex) {
  struct Row {
    int table, keyIndex;
    FileNumber file;
  };
  static constexpr Row rows[] = {{0, 0, 0},    {0, 1, 127},  {2, 1, 129},  {3, 4, 511},  {16, 9, 1159}, {16, 10, 1286},
                                 {18, 1, 145}, {19, 1, 146}, {20, 1, 147}, {21, 1, 148}, {22, 1, 149},  {23, 1, 150}};
  for (const Row &row : rows) {
    EXPECT_EQ(fileNumber(row.table, row.keyIndex), row.file);
    EXPECT_EQ(tableOf(row.file), row.table);
    EXPECT_EQ(keyIndexOf(row.file), row.keyIndex);
    const Table *table = findTable(row.table);
    EXPECT_TRUE(table && table->key(row.keyIndex)) << "table " << row.table << " has no key " << row.keyIndex;
  }
}

class Contract : public StoreTest {
protected:
  static DATENBANK account(const std::string &number, const std::string &shortName = "", const std::string &name = "") {
    DATENBANK fresh{};
    put(fresh.Sachkonto.Nr, padded(number));
    put(fresh.Sachkonto.Kuerzel, shortName);
    put(fresh.Sachkonto.Name, name);
    return fresh;
  }
  static std::string padded(const std::string &number) { return (number + "       ").substr(0, 7); }
  static SCHLUESSEL key(const std::string &number) { return KeyBuilder().account(number); }

  void insert(DATENBANK fresh, FileNumber file = kSachkonto) { ASSERT_TRUE(store->Insert(fresh, file)); }

  /// Accounts 1000, 1200, 1400, 1600, whose short names run the other way and are the same for two of them.
  void insertFour() {
    insert(account("1000", "D", "Kasse"));
    insert(account("1200", "C", "Bank"));
    insert(account("1400", "B", "Forderungen"));
    insert(account("1600", "B", "Verbindlichkeiten"));
  }

  /// The account that a read delivered; "none", "failed", or "failed?" when a failed read claims to have found one.
  std::string answer(int done) const {
    if (!done) return found ? "failed?" : "failed";
    return found ? std::string(record.Sachkonto.Nr, 4) : "none";
  }
  std::string ge(const std::string &number, FileNumber file = kSachkonto) {
    return answer(store->GetGeExt(record, key(number), found, file));
  }
  std::string next(FileNumber file = kSachkonto) { return answer(store->GetNextExt(record, found, file)); }
  std::string prev(FileNumber file = kSachkonto) { return answer(store->GetPrevExt(record, found, file)); }
  std::string exact(const std::string &number) {
    return answer(store->UsedGet(record, key(number), found, kSachkonto));
  }

  DATENBANK record{};
  uint8_t found = 9;
};

TEST_P(Contract, UnpaddedKeyIsMissing) {
  insertFour();
  struct Row {
    const char *bytes;
    bool there;
  };
  static constexpr Row rows[] = {
      {"1200   ", true}, {"1200\0\0\0", false}, {"1200 \0\0", false}, {"1200  \0", false}, {"   1200", false}};
  for (const Row &row : rows) {
    SCHLUESSEL unpadded;
    std::memcpy(unpadded.bytes, row.bytes, 7);
    ASSERT_TRUE(store->Used(unpadded, found, kSachkonto));
    EXPECT_EQ(found != 0, row.there) << row.bytes;
    ASSERT_TRUE(store->UsedGet(record, unpadded, found, kSachkonto));
    EXPECT_EQ(found != 0, row.there) << row.bytes;
  }
  // As a start it lies after the account that it resembles.
  SCHLUESSEL unpadded;
  std::memcpy(unpadded.bytes, "1200", 4);
  EXPECT_EQ(answer(store->GetGeExt(record, unpadded, found, kSachkonto)), "1400");
  EXPECT_EQ(answer(store->GetLeExt(record, unpadded, found, kSachkonto)), "1200");
}

TEST_P(Contract, EndOfTheTableIsNoFailure) {
  EXPECT_EQ(ge(""), "none");
  EXPECT_FALSE(store->GetFirst(record, kSachkonto));
  insertFour();
  EXPECT_EQ(ge("1601"), "none");
  EXPECT_FALSE(store->GetGe(record, key("1601"), kSachkonto));
  EXPECT_EQ(answer(store->GetLeExt(record, key("0999"), found, kSachkonto)), "none");
  EXPECT_EQ(ge("1500"), "1600");
  EXPECT_EQ(next(), "none");
  EXPECT_FALSE(store->GetNext(record, kSachkonto));
  // The position is still the last record.
  EXPECT_EQ(prev(), "1400");
  EXPECT_TRUE(store->GetNext(record, kSachkonto));
  EXPECT_TRUE(store->GetLast(record, kSachkonto));
  EXPECT_EQ(std::string(record.Sachkonto.Nr), "1600   ");
}

TEST_P(Contract, WhatIsNotThereOrNotInUseFails) {
  insertFour();
  const DBENGINE other = GetParam().other;
  struct Row {
    const char *what;
    FileNumber file;
    DBENGINE engine;
    bool readable, writable;
  };
  const Row rows[] = {{"the default engine", kSachkonto, ZELK_ENG_DEFAULT, true, true},
                      {"the engine by its number", kSachkonto, GetParam().kind, true, true},
                      {"another engine", kSachkonto, other, false, false},
                      {"a key index that is not declared", fileNumber(kSachkonto, 2), ZELK_ENG_DEFAULT, false, true},
                      {"an unknown table", 5, ZELK_ENG_DEFAULT, false, false},
                      {"the table number 126", 126, ZELK_ENG_DEFAULT, false, false}};
  for (const Row &row : rows) {
    SCOPED_TRACE(row.what);
    int reads[] = {store->GetFirstExt(record, found, row.file, row.engine, 0),
                   store->GetLastExt(record, found, row.file, row.engine, 0),
                   store->GetGeExt(record, key("1"), found, row.file, row.engine, 0),
                   store->GetLeExt(record, key("1"), found, row.file, row.engine, 0),
                   store->GetRangeExt(record, key("1"), key("2"), found, row.file, row.engine),
                   store->GetNextExt(record, found, row.file, row.engine),
                   store->GetPrevExt(record, found, row.file, row.engine),
                   store->Used(key("1000"), found, row.file, row.engine),
                   store->UsedGet(record, key("1000"), found, row.file, row.engine)};
    for (size_t i = 0; i < std::size(reads); ++i)
      EXPECT_EQ(reads[i] != 0, row.readable) << "read " << i;
    EXPECT_TRUE(row.readable || !found);
    DATENBANK fresh = account("9000");
    EXPECT_EQ(store->Insert(fresh, row.file, row.engine) != 0, row.writable);
    EXPECT_EQ(store->Update(fresh, row.file, row.engine) != 0, row.writable);
    EXPECT_EQ(store->Delete(row.file, row.engine) != 0, row.writable);
  }
  EXPECT_FALSE(store->Transaktion(1, 0, other));
  EXPECT_FALSE(store->Transaktion(3, 0));
  EXPECT_FALSE(store->Lock(kSachkonto, nullptr, 0, other));
  EXPECT_FALSE(store->Unlock(kSachkonto, 1, other));
  EXPECT_FALSE(store->UnlockCurrentRecord(kSachkonto, other));
  EXPECT_FALSE(store->InitMultiInsert(kSachkonto, other));
  EXPECT_EQ(store->transactionDepth(), 0);
  EXPECT_EQ(store->GetUsedEngine(), GetParam().kind);
}

TEST_P(Contract, PositionSurvivesDeleteAndReadsThatFindNothing) {
  insertFour();
  EXPECT_EQ(exact("1200"), "1200");
  ASSERT_TRUE(store->Delete(kSachkonto));
  EXPECT_FALSE(store->Delete(kSachkonto));
  DATENBANK gone = account("1200");
  EXPECT_FALSE(store->Update(gone, kSachkonto));
  EXPECT_EQ(exact("1200"), "none");
  EXPECT_EQ(ge("9"), "none");
  EXPECT_EQ(next(), "1400");
  EXPECT_EQ(prev(), "1000");
  // A test delivers nothing, so it does not position.
  ASSERT_TRUE(store->Used(key("1600"), found, kSachkonto));
  EXPECT_TRUE(found);
  EXPECT_EQ(next(), "1400");
}

TEST_P(Contract, PositionIsTheTablesNotTheKeys) {
  insertFour();
  EXPECT_EQ(exact("1200"), "1200");
  // By short name the order is 1400 and 1600 (both "B", by number), 1200, 1000.
  FileNumber byShortName = fileNumber(kSachkonto, 1);
  EXPECT_EQ(next(byShortName), "1000");
  EXPECT_EQ(prev(byShortName), "1200");
  EXPECT_EQ(prev(byShortName), "1600");
  EXPECT_EQ(prev(byShortName), "1400");
  EXPECT_EQ(prev(byShortName), "none");
  EXPECT_EQ(next(), "1600");
}

TEST_P(Contract, PositioniereBringsAWalkBack) {
  insertFour();
  EXPECT_EQ(ge("1000"), "1000");
  DATENBANK place = record;
  EXPECT_EQ(exact("1600"), "1600");
  store->setCurrent(place, kSachkonto);
  EXPECT_EQ(next(), "1200");
  // Also when that record is gone, and whatever range was running.
  place = record;
  ASSERT_TRUE(store->Delete(kSachkonto));
  EXPECT_EQ(answer(store->GetRangeExt(record, key("1000"), key("1000"), found, kSachkonto)), "1000");
  store->setCurrent(place, kSachkonto);
  EXPECT_EQ(next(), "1400");
  place = account("1600");
  store->setCurrent(place, kSachkonto);
  ASSERT_TRUE(store->Delete(kSachkonto));
  EXPECT_EQ(exact("1600"), "none");
}

TEST_P(Contract, InsertAndUpdatePosition) {
  insertFour();
  insert(account("1100"));
  EXPECT_EQ(next(), "1200");
  // A changed primary key moves the record and the position with it.
  DATENBANK moved = account("1500", "C", "Bank");
  ASSERT_TRUE(store->Update(moved, kSachkonto));
  EXPECT_EQ(next(), "1600");
  EXPECT_EQ(exact("1200"), "none");
  // A refused change leaves the position.
  EXPECT_EQ(exact("1000"), "1000");
  moved = account("1400");
  EXPECT_FALSE(store->Update(moved, kSachkonto));
  EXPECT_FALSE(store->Insert(moved, kSachkonto));
  EXPECT_EQ(next(), "1100");
}

TEST_P(Contract, WithoutAPositionThereIsNoStep) {
  insertFour();
  auto fresh = open();
  ASSERT_TRUE(fresh);
  store = std::move(fresh);
  EXPECT_EQ(next(), "none");
  EXPECT_EQ(prev(), "none");
  EXPECT_EQ(answer(store->StepNextExt(record, found, kSachkonto)), "none");
  EXPECT_FALSE(store->Delete(kSachkonto));
  DATENBANK any = account("1000");
  EXPECT_FALSE(store->Update(any, kSachkonto));
}

TEST_P(Contract, PhysicalStepsMeetEachRecordOnce) {
  insertFour();
  // The key index of the file number does not matter.
  for (FileNumber file : {fileNumber(kSachkonto, 0), fileNumber(kSachkonto, 1)}) {
    std::string walk;
    for (std::string at = answer(store->StepFirstExt(record, found, file)); at != "none" && walk.size() < 40;
         at = answer(store->StepNextExt(record, found, file)))
      walk += at + " ";
    EXPECT_EQ(walk, "1000 1200 1400 1600 ");
  }
}

TEST_P(Contract, RangeEndsAtItsUpperKey) {
  insertFour();
  struct Row {
    const char *lower, *upper, *walk;
  };
  static constexpr Row rows[] = {{"1000", "1400", "1000 1200 1400 "},
                                 {"1001", "1399", "1200 "},
                                 {"1200", "1200", "1200 "},
                                 {"1401", "1599", ""},
                                 {"1201", "1399", ""},
                                 {"1400", "1000", ""},
                                 {"1400", "9999", "1400 1600 "},
                                 {"", "1200", "1000 1200 "}};
  for (const Row &row : rows) {
    std::string walk;
    for (std::string at = answer(store->GetRangeExt(record, key(row.lower), key(row.upper), found, kSachkonto));
         at != "none" && walk.size() < 40; at = next())
      walk += at + " ";
    EXPECT_EQ(walk, row.walk) << row.lower << " to " << row.upper;
    EXPECT_EQ(next(), "none") << "after " << row.lower << " to " << row.upper;
  }
  // All records of a non-unique key belong to the range.
  FileNumber byShortName = fileNumber(kSachkonto, 1);
  SCHLUESSEL b = KeyBuilder().text("B", 8);
  EXPECT_EQ(answer(store->GetRangeExt(record, b, b, found, byShortName)), "1400");
  EXPECT_EQ(next(byShortName), "1600");
  EXPECT_EQ(next(byShortName), "none");
  // It binds steps by its own key only, and no longer than until the next positioning read.
  EXPECT_EQ(answer(store->GetRangeExt(record, b, b, found, byShortName)), "1400");
  EXPECT_EQ(prev(), "1200");
  EXPECT_EQ(answer(store->GetRangeExt(record, key("1000"), key("1200"), found, kSachkonto)), "1000");
  EXPECT_EQ(ge("1200"), "1200");
  EXPECT_EQ(next(), "1400");
}

TEST_P(Contract, RangeEndsWithItsScope) {
  insertFour();
  EXPECT_EQ(answer(store->GetRangeExt(record, key("1000"), key("1200"), found, kSachkonto)), "1000");
  ASSERT_TRUE(store->SetzeFista(2, found) && found);
  insert(account("1200"));
  insert(account("1300"));
  EXPECT_EQ(prev(), "1200");
  EXPECT_EQ(next(), "1300");
}

TEST_P(Contract, ClientsAndFiscalYearsDoNotSeeEachOther) {
  insert(account("1000"));
  DATENBANK batch{};
  insert(batch, kStapel);
  ASSERT_TRUE(store->SetzeOpenJahr("45"));
  EXPECT_EQ(next(), "none") << "the position belongs to the other year";
  EXPECT_EQ(exact("1000"), "none");
  insert(account("1000"));
  insert(account("2000"));
  ASSERT_TRUE(store->UsedGet(record, KeyBuilder().number(int32_t(2)), found, kStapel));
  EXPECT_TRUE(found) << "batches are the client's, whatever the year";
  ASSERT_TRUE(store->SetzeFista(2, found) && found);
  EXPECT_STREQ(store->HoleOpenJahr(), "46");
  EXPECT_EQ(exact("1000"), "none");
  ASSERT_TRUE(store->UsedGet(record, KeyBuilder().number(int32_t(2)), found, kStapel));
  EXPECT_FALSE(found);
  ASSERT_TRUE(store->SetzeFista(1, found) && found);
  EXPECT_EQ(ge(""), "1000");
  EXPECT_EQ(next(), "none");
}

TEST_P(Contract, RecordsNeedTheClientAndYearThatTheyBelongTo) {
  store = openWithoutClient();
  FIRMENSTAMM noYear{};
  noYear.Nummer = 7;
  ASSERT_TRUE(store->SaveFista(noYear)) << "clients belong to nobody";
  record = {};
  EXPECT_FALSE(store->Insert(record, kStapel));
  ASSERT_TRUE(store->SetzeFista(7, found) && found);
  EXPECT_TRUE(store->Insert(record, kStapel));
  record = account("1000");
  EXPECT_FALSE(store->Insert(record, kSachkonto));
}

TEST_P(Contract, InsertAssignsNumbers) {
  // The record's fields lie where they lie, aligned or not.
  auto number = [&](int table) {
    return record.bytes + findTable(table)->fields[size_t(findTable(table)->assigned)].offset;
  };
  auto inserted = [&](int table, int32_t wanted) {
    std::memcpy(number(table), &wanted, sizeof wanted);
    if (!store->Insert(record, FileNumber(table))) return std::memcmp(number(table), &wanted, sizeof wanted) ? -2 : -1;
    std::memcpy(&wanted, number(table), sizeof wanted);
    return wanted;
  };
  record = {};
  EXPECT_EQ(inserted(kStapel, 0), 2);
  EXPECT_EQ(inserted(kStapel, 9), 9);
  EXPECT_EQ(inserted(kStapel, 0), 10);
  EXPECT_EQ(inserted(kStapel, 9), -1);
  // A refused record keeps its number. After the greatest number there is, the lowest free one follows.
  EXPECT_EQ(inserted(kStapel, INT32_MAX), INT32_MAX);
  EXPECT_EQ(inserted(kStapel, 0), 3);
  EXPECT_EQ(inserted(kStapel, 0), 4);

  record = {};
  std::set<std::string> identifiers;
  for (int32_t batch : {1, 2}) {
    record.Batchbuchung.Stapel = batch;
    for (int32_t n : {1, 2, 3}) {
      put(record.Batchbuchung.Kennung, "");
      EXPECT_EQ(inserted(kBatchbuchung, 0), n) << "batch " << batch;
      identifiers.insert(record.Batchbuchung.Kennung);
    }
  }
  EXPECT_EQ(identifiers.size(), 6u) << "each posting has its own";

  record = {};
  put(record.Zahlziel.Kuerzel, "A");
  EXPECT_EQ(inserted(kZahlziel, 0), 1);
  put(record.Zahlziel.Kuerzel, "B");
  EXPECT_EQ(inserted(kZahlziel, 0), 2);
  EXPECT_EQ(inserted(kZahlziel, 0), -1) << "its second key is unique";
  ASSERT_TRUE(store->SetzeFista(2, found) && found);
  EXPECT_EQ(inserted(kZahlziel, 0), 1) << "each client counts for itself";
  EXPECT_EQ(store->transactionDepth(), 0);
}

TEST_P(Contract, AnotherSessionsChangesAreMet) {
  insertFour();
  auto other = open();
  ASSERT_TRUE(other);
  EXPECT_EQ(exact("1200"), "1200");
  DATENBANK theirs{};
  ASSERT_TRUE(other->UsedGet(theirs, key("1200"), found, kSachkonto) && found);
  ASSERT_TRUE(other->Delete(kSachkonto));
  DATENBANK changed = account("1200", "X");
  EXPECT_FALSE(store->Update(changed, kSachkonto));
  EXPECT_FALSE(store->Delete(kSachkonto));
  EXPECT_EQ(next(), "1400");
  theirs = account("1500");
  ASSERT_TRUE(other->Insert(theirs, kSachkonto));
  EXPECT_EQ(next(), "1500");
}

TEST_P(Contract, AccountsAreLookedUpInTheirOrder) {
  auto add = [&](int table, const std::string &number, const std::string &reference = "") {
    DATENBANK fresh = account(number);
    if (table == kKost) {
      fresh = {};
      put(fresh.Kost.Nr, padded(number));
      put(fresh.Kost.Kostref, padded(reference));
      put(fresh.Kost.Kuerzel, "K" + number);
    } else if (table != kSachkonto) {
      fresh = {};
      put(fresh.Personenkonto.Nr, padded(number));
      put(fresh.Personenkonto.Sammelkonto, padded(""));
    }
    insert(fresh, FileNumber(table));
  };
  add(kSachkonto, "1");
  for (const char *number : {"1", "2"})
    add(kKreditor, number);
  for (const char *number : {"1", "2", "3"})
    add(kDebitor, number);
  for (const char *number : {"1", "2", "3", "4"})
    add(kKost, number);
  add(kKost, "5", "R");
  add(kKost, "1234567");
  struct Row {
    const char *number;
    uint8_t kind;
    int32_t table;
  };
  static constexpr Row rows[] = {{"1", 1, kSachkonto}, {"2", 2, kKreditor}, {"3", 4, kDebitor}, {"4", 16, kKost},
                                 {"5", 0, -1},         {"6", 0, -1},        {"", 0, -1},        {"1234567 ", 16, kKost},
                                 {"12345678", 0, -1}};
  for (const Row &row : rows) {
    int32_t table = -1;
    EXPECT_TRUE(store->UsedAndGetKnr(row.number, found, record, table)) << row.number;
    EXPECT_EQ(found, row.kind) << row.number;
    EXPECT_EQ(table, row.table) << row.number;
  }
  EXPECT_TRUE(store->UsedKuerzel("K4", found, kKost) && found);
  EXPECT_TRUE(store->UsedKuerzel("K", found, kKost) && !found);
  EXPECT_TRUE(store->UsedKuerzel("K4", found, kDebitor) && !found);
}

ZELK_ON_ALL_ENGINES(Contract);

} // namespace
} // namespace test
