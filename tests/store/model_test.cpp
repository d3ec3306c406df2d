// The store against a trivially correct model: a sorted vector of records.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>

#include "support/engines.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

using namespace vldb98;

/// One field of a key as the contract orders it: numbers by value, texts by code point.
struct Component {
  int64_t number = 0;
  std::u32string text;
  auto operator<=>(const Component &) const = default;
};
using Order = std::vector<Component>;

Component textComponent(const char *bytes, size_t width, bool padded) {
  std::string text(bytes, ::strnlen(bytes, width));
  while (padded && !text.empty() && text.back() == ' ')
    text.pop_back();
  Component component;
  for (char c : text) {
    // A single byte of Windows-1252 as UTF-8 has at most three bytes.
    std::string utf8 = vlba98::toUtf8({&c, 1});
    char32_t point = uint8_t(utf8[0]);
    if (utf8.size() == 2) point = char32_t((utf8[0] & 0x1F) << 6 | (utf8[1] & 0x3F));
    if (utf8.size() == 3) point = char32_t((utf8[0] & 0x0F) << 12 | (utf8[1] & 0x3F) << 6 | (utf8[2] & 0x3F));
    component.text += point;
  }
  return component;
}

Component componentOf(const Field &field, const char *bytes) {
  int16_t number;
  if (field.type == FieldType::Int16) {
    std::memcpy(&number, bytes, sizeof number);
    return {number, {}};
  }
  return textComponent(bytes, field.keyWidth(), field.type == FieldType::KeyText);
}

/// A table as it should behave. Records are compared as bytes.
class Model {
public:
  explicit Model(const Table &table) : table_(table) {}

  Order order(const Key &key, const std::string &record, bool total) const {
    Order components;
    for (int field : total ? key.totalOrder : key.fields)
      components.push_back(
          componentOf(table_.fields[size_t(field)], record.data() + table_.fields[size_t(field)].offset));
    return components;
  }

  Order order(const Key &key, const SCHLUESSEL &values) const {
    Order components;
    const char *at = values.bytes;
    for (int index : key.fields) {
      components.push_back(componentOf(table_.fields[size_t(index)], at));
      at += table_.fields[size_t(index)].keyWidth();
    }
    return components;
  }

  std::vector<std::string> sorted(const Key &key) const {
    std::vector<std::string> all = records;
    std::sort(all.begin(), all.end(),
              [&](const std::string &a, const std::string &b) { return order(key, a, true) < order(key, b, true); });
    return all;
  }

  /// The first (last when descending) record in key order that the condition admits.
  template <class Condition> std::optional<std::string> pick(const Key &key, bool descending, Condition admits) const {
    std::optional<std::string> best;
    for (const std::string &record : records) {
      if (!admits(record)) continue;
      if (!best || (order(key, record, true) < order(key, *best, true)) != descending) best = record;
    }
    return best;
  }

  std::string *withPrimary(const std::string &like) {
    for (std::string &record : records)
      if (order(table_.keys[0], record, false) == order(table_.keys[0], like, false)) return &record;
    return nullptr;
  }

  std::vector<std::string> records;
  std::optional<std::string> current;
  const Key *rangeKey = nullptr; ///< key of the running range
  bool rangeEmpty = false;
  Order rangeUpper;

private:
  const Table &table_;
};

class ModelTest : public StoreTest {
protected:
  void SetUp() override {
    StoreTest::SetUp();
    const char *given = std::getenv("ZELK_TEST_SEED");
    seed_ = given ? uint32_t(std::strtoul(given, nullptr, 10)) : std::random_device{}();
    random_.seed(seed_);
    RecordProperty("ZELK_TEST_SEED", std::to_string(seed_));
  }

  int below(int limit) { return int(random_() % uint32_t(limit)); }

  /// Few values, so that keys meet: blanks inside, umlauts, characters whose code points are far from their bytes.
  std::string shortText(size_t width) {
    static const std::string alphabet = "AB\xC4\xE4\xDF\x80\x9C\xFF 1";
    std::string text;
    for (size_t length = size_t(below(4)); text.size() < std::min(length, width);)
      text += alphabet[size_t(below(int(alphabet.size())))];
    return text;
  }

  /// A random record; the fields outside the keys carry a stamp, so that a stale one is noticed.
  std::string randomRecord(const Table &table) {
    std::string record(table.recordSize, '\0');
    for (const Field &field : table.fields) {
      char *at = record.data() + field.offset;
      bool inKey = std::any_of(table.keys.begin(), table.keys.end(), [&](const Key &key) {
        return std::any_of(key.fields.begin(), key.fields.end(),
                           [&](int f) { return &table.fields[size_t(f)] == &field; });
      });
      std::string text;
      if (field.type == FieldType::KeyText) {
        if (inKey) text = shortText(field.keyWidth());
        text.resize(field.keyWidth(), ' ');
      } else if (field.type == FieldType::Text) {
        text = inKey ? shortText(field.keyWidth()) : std::to_string(++stamp_ % 1000);
      } else if (field.type == FieldType::Int16) {
        int16_t number = int16_t(below(3) - 1);
        std::memcpy(at, &number, sizeof number);
      }
      std::memcpy(at, text.data(), text.size());
    }
    return record;
  }

  SCHLUESSEL keyOf(const Table &table, const Key &key, const std::string &record) {
    SCHLUESSEL values;
    char *at = values.bytes;
    for (int index : key.fields) {
      const Field &field = table.fields[size_t(index)];
      std::memcpy(at, record.data() + field.offset, field.keyWidth());
      at += field.keyWidth();
    }
    return values;
  }

  void compareAll(const Table &table, const Model &model) {
    for (const Key &key : table.keys) {
      auto expected = model.sorted(key);
      FileNumber file = fileNumber(table.number, key.index);
      for (bool forward : {true, false}) {
        DATENBANK record{};
        uint8_t found;
        int done = forward ? store->GetFirstExt(record, found, file) : store->GetLastExt(record, found, file);
        size_t count = 0;
        for (; done && found && count < expected.size(); ++count) {
          const std::string &wanted = expected[forward ? count : expected.size() - 1 - count];
          ASSERT_EQ(std::string(record.bytes, table.recordSize), wanted) << "key " << key.index << " record " << count;
          done = forward ? store->GetNextExt(record, found, file) : store->GetPrevExt(record, found, file);
        }
        ASSERT_TRUE(done && !found && count == expected.size())
            << "key " << key.index << ": " << count << " of " << expected.size();
      }
    }
  }

  /// A walk from somewhere, with something done in between now and then: servers read ahead of it.
  void walk(const Table &table, Model &model) {
    const Key &key = table.keys[size_t(below(int(table.keys.size())))];
    const FileNumber file = fileNumber(table.number, key.index);
    const bool forward = below(3) > 0;
    DATENBANK record{};
    uint8_t found = 0;
    ASSERT_TRUE(forward ? store->GetFirstExt(record, found, file) : store->GetLastExt(record, found, file));
    model.rangeKey = nullptr;
    if (found) model.current = std::string(record.bytes, table.recordSize);
    for (int i = 0; i < 40 && found; ++i) {
      const DATENBANK at = record;
      if (below(4) == 0) {
        step(table, model);
        if (HasFatalFailure()) return;
        // Fetches put back what they delivered last; it may be gone by now.
        if (below(4) > 0) {
          store->setCurrent(at, file);
          model.current = std::string(at.bytes, table.recordSize);
          model.rangeKey = nullptr;
        }
      }
      if (!model.current) return;
      const Order last = model.order(key, *model.current, true);
      const bool bounded = forward && model.rangeKey == &key;
      ASSERT_TRUE(forward ? store->GetNextExt(record, found, file) : store->GetPrevExt(record, found, file));
      auto expected = model.pick(key, !forward, [&](const std::string &r) {
        const Order its = model.order(key, r, true);
        return forward
                   ? its > last && (!bounded || (!model.rangeEmpty && model.order(key, r, false) <= model.rangeUpper))
                   : its < last;
      });
      ASSERT_EQ(found != 0, expected.has_value()) << "key " << key.index << ", row " << i;
      if (!expected) return;
      ASSERT_EQ(std::string(record.bytes, table.recordSize), *expected) << "key " << key.index << ", row " << i;
      model.current = expected;
    }
  }

  void step(const Table &table, Model &model) {
    const Key &key = table.keys[size_t(below(int(table.keys.size())))];
    FileNumber file = fileNumber(table.number, key.index);
    std::string record = randomRecord(table);
    // Half of the keys asked for are there.
    if (!model.records.empty() && below(2)) record = model.records[size_t(below(int(model.records.size())))];
    SCHLUESSEL values = keyOf(table, key, record);
    Order wanted = model.order(key, values);
    auto keyOfRecord = [&](const std::string &r) { return model.order(key, r, false); };
    auto total = [&](const std::string &r) { return model.order(key, r, true); };

    DATENBANK buffer;
    std::memset(buffer.bytes, 0x55, sizeof buffer);
    DATENBANK untouched = buffer;
    uint8_t found = 9;
    int done = 0;
    std::optional<std::string> expected;
    bool ends = true; // a stepping read does not end a range
    std::string what;
    switch (below(15)) {
    case 0:
    case 1:
    case 2: {
      what = "Insert";
      std::string fresh = randomRecord(table);
      std::memcpy(buffer.bytes, fresh.data(), fresh.size());
      bool free = !model.withPrimary(fresh);
      ASSERT_EQ(store->Insert(buffer, file) != 0, free) << what;
      if (!free) return;
      model.records.push_back(fresh);
      model.current = fresh;
      return;
    }
    case 3: {
      what = "Update";
      std::string fresh = randomRecord(table);
      std::memcpy(buffer.bytes, fresh.data(), fresh.size());
      std::string *old = model.current ? model.withPrimary(*model.current) : nullptr;
      std::string *taken = model.withPrimary(fresh);
      bool possible = old && (!taken || taken == old);
      ASSERT_EQ(store->Update(buffer, file) != 0, possible) << what;
      if (possible) model.current = *old = fresh;
      return;
    }
    case 4: {
      what = "Delete";
      std::string *old = model.current ? model.withPrimary(*model.current) : nullptr;
      ASSERT_EQ(store->Delete(file) != 0, old != nullptr) << what;
      if (old) model.records.erase(model.records.begin() + (old - model.records.data()));
      return;
    }
    case 5: {
      what = "Used";
      done = store->Used(values, found, file);
      bool there = model.pick(key, false, [&](const std::string &r) { return keyOfRecord(r) == wanted; }).has_value();
      ASSERT_TRUE(done && (found != 0) == there) << what << " key " << key.index;
      return;
    }
    case 6:
      what = "UsedGet";
      done = store->UsedGet(buffer, values, found, file);
      expected = model.pick(key, false, [&](const std::string &r) { return keyOfRecord(r) == wanted; });
      break;
    case 7:
      what = "GetGeExt";
      done = store->GetGeExt(buffer, values, found, file);
      expected = model.pick(key, false, [&](const std::string &r) { return keyOfRecord(r) >= wanted; });
      break;
    case 8:
      what = "GetLeExt";
      done = store->GetLeExt(buffer, values, found, file);
      expected = model.pick(key, true, [&](const std::string &r) { return keyOfRecord(r) <= wanted; });
      break;
    case 9: {
      what = "GetRangeExt";
      SCHLUESSEL upper = keyOf(table, key, randomRecord(table));
      Order end = model.order(key, upper);
      done = store->GetRangeExt(buffer, values, upper, found, file);
      expected = model.pick(key, false,
                            [&](const std::string &r) { return keyOfRecord(r) >= wanted && keyOfRecord(r) <= end; });
      model.rangeKey = &key;
      model.rangeEmpty = !expected;
      model.rangeUpper = end;
      ends = false;
      break;
    }
    case 10:
    case 11: {
      what = "GetNextExt";
      done = store->GetNextExt(buffer, found, file);
      bool bounded = model.rangeKey == &key;
      if (model.current)
        expected = model.pick(key, false, [&](const std::string &r) {
          return total(r) > total(*model.current) &&
                 (!bounded || (!model.rangeEmpty && keyOfRecord(r) <= model.rangeUpper));
        });
      ends = false;
      break;
    }
    case 12:
      what = "GetPrevExt";
      done = store->GetPrevExt(buffer, found, file);
      if (model.current)
        expected = model.pick(key, true, [&](const std::string &r) { return total(r) < total(*model.current); });
      ends = false;
      break;
    case 13:
      what = "GetFirstExt";
      done = store->GetFirstExt(buffer, found, file);
      expected = model.pick(key, false, [](const std::string &) { return true; });
      break;
    default:
      what = "GetLastExt";
      done = store->GetLastExt(buffer, found, file);
      expected = model.pick(key, true, [](const std::string &) { return true; });
      break;
    }
    if (ends) model.rangeKey = nullptr;
    ASSERT_TRUE(done) << what << " key " << key.index;
    ASSERT_EQ(found != 0, expected.has_value()) << what << " key " << key.index;
    if (expected)
      ASSERT_EQ(std::string(buffer.bytes, table.recordSize), *expected) << what << " key " << key.index;
    else
      ASSERT_EQ(std::memcmp(&buffer, &untouched, sizeof buffer), 0) << what << " wrote into the buffer";
    if (expected) model.current = expected;
  }

  void run(int number, int steps) {
    SCOPED_TRACE("repeat with ZELK_TEST_SEED=" + std::to_string(seed_));
    const Table &table = *findTable(number);
    Model model(table);
    for (int i = 1; i <= steps; ++i) {
      below(100) ? step(table, model) : walk(table, model);
      if (HasFatalFailure()) FAIL() << "in step " << i;
      if (i % (steps / 4) != 0) continue;
      compareAll(table, model);
      if (HasFatalFailure()) FAIL() << "all records after step " << i;
      store = open();
      ASSERT_TRUE(store);
      compareAll(table, model);
      if (HasFatalFailure()) FAIL() << "all records after step " << i << " and reopening";
      model.current = model.records.empty() ? std::nullopt : std::optional(model.sorted(table.keys.back()).front());
      model.rangeKey = nullptr;
    }
  }

private:
  std::mt19937 random_;
  uint32_t seed_ = 0;
  int stamp_ = 0;
};

TEST_P(ModelTest, DebtorAccounts) {
  run(kDebitor, 4000);
}
TEST_P(ModelTest, CostCentres) {
  run(kKost, 4000);
}

ZELK_ON_ALL_ENGINES(ModelTest);

} // namespace
} // namespace test
