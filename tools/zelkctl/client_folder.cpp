// anlegen: one client from a folder of CSV files, all or nothing.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>
#include <set>

#include "platform/files.h"
#include "store/guards.h"
#include "vlba98/csv.h"
#include "vlba98/date.h"
#include "vlba98/encoding.h"
#include "vlba98/money.h"
#include "vlba98/text.h"
#include "zelkctl/console.h"
#include "zelkctl/folder_rules.h"
#include "zelkctl/provision.h"
#include "zelkctl/structure.h"
#include "zelkctl/values.h"
#include "zelkctl/verbs.h"

using namespace vldb98;

namespace zelkctl {
namespace {

constexpr int kEveryYear = 0;
const char kYearColumn[] = "Jahr";

struct LoadedRow {
  int line;
  int year; // of the tables per fiscal year; kEveryYear: all
  DATENBANK record;
};

struct LoadedTable {
  const Table *table;
  std::string file;
  std::vector<LoadedRow> rows;
};

template <class Integer> bool storeInteger(const std::string &value, char *at) {
  auto number = wholeNumber<Integer>(value);
  if (number) std::memcpy(at, &*number, sizeof *number);
  return number.has_value();
}

// \return German: what the value should have been; empty when it was stored
std::string storeValue(const Field &field, const std::string &value, char *record) {
  char *at = record + field.offset;
  auto text = vlba98::toWindows1252(value);
  size_t width = field.size - 1u;
  if (value.empty() && field.type != FieldType::KeyText) return "";
  switch (field.type) {
  case FieldType::UInt8:
    return value == "0" || value == "1" ? storeInteger<uint8_t>(value, at), "" : "0 oder 1";
  case FieldType::Int16:
    return storeInteger<int16_t>(value, at) ? "" : "eine ganze Zahl";
  case FieldType::UInt16:
    return storeInteger<uint16_t>(value, at) ? "" : "eine Zahl von 1 bis 65535";
  case FieldType::Int32:
    return storeInteger<int32_t>(value, at) ? "" : "eine ganze Zahl";
  case FieldType::Money:
    return vlba98::IsGeld(text->c_str(), int(width), 1, 1, at) ? ""
           : width == 5                                        ? "ein Prozentsatz wie 19,00"
                                                               : "ein Betrag wie 1234,50";
  case FieldType::Date: {
    auto date = vlba98::parseDate(value);
    if (date) std::memcpy(at, vlba98::toReversed(*date).data(), field.size);
    return date ? "" : "ein Datum TT.MM.JJJJ";
  }
  case FieldType::Year: {
    auto year = wholeNumber<int>(value, vlba98::firstYear, vlba98::lastYear);
    if (year) vlba98::itotwo(*year - vlba98::firstYear, at);
    return year ? "" : "ein Jahr von 1980 bis 2079";
  }
  case FieldType::Text:
  case FieldType::KeyText:
    break;
  }
  if (text->size() > width) return "ein Text von höchstens " + std::to_string(width) + " Zeichen";
  std::memcpy(at, text->c_str(), text->size() + 1);
  if (field.type == FieldType::KeyText) vlba98::FillWithSpaces(at, width);
  return "";
}

// Keys as texts, so that references of any type compare.
std::string keyText(const Field &field, const char *record) {
  const char *at = record + field.offset;
  int64_t number = 0;
  if (field.type >= FieldType::Text) return std::string(vlba98::trimmed(at));
  std::memcpy(&number, at, field.size); // little-endian, and no key is below zero
  return number ? std::to_string(number) : "";
}

class Loader {
public:
  explicit Loader(std::string folder) : folder_(std::move(folder)) {}

  int run() {
    readFolder();
    if (problems_ == 0) checkWhole();
    if (problems_ > 0) {
      complain(std::to_string(problems_) + " Fehler. Es wurde nichts angelegt.");
      return kRefused;
    }
    auto store = openBooks();
    return store ? write(*store) : kFailed;
  }

private:
  void problem(const std::string &file, int line, const std::string &text) {
    ++problems_;
    complain(file + (line > 0 ? ", Zeile " + std::to_string(line) : "") + ": " + text);
  }

  void readFolder() {
    if (!platform::isDirectory(folder_)) return problem(folder_, 0, "Der Ordner ist nicht da.");
    std::vector<std::string> names;
    auto path = std::filesystem::path(std::u8string(folder_.begin(), folder_.end()));
    std::error_code unreadable;
    for (const auto &entry : std::filesystem::directory_iterator(path, unreadable)) {
      std::u8string name = entry.path().filename().u8string();
      std::u8string extension = entry.path().extension().u8string();
      if (extension == u8".csv" || extension == u8".CSV") names.emplace_back(name.begin(), name.end());
    }
    if (unreadable) return problem(folder_, 0, "Der Ordner kann nicht gelesen werden.");
    std::sort(names.begin(), names.end());
    for (const std::string &name : names) {
      const Table *table = findTable(name.substr(0, name.size() - 4));
      bool loadable = table && table->origin == Origin::MasterData;
      if (!loadable)
        problem(name, 0, "Zu diesem Namen gibt es keine Tabelle.");
      else
        readTable(name, *table);
    }
  }

  void readTable(const std::string &name, const Table &table) {
    vlba98::CsvFile csv = vlba98::readCsv(platform::withSeparator(folder_) + name);
    if (!csv.problem.empty()) return problem(name, 0, csv.problem);
    std::vector<int> fieldOf;
    int yearColumn = -1;
    for (size_t i = 0; i < csv.columns.size(); ++i) {
      int field = table.fieldIndex(csv.columns[i]);
      fieldOf.push_back(field);
      if (field >= 0 && table.fields[size_t(field)].origin == Origin::MasterData) continue;
      if (table.scope == Scope::FiscalYear && csv.columns[i] == kYearColumn)
        yearColumn = int(i);
      else
        problem(name, 1, "Die Spalte \"" + csv.columns[i] + "\" gibt es nicht.");
    }
    LoadedTable &loaded = tables_[table.number];
    loaded = {&table, name, {}};
    for (const vlba98::CsvRow &row : csv.rows) {
      if (!row.problem.empty()) {
        problem(name, row.line, row.problem);
        continue;
      }
      LoadedRow target{row.line, kEveryYear, {}};
      std::memset(&target.record, 0, sizeof target.record);
      for (const Field &field : table.fields)
        storeDefault(field, target.record.bytes);
      for (size_t i = 0; i < fieldOf.size(); ++i) {
        if (int(i) == yearColumn && !row.values[i].empty()) {
          target.year = wholeNumber<int>(row.values[i]).value_or(-1);
          if (target.year < 0) problem(name, row.line, "Jahr = \"" + row.values[i] + "\": erwartet wird ein Jahr.");
        }
        if (fieldOf[i] < 0) continue;
        const Field &field = table.fields[size_t(fieldOf[i])];
        std::string expected = storeValue(field, row.values[i], target.record.bytes);
        if (!expected.empty())
          problem(name, row.line,
                  std::string(field.name) + " = \"" + row.values[i] + "\": erwartet wird " + expected + ".");
      }
      loaded.rows.push_back(target);
    }
  }

  static void storeDefault(const Field &field, char *record) {
    if (field.type == FieldType::KeyText) storeValue(field, "", record);
  }

  LoadedTable *loaded(int table) {
    auto it = tables_.find(table);
    return it == tables_.end() ? nullptr : &it->second;
  }

  void checkWhole() {
    LoadedTable *master = loaded(kFirmenstamm), *years = loaded(kGeschaeftsjahr), *extension = loaded(kFistaExt);
    if (!master || master->rows.size() != 1)
      return problem("firmenstamm.csv", 0, "Die Datei mit genau einer Zeile fehlt.");
    if (!years || years->rows.empty()) return problem("geschaeftsjahr.csv", 0, "Es fehlt ein Geschäftsjahr.");
    if (extension && extension->rows.size() != 1)
      return problem("firmenstammext.csv", 0, "Es darf nur eine Zeile geben.");
    FIRMENSTAMM &client = master->rows.front().record.Firmenstamm;
    client.Version = kDataVersion;
    client_ = client.Nummer;
    checkRows();
    if (extension) extension->rows.front().record.FistaExt.Nummer = client_;
    for (const LoadedRow &row : years->rows)
      years_.insert(row.record.Geschaeftsjahr.Jahr);
    int current = vlba98::twotoi(client.AktJahr);
    if (current < 0 || !years_.count(vlba98::firstYear + current))
      problem(master->file, 2, "AktJahr ist keines der Geschäftsjahre.");
    if (int first = vlba98::yearOfCode(client.StartJahr); first && !years_.count(first))
      problem(master->file, 2, "StartJahr ist keines der Geschäftsjahre.");
    checkYears();
    checkAccountNumbers();
    checkReferences();
    linkStructures();
  }

  void checkRows() {
    for (const auto &[number, table] : tables_)
      for (const LoadedRow &row : table.rows)
        for (const std::string &broken : brokenRules(number, row.record))
          problem(table.file, row.line, broken);
  }

  void checkYears() {
    for (const auto &[number, table] : tables_)
      for (const LoadedRow &row : table.rows)
        if (row.year != kEveryYear && !years_.count(row.year))
          problem(table.file, row.line, "Jahr " + std::to_string(row.year) + " ist keines der Geschäftsjahre.");
  }

  // A posting names its accounts by number alone, so a number must not stand in two of the tables.
  void checkAccountNumbers() {
    std::map<std::string, std::string> owner;
    for (int number : {int(kSachkonto), int(kKreditor), int(kDebitor)})
      if (LoadedTable *table = loaded(number))
        for (const LoadedRow &row : table->rows) {
          std::string account = row.record.Sachkonto.Nr; // all three begin with the number
          auto [other, fresh] = owner.emplace(account, table->file);
          if (vlba98::trimmed(account).empty())
            problem(table->file, row.line, "Die Kontonummer fehlt.");
          else if (!fresh && other->second != table->file)
            problem(table->file, row.line, "Konto " + account + " steht auch in " + other->second + ".");
        }
  }

  void checkReferences() {
    for (const Reference &reference : references()) {
      LoadedTable *from = loaded(reference.table), *to = loaded(reference.target);
      if (!from) continue;
      const Field &field = from->table->fields[size_t(from->table->fieldIndex(reference.field))];
      std::set<std::string> keys;
      if (to)
        for (const LoadedRow &row : to->rows)
          if (reference.dimension < 0 || row.record.Kost.Dimension == reference.dimension)
            keys.insert(keyText(to->table->fields.front(), row.record.bytes));
      for (const LoadedRow &row : from->rows)
        if (std::string key = keyText(field, row.record.bytes); !key.empty() && !keys.count(key))
          problem(
              from->file, row.line,
              std::string(reference.field) + " " + key + " gibt es nicht in der Tabelle " +
                  findTable(reference.target)->name +
                  (reference.dimension < 0 ? "." : " in der Dimension " + std::to_string(reference.dimension) + "."));
    }
  }

  // A structure is written as a list of lines with their parents; the links to the first child and the next sibling
  // follow from the order of the rows.
  void linkStructures() {
    for (auto &[number, table] : tables_) {
      if (std::find(kStructureTables.begin(), kStructureTables.end(), number) == kStructureTables.end()) continue;
      std::vector<AUFBAU *> lines;
      for (LoadedRow &row : table.rows)
        lines.push_back(&row.record.Aufbau);
      for (const StructureProblem &one : linkStructure(lines))
        problem(table.file, one.line < lines.size() ? table.rows[one.line].line : 0, one.text);
    }
  }

  int write(Store &store) {
    uint8_t found;
    if (!store.SetzeFista(client_, found)) return storeFailed();
    if (found) {
      complain("Mandant " + std::to_string(client_) + " besteht bereits. Es wurde nichts angelegt.");
      return kRefused;
    }
    Transaction writing(store, false);
    TextTable summary({{"Datei"}, {"Zeilen", true}});
    if (!writing.finish(writing.isOpen() && writeTables(store, summary)))
      return problems_ > 0 ? complain("Es wurde nichts angelegt."), kRefused : storeFailed();
    std::printf("Mandant %d angelegt.\n\n", int(client_));
    summary.print();
    return kDone;
  }

  static int storeFailed() {
    complain("Fehler beim Zugriff auf die Datenbank. Es wurde nichts angelegt.");
    return kFailed;
  }

  bool writeTables(Store &store, TextTable &summary) {
    // The master record and the fiscal years first: the others need them open.
    std::vector<int> order{kFirmenstamm, kGeschaeftsjahr};
    size_t total = 0;
    for (const auto &[number, table] : tables_) {
      if (number != kFirmenstamm && number != kGeschaeftsjahr) order.push_back(number);
      total += table.rows.size();
    }
    Progress progress("Anlegen", total);
    uint8_t found;
    for (int number : order) {
      LoadedTable &table = tables_[number];
      for (LoadedRow &row : table.rows) {
        if (!writeRow(store, table, row)) return false;
        progress.advance();
      }
      if (number == kFirmenstamm && !(store.SetzeFista(client_, found) && found)) return false;
      summary.add({table.file, std::to_string(table.rows.size())});
    }
    return true;
  }

  bool writeRow(Store &store, const LoadedTable &table, LoadedRow &row) {
    std::set<int> years = table.table->scope != Scope::FiscalYear ? std::set<int>{kEveryYear}
                          : row.year == kEveryYear                ? years_
                                                                  : std::set<int>{row.year};
    for (int year : years) {
      char code[3];
      if (year != kEveryYear && !(vlba98::itotwo(year - vlba98::firstYear, code) && store.SetzeOpenJahr(code)))
        return false;
      if (!store.Insert(row.record, FileNumber(table.table->number))) {
        if (keyInUse(store, *table.table, row.record).value_or(false))
          problem(table.file, row.line, "Den Schlüssel des Datensatzes gibt es schon.");
        return false;
      }
    }
    return true;
  }

  std::string folder_;
  std::map<int, LoadedTable> tables_;
  std::set<int> years_;
  uint16_t client_ = 0;
  int problems_ = 0;
};

} // namespace

int createClient(const std::string &folder) {
  return Loader(folder).run();
}

} // namespace zelkctl
