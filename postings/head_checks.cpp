#include "postings/head_checks.h"

#include <algorithm>
#include <cstring>

#include "frame/program.h"
#include "postings/look_ups.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"
#include "vlfn98/client.h"
#include "vlfn98/documents.h"
#include "vlfn98/terms.h"

using namespace vldb98;

namespace postings {
namespace {

Refusal checkBatch(PostingInProgress &posting) {
  const auto batch = find<STAPEL>(posting.store, posting.given.head.Stapelnummer);
  if (!batch) return {ZELKERR_uzl_Stapelnr, resources::kDoesNotExist, "Stapel"};
  if (batch->Kore) return {ZELKERR_uzl_Stapelnr, resources::kCostAccountingBatch};
  posting.stored.Stapel = batch->Nr;
  return {};
}

Refusal checkDocumentDate(PostingInProgress &posting) {
  const Refusal refusal{ZELKERR_uzl_Belegdatum, resources::kPostingDateInadmissible};
  const auto date = vlba98::parseDate(posting.given.head.Belegdatum);
  if (!date) return refusal;
  Store &store = posting.store;
  const std::string before = store.HoleOpenJahr();
  if (!vlfn98::IsBuchjahr(store, *date, frame::programSettings().noFiscalYearCheck)) return refusal;
  // Of the accounts of another year nothing is known yet.
  if (before != store.HoleOpenJahr()) tellLookUps(posting);
  vlba98::strncpy2(posting.stored.Belegdatum, vlba98::toReversed(*date).data());
  return {};
}

Refusal checkLineCount(PostingInProgress &posting) {
  const std::vector<PostingLine> &lines = posting.given.lines;
  if (lines.empty() || int64_t(lines.size()) != posting.given.head.Teilbuchungsanzahl)
    return {ZELKERR_uzl_Teilbuchungsanzahl, resources::kLineCountWrong};
  posting.lines.reserve(lines.size());
  for (const PostingLine &line : lines)
    posting.lines.emplace_back(posting.lines.size(), line);
  posting.store.SplitFree();
  return {};
}

const char *balanceForward(const FIRMENSTAMM &client, int32_t kind) {
  return kind == ZELK_KREDITOR ? client.VortragKred : kind == ZELK_DEBITOR ? client.VortragDebi : client.VortragSako;
}

Refusal replaceOpeningAccounts(PostingInProgress &posting) {
  const PostingHead &head = posting.given.head;
  posting.stored.Eroeffnung = head.Eroeffnungsbuchung != 0;
  posting.stored.Abschluss = head.Abschlussbuchung != 0;
  posting.stored.Umbuchung = head.Umbuchung != 0;
  posting.stored.USTDirekt = head.UStDirekt != 0;
  if (!posting.stored.Eroeffnung) return {};
  for (LineInProgress &line : posting.lines) {
    const bool debitEmpty = isBlank(line.debit.number), creditEmpty = isBlank(line.credit.number);
    if (debitEmpty == creditEmpty) return line.refuse(ZELKERR_uzl_Kontonr, resources::kOpeningOneAccount);
    LineAccount &replaced = debitEmpty ? line.debit : line.credit, &named = debitEmpty ? line.credit : line.debit;
    vlba98::strncpy2(replaced.number, balanceForward(posting.client(), named.kind));
    replaced.kind = ZELK_SACHKONTO;
  }
  return {};
}

Refusal checkPaymentSlip(PostingInProgress &posting) {
  const char *slip = posting.given.head.ESR;
  if (isBlank(slip)) return {};
  if (vlba98::trimmed(posting.client().Land) != "CH") return {ZELKERR_uzl_Data, resources::kPaymentSlipSwissOnly, slip};
  if (!vlfn98::CheckEsr(slip)) return {ZELKERR_uzl_Data, resources::kPaymentSlipWrong, slip};
  vlba98::strncpy2(posting.stored.ESR, slip);
  return {};
}

// The document stays registered, whatever becomes of the posting.
Refusal registerDocument(PostingInProgress &posting) {
  if (isBlank(posting.given.head.DMSID)) return {};
  posting.reading.end();
  posting.stored.DMSNr = vlfn98::DmsInsertDmsID(posting.store, posting.given.head.DMSID);
  posting.reading.begin();
  return {};
}

// Refuses nothing: for the checks after it.
Refusal convertAccounts(PostingInProgress &posting) {
  for (LineInProgress &line : posting.lines)
    for (const Side &side : kSides)
      vlfn98::KonvertKonto((line.*side.account).number, posting.client().Kontolaenge);
  return {};
}

Refusal checkSplitShape(PostingInProgress &posting) {
  const std::vector<LineInProgress> &lines = posting.lines;
  if (lines.size() == 1) return {};
  const LineInProgress &first = lines.front();
  if (isBlank(first.debit.number) || isBlank(first.credit.number))
    return {ZELKERR_uzl_Split, resources::kSplitFirstLineAccounts};
  auto sameThroughout = [&](LineAccount LineInProgress::*account) {
    return std::all_of(lines.begin() + 1, lines.end(), [&](const LineInProgress &line) {
      return std::strcmp((line.*account).number, (first.*account).number) == 0;
    });
  };
  const bool sameDebit = sameThroughout(&LineInProgress::debit), sameCredit = sameThroughout(&LineInProgress::credit);
  if (!sameDebit && !sameCredit) return {ZELKERR_uzl_Split, resources::kSplitOneSideAlike};
  // Where both sides stay the same, either counts as the split one.
  auto personalOn = [&](LineAccount LineInProgress::*account) {
    return std::any_of(lines.begin(), lines.end(),
                       [&](const LineInProgress &line) { return isPersonal((line.*account).kind); });
  };
  const bool admissible =
      (sameDebit && !personalOn(&LineInProgress::credit)) || (sameCredit && !personalOn(&LineInProgress::debit));
  return admissible ? Refusal{} : Refusal{ZELKERR_uzl_Split, resources::kSplitPersonalAccount};
}

Refusal checkPaymentTerm(PostingInProgress &posting) {
  const int32_t term = posting.stored.Zahlungsziel = posting.given.head.Zahlungsziel;
  if (term == 0) return {};
  return vlfn98::IsZahlziel(posting.store, term)
             ? Refusal{}
             : Refusal{ZELKERR_uzl_Zahlungsziel, resources::kPaymentTermInadmissible};
}

Refusal checkCurrency(PostingInProgress &posting) {
  const std::string_view currency = vlba98::trimmed(posting.given.head.Waehrung);
  char upper[4] = "";
  std::transform(currency.begin(), currency.end(), upper,
                 [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
  const FIRMENSTAMM &client = posting.client();
  posting.foreign = *upper && upper != vlba98::trimmed(client.Waehrung);
  if (posting.foreign && frame::programSettings().basicEdition)
    return {ZELKERR_uzl_Waehrung, resources::kBasicForeignCurrency};
  if (!std::all_of(upper, upper + currency.size(), [](char c) { return c >= 'A' && c <= 'Z'; }))
    return {ZELKERR_uzl_Waehrung, resources::kCurrencyLettersOnly};
  const bool personal = std::any_of(posting.lines.begin(), posting.lines.end(), [](const LineInProgress &line) {
    return isPersonal(line.debit.kind) || isPersonal(line.credit.kind);
  });
  if (*upper && !personal && vlba98::trimmed(client.Land) != "CH")
    return {ZELKERR_uzl_Waehrung, resources::kCurrencyLedgerAccounts};
  vlba98::strncpy2(posting.stored.Waehrung, upper);
  return {};
}

Refusal checkFirstAccounts(PostingInProgress &posting) {
  for (const Side &side : kSides) {
    LineAccount &account = posting.lines.front().*side.account;
    account.found = &posting.accounts.find(account.number);
    if (account.found->kind == 0) return {ZELKERR_uzl_Kontonr, side.unknownMessage};
  }
  // No check: what the accounts lead to, for those after it.
  tellLookUpsOfAccounts(posting);
  if (currenciesAgree(posting, posting.lines.front())) return {};
  return {ZELKERR_nicht_eindeutige_Waehrung, resources::kCurrencyAmbiguous};
}

Refusal takeDocumentNumbers(PostingInProgress &posting) {
  vlba98::strncpy2(posting.stored.Belegnummer, posting.given.head.Belegnummer);
  vlba98::strncpy2(posting.stored.OPBelegnummer, posting.given.head.OPBelegnummer);
  if (!isBlank(posting.stored.Belegnummer)) return {};
  return {ZELKERR_uzl_Belegnr, resources::kDocumentNumberMissing};
}

Refusal checkValueDate(PostingInProgress &posting) {
  const char *given = posting.given.head.Valutadatum;
  if (isBlank(given)) return {};
  const auto date = vlba98::parseDate(given);
  if (!date) return {ZELKERR_uzl_Valutadatum, resources::kValueDateInadmissible};
  vlba98::strncpy2(posting.stored.Valutadatum, vlba98::toReversed(*date).data());
  return {};
}

} // namespace

Refusal checkHead(PostingInProgress &posting) {
  // The order is part of the interface: the first check that fails names the code.
  using Check = Refusal (*)(PostingInProgress &);
  static constexpr Check checks[] = {checkBatch,       checkDocumentDate, checkLineCount,     replaceOpeningAccounts,
                                     checkPaymentSlip, registerDocument,  convertAccounts,    checkSplitShape,
                                     checkPaymentTerm, checkCurrency,     checkFirstAccounts, takeDocumentNumbers,
                                     checkValueDate};
  return firstRefusal(checks, posting);
}

} // namespace postings
