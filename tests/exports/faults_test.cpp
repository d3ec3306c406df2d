// Store operations that fail, one after the other: the code that is documented, nothing changed, nothing locked.
#include <cstring>

#include "support/books.h"

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
  bool inserts;
};

void nothing(Store &) {}

/// Brings batches and documents of client 1 back to what was loaded, so that each insertion has the same work.
void emptyBatches(Store &other) {
  uint8_t found = 0;
  ASSERT_TRUE(other.SetzeFista(1, found) && found);
  for (int table : {kBatchbuchung, kSplit, kDmsId})
    ASSERT_TRUE(other.DeleteTable(table));
  for (int32_t batch : {3, 8}) {
    DATENBANK record{};
    ASSERT_TRUE(other.UsedGet(record, KeyBuilder().number(batch), found, kStapel, ZELK_ENG_DEFAULT) && found);
    record.Stapel.Bebucht = 0;
    ASSERT_TRUE(other.Update(record, kStapel, ZELK_ENG_DEFAULT));
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

ZELK_SPLITBUCHUNG largePosting() {
  ZELK_SPLITBUCHUNG posting = validSplit(10);
  posting.Eroeffnungsbuchung = 1;
  posting.Zahlungsziel = 3;
  for (ZELK_TEILBUCHUNG &line : posting.Teilbuchung)
    line.Sollkonto[0] = 0;
  put(posting.DMSID, "Dokument 1");
  return posting;
}

const Scenario kScenarios[] = {
    {"BuchungEinfuegen", emptyBatches,
     [] {
       ZELK_BUCHUNG posting = validPosting();
       return ZELK_BuchungEinfuegen(&posting, 1);
     },
     true},
    {"SplitBuchungEinfuegen", emptyBatches,
     [] {
       ZELK_SPLITBUCHUNG posting = largePosting();
       return ZELK_SplitBuchungEinfuegen(&posting, 1);
     },
     true},
    {"InitHoleMandant", nothing, [] { return ZELK_InitHoleMandant(); }, false},
    {"HoleMandant", [](Store &) { ZELK_InitHoleMandant(); }, [] { return ZELK_HoleMandant(nullptr, nullptr, nullptr); },
     false},
    {"HoleMandantenInfo", nothing,
     [] {
       ZELK_MANDANTENINFO info{};
       return ZELK_HoleMandantenInfo(1, &info, 0);
     },
     false},
    {"HoleMandantenVersion", nothing, [] { return ZELK_HoleMandantenVersion(1); }, false},
    {"HoleStartJahr", nothing, [] { return ZELK_HoleStartJahr(1); }, false},
    {"ExistiertKonto", nothing, [] { return ZELK_ExistiertKonto(1, "1000", 1, 0, nullptr); }, false},
    {"InitHoleKonto", nothing, [] { return ZELK_InitHoleKonto(1, 1, 0, nullptr, 1); }, false},
    {"InitHoleKonto from a key on", nothing, [] { return ZELK_InitHoleKonto(1, 4, 2, "B", 1); }, false},
    {"HoleSako", [](Store &) { ZELK_InitHoleKonto(1, 1, 0, nullptr, 0); },
     [] {
       ZELK_SAKO account;
       return ZELK_HoleSako(&account);
     },
     false},
    {"InitHoleStapel", nothing, [] { return ZELK_InitHoleStapel(1, 1); }, false},
    {"HoleStapel", [](Store &) { ZELK_InitHoleStapel(1, 0); },
     [] { return ZELK_HoleStapel(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); }, false},
    {"InitHoleBatch", fillBatch, [] { return ZELK_InitHoleBatch(1, 8, 1); }, false},
    {"HoleBatch", [](Store &other) { fillBatch(other), ZELK_InitHoleBatch(1, 8, 0); },
     [] {
       ZELK_SPLITBUCHUNG posting;
       return ZELK_HoleBatch(&posting);
     },
     false}};

TEST_F(Books, FaultsOfTheStoreLeaveNoTrace) {
  auto other = session(std::chrono::milliseconds(0));
  Faults faults;
  for (const Scenario &scenario : kScenarios) {
    scenario.prepare(*other);
    faults.failAt(0);
    ZelkResult expected = scenario.call();
    int operations = faults.operations(), skipped = 0;
    EXPECT_GT(expected, 0) << scenario.name;
    ASSERT_GT(operations, 0) << scenario.name;
    for (int n = 1; n <= operations; ++n) {
      SCOPED_TRACE(std::string(scenario.name) + ", operation " + std::to_string(n));
      scenario.prepare(*other);
      std::string before = dump(*other, 1, kUnchanged);
      faults.failAt(n);
      ZelkResult result = scenario.call();
      ASSERT_GE(faults.operations(), n);
      faults.failAt(0);
      if (result == ZELK_OK)
        ++skipped;
      else
        EXPECT_EQ(result, ZELKERR_Datenbank);
      EXPECT_EQ(recorder.takeText(), "");
      EXPECT_EQ(dump(*other, 1, kUnchanged), before);
      EXPECT_TRUE(nothingLocked(*other, 1));
      // The thread goes on as if nothing had happened.
      scenario.prepare(*other);
      EXPECT_EQ(scenario.call(), expected);
      if (scenario.inserts) {
        EXPECT_EQ(postingsOf(1, 3).size(), 1u);
      }
    }
    EXPECT_EQ(skipped, scenario.inserts ? 7 : 0)
        << scenario.name << ": a table that cannot be locked skips the posting";
  }
}

TEST_F(Books, FaultKeepsTheRegisteredDocument) {
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

TEST_F(Books, ClientCursorStaysWhenTheStoreFails) {
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
