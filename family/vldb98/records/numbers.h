/// Numbers as they lie in records and keys.
#pragma once

#include <cstdint>

#include "records/schema.h"

namespace vldb98 {

/// The number of a field that holds one.
int64_t loadNumber(FieldType type, const char *at);

/// \return false when the field cannot hold the number, or holds none; then nothing is written
bool storeNumber(FieldType type, int64_t value, char *at);

} // namespace vldb98
