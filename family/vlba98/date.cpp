#include "vlba98/date.h"

#include "vlba98/text.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace vlba98 {
namespace {

constexpr int centuryTurn = firstYear % 100; ///< two-digit calendar years from here on belong to the 20th century

std::chrono::year_month_day toChrono(const Date &date) {
  return std::chrono::year(date.year) / date.month / date.day;
}

std::optional<Date> checked(int year, int month, int day) {
  const Date date{year, month, day};
  return isValid(date) ? std::optional(date) : std::nullopt;
}

int fromTwoDigitYear(int year) {
  return year + (year >= centuryTurn ? 1900 : 2000);
}

/// Requires digits only, at most four.
int number(std::string_view digits) {
  int value = 0;
  for (const char c : digits)
    value = value * 10 + (c - '0');
  return value;
}

struct Pairs {
  int first, second, third;
};

std::optional<Pairs> readPairs(std::string_view text) {
  if (text.size() != 6 || !IsZahl(text)) return std::nullopt;
  return Pairs{number(text.substr(0, 2)), number(text.substr(2, 2)), number(text.substr(4, 2))};
}

/// A date text, written from a picture in which T, M, J and C stand for the digits of day, month, year and year code.
template <std::size_t N> std::array<char, N> write(const char (&picture)[N], const Date &date) {
  std::array<char, N> text{};
  if (!isValid(date)) return text;
  int day = date.day, month = date.month, year = date.year, code = date.year - firstYear;
  const auto lastDigit = [](int &value) {
    const char digit = static_cast<char>('0' + value % 10);
    value /= 10;
    return digit;
  };
  for (std::size_t at = N - 1; at-- > 0;) {
    switch (picture[at]) {
    case 'T':
      text[at] = lastDigit(day);
      break;
    case 'M':
      text[at] = lastDigit(month);
      break;
    case 'J':
      text[at] = lastDigit(year);
      break;
    case 'C':
      text[at] = lastDigit(code);
      break;
    default:
      text[at] = picture[at];
    }
  }
  return text;
}

} // namespace

bool isLeapYear(int year) {
  return std::chrono::year(year).is_leap();
}

int daysInMonth(int year, int month) {
  if (month < 1 || month > 12) return 0;
  const auto last = std::chrono::year(year) / month / std::chrono::last;
  return static_cast<int>(static_cast<unsigned>(last.day()));
}

bool isValid(const Date &date) {
  return date.year >= firstYear && date.year <= lastYear && date.day >= 1 &&
         date.day <= daysInMonth(date.year, date.month);
}

std::int32_t toDayNumber(const Date &date) {
  return static_cast<std::int32_t>(std::chrono::sys_days(toChrono(date)).time_since_epoch().count());
}

std::optional<Date> fromDayNumber(std::int64_t dayNumber) {
  using namespace std::chrono;
  constexpr sys_days first = year(firstYear) / January / 1, last = year(lastYear) / December / 31;
  if (dayNumber < first.time_since_epoch().count() || dayNumber > last.time_since_epoch().count()) return std::nullopt;
  const year_month_day date{sys_days(days(static_cast<int>(dayNumber)))};
  return Date{static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
              static_cast<int>(static_cast<unsigned>(date.day()))};
}

std::optional<Date> addMonths(const Date &date, int months) {
  if (!isValid(date)) return std::nullopt;
  const std::int64_t total = std::int64_t{date.year} * 12 + (date.month - 1) + months;
  if (total < firstYear * 12 || total >= (lastYear + 1) * 12) return std::nullopt;
  const int year = static_cast<int>(total / 12), month = static_cast<int>(total % 12) + 1;
  return Date{year, month, std::min(date.day, daysInMonth(year, month))};
}

std::optional<Date> addDays(const Date &date, int days) {
  if (!isValid(date)) return std::nullopt;
  return fromDayNumber(std::int64_t{toDayNumber(date)} + days);
}

std::optional<Date> parseDate(std::string_view external) {
  if (const auto pairs = readPairs(external))
    return checked(fromTwoDigitYear(pairs->third), pairs->second, pairs->first);

  if ((external.size() != 8 && external.size() != 10) || external[2] != '.' || external[5] != '.') return std::nullopt;
  const std::string_view day = external.substr(0, 2), month = external.substr(3, 2), year = external.substr(6);
  if (!IsZahl(day) || !IsZahl(month) || !IsZahl(year)) return std::nullopt;
  return checked(year.size() == 2 ? fromTwoDigitYear(number(year)) : number(year), number(month), number(day));
}

DateText6 toInternal(const Date &date) {
  return write("TTMMCC", date);
}
DateText6 toReversed(const Date &date) {
  return write("CCMMTT", date);
}
DateText6 toExternal6(const Date &date) {
  return write("TTMMJJ", date);
}
DateText10 toDisplay(const Date &date) {
  return write("TT.MM.JJJJ", date);
}
DateText10 toIso(const Date &date) {
  return write("JJJJ-MM-TT", date);
}

std::optional<Date> fromInternal(std::string_view text) {
  const auto pairs = readPairs(text);
  return pairs ? checked(firstYear + pairs->third, pairs->second, pairs->first) : std::nullopt;
}

std::optional<Date> fromReversed(std::string_view text) {
  const auto pairs = readPairs(text);
  return pairs ? checked(firstYear + pairs->first, pairs->second, pairs->third) : std::nullopt;
}

std::optional<Date> fromIso(std::string_view text) {
  if (text.size() != 10 || text[4] != '-' || text[7] != '-') return std::nullopt;
  const std::string_view year = text.substr(0, 4), month = text.substr(5, 2), day = text.substr(8, 2);
  if (!IsZahl(year) || !IsZahl(month) || !IsZahl(day)) return std::nullopt;
  return checked(number(year), number(month), number(day));
}

bool ReverseDatum(char *text) {
  if (std::strlen(text) != 6) return false;
  std::swap_ranges(text, text + 2, text + 4);
  return true;
}

bool IncMonat(char *reversed) {
  const auto date = fromReversed(reversed);
  const auto next = date ? addMonths(*date, 1) : std::nullopt;
  if (!next) return false;
  std::memcpy(reversed, toReversed(*next).data(), sizeof(DateText6));
  return true;
}

void reversedToExternal6(char (&external)[7], std::string_view reversed) {
  auto date = fromReversed(reversed);
  strncpy2(external, date ? toExternal6(*date).data() : "");
}

int yearOfCode(const char *code) {
  int number = twotoi(code);
  return number < 0 ? 0 : firstYear + number;
}

} // namespace vlba98
