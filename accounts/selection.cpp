// Letting the user pick an account.
#include <cstring>
#include <string>

#include "frame/call.h"
#include "frame/selection.h"
#include "frame/snapshot.h"
#include "store/typed.h"
#include "vlba98/text.h"
#include "vlfn98/account_fields.h"
#include "vlfn98/accounts.h"
#include "vlfn98/client.h"

using namespace frame;
using namespace vldb98;

namespace {

constexpr size_t kWidth = sizeof(SACHKONTO::Nr) - 1;

int titleOf(int table) {
  return table == kSachkonto  ? resources::kLedgerAccountSelection
         : table == kKreditor ? resources::kCreditorSelection
         : table == kDebitor  ? resources::kDebtorSelection
                              : resources::kCostCentreSelection;
}

// A number as it is stored; empty when the host gave none.
std::string padded(const char *number) {
  std::string text(vlba98::trimmed(number ? number : ""));
  if (!text.empty()) text.resize(kWidth, ' ');
  return text;
}

// The accounts of a list.
struct AccountList {
  int table;
  std::string from, to; // empty: no bound
  int32_t dimension;    // cost centres
  std::string reference;

  // In number order the walk begins and ends with the bounds; a dimension that does not fit ends it at once.
  FileNumber file(SelectionOrder order) const {
    if (order == SelectionOrder::Name) return fileNumber(table, vlfn98::keyIndex(table, 2));
    return fileNumber(table, table == kKost ? 9 : 0);
  }
  SCHLUESSEL start(SelectionOrder order) const {
    if (order == SelectionOrder::Name) return {};
    return table == kKost ? keyOf(file(order), int16_t(dimension), from) : keyOf(file(order), from);
  }
  bool past(SelectionOrder order, const DATENBANK &record) const {
    if (order == SelectionOrder::Name) return false;
    if (table == kKost && record.Kost.Dimension != dimension) return true;
    return !to.empty() && vlfn98::accountOf(table, record).number > to;
  }
  bool holds(const DATENBANK &record) const {
    const char *number = vlfn98::accountOf(table, record).number;
    if (number < from || (!to.empty() && number > to)) return false;
    if (table != kKost) return true;
    return record.Kost.Dimension == dimension && (reference.empty() || record.Kost.Kostref == reference);
  }

  ZelkResult fill(Store &store, SelectionOrder order, const AddEntry &add) const;
};

ZelkResult AccountList::fill(Store &store, SelectionOrder order, const AddEntry &add) const {
  const SCHLUESSEL first = start(order);
  forEach<DATENBANK>({store, file(order)}, vldb98::from(first), [&](const DATENBANK &record) {
    if (past(order, record)) return false;
    vlfn98::AccountFields account = vlfn98::accountOf(table, record);
    if (holds(record)) add(vlba98::trimmed(account.number), account.name);
    return true;
  });
  return ZELK_OK;
}

// Runs the work on the open client. Every time anew: while a dialog is open, the host's windows may call the library.
template <class Work> ZelkResult withClient(ThreadContext &context, int32_t client, Work &&work) {
  Store &store = context.store();
  int32_t opened = vlfn98::HoleMandantenDaten(store, client);
  return opened < ZELK_OK ? opened : work(store);
}

} // namespace

ZelkResult ZELK_CALL ZELK_HoleKonto(void *HandleParent, int32_t Mandantennummer, int32_t Kontoart, const char *Von,
                                    const char *Bis, char *Kontonummer, char *Name, char *Kuerzel, int32_t Dimension,
                                    const char *Kostref) {
  static constexpr Export self{.name = "ZELK_HoleKonto"};
  return run(self,
             {out("Handle-Parent:", HandleParent), number("Mandantennummer:", Mandantennummer),
              number("Kontoart:", Kontoart), text("Von:", Von), text("Bis:", Bis), out("Kontonummer:", Kontonummer),
              out("Name:", Name), out("Kürzel:", Kuerzel), number("Dimension:", Dimension), text("Kostref:", Kostref)},
             [&](ThreadContext *context) -> ZelkResult {
               if (!vlfn98::isAccountKind(Kontoart)) return ZELKERR_uzl_Kontoart;
               AccountList list{vlfn98::KzFromZELKArt(Kontoart), padded(Von), padded(Bis),
                                Kontoart == ZELK_KOSTENSTELLE ? Dimension : 0, padded(Kostref)};
               std::string chosen;
               ZelkResult result = choose(
                   *context, titleOf(list.table),
                   [&](SelectionOrder order, const AddEntry &add) {
                     return withClient(*context, Mandantennummer, [&](Store &store) {
                       return inSnapshot(store, [&] { return list.fill(store, order, add); });
                     });
                   },
                   HandleParent, chosen);
               if (result <= 0) return result;
               DATENBANK record{};
               if (Name || Kuerzel) {
                 ZelkResult read = withClient(*context, Mandantennummer, [&](Store &store) -> ZelkResult {
                   const auto account =
                       vlfn98::findAccount(store, list.table, chosen.c_str(), Dimension, list.reference.c_str());
                   must(account.has_value());
                   record = *account;
                   return ZELK_OK;
                 });
                 if (read != ZELK_OK) return ZELKERR_Datenbank;
               }
               const vlfn98::AccountFields account = vlfn98::accountOf(list.table, record);
               if (Kontonummer) vlba98::strncpy2(Kontonummer, chosen, sizeof(SACHKONTO::Nr));
               if (Name) vlba98::strncpy2(Name, account.name, sizeof(SACHKONTO::Name));
               if (Kuerzel) vlba98::strncpy2(Kuerzel, account.shortName, sizeof(SACHKONTO::Kuerzel));
               return result;
             });
}
