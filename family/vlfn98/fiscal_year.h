/// Fiscal years and their months. A fiscal year bears the calendar year in which it begins.
#pragma once

#include <cstdint>
#include <optional>

#include "store/store.h"
#include "vlba98/date.h"

namespace vlfn98 {

constexpr int kMonths = 12;

/// The fiscal year of the open client that a day lies in.
std::optional<vldb98::GESCHAEFTSJAHR> findFiscalYear(vldb98::Store &store, const vlba98::Date &day);

/// The fiscal year of the open client that bears a calendar year.
std::optional<vldb98::GESCHAEFTSJAHR> findFiscalYear(vldb98::Store &store, int calendarYear);

/// Makes a fiscal year that was read the open one.
void openFiscalYear(vldb98::Store &store, const vldb98::GESCHAEFTSJAHR &year);

/// Makes the fiscal year that bears a calendar year the open one. \return false when there is none
bool OeffneJahr(vldb98::Store &store, int calendarYear);

/// The month of a fiscal year that a day of it lies in: 1 for the calendar month in which the year begins. What lies
/// after the twelfth month of a longer year belongs to the twelfth, since accounts have values of twelve months.
int fiscalMonth(const vldb98::GESCHAEFTSJAHR &year, const vlba98::Date &day);

/// Days, the first and the last included; none where the first lies after the last.
struct DateRange {
  vlba98::Date first, last;
};

/// The days of months first to last (1 to 12) of a fiscal year; none where a short year has no such month.
DateRange daysOfMonths(const vldb98::GESCHAEFTSJAHR &year, int first, int last);

} // namespace vlfn98
