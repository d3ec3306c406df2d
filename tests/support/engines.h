/// The engines that the tests of the record store run on: each test of a StoreTest runs once per entry of engines().
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "sql/sql.h"
#include "support/books.h"

namespace test {

struct EngineCase {
  const char *name;
  vldb98::DBENGINE kind, other; ///< the engine's own number, and one that it must refuse
  /// Why it cannot run here; empty when it can.
  std::function<std::string()> missing;
  /// The settings of a database of the test's own, and the database itself without tables where it is not there yet.
  std::function<vldb98::DatabaseSettings(const std::filesystem::path &folder)> provide;
  /// A connection for plain SQL beside the store.
  std::function<std::unique_ptr<vldb98::SqlConnection>(const vldb98::DatabaseSettings &settings)> connect;
};

const std::vector<EngineCase> &engines();
void PrintTo(const EngineCase &engine, std::ostream *stream);

/// Another session of the database that a StoreTest made in the folder, for a process that it started: client 1 open.
/// \param engine name of the test's engine
std::unique_ptr<vldb98::Store> openBeside(const std::string &engine, const std::filesystem::path &folder,
                                          std::chrono::milliseconds lockWait);

/// A database with all tables, the clients 1 and 2 with the fiscal years 2025 and 2026 (current), and batch 1 of each.
class StoreTest : public Environment, public ::testing::WithParamInterface<EngineCase> {
protected:
  void SetUp() override;
  /// A session of the database with client 1 open.
  std::unique_ptr<vldb98::Store> open(std::chrono::milliseconds lockWait = std::chrono::seconds(10));
  std::unique_ptr<vldb98::Store> openWithoutClient() { return openSession(settings_); }
  std::unique_ptr<vldb98::SqlConnection> connect() { return GetParam().connect(settings_); }

  std::unique_ptr<vldb98::Store> store; ///< the test's own session

private:
  vldb98::DatabaseSettings settings_;
};

#define ZELK_ON_ALL_ENGINES(suite)                                                                                     \
  INSTANTIATE_TEST_SUITE_P(Engine, suite, ::testing::ValuesIn(engines()),                                              \
                           [](const auto &engine) { return std::string(engine.param.name); })

} // namespace test
