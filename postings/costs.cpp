// The cost postings of a line: those that were handed over, or those of a cost template.
#include <algorithm>
#include <cstring>

#include "frame/program.h"
#include "netwr98/capture.h"
#include "postings/insertion.h"
#include "resources/strings.h"
#include "vlba98/geld.h"
#include "vlba98/muldiv.h"
#include "vlba98/text.h"

using namespace vldb98;
using vlfn98::Kostenseite;

namespace postings {
namespace {

constexpr char (KOBU::*kCentres[kKostenstellen])[8] = {&KOBU::Kostenstelle1, &KOBU::Kostenstelle2,
                                                       &KOBU::Kostenstelle3, &KOBU::Kostenstelle4,
                                                       &KOBU::Kostenstelle5, &KOBU::Kostenstelle6};

void putCentre(char (&field)[8], std::string_view number) {
  vlba98::copyTrimmed(field, number);
  vlba98::FillWithSpaces(field);
}

bool isIncome(const Account *account) {
  return account->ledgerAccount() && account->ledger.GuV;
}

} // namespace

/// Cost postings of a line on their way. Amounts in the currency of the posting.
struct Insertion::Costs {
  std::vector<KOBU> entries;
  std::vector<int64_t> amounts;
};

ZelkResult Insertion::addCosts(Line &line) {
  Costs costs;
  bool income = isIncome(line.debit) || isIncome(line.credit);
  bool given =
      construction_ && nextCost_ < construction_->costs.size() && construction_->costs[nextCost_].line == line.index;
  if (frame::programSettings().basicEdition) {
    bool wanted = given || line.request.Kostenschablone != 0;
    return wanted ? refuse(ZELKERR_uzl_Kostenrechnung, resources::kKostenBasis, line) : ZELK_OK;
  }
  bool mandatory = false;
  if (income || given || line.request.Kostenschablone) {
    const FISTA_EXT *client = extension();
    if (!client) return ZELKERR_Datenbank;
    mandatory = client->Kostenstellenpflicht;
  }
  const bool bothIncome = isIncome(line.debit) && isIncome(line.credit);
  Kostenseite side = vlfn98::BestimmeKostenseite(line.debit->ledgerAccount(), line.credit->ledgerAccount(), mandatory);
  if (given) {
    if (ZelkResult result = addGivenCosts(line, side, costs); result != ZELK_OK) return result;
  } else {
    if (ZelkResult result = addTemplateCosts(line, side, bothIncome, costs); result != ZELK_OK) return result;
  }
  if (!costs.entries.empty()) {
    if (side == Kostenseite::Beide) return refuse(ZELKERR_uzl_Kostenrechnung, resources::kZweiKostenkonten, line);
    if (bothIncome) return refuse(ZELKERR_uzl_Kostenrechnung, resources::kGuvUmbuchung, line);
    return storeCosts(line, costs);
  }
  // Opening and closing postings only carry balances on.
  if (!mandatory || !income || posting_.Eroeffnung || posting_.Abschluss) return ZELK_OK;
  // No cost centre would be taken between two income-statement accounts: the text says what to do instead.
  int message = bothIncome      ? resources::kGuvUmbuchung
                : construction_ ? resources::kKostenstellenpflicht
                                : resources::kKostenstellenpflichtSchablone;
  return refuse(ZELKERR_uzl_Kostenrechnung, message, line);
}

ZelkResult Insertion::checkCentres(const KOBU &cost, Refusal &refusal) {
  const FISTA_EXT *client = extension();
  if (!client) return ZELKERR_Datenbank;
  for (int i = 0; i < kKostenstellen; ++i) {
    std::string name(vlba98::trimmed(cost.*kCentres[i]));
    if (name.empty()) continue;
    const auto centre = vlfn98::IsKostenstelle(store_, name.c_str(), vlfn98::kostDimension(*client, i));
    if (!centre) {
      refusal = {ZELKERR_uzl_Kostenstelle, resources::kKostenstelleFehlt, name};
      return ZELK_OK;
    }
    if (!vlfn98::IsKostDateValid(*centre, posting_.Belegdatum)) {
      std::erase(name, ' ');
      refusal = {ZELKERR_uzl_Laufzeit, resources::kKostenstelleLaufzeit, name};
      return ZELK_OK;
    }
  }
  return ZELK_OK;
}

ZelkResult Insertion::checkCombinations(const Line &line, Kostenseite side, const KOBU &cost, Refusal &refusal) {
  // Where both sides bear costs, or a posting only moves between income-statement accounts, it is refused as a whole.
  if (side == Kostenseite::Beide || (isIncome(line.debit) && isIncome(line.credit))) return ZELK_OK;
  const Refusal refused{ZELKERR_uzl_Kostenrechnung, resources::kKombinationUnzulaessig, {}};
  if (side == Kostenseite::Keine) {
    refusal = refused;
    return ZELK_OK;
  }
  const char *costType = side == Kostenseite::Soll ? line.request.Sollkonto : line.request.Habenkonto;
  for (auto centre : kCentres) {
    if (vlba98::trimmed(cost.*centre).empty()) continue;
    if (!vlfn98::CheckKomb(store_, costType, cost.*centre)) {
      refusal = refused;
      break;
    }
  }
  return ZELK_OK;
}

ZelkResult Insertion::addGivenCosts(const Line &line, Kostenseite side, Costs &costs) {
  const std::vector<CostEntry> &all = construction_->costs;
  int64_t sum = 0;
  for (; nextCost_ < all.size() && all[nextCost_].line == line.index; ++nextCost_) {
    const CostEntry &entry = all[nextCost_];
    KOBU cost{};
    bool anyCentre = false;
    for (int i = 0; i < kKostenstellen; ++i) {
      putCentre(cost.*kCentres[i], entry.Kostenstelle[i]);
      anyCentre = anyCentre || !vlba98::trimmed(entry.Kostenstelle[i]).empty();
    }
    Refusal refusal;
    if (ZelkResult result = checkCentres(cost, refusal); result != ZELK_OK) return result;
    if (refusal.code == ZELK_OK && !anyCentre) refusal = {ZELKERR_uzl_Kostenstelle, resources::kKeineKostenstelle, {}};
    if (refusal.code != ZELK_OK) return refuse(refusal.code, refusal.message, line, refusal.fill);
    if (!vlfn98::isKostenkennung(entry.Kostenkennung))
      return refuse(ZELKERR_uzl_Kostenkennung, resources::kUnzulaessig, line, "Die Kostenkennung ist");
    cost.Kostenkennung = entry.Kostenkennung;
    bool quantity = !vlba98::trimmed(entry.Menge).empty();
    if (quantity && !vlba98::IsGeld(entry.Menge, int(vlba98::geldWidth), 0, 1, cost.Menge))
      return refuse(ZELKERR_uzl_Menge, resources::kDieIstUnzulaessig, line, "Kostenbuchungsmenge");
    if (unit_.value_or(entry.Einheit) != entry.Einheit)
      return refuse(ZELKERR_uzl_Einheitenwechsel, resources::kIstUnzulaessig, line, "Einheitenwechsel");
    unit_ = entry.Einheit;
    vlba98::strncpy2(cost.Einheit, entry.Einheit);
    char amount[13];
    if (!vlba98::IsGeld(entry.Betrag, int(vlba98::geldWidth), 0, 1, amount))
      return refuse(ZELKERR_uzl_Kostenbetrag, resources::kIstUnzulaessig, line, "Kostenbuchungsbetrag");
    if (ZelkResult result = checkCombinations(line, side, cost, refusal); result != ZELK_OK) return result;
    if (refusal.code != ZELK_OK) return refuse(refusal.code, refusal.message, line, refusal.fill);
    vlba98::strncpy2(cost.Bemerkung, entry.Bemerkung);
    vlba98::strncpy2(cost.Bemerkung2, entry.Bemerkung2);
    costs.entries.push_back(cost);
    costs.amounts.push_back(vlba98::parseGeld(amount).value_or(0));
    sum += costs.amounts.back();
  }
  return sum == line.amounts.net ? ZELK_OK : refuse(ZELKERR_uzl_Kostenbetrag, resources::kKostensumme, line);
}

ZelkResult Insertion::addTemplateCosts(const Line &line, Kostenseite side, bool bothIncome, Costs &costs) {
  // The more specific one wins: the template that the line names; the one of the captured document; the one of the
  // account. Only the first is a demand; the others apply where they fit.
  int32_t number = line.request.Kostenschablone;
  bool demanded = number != 0;
  if (!demanded) {
    if ((side != Kostenseite::Soll && side != Kostenseite::Haben) || bothIncome) return ZELK_OK;
    if (netwr98::OCR_IsBelegkontierungAktiv(store_, posting_.DMSNr))
      number = netwr98::OCR_GetBucDlg(store_, posting_.DMSNr);
    if (number == 0) number = (side == Kostenseite::Soll ? line.debit : line.credit)->ledger.Kostenschablone;
    if (number == 0) return ZELK_OK;
  }
  const std::vector<KOSCHA_ZEILE> shares = vlfn98::HoleKoscha(store_, number);
  if (!readAheadOfShares(line, side, shares)) return ZELKERR_Datenbank;
  std::vector<int64_t> weights;
  for (const KOSCHA_ZEILE &share : shares) {
    KOBU cost{};
    putCentre(cost.Kostenstelle1, share.Kostenstelle1);
    putCentre(cost.Kostenstelle2, share.Kostenstelle2);
    for (int i = 2; i < kKostenstellen; ++i)
      putCentre(cost.*kCentres[i], "");
    cost.Kostenkennung = share.Kostenkennung;
    Refusal refusal;
    if (ZelkResult result = checkCentres(cost, refusal); result != ZELK_OK) return result;
    if (refusal.code == ZELK_OK)
      if (ZelkResult result = checkCombinations(line, side, cost, refusal); result != ZELK_OK) return result;
    if (refusal.code != ZELK_OK) {
      if (demanded) return refuse(refusal.code, refusal.message, line, refusal.fill);
      costs = {};
      return ZELK_OK;
    }
    costs.entries.push_back(cost);
    weights.push_back(vlba98::parseGeld(share.Anteil).value_or(0));
  }
  costs.amounts.resize(weights.size());
  vlfn98::verteile(line.amounts.net, weights, costs.amounts);
  return ZELK_OK;
}

ZelkResult Insertion::storeCosts(const Line &line, Costs &costs) {
  int64_t left = line.ownNet;
  for (size_t i = 0; i < costs.entries.size(); ++i) {
    KOBU &cost = costs.entries[i];
    int64_t amount = costs.amounts[i], net = line.amounts.net;
    // In the client's currency the last one takes what rounding left, so that they add up there as well.
    int64_t own = amount;
    if (foreign_) {
      own = net ? vlba98::mulDiv(amount, line.ownNet, net, vlba98::Rounding::halfAwayFromZero).value_or(0) : 0;
      if (i + 1 == costs.entries.size()) own = left;
      vlba98::formatGeld(amount, cost.BetragFW);
    }
    left -= own;
    auto percent = net ? vlba98::mulDiv(amount, 100'00, net, vlba98::Rounding::halfAwayFromZero) : 0;
    if (!percent || !vlba98::formatGeld(*percent, cost.Prozent) || !vlba98::formatGeld(own, cost.Betrag))
      return refuse(ZELKERR_uzl_Kostenbetrag, resources::kIstUnzulaessig, line, "Kostenbuchungsbetrag");
    cost.Split = int32_t(line.index);
    if (!store_.MemInsertKobu(cost)) return ZELKERR_Datenbank;
  }
  return ZELK_OK;
}

} // namespace postings
