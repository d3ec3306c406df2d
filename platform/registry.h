/// The registry: named values under keys under two hives. On Windows the system's own; elsewhere one text file, its
/// path $ZELK_SETTINGS, else ~/.config/velta/settings.ini, with one section for each hive and key. All texts are UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace platform {

enum class Hive { LocalMachine, CurrentUser };

/// A text value. Nothing when it, or its key, is missing, is no text, or cannot be read.
std::optional<std::string> readRegistry(Hive hive, const std::string &key, const std::string &name);

/// Writes a text value and makes its key when missing. Writers exclude each other; readers never see half a write. The
/// text file is replaced by a whole new one, which has its owner and mode (a first one is its user's alone) and stands
/// where a symbolic link leads to; values keep blanks at their ends (in quotes, in the file).
/// \return false when it was not written, and nothing is changed; in the text file also for keys and names that cannot
///         stand there: with control characters, with blanks at their ends, keys with "]", names with "=", and those
///         that are empty or begin with ";", "#" or "["
bool writeRegistry(Hive hive, const std::string &key, const std::string &name, const std::string &value);

/// The same for a value that is a number of 32 bits. Nothing when it is missing or no number.
std::optional<uint32_t> readRegistryNumber(Hive hive, const std::string &key, const std::string &name);
bool writeRegistryNumber(Hive hive, const std::string &key, const std::string &name, uint32_t value);

/// The names of the values of a key.
std::vector<std::string> registryValueNames(Hive hive, const std::string &key);

/// The file that the registry lies in; those beside it whose names begin with its name belong to it. Empty where it is
/// the system's own.
std::string registryFile();

/// How many keys lie directly under a key; 0 when it is missing.
int registrySubkeyCount(Hive hive, const std::string &key);

} // namespace platform
