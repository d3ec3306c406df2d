#include "odbc/connection_string.h"

#include <algorithm>
#include <cctype>

namespace vldb98::odbc {
namespace {

std::string upper(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), [](unsigned char c) { return char(std::toupper(c)); });
  return result;
}

// The names of the options in a connection string, in capitals.
std::vector<std::string> optionsIn(std::string_view text) {
  std::vector<std::string> names;
  while (!text.empty()) {
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos) break;
    std::string_view name = text.substr(0, equals);
    while (!name.empty() && (name.front() == ' ' || name.front() == ';'))
      name.remove_prefix(1);
    while (!name.empty() && name.back() == ' ')
      name.remove_suffix(1);
    names.push_back(upper(name));
    text.remove_prefix(equals + 1);
    size_t end = 0;
    if (text.starts_with('{')) {
      // A doubled brace is one of the value's.
      for (end = 1; end < text.size() && (text[end] != '}' || text.substr(end, 2) == "}}"); ++end)
        if (text[end] == '}') ++end;
    }
    end = text.find(';', std::min(end, text.size()));
    if (end == std::string_view::npos) break;
    text.remove_prefix(end + 1);
  }
  return names;
}

} // namespace

std::string braced(std::string_view value) {
  std::string text;
  text.reserve(2 * value.size() + 2);
  text += '{';
  for (char c : value.substr(0, value.find('\0'))) {
    text += c;
    if (c == '}') text += c;
  }
  return text += '}';
}

std::string chooseDriver(const Dialect &dialect, const std::vector<std::string> &installed) {
  for (std::string_view beginning : dialect.drivers)
    for (const std::string &driver : installed)
      if (driver.starts_with(beginning) && driver.find("ANSI") == std::string::npos) return driver;
  return dialect.drivers.front();
}

std::string connectionString(const Dialect &dialect, const ServerSettings &server,
                             const std::vector<std::string> &installedDrivers) {
  const std::vector<std::string> given = optionsIn(server.extra);
  auto isGiven = [&](const char *name) { return std::find(given.begin(), given.end(), name) != given.end(); };
  std::string password = server.password.reveal(), quotedPassword = braced(password);
  std::string text;
  // Grown once, so that no shorter copy of the password stays behind.
  text.reserve(4096 + 2 * (server.host.size() + server.user.size() + server.database.size() + server.extra.size()) +
               quotedPassword.size());
  auto option = [&](const char *name, const std::string &value) {
    if (!isGiven(name)) text += std::string(name) + "=" + value + ";";
  };
  if (!isGiven("DSN")) option("DRIVER", braced(chooseDriver(dialect, installedDrivers)));
  std::string host = server.host;
  if (server.port && dialect.portBehindHost) host += "," + std::to_string(server.port);
  option("SERVER", braced(host));
  if (server.port && !dialect.portBehindHost) option("PORT", std::to_string(server.port));
  option("UID", braced(server.user));
  if (!isGiven("PWD")) {
    text += "PWD=";
    text += quotedPassword;
    text += ";";
  }
  option("DATABASE", braced(server.database));
  if (*dialect.loginTimeout) option(dialect.loginTimeout, std::to_string(kLoginSeconds));
  text += dialect.fixedOptions;
  text += server.extra;
  wipe(password);
  wipe(quotedPassword);
  return text;
}

} // namespace vldb98::odbc
