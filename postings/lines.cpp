// The checks of a single line: accounts, amounts, tax, currency, due date.
#include <cstring>

#include "postings/insertion.h"
#include "postings/sides.h"
#include "vlba98/geld.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"
#include "vlfn98/terms.h"

using namespace vldb98;

namespace postings {
namespace {

constexpr int32_t kRundenAufFuenf = 0x2000; // of the client's posting options

int64_t value(const char *text) {
  return vlba98::parseGeld(text).value_or(0);
}

bool hasKey(int16_t key) {
  return (key & ~vlfn98::kOhneSteuerschluessel) != 0;
}

} // namespace

ZelkResult Insertion::refuseAmount(ZelkResult code, const Line &line, std::string_view name) {
  return refuse(code, resources::kIstUnzulaessig, line, name);
}

ZelkResult Insertion::checkAccountsDiffer(Line &line) {
  return std::strcmp(line.request.Sollkonto, line.request.Habenkonto) != 0
             ? ZELK_OK
             : refuse(ZELKERR_uzl_Kontonr, resources::kKontonummernGleich, line);
}

ZelkResult Insertion::checkAccounts(Line &line) {
  for (const Side *side : kSides) {
    const Account *&account = side == &kDebit ? line.debit : line.credit;
    if (ZelkResult result = lookUp(line.request.*side->account, account); result != ZELK_OK) return result;
    if (account->kind == 0 || account->kind != side->kind(line.request) || account->locked)
      return refuse(side->wrongCode, side->wrongMessage, line);
  }
  return currenciesAgree(*line.debit, *line.credit)
             ? ZELK_OK
             : refuse(ZELKERR_nicht_eindeutige_Waehrung, resources::kWaehrungNichtEindeutig, line);
}

ZelkResult Insertion::checkAmounts(Line &line) {
  struct Amount {
    char *text;
    size_t width;
    ZelkResult code;
    const char *name;
  };
  for (const Amount &amount :
       {Amount{line.request.Bruttobetrag, vlba98::geldWidth, ZELKERR_uzl_Bruttobetrag, "Bruttobetrag"},
        {line.request.Steuersatz, vlba98::satzWidth, ZELKERR_uzl_Steuersatz, "Steuersatz"},
        {line.request.Steuerbetrag, vlba98::geldWidth, ZELKERR_uzl_Steuerbetrag, "Steuerbetrag"}})
    if (bool rate = amount.width == vlba98::satzWidth;
        !vlba98::IsGeld(amount.text, int(amount.width), 1, !rate, amount.text))
      return refuseAmount(amount.code, line, amount.name);
  return ZELK_OK;
}

ZelkResult Insertion::checkCostTemplate(Line &line) {
  if (line.request.Kostenschablone == 0) return ZELK_OK;
  return vlfn98::IsKoscha(store_, line.request.Kostenschablone)
             ? ZELK_OK
             : refuse(ZELKERR_uzl_Koscha, resources::kKostenschabloneFehlt, line);
}

ZelkResult Insertion::checkOwnAmounts(Line &line) {
  const OwnAmounts *own = ownAmounts(line);
  if (!own) return ZELK_OK;
  if (!vlba98::IsGeld(own->Brutto, int(vlba98::geldWidth), 1, 1, line.ownGrossText))
    return refuseAmount(ZELKERR_uzl_Bruttobetrag, line, "Bruttobetrag (EW)");
  if (!vlba98::IsGeld(own->Steuer, int(vlba98::geldWidth), 1, 1, line.ownTaxText))
    return refuseAmount(ZELKERR_uzl_Steuerbetrag, line, "Steuerbetrag (EW)");
  return ZELK_OK;
}

const OwnAmounts *Insertion::ownAmounts(const Line &line) const {
  if (!foreign_ || !construction_) return nullptr;
  auto own = construction_->ownAmounts.find(line.index);
  if (own == construction_->ownAmounts.end()) return nullptr;
  bool given = !vlba98::trimmed(own->second.Brutto).empty() || !vlba98::trimmed(own->second.Steuer).empty();
  return given ? &own->second : nullptr;
}

ZelkResult Insertion::checkOpeningWithoutTax(Line &line) {
  bool taxed = !vlba98::IsNull(line.request.Steuersatz) || !vlba98::IsNull(line.request.Steuerbetrag);
  return posting_.Eroeffnung && taxed ? refuse(ZELKERR_uzl_Steuerbetrag, resources::kEroeffnungSteuerfrei, line)
                                      : ZELK_OK;
}

ZelkResult Insertion::chooseTax(Line &line) {
  int16_t debit = line.debit->taxKey(), credit = line.credit->taxKey();
  bool swissRules = false;
  // Only where a debtor's side bears the key does the client matter.
  if ((line.debit->kind == ZELK_DEBITOR && hasKey(debit)) || (line.credit->kind == ZELK_DEBITOR && hasKey(credit))) {
    const FISTA_EXT *client = extension();
    if (!client) return ZELKERR_Datenbank;
    swissRules = client->Schweiz;
  }
  line.tax = vlfn98::chooseTaxKey(debit, credit, line.debit->kind, line.credit->kind, swissRules);
  bool taxGiven = !vlba98::IsNull(line.request.Steuerbetrag);
  if (line.tax.key != 0 || (!taxGiven && vlba98::IsNull(line.request.Steuersatz))) return ZELK_OK;
  return refuse(taxGiven ? ZELKERR_uzl_Steuerbetrag : ZELKERR_uzl_Steuersatz, resources::kKeineSteuer, line);
}

ZelkResult Insertion::readTaxKey(Line &line) {
  if (line.tax.key == 0) return ZELK_OK;
  int64_t rate = value(line.request.Steuersatz), tax = value(line.request.Steuerbetrag);
  if (rate == 0) {
    // Such a posting is free of tax, whatever the account's key.
    line.tax = {};
    return tax == 0 ? ZELK_OK : refuse(ZELKERR_uzl_Steuerbetrag, resources::kSteuerbetragPasstNicht, line);
  }
  const auto key = vlfn98::GetSteusa(store_, line.tax.key, posting_.Belegdatum, rate);
  if (!key) return refuseAmount(ZELKERR_uzl_Steuersatz, line, "Steuersatz");
  line.taxKey = *key;
  if (tax != 0 && !vlfn98::passtZumSteuersatz(value(line.request.Bruttobetrag), rate, tax, line.taxKey))
    return refuse(ZELKERR_uzl_Steuerbetrag, resources::kSteuerbetragPasstNicht, line);
  return ZELK_OK;
}

ZelkResult Insertion::reckonAmounts(Line &line) {
  int64_t tax = value(line.request.Steuerbetrag);
  bool roundToFive = foreign_ && (store_.HoleFista().Optionen & kRundenAufFuenf);
  auto reckoned =
      vlfn98::rechneSteuer(value(line.request.Bruttobetrag), value(line.request.Steuersatz),
                           tax ? std::optional(tax) : std::nullopt, line.tax.key ? &line.taxKey : nullptr, roundToFive);
  if (!reckoned) return refuseAmount(ZELKERR_uzl_Steuerbetrag, line, "Steuerbetrag");
  line.amounts = *reckoned;
  if (!reckoned->keyKept) line.tax = {};
  return ZELK_OK;
}

ZelkResult Insertion::rate(vlfn98::Wechselkurs &rate) {
  if (!rate_) {
    rate_ = vlfn98::HoleKurs(store_, posting_.Waehrung, posting_.Belegdatum);
    if (!rate_) {
      vlba98::strncpy2(missingRate_.currency, posting_.Waehrung);
      vlba98::strncpy2(missingRate_.day, posting_.Belegdatum);
      return refuse(ZELKERR_kein_Kurs, resources::kKursFehlt, currencyAndDay(missingRate_));
    }
    vlfn98::formatKurs(rate_->millionths, posting_.Kurs);
    posting_.Einheiten = rate_->units;
  }
  rate = *rate_;
  return ZELK_OK;
}

ZelkResult Insertion::convertAmounts(Line &line) {
  int64_t gross = value(line.request.Bruttobetrag);
  line.ownGross = gross;
  line.ownNet = line.amounts.net;
  if (!foreign_) return ZELK_OK;
  if (ownAmounts(line)) {
    line.ownGross = value(line.ownGrossText);
    int64_t tax = value(line.ownTaxText), rate = value(line.request.Steuersatz);
    const STEUSA *key = line.tax.key ? &line.taxKey : nullptr;
    auto reckoned = vlfn98::rechneSteuer(line.ownGross, rate, tax ? std::optional(tax) : std::nullopt, key, false);
    bool fits = tax == 0 || (key && vlfn98::passtZumSteuersatz(line.ownGross, rate, tax, *key));
    if (!reckoned || !fits) return refuseAmount(ZELKERR_uzl_Steuerbetrag, line, "Steuerbetrag (EW)");
    line.ownNet = reckoned->net;
    return ZELK_OK;
  }
  vlfn98::Wechselkurs stored;
  if (ZelkResult result = rate(stored); result != ZELK_OK) return result;
  auto ownGross = vlfn98::toOwnCurrency(gross, stored), ownTax = vlfn98::toOwnCurrency(line.amounts.tax, stored);
  if (!ownGross || !ownTax) return refuseAmount(ZELKERR_uzl_Bruttobetrag, line, "Bruttobetrag (EW)");
  line.ownGross = *ownGross;
  line.ownNet = *ownGross - *ownTax;
  return ZELK_OK;
}

ZelkResult Insertion::reckonDueDate(Line &line) {
  // The account's own term holds for invoices: a debtor in debit, a creditor in credit. A payment is not due.
  int32_t term = request_.Zahlungsziel;
  if (term == 0 && line.debit->kind == ZELK_DEBITOR) term = line.debit->term;
  if (term == 0 && line.credit->kind == ZELK_KREDITOR) term = line.credit->term;
  if (term == 0) return ZELK_OK;
  auto known = dueDates_.find(term);
  if (known == dueDates_.end()) {
    char due[7];
    auto from = vlba98::fromReversed(*posting_.Valutadatum ? posting_.Valutadatum : posting_.Belegdatum);
    vlfn98::ErmittleZahlungsziel(store_, term, *from, due);
    known = dueDates_.emplace(term, due).first;
  }
  vlba98::strncpy2(line.stored.Faelligkeit, known->second);
  return ZELK_OK;
}

ZelkResult Insertion::addLine(Line &line) {
  SPLIT &stored = line.stored;
  const ZELK_TEILBUCHUNG &request = line.request;
  stored.Sollart = vlfn98::ZELKKontoArtToKontoArt(request.Sollart);
  stored.Habenart = vlfn98::ZELKKontoArtToKontoArt(request.Habenart);
  vlba98::strncpy2(stored.Sollkonto, request.Sollkonto);
  vlba98::strncpy2(stored.Habenkonto, request.Habenkonto);
  vlba98::formatGeld(line.ownGross, stored.Brutto);
  vlba98::formatGeld(line.ownNet, stored.Netto);
  vlba98::formatGeld(line.ownGross - line.ownNet, stored.Steuerbetrag);
  vlba98::formatGeld(line.amounts.rate, stored.Steuersatz, vlba98::satzWidth);
  stored.Steuerschluessel = line.tax.key;
  if (line.tax.key != 0) vlba98::strncpy2(stored.Schluesselsatz, line.taxKey.Satz);
  stored.Steuerseite = int16_t(line.tax.side);
  if (foreign_) {
    vlba98::strncpy2(stored.BruttoFW, request.Bruttobetrag);
    vlba98::formatGeld(line.amounts.tax, stored.SteuerFW);
  }
  vlba98::strncpy2(stored.Text, request.Text);
  vlba98::strncpy2(stored.Text2, request.Text2);
  stored.Kostenschablone = request.Kostenschablone;
  if (construction_) {
    auto valueOf = [&](const std::map<int, int32_t> &values) {
      auto it = values.find(int(line.index) + 1);
      return it == values.end() ? 0 : it->second;
    };
    stored.Bewegungsart = valueOf(construction_->movementKinds);
    stored.DMSNr = valueOf(construction_->documents);
  }
  return store_.MemInsertSplit(stored) ? ZELK_OK : ZELKERR_Datenbank;
}

} // namespace postings
