/// Calendar days and their texts.
///
/// A fiscal-year code is the year minus 1980, so the range of all dates is 1980 to 2079. The texts of a day, shown for
/// 21 November 2026 (year code 46):
///
///     internal   TTMMJJ      "211146"      JJ is the year code
///     reversed   JJMMTT      "461121"      sorts by time; ReverseDatum leads from one to the other
///     external6  TTMMJJ      "211126"      at the boundary: JJ is the calendar year, 80 to 99 = 1980 to 1999,
///                                          00 to 79 = 2000 to 2079
///     display    TT.MM.JJJJ  "21.11.2026"
///     ISO 8601   JJJJ-MM-TT  "2026-11-21"
#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vlba98 {

inline constexpr int firstYear = 1980;
inline constexpr int lastYear = 2079;

/// A day of the Gregorian calendar. The functions below deliver only real days from 1980 to 2079.
struct Date {
  int year;  ///< 1980 to 2079
  int month; ///< 1 to 12
  int day;   ///< 1 to daysInMonth(year, month)
  auto operator<=>(const Date &) const = default;
};

/// Zero-terminated date texts of six and of ten characters; data() is the C text.
using DateText6 = std::array<char, 7>;
using DateText10 = std::array<char, 11>;

bool isLeapYear(int year);

/// 28 to 31; 0 for a month outside 1 to 12.
int daysInMonth(int year, int month);

/// True for a real calendar day from 1980 to 2079.
bool isValid(const Date &date);

/// Days since 1 January 1970, negative before it. The date must be valid.
/// \par Source
/// The standard library's std::chrono::sys_days.
std::int32_t toDayNumber(const Date &date);

/// The day of a day number; nothing outside 1980 to 2079.
std::optional<Date> fromDayNumber(std::int64_t dayNumber);

/// The same day n months on (back when negative); where that month is shorter, its last day: 31 January plus one month
/// is 28 or 29 February. Nothing when the date is invalid or the result lies outside 1980 to 2079.
std::optional<Date> addMonths(const Date &date, int months);

/// The day n days on (back when negative). Nothing when the date is invalid or the result lies outside 1980 to 2079.
std::optional<Date> addDays(const Date &date, int days);

/// A date as a user or an outside program writes it: "TTMMJJ", "TT.MM.JJ" or "TT.MM.JJJJ". JJ is a calendar year as in
/// external6. Nothing for any other text, one-digit days and months among them, or no calendar day.
std::optional<Date> parseDate(std::string_view external);

// The texts of a date: an invalid date gives the empty text, and a text that is not exactly such a date gives nothing.

DateText6 toInternal(const Date &date);
DateText6 toReversed(const Date &date);
DateText6 toExternal6(const Date &date);
DateText10 toDisplay(const Date &date);
DateText10 toIso(const Date &date);

std::optional<Date> fromInternal(std::string_view text);
std::optional<Date> fromReversed(std::string_view text);
std::optional<Date> fromIso(std::string_view text);

/// Swaps day and year of a six-character text in place, TTMMJJ to JJMMTT and back: its own inverse. The characters are
/// not looked at. \return false, and the text unchanged, when it has not six characters (an empty date stays empty)
bool ReverseDatum(char *text);

/// Steps a reversed date text (JJMMTT with year code) by one month, in place, as addMonths does: the day is kept, cut
/// to the end of a shorter month. \return false, and the text unchanged, when it is no such date or leaves the range
bool IncMonat(char *reversed);

/// A stored date (reversed) as callers get it (external6); empty for an empty or unreadable one.
void reversedToExternal6(char (&external)[7], std::string_view reversed);

/// The calendar year of a year code of two digits; 0 for any other text, the empty one included.
int yearOfCode(const char *code);

} // namespace vlba98
