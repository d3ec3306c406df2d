// All or nothing: transactions, bulk insertion, emptied tables, and the locks that end with a transaction.
#include <cstring>

#include "support/engines.h"

namespace test {
namespace {

using namespace vldb98;

constexpr int kBegin = 1, kCommit = 2, kRollback = 4;

class Transactions : public StoreTest {
protected:
  void SetUp() override {
    StoreTest::SetUp();
    if (IsSkipped()) return;
    other = open(std::chrono::milliseconds(30));
    ASSERT_TRUE(other);
  }

  bool insert(const std::string &number) {
    DATENBANK record = account(number);
    return store->Insert(record, kSachkonto);
  }
  static DATENBANK account(const std::string &number) {
    DATENBANK record{};
    put(record.Sachkonto.Nr, (number + "       ").substr(0, 7));
    return record;
  }

  /// The accounts of the open client and year as another session sees them.
  std::string accounts(uint16_t client = 1, const char *year = "46") {
    uint8_t found;
    EXPECT_TRUE(other->SetzeFista(client, found) && found && other->SetzeOpenJahr(year));
    std::string all;
    DATENBANK record{};
    for (int done = other->GetFirstExt(record, found, kSachkonto); done && found;
         done = other->GetNextExt(record, found, kSachkonto))
      all += std::string(record.Sachkonto.Nr, 1);
    EXPECT_TRUE(other->SetzeFista(1, found));
    return all;
  }

  bool lockFree(FileNumber table) { return other->Lock(table, nullptr, 1); }

  std::unique_ptr<Store> other;
};

// A script of steps with what each must answer: b begin, c commit, r rollback, i insert of the next account.
TEST_P(Transactions, NestAndInnerOnesAreRolledBackAlone) {
  struct Row {
    const char *script, *answers, *left;
  };
  static constexpr Row rows[] = {
      {"i", "1", "A"},
      {"bic", "111", "A"},
      {"bir", "111", ""},
      {"bibicic", "1111111", "ABC"},
      {"bibicir", "1111111", ""},
      {"bibiric", "1111111", "AC"}, // the inner one is rolled back alone
      {"bbirbicic", "111111111", "BC"},
      {"bibbirirc", "111111111", "A"},
      {"bibirir", "1111111", ""},
      {"bbribc", "111111", ""}, // still open at its end: the session's end undoes it
      {"bbrcbic", "1111111", "A"},
      {"bbbirccbic", "1111111111", "B"},
      {"c", "0", ""},
      {"r", "0", ""},
      {"icr", "100", "A"},
      {"biccbic", "1110111", "AB"},
      {"bi", "11", ""},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.script);
    std::string answers;
    char next = 'A';
    for (const char *step = row.script; *step; ++step) {
      int done = *step == 'i' ? insert(std::string(1, next++))
                              : store->Transaktion(*step == 'b'   ? kBegin
                                                   : *step == 'c' ? kCommit
                                                                  : kRollback,
                                                   0);
      answers += done ? '1' : '0';
    }
    EXPECT_EQ(answers, row.answers);
    store = open();
    ASSERT_TRUE(store);
    EXPECT_EQ(accounts(), row.left);
    ASSERT_TRUE(store->DeleteTable(kSachkonto));
  }
}

TEST_P(Transactions, AreSeenByOthersOnlyWhenCommitted) {
  ASSERT_TRUE(store->Transaktion(kBegin, 0));
  ASSERT_TRUE(insert("A"));
  EXPECT_EQ(accounts(), "");
  DATENBANK record = account("A");
  EXPECT_FALSE(other->Insert(record, kSachkonto)) << "two writers of one record at once";
  ASSERT_TRUE(store->Transaktion(kCommit, 0));
  EXPECT_EQ(accounts(), "A");
  record = account("B");
  EXPECT_TRUE(other->Insert(record, kSachkonto));
}

// The order of the writing functions: begin, lock, read, write.
TEST_P(Transactions, WaitForLocksWithoutKeepingOthersFromWriting) {
  ASSERT_TRUE(store->Transaktion(kBegin, 0) && other->Lock(kSachkonto, nullptr, 0));
  DATENBANK record = account("A");
  EXPECT_TRUE(other->Insert(record, kSachkonto));
  ASSERT_TRUE(other->Unlock(kSachkonto, 1) && store->Lock(kSachkonto, nullptr, 0));
  uint8_t found;
  EXPECT_TRUE(store->UsedGet(record, KeyBuilder().account("A"), found, kSachkonto) && found);
  record = account("B");
  EXPECT_EQ(bool(other->Insert(record, kSachkonto)), store->IsUsedEngineSQL()) << "begun with the read";
  ASSERT_TRUE(store->Transaktion(kCommit, 0) && store->Unlock(kSachkonto, 1));
}

TEST_P(Transactions, ReadOneStateWhereAskedFor) {
  ASSERT_TRUE(insert("A"));
  ASSERT_TRUE(other->Transaktion(kBegin, 1));
  EXPECT_EQ(accounts(), "A");
  ASSERT_TRUE(insert("B")) << "a reader stands in the way";
  EXPECT_EQ(accounts(), "A");
  ASSERT_TRUE(other->Transaktion(kCommit, 1));
  EXPECT_EQ(accounts(), "AB");
}

TEST_P(Transactions, FailedStepLeavesTheOthersToBeDecided) {
  ASSERT_TRUE(store->Transaktion(kBegin, 0));
  ASSERT_TRUE(insert("A"));
  EXPECT_FALSE(insert("A"));
  DATENBANK malformed = account("B");
  std::memset(malformed.Sachkonto.Name, 'x', sizeof malformed.Sachkonto.Name);
  EXPECT_FALSE(store->Insert(malformed, kSachkonto));
  DATENBANK batch{};
  std::memset(batch.Stapel.Name, 'x', sizeof batch.Stapel.Name);
  EXPECT_FALSE(store->Insert(batch, kStapel)) << "also where a number is assigned";
  EXPECT_EQ(store->transactionDepth(), 1);
  ASSERT_TRUE(store->Transaktion(kCommit, 0));
  EXPECT_EQ(accounts(), "A");
}

TEST_P(Transactions, ReleaseLocksAtTheirEnd) {
  struct Row {
    int flag, end; // of Unlock; of the transaction, 0: none
    bool freeInside;
  };
  static constexpr Row rows[] = {{0, kCommit, false},  {0, kRollback, false}, {1, kCommit, true},
                                 {1, kRollback, true}, {0, 0, true},          {1, 0, true}};
  for (const Row &row : rows) {
    SCOPED_TRACE("flag " + std::to_string(row.flag) + ", end " + std::to_string(row.end));
    ASSERT_TRUE(!row.end || store->Transaktion(kBegin, 0));
    ASSERT_TRUE(store->Lock(kSachkonto, nullptr, 0));
    ASSERT_TRUE(store->LockRes(kSachkonto, 1, "Saldo", 0, 0));
    EXPECT_FALSE(lockFree(kSachkonto));
    ASSERT_TRUE(store->Unlock(kSachkonto, row.flag));
    EXPECT_EQ(lockFree(kSachkonto), row.freeInside);
    EXPECT_EQ(bool(other->LockRes(kSachkonto, 1, "Saldo", 1, 0)), row.freeInside);
    EXPECT_EQ(store->holdsLocks(), !row.freeInside);
    ASSERT_TRUE(!row.end || store->Transaktion(row.end, 0));
    EXPECT_TRUE(lockFree(kSachkonto));
    EXPECT_FALSE(store->holdsLocks());
  }
}

TEST_P(Transactions, LockTakenAgainInsideIsHeldOn) {
  ASSERT_TRUE(store->Transaktion(kBegin, 0));
  ASSERT_TRUE(store->Lock(kSachkonto, nullptr, 0));
  ASSERT_TRUE(store->Unlock(kSachkonto, 0));
  ASSERT_TRUE(store->Lock(kSachkonto, nullptr, 0));
  ASSERT_TRUE(store->Transaktion(kCommit, 0));
  EXPECT_FALSE(lockFree(kSachkonto));
  ASSERT_TRUE(store->Unlock(kSachkonto, 0));
  EXPECT_TRUE(lockFree(kSachkonto));
  // An inner end is none.
  ASSERT_TRUE(store->Transaktion(kBegin, 0) && store->Transaktion(kBegin, 0));
  ASSERT_TRUE(store->Lock(kSachkonto, nullptr, 0) && store->Unlock(kSachkonto, 0));
  ASSERT_TRUE(store->Transaktion(kCommit, 0));
  EXPECT_FALSE(lockFree(kSachkonto));
  ASSERT_TRUE(store->Transaktion(kCommit, 0));
  EXPECT_TRUE(lockFree(kSachkonto));
}

TEST_P(Transactions, MultiInsertIsAllOrNothing) {
  struct Row {
    const char *accounts;
    bool done;
    const char *left;
  };
  static constexpr Row rows[] = {
      {"", true, ""}, {"ABC", true, "ABC"}, {"DAE", false, "ABC"}, {"DD", false, "ABC"}, {"D", true, "ABCD"}};
  for (const Row &row : rows) {
    SCOPED_TRACE(row.accounts);
    ASSERT_TRUE(store->InitMultiInsert(kSachkonto));
    bool all = true;
    for (const char *number = row.accounts; *number; ++number) {
      DATENBANK record = account(std::string(1, *number));
      bool done = store->MultiInsertNext(record, kSachkonto);
      EXPECT_TRUE(all || !done) << "went on after a failure";
      all = all && done;
    }
    EXPECT_EQ(all, row.done);
    EXPECT_EQ(bool(store->EndMultiInsert(kSachkonto)), row.done);
    EXPECT_EQ(store->transactionDepth(), 0);
    EXPECT_EQ(accounts(), row.left);
  }
  EXPECT_FALSE(store->EndMultiInsert(kSachkonto));

  // Two in turns stand or fall together, whichever was refused a record.
  for (bool refused : {true, false}) {
    ASSERT_TRUE(store->InitMultiInsert(kSachkonto));
    DATENBANK record = account(refused ? "A" : "E"), batch{};
    EXPECT_EQ(store->MultiInsertNext(record, kSachkonto), !refused);
    EXPECT_FALSE(store->MultiInsertNext(batch, kStapel)) << "not begun";
    ASSERT_TRUE(store->InitMultiInsert(kStapel));
    EXPECT_FALSE(store->InitMultiInsert(kStapel));
    EXPECT_TRUE(store->MultiInsertNext(batch, kStapel));
    EXPECT_EQ(store->EndMultiInsert(kStapel), !refused);
    EXPECT_EQ(store->EndMultiInsert(kSachkonto), !refused);
    uint8_t there;
    EXPECT_TRUE(store->Used(KeyBuilder().number(int32_t(2)), there, kStapel) && bool(there) == !refused);
  }
  EXPECT_EQ(accounts(), "ABCDE");
}

TEST_P(Transactions, LeereRelationEmptiesItsScopeOnly) {
  struct Row {
    const char *client, *year; // of LeereRelation
    const char *left;          // client 1: 2025, 2026; client 2: 2025, 2026
  };
  static constexpr Row rows[] = {{nullptr, nullptr, "A,,C,D"}, {"", "", "A,,C,D"},       {"1", "2025", ",B,C,D"},
                                 {"2", "2026", "A,B,C,"},      {"2", nullptr, "A,B,C,"}, {nullptr, "2025", ",B,C,D"},
                                 {"3", "2026", "A,B,C,D"},     {"1", "2024", "A,B,C,D"}};
  for (const Row &row : rows) {
    SCOPED_TRACE(std::string(row.client ? row.client : "null") + ", " + (row.year ? row.year : "null"));
    uint8_t found;
    char next = 'A';
    for (uint16_t client : {1, 2})
      for (const char *year : {"45", "46"}) {
        ASSERT_TRUE(store->SetzeFista(client, found) && found && store->SetzeOpenJahr(year));
        ASSERT_TRUE(insert(std::string(1, next++)));
      }
    ASSERT_TRUE(store->SetzeFista(1, found) && found);
    DATENBANK record = account("lingers");
    EXPECT_TRUE(store->LeereRelation(kSachkonto, &record, row.client, row.year));
    EXPECT_EQ(record.bytes[0], 0);
    EXPECT_EQ(accounts(1, "45") + "," + accounts(1, "46") + "," + accounts(2, "45") + "," + accounts(2, "46"),
              row.left);
    // The session's own scope is as it was.
    ASSERT_TRUE(insert("Z"));
    EXPECT_EQ(accounts().back(), 'Z');
    ASSERT_TRUE(store->DropTable(kSachkonto) && store->CreateSako());
  }
  EXPECT_FALSE(store->LeereRelation(5, nullptr, nullptr, nullptr));
}

TEST_P(Transactions, TablesAreMadeAndDropped) {
  uint8_t exists;
  ASSERT_TRUE(insert("A"));
  EXPECT_TRUE(store->CreateSako()) << "made again";
  EXPECT_EQ(accounts(), "A");
  EXPECT_TRUE(store->TableExists(kSachkonto, exists) && exists);
  EXPECT_TRUE(store->DropTable(kSachkonto));
  EXPECT_TRUE(store->TableExists(kSachkonto, exists) && !exists);
  EXPECT_TRUE(store->TableExists(5, exists) && !exists);
  DATENBANK record{};
  uint8_t found;
  EXPECT_FALSE(store->GetFirstExt(record, found, kSachkonto));
  EXPECT_FALSE(insert("B"));
  EXPECT_FALSE(store->CreateTable(5));
  EXPECT_FALSE(store->DropTable(5));
  EXPECT_TRUE(store->CreateSako());
  EXPECT_TRUE(insert("B"));
  EXPECT_EQ(accounts(), "B");
  EXPECT_TRUE(store->DeleteTable(kSachkonto));
  EXPECT_EQ(accounts(), "");
  const std::pair<int (Store::*)(), std::vector<int>> created[] = {{&Store::CreateBube, {kBuchungsbeleg}},
                                                                   {&Store::CreateOp, {kOPDebitor, kOPKreditor}}};
  for (const auto &[create, tables] : created) {
    for (int table : tables)
      EXPECT_TRUE(store->DropTable(table));
    EXPECT_TRUE((store.get()->*create)());
    for (int table : tables)
      EXPECT_TRUE(store->TableExists(table, exists) && exists) << table;
  }
}

ZELK_ON_ALL_ENGINES(Transactions);

} // namespace
} // namespace test
