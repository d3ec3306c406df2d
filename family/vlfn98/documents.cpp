#include "vlfn98/documents.h"

#include "store/typed.h"
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

int32_t DmsInsertDmsID(Store &store, const char *identifier) {
  if (const auto known = find<DMS_ID>({store, fileNumber(kDmsId, 1)}, identifier)) return known->Nr;
  DMS_ID added{};
  vlba98::strncpy2(added.Id, identifier);
  insert(store, added);
  return added.Nr;
}

void DmsGetDmsID(Store &store, int32_t number, char (&identifier)[51]) {
  const auto known = number != 0 ? find<DMS_ID>(store, number) : std::nullopt;
  vlba98::strncpy2(identifier, known ? known->Id : "");
}

} // namespace vlfn98
