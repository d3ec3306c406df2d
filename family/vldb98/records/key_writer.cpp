#include "records/key_writer.h"

#include <cstring>

#include "records/numbers.h"

namespace vldb98 {

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
  if (!storeNumber(field.type, value, key_.bytes + at_)) throw KeyRefused(table_->name + "." + field.name);
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
