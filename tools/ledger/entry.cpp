#include "ledger/entry.h"

#include <cstring>

#include "ledger/refusal.h"
#include "vlba98/money.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"
#include "vlfn98/tax.h"

using namespace vldb98;

namespace ledger {
namespace {

bool isBlank(const char *number) {
  return vlba98::trimmed(number).empty();
}

int tableOfKind(int16_t kind) {
  return vlfn98::KzFromZELKArt(vlfn98::KontoArtToZELKKontoArt(kind));
}

/// An amount of a line.
struct Value {
  Amount amount;
  std::optional<int64_t> foreign;

  Value operator-(const Value &other) const {
    Value less{{amount.own - other.amount.own, amount.euro - other.amount.euro}, std::nullopt};
    if (foreign) less.foreign = *foreign - other.foreign.value_or(0);
    return less;
  }
};

class LineMovements {
public:
  LineMovements(Chart &chart, ChartYear &year, const BATCHBUCHUNG &posting, const SPLIT &line)
      : chart_(chart), year_(year), posting_(posting), line_(line),
        debit_(&chart.account(year, tableOfKind(line.Sollart), line.Sollkonto, "Sollkonto")),
        credit_(&chart.account(year, tableOfKind(line.Habenart), line.Habenkonto, "Habenkonto")),
        rate_(valueOf(line.Steuersatz)), inEuro_(isInEuro(posting, line)) {}

  std::vector<Movement> movements() {
    const Value gross = stored(line_.Brutto, line_.BruttoFW), tax = stored(line_.Steuerbetrag, line_.SteuerFW);
    const Value net = gross - tax;
    const auto side = vlfn98::TaxSide(line_.Steuerseite);
    if (valueOf(line_.Netto) != net.amount.own || (tax.amount.own != 0 && side == vlfn98::TaxSide::None))
      throw Refusal{"Netto- und Steuerbetrag ergeben nicht den Bruttobetrag."};
    taxOnDebit_ = side == vlfn98::TaxSide::Debit;
    const bool taxOnCredit = side == vlfn98::TaxSide::Credit;
    add(*debit_, true, taxOnDebit_ ? net : gross);
    add(*credit_, false, taxOnCredit ? net : gross);
    if (side != vlfn98::TaxSide::None && line_.Steuerschluessel != 0) addTax(gross, tax);
    addControlAccounts();
    return std::move(movements_);
  }

private:
  // An amount that comes in Euro is its own value there, not what the client's rate makes of its conversion.
  Amount valued(int64_t own, std::optional<int64_t> foreign) const {
    return inEuro_ && foreign ? Amount{own, *foreign} : chart_.valued(own);
  }

  Value stored(const char *own, const char *foreign) const {
    const std::optional<int64_t> inCurrency = *line_.BruttoFW ? std::optional(valueOf(foreign)) : std::nullopt;
    return {valued(valueOf(own), inCurrency), inCurrency};
  }

  // \param debit the side; the contra account is that of the other one
  void add(ChartAccount &account, bool debit, const Value &value) {
    movements_.push_back({&account, debit ? credit_ : debit_, debit, value.amount, value.foreign,
                          line_.Steuerschluessel, rate_, &line_});
  }

  void addTax(const Value &gross, const Value &tax) {
    // Where the gross amount holds no tax, the line has no rate of it: that of its key is the one it was accepted with.
    const bool excluded = tax.amount.own == 0 && rate_ == 0;
    const STEUSA key =
        chart_.taxKey(line_.Steuerschluessel, posting_.Belegdatum, excluded ? valueOf(line_.Schluesselsatz) : rate_);
    if (key.Art == vlfn98::kAcquisition || key.Art == vlfn98::kReverseCharge) return addTaxOwed(gross, key);
    if (tax.amount.own != 0) add(taxAccount(key, key.Steuerkonto, "Steuerkonto"), taxOnDebit_, tax);
  }

  // The recipient owes the tax and deducts it; what cannot be deducted is part of the costs.
  void addTaxOwed(const Value &gross, const STEUSA &key) {
    if (isBlank(key.Steuerkonto) && isBlank(key.Gegenkonto)) return;
    rate_ = valueOf(key.Satz);
    const auto tax = vlba98::percentOf(gross.amount.own, rate_);
    if (!tax) throw Refusal{"Der Steuerbetrag überschreitet 999.999.999,99."};
    if (*tax == 0) return;
    const auto foreignTax = gross.foreign ? vlba98::percentOf(*gross.foreign, rate_) : std::nullopt;
    const auto deductedOf = [&](int64_t amount) { return vlfn98::CalcSteuerAnteil(amount, key); };
    const Value owed{valued(*tax, foreignTax), std::nullopt};
    const Value deducted{valued(deductedOf(*tax), foreignTax ? std::optional(deductedOf(*foreignTax)) : std::nullopt),
                         std::nullopt};
    for (Movement &movement : movements_)
      movement.rate = rate_;
    add(taxAccount(key, key.Gegenkonto, "Gegenkonto"), taxOnDebit_, deducted);
    add(taxAccount(key, key.Steuerkonto, "Steuerkonto"), !taxOnDebit_, owed);
    if (deducted.amount.own != *tax) add(taxOnDebit_ ? *debit_ : *credit_, taxOnDebit_, owed - deducted);
  }

  ChartAccount &taxAccount(const STEUSA &key, const char *number, const char *name) {
    const std::string role = std::string(name) + " des Steuerschlüssels " + std::to_string(key.Schluessel);
    if (isBlank(number)) throw Refusal{"Das " + role + " fehlt."};
    return chart_.account(year_, kSachkonto, number, role.c_str());
  }

  // The general ledger balances by itself: what moves a personal account moves its control account as well.
  void addControlAccounts() {
    for (size_t i = 0, own = movements_.size(); i < own; ++i) {
      Movement control = movements_[i];
      if (control.account->table == kSachkonto) continue;
      const PERSONENKONTO personal = control.account->record.Personenkonto;
      if (isBlank(personal.Sammelkonto))
        throw Refusal{"Das Personenkonto " + std::string(vlba98::trimmed(personal.Nr)) + " hat kein Sammelkonto."};
      control.account = &chart_.account(year_, kSachkonto, personal.Sammelkonto, "Sammelkonto");
      movements_.push_back(control);
    }
  }

  Chart &chart_;
  ChartYear &year_;
  const BATCHBUCHUNG &posting_;
  const SPLIT &line_;
  ChartAccount *debit_, *credit_;
  int64_t rate_;
  bool inEuro_;
  bool taxOnDebit_ = false;
  std::vector<Movement> movements_;
};

} // namespace

int64_t valueOf(const char *money) {
  return vlba98::parseMoney(money).value_or(0);
}

bool isInEuro(const BATCHBUCHUNG &posting, const SPLIT &line) {
  return *line.BruttoFW && std::strcmp(posting.Waehrung, "EUR") == 0;
}

std::vector<Movement> movementsOf(Chart &chart, ChartYear &year, const BATCHBUCHUNG &posting, const SPLIT &line) {
  return LineMovements(chart, year, posting, line).movements();
}

} // namespace ledger
