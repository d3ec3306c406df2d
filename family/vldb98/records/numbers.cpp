#include "records/numbers.h"

#include <cstring>

namespace vldb98 {
namespace {

template <class Integer> int64_t load(const char *at) {
  Integer value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

template <class Integer> bool store(int64_t value, char *at) {
  Integer narrow = Integer(value);
  if (narrow != value) return false;
  std::memcpy(at, &narrow, sizeof narrow);
  return true;
}

} // namespace

int64_t loadNumber(FieldType type, const char *at) {
  switch (type) {
  case FieldType::UInt8:
    return load<uint8_t>(at);
  case FieldType::Int16:
    return load<int16_t>(at);
  case FieldType::UInt16:
    return load<uint16_t>(at);
  default:
    return load<int32_t>(at);
  }
}

bool storeNumber(FieldType type, int64_t value, char *at) {
  switch (type) {
  case FieldType::UInt8:
    return store<uint8_t>(value, at);
  case FieldType::Int16:
    return store<int16_t>(value, at);
  case FieldType::UInt16:
    return store<uint16_t>(value, at);
  case FieldType::Int32:
    return store<int32_t>(value, at);
  default:
    return false;
  }
}

} // namespace vldb98
