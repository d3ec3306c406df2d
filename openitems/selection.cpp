#include "openitems/selection.h"

#include <cstddef>

#include "store/typed.h"
#include "vlba98/text.h"

using namespace vldb98;

namespace openitems {
namespace {

using By = ItemSelection::By;

struct Rule {
  By by;
  int keyIndex;
  uint16_t offset, size; // of the key's field
  bool sameValue;        // the field of an item equals the value
};

constexpr Rule kRules[] = {{By::Nothing, 0, 0, 0, false},
                           {By::Account, 1, offsetof(OPBELEG, Konto), sizeof(OPBELEG::Konto), true},
                           {By::Document, 4, offsetof(OPBELEG, Belegnummer), sizeof(OPBELEG::Belegnummer), true},
                           {By::OpenItem, 9, offsetof(OPBELEG, OPBelegnummer), sizeof(OPBELEG::OPBelegnummer), true},
                           {By::Date, 12, offsetof(OPHISTORIE, Zahldatum), sizeof(OPHISTORIE::Zahldatum), false}};

const Rule &ruleOf(By by) {
  return kRules[size_t(by)];
}

std::string_view withoutTrailingBlanks(std::string_view text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

} // namespace

std::string_view given(const char *text) {
  return vlba98::trimmed(text ? text : "");
}

std::string_view givenNumber(const char *text) {
  return withoutTrailingBlanks(text ? text : "");
}

ItemSelection selectBy(By by, std::string_view value) {
  ItemSelection selection;
  selection.by = by;
  vlba98::strncpy2(selection.value, value, ruleOf(by).size);
  if (by == By::Account) vlba98::FillWithSpaces(selection.value, kAccountWidth);
  return selection;
}

FileNumber fileOf(int table, const ItemSelection &selection) {
  return fileNumber(table, ruleOf(selection.by).keyIndex);
}

bool holds(const ItemSelection &selection, const DATENBANK &item) {
  const Rule &rule = ruleOf(selection.by);
  // A number and the same with blanks after it stand next to each other in the key.
  return !rule.sameValue || withoutTrailingBlanks(item.bytes + rule.offset) == withoutTrailingBlanks(selection.value);
}

ZelkResult findFirst(Store &store, const ItemSelection &selection, int table, DATENBANK &item) {
  constexpr int32_t waitForWriter = 1;
  const In items{store, fileOf(table, selection), waitForWriter};
  const auto found = selection.by == By::Nothing ? first<DATENBANK>(items) : atLeast<DATENBANK>(items, selection.value);
  if (!found || !holds(selection, *found)) return ZELK_keinKonto;
  item = *found;
  return ZELK_OK;
}

} // namespace openitems
