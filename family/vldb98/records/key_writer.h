/// Keys from the schema: the values alone are given, their form is that of the table's fields.
#pragma once

#include <concepts>
#include <stdexcept>
#include <string_view>

#include "records/keys.h"
#include "records/schema.h"

namespace vldb98 {

/// There is no such key, or a value that a field of it cannot hold. A fault of the program, not of the data.
class KeyRefused : public std::logic_error {
public:
  explicit KeyRefused(const std::string &what = "no such key") : std::logic_error(what) {}
};

/// Writes the values of a key in the order of its fields; the fields that are left out are the least.
class KeyWriter {
public:
  explicit KeyWriter(FileNumber file);

  /// A number, for a field that holds one.
  template <std::integral Number> void add(Number value) { addNumber(int64_t(value)); }
  /// A text, for a field that holds one: cut to the field, filled up with blanks where it is a key text.
  void add(std::string_view text);

  const SCHLUESSEL &key() const { return key_; }

private:
  void addNumber(int64_t value);
  const Field &nextField();

  const Table *table_;
  const Key *fields_;
  SCHLUESSEL key_;
  size_t field_ = 0, at_ = 0;
};

} // namespace vldb98
