/// The ODBC interface for the files of this folder: its header, handles that close themselves, its 16-bit texts.
///
/// Only the functions for UTF-16 are used: what an 8-bit text means would depend on the machine's code page.
#pragma once

// On Windows the build puts the system's types in front, which this header leaves to whoever includes it.
#include <sql.h>
#include <sqlext.h>

#include <string>
#include <string_view>
#include <utility>

namespace vldb98::odbc {

/// The functions of the driver manager that are used, under their own names: hidden by these, the declared ones are
/// called through them. Null until driverManager() has found them.
// clang-format off
#define ZELK_ODBC_FUNCTIONS(each)                                                                                      \
  each(SQLAllocHandle) each(SQLBindCol) each(SQLBindParameter) each(SQLDescribeColW) each(SQLDisconnect)               \
  each(SQLDriverConnectW) each(SQLDriversW) each(SQLExecDirectW) each(SQLExecute) each(SQLFetch)                       \
  each(SQLFreeHandle) each(SQLFreeStmt) each(SQLGetData) each(SQLGetDiagRecW) each(SQLNumResultCols)                   \
  each(SQLPrepareW) each(SQLRowCount) each(SQLSetConnectAttrW) each(SQLSetEnvAttr)
// clang-format on
#define ZELK_DECLARE(name) extern decltype(&::name) name;
ZELK_ODBC_FUNCTIONS(ZELK_DECLARE)
#undef ZELK_DECLARE

/// Finds the driver manager: linked on Windows, whose part it is, loaded elsewhere, so that hosts whose books lie in a
/// file need none. \return false where there is none
bool driverManager();

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "texts are UTF-16");

/// A handle of the driver manager, freed at its end.
template <SQLSMALLINT kind> class Handle {
public:
  Handle() = default;
  explicit Handle(SQLHANDLE parent) {
    if (!SQL_SUCCEEDED(SQLAllocHandle(kind, parent, &handle_))) handle_ = nullptr;
  }
  Handle(Handle &&other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle &operator=(Handle &&other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Handle() {
    if (handle_ != nullptr) SQLFreeHandle(kind, handle_);
  }

  explicit operator bool() const { return handle_ != nullptr; }
  SQLHANDLE get() const { return handle_; }

private:
  SQLHANDLE handle_ = nullptr;
};
using Environment = Handle<SQL_HANDLE_ENV>;
using StatementHandle = Handle<SQL_HANDLE_STMT>;

inline SQLWCHAR *wide(char16_t *text) {
  return reinterpret_cast<SQLWCHAR *>(text);
}
inline SQLWCHAR *wide(std::u16string &text) {
  return wide(text.data());
}

/// Well-formed UTF-8 to UTF-16, after what stands there; a malformed byte becomes a question mark.
void appendUtf16(std::u16string &to, std::string_view utf8);
/// The way back; half of a pair becomes a question mark.
void appendUtf8(std::string &to, const char16_t *text, size_t length);

} // namespace vldb98::odbc
