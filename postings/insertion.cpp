#include "postings/insertion.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "frame/program.h"
#include "postings/sides.h"
#include "store/typed.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"
#include "vlfn98/client.h"
#include "vlfn98/documents.h"
#include "vlfn98/terms.h"

using namespace vldb98;

namespace postings {
namespace {

bool isEmpty(const char *text) {
  return vlba98::trimmed(text).empty();
}
bool isPersonal(int32_t kind) {
  return kind == ZELK_KREDITOR || kind == ZELK_DEBITOR;
}

} // namespace

ZelkResult Insertion::refuse(ZelkResult code, int message, std::string_view fill, int line) {
  refusal_ = {code, message, std::string(fill), lines_.size() > 1 ? line : -1};
  return code;
}

ZelkResult Insertion::run() {
  using Check = ZelkResult (Insertion::*)();
  // The order is part of the interface: the first check that fails names the code.
  static constexpr Check checks[] = {&Insertion::checkBatch,
                                     &Insertion::checkDocumentDate,
                                     &Insertion::checkLineCount,
                                     &Insertion::replaceOpeningAccounts,
                                     &Insertion::checkPaymentSlip,
                                     &Insertion::registerDocument,
                                     &Insertion::convertAccounts, // no check: for those below
                                     &Insertion::checkSplitShape,
                                     &Insertion::checkPaymentTerm,
                                     &Insertion::checkCurrency,
                                     &Insertion::checkFirstAccounts,
                                     &Insertion::readAheadOfAccounts, // no check: for those below
                                     &Insertion::checkFirstCurrencies,
                                     &Insertion::takeDocumentNumber,
                                     &Insertion::checkValueDate,
                                     &Insertion::checkLines,
                                     &Insertion::write};
  ZelkResult result = ZELKERR_Datenbank;
  try {
    if (beginReading() && readAhead()) result = ZELK_OK;
    for (Check check : checks)
      if (result == ZELK_OK) result = (this->*check)();
  } catch (const StoreFailed &) {
    result = ZELKERR_Datenbank;
  }
  return endReading() ? result : ZELKERR_Datenbank;
}

bool Insertion::beginReading() {
  if (store_.IsUsedEngineSQL()) return true;
  return reading_ = store_.Transaktion(1, 1);
}

bool Insertion::endReading() {
  return !std::exchange(reading_, false) || store_.Transaktion(2, 0);
}

ZelkResult Insertion::checkBatch() {
  DATENBANK record{};
  uint8_t found;
  if (!store_.UsedGet(record, KeyBuilder().number(request_.Stapelnummer), found, kStapel)) return ZELKERR_Datenbank;
  if (!found) return refuse(ZELKERR_uzl_Stapelnr, resources::kGibtEsNicht, "Stapel");
  if (record.Stapel.Kore) return refuse(ZELKERR_uzl_Stapelnr, resources::kKoreStapel);
  posting_.Stapel = request_.Stapelnummer;
  return ZELK_OK;
}

ZelkResult Insertion::checkDocumentDate() {
  auto date = vlba98::parseDatum(request_.Belegdatum);
  if (!date) return refuse(ZELKERR_uzl_Belegdatum, resources::kBuchungsdatumUnzulaessig);
  const std::string before = store_.HoleOpenJahr();
  if (!vlfn98::IsBuchjahr(store_, *date, frame::programSettings().noFiscalYearCheck))
    return refuse(ZELKERR_uzl_Belegdatum, resources::kBuchungsdatumUnzulaessig);
  // Of the accounts of another year nothing is known yet.
  if (before != store_.HoleOpenJahr() && !readAhead()) return ZELKERR_Datenbank;
  vlba98::strncpy2(posting_.Belegdatum, vlba98::toReversed(*date).data());
  return ZELK_OK;
}

ZelkResult Insertion::checkLineCount() {
  size_t count = size_t(std::max(request_.Teilbuchungsanzahl, 0));
  size_t inRecord = std::min(count, size_t(kRecordLines)), further = count - inRecord;
  if (count == 0 || further > (construction_ ? construction_->overflow.size() : 0))
    return refuse(ZELKERR_uzl_Teilbuchungsanzahl, resources::kTeilbuchungsanzahl);
  lines_.reserve(count);
  lines_.assign(request_.Teilbuchung, request_.Teilbuchung + inRecord);
  if (further > 0)
    lines_.insert(lines_.end(), construction_->overflow.begin(), construction_->overflow.begin() + ptrdiff_t(further));
  store_.SplitFree();
  return ZELK_OK;
}

ZelkResult Insertion::replaceOpeningAccounts() {
  posting_.Eroeffnung = request_.Eroeffnungsbuchung != 0;
  posting_.Abschluss = request_.Abschlussbuchung != 0;
  posting_.Umbuchung = request_.Umbuchung != 0;
  posting_.USTDirekt = request_.UStDirekt != 0;
  if (!posting_.Eroeffnung) return ZELK_OK;
  const FIRMENSTAMM &client = store_.HoleFista();
  for (size_t i = 0; i < lines_.size(); ++i) {
    ZELK_TEILBUCHUNG &line = lines_[i];
    bool debitEmpty = isEmpty(line.Sollkonto), creditEmpty = isEmpty(line.Habenkonto);
    if (debitEmpty == creditEmpty) return refuse(ZELKERR_uzl_Kontonr, resources::kEroeffnungEinKonto, {}, int(i));
    const Side &replaced = debitEmpty ? kDebit : kCredit, &given = debitEmpty ? kCredit : kDebit;
    int32_t kind = given.kind(line);
    const char *balanceForward = kind == ZELK_KREDITOR  ? client.VortragKred
                                 : kind == ZELK_DEBITOR ? client.VortragDebi
                                                        : client.VortragSako;
    vlba98::strncpy2(line.*replaced.account, balanceForward);
    (debitEmpty ? line.Sollart : line.Habenart) = ZELK_SACHKONTO;
  }
  return ZELK_OK;
}

ZelkResult Insertion::checkPaymentSlip() {
  if (isEmpty(request_.ESR)) return ZELK_OK;
  if (vlba98::trimmed(store_.HoleFista().Land) != "CH")
    return refuse(ZELKERR_uzl_Data, resources::kEsrNurSchweiz, request_.ESR);
  if (!vlfn98::CheckEsr(request_.ESR)) return refuse(ZELKERR_uzl_Data, resources::kEsrFalsch, request_.ESR);
  vlba98::strncpy2(posting_.ESR, request_.ESR);
  return ZELK_OK;
}

ZelkResult Insertion::registerDocument() {
  if (isEmpty(request_.DMSID)) return ZELK_OK;
  if (!endReading()) return ZELKERR_Datenbank;
  posting_.DMSNr = vlfn98::DmsInsertDmsID(store_, request_.DMSID);
  return beginReading() ? ZELK_OK : ZELKERR_Datenbank;
}

ZelkResult Insertion::convertAccounts() {
  const int length = store_.HoleFista().Kontolaenge;
  for (ZELK_TEILBUCHUNG &line : lines_)
    for (const Side *side : kSides)
      vlfn98::KonvertKonto(line.*side->account, length);
  return ZELK_OK;
}

ZelkResult Insertion::checkSplitShape() {
  if (lines_.size() == 1) return ZELK_OK;
  const ZELK_TEILBUCHUNG &first = lines_.front();
  if (isEmpty(first.Sollkonto) || isEmpty(first.Habenkonto))
    return refuse(ZELKERR_uzl_Split, resources::kSplitErsteBuchung);
  auto sameThroughout = [&](const Side &side) {
    return std::all_of(lines_.begin() + 1, lines_.end(), [&](const ZELK_TEILBUCHUNG &line) {
      return std::strcmp(line.*side.account, first.*side.account) == 0;
    });
  };
  bool sameDebit = sameThroughout(kDebit), sameCredit = sameThroughout(kCredit);
  if (!sameDebit && !sameCredit) return refuse(ZELKERR_uzl_Split, resources::kSplitEineSeite);
  // Where both sides stay the same, either counts as the split one.
  auto personalOn = [&](const Side &side) {
    return std::any_of(lines_.begin(), lines_.end(),
                       [&](const ZELK_TEILBUCHUNG &line) { return isPersonal(side.kind(line)); });
  };
  bool admissible = (sameDebit && !personalOn(kCredit)) || (sameCredit && !personalOn(kDebit));
  return admissible ? ZELK_OK : refuse(ZELKERR_uzl_Split, resources::kSplitPersonenkonto);
}

ZelkResult Insertion::checkPaymentTerm() {
  posting_.Zahlungsziel = request_.Zahlungsziel;
  if (request_.Zahlungsziel == 0) return ZELK_OK;
  return vlfn98::IsZahlziel(store_, request_.Zahlungsziel)
             ? ZELK_OK
             : refuse(ZELKERR_uzl_Zahlungsziel, resources::kZahlungszielUnzulaessig);
}

ZelkResult Insertion::checkCurrency() {
  std::string_view currency = vlba98::trimmed(request_.Waehrung);
  char upper[4] = "";
  std::transform(currency.begin(), currency.end(), upper,
                 [](char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; });
  const FIRMENSTAMM &client = store_.HoleFista();
  foreign_ = *upper && upper != vlba98::trimmed(client.Waehrung);
  if (foreign_ && frame::programSettings().basicEdition)
    return refuse(ZELKERR_uzl_Waehrung, resources::kFremdwaehrungBasis);
  bool letters = std::all_of(currency.begin(), currency.end(),
                             [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); });
  if (!letters) return refuse(ZELKERR_uzl_Waehrung, resources::kWaehrungNurBuchstaben);
  bool personal = std::any_of(lines_.begin(), lines_.end(), [](const ZELK_TEILBUCHUNG &line) {
    return isPersonal(line.Sollart) || isPersonal(line.Habenart);
  });
  if (*upper && !personal && vlba98::trimmed(client.Land) != "CH")
    return refuse(ZELKERR_uzl_Waehrung, resources::kWaehrungSachkonten);
  vlba98::strncpy2(posting_.Waehrung, upper);
  return ZELK_OK;
}

ZelkResult Insertion::lookUp(const char (&number)[8], const Account *&account) {
  auto known = accounts_.find(std::string_view(number));
  if (known == accounts_.end()) {
    DATENBANK record{};
    uint8_t found;
    int32_t table;
    if (!store_.UsedAndGetKnr(number, found, record, table)) return ZELKERR_Datenbank;
    Account read;
    if (found == ZELK_SACHKONTO) {
      read = {found, record.Sachkonto.Gesperrt != 0, record.Sachkonto.Waehrung, 0, record.Sachkonto};
    } else if (isPersonal(found)) {
      const PERSONENKONTO &personal = record.Personenkonto;
      read = {found, personal.Gesperrt != 0, personal.Waehrung, personal.Zahlungsziel, {}};
    }
    known = accounts_.emplace(number, std::move(read)).first;
  }
  account = &known->second;
  return ZELK_OK;
}

ZelkResult Insertion::checkFirstAccounts() {
  for (const Side *side : kSides) {
    const Account *account;
    if (ZelkResult result = lookUp(lines_.front().*side->account, account); result != ZELK_OK) return result;
    if (account->kind == 0) return refuse(ZELKERR_uzl_Kontonr, side->unknownMessage);
  }
  return ZELK_OK;
}

bool Insertion::currenciesAgree(const Account &debit, const Account &credit) const {
  if (!*posting_.Waehrung) return true;
  return (debit.currency.empty() || debit.currency == posting_.Waehrung) &&
         (credit.currency.empty() || credit.currency == posting_.Waehrung);
}

ZelkResult Insertion::checkFirstCurrencies() {
  const Account *debit, *credit;
  lookUp(lines_.front().Sollkonto, debit);
  lookUp(lines_.front().Habenkonto, credit);
  return currenciesAgree(*debit, *credit)
             ? ZELK_OK
             : refuse(ZELKERR_nicht_eindeutige_Waehrung, resources::kWaehrungNichtEindeutig);
}

ZelkResult Insertion::takeDocumentNumber() {
  vlba98::strncpy2(posting_.Belegnummer, request_.Belegnummer);
  vlba98::strncpy2(posting_.OPBelegnummer, request_.OPBelegnummer);
  return isEmpty(posting_.Belegnummer) ? refuse(ZELKERR_uzl_Belegnr, resources::kBelegnummerFehlt) : ZELK_OK;
}

ZelkResult Insertion::checkValueDate() {
  if (isEmpty(request_.Valutadatum)) return ZELK_OK;
  auto date = vlba98::parseDatum(request_.Valutadatum);
  if (!date) return refuse(ZELKERR_uzl_Valutadatum, resources::kValutadatumUnzulaessig);
  vlba98::strncpy2(posting_.Valutadatum, vlba98::toReversed(*date).data());
  return ZELK_OK;
}

ZelkResult Insertion::checkLines() {
  using Check = ZelkResult (Insertion::*)(Line &);
  static constexpr Check checks[] = {&Insertion::checkAccountsDiffer,
                                     &Insertion::checkAccounts,
                                     &Insertion::checkAmounts,
                                     &Insertion::checkCostTemplate,
                                     &Insertion::checkOwnAmounts,
                                     &Insertion::checkOpeningWithoutTax,
                                     &Insertion::chooseTax,
                                     &Insertion::readTaxKey,
                                     &Insertion::reckonAmounts,
                                     &Insertion::convertAmounts,
                                     &Insertion::reckonDueDate,
                                     &Insertion::addCosts,
                                     &Insertion::addLine};
  for (size_t i = 0; i < lines_.size(); ++i) {
    Line line(i, lines_[i]);
    for (Check check : checks)
      if (ZelkResult result = (this->*check)(line); result != ZELK_OK) return result;
  }
  return ZELK_OK;
}

const FISTA_EXT *Insertion::extension() {
  if (!extension_) {
    FISTA_EXT read{};
    uint8_t found;
    if (!store_.GetExtFista(read, found)) return nullptr;
    extension_ = read;
  }
  return &*extension_;
}

ZelkResult Insertion::write() {
  return endReading() && store_.InsertBat(posting_) ? ZELK_OK : ZELKERR_Datenbank;
}

} // namespace postings
