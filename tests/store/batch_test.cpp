// Batch postings and the state of the open client.
#include <cstring>

#include "support/engines.h"

namespace test {
namespace {

using namespace vldb98;

constexpr std::initializer_list<int> kPostingTables = {kStapel, kBatchbuchung, kSplit, kKobu};

class BatchPostings : public StoreTest {
protected:
  static SPLIT line(const std::string &amount) {
    SPLIT made{};
    put(made.Sollkonto, "1200   ");
    put(made.Habenkonto, "1000   ");
    put(made.Brutto, amount);
    return made;
  }
  static KOBU cost(int32_t split, const std::string &amount) {
    KOBU made{};
    made.Split = split;
    for (auto field : {&KOBU::Kostenstelle1, &KOBU::Kostenstelle2, &KOBU::Kostenstelle3, &KOBU::Kostenstelle4,
                       &KOBU::Kostenstelle5, &KOBU::Kostenstelle6})
      put(made.*field, "       ");
    put(made.Betrag, amount);
    return made;
  }
  static BATCHBUCHUNG posting(const std::string &document, int32_t batch = 1) {
    BATCHBUCHUNG made{};
    made.Stapel = batch;
    put(made.Belegdatum, "460121");
    put(made.Belegnummer, document);
    return made;
  }

  /// Two lines, of which the first has two cost postings and the second has one.
  static bool insertSplit(Store &into, BATCHBUCHUNG &made) {
    into.SplitFree();
    into.MemInsertSplit(line("000000060,00"));
    into.MemInsertSplit(line("000000040,00"));
    into.MemInsertKobu(cost(0, "000000020,00"));
    into.MemInsertKobu(cost(0, "000000040,00"));
    into.MemInsertKobu(cost(1, "000000040,00"));
    return into.InsertBat(made);
  }

  /// Document, lines and cost postings of what lies in memory: "B-1 2: 0/60 1/40; 0.0/20 0.1/40 1.0/40".
  static std::string inMemory(Store &from, const BATCHBUCHUNG &made) {
    auto euros = [](const char *money) { return std::to_string(std::atoi(money)); };
    std::string text = std::string(made.Belegnummer) + " " + std::to_string(made.Anzahl) + ":";
    for (size_t i = 0; SPLIT *split = from.PSplit(i); ++i)
      text += " " + std::to_string(split->Nr) + "/" + euros(split->Brutto);
    text += ";";
    for (size_t i = 0; KOBU *cost = from.costAt(i); ++i)
      text += " " + std::to_string(cost->Split) + "." + std::to_string(cost->Nr) + "/" + euros(cost->Betrag);
    return text;
  }

  bool holdsPostings(int32_t batch) {
    DATENBANK record{};
    EXPECT_TRUE(store->UsedGet(record, KeyBuilder().number(batch), found, kStapel) && found);
    return record.Stapel.Bebucht;
  }

  uint8_t found = 9;
};

TEST_P(BatchPostings, AreWrittenReadAndDeletedWhole) {
  DATENBANK second{};
  ASSERT_TRUE(store->Insert(second, kStapel));
  BATCHBUCHUNG made = posting("B-1");
  ASSERT_TRUE(insertSplit(*store, made));
  EXPECT_EQ(+made.Nr, 1);
  EXPECT_EQ(+made.Anzahl, 2);
  EXPECT_TRUE(holdsPostings(1));
  EXPECT_FALSE(holdsPostings(2));
  made = posting("B-2", 2);
  store->SplitFree();
  store->MemInsertSplit(line("000000001,00"));
  ASSERT_TRUE(store->InsertBat(made));
  EXPECT_EQ(+made.Nr, 1) << "batches count for themselves";
  made = posting("B-3");
  ASSERT_TRUE(insertSplit(*store, made));
  EXPECT_EQ(+made.Nr, 2);

  store = open();
  ASSERT_TRUE(store);
  EXPECT_FALSE(store->DeleteBat()) << "none was read";
  struct Row {
    int32_t batch, number;
    const char *read;
  };
  static constexpr Row rows[] = {{1, 1, "B-1 2: 0/60 1/40; 0.0/20 0.1/40 1.0/40"},
                                 {1, 0, "B-1 2: 0/60 1/40; 0.0/20 0.1/40 1.0/40"},
                                 {1, 2, "B-3 2: 0/60 1/40; 0.0/20 0.1/40 1.0/40"},
                                 {2, 1, "B-2 1: 0/1;"},
                                 {1, 3, "none"},
                                 {3, 0, "none"}};
  for (const Row &row : rows) {
    BATCHBUCHUNG read{};
    ASSERT_TRUE(store->ReadBat(read, row.batch, row.number, found));
    EXPECT_EQ(found ? inMemory(*store, read) : "none", row.read) << row.batch << ", " << row.number;
  }
  EXPECT_FALSE(store->DeleteBat()) << "the last read found none";

  BATCHBUCHUNG read{};
  ASSERT_TRUE(store->ReadBat(read, 1, 1, found) && found);
  ASSERT_TRUE(store->DeleteBat());
  EXPECT_FALSE(store->DeleteBat());
  ASSERT_TRUE(store->ReadBat(read, 1, 0, found) && found);
  EXPECT_EQ(inMemory(*store, read), "B-3 2: 0/60 1/40; 0.0/20 0.1/40 1.0/40");
  ASSERT_TRUE(store->DeleteBat());
  ASSERT_TRUE(store->ReadBat(read, 2, 0, found) && found);
  EXPECT_EQ(inMemory(*store, read), "B-2 1: 0/1;");
  EXPECT_EQ(dump(*open(), 1, {kKobu}), "") << "cost postings were left";
}

TEST_P(BatchPostings, TellTheirBatch) {
  DATENBANK second{};
  ASSERT_TRUE(store->Insert(second, kStapel));
  auto insert = [&](int32_t batch) {
    BATCHBUCHUNG made = posting("B", batch);
    ASSERT_TRUE(insertSplit(*store, made));
  };
  auto remove = [&](int32_t batch) {
    BATCHBUCHUNG read{};
    ASSERT_TRUE(store->ReadBat(read, batch, 0, found) && found);
    ASSERT_TRUE(store->DeleteBat());
  };
  insert(1), insert(1), insert(2);
  remove(1);
  EXPECT_TRUE(holdsPostings(1)) << "one is left";
  remove(1);
  EXPECT_FALSE(holdsPostings(1)) << "the posting of the next batch is not one of its own";
  remove(2);
  EXPECT_FALSE(holdsPostings(2)) << "the last of all";
  insert(1), insert(1), insert(2);
  BATCHBUCHUNG read{};
  ASSERT_TRUE(store->ReadBat(read, 1, 0, found) && found);
  ASSERT_TRUE(store->EmptyBat(1));
  EXPECT_FALSE(store->DeleteBat()) << "the posting read is gone";
  EXPECT_FALSE(holdsPostings(1));
  EXPECT_TRUE(holdsPostings(2));
  ASSERT_TRUE(store->EmptyBat(2));
  EXPECT_EQ(dump(*store, 1, {kBatchbuchung, kSplit, kKobu}), "");
  EXPECT_TRUE(store->EmptyBat(2)) << "nothing to do";
  EXPECT_TRUE(store->EmptyBat(9)) << "no such batch, no postings";
  // A batch that was deleted in another way leaves postings that can still be deleted.
  insert(2);
  ASSERT_TRUE(store->UsedGet(second, KeyBuilder().number(2), found, kStapel) && found);
  ASSERT_TRUE(store->Delete(kStapel));
  remove(2);
  EXPECT_EQ(dump(*store, 1, {kBatchbuchung, kSplit, kKobu}), "");
}

TEST_P(BatchPostings, AreDeletedByTheBeginningOfTheirKey) {
  DATENBANK batch{}, record{};
  ASSERT_TRUE(store->Insert(batch, kStapel));
  auto lines = [&](Store &from) {
    std::string all;
    int done = from.StepFirstExt(record, found, kKobu);
    for (; done && found; done = from.StepNextExt(record, found, kKobu))
      all += std::to_string(record.Kobu.Stapel) + std::to_string(record.Kobu.Buchung) +
             std::to_string(record.Kobu.Split) + std::to_string(record.Kobu.Nr) + " ";
    return all;
  };
  auto other = open();
  ASSERT_TRUE(other->SetzeFista(2, found) && found);
  BATCHBUCHUNG made = posting("B-1");
  ASSERT_TRUE(insertSplit(*other, made));
  for (int32_t number : {1, 1, 2}) {
    made = posting("B", number);
    ASSERT_TRUE(insertSplit(*store, made));
  }
  const std::string all = "1100 1101 1110 1200 1201 1210 2100 2101 2110 ";
  ASSERT_EQ(lines(*store), all);
  struct Row {
    KeyBuilder key;
    int fields;
    bool done;
    const char *left;
  };
  const Row rows[] = {
      {KeyBuilder().number(1).number(2), 2, true, "1100 1101 1110 2100 2101 2110 "},
      {KeyBuilder().number(1).number(1).number(0), 3, true, "1110 1200 1201 1210 2100 2101 2110 "},
      {KeyBuilder().number(1).number(1).number(0).number(1), 4, true, "1100 1110 1200 1201 1210 2100 2101 2110 "},
      {KeyBuilder().number(1).number(7), 1, true, "2100 2101 2110 "}, // what stands after it does not count
      {KeyBuilder().number(3), 1, true, all.c_str()},
      {KeyBuilder().number(1), 0, false, all.c_str()},
      {KeyBuilder().number(1), 5, false, all.c_str()},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(std::to_string(&row - rows));
    ASSERT_TRUE(store->Transaktion(1, 0));
    EXPECT_EQ(store->DeleteBeginning(row.key, row.fields, kKobu) != 0, row.done);
    EXPECT_EQ(lines(*store), row.left);
    ASSERT_TRUE(store->Transaktion(4, 0));
    EXPECT_EQ(lines(*store), all);
  }
  EXPECT_FALSE(store->DeleteBeginning(KeyBuilder().number(1), 1, kKobu, GetParam().other));
  EXPECT_FALSE(store->DeleteBeginning(KeyBuilder().number(1), 1, fileNumber(kKobu, 1))) << "no such key";
  // A walk goes on after what was deleted under it.
  ASSERT_TRUE(store->GetGeExt(record, KeyBuilder().number(1).number(2), found, kKobu) && found);
  ASSERT_TRUE(store->DeleteBeginning(KeyBuilder().number(1), 1, kKobu));
  EXPECT_FALSE(store->Delete(kKobu)) << "it is no longer there";
  ASSERT_TRUE(store->GetNextExt(record, found, kKobu) && found);
  EXPECT_EQ(+record.Kobu.Stapel, 2);
  EXPECT_EQ(lines(*other), "1100 1101 1110 ") << "another client's";
  // By a second key: all records with that name.
  put(batch.Stapel.Name, "doppelt");
  for (int i = 0; i < 3; ++i) {
    batch.Stapel.Nr = 0;
    put(batch.Stapel.Name, i == 1 ? "doppelte" : "doppelt");
    ASSERT_TRUE(store->Insert(batch, kStapel));
  }
  ASSERT_TRUE(store->DeleteBeginning(KeyBuilder().text("doppelt", 40), 1, fileNumber(kStapel, 1)));
  ASSERT_TRUE(store->GetLastExt(record, found, kStapel) && found);
  EXPECT_STREQ(record.Stapel.Name, "doppelte");
  EXPECT_EQ(+record.Stapel.Nr, 4);
}

TEST_P(BatchPostings, RefusedOnesLeaveNothing) {
  std::string before = dump(*store, 1, kPostingTables);
  BATCHBUCHUNG made = posting("B-1", 7);
  EXPECT_FALSE(insertSplit(*store, made)) << "there is no batch 7";
  EXPECT_EQ(+made.Nr, 0);
  made = posting("B-1");
  store->SplitFree();
  store->MemInsertSplit(line("000000060,00"));
  store->MemInsertSplit(line("sixty"));
  EXPECT_FALSE(store->InsertBat(made));
  EXPECT_FALSE(store->DeleteBat()) << "none was written";
  EXPECT_EQ(dump(*store, 1, kPostingTables), before);
  EXPECT_EQ(store->transactionDepth(), 0);
  // Inside a transaction a refused posting leaves the others alone.
  ASSERT_TRUE(store->Transaktion(1, 0));
  made = posting("B-2");
  EXPECT_TRUE(insertSplit(*store, made));
  before = dump(*store, 1, kPostingTables);
  made = posting("B-3", 7);
  EXPECT_FALSE(insertSplit(*store, made));
  EXPECT_TRUE(store->Transaktion(2, 0));
  EXPECT_EQ(dump(*store, 1, kPostingTables), before);
}

// Fails each operation in turn, until one call needs fewer.
TEST_P(BatchPostings, FailingOperationLeavesTheTables) {
  Faults faults;
  auto faulty = open();
  ASSERT_TRUE(faulty);
  auto expectAllOrNothing = [&](const char *what, auto &&prepare, auto &&call) {
    SCOPED_TRACE(what);
    prepare();
    std::string before = dump(*store, 1, kPostingTables);
    const auto [operations, done] = sweep(faults, prepare, call, [&](bool unnoticed) {
      EXPECT_FALSE(unnoticed);
      EXPECT_EQ(faulty->transactionDepth(), 0);
      EXPECT_EQ(dump(*store, 1, kPostingTables), before);
    });
    EXPECT_TRUE(done);
    EXPECT_GT(operations, 4);
    EXPECT_NE(dump(*store, 1, kPostingTables), before);
  };
  BATCHBUCHUNG made;
  expectAllOrNothing(
      "InsertBat", [&] { made = posting("B-1"); }, [&] { return insertSplit(*faulty, made); });
  expectAllOrNothing(
      "DeleteBat", [&] { ASSERT_TRUE(faulty->ReadBat(made, 1, 1, found) && found); },
      [&] { return faulty->DeleteBat() != 0; });
  ASSERT_TRUE(insertSplit(*store, made));
  expectAllOrNothing(
      "EmptyBat", [] {}, [&] { return faulty->EmptyBat(1) != 0; });
  DATENBANK batch{};
  expectAllOrNothing(
      "multi insert", [&] { batch = {}; },
      [&] {
        if (!faulty->InitMultiInsert(kStapel)) return false;
        for (int i = 0; i < 4; ++i) {
          batch.Stapel.Nr = 0;
          faulty->MultiInsertNext(batch, kStapel);
        }
        return faulty->EndMultiInsert(kStapel) != 0;
      });
}

TEST_P(BatchPostings, FailingReadTellsSo) {
  BATCHBUCHUNG made = posting("B-1");
  ASSERT_TRUE(insertSplit(*store, made));
  Faults faults;
  auto faulty = open();
  ASSERT_TRUE(faulty);
  BATCHBUCHUNG read{};
  const auto [operations, done] = sweep(
      faults, [] {}, [&] { return faulty->ReadBat(read, 1, 1, found) != 0; },
      [&](bool unnoticed) {
        EXPECT_FALSE(unnoticed);
        EXPECT_FALSE(faulty->DeleteBat()) << "what was not read is not deleted";
      });
  EXPECT_TRUE(done && found && operations > 1);
}

class ClientState : public StoreTest {
protected:
  uint8_t found = 9;
};

TEST_P(ClientState, OpensAndSavesClients) {
  EXPECT_EQ(+store->HoleFista().Nummer, 1);
  ASSERT_TRUE(store->SetzeFista(9, found));
  EXPECT_FALSE(found);
  EXPECT_EQ(+store->HoleFista().Nummer, 1) << "the open one stays";
  FIRMENSTAMM changed = store->HoleFista();
  put(changed.Name, "Neu");
  ASSERT_TRUE(store->SaveFista(changed));
  EXPECT_STREQ(store->HoleFista().Name, "Neu");
  EXPECT_STREQ(open()->HoleFista().Name, "Neu");
  // Another client's record can be saved, and is not the open one's.
  changed.Nummer = 3;
  put(changed.Name, "Drei");
  ASSERT_TRUE(store->SaveFista(changed));
  EXPECT_STREQ(store->HoleFista().Name, "Neu");
  ASSERT_TRUE(store->SetzeFista(3, found) && found);
  EXPECT_STREQ(store->HoleFista().Name, "Drei");
  put(changed.Name, "nicht gespeichert");
  std::memset(changed.Zusatz, 'x', sizeof changed.Zusatz);
  EXPECT_FALSE(store->SaveFista(changed));
  EXPECT_STREQ(store->HoleFista().Name, "Drei");
}

TEST_P(ClientState, KeepsAnExtensionPerClient) {
  FISTA_EXT extension{};
  ASSERT_TRUE(store->GetExtFista(extension, found));
  EXPECT_FALSE(found);
  for (const char *town : {"Aachen", "Bonn"}) {
    put(extension.Ort, town);
    extension.Nummer = 77;
    ASSERT_TRUE(store->SetExtFista(extension));
    FISTA_EXT read{};
    ASSERT_TRUE(open()->GetExtFista(read, found) && found);
    EXPECT_STREQ(read.Ort, town);
    EXPECT_EQ(+read.Nummer, 1) << "the open client's, whatever the record says";
  }
  ASSERT_TRUE(store->SetzeFista(2, found) && store->GetExtFista(extension, found));
  EXPECT_FALSE(found);
}

TEST_P(ClientState, KnowsItsFiscalYears) {
  DATENBANK closed{};
  closed.Geschaeftsjahr.Jahr = 2024;
  closed.Geschaeftsjahr.Abgeschlossen = 1;
  ASSERT_TRUE(store->Insert(closed, kGeschaeftsjahr));
  struct Row {
    const char *year;
    bool exists, bookable;
  };
  static constexpr Row rows[] = {{"43", false, false}, {"44", true, false}, {"45", true, true},  {"46", true, true},
                                 {"47", false, false}, {"", false, false},  {"4", false, false}, {"ab", false, false}};
  for (const Row &row : rows) {
    SCOPED_TRACE(row.year);
    ASSERT_TRUE(store->ExistiertJahr(row.year, found));
    EXPECT_EQ(found != 0, row.exists);
    ASSERT_TRUE(store->IsBuchjahr(row.year, found));
    EXPECT_EQ(found != 0, row.bookable);
    ASSERT_TRUE(store->SetzeOpenJahr("46"));
    EXPECT_EQ(store->SetzeOpenJahr(row.year) != 0, row.exists);
    EXPECT_STREQ(store->HoleOpenJahr(), row.exists ? row.year : "46");
    EXPECT_STREQ(store->HoleBuchJahr(), "46");
  }
  char least[3];
  ASSERT_TRUE(store->HoleMinJahr(least));
  EXPECT_STREQ(least, "44");
  EXPECT_FALSE(store->SetzeBuchJahr("47"));
  ASSERT_TRUE(store->SetzeBuchJahr("45"));
  EXPECT_STREQ(store->HoleBuchJahr(), "45");
  EXPECT_STREQ(open()->HoleOpenJahr(), "45") << "a client opens in its current year";
  FIRMENSTAMM fresh{};
  fresh.Nummer = 3;
  ASSERT_TRUE(store->SaveFista(fresh) && store->SetzeFista(3, found) && found);
  EXPECT_FALSE(store->HoleMinJahr(least));
  EXPECT_STREQ(least, "44");
}

TEST_P(ClientState, NeedsAnOpenClient) {
  FISTA_EXT extension{};
  auto fresh = openWithoutClient();
  ASSERT_TRUE(fresh);
  EXPECT_EQ(+fresh->HoleFista().Nummer, 0);
  EXPECT_FALSE(fresh->SetExtFista(extension));
  EXPECT_FALSE(fresh->SetzeOpenJahr("46"));
  EXPECT_FALSE(fresh->SetzeBuchJahr("46"));
}

ZELK_ON_ALL_ENGINES(BatchPostings);
ZELK_ON_ALL_ENGINES(ClientState);

} // namespace
} // namespace test
