// The standing of a personal account: dunning level and credit rating.
#include <fstream>
#include <stdexcept>

#include "support/dependants.h"
#include "support/items.h"
#include "vlba98/date.h"
#include "vlfn98/rating.h"

namespace test {
namespace {

using namespace vldb98;
using vlfn98::Rating;
using vlfn98::RatingRequest;

/// A source that answers as it is told, and keeps what it was asked.
class Agency final : public vlfn98::RatingSource {
public:
  Agency() { vlfn98::setRatingSource(this); }
  ~Agency() override { vlfn98::setRatingSource(nullptr); }
  std::optional<Rating> rate(const RatingRequest &request) override {
    asked.push_back(request);
    if (meanwhile) meanwhile();
    return answer;
  }
  Rating answer{2, "B2"};
  std::vector<RatingRequest> asked;
  std::function<void()> meanwhile;
};

class Standing : public ItemBooks {
protected:
  static ZelkResult rate(int32_t kind, const char *account, int32_t client = 1) {
    return ZELK_ErmittleBonitaet(nullptr, client, kind, account, 0, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, nullptr);
  }
  static ZelkResult rateParty(int32_t searchType, const char *date, const char *account = nullptr) {
    return ZELK_ErmittleBonitaet(nullptr, 1, 0, account, searchType, "Name", nullptr, nullptr, nullptr, nullptr,
                                 nullptr, date, nullptr);
  }
  std::string ratingOf(int table, const char *account) {
    DATENBANK record{};
    uint8_t found = 0;
    EXPECT_TRUE(other_->SetzeFista(1, found) &&
                other_->UsedGet(record, KeyBuilder().account(account), found, FileNumber(table)));
    return found ? record.Personenkonto.Bonitaet : "(no account)";
  }
  /// The entries of the account-change protocol: "table account action year old>new".
  std::vector<std::string> entries() {
    std::vector<std::string> all;
    DATENBANK record{};
    uint8_t found = 0;
    int done = other_->SetzeFista(1, found) && other_->GetFirstExt(record, found, kKontoprotokoll);
    for (; done && found; done = other_->GetNextExt(record, found, kKontoprotokoll)) {
      const KONTOPROTOKOLL &entry = record.Kontoprotokoll;
      all.push_back(std::to_string(entry.Kontotabelle) + " " + entry.Konto + "/" + std::to_string(entry.Aktion) + "/" +
                    std::to_string(entry.Jahr) + " " + entry.Alt + ">" + entry.Neu);
      EXPECT_TRUE(vlba98::fromReversed(entry.Datum));
      EXPECT_EQ(std::string(entry.Uhrzeit).size(), 8u);
    }
    EXPECT_TRUE(done);
    return all;
  }
  Agency agency;
};

TEST_F(Standing, DunningLevelIsTheGreatestOfTheOpenItems) {
  const struct {
    const char *account;
    std::vector<int16_t> levels;
    ZelkResult result;
  } rows[] = {{"10010", {}, 0},
              {"10020", {-1, -1}, 0},
              {"10030", {0, 2, 1}, 2},
              {"10040", {3, -1}, 3},
              {"10050", {INT16_MAX, 1}, INT16_MAX},
              {"10060", {INT16_MIN, 0}, 0}};
  int32_t number = 0;
  for (const auto &row : rows)
    for (int16_t level : row.levels) {
      OPBELEG item = itemOf(++number, row.account);
      item.Mahnstufe = level;
      insert(kOPDebitor, item);
      insert(kOPKreditor, item);
    }
  for (const auto &row : rows)
    EXPECT_EQ(ZELK_HoleAktMahnstufe(1, row.account), row.result) << row.account;
  const struct {
    int32_t client;
    const char *account;
    ZelkResult result;
  } refused[] = {{99, "10010", -5}, {0, "100100000", -5}, {1, "10010000", -10}, {1, "10010   ", -10}, {1, "10010  ", 0},
                 {1, "70010", -10}, {1, "99999", -10},    {1, "", -10},         {1, nullptr, -10},    {2, "10030", 0}};
  for (const auto &row : refused)
    EXPECT_EQ(ZELK_HoleAktMahnstufe(row.client, row.account), row.result)
        << row.client << ' ' << (row.account ? row.account : "(null)");
  EXPECT_EQ(recorder.takeText(), "");
}

TEST_F(Standing, RatingIsStoredWithItsProtocol) {
  ASSERT_EQ(ZELK_InitHoleKonto(1, 4, 0, nullptr, 1), 1); // messages from here on
  const struct {
    int32_t client, kind;
    const char *account;
    std::string expected;
    size_t asked;
  } refused[] = {{0, 9, "x", "-5", 0},
                 {99, 9, "x", "-5 Der Mandant existiert nicht!", 0},
                 {1, 1, nullptr, "0", 0},
                 {1, 4, "", "0", 0},
                 {1, 4, "  ", "0", 0},
                 {1, 9, nullptr, "0", 0},
                 {1, 0, "10010", "-7 Die Kontoart ist unzulässig!", 0},
                 {1, 1, "1000", "-7 Die Kontoart ist unzulässig!", 0},
                 {1, 4, "70010", "-10 Die Kontonummer ist unzulässig!", 0},
                 {1, 4, "100100000", "-10 Die Kontonummer ist unzulässig!", 0}};
  for (const auto &row : refused) {
    EXPECT_EQ(outcome(rate(row.kind, row.account, row.client)), row.expected);
    EXPECT_EQ(agency.asked.size(), row.asked);
  }
  EXPECT_EQ(entries(), std::vector<std::string>{});

  const struct {
    int32_t kind;
    const char *account;
    Rating answer;
    const char *stored, *entry;
  } rated[] = {{4, "10010", {1, "A1"}, "A1", "3 10010  /10/2026 >A1"},
               {4, "10010", {3, "ABCDEFG"}, "ABCDEFG", "3 10010  /10/2026 A1>ABCDEFG"},
               {4, "10010", {0, "X"}, "", "3 10010  /10/2026 ABCDEFG>"},
               {4, "10010", {2, ""}, "", "3 10010  /10/2026 >"},
               {2, " 70010 ", {2, "B"}, "B", "2 70010  /10/2026 >B"},
               {2, "70010", {4, "C"}, "", "2 70010  /10/2026 B>"}};
  std::vector<std::string> expected;
  for (const auto &row : rated) {
    agency.answer = row.answer;
    agency.asked.clear();
    EXPECT_EQ(outcome(rate(row.kind, row.account)), "1");
    EXPECT_EQ(ratingOf(row.kind == 4 ? kDebitor : kKreditor, row.kind == 4 ? "10010" : "70010"), row.stored);
    expected.push_back(row.entry);
    EXPECT_EQ(entries(), expected);
    ASSERT_EQ(agency.asked.size(), 1u);
    EXPECT_EQ(agency.asked[0].kind, row.kind);
    EXPECT_EQ(agency.asked[0].client, 1);
    EXPECT_EQ(agency.asked[0].options, 2);
    EXPECT_EQ(agency.asked[0].party.Kuerzel, std::string(row.kind == 4 ? "AHORN" : "MOHNFELD"));
  }
}

TEST_F(Standing, PartiesWithoutAccountAreRated) {
  ASSERT_EQ(ZELK_InitHoleKonto(1, 4, 0, nullptr, 1), 1);
  const std::string type = "-102 Der Suchtyp ist unzulässig!", date = "-64 Das Datum ist unzulässig!";
  const struct {
    int32_t searchType;
    const char *date;
    std::string expected;
  } rows[] = {{-1, "x", type},        {4, nullptr, type},    {0, "x", date},          {3, "29.02.1900", date},
              {3, "010150", date},    {1, "1.1.1950", date}, {1, "00.01.1950", date}, {1, "01.01.0000", date},
              {0, nullptr, "1"},      {3, "", "1"},          {2, "29.02.1904", "1"},  {2, "31.12.1649", "1"},
              {2, "31.12.19490", "1"}};
  for (const auto &row : rows)
    EXPECT_EQ(outcome(rateParty(row.searchType, row.date, "  ")), row.expected) << row.expected;
  agency.answer.ratingClass = 4;
  EXPECT_EQ(rateParty(0, nullptr), 0);
  agency.answer.ratingClass = 0;
  EXPECT_EQ(rateParty(0, nullptr), 0);
  EXPECT_EQ(entries(), std::vector<std::string>{});

  const std::string longText(60, 'a');
  const char *text = longText.c_str();
  int window = 0;
  ZELK_ErmittleBonitaet(&window, 1, 0, nullptr, 3, text, text, text, text, text, text, "31.12.19490", text);
  const RatingRequest &asked = agency.asked.back();
  const std::pair<const char *, size_t> fields[] = {
      {asked.party.Name, 40},    {asked.party.Zusatz, 40},  {asked.party.Strasse, 30},  {asked.party.PLZ, 6},
      {asked.party.Ort, 30},     {asked.party.Vorname, 30}, {asked.registerNumber, 20}, {asked.party.Kuerzel, 0},
      {asked.party.Bonitaet, 0}, {asked.party.Nr, 0}};
  for (auto [field, width] : fields)
    EXPECT_EQ(field, longText.substr(0, width));
  EXPECT_STREQ(asked.date, "31.12.1949");
  EXPECT_EQ(asked.parent, &window);
  EXPECT_EQ(asked.kind, 0);
  EXPECT_EQ(asked.searchType, 3);
}

TEST_F(Standing, RatingsMayStandInAFile) {
  ASSERT_EQ(ZELK_InitHoleKonto(1, 4, 0, nullptr, 1), 1); // messages from here on
  ASSERT_EQ(rate(4, "10010"), 1);
  vlfn98::setRatingSource(nullptr);
  auto problem = [](const char *text) {
    return std::string("-2 Die Bonität kann nicht ermittelt werden (bonitaet.csv): ") + text;
  };
  auto party = [](const char *name, const char *postalCode, const char *registerNumber) {
    return ZELK_ErmittleBonitaet(nullptr, 1, 0, nullptr, 0, name, nullptr, nullptr, postalCode, nullptr, nullptr,
                                 nullptr, registerNumber);
  };
  const std::string head = "Mandant;Konto;Registernummer;Name;PLZ;Klasse;Text\n";
  const struct {
    const char *file;    ///< null: none; without its header
    std::string account; ///< what rating 10010 comes to
    const char *stored;  ///< and leaves behind the rating B2
    std::string party;   ///< what rating a party comes to
  } rows[] = {
      {nullptr, "0", "B2", "0"},
      {"", "1", "", "0"},
      {"2;10010;;;;1;A1\n1;10011;;Öko;;1;A1\n", "1", "", "1 Bonität: 1 A1"},
      {"1; 10010 ;;;;3;C\n;10010;;;;1;A1\n", "1 Bonität: 3 C", "C", "0"},
      {";;HRB 7;;;2;Reg\n;;HRB 8;Öko;;1;A\n;10010;;;;0;A1\n", "1", "", "1 Bonität: 2 Reg"},
      {";;;Öko;99999;1;A1\n;;;Öko;04109;;\n;;;Öko;04109;1;A1\n", "1", "", "0"},
      {";;;Öko;04109;3;C3\n;;;Ahorn;;2;ABCDEFG\n", "1 Bonität: 2 ABCDEFG", "ABCDEFG", "1 Bonität: 3 C3"},
      {";10010;;;;1;A1\n;;;;04109;1;A1\n", problem("Zeile 3: Konto, Registernummer und Name fehlen."), "B2", "-2"},
      {";10010;;;;1a;A1\n", problem("Zeile 2: Mandant und Klasse müssen ganze Zahlen sein."), "B2", "-2"},
      {";10010;;;;1;ABCDEFGH\n", problem("Zeile 2: Text hat mehr als 7 Zeichen."), "B2", "-2"},
      {";10010;;;;1\n", problem("Zeile 2: Die Zeile hat 6 Felder, die Kopfzeile 7."), "B2", "-2"},
  };
  for (const auto &row : rows) {
    SCOPED_TRACE(row.file ? row.file : "(none)");
    change(1, kDebitor, KeyBuilder().account("10010"), [](DATENBANK &record) {
      put(record.Personenkonto.Bonitaet, "B2");
      put(record.Personenkonto.Name, "Ahorn");
    });
    if (row.file) std::ofstream(folder() / "programm" / "bonitaet.csv", std::ios::binary) << head << row.file;
    const size_t before = entries().size();
    EXPECT_EQ(outcome(rate(4, "10010")), row.account);
    EXPECT_EQ(ratingOf(kDebitor, "10010"), row.stored);
    EXPECT_EQ(entries().size() - before, row.account[0] == '1');
    EXPECT_EQ(outcome(party("\xD6ko", "04109", "HRB 7")).substr(0, row.party.size()), row.party);
  }
  std::ofstream(folder() / "programm" / "bonitaet.csv") << "Konto;Klasse;Limit\n";
  EXPECT_EQ(outcome(rate(4, "10010")), problem("Die Spalte \"Limit\" gibt es nicht."));
}

TEST_F(Standing, SourceMayTakeItsTime) {
  // What it does meanwhile stands in nobody's way, and nothing that happens meanwhile is lost.
  agency.meanwhile = [&] {
    EXPECT_TRUE(nothingLocked(*other_, 1));
    change(1, kDebitor, KeyBuilder().account("10010"),
           [](DATENBANK &record) { put(record.Personenkonto.Ort, "Jena"); });
    EXPECT_EQ(ZELK_ExistiertKonto(2, "1020", 1, 0, nullptr), 1);
  };
  EXPECT_EQ(rate(4, "10010"), 1);
  EXPECT_EQ(ratingOf(kDebitor, "10010"), "B2");
  DATENBANK record{};
  uint8_t found = 0;
  ASSERT_TRUE(other_->UsedGet(record, KeyBuilder().account("10010"), found, kDebitor));
  EXPECT_STREQ(record.Personenkonto.Ort, "Jena");
  agency.meanwhile = [&] {
    change(1, kDebitor, KeyBuilder().account("10020"), [](DATENBANK &gone) { put(gone.Personenkonto.Nr, "19999  "); });
  };
  EXPECT_EQ(rate(4, "10020"), ZELKERR_uzl_Kontonr);
  agency.meanwhile = [] { throw std::runtime_error("out of order"); };
  EXPECT_EQ(rate(4, "10010"), ZELKERR_sonst);
  EXPECT_EQ(entries().size(), 1u);
  EXPECT_TRUE(nothingLocked(*other_, 1));
}

TEST_F(Standing, FaultsOfTheStoreLeaveNoTrace) {
  OPBELEG item = itemOf(1, "10010");
  item.Mahnstufe = 3;
  insert(kOPDebitor, item);
  const struct {
    std::function<ZelkResult()> call;
    ZelkResult result;
  } scenarios[] = {{[] { return rate(4, "10010"); }, 1}, {[] { return ZELK_HoleAktMahnstufe(1, "10010"); }, 3}};
  Faults faults;
  auto all = [&] { return dump(*other_, 1, {kDebitor, kKontoprotokoll, kOPDebitor}); };
  for (const auto &scenario : scenarios) {
    const std::string before = all();
    const auto [operations, last] = sweep(
        faults, [] {}, scenario.call,
        [&](ZelkResult result) {
          EXPECT_EQ(result, ZELKERR_Datenbank);
          EXPECT_EQ(all(), before);
          EXPECT_TRUE(nothingLocked(*other_, 1));
        });
    EXPECT_EQ(last, scenario.result);
    EXPECT_GT(operations, 3);
  }
  EXPECT_EQ(entries().size(), 1u);
}

using RatingNotification = Dependants;

TEST_F(RatingNotification, HandsTheChangedAccountOver) {
  Agency agency;
  registerApplications();
  install();
  EXPECT_EQ(ZELK_ErmittleBonitaet(nullptr, 1, 4, "10010", 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                  nullptr, nullptr),
            1);
  EXPECT_EQ(ZELK_ErmittleBonitaet(nullptr, 1, 4, "99999", 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                  nullptr, nullptr),
            ZELKERR_uzl_Kontonr);
  ZELK_Detach();
  ASSERT_EQ(lines().size(), 2u) << outputText();
  EXPECT_EQ(lines()[0].substr(0, 33), "geändert Debitor 1 10010 [AHORN]") << outputText();
}

} // namespace
} // namespace test
