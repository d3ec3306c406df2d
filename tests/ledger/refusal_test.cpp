// What stands in the way of a batch, and that nothing has changed then.
#include "ledger/ledger_books.h"

#include "support/items.h"
#include "vlba98/money.h"

namespace test {
namespace {

using namespace vldb98;

constexpr int16_t kOutputTaxKey = 3, kAcquisitionKey = 8;

class LedgerRefusals : public LedgerBooks {
protected:
  // A bit of everything, in two fiscal years.
  void SetUp() override {
    auto insertDraft = [&](Draft draft) { ASSERT_EQ(insertInPieces(draft), ZELK_OK) << recorder.takeText(); };
    Draft draft;
    draft.lines = {{.debit = "10010", .credit = "8400", .gross = "119,00", .rate = "19,00"}};
    draft.date = "150625";
    insertDraft(draft);
    draft.openItem = draft.number;
    draft.date = "210126";
    draft.number = "B-2";
    draft.lines = {{.debit = "1200", .credit = "10010", .gross = "100,00"}};
    insertDraft(draft);
    draft.number = "B-3";
    draft.openItem = {};
    draft.lines = {{.debit = "3425", .credit = "70180", .gross = "50,00", .rate = "19,00"}};
    insertDraft(draft);
    draft.number = "B-4";
    draft.lines = {{.debit = "4910", .credit = "1000", .gross = "6,00"},
                   {.debit = "4910", .credit = "1000", .gross = "4,00"}};
    draft.lines.front().costs = {{.centres = {"400"}, .amount = "6,00"}};
    insertDraft(draft);
    draft.number = "B-5"; // nothing stands in its way
    draft.lines = {{.debit = "1210", .credit = "1000", .gross = "5,00"}};
    insertDraft(draft);
  }

  void changeIn(int year, int table, const SCHLUESSEL &key, const std::function<void(DATENBANK &)> &edit) {
    openYear(1, year);
    DATENBANK record{};
    uint8_t found = 0;
    ASSERT_TRUE(store_->UsedGet(record, key, found, FileNumber(table)) && found);
    edit(record);
    ASSERT_TRUE(store_->Update(record, FileNumber(table)));
  }

  static std::string inWords(const ledger::BatchOutcome &outcome) {
    std::string all;
    for (const ledger::RefusedPosting &one : outcome.refused)
      all += std::to_string(one.posting) + ' ' + one.document + ": " + one.reason + '\n';
    return outcome.state == ledger::BatchOutcome::Refused ? all : "state " + std::to_string(outcome.state);
  }
};

TEST_F(LedgerRefusals, ChangeNothing) {
  auto account = [](const char *number) { return SCHLUESSEL(KeyBuilder().account(number)); };
  auto taxKey = [](int16_t key) { return SCHLUESSEL(KeyBuilder().number(key).text("410101", 6)); };
  using Edit = std::function<void(DATENBANK &)>;
  const struct {
    int year, table;
    SCHLUESSEL key;
    Edit edit;
    std::string refusal;
  } cases[] = {
      {2026, kStapel, KeyBuilder().number(3), [](DATENBANK &r) { r.Stapel.Sperre = 1; },
       "0 : Der Stapel ist gesperrt.\n"},
      {2026, kStapel, KeyBuilder().number(3), [](DATENBANK &r) { r.Stapel.Kore = 1; },
       "0 : Der Stapel gehört zur Kostenrechnung.\n"},
      {2026, kStapel, KeyBuilder().number(3), [](DATENBANK &r) { put(r.Stapel.Passwort, "x"); },
       "0 : Der Stapel ist durch ein Passwort geschützt.\n"},
      {2026, kStapel, KeyBuilder().number(3), [](DATENBANK &r) { r.Stapel.Wiederkehr = 1; },
       "0 : Ein wiederkehrender Stapel ist eine Vorlage und wird nicht verbucht.\n"},
      {2026, kGeschaeftsjahr, KeyBuilder().number(int16_t(2025)),
       [](DATENBANK &r) { r.Geschaeftsjahr.Abgeschlossen = 1; }, "1 B-1: Das Geschäftsjahr 2025 ist abgeschlossen.\n"},
      {2026, kGeschaeftsjahr, KeyBuilder().number(int16_t(2025)),
       [](DATENBANK &r) { put(r.Geschaeftsjahr.Ende, "450531"); },
       "1 B-1: Zum Belegdatum 15.06.2025 gibt es kein Geschäftsjahr.\n"},
      {2026, kSachkonto, account("1200"), [](DATENBANK &r) { r.Sachkonto.Gesperrt = 1; },
       "2 B-2: Sollkonto 1200 ist im Geschäftsjahr 2026 gesperrt.\n"},
      {2026, kDebitor, account("10010"), [](DATENBANK &r) { put(r.Personenkonto.Nr, "19999  "); },
       "2 B-2: Habenkonto 10010 gibt es im Geschäftsjahr 2026 nicht.\n"},
      {2025, kDebitor, account("10010"), [](DATENBANK &r) { put(r.Personenkonto.Sammelkonto, "       "); },
       "1 B-1: Das Personenkonto 10010 hat kein Sammelkonto.\n"},
      {2026, kKreditor, account("70180"), [](DATENBANK &r) { put(r.Personenkonto.Sammelkonto, "1699   "); },
       "3 B-3: Sammelkonto 1699 gibt es im Geschäftsjahr 2026 nicht.\n"},
      {2026, kSteusa, taxKey(kOutputTaxKey), [](DATENBANK &r) { put(r.Steusa.Steuerkonto, "       "); },
       "1 B-1: Das Steuerkonto des Steuerschlüssels 3 fehlt.\n"},
      {2026, kSteusa, taxKey(kAcquisitionKey), [](DATENBANK &r) { put(r.Steusa.Gegenkonto, "1599   "); },
       "3 B-3: Gegenkonto des Steuerschlüssels 8 1599 gibt es im Geschäftsjahr 2026 nicht.\n"},
      {2026, kSplit, KeyBuilder().number(3).number(1).number(0), [](DATENBANK &r) { put(r.Split.Steuersatz, "18,00"); },
       "1 B-1: Der Steuerschlüssel 3 hat am 15.06.2025 nicht den Steuersatz der Buchung.\n"},
      {2026, kKost, KeyBuilder().account("400").number(int16_t(0)).account(""),
       [](DATENBANK &r) { put(r.Kost.Nr, "499    "); },
       "4 B-4: Kostenstelle 400 gibt es im Geschäftsjahr 2026 nicht.\n"},
      {2026, kSachkonto, account("4910"), [](DATENBANK &r) { r.Sachkonto.Kostenart = 0; },
       "4 B-4: Die Kostenbuchung hat keine eindeutige Kostenart.\n"},
      {2026, kSachkonto, account("1000"),
       [](DATENBANK &r) { vlba98::formatMoney(vlba98::maxMoney - 999, r.Sachkonto.Werte.Monat[0].Haben); },
       "4 B-4: Konto 1000: der Wert überschreitet 999.999.999,99.\n"},
      {2026, kFirmenstamm, KeyBuilder().number(uint16_t(1)),
       [](DATENBANK &r) {
         r.Firmenstamm.Euro = 0;
         r.Firmenstamm.Eurokurs[0] = 0;
       },
       "0 : Der Mandant hat keinen Eurokurs.\n"},
      {2026, kSplit, KeyBuilder().number(3).number(2).number(0),
       [](DATENBANK &r) { put(r.Split.Netto, "000000001,00"); },
       "2 B-2: Netto- und Steuerbetrag ergeben nicht den Bruttobetrag.\n"},
  };
  for (const auto &one : cases) {
    SCOPED_TRACE(one.refusal);
    DATENBANK kept{};
    changeIn(one.year, one.table, one.key, [&](DATENBANK &record) {
      kept = record;
      one.edit(record);
    });
    const std::string before = dumpClient(1);
    EXPECT_EQ(inWords(post()), one.refusal);
    EXPECT_TRUE(dumpClient(1) == before);
    EXPECT_TRUE(nothingLocked(*other_, 1));
    DATENBANK changed = kept;
    one.edit(changed);
    openYear(1, one.year);
    store_->setCurrent(changed, FileNumber(one.table));
    ASSERT_TRUE(store_->Update(kept, FileNumber(one.table)));
  }
  EXPECT_EQ(inWords(post(1, 99)), "0 : Den Stapel 99 gibt es nicht.\n");
  EXPECT_EQ(inWords(post(9, 3)), "0 : Den Mandanten 9 gibt es nicht.\n");
  EXPECT_EQ(inWords(post(1, 3, 99)), "0 : Den Benutzer 99 gibt es nicht.\n");
  // Every posting that cannot be posted is named.
  for (int year : {2025, 2026})
    changeIn(year, kDebitor, account("10010"), [](DATENBANK &r) { r.Personenkonto.Gesperrt = 1; });
  EXPECT_EQ(inWords(post()), "1 B-1: Sollkonto 10010 ist im Geschäftsjahr 2025 gesperrt.\n"
                             "2 B-2: Habenkonto 10010 ist im Geschäftsjahr 2026 gesperrt.\n");
  for (int year : {2025, 2026})
    changeIn(year, kDebitor, account("10010"), [](DATENBANK &r) { r.Personenkonto.Gesperrt = 0; });
  // What the first of two items has become is undone with the refusal of the second.
  for (auto [table, person, left] :
       {std::tuple{int(kOPDebitor), "10010", "999999999-00"}, {int(kOPKreditor), "70010", "999999985-00"}}) {
    DATENBANK record{};
    record.Opbeleg = itemOf(900 + table, person, "X");
    put(record.Opbeleg.Ausstand, left);
    ASSERT_TRUE(store_->Insert(record, FileNumber(table)));
  }
  Draft both, one;
  both.openItem = one.openItem = "X";
  both.lines = {{.debit = "70010", .credit = "10010", .gross = "10,00"}};
  one.lines = {{.debit = "70010", .credit = "1200", .gross = "5,00"}};
  ASSERT_EQ(insertWhole(both), ZELK_OK);
  ASSERT_EQ(insertWhole(one), ZELK_OK);
  EXPECT_EQ(inWords(post()), "6 B-1: Der offene Posten überschreitet 999.999.999,99.\n");
}

TEST_F(LedgerRefusals, AFailingDatabaseChangesNothing) {
  Draft rest; // settles the item
  rest.openItem = "B-1";
  rest.lines = {{.debit = "1200", .credit = "10010", .gross = "19,00"}};
  ASSERT_EQ(insertWhole(rest), ZELK_OK);
  const std::string before = dumpClient(1);
  Faults faults;
  std::unique_ptr<Store> failing = session();
  ledger::BatchOrder order;
  order.client = 1;
  order.batch = 3;
  put(order.day, "461121");
  const auto [operations, last] = sweep(
      faults, [] {}, [&] { return ledger::postBatch(*failing, order).state; },
      [&](auto state) {
        ASSERT_TRUE(state != ledger::BatchOutcome::Refused && state != ledger::BatchOutcome::Posted);
        ASSERT_TRUE(dumpClient(1) == before);
        ASSERT_TRUE(nothingLocked(*other_, 1));
      });
  EXPECT_EQ(last, ledger::BatchOutcome::Posted);
  EXPECT_GT(operations, 100);
  const std::string posted = dumpClient(1);
  EXPECT_TRUE(posted != before);
  EXPECT_EQ(post().state, ledger::BatchOutcome::NothingToPost);
  EXPECT_TRUE(dumpClient(1) == posted);
}

TEST_F(LedgerRefusals, WaitsForNobodyForEver) {
  uint8_t found = 0;
  ASSERT_TRUE(other_->SetzeFista(1, found) && other_->Lock(kSplit, nullptr, 0));
  store_ = session(std::chrono::milliseconds(0));
  const std::string before = dumpClient(1);
  EXPECT_EQ(post().state, ledger::BatchOutcome::TablesLocked);
  EXPECT_TRUE(dumpClient(1) == before);
  other_->Unlock(kSplit, 1);
  EXPECT_EQ(post().state, ledger::BatchOutcome::Posted);
}

} // namespace
} // namespace test
