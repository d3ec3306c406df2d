// Batches posted to the ledger: what each kind of posting comes to, and what is refused.
#include "ledger/ledger_books.h"

#include "vlba98/text.h"
#include "vlfn98/accounts.h"

namespace test {
namespace {

using namespace vldb98;

class Ledger : public LedgerBooks {
protected:
  void insertAll(const std::vector<Draft> &drafts) {
    for (const Draft &draft : drafts) {
      const bool pieces = draft.lines.size() > 1 || !draft.lines.front().costs.empty();
      ASSERT_EQ(pieces ? insertInPieces(draft) : insertWhole(draft), ZELK_OK) << draft.number << recorder.takeText();
    }
  }
};

Draft of(const std::string &debit, const std::string &credit, const std::string &gross, const std::string &rate = {}) {
  Draft draft;
  draft.lines = {{.debit = debit, .credit = credit, .gross = gross, .rate = rate}};
  return draft;
}

TEST_F(Ledger, MovesTheAccountsOfEachKindOfPosting) {
  change(1, kSteusa, KeyBuilder().number(int16_t(8)).text("410101", 6),
         [](DATENBANK &record) { record.Steusa.Anteil = 40; });
  Draft opening = of("10010", "", "500,00"), closing = of("8400", "9000", "70,00"),
        split = of("1200", "10020", "98,00");
  opening.lines.front().creditKind = closing.lines.front().creditKind = ZELK_SACHKONTO;
  opening.opening = closing.closing = 1;
  opening.openItem = "OLD";
  split.lines.push_back({.debit = "8736", .credit = "10020", .gross = "2,00", .rate = "19,00"});
  Draft dollars = of("10240", "8120", "100,00");
  dollars.currency = "USD";
  Draft swiss = of("10070", "3200", "108,10", "8,10");
  swiss.client = swiss.batch = 2;
  swiss.currency = "EUR";
  const struct {
    const char *what;
    Draft draft;
    std::string entry;
  } cases[] = {
      {"output tax", of("10010", "8400", "119,00", "19,00"),
       "3:10010 S 119,00 3/19,00; 0:8400 H 100,00 3/19,00; 0:1776 H 19,00 3/19,00; 0:1400 S 119,00 3/19,00"},
      {"input tax", of("3400", "70010", "119,00", "19,00"),
       "0:3400 S 100,00 5/19,00; 2:70010 H 119,00 5/19,00; 0:1576 S 19,00 5/19,00; 0:1600 H 119,00 5/19,00"},
      {"half of it deductible", of("4535", "1200", "119,00", "19,00"),
       "0:4535 S 109,50 9/19,00; 0:1200 H 119,00 9/19,00; 0:1576 S 9,50 9/19,00"},
      {"acquisition, in part deductible", of("3425", "70180", "100,00", "19,00"),
       "0:3425 S 100,00 8/19,00; 2:70180 H 100,00 8/19,00; 0:1574 S 7,60 8/19,00; 0:1774 H 19,00 8/19,00; "
       "0:3425 S 11,40 8/19,00; 0:1610 H 100,00 8/19,00"},
      {"acquisition sent back", of("70180", "3425", "100,00", "19,00"),
       "2:70180 S 100,00 8/19,00; 0:3425 H 100,00 8/19,00; 0:1574 H 7,60 8/19,00; 0:1774 S 19,00 8/19,00; "
       "0:3425 H 11,40 8/19,00; 0:1610 S 100,00 8/19,00"},
      {"acquisition at a former rate", of("3425", "70180", "100,00", "16,00"),
       "0:3425 S 100,00 8/16,00; 2:70180 H 100,00 8/16,00; 0:1574 S 16,00 8/16,00; 0:1774 H 16,00 8/16,00; "
       "0:1610 H 100,00 8/16,00"},
      {"tax-free", of("8400", "10010", "50,00"), "0:8400 S 50,00; 3:10010 H 50,00; 0:1400 H 50,00"},
      {"discount", split,
       "0:1200 S 98,00; 3:10020 H 98,00; 0:1400 H 98,00; "
       "0:8736 S 1,68 3/19,00; 3:10020 H 2,00 3/19,00; 0:1776 S 0,32 3/19,00; 0:1400 H 2,00 3/19,00"},
      {"reversal", of("1200", "1000", "-10,00"), "0:1200 S -10,00; 0:1000 H -10,00"},
      {"between persons", of("70010", "10010", "30,00"),
       "2:70010 S 30,00; 3:10010 H 30,00; 0:1600 S 30,00; 0:1400 H 30,00"},
      {"opening", opening, "3:10010 S 500,00 (opening); 0:9008 H 500,00 (opening); 0:1400 S 500,00 (opening)"},
      {"closing", closing, "0:8400 S 70,00 (closing); 0:9000 H 70,00 (closing)"},
      {"foreign currency", dollars, "3:10240 S 85,25=100,00USD; 0:8120 H 85,25=100,00USD; 0:1410 S 85,25=100,00USD"},
      {"Swiss client in Euro", swiss,
       "3:10070 S 100,62=108,10EUR 1/8,10; 0:3200 H 93,08=100,00EUR 1/8,10; 0:2200 H 7,54=8,10EUR 1/8,10; "
       "0:1100 S 100,62=108,10EUR 1/8,10"},
  };
  std::vector<std::string> expected[2];
  for (const auto &one : cases) {
    insertAll({one.draft});
    expected[one.draft.client - 1].push_back(one.entry);
  }
  ASSERT_EQ(post(1, 3).state, ledger::BatchOutcome::Posted);
  ASSERT_EQ(post(2, 2).state, ledger::BatchOutcome::Posted);
  EXPECT_EQ(journal(1, 2026), expected[0]);
  EXPECT_EQ(journal(2, 2025), expected[1]); // its fiscal year begins in July
  // 21 January is the seventh month of that year; what was posted in Euro is its own value.
  openYear(2, 2025);
  DATENBANK record{};
  uint8_t found = 0;
  ASSERT_TRUE(store_->UsedGet(record, KeyBuilder().account("3200"), found, kSachkonto) && found);
  EXPECT_EQ(plain(record.Sachkonto.Werte.Monat[6].Haben), "93,08");
  EXPECT_EQ(plain(record.Sachkonto.EuroWerte.Monat[6].Haben), "100,00");
  ASSERT_TRUE(store_->UsedGet(record, KeyBuilder().number(2), found, kStapel) && found);
  EXPECT_EQ(record.Stapel.Gecleart, 1);
  EXPECT_EQ(record.Stapel.Bebucht, 0);
  EXPECT_TRUE(storedPostings(*store_, 1, 3).empty());
}

TEST_F(Ledger, BringsCostsToCostCentres) {
  change(1, kSteusa, KeyBuilder().number(int16_t(8)).text("410101", 6),
         [](DATENBANK &record) { record.Steusa.Anteil = 33; });
  openYear(1, 2026);
  FISTA_EXT client{};
  uint8_t found = 0;
  ASSERT_TRUE(store_->GetExtFista(client, found) && found);
  client.Dimension3 = client.Dimension4 = 2;
  ASSERT_TRUE(store_->SetExtFista(client));
  for (const char *reference : {"R2     ", "R1     "}) {
    DATENBANK record{};
    put(record.Kost.Nr, "900    ");
    put(record.Kost.Kostref, reference);
    ASSERT_TRUE(store_->Insert(record, kKost));
  }
  Draft debit = of("4910", "1000", "100,00"), credit = of("1000", "4910", "30,00"),
        acquired = of("3425", "70180", "100,00", "19,00"), twice = of("4910", "1000", "7,00");
  debit.lines.front().costs = {{.centres = {"400", "5001"}, .amount = "60,00", .kind = 2},
                               {.centres = {"420"}, .amount = "40,00", .kind = 1}};
  credit.lines.front().costs = {{.centres = {"420"}, .amount = "30,00"}};
  acquired.lines.front().costs = {{.centres = {"400"}, .amount = "60,00"}, {.centres = {"420"}, .amount = "40,00"}};
  twice.lines.front().costs = {{.centres = {"900", "", "NORD", "NORD"}, .amount = "7,00"}};
  insertAll({debit, credit, acquired, twice});
  ASSERT_EQ(post().years.at(2026).costs, 6u);
  std::string postings, centres;
  openYear(1, 2026);
  eachRow(*store_, kKostenbeleg, [&](const DATENBANK &record) {
    const KOSTENBELEG cost = record.Kostenbeleg;
    postings += std::to_string(cost.Nr) + '.' + std::to_string(cost.Zeile) + ' ' +
                std::string(vlba98::trimmed(cost.Kostenart)) + ' ' + std::string(vlba98::trimmed(cost.Kostenstelle1)) +
                ' ' + plain(cost.Betrag) + ' ' + std::to_string(cost.Flags) + "; ";
  });
  EXPECT_EQ(postings, "1.0 4910 400 60,00 2; 1.1 4910 420 40,00 1; 2.0 4910 420 30,00 32; "
                      "3.0 3425 400 67,64 0; 3.1 3425 420 45,09 0; 4.0 4910 900 7,00 0; ");
  eachRow(*store_, kKost, [&](const DATENBANK &record) {
    if (*record.Kost.Kosten[0])
      centres += std::string(vlba98::trimmed(record.Kost.Nr)) + ' ' + plain(record.Kost.Kosten[0]) + "; ";
  });
  EXPECT_EQ(centres, "400 127,64; 420 55,09; 5001 60,00; 900 7,00; NORD 7,00; ");
  // All evaluations agree, and the references of a number add up to what was posted.
  const struct {
    const char *centre, *reference;
    int32_t dimension;
    std::string costs;
  } rows[] = {{"NORD", "", 2, "7,00 7,00 7,00"},  {"900", "", 0, "7,00 7,00 7,00"}, {"900", "R1", 0, "7,00 7,00 7,00"},
              {"900", "R2", 0, "0,00 0,00 0,00"}, {"900", "R9", 0, "-23 -23 -10"},  {"900", "R1", -1, "-23 -23 7,00"},
              {"900", "R2", -1, "-23 -23 0,00"},  {"900", "R9", -1, "-23 -23 -10"}};
  for (const auto &row : rows) {
    char text[3][16];
    const ZelkResult results[] = {
        ZELK_HoleUmsatz(1, row.centre, ZELK_KOSTENSTELLE, 18, 2026, 0, 2, nullptr, nullptr, nullptr, nullptr, nullptr,
                        text[0], row.dimension, row.reference),
        ZELK_HoleSaldo(1, row.centre, ZELK_KOSTENSTELLE, 0, 2, text[1], nullptr, "21.01.2026", row.dimension,
                       row.reference),
        ZELK_HoleKostenSaldo(1, row.centre, nullptr, 0, 17, 2026, 0, 2, text[2], row.dimension, row.reference)};
    std::string all;
    for (int i = 0; i < 3; ++i)
      all += (i ? " " : "") + (results[i] == ZELK_OK ? std::string(text[i]) : std::to_string(results[i]));
    EXPECT_EQ(all, row.costs) << row.centre << ' ' << row.reference << ' ' << row.dimension;
  }
}

TEST_F(Ledger, OpensAndSettlesItems) {
  struct Step {
    const char *debit, *credit, *gross;
    const char *date = "210126", *currency = "", *discount = "", *otherItem = nullptr;
  };
  const struct {
    const char *what;
    std::vector<Step> steps;
    std::string items;
  } cases[] = {
      {"invoice", {{"10010", "8400", "100,00"}}, "100,00 left 100,00"},
      {"bill", {{"3400", "70010", "100,00"}}, "100,00 left 100,00"},
      {"credit note", {{"8400", "10010", "100,00"}}, "-100,00 left -100,00"},
      {"two payments, the second in the next year",
       {{"10010", "8400", "100,00", "010725"}, {"1200", "10010", "40,00", "020725"}, {"1200", "10010", "60,00"}},
       "2025/1: paid 40,00 left 60,00; 2026/2: paid 60,00 left 0,00"},
      {"overpaid and paid back",
       {{"3400", "70010", "100,00"},
        {"70010", "1200", "120,00"},
        {"70010", "1200", "1,00"},
        {"1200", "70010", "21,00"}},
       "2026/1: paid 120,00 left -20,00; 2026/2: paid 1,00 left -21,00; 2026/3: paid -21,00 left 0,00"},
      {"raised", {{"10010", "8400", "100,00"}, {"10010", "8400", "50,00"}}, "150,00 left 150,00"},
      {"paid in advance",
       {{"1200", "10010", "30,00"}, {"10010", "8400", "100,00"}},
       "2026/1: paid -100,00 left 70,00; -30,00 left 70,00"},
      {"discount",
       {{"10010", "8400", "100,00"}, {"1200", "10010", "97,00", "210126", "", "3,00"}},
       "2026/1: paid 97,00 less 3,00 left 0,00"},
      {"settled, and once more",
       {{"10010", "8400", "100,00"}, {"1200", "10010", "100,00"}, {"1200", "10010", "5,00"}},
       "2026/1: paid 100,00 left 0,00; -5,00 left -5,00"},
      {"another account",
       {{"10010", "8400", "100,00"}, {"1200", "10020", "100,00"}},
       "100,00 left 100,00; -100,00 left -100,00"},
      {"between persons",
       {{"10010", "8400", "100,00"}, {"70010", "10010", "40,00"}},
       "2026/1: paid 40,00 left 60,00; -40,00 left -40,00; 100,00 left 60,00"},
      {"dollars at another rate, the rest in Euro",
       {{"10240", "8120", "100,00", "010725", "USD"},
        {"1220", "10240", "50,00", "020126", "USD"},
        {"1200", "10240", "21,09", "020126"}},
       "2026/1: paid 42,63 left 42,19 (50,00 USD); 2026/2: paid 21,09 left 21,10 (25,01 USD); "
       "84,82 left 21,10 (25,01 USD)"},
  };
  std::vector<std::string> expected, found;
  int number = 0;
  for (const auto &one : cases) {
    for (const Step &step : one.steps) {
      Draft draft = of(step.debit, step.credit, step.gross);
      draft.date = step.date;
      draft.currency = step.currency;
      draft.openItem = "OP" + std::to_string(number);
      if (*step.discount) draft.lines.push_back({.debit = "8736", .credit = step.credit, .gross = step.discount});
      insertAll({draft});
    }
    expected.push_back(std::string(one.what) + ": " + one.items);
    ++number;
  }
  const ledger::BatchOutcome outcome = post();
  ASSERT_EQ(outcome.state, ledger::BatchOutcome::Posted);
  for (int i = 0; i < number; ++i)
    found.push_back(std::string(cases[i].what) + ": " + itemsOf(1, "OP" + std::to_string(i)));
  EXPECT_EQ(found, expected);
}

TEST_F(Ledger, TellsWhatAnItemIs) {
  Draft bill = of("3400", "70020", "119,00", "19,00"), payment = of("70020", "1200", "9,00");
  bill.lines.push_back({.debit = "3300", .credit = "70020", .gross = "107,00", .rate = "7,00"});
  bill.number = "ER-1";
  bill.valueDate = "250126";
  bill.lines.front().text = "Bleistifte";
  bill.lines.front().text2 = "zwei Paletten";
  bill.document = "DMS-7";
  payment.openItem = "ER-1";
  payment.number = "BA-1";
  payment.date = "020226";
  payment.lines.front().text = "Anzahlung";
  Draft credit = of("70020", "3400", "10,00");
  credit.number = "GS-1";
  credit.term = 4;
  insertAll({bill, payment, credit});
  ASSERT_EQ(post(1, 3, 0).items.payments, 1u);
  openYear(1, 2026);
  eachRow(*store_, kOPKreditor, [&](const DATENBANK &record) {
    EXPECT_EQ(*record.Opbeleg.Faelligkeit == 0, std::string(record.Opbeleg.Belegnummer) == "GS-1");
  });
  eachRow(*store_, kHistOPKreditor, [&](const DATENBANK &record) {
    const OPHISTORIE it = record.Ophistorie;
    std::string texts;
    for (const char *text : {it.OP.Konto, it.OP.Kuerzel, it.OP.Belegnummer, it.OP.OPBelegnummer, it.OP.Belegdatum,
                             it.OP.Faelligkeit, it.OP.Valutadatum, it.OP.Skontodatum1, it.OP.Skontosatz1,
                             it.OP.Skontodatum2, it.OP.Skontosatz2, it.OP.Text, it.OP.Text2, it.OP.Gegenkonto,
                             it.OP.Steuersatz1, it.OP.Steuersatz2, it.Zahldatum, it.Zahlbelegnummer, it.Zahltext})
      texts += std::string(vlba98::trimmed(text)) + '|';
    EXPECT_EQ(texts, "70020|ERLENGR|ER-1|ER-1|460121|460311|460125|460204|03,00|460214|02,00|Bleistifte|zwei Paletten|"
                     "3400|19,00|07,00|460202|BA-1|Anzahlung|");
    EXPECT_EQ(plain(it.OP.Brutto), "226,00");
    EXPECT_EQ(int(it.OP.Zahlungsziel), 4);
    EXPECT_EQ(int(it.Zahlungsart), 1);
    EXPECT_NE(int(it.OP.DMSNr), 0);
  });
}

} // namespace
} // namespace test
