#include <deque>

#include "records/schema_fields.h"

namespace vldb98 {
namespace {

constexpr int kMonths = 12;
constexpr size_t kMoneySize = sizeof(WERTEPAAR::Soll);

// Names outlive the tables that refer to them.
const char *kept(std::string name) {
  static std::deque<std::string> names;
  return names.emplace_back(std::move(name)).c_str();
}

Field money(std::string name, size_t offset, Origin origin) {
  return {kept(std::move(name)), FieldType::Money, uint16_t(offset), uint16_t(kMoneySize), origin};
}

std::vector<Field> openItem() {
  using R = OPBELEG;
  return {NUMBER(R, Nr),
          KEYTEXT(R, Konto),
          TEXT(R, Kuerzel),
          TEXT(R, Name),
          TEXT(R, Belegnummer),
          TEXT(R, OPBelegnummer),
          DATE(R, Belegdatum),
          DATE(R, Faelligkeit),
          DATE(R, Skontodatum1),
          DATE(R, Valutadatum),
          DATE(R, Skontodatum2),
          TEXT(R, Text),
          MONEY(R, Brutto),
          MONEY(R, Ausstand),
          TEXT(R, Waehrung),
          NUMBER(R, Waehrungsindex),
          NUMBER(R, Mahnstufe),
          TEXT(R, Mahndatum),
          TEXT(R, Bemerkung),
          KEYTEXT(R, Gegenkonto),
          NUMBER(R, Zahlungsziel),
          NUMBER(R, Flags),
          KEYTEXT(R, Skontokonto1),
          KEYTEXT(R, Skontokonto2),
          MONEY(R, Skontosatz1),
          MONEY(R, Skontosatz2),
          MONEY(R, Steuersatz1),
          MONEY(R, Steuersatz2),
          MONEY(R, Ausstand2),
          MONEY(R, BetragFW),
          TEXT(R, Text2),
          NUMBER(R, DMSNr),
          NUMBER(R, InkassoAkte),
          NUMBER(R, InkassoForderung),
          NUMBER(R, InkassoMahnkosten)};
}

Table openItems(int number, const char *name) {
  return table(number, name, Scope::Client, sizeof(OPBELEG), openItem(),
               {{0, true, {"Nr"}}, {1, false, {"Konto"}}, {9, false, {"OPBelegnummer", "Konto"}}});
}

Table historicalItems(int number, const char *name) {
  using R = OPHISTORIE;
  static_assert(offsetof(R, OP) == 0);
  return table(
      number, name, Scope::FiscalYear, sizeof(R),
      joined({openItem(),
              {NUMBER(R, Zeile), MONEY(R, Zahlung), DATE(R, Zahldatum), NUMBER(R, Benutzer), MONEY(R, Skontobetrag),
               TEXT(R, Zahlbelegnummer), TEXT(R, Zahltext), NUMBER(R, Zahlungsart), TEXT(R, Zahltext2)}}),
      {{0, true, {"Nr", "Zeile"}},
       {1, false, {"Konto"}},
       {4, false, {"Belegnummer"}},
       {9, false, {"OPBelegnummer"}},
       {12, false, {"Zahldatum"}}});
}

} // namespace

std::vector<Field> accountValues(const char *prefix, size_t offset) {
  std::vector<Field> fields;
  auto pair = [&](const std::string &name, size_t at) {
    fields.push_back(money(prefix + ("Soll" + name), offset + at + offsetof(WERTEPAAR, Soll), Origin::Ledger));
    fields.push_back(money(prefix + ("Haben" + name), offset + at + offsetof(WERTEPAAR, Haben), Origin::Ledger));
  };
  pair("Eroeffnung", offsetof(KONTOWERTE, Eroeffnung));
  pair("Abschluss", offsetof(KONTOWERTE, Abschluss));
  for (int month = 0; month < kMonths; ++month)
    pair(std::to_string(month + 1), offsetof(KONTOWERTE, Monat) + size_t(month) * sizeof(WERTEPAAR));
  return fields;
}

std::vector<Field> monthlyValues(const char *prefix, size_t offset, Origin origin) {
  std::vector<Field> fields;
  for (int month = 0; month < kMonths; ++month)
    fields.push_back(money(prefix + std::to_string(month + 1), offset + size_t(month) * kMoneySize, origin));
  return fields;
}

std::vector<Field> budgetValues(const char *prefix, size_t offset) {
  std::vector<Field> fields = monthlyValues(prefix, offset + offsetof(SOLLWERTE, Monat), Origin::MasterData);
  fields.push_back(money(std::string(prefix) + "Gesamt", offset + offsetof(SOLLWERTE, Gesamt), Origin::MasterData));
  return fields;
}

std::vector<Field> joined(std::initializer_list<std::vector<Field>> groups) {
  std::vector<Field> all;
  for (const std::vector<Field> &group : groups)
    all.insert(all.end(), group.begin(), group.end());
  return all;
}

std::vector<Table> ledgerTables() {
  std::vector<Table> tables;
  {
    using R = BUCHUNGSBELEG;
    tables.push_back(table(kBuchungsbeleg, "Buchungsbeleg", Scope::FiscalYear, sizeof(R),
                           {NUMBER(R, Nr),           NUMBER(R, Zeile),       NUMBER(R, Kontotabelle),
                            KEYTEXT(R, Konto),       NUMBER(R, Art),         DATE(R, Datum),
                            MONEY(R, Soll),          MONEY(R, Haben),        MONEY(R, EuroSoll),
                            MONEY(R, EuroHaben),     TEXT(R, Waehrung),      MONEY(R, BetragFW),
                            NUMBER(R, Gegentabelle), KEYTEXT(R, Gegenkonto), NUMBER(R, Steuerschluessel),
                            MONEY(R, Steuersatz),    TEXT(R, Belegnummer),   TEXT(R, OPBelegnummer),
                            TEXT(R, Text),           TEXT(R, Text2),         NUMBER(R, DMSNr),
                            NUMBER(R, Stapel),       NUMBER(R, Buchung),     NUMBER(R, Split),
                            DATE(R, Buchungstag)},
                           {{0, true, {"Nr", "Zeile"}}, {1, false, {"Kontotabelle", "Konto", "Art", "Datum"}}}));
  }
  {
    using R = KOSTENBELEG;
    tables.push_back(table(kKostenbeleg, "Kostenbeleg", Scope::FiscalYear, sizeof(R),
                           joined({{NUMBER(R, Nr), NUMBER(R, Zeile), DATE(R, Datum), KEYTEXT(R, Kostenart),
                                    KEYTEXT(R, Kostenstelle1), KEYTEXT(R, Kostenstelle2), KEYTEXT(R, Kostenstelle3),
                                    KEYTEXT(R, Kostenstelle4), KEYTEXT(R, Kostenstelle5), KEYTEXT(R, Kostenstelle6),
                                    NUMBER(R, Flags), MONEY(R, Betrag), MONEY(R, EuroBetrag), MONEY(R, Menge),
                                    TEXT(R, Einheit), TEXT(R, Belegnummer), TEXT(R, Bemerkung), TEXT(R, Bemerkung2)},
                                   {KEYTEXT(R, Kostref1), KEYTEXT(R, Kostref2), KEYTEXT(R, Kostref3),
                                    KEYTEXT(R, Kostref4), KEYTEXT(R, Kostref5), KEYTEXT(R, Kostref6)}}),
                           {{0, true, {"Nr", "Zeile"}}, {1, false, {"Datum"}}}));
  }
  tables.push_back(historicalItems(kHistOPDebitor, "HistOPDebitor"));
  tables.push_back(historicalItems(kHistOPKreditor, "HistOPKreditor"));
  tables.push_back(openItems(kOPKreditor, "OPKreditor"));
  tables.push_back(openItems(kOPDebitor, "OPDebitor"));
  for (Table &ledger : tables)
    ledger.origin = Origin::Ledger;
  {
    using R = KONTOPROTOKOLL;
    tables.push_back(table(kKontoprotokoll, "Kontoprotokoll", Scope::Client, sizeof(R),
                           {NUMBER(R, Nr), NUMBER(R, Kontotabelle), KEYTEXT(R, Konto), NUMBER(R, Aktion),
                            NUMBER(R, Jahr), DATE(R, Datum), TEXT(R, Uhrzeit), TEXT(R, Alt), TEXT(R, Neu)},
                           {{0, true, {"Nr"}}, {1, false, {"Kontotabelle", "Konto"}}}, "Nr"));
    tables.back().origin = Origin::Postings;
  }
  return tables;
}

} // namespace vldb98
