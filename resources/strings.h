/// The German texts: names and long texts of the result codes, messages. All as UTF-8.
#pragma once

#include <string_view>

namespace resources {

constexpr int kLeastResult = -103;
constexpr int kGreatestResult = 2;

struct ResultTexts {
  int code;
  const char *name;
  const char *text;
};

/// One row per code, from kGreatestResult down to kLeastResult.
extern const ResultTexts kResultTexts[kGreatestResult - kLeastResult + 1];

// Ids of the names that give an ambiguous code its meaning for one family of functions.
enum CompanionName {
  kNoCompanion = 0,
  kKeineMandanten = 80,
  kKeineStapel = 81,
  kKeineKonten = 82,
  kKeineZahlungsziele = 83,
  kKeineKostenschablonen = 84,
  kKeineSprachen = 85,
  kAbbruch = 87,
  kWeitererDatensatz = 89,
  kKeinDatensatz = 90,
};

// Ids of the name and the long text of a result code.
constexpr int nameId(int code) {
  return 100 - code;
}
constexpr int textId(int code) {
  return 300 - code;
}

/// Texts of the selection dialogs.
enum DialogText {
  kSachkontenauswahl = 1,
  kKreditorenauswahl = 2,
  kDebitorenauswahl = 3,
  kKostenstellenauswahl = 4,
  kMandantenauswahl = 5,
  kStapelauswahl = 6,
  kNachNummer = 10,
  kNachName = 11,
  kKursEingabe = 12,
};

/// Messages from 1000 on. A group of 200 shares one style of message box.
enum Message {
  kBonitaet = 1010,
  kBitteAuswaehlen = 1401,
  kGibtEsNicht = 1408,
  kIstUnzulaessig = 1410,
  kKontoartUnzulaessig = 1413,
  kUnzulaessigeAktion = 1414,
  kKontonummerUnzulaessig = 1415,
  kKuerzelFehlt = 1416,
  kExistiertBereits = 1417,
  kUnzulaessig = 1419,
  kSplitErsteBuchung = 1420,
  kSplitEineSeite = 1421,
  kSplitPersonenkonto = 1422,
  kTeilbuchungsanzahl = 1423,
  kBuchungsdatumUnzulaessig = 1424,
  kValutadatumUnzulaessig = 1425,
  kKoreStapel = 1426,
  kEroeffnungEinKonto = 1427,
  kEroeffnungSteuerfrei = 1428,
  kEsrNurSchweiz = 1429,
  kEsrFalsch = 1430,
  kFremdwaehrungBasis = 1431,
  kWaehrungNurBuchstaben = 1432,
  kSollkontonummerUnzulaessig = 1433,
  kHabenkontonummerUnzulaessig = 1434,
  kBelegnummerFehlt = 1435,
  kKontonummernGleich = 1436,
  kSollkontoFalsch = 1437,
  kHabenkontoFalsch = 1438,
  kKeineSteuer = 1439,
  kZahlungszielUnzulaessig = 1440,
  kKostenschabloneFehlt = 1441,
  kSteuerbetragPasstNicht = 1442,
  kWaehrungSachkonten = 1443,
  kWaehrungNichtEindeutig = 1444,
  kKostenstelleFehlt = 1445,
  kKostenstelleLaufzeit = 1446,
  kKeineKostenstelle = 1447,
  kDieIstUnzulaessig = 1449,
  kKombinationUnzulaessig = 1450,
  kKostensumme = 1451,
  kKostenstellenpflicht = 1452,
  kKostenstellenpflichtSchablone = 1453,
  kZweiKostenkonten = 1454,
  kGuvUmbuchung = 1455,
  kSplitExVermischt = 1456,
  kKursUnzulaessig = 1457,
  kKursFehlt = 1458,
  kKostenBasis = 1459,
  kSortierungUnzulaessig = 1469,
  kZahlzielFehlt = 1474,
  kNameZuLang = 1475,
  kNameLeer = 1476,
  kPflichtstapel = 1477,
  kZuAendernderStapelFehlt = 1478,
  kStapelPasswortAendern = 1479,
  kStapelnameVergeben = 1480,
  kStapelWiederkehr = 1481,
  kStapelnummerVergeben = 1482,
  kStapelFehlt = 1483,
  kStapelNichtVonExtern = 1484,
  kStapelGecleart = 1485,
  kStapelPasswortLoeschen = 1486,
  kSkontoReihenfolge = 1491,
  kSkontoLeer = 1501,
  kHistorischeOPs = 1510,
  kDatumUnzulaessig = 1531,
  kKlasseUnzulaessig = 1532,
  kKostenstelleOderKostenart = 1533,
  kBetragZuGross = 1534,
  kBonitaetUnlesbar = 1541,
  kZelkoutStart = 1552,
  kZelkoutUnvollstaendig = 1553,
  kTextUeberlauf = 1608,
};

/// The text of a string id; empty where there is none.
std::string_view text(int id);

} // namespace resources
