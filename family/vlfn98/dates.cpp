#include "vlfn98/dates.h"

#include <chrono>

#include "vlba98/date.h"
#include "vlba98/text.h"

namespace vlfn98 {

bool MakeDatum(char (&text)[11], std::string_view internal) {
  constexpr size_t kDisplayWidth = sizeof text - 1;
  auto day = internal.size() == kDisplayWidth ? vlba98::parseDate(internal) : vlba98::fromInternal(internal);
  vlba98::strncpy2(text, day ? vlba98::toDisplay(*day).data() : "");
  return day.has_value();
}

bool IsDatumLong(std::string_view text) {
  if (text.size() != 10 || text[2] != '.' || text[5] != '.') return false;
  const int day = vlba98::twotoi(&text[0]), month = vlba98::twotoi(&text[3]);
  const int century = vlba98::twotoi(&text[6]), year = vlba98::twotoi(&text[8]);
  if (day < 0 || month < 0 || century < 0 || year < 0 || century + year == 0) return false;
  return std::chrono::year_month_day(std::chrono::year(century * 100 + year), std::chrono::month(unsigned(month)),
                                     std::chrono::day(unsigned(day)))
      .ok();
}

} // namespace vlfn98
