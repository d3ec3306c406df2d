#include "odbc/odbc.h"

#include <dlfcn.h>

namespace vldb98::odbc {

#define ZELK_DEFINE(name) decltype(&::name) name = nullptr;
ZELK_ODBC_FUNCTIONS(ZELK_DEFINE)

bool driverManager() {
  static const bool found = [] {
    void *library = ::dlopen("libodbc.so.2", RTLD_NOW | RTLD_LOCAL);
    if (!library) return false;
    bool all = true;
#define ZELK_FIND(name)                                                                                                \
  name = reinterpret_cast<decltype(&::name)>(::dlsym(library, #name));                                                 \
  all = all && name;
    ZELK_ODBC_FUNCTIONS(ZELK_FIND)
    return all;
  }();
  return found;
}

} // namespace vldb98::odbc
