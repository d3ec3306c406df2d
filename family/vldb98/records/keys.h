/// Key buffers: how a key is handed to the record store.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

#include "vlba98/text.h"

namespace vldb98 {

constexpr size_t kKeySize = 201;

/// A key buffer. The key's fields stand one after the other in the key's field order: integers little-endian in the
/// width of their record field, texts in the width of their record field without the terminator (an account number: 7
/// characters, blank-padded; a short name: zero-padded). Cleared to begin with; a field left cleared is the least
/// value.
struct SCHLUESSEL {
  char bytes[kKeySize] = {};
};

/// Fills a key buffer field by field.
class KeyBuilder {
public:
  /// An account number: cut to 7 characters and blank-padded.
  KeyBuilder &account(std::string_view number) { return padded(number, 7); }

  KeyBuilder &padded(std::string_view text, size_t width) {
    std::memset(key_.bytes + used_, ' ', width);
    return text_(text, width);
  }

  /// A zero-padded text.
  KeyBuilder &text(std::string_view text, size_t width) { return text_(text, width); }

  template <class Integer> KeyBuilder &number(Integer value) {
    std::memcpy(key_.bytes + used_, &value, sizeof value);
    used_ += sizeof value;
    return *this;
  }

  operator const SCHLUESSEL &() const { return key_; }

private:
  KeyBuilder &text_(std::string_view text, size_t width) {
    text.copy(key_.bytes + used_, width);
    used_ += width;
    return *this;
  }

  SCHLUESSEL key_;
  size_t used_ = 0;
};

} // namespace vldb98
