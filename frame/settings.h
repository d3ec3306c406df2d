/// The settings store: profile-style sections in the registry.
#pragma once

#include <string>

namespace frame {

/// A setting as UTF-8, at most size - 1 characters of it; empty when it is missing.
std::string setting(const char *section, const char *key, size_t size);

int numericSetting(const char *section, const char *key, int missing);

/// Writes a setting into the hive that the settings are kept in. All texts are UTF-8.
bool writeSetting(const std::string &section, const std::string &key, const std::string &value);

} // namespace frame
