#include "vldb98/server.h"

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
