// Due dates: a table of the calendar's corners, and a count day by day.
#include "vlfn98/terms.h"

#include "base/random.h"
#include "support/books.h"

namespace test {
namespace {

using namespace vldb98;
using vlba98::Date;

std::string shown(const std::optional<Date> &day) {
  return day ? vlba98::toIso(*day).data() : "none";
}

ZAHLZIEL term(int16_t days, int16_t months, int16_t dayOfMonth) {
  ZAHLZIEL result{};
  result.Zahltage = days;
  result.MonatePlus = months;
  result.TagInMonat = dayOfMonth;
  return result;
}

TEST(DueDate, AtTheCornersOfTheCalendar) {
  const struct {
    Date from;
    int16_t days, months, dayOfMonth;
    const char *due;
  } rows[] = {
      {{2026, 1, 21}, 0, 0, 0, "2026-01-21"},   {{2026, 1, 21}, 30, 0, 0, "2026-02-20"},
      {{2024, 2, 1}, 28, 0, 0, "2024-02-29"},   {{2023, 2, 1}, 28, 0, 0, "2023-03-01"},
      {{2023, 12, 31}, 60, 0, 0, "2024-02-29"}, {{2026, 1, 31}, 0, 1, 0, "2026-02-28"},
      {{2024, 1, 31}, 0, 1, 0, "2024-02-29"},   {{2024, 2, 29}, 0, 12, 0, "2025-02-28"},
      {{2026, 1, 30}, 1, 1, 0, "2026-02-28"},   {{2026, 3, 10}, 0, 1, 15, "2026-04-15"},
      {{2026, 3, 15}, 0, 1, 15, "2026-04-15"},  {{2026, 3, 16}, 0, 1, 15, "2026-04-15"},
      {{2026, 3, 15}, 0, 0, 15, "2026-03-15"},  {{2026, 3, 16}, 0, 0, 15, "2026-04-15"},
      {{2026, 1, 1}, 0, 0, 31, "2026-01-31"},   {{2026, 4, 30}, 0, 0, 31, "2026-04-30"},
      {{2026, 1, 31}, 0, 1, 31, "2026-02-28"},  {{2026, 1, 31}, 1, 0, 31, "2026-02-28"},
      {{2026, 1, 31}, 0, 0, 30, "2026-02-28"},  {{2024, 1, 31}, 0, 0, 29, "2024-02-29"},
      {{2026, 12, 31}, 0, 0, 1, "2027-01-01"},  {{2026, 12, 15}, 999, 99, 31, "2037-12-31"},
      {{2079, 12, 31}, 0, 0, 31, "2079-12-31"}, {{2079, 12, 31}, 1, 0, 0, "none"},
      {{2079, 12, 31}, 0, 1, 0, "none"},        {{2079, 12, 31}, 0, 0, 30, "none"},
      {{2079, 12, 1}, 30, 0, 0, "2079-12-31"},
  };
  for (const auto &row : rows)
    EXPECT_EQ(shown(vlfn98::dueDate(term(row.days, row.months, row.dayOfMonth), row.from)), row.due)
        << shown(row.from) << " " << row.days << " " << row.months << " " << row.dayOfMonth;
}

/// A calendar that knows only how to go on by a day.
struct Count {
  int year, month, day;
  int length() const {
    static constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return lengths[month - 1] + (month == 2 && year % 4 == 0); // 2000 was a leap year
  }
  void next() {
    if (++day <= length()) return;
    day = 1;
    if (++month <= 12) return;
    month = 1;
    ++year;
  }
};

std::string counted(const Date &from, int days, int months, int dayOfMonth) {
  Count at{from.year, from.month, from.day};
  for (int i = 0; i < days; ++i)
    at.next();
  if (months > 0) {
    const int kept = at.day;
    for (int firsts = 0; firsts < months; firsts += at.day == 1)
      at.next();
    while (at.day < kept && at.day < at.length())
      at.next();
  }
  if (months > 0 && dayOfMonth > 0) at.day = std::min(dayOfMonth, at.length());
  while (dayOfMonth > 0 && at.day != std::min(dayOfMonth, at.length()))
    at.next();
  return at.year > 2079 ? "none" : shown(Date{at.year, at.month, at.day});
}

TEST(DueDate, AgreesWithACountOfDays) {
  auto random = generator();
  for (int i = 0; i < 5'000; ++i) {
    const auto from = vlba98::fromDayNumber(vlba98::toDayNumber({1980, 1, 1}) + int64_t(random() % 36'525));
    ASSERT_TRUE(from);
    const int days = random() % 2 ? int(random() % 100) : 0, months = random() % 2 ? int(random() % 100) : 0,
              dayOfMonth = random() % 3 ? int(random() % 32) : 0;
    ASSERT_EQ(shown(vlfn98::dueDate(term(int16_t(days), int16_t(months), int16_t(dayOfMonth)), *from)),
              counted(*from, days, months, dayOfMonth))
        << shown(from) << " " << days << " " << months << " " << dayOfMonth;
  }
}

TEST_F(Books, DueDatesOfThePaymentTerms) {
  auto store = session();
  const struct {
    uint16_t client;
    int32_t number;
    Date from;
    const char *due;
    bool exists;
  } rows[] = {{1, 1, {2026, 1, 21}, "460121", true},  {1, 2, {2026, 1, 31}, "460302", true},
              {1, 5, {2026, 12, 10}, "470115", true}, {1, 0, {2026, 1, 21}, "", false},
              {1, 6, {2026, 1, 21}, "", false},       {1, -1, {2026, 1, 21}, "", false},
              {2, 3, {2026, 2, 3}, "460228", true},   {2, 5, {2026, 2, 3}, "", false},
              {1, 2, {2079, 12, 15}, "", true}};
  for (const auto &row : rows) {
    SCOPED_TRACE("client " + std::to_string(row.client) + " term " + std::to_string(row.number));
    uint8_t found = 0;
    ASSERT_TRUE(store->SetzeFista(row.client, found) && found);
    char due[7] = "alt";
    vlfn98::ErmittleZahlungsziel(*store, row.number, row.from, due);
    EXPECT_STREQ(due, row.due);
    EXPECT_EQ(vlfn98::IsZahlziel(*store, row.number), row.exists);
  }
}

} // namespace
} // namespace test
