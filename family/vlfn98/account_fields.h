/// What the account tables have in common.
#pragma once

#include <cstdint>

#include "records/records.h"
#include "records/schema.h"

namespace vlfn98 {

/// The fields that every account has, in the record buffer.
struct AccountFields {
  const char *number; ///< blank-padded to 7
  const char *shortName;
  const char *name;
};

inline AccountFields accountOf(int table, const vldb98::DATENBANK &record) {
  auto fields = [](const auto &account) -> AccountFields { return {account.Nr, account.Kuerzel, account.Name}; };
  if (table == vldb98::kSachkonto) return fields(record.Sachkonto);
  return table == vldb98::kKost ? fields(record.Kost) : fields(record.Personenkonto);
}

constexpr int32_t kOrders = 3;

/// Index of the key of an order: 0 by number, 1 by short name, 2 by name.
constexpr int keyIndex(int table, int32_t order) {
  if (order < 2) return order;
  return table == vldb98::kSachkonto ? 5 : table == vldb98::kKost ? 3 : 4;
}

} // namespace vlfn98
