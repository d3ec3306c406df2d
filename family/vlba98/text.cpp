#include "vlba98/text.h"

#include <algorithm>
#include <cstring>

namespace vlba98 {
namespace {

std::string_view strip(std::string_view text, const char *unwanted) {
  const std::size_t first = text.find_first_not_of(unwanted);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(unwanted) - first + 1);
}

void keepOnly(char *text, std::string_view part) {
  if (!part.empty()) std::memmove(text, part.data(), part.size());
  text[part.size()] = '\0';
}

} // namespace

bool IsZahl(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), IsZiffer);
}

bool FillWithSpaces(char *text, std::size_t width) {
  const std::size_t length = std::strlen(text);
  if (length > width) return false;
  std::memset(text + length, ' ', width - length);
  text[width] = '\0';
  return true;
}

bool FillWithNull(char *text, std::size_t width) {
  const std::size_t length = std::strlen(text);
  if (length > width) return false;
  std::memmove(text + (width - length), text, length + 1);
  std::memset(text, '0', width - length);
  return true;
}

void KillSpaces(char *text) {
  *std::remove(text, text + std::strlen(text), ' ') = '\0';
}

std::string_view trimmed(std::string_view text) {
  return strip(text, " ");
}

std::string counted(std::size_t count, const char *one, const char *many) {
  return std::to_string(count) + " " + (count == 1 ? one : many);
}

void trimSpaces(char *text) {
  keepOnly(text, trimmed(text));
}

void KillWhiteSpaces(char *text) {
  keepOnly(text, strip(text, " \t\r\n\v\f"));
}

void KillNull(char *text) {
  const char *first = text;
  while (*first == '0' && IsZiffer(first[1]))
    ++first;
  keepOnly(text, first);
}

bool strncpy2(char *target, std::string_view source, std::size_t size) {
  if (size == 0) return source.empty();
  const std::size_t length = std::min(source.size(), size - 1);
  keepOnly(target, source.substr(0, length));
  return length == source.size();
}

int twotoi(const char *text) {
  if (!IsZiffer(text[0]) || !IsZiffer(text[1])) return -1;
  return (text[0] - '0') * 10 + (text[1] - '0');
}

bool itotwo(int value, char *text) {
  if (value < 0 || value > 99) return false;
  text[0] = static_cast<char>('0' + value / 10);
  text[1] = static_cast<char>('0' + value % 10);
  text[2] = '\0';
  return true;
}

bool IncDecNr(char *text) {
  if (!IsZahl(text)) return false;
  char *last = text + std::strlen(text);
  char *carried = last;
  while (carried > text && carried[-1] == '9')
    --carried;
  if (carried == text) return false;
  ++carried[-1];
  std::fill(carried, last, '0');
  return true;
}

} // namespace vlba98
