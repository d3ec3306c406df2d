#include "ledger/entry.h"

#include "ledger/refusal.h"
#include "vlba98/geld.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"
#include "vlfn98/tax.h"

using namespace vldb98;

namespace ledger {
namespace {

enum TaxKind : int16_t { kSteuerfrei = 0, kErwerb = 3, kReverseCharge = 4 };

bool isBlank(const char *number) {
  return vlba98::trimmed(number).empty();
}

int tableOfKind(int16_t kind) {
  return vlfn98::KzFromZELKArt(vlfn98::KontoArtToZELKKontoArt(kind));
}

class Line {
public:
  Line(Chart &chart, Year &year, const BATCHBUCHUNG &posting, const SPLIT &line)
      : chart_(chart), year_(year), posting_(posting), line_(line),
        debit_(&chart.account(year, tableOfKind(line.Sollart), line.Sollkonto, "Sollkonto")),
        credit_(&chart.account(year, tableOfKind(line.Habenart), line.Habenkonto, "Habenkonto")),
        rate_(valueOf(line.Steuersatz)) {}

  std::vector<Movement> movements() {
    const int64_t gross = valueOf(line_.Brutto), net = valueOf(line_.Netto), tax = valueOf(line_.Steuerbetrag);
    std::optional<int64_t> foreignGross, foreignTax;
    if (*line_.BruttoFW) {
      foreignGross = valueOf(line_.BruttoFW);
      foreignTax = valueOf(line_.SteuerFW);
    }
    const auto side = vlfn98::Steuerseite(line_.Steuerseite);
    if (net + tax != gross || (tax != 0 && side == vlfn98::Steuerseite::Keine))
      throw Refusal{"Netto- und Steuerbetrag ergeben nicht den Bruttobetrag."};
    std::optional<int64_t> foreignNet;
    if (foreignGross) foreignNet = *foreignGross - *foreignTax;
    taxOnDebit_ = side == vlfn98::Steuerseite::Soll;
    const bool taxOnCredit = side == vlfn98::Steuerseite::Haben;
    add(*debit_, true, taxOnDebit_ ? net : gross, taxOnDebit_ ? foreignNet : foreignGross);
    add(*credit_, false, taxOnCredit ? net : gross, taxOnCredit ? foreignNet : foreignGross);
    if (side != vlfn98::Steuerseite::Keine && line_.Steuerschluessel != 0) addTax(gross, tax, foreignTax);
    addControlAccounts();
    return std::move(movements_);
  }

private:
  // \param debit the side; the contra account is that of the other one
  void add(Account &account, bool debit, int64_t amount, std::optional<int64_t> foreign) {
    movements_.push_back(
        {&account, debit ? credit_ : debit_, debit, amount, foreign, line_.Steuerschluessel, rate_, &line_});
  }

  void addTax(int64_t gross, int64_t tax, std::optional<int64_t> foreignTax) {
    const bool reckoned = tax == 0 && rate_ == 0; // where the gross amount holds no tax its rate is not kept
    const STEUSA key = chart_.taxKey(line_.Steuerschluessel, posting_.Belegdatum, reckoned ? -1 : rate_);
    if (key.Art == kErwerb || key.Art == kReverseCharge) return addTaxOwed(gross, key);
    if (tax != 0) add(taxAccount(key, key.Steuerkonto, "Steuerkonto"), taxOnDebit_, tax, foreignTax);
  }

  // The recipient owes the tax and deducts it; what cannot be deducted is part of the costs.
  void addTaxOwed(int64_t gross, const STEUSA &key) {
    if (isBlank(key.Steuerkonto) && isBlank(key.Gegenkonto)) return;
    const auto owed = vlba98::percentOf(gross, valueOf(key.Satz));
    if (!owed) throw Refusal{"Der Steuerbetrag überschreitet 999.999.999,99."};
    if (*owed == 0) return;
    const int64_t deducted = vlfn98::CalcSteuerAnteil(*owed, key);
    rate_ = valueOf(key.Satz);
    for (Movement &movement : movements_)
      movement.rate = rate_;
    add(taxAccount(key, key.Gegenkonto, "Gegenkonto"), taxOnDebit_, deducted, std::nullopt);
    add(taxAccount(key, key.Steuerkonto, "Steuerkonto"), !taxOnDebit_, *owed, std::nullopt);
    if (deducted != *owed) add(taxOnDebit_ ? *debit_ : *credit_, taxOnDebit_, *owed - deducted, std::nullopt);
  }

  Account &taxAccount(const STEUSA &key, const char *number, const char *name) {
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
  Year &year_;
  const BATCHBUCHUNG &posting_;
  const SPLIT &line_;
  Account *debit_, *credit_;
  int64_t rate_;
  bool taxOnDebit_ = false;
  std::vector<Movement> movements_;
};

} // namespace

int64_t valueOf(const char *money) {
  return vlba98::parseGeld(money).value_or(0);
}

std::vector<Movement> movementsOf(Chart &chart, Year &year, const BATCHBUCHUNG &posting, const SPLIT &line) {
  return Line(chart, year, posting, line).movements();
}

} // namespace ledger
