// What a record holds survives the database, and what no record may hold is refused: for every table of the schema.
#include <algorithm>
#include <cstring>

#include "sql/sql.h"
#include "support/engines.h"

namespace test {
namespace {

using namespace vldb98;

// Texts cover the bytes 0x20 to 0xFF over this many records.
constexpr int kVariants = 13;

bool isKey(const Table &table, const Field &field) {
  return std::any_of(table.keys.begin(), table.keys.end(), [&](const Key &key) {
    return std::any_of(key.fields.begin(), key.fields.end(), [&](int f) { return &table.fields[size_t(f)] == &field; });
  });
}

int64_t greatest(FieldType type) {
  switch (type) {
  case FieldType::UInt8:
    return UINT8_MAX;
  case FieldType::Int16:
    return INT16_MAX;
  case FieldType::UInt16:
    return UINT16_MAX;
  default:
    return INT32_MAX;
  }
}

int64_t least(FieldType type) {
  return type == FieldType::Int16 || type == FieldType::Int32 ? -greatest(type) - 1 : 0;
}

void putNumber(const Field &field, char *record, int64_t number) {
  std::memcpy(record + field.offset, &number, field.size);
}

void putText(const Field &field, char *record, std::string text) {
  if (field.type == FieldType::KeyText) text.resize(field.keyWidth(), ' ');
  std::memset(record + field.offset, 0, field.size);
  std::memcpy(record + field.offset, text.data(), std::min<size_t>(text.size(), field.size));
}

/// Values of a field by variant. Variant 0 is empty.
std::string textOf(const Field &field, int variant) {
  static constexpr const char *kMoney[] = {
      "", "999999999,99", "999999999-99", "000000000,00", "000000000-01", "000000001,10"};
  static constexpr const char *kRates[] = {"", "99,99", "99-99", "00,00", "00,01", "19,00"};
  static constexpr const char *kDates[] = {"", "000101", "991231", "480229", "200229", "461121"};
  static constexpr const char *kYears[] = {"", "00", "99", "46", "01", "50"};
  size_t choice = size_t(variant) % std::size(kMoney);
  switch (field.type) {
  case FieldType::Money:
    return field.size == 6 ? kRates[choice] : kMoney[choice];
  case FieldType::Date:
    return kDates[choice];
  case FieldType::Year:
    return kYears[choice];
  default:
    break;
  }
  std::string text;
  if (variant > 0)
    for (int i = 0; i < field.keyWidth(); ++i)
      text += char(0x20 + (i + field.offset + variant * 19) % 0xE0);
  return text;
}

/// Variant 0 is empty but for its key and what Insert would fill, 1 holds the greatest numbers, 2 the least; the
/// primary keys of all differ.
std::string makeRecord(const Table &table, int variant) {
  std::string record(table.recordSize, '\0');
  bool apart = false;
  for (const Field &field : table.fields) {
    if (field.type >= FieldType::Text) {
      const bool filled = table.number == kBatchbuchung && field.name == std::string("Kennung") && variant == 0;
      putText(field, record.data(), filled ? "0" : textOf(field, variant));
      continue;
    }
    int64_t number = variant % 3 == 0 ? 0 : variant % 3 == 1 ? greatest(field.type) : least(field.type);
    int index = table.fieldIndex(field.name);
    if (!apart && table.keys[0].fields.front() == index) {
      apart = true;
      if (variant != 1 && variant != 2) number = 100 + variant;
    } else if (index == table.assigned && number == 0) {
      number = 7;
    }
    putNumber(field, record.data(), number);
  }
  return record;
}

SCHLUESSEL primaryKey(const Table &table, const std::string &record) {
  SCHLUESSEL key;
  char *at = key.bytes;
  for (int index : table.keys[0].fields) {
    const Field &field = table.fields[size_t(index)];
    std::memcpy(at, record.data() + field.offset, field.keyWidth());
    at += field.keyWidth();
  }
  return key;
}

void into(DATENBANK &buffer, const std::string &record) {
  std::memcpy(buffer.bytes, record.data(), record.size());
}

class Records : public StoreTest {
protected:
  FileNumber file(const Table &table) { return FileNumber(table.number); }

  bool insert(const Table &table, const std::string &record) {
    DATENBANK buffer{};
    into(buffer, record);
    return store->Insert(buffer, file(table));
  }

  std::string read(const Table &table, const SCHLUESSEL &key) {
    DATENBANK buffer;
    std::memset(buffer.bytes, 0xAA, sizeof buffer);
    uint8_t found;
    if (!store->UsedGet(buffer, key, found, file(table))) return found ? "failed?" : "failed";
    EXPECT_EQ(std::string(buffer.bytes + table.recordSize, sizeof buffer - table.recordSize),
              std::string(sizeof buffer - table.recordSize, '\xAA'))
        << "wrote beyond the record";
    return found ? std::string(buffer.bytes, table.recordSize) : "none";
  }
};

TEST(Schema, FillsRecordsAndFitsBuffers) {
  for (const Table &table : allTables()) {
    SCOPED_TRACE(table.name);
    EXPECT_LE(table.recordSize, sizeof(DATENBANK));
    size_t end = 0;
    for (const Field &field : table.fields) {
      EXPECT_EQ(field.offset, end) << field.name;
      end += field.size;
    }
    EXPECT_EQ(end, table.recordSize);
    ASSERT_FALSE(table.keys.empty());
    EXPECT_TRUE(table.keys[0].index == 0 && table.keys[0].unique);
    for (const Key &key : table.keys) {
      size_t width = 0;
      for (int field : key.fields)
        width += table.fields[size_t(field)].keyWidth();
      EXPECT_LE(width, kKeySize) << "key " << key.index;
      // A file number has 16 bits.
      EXPECT_EQ(keyIndexOf(fileNumber(table.number, key.index)), key.index);
    }
    EXPECT_EQ(findTable(table.number), &table) << "a number twice";
    EXPECT_EQ(findTable(table.name), &table) << "a name twice";
  }
}

TEST_P(Records, SurviveWritingReadingAndReopening) {
  for (const Table &table : allTables()) {
    SCOPED_TRACE(table.name);
    for (int variant = 0; variant < kVariants; ++variant)
      ASSERT_TRUE(insert(table, makeRecord(table, variant))) << "variant " << variant;
  }
  store = open();
  ASSERT_TRUE(store);
  for (const Table &table : allTables())
    for (int variant = 0; variant < kVariants; ++variant) {
      SCOPED_TRACE(table.name + ", variant " + std::to_string(variant));
      std::string written = makeRecord(table, variant);
      SCHLUESSEL key = primaryKey(table, written);
      EXPECT_EQ(read(table, key), written);
      // Updated to what another variant holds, under its own keys.
      std::string other = makeRecord(table, (variant + 5) % kVariants);
      for (const Field &field : table.fields)
        if (isKey(table, field)) std::memcpy(other.data() + field.offset, written.data() + field.offset, field.size);
      DATENBANK buffer{};
      into(buffer, other);
      EXPECT_TRUE(store->Update(buffer, file(table)));
      EXPECT_EQ(read(table, key), other);
    }
}

TEST_P(Records, NonsenseIsRefused) {
  static constexpr const char *kNoMoney[] = {
      " ", "0", "100", "1,0", "12.00", "abc", "00000000x,00", "000000000,0x", "000000000,0-", ",00", "-00000001,00"};
  static constexpr const char *kNoDate[] = {" ",      "4611",   "460230", "450229", "461301",
                                            "460001", "460100", "46112x", "      "};
  static constexpr const char *kNoYear[] = {" ", "4", "x6", "4x", "-1"};
  int refused = 0;
  for (const Table &table : allTables()) {
    std::string good = makeRecord(table, 4);
    ASSERT_TRUE(insert(table, makeRecord(table, 3)));
    auto session = open();
    ASSERT_TRUE(session);
    std::string before = dump(*session, 1, {table.number});
    for (const Field &field : table.fields) {
      std::vector<std::string> values;
      if (field.type >= FieldType::Text) values.push_back(std::string(field.size, '4')); // without its end
      if (field.type == FieldType::Money) values.insert(values.end(), std::begin(kNoMoney), std::end(kNoMoney));
      if (field.type == FieldType::Date) values.insert(values.end(), std::begin(kNoDate), std::end(kNoDate));
      if (field.type == FieldType::Year) values.insert(values.end(), std::begin(kNoYear), std::end(kNoYear));
      for (const std::string &value : values) {
        if (value.size() > field.size) continue;
        SCOPED_TRACE(table.name + "." + field.name + " = \"" + value + '"');
        DATENBANK bad{};
        into(bad, good);
        std::memset(bad.bytes + field.offset, 0, field.size);
        std::memcpy(bad.bytes + field.offset, value.data(), value.size());
        DATENBANK given = bad;
        EXPECT_FALSE(store->Insert(bad, file(table)));
        EXPECT_FALSE(store->Update(bad, file(table)));
        EXPECT_EQ(std::memcmp(&bad, &given, sizeof bad), 0) << "changed the buffer";
        ++refused;
      }
    }
    EXPECT_EQ(dump(*session, 1, {table.number}), before) << table.name;
    EXPECT_EQ(store->transactionDepth(), 0);
  }
  EXPECT_GE(refused, 300);
}

// The documented columns, as any SQL tool sees them.
TEST_P(Records, ColumnsAreTyped) {
  DATENBANK record{};
  put(record.Personenkonto.Nr, "10001  ");
  put(record.Personenkonto.Sammelkonto, "1400   ");
  put(record.Personenkonto.Name, "M\xFCller \x80 ");
  put(record.Personenkonto.Kreditlimit, "000001234-50");
  ASSERT_TRUE(store->Insert(record, kDebitor));
  record = {};
  put(record.Personenkonto.Nr, "10002  ");
  ASSERT_TRUE(store->Insert(record, kDebitor));
  record = {};
  record.Zahlziel.Nr = 5;
  put(record.Zahlziel.Skontosatz1, "02,50");
  ASSERT_TRUE(store->Insert(record, kZahlziel));
  record = {};
  put(record.Kost.Nr, "K      ");
  put(record.Kost.LaufzeitVon, "200229");
  ASSERT_TRUE(store->Insert(record, kKost));

  struct Row {
    const char *select, *value; // "NULL" for none
    bool number;
  };
  static constexpr Row rows[] = {
      {"\"Mandant\" FROM \"Debitor\" WHERE \"Nr\"='10001'", "1", true},
      {"\"Jahr\" FROM \"Debitor\" WHERE \"Nr\"='10001'", "2026", true},
      {"\"Sammelkonto\" FROM \"Debitor\" WHERE \"Nr\"='10001'", "1400", false},
      {"\"Name\" FROM \"Debitor\" WHERE \"Nr\"='10001'", "M\xC3\xBCller \xE2\x82\xAC ", false},
      {"\"Kreditlimit\" FROM \"Debitor\" WHERE \"Nr\"='10001'", "-123450", true},
      {"\"Kreditlimit\" FROM \"Debitor\" WHERE \"Nr\"='10002'", "NULL", true},
      {"\"Name\" FROM \"Debitor\" WHERE \"Nr\"='10002'", "", false},
      {"\"Skontosatz1\" FROM \"Zahlungsziel\" WHERE \"Nr\"=5", "250", true},
      {"\"Skontosatz2\" FROM \"Zahlungsziel\" WHERE \"Nr\"=5", "NULL", true},
      {"\"LaufzeitVon\" FROM \"Kostenstelle\"", "2000-02-29", false},
      {"\"LaufzeitBis\" FROM \"Kostenstelle\"", "", false},
      {"\"AktJahr\" FROM \"Firmenstamm\" WHERE \"Nummer\"=1", "2026", true},
      {"\"StartJahr\" FROM \"Firmenstamm\" WHERE \"Nummer\"=1", "NULL", true},
      {"COUNT(*) FROM \"Debitor\" WHERE \"Kreditlimit\" BETWEEN -200000 AND -100000", "1", true},
  };
  auto sql = connect();
  ASSERT_TRUE(sql);
  for (const Row &row : rows) {
    auto statement = sql->prepare(std::string("SELECT ") + row.select);
    ASSERT_TRUE(statement && statement->step() == Step::Row) << row.select;
    std::string value = statement->isNull(0) ? "NULL"
                        : row.number         ? std::to_string(statement->integer(0))
                                             : std::string(statement->text(0));
    EXPECT_EQ(value, row.value) << row.select;
  }
}

// What another program wrote into the database and no record can hold fails the read.
TEST_P(Records, RowsThatFitNoRecordAreNotRead) {
  const Table &table = *findTable(kDebitor);
  std::string record = makeRecord(table, 0);
  ASSERT_TRUE(insert(table, record));
  static constexpr const char *rows[] = {
      "\"Kreditlimit\"=100000000000",
      "\"Mahnkennziffer\"=32768",
      "\"Mahnkennziffer\"=-32769",
      "\"Gesperrt\"=256",
      "\"Gesperrt\"=-1",
      "\"Zahlungsziel\"=2147483648",
      "\"Land\"='1234'",
      "\"Sammelkonto\"='12345678'",
      "\"Ort\"='\xD0\x96'",
  };
  auto sql = connect();
  ASSERT_TRUE(sql);
  for (const char *row : rows) {
    // A server's columns are narrower, and refuse some of it themselves.
    if (!sql->execute(std::string("UPDATE \"Debitor\" SET ") + row)) {
      EXPECT_NE(GetParam().kind, ZELK_ENG_BTRIEVE) << row;
      continue;
    }
    EXPECT_EQ(read(table, primaryKey(table, record)), "failed") << row;
    ASSERT_TRUE(sql->execute("UPDATE \"Debitor\" SET \"Kreditlimit\"=NULL,\"Mahnkennziffer\"=0,\"Gesperrt\"=0,"
                             "\"Zahlungsziel\"=0,\"Land\"='',\"Sammelkonto\"='',\"Ort\"=''"));
    EXPECT_EQ(read(table, primaryKey(table, record)), record) << "after " << row;
  }
  ASSERT_TRUE(sql->execute("UPDATE \"Firmenstamm\" SET \"AktJahr\"=2080 WHERE \"Nummer\"=2"));
  EXPECT_EQ(read(*findTable(kFirmenstamm), KeyBuilder().number(uint16_t(2))), "failed");
  ASSERT_TRUE(sql->execute("UPDATE \"Geschaeftsjahr\" SET \"Beginn\"='2026-02-30' WHERE \"Jahr\"=2026"));
  EXPECT_EQ(read(*findTable(kGeschaeftsjahr), KeyBuilder().number(int16_t(2026))), "failed");
}

ZELK_ON_ALL_ENGINES(Records);

} // namespace
} // namespace test
