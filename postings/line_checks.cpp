#include "postings/line_checks.h"

#include <cstring>

#include "vlba98/money.h"
#include "vlfn98/costs.h"

namespace postings {
namespace {

Refusal checkAccountsDiffer(PostingInProgress &, LineInProgress &line) {
  if (std::strcmp(line.debit.number, line.credit.number) != 0) return {};
  return line.refuse(ZELKERR_uzl_Kontonr, resources::kAccountNumbersEqual);
}

Refusal checkAccounts(PostingInProgress &posting, LineInProgress &line) {
  for (const Side &side : kSides) {
    LineAccount &account = line.*side.account;
    account.found = &posting.accounts.find(account.number);
    if (account.found->kind == 0 || account.found->kind != account.kind || account.found->locked)
      return line.refuse(side.wrongCode, side.wrongMessage);
  }
  if (currenciesAgree(posting, line)) return {};
  return line.refuse(ZELKERR_nicht_eindeutige_Waehrung, resources::kCurrencyAmbiguous);
}

// \return whether the text is an amount, or empty
bool take(int64_t &hundredths, const char *text, size_t width = vlba98::moneyWidth) {
  const auto amount = readAmount(text, width, true);
  hundredths = amount.value_or(0);
  return amount.has_value();
}

Refusal checkAmounts(PostingInProgress &, LineInProgress &line) {
  auto refused = [&](ZelkResult code, const char *name) { return line.refuse(code, resources::kIsInadmissible, name); };
  if (!take(line.gross, line.given->Bruttobetrag)) return refused(ZELKERR_uzl_Bruttobetrag, "Bruttobetrag");
  if (!take(line.rate, line.given->Steuersatz, vlba98::rateWidth)) return refused(ZELKERR_uzl_Steuersatz, "Steuersatz");
  if (!take(line.tax, line.given->Steuerbetrag)) return refused(ZELKERR_uzl_Steuerbetrag, "Steuerbetrag");
  return {};
}

Refusal checkCostTemplate(PostingInProgress &posting, LineInProgress &line) {
  if (line.given->Kostenschablone == 0) return {};
  return vlfn98::IsKoscha(posting.store, line.given->Kostenschablone)
             ? Refusal{}
             : line.refuse(ZELKERR_uzl_Koscha, resources::kCostTemplateMissing);
}

Refusal checkOwnAmounts(PostingInProgress &posting, LineInProgress &line) {
  const auto &given = line.given->own;
  if (!posting.foreign || !given || (isBlank(given->BruttobetragEigen) && isBlank(given->SteuerbetragEigen))) return {};
  LineInProgress::OwnAmounts &own = line.own.emplace();
  if (!take(own.gross, given->BruttobetragEigen))
    return line.refuse(ZELKERR_uzl_Bruttobetrag, resources::kIsInadmissible, "Bruttobetrag (EW)");
  if (!take(own.tax, given->SteuerbetragEigen))
    return line.refuse(ZELKERR_uzl_Steuerbetrag, resources::kIsInadmissible, "Steuerbetrag (EW)");
  return {};
}

Refusal checkOpeningWithoutTax(PostingInProgress &posting, LineInProgress &line) {
  if (!posting.stored.Eroeffnung || (line.rate == 0 && line.tax == 0)) return {};
  return line.refuse(ZELKERR_uzl_Steuerbetrag, resources::kOpeningTaxFree);
}

} // namespace

Refusal checkLine(PostingInProgress &posting, LineInProgress &line) {
  // The order is part of the interface.
  using Check = Refusal (*)(PostingInProgress &, LineInProgress &);
  static constexpr Check checks[] = {checkAccountsDiffer, checkAccounts,   checkAmounts,
                                     checkCostTemplate,   checkOwnAmounts, checkOpeningWithoutTax};
  return firstRefusal(checks, posting, line);
}

} // namespace postings
