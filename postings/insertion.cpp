#include "postings/insertion.h"

#include "postings/head_checks.h"
#include "postings/line_checks.h"
#include "postings/look_ups.h"
#include "vlba98/money.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"

using namespace vldb98;

namespace postings {

Refusal Insertion::run() {
  const ReadingOneState::Scope reading(posting_.reading);
  tellLookUps(posting_);
  Refusal refusal = check();
  posting_.reading.end();
  if (!refusal) must(posting_.store.InsertBat(posting_.stored));
  return refusal;
}

Refusal Insertion::check() {
  if (Refusal refusal = checkHead(posting_)) return refusal;
  for (LineInProgress &line : posting_.lines) {
    if (Refusal refusal = checkLine(posting_, line)) return refusal;
    if (Refusal refusal = amounts_.reckon(line)) return refusal;
    if (Refusal refusal = costs_.allocate(line)) return refusal;
    addLine(line);
  }
  return {};
}

void Insertion::addLine(const LineInProgress &line) {
  const PostingLine &given = *line.given;
  SPLIT stored{};
  stored.Sollart = vlfn98::ZELKKontoArtToKontoArt(line.debit.kind);
  stored.Habenart = vlfn98::ZELKKontoArtToKontoArt(line.credit.kind);
  vlba98::strncpy2(stored.Sollkonto, line.debit.number);
  vlba98::strncpy2(stored.Habenkonto, line.credit.number);
  vlba98::formatMoney(line.ownGross, stored.Brutto);
  vlba98::formatMoney(line.ownNet, stored.Netto);
  vlba98::formatMoney(line.ownGross - line.ownNet, stored.Steuerbetrag);
  vlba98::formatMoney(line.amounts.rate, stored.Steuersatz, vlba98::rateWidth);
  stored.Steuerschluessel = line.taxChoice.key;
  if (line.taxChoice.key != 0) vlba98::strncpy2(stored.Schluesselsatz, line.taxKey.Satz);
  stored.Steuerseite = int16_t(line.taxChoice.side);
  if (posting_.foreign) {
    vlba98::formatMoney(line.gross, stored.BruttoFW);
    vlba98::formatMoney(line.amounts.tax, stored.SteuerFW);
  }
  vlba98::strncpy2(stored.Faelligkeit, line.dueDate);
  vlba98::strncpy2(stored.Text, given.Text);
  vlba98::strncpy2(stored.Text2, given.Text2);
  stored.Kostenschablone = given.Kostenschablone;
  stored.Bewegungsart = given.movementKind;
  stored.DMSNr = given.document;
  must(posting_.store.MemInsertSplit(stored));
}

} // namespace postings
