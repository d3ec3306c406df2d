/// How a database server is reached.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "sql/sql.h"

namespace vldb98 {

/// Overwrites memory that held a secret, in a way that no compiler leaves out.
void wipe(void *memory, size_t size);
template <class Text> void wipe(Text &text) {
  wipe(text.data(), text.size() * sizeof text[0]);
  text.clear();
}

/// A secret that has to be kept to be used again. It lies in memory masked with random bytes, so that it stands in no
/// dump in plain, and is wiped at its end.
class Secret {
public:
  Secret() = default;
  explicit Secret(std::string_view text);
  Secret(const Secret &) = default;
  Secret(Secret &&) = default;
  Secret &operator=(const Secret &other);
  ~Secret();

  bool empty() const { return masked_.empty(); }
  /// In plain; whoever asks wipes it.
  std::string reveal() const;

private:
  std::vector<char> masked_, mask_;
};

/// All texts are UTF-8.
struct ServerSettings {
  DBENGINE engine = ZELK_ENG_BTRIEVE; ///< ZELK_ENG_MYSQL or ZELK_ENG_MSSQL; else there is no server
  std::string host;                   ///< or several, see eachHost
  std::string user;
  Secret password;
  uint16_t port = 0; ///< 0: the server's usual one
  std::string extra; ///< further options for the ODBC driver, as in a connection string
  std::string database;

  bool isServer() const { return engine == ZELK_ENG_MYSQL || engine == ZELK_ENG_MSSQL; }
};

/// One server for each that the host names, in the order in which they are to be tried: "a,b:3307,[fe80::1]:3308". The
/// settings' port is meant where there is none.
std::vector<ServerSettings> eachHost(const ServerSettings &server);

/// Where the settings name a server. \param read a setting of the section kServerSection, empty when it is missing
ServerSettings serverOfSettings(const std::function<std::string(const char *key)> &read);
inline constexpr char kServerSection[] = "SQL";

} // namespace vldb98
