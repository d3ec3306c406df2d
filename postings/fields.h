/// The fields of a posting, once: what the exported records hold and where, what the flat functions take, what is
/// checked and printed comes from this list.
#pragma once

#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "frame/call.h"
#include "postings/posting.h"
#include "zelk98/zelk98.h"

// IN_RECORDS(part, field, kind, bytes, offset in ZELK_BUCHUNG, offset in the record of its part, label)
// IN_SPLIT(part, field, kind, bytes, offset in the record of its part, label): a single posting has no such field
// IN_PIECES(part, field, kind, bytes, label): no record has it
//
// In the order in which a single posting is checked and printed. A Date is a text that flat functions also take in the
// other forms of a date.
// clang-format off
#define POSTING_FIELDS(IN_RECORDS, IN_SPLIT, IN_PIECES)                                                                \
  IN_RECORDS(Head, Mandantennummer,    Number,  4,   0,   0, "Mandantennummer:")                                       \
  IN_RECORDS(Head, Stapelnummer,       Number,  4,   4,   4, "Stapelnummer:")                                          \
  IN_SPLIT  (Head, Teilbuchungsanzahl, Number,  4,        8, "Teilbuchungsanzahl:")                                    \
  IN_RECORDS(Line, Kostenschablone,    Number,  4,   8,   8, "Kostenschablone:")                                       \
  IN_RECORDS(Head, Zahlungsziel,       Number,  4,  12,  16, "Zahlungsziel:")                                          \
  IN_RECORDS(Head, Eroeffnungsbuchung, Number,  4,  16,  20, "Eröffnungsbuchung:")                                     \
  IN_RECORDS(Head, Abschlussbuchung,   Number,  4,  20,  24, "Abschlussbuchung:")                                      \
  IN_RECORDS(Line, Sollart,            Number,  4,  24,   0, "Sollart:")                                               \
  IN_RECORDS(Line, Habenart,           Number,  4,  28,   4, "Habenart:")                                              \
  IN_RECORDS(Head, UStDirekt,          Number,  4,  32,  12, "USt-Direkt:")                                            \
  IN_RECORDS(Head, Umbuchung,          Number,  4,  36,  28, "Umbuchung:")                                             \
  IN_RECORDS(Head, Belegdatum,         Date,    7,  40,  32, "Belegdatum:")                                            \
  IN_RECORDS(Head, Belegnummer,        Text,   17,  47,  39, "Belegnummer:")                                           \
  IN_RECORDS(Line, Text,               Text,   36,  64,  62, "Text:")                                                  \
  IN_RECORDS(Line, Text2,              Text,   36, 226,  98, "Text 2:")                                                \
  IN_RECORDS(Line, Sollkonto,          Text,    8, 100,  12, "Sollkonto:")                                             \
  IN_RECORDS(Line, Habenkonto,         Text,    8, 108,  20, "Habenkonto:")                                            \
  IN_RECORDS(Line, Bruttobetrag,       Text,   13, 116,  28, "Bruttobetrag:")                                          \
  IN_RECORDS(Line, Steuersatz,         Text,    6, 129,  42, "Steuersatz:")                                            \
  IN_RECORDS(Line, Steuerbetrag,       Text,   13, 135,  48, "Steuerbetrag:")                                          \
  IN_RECORDS(Head, OPBelegnummer,      Text,   17, 148,  56, "OP-Belegnummer:")                                        \
  IN_RECORDS(Head, Valutadatum,        Date,    7, 165,  73, "Valutadatum:")                                           \
  IN_RECORDS(Head, Waehrung,           Text,    4, 172,  80, "Währung:")                                               \
  IN_RECORDS(Head, ESR,                Text,   50, 176,  84, "ESR:")                                                   \
  IN_RECORDS(Head, DMSID,              Text,   51, 262, 134, "DMS-ID:")                                                \
  IN_PIECES (OwnAmounts, BruttobetragEigen, Text, 13, "Bruttobetrag-Eigen:")                                           \
  IN_PIECES (OwnAmounts, SteuerbetragEigen, Text, 13, "Steuerbetrag-Eigen:")                                           \
  IN_PIECES (Cost, Kostenstelle1,      Text,    8, "Kostenstelle1:")                                                   \
  IN_PIECES (Cost, Kostenstelle2,      Text,    8, "Kostenstelle2:")                                                   \
  IN_PIECES (Cost, Kostenstelle3,      Text,    8, "Kostenstelle3:")                                                   \
  IN_PIECES (Cost, Kostenstelle4,      Text,    8, "Kostenstelle4:")                                                   \
  IN_PIECES (Cost, Kostenstelle5,      Text,    8, "Kostenstelle5:")                                                   \
  IN_PIECES (Cost, Kostenstelle6,      Text,    8, "Kostenstelle6:")                                                   \
  IN_PIECES (Cost, Kostenkennung,      Number,  4, "Kostenkennung:")                                                   \
  IN_PIECES (Cost, Betrag,             Text,   13, "Betrag:")                                                          \
  IN_PIECES (Cost, Menge,              Text,   13, "Menge:")                                                           \
  IN_PIECES (Cost, Einheit,            Text,    4, "Einheit:")                                                         \
  IN_PIECES (Cost, Bemerkung,          Text,   41, "Bemerkung:")                                                       \
  IN_PIECES (Cost, Bemerkung2,         Text,   41, "Bemerkung 2:")
// clang-format on

namespace postings {

#define POSTING_FIELD_NAME(part, field, ...) field,
enum class PostingField : uint8_t { POSTING_FIELDS(POSTING_FIELD_NAME, POSTING_FIELD_NAME, POSTING_FIELD_NAME) };
#undef POSTING_FIELD_NAME

/// Lines that a ZELK_SPLITBUCHUNG has room for.
constexpr int32_t kRecordLines = 10;

/// An argument of a flat function.
struct FlatArgument {
  FlatArgument(PostingField its, int32_t value, const char *name = nullptr) : field(its), number(value), label(name) {}
  FlatArgument(PostingField its, const char *value) : field(its), text(value) {}

  PostingField field;
  int32_t number = 0;
  const char *text = nullptr;  ///< null counts as empty
  const char *label = nullptr; ///< under which the protocol prints it, where that is another one than the field's
};
using FlatArguments = std::span<const FlatArgument>;

/// An argument that has the name of its field.
#define ZELK_FLAT(field, ...)                                                                                          \
  { postings::PostingField::field, field __VA_OPT__(, ) __VA_ARGS__ }

/// Checks and dump of what was handed over: the record of a single posting, a split posting with its lines, the
/// arguments of a flat function.
std::vector<frame::Parameter> parametersOf(const ZELK_BUCHUNG &record);
std::vector<frame::Parameter> parametersOf(const Posting &posting);
frame::Parameter parameterOf(const FlatArgument &argument);
template <size_t count> std::array<frame::Parameter, count> parametersOf(const FlatArgument (&arguments)[count]) {
  std::array<frame::Parameter, count> parameters;
  std::transform(std::begin(arguments), std::end(arguments), parameters.begin(), parameterOf);
  return parameters;
}

/// A text that does not end within its field stays so, for the check of the widths to find it.
Posting toPosting(const ZELK_BUCHUNG &record);
Posting toPosting(const ZELK_SPLITBUCHUNG &record);
Posting toPosting(FlatArguments arguments);

/// Takes those of the arguments that are fields of the part. What is too long is cut. What is no date, where one
/// belongs, goes on as it is.
void take(PostingHead &head, FlatArguments arguments);
void take(PostingLine &line, FlatArguments arguments);
void take(PostingOwnAmounts &amounts, FlatArguments arguments);
void take(PostingCost &cost, FlatArguments arguments);

/// Whether a text is a date in one of the accepted forms; null is none.
bool isDate(const char *text);

} // namespace postings
