#include "vlfn98/fiscal_year.h"

#include <algorithm>
#include <cstring>

#include "store/typed.h"
#include "vlba98/text.h"

using namespace vldb98;
using vlba98::Date;

namespace vlfn98 {
namespace {

// The store delivers real days only.
Date day(const char (&reversed)[7]) {
  return vlba98::fromReversed(reversed).value_or(Date{vlba98::firstYear, 1, 1});
}

// The first day of a month of the year, counting from 1; the day after the range of all dates beyond it.
Date firstDay(const GESCHAEFTSJAHR &year, int month) {
  Date begin = day(year.Beginn);
  if (month == 1) return begin;
  return vlba98::addMonths({begin.year, begin.month, 1}, month - 1).value_or(Date{vlba98::lastYear + 1, 1, 1});
}

} // namespace

std::optional<GESCHAEFTSJAHR> findFiscalYear(Store &store, const Date &wanted) {
  auto year = atMost<GESCHAEFTSJAHR>({store, fileNumber(kGeschaeftsjahr, 1)}, vlba98::toReversed(wanted).data());
  // Between two fiscal years may lie days of none.
  return year && wanted <= day(year->Ende) ? year : std::nullopt;
}

std::optional<GESCHAEFTSJAHR> findFiscalYear(Store &store, int calendarYear) {
  if (calendarYear < vlba98::firstYear || calendarYear > vlba98::lastYear) return std::nullopt;
  return find<GESCHAEFTSJAHR>(store, calendarYear);
}

void openFiscalYear(Store &store, const GESCHAEFTSJAHR &year) {
  char code[3];
  must(vlba98::itotwo(year.Jahr - vlba98::firstYear, code));
  if (std::strcmp(store.HoleOpenJahr(), code) != 0) must(store.SetzeOpenJahr(code));
}

bool OeffneJahr(Store &store, int calendarYear) {
  const auto year = findFiscalYear(store, calendarYear);
  if (year) openFiscalYear(store, *year);
  return year.has_value();
}

int fiscalMonth(const GESCHAEFTSJAHR &year, const Date &wanted) {
  Date begin = day(year.Beginn);
  return std::clamp(kMonths * (wanted.year - begin.year) + wanted.month - begin.month + 1, 1, kMonths);
}

DateRange daysOfMonths(const GESCHAEFTSJAHR &year, int first, int last) {
  Date end = day(year.Ende);
  if (last < kMonths) {
    Date next = firstDay(year, last + 1);
    end = std::min(end, vlba98::addDays(next, -1).value_or(end));
  }
  return {firstDay(year, first), end};
}

} // namespace vlfn98
