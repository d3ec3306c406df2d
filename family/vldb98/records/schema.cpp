#include "records/schema.h"

#include <algorithm>
#include <cctype>
#include <stdexcept>

#include "records/schema_fields.h"

namespace vldb98 {

Table table(int number, std::string name, Scope scope, size_t recordSize, std::vector<Field> fields,
            std::vector<KeyDeclaration> keys, const char *assigned) {
  Table t{number, std::move(name), scope, uint16_t(recordSize), std::move(fields), {}};
  auto indexOf = [&t](const char *field) {
    int i = t.fieldIndex(field);
    if (i < 0) throw std::logic_error(t.name + ": " + field);
    return i;
  };
  for (const KeyDeclaration &declared : keys) {
    Key key{declared.index, declared.unique, {}, {}, declared.onServersOnly};
    for (const char *field : declared.fields)
      key.fields.push_back(indexOf(field));
    key.totalOrder = key.fields;
    if (!key.unique)
      for (int field : t.keys.front().fields)
        if (std::find(key.fields.begin(), key.fields.end(), field) == key.fields.end()) key.totalOrder.push_back(field);
    t.keys.push_back(std::move(key));
  }
  if (assigned) {
    t.assigned = indexOf(assigned);
    if (t.fields[size_t(t.assigned)].type != FieldType::Int32) throw std::logic_error(t.name + ": " + assigned);
  }
  return t;
}

namespace {

Table personalAccounts(int number, const char *name) {
  using R = PERSONENKONTO;
  return table(number, name, Scope::FiscalYear, sizeof(R),
               joined({{KEYTEXT(R, Nr),
                        TEXT(R, Kuerzel),
                        TEXT(R, Name),
                        TEXT(R, Zusatz),
                        TEXT(R, Vorname),
                        TEXT(R, Strasse),
                        TEXT(R, Land),
                        TEXT(R, PLZ),
                        TEXT(R, Ort),
                        TEXT(R, Telefon),
                        TEXT(R, EMail),
                        TEXT(R, UStIdNr),
                        TEXT(R, IBAN),
                        TEXT(R, BIC),
                        TEXT(R, Waehrung),
                        NUMBER(R, Zahlungsziel),
                        KEYTEXT(R, Sammelkonto),
                        MONEY(R, Kreditlimit),
                        NUMBER(R, Mahnkennziffer),
                        NUMBER(R, Gesperrt),
                        TEXT(R, Bonitaet),
                        NUMBER(R, SWinEuro)},
                       budgetValues("SW", offsetof(R, Sollwerte)),
                       accountValues("", offsetof(R, Werte)),
                       accountValues("Euro", offsetof(R, EuroWerte))}),
               {{0, true, {"Nr"}}, {1, false, {"Kuerzel"}}, {4, false, {"Name"}}});
}

Table reportStructure(int structureClass) {
  using R = AUFBAU;
  return table(kStructureTables[size_t(structureClass)], "Aufbau" + std::to_string(structureClass), Scope::Client,
               sizeof(R),
               {NUMBER(R, Nr), NUMBER(R, Vater), NUMBER(R, Flags), NUMBER(R, Naechste), NUMBER(R, Kind), TEXT(R, Name),
                TEXT(R, Kennung), NUMBER(R, Flags2), TEXT(R, Kennung2)},
               {{0, true, {"Nr"}}, {1, false, {"Name"}}});
}

std::vector<Table> declareTables() {
  std::vector<Table> tables;
  {
    using R = FIRMENSTAMM;
    tables.push_back(
        table(kFirmenstamm, "Firmenstamm", Scope::Global, sizeof(R),
              {NUMBER(R, Nummer),       TEXT(R, Name),           TEXT(R, Zusatz),         YEAR(R, AktJahr),
               YEAR(R, StartJahr),      NUMBER(R, Gejabeginn),   NUMBER(R, Kontenrahmen), NUMBER(R, Istversteuerer),
               NUMBER(R, EUeRechner),   NUMBER(R, Steuerfrei),   NUMBER(R, Euro),         TEXT(R, UStIdNr),
               TEXT(R, Land),           TEXT(R, Waehrung),       TEXT(R, Eurokurs),       TEXT(R, SvSako),
               TEXT(R, SvKred),         TEXT(R, SvDebi),         NUMBER(R, Kontolaenge),  NUMBER(R, Optionen),
               KEYTEXT(R, VortragSako), KEYTEXT(R, VortragKred), KEYTEXT(R, VortragDebi), NUMBER(R, Version)},
              {{0, true, {"Nummer"}}, {1, false, {"Name"}}}));
  }
  {
    using R = FISTA_EXT;
    tables.push_back(table(kFistaExt, "FirmenstammExt", Scope::Global, sizeof(R),
                           {NUMBER(R, Nummer), TEXT(R, Strasse), TEXT(R, PLZ), TEXT(R, Ort), TEXT(R, Steuernummer),
                            NUMBER(R, Schweiz), NUMBER(R, Kostenstellenpflicht), NUMBER(R, Dimension3),
                            NUMBER(R, Dimension4), NUMBER(R, Dimension5), NUMBER(R, Dimension6)},
                           {{0, true, {"Nummer"}}}));
  }
  {
    using R = GESCHAEFTSJAHR;
    tables.push_back(table(kGeschaeftsjahr, "Geschaeftsjahr", Scope::Client, sizeof(R),
                           {NUMBER(R, Jahr), DATE(R, Beginn), DATE(R, Ende), NUMBER(R, Abgeschlossen)},
                           {{0, true, {"Jahr"}}, {1, false, {"Beginn"}}}));
  }
  {
    using R = SACHKONTO;
    tables.push_back(table(kSachkonto, "Sachkonto", Scope::FiscalYear, sizeof(R),
                           joined({{KEYTEXT(R, Nr), TEXT(R, Kuerzel), TEXT(R, Name), NUMBER(R, GuV),
                                    NUMBER(R, Steuerschluessel), NUMBER(R, Kostenart), NUMBER(R, Kostenschablone),
                                    TEXT(R, Waehrung), NUMBER(R, Gesperrt), NUMBER(R, SWinEuro)},
                                   budgetValues("SW", offsetof(R, Sollwerte)),
                                   accountValues("", offsetof(R, Werte)),
                                   accountValues("Euro", offsetof(R, EuroWerte))}),
                           {{0, true, {"Nr"}}, {1, false, {"Kuerzel"}}, {5, false, {"Name"}}}));
  }
  tables.push_back(personalAccounts(kKreditor, "Kreditor"));
  tables.push_back(personalAccounts(kDebitor, "Debitor"));
  {
    using R = KOST;
    tables.push_back(table(kKost, "Kostenstelle", Scope::FiscalYear, sizeof(R),
                           joined({{KEYTEXT(R, Nr), NUMBER(R, Dimension), KEYTEXT(R, Kostref), TEXT(R, Kuerzel),
                                    TEXT(R, Name), DATE(R, LaufzeitVon), DATE(R, LaufzeitBis), NUMBER(R, SWinEuro)},
                                   budgetValues("SW", offsetof(R, Sollwerte)),
                                   budgetValues("WeitererSW", offsetof(R, Sollwerte2)),
                                   monthlyValues("Kosten", offsetof(R, Kosten), Origin::Ledger),
                                   monthlyValues("EuroKosten", offsetof(R, EuroKosten), Origin::Ledger)}),
                           {{0, true, {"Nr", "Dimension", "Kostref"}},
                            {1, false, {"Kuerzel"}},
                            {3, false, {"Name"}},
                            {9, false, {"Dimension", "Nr"}},
                            {10, false, {"Dimension", "Nr", "Kostref"}}}));
  }
  {
    using R = STAPEL;
    tables.push_back(table(kStapel, "Stapel", Scope::Client, sizeof(R),
                           {NUMBER(R, Nr), TEXT(R, Name), NUMBER(R, Wiederkehr), NUMBER(R, Transitorisch),
                            NUMBER(R, Sperre), NUMBER(R, Bebucht), NUMBER(R, Abstimm0), TEXT(R, Passwort),
                            NUMBER(R, VonExtern), NUMBER(R, Gecleart), NUMBER(R, Pflicht), NUMBER(R, Kore)},
                           {{0, true, {"Nr"}}, {1, false, {"Name"}}}, "Nr"));
  }
  {
    using R = BATCHBUCHUNG;
    tables.push_back(
        table(kBatchbuchung, "Batchbuchung", Scope::Client, sizeof(R),
              {NUMBER(R, Stapel), NUMBER(R, Nr), DATE(R, Belegdatum), TEXT(R, Belegnummer), TEXT(R, OPBelegnummer),
               DATE(R, Valutadatum), TEXT(R, Waehrung), TEXT(R, Kurs), NUMBER(R, Einheiten), TEXT(R, ESR),
               NUMBER(R, DMSNr), NUMBER(R, Zahlungsziel), NUMBER(R, USTDirekt), NUMBER(R, Eroeffnung),
               NUMBER(R, Abschluss), NUMBER(R, Umbuchung), NUMBER(R, Anzahl), TEXT(R, Kennung)},
              // What became of a posting is asked where the answer can be lost on its way.
              {{0, true, {"Stapel", "Nr"}}, {1, true, {"Kennung"}, true}}, "Nr"));
  }
  {
    using R = SPLIT;
    tables.push_back(table(kSplit, "Split", Scope::Client, sizeof(R),
                           {NUMBER(R, Stapel),           NUMBER(R, Buchung),      NUMBER(R, Nr),
                            NUMBER(R, Sollart),          NUMBER(R, Habenart),     KEYTEXT(R, Sollkonto),
                            KEYTEXT(R, Habenkonto),      MONEY(R, Brutto),        MONEY(R, Netto),
                            NUMBER(R, Steuerschluessel), NUMBER(R, Steuerseite),  MONEY(R, Steuersatz),
                            MONEY(R, Steuerbetrag),      MONEY(R, BruttoFW),      MONEY(R, SteuerFW),
                            DATE(R, Faelligkeit),        TEXT(R, Text),           TEXT(R, Text2),
                            NUMBER(R, Kostenschablone),  NUMBER(R, Bewegungsart), NUMBER(R, DMSNr),
                            MONEY(R, Schluesselsatz)},
                           {{0, true, {"Stapel", "Buchung", "Nr"}}}));
  }
  {
    using R = KOBU;
    tables.push_back(table(kKobu, "Kostenbuchung", Scope::Client, sizeof(R),
                           {NUMBER(R, Stapel), NUMBER(R, Buchung), NUMBER(R, Split), NUMBER(R, Nr),
                            KEYTEXT(R, Kostenstelle1), KEYTEXT(R, Kostenstelle2), KEYTEXT(R, Kostenstelle3),
                            KEYTEXT(R, Kostenstelle4), KEYTEXT(R, Kostenstelle5), KEYTEXT(R, Kostenstelle6),
                            NUMBER(R, Kostenkennung), MONEY(R, Betrag), MONEY(R, BetragFW), MONEY(R, Prozent),
                            MONEY(R, Menge), TEXT(R, Einheit), TEXT(R, Bemerkung), TEXT(R, Bemerkung2)},
                           {{0, true, {"Stapel", "Buchung", "Split", "Nr"}}}));
  }
  {
    using R = ZAHLZIEL;
    tables.push_back(table(kZahlziel, "Zahlungsziel", Scope::Client, sizeof(R),
                           {NUMBER(R, Nr), TEXT(R, Kuerzel), NUMBER(R, Skontotage1), MONEY(R, Skontosatz1),
                            NUMBER(R, Zahltage), NUMBER(R, TagInMonat), NUMBER(R, MonatePlus), NUMBER(R, Zahlungsart),
                            TEXT(R, Bemerkung), NUMBER(R, Skontotage2), MONEY(R, Skontosatz2)},
                           {{0, true, {"Nr"}}, {1, true, {"Kuerzel"}}}, "Nr"));
  }
  {
    using R = STEUSA;
    tables.push_back(
        table(kSteusa, "Steuerschluessel", Scope::Client, sizeof(R),
              {NUMBER(R, Schluessel), DATE(R, GueltigAb), TEXT(R, Bezeichnung), MONEY(R, Satz), NUMBER(R, Art),
               NUMBER(R, Anteil), KEYTEXT(R, Steuerkonto), KEYTEXT(R, Gegenkonto), NUMBER(R, Ustvakz)},
              {{0, true, {"Schluessel", "GueltigAb"}}}));
  }
  {
    using R = KURSE;
    tables.push_back(table(kKurse, "Kurs", Scope::Client, sizeof(R),
                           {TEXT(R, Waehrung), DATE(R, Datum), TEXT(R, Kurs), NUMBER(R, Einheiten)},
                           {{0, true, {"Waehrung", "Datum"}}}));
  }
  {
    using R = DMS_ID;
    tables.push_back(table(kDmsId, "DmsId", Scope::Client, sizeof(R),
                           {NUMBER(R, Nr), TEXT(R, Id), NUMBER(R, Kostenschablone)},
                           {{0, true, {"Nr"}}, {1, true, {"Id"}}}, "Nr"));
  }
  {
    using R = KOSCHA;
    tables.push_back(table(kKoscha, "Kostenschablone", Scope::Client, sizeof(R), {NUMBER(R, Nr), TEXT(R, Name)},
                           {{0, true, {"Nr"}}}));
  }
  {
    using R = KOSCHA_ZEILE;
    tables.push_back(table(kKoschaZeile, "Kostenschablonenzeile", Scope::Client, sizeof(R),
                           {NUMBER(R, Schablone), NUMBER(R, Nr), KEYTEXT(R, Kostenstelle1), KEYTEXT(R, Kostenstelle2),
                            NUMBER(R, Kostenkennung), MONEY(R, Anteil)},
                           {{0, true, {"Schablone", "Nr"}}}));
  }
  {
    using R = KOMBINATION;
    tables.push_back(table(kKombination, "Kombination", Scope::Client, sizeof(R),
                           {KEYTEXT(R, Kostenart), KEYTEXT(R, Kostenstelle)},
                           {{0, true, {"Kostenart", "Kostenstelle"}}}));
  }
  {
    using R = BENUTZER;
    tables.push_back(
        table(kBenutzer, "Benutzer", Scope::Client, sizeof(R), {NUMBER(R, Nr), TEXT(R, Name)}, {{0, true, {"Nr"}}}));
  }
  for (Table &ledger : ledgerTables())
    tables.push_back(std::move(ledger));
  for (int structureClass = 0; structureClass < int(kStructureTables.size()); ++structureClass)
    tables.push_back(reportStructure(structureClass));
  for (Table &t : tables)
    if (t.number == kBatchbuchung || t.number == kSplit || t.number == kKobu) t.origin = Origin::Postings;
  return tables;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i)
    if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i]))) return false;
  return true;
}

} // namespace

const Key *Table::key(int index) const {
  for (const Key &k : keys)
    if (k.index == index) return &k;
  return nullptr;
}

int Table::fieldIndex(std::string_view fieldName) const {
  for (size_t i = 0; i < fields.size(); ++i)
    if (fieldName == fields[i].name) return int(i);
  return -1;
}

const std::vector<Table> &allTables() {
  static const std::vector<Table> tables = declareTables();
  return tables;
}

const Table *findTable(int number) {
  static const auto byNumber = [] {
    std::array<const Table *, kTableLimit> index{};
    for (const Table &t : allTables())
      index[size_t(t.number)] = &t;
    return index;
  }();
  return number >= 0 && number < kTableLimit ? byNumber[size_t(number)] : nullptr;
}

const Table *findTable(std::string_view name) {
  for (const Table &t : allTables())
    if (equalIgnoringCase(t.name, name)) return &t;
  return nullptr;
}

} // namespace vldb98
