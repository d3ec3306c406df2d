/// Fields and numeric texts: padding, trimming, bounded copying, counting.
///
/// All texts are zero-terminated and of an 8-bit code page. A width counts characters, the buffer has one byte more for
/// the terminator; where a buffer is an array, its size gives the width. Null pointers are not accepted.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace vlba98 {

/// True for '0' to '9', whatever the locale.
constexpr bool IsZiffer(char c) {
  return c >= '0' && c <= '9';
}

/// True for a text of one or more digits and nothing else.
bool IsZahl(std::string_view text);

/// Pads the text with blanks after it to its width, as key fields are stored.
/// \return false, and the text unchanged, when it is longer than the width
bool FillWithSpaces(char *text, std::size_t width);
template <std::size_t N> bool FillWithSpaces(char (&field)[N]) {
  return FillWithSpaces(field, N - 1);
}

/// Pads a numeric text with zeros in front of it to its width ("12" to "00012"); an empty text becomes all zeros.
/// \return false, and the text unchanged, when it is longer than the width
bool FillWithNull(char *text, std::size_t width);
template <std::size_t N> bool FillWithNull(char (&field)[N]) {
  return FillWithNull(field, N - 1);
}

/// Removes every blank, inner ones included: for numbers and codes. Names are trimmed with trimSpaces.
void KillSpaces(char *text);

/// Removes the blanks before and after, in place, and keeps the inner ones.
void trimSpaces(char *text);

/// The part of the text without the blanks before and after.
std::string_view trimmed(std::string_view text);

/// A number of things as a sentence names it: "1 Zeile", "2 Zeilen", "0 Zeilen".
std::string counted(std::size_t count, const char *one, const char *many);

/// Removes blanks, tabs and line ends before and after; a text of nothing else becomes empty.
void KillWhiteSpaces(char *text);

/// Removes leading zeros as long as a digit follows: "000000012,50" becomes "12,50", "000" becomes "0".
void KillNull(char *text);

/// Copies as much of the source as size - 1 characters hold, and terminates the copy. A size of zero writes nothing.
/// Source and target may overlap. \return whether all of it fitted
bool strncpy2(char *target, std::string_view source, std::size_t size);
template <std::size_t N> bool strncpy2(char (&target)[N], std::string_view source) {
  return strncpy2(target, source, N);
}

/// The same without the blanks before and after: a key field for a caller.
template <std::size_t N> bool copyTrimmed(char (&target)[N], std::string_view source) {
  return strncpy2(target, trimmed(source), N);
}

/// The value of the first two characters, 0 to 99; -1 when they are not two digits.
int twotoi(const char *text);

/// Writes a value of 0 to 99 as two digits and the terminator (3 bytes). \return false, nothing written, otherwise
bool itotwo(int value, char *text);

/// Adds one to a text of digits and keeps its width: "0099" becomes "0100".
/// \return false, and the text unchanged, when all digits are nines, or when it is no text of digits
bool IncDecNr(char *text);

} // namespace vlba98
