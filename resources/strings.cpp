#include "resources/strings.h"

#include <algorithm>
#include <iterator>

namespace resources {
namespace {

struct Entry {
  int id;
  const char *text;
};

// In the order of their ids.
constexpr Entry kEntries[] = {
    {0, "TEXTE OHNE MESSAGEBOX-FLAGS"},
    {kKeineMandanten, "ZELKERR_keine_Mandanten"},
    {kKeineStapel, "ZELKERR_keine_Stapel"},
    {kKeineKonten, "ZELKERR_keine_Konten"},
    {kKeineZahlungsziele, "ZELKERR_keine_Zahlungsziele"},
    {kKeineKostenschablonen, "ZELKERR_keine_Kostenschablonen"},
    {kKeineSprachen, "ZELKERR_keine_Sprachen"},
    {kAbbruch, "ZELKERR_Abbruch"},
    {88, "FEHLERTEXTE für Holen von Datensätzen"},
    {kWeitererDatensatz, "ZELK_weitererDatensatz"},
    {kKeinDatensatz, "ZELK_keinDatensatz"},
    {97, "ALLGEMEINE FEHLERTEXTE"},
    {297, "ZELK-Fehlertexte (lang):"},
    {kGibtEsNicht, "Der %s existiert nicht!"},
    {kIstUnzulaessig, "Der %s ist unzulässig!"},
    {kKontoartUnzulaessig, "Die Kontoart ist unzulässig!"},
    {kSplitErsteBuchung, "Bei einer Splitbuchung müssen im ersten Split beide Kontonummern angegeben werden!"},
    {kSplitEineSeite,
     "Bei einer Splitbuchung muss entweder das Soll- oder das Habenkonto jeder Teilbuchung gleich sein!"},
    {kSplitPersonenkonto, "Auf der gesplitteten Seite darf kein Personenkonto vorkommen!"},
    {kTeilbuchungsanzahl, "Die Anzahl der Teilbuchungen ist nicht korrekt!"},
    {kBuchungsdatumUnzulaessig, "Das Buchungsdatum ist unzulässig!"},
    {kValutadatumUnzulaessig, "Das Valutadatum ist unzulässig!"},
    {kKoreStapel, "Der angebene Stapel ist ein KORE-Stapel und daher unzulässig!"},
    {kEroeffnungEinKonto, "Bei einer Eröffnungsbuchung muss eines der Konten leer übergeben werden (wird ersetzt durch "
                          "das entsprechende Saldovortragskonto)!"},
    {kEroeffnungSteuerfrei, "Eine Eröffnungsbuchung muss steuerfrei sein!"},
    {kEsrNurSchweiz, "Die Angabe einer ESR-Nummer (%s) ist nur bei schweizer Mandanten gestattet!"},
    {kEsrFalsch, "Die angegeben ESR-Nummer '%s' ist nicht korrekt!"},
    {kFremdwaehrungBasis, "In der Basisversion kann nicht mit Fremdwährung gebucht werden. Bitte übergeben Sie Ihre "
                          "Buchungen in der Mandantenwährung."},
    {kWaehrungNurBuchstaben, "Das Währungskürzel darf nur (max. 3) Buchstaben enthalten!"},
    {kSollkontonummerUnzulaessig, "Die angegebene Sollkontonummer ist unzulässig."},
    {kHabenkontonummerUnzulaessig, "Die angegebene Habenkontonummer ist unzulässig."},
    {kBelegnummerFehlt, "Bitte vergeben Sie eine Belegnummer!"},
    {kKontonummernGleich, "Soll- und Habenkontonummern sind gleich!"},
    {kSollkontoFalsch, "Die Sollkontonummer ist unzulässig!"},
    {kHabenkontoFalsch, "Die Habenkontonummer ist unzulässig!"},
    {kKeineSteuer, "In dieser Buchung darf keine Steuer angegeben werden!"},
    {kZahlungszielUnzulaessig, "Das angegebene Zahlungsziel ist unzulässig (Existenz?)."},
    {kKostenschabloneFehlt, "Die angegebenen Kostenschablone existiert nicht."},
    {kSortierungUnzulaessig, "Die Sortierung ist unzulässig!"},
    {kZelkoutStart, "Der ZELKOUT-Prozess kann nicht gestartet werden. Veränderungen im Datenbestand können nicht an "
                    "die abhängigen Anwendungen mitgeteilt werden."},
    {kTextUeberlauf, "Der Text '%s' hat in der Struktur einen Überlauf verursacht. Die maximale Länge (%i Zeichen) "
                     "wurde überschritten."},
};

static_assert(std::is_sorted(std::begin(kEntries), std::end(kEntries),
                             [](const Entry &a, const Entry &b) { return a.id < b.id; }));

} // namespace

std::string_view text(int id) {
  if (int code = 100 - id; code >= kLeastResult && code <= kGreatestResult)
    return kResultTexts[kGreatestResult - code].name;
  if (int code = 300 - id; code >= kLeastResult && code <= kGreatestResult)
    return kResultTexts[kGreatestResult - code].text;
  auto entry = std::lower_bound(std::begin(kEntries), std::end(kEntries), id,
                                [](const Entry &e, int wanted) { return e.id < wanted; });
  return entry != std::end(kEntries) && entry->id == id ? entry->text : std::string_view{};
}

} // namespace resources
