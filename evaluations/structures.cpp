// The walk through a report structure.
#include <atomic>
#include <set>

#include "frame/call.h"
#include "frame/client.h"
#include "frame/messages.h"
#include "frame/snapshot.h"
#include "store/typed.h"
#include "vlba98/text.h"
#include "vlfn98/client.h"
#include "vlfn98/structure_lines.h"

using namespace frame;
using namespace vldb98;

namespace {

/// A walk through a report structure, as the thread keeps it.
struct StructureWalk {
  bool active = false;
  bool hiddenToo = false;
  int32_t client = 0;
  FileNumber file = 0;
  AUFBAU line{};               ///< the next one to deliver
  std::set<int32_t> delivered; ///< numbers of the lines so far, hidden ones included
};

constexpr int32_t kRoot = 1;

// The depth of the walk that moved last, whichever thread's. It is only told to hosts: no walk finds its way by it.
std::atomic<int32_t> nestingLevel{0};

/// Moves a walk from line to line, in the order in which a report prints them.
class Walker {
public:
  Walker(Store &store, StructureWalk &walk) : store_(store), walk_(walk) {}

  /// Goes to the first line. \return 1; 0 when the structure has none; -3 when the store failed or a line is missing
  ZelkResult begin() {
    if (!goTo(kRoot)) return ZELK_keinKonto;
    walk_.delivered = {kRoot};
    // A root without lines below it stands beside them.
    level_ = line_.Kind != 0 ? 1 : 0;
    if (!goTo(line_.Kind != 0 ? line_.Kind : line_.Naechste)) return ZELK_keinKonto;
    walk_.delivered.insert(line_.Nr);
    ZelkResult result = skipHidden();
    return result == ZELK_letzterDatensatz ? ZELK_keinKonto : result;
  }

  /// Goes to the next line to be delivered. \return 1; 2 when there is none; -3
  ZelkResult advance() {
    line_ = walk_.line;
    // The line may have got another neighbour since it was read; one that was deleted led to where it did.
    goTo(walk_.line.Nr);
    ZelkResult result = step();
    return result == ZELK_OK ? skipHidden() : result;
  }

  /// Makes the line that was reached the walk's.
  void commit() {
    walk_.line = line_;
    nestingLevel += level_;
  }

private:
  // \return false where there is no such line; the walk then stays
  bool goTo(int32_t number) {
    const auto line = number != 0 ? find<AUFBAU>({store_, walk_.file}, number) : std::nullopt;
    if (line) line_ = *line;
    return line.has_value();
  }

  ZelkResult skipHidden() {
    ZelkResult result = ZELK_OK;
    while (result == ZELK_OK && !walk_.hiddenToo && (line_.Flags & vlfn98::kHidden))
      result = step();
    return result;
  }

  ZelkResult step() {
    if (line_.Kind != 0) {
      ++level_;
      return enter(line_.Kind);
    }
    for (size_t climbs = 0; line_.Naechste == 0; ++climbs) {
      if (line_.Vater == 0 || line_.Vater == kRoot) return ZELK_letzterDatensatz;
      // More often than there are lines: the parents form a circle.
      if (climbs > walk_.delivered.size() || !goTo(line_.Vater)) return ZELKERR_Datenbank;
      --level_;
    }
    return enter(line_.Naechste);
  }

  // A line that was there before would be the start of an endless walk.
  ZelkResult enter(int32_t number) {
    return goTo(number) && walk_.delivered.insert(number).second ? ZELK_OK : ZELKERR_Datenbank;
  }

  Store &store_;
  StructureWalk &walk_;
  AUFBAU line_{};
  int32_t level_ = 0; // how far down the walk has gone
};

void copyWithoutBlanks(char *target, const char *source, size_t size) {
  vlba98::strncpy2(target, source, size);
  vlba98::KillSpaces(target);
}

ZelkResult deliver(ThreadContext &context, int32_t *kind, char *name, int32_t *level, char *identifier) {
  StructureWalk &walk = context.slot<StructureWalk>();
  if (!walk.active) return ZELKERR_keinInit;
  const AUFBAU line = walk.line;
  const bool account = line.Flags & vlfn98::kAccountLine;
  const int32_t depth = nestingLevel - (account ? 1 : 0);
  // Until it has gone on: a walk that failed is over.
  walk.active = false;
  Store &store = context.store();
  must(vlfn98::HoleMandantenDaten(store, walk.client) == ZELK_OK);
  Walker walker(store, walk);
  const ZelkResult result = inSnapshot(store, [&] { return walker.advance(); });
  if (result < 0) return result;
  if (result == ZELK_OK) walker.commit();
  walk.active = result == ZELK_OK;
  if (kind) *kind = (line.Flags & vlfn98::kKindMask) + (line.Flags & vlfn98::kHidden);
  if (name) vlba98::strncpy2(name, line.Name, sizeof line.Name);
  if (name && account) vlba98::KillSpaces(name);
  if (level) *level = depth;
  if (identifier && account)
    copyWithoutBlanks(identifier, line.Name, sizeof line.Name);
  else if (identifier)
    copyWithoutBlanks(identifier, line.Flags2 & vlfn98::kSecondHolds ? line.Kennung2 : line.Kennung,
                      sizeof line.Kennung);
  return result;
}

} // namespace

ZelkResult ZELK_CALL ZELK_InitHoleAufbau(int32_t Mandatennummer, int32_t Klasse, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_InitHoleAufbau"};
  return run(self, {number("Mandatennummer:", Mandatennummer), number("Klasse:", Klasse), messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               context->slot<StructureWalk>() = {};
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandatennummer); opened <= 0) return opened;
               const int32_t structure = Klasse & ~vlfn98::kHiddenToo;
               if (structure < 0 || structure >= int32_t(kStructureTables.size()))
                 return refuse(*context, ZELKERR_uzl_Klasse, resources::kClassInadmissible);
               StructureWalk walk;
               walk.hiddenToo = Klasse & vlfn98::kHiddenToo;
               walk.client = Mandatennummer;
               walk.file = kStructureTables[size_t(structure)];
               constexpr int waitOnly = 1;
               must(store.Lock(walk.file, nullptr, waitOnly));
               Walker walker(store, walk);
               const ZelkResult result = inSnapshot(store, [&] { return walker.begin(); });
               if (result != ZELK_OK) return result;
               nestingLevel = 0;
               walker.commit();
               walk.active = true;
               context->slot<StructureWalk>() = std::move(walk);
               return result;
             });
}

ZelkResult ZELK_CALL ZELK_HoleAufbau(int32_t *Art, char *Name, int32_t *Ebene) {
  static constexpr Export self{.name = "ZELK_HoleAufbau", .fetch = true};
  return run(self, {out("Art:", Art), out("Name:", Name), out("Ebene:", Ebene)},
             [&](ThreadContext *context) { return deliver(*context, Art, Name, Ebene, nullptr); });
}

ZelkResult ZELK_CALL ZELK_HoleAufbauID(int32_t *Art, char *Name, int32_t *Ebene, char *ID) {
  static constexpr Export self{.name = "ZELK_HoleAufbauID", .fetch = true};
  return run(self, {out("Art:", Art), out("Name:", Name), out("Ebene:", Ebene), out("ID:", ID)},
             [&](ThreadContext *context) { return deliver(*context, Art, Name, Ebene, ID); });
}
