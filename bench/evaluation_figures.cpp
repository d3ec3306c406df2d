// Balances through ZELK_HoleSaldo: that of the year beside bare point selects of the account, that of a day beside the
// bare sum over the entries of its month, in an account with 100,000 entries in the year.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "bare.h"
#include "books.h"
#include "figures.h"
#include "vlba98/date.h"
#include "vlba98/text.h"

namespace bench {
namespace {

using namespace vldb98;
using Clock = std::chrono::steady_clock;

constexpr int kTurns = 15, kBalances = 2000, kDayBalances = 20, kEntries = 100000;
constexpr char kAccount[] = "4000";
constexpr char kDay[] = "30.06.2026";

template <size_t N> void put(char (&field)[N], const std::string &text) {
  vlba98::strncpy2(field, text);
}

void fill() {
  auto store = books().openStore();
  require(store->Transaktion(1, 0), "entries");
  DATENBANK record{};
  uint8_t found;
  const SCHLUESSEL key = KeyBuilder().account(kAccount);
  require(store->UsedGet(record, key, found, kSachkonto) && found, "the account");
  for (KONTOWERTE *values : {&record.Sachkonto.Werte, &record.Sachkonto.EuroWerte}) {
    put(values->Eroeffnung.Soll, "000001000,00");
    for (WERTEPAAR &month : values->Monat) {
      put(month.Soll, "000830000,00");
      put(month.Haben, "000000012-50");
    }
  }
  require(store->Update(record, kSachkonto), "the account");
  record = {};
  BUCHUNGSBELEG &entry = record.Buchungsbeleg;
  put(entry.Konto, kAccount);
  vlba98::FillWithSpaces(entry.Konto);
  put(entry.Gegenkonto, "1200   ");
  put(entry.Soll, "000000100,00");
  put(entry.Haben, "000000000,00");
  put(entry.EuroSoll, "000000100,00");
  put(entry.EuroHaben, "000000000,00");
  put(entry.Text, "Wareneingang");
  for (int i = 0; i < kEntries; ++i) {
    entry.Nr = i + 1;
    put(entry.Belegnummer, "E-" + std::to_string(i));
    // They come in as the year goes on.
    put(entry.Datum, vlba98::toReversed(*vlba98::addDays({kYear, 1, 1}, int(int64_t(i) * 365 / kEntries))).data());
    require(store->Insert(record, kBuchungsbeleg), "an entry");
  }
  require(store->Transaktion(2, 0), "entries");
}

/// Microseconds of one call.
template <class Work> double microseconds(int calls, Work &&work) {
  auto begin = Clock::now();
  for (int i = 0; i < calls; ++i)
    require(work(), "a balance");
  return std::chrono::duration<double, std::micro>(Clock::now() - begin).count() / calls;
}

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + ptrdiff_t(values.size() / 2), values.end());
  return values[values.size() / 2];
}

std::string accountSelect() {
  std::string columns;
  for (const Field &field : findTable(kSachkonto)->fields)
    columns += (columns.empty() ? "\"" : ",\"") + std::string(field.name) + "\"";
  return "SELECT " + columns + " FROM Sachkonto WHERE Mandant=1 AND Jahr=2026 AND Nr=?";
}

} // namespace

Figures evaluationFigures() {
  fill();
  BareConnection connection(books().libraryFile());
  BareStatement account(connection, accountSelect());
  BareStatement sum(connection, "SELECT SUM(Soll),SUM(Haben),SUM(EuroSoll),SUM(EuroHaben) FROM Buchungsbeleg WHERE "
                                "Mandant=1 AND Jahr=2026 AND Kontotabelle=0 AND Konto=? AND Art=0 AND Datum>=? AND "
                                "Datum<=?");
  const std::string_view number = kAccount, first = "2026-06-01", last = "2026-06-30";
  char balance[16], euro[16];
  std::vector<double> balances, select, dayBalance, monthSum, ratios, dayRatios;
  for (int turn = 0; turn < kTurns; ++turn) {
    balances.push_back(microseconds(kBalances, [&] {
      return ZELK_HoleSaldo(1, kAccount, ZELK_SACHKONTO, 0, 1, balance, euro, nullptr, 0, nullptr) == ZELK_OK;
    }));
    select.push_back(microseconds(kBalances, [&] { return account.run(number); }));
    dayBalance.push_back(microseconds(kDayBalances, [&] {
      return ZELK_HoleSaldo(1, kAccount, ZELK_SACHKONTO, 0, 1, balance, euro, kDay, 0, nullptr) == ZELK_OK;
    }));
    monthSum.push_back(microseconds(kDayBalances, [&] { return sum.run(number, first, last); }));
    ratios.push_back(balances.back() / select.back());
    dayRatios.push_back(dayBalance.back() / monthSum.back());
  }
  std::printf("balance of an account: median %.1f us, bare point select %.1f us; on a day, %d entries in the year: "
              "%.1f us, bare sum over the month %.1f us\n",
              median(balances), median(select), kEntries, median(dayBalance), median(monthSum));
  return {{"ZELK_HoleSaldo / bare point select", median(ratios), Bound::AtMost, 3},
          {"ZELK_HoleSaldo on a day / bare sum of the month", median(dayRatios), Bound::AtMost, 2}};
}

} // namespace bench
