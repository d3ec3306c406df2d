/// The database server that the tests run on where there is one: tests/mariadb/with_server starts it and says so in the
/// environment, as ZELK_TEST_MARIADB=HOST:PORT/USER/PASSWORD; or with_cluster, with several hosts.
#pragma once

#include "sql/server.h"
#include "sql/sql.h"

namespace test {

bool onServer();

/// A database that this process and those that it starts have for themselves.
const vldb98::ServerSettings &serverDatabase();

/// The next call of serverDatabase finds it empty.
void renewServerDatabase();

/// Ends every other connection to the database of the given one, as a restart of the server or a network that fails
/// would.
void endOtherConnections(vldb98::SqlConnection &administrator);

/// Lets the library's settings lead to a server.
void writeServerSettings(const vldb98::ServerSettings &server);

} // namespace test
