#include "ledger/open_items.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "ledger/refusal.h"
#include "store/typed.h"
#include "vlba98/money.h"
#include "vlba98/muldiv.h"
#include "vlba98/text.h"
#include "vlfn98/currency.h"
#include "vlfn98/terms.h"

using namespace vldb98;

namespace ledger {
namespace {

constexpr int kByNumber = 9; // key of the open items: document number of the item, account

int tableOfItems(const ChartAccount &account) {
  return account.table == kDebitor ? kOPDebitor : kOPKreditor;
}
int tableOfHistory(const ChartAccount &account) {
  return account.table == kDebitor ? kHistOPDebitor : kHistOPKreditor;
}

const char *itemNumber(const BATCHBUCHUNG &posting) {
  return *posting.OPBelegnummer ? posting.OPBelegnummer : posting.Belegnummer;
}

void put(char (&money)[13], int64_t amount) {
  if (!vlba98::formatMoney(amount, money)) throw Refusal{"Der offene Posten überschreitet 999.999.999,99."};
}

bool sameSign(int64_t a, int64_t b) {
  return (a > 0) == (b > 0) && (a < 0) == (b < 0);
}

// A part of the item that was moved without its currency counts there in proportion.
int64_t inProportion(int64_t foreign, int64_t newOwn, int64_t oldOwn) {
  return vlba98::mulDiv(foreign, newOwn, oldOwn, vlba98::Rounding::halfAwayFromZero).value_or(foreign);
}

void putBlank(char (&number)[8]) {
  std::memset(number, ' ', sizeof number - 1);
  number[sizeof number - 1] = 0;
}

void putRate(char (&field)[6], int64_t rate) {
  vlba98::formatMoney(rate, field, vlba98::rateWidth);
}

void putDiscount(char (&day)[7], char (&rate)[6], int16_t days, const char (&rateOfTerm)[6], const vlba98::Date &from) {
  if (valueOf(rateOfTerm) == 0) return;
  std::memcpy(rate, rateOfTerm, sizeof rate);
  if (auto until = vlba98::addDays(from, days)) std::memcpy(day, vlba98::toReversed(*until).data(), sizeof day);
}

} // namespace

std::vector<ItemMovement> itemMovementsOf(const std::vector<Movement> &movements) {
  std::vector<ItemMovement> items;
  auto isIncome = [](const ChartAccount &account) {
    return account.table == kSachkonto && account.record.Sachkonto.GuV != 0;
  };
  for (const Movement &movement : movements) {
    if (movement.account->table == kSachkonto) continue;
    auto item = std::find_if(items.begin(), items.end(),
                             [&](const ItemMovement &one) { return one.account == movement.account; });
    if (item == items.end()) {
      item = items.emplace(item);
      item->account = movement.account;
      item->contra = movement.contra;
      item->first = movement.line;
    }
    const bool usual = movement.debit == (movement.account->table == kDebitor);
    const int64_t amount = usual ? movement.amount.own : -movement.amount.own;
    item->amount += amount;
    if (isIncome(*movement.contra)) item->discount += amount;
    if (movement.foreign) item->foreign = item->foreign.value_or(0) + (usual ? *movement.foreign : -*movement.foreign);
    if (movement.rate != 0 && std::find(item->rates.begin(), item->rates.end(), movement.rate) == item->rates.end())
      item->rates.push_back(movement.rate);
  }
  for (ItemMovement &item : items)
    if (std::none_of(movements.begin(), movements.end(), [&](const Movement &movement) {
          return movement.account == item.account && !isIncome(*movement.contra);
        }))
      item.discount = 0;
  return items;
}

void OpenItems::post(const ChartYear &year, const BATCHBUCHUNG &posting, const std::vector<ItemMovement> &movements) {
  std::vector<Change> changes;
  for (const ItemMovement &movement : movements)
    if (auto change = reckon(year, posting, movement)) changes.push_back(*change);
  for (Change &change : changes)
    write(year, change);
}

std::optional<OpenItems::Change> OpenItems::reckon(const ChartYear &year, const BATCHBUCHUNG &posting,
                                                   const ItemMovement &movement) {
  // Opening balances bring items into the client's first year only: later ones carry forward what is open already.
  if (posting.Abschluss || (posting.Eroeffnung && !chart_.isFirst(year)) || movement.amount == 0) return std::nullopt;
  const char *account = movement.account->record.Personenkonto.Nr;
  const char *number = itemNumber(posting);
  const In items{store_, fileNumber(tableOfItems(*movement.account), kByNumber)};
  const auto item = atLeast<OPBELEG>(items, number, account);
  const bool known = item && std::strcmp(item->OPBelegnummer, number) == 0 && std::strcmp(item->Konto, account) == 0;
  Change result{
      tableOfItems(*movement.account), tableOfHistory(*movement.account), item.value_or(OPBELEG{}), !known, {}};
  if (known)
    change(posting, movement, result);
  else
    result.item = created(posting, movement);
  return result;
}

OPBELEG OpenItems::created(const BATCHBUCHUNG &posting, const ItemMovement &movement) {
  const PERSONENKONTO account = movement.account->record.Personenkonto;
  OPBELEG item{};
  vlba98::strncpy2(item.Konto, account.Nr);
  vlba98::strncpy2(item.Kuerzel, account.Kuerzel);
  vlba98::strncpy2(item.Name, account.Name);
  vlba98::strncpy2(item.Belegnummer, posting.Belegnummer);
  vlba98::strncpy2(item.OPBelegnummer, itemNumber(posting));
  vlba98::strncpy2(item.Belegdatum, posting.Belegdatum);
  vlba98::strncpy2(item.Valutadatum, posting.Valutadatum);
  vlba98::strncpy2(item.Text, movement.first->Text);
  vlba98::strncpy2(item.Text2, movement.first->Text2);
  put(item.Brutto, movement.amount);
  put(item.Ausstand, movement.amount);
  if (movement.foreign) {
    vlba98::strncpy2(item.Waehrung, posting.Waehrung);
    item.Waehrungsindex = isInEuro(posting, *movement.first) ? vlfn98::kEuro : vlfn98::kOtherCurrency;
    put(item.BetragFW, *movement.foreign);
    put(item.Ausstand2, *movement.foreign);
  }
  vlba98::strncpy2(item.Gegenkonto, movement.contra->record.Sachkonto.Nr);
  item.DMSNr = posting.DMSNr ? posting.DMSNr : movement.first->DMSNr;
  putBlank(item.Skontokonto1);
  putBlank(item.Skontokonto2);
  if (movement.rates.size() > 0) putRate(item.Steuersatz1, movement.rates[0]);
  if (movement.rates.size() > 1) putRate(item.Steuersatz2, movement.rates[1]);
  item.Zahlungsziel = posting.Zahlungsziel ? posting.Zahlungsziel : account.Zahlungsziel;
  const auto from = vlba98::fromReversed(*posting.Valutadatum ? posting.Valutadatum : posting.Belegdatum);
  // What is owed the other way round, a credit note, is not due and knows no discount.
  if (movement.amount < 0) return item;
  vlba98::strncpy2(item.Faelligkeit, movement.first->Faelligkeit);
  if (const ZAHLZIEL *term = chart_.term(item.Zahlungsziel); term && from) {
    putDiscount(item.Skontodatum1, item.Skontosatz1, term->Skontotage1, term->Skontosatz1, *from);
    putDiscount(item.Skontodatum2, item.Skontosatz2, term->Skontotage2, term->Skontosatz2, *from);
    if (!*item.Faelligkeit)
      if (auto due = vlfn98::dueDate(*term, *from)) vlba98::strncpy2(item.Faelligkeit, vlba98::toReversed(*due).data());
  }
  return item;
}

void OpenItems::change(const BATCHBUCHUNG &posting, const ItemMovement &movement, Change &change) {
  OPBELEG &item = change.item;
  const int64_t gross = valueOf(item.Brutto), before = valueOf(item.Ausstand), after = before + movement.amount;
  const bool raises = sameSign(movement.amount, gross) && sameSign(movement.amount, before);
  if (*item.BetragFW) {
    const bool same = movement.foreign && std::strcmp(item.Waehrung, posting.Waehrung) == 0;
    auto moved = [&](const char *text, int64_t newOwn, int64_t oldOwn) {
      return same ? valueOf(text) + *movement.foreign : inProportion(valueOf(text), newOwn, oldOwn);
    };
    put(item.Ausstand2, moved(item.Ausstand2, after, before));
    if (raises) put(item.BetragFW, moved(item.BetragFW, gross + movement.amount, gross));
  }
  put(item.Ausstand, after);
  if (raises)
    put(item.Brutto, gross + movement.amount);
  else
    change.payment = paymentOf(posting, movement, item);
}

OPHISTORIE OpenItems::paymentOf(const BATCHBUCHUNG &posting, const ItemMovement &movement, const OPBELEG &item) {
  OPHISTORIE payment{};
  payment.OP = item;
  put(payment.Zahlung, movement.discount - movement.amount);
  if (movement.discount != 0) put(payment.Skontobetrag, -movement.discount);
  vlba98::strncpy2(payment.Zahldatum, posting.Belegdatum);
  payment.Benutzer = user_;
  vlba98::strncpy2(payment.Zahlbelegnummer, posting.Belegnummer);
  vlba98::strncpy2(payment.Zahltext, movement.first->Text);
  vlba98::strncpy2(payment.Zahltext2, movement.first->Text2);
  if (const ZAHLZIEL *term = chart_.term(item.Zahlungsziel)) payment.Zahlungsart = term->Zahlungsart;
  return payment;
}

void OpenItems::write(const ChartYear &year, Change &change) {
  const auto table = FileNumber(change.table), history = FileNumber(change.history);
  if (change.isNew) {
    change.item.Nr = nextNumber();
    insert({store_, table}, change.item);
    ++counts_.created;
    return;
  }
  makeCurrent({store_, table}, change.item);
  if (valueOf(change.item.Ausstand) == 0) {
    must(store_.Delete(table));
    ++counts_.settled;
  } else {
    update({store_, table}, change.item);
  }
  if (!change.payment) {
    ++counts_.raised;
    return;
  }
  change.payment->Zeile = greatestInHistory(change.history, change.item.Nr) + 1;
  chart_.open(year);
  insert({store_, history}, *change.payment);
  ++counts_.payments;
}

int32_t OpenItems::nextNumber() {
  if (lastNumber_ < 0) {
    lastNumber_ = 0;
    for (FileNumber table : {kOPKreditor, kOPDebitor})
      if (const auto item = last<OPBELEG>({store_, table})) lastNumber_ = std::max(lastNumber_, int32_t(item->Nr));
    for (auto &[number, year] : chart_.years()) {
      chart_.open(year);
      for (FileNumber table : {kHistOPKreditor, kHistOPDebitor})
        if (const auto payment = last<OPHISTORIE>({store_, table}))
          lastNumber_ = std::max(lastNumber_, int32_t(payment->OP.Nr));
    }
  }
  return ++lastNumber_;
}

// An item may be paid in several years.
int32_t OpenItems::greatestInHistory(int table, int32_t item) {
  int32_t greatest = 0;
  for (auto &[number, year] : chart_.years()) {
    chart_.open(year);
    const auto payment = atMost<OPHISTORIE>({store_, FileNumber(table)}, item, std::numeric_limits<int32_t>::max());
    if (payment && payment->OP.Nr == item) greatest = std::max(greatest, int32_t(payment->Zeile));
  }
  return greatest;
}

} // namespace ledger
