/// The embedded database: one SQLite file.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "sql/sql.h"

namespace vldb98 {

struct SqliteOptions {
  std::chrono::milliseconds wait{10000}; ///< how long a writer waits for another one
  bool create = false;                   ///< make the file when it is missing
  bool durable = true;                   ///< a commit that was reported survives a power cut
};

/// Opens a database file in write-ahead-log mode (on a network folder without it, since the log's index is shared
/// memory). \param path UTF-8 \return null when the file is missing, cannot be read and written, or is no database of
/// this library
std::unique_ptr<SqlConnection> openSqlite(const std::string &path, const SqliteOptions &options);

} // namespace vldb98
