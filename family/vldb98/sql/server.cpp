#include "sql/server.h"

#include <cstdlib>
#include <random>

namespace vldb98 {

void wipe(void *memory, size_t size) {
  auto *byte = static_cast<volatile char *>(memory);
  for (size_t i = 0; i < size; ++i)
    byte[i] = 0;
}

Secret::Secret(std::string_view text) : masked_(text.begin(), text.end()), mask_(text.size()) {
  std::random_device random;
  for (size_t i = 0; i < masked_.size(); ++i) {
    mask_[i] = char(random());
    masked_[i] = char(masked_[i] ^ mask_[i]);
  }
}

Secret &Secret::operator=(const Secret &other) {
  if (this == &other) return *this;
  Secret copy(other);
  masked_.swap(copy.masked_);
  mask_.swap(copy.mask_);
  return *this;
}

Secret::~Secret() {
  wipe(masked_);
  wipe(mask_);
}

std::string Secret::reveal() const {
  std::string text(masked_.size(), 0);
  for (size_t i = 0; i < masked_.size(); ++i)
    text[i] = char(masked_[i] ^ mask_[i]);
  return text;
}

namespace {

uint16_t portOf(std::string_view digits) {
  const bool number = !digits.empty() && digits.size() <= 5 && digits.find_first_not_of("0123456789") == digits.npos;
  const int port = number ? std::stoi(std::string(digits)) : 0;
  return port <= UINT16_MAX ? uint16_t(port) : uint16_t(0);
}

// Several colons without brackets are those of an address.
void takeHost(ServerSettings &server, std::string_view text) {
  const bool bracketed = text.starts_with('[');
  const size_t end = bracketed ? text.find(']') : text.find(':');
  std::string_view host = text.substr(0, end), rest = end == text.npos ? "" : text.substr(end);
  if (bracketed && !rest.empty()) {
    host.remove_prefix(1);
    rest.remove_prefix(1);
  }
  const uint16_t port = rest.empty() ? uint16_t(0) : portOf(rest.substr(1));
  const bool understood = rest.empty() || (rest.front() == ':' && port != 0);
  server.host = understood ? host : text;
  if (port) server.port = port;
}

} // namespace

std::vector<ServerSettings> eachHost(const ServerSettings &server) {
  std::vector<ServerSettings> servers;
  for (std::string_view rest = server.host; !rest.empty();) {
    const size_t comma = rest.find(',');
    std::string_view one = rest.substr(0, comma);
    rest = comma == rest.npos ? "" : rest.substr(comma + 1);
    const size_t first = one.find_first_not_of(' ');
    if (first == one.npos) continue;
    servers.push_back(server);
    takeHost(servers.back(), one.substr(first, one.find_last_not_of(' ') - first + 1));
  }
  if (servers.empty()) servers.push_back(server);
  return servers;
}

ServerSettings serverOfSettings(const std::function<std::string(const char *key)> &read) {
  ServerSettings server;
  const std::string engine = read("Engine");
  if (engine == "2") server.engine = ZELK_ENG_MYSQL;
  if (engine == "3") server.engine = ZELK_ENG_MSSQL;
  if (!server.isServer()) return server;
  server.host = read("Host");
  server.user = read("User");
  std::string password = read("Passwort");
  server.password = Secret(password);
  wipe(password);
  const long port = std::strtol(read("Port").c_str(), nullptr, 10);
  if (port > 0 && port <= UINT16_MAX) server.port = uint16_t(port);
  server.extra = read("Zusatz");
  server.database = read("Datenbank");
  return server;
}

} // namespace vldb98
