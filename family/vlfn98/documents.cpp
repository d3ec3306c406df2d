#include "vlfn98/documents.h"

#include "vlba98/text.h"

using namespace vldb98;

namespace vlfn98 {

bool CheckEsr(std::string_view reference) {
  static constexpr int carries[10] = {0, 9, 4, 6, 8, 2, 7, 1, 3, 5};
  int carry = 0, check = 0, digits = 0;
  for (char c : reference) {
    if (c == ' ') continue;
    if (!vlba98::IsZiffer(c)) return false;
    check = (10 - carry) % 10;
    carry = carries[(carry + (c - '0')) % 10];
    if (++digits > 27) return false;
    if ((digits == 16 || digits == 27) && c - '0' == check) check = -1;
  }
  return (digits == 16 || digits == 27) && check == -1;
}

int DmsInsertDmsID(Store &store, const char *identifier, int32_t &number) {
  DATENBANK record{};
  uint8_t found;
  if (!store.UsedGet(record, KeyBuilder().text(identifier, sizeof(DMS_ID::Id) - 1), found, fileNumber(kDmsId, 1)))
    return 0;
  if (!found) {
    record = {};
    vlba98::strncpy2(record.DmsId.Id, identifier);
    if (!store.Insert(record, kDmsId)) return 0;
  }
  number = record.DmsId.Nr;
  return 1;
}

int DmsGetDmsID(Store &store, int32_t number, char (&identifier)[51]) {
  DATENBANK record{};
  uint8_t found = 0;
  identifier[0] = 0;
  if (number != 0 && !store.UsedGet(record, KeyBuilder().number(number), found, kDmsId)) return 0;
  if (found) vlba98::strncpy2(identifier, record.DmsId.Id);
  return 1;
}

} // namespace vlfn98
