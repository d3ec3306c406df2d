// What is inserted on a server together, and the numbers that it assigns while others do the same.
#include <algorithm>

#include "isam/server_engine.h"
#include "isam/statements.h"

namespace vldb98 {
namespace {

// Of one statement: a server prepares each count by itself, and allows some two thousand parameters.
constexpr size_t kMostRows = 16;

// A block is a way to the server: it serves longer.
constexpr uint64_t kServerBlockLife = 1000;

} // namespace

ServerEngine::ServerEngine(std::unique_ptr<SqlConnection> connection, std::unique_ptr<Locks> locks)
    : IsamEngine(std::move(connection), std::move(locks), kServerBlockLife) {}

bool ServerEngine::insertAssigned(const Table &table, DATENBANK &record) {
  // Rows cannot keep others from inserting the same number: of an empty table there is none to lock. Who holds the
  // table needs no more.
  const LockName counter = LockName::on(table.number, client_, LockName::resourceOf("Nr"));
  if (!locks_->holds(LockName::on(table.number, client_)) && !locks_->holds(counter)) {
    if (!locks_->acquire({&counter, 1}, LockMode::Exclusive)) return false;
    pendingUnlocks_.push_back(counter);
  }
  if (dialect_.insertsDeliver) {
    bool understood = false;
    if (insertNumbered(table, record.bytes, understood)) return true;
    // After the greatest number that there can be, a server refuses the next one.
    const Failure failure = connection_->failure();
    if (understood && failure != Failure::Duplicate && failure != Failure::OutOfRange) return false;
  }
  // Another one can still have inserted the number between the read and the write, without the lock; the greatest
  // number of then tells that from a second key that is in use.
  for (int32_t last = 0;;) {
    if (!assignNumber(table, record.bytes)) return false;
    const int32_t number = assignedNumber(table, record.bytes);
    if (number == last) return false;
    if (writeRow(table, record.bytes)) return true;
    if (connection_->failure() != Failure::Duplicate) return false;
    last = number;
  }
}

// Older servers refuse the statement.
bool ServerEngine::insertNumbered(const Table &table, char *record, bool &understood) {
  Statement &slot = serverStateOf(table).insertNumbered;
  SqlStatement *statement = prepared(slot, slot ? std::string() : insertNumberedStatement(dialect_, table));
  understood = statement != nullptr;
  if (!statement) return false;
  int parameter = bindScope(*statement, table, 1);
  for (size_t i = 0; i < table.fields.size(); ++i)
    if (int(i) != table.assigned && !bindField(*statement, parameter++, table.fields[i], record, scratch_))
      return false;
  parameter = bindScopeAfter(*statement, table, parameter);
  if (!bindFields(*statement, table, fieldsBeforeAssigned(table), record, parameter)) return false;
  if (!beginChange()) return false;
  Execution execution(*statement);
  if (statement->step() != Step::Row) return false;
  putAssignedNumber(table, record, statement->integer(0));
  return true;
}

bool ServerEngine::insertRows(const Table &table, const char *records, size_t count) {
  for (size_t done = 0; done < count; done += std::min(count - done, kMostRows))
    if (!writeRows(table, records + done * table.recordSize, std::min(count - done, kMostRows))) return false;
  return true;
}

bool ServerEngine::writeRows(const Table &table, const char *records, size_t count) {
  if (count == 1) return writeRow(table, records);
  Statement &slot = serverStateOf(table).inserts[count];
  SqlStatement *statement = prepared(slot, slot ? std::string() : insertStatement(table, count));
  if (!statement) return false;
  while (rowScratch_.size() < count)
    rowScratch_.push_back(std::make_unique<Scratch>());
  int parameter = 1;
  for (size_t i = 0; i < count; ++i) {
    rowScratch_[i]->clear();
    parameter = bindScopeAfter(*statement, table, parameter);
    for (const Field &field : table.fields)
      if (!bindField(*statement, parameter++, field, records + i * table.recordSize, *rowScratch_[i])) return false;
  }
  return execute(*statement);
}

} // namespace vldb98
