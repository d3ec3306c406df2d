#include "evaluations/figures.h"

#include <cstring>
#include <string>

#include "frame/messages.h"
#include "frame/money_output.h"
#include "store/typed.h"
#include "vlba98/encoding.h"
#include "vlba98/money.h"
#include "vlfn98/accounts.h"
#include "vlfn98/client.h"

using namespace frame;
using namespace vldb98;

namespace evaluations {

Outcome inadmissible(ZelkResult code, std::string_view what) {
  return {code, resources::kInadmissible, vlba98::toWindows1252(what).value_or(std::string(what))};
}

Outcome checkForm(int32_t form) {
  return isAmountForm(form) ? Outcome{} : inadmissible(ZELKERR_uzl_Format, "Das Ausgabeformat ist");
}

Outcome readAccount(Store &store, const AccountRequest &account, DATENBANK &record) {
  const char *number = account.number ? account.number : "";
  if (std::strlen(number) >= sizeof SACHKONTO::Nr) return noSuchAccount(account.kind);
  const int table = vlfn98::KzFromZELKArt(account.kind);
  const auto found = vlfn98::findAccount(store, table, number, account.dimension, account.reference);
  if (!found) return noSuchAccount(account.kind);
  record = *found;
  return {};
}

Outcome noSuchAccount(int32_t kind) {
  if (kind == ZELK_KOSTENSTELLE) return inadmissible(ZELKERR_uzl_Kostenstelle, "Die Kostenstelle ist");
  return {ZELKERR_uzl_Kontonr, resources::kAccountNumberInadmissible};
}

void waitForYear(Store &store, FileNumber resource, int table) {
  constexpr int waitOnly = 1;
  std::string name = store.HoleOpenJahr();
  if (table >= 0) name += "/" + std::to_string(table);
  must(store.LockRes(resource, store.HoleFista().Nummer, name.c_str(), waitOnly, 0));
}

Outcome deliver(int32_t form, std::initializer_list<Figure> figures) {
  char internal[vlba98::moneyWidth + 1];
  for (const Figure &figure : figures)
    if (figure.buffer && !vlba98::formatMoney(figure.hundredths, internal))
      return {ZELKERR_sonst, resources::kAmountTooGreat}; // the text of -37 speaks of account numbers
  for (const Figure &figure : figures) {
    if (!figure.buffer) continue;
    vlba98::formatMoney(figure.hundredths, internal);
    formatAmount(form, figure.buffer, internal);
  }
  return {};
}

} // namespace evaluations
