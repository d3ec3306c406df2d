/// What the engines' SQL differs in, as data: one entry per engine, from which statements.h makes its texts.
#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "sql/sql.h"

namespace vldb98 {

/// A number of the server's own for an error, and what it means here.
struct NativeError {
  int32_t number;
  Failure meaning;
};

/// Named locks, which a connection holds. {n} stands for the lock's number from 1, {before} for the one before it,
/// {count} for how many there are, {wait} for the parameter with the time to wait in milliseconds.
struct NamedLockTexts {
  const char *takeBegin, *takeEach, *takeEnd;
  const char *pass;   ///< waits for the holder of ?1 for ?2 milliseconds and takes nothing: 1 when nobody holds it
  const char *holder; ///< the number of the connection that holds it; 0, NULL or no row: nobody, or it is not told
  const char *giveBegin, *giveEach, *giveBetween;
  const char *endConnection; ///< %d: its number
};

struct Dialect {
  const char *name;
  DBENGINE engine;

  // --- Reads ---
  const char *rowsInFront; ///< after SELECT; %d: how many rows at most
  const char *rowsBehind;  ///< the same, at the end of the statement
  /// A comparison of rows, "(a,b)>(?,?)", is one seek of the index. Where it is not, it is written out.
  bool comparesRows;
  /// Names the index after the table, so that no statistics of an empty table lead to a scan; %s: the index. Null: the
  /// server chooses.
  const char *useIndex;
  const char *primaryIndex;     ///< what useIndex calls the primary key
  const char *forUpdateAtTable; ///< keeps others from writing the rows that are read
  const char *forUpdateBehind;  ///< the same, at the end of the statement

  // --- Round trips ---
  /// An insert reckons the number that it assigns, and delivers it.
  bool insertsDeliver;

  // --- Tables ---
  const char *createInFront; ///< up to the table's quoted name; %s: its name
  const char *createBehind;
  bool indexesInside; ///< indexes stand in the table's creation
  const char *index;  ///< what an index inside begins with; %s: its name
  const char *uniqueIndex;
  const char *integers[4]; ///< UInt8, Int16, UInt16, Int32
  const char *money, *year;
  const char *text;           ///< %d: bytes or characters
  int textBytesPerCharacter;  ///< what %d counts
  const char *tableExists;    ///< parameter: the table's name
  bool tablesEndTransactions; ///< making or dropping a table commits

  // --- Sessions ---
  NamedLockTexts namedLocks;
  /// Delivers the database, the version, "" where the server is no node of a cluster, and the connection's number or 0.
  /// What stands in a comment is left out where the server does not know it.
  const char *whoIsThere;
  const char *isReady; ///< asks a node whether it takes part in the cluster: 1
  std::vector<std::string> (*setUp)(std::chrono::milliseconds wait); ///< statements after the connection
  std::vector<std::string> begin, beginSnapshot;
  const char *commit, *rollback;
  const char *savepoint, *rollbackTo, *release; ///< %d: its number; an empty release: not needed
  std::span<const NativeError> errors;

  // --- Connection string ---
  std::span<const char *const> drivers; ///< beginnings of the drivers' names, the best first
  const char *fixedOptions;
  const char *loginTimeout; ///< option in seconds, where the driver does not heed ODBC's own; else empty
  /// The driver hands 8-bit texts on as they are, so they are UTF-8; else it is given UTF-16.
  bool takesUtf8;
  bool portBehindHost; ///< "host,port" in place of an option of its own
};

const Dialect &sqliteDialect();
const Dialect &mariadbDialect();
const Dialect &mysqlDialect();
const Dialect &mssqlDialect();

} // namespace vldb98
