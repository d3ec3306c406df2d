// The client list and the master data of a client.
#include <cstdlib>
#include <cstring>

#include "frame/call.h"
#include "frame/selection.h"
#include "store/typed.h"
#include "vlba98/date.h"
#include "vlba98/text.h"
#include "vlfn98/client.h"

using namespace frame;
using namespace vldb98;

namespace {

/// What the thread keeps of this subsystem.
struct Kept {
  uint32_t option = 0; ///< of the last read of client information
  uint32_t cursor = 0; ///< number of the next client of the client list; 0: no such fetch
};

// Runs the work on the open client's data, or returns why it cannot be opened.
template <class Work> ZelkResult withClient(ThreadContext &context, int64_t client, Work &&work) {
  Store &store = context.store();
  int32_t opened = vlfn98::HoleMandantenDaten(store, client);
  return opened <= 0 ? opened : work(store);
}

template <size_t N> void copyWithoutBlanks(char (&target)[N], const char (&source)[N]) {
  std::memcpy(target, source, N);
  vlba98::KillSpaces(target);
}

void fill(ZELK_MANDANTENINFO &info, const FIRMENSTAMM &client) {
  info.AktuellesJahr = vlba98::yearOfCode(client.AktJahr);
  info.Gejabeginn = client.Gejabeginn;
  if (client.Kontenrahmen >= 0 && client.Kontenrahmen <= 6) info.Kontenrahmen = client.Kontenrahmen;
  info.Istversteuerer = client.Istversteuerer;
  info.EUeRechner = client.EUeRechner;
  info.Steuerfrei = client.Steuerfrei;
  info.Euro = client.Euro;
  vlba98::strncpy2(info.UStIdNr, client.UStIdNr);
  vlba98::strncpy2(info.Land, client.Land);
  vlba98::strncpy2(info.Waehrung, client.Waehrung);
  vlba98::strncpy2(info.Eurokurs, client.Eurokurs);
  copyWithoutBlanks(info.SvSako, client.SvSako);
  copyWithoutBlanks(info.SvKred, client.SvKred);
  copyWithoutBlanks(info.SvDebi, client.SvDebi);
  vlba98::strncpy2(info.Name, client.Name);
  vlba98::strncpy2(info.Zusatz, client.Zusatz);
}

ZelkResult readInfo(ThreadContext &context, int32_t client, ZELK_MANDANTENINFO *info, uint32_t option) {
  context.slot<Kept>().option = option;
  if (!info) return ZELKERR_nicht_moeglich;
  return withClient(context, client, [&](Store &store) -> ZelkResult {
    fill(*info, store.HoleFista());
    return ZELK_OK;
  });
}

} // namespace

ZelkResult ZELK_CALL ZELK_InitHoleMandant() {
  static constexpr Export self{.name = "ZELK_InitHoleMandant", .fetch = true, .companion = resources::kKeineMandanten};
  return run(self, {}, [](ThreadContext *context) -> ZelkResult {
    uint32_t &cursor = context->slot<Kept>().cursor;
    cursor = 0;
    Store &store = context->store();
    const auto client = first<FIRMENSTAMM>(store);
    if (!client) return ZELKERR_keine_Mandanten;
    cursor = client->Nummer;
    return ZELK_OK;
  });
}

ZelkResult ZELK_CALL ZELK_HoleMandant(uint32_t *Mandantennummer, char *Name, char *Zusatz) {
  static constexpr Export self{.name = "ZELK_HoleMandant", .fetch = true};
  return run(self, {out("Mandantennummer:", Mandantennummer), out("Name:", Name), out("Zusatz:", Zusatz)},
             [&](ThreadContext *context) -> ZelkResult {
               uint32_t &cursor = context->slot<Kept>().cursor;
               if (cursor == 0) return ZELKERR_keinInit;
               Store &store = context->store();
               const auto client = find<FIRMENSTAMM>(store, cursor);
               if (!client) return ZELKERR_Datenbank;
               const auto following = next<FIRMENSTAMM>(store);
               if (Mandantennummer) *Mandantennummer = client->Nummer;
               if (Name) std::memcpy(Name, client->Name, sizeof client->Name);
               if (Zusatz) std::memcpy(Zusatz, client->Zusatz, sizeof client->Zusatz);
               cursor = following ? following->Nummer : 0;
               return following ? ZELK_OK : ZELK_letzterDatensatz;
             });
}

ZelkResult ZELK_CALL ZELK_HoleMandantenInfo(int32_t Mandantennummer, ZELK_MANDANTENINFO *Info, uint32_t Option) {
  static constexpr Export self{.name = "ZELK_HoleMandantenInfo"};
  return run(self, {number("Mandatennummer:", Mandantennummer), out("Mandanteninfo:", Info), number("Option:", Option)},
             [&](ThreadContext *context) { return readInfo(*context, Mandantennummer, Info, Option); });
}

ZelkResult ZELK_CALL ZELK_HoleMandantenInfoDirekt(int32_t Mandantennummer, int32_t *AktuellesJahr, int32_t *Gejabeginn,
                                                  int32_t *Kontenrahmen, int32_t *Istversteuerer, int32_t *EUeRechner,
                                                  int32_t *Steuerfrei, int32_t *Euro, char *UStIdNr, char *Land,
                                                  char *Waehrung, char *Eurokurs, char *SvSako, char *SvKred,
                                                  char *SvDebi, char *Name, char *Zusatz, uint32_t Option) {
  static constexpr Export self{.name = "ZELK_HoleMandantenInfoDirekt", .dumpInOneLine = true};
  using Info = ZELK_MANDANTENINFO;
  struct Delivery {
    const char *label;
    void *target;
    size_t offset, size;
  };
#define DELIVERY(label, member)                                                                                        \
  { label, member, offsetof(Info, member), sizeof(Info::member) }
  const Delivery deliveries[] = {DELIVERY("Aktuelles Jahr:", AktuellesJahr),
                                 DELIVERY("Gejabeginn:", Gejabeginn),
                                 DELIVERY("Kontenrahmen:", Kontenrahmen),
                                 DELIVERY("Istversteuerer:", Istversteuerer),
                                 DELIVERY("EÜ-Rechner:", EUeRechner),
                                 DELIVERY("Steuerfrei:", Steuerfrei),
                                 DELIVERY("Euro:", Euro),
                                 DELIVERY("USt-ID-Nr:", UStIdNr),
                                 DELIVERY("Land:", Land),
                                 DELIVERY("Währung:", Waehrung),
                                 DELIVERY("Eurokurs:", Eurokurs),
                                 DELIVERY("SV Sako:", SvSako),
                                 DELIVERY("SV Kred:", SvKred),
                                 DELIVERY("SV Debi:", SvDebi),
                                 DELIVERY("Name:", Name),
                                 DELIVERY("Zusatz:", Zusatz)};
#undef DELIVERY
  Parameter parameters[std::size(deliveries) + 2];
  Parameter *next = parameters;
  *next++ = number("Mandatennummer:", Mandantennummer);
  for (const Delivery &delivery : deliveries)
    *next++ = out(delivery.label, delivery.target);
  *next++ = number("Option:", Option);
  return run(self, parameters, [&](ThreadContext *context) {
    Info info{};
    ZelkResult result = readInfo(*context, Mandantennummer, &info, Option);
    if (result > 0)
      for (const Delivery &delivery : deliveries)
        if (delivery.target)
          std::memcpy(delivery.target, reinterpret_cast<const char *>(&info) + delivery.offset, delivery.size);
    return result;
  });
}

ZelkResult ZELK_CALL ZELK_HoleMandantenVersion(int32_t Mandantennummer) {
  static constexpr Export self{.name = "ZELK_HoleMandantenVersion"};
  return run(self, {number("Mandantennummer:", Mandantennummer)}, [&](ThreadContext *context) -> ZelkResult {
    Store &store = context->store();
    // Also the version of data that cannot be worked with is told.
    int32_t opened = vlfn98::HoleMandantenDaten(store, Mandantennummer);
    bool readable = opened > 0 || opened == ZELKERR_alter_Mandant || opened == ZELKERR_neuerer_Mandant;
    return readable ? store.HoleFista().Version : opened;
  });
}

ZelkResult ZELK_CALL ZELK_HoleStartJahr(int32_t Mandantennummer) {
  static constexpr Export self{.name = "ZELK_HoleStartJahr"};
  return run(self, {number("Mandantennummer:", Mandantennummer)}, [&](ThreadContext *context) {
    return withClient(*context, Mandantennummer, [](Store &store) -> ZelkResult {
      const FIRMENSTAMM &client = store.HoleFista();
      return vlba98::yearOfCode(client.StartJahr[0] ? client.StartJahr : client.AktJahr);
    });
  });
}

ZelkResult ZELK_CALL ZELK_HoleMandantenNr(void *HandleParent) {
  static constexpr Export self{.name = "ZELK_HoleMandantenNr"};
  return run(self, {out("Handle-Parent:", HandleParent)}, [&](ThreadContext *context) -> ZelkResult {
    std::string chosen;
    ZelkResult result = choose(
        *context, resources::kClientSelection,
        [&](SelectionOrder order, const AddEntry &add) -> ZelkResult {
          // Anew at every filling: while the dialog is open, the host's windows may call the library.
          Store &store = context->store();
          const FileNumber file = fileNumber(kFirmenstamm, order == SelectionOrder::Name ? 1 : 0);
          ZelkResult filled = ZELKERR_keine_Mandanten;
          forEach<FIRMENSTAMM>({store, file}, [&](const FIRMENSTAMM &client) {
            add(std::to_string(client.Nummer), client.Name);
            filled = ZELK_OK;
          });
          return filled;
        },
        HandleParent, chosen);
    return result == ZELK_OK ? std::atoi(chosen.c_str()) : result;
  });
}
