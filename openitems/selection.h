/// Which items a fetch delivers.
#pragma once

#include <string_view>

#include "store/store.h"
#include "zelk98/zelk98.h"

namespace openitems {

/// What a fetch of open or historical items is limited to; kept in the fetch.
struct ItemSelection {
  enum class By : uint8_t { Nothing, Account, Document, OpenItem, Date };
  By by = By::Nothing;
  char value[17] = ""; ///< as the field is stored: an account blank-padded, a date reversed
  int lastYear = 0;    ///< historical items: the client's current year, with four digits
};

/// What a host gave, without the blanks around; empty when it gave nothing.
std::string_view given(const char *text);

/// The same of the number of a document, which blanks in front are part of.
std::string_view givenNumber(const char *text);

/// Most characters of an account number.
constexpr size_t kAccountWidth = 7;

/// \param value as the host gave it, a date reversed; more than the field holds does not count
ItemSelection selectBy(ItemSelection::By by, std::string_view value);

/// The table with the key by which a selection is walked.
vldb98::FileNumber fileOf(int table, const ItemSelection &selection);

/// Whether an item that the walk comes to is still one of the selection. A date is where the walk begins only.
bool holds(const ItemSelection &selection, const vldb98::DATENBANK &item);

/// Finds the first item of a selection, in the open year where the table is kept per year; waits for a writer of the
/// table and takes no lock. \return 1, 0 when there is none
ZelkResult findFirst(vldb98::Store &store, const ItemSelection &selection, int table, vldb98::DATENBANK &item);

} // namespace openitems
