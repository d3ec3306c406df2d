/// What a driver is told to connect.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "sql/dialect.h"
#include "sql/server.h"

namespace vldb98::odbc {

/// How long a connection may take: a server that does not answer must not hold a host up.
inline constexpr unsigned kLoginSeconds = 5;

/// A value of a connection string in braces, so that nothing in it ends it or begins another option. Nothing keeps a
/// zero byte, at which drivers stop reading.
std::string braced(std::string_view value);

/// A connection string, or a part of one, that people may read: "***" in place of each value that carries a password.
std::string withoutSecrets(std::string_view text);

/// The driver whose name begins as the dialect would like it best; its best one's beginning where none does. Those for
/// 8-bit texts are left out.
std::string chooseDriver(const Dialect &dialect, const std::vector<std::string> &installed);

/// The connection string in UTF-8; whoever asks wipes it, since it holds the password. An option of the settings' extra
/// ones takes the place of the one that would be written here.
std::string connectionString(const Dialect &dialect, const ServerSettings &server,
                             const std::vector<std::string> &installedDrivers);

} // namespace vldb98::odbc
