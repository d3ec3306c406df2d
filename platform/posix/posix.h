/// Shared by the POSIX implementation only.
#pragma once

#include <string>

namespace platform {

/// The settings file: $ZELK_SETTINGS, else ~/.config/velta/settings.ini.
std::string settingsPath();

/// Makes the folder that a file is to lie in. \return true also when it exists
bool makeFolderOf(const std::string &path);

} // namespace platform
