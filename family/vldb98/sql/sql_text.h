/// Pieces that the texts of statements are put together from.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vldb98 {

using Names = std::vector<std::string>;

inline std::string quoted(const std::string &name) {
  return '"' + name + '"';
}

inline std::string joined(const Names &names, const char *separator, const char *afterEach = "") {
  std::string text;
  for (const std::string &name : names)
    text += (text.empty() ? "" : separator) + name + afterEach;
  return text;
}

inline void append(Names &to, const Names &more) {
  to.insert(to.end(), more.begin(), more.end());
}

/// Each name compared with a parameter.
inline Names equalities(const Names &names) {
  Names conditions;
  for (const std::string &name : names)
    conditions.push_back(name + "=?");
  return conditions;
}

inline std::string where(const Names &conditions) {
  return conditions.empty() ? "" : " WHERE " + joined(conditions, " AND ");
}

/// The pattern with a text wherever the mark stands in it.
inline std::string filledIn(std::string_view pattern, std::string_view mark, std::string_view text) {
  std::string filled(pattern);
  for (size_t at = 0; (at = filled.find(mark, at)) != filled.npos; at += text.size())
    filled.replace(at, mark.size(), text);
  return filled;
}

} // namespace vldb98
