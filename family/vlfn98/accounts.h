/// Account kinds and account numbers.
#pragma once

#include <cstdint>
#include <optional>

#include "store/store.h"

namespace vlfn98 {

/// The store's table of an account kind at the boundary: 2 gives 2, 4 gives 3, 8 gives 16, anything else 0.
constexpr int KzFromZELKArt(int32_t kind) {
  return kind == 2 ? vldb98::kKreditor : kind == 4 ? vldb98::kDebitor : kind == 8 ? vldb98::kKost : vldb98::kSachkonto;
}

/// The store's account kind (2 general ledger, 4 creditor, 8 debtor) of a kind at the boundary: 1 gives 2, 4 gives 8,
/// anything else 4. The store's kinds know no cost centre, so 8 becomes a creditor and comes back as 2.
constexpr int16_t ZELKKontoArtToKontoArt(int32_t kind) {
  return kind == 1 ? 2 : kind == 4 ? 8 : 4;
}

/// The way back: 2 gives 1, 8 gives 4, anything else 2.
constexpr int32_t KontoArtToZELKKontoArt(int16_t kind) {
  return kind == 2 ? 1 : kind == 8 ? 4 : 2;
}

constexpr bool isAccountKind(int32_t kind) {
  return kind == 1 || kind == 2 || kind == 4 || kind == 8;
}

/// Brings an account number as a host writes it to the form in which the store keeps it: without blanks around; a
/// number of digits that is shorter than the client's general-ledger numbers gets leading zeros up to their length.
/// \param number  at most 7 characters; receives the form, blank-padded to 7
/// \param length  digits of the client's general-ledger account numbers, 4 to 7; 0 counts as 4
void KonvertKonto(char (&number)[8], int length);

/// The key of a cost centre, from its number, dimension and cost reference (may be null).
/// \return what to add to table 16 for the file number: 9 x 127, or 10 x 127 when a reference is given
int GetKostKontoKey(const char *number, int32_t dimension, const char *reference, vldb98::SCHLUESSEL &key);

/// An account of the open fiscal year. \param table 0, 2, 3 or 16 \param number at most 7 characters count
/// \param dimension,reference of a cost centre
std::optional<vldb98::DATENBANK> findAccount(vldb98::Store &store, int table, const char *number, int32_t dimension,
                                             const char *reference);
/// Whether there is one.
bool existsAccount(vldb98::Store &store, int table, const char *number, int32_t dimension, const char *reference);

} // namespace vlfn98
