#include "zelkctl/folder_rules.h"

#include <algorithm>
#include <cstring>

#include "vlba98/date.h"
#include "vlba98/money.h"
#include "vlba98/text.h"
#include "vlfn98/costs.h"
#include "vlfn98/currency.h"
#include "vlfn98/tax.h"
#include "vlfn98/terms.h"

using namespace vldb98;

namespace zelkctl {
namespace {

constexpr int kCostCentres = 0, kCostUnits = 1;

constexpr Reference kReferences[] = {
    {kFirmenstamm, "VortragSako", kSachkonto},
    {kFirmenstamm, "VortragKred", kSachkonto},
    {kFirmenstamm, "VortragDebi", kSachkonto},
    {kSachkonto, "Steuerschluessel", kSteusa},
    {kSachkonto, "Kostenschablone", kKoscha},
    {kKreditor, "Sammelkonto", kSachkonto},
    {kDebitor, "Sammelkonto", kSachkonto},
    {kKreditor, "Zahlungsziel", kZahlziel},
    {kDebitor, "Zahlungsziel", kZahlziel},
    {kSteusa, "Steuerkonto", kSachkonto},
    {kSteusa, "Gegenkonto", kSachkonto},
    {kDmsId, "Kostenschablone", kKoscha},
    {kKoschaZeile, "Schablone", kKoscha},
    {kKoschaZeile, "Kostenstelle1", kKost, kCostCentres},
    {kKoschaZeile, "Kostenstelle2", kKost, kCostUnits},
    {kKombination, "Kostenart", kSachkonto},
    {kKombination, "Kostenstelle", kKost},
};

constexpr bool within(int64_t value, int64_t least, int64_t greatest) {
  return value >= least && value <= greatest;
}

bool isDimension(int16_t value) {
  return within(value, 0, vlfn98::kDimensions - 1);
}

bool isCurrency(const char *code) {
  return std::strlen(code) == 3 && std::all_of(code, code + 3, [](char c) { return c >= 'A' && c <= 'Z'; });
}

bool isBlank(const char *text) {
  return vlba98::trimmed(text).empty();
}

constexpr int kAnyStructure = -1;

struct Rule {
  int table;
  const char *broken;
  bool (*kept)(const DATENBANK &);
};

const Rule kRules[] = {
    {kFirmenstamm, "Die Nummer des Mandanten fehlt.", [](const DATENBANK &r) { return r.Firmenstamm.Nummer > 0; }},
    {kFirmenstamm, "Name fehlt.", [](const DATENBANK &r) { return *r.Firmenstamm.Name != 0; }},
    {kFirmenstamm, "Waehrung fehlt.", [](const DATENBANK &r) { return *r.Firmenstamm.Waehrung != 0; }},
    {kFirmenstamm, "Gejabeginn muss von 1 bis 12 gehen.",
     [](const DATENBANK &r) { return within(r.Firmenstamm.Gejabeginn, 1, 12); }},
    {kFirmenstamm, "Kontenrahmen muss von 0 bis 6 gehen.",
     [](const DATENBANK &r) { return within(r.Firmenstamm.Kontenrahmen, 0, 6); }},
    {kFirmenstamm, "Kontolaenge muss von 4 bis 7 gehen.",
     [](const DATENBANK &r) { return r.Firmenstamm.Kontolaenge == 0 || within(r.Firmenstamm.Kontolaenge, 4, 7); }},
    {kFistaExt, "Dimension3 bis Dimension6 müssen von 0 bis 5 gehen.",
     [](const DATENBANK &r) {
       const FISTA_EXT &e = r.FistaExt;
       return isDimension(e.Dimension3) && isDimension(e.Dimension4) && isDimension(e.Dimension5) &&
              isDimension(e.Dimension6);
     }},
    {kGeschaeftsjahr, "Jahr muss von 1980 bis 2079 gehen.",
     [](const DATENBANK &r) { return within(r.Geschaeftsjahr.Jahr, vlba98::firstYear, vlba98::lastYear); }},
    {kGeschaeftsjahr, "Beginn und Ende des Geschäftsjahres fehlen oder sind vertauscht.",
     [](const DATENBANK &r) {
       const GESCHAEFTSJAHR &year = r.Geschaeftsjahr;
       return *year.Beginn && std::strcmp(year.Beginn, year.Ende) <= 0;
     }},
    {kKost, "Dimension muss von 0 bis 5 gehen.", [](const DATENBANK &r) { return isDimension(r.Kost.Dimension); }},
    {kSteusa, "Schluessel muss von 1 bis 511 gehen und darf nicht 32 sein.",
     [](const DATENBANK &r) { return within(r.Steusa.Schluessel, 1, 511) && r.Steusa.Schluessel != 32; }},
    {kSteusa, "GueltigAb fehlt.", [](const DATENBANK &r) { return *r.Steusa.GueltigAb != 0; }},
    {kSteusa, "Art muss von 0 bis 4 gehen.",
     [](const DATENBANK &r) { return within(r.Steusa.Art, vlfn98::kTaxFree, vlfn98::kReverseCharge); }},
    {kSteusa, "Anteil muss von 0 bis 99 gehen.", [](const DATENBANK &r) { return within(r.Steusa.Anteil, 0, 99); }},
    {kKurse, "Waehrung muss aus drei Großbuchstaben bestehen.",
     [](const DATENBANK &r) { return isCurrency(r.Kurse.Waehrung); }},
    {kKurse, "Datum fehlt.", [](const DATENBANK &r) { return *r.Kurse.Datum != 0; }},
    {kKurse, "Kurs muss eine Zahl über null mit höchstens sechs Stellen hinter dem Komma sein.",
     [](const DATENBANK &r) { return vlfn98::parseRate(r.Kurse.Kurs).has_value(); }},
    {kKurse, "Einheiten muss mindestens 1 sein.", [](const DATENBANK &r) { return r.Kurse.Einheiten >= 1; }},
    {kKoscha, "Nr muss mindestens 1 sein.", [](const DATENBANK &r) { return r.Koscha.Nr >= 1; }},
    {kKoschaZeile, "Es ist keine Kostenstelle genannt.",
     [](const DATENBANK &r) { return !isBlank(r.KoschaZeile.Kostenstelle1) || !isBlank(r.KoschaZeile.Kostenstelle2); }},
    {kKoschaZeile, "Kostenkennung muss von 0 bis 2 gehen.",
     [](const DATENBANK &r) { return vlfn98::isCostKind(r.KoschaZeile.Kostenkennung); }},
    {kKoschaZeile, "Anteil muss über null liegen.",
     [](const DATENBANK &r) { return vlba98::parseMoney(r.KoschaZeile.Anteil).value_or(0) > 0; }},
    {kZahlziel, "Kuerzel hat am Anfang oder Ende Leerzeichen.",
     [](const DATENBANK &r) { return vlfn98::storedShortName(r.Zahlziel.Kuerzel) == r.Zahlziel.Kuerzel; }},
    {kAnyStructure, "Flags muss von 0 bis 7 gehen.", [](const DATENBANK &r) { return within(r.Aufbau.Flags, 0, 7); }},
    {kAnyStructure, "Flags2 muss 0 oder 4 sein.",
     [](const DATENBANK &r) { return r.Aufbau.Flags2 == 0 || r.Aufbau.Flags2 == 4; }},
};

} // namespace

std::span<const Reference> references() {
  return kReferences;
}

std::vector<std::string> brokenRules(int table, const DATENBANK &row) {
  std::vector<std::string> broken;
  if (std::find(kStructureTables.begin(), kStructureTables.end(), table) != kStructureTables.end())
    table = kAnyStructure;
  for (const Rule &rule : kRules)
    if (rule.table == table && !rule.kept(row)) broken.push_back(rule.broken);
  return broken;
}

std::optional<bool> keyInUse(Store &store, const Table &table, const DATENBANK &row) {
  for (const Key &key : table.keys) {
    if (!key.unique) continue;
    SCHLUESSEL values;
    char *at = values.bytes;
    for (int index : key.fields) {
      const Field &field = table.fields[size_t(index)];
      std::memcpy(at, row.bytes + field.offset, field.keyWidth());
      at += field.keyWidth();
    }
    uint8_t used = 0;
    if (!store.Used(values, used, fileNumber(table.number, key.index))) return std::nullopt;
    if (used) return true;
  }
  return false;
}

} // namespace zelkctl
