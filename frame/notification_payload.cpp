#include "frame/notification_payload.h"

#include <algorithm>
#include <cstring>

#include "frame/account_output.h"
#include "frame/stored_posting.h"
#include "store/typed.h"
#include "vlba98/money.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"
#include "vlfn98/client.h"
#include "vlfn98/documents.h"

using namespace vldb98;

namespace frame {
namespace {

void fill(ZELK_OUT_SACHKONTO &out, int32_t value, const SACHKONTO &account) {
  out.Wert = value;
  out.Kontoart = vlfn98::ZELKKontoArtToKontoArt(ZELK_SACHKONTO);
  out.Steuerschluessel = account.Steuerschluessel;
  out.Kostenschablone = account.Kostenschablone;
  vlba98::copyTrimmed(out.Kontonummer, account.Nr);
  vlba98::strncpy2(out.Kuerzel, account.Kuerzel);
  vlba98::strncpy2(out.Name, account.Name);
}

void fill(ZELK_OUT_PERSONENKONTO &out, int32_t value, const PERSONENKONTO &account) {
  out.Wert = value;
  fillPersonal(out, account);
  vlba98::strncpy2(out.Steuersatz, vlba98::rateZero);
}

// An amount or rate in internal form, its sign moved from the separator to the front. A negative amount so fills its
// field; the reserved byte after it ends the text.
void put(char *field, size_t width, const char *money) {
  size_t separator = std::strlen(money);
  if (separator < 3) return;
  separator -= 3;
  bool negative = money[separator] == '-';
  if (std::strlen(money) + negative > width) return;
  if (negative) *field++ = '-';
  std::memcpy(field, money, std::strlen(money));
  field[separator] = vlba98::HoleDezimalTrenner();
}

void fill(ZELK_TEILBUCHUNG &out, const SPLIT &line, bool roundsToFive) {
  fillLine(out, line);
  std::memset(out.Bruttobetrag, 0, sizeof out.Bruttobetrag);
  std::memset(out.Steuersatz, 0, sizeof out.Steuersatz);
  std::memset(out.Steuerbetrag, 0, sizeof out.Steuerbetrag);
  // Only a foreign currency is rounded to five hundredths, as when the posting was inserted.
  bool foreign = *line.BruttoFW;
  const char *gross = foreign ? line.BruttoFW : line.Brutto;
  put(out.Bruttobetrag, sizeof out.Bruttobetrag, gross);
  char net[vlba98::moneyWidth + 1], tax[vlba98::moneyWidth + 1];
  if (!vlba98::IsNull(line.Steuersatz) && !vlba98::IsNull(foreign ? line.SteuerFW : line.Steuerbetrag) &&
      vlba98::proz(net, gross, line.Steuersatz) && (!(roundsToFive && foreign) || vlba98::RundeAuf5(net)) &&
      vlba98::subnegativ(tax, gross, net)) {
    put(out.Steuersatz, sizeof out.Steuersatz, line.Steuersatz);
    put(out.Steuerbetrag, sizeof out.Steuerbetrag, tax);
  }
}

const char *currencyOf(const BATCHBUCHUNG &posting, const FIRMENSTAMM &client) {
  return *posting.Waehrung ? posting.Waehrung : client.Euro ? "EUR" : client.Waehrung;
}

void fill(ZELK_SPLITBUCHUNG &out, int32_t value, const BATCHBUCHUNG &posting, Store *store, size_t start) {
  static const FIRMENSTAMM none{};
  const FIRMENSTAMM &client = store ? store->HoleFista() : none;
  out.Mandantennummer = value;
  fillHead(out, posting);
  vlba98::strncpy2(out.Waehrung, currencyOf(posting, client));
  if (!store) return;
  try {
    vlfn98::DmsGetDmsID(*store, posting.DMSNr, out.DMSID);
  } catch (const StoreFailed &) {
    // A change without the identifier is better than none.
  }
  const bool roundsToFive = (client.Optionen & vlfn98::kRoundToFive) != 0;
  for (ZELK_TEILBUCHUNG &line : out.Teilbuchung) {
    const SPLIT *stored = store->PSplit(start++);
    if (!stored || stored->Stapel != posting.Stapel || stored->Buchung != posting.Nr) break;
    fill(line, *stored, roundsToFive);
    ++out.Teilbuchungsanzahl;
  }
}

} // namespace

ZELK_OUT_BLOCK changeBlock(int32_t action, int32_t kind, int32_t value, const void *record, Store *store,
                           size_t start) {
  ZELK_OUT_BLOCK block;
  std::memset(&block, 0, sizeof block);
  block.Befehl = 1;
  block.Aktion = action;
  block.Art = kind;
  if (!record) return block;
  switch (kind) {
  case ZELK_SACHKONTO:
    fill(block.Nutzlast.Sachkonto, value, *static_cast<const SACHKONTO *>(record));
    break;
  case ZELK_KREDITOR:
  case ZELK_DEBITOR:
    fill(block.Nutzlast.Personenkonto, value, *static_cast<const PERSONENKONTO *>(record));
    break;
  case kPostingChange:
    fill(block.Nutzlast.Buchung, value, *static_cast<const BATCHBUCHUNG *>(record), store, start);
    break;
  }
  return block;
}

} // namespace frame
