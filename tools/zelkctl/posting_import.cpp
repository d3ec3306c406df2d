// buchen: postings from a CSV file into a batch, one by one.
#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "vlba98/datum.h"
#include "vlba98/encoding.h"
#include "vlba98/text.h"
#include "zelk98/zelk98.h"
#include "zelkctl/console.h"
#include "zelkctl/csv.h"
#include "zelkctl/values.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

enum class Form { Number, Text, Date };

struct Column {
  const char *name;
  Form form;
  bool required;
  size_t offset, size;
  ZelkResult code; // that refuses the column's value, 0: none of its own
};

#define COLUMN(name, form, required, member, code)                                                                     \
  { name, form, required, offsetof(ZELK_BUCHUNG, member), sizeof(ZELK_BUCHUNG::member), code }
constexpr Column kColumns[] = {
    COLUMN("Belegdatum", Form::Date, true, Belegdatum, ZELKERR_uzl_Belegdatum),
    COLUMN("Belegnummer", Form::Text, true, Belegnummer, ZELKERR_uzl_Belegnr),
    COLUMN("Text", Form::Text, false, Text, 0),
    COLUMN("Text 2", Form::Text, false, Text2, 0),
    COLUMN("Sollkonto", Form::Text, true, Sollkonto, ZELKERR_uzl_Sollkontonr),
    COLUMN("Sollart", Form::Number, false, Sollart, 0),
    COLUMN("Habenkonto", Form::Text, true, Habenkonto, ZELKERR_uzl_Habenkontonr),
    COLUMN("Habenart", Form::Number, false, Habenart, 0),
    COLUMN("Bruttobetrag", Form::Text, true, Bruttobetrag, ZELKERR_uzl_Bruttobetrag),
    COLUMN("Steuersatz", Form::Text, false, Steuersatz, ZELKERR_uzl_Steuersatz),
    COLUMN("Steuerbetrag", Form::Text, false, Steuerbetrag, ZELKERR_uzl_Steuerbetrag),
    COLUMN("OP-Belegnummer", Form::Text, false, OPBelegnummer, 0),
    COLUMN("Valutadatum", Form::Date, false, Valutadatum, ZELKERR_uzl_Valutadatum),
    COLUMN("Währung", Form::Text, false, Waehrung, ZELKERR_uzl_Waehrung),
    COLUMN("ESR", Form::Text, false, ESR, ZELKERR_uzl_Data),
    COLUMN("DMS-ID", Form::Text, false, DMSID, 0),
    COLUMN("Zahlungsziel", Form::Number, false, Zahlungsziel, ZELKERR_uzl_Zahlungsziel),
    COLUMN("Kostenschablone", Form::Number, false, Kostenschablone, ZELKERR_uzl_Koscha),
    COLUMN("Eröffnungsbuchung", Form::Number, false, Eroeffnungsbuchung, 0),
    COLUMN("Abschlussbuchung", Form::Number, false, Abschlussbuchung, 0),
    COLUMN("USt-Direkt", Form::Number, false, UStDirekt, 0),
    COLUMN("Umbuchung", Form::Number, false, Umbuchung, 0),
};
#undef COLUMN

const Column *findColumn(const std::string &name) {
  auto it = std::find_if(std::begin(kColumns), std::end(kColumns), [&](const Column &c) { return name == c.name; });
  return it == std::end(kColumns) ? nullptr : it;
}

// A text that is too long goes over as it is, without its end, so that the library refuses it.
void putText(char *at, size_t size, const std::string &text) {
  std::memset(at, 0, size);
  std::memcpy(at, text.data(), std::min(size, text.size()));
}

// What is no date goes over as a text that is none either, never as a part of it that happens to be one.
std::string boundaryDate(const std::string &value) {
  std::string_view text = vlba98::trimmed(value);
  if (auto date = vlba98::parseDatum(text)) return vlba98::toExternal6(*date).data();
  return text.empty() ? "" : "?";
}

// How many postings the batch holds; -1 when that cannot be told.
long countPostings(int32_t client, int32_t batch) {
  ZELK_SPLITBUCHUNG posting;
  long count = 0;
  ZelkResult result = ZELK_InitHoleBatch(client, batch, 0);
  while (result == ZELK_OK) {
    result = ZELK_HoleBatch(&posting);
    if (result > 0) ++count;
  }
  return result < 0 ? -1 : count;
}

// Refusals that the other rows would meet as well.
constexpr ZelkResult kConcernAllRows[] = {ZELKERR_Datenbank,   ZELKERR_Ini,           ZELKERR_Thread,
                                          ZELKERR_uzl_Mandnr,  ZELKERR_alter_Mandant, ZELKERR_neuerer_Mandant,
                                          ZELKERR_uzl_Stapelnr};

class Import {
public:
  Import(int32_t client, int32_t batch) : client_(client), batch_(batch) {}

  int run(const std::string &path) {
    CsvFile csv = readCsv(path);
    if (csv.problem.empty()) csv.problem = checkColumns(csv);
    if (!csv.problem.empty()) {
      complain(path + ": " + csv.problem);
      return kFailed;
    }
    Progress progress("Buchen", csv.rows.size());
    long before = countPostings(client_, batch_);
    int stopped = 0;
    for (const CsvRow &row : csv.rows) {
      progress.advance();
      if (insertRow(csv, row)) continue;
      stopped = row.line;
      break;
    }
    int code = report(csv, stopped);
    // The library reports success also for a posting that it skips because its tables stayed locked by others.
    if (long after = countPostings(client_, batch_); after - before < long(inserted_)) {
      complain("Achtung: der Stapel hat nur " + std::to_string(after - before) +
               " Buchungen mehr als zuvor. Die anderen wurden übersprungen, da die Tabellen gesperrt waren.");
      return kFailed;
    }
    return code;
  }

private:
  static std::string checkColumns(const CsvFile &csv) {
    for (const std::string &name : csv.columns)
      if (!findColumn(name)) return "Die Spalte \"" + name + "\" gibt es nicht.";
    for (const Column &column : kColumns)
      if (column.required && csv.column(column.name) < 0)
        return std::string("Die Spalte \"") + column.name + "\" fehlt.";
    return "";
  }

  // \return false when going on makes no sense
  bool insertRow(const CsvFile &csv, const CsvRow &row) {
    if (!row.problem.empty()) return refuse(row, "", "", row.problem, "");
    ZELK_BUCHUNG posting{};
    posting.Mandantennummer = client_;
    posting.Stapelnummer = batch_;
    for (size_t i = 0; i < csv.columns.size(); ++i) {
      const Column &column = *findColumn(csv.columns[i]);
      char *at = reinterpret_cast<char *>(&posting) + column.offset;
      const std::string &value = row.values[i];
      if (column.form == Form::Number) {
        auto number = value.empty() ? 0 : wholeNumber<int32_t>(value);
        if (!number) return refuse(row, "", "", "\"" + value + "\" ist keine ganze Zahl.", column.name);
        std::memcpy(at, &*number, sizeof *number);
      } else {
        putText(at, column.size, *vlba98::toWindows1252(column.form == Form::Date ? boundaryDate(value) : value));
      }
    }
    if (posting.Sollart == 0) posting.Sollart = kindOf(posting.Sollkonto);
    if (posting.Habenart == 0) posting.Habenart = kindOf(posting.Habenkonto);
    ZelkResult result = ZELK_BuchungEinfuegen(&posting, 0);
    if (result == ZELK_OK) {
      ++inserted_;
      return true;
    }
    char name[50] = "", text[250] = "";
    ZELK_HoleFehlertext(result, name, text);
    refuse(row, std::to_string(result), shown(name), meaning(result, posting, text), fieldOf(result, posting));
    return std::find(std::begin(kConcernAllRows), std::end(kConcernAllRows), result) == std::end(kConcernAllRows);
  }

  // Where a code has several meanings, the one that is meant here.
  static std::string meaning(ZelkResult result, const ZELK_BUCHUNG &posting, const char *text) {
    if (result == ZELKERR_Ueberlauf) return "Der Text ist zu lang für sein Feld.";
    if (result == ZELKERR_uzl_Kontonr && std::strcmp(posting.Sollkonto, posting.Habenkonto) == 0)
      return "Soll- und Habenkontonummern sind gleich.";
    std::string all = shown(text);
    return all.substr(0, all.find('\n'));
  }

  static std::string fieldOf(ZelkResult result, const ZELK_BUCHUNG &posting) {
    const char *bytes = reinterpret_cast<const char *>(&posting);
    for (const Column &column : kColumns) {
      bool overflow = column.form != Form::Number && !std::memchr(bytes + column.offset, 0, column.size);
      if (result == ZELKERR_Ueberlauf ? overflow : column.code == result) return column.name;
    }
    if (result == ZELKERR_uzl_Kontonr) return "Sollkonto, Habenkonto";
    return result == ZELKERR_uzl_Stapelnr ? "Stapel" : "";
  }

  // The file may leave the kinds out; an account that is none goes over as a general-ledger account and is refused.
  int32_t kindOf(const char (&account)[8]) const {
    if (!std::memchr(account, 0, sizeof account)) return ZELK_SACHKONTO;
    for (int32_t kind : {ZELK_SACHKONTO, ZELK_KREDITOR, ZELK_DEBITOR})
      if (ZELK_ExistiertKonto(client_, account, kind, 0, nullptr) == ZELK_OK) return kind;
    return ZELK_SACHKONTO;
  }

  bool refuse(const CsvRow &row, std::string code, std::string name, std::string text, std::string field) {
    refused_.add({std::to_string(row.line), std::move(code), std::move(name), std::move(field), std::move(text)});
    return true;
  }

  int report(const CsvFile &csv, int stopped) const {
    if (refused_.rows() > 0) {
      refused_.print();
      std::puts("");
    }
    std::printf("Stapel %d: %zu Zeilen gelesen, %zu gebucht, %zu abgelehnt.\n", int(batch_), csv.rows.size(), inserted_,
                refused_.rows());
    if (stopped > 0) {
      complain("Abgebrochen in Zeile " + std::to_string(stopped) + ": die Zeilen dahinter wurden nicht gebucht.");
      return kFailed;
    }
    return refused_.rows() > 0 ? kRefused : kDone;
  }

  int32_t client_, batch_;
  size_t inserted_ = 0;
  TextTable refused_{{{"Zeile", true}, {"Code", true}, {"Name"}, {"Feld"}, {"Grund"}}};
};

} // namespace

int importPostings(int32_t client, int32_t batch, const std::string &file) {
  return Import(client, batch).run(file);
}

} // namespace zelkctl
