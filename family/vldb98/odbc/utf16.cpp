#include "odbc/odbc.h"

namespace vldb98::odbc {
namespace {

// \return the bytes of the character that begins here; 0 when it is malformed
size_t charactersBytes(std::string_view utf8, uint32_t &code) {
  const auto lead = uint8_t(utf8.front());
  const size_t bytes = lead < 0x80 ? 1 : lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
  if (bytes == 0 || bytes > utf8.size()) return 0;
  code = bytes == 1 ? lead : lead & (0x7Fu >> bytes);
  for (size_t i = 1; i < bytes; ++i) {
    if ((uint8_t(utf8[i]) & 0xC0) != 0x80) return 0;
    code = code << 6 | (uint8_t(utf8[i]) & 0x3Fu);
  }
  return bytes;
}

} // namespace

void appendUtf16(std::u16string &to, std::string_view utf8) {
  while (!utf8.empty()) {
    uint32_t code = 0;
    const size_t bytes = charactersBytes(utf8, code);
    if (bytes == 0)
      to += u'?';
    else if (code < 0x10000)
      to += char16_t(code);
    else {
      to += char16_t(0xD7C0 + (code >> 10));
      to += char16_t(0xDC00 | (code & 0x3FF));
    }
    utf8.remove_prefix(bytes ? bytes : 1);
  }
}

void appendUtf8(std::string &to, const char16_t *text, size_t length) {
  for (size_t i = 0; i < length; ++i) {
    uint32_t code = text[i];
    if (code >= 0xD800 && code < 0xE000) {
      const bool pair = code < 0xDC00 && i + 1 < length && (text[i + 1] & 0xFC00) == 0xDC00;
      code = pair ? ((code - 0xD7C0) << 10 | (text[++i] & 0x3FFu)) : uint32_t('?');
    }
    if (code < 0x80) {
      to += char(code);
      continue;
    }
    const int further = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    to += char((0xFF00 >> (further + 1) & 0xFF) | code >> (6 * further));
    for (int shift = 6 * (further - 1); shift >= 0; shift -= 6)
      to += char(0x80 | (code >> shift & 0x3F));
  }
}

} // namespace vldb98::odbc
