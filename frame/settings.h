/// The settings store: profile-style sections in the registry.
#pragma once

#include <string>

namespace frame {

/// A setting as UTF-8, at most size - 1 characters of it; empty when it is missing.
std::string setting(const char *section, const char *key, size_t size);

/// A setting that is a whole number above zero; otherwise what stands for a missing one.
int positiveSetting(const char *section, const char *key, int missing);

/// A text for a host. What does not exist in the code page becomes a question mark, as the system itself does it.
std::string toCodePage(const std::string &utf8);

} // namespace frame
