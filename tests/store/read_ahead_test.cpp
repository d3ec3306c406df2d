// What is read from a server before it is asked for: that it saves the way, and that nothing out of date is served.
#include <functional>

#include "odbc/odbc_connection.h"
#include "support/books.h"

namespace test {
namespace {

using namespace vldb98;

class ReadAhead : public Books {
protected:
  void SetUp() override {
    if (!onServer()) GTEST_SKIP() << "there is no server (tests/mariadb/with_server)";
    store = opened();
    other = opened();
  }

  std::unique_ptr<Store> opened() {
    auto opened = session();
    uint8_t found = 0;
    EXPECT_TRUE(opened && opened->SetzeFista(1, found) && found);
    return opened;
  }

  static void rename(Store &store, int32_t batch, const char *name) {
    DATENBANK record{};
    uint8_t found = 0;
    ASSERT_TRUE(store.UsedGet(record, KeyBuilder().number(batch), found, kStapel) && found);
    put(record.Stapel.Name, name);
    ASSERT_TRUE(store.Update(record, kStapel));
  }
  static std::string nameOf(Store &store, int32_t batch) {
    DATENBANK record{};
    uint8_t found = 0;
    EXPECT_TRUE(store.UsedGet(record, KeyBuilder().number(batch), found, kStapel));
    return found ? record.Stapel.Name : "none";
  }
  static int32_t nextBatch(Store &store) {
    DATENBANK record{};
    uint8_t found = 0;
    EXPECT_TRUE(store.GetNextExt(record, found, kStapel));
    return found ? int(record.Stapel.Nr) : 0;
  }

  std::unique_ptr<Store> store, other;
};

TEST_F(ReadAhead, AnswersAreServedUntilTheyCouldBeWrong) {
  const struct {
    const char *what;
    std::function<void()> happens;
    bool served;
    const char *name = "ungelesen"; ///< what the batch is called by then
  } rows[] = {
      {"nothing", [] {}, true, "gelesen"},
      {"another table is unlocked", [&] { store->Unlock(kDebitor, 0); }, false},
      {"the table is unlocked", [&] { store->Unlock(kStapel, 0); }, false},
      {"another batch is changed", [&] { rename(*store, 1, "eins"); }, false},
      {"the year changes and comes back",
       [&] { EXPECT_TRUE(store->SetzeOpenJahr("45") && store->SetzeOpenJahr("46")); }, false},
      {"a transaction is undone", [&] { EXPECT_TRUE(store->Transaktion(1, 0) && store->Transaktion(4, 0)); }, false},
      {"a transaction begins in which others cannot write the table", [&] { store->Transaktion(1, 0); }, true,
       "gelesen"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.what);
    rename(*other, 3, "gelesen");
    const FileNumber locked[] = {kStapel, kDebitor};
    ASSERT_TRUE(store->Lock(locked));
    const LookUp wanted[] = {{ReadOp::Exact, kStapel, KeyBuilder().number(int32_t(3))},
                             {ReadOp::Exact, kStapel, KeyBuilder().number(int32_t(99))},
                             {ReadOp::Exists, kZahlziel, KeyBuilder().number(int32_t(98))},
                             {ReadOp::Le, fileNumber(kGeschaeftsjahr, 1), KeyBuilder().text("460704", 6)}};
    const uint64_t before = roundTrips();
    ASSERT_TRUE(store->ReadAhead(wanted));
    EXPECT_EQ(roundTrips() - before, 1u);
    // Nobody does that while the table is locked; it shows what was read when.
    rename(*other, 3, "ungelesen");
    row.happens();
    const uint64_t between = roundTrips();
    EXPECT_EQ(nameOf(*store, 3), row.name);
    EXPECT_EQ(nameOf(*store, 99), "none");
    EXPECT_EQ(roundTrips() - between, row.served ? 0u : 2u);
    if (store->transactionDepth() > 0) {
      const uint64_t inTransaction = roundTrips();
      DATENBANK record{};
      uint8_t found;
      EXPECT_TRUE(store->UsedGet(record, KeyBuilder().number(int32_t(98)), found, kZahlziel) && !found);
      EXPECT_EQ(roundTrips() - inTransaction, 1u) << "a table that others write";
      rename(*store, 3, "geschrieben");
      EXPECT_TRUE(store->Transaktion(4, 0));
    }
    store->Unlock(locked, 0);
  }
  // Without a lock nothing is read ahead.
  const LookUp wanted[] = {{ReadOp::Exact, kStapel, KeyBuilder().number(int32_t(3))}};
  const uint64_t before = roundTrips();
  EXPECT_TRUE(store->ReadAhead(wanted));
  EXPECT_EQ(roundTrips(), before);
}

TEST_F(ReadAhead, BlocksServeWalksUntilTheyAreOld) {
  for (int32_t i = 100; i < 600; ++i) {
    DATENBANK batch{};
    batch.Stapel.Nr = i;
    ASSERT_TRUE(other->Insert(batch, kStapel));
  }
  DATENBANK record{};
  uint8_t found;
  auto start = [&] {
    ASSERT_TRUE(store->GetGeExt(record, KeyBuilder().number(int32_t(100)), found, kStapel) && found);
  };
  start();
  uint64_t before = roundTrips();
  for (int32_t i = 101; i < 600; ++i)
    ASSERT_EQ(nextBatch(*store), i);
  EXPECT_EQ(nextBatch(*store), 0);
  // One row, ten, a hundred at a time: the last are 88 and the end.
  EXPECT_EQ(roundTrips() - before, 8u);

  // A range that was read as a block does not bound a walk that goes on from one of its records.
  ASSERT_TRUE(
      store->GetRangeExt(record, KeyBuilder().number(int32_t(100)), KeyBuilder().number(int32_t(101)), found, kStapel));
  store->setCurrent(record, kStapel);
  EXPECT_EQ(nextBatch(*store), 101);
  EXPECT_EQ(nextBatch(*store), 102);

  // What sessions of this process change is seen at once.
  start();
  for (int32_t i : {101, 102, 103})
    ASSERT_EQ(nextBatch(*store), i);
  DATENBANK at{};
  ASSERT_TRUE(store->UsedGet(at, KeyBuilder().number(int32_t(104)), found, kStapel) && found);
  ASSERT_TRUE(store->Delete(kStapel));
  ASSERT_TRUE(store->UsedGet(at, KeyBuilder().number(int32_t(103)), found, kStapel) && found);
  EXPECT_EQ(nextBatch(*store), 105);
  EXPECT_EQ(nextBatch(*store), 106);
  ASSERT_TRUE(store->UsedGet(at, KeyBuilder().number(int32_t(106)), found, kStapel) && found);
  ASSERT_TRUE(other->UsedGet(record, KeyBuilder().number(int32_t(107)), found, kStapel) && found);
  ASSERT_TRUE(other->Delete(kStapel));
  EXPECT_EQ(nextBatch(*store), 108);
}

} // namespace
} // namespace test
