// The client list and the master data of clients.
#include <cstring>

#include "support/books.h"

namespace test {
namespace {

using ClientsOfEmptyBooks = Environment;

TEST_F(ClientsOfEmptyBooks, AreNoneThenOne) {
  provision();
  uint32_t number = 0;
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELKERR_keine_Mandanten);
  EXPECT_EQ(ZELK_HoleMandant(&number, nullptr, nullptr), ZELKERR_keinInit);
  load("musterhandel");
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
  EXPECT_EQ(ZELK_HoleMandant(&number, nullptr, nullptr), ZELK_letzterDatensatz);
  EXPECT_EQ(number, 1u);
  EXPECT_EQ(ZELK_HoleMandant(&number, nullptr, nullptr), ZELKERR_keinInit);
}

using Clients = Books;

template <class Change> bool changeMaster(vldb98::Store &other, uint16_t client, Change &&change) {
  uint8_t found = 0;
  if (!other.SetzeFista(client, found) || !found) return false;
  vldb98::FIRMENSTAMM changed = other.HoleFista();
  change(changed);
  return other.SaveFista(changed);
}

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

TEST_F(Clients, DeletedMeanwhileEndTheFetch) {
  auto other = session();
  // The one after the cursor, which is the last one then; the one under it.
  ASSERT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
  for (uint16_t client : {2, 1}) {
    ASSERT_TRUE(changeMaster(*other, client, [](vldb98::FIRMENSTAMM &) {}));
    ASSERT_TRUE(other->Delete(vldb98::kFirmenstamm));
    uint32_t number = 0;
    EXPECT_EQ(ZELK_HoleMandant(&number, nullptr, nullptr), client == 2 ? ZELK_letzterDatensatz : ZELKERR_Datenbank);
    EXPECT_EQ(number, client == 2 ? 1u : 0u);
    ASSERT_EQ(ZELK_InitHoleMandant(), client == 2 ? ZELK_OK : ZELKERR_keine_Mandanten);
  }
}

/// The flat variant's values as a record.
ZelkResult directInfo(int32_t client, ZELK_MANDANTENINFO &i) {
  return ZELK_HoleMandantenInfoDirekt(client, &i.AktuellesJahr, &i.Gejabeginn, &i.Kontenrahmen, &i.Istversteuerer,
                                      &i.EUeRechner, &i.Steuerfrei, &i.Euro, i.UStIdNr, i.Land, i.Waehrung, i.Eurokurs,
                                      i.SvSako, i.SvKred, i.SvDebi, i.Name, i.Zusatz, 0);
}

TEST_F(Clients, HaveMasterData) {
  static const struct {
    int32_t client, year, start, chart, cash, euro;
    const char *taxNumber, *country, *currency, *rate, *ledger, *creditors, *name, *addition;
  } rows[] = {{1, 2026, 1, 1, 0, 1, "DE999901003", "D", "EUR", "1,00000", "9999", "99999", "Musterhandel KG",
               "B\xFCro- und Papierbedarf"},
              {2, 2026, 7, 5, 1, 0, "CHE-999.001.007", "CH", "CHF", "0,93500", "9999", "99999", "Alpenwerk Muster AG",
               "Werkzeuge und Bergsportger\xE4te"}};
  for (const auto &row : rows) {
    ZELK_MANDANTENINFO info, direct;
    std::memset(&info, 0x55, sizeof info);
    std::memset(&direct, 0x66, sizeof direct);
    ASSERT_EQ(ZELK_HoleMandantenInfo(row.client, &info, 0), ZELK_OK);
    ASSERT_EQ(directInfo(row.client, direct), ZELK_OK);
    for (const ZELK_MANDANTENINFO *i : {&info, &direct}) {
      EXPECT_EQ(std::tuple(+i->AktuellesJahr, +i->Gejabeginn, +i->Kontenrahmen, +i->Istversteuerer, +i->EUeRechner,
                           +i->Steuerfrei, +i->Euro),
                std::tuple(row.year, row.start, row.chart, row.cash, 0, 0, row.euro));
      const char *texts[][2] = {{i->UStIdNr, row.taxNumber}, {i->Land, row.country},  {i->Waehrung, row.currency},
                                {i->Eurokurs, row.rate},     {i->SvSako, row.ledger}, {i->SvKred, row.creditors},
                                {i->SvDebi, row.creditors},  {i->Name, row.name},     {i->Zusatz, row.addition}};
      for (auto [delivered, expected] : texts)
        EXPECT_STREQ(delivered, expected);
    }
    EXPECT_EQ(ZELK_HoleMandantenVersion(row.client), 98);
    EXPECT_EQ(ZELK_HoleStartJahr(row.client), 2025);
  }
}

TEST_F(Clients, AreRefusedWithTheirCode) {
  auto other = session();
  ASSERT_TRUE(changeMaster(*other, 1, [](vldb98::FIRMENSTAMM &client) { client.Version = 97; }));
  ASSERT_TRUE(changeMaster(*other, 2, [](vldb98::FIRMENSTAMM &client) { client.Version = 99; }));
  static const struct {
    int32_t client;
    ZelkResult info, version;
  } rows[] = {{1, ZELKERR_alter_Mandant, 97},
              {2, ZELKERR_neuerer_Mandant, 99},
              {0, ZELKERR_uzl_Mandnr, ZELKERR_uzl_Mandnr},
              {3, ZELKERR_uzl_Mandnr, ZELKERR_uzl_Mandnr},
              {-65535, ZELKERR_uzl_Mandnr, ZELKERR_uzl_Mandnr},
              // Numbers are stored in 16 bits; none of these may come out as client 1.
              {65537, ZELKERR_uzl_Mandnr, ZELKERR_uzl_Mandnr},
              {INT32_MIN, ZELKERR_uzl_Mandnr, ZELKERR_uzl_Mandnr}};
  for (const auto &row : rows) {
    ZELK_MANDANTENINFO info, untouched;
    std::memset(&info, 0x55, sizeof info);
    untouched = info;
    EXPECT_EQ(ZELK_HoleMandantenInfo(row.client, &info, 0), row.info) << row.client;
    EXPECT_EQ(directInfo(row.client, info), row.info) << row.client;
    EXPECT_EQ(std::memcmp(&info, &untouched, sizeof info), 0) << row.client;
    EXPECT_EQ(ZELK_HoleMandantenInfo(row.client, nullptr, 0), ZELKERR_nicht_moeglich);
    EXPECT_EQ(ZELK_HoleMandantenVersion(row.client), row.version) << row.client;
    EXPECT_EQ(ZELK_HoleStartJahr(row.client), row.info) << row.client;
    EXPECT_EQ(ZELK_ExistiertKonto(row.client, "1000", ZELK_SACHKONTO, 0, nullptr), row.info) << row.client;
    EXPECT_EQ(ZELK_InitHoleKonto(row.client, ZELK_SACHKONTO, 0, nullptr, 1), row.info) << row.client;
    EXPECT_EQ(ZELK_InitHoleStapel(row.client, 1), row.info) << row.client;
    EXPECT_EQ(ZELK_InitHoleBatch(row.client, 1, 1), row.info) << row.client;
    const std::string message = "Der Mandant existiert nicht!";
    EXPECT_EQ(recorder.takeText(), message + " | " + message + " | " + message);
  }
  // They are listed all the same.
  EXPECT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
  EXPECT_EQ(ZELK_HoleMandant(nullptr, nullptr, nullptr), ZELK_OK);
}

TEST_F(Clients, KeepTheChartOfAccountsWithinItsRange) {
  auto other = session();
  static const struct {
    int16_t stored;
    int32_t inRecord, direct;
  } rows[] = {{0, 0, 0}, {6, 6, 6}, {7, 4711, 0}, {-1, 4711, 0}, {INT16_MAX, 4711, 0}};
  for (const auto &row : rows) {
    ASSERT_TRUE(changeMaster(*other, 1, [&](vldb98::FIRMENSTAMM &client) { client.Kontenrahmen = row.stored; }));
    ZELK_MANDANTENINFO info{}, direct{};
    info.Kontenrahmen = direct.Kontenrahmen = 4711;
    ASSERT_EQ(ZELK_HoleMandantenInfo(1, &info, 0), ZELK_OK);
    EXPECT_EQ(+info.Kontenrahmen, row.inRecord) << row.stored;
    ASSERT_EQ(directInfo(1, direct), ZELK_OK);
    EXPECT_EQ(+direct.Kontenrahmen, row.direct) << row.stored;
    EXPECT_EQ(directInfo(1, direct),
              ZELK_HoleMandantenInfoDirekt(1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                           nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, 0));
  }
}

TEST_F(Clients, DeliverWhatIsStoredNow) {
  auto other = session();
  ZELK_MANDANTENINFO info{};
  ASSERT_EQ(ZELK_HoleMandantenInfo(1, &info, 0), ZELK_OK);
  ASSERT_TRUE(changeMaster(*other, 1, [](vldb98::FIRMENSTAMM &client) {
    std::strcpy(client.SvSako, " 9 9  9");
    std::strcpy(client.AktJahr, "45");
    client.StartJahr[0] = 0;
  }));
  ASSERT_EQ(ZELK_HoleMandantenInfo(1, &info, 0), ZELK_OK);
  EXPECT_STREQ(info.SvSako, "999");
  EXPECT_EQ(+info.AktuellesJahr, 2025);
  EXPECT_EQ(ZELK_HoleStartJahr(1), 2025) << "without a first year the current one";
}

} // namespace
} // namespace test
