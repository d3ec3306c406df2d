#include "postings/amounts.h"

#include "vlba98/text.h"
#include "vlfn98/client.h"
#include "vlfn98/terms.h"

using namespace vldb98;

namespace postings {
namespace {

bool hasTaxKey(const LineAccount &account) {
  return (account.found->taxKey() & ~vlfn98::kNoTaxKey) != 0;
}

const STEUSA *keyOf(const LineInProgress &line) {
  return line.taxChoice.key != 0 ? &line.taxKey : nullptr;
}

// A tax amount of zero is none that was given.
std::optional<int64_t> givenTax(int64_t tax) {
  return tax != 0 ? std::optional(tax) : std::nullopt;
}

Refusal refuseAmount(const LineInProgress &line, ZelkResult code, const char *name) {
  return line.refuse(code, resources::kIsInadmissible, name);
}

} // namespace

Refusal AmountReckoning::reckon(LineInProgress &line) {
  if (Refusal refusal = chooseTax(line)) return refusal;
  if (Refusal refusal = readTaxKey(line)) return refusal;
  if (Refusal refusal = takeTaxOut(line)) return refusal;
  if (Refusal refusal = toOwnCurrency(line)) return refusal;
  reckonDueDate(line);
  return {};
}

Refusal AmountReckoning::chooseTax(LineInProgress &line) {
  const PostingAccount &debit = *line.debit.found, &credit = *line.credit.found;
  bool swissRules = false;
  // Only where a debtor's side bears the key does the client matter.
  for (const LineAccount *account : {&line.debit, &line.credit})
    if (account->found->kind == ZELK_DEBITOR && hasTaxKey(*account)) swissRules = posting_.clientExtension().Schweiz;
  line.taxChoice = vlfn98::chooseTaxKey(debit.taxKey(), credit.taxKey(), debit.kind, credit.kind, swissRules);
  if (line.taxChoice.key != 0 || (line.tax == 0 && line.rate == 0)) return {};
  return line.refuse(line.tax != 0 ? ZELKERR_uzl_Steuerbetrag : ZELKERR_uzl_Steuersatz, resources::kNoTaxAllowed);
}

Refusal AmountReckoning::readTaxKey(LineInProgress &line) {
  if (line.taxChoice.key == 0) return {};
  const Refusal taxDoesNotFit = line.refuse(ZELKERR_uzl_Steuerbetrag, resources::kTaxAmountDoesNotFit);
  if (line.rate == 0) {
    // Such a posting is free of tax, whatever the account's key.
    line.taxChoice = {};
    return line.tax == 0 ? Refusal{} : taxDoesNotFit;
  }
  const auto key = vlfn98::GetSteusa(posting_.store, line.taxChoice.key, posting_.stored.Belegdatum, line.rate);
  if (!key) return refuseAmount(line, ZELKERR_uzl_Steuersatz, "Steuersatz");
  line.taxKey = *key;
  const bool fits = line.tax == 0 || vlfn98::fitsTaxRate(line.gross, line.rate, line.tax, line.taxKey);
  return fits ? Refusal{} : taxDoesNotFit;
}

Refusal AmountReckoning::takeTaxOut(LineInProgress &line) {
  const bool roundToFive = posting_.foreign && (posting_.client().Optionen & vlfn98::kRoundToFive);
  const auto amounts = vlfn98::splitTax(line.gross, line.rate, givenTax(line.tax), keyOf(line), roundToFive);
  if (!amounts) return refuseAmount(line, ZELKERR_uzl_Steuerbetrag, "Steuerbetrag");
  line.amounts = *amounts;
  if (!amounts->keyKept) line.taxChoice = {};
  return {};
}

Refusal AmountReckoning::toOwnCurrency(LineInProgress &line) {
  line.ownGross = line.gross;
  line.ownNet = line.amounts.net;
  if (!posting_.foreign) return {};
  return line.own ? takeOwnAmounts(line) : convert(line);
}

Refusal AmountReckoning::takeOwnAmounts(LineInProgress &line) {
  const auto [gross, tax] = *line.own;
  const STEUSA *key = keyOf(line);
  const auto amounts = vlfn98::splitTax(gross, line.rate, givenTax(tax), key, false);
  const bool fits = tax == 0 || (key && vlfn98::fitsTaxRate(gross, line.rate, tax, *key));
  if (!amounts || !fits) return refuseAmount(line, ZELKERR_uzl_Steuerbetrag, "Steuerbetrag (EW)");
  line.ownGross = gross;
  line.ownNet = amounts->net;
  return {};
}

Refusal AmountReckoning::convert(LineInProgress &line) {
  if (Refusal refusal = readRate()) return refusal;
  const auto gross = vlfn98::toOwnCurrency(line.gross, *rate_), tax = vlfn98::toOwnCurrency(line.amounts.tax, *rate_);
  if (!gross || !tax) return refuseAmount(line, ZELKERR_uzl_Bruttobetrag, "Bruttobetrag (EW)");
  line.ownGross = *gross;
  line.ownNet = *gross - *tax;
  return {};
}

Refusal AmountReckoning::readRate() {
  if (rate_) return {};
  BATCHBUCHUNG &stored = posting_.stored;
  rate_ = vlfn98::findRate(posting_.store, stored.Waehrung, stored.Belegdatum);
  if (!rate_) {
    vlba98::strncpy2(missingRate_.currency, stored.Waehrung);
    vlba98::strncpy2(missingRate_.day, stored.Belegdatum);
    return {ZELKERR_kein_Kurs, resources::kRateMissing, currencyAndDay(missingRate_)};
  }
  vlfn98::formatRate(rate_->millionths, stored.Kurs);
  stored.Einheiten = rate_->units;
  return {};
}

void AmountReckoning::reckonDueDate(LineInProgress &line) {
  // The account's own term holds for invoices: a debtor in debit, a creditor in credit. A payment is not due.
  int32_t term = posting_.stored.Zahlungsziel;
  if (term == 0 && line.debit.found->kind == ZELK_DEBITOR) term = line.debit.found->term;
  if (term == 0 && line.credit.found->kind == ZELK_KREDITOR) term = line.credit.found->term;
  if (term != 0) vlba98::strncpy2(line.dueDate, dueDateOf(term));
}

const std::string &AmountReckoning::dueDateOf(int32_t term) {
  auto known = dueDates_.find(term);
  if (known == dueDates_.end()) {
    const BATCHBUCHUNG &stored = posting_.stored;
    const auto from = vlba98::fromReversed(*stored.Valutadatum ? stored.Valutadatum : stored.Belegdatum);
    char due[7];
    vlfn98::ErmittleZahlungsziel(posting_.store, term, *from, due);
    known = dueDates_.emplace(term, due).first;
  }
  return known->second;
}

} // namespace postings
