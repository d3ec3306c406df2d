/// A client's books from one database into another, whatever their engines.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "store/store.h"

namespace zelkctl {

using vldb98::Store;
using vldb98::Table;

/// What a table holds of a client.
struct TableContent {
  const Table *table;
  uint64_t rows = 0;
  /// Over the records in the order of their primary keys, with the fiscal year before each where the table has one.
  /// \par Source FNV-1a, 64 bits: RFC 9923
  uint64_t checksum = 0;

  bool operator==(const TableContent &) const = default;
};

/// Called after every row.
using CopyProgress = std::function<void()>;

/// All tables that hold rows of a client, in the order of schema.h; the client's own two rows count with them.
/// \throws vldb98::StoreFailed
std::vector<TableContent> content(Store &store, uint16_t client);

enum class CopyOutcome {
  Done,
  NoSuchClient,
  ClientIsThere, ///< in the target
  Different,     ///< the target reads other records than were written
  SourceFailed,
  TargetFailed
};

/// Copies a client: reads one state of the source, writes the target in one transaction, reads the target again and
/// compares the checksums of every table. Unless all of it was done the target is as it was.
/// \param copied  what was copied, by table
CopyOutcome Kopiere(Store &source, Store &target, uint16_t client, std::vector<TableContent> &copied,
                    const CopyProgress &progress = {});

/// Removes a client, all tables in one transaction, provided it still holds what was copied. The session is of no use
/// afterwards: its open client is gone.
/// \return false when somebody has changed the client since: nothing was removed
/// \throws vldb98::StoreFailed
bool removeCopied(Store &store, uint16_t client, const std::vector<TableContent> &copied);

} // namespace zelkctl
