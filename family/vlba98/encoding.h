/// Windows-1252, the code page of all texts at the boundary, to and from UTF-8, in which texts are stored.
///
/// The mapping is the index "windows-1252" of the WHATWG Encoding Standard: the five bytes that the code page leaves
/// undefined (81, 8D, 8F, 90, 9D) stand for the control characters of the same number, so every byte sequence survives
/// the way there and back.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace vlba98 {

/// Bytes that UTF-8 needs at most for one byte of Windows-1252.
inline constexpr std::size_t maxUtf8PerByte = 3;

std::string toUtf8(std::string_view cp1252);

/// Nothing when the text is no well-formed UTF-8 or has a character that Windows-1252 lacks.
std::optional<std::string> toWindows1252(std::string_view utf8);

/// The same without allocation: out has room for maxUtf8PerByte * size bytes and is not terminated.
/// Text and out must not overlap. \return the bytes written
std::size_t utf8FromWindows1252(const char *text, std::size_t size, char *out);

/// The same without allocation, at most cap bytes; out is not terminated. Text and out must not overlap.
/// \param len receives the bytes written
/// \return false when the text is malformed, has a character that Windows-1252 lacks, or needs more than cap bytes; len
///         then counts the bytes that were converted before
bool windows1252FromUtf8(const char *text, std::size_t size, char *out, std::size_t cap, std::size_t &len);

} // namespace vlba98
