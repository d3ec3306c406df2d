#include "ledger/batch_run.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "ledger/refusal.h"
#include "store/guards.h"
#include "vlba98/encoding.h"
#include "vlba98/money.h"
#include "vlba98/muldiv.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"
#include "vlfn98/client.h"
#include "vlfn98/cost_postings.h"
#include "vlfn98/costs.h"
#include "zelk98/zelk98.h"

using namespace vldb98;

namespace ledger {
namespace {

// Those of an insertion first, in its order; then the ledger's.
constexpr FileNumber kTables[] = {kKreditor,  kDebitor,    kSachkonto,     kBatchbuchung,  kSplit,
                                  kStapel,    kKobu,       kKost,          kBuchungsbeleg, kKostenbeleg,
                                  kOPDebitor, kOPKreditor, kHistOPDebitor, kHistOPKreditor};

template <class Record> auto centresOf(Record &record) {
  return std::array{record.Kostenstelle1, record.Kostenstelle2, record.Kostenstelle3,
                    record.Kostenstelle4, record.Kostenstelle5, record.Kostenstelle6};
}

// Stored with the posting: asked for again at an evaluation, a cost centre that was added since would change what was
// posted.
auto referencesOf(KOSTENBELEG &record) {
  return std::array{record.Kostref1, record.Kostref2, record.Kostref3,
                    record.Kostref4, record.Kostref5, record.Kostref6};
}

/// The cost postings of a line. They name shares of its net amount, and together they are what the line has brought to
/// its cost type: that bears more where some of the tax is not deductible.
struct CostsOfLine {
  const SPLIT *line;
  bool onCredit;      ///< the cost type stands in credit, so they lessen its costs
  Amount whole = {};  ///< what the cost type bears
  Amount shared = {}; ///< what the cost postings so far bear of it
  int64_t part = 0, partForEuro = 0;
};

EntryKind kindOf(const BATCHBUCHUNG &posting) {
  return posting.Eroeffnung ? EntryKind::Opening : posting.Abschluss ? EntryKind::Closing : EntryKind::OfTheYear;
}

class BatchRun {
public:
  BatchRun(Store &store, const BatchOrder &order, BatchOutcome &outcome)
      : store_(store), order_(order), outcome_(outcome), chart_(store), items_(store, chart_, order.user) {}

  void run() {
    checkBatch();
    checkUser();
    const size_t total = countPostings();
    if (total == 0) {
      outcome_.state = BatchOutcome::NothingToPost;
      return;
    }
    BATCHBUCHUNG posting{};
    uint8_t found = 0;
    for (size_t done = 0;; ++done) {
      if (order_.progress) order_.progress(done, total);
      must(store_.ReadBat(posting, order_.batch, posting.Nr + 1, found));
      if (!found) break;
      try {
        post(posting);
        chart_.keep();
      } catch (const Refusal &refusal) {
        chart_.takeBack();
        outcome_.refused.push_back({posting.Nr, vlba98::toUtf8(posting.Belegnummer), refusal.text});
      }
    }
    if (!outcome_.refused.empty()) {
      outcome_.state = BatchOutcome::Refused;
      return;
    }
    chart_.write();
    clearBatch();
    outcome_.items = items_.counts();
    outcome_.state = BatchOutcome::Posted;
  }

private:
  STAPEL batch() {
    const auto found = find<STAPEL>(store_, order_.batch);
    if (!found) throw Refusal{"Den Stapel " + std::to_string(order_.batch) + " gibt es nicht."};
    return *found;
  }

  void checkBatch() {
    const STAPEL found = batch();
    if (found.Kore) throw Refusal{"Der Stapel gehört zur Kostenrechnung."};
    if (found.Sperre) throw Refusal{"Der Stapel ist gesperrt."};
    if (*found.Passwort) throw Refusal{"Der Stapel ist durch ein Passwort geschützt."};
    if (found.Wiederkehr) throw Refusal{"Ein wiederkehrender Stapel ist eine Vorlage und wird nicht verbucht."};
  }

  void checkUser() {
    if (order_.user != 0 && !exists<BENUTZER>(store_, order_.user))
      throw Refusal{"Den Benutzer " + std::to_string(order_.user) + " gibt es nicht."};
  }

  size_t countPostings() {
    size_t count = 0;
    forEach<BATCHBUCHUNG>(store_, from(order_.batch),
                          [&](const BATCHBUCHUNG &posting) { return posting.Stapel == order_.batch && ++count; });
    return count;
  }

  void post(const BATCHBUCHUNG &posting) {
    ChartYear &year = chart_.yearOf(posting.Belegdatum);
    std::vector<Movement> movements;
    for (size_t i = 0; i < store_.lineCount(); ++i) {
      std::vector<Movement> ofLine = movementsOf(chart_, year, posting, *store_.PSplit(i));
      movements.insert(movements.end(), ofLine.begin(), ofLine.end());
    }
    YearFigures figures;
    figures.postings = 1;
    figures.entries = movements.size();
    for (const Movement &movement : movements)
      if (movement.account->table == kSachkonto)
        (movement.debit ? figures.debit : figures.credit) += movement.amount.own;
    if (figures.debit != figures.credit) throw Refusal{"Soll und Haben der Buchung sind nicht gleich."};

    const int32_t entry = chart_.nextEntry(year);
    chart_.open(year);
    int32_t row = 0;
    for (const Movement &movement : movements)
      writeEntry(year, posting, movement, entry, row++);
    postCosts(year, posting, movements, entry, figures);
    items_.post(year, posting, itemMovementsOf(movements));
    YearFigures &sum = outcome_.years[year.record.Jahr];
    sum.postings += figures.postings;
    sum.entries += figures.entries;
    sum.costs += figures.costs;
    sum.debit += figures.debit;
    sum.credit += figures.credit;
  }

  void writeEntry(ChartYear &year, const BATCHBUCHUNG &posting, const Movement &movement, int32_t entry, int32_t row) {
    const Amount &amount = movement.amount;
    chart_.move(*movement.account, year, kindOf(posting), posting.Belegdatum, movement.debit, amount);
    const SPLIT &line = *movement.line;
    BUCHUNGSBELEG written{};
    written.Nr = entry;
    written.Zeile = row;
    written.Kontotabelle = int16_t(movement.account->table);
    vlba98::strncpy2(written.Konto, movement.account->record.Sachkonto.Nr);
    written.Art = int16_t(kindOf(posting));
    vlba98::strncpy2(written.Datum, posting.Belegdatum);
    vlba98::formatMoney(movement.debit ? amount.own : 0, written.Soll);
    vlba98::formatMoney(movement.debit ? 0 : amount.own, written.Haben);
    vlba98::formatMoney(movement.debit ? amount.euro : 0, written.EuroSoll);
    vlba98::formatMoney(movement.debit ? 0 : amount.euro, written.EuroHaben);
    if (movement.foreign) {
      vlba98::strncpy2(written.Waehrung, posting.Waehrung);
      vlba98::formatMoney(*movement.foreign, written.BetragFW);
    }
    written.Gegentabelle = int16_t(movement.contra->table);
    vlba98::strncpy2(written.Gegenkonto, movement.contra->record.Sachkonto.Nr);
    written.Steuerschluessel = movement.taxKey;
    vlba98::formatMoney(movement.rate, written.Steuersatz, vlba98::rateWidth);
    vlba98::strncpy2(written.Belegnummer, posting.Belegnummer);
    vlba98::strncpy2(written.OPBelegnummer, posting.OPBelegnummer);
    vlba98::strncpy2(written.Text, line.Text);
    vlba98::strncpy2(written.Text2, line.Text2);
    written.DMSNr = line.DMSNr ? line.DMSNr : posting.DMSNr;
    written.Stapel = posting.Stapel;
    written.Buchung = posting.Nr;
    written.Split = line.Nr;
    vlba98::strncpy2(written.Buchungstag, order_.day);
    insert(store_, written);
  }

  std::optional<SACHKONTO> generalLedgerAccount(ChartYear &year, int16_t kind, const char *number) {
    if (kind != vlfn98::ZELKKontoArtToKontoArt(ZELK_SACHKONTO)) return std::nullopt;
    return chart_.account(year, kSachkonto, number, "Konto").record.Sachkonto;
  }

  CostsOfLine costsOf(ChartYear &year, int32_t number, const std::vector<Movement> &movements) {
    const SPLIT *line = nullptr;
    for (size_t i = 0; !line && i < store_.lineCount(); ++i)
      if (store_.PSplit(i)->Nr == number) line = store_.PSplit(i);
    if (!line) throw Refusal{"Eine Kostenbuchung gehört zu keiner Zeile der Buchung."};
    const auto debit = generalLedgerAccount(year, line->Sollart, line->Sollkonto);
    const auto credit = generalLedgerAccount(year, line->Habenart, line->Habenkonto);
    const auto side = vlfn98::BestimmeKostenseite(debit ? &*debit : nullptr, credit ? &*credit : nullptr,
                                                  chart_.mandatoryCostCentres());
    if (side != vlfn98::CostSide::Debit && side != vlfn98::CostSide::Credit)
      throw Refusal{"Die Kostenbuchung hat keine eindeutige Kostenart."};
    CostsOfLine costs{line, side == vlfn98::CostSide::Credit};
    const ChartAccount &costType =
        chart_.account(year, kSachkonto, costs.onCredit ? line->Habenkonto : line->Sollkonto, "Konto");
    for (const Movement &movement : movements)
      if (movement.line == line && movement.account == &costType) {
        const int sign = movement.debit == costs.onCredit ? -1 : 1;
        costs.whole.own += sign * movement.amount.own;
        costs.whole.euro += sign * movement.amount.euro;
      }
    return costs;
  }

  // What a cost posting bears: the share up to it, less what those before it bear, so that nothing is left by rounding.
  Amount shareOf(CostsOfLine &costs, const BATCHBUCHUNG &posting, const KOBU &cost) const {
    const bool inEuro = isInEuro(posting, *costs.line);
    const int64_t own = valueOf(cost.Betrag), forEuro = inEuro ? valueOf(cost.BetragFW) : own;
    const int64_t net = valueOf(costs.line->Netto);
    const int64_t netForEuro = inEuro ? valueOf(costs.line->BruttoFW) - valueOf(costs.line->SteuerFW) : net;
    costs.part += own;
    costs.partForEuro += forEuro;
    constexpr auto commercially = vlba98::Rounding::halfAwayFromZero;
    const auto upTo = vlba98::mulDiv(costs.whole.own, costs.part, net, commercially);
    const auto euroUpTo = vlba98::mulDiv(costs.whole.euro, costs.partForEuro, netForEuro, commercially);
    if (!upTo || !euroUpTo) return chart_.valued(own); // shares of nothing
    const Amount before = std::exchange(costs.shared, {*upTo, *euroUpTo});
    return {*upTo - before.own, *euroUpTo - before.euro};
  }

  void postCosts(ChartYear &year, const BATCHBUCHUNG &posting, const std::vector<Movement> &movements, int32_t entry,
                 YearFigures &figures) {
    std::optional<CostsOfLine> costs;
    for (size_t i = 0; i < store_.costCount(); ++i) {
      const KOBU &cost = *store_.costAt(i); // they stand line by line
      if (!costs || costs->line->Nr != cost.Split) costs = costsOf(year, cost.Split, movements);
      const Amount amount = shareOf(*costs, posting, cost);
      writeCost(year, posting, *costs, cost, amount, entry, int32_t(figures.costs++));
    }
  }

  void writeCost(ChartYear &year, const BATCHBUCHUNG &posting, const CostsOfLine &costs, const KOBU &cost,
                 const Amount &amount, int32_t entry, int32_t row) {
    KOSTENBELEG written{};
    written.Nr = entry;
    written.Zeile = row;
    vlba98::strncpy2(written.Datum, posting.Belegdatum);
    vlba98::strncpy2(written.Kostenart, costs.onCredit ? costs.line->Habenkonto : costs.line->Sollkonto);
    written.Flags = int16_t(cost.Kostenkennung | (costs.onCredit ? vlfn98::kLessensCosts : 0));
    vlba98::formatMoney(amount.own, written.Betrag);
    vlba98::formatMoney(amount.euro, written.EuroBetrag);
    vlba98::strncpy2(written.Menge, cost.Menge);
    vlba98::strncpy2(written.Einheit, cost.Einheit);
    vlba98::strncpy2(written.Belegnummer, posting.Belegnummer);
    vlba98::strncpy2(written.Bemerkung, cost.Bemerkung);
    vlba98::strncpy2(written.Bemerkung2, cost.Bemerkung2);
    const Amount moved = costs.onCredit ? Amount{-amount.own, -amount.euro} : amount;
    std::vector<CostCentre *> centres; // that it names, each once
    for (int n = 0; n < vlfn98::kCentresPerPosting; ++n) {
      const char *number = centresOf(cost)[size_t(n)];
      std::memcpy(centresOf(written)[size_t(n)], number, sizeof written.Kostenstelle1);
      if (vlba98::trimmed(number).empty()) continue;
      CostCentre &centre = chart_.centre(year, vlfn98::costDimension(chart_.extension(), n), number);
      std::memcpy(referencesOf(written)[size_t(n)], centre.record.Kostref, sizeof written.Kostref1);
      if (std::find(centres.begin(), centres.end(), &centre) != centres.end()) continue;
      centres.push_back(&centre);
      chart_.moveCosts(centre, year, posting.Belegdatum, moved);
    }
    chart_.open(year);
    insert(store_, written);
  }

  void clearBatch() {
    must(store_.EmptyBat(order_.batch));
    STAPEL cleared = batch();
    cleared.Gecleart = 1;
    update(store_, cleared);
  }

  Store &store_;
  const BatchOrder &order_;
  BatchOutcome &outcome_;
  Chart chart_;
  OpenItems items_;
};

} // namespace

BatchOutcome postBatch(Store &store, const BatchOrder &order) try {
  BatchOutcome outcome;
  auto refuse = [&](std::string reason) {
    outcome.state = BatchOutcome::Refused;
    outcome.refused.push_back({0, "", std::move(reason)});
    return outcome;
  };
  switch (vlfn98::HoleMandantenDaten(store, order.client)) {
  case ZELK_OK:
    break;
  case ZELKERR_uzl_Mandnr:
    return refuse("Den Mandanten " + std::to_string(order.client) + " gibt es nicht.");
  default:
    return refuse("Die Daten des Mandanten gehören zu einer anderen Programmversion.");
  }
  LockedTables locked(store, kTables);
  if (!locked.held()) {
    outcome.state = BatchOutcome::TablesLocked;
    return outcome;
  }
  Transaction transaction(store, false);
  must(transaction.isOpen());
  try {
    BatchRun(store, order, outcome).run();
  } catch (const Refusal &refusal) {
    refuse(refusal.text);
  }
  must(outcome.state == BatchOutcome::Posted ? transaction.commit() : transaction.rollback());
  return outcome;
} catch (const StoreFailed &) {
  return {};
}

} // namespace ledger
