#include "frame/stored_posting.h"

#include "vlba98/date.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"

namespace frame {

void fillHead(ZELK_SPLITBUCHUNG &out, const vldb98::BATCHBUCHUNG &posting) {
  out.Stapelnummer = posting.Stapel;
  out.UStDirekt = posting.USTDirekt;
  out.Zahlungsziel = posting.Zahlungsziel;
  out.Eroeffnungsbuchung = posting.Eroeffnung;
  out.Abschlussbuchung = posting.Abschluss;
  out.Umbuchung = posting.Umbuchung;
  vlba98::reversedToExternal6(out.Belegdatum, posting.Belegdatum);
  vlba98::reversedToExternal6(out.Valutadatum, posting.Valutadatum);
  vlba98::strncpy2(out.Belegnummer, posting.Belegnummer);
  vlba98::strncpy2(out.OPBelegnummer, posting.OPBelegnummer);
  vlba98::strncpy2(out.Waehrung, posting.Waehrung);
  vlba98::strncpy2(out.ESR, posting.ESR);
}

void fillLine(ZELK_TEILBUCHUNG &out, const vldb98::SPLIT &line) {
  out.Sollart = vlfn98::KontoArtToZELKKontoArt(line.Sollart);
  out.Habenart = vlfn98::KontoArtToZELKKontoArt(line.Habenart);
  out.Kostenschablone = line.Kostenschablone;
  vlba98::copyTrimmed(out.Sollkonto, line.Sollkonto);
  vlba98::copyTrimmed(out.Habenkonto, line.Habenkonto);
  bool foreign = *line.BruttoFW;
  vlba98::strncpy2(out.Bruttobetrag, foreign ? line.BruttoFW : line.Brutto);
  vlba98::strncpy2(out.Steuersatz, line.Steuersatz);
  vlba98::strncpy2(out.Steuerbetrag, foreign ? line.SteuerFW : line.Steuerbetrag);
  vlba98::strncpy2(out.Text, line.Text);
  vlba98::strncpy2(out.Text2, line.Text2);
}

} // namespace frame
