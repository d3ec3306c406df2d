/// A prepared statement of a server.
#pragma once

#include <string>
#include <vector>

#include "odbc/odbc.h"
#include "sql/sql.h"

namespace vldb98::odbc {

/// What a statement needs of its connection.
class Session {
public:
  virtual ~Session() = default;
  /// False when the connection is lost: nothing is sent then.
  virtual bool alive() const = 0;
  virtual bool takesUtf8() const = 0;
  /// Counts one statement on its way to the server.
  virtual void sent() = 0;
  virtual void succeeded(int64_t rows) = 0;
  /// A statement of its own for a text; none when it is not accepted.
  virtual StatementHandle prepared(std::u16string &text) = 0;
  /// Looks up what went wrong, gives the statement up, and draws the consequences.
  virtual void failed(StatementHandle &statement) = 0;
};

/// The text with a bare mark for each parameter, and the parameter that each mark stands for, from 0.
struct MarkedText {
  std::u16string text;
  std::vector<size_t> marks;
};
MarkedText markedText(const std::string &sql);

class OdbcStatement final : public SqlStatement {
public:
  OdbcStatement(Session &session, StatementHandle handle, MarkedText marked);

  void bind(int parameter, int64_t value) override;
  void bind(int parameter, std::string_view utf8) override;
  void bindNull(int parameter) override;
  Step step() override;
  void reset() override;
  bool isNull(int column) override;
  int64_t integer(int column) override;
  std::string_view text(int column) override;

private:
  struct Parameter {
    bool isText = false;
    bool bound = false; // with this type, at this place
    int64_t number = 0;
    std::string text;            // UTF-8, or the bytes of UTF-16
    const void *place = nullptr; // of the text when it was bound
    SQLLEN length = 0;           // in bytes, or SQL_NULL_DATA
  };
  struct Column {
    bool isText = false;
    int64_t number = 0;
    std::string text, utf8;
    SQLLEN length = 0;
  };

  Parameter &parameter(int number);
  bool bindParameters();
  bool bindColumns();
  Step fail();

  Session &session_;
  StatementHandle handle_;
  MarkedText marked_;
  std::vector<Parameter> parameters_;
  std::vector<Column> columns_;
  bool columnsBound_ = false, open_ = false;
};

} // namespace vldb98::odbc
