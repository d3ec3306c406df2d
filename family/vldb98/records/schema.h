// The one description of the database: which tables there are, their fields, their keys. DDL, statements, binding,
// reading, key building and the loading of client folders all come from it; a new table is one entry in schema.cpp.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "records/records.h"

namespace vldb98 {

// File number: table number + 127 x key index.
using FileNumber = uint16_t;

constexpr FileNumber kTableLimit = 127;
constexpr FileNumber fileNumber(int table, int keyIndex) {
  return FileNumber(table + kTableLimit * keyIndex);
}
constexpr int tableOf(FileNumber file) {
  return file % kTableLimit;
}
constexpr int keyIndexOf(FileNumber file) {
  return file / kTableLimit;
}

// Table numbers. The report structures lie in 33 tables of one layout (kStructureTables).
enum TableNumber : int {
  kSachkonto = 0,
  kBuchungsbeleg = 1,
  kKreditor = 2,
  kDebitor = 3,
  kStapel = 4,
  kKost = 16,
  kKostenbeleg = 17,
  kHistOPDebitor = 24,
  kHistOPKreditor = 25,
  kFirmenstamm = 50,
  kFistaExt = 51,
  kGeschaeftsjahr = 52,
  kBenutzer = 53,
  kSteusa = 60,
  kBatchbuchung = 62,
  kKoscha = 64,
  kOPKreditor = 65,
  kOPDebitor = 66,
  kKoschaZeile = 67,
  kKombination = 68,
  kSplit = 72,
  kZahlziel = 75,
  kKurse = 77,
  kDmsId = 80,
  kKobu = 81,
  kKontoprotokoll = 82,
};

// Table of each class of report structure, by class.
constexpr std::array<uint8_t, 33> kStructureTables = {7,  10, 13, 18, 19, 20, 21, 22, 23, 38, 39,
                                                      40, 41, 42, 43, 32, 33, 34, 35, 36, 37, 44,
                                                      45, 46, 47, 48, 49, 8,  9,  11, 12, 14, 15};

enum class FieldType : uint8_t { UInt8, Int16, UInt16, Int32, Text, KeyText, Money, Date, Year };

enum class Scope : uint8_t {
  Global,    // one set of rows
  Client,    // rows of the open client
  FiscalYear // rows of the open client in the open fiscal year
};

// Who brings a table's rows, or a field's values, into the books.
enum class Origin : uint8_t {
  MasterData, // whoever sets up the client
  Postings,   // the library
  Ledger      // the posting of batches to the ledger
};

struct Field {
  const char *name;
  FieldType type;
  uint16_t offset; // in the record
  uint16_t size;   // bytes in the record, the terminator included
  Origin origin = Origin::MasterData;

  // Bytes in a key buffer: texts stand there without their terminator.
  uint16_t keyWidth() const { return type >= FieldType::Text ? uint16_t(size - 1) : size; }
};

struct Key {
  int index;
  bool unique;
  std::vector<int> fields;     // as declared; what a key buffer holds
  std::vector<int> totalOrder; // the same; unless unique, then the fields of the primary key that are not among them
  bool onServersOnly = false;  // the embedded database has no index for it
};

struct Table {
  int number;
  std::string name; // of the SQL table
  Scope scope;
  uint16_t recordSize;
  std::vector<Field> fields;
  std::vector<Key> keys; // the primary key first
  int assigned = -1;     // field that Insert numbers when it is 0, counting within the key fields before it
  Origin origin = Origin::MasterData;

  const Key *key(int index) const;
  int fieldIndex(std::string_view fieldName) const; // -1: none
};

// All tables in the order of their numbers.
const std::vector<Table> &allTables();

// The table of a number; null when there is none.
const Table *findTable(int number);

// The table of an SQL name, case not regarded; null when there is none.
const Table *findTable(std::string_view name);

} // namespace vldb98
