#include "vlfn98/terms.h"

#include <algorithm>
#include <cstring>

#include "store/typed.h"
#include "vlba98/text.h"

using namespace vldb98;

namespace vlfn98 {

std::string storedShortName(const char *given) {
  std::string name = given ? given : "";
  // What is cut off may have stood after a blank.
  for (size_t width : {name.size(), sizeof(ZAHLZIEL::Kuerzel) - 1}) {
    name.resize(std::min(name.size(), width));
    vlba98::KillWhiteSpaces(name.data());
    name.resize(std::strlen(name.c_str()));
  }
  return name;
}

bool IsZahlziel(Store &store, int32_t number) {
  return exists<ZAHLZIEL>(store, number);
}

std::optional<vlba98::Date> dueDate(const ZAHLZIEL &term, const vlba98::Date &from) {
  auto due = vlba98::addDays(from, term.Zahltage);
  if (due) due = vlba98::addMonths(*due, term.MonatePlus);
  if (!due || term.TagInMonat <= 0) return due;
  auto dayIn = [&](const vlba98::Date &month) {
    return std::min<int>(term.TagInMonat, vlba98::daysInMonth(month.year, month.month));
  };
  if (term.MonatePlus <= 0 && due->day > dayIn(*due)) due = vlba98::addMonths(*due, 1);
  if (due) due->day = dayIn(*due);
  return due;
}

void ErmittleZahlungsziel(Store &store, int32_t number, const vlba98::Date &from, char (&due)[7]) {
  due[0] = 0;
  const auto term = number != 0 ? find<ZAHLZIEL>(store, number) : std::nullopt;
  if (const auto day = term ? dueDate(*term, from) : std::nullopt)
    std::memcpy(due, vlba98::toReversed(*day).data(), sizeof due);
}

} // namespace vlfn98
