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

// IN_RECORDS(part, field, kind, label): in ZELK_BUCHUNG and in the record of its part
// IN_SPLIT(part, field, kind, label): in the record of its part only
// IN_PIECES(part, field, kind, label): no record has it
//
// In the order in which a single posting is checked and printed. A Date is a text that flat functions also take in the
// other forms of a date.
// clang-format off
#define POSTING_FIELDS(IN_RECORDS, IN_SPLIT, IN_PIECES)                                                                \
  IN_RECORDS(Head, Mandantennummer, Number, "Mandantennummer:")                                                        \
  IN_RECORDS(Head, Stapelnummer, Number, "Stapelnummer:")                                                              \
  IN_SPLIT(Head, Teilbuchungsanzahl, Number, "Teilbuchungsanzahl:")                                                    \
  IN_RECORDS(Line, Kostenschablone, Number, "Kostenschablone:")                                                        \
  IN_RECORDS(Head, Zahlungsziel, Number, "Zahlungsziel:")                                                              \
  IN_RECORDS(Head, Eroeffnungsbuchung, Number, "Eröffnungsbuchung:")                                                   \
  IN_RECORDS(Head, Abschlussbuchung, Number, "Abschlussbuchung:")                                                      \
  IN_RECORDS(Line, Sollart, Number, "Sollart:")                                                                        \
  IN_RECORDS(Line, Habenart, Number, "Habenart:")                                                                      \
  IN_RECORDS(Head, UStDirekt, Number, "USt-Direkt:")                                                                   \
  IN_RECORDS(Head, Umbuchung, Number, "Umbuchung:")                                                                    \
  IN_RECORDS(Head, Belegdatum, Date, "Belegdatum:")                                                                    \
  IN_RECORDS(Head, Belegnummer, Text, "Belegnummer:")                                                                  \
  IN_RECORDS(Line, Text, Text, "Text:")                                                                                \
  IN_RECORDS(Line, Text2, Text, "Text 2:")                                                                             \
  IN_RECORDS(Line, Sollkonto, Text, "Sollkonto:")                                                                      \
  IN_RECORDS(Line, Habenkonto, Text, "Habenkonto:")                                                                    \
  IN_RECORDS(Line, Bruttobetrag, Text, "Bruttobetrag:")                                                                \
  IN_RECORDS(Line, Steuersatz, Text, "Steuersatz:")                                                                    \
  IN_RECORDS(Line, Steuerbetrag, Text, "Steuerbetrag:")                                                                \
  IN_RECORDS(Head, OPBelegnummer, Text, "OP-Belegnummer:")                                                             \
  IN_RECORDS(Head, Valutadatum, Date, "Valutadatum:")                                                                  \
  IN_RECORDS(Head, Waehrung, Text, "Währung:")                                                                         \
  IN_RECORDS(Head, ESR, Text, "ESR:")                                                                                  \
  IN_RECORDS(Head, DMSID, Text, "DMS-ID:")                                                                             \
  IN_PIECES(OwnAmounts, BruttobetragEigen, Text, "Bruttobetrag-Eigen:")                                                \
  IN_PIECES(OwnAmounts, SteuerbetragEigen, Text, "Steuerbetrag-Eigen:")                                                \
  IN_PIECES(Cost, Kostenstelle1, Text, "Kostenstelle1:")                                                               \
  IN_PIECES(Cost, Kostenstelle2, Text, "Kostenstelle2:")                                                               \
  IN_PIECES(Cost, Kostenstelle3, Text, "Kostenstelle3:")                                                               \
  IN_PIECES(Cost, Kostenstelle4, Text, "Kostenstelle4:")                                                               \
  IN_PIECES(Cost, Kostenstelle5, Text, "Kostenstelle5:")                                                               \
  IN_PIECES(Cost, Kostenstelle6, Text, "Kostenstelle6:")                                                               \
  IN_PIECES(Cost, Kostenkennung, Number, "Kostenkennung:")                                                             \
  IN_PIECES(Cost, Betrag, Text, "Betrag:")                                                                             \
  IN_PIECES(Cost, Menge, Text, "Menge:")                                                                               \
  IN_PIECES(Cost, Einheit, Text, "Einheit:")                                                                           \
  IN_PIECES(Cost, Bemerkung, Text, "Bemerkung:")                                                                       \
  IN_PIECES(Cost, Bemerkung2, Text, "Bemerkung 2:")
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
