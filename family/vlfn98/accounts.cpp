#include "vlfn98/accounts.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "vlba98/text.h"

namespace vlfn98 {

void KonvertKonto(char (&number)[8], int length) {
  std::string plain(vlba98::trimmed(number));
  size_t digits = size_t(length < 1 ? 4 : std::min(length, 7));
  if (vlba98::IsZahl(plain) && plain.size() < digits) plain.insert(0, digits - plain.size(), '0');
  vlba98::strncpy2(number, plain);
  vlba98::FillWithSpaces(number);
}

int GetKostKontoKey(const char *number, int32_t dimension, const char *reference, vldb98::SCHLUESSEL &key) {
  vldb98::KeyBuilder builder;
  // A dimension that does not fit is one that there is not.
  builder.number(int16_t(std::clamp<int32_t>(dimension, INT16_MIN, INT16_MAX))).account(number);
  bool withReference = reference && *reference;
  if (withReference) builder.account(reference);
  key = builder;
  return vldb98::fileNumber(0, withReference ? 10 : 9);
}

} // namespace vlfn98
