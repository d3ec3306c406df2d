// The exports that insert a posting into a batch.
#include <algorithm>
#include <array>
#include <cstring>

#include "frame/call.h"
#include "frame/fetch.h"
#include "postings/insertion.h"
#include "vlba98/text.h"

using namespace frame;
using namespace vldb98;

namespace {

constexpr int kMaxLines = 10;

// Locked in this order before a posting is looked at, so that what was checked still holds when it is written.
constexpr FileNumber kLockOrder[] = {kKreditor, kDebitor, kSachkonto, kBatchbuchung, kSplit, kStapel, kKobu};

struct Release {
  FileNumber file;
  bool changed; // by a posting, so that a transaction around it keeps the lock to its end
};
constexpr Release kReleaseOrder[] = {{kKreditor, false}, {kDebitor, false}, {kSachkonto, false}, {kBatchbuchung, true},
                                     {kStapel, true},    {kSplit, true},    {kKobu, true}};

class PostingLocks {
public:
  explicit PostingLocks(Store &store) : store_(store) {
    held_ = std::all_of(std::begin(kLockOrder), std::end(kLockOrder),
                        [&](FileNumber file) { return store.Lock(file, nullptr, 0, ZELK_ENG_DEFAULT); });
  }
  ~PostingLocks() {
    for (const Release &release : kReleaseOrder)
      store_.Unlock(release.file, release.changed && store_.transactionDepth() <= 0, ZELK_ENG_DEFAULT);
  }
  PostingLocks(const PostingLocks &) = delete;
  PostingLocks &operator=(const PostingLocks &) = delete;
  bool held() const { return held_; }

private:
  Store &store_;
  bool held_;
};

ZelkResult insert(ThreadContext &context, const ZELK_SPLITBUCHUNG *posting) {
  if (!posting) return ZELKERR_nicht_moeglich;
  Store *store = context.session();
  if (!store) return ZELKERR_Datenbank;
  ZelkResult opened = openClient(context, *store, posting->Mandantennummer);
  if (opened <= 0) return opened;
  PostingLocks locks(*store);
  // Hosts rely on it that a posting whose tables cannot be had in time is skipped without an error.
  return locks.held() ? postings::Insertion(context, *store, *posting).run() : opened;
}

} // namespace

ZelkResult ZELK_CALL ZELK_SplitBuchungEinfuegen(const ZELK_SPLITBUCHUNG *Buchung, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_SplitBuchungEinfuegen"};
  constexpr size_t kHeader = 16, kLine = 10;
  std::array<Parameter, kHeader + kLine * kMaxLines> parameters;
  Parameter *next = parameters.data();
  *next++ = messages(Fehlermeldungen);
  if (Buchung) {
    const ZELK_SPLITBUCHUNG &b = *Buchung;
    for (const Parameter &p :
         {number("Mandantennummer:", b.Mandantennummer), number("Stapelnummer:", b.Stapelnummer),
          number("Teilbuchungsanzahl:", b.Teilbuchungsanzahl), number("USt-Direkt:", b.UStDirekt),
          number("Zahlungsziel:", b.Zahlungsziel), number("Eröffnungsbuchung:", b.Eroeffnungsbuchung),
          number("Abschlussbuchung:", b.Abschlussbuchung), number("Umbuchung:", b.Umbuchung),
          field("Belegdatum:", b.Belegdatum), field("Belegnummer:", b.Belegnummer),
          field("OP-Belegnummer:", b.OPBelegnummer), field("Valutadatum:", b.Valutadatum),
          field("Währung:", b.Waehrung), field("ESR:", b.ESR), field("DMS-ID:", b.DMSID)})
      *next++ = p;
    for (int i = 0; i < std::min(b.Teilbuchungsanzahl, kMaxLines); ++i) {
      const ZELK_TEILBUCHUNG &line = b.Teilbuchung[i];
      for (const Parameter &p : {number("Sollart:", line.Sollart), number("Habenart:", line.Habenart),
                                 number("Kostenschablone:", line.Kostenschablone), field("Sollkonto:", line.Sollkonto),
                                 field("Habenkonto:", line.Habenkonto), field("Bruttobetrag:", line.Bruttobetrag),
                                 field("Steuersatz:", line.Steuersatz), field("Steuerbetrag:", line.Steuerbetrag),
                                 field("Text:", line.Text), field("Text 2:", line.Text2)})
        *next++ = p;
    }
  }
  return run(self, std::span(parameters.data(), next),
             [&](ThreadContext *context) { return insert(*context, Buchung); });
}

ZelkResult ZELK_CALL ZELK_BuchungEinfuegen(const ZELK_BUCHUNG *Buchung, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_BuchungEinfuegen"};
  if (!Buchung)
    return run(self, {messages(Fehlermeldungen)}, [](ThreadContext *) -> ZelkResult { return ZELKERR_nicht_moeglich; });
  const ZELK_BUCHUNG &b = *Buchung;
  return run(self,
             {number("Mandantennummer:", b.Mandantennummer),
              number("Stapelnummer:", b.Stapelnummer),
              number("Kostenschablone:", b.Kostenschablone),
              number("Zahlungsziel:", b.Zahlungsziel),
              number("Eröffnungsbuchung:", b.Eroeffnungsbuchung),
              number("Abschlussbuchung:", b.Abschlussbuchung),
              number("Sollart:", b.Sollart),
              number("Habenart:", b.Habenart),
              number("USt-Direkt:", b.UStDirekt),
              number("Umbuchung:", b.Umbuchung),
              field("Belegdatum:", b.Belegdatum),
              field("Belegnummer:", b.Belegnummer),
              field("Text:", b.Text),
              field("Text 2:", b.Text2),
              field("Sollkonto:", b.Sollkonto),
              field("Habenkonto:", b.Habenkonto),
              field("Bruttobetrag:", b.Bruttobetrag),
              field("Steuersatz:", b.Steuersatz),
              field("Steuerbetrag:", b.Steuerbetrag),
              field("OP-Belegnummer:", b.OPBelegnummer),
              field("Valutadatum:", b.Valutadatum),
              field("Währung:", b.Waehrung),
              field("ESR:", b.ESR),
              messages(Fehlermeldungen)},
             [&](ThreadContext *) {
               ZELK_SPLITBUCHUNG split{};
               split.Mandantennummer = b.Mandantennummer;
               split.Stapelnummer = b.Stapelnummer;
               split.Teilbuchungsanzahl = 1;
               split.UStDirekt = b.UStDirekt;
               split.Zahlungsziel = b.Zahlungsziel;
               split.Eroeffnungsbuchung = b.Eroeffnungsbuchung;
               split.Abschlussbuchung = b.Abschlussbuchung;
               split.Umbuchung = b.Umbuchung;
               auto copy = [](auto &target, const auto &source) {
                 static_assert(sizeof target == sizeof source);
                 std::memcpy(target, source, sizeof target);
               };
               copy(split.Belegdatum, b.Belegdatum);
               copy(split.Belegnummer, b.Belegnummer);
               copy(split.OPBelegnummer, b.OPBelegnummer);
               copy(split.Valutadatum, b.Valutadatum);
               copy(split.Waehrung, b.Waehrung);
               copy(split.ESR, b.ESR);
               copy(split.DMSID, b.DMSID);
               ZELK_TEILBUCHUNG &line = split.Teilbuchung[0];
               line.Sollart = b.Sollart;
               line.Habenart = b.Habenart;
               line.Kostenschablone = b.Kostenschablone;
               copy(line.Sollkonto, b.Sollkonto);
               copy(line.Habenkonto, b.Habenkonto);
               copy(line.Bruttobetrag, b.Bruttobetrag);
               copy(line.Steuersatz, b.Steuersatz);
               copy(line.Steuerbetrag, b.Steuerbetrag);
               copy(line.Text, b.Text);
               copy(line.Text2, b.Text2);
               return ZELK_SplitBuchungEinfuegen(&split, Fehlermeldungen);
             });
}
