// Batches: what creating, changing and deleting them refuses, what becomes of them and their postings.
#include <cstring>

#include "support/books.h"
#include "support/process.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using namespace vldb98;

constexpr std::initializer_list<int> kAll = {kStapel, kBatchbuchung, kSplit, kKobu, kDmsId};
constexpr int32_t kCreate = 1, kChange = 2;

std::string windows1252(const char *utf8) {
  return *vlba98::toWindows1252(utf8);
}

class Batches : public Books {
protected:
  Batches() {
    uint8_t found;
    EXPECT_TRUE(other->SetzeFista(1, found) && found);
  }

  /// Calls without and with messages, and sees that a refusal changes nothing and leaves nothing locked.
  void expectRefused(const std::function<ZelkResult(int32_t flag)> &call, ZelkResult result,
                     const std::string &message) {
    std::string before = dump(*other, 1, kAll);
    EXPECT_EQ(call(0), result);
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_EQ(call(-1), result);
    EXPECT_EQ(recorder.takeText(), message);
    EXPECT_EQ(dump(*other, 1, kAll), before);
    EXPECT_TRUE(nothingLocked(*other, 1));
  }

  /// A batch as the list shows it: "8 Warenwirtschaft 0 transitorisch gesperrt bebucht Abstimm0"; "" when it is not
  /// there.
  static std::string listed(int32_t number, int32_t client = 1) {
    ZelkResult result = ZELK_InitHoleStapel(client, 0);
    while (result == ZELK_OK) {
      int32_t is, recurrence, transitory, locked, posted, reconciliation;
      char name[41];
      result = ZELK_HoleStapel(&is, name, &recurrence, &transitory, &locked, &posted, &reconciliation);
      if (is == number)
        return vlba98::toUtf8(name) + " " + std::to_string(recurrence) + (transitory ? " transitorisch" : "") +
               (locked ? " gesperrt" : "") + (posted ? " bebucht" : "") + (reconciliation ? " Abstimm0" : "");
    }
    return "";
  }

  STAPEL stored(int32_t number) {
    DATENBANK record{};
    uint8_t found;
    EXPECT_TRUE(other->UsedGet(record, KeyBuilder().number(number), found, kStapel) && found);
    return record.Stapel;
  }

  void insertBatch(int32_t number, const char *password, uint8_t cleared) {
    DATENBANK record{};
    record.Stapel.Nr = number;
    put(record.Stapel.Name, "Stapel " + std::to_string(number));
    put(record.Stapel.Passwort, password);
    record.Stapel.VonExtern = 1;
    record.Stapel.Gecleart = cleared;
    ASSERT_TRUE(other->Insert(record, kStapel));
  }

  /// A posting of two lines, for client 1 with costs.
  static void post(int32_t batch, int32_t client = 1) {
    ASSERT_EQ(ZELK_SplitStart(client, batch, "210126", "B", 0, 0, "", "", "", 0, "", "Beleg"), ZELK_OK);
    for (const char *centre : {"100", "200"}) {
      ASSERT_EQ(ZELK_SplitEinfuegen(client == 1 ? "4210" : "1020", 1, "1000", 1, "50,00", "", "", "", 0, ""), ZELK_OK);
      if (client == 1) {
        ASSERT_EQ(ZELK_SplitKobuEinfuegen(centre, "", 0, "50,00", "", "", "", ""), ZELK_OK);
      }
    }
    ASSERT_EQ(ZELK_SplitEnde(1, 0), ZELK_OK);
  }

  std::unique_ptr<Store> other = session(std::chrono::milliseconds(0));
};

TEST_F(Batches, AreCheckedInTheirOrder) {
  const char kAction[] = "Unzulässige Aktion!", kLong[] = "Der Name ist zu lang!",
             kEmpty[] = "Der Name darf nicht leer sein oder nur aus White-Space-Zeichen bestehen!",
             kStandard[] = "Die Pflichtstapel können nicht geändert werden!",
             kMissing[] = "Der zu ändernde Stapel existiert nicht!",
             kPassword[] = "Der Stapel ist passwortgeschützt und kann daher nicht geändert werden!",
             kRecurrence[] = "Das Widerkehrintervall des Stapels kann nur zwischen 0 und 99 Monaten betragen!";
  auto taken = [](const std::string &name) { return "Es exisitiert bereits ein Stapel mit dem Namen '" + name + "'!"; };
  const std::string longName(41, 'x'), mid = "Monatliche Daueraufträge";
  // Each row is wrong in all that is checked after what it is refused for.
  const struct {
    int32_t action, client, number;
    const char *name; ///< UTF-8
    int32_t recurrence;
    ZelkResult result;
    std::string message;
  } rows[] = {
      {3, 99, 1, "", 100, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"},
      {3, 1, 1, longName.c_str(), 100, ZELKERR_uzl_Aktion, kAction},
      {0, 1, 1, "", 100, ZELKERR_uzl_Aktion, kAction},
      {kChange, 1, 1, longName.c_str(), 100, ZELKERR_uzl_Name, kLong},
      {kCreate, 1, 1, longName.c_str(), 100, ZELKERR_uzl_Name, kLong},
      {kChange, 1, 1, "", 100, ZELKERR_uzl_Name, kEmpty},
      {kChange, 1, 1, nullptr, 100, ZELKERR_uzl_Name, kEmpty},
      {kCreate, 1, 1, " \t\r\n ", 100, ZELKERR_uzl_Name, kEmpty},
      {kChange, 1, 1, "Tagesbuchungen", 100, ZELKERR_uzl_Stapelnr, kStandard},
      {kChange, 1, 99, "Tagesbuchungen", 100, ZELKERR_uzl_Stapelnr, kMissing},
      {kChange, 1, 0, "Tagesbuchungen", 100, ZELKERR_uzl_Stapelnr, kMissing},
      {kChange, 1, -1, "Tagesbuchungen", 100, ZELKERR_uzl_Stapelnr, kMissing},
      {kChange, 1, 7, "Tagesbuchungen", 100, ZELKERR_StapelPasswort, kPassword},
      {kCreate, 1, 1, "Tagesbuchungen", 100, ZELKERR_uzl_Stapelnr, "Die Stapelnummer ist bereits vergeben!"},
      {kCreate, 1, -1, "Tagesbuchungen", 100, ZELKERR_uzl_Stapelnr, "Die Stapelnummer ist unzulässig."},
      {kCreate, 1, 0, "Tagesbuchungen", 100, ZELKERR_uzl_Name, taken("Tagesbuchungen")},
      {kCreate, 1, 0, " Tagesbuchungen\t", 100, ZELKERR_uzl_Name, taken("Tagesbuchungen")},
      {kCreate, 1, 0, "Standardstapel", 100, ZELKERR_uzl_Name, taken("Standardstapel")},
      {kChange, 1, 3, "Kostenrechnung", 100, ZELKERR_uzl_Name, taken("Kostenrechnung")},
      {kChange, 1, 3, mid.c_str(), 100, ZELKERR_uzl_Name, taken(mid)},
      {kCreate, 1, 0, "Neu", 100, ZELKERR_uzl_StapelWiederkehr, kRecurrence},
      {kCreate, 1, 0, "Neu", -1, ZELKERR_uzl_StapelWiederkehr, kRecurrence},
      {kChange, 1, 3, "Tagesbuchungen", 65537, ZELKERR_uzl_StapelWiederkehr, kRecurrence},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(std::to_string(&row - rows));
    std::string name = windows1252(row.name ? row.name : "");
    expectRefused(
        [&](int32_t flag) {
          return ZELK_Stapel(row.action, row.client, row.number, row.name ? name.c_str() : nullptr, row.recurrence, 1,
                             1, flag);
        },
        row.result, row.message);
  }
}

TEST_F(Batches, AreCreatedAndChanged) {
  const std::string full(40, 'W');
  const struct {
    int32_t action, number;
    const char *name;
    int32_t recurrence, transitory, reconciliation;
    int32_t becomes;
    std::string listed;
  } rows[] = {
      {kCreate, 0, "Shop", 0, 0, 0, 11, "Shop 0"},
      {kCreate, 50, " Löhne \n", 99, 7, -1, 50, "Löhne 99 transitorisch Abstimm0"},
      {kCreate, 0, full.c_str(), 1, 0, 1, 51, full + " 1 Abstimm0"},
      {kCreate, 12, "shop", 0, 0, 0, 12, "shop 0"}, // another name
      {kChange, 50, "Löhne", 0, 0, 0, 50, "Löhne 0"},
      {kChange, 50, "Gehälter", 12, 1, 0, 50, "Gehälter 12 transitorisch"},
      {kCreate, 0, "Löhne", 0, 0, 0, 52, "Löhne 0"},
      {kChange, 5, "Vorjahr", 0, 0, 0, 5, "Vorjahr 0 gesperrt"},
      {kChange, 9, "Quartal", 0, 0, 0, 9, "Quartal 0"}, // cleared
      {kChange, 10, "Kosten", 0, 0, 0, 10, "Kosten 0"}, // of the cost-accounting product
      // After the greatest number there is none: the lowest that is free.
      {kCreate, INT32_MAX, "Letzter", 0, 0, 0, INT32_MAX, "Letzter 0"},
      {kCreate, 0, "Lücke", 0, 0, 0, 13, "Lücke 0"},
      {kCreate, 0, "Nächste", 0, 0, 0, 14, "Nächste 0"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.name);
    EXPECT_EQ(ZELK_Stapel(row.action, 1, row.number, windows1252(row.name).c_str(), row.recurrence, row.transitory,
                          row.reconciliation, 1),
              ZELK_OK);
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_EQ(listed(row.becomes), row.listed);
    EXPECT_TRUE(nothingLocked(*other, 1));
  }
  EXPECT_EQ(listed(11, 2), "") << "another client's";
  EXPECT_TRUE(stored(11).VonExtern);
  EXPECT_FALSE(stored(5).VonExtern);
  EXPECT_TRUE(stored(9).Gecleart && stored(9).VonExtern);
  EXPECT_TRUE(stored(10).Kore);
  post(50);
  EXPECT_EQ(ZELK_Stapel(kChange, 1, 50, "Neu", 0, 0, 0, 0), ZELK_OK);
  EXPECT_EQ(listed(50), "Neu 0 bebucht") << "a change leaves its postings";
  EXPECT_EQ(postingsOf(1, 50).size(), 1u);
}

TEST_F(Batches, AreProtectedFromDeletion) {
  insertBatch(11, "geheim", 0);
  insertBatch(12, "geheim", 1);
  const char kForeign[] = "Der Stapel kann extern nicht gelöscht werden, da er nicht von extern angelegt wurde!",
             kCleared[] = "Der Stapel wurde gecleart und ist daher nicht löschbar!";
  const struct {
    int32_t client, number;
    ZelkResult result;
    const char *message;
  } rows[] = {
      {99, 1, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"},
      {1, 99, ZELKERR_uzl_Stapelnr, "Der angegebene Stapel existiert nicht!"},
      {1, 0, ZELKERR_uzl_Stapelnr, "Der angegebene Stapel existiert nicht!"},
      {1, 1, ZELKERR_uzl_Stapelnr, kForeign},
      {1, 3, ZELKERR_uzl_Stapelnr, kForeign},
      {1, 7, ZELKERR_uzl_Stapelnr, kForeign},
      {1, 9, ZELKERR_uzl_Stapelnr, kCleared},
      {1, 12, ZELKERR_uzl_Stapelnr, kCleared},
      {1, 11, ZELKERR_uzl_Stapelnr, "Der Stapel ist passwortgeschützt und daher nicht löschbar!"},
  };
  post(3), post(9), post(11), post(12);
  for (const auto &row : rows)
    for (int32_t withBatch : {0, 1}) {
      SCOPED_TRACE(std::to_string(row.client) + " " + std::to_string(row.number));
      expectRefused([&](int32_t flag) { return ZELK_LoescheStapel(row.client, row.number, withBatch, flag); },
                    row.result, row.message);
    }
}

TEST_F(Batches, AreDeletedWithAllThatIsTheirs) {
  post(3), post(2, 2);
  ASSERT_EQ(ZELK_Stapel(kCreate, 2, 8, "Wie beim ersten", 0, 0, 0, 0), ZELK_OK);
  post(8, 2);
  std::string others = dump(*other, 2, kAll), before = dump(*other, 1, kAll);
  for (int32_t withBatch : {0, 0, 1}) {
    post(8), post(8), post(8);
    EXPECT_EQ(listed(8), "Warenwirtschaft 0 bebucht");
    ASSERT_EQ(ZELK_LoescheStapel(1, 8, withBatch, 1), ZELK_OK);
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_EQ(listed(8), withBatch ? "" : "Warenwirtschaft 0");
    if (!withBatch) {
      EXPECT_EQ(dump(*other, 1, kAll), before) << "nothing is left, the other batch is untouched";
      EXPECT_EQ(ZELK_LoescheStapel(1, 8, 0, 1), ZELK_OK) << "nothing to do";
    }
    EXPECT_EQ(dump(*other, 2, kAll), others);
    EXPECT_TRUE(nothingLocked(*other, 1));
  }
  EXPECT_EQ(listed(3), "Tagesbuchungen 0 bebucht");
  EXPECT_EQ(postingsOf(1, 3).size(), 1u);
  ZELK_BUCHUNG posting = validPosting();
  posting.Stapelnummer = 8;
  EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELKERR_uzl_Stapelnr);
  // The number can be given again, and the new batch is empty.
  ASSERT_EQ(ZELK_Stapel(kCreate, 1, 8, "Neu", 0, 0, 0, 0), ZELK_OK);
  EXPECT_EQ(postingsOf(1, 8).size(), 0u);
}

TEST_F(Batches, OfAnySizeAreDeletedInBoundedMemory) {
  const bool measured = peakMemory() > 0;
  const int postings = measured ? 50'000 : 3'000;
  post(8);
  BATCHBUCHUNG posting{};
  uint8_t found;
  ASSERT_TRUE(other->ReadBat(posting, 8, 0, found) && found);
  ASSERT_TRUE(other->Transaktion(1, 0));
  for (int i = 1; i < postings; ++i)
    ASSERT_TRUE(other->InsertBat(posting));
  ASSERT_TRUE(other->Transaktion(2, 0));
  const int64_t before = peakMemory();
  ASSERT_EQ(ZELK_LoescheStapel(1, 8, 1, 0), ZELK_OK);
  EXPECT_LT(peakMemory() - before, 6 << 20) << "the postings alone are more than 20 MiB";
  EXPECT_EQ(dump(*other, 1, {kBatchbuchung, kSplit, kKobu}), "");
}

TEST_F(Batches, WaitForTheirTables) {
  ASSERT_TRUE(MFWritePrivateProfileString("ZELK", "Sperrwartezeit", "1", nullptr));
  post(8);
  auto third = session(std::chrono::milliseconds(0));
  std::string before = dump(*third, 1, kAll);
  for (int table : {kBatchbuchung, kSplit, kStapel, kKobu}) {
    ASSERT_TRUE(other->Lock(FileNumber(table), nullptr, 0));
    EXPECT_EQ(ZELK_LoescheStapel(1, 8, 1, 1), ZELKERR_Datenbank) << table;
    for (int32_t refused : {99, 1, 9}) // waits for nobody
      EXPECT_EQ(ZELK_LoescheStapel(1, refused, 1, 0), ZELKERR_uzl_Stapelnr) << table;
    if (table == kStapel) {
      EXPECT_EQ(ZELK_Stapel(kCreate, 1, 0, "Neu", 0, 0, 0, 1), ZELKERR_Datenbank);
    }
    EXPECT_EQ(dump(*third, 1, kAll), before);
    ASSERT_TRUE(other->Unlock(FileNumber(table), 1));
    EXPECT_TRUE(nothingLocked(*third, 1)) << table;
  }
  EXPECT_EQ(recorder.takeText(), "");
  EXPECT_EQ(ZELK_LoescheStapel(1, 8, 1, 1), ZELK_OK);
}

TEST_F(Batches, RefusalsAreReadWithoutTheLocks) {
  class Reader : public Recorder {
  public:
    explicit Reader(std::function<void()> work) : work_(std::move(work)) {}
    platform::Button message(const std::string &caption, const std::string &text, platform::BoxIcon icon,
                             platform::BoxButtons buttons) override {
      work_();
      return Recorder::message(caption, text, icon, buttons);
    }

  private:
    std::function<void()> work_;
  } reader([&] { EXPECT_TRUE(nothingLocked(*other, 1)); });
  EXPECT_EQ(ZELK_LoescheStapel(1, 3, 0, 1), ZELKERR_uzl_Stapelnr);
  EXPECT_EQ(ZELK_Stapel(kChange, 1, 3, "Kostenrechnung", 0, 0, 0, 1), ZELKERR_uzl_Name);
  EXPECT_EQ(ZELK_Zahlungsziel(1, 1, 0, "SOFORT", 0, "", 0, "", 0, 0, 0, "", 0, 1), ZELKERR_ZZ_existiert);
  EXPECT_EQ(reader.shown.size(), 3u);
}

using Event = DialogEvent;

TEST_F(Batches, ArePickedInADialog) {
  const struct {
    std::vector<Event> script;
    ZelkResult result;
    int order;
    size_t lines;
    const char *first;
  } rows[] = {
      {{{Event::Order, 0}, {Event::DoubleClick, 2}}, 3, 0, 10, "1      \tStandardstapel"},
      {{{Event::Type, 0, "10"}, {Event::Ok}}, 10, 0, 10, "1      \tStandardstapel"},
      {{{Event::Order, 1}, {Event::Type, 0, "TAGES"}, {Event::Ok}}, 3, 1, 10, "Abstimmung Bank\t6"},
      {{{Event::Select, 4}}, 0, 1, 10, "Abstimmung Bank\t6"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(std::to_string(&row - rows));
    recorder.dialogs.clear();
    recorder.script = row.script;
    EXPECT_EQ(ZELK_HoleStapelNr(&recorder, 1, 1), row.result);
    const ShownDialog &dialog = recorder.dialogs.at(0);
    EXPECT_EQ(dialog.title, "Stapelauswahl");
    EXPECT_EQ(dialog.parent, &recorder);
    EXPECT_EQ(dialog.order, row.order);
    EXPECT_EQ(dialog.lines.size(), row.lines);
    EXPECT_EQ(dialog.lines.at(0), row.first);
  }
  recorder.dialogs.clear();
  EXPECT_EQ(ZELK_HoleStapelNr(nullptr, 99, 0), ZELKERR_uzl_Mandnr);
  EXPECT_EQ(recorder.takeText(), "");
  EXPECT_EQ(ZELK_HoleStapelNr(nullptr, 99, 1), ZELKERR_uzl_Mandnr);
  EXPECT_EQ(recorder.takeText(), "Der Mandant existiert nicht!");
  ASSERT_TRUE(other->DeleteTable(kStapel));
  EXPECT_EQ(ZELK_HoleStapelNr(nullptr, 1, 1), ZELKERR_keine_Stapel);
  EXPECT_EQ(recorder.takeText(), "");
  EXPECT_EQ(recorder.dialogs.size(), 0u);
}

using NoBooks = Environment;

TEST_F(NoBooks, HaveNoBatchToPick) {
  EXPECT_EQ(ZELK_HoleStapelNr(nullptr, 1, 1), ZELKERR_Ini);
  EXPECT_EQ(ZELK_Stapel(kCreate, 1, 0, "Neu", 0, 0, 0, 1), ZELKERR_Ini);
  EXPECT_EQ(recorder.dialogs.size(), 0u);
}

} // namespace
} // namespace test
