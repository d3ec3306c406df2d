// The dunning level of an account.
#include <algorithm>
#include <cstring>

#include "frame/call.h"
#include "frame/snapshot.h"
#include "openitems/selection.h"
#include "vlfn98/client.h"

using namespace frame;
using namespace vldb98;
using openitems::ItemSelection;

namespace {

// The greatest level of an account's items; blocked ones count less than none.
ZelkResult greatestLevel(Store &store, const ItemSelection &account) {
  int16_t level = 0;
  DATENBANK item{};
  ZelkResult result = openitems::findFirst(store, account, kOPDebitor, item);
  const FileNumber file = openitems::fileOf(kOPDebitor, account);
  while (result == ZELK_OK) {
    level = std::max(level, int16_t(item.Opbeleg.Mahnstufe));
    uint8_t found;
    if (!store.GetNextExt(item, found, file)) return ZELKERR_Datenbank;
    result = found && openitems::holds(account, item) ? ZELK_OK : ZELK_keinKonto;
  }
  return result < 0 ? result : level;
}

} // namespace

ZelkResult ZELK_CALL ZELK_HoleAktMahnstufe(int32_t Mandantennummer, const char *DebiKonto) {
  static constexpr Export self{.name = "ZELK_HoleAktMahnstufe"};
  return run(self, {number("Mandantennummer:", Mandantennummer), text("Debi-Konto:", DebiKonto)},
             [&](ThreadContext *context) -> ZelkResult {
               Store *store = context->session();
               if (!store) return ZELKERR_Datenbank;
               if (int32_t opened = vlfn98::HoleMandantenDaten(*store, Mandantennummer); opened < 1) return opened;
               const char *number = DebiKonto ? DebiKonto : "";
               if (std::strlen(number) > openitems::kAccountWidth) return ZELKERR_uzl_Kontonr;
               uint8_t found;
               if (!store->Used(KeyBuilder().account(number), found, kDebitor)) return ZELKERR_Datenbank;
               if (!found) return ZELKERR_uzl_Kontonr;
               constexpr int kWaitForHolder = 1;
               if (!store->Lock(kOPDebitor, nullptr, kWaitForHolder)) return ZELKERR_Datenbank;
               ItemSelection account = openitems::selectBy(ItemSelection::By::Account, number);
               return inSnapshot(*store, [&] { return greatestLevel(*store, account); });
             });
}
