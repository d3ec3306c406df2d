#include "vlba98/datum.h"

#include "vlba98/text.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace vlba98 {
namespace {

constexpr int centuryTurn = firstYear % 100; ///< two-digit calendar years from here on belong to the 20th century

std::chrono::year_month_day toChrono(const Datum &datum) {
  return std::chrono::year(datum.year) / datum.month / datum.day;
}

std::optional<Datum> checked(int year, int month, int day) {
  const Datum datum{year, month, day};
  return isValid(datum) ? std::optional(datum) : std::nullopt;
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
template <std::size_t N> std::array<char, N> write(const char (&picture)[N], const Datum &datum) {
  std::array<char, N> text{};
  if (!isValid(datum)) return text;
  int day = datum.day, month = datum.month, year = datum.year, code = datum.year - firstYear;
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

bool isValid(const Datum &datum) {
  return datum.year >= firstYear && datum.year <= lastYear && datum.day >= 1 &&
         datum.day <= daysInMonth(datum.year, datum.month);
}

std::int32_t toDayNumber(const Datum &datum) {
  return static_cast<std::int32_t>(std::chrono::sys_days(toChrono(datum)).time_since_epoch().count());
}

std::optional<Datum> fromDayNumber(std::int64_t dayNumber) {
  using namespace std::chrono;
  constexpr sys_days first = year(firstYear) / January / 1, last = year(lastYear) / December / 31;
  if (dayNumber < first.time_since_epoch().count() || dayNumber > last.time_since_epoch().count()) return std::nullopt;
  const year_month_day date{sys_days(days(static_cast<int>(dayNumber)))};
  return Datum{static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
               static_cast<int>(static_cast<unsigned>(date.day()))};
}

std::optional<Datum> addMonths(const Datum &datum, int months) {
  if (!isValid(datum)) return std::nullopt;
  const std::int64_t total = std::int64_t{datum.year} * 12 + (datum.month - 1) + months;
  if (total < firstYear * 12 || total >= (lastYear + 1) * 12) return std::nullopt;
  const int year = static_cast<int>(total / 12), month = static_cast<int>(total % 12) + 1;
  return Datum{year, month, std::min(datum.day, daysInMonth(year, month))};
}

std::optional<Datum> addDays(const Datum &datum, int days) {
  if (!isValid(datum)) return std::nullopt;
  return fromDayNumber(std::int64_t{toDayNumber(datum)} + days);
}

std::optional<Datum> parseDatum(std::string_view external) {
  if (const auto pairs = readPairs(external))
    return checked(fromTwoDigitYear(pairs->third), pairs->second, pairs->first);

  if ((external.size() != 8 && external.size() != 10) || external[2] != '.' || external[5] != '.') return std::nullopt;
  const std::string_view day = external.substr(0, 2), month = external.substr(3, 2), year = external.substr(6);
  if (!IsZahl(day) || !IsZahl(month) || !IsZahl(year)) return std::nullopt;
  return checked(year.size() == 2 ? fromTwoDigitYear(number(year)) : number(year), number(month), number(day));
}

DatumText6 toInternal(const Datum &datum) {
  return write("TTMMCC", datum);
}
DatumText6 toReversed(const Datum &datum) {
  return write("CCMMTT", datum);
}
DatumText6 toExternal6(const Datum &datum) {
  return write("TTMMJJ", datum);
}
DatumText10 toDisplay(const Datum &datum) {
  return write("TT.MM.JJJJ", datum);
}
DatumText10 toIso(const Datum &datum) {
  return write("JJJJ-MM-TT", datum);
}

std::optional<Datum> fromInternal(std::string_view text) {
  const auto pairs = readPairs(text);
  return pairs ? checked(firstYear + pairs->third, pairs->second, pairs->first) : std::nullopt;
}

std::optional<Datum> fromReversed(std::string_view text) {
  const auto pairs = readPairs(text);
  return pairs ? checked(firstYear + pairs->first, pairs->second, pairs->third) : std::nullopt;
}

std::optional<Datum> fromIso(std::string_view text) {
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
  const auto datum = fromReversed(reversed);
  const auto next = datum ? addMonths(*datum, 1) : std::nullopt;
  if (!next) return false;
  std::memcpy(reversed, toReversed(*next).data(), sizeof(DatumText6));
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
