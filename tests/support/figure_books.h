/// Books with a ledger: values of accounts, entries and cost postings written below the exports.
#pragma once

#include <cstdio>
#include <random>

#include "support/books.h"
#include "vlba98/date.h"

namespace test {

/// An amount as an independent program would write it: "-1234,50".
inline std::string plain(int64_t hundredths) {
  char text[32];
  int64_t size = hundredths < 0 ? -hundredths : hundredths;
  std::snprintf(text, sizeof text, "%s%lld,%02d", hundredths < 0 ? "-" : "", static_cast<long long>(size / 100),
                int(size % 100));
  return text;
}

/// In the internal form: "000001234-50".
inline std::string internalForm(int64_t hundredths) {
  char text[32];
  int64_t size = hundredths < 0 ? -hundredths : hundredths;
  std::snprintf(text, sizeof text, "%09lld%c%02d", static_cast<long long>(size / 100), hundredths < 0 ? '-' : ',',
                int(size % 100));
  return text;
}

/// A key text of seven characters.
inline std::string padded(std::string text) {
  text.resize(7, ' ');
  return text;
}

class FigureBooks : public Books {
protected:
  FigureBooks() { open(1); }

  /// Makes a client and fiscal year those that the session below the exports works in.
  void open(uint16_t client, int year = 2026) {
    uint8_t found = 0;
    EXPECT_TRUE(other->SetzeFista(client, found) && found);
    EXPECT_TRUE(other->SetzeOpenJahr(std::to_string(year - 1980).c_str()));
  }

  template <class Record> void insert(Record vldb98::DATENBANK::*member, const Record &record, int table) {
    vldb98::DATENBANK buffer{};
    buffer.*member = record;
    ASSERT_TRUE(other->Insert(buffer, vldb98::FileNumber(table)));
  }

  /// Changes an account of the open year.
  void change(int table, const vldb98::SCHLUESSEL &key, const std::function<void(vldb98::DATENBANK &)> &how) {
    vldb98::DATENBANK record{};
    uint8_t found = 0;
    auto file = vldb98::FileNumber(table);
    ASSERT_TRUE(other->UsedGet(record, key, found, file) && found);
    how(record);
    ASSERT_TRUE(other->Update(record, file));
  }
  void change(int table, const std::string &number, const std::function<void(vldb98::DATENBANK &)> &how) {
    vldb98::KeyBuilder key;
    key.account(number);
    if (table == vldb98::kKost) key.number(int16_t{0}).account("");
    change(table, key, how);
  }

  /// Calls without and with messages: each refused alike, the second time with the message, nothing left locked.
  void expectRefused(const std::function<ZelkResult(int32_t flag)> &call, ZelkResult result,
                     const std::string &message) {
    EXPECT_EQ(call(0), result) << message;
    EXPECT_EQ(recorder.takeText(), "");
    EXPECT_EQ(call(1), result) << message;
    EXPECT_EQ(recorder.takeText(), message);
    EXPECT_TRUE(nothingLocked(*other, 1));
    open(1);
  }

  std::unique_ptr<vldb98::Store> other = session();
  std::mt19937 random{7};
};

} // namespace test
