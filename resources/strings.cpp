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
    {kSachkontenauswahl, "Sachkontenauswahl"},
    {kKreditorenauswahl, "Kreditorenkontenauswahl"},
    {kDebitorenauswahl, "Debitorenkontenauswahl"},
    {kKostenstellenauswahl, "Kostenstellenauswahl"},
    {kMandantenauswahl, "Mandantenauswahl"},
    {kStapelauswahl, "Stapelauswahl"},
    {kNachNummer, "nach Nummer"},
    {kNachName, "nach Name"},
    {kKursEingabe, "Für die Währung %s ist am %s kein Kurs hinterlegt. Wie viele %s sind eine Einheit %s wert?"},
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
    {kBonitaet, "Bonität: %s"},
    {kBitteAuswaehlen, "Bitte wählen Sie einen Eintrag aus der Listbox aus."},
    {kGibtEsNicht, "Der %s existiert nicht!"},
    {kIstUnzulaessig, "Der %s ist unzulässig!"},
    {kKontoartUnzulaessig, "Die Kontoart ist unzulässig!"},
    {kUnzulaessigeAktion, "Unzulässige Aktion!"},
    {kKontonummerUnzulaessig, "Die Kontonummer ist unzulässig!"},
    {kKuerzelFehlt, "Fehlendes Kürzel!"},
    {kExistiertBereits, "Das %s existiert bereits!"},
    {kUnzulaessig, "%s unzulässig!"},
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
    {kSteuerbetragPasstNicht, "Der angegebene Steuerbetrag ist unzulässig (Format? Passend zum Steuersatz?)."},
    {kWaehrungSachkonten,
     "Die Angabe einer Währung bei Sachkontenbuchungen ist nur bei schweizer Mandanten gestattet!"},
    {kWaehrungNichtEindeutig, "Die Währung der Buchung ist nicht eindeutig!"},
    {kKostenstelleFehlt, "Die Kostenstelle %s existiert nicht!"},
    {kKostenstelleLaufzeit,
     "Das Datum liegt ausserhalb der Laufzeitbeschränkung der Kostenstelle/des Kostenträgers '%s'."},
    {kKeineKostenstelle, "Keine Kostenstelle gegeben"},
    {kDieIstUnzulaessig, "Die %s ist unzulässig."},
    {kKombinationUnzulaessig, "Die Kostenarten/Kostenstellen-Kombination ist nicht zulässig!"},
    {kKostensumme, "Der Gesamtbetrag der Kostenbuchungen entspricht nicht dem Nettobetrag der Buchung."},
    {kKostenstellenpflicht, "Bei aktivierter Kostenstellenpflicht muss bei Buchungen auf GuV-Konten zumindest eine "
                            "Kostenstelle bebucht werden."},
    {kKostenstellenpflichtSchablone,
     "Bei Buchungen auf GuV-Konten muss zumindest eine Kostenstelle bebucht werden. Dazu müssen Sie eine "
     "Kostenschablone im GuV-Konto hinterlegen und die Kostenaufteilung mit <OK> abschliessen. Bei "
     "laufzeitbeschränkten Kostenstellen muss die Buchung innerhalb der Laufzeitbeschränkung liegen. Ist eine "
     "Kostenstellen/Kostenarten-Kombination angegeben, so muss auch dies passen. Des weiteren darf der entsprechende "
     "Zeitraum in der MERKA KORE noch nicht abgeschlossen sein."},
    {kZweiKostenkonten, "Bei einer Buchung zweier kostenpflichtiger Konten können keine Kostenstellen eingebucht "
                        "werden. Buchen Sie diese Buchung daher bitte in zwei Buchungen über ein Bilanz-Transitkonto, "
                        "welches nicht als Kostenart gekennzeichnet ist."},
    {kGuvUmbuchung, "Bei einer GuV-Umbuchung können keine Kostenstellen eingebucht werden. Buchen Sie diese Buchung "
                    "daher bitte in zwei Buchungen über ein Bilanz-Transitkonto."},
    {kSplitExVermischt,
     "Die Splitbuchung muss komplett durch Aufrufe per ZELK_SplitEinfuegenEx() zu Stande gekommen sein. Ein Vermischen "
     "der Aufrufe von ZELK_SplitEinfuegen() und ZELK_SplitEinfuegenEx() ist nicht zulässig."},
    {kKursUnzulaessig, "Der Kurs ist unzulässig! Erwartet wird eine Zahl größer 0 mit höchstens 6 Nachkommastellen."},
    {kKursFehlt, "Der Kurs der Währung %s ist nicht hinterlegt!"},
    {kKostenBasis, "In der Basisversion können keine Kostenstellen bebucht werden. Bitte übergeben Sie Ihre Buchungen "
                   "ohne Kostenschablone."},
    {kSortierungUnzulaessig, "Die Sortierung ist unzulässig!"},
    {kZahlzielFehlt, "Das Zahlziel existiert nicht!"},
    {kNameZuLang, "Der Name ist zu lang!"},
    {kNameLeer, "Der Name darf nicht leer sein oder nur aus White-Space-Zeichen bestehen!"},
    {kPflichtstapel, "Die Pflichtstapel können nicht geändert werden!"},
    {kZuAendernderStapelFehlt, "Der zu ändernde Stapel existiert nicht!"},
    {kStapelPasswortAendern, "Der Stapel ist passwortgeschützt und kann daher nicht geändert werden!"},
    {kStapelnameVergeben, "Es exisitiert bereits ein Stapel mit dem Namen '%s'!"},
    {kStapelWiederkehr, "Das Widerkehrintervall des Stapels kann nur zwischen 0 und 99 Monaten betragen!"},
    {kStapelnummerVergeben, "Die Stapelnummer ist bereits vergeben!"},
    {kStapelFehlt, "Der angegebene Stapel existiert nicht!"},
    {kStapelNichtVonExtern, "Der Stapel kann extern nicht gelöscht werden, da er nicht von extern angelegt wurde!"},
    {kStapelGecleart, "Der Stapel wurde gecleart und ist daher nicht löschbar!"},
    {kStapelPasswortLoeschen, "Der Stapel ist passwortgeschützt und daher nicht löschbar!"},
    {kSkontoReihenfolge, "Fehler bei der Skontoangabe!\nDer erste gewährte Skonto muss den kleineren\nZeitraum und den "
                         "grösseren Skontosatz haben."},
    {kSkontoLeer, "Bitte geben Sie einen Skontosatz grösser als 0,00 %\nund eine Skontofrist grösser als 0 Tage ein!"},
    {kHistorischeOPs, "Die historischen OPs lassen sich nur in der Plus-Version holen."},
    {kDatumUnzulaessig, "Das Datum ist unzulässig!"},
    {kKlasseUnzulaessig, "Es wurde ein unzulässige Klasse für das Holen der Aufbauten angegeben."},
    {kKostenstelleOderKostenart,
     "Es muss mindestens eine Kostenstelle/ein Kostenträger oder eine Kostenart angegeben werden."},
    {kBetragZuGross, "Der ermittelte Betrag ist größer als 999.999.999,99 und kann nicht übergeben werden!"},
    {kBonitaetUnlesbar, "Die Bonität kann nicht ermittelt werden (bonitaet.csv): %s"},
    {kZelkoutStart, "Der ZELKOUT-Prozess kann nicht gestartet werden. Veränderungen im Datenbestand können nicht an "
                    "die abhängigen Anwendungen mitgeteilt werden."},
    {kZelkoutUnvollstaendig,
     "Es konnten nicht alle Daten an die abhängigen ZELKOUT Callback-DLLs geschickt werden. Die Veränderungen im "
     "Datenbestand konnten nicht vollständig den abhängigen Anwendungen mitgeteilt werden."},
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
