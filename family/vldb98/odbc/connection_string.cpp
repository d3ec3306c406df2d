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

// Takes the first option, without the semicolon after it, off a connection string.
std::string_view takeOption(std::string_view &text) {
  size_t end = text.find_first_of("=;");
  if (end != text.npos && text[end] == '=') {
    end = std::min(text.find_first_not_of(' ', end + 1), text.size());
    // A doubled brace is one of the value's.
    if (text.substr(end).starts_with('{'))
      for (++end; end < text.size() && (text[end] != '}' || text.substr(end, 2) == "}}"); ++end)
        if (text[end] == '}') ++end;
    end = text.find(';', std::min(end, text.size()));
  }
  const std::string_view option = text.substr(0, end);
  text.remove_prefix(end == text.npos ? text.size() : end + 1);
  return option;
}

// In capitals; empty for what is no option.
std::string nameOf(std::string_view option) {
  const size_t equals = option.find('=');
  std::string name = upper(option.substr(0, equals == option.npos ? 0 : equals));
  name.erase(0, name.find_first_not_of(' '));
  return name.erase(name.find_last_not_of(' ') + 1);
}

std::vector<std::string> optionsIn(std::string_view text) {
  std::vector<std::string> names;
  while (!text.empty())
    if (std::string name = nameOf(takeOption(text)); !name.empty()) names.push_back(std::move(name));
  return names;
}

// Of any driver, and of statements that an option lets it execute.
bool carriesSecret(std::string_view option) {
  const std::string text = upper(option);
  auto holds = [&](const char *mark) { return text.find(mark) != text.npos; };
  return nameOf(option) == "PW" || holds("PWD") || holds("PASS") || holds("KENNWORT") || holds("SECRET") ||
         holds("TOKEN") || holds("IDENTIFIED");
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

std::string withoutSecrets(std::string_view text) {
  std::string shown;
  bool afterSecret = false;
  while (!text.empty()) {
    const size_t before = text.size();
    const std::string_view option = takeOption(text);
    const bool separated = before - text.size() > option.size();
    const size_t value = option.find('=') + 1; // 0: this is no option
    // It can be the rest of a secret that should have stood in braces.
    const bool secret = value ? carriesSecret(option) : afterSecret && !option.empty();
    if (value) afterSecret = secret;
    shown += secret ? option.substr(0, value) : option;
    if (secret) shown += "***";
    if (separated) shown += ';';
  }
  return shown;
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
