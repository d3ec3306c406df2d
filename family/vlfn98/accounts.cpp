#include "vlfn98/accounts.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "store/typed.h"
#include "vlba98/text.h"

using namespace vldb98;

namespace vlfn98 {

void KonvertKonto(char (&number)[8], int length) {
  std::string plain(vlba98::trimmed(number));
  size_t digits = size_t(length < 1 ? 4 : std::min(length, 7));
  if (vlba98::IsZahl(plain) && plain.size() < digits) plain.insert(0, digits - plain.size(), '0');
  vlba98::strncpy2(number, plain);
  vlba98::FillWithSpaces(number);
}

int GetKostKontoKey(const char *number, int32_t dimension, const char *reference, SCHLUESSEL &key) {
  // A dimension that does not fit is one that there is not.
  const int32_t fitting = std::clamp<int32_t>(dimension, INT16_MIN, INT16_MAX);
  const bool withReference = reference && *reference;
  const int file = fileNumber(kKost, withReference ? 10 : 9);
  key = withReference ? keyOf(FileNumber(file), fitting, number, reference) : keyOf(FileNumber(file), fitting, number);
  return file - kKost;
}

namespace {

// What an account is found by.
struct AccountKey {
  AccountKey(int table, const char *number, int32_t dimension, const char *reference) : file(FileNumber(table)) {
    if (table == kKost)
      file = FileNumber(file + GetKostKontoKey(number, dimension, reference, key));
    else
      key = keyOf(file, number);
  }
  FileNumber file;
  SCHLUESSEL key;
};

} // namespace

std::optional<DATENBANK> findAccount(Store &store, int table, const char *number, int32_t dimension,
                                     const char *reference) {
  const AccountKey by(table, number, dimension, reference);
  return find<DATENBANK>({store, by.file}, by.key);
}

bool existsAccount(Store &store, int table, const char *number, int32_t dimension, const char *reference) {
  const AccountKey by(table, number, dimension, reference);
  return exists<DATENBANK>({store, by.file}, by.key);
}

} // namespace vlfn98
