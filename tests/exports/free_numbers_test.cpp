// Proposing free account numbers.
#include <algorithm>
#include <cstring>
#include <sstream>

#include "resources/strings.h"
#include "support/books.h"

namespace test {
namespace {

using namespace vldb98;

/// Client 1 with no accounts but those that a case names.
class FreeNumbers : public Books {
protected:
  std::unique_ptr<Store> other = session();

  /// \param accounts blank-separated, each led by the letter of its table (S, K, D; C a cost centre), "_" for a blank;
  /// after "<" those of the year before
  void give(int16_t length, const std::string &accounts) {
    uint8_t found;
    ASSERT_TRUE(other->SetzeFista(1, found) && found);
    FIRMENSTAMM client = other->HoleFista();
    client.Kontolaenge = length;
    ASSERT_TRUE(other->SaveFista(client));
    for (const char *year : {"45", "46"}) {
      ASSERT_TRUE(other->SetzeOpenJahr(year));
      for (int table : {kSachkonto, kKreditor, kDebitor, kKost})
        ASSERT_TRUE(other->DeleteTable(table));
    }
    std::istringstream words(accounts);
    for (std::string word; words >> word;) {
      if (word == "<") {
        ASSERT_TRUE(other->SetzeOpenJahr("45"));
        continue;
      }
      std::string number = word.substr(1);
      std::replace(number.begin(), number.end(), '_', ' ');
      number.resize(7, ' ');
      int table = word[0] == 'S' ? kSachkonto : word[0] == 'K' ? kKreditor : word[0] == 'D' ? kDebitor : kKost;
      DATENBANK record{};
      std::memcpy(record.Kost.Nr, number.c_str(), 8); // where all of them have it
      if (table == kKost) put(record.Kost.Kostref, std::string(7, ' '));
      ASSERT_TRUE(other->Insert(record, FileNumber(table))) << word;
    }
  }
};

constexpr int32_t S = ZELK_SACHKONTO, K = ZELK_KREDITOR, D = ZELK_DEBITOR;

TEST_F(FreeNumbers, AreProposed) {
  static const struct {
    int16_t length;
    const char *accounts;
    int32_t kind;
    const char *from, *to, *proposal; ///< proposal: null for none
  } rows[] = {
      // The first of an empty table follows from the account length.
      {4, "", S, nullptr, nullptr, "0001"},
      {5, "", S, nullptr, nullptr, "00001"},
      {7, "", S, nullptr, nullptr, "0000001"},
      {9, "", S, nullptr, nullptr, "0000001"},
      {0, "", S, nullptr, nullptr, "0001"},
      {4, "", D, nullptr, nullptr, "10000"},
      {6, "", D, nullptr, nullptr, "1000000"},
      {7, "", D, nullptr, nullptr, "1000000"},
      {0, "", K, nullptr, nullptr, "70000"},
      {7, "", K, nullptr, nullptr, "7000000"},
      {4, "D10000 S1000 C1", K, nullptr, nullptr, "70000"},
      {4, "", D, "", "19999", "10000"},
      {4, "", D, "15000", nullptr, "10000"},
      // After the greatest one, as the texts are ordered.
      {4, "D10000", D, nullptr, nullptr, "10001"},
      {4, "D10000 D10005", D, "", "", "10006"},
      {4, "D9 D10000", D, nullptr, nullptr, "10"},
      {4, "S0001", S, nullptr, nullptr, "2"},
      {4, "S0999", S, nullptr, nullptr, "1000"},
      {4, "D10000", D, "17000", nullptr, "10001"},
      // Numbers of the other kinds are passed over, those of cost centres are free.
      {4, "D10000 K10001 S10002", D, nullptr, nullptr, "10003"},
      {4, "D10000 C10001", D, nullptr, nullptr, "10001"},
      {4, "D10000 C10001 K10001", D, nullptr, nullptr, "10002"},
      // So are those of another fiscal year, which do not count as the greatest ones.
      {4, "D10000 < D10001 D10002 D10009", D, nullptr, nullptr, "10003"},
      {4, "D10000 < K10001 C10002", D, nullptr, nullptr, "10002"},
      {4, "< D10000", D, nullptr, nullptr, "10001"},
      {4, "< D20000", D, "20000", "29999", "20001"},
      {4, "D20003 < D20001", D, "20000", "20003", "20002"},
      {4, "D20003 < D20001 D20002", D, "20000", "20003", nullptr},
      // Letters.
      {4, "DK100", D, nullptr, nullptr, "K101"},
      {4, "DABC", D, nullptr, nullptr, "ABC1"},
      {4, "DABC DABC1", D, nullptr, nullptr, "ABC2"},
      {4, "DK099", D, nullptr, nullptr, "K99"},
      {4, "DK000", D, nullptr, nullptr, "K"},
      {4, "DK000 SK", D, nullptr, nullptr, "K1"},
      {4, "DA1B7", D, nullptr, nullptr, "A1B8"},
      {4, "DABCDEFG", D, nullptr, nullptr, "ABCDEF1"},
      {4, "DABCDEF9", D, nullptr, nullptr, "ABCDE10"},
      {4, "DK999999", D, nullptr, nullptr, "1000000"},
      {4, "DK999999 S1000000", D, nullptr, nullptr, "1000001"},
      {4, "DA_7", D, nullptr, nullptr, "A 8"},
      // No digits left.
      {4, "D9999998", D, nullptr, nullptr, "9999999"},
      {4, "D9999999", D, nullptr, nullptr, nullptr},
      {4, "D9999998 K9999999", D, nullptr, nullptr, nullptr},
      // Between two bounds: from the lower one when nothing is in use there, then after the greatest one.
      {4, "D10000", D, "20000", "29999", "20000"},
      {4, "", D, " 20000 ", "29999", "20000"},
      {4, "D30000", D, "20000", "29999", "20000"},
      {4, "", D, "123456789", "9", "1234567"},
      {4, "D10000 D20000 D30000", D, "20000", "29999", "20001"},
      {4, "D20000 K20001", D, "20000", "20009", "20002"},
      {4, "DK10", D, "K1", "K99", "K11"},
      // The range is used up at its end: the first gap, the bounds excepted.
      {4, "D20000 D20001 D20003 D20005", D, "20000", "20005", "20002"},
      {4, "D20004 D20005", D, "20000", "20005", "20001"},
      {4, "D20005", D, "20004", "20005", nullptr},
      {4, "D20005", D, "20003", "20005", "20004"},
      {4, "D20000 D20001 D20002", D, "20000", "20002", nullptr},
      {4, "D20000 D20001", D, "20000", "20002", "20002"},
      {4, "D20001 K20002", D, "20000", "20002", nullptr},
      {4, "D20000 D20002 K20001", D, "20000", "20002", "20001"}, // a gap of its own table
      {4, "D8999", D, "10000", "9", "10"},                       // swapped as numbers, not as texts
      {4, "DK50", D, "K1", "K50", nullptr},                      // a gap is one of numbers
      {4, "DK99", D, "K1", "K99", "K100"},
      {4, "S0050 S0099", S, "0001", "0099", "2"},
      // An upper bound alone has no gaps.
      {4, "D20005", D, nullptr, "20005", nullptr},
      {4, "D20005", D, "", "20006", "20006"},
      {4, "D30000", D, nullptr, "20000", nullptr},
      {4, "D20000", D, "   ", "20000", nullptr},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(std::string(row.accounts) + ", " + std::to_string(row.kind) + ", " + (row.from ? row.from : "-") +
                 " to " + (row.to ? row.to : "-") + ", length " + std::to_string(row.length));
    give(row.length, row.accounts);
    char proposal[9] = "????????";
    EXPECT_EQ(ZELK_HoleFreieKontonr(1, row.kind, row.from, row.to, proposal),
              row.proposal ? ZELK_OK : ZELKERR_Ueberlauf);
    EXPECT_STREQ(proposal, row.proposal ? row.proposal : "????????");
  }
}

TEST_F(FreeNumbers, AreRefused) {
  static const struct {
    int32_t client, kind;
    bool buffer;
    ZelkResult result;
    std::string_view message;
  } rows[] = {{1, 8, true, ZELKERR_uzl_Kontoart, ""},
              {1, 0, true, ZELKERR_uzl_Kontoart, ""},
              {1, 3, true, ZELKERR_uzl_Kontoart, ""},
              {99, 16, true, ZELKERR_uzl_Kontoart, ""},
              {1, 8, false, ZELKERR_uzl_Kontoart, ""},
              {1, 1, false, ZELKERR_nicht_moeglich, resources::text(338)},
              {99, 1, true, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"}};
  // The flag is that of the thread's last call that takes one, whatever is called in between.
  for (int32_t flag : {1, 0, -1})
    for (const auto &row : rows) {
      ASSERT_EQ(ZELK_InitHoleKonto(1, 1, 0, nullptr, flag), ZELK_OK);
      EXPECT_EQ(ZELK_ExistiertKonto(1, "1000", 1, 0, nullptr), ZELK_OK);
      char proposal[8] = "???????";
      EXPECT_EQ(ZELK_HoleFreieKontonr(row.client, row.kind, nullptr, nullptr, row.buffer ? proposal : nullptr),
                row.result);
      EXPECT_STREQ(proposal, "???????");
      EXPECT_EQ(recorder.takeText(), flag ? row.message : "");
    }
}

TEST_F(FreeNumbers, WaitForWritersAndBlockNone) {
  MFWritePrivateProfileString("ZELK", "Sperrwartezeit", "1", nullptr);
  give(4, "D20000 D20003");
  char proposal[8];
  ASSERT_TRUE(other->Lock(kDebitor, nullptr, 0));
  EXPECT_EQ(ZELK_HoleFreieKontonr(1, D, "20000", "20003", proposal), ZELKERR_Datenbank);
  EXPECT_EQ(ZELK_HoleFreieKontonr(1, K, nullptr, nullptr, proposal), ZELK_OK) << "another table";
  ASSERT_TRUE(other->Unlock(kDebitor, 0));
  EXPECT_EQ(ZELK_HoleFreieKontonr(1, D, "20000", "20003", proposal), ZELK_OK);
  EXPECT_STREQ(proposal, "20001");
  EXPECT_TRUE(nothingLocked(*session(std::chrono::milliseconds(0)), 1));
}

} // namespace
} // namespace test
