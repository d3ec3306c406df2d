#include "locks/lock_statements.h"

#include "sql/sql_text.h"

namespace vldb98 {
namespace {

/// A text of the dialect with the numbers that it names: {n} a lock's, from 1; {before} the one before it; {count} how
/// many there are; {wait} the parameter with the time to wait.
std::string numbered(const char *pattern, size_t n, size_t count) {
  std::string text = filledIn(pattern, "{n}", std::to_string(n));
  text = filledIn(text, "{before}", std::to_string(n - 1));
  text = filledIn(text, "{count}", std::to_string(count));
  return filledIn(text, "{wait}", "?" + std::to_string(count + 1));
}

Names numberedEach(const char *pattern, size_t count) {
  Names texts;
  for (size_t n = 1; n <= count; ++n)
    texts.push_back(numbered(pattern, n, count));
  return texts;
}

} // namespace

std::string lockStatement(const Dialect &dialect, size_t count) {
  const NamedLockTexts &texts = dialect.namedLocks;
  return texts.takeBegin + joined(numberedEach(texts.takeEach, count), "") + numbered(texts.takeEnd, 1, count);
}

std::string unlockStatement(const Dialect &dialect, size_t count) {
  const NamedLockTexts &texts = dialect.namedLocks;
  return texts.giveBegin + joined(numberedEach(texts.giveEach, count), texts.giveBetween);
}

std::string lockRowsStatement(LockRows what, size_t count) {
  static const Names key{quoted("Mandant"), quoted("Tabelle"), quoted("Ressource")};
  const std::string name = quoted("Sperre"), stand = quoted("Stand"), all = joined(key, ",") + "," + stand;
  Names conditions = equalities(key);
  if (what == LockRows::RaiseNoted) conditions.push_back(stand + "=?");
  // The order of the index is that of the rows in the other statements, so that nobody waits crosswise.
  const std::string those =
      " FORCE INDEX (PRIMARY)%s" + where({joined(Names(count, "(" + joined(conditions, " AND ") + ")"), " OR ")});
  const std::string raised = stand + "=" + stand + "+1";
  auto rows = [&](const char *first) {
    return "(" + all + ") VALUES " + joined(Names(count, std::string("(?,?,?,") + first + ")"), ",");
  };
  switch (what) {
  case LockRows::Read:
    return "SELECT " + all + " FROM " + name + filledIn(those, "%s", "");
  case LockRows::Make:
    return "INSERT IGNORE INTO " + name + " " + rows("0");
  case LockRows::RaiseNoted:
    return "UPDATE " + name + filledIn(those, "%s", " SET " + raised);
  case LockRows::Raise:
    break;
  }
  return "INSERT INTO " + name + " " + rows("1") + " ON DUPLICATE KEY UPDATE " + raised + " RETURNING " + all;
}

std::string createLockRowsStatement(const Dialect &dialect) {
  return filledIn(dialect.createInFront, "%s", "Sperre") +
         "\"Sperre\" (\"Mandant\" INT NOT NULL,\"Tabelle\" INT NOT NULL,\"Ressource\" BIGINT NOT NULL,"
         "\"Stand\" BIGINT NOT NULL,PRIMARY KEY (\"Mandant\",\"Tabelle\",\"Ressource\"))" +
         dialect.createBehind;
}

} // namespace vldb98
