#include "postings/insertion.h"

#include <algorithm>
#include <cstring>

#include "frame/lifecycle.h"
#include "frame/messages.h"
#include "vlba98/geld.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"
#include "vlfn98/documents.h"

using namespace vldb98;

namespace postings {
namespace {

constexpr int kMaxLines = 10;

bool isEmpty(const char *text) {
  return vlba98::trimmed(text).empty();
}
bool isPersonal(int32_t kind) {
  return kind == ZELK_KREDITOR || kind == ZELK_DEBITOR;
}

// One side of a posting line, so that debit and credit need no code of their own.
struct Side {
  char (ZELK_TEILBUCHUNG::*account)[8];
  size_t kindOffset;  // lines are packed: a pointer to the member would have to be aligned
  int unknownMessage; // of the first look at the accounts
  ZelkResult wrongCode;
  int wrongMessage;

  int32_t kind(const ZELK_TEILBUCHUNG &line) const {
    int32_t value;
    std::memcpy(&value, reinterpret_cast<const char *>(&line) + kindOffset, sizeof value);
    return value;
  }
};

constexpr Side kDebit{&ZELK_TEILBUCHUNG::Sollkonto, offsetof(ZELK_TEILBUCHUNG, Sollart),
                      resources::kSollkontonummerUnzulaessig, ZELKERR_uzl_Sollkontonr, resources::kSollkontoFalsch};
constexpr Side kCredit{&ZELK_TEILBUCHUNG::Habenkonto, offsetof(ZELK_TEILBUCHUNG, Habenart),
                       resources::kHabenkontonummerUnzulaessig, ZELKERR_uzl_Habenkontonr, resources::kHabenkontoFalsch};
constexpr const Side *kSides[] = {&kDebit, &kCredit};

struct Amount {
  char *text;
  int width;
  ZelkResult code;
  const char *name;
};

} // namespace

ZelkResult Insertion::refuse(ZelkResult code, int message, std::string_view fill, int line) const {
  return frame::refuse(context_, code, message, fill, request_.Teilbuchungsanzahl > 1 ? line : -1);
}

ZelkResult Insertion::run() {
  using Check = ZelkResult (Insertion::*)();
  // The order is part of the interface: the first check that fails names the code.
  static constexpr Check checks[] = {&Insertion::checkBatch,         &Insertion::checkDocumentDate,
                                     &Insertion::checkLineCount,     &Insertion::replaceOpeningAccounts,
                                     &Insertion::checkPaymentSlip,   &Insertion::registerDocument,
                                     &Insertion::checkSplitShape,    &Insertion::checkPaymentTerm,
                                     &Insertion::checkCurrency,      &Insertion::checkFirstAccounts,
                                     &Insertion::takeDocumentNumber, &Insertion::checkValueDate,
                                     &Insertion::checkLines,         &Insertion::write};
  for (Check check : checks)
    if (ZelkResult result = (this->*check)(); result != ZELK_OK) return result;
  return ZELK_OK;
}

ZelkResult Insertion::checkBatch() {
  DATENBANK record{};
  uint8_t found;
  if (!store_.UsedGet(record, KeyBuilder().number(request_.Stapelnummer), found, kStapel, ZELK_ENG_DEFAULT))
    return ZELKERR_Datenbank;
  if (!found) return refuse(ZELKERR_uzl_Stapelnr, resources::kGibtEsNicht, "Stapel");
  if (record.Stapel.Kore) return refuse(ZELKERR_uzl_Stapelnr, resources::kKoreStapel);
  posting_.Stapel = request_.Stapelnummer;
  return ZELK_OK;
}

ZelkResult Insertion::checkDocumentDate() {
  auto date = vlba98::parseDatum(request_.Belegdatum);
  if (!date) return refuse(ZELKERR_uzl_Belegdatum, resources::kBuchungsdatumUnzulaessig);
  switch (vlfn98::IsBuchjahr(store_, *date, frame::programSettings().noFiscalYearCheck)) {
  case vlfn98::BookableYear::StoreFailed:
    return ZELKERR_Datenbank;
  case vlfn98::BookableYear::No:
    return refuse(ZELKERR_uzl_Belegdatum, resources::kBuchungsdatumUnzulaessig);
  case vlfn98::BookableYear::Yes:
    break;
  }
  vlba98::strncpy2(posting_.Belegdatum, vlba98::toReversed(*date).data());
  return ZELK_OK;
}

ZelkResult Insertion::checkLineCount() {
  if (request_.Teilbuchungsanzahl < 1 || request_.Teilbuchungsanzahl > kMaxLines)
    return refuse(ZELKERR_uzl_Teilbuchungsanzahl, resources::kTeilbuchungsanzahl);
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
  for (int i = 0; i < request_.Teilbuchungsanzahl; ++i) {
    ZELK_TEILBUCHUNG &line = request_.Teilbuchung[i];
    bool debitEmpty = isEmpty(line.Sollkonto), creditEmpty = isEmpty(line.Habenkonto);
    if (debitEmpty == creditEmpty) return refuse(ZELKERR_uzl_Kontonr, resources::kEroeffnungEinKonto, {}, i);
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
  int32_t number;
  if (!vlfn98::DmsInsertDmsID(store_, request_.DMSID, number)) return ZELKERR_Datenbank;
  posting_.DMSNr = number;
  return ZELK_OK;
}

ZelkResult Insertion::checkSplitShape() {
  int count = request_.Teilbuchungsanzahl;
  if (count == 1) return ZELK_OK;
  const ZELK_TEILBUCHUNG *lines = request_.Teilbuchung;
  if (isEmpty(lines[0].Sollkonto) || isEmpty(lines[0].Habenkonto))
    return refuse(ZELKERR_uzl_Split, resources::kSplitErsteBuchung);
  auto sameThroughout = [&](const Side &side) {
    return std::all_of(lines + 1, lines + count, [&](const ZELK_TEILBUCHUNG &line) {
      return vlba98::trimmed(line.*side.account) == vlba98::trimmed(lines[0].*side.account);
    });
  };
  bool sameDebit = sameThroughout(kDebit), sameCredit = sameThroughout(kCredit);
  if (!sameDebit && !sameCredit) return refuse(ZELKERR_uzl_Split, resources::kSplitEineSeite);
  // Where both sides stay the same, either counts as the split one.
  auto personalOn = [&](const Side &side) {
    return std::any_of(lines, lines + count, [&](const ZELK_TEILBUCHUNG &line) { return isPersonal(side.kind(line)); });
  };
  bool admissible = (sameDebit && !personalOn(kCredit)) || (sameCredit && !personalOn(kDebit));
  return admissible ? ZELK_OK : refuse(ZELKERR_uzl_Split, resources::kSplitPersonenkonto);
}

ZelkResult Insertion::checkPaymentTerm() {
  posting_.Zahlungsziel = request_.Zahlungsziel;
  if (request_.Zahlungsziel == 0) return ZELK_OK;
  uint8_t exists;
  if (!vlfn98::IsZahlziel(store_, request_.Zahlungsziel, exists)) return ZELKERR_Datenbank;
  return exists ? ZELK_OK : refuse(ZELKERR_uzl_Zahlungsziel, resources::kZahlungszielUnzulaessig);
}

ZelkResult Insertion::checkCurrency() {
  std::string_view currency = vlba98::trimmed(request_.Waehrung);
  bool letters = std::all_of(currency.begin(), currency.end(),
                             [](char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); });
  if (!letters) return refuse(ZELKERR_uzl_Waehrung, resources::kWaehrungNurBuchstaben);
  char upper[4] = "";
  std::transform(currency.begin(), currency.end(), upper, [](char c) { return char(c & ~0x20); });
  if (*upper && upper != vlba98::trimmed(store_.HoleFista().Waehrung))
    return refuse(ZELKERR_uzl_Waehrung, resources::kFremdwaehrungBasis);
  return ZELK_OK;
}

ZelkResult Insertion::lookUpAccount(const char (&account)[8], int32_t kind, bool &valid) {
  DATENBANK record{};
  uint8_t found;
  int32_t table;
  if (!store_.UsedAndGetKnr(account, found, record, table)) return ZELKERR_Datenbank;
  bool known = found == ZELK_SACHKONTO || found == ZELK_KREDITOR || found == ZELK_DEBITOR;
  bool locked = known && (found == ZELK_SACHKONTO ? record.Sachkonto.Gesperrt : record.Personenkonto.Gesperrt);
  valid = kind == 0 ? known : known && found == kind && !locked;
  return ZELK_OK;
}

ZelkResult Insertion::checkFirstAccounts() {
  int length = store_.HoleFista().Kontolaenge;
  for (int i = 0; i < request_.Teilbuchungsanzahl; ++i)
    for (const Side *side : kSides)
      vlfn98::KonvertKonto(request_.Teilbuchung[i].*side->account, length);
  for (const Side *side : kSides) {
    bool valid = false;
    if (ZelkResult result = lookUpAccount(request_.Teilbuchung[0].*side->account, 0, valid); result != ZELK_OK)
      return result;
    if (!valid) return refuse(ZELKERR_uzl_Kontonr, side->unknownMessage);
  }
  return ZELK_OK;
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
  for (int i = 0; i < request_.Teilbuchungsanzahl; ++i)
    if (ZelkResult result = checkLine(i); result != ZELK_OK) return result;
  return ZELK_OK;
}

ZelkResult Insertion::checkLine(int index) {
  ZELK_TEILBUCHUNG &line = request_.Teilbuchung[index];
  if (std::strcmp(line.Sollkonto, line.Habenkonto) == 0)
    return refuse(ZELKERR_uzl_Kontonr, resources::kKontonummernGleich, {}, index);
  for (const Side *side : kSides) {
    bool valid = false;
    // Kind 0 stands for "not looked at" below, and is no kind of an account here.
    int32_t kind = side->kind(line) ? side->kind(line) : -1;
    if (ZelkResult result = lookUpAccount(line.*side->account, kind, valid); result != ZELK_OK) return result;
    if (!valid) return refuse(side->wrongCode, side->wrongMessage, {}, index);
  }
  const Amount amounts[] = {{line.Bruttobetrag, int(vlba98::geldWidth), ZELKERR_uzl_Bruttobetrag, "Bruttobetrag"},
                            {line.Steuersatz, int(vlba98::satzWidth), ZELKERR_uzl_Steuersatz, "Steuersatz"},
                            {line.Steuerbetrag, int(vlba98::geldWidth), ZELKERR_uzl_Steuerbetrag, "Steuerbetrag"}};
  for (const Amount &amount : amounts)
    if (bool rate = amount.width == int(vlba98::satzWidth);
        !vlba98::IsGeld(amount.text, amount.width, 1, !rate, amount.text))
      return refuse(amount.code, resources::kIstUnzulaessig, amount.name, index);
  if (line.Kostenschablone != 0) return refuse(ZELKERR_uzl_Koscha, resources::kKostenschabloneFehlt, {}, index);
  bool rateGiven = !vlba98::IsNull(line.Steuersatz), taxGiven = !vlba98::IsNull(line.Steuerbetrag);
  if (posting_.Eroeffnung && (rateGiven || taxGiven))
    return refuse(ZELKERR_uzl_Steuerbetrag, resources::kEroeffnungSteuerfrei, {}, index);
  // Postings are tax-free so far: the rate 0 clears the tax keys of the accounts, and any other rate has none to go by.
  if (rateGiven || taxGiven)
    return refuse(taxGiven ? ZELKERR_uzl_Steuerbetrag : ZELKERR_uzl_Steuersatz, resources::kKeineSteuer, {}, index);

  SPLIT stored{};
  stored.Sollart = vlfn98::ZELKKontoArtToKontoArt(line.Sollart);
  stored.Habenart = vlfn98::ZELKKontoArtToKontoArt(line.Habenart);
  vlba98::strncpy2(stored.Sollkonto, line.Sollkonto);
  vlba98::strncpy2(stored.Habenkonto, line.Habenkonto);
  vlba98::strncpy2(stored.Brutto, line.Bruttobetrag);
  vlba98::strncpy2(stored.Steuersatz, line.Steuersatz);
  vlba98::strncpy2(stored.Steuerbetrag, line.Steuerbetrag);
  vlba98::strncpy2(stored.Text, line.Text);
  vlba98::strncpy2(stored.Text2, line.Text2);
  return store_.MemInsertSplit(stored) ? ZELK_OK : ZELKERR_Datenbank;
}

ZelkResult Insertion::write() {
  return store_.InsertBat(posting_) ? ZELK_OK : ZELKERR_Datenbank;
}

} // namespace postings
