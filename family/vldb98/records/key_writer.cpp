#include "records/key_writer.h"

#include <cstring>
#include <limits>

namespace vldb98 {
namespace {

template <class Number> bool put(char *to, int64_t value) {
  if (value < std::numeric_limits<Number>::min() || value > std::numeric_limits<Number>::max()) return false;
  const auto number = Number(value);
  std::memcpy(to, &number, sizeof number);
  return true;
}

bool putNumber(char *to, FieldType type, int64_t value) {
  switch (type) {
  case FieldType::UInt8:
    return put<uint8_t>(to, value);
  case FieldType::Int16:
    return put<int16_t>(to, value);
  case FieldType::UInt16:
    return put<uint16_t>(to, value);
  case FieldType::Int32:
    return put<int32_t>(to, value);
  default:
    return false;
  }
}

} // namespace

KeyWriter::KeyWriter(FileNumber file)
    : table_(findTable(tableOf(file))), fields_(table_ ? table_->key(keyIndexOf(file)) : nullptr) {
  if (!fields_) throw KeyRefused();
}

const Field &KeyWriter::nextField() {
  if (field_ == fields_->fields.size()) throw KeyRefused(table_->name + ": too many values");
  return table_->fields[size_t(fields_->fields[field_++])];
}

void KeyWriter::addNumber(int64_t value) {
  const Field &field = nextField();
  if (!putNumber(key_.bytes + at_, field.type, value)) throw KeyRefused(table_->name + "." + field.name);
  at_ += field.keyWidth();
}

void KeyWriter::add(std::string_view text) {
  const Field &field = nextField();
  if (field.type < FieldType::Text) throw KeyRefused(table_->name + "." + field.name);
  if (field.type == FieldType::KeyText) std::memset(key_.bytes + at_, ' ', field.keyWidth());
  text.copy(key_.bytes + at_, field.keyWidth());
  at_ += field.keyWidth();
}

} // namespace vldb98
