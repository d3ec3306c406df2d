/// The split posting that a thread builds piece by piece.
#pragma once

#include <map>
#include <vector>

#include "frame/context.h"
#include "zelk98/zelk98.h"

namespace postings {

constexpr int kRecordLines = 10; ///< lines that a ZELK_SPLITBUCHUNG holds
constexpr int kKostenstellen = 6;

/// A cost posting as it was handed over. Texts are cut to their fields.
struct CostEntry {
  size_t line; ///< index of the partial posting that it belongs to
  char Kostenstelle[kKostenstellen][8];
  int32_t Kostenkennung;
  char Betrag[13];
  char Menge[13];
  char Einheit[4];
  char Bemerkung[41];
  char Bemerkung2[41];
};

/// Amounts of a partial posting in the client's own currency.
struct OwnAmounts {
  char Brutto[13];
  char Steuer[13];
};

struct Construction {
  ZELK_SPLITBUCHUNG posting{};
  std::vector<ZELK_TEILBUCHUNG> overflow; ///< the eleventh partial posting and those behind it
  bool started = false;
  bool inserting = false;  ///< while its end hands it over: more lines than a record holds are admissible then
  bool swissRules = false; ///< the client's books were found to be kept under the rules of Switzerland
  int plainAdditions = 0, exAdditions = 0;
  std::map<size_t, OwnAmounts> ownAmounts; ///< by index of the partial posting
  std::vector<CostEntry> costs;
  /// Values set behind so many partial postings.
  std::map<int, int32_t> movementKinds, documents;

  /// What a posting that is handed over whole takes with it.
  void resetExtras();
  /// All of it, except that an insertion may be running.
  void clear();
};

/// The calling thread's construction.
Construction &constructionOf(frame::ThreadContext &context);

} // namespace postings
