/// The fields of a posting, once: what the records check, print and hand on, and what the flat variant takes, comes
/// from this list.
#pragma once

#include <span>
#include <vector>

#include "frame/call.h"
#include "zelk98/zelk98.h"

namespace postings {

/// Checks and dump of a record.
std::vector<frame::Parameter> parametersOf(const ZELK_BUCHUNG &posting);

/// The same of a split posting: its header, then line by line.
/// \param further the eleventh line and those behind it
std::vector<frame::Parameter> parametersOf(const ZELK_SPLITBUCHUNG &posting, std::span<const ZELK_TEILBUCHUNG> further);

/// The split posting of one line that a single posting is.
ZELK_SPLITBUCHUNG toSplit(const ZELK_BUCHUNG &posting);

/// An argument of the flat variant: a field of ZELK_BUCHUNG by its offset.
struct FlatArgument {
  FlatArgument(size_t at, int32_t value) : offset(at), number(value) {}
  FlatArgument(size_t at, const char *value) : offset(at), text(value) {}
  /// \param name under which the protocol prints it, where that is another one
  FlatArgument(size_t at, int32_t value, const char *name) : offset(at), number(value), label(name) {}

  size_t offset;
  int32_t number = 0;
  const char *text = nullptr;
  const char *label = nullptr;
};

std::vector<frame::Parameter> parametersOf(std::span<const FlatArgument> arguments);

/// A text that is too long for its field stays without its end there, so that the width check finds it.
ZELK_BUCHUNG toRecord(std::span<const FlatArgument> arguments);

/// A date in any accepted form as the records carry it; null counts as empty. \return false for a text that is none;
/// the field then stays
bool takeDate(char (&field)[7], const char *text);

} // namespace postings
