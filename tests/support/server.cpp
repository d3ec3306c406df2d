#include "support/server.h"

#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "odbc/odbc_connection.h"
#include "support/process.h"
#include "zelk98/zelk98.h"

namespace test {
namespace {

using namespace vldb98;

constexpr char kMaintenance[] = "zelk_test"; ///< of with_server; holds nothing
constexpr int kMostAtOnce = 64;

bool toBeEmptied = false;

std::string environment(const char *name) {
  const char *value = std::getenv(name);
  return value ? value : "";
}

ServerSettings reached(const std::string &database) {
  const std::string text = environment("ZELK_TEST_MARIADB");
  const size_t user = text.find('/'), password = text.find('/', user + 1);
  if (password == std::string::npos) throw std::runtime_error("ZELK_TEST_MARIADB: " + text);
  ServerSettings server;
  server.engine = ZELK_ENG_MYSQL;
  server.host = text.substr(0, user);
  if (server.host.find(',') == std::string::npos) server = eachHost(server).front();
  server.user = text.substr(user + 1, password - user - 1);
  server.password = Secret(text.substr(password + 1));
  server.database = database;
  return server;
}

std::unique_ptr<SqlConnection> connected(const std::string &database) {
  std::string ignored;
  auto connection = openOdbc(reached(database), std::chrono::seconds(10), ignored);
  if (!connection) throw std::runtime_error("the server of the tests cannot be reached");
  return connection;
}

bool isOne(SqlConnection &connection, const std::string &sql) {
  auto statement = connection.prepare(sql);
  return statement && statement->step() == Step::Row && statement->integer(0) == 1;
}

// Databases are kept and emptied, since making sixty tables takes longer than a test. A named lock that lasts as long
// as this process tells that one is in use.
ServerSettings take() {
  if (std::string given = environment("ZELK_TEST_DATABASE"); !given.empty()) return reached(given);
  static std::unique_ptr<SqlConnection> holder = connected(kMaintenance);
  int number = 1;
  while (!isOne(*holder, "SELECT GET_LOCK('zelk98 test " + std::to_string(number) + "', 0)"))
    if (++number > kMostAtOnce) throw std::runtime_error("no database of the tests is free");
  std::string database = kMaintenance + std::to_string(number);
  setEnvironment("ZELK_TEST_DATABASE", database);
  holder->execute("CREATE DATABASE IF NOT EXISTS " + database);
  return reached(database);
}

void emptyDatabase(const std::string &database) {
  auto connection = connected(database);
  auto tables = connection->prepare("SELECT table_name FROM information_schema.tables WHERE table_schema=DATABASE()");
  std::string sql;
  while (tables && tables->step() == Step::Row)
    if (!connection->execute("DELETE FROM \"" + std::string(tables->text(0)) + "\""))
      throw std::runtime_error("a database of the tests cannot be emptied");
}

} // namespace

bool onServer() {
  return !environment("ZELK_TEST_MARIADB").empty();
}

const ServerSettings &serverDatabase() {
  static const ServerSettings server = take();
  if (std::exchange(toBeEmptied, false)) emptyDatabase(server.database);
  return server;
}

void renewServerDatabase() {
  toBeEmptied = true;
}

void endOtherConnections(SqlConnection &administrator) {
  auto others = administrator.prepare("SELECT id FROM information_schema.processlist WHERE db=DATABASE() AND "
                                      "id<>CONNECTION_ID()");
  std::vector<std::string> ids;
  while (others->step() == Step::Row)
    ids.push_back(std::to_string(others->integer(0)));
  others->reset();
  for (const std::string &id : ids)
    administrator.execute("KILL " + id);
  // They are gone when the server has noticed.
  for (bool left = true; left; others->reset())
    left = others->step() == Step::Row;
}

void writeServerSettings(const ServerSettings &server) {
  auto write = [](const char *key, const std::string &value) {
    MFWritePrivateProfileString(kServerSection, key, value.c_str(), "");
  };
  write("Engine", std::to_string(server.engine));
  write("Host", server.host);
  write("Port", std::to_string(server.port));
  write("User", server.user);
  write("Passwort", server.password.reveal());
  write("Datenbank", server.database);
}

} // namespace test
