#include "postings/fields.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "vlba98/datum.h"
#include "vlba98/text.h"

namespace postings {
namespace {

using frame::Parameter;

enum class Place : uint8_t { Header, Line };

struct Field {
  const char *label;
  bool text;
  uint16_t width;  // bytes
  uint16_t single; // offset in ZELK_BUCHUNG
  Place place;
  uint16_t split;            // offset in ZELK_SPLITBUCHUNG or ZELK_TEILBUCHUNG
  bool printed = true;       // of a single posting
  bool checkedBySelf = true; // else the split posting that it becomes is
};

#define NUMBER(label, member, place, record)                                                                           \
  Field {                                                                                                              \
    label, false, 4, offsetof(ZELK_BUCHUNG, member), place, offsetof(record, member)                                   \
  }
#define TEXT(label, member, place, record, ...)                                                                        \
  Field {                                                                                                              \
    label, true, sizeof(ZELK_BUCHUNG::member), offsetof(ZELK_BUCHUNG, member), place,                                  \
        offsetof(record, member) __VA_OPT__(, ) __VA_ARGS__                                                            \
  }
#define HEADER Place::Header, ZELK_SPLITBUCHUNG
#define LINE Place::Line, ZELK_TEILBUCHUNG
#define EXPAND(macro, ...) macro(__VA_ARGS__)

// In the order in which a single posting is printed and checked.
constexpr Field kFields[] = {
    EXPAND(NUMBER, "Mandantennummer:", Mandantennummer, HEADER),
    EXPAND(NUMBER, "Stapelnummer:", Stapelnummer, HEADER),
    EXPAND(NUMBER, "Kostenschablone:", Kostenschablone, LINE),
    EXPAND(NUMBER, "Zahlungsziel:", Zahlungsziel, HEADER),
    EXPAND(NUMBER, "Eröffnungsbuchung:", Eroeffnungsbuchung, HEADER),
    EXPAND(NUMBER, "Abschlussbuchung:", Abschlussbuchung, HEADER),
    EXPAND(NUMBER, "Sollart:", Sollart, LINE),
    EXPAND(NUMBER, "Habenart:", Habenart, LINE),
    EXPAND(NUMBER, "USt-Direkt:", UStDirekt, HEADER),
    EXPAND(NUMBER, "Umbuchung:", Umbuchung, HEADER),
    EXPAND(TEXT, "Belegdatum:", Belegdatum, HEADER),
    EXPAND(TEXT, "Belegnummer:", Belegnummer, HEADER),
    EXPAND(TEXT, "Text:", Text, LINE),
    EXPAND(TEXT, "Text 2:", Text2, LINE, false),
    EXPAND(TEXT, "Sollkonto:", Sollkonto, LINE),
    EXPAND(TEXT, "Habenkonto:", Habenkonto, LINE),
    EXPAND(TEXT, "Bruttobetrag:", Bruttobetrag, LINE),
    EXPAND(TEXT, "Steuersatz:", Steuersatz, LINE),
    EXPAND(TEXT, "Steuerbetrag:", Steuerbetrag, LINE),
    EXPAND(TEXT, "OP-Belegnummer:", OPBelegnummer, HEADER),
    EXPAND(TEXT, "Valutadatum:", Valutadatum, HEADER),
    EXPAND(TEXT, "Währung:", Waehrung, HEADER),
    EXPAND(TEXT, "ESR:", ESR, HEADER),
    EXPAND(TEXT, "DMS-ID:", DMSID, HEADER, true, false),
};

constexpr size_t countOf(Place place) {
  return size_t(
      std::count_if(std::begin(kFields), std::end(kFields), [=](const Field &f) { return f.place == place; }));
}

// The fields of a place in the order of its record.
template <Place place> constexpr auto inRecordOrder() {
  std::array<Field, countOf(place)> fields{};
  std::copy_if(std::begin(kFields), std::end(kFields), fields.begin(), [](const Field &f) { return f.place == place; });
  std::sort(fields.begin(), fields.end(), [](const Field &a, const Field &b) { return a.split < b.split; });
  return fields;
}
constexpr auto kHeaderFields = inRecordOrder<Place::Header>();
constexpr auto kLineFields = inRecordOrder<Place::Line>();

const Field &singleField(size_t offset) {
  return *std::find_if(std::begin(kFields), std::end(kFields), [=](const Field &f) { return f.single == offset; });
}

Parameter parameter(const Field &field, const char *at) {
  if (field.text) return {field.label, Parameter::Kind::Field, field.width, 0, at};
  int32_t value;
  std::memcpy(&value, at, sizeof value);
  return frame::number(field.label, value);
}

} // namespace

std::vector<Parameter> parametersOf(const ZELK_BUCHUNG &posting) {
  const char *bytes = reinterpret_cast<const char *>(&posting);
  std::vector<Parameter> parameters;
  parameters.reserve(std::size(kFields) + 1);
  for (const Field &field : kFields) {
    parameters.push_back(parameter(field, bytes + field.single));
    parameters.back().printed = field.printed;
    parameters.back().checked = field.checkedBySelf;
  }
  return parameters;
}

std::vector<Parameter> parametersOf(const ZELK_SPLITBUCHUNG &posting, std::span<const ZELK_TEILBUCHUNG> further) {
  const char *bytes = reinterpret_cast<const char *>(&posting);
  size_t inRecord = size_t(std::clamp(posting.Teilbuchungsanzahl, 0, int32_t(std::size(posting.Teilbuchung))));
  std::vector<Parameter> parameters;
  parameters.reserve(kHeaderFields.size() + 2 + kLineFields.size() * (inRecord + further.size()));
  for (const Field &field : kHeaderFields) {
    if (field.split == offsetof(ZELK_SPLITBUCHUNG, UStDirekt))
      parameters.push_back(frame::number("Teilbuchungsanzahl:", posting.Teilbuchungsanzahl));
    parameters.push_back(parameter(field, bytes + field.split));
  }
  auto addLine = [&](const ZELK_TEILBUCHUNG &line) {
    for (const Field &field : kLineFields)
      parameters.push_back(parameter(field, reinterpret_cast<const char *>(&line) + field.split));
  };
  for (size_t i = 0; i < inRecord; ++i)
    addLine(posting.Teilbuchung[i]);
  for (const ZELK_TEILBUCHUNG &line : further)
    addLine(line);
  return parameters;
}

ZELK_SPLITBUCHUNG toSplit(const ZELK_BUCHUNG &posting) {
  ZELK_SPLITBUCHUNG split{};
  split.Teilbuchungsanzahl = 1;
  const char *from = reinterpret_cast<const char *>(&posting);
  char *header = reinterpret_cast<char *>(&split), *line = reinterpret_cast<char *>(&split.Teilbuchung[0]);
  for (const Field &field : kFields)
    std::memcpy((field.place == Place::Header ? header : line) + field.split, from + field.single, field.width);
  return split;
}

std::vector<Parameter> parametersOf(std::span<const FlatArgument> arguments) {
  std::vector<Parameter> parameters;
  parameters.reserve(arguments.size() + 1);
  for (const FlatArgument &argument : arguments) {
    const Field &field = singleField(argument.offset);
    const char *label = argument.label ? argument.label : field.label;
    parameters.push_back(field.text ? frame::text(label, argument.text) : frame::number(label, argument.number));
  }
  return parameters;
}

ZELK_BUCHUNG toRecord(std::span<const FlatArgument> arguments) {
  ZELK_BUCHUNG posting{};
  char *bytes = reinterpret_cast<char *>(&posting);
  for (const FlatArgument &argument : arguments) {
    const Field &field = singleField(argument.offset);
    if (!field.text)
      std::memcpy(bytes + field.single, &argument.number, sizeof argument.number);
    else if (argument.text)
      std::memcpy(bytes + field.single, argument.text, strnlen(argument.text, field.width));
  }
  return posting;
}

bool takeDate(char (&field)[7], const char *text) {
  auto date = vlba98::parseDatum(vlba98::trimmed(text ? text : ""));
  if (date) vlba98::strncpy2(field, vlba98::toExternal6(*date).data());
  return date.has_value();
}

} // namespace postings
