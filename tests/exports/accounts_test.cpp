// Looking accounts up and walking them, and the list of batches.
#include <algorithm>
#include <cstring>
#include <thread>

#include "support/books.h"
#include "vlba98/csv.h"
#include "vlba98/encoding.h"
#include "vlfn98/accounts.h"

namespace test {
namespace {

using namespace vldb98;

using Accounts = Books;

TEST(AccountKinds, AreMapped) {
  static const struct {
    int32_t kind;
    int table;
    int16_t stored;
    int32_t back;
  } rows[] = {{1, 0, 2, 1}, {2, 2, 4, 2}, {4, 3, 8, 4},  {8, 16, 4, 2},
              {0, 0, 4, 2}, {3, 0, 4, 2}, {16, 0, 4, 2}, {-1, 0, 4, 2}};
  for (const auto &row : rows) {
    EXPECT_EQ(vlfn98::KzFromZELKArt(row.kind), row.table) << row.kind;
    EXPECT_EQ(vlfn98::ZELKKontoArtToKontoArt(row.kind), row.stored) << row.kind;
    EXPECT_EQ(vlfn98::KontoArtToZELKKontoArt(row.stored), row.back) << row.kind;
  }
  EXPECT_EQ(vlfn98::KontoArtToZELKKontoArt(16), 2);
}

TEST_F(Accounts, Exist) {
  auto other = session();
  uint8_t found;
  ASSERT_TRUE(other->SetzeFista(1, found) && found);
  DATENBANK record{};
  put(record.Kost.Nr, "700    ");
  record.Kost.Dimension = 2;
  put(record.Kost.Kostref, "R1     ");
  ASSERT_TRUE(other->Insert(record, kKost));
  static const struct {
    int32_t client;
    const char *number;
    int32_t kind, dimension;
    const char *reference;
    ZelkResult result;
  } rows[] = {{1, "1000", 1, 0, nullptr, 1},
              {1, "1000   ", 1, 0, nullptr, 1},
              {1, "1000   9", 1, 0, nullptr, 1}, // cut to seven characters
              {1, "27", 1, 0, nullptr, 0},       // it is 0027
              {1, "100", 1, 0, nullptr, 0},
              {1, "", 1, 0, nullptr, 0},
              {1, nullptr, 1, 0, nullptr, 0},
              {1, "70010", 2, 0, nullptr, 1},
              {1, "70010", 4, 0, nullptr, 0},
              {1, "10010", 4, 0, nullptr, 1},
              {1, "1590", 1, 0, nullptr, 1}, // locked, and there
              {1, "4964", 1, 0, nullptr, 1},
              {2, "4964", 1, 0, nullptr, 0},
              {2, "1020", 1, 0, nullptr, 1},
              {1, "100", 8, 0, nullptr, 1},
              {1, "100", 8, 0, "", 1},
              {1, "100", 8, 0, "R1", 0},
              {1, "100", 8, 1, nullptr, 0},
              {1, "100", 8, 65536, nullptr, 0},
              {1, "100", 8, -65536, nullptr, 0},
              {1, "5001", 8, 1, nullptr, 1},
              {1, "5001", 8, 0, nullptr, 0},
              {1, "700", 8, 2, "R1", 1},
              {1, "700", 8, 2, "R2", 0},
              {1, "700", 8, 2, nullptr, 1}, // with whatever reference
              {1, "1000", 0, 0, nullptr, ZELKERR_uzl_Kontoart},
              {1, "1000", 3, 0, nullptr, ZELKERR_uzl_Kontoart},
              {99, "1000", 16, 0, nullptr, ZELKERR_uzl_Kontoart}, // the kind is looked at first
              {99, "1000", 1, 0, nullptr, ZELKERR_uzl_Mandnr}};
  for (const auto &row : rows)
    EXPECT_EQ(ZELK_ExistiertKonto(row.client, row.number, row.kind, row.dimension, row.reference), row.result)
        << row.client << ' ' << (row.number ? row.number : "(null)") << ' ' << row.kind << ' ' << row.dimension;
  EXPECT_EQ(recorder.takeText(), "");
}

TEST_F(Accounts, HaveShortNames) {
  static const struct {
    int32_t client;
    const char *shortName;
    int32_t kind;
    ZelkResult result;
  } rows[] = {{1, "KASSE", 1, 1},
              {1, "KASSELAD", 1, 0},
              {1, "kasse", 1, 0},
              {1, "KASS", 1, 0},
              {1, "KASSE", 2, 0},
              {1, "MOHNFELD", 2, 1},
              {1, "MOHNFELDER", 2, 1}, // cut to eight characters
              {1, "MUSTERM", 4, 1},
              {1, "UMBAU", 8, 1},
              {2, "UMBAU", 8, 0},
              {1, "", 1, 0},
              {1, nullptr, 4, 0},
              {1, "KASSE", 3, ZELKERR_uzl_Kontoart},
              {99, "KASSE", 0, ZELKERR_uzl_Kontoart},
              {99, "KASSE", 1, ZELKERR_uzl_Mandnr}};
  ASSERT_EQ(ZELK_InitHoleStapel(1, 1), ZELK_OK);
  for (const auto &row : rows)
    EXPECT_EQ(ZELK_ExistiertKuerzel(row.client, row.shortName, row.kind), row.result)
        << row.client << ' ' << (row.shortName ? row.shortName : "(null)") << ' ' << row.kind;
  EXPECT_EQ(recorder.takeText(), "");
}

/// What the walk over a kind delivers, as "number;short name;name" in UTF-8.
struct Walked {
  ZelkResult init;
  std::vector<std::string> lines;
};

template <class Record, class Next> void collect(Next next, std::vector<std::string> &lines) {
  for (ZelkResult result = ZELK_OK; result == ZELK_OK;) {
    Record account;
    std::memset(&account, '?', sizeof account);
    result = next(&account);
    ASSERT_GT(result, 0);
    lines.push_back(vlba98::toUtf8(std::string(account.Kontonummer) + ';' + account.Kuerzel + ';' + account.Name));
  }
}

Walked walk(int32_t client, int32_t kind, int32_t order, const char *from) {
  Walked walked{ZELK_InitHoleKonto(client, kind, order, from, 0), {}};
  if (walked.init != ZELK_OK) return walked;
  if (kind == ZELK_SACHKONTO)
    collect<ZELK_SAKO>(ZELK_HoleSako, walked.lines);
  else if (kind == ZELK_KOSTENSTELLE)
    collect<ZELK_KOST>(ZELK_HoleKost, walked.lines);
  else
    collect<ZELK_PEKO>(ZELK_HolePeko, walked.lines);
  return walked;
}

/// The same from the file that the client was loaded from, in the wanted order.
std::vector<std::string> fromFile(const std::string &client, const std::string &table, int32_t order) {
  vlba98::CsvFile file = vlba98::readCsv((sourceFolder() / "samples" / client / (table + ".csv")).string());
  EXPECT_EQ(file.problem, "");
  int columns[] = {file.column("Nr"), file.column("Kuerzel"), file.column("Name")}, year = file.column("Jahr");
  std::vector<std::vector<std::string>> rows;
  for (const vlba98::CsvRow &row : file.rows) {
    if (year >= 0 && row.values[size_t(year)] == "2025") continue;
    std::vector<std::string> values;
    for (int column : columns)
      values.push_back(row.values[size_t(column)]);
    rows.push_back(values);
  }
  std::sort(rows.begin(), rows.end(), [&](const auto &a, const auto &b) {
    return std::tie(a[size_t(order)], a[0]) < std::tie(b[size_t(order)], b[0]);
  });
  std::vector<std::string> lines;
  for (const auto &row : rows)
    lines.push_back(row[0] + ';' + row[1] + ';' + row[2]);
  return lines;
}

TEST_F(Accounts, AreWalkedInEveryOrder) {
  static const std::pair<int32_t, const char *> clients[] = {{1, "musterhandel"}, {2, "alpenwerk"}},
                                                kinds[] = {{1, "sachkonto"},
                                                           {2, "kreditor"},
                                                           {4, "debitor"},
                                                           {8, "kostenstelle"}};
  for (auto [client, folder] : clients)
    for (auto [kind, table] : kinds)
      for (int32_t order : {0, 1, 2}) {
        SCOPED_TRACE(std::string(folder) + ' ' + table + ' ' + std::to_string(order));
        std::vector<std::string> expected = fromFile(folder, table, order);
        ASSERT_GT(expected.size(), 3u);
        Walked walked = walk(client, kind, order, order == 1 ? "" : nullptr);
        EXPECT_EQ(walked.init, ZELK_OK);
        EXPECT_EQ(walked.lines, expected);
      }
}

TEST_F(Accounts, AreWalkedFromAKeyOn) {
  static const struct {
    int32_t kind, order;
    const char *from;
    ZelkResult result;
    const char *first;
  } rows[] = {{1, 0, "1000", 1, "1000"},
              {1, 0, "1001", 1, "1010"},
              {1, 0, "1", 1, "1000"},
              {1, 0, " ", 1, "0027"},
              {1, 0, "9009", 1, "9009"},
              {1, 0, "9010", 0, ""},
              {1, 0, "1000   und mehr", 1, "1000"},
              {1, 1, "KASSE", 1, "1000"},
              {1, 1, "KASSEA", 1, "1010"},
              {1, 2, "Ladenkasse", 1, "1010"},
              {1, 2, "zzz", 0, ""},
              {1, 2, "Ladenkasse und vieles mehr, als ein Schluessel an Zeichen fassen kann", 1, "4530"},
              {2, 0, "70015", 1, "70020"},
              {4, 0, "99999", 0, ""},
              {4, 2, "\xC4", 1, "10140"},
              {4, 2, "\xFC", 0, ""},
              {8, 0, "5001", 1, "5001"},
              {8, 1, "UMBAU", 1, "600"}};
  for (const auto &row : rows) {
    Walked walked = walk(1, row.kind, row.order, row.from);
    EXPECT_EQ(walked.init, row.result) << row.from;
    std::string first = walked.lines.empty() ? "" : walked.lines[0].substr(0, walked.lines[0].find(';'));
    EXPECT_EQ(first, row.first) << row.from;
    EXPECT_EQ(ZELK_HoleStapel(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), ZELKERR_keinInit);
  }
}

TEST_F(Accounts, AreRefusedBeforeTheWalk) {
  static const struct {
    int32_t client, kind, order;
    ZelkResult result;
    const char *message;
  } rows[] = {{1, 3, 0, ZELKERR_uzl_Kontoart, "Die Kontoart ist unzulässig!"},
              {1, -8, 5, ZELKERR_uzl_Kontoart, "Die Kontoart ist unzulässig!"},
              {1, 1, 3, ZELKERR_uzl_Sortierung, "Die Sortierung ist unzulässig!"},
              {99, 1, -1, ZELKERR_uzl_Sortierung, "Die Sortierung ist unzulässig!"},
              {99, 1, 0, ZELKERR_uzl_Mandnr, "Der Mandant existiert nicht!"}};
  for (const auto &row : rows) {
    ASSERT_EQ(ZELK_InitHoleKonto(1, 1, 0, nullptr, 0), ZELK_OK);
    EXPECT_EQ(ZELK_InitHoleKonto(row.client, row.kind, row.order, nullptr, 0), row.result);
    EXPECT_EQ(recorder.takeText(), "");
    ZELK_SAKO account;
    EXPECT_EQ(ZELK_HoleSako(&account), ZELKERR_keinInit) << "the walk before has ended";
    EXPECT_EQ(ZELK_InitHoleKonto(row.client, row.kind, row.order, nullptr, -1), row.result);
    EXPECT_EQ(recorder.takeText(), row.message);
  }
}

TEST_F(Accounts, FetchesTellTheirKindApart) {
  ZELK_SAKO ledger;
  ZELK_PEKO personal;
  ZELK_KOST centre;
  ZELK_SPLITBUCHUNG posting;
  ZELK_BATCHZEILE line;
  ZELK_BATCHKOBU cost;
  ZELK_BUCHUNG inserted = validPosting();
  ASSERT_EQ(ZELK_BuchungEinfuegen(&inserted, 0), ZELK_OK);
  const std::function<ZelkResult()> fetches[] = {
      [&] { return ZELK_HoleSako(&ledger); },
      [&] { return ZELK_HolePeko(&personal); },
      [&] { return ZELK_HolePeko(&personal); },
      [&] { return ZELK_HoleKost(&centre); },
      [] { return ZELK_HoleStapel(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); },
      [&] { return ZELK_HoleBatch(&posting); }};
  const std::function<ZelkResult()> inits[] = {[] { return ZELK_InitHoleKonto(1, 1, 0, nullptr, 0); },
                                               [] { return ZELK_InitHoleKonto(1, 2, 0, nullptr, 0); },
                                               [] { return ZELK_InitHoleKonto(1, 4, 0, nullptr, 0); },
                                               [] { return ZELK_InitHoleKonto(1, 8, 0, nullptr, 0); },
                                               [] { return ZELK_InitHoleStapel(1, 0); },
                                               [] { return ZELK_InitHoleBatch(1, 3, 0); }};
  for (size_t i = 0; i < std::size(inits); ++i)
    for (size_t j = 0; j < std::size(fetches); ++j) {
      ASSERT_TRUE(ZELK_InitHoleBatch(1, 3, 0) == ZELK_OK && ZELK_HoleBatch(&posting) > 0);
      ASSERT_EQ(inits[i](), ZELK_OK);
      EXPECT_EQ(ZELK_HoleBatchZeile(&line), ZELKERR_keinInit) << i;
      EXPECT_EQ(ZELK_HoleBatchKobu(&cost), ZELKERR_keinInit) << i;
      bool same = i == j || (i + j == 3 && i != 0 && j != 0);
      ZelkResult result = fetches[j]();
      EXPECT_EQ(result > 0 ? ZELK_OK : result, same ? ZELK_OK : ZELKERR_keinInit) << i << ' ' << j;
      EXPECT_EQ(ZELK_BeendeHolen(), ZELK_OK);
      EXPECT_EQ(fetches[j](), ZELKERR_keinInit) << i << ' ' << j;
    }
  EXPECT_EQ(ZELK_BeendeHolen(), ZELK_OK);
}

TEST_F(Accounts, WalksEndOnce) {
  ASSERT_EQ(ZELK_InitHoleKonto(1, 1, 0, "9008", 0), ZELK_OK);
  ZELK_SAKO account;
  EXPECT_EQ(ZELK_HoleSako(nullptr), ZELKERR_nicht_moeglich) << "and the record is not lost";
  EXPECT_EQ(ZELK_HoleSako(&account), ZELK_OK);
  EXPECT_STREQ(account.Kontonummer, "9008");
  EXPECT_EQ(ZELK_HoleSako(&account), ZELK_letzterDatensatz);
  EXPECT_STREQ(account.Kontonummer, "9009");
  EXPECT_EQ(ZELK_HoleSako(&account), ZELKERR_keinDatensatz);
  EXPECT_STREQ(account.Kontonummer, "9009") << "left alone";
}

TEST_F(Accounts, CarryTheirFields) {
  ZELK_SAKO ledger;
  ASSERT_EQ(ZELK_InitHoleKonto(1, 1, 0, "1220", 0), ZELK_OK);
  ASSERT_GT(ZELK_HoleSako(&ledger), 0);
  EXPECT_STREQ(ledger.Waehrung, "USD");
  ASSERT_EQ(ZELK_InitHoleKonto(1, 1, 0, "3400", 0), ZELK_OK);
  ASSERT_GT(ZELK_HoleSako(&ledger), 0);
  EXPECT_EQ(std::tuple(+ledger.GuV, +ledger.Steuerschluessel, +ledger.Kostenart, +ledger.Gesperrt),
            std::tuple(1, 5, 1, 0));
  ASSERT_EQ(ZELK_InitHoleKonto(1, 1, 0, "1590", 0), ZELK_OK);
  ASSERT_GT(ZELK_HoleSako(&ledger), 0);
  EXPECT_EQ(+ledger.Gesperrt, 1);
  ZELK_PEKO personal;
  ASSERT_EQ(ZELK_InitHoleKonto(1, 4, 0, "10070", 0), ZELK_OK);
  ASSERT_GT(ZELK_HolePeko(&personal), 0);
  EXPECT_EQ(vlba98::toUtf8(personal.Name), "Haselnuss-Café \"Zum Federkiel\" OHG");
  EXPECT_EQ(vlba98::toUtf8(personal.Ort), "Nürnberg");
  EXPECT_STREQ(personal.IBAN, "DE22999000100016392330");
  EXPECT_STREQ(personal.Sammelkonto, "1400");
  EXPECT_STREQ(personal.Kreditlimit, "000001500,00");
  EXPECT_EQ(std::tuple(+personal.Zahlungsziel, +personal.Mahnkennziffer, +personal.Gesperrt), std::tuple(1, 1, 0));
  ZELK_KOST centre;
  ASSERT_EQ(ZELK_InitHoleKonto(1, 8, 0, "600", 0), ZELK_OK);
  ASSERT_GT(ZELK_HoleKost(&centre), 0);
  EXPECT_STREQ(centre.LaufzeitVon, "010326");
  EXPECT_STREQ(centre.LaufzeitBis, "300926");
}

TEST_F(Accounts, WalkGoesOnUndisturbed) {
  std::vector<std::string> expected = fromFile("musterhandel", "sachkonto", 2);
  auto other = session();
  uint8_t found;
  ASSERT_TRUE(other->SetzeFista(1, found) && found);
  for (bool elsewhere : {false, true}) {
    std::vector<std::string> seen;
    ASSERT_EQ(ZELK_InitHoleKonto(1, 1, 2, nullptr, 0), ZELK_OK);
    for (ZelkResult result = ZELK_OK; result == ZELK_OK;) {
      ZELK_SAKO account;
      result = ZELK_HoleSako(&account);
      ASSERT_GT(result, 0);
      seen.push_back(vlba98::toUtf8(std::string(account.Kontonummer) + ';' + account.Kuerzel + ';' + account.Name));
      // The same thread posts into another year, which has other accounts.
      ZELK_BUCHUNG posting = validPosting();
      put(posting.Belegdatum, "210125");
      EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK);
      if (!elsewhere) continue;
      // It opens another client and looks into the same table.
      EXPECT_EQ(ZELK_ExistiertKonto(2, "1020", 1, 0, nullptr), 1);
      EXPECT_EQ(ZELK_InitHoleMandant(), ZELK_OK);
      // Others delete the record under the cursor, which was read ahead.
      if (seen.size() == expected.size()) break;
      std::string pending = expected[seen.size()].substr(0, 4);
      DATENBANK record{};
      ASSERT_TRUE(other->UsedGet(record, KeyBuilder().account(pending), found, kSachkonto));
      ASSERT_TRUE(other->Delete(kSachkonto));
    }
    EXPECT_EQ(seen, expected) << elsewhere;
  }
  EXPECT_EQ(postingsOf(1, 3).size(), 2 * expected.size());
}

TEST_F(Accounts, AbandonedWalksLetOthersPost) {
  MFWritePrivateProfileString("ZELK", "Sperrwartezeit", "1", nullptr);
  ASSERT_EQ(ZELK_InitHoleKonto(1, 1, 0, nullptr, 0), ZELK_OK);
  ZELK_SAKO account;
  ASSERT_EQ(ZELK_HoleSako(&account), ZELK_OK);
  auto other = session(std::chrono::milliseconds(0));
  EXPECT_TRUE(nothingLocked(*other, 1));
  ASSERT_EQ(ZELK_InitHoleStapel(1, 0), ZELK_OK);
  EXPECT_TRUE(nothingLocked(*other, 1));
  // Another thread, which does not wait; a posting that waits in vain would be skipped.
  std::thread([] {
    ZELK_BUCHUNG posting = validPosting();
    EXPECT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK);
  }).join();
  EXPECT_EQ(ZELK_HoleStapel(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), ZELK_OK);
  EXPECT_EQ(postingsOf(1, 3).size(), 1u);
}

TEST_F(Accounts, LockedTableRefusesTheWalk) {
  MFWritePrivateProfileString("ZELK", "Sperrwartezeit", "1", nullptr);
  auto other = session();
  uint8_t found;
  ASSERT_TRUE(other->SetzeFista(1, found) && found);
  ASSERT_TRUE(other->Lock(kSachkonto, nullptr, 0));
  EXPECT_EQ(ZELK_InitHoleKonto(1, 1, 0, nullptr, 0), ZELKERR_Datenbank);
  ZELK_SAKO account;
  EXPECT_EQ(ZELK_HoleSako(&account), ZELKERR_keinInit);
  EXPECT_EQ(ZELK_InitHoleKonto(1, 2, 0, nullptr, 0), ZELK_OK) << "another table";
  EXPECT_EQ(ZELK_InitHoleKonto(2, 1, 0, nullptr, 0), ZELK_OK) << "another client";
  EXPECT_EQ(ZELK_ExistiertKonto(1, "1000", 1, 0, nullptr), 1) << "a test waits for nobody";
  ASSERT_TRUE(other->Unlock(kSachkonto, 0));
  EXPECT_EQ(ZELK_InitHoleKonto(1, 1, 0, nullptr, 0), ZELK_OK);
}

TEST_F(Accounts, BatchesAreListed) {
  vlba98::CsvFile file = vlba98::readCsv((sourceFolder() / "samples" / "musterhandel" / "stapel.csv").string());
  ASSERT_EQ(file.rows.size(), 10u);
  ZELK_BUCHUNG posting = validPosting();
  ASSERT_EQ(ZELK_BuchungEinfuegen(&posting, 0), ZELK_OK);
  ASSERT_EQ(ZELK_InitHoleStapel(1, 0), ZELK_OK);
  for (size_t i = 0; i < file.rows.size(); ++i) {
    int32_t number, recurrence, transitory, locked, posted, reconciliation;
    char name[41];
    EXPECT_EQ(ZELK_HoleStapel(&number, name, &recurrence, &transitory, &locked, &posted, &reconciliation),
              i + 1 < file.rows.size() ? ZELK_OK : ZELK_letzterDatensatz);
    auto of = [&](const char *column) { return file.rows[i].values[size_t(file.column(column))]; };
    EXPECT_EQ(std::to_string(number), of("Nr"));
    EXPECT_EQ(vlba98::toUtf8(name), of("Name"));
    EXPECT_EQ(std::to_string(recurrence), of("Wiederkehr")) << number;
    EXPECT_EQ(std::to_string(transitory), of("Transitorisch")) << number;
    EXPECT_EQ(std::to_string(locked), of("Sperre")) << number;
    EXPECT_EQ(posted, number == 3) << number;
    EXPECT_EQ(std::to_string(reconciliation), of("Abstimm0")) << number;
  }
  EXPECT_EQ(ZELK_HoleStapel(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), ZELKERR_keinDatensatz);
  auto other = session();
  uint8_t found;
  ASSERT_TRUE(other->SetzeFista(2, found) && found);
  ASSERT_TRUE(other->DeleteTable(kStapel));
  EXPECT_EQ(ZELK_InitHoleStapel(2, 0), -1);
  EXPECT_EQ(ZELK_InitHoleStapel(1, 0), ZELK_OK);
}

} // namespace
} // namespace test
