#include "odbc/odbc.h"

namespace vldb98::odbc {

#define ZELK_DEFINE(name) decltype(&::name) name = &::name;
ZELK_ODBC_FUNCTIONS(ZELK_DEFINE)

bool driverManager() {
  return true;
}

} // namespace vldb98::odbc
