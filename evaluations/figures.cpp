#include "evaluations/figures.h"

#include <cstring>
#include <string>

#include "frame/messages.h"
#include "frame/money_output.h"
#include "vlba98/encoding.h"
#include "vlba98/geld.h"
#include "vlfn98/accounts.h"
#include "vlfn98/client.h"

using namespace frame;
using namespace vldb98;

namespace evaluations {

Outcome inadmissible(ZelkResult code, std::string_view what) {
  return {code, resources::kUnzulaessig, vlba98::toWindows1252(what).value_or(std::string(what))};
}

Outcome checkForm(int32_t form) {
  return isAmountForm(form) ? Outcome{} : inadmissible(ZELKERR_uzl_Format, "Das Ausgabeformat ist");
}

Outcome readAccount(Store &store, const AccountRequest &account, DATENBANK &record) {
  const char *number = account.number ? account.number : "";
  uint8_t found = 0;
  if (std::strlen(number) < sizeof SACHKONTO::Nr) {
    SCHLUESSEL key = KeyBuilder().account(number);
    int file = vlfn98::KzFromZELKArt(account.kind);
    if (file == kKost) file += vlfn98::GetKostKontoKey(number, account.dimension, account.reference, key);
    if (!store.UsedGet(record, key, found, FileNumber(file))) return {ZELKERR_Datenbank};
  }
  return found ? Outcome{} : noSuchAccount(account.kind);
}

Outcome noSuchAccount(int32_t kind) {
  if (kind == ZELK_KOSTENSTELLE) return inadmissible(ZELKERR_uzl_Kostenstelle, "Die Kostenstelle ist");
  return {ZELKERR_uzl_Kontonr, resources::kKontonummerUnzulaessig};
}

int waitForYear(Store &store, FileNumber resource, int table) {
  constexpr int waitOnly = 1;
  std::string name = store.HoleOpenJahr();
  if (table >= 0) name += "/" + std::to_string(table);
  return store.LockRes(resource, store.HoleFista().Nummer, name.c_str(), waitOnly, 0);
}

Outcome deliver(int32_t form, std::initializer_list<Figure> figures) {
  char internal[vlba98::geldWidth + 1];
  for (const Figure &figure : figures)
    if (figure.buffer && !vlba98::formatGeld(figure.hundredths, internal))
      return {ZELKERR_sonst, resources::kBetragZuGross};
  for (const Figure &figure : figures) {
    if (!figure.buffer) continue;
    vlba98::formatGeld(figure.hundredths, internal);
    formatAmount(form, figure.buffer, internal);
  }
  return {};
}

} // namespace evaluations
