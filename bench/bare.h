/// SQLite as a program without this library would use it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <sqlite3.h>

namespace bench {

class BareConnection {
public:
  /// Opens a database as durably as the library does.
  explicit BareConnection(const std::string &file);
  ~BareConnection();
  BareConnection(const BareConnection &) = delete;
  BareConnection &operator=(const BareConnection &) = delete;

  void execute(const char *sql);
  sqlite3 *handle() const { return handle_; }

private:
  sqlite3 *handle_ = nullptr;
};

class BareStatement {
public:
  BareStatement(const BareConnection &connection, const std::string &sql);
  ~BareStatement() { sqlite3_finalize(statement_); }
  BareStatement(const BareStatement &) = delete;
  BareStatement &operator=(const BareStatement &) = delete;

  void bind(int parameter, int64_t value) { sqlite3_bind_int64(statement_, parameter, value); }
  void bind(int parameter, std::string_view value) {
    sqlite3_bind_text(statement_, parameter, value.data(), int(value.size()), SQLITE_STATIC);
  }
  void bind(int parameter, const sqlite3_value *value) { sqlite3_bind_value(statement_, parameter, value); }

  /// Runs it with these parameters and reads every column of the row. \return false when there is no row
  template <class... Values> bool run(const Values &...values) {
    int parameter = 1;
    (bind(parameter++, values), ...);
    return step();
  }
  bool step();

  /// Of the row that was read last.
  const std::string &firstText() const { return text_; }
  int64_t firstNumber() const { return number_; }

private:
  sqlite3_stmt *statement_ = nullptr;
  int columns_;
  std::string text_;
  int64_t number_ = 0;
};

/// What one durable posting needs of the engine: the same six look-ups, the same rows. Client 1, debit a debtor, credit
/// account 8400, tax key 3.
class BarePosting {
public:
  /// \param likeLibrary a database that holds, as the last of a batch, a posting that the library inserted
  BarePosting(const BareConnection &connection, const std::string &likeLibrary, int batch);

  void insert();

private:
  /// A row that is written again and again.
  struct Row {
    std::vector<sqlite3_value *> values;
    BareStatement insert;
    Row(const BareConnection &connection, const std::string &table, const std::string &likeLibrary, int batch);
    ~Row();
    /// \param number replaces the value of the column that numbers postings
    void write(int64_t number, int numberColumn);
  };

  int batch_;
  BareStatement begin_, commit_, client_, batchRecord_, year_, debit_, credit_, taxKey_, greatest_;
  Row posting_, line_;
};

} // namespace bench
