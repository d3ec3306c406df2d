#include "sqlite/sqlite_connection.h"
#include "support/books.h"
#include "zelkctl/copy.h"

namespace test {
namespace {

using namespace vldb98;
using namespace zelkctl;

class Copy : public Books {
protected:
  Copy() {
    for (int lines : {1, 7}) {
      ZELK_SPLITBUCHUNG posting = validSplit(lines);
      EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), ZELK_OK);
    }
    source = session();
    target = emptyBooks();
  }

  std::unique_ptr<Store> emptyBooks() {
    DatabaseSettings settings;
    settings.directory = (folder() / ("leer" + std::to_string(++made_))).string();
    std::filesystem::create_directories(settings.directory);
    settings.openEmbedded = [](const std::string &path, std::chrono::milliseconds wait) {
      return openSqlite(path, {wait, true, true});
    };
    auto store = openSession(settings);
    EXPECT_TRUE(store && createTables(*store));
    return store;
  }

  CopyOutcome copy(int client) { return Kopiere(*source, *target, uint16_t(client), copied); }
  static std::string of(Store &store, int client) {
    std::string all;
    for (const Table &table : allTables())
      if (table.scope == Scope::Client || table.number == kSachkonto)
        all += dump(store, uint16_t(client), {table.number});
    return all;
  }

  std::unique_ptr<Store> source, target;
  std::vector<TableContent> copied;

private:
  int made_ = 0;
};

TEST_F(Copy, HoldsWhatTheSourceHolds) {
  EXPECT_EQ(copy(3), CopyOutcome::NoSuchClient);
  for (int client : {1, 2}) {
    ASSERT_EQ(copy(client), CopyOutcome::Done);
    EXPECT_EQ(of(*target, client), of(*source, client));
    EXPECT_EQ(content(*source, client), copied);
    EXPECT_EQ(copy(client), CopyOutcome::ClientIsThere);
  }
  uint64_t postings = 0;
  for (const TableContent &table : content(*target, 1))
    if (table.table->number == kBatchbuchung) postings = table.rows;
  EXPECT_EQ(postings, 2u);
  uint8_t found;
  for (const char *year : {"45", "46"}) {
    ASSERT_TRUE(target->SetzeFista(1, found) && target->SetzeOpenJahr(year));
    EXPECT_TRUE(target->Used(KeyBuilder().account("1200"), found, kSachkonto) && found) << year;
  }
}

TEST_F(Copy, ChecksumTellsOneChangedByte) {
  ASSERT_EQ(copy(1), CopyOutcome::Done);
  DATENBANK record{};
  uint8_t found;
  ASSERT_TRUE(target->SetzeFista(1, found) && target->GetLastExt(record, found, kSachkonto));
  record.Sachkonto.GuV ^= 1;
  ASSERT_TRUE(target->Update(record, kSachkonto));
  int different = 0;
  auto changed = content(*target, 1);
  ASSERT_EQ(changed.size(), copied.size());
  for (size_t i = 0; i < copied.size(); ++i)
    if (changed[i] != copied[i]) {
      ++different;
      EXPECT_EQ(changed[i].table->number, kSachkonto);
    }
  EXPECT_EQ(different, 1);
}

TEST_F(Copy, RemovesOnlyWhatWasCopied) {
  ASSERT_EQ(copy(1), CopyOutcome::Done);
  std::string other = of(*source, 2), before = of(*source, 1);
  ZELK_BUCHUNG posting = validPosting();
  ASSERT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK);
  EXPECT_FALSE(removeCopied(*source, 1, copied)) << "a posting has come since";
  EXPECT_NE(of(*source, 1), before);
  copied = content(*source, 1);
  ASSERT_TRUE(removeCopied(*source, 1, copied));
  EXPECT_TRUE(content(*source, 1).empty());
  uint8_t found;
  for (int table : {kSachkonto, kStapel, kGeschaeftsjahr, kBatchbuchung}) {
    DATENBANK record{};
    EXPECT_TRUE(source->StepFirstExt(record, found, FileNumber(table)) && !found) << table;
  }
  EXPECT_EQ(of(*source, 2), other);
}

TEST_F(Copy, ComesBackTheSame) {
  ASSERT_EQ(copy(2), CopyOutcome::Done);
  ASSERT_TRUE(removeCopied(*source, 2, copied));
  source = session();
  std::vector<TableContent> again;
  ASSERT_EQ(Kopiere(*target, *source, 2, again), CopyOutcome::Done);
  EXPECT_EQ(again, copied);
  EXPECT_EQ(postingsOf(1, 3).size(), 2u);
}

TEST_F(Copy, FailedStepLeavesTheTargetEmpty) {
  Faults faults;
  source = session();
  target = emptyBooks();
  faults.failAt(0);
  ASSERT_EQ(copy(2), CopyOutcome::Done);
  int steps = faults.operations();
  target = emptyBooks();
  for (int n = 1; n <= steps; n += n < 60 ? 1 : 37) {
    faults.failAt(n);
    CopyOutcome outcome = copy(2);
    faults.failAt(0);
    EXPECT_TRUE(outcome == CopyOutcome::SourceFailed || outcome == CopyOutcome::TargetFailed) << n;
    EXPECT_TRUE(content(*target, 2).empty()) << n;
    EXPECT_EQ(source->transactionDepth() + target->transactionDepth(), 0) << n;
  }
  EXPECT_EQ(copy(2), CopyOutcome::Done);
}

} // namespace
} // namespace test
