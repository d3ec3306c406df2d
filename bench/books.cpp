#include "books.h"

#include <cstdio>
#include <cstdlib>
#include <random>

#include "sqlite/sqlite_connection.h"
#include "store/database.h"
#include "vlba98/text.h"
#include "zelkctl/verbs.h"

namespace bench {
namespace {

using namespace vldb98;

constexpr char kRevenue[] = "8400";
constexpr int16_t kTaxKey = 3;

template <size_t N> void put(char (&field)[N], const std::string &text) {
  vlba98::strncpy2(field, text.c_str());
}
void putKey(char (&field)[8], const std::string &text) {
  put(field, text);
  vlba98::FillWithSpaces(field);
}

void insert(Store &store, DATENBANK &record, FileNumber file) {
  require(store.Insert(record, file), "a record of the books");
}

void insertBatch(Store &store, int number, int postings) {
  DATENBANK record{};
  record.Stapel.Nr = number;
  put(record.Stapel.Name, "Stapel " + std::to_string(number));
  insert(store, record, kStapel);
  BATCHBUCHUNG posting{};
  posting.Stapel = number;
  put(posting.Belegdatum, "460121");
  SPLIT line{};
  line.Sollart = 8;
  line.Habenart = 2;
  putKey(line.Sollkonto, accountNumber(0));
  putKey(line.Habenkonto, kRevenue);
  put(line.Brutto, "000000119,00");
  put(line.Netto, "000000100,00");
  put(line.Steuersatz, "19,00");
  put(line.Steuerbetrag, "000000019,00");
  line.Steuerschluessel = kTaxKey;
  line.Steuerseite = 1;
  store.SplitFree();
  store.MemInsertSplit(line);
  for (int i = 0; i < postings; ++i) {
    put(posting.Belegnummer, "V-" + std::to_string(i));
    require(store.InsertBat(posting), "a posting of the books");
  }
}

} // namespace

void fill(Store &store, uint16_t number, int debtors, std::initializer_list<int> batches) {
  require(store.Transaktion(1, 0), "filling the books");
  DATENBANK record{};
  FIRMENSTAMM &client = record.Firmenstamm;
  client.Nummer = number;
  put(client.Name, "Messung");
  put(client.AktJahr, std::to_string(kYear - 1980));
  put(client.Waehrung, "EUR");
  put(client.Land, "D");
  client.Kontolaenge = 4;
  client.Version = kDataVersion;
  insert(store, record, kFirmenstamm);
  record = {};
  record.FistaExt.Nummer = number;
  insert(store, record, kFistaExt);
  uint8_t found;
  require(store.SetzeFista(number, found) && found, "the client");
  record = {};
  record.Geschaeftsjahr.Jahr = kYear;
  put(record.Geschaeftsjahr.Beginn, "460101");
  put(record.Geschaeftsjahr.Ende, "461231");
  insert(store, record, kGeschaeftsjahr);
  record = {};
  record.Steusa.Schluessel = kTaxKey;
  put(record.Steusa.GueltigAb, "270101");
  put(record.Steusa.Satz, "19,00");
  record.Steusa.Art = 1;
  insert(store, record, kSteusa);
  for (int i = 1; i < 100; ++i) {
    record = {};
    putKey(record.Sachkonto.Nr, std::to_string(i * 100));
    put(record.Sachkonto.Name, "Sachkonto " + std::to_string(i));
    record.Sachkonto.GuV = i >= 40;
    if (i == 84) record.Sachkonto.Steuerschluessel = kTaxKey;
    insert(store, record, kSachkonto);
  }
  for (int i = 0; i < debtors; ++i) {
    record = {};
    PERSONENKONTO &debtor = record.Personenkonto;
    putKey(debtor.Nr, accountNumber(i));
    put(debtor.Name, "Kunde Nummer " + std::to_string(i));
    put(debtor.Ort, "Neustadt");
    put(debtor.Kreditlimit, "000005000,00");
    putKey(debtor.Sammelkonto, "1400");
    insert(store, record, kDebitor);
  }
  int batch = 0;
  for (int postings : batches)
    insertBatch(store, ++batch, postings);
  require(store.Transaktion(2, 0), "filling the books");
}

std::string accountNumber(int i) {
  return std::to_string(10000 + i);
}

int randomAccount() {
  static std::mt19937 random(1);
  return int(random() % kAccounts);
}

void require(bool condition, const char *what) {
  if (condition) return;
  std::fprintf(stderr, "zelk98_bench: %s failed\n", what);
  std::exit(2);
}

void useSettings(const std::string &file) {
  ::setenv("ZELK_SETTINGS", file.c_str(), 1);
}

Books::Books() {
  std::string name = std::filesystem::temp_directory_path() / "zelk98-bench-XXXXXX";
  require(::mkdtemp(name.data()) != nullptr, "making a temporary folder");
  folder_ = name;
  useSettings(settingsFile());
  require(zelkctl::provision((folder_ / "programm").string()) == 0, "zelkctl einrichten");
  static_assert(kLargeBatch == 1 && kSmallBatch == 2 && kBatch == 3);
  fill(*openStore(), 1, kAccounts, {kLargeBatchPostings, kSmallBatchPostings, 0});
  // The last session has closed the database, so that its file is all of it.
  std::filesystem::copy_file(libraryFile(), bareFile());
  ZELK_Detach();
}

Books::~Books() {
  ZELK_Detach();
  std::filesystem::remove_all(folder_);
}

std::string Books::libraryFile() const {
  return folder_ / "programm" / kDataFolder / kDatabaseFile;
}

std::unique_ptr<Store> Books::openStore() const {
  DatabaseSettings settings;
  settings.directory = (folder_ / "programm" / kDataFolder).string();
  settings.openEmbedded = [](const std::string &path, std::chrono::milliseconds wait) {
    return openSqlite(path, {wait, false, true});
  };
  auto store = openSession(settings);
  require(store != nullptr, "opening the books");
  uint8_t found;
  store->SetzeFista(1, found);
  return store;
}

Books &books() {
  static Books instance;
  return instance;
}

ZELK_BUCHUNG makePosting(int batch) {
  static int number = 0;
  ZELK_BUCHUNG posting{};
  posting.Mandantennummer = 1;
  posting.Stapelnummer = batch;
  posting.Sollart = ZELK_DEBITOR;
  posting.Habenart = ZELK_SACHKONTO;
  put(posting.Belegdatum, "210126");
  put(posting.Belegnummer, "R-" + std::to_string(++number));
  put(posting.Text, "Rechnung");
  put(posting.Sollkonto, accountNumber(randomAccount()));
  put(posting.Habenkonto, kRevenue);
  put(posting.Bruttobetrag, "119,00");
  put(posting.Steuersatz, "19,00");
  return posting;
}

} // namespace bench
