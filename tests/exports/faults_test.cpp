// Store operations that fail, one after the other: the code that is documented, nothing changed, nothing locked.
#include <cstring>
#include <map>
#include <optional>

#include "support/drafts.h"

namespace test {
namespace {

using namespace vldb98;

constexpr std::initializer_list<int> kUnchanged = {kFirmenstamm, kStapel,    kBatchbuchung, kSplit,
                                                   kKobu,        kSachkonto, kZahlziel};

/// A call on prepared state. It returns the result of the function under test.
struct Scenario {
  const char *name;
  std::function<void(Store &)> prepare;
  std::function<ZelkResult()> call;
  int locks = 0; ///< of an insertion: a table that cannot be locked skips the posting
};

void nothing(Store &) {}

/// Brings batches and documents of client 1 back to what was loaded, so that each insertion has the same work.
void emptyBatches(Store &other) {
  uint8_t found = 0;
  ASSERT_TRUE(other.SetzeFista(1, found) && found);
  for (int table : {kBatchbuchung, kSplit, kKobu, kDmsId})
    ASSERT_TRUE(other.DeleteTable(table));
  for (int32_t batch : {3, 8}) {
    DATENBANK record{};
    ASSERT_TRUE(other.UsedGet(record, KeyBuilder().number(batch), found, kStapel) && found);
    record.Stapel.Bebucht = 0;
    ASSERT_TRUE(other.Update(record, kStapel));
  }
}

void fillBatch(Store &other) {
  emptyBatches(other);
  for (int i = 0; i < 2; ++i) {
    ZELK_SPLITBUCHUNG posting = validSplit(3);
    posting.Stapelnummer = 8;
    put(posting.DMSID, "Beleg");
    ASSERT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), ZELK_OK);
  }
}

/// Brings a record of client 1 back as it was first seen; one that was not there goes.
void restore(Store &other, int table, int32_t number) {
  static std::map<std::pair<int, int32_t>, std::optional<DATENBANK>> first;
  DATENBANK record{};
  uint8_t found = 0;
  auto read = [&] { return other.UsedGet(record, KeyBuilder().number(number), found, FileNumber(table)); };
  ASSERT_TRUE(other.SetzeFista(1, found) && found && read());
  auto [kept, added] = first.try_emplace({table, number});
  if (added && found) kept->second = record;
  if (found) {
    ASSERT_TRUE(other.Delete(FileNumber(table)));
  }
  if (!kept->second) return;
  record = *kept->second;
  ASSERT_TRUE(other.Insert(record, FileNumber(table)));
}

void withoutNewOnes(Store &other) {
  restore(other, kStapel, 8);
  restore(other, kStapel, 11);
  restore(other, kZahlziel, 2);
  restore(other, kZahlziel, 6);
}

/// Two postings with lines and cost postings in batch 8, and one in batch 3.
void fillWithCosts(Store &other) {
  withoutNewOnes(other);
  emptyBatches(other);
  ASSERT_TRUE(other.DeleteTable(kKobu));
  SPLIT line{};
  put(line.Sollkonto, "1200   ");
  put(line.Habenkonto, "1000   ");
  put(line.Brutto, "000000100,00");
  KOBU cost{};
  for (auto field : {&KOBU::Kostenstelle1, &KOBU::Kostenstelle2, &KOBU::Kostenstelle3, &KOBU::Kostenstelle4,
                     &KOBU::Kostenstelle5, &KOBU::Kostenstelle6})
    put(cost.*field, "       ");
  other.SplitFree();
  other.MemInsertSplit(line);
  other.MemInsertKobu(cost);
  for (int32_t batch : {8, 8, 3}) {
    BATCHBUCHUNG posting{};
    posting.Stapel = batch;
    put(posting.Belegdatum, "460121");
    ASSERT_TRUE(other.InsertBat(posting));
  }
}

ZELK_SPLITBUCHUNG largePosting() {
  ZELK_SPLITBUCHUNG posting = validSplit(10);
  posting.Eroeffnungsbuchung = 1;
  for (ZELK_TEILBUCHUNG &line : posting.Teilbuchung)
    line.Sollkonto[0] = 0;
  put(posting.DMSID, "Dokument 1");
  return posting;
}

void play(std::vector<DialogEvent> script) {
  static_cast<Recorder &>(platform::ui()).script = std::move(script);
}

/// A posting that needs everything: tax, a rate, a due date, a document, given and distributed costs.
Draft fullPosting(const char *currency) {
  Draft draft{1,
              3,
              {{"4210", "70010", "100", "", "", {}, 1},
               {"4600", "70010", "119", "19"},
               {"4920", "70010", "119", "19", "", {{{"200", "5001"}, "40"}, {{"300"}, "60"}}}},
              currency};
  draft.term = 3;
  draft.document = "Dokument 2";
  return draft;
}

void forgetRate(Store &other) {
  emptyBatches(other);
  uint8_t found = 0;
  DATENBANK record{};
  const SCHLUESSEL key = KeyBuilder().text("GBP", 3).text("460121", 6);
  ASSERT_TRUE(other.UsedGet(record, key, found, kKurse));
  ASSERT_TRUE(!found || other.Delete(kKurse));
}

const Scenario kScenarios[] = {
    {"BuchungEinfuegen", emptyBatches,
     [] {
       ZELK_BUCHUNG posting = validPosting();
       return ZELK_BuchungEinfuegen(&posting, 1);
     },
     7},
    {"SplitBuchungEinfuegen", emptyBatches,
     [] {
       ZELK_SPLITBUCHUNG posting = largePosting();
       return ZELK_SplitBuchungEinfuegen(&posting, 1);
     },
     7},
    {"in pieces", emptyBatches, [] { return insertInPieces(fullPosting("CHF")); }, 7},
    {"in pieces, asking for the rate", forgetRate, [] { return insertInPieces(fullPosting("GBP")); }, 14},
    {"InitHoleMandant", nothing, [] { return ZELK_InitHoleMandant(); }},
    {"HoleMandant", [](Store &) { ZELK_InitHoleMandant(); },
     [] { return ZELK_HoleMandant(nullptr, nullptr, nullptr); }},
    {"HoleMandantenInfo", nothing,
     [] {
       ZELK_MANDANTENINFO info{};
       return ZELK_HoleMandantenInfo(1, &info, 0);
     }},
    {"HoleMandantenVersion", nothing, [] { return ZELK_HoleMandantenVersion(1); }},
    {"HoleStartJahr", nothing, [] { return ZELK_HoleStartJahr(1); }},
    {"ExistiertKonto", nothing, [] { return ZELK_ExistiertKonto(1, "1000", 1, 0, nullptr); }},
    {"ExistiertKuerzel", nothing, [] { return ZELK_ExistiertKuerzel(1, "KASSE", 1); }},
    {"HoleFreieKontonr", nothing,
     [] {
       char number[8];
       return ZELK_HoleFreieKontonr(1, ZELK_DEBITOR, nullptr, nullptr, number);
     }},
    {"HoleFreieKontonr in a gap", nothing,
     [] {
       char number[8];
       return ZELK_HoleFreieKontonr(1, ZELK_DEBITOR, "10009", "10020", number);
     }},
    {"HoleKonto",
     [](Store &) {
       play({{DialogEvent::Order, 0}, {DialogEvent::Order, 1}, {DialogEvent::DoubleClick, 0}});
     },
     [] {
       char name[41];
       return ZELK_HoleKonto(nullptr, 1, ZELK_KOSTENSTELLE, nullptr, nullptr, nullptr, name, nullptr, 1, nullptr);
     }},
    {"HoleMandantenNr",
     [](Store &) {
       play({{DialogEvent::Order, 0}, {DialogEvent::DoubleClick, 0}});
     },
     [] { return ZELK_HoleMandantenNr(nullptr); }},
    {"InitHoleKonto", nothing, [] { return ZELK_InitHoleKonto(1, 1, 0, nullptr, 1); }},
    {"InitHoleKonto from a key on", nothing, [] { return ZELK_InitHoleKonto(1, 4, 2, "B", 1); }},
    {"HoleSako", [](Store &) { ZELK_InitHoleKonto(1, 1, 0, nullptr, 0); },
     [] {
       ZELK_SAKO account;
       return ZELK_HoleSako(&account);
     }},
    {"Stapel creates", withoutNewOnes, [] { return ZELK_Stapel(1, 1, 0, "Neu", 0, 0, 0, 1); }},
    {"Stapel changes", withoutNewOnes, [] { return ZELK_Stapel(2, 1, 8, "Geändert", 12, 0, 0, 1); }},
    {"LoescheStapel", fillWithCosts, [] { return ZELK_LoescheStapel(1, 8, 0, 1); }},
    {"LoescheStapel with the batch", fillWithCosts, [] { return ZELK_LoescheStapel(1, 8, 1, 1); }},
    {"HoleStapelNr",
     [](Store &) {
       play({{DialogEvent::Order, 1}, {DialogEvent::Order, 0}, {DialogEvent::DoubleClick, 0}});
     },
     [] { return ZELK_HoleStapelNr(nullptr, 1, 1); }},
    {"Zahlungsziel creates", withoutNewOnes,
     [] { return ZELK_Zahlungsziel(1, 1, 0, "NEU", 10, "3", 20, "2", 30, 0, 0, "", 0, 1); }},
    {"Zahlungsziel changes", withoutNewOnes,
     [] { return ZELK_Zahlungsziel(1, 2, 2, "NEU", 10, "3", 20, "2", 30, 0, 0, "", 0, 1); }},
    {"HoleZahlungsziel", nothing,
     [] {
       ZELK_ZAHLUNGSZIEL term;
       return ZELK_HoleZahlungsziel(1, 0, &term, 1);
     }},
    {"HoleZZnr", nothing, [] { return ZELK_HoleZZnr(1, "SOFORT"); }},
    {"InitHoleStapel", nothing, [] { return ZELK_InitHoleStapel(1, 1); }},
    {"HoleStapel", [](Store &) { ZELK_InitHoleStapel(1, 0); },
     [] { return ZELK_HoleStapel(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); }},
    {"InitHoleBatch", fillBatch, [] { return ZELK_InitHoleBatch(1, 8, 1); }},
    {"HoleBatch", [](Store &other) { fillBatch(other), ZELK_InitHoleBatch(1, 8, 0); },
     [] {
       ZELK_SPLITBUCHUNG posting;
       return ZELK_HoleBatch(&posting);
     }}};

using FaultyBooks = PostingBooks;

TEST_F(FaultyBooks, FaultsOfTheStoreLeaveNoTrace) {
  Store *other = other_.get(); // opened before the faults begin
  Faults faults;
  for (const Scenario &scenario : kScenarios) {
    SCOPED_TRACE(scenario.name);
    std::string before;
    auto prepare = [&] {
      scenario.prepare(*other);
      recorder.inputs = {"1,15"};
      recorder.takeText();
      before = dump(*other, 1, kUnchanged);
    };
    prepare();
    const ZelkResult expected = scenario.call();
    int skipped = 0;
    const auto [operations, last] = sweep(faults, prepare, scenario.call, [&](ZelkResult result) {
      if (result == ZELK_OK)
        ++skipped;
      else
        EXPECT_EQ(result, ZELKERR_Datenbank);
      EXPECT_TRUE(recorder.takeText().empty() || scenario.locks == 14);
      EXPECT_EQ(dump(*other, 1, kUnchanged), before);
      EXPECT_TRUE(nothingLocked(*other, 1));
      // The thread goes on as if nothing had happened.
      prepare();
      EXPECT_EQ(scenario.call(), expected);
      EXPECT_TRUE(!scenario.locks || postingsOf(1, 3).size() == 1);
    });
    EXPECT_EQ(last, expected);
    EXPECT_TRUE(expected > 0 && operations > 0);
    EXPECT_EQ(skipped, scenario.locks);
  }
}

TEST_F(FaultyBooks, FaultKeepsTheRegisteredDocument) {
  auto other = session(std::chrono::milliseconds(0));
  Faults faults;
  ZELK_SPLITBUCHUNG posting = largePosting();
  faults.failAt(0);
  ASSERT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), ZELK_OK);
  put(posting.DMSID, "Dokument 2");
  faults.failAt(0);
  ASSERT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), ZELK_OK);
  int last = faults.operations();
  put(posting.DMSID, "Dokument 3");
  faults.failAt(last);
  EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), ZELKERR_Datenbank) << "the commit";
  faults.failAt(0);
  std::string documents = dump(*other, 1, {kDmsId});
  EXPECT_NE(documents.find("Dokument 3"), std::string::npos);
  EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&posting, 0), ZELK_OK);
  EXPECT_EQ(dump(*other, 1, {kDmsId}), documents);
  EXPECT_EQ(postingsOf(1, 3).size(), 3u);
}

TEST_F(FaultyBooks, ClientCursorStaysWhenTheStoreFails) {
  Faults faults;
  faults.failAt(0);
  ASSERT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
  uint32_t number = 0;
  for (int n : {1, 2}) {
    faults.failAt(n);
    EXPECT_EQ(ZELK_HoleMandant(&number, nullptr, nullptr), ZELKERR_Datenbank);
    EXPECT_EQ(number, 0u);
  }
  faults.failAt(0);
  EXPECT_EQ(ZELK_HoleMandant(&number, nullptr, nullptr), ZELK_OK);
  EXPECT_EQ(number, 1u);
}

} // namespace
} // namespace test
