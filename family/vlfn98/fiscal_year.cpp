#include "vlfn98/fiscal_year.h"

#include <algorithm>
#include <cstring>

#include "records/keys.h"
#include "vlba98/text.h"

using namespace vldb98;
using vlba98::Datum;

namespace vlfn98 {
namespace {

// The store delivers real days only.
Datum day(const char (&reversed)[7]) {
  return vlba98::fromReversed(reversed).value_or(Datum{vlba98::firstYear, 1, 1});
}

// The first day of a month of the year, counting from 1; the day after the range of all dates behind it.
Datum firstDay(const GESCHAEFTSJAHR &year, int month) {
  Datum begin = day(year.Beginn);
  if (month == 1) return begin;
  return vlba98::addMonths({begin.year, begin.month, 1}, month - 1).value_or(Datum{vlba98::lastYear + 1, 1, 1});
}

} // namespace

int HoleGeschaeftsjahr(Store &store, const Datum &wanted, GESCHAEFTSJAHR &year, uint8_t &found) {
  DATENBANK record{};
  auto reversed = vlba98::toReversed(wanted);
  if (!store.GetLeExt(record, KeyBuilder().text(reversed.data(), 6), found, fileNumber(kGeschaeftsjahr, 1))) return 0;
  // Between two fiscal years may lie days of none.
  found = found && wanted <= day(record.Geschaeftsjahr.Ende);
  if (found) year = record.Geschaeftsjahr;
  return 1;
}

int HoleGeschaeftsjahr(Store &store, int calendarYear, GESCHAEFTSJAHR &year, uint8_t &found) {
  DATENBANK record{};
  found = 0;
  if (calendarYear < vlba98::firstYear || calendarYear > vlba98::lastYear) return 1;
  if (!store.UsedGet(record, KeyBuilder().number(int16_t(calendarYear)), found, kGeschaeftsjahr)) return 0;
  if (found) year = record.Geschaeftsjahr;
  return 1;
}

int OeffneJahr(Store &store, int calendarYear, uint8_t &exists) {
  char code[3];
  exists = 0;
  if (!vlba98::itotwo(calendarYear - vlba98::firstYear, code)) return 1;
  if (!store.ExistiertJahr(code, exists)) return 0;
  return !exists || std::strcmp(store.HoleOpenJahr(), code) == 0 || store.SetzeOpenJahr(code);
}

int BuchungsMonat(const GESCHAEFTSJAHR &year, const Datum &wanted) {
  Datum begin = day(year.Beginn);
  return std::clamp(kMonate * (wanted.year - begin.year) + wanted.month - begin.month + 1, 1, kMonate);
}

Zeitspanne TageDerMonate(const GESCHAEFTSJAHR &year, int first, int last) {
  Datum end = day(year.Ende);
  if (last < kMonate) {
    Datum next = firstDay(year, last + 1);
    end = std::min(end, vlba98::addDays(next, -1).value_or(end));
  }
  return {firstDay(year, first), end};
}

} // namespace vlfn98
