// The client list and the master data of clients.
#include <cstring>

#include "support/books.h"

namespace test {
namespace {

using ClientsOfEmptyBooks = Environment;

TEST_F(ClientsOfEmptyBooks, AreNone) {
  provision();
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten);
  EXPECT_EQ(ZELK_HoleMandant(nullptr, nullptr, nullptr), ZELKERR_keinInit);
}

TEST_F(ClientsOfEmptyBooks, OneIsFirstAndLast) {
  provision();
  load("musterhandel");
  uint32_t number = 0;
  EXPECT_EQ(ZELK_HoleMandant(&number, nullptr, nullptr), ZELKERR_keinInit);
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
  EXPECT_EQ(ZELK_HoleMandant(&number, nullptr, nullptr), ZELK_letzterDatensatz);
  EXPECT_EQ(number, 1u);
  EXPECT_EQ(ZELK_HoleMandant(&number, nullptr, nullptr), ZELKERR_keinInit);
}

using Clients = Books;

TEST_F(Clients, AreWalkedAndRestarted) {
  uint32_t number = 0;
  char name[41], addition[41];
  for (int round = 0; round < 2; ++round) {
    ASSERT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
    EXPECT_EQ(ZELK_HoleMandant(&number, name, addition), ZELK_OK);
    EXPECT_EQ(number, 1u);
    EXPECT_STREQ(name, "Musterhandel KG");
    // Ends other fetches, not this one.
    EXPECT_EQ(ZELK_BeendeHolen(), ZELK_OK);
  }
  EXPECT_EQ(ZELK_HoleMandant(&number, name, addition), ZELK_letzterDatensatz);
  EXPECT_EQ(number, 2u);
}

TEST_F(Clients, DeletedMeanwhileEndsTheFetch) {
  ASSERT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
  auto other = session();
  vldb98::DATENBANK record{};
  uint8_t found;
  ASSERT_TRUE(other->UsedGet(record, vldb98::KeyBuilder().number(uint16_t(1)), found, vldb98::kFirmenstamm, vldb98::ZELK_ENG_DEFAULT));
  ASSERT_TRUE(other->Delete(vldb98::kFirmenstamm, vldb98::ZELK_ENG_DEFAULT));
  EXPECT_EQ(ZELK_HoleMandant(nullptr, nullptr, nullptr), ZELKERR_Datenbank);
}

} // namespace
} // namespace test
