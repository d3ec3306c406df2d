#include "vlba98/encoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace vlba98 {
namespace {

/// Code points of the bytes 0x80 to 0x9F; the bytes from 0xA0 on are their own code points.
constexpr std::array<char16_t, 32> codePoints{0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                              0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                              0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                              0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
constexpr unsigned firstMapped = 0x80, firstOwn = 0xA0;

/// Bytes of ASCII at the start of the text, found eight at a time; up to seven more may follow.
std::size_t asciiRun(const char *text, std::size_t size) {
  std::size_t at = 0;
  for (std::uint64_t block; size - at >= sizeof block; at += sizeof block) {
    std::memcpy(&block, text + at, sizeof block);
    if (block & 0x8080808080808080) break;
  }
  return at;
}

unsigned byteAt(const char *text, std::size_t at) {
  return static_cast<unsigned char>(text[at]);
}

/// The byte of a code point from 0x80 on, or zero when the code page lacks it.
char toByte(unsigned codePoint) {
  if (codePoint >= firstOwn && codePoint <= 0xFF) return static_cast<char>(codePoint);
  const auto found = std::find(codePoints.begin(), codePoints.end(), codePoint);
  return found == codePoints.end() ? '\0' : static_cast<char>(firstMapped + (found - codePoints.begin()));
}

struct Decoded {
  unsigned codePoint;
  std::size_t bytes; ///< zero when malformed or beyond every code point of the code page
};

/// Decodes a sequence of two or three bytes; the code page has no character that takes four.
Decoded decode(const char *text, std::size_t size) {
  constexpr Decoded malformed{0, 0};
  const auto continues = [&](std::size_t at) { return at < size && (byteAt(text, at) & 0xC0) == 0x80; };
  const unsigned lead = byteAt(text, 0);
  if ((lead & 0xE0) == 0xC0 && continues(1)) {
    const unsigned codePoint = (lead & 0x1F) << 6 | (byteAt(text, 1) & 0x3F);
    return codePoint < 0x80 ? malformed : Decoded{codePoint, 2};
  }
  if ((lead & 0xF0) == 0xE0 && continues(1) && continues(2)) {
    const unsigned codePoint = (lead & 0x0F) << 12 | (byteAt(text, 1) & 0x3F) << 6 | (byteAt(text, 2) & 0x3F);
    return codePoint < 0x800 ? malformed : Decoded{codePoint, 3};
  }
  return malformed;
}

} // namespace

std::size_t utf8FromWindows1252(const char *text, std::size_t size, char *out) {
  char *end = out;
  const auto put = [&](unsigned byte) { *end++ = static_cast<char>(byte); };
  for (std::size_t at = 0; at < size;) {
    if (const std::size_t run = asciiRun(text + at, size - at)) {
      std::memcpy(end, text + at, run);
      end += run;
      at += run;
      continue;
    }
    const unsigned byte = byteAt(text, at++);
    const unsigned codePoint = byte >= firstMapped && byte < firstOwn ? codePoints[byte - firstMapped] : byte;
    if (codePoint < 0x80) {
      put(codePoint);
    } else if (codePoint < 0x800) {
      put(0xC0 | codePoint >> 6);
      put(0x80 | (codePoint & 0x3F));
    } else {
      put(0xE0 | codePoint >> 12);
      put(0x80 | (codePoint >> 6 & 0x3F));
      put(0x80 | (codePoint & 0x3F));
    }
  }
  return static_cast<std::size_t>(end - out);
}

bool windows1252FromUtf8(const char *text, std::size_t size, char *out, std::size_t cap, std::size_t &len) {
  len = 0;
  for (std::size_t at = 0; at < size;) {
    if (const std::size_t run = asciiRun(text + at, size - at)) {
      const std::size_t fitting = std::min(run, cap - len);
      std::memcpy(out + len, text + at, fitting);
      len += fitting;
      if (fitting < run) return false;
      at += run;
      continue;
    }
    if (len == cap) return false;
    if (byteAt(text, at) < 0x80) {
      out[len++] = text[at++];
      continue;
    }
    const Decoded decoded = decode(text + at, size - at);
    const char byte = decoded.bytes ? toByte(decoded.codePoint) : '\0';
    if (!byte) return false;
    out[len++] = byte;
    at += decoded.bytes;
  }
  return true;
}

std::string toUtf8(std::string_view cp1252) {
  std::string utf8(cp1252.size() * maxUtf8PerByte, '\0');
  utf8.resize(utf8FromWindows1252(cp1252.data(), cp1252.size(), utf8.data()));
  return utf8;
}

std::optional<std::string> toWindows1252(std::string_view utf8) {
  std::string cp1252(utf8.size(), '\0');
  std::size_t length = 0;
  if (!windows1252FromUtf8(utf8.data(), utf8.size(), cp1252.data(), cp1252.size(), length)) return std::nullopt;
  cp1252.resize(length);
  return cp1252;
}

} // namespace vlba98
