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
    {kLedgerAccountSelection, "Sachkontenauswahl"},
    {kCreditorSelection, "Kreditorenkontenauswahl"},
    {kDebtorSelection, "Debitorenkontenauswahl"},
    {kCostCentreSelection, "Kostenstellenauswahl"},
    {kClientSelection, "Mandantenauswahl"},
    {kBatchSelection, "Stapelauswahl"},
    {kOrderByNumber, "nach Nummer"},
    {kOrderByName, "nach Name"},
    {kRateEntry, "Für die Währung %s ist am %s kein Kurs hinterlegt. Wie viele %s sind eine Einheit %s wert?"},
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
    {kRatingShown, "Bonität: %s"},
    {kPleaseSelect, "Bitte wählen Sie einen Eintrag aus der Listbox aus."},
    {kDoesNotExist, "Der %s existiert nicht!"},
    {kIsInadmissible, "Der %s ist unzulässig!"},
    {kAccountKindInadmissible, "Die Kontoart ist unzulässig!"},
    {kActionInadmissible, "Unzulässige Aktion!"},
    {kAccountNumberInadmissible, "Die Kontonummer ist unzulässig!"},
    {kShortNameMissing, "Fehlendes Kürzel!"},
    {kExistsAlready, "Das %s existiert bereits!"},
    {kInadmissible, "%s unzulässig!"},
    {kSplitFirstLineAccounts, "Bei einer Splitbuchung müssen im ersten Split beide Kontonummern angegeben werden!"},
    {kSplitOneSideAlike,
     "Bei einer Splitbuchung muss entweder das Soll- oder das Habenkonto jeder Teilbuchung gleich sein!"},
    {kSplitPersonalAccount, "Auf der gesplitteten Seite darf kein Personenkonto vorkommen!"},
    {kLineCountWrong, "Die Anzahl der Teilbuchungen ist nicht korrekt!"},
    {kPostingDateInadmissible, "Das Buchungsdatum ist unzulässig!"},
    {kValueDateInadmissible, "Das Valutadatum ist unzulässig!"},
    {kCostAccountingBatch, "Der angebene Stapel ist ein KORE-Stapel und daher unzulässig!"},
    {kOpeningOneAccount, "Bei einer Eröffnungsbuchung muss eines der Konten leer übergeben werden (wird ersetzt durch "
                         "das entsprechende Saldovortragskonto)!"},
    {kOpeningTaxFree, "Eine Eröffnungsbuchung muss steuerfrei sein!"},
    {kPaymentSlipSwissOnly, "Die Angabe einer ESR-Nummer (%s) ist nur bei schweizer Mandanten gestattet!"},
    {kPaymentSlipWrong, "Die angegeben ESR-Nummer '%s' ist nicht korrekt!"},
    {kBasicForeignCurrency, "In der Basisversion kann nicht mit Fremdwährung gebucht werden. Bitte übergeben Sie Ihre "
                            "Buchungen in der Mandantenwährung."},
    {kCurrencyLettersOnly, "Das Währungskürzel darf nur (max. 3) Buchstaben enthalten!"},
    {kDebitNumberInadmissible, "Die angegebene Sollkontonummer ist unzulässig."},
    {kCreditNumberInadmissible, "Die angegebene Habenkontonummer ist unzulässig."},
    {kDocumentNumberMissing, "Bitte vergeben Sie eine Belegnummer!"},
    {kAccountNumbersEqual, "Soll- und Habenkontonummern sind gleich!"},
    {kDebitAccountWrong, "Die Sollkontonummer ist unzulässig!"},
    {kCreditAccountWrong, "Die Habenkontonummer ist unzulässig!"},
    {kNoTaxAllowed, "In dieser Buchung darf keine Steuer angegeben werden!"},
    {kPaymentTermInadmissible, "Das angegebene Zahlungsziel ist unzulässig (Existenz?)."},
    {kCostTemplateMissing, "Die angegebenen Kostenschablone existiert nicht."},
    {kTaxAmountDoesNotFit, "Der angegebene Steuerbetrag ist unzulässig (Format? Passend zum Steuersatz?)."},
    {kCurrencyLedgerAccounts,
     "Die Angabe einer Währung bei Sachkontenbuchungen ist nur bei schweizer Mandanten gestattet!"},
    {kCurrencyAmbiguous, "Die Währung der Buchung ist nicht eindeutig!"},
    {kCostCentreMissing, "Die Kostenstelle %s existiert nicht!"},
    {kCostCentreRunningTime,
     "Das Datum liegt ausserhalb der Laufzeitbeschränkung der Kostenstelle/des Kostenträgers '%s'."},
    {kNoCostCentreGiven, "Keine Kostenstelle gegeben"},
    {kIsInadmissibleFeminine, "Die %s ist unzulässig."},
    {kCombinationInadmissible, "Die Kostenarten/Kostenstellen-Kombination ist nicht zulässig!"},
    {kCostSumWrong, "Der Gesamtbetrag der Kostenbuchungen entspricht nicht dem Nettobetrag der Buchung."},
    {kCostCentreMandatory, "Bei aktivierter Kostenstellenpflicht muss bei Buchungen auf GuV-Konten zumindest eine "
                           "Kostenstelle bebucht werden."},
    {kCostTemplateMandatory,
     "Bei Buchungen auf GuV-Konten muss zumindest eine Kostenstelle bebucht werden. Dazu müssen Sie eine "
     "Kostenschablone im GuV-Konto hinterlegen und die Kostenaufteilung mit <OK> abschliessen. Bei "
     "laufzeitbeschränkten Kostenstellen muss die Buchung innerhalb der Laufzeitbeschränkung liegen. Ist eine "
     "Kostenstellen/Kostenarten-Kombination angegeben, so muss auch dies passen. Des weiteren darf der entsprechende "
     "Zeitraum in der MERKA KORE noch nicht abgeschlossen sein."},
    {kTwoCostAccounts, "Bei einer Buchung zweier kostenpflichtiger Konten können keine Kostenstellen eingebucht "
                       "werden. Buchen Sie diese Buchung daher bitte in zwei Buchungen über ein Bilanz-Transitkonto, "
                       "welches nicht als Kostenart gekennzeichnet ist."},
    {kIncomeTransfer, "Bei einer GuV-Umbuchung können keine Kostenstellen eingebucht werden. Buchen Sie diese Buchung "
                      "daher bitte in zwei Buchungen über ein Bilanz-Transitkonto."},
    {kSplitExMixed,
     "Die Splitbuchung muss komplett durch Aufrufe per ZELK_SplitEinfuegenEx() zu Stande gekommen sein. Ein Vermischen "
     "der Aufrufe von ZELK_SplitEinfuegen() und ZELK_SplitEinfuegenEx() ist nicht zulässig."},
    {kRateInadmissible, "Der Kurs ist unzulässig! Erwartet wird eine Zahl größer 0 mit höchstens 6 Nachkommastellen."},
    {kRateMissing, "Der Kurs der Währung %s ist nicht hinterlegt!"},
    {kBasicCosts, "In der Basisversion können keine Kostenstellen bebucht werden. Bitte übergeben Sie Ihre Buchungen "
                  "ohne Kostenschablone."},
    {kOrderInadmissible, "Die Sortierung ist unzulässig!"},
    {kPaymentTermMissing, "Das Zahlziel existiert nicht!"},
    {kNameTooLong, "Der Name ist zu lang!"},
    {kNameEmpty, "Der Name darf nicht leer sein oder nur aus White-Space-Zeichen bestehen!"},
    {kStandardBatch, "Die Pflichtstapel können nicht geändert werden!"},
    {kChangedBatchMissing, "Der zu ändernde Stapel existiert nicht!"},
    {kBatchPasswordChange, "Der Stapel ist passwortgeschützt und kann daher nicht geändert werden!"},
    {kBatchNameTaken, "Es exisitiert bereits ein Stapel mit dem Namen '%s'!"},
    {kBatchRecurrence, "Das Widerkehrintervall des Stapels kann nur zwischen 0 und 99 Monaten betragen!"},
    {kBatchNumberTaken, "Die Stapelnummer ist bereits vergeben!"},
    {kBatchMissing, "Der angegebene Stapel existiert nicht!"},
    {kBatchNotFromOutside, "Der Stapel kann extern nicht gelöscht werden, da er nicht von extern angelegt wurde!"},
    {kBatchCleared, "Der Stapel wurde gecleart und ist daher nicht löschbar!"},
    {kBatchPasswordDeletion, "Der Stapel ist passwortgeschützt und daher nicht löschbar!"},
    {kDiscountOrder, "Fehler bei der Skontoangabe!\nDer erste gewährte Skonto muss den kleineren\nZeitraum und den "
                     "grösseren Skontosatz haben."},
    {kDiscountEmpty,
     "Bitte geben Sie einen Skontosatz grösser als 0,00 %\nund eine Skontofrist grösser als 0 Tage ein!"},
    {kHistoricalItems, "Die historischen OPs lassen sich nur in der Plus-Version holen."},
    {kDateInadmissible, "Das Datum ist unzulässig!"},
    {kClassInadmissible, "Es wurde ein unzulässige Klasse für das Holen der Aufbauten angegeben."},
    {kCostCentreOrType, "Es muss mindestens eine Kostenstelle/ein Kostenträger oder eine Kostenart angegeben werden."},
    {kAmountTooGreat, "Der ermittelte Betrag ist größer als 999.999.999,99 und kann nicht übergeben werden!"},
    {kRatingUnreadable, "Die Bonität kann nicht ermittelt werden (bonitaet.csv): %s"},
    {kCompanionNotStarted,
     "Der ZELKOUT-Prozess kann nicht gestartet werden. Veränderungen im Datenbestand können nicht an "
     "die abhängigen Anwendungen mitgeteilt werden."},
    {kCompanionIncomplete,
     "Es konnten nicht alle Daten an die abhängigen ZELKOUT Callback-DLLs geschickt werden. Die Veränderungen im "
     "Datenbestand konnten nicht vollständig den abhängigen Anwendungen mitgeteilt werden."},
    {kTextOverflow, "Der Text '%s' hat in der Struktur einen Überlauf verursacht. Die maximale Länge (%i Zeichen) "
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
