/// Database servers through ODBC.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "sql/server.h"
#include "sql/sql.h"

namespace vldb98 {

/// Connects to the first server of the settings' hosts that can be reached, knows the user and the database, and as a
/// node of a cluster takes part in it; each is given a few seconds. Prepares the session: SQL mode, isolation, time to
/// wait for rows that others write.
/// \param wait     how long a statement waits for another writer
/// \param database receives the name of the database in use, as the server calls it
/// \return null when there is no such server
std::unique_ptr<SqlConnection> openOdbc(const ServerSettings &server, std::chrono::milliseconds wait,
                                        std::string &database);

/// Statements that this process has sent to servers so far: what a call costs where the network is the slow part. The
/// preparation of a statement, which a session does once, is not counted.
uint64_t roundTrips();

} // namespace vldb98
