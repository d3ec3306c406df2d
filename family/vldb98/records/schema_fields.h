// How the tables of schema.cpp and schema_ledger.cpp are written down.
#pragma once

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include "records/schema.h"

namespace vldb98 {

template <class Member> constexpr FieldType numberType() {
  if constexpr (std::is_same_v<Member, uint8_t>)
    return FieldType::UInt8;
  else if constexpr (std::is_same_v<Member, int16_t>)
    return FieldType::Int16;
  else if constexpr (std::is_same_v<Member, uint16_t>)
    return FieldType::UInt16;
  else {
    static_assert(std::is_same_v<Member, int32_t>);
    return FieldType::Int32;
  }
}

#define FIELD(record, member, type)                                                                                    \
  Field {                                                                                                              \
#member, type, offsetof(record, member), sizeof(record::member)                                                    \
  }
#define NUMBER(record, member) FIELD(record, member, numberType<decltype(record::member)>())
#define TEXT(record, member) FIELD(record, member, FieldType::Text)
#define KEYTEXT(record, member) FIELD(record, member, FieldType::KeyText)
#define MONEY(record, member) FIELD(record, member, FieldType::Money)
#define YEAR(record, member) FIELD(record, member, FieldType::Year)
#define DATE(record, member) FIELD(record, member, FieldType::Date)

struct KeyDeclaration {
  int index;
  bool unique;
  std::vector<const char *> fields;
  bool onServersOnly = false;
};

Table table(int number, std::string name, Scope scope, size_t recordSize, std::vector<Field> fields,
            std::vector<KeyDeclaration> keys, const char *assigned = nullptr);

// The money columns of a block of values, named after their place: "SollEroeffnung", "Soll1" and so on.
std::vector<Field> accountValues(const char *prefix, size_t offset);
std::vector<Field> monthlyValues(const char *prefix, size_t offset, Origin origin);
std::vector<Field> budgetValues(const char *prefix, size_t offset);

// The fields of several groups, one after the other.
std::vector<Field> joined(std::initializer_list<std::vector<Field>> groups);

// Posted entries, cost postings, open items and what else the posting of batches leaves behind.
std::vector<Table> ledgerTables();

} // namespace vldb98
