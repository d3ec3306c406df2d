// The dunning level of an account.
#include <algorithm>
#include <string>

#include "frame/call.h"
#include "frame/snapshot.h"
#include "openitems/selection.h"
#include "store/typed.h"
#include "vlba98/text.h"
#include "vlfn98/client.h"

using namespace frame;
using namespace vldb98;
using openitems::ItemSelection;

namespace {

// The greatest level of an account's items; blocked ones count less than none.
ZelkResult greatestLevel(Store &store, const std::string &account) {
  int16_t level = 0;
  forEach<OPBELEG>({store, fileNumber(kOPDebitor, 1)}, from(account), [&](const OPBELEG &item) {
    if (vlba98::trimmed(item.Konto) != account) return false;
    level = std::max(level, int16_t(item.Mahnstufe));
    return true;
  });
  return level;
}

} // namespace

ZelkResult ZELK_CALL ZELK_HoleAktMahnstufe(int32_t Mandantennummer, const char *DebiKonto) {
  static constexpr Export self{.name = "ZELK_HoleAktMahnstufe"};
  return run(self, {number("Mandantennummer:", Mandantennummer), text("Debi-Konto:", DebiKonto)},
             [&](ThreadContext *context) -> ZelkResult {
               Store &store = context->store();
               if (int32_t opened = vlfn98::HoleMandantenDaten(store, Mandantennummer); opened < 1) return opened;
               const std::string number = DebiKonto ? DebiKonto : "";
               if (number.size() > openitems::kAccountWidth || !exists<PERSONENKONTO>({store, kDebitor}, number))
                 return ZELKERR_uzl_Kontonr;
               constexpr int waitForHolder = 1;
               must(store.Lock(kOPDebitor, nullptr, waitForHolder));
               return inSnapshot(store, [&] { return greatestLevel(store, std::string(vlba98::trimmed(number))); });
             });
}
