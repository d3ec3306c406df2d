#include "ledger/chart.h"

#include <algorithm>
#include <cstring>

#include "ledger/refusal.h"
#include "store/typed.h"
#include "vlba98/encoding.h"
#include "vlba98/money.h"
#include "vlba98/muldiv.h"
#include "vlba98/text.h"
#include "vlfn98/costs.h"
#include "vlfn98/currency.h"
#include "vlfn98/fiscal_year.h"
#include "vlfn98/tax.h"

using namespace vldb98;

namespace ledger {
namespace {

std::string utf8(const char *text) {
  return vlba98::toUtf8(vlba98::trimmed(text));
}

auto &fieldOf(KONTOWERTE &values, EntryKind kind, int month, bool debit) {
  WERTEPAAR &pair = kind == EntryKind::Opening   ? values.Eroeffnung
                    : kind == EntryKind::Closing ? values.Abschluss
                                                 : values.Monat[month - 1];
  return debit ? pair.Soll : pair.Haben;
}

std::string nameOf(const ChartAccount &account) {
  return "Konto " + utf8(account.record.Sachkonto.Nr); // all account records begin with the number
}

} // namespace

std::string displayed(const char *reversedDate) {
  auto day = vlba98::fromReversed(reversedDate);
  return day ? vlba98::toDisplay(*day).data() : reversedDate;
}

Chart::Chart(Store &store) : store_(store) {
  const FIRMENSTAMM &client = store.HoleFista();
  uint8_t found;
  must(store.GetExtFista(extension_, found));
  if (!client.Euro) {
    euroRate_ = vlfn98::parseRate(client.Eurokurs).value_or(0);
    if (euroRate_ <= 0) throw Refusal{"Der Mandant hat keinen Eurokurs."};
  }
  char first[3];
  must(store.HoleMinJahr(first));
  firstYear_ = vlba98::yearOfCode(first);
  forEach<GESCHAEFTSJAHR>(store, [&](const GESCHAEFTSJAHR &record) {
    ChartYear &year = years_[record.Jahr];
    year.record = record;
    must(vlba98::itotwo(year.record.Jahr - vlba98::firstYear, year.code));
  });
}

ChartYear &Chart::yearOf(const char *reversedDate) {
  for (auto &[number, year] : years_) {
    if (std::strcmp(reversedDate, year.record.Beginn) < 0 || std::strcmp(year.record.Ende, reversedDate) < 0) continue;
    if (year.record.Abgeschlossen) throw Refusal{"Das Geschäftsjahr " + std::to_string(number) + " ist abgeschlossen."};
    return year;
  }
  throw Refusal{"Zum Belegdatum " + displayed(reversedDate) + " gibt es kein Geschäftsjahr."};
}

void Chart::open(const ChartYear &year) {
  if (std::strcmp(store_.HoleOpenJahr(), year.code) != 0) must(store_.SetzeOpenJahr(year.code));
}

int32_t Chart::nextEntry(ChartYear &year) {
  if (year.lastEntry < 0) {
    open(year);
    const auto greatest = last<BUCHUNGSBELEG>(store_);
    year.lastEntry = greatest ? greatest->Nr : 0;
  }
  return ++year.lastEntry;
}

ChartAccount &Chart::account(ChartYear &year, int table, const char *number, const char *role) {
  auto [known, fresh] = year.accounts.try_emplace({table, number});
  ChartAccount &account = known->second;
  if (fresh) {
    open(year);
    account.table = table;
    const auto record = find<DATENBANK>({store_, FileNumber(table)}, number);
    if (record) {
      account.record = *record;
    } else {
      year.accounts.erase(known);
      throw Refusal{std::string(role) + " " + utf8(number) + " gibt es im Geschäftsjahr " +
                    std::to_string(year.record.Jahr) + " nicht."};
    }
  }
  if (table == kSachkonto ? account.record.Sachkonto.Gesperrt : account.record.Personenkonto.Gesperrt)
    throw Refusal{std::string(role) + " " + utf8(number) + " ist im Geschäftsjahr " + std::to_string(year.record.Jahr) +
                  " gesperrt."};
  return account;
}

CostCentre &Chart::centre(ChartYear &year, int dimension, const char *number) {
  auto [known, fresh] = year.centres.try_emplace({dimension, number});
  if (fresh) {
    open(year);
    const auto record = vlfn98::IsKostenstelle(store_, number, dimension);
    if (!record) {
      year.centres.erase(known);
      throw Refusal{"Kostenstelle " + utf8(number) + " gibt es im Geschäftsjahr " + std::to_string(year.record.Jahr) +
                    " nicht."};
    }
    known->second.record = *record;
  }
  return known->second;
}

const STEUSA &Chart::taxKey(int16_t key, const char *reversedDate, int64_t rate) {
  auto [known, fresh] = taxKeys_.try_emplace({key, reversedDate, rate});
  if (fresh) {
    const auto record = vlfn98::GetSteusa(store_, key, reversedDate, rate);
    if (record) {
      known->second = *record;
    } else {
      taxKeys_.erase(known);
      throw Refusal{"Der Steuerschlüssel " + std::to_string(key) + " hat am " + displayed(reversedDate) +
                    " nicht den Steuersatz der Buchung."};
    }
  }
  return known->second;
}

const ZAHLZIEL *Chart::term(int32_t number) {
  if (number == 0) return nullptr;
  auto [known, fresh] = terms_.try_emplace(number);
  if (fresh) {
    if (const auto record = find<ZAHLZIEL>(store_, number)) known->second = *record;
  }
  return known->second.Nr ? &known->second : nullptr;
}

Amount Chart::valued(int64_t own) const {
  if (euroRate_ == 0) return {own, own};
  constexpr int64_t millionths = 1'000'000;
  auto euro = vlba98::mulDiv(own, millionths, euroRate_, vlba98::Rounding::halfAwayFromZero);
  if (!euro || *euro > vlba98::maxMoney || *euro < -vlba98::maxMoney)
    throw Refusal{"Der Betrag in Euro überschreitet 999.999.999,99."};
  return {own, *euro};
}

int Chart::monthOf(const ChartYear &year, const char *reversedDate) {
  const auto day = vlba98::fromReversed(reversedDate);
  if (!day) throw StoreFailed();
  return vlfn98::fiscalMonth(year.record, *day);
}

void Chart::add(MoneyText &sum, int64_t amount, const std::string &of) {
  if (amount == 0) return;
  const std::string former = sum;
  if (!vlba98::formatMoney(vlba98::parseMoney(sum).value_or(0) + amount, sum))
    throw Refusal{of + ": der Wert überschreitet 999.999.999,99."};
  former_.emplace_back(&sum, former);
}

void Chart::takeBack() {
  for (; !former_.empty(); former_.pop_back())
    vlba98::strncpy2(*former_.back().first, former_.back().second);
}

void Chart::move(ChartAccount &account, const ChartYear &year, EntryKind kind, const char *reversedDate, bool debit,
                 const Amount &amount) {
  int month = monthOf(year, reversedDate);
  auto addTo = [&](auto &record) {
    add(fieldOf(record.Werte, kind, month, debit), amount.own, nameOf(account));
    add(fieldOf(record.EuroWerte, kind, month, debit), amount.euro, nameOf(account));
  };
  if (account.table == kSachkonto)
    addTo(account.record.Sachkonto);
  else
    addTo(account.record.Personenkonto);
  account.moved = true;
}

void Chart::moveCosts(CostCentre &centre, const ChartYear &year, const char *reversedDate, const Amount &amount) {
  int month = monthOf(year, reversedDate);
  const std::string name = "Kostenstelle " + utf8(centre.record.Nr);
  add(centre.record.Kosten[month - 1], amount.own, name);
  add(centre.record.EuroKosten[month - 1], amount.euro, name);
  centre.moved = true;
}

void Chart::write() {
  auto update = [&](DATENBANK &record, int table) {
    store_.setCurrent(record, FileNumber(table));
    must(store_.Update(record, FileNumber(table)));
  };
  for (auto &[number, year] : years_) {
    open(year);
    for (auto &[key, account] : year.accounts)
      if (account.moved) update(account.record, account.table);
    for (auto &[key, centre] : year.centres)
      if (centre.moved) {
        DATENBANK record{};
        record.Kost = centre.record;
        update(record, kKost);
      }
  }
}

} // namespace ledger
