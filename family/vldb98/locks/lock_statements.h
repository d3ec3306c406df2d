/// The texts of the statements that hold locks on a server.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "sql/dialect.h"

namespace vldb98 {

/// Takes named locks in their order until one is not had in time. Parameters: the names, then the time to wait in
/// milliseconds. Delivers one row, the count of locks taken.
std::string lockStatement(const Dialect &dialect, size_t count);
/// Lets named locks go. Parameters: the names.
std::string unlockStatement(const Dialect &dialect, size_t count);

/// The rows that stand for locks on a cluster. Parameters: client, table, resource of each, RaiseNoted its count of
/// changes after them.
enum class LockRows : uint8_t {
  Read,       ///< delivers client, table, resource and count of changes of those that are there
  Make,       ///< makes those that are missing
  RaiseNoted, ///< raises those whose count is the one given
  Raise,      ///< makes those that are missing, raises all, and delivers them like Read
};
std::string lockRowsStatement(LockRows what, size_t count);
/// Makes their table where it is missing.
std::string createLockRowsStatement(const Dialect &dialect);

} // namespace vldb98
