#include "postings/cost_allocation.h"

#include "frame/program.h"
#include "netwr98/capture.h"
#include "postings/look_ups.h"
#include "vlba98/money.h"
#include "vlba98/muldiv.h"
#include "vlba98/text.h"

using namespace vldb98;
using vlfn98::CostSide;

namespace postings {
namespace {

struct Centre {
  char (KOBU::*stored)[8];
  char (PostingCost::*given)[8];
};
constexpr Centre kCentres[vlfn98::kCentresPerPosting] = {
    {&KOBU::Kostenstelle1, &PostingCost::Kostenstelle1}, {&KOBU::Kostenstelle2, &PostingCost::Kostenstelle2},
    {&KOBU::Kostenstelle3, &PostingCost::Kostenstelle3}, {&KOBU::Kostenstelle4, &PostingCost::Kostenstelle4},
    {&KOBU::Kostenstelle5, &PostingCost::Kostenstelle5}, {&KOBU::Kostenstelle6, &PostingCost::Kostenstelle6}};

void putCentre(char (&field)[8], std::string_view number) {
  vlba98::copyTrimmed(field, number);
  vlba98::FillWithSpaces(field);
}

// Such a posting only moves between income-statement accounts.
bool bothIncome(const LineInProgress &line) {
  return line.debit.found->isIncome() && line.credit.found->isIncome();
}

bool onOneSide(CostSide side) {
  return side == CostSide::Debit || side == CostSide::Credit;
}

const LineAccount &costBearing(const LineInProgress &line, CostSide side) {
  return side == CostSide::Debit ? line.debit : line.credit;
}

Refusal inLine(Refusal refusal, const LineInProgress &line) {
  refusal.line = int(line.index);
  return refusal;
}

} // namespace

Refusal CostAllocation::allocate(const LineInProgress &line) {
  const bool given = !line.given->costs.empty(), wanted = given || line.given->Kostenschablone != 0;
  if (frame::programSettings().basicEdition)
    return wanted ? line.refuse(ZELKERR_uzl_Kostenrechnung, resources::kBasicCosts) : Refusal{};
  const bool income = line.debit.found->isIncome() || line.credit.found->isIncome();
  const bool mandatory = (income || wanted) && posting_.clientExtension().Kostenstellenpflicht;
  const CostSide side =
      vlfn98::BestimmeKostenseite(line.debit.found->ledgerAccount(), line.credit.found->ledgerAccount(), mandatory);
  Costs costs;
  if (Refusal refusal = given ? allocateGiven(line, side, costs) : allocateByTemplate(line, side, costs))
    return refusal;
  if (!costs.entries.empty()) {
    if (side == CostSide::Both) return line.refuse(ZELKERR_uzl_Kostenrechnung, resources::kTwoCostAccounts);
    if (bothIncome(line)) return line.refuse(ZELKERR_uzl_Kostenrechnung, resources::kIncomeTransfer);
    return store(line, costs);
  }
  // Opening and closing postings only carry balances on.
  if (!mandatory || !income || posting_.stored.Eroeffnung || posting_.stored.Abschluss) return {};
  // No cost centre would be taken between two income-statement accounts: the text says what to do instead.
  return line.refuse(ZELKERR_uzl_Kostenrechnung, bothIncome(line)          ? resources::kIncomeTransfer
                                                 : posting_.given.inPieces ? resources::kCostCentreMandatory
                                                                           : resources::kCostTemplateMandatory);
}

Refusal CostAllocation::checkCentres(const KOBU &cost) {
  const FISTA_EXT &client = posting_.clientExtension();
  for (int i = 0; i < vlfn98::kCentresPerPosting; ++i) {
    std::string name(vlba98::trimmed(cost.*kCentres[i].stored));
    if (name.empty()) continue;
    const auto centre = vlfn98::IsKostenstelle(posting_.store, name.c_str(), vlfn98::costDimension(client, i));
    if (!centre) return {ZELKERR_uzl_Kostenstelle, resources::kCostCentreMissing, name};
    if (vlfn98::IsKostDateValid(*centre, posting_.stored.Belegdatum)) continue;
    std::erase(name, ' ');
    return {ZELKERR_uzl_Laufzeit, resources::kCostCentreRunningTime, name};
  }
  return {};
}

Refusal CostAllocation::checkCombinations(const LineInProgress &line, CostSide side, const KOBU &cost) {
  // Where both sides bear costs, or a posting only moves between income-statement accounts, it is refused as a whole.
  if (side == CostSide::Both || bothIncome(line)) return {};
  const Refusal refused{ZELKERR_uzl_Kostenrechnung, resources::kCombinationInadmissible};
  if (side == CostSide::None) return refused;
  for (const Centre &centre : kCentres) {
    if (isBlank(cost.*centre.stored)) continue;
    if (!vlfn98::CheckKomb(posting_.store, costBearing(line, side).number, cost.*centre.stored)) return refused;
  }
  return {};
}

Refusal CostAllocation::takeGiven(const LineInProgress &line, const PostingCost &given, KOBU &cost, int64_t &amount) {
  bool anyCentre = false;
  for (const Centre &centre : kCentres) {
    putCentre(cost.*centre.stored, given.*centre.given);
    anyCentre = anyCentre || !isBlank(given.*centre.given);
  }
  if (Refusal refusal = checkCentres(cost)) return inLine(refusal, line);
  if (!anyCentre) return line.refuse(ZELKERR_uzl_Kostenstelle, resources::kNoCostCentreGiven);
  if (!vlfn98::isCostKind(given.Kostenkennung))
    return line.refuse(ZELKERR_uzl_Kostenkennung, resources::kInadmissible, "Die Kostenkennung ist");
  cost.Kostenkennung = given.Kostenkennung;
  if (!isBlank(given.Menge)) {
    const auto quantity = readAmount(given.Menge, vlba98::moneyWidth, false);
    if (!quantity) return line.refuse(ZELKERR_uzl_Menge, resources::kIsInadmissibleFeminine, "Kostenbuchungsmenge");
    vlba98::formatMoney(*quantity, cost.Menge);
  }
  if (unit_.value_or(given.Einheit) != given.Einheit)
    return line.refuse(ZELKERR_uzl_Einheitenwechsel, resources::kIsInadmissible, "Einheitenwechsel");
  unit_ = given.Einheit;
  vlba98::strncpy2(cost.Einheit, given.Einheit);
  const auto hundredths = readAmount(given.Betrag, vlba98::moneyWidth, false);
  if (!hundredths) return line.refuse(ZELKERR_uzl_Kostenbetrag, resources::kIsInadmissible, "Kostenbuchungsbetrag");
  amount = *hundredths;
  vlba98::strncpy2(cost.Bemerkung, given.Bemerkung);
  vlba98::strncpy2(cost.Bemerkung2, given.Bemerkung2);
  return {};
}

Refusal CostAllocation::allocateGiven(const LineInProgress &line, CostSide side, Costs &costs) {
  int64_t sum = 0;
  for (const PostingCost &given : line.given->costs) {
    KOBU cost{};
    int64_t amount = 0;
    if (Refusal refusal = takeGiven(line, given, cost, amount)) return refusal;
    if (Refusal refusal = checkCombinations(line, side, cost)) return inLine(refusal, line);
    costs.entries.push_back(cost);
    costs.amounts.push_back(amount);
    sum += amount;
  }
  return sum == line.amounts.net ? Refusal{} : line.refuse(ZELKERR_uzl_Kostenbetrag, resources::kCostSumWrong);
}

// The more specific one wins: the template that the line names; the one of the captured document; the one of the
// account.
int32_t CostAllocation::templateOf(const LineInProgress &line, CostSide side) {
  if (line.given->Kostenschablone != 0) return line.given->Kostenschablone;
  if (!onOneSide(side) || bothIncome(line)) return 0;
  const int32_t document = posting_.stored.DMSNr;
  if (netwr98::OCR_IsBelegkontierungAktiv(posting_.store, document))
    return netwr98::OCR_GetBucDlg(posting_.store, document);
  return costBearing(line, side).found->ledger.Kostenschablone;
}

Refusal CostAllocation::allocateByTemplate(const LineInProgress &line, CostSide side, Costs &costs) {
  const int32_t number = templateOf(line, side);
  if (number == 0) return {};
  const std::vector<KOSCHA_ZEILE> shares = vlfn98::sharesOfTemplate(posting_.store, number);
  tellLookUpsOfShares(posting_, line, side, shares);
  std::vector<int64_t> weights;
  for (const KOSCHA_ZEILE &share : shares) {
    KOBU cost{};
    for (const Centre &centre : kCentres)
      putCentre(cost.*centre.stored, "");
    putCentre(cost.Kostenstelle1, share.Kostenstelle1);
    putCentre(cost.Kostenstelle2, share.Kostenstelle2);
    cost.Kostenkennung = share.Kostenkennung;
    Refusal refusal = checkCentres(cost);
    if (!refusal) refusal = checkCombinations(line, side, cost);
    if (refusal) {
      costs = {};
      // Only the template that the line names is a demand; the others apply where they fit.
      return line.given->Kostenschablone != 0 ? inLine(refusal, line) : Refusal{};
    }
    costs.entries.push_back(cost);
    weights.push_back(vlba98::parseMoney(share.Anteil).value_or(0));
  }
  costs.amounts.resize(weights.size());
  vlfn98::distribute(line.amounts.net, weights, costs.amounts);
  return {};
}

Refusal CostAllocation::store(const LineInProgress &line, Costs &costs) {
  constexpr auto kCommercial = vlba98::Rounding::halfAwayFromZero;
  const int64_t net = line.amounts.net;
  int64_t left = line.ownNet;
  for (size_t i = 0; i < costs.entries.size(); ++i) {
    KOBU &cost = costs.entries[i];
    const int64_t amount = costs.amounts[i];
    // In the client's currency the last one takes what rounding left, so that they add up there as well.
    int64_t own = amount;
    if (posting_.foreign) {
      own = net ? vlba98::mulDiv(amount, line.ownNet, net, kCommercial).value_or(0) : 0;
      if (i + 1 == costs.entries.size()) own = left;
      vlba98::formatMoney(amount, cost.BetragFW);
    }
    left -= own;
    const auto percent = net ? vlba98::mulDiv(amount, 100'00, net, kCommercial) : 0;
    if (!percent || !vlba98::formatMoney(*percent, cost.Prozent) || !vlba98::formatMoney(own, cost.Betrag))
      return line.refuse(ZELKERR_uzl_Kostenbetrag, resources::kIsInadmissible, "Kostenbuchungsbetrag");
    cost.Split = int32_t(line.index);
    must(posting_.store.MemInsertKobu(cost));
  }
  return {};
}

} // namespace postings
