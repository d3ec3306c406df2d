// Walks of open items through the exports, beside bare re-seeks of the same rows: of all 100,000, and of the ten that
// one account has among 100,000 others.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "bare.h"
#include "books.h"
#include "figures.h"
#include "vlba98/text.h"

namespace bench {
namespace {

using namespace vldb98;
using Clock = std::chrono::steady_clock;

constexpr int kTurns = 7, kItems = 100000, kOwnItems = 10;
constexpr int kLastAccount = kAccounts - 1; // which has the ten

void fill() {
  auto store = books().openStore();
  require(store->Transaktion(1, 0), "open items");
  DATENBANK record{};
  OPBELEG &item = record.Opbeleg;
  auto put = [](auto &field, const std::string &text) { vlba98::strncpy2(field, text); };
  put(item.Gegenkonto, "8400   ");
  put(item.Skontokonto1, "       ");
  put(item.Skontokonto2, "       ");
  put(item.Name, "Kunde der Messung");
  put(item.Belegdatum, "460121");
  put(item.Faelligkeit, "460220");
  put(item.Text, "Rechnung");
  put(item.Brutto, "000000119,00");
  put(item.Ausstand, "000000119,00");
  for (int i = 0; i < kItems + kOwnItems; ++i) {
    const bool own = i % (kItems / kOwnItems) == 5000;
    item.Nr = i + 1;
    put(item.Konto, accountNumber(own ? kLastAccount : i % kLastAccount));
    vlba98::FillWithSpaces(item.Konto);
    put(item.Belegnummer, "R-" + std::to_string(i));
    put(item.OPBelegnummer, item.Belegnummer);
    require(store->Insert(record, kOPDebitor), "an open item");
  }
  require(store->Transaktion(2, 0), "open items");
}

/// Every output, as a host that lists open items asks for them.
ZelkResult fetch() {
  char text[32][64];
  int32_t number[8];
  return ZELK_HoleOP(text[0], text[1], text[2], text[3], text[4], text[5], text[6], text[7], text[8], text[9], text[10],
                     text[11], text[12], 3, text[13], text[14], text[15], &number[0], text[16], text[17], text[18],
                     &number[1], &number[2], text[19], text[20], text[21], text[22], text[23], text[24], &number[3],
                     text[25], text[26], &number[4], &number[5], &number[6], &number[7]);
}

int walk(const char *account) {
  int rows = 0;
  ZelkResult result = ZELK_InitHoleOP(1, account, ZELK_DEBITOR, 0);
  for (; result == ZELK_OK; ++rows)
    result = fetch();
  require(result == ZELK_letzterDatensatz, "a walk of open items");
  return rows;
}

/// The same rows from the engine: a seek for each, after the one before.
class BareWalk {
public:
  explicit BareWalk(const BareConnection &connection) : next_(connection, select()) {}
  int run() {
    int rows = 0;
    for (int64_t at = 0; next_.run(at); ++rows)
      at = next_.firstNumber();
    return rows;
  }

private:
  static std::string select() {
    std::string columns;
    for (const Field &field : findTable(kOPDebitor)->fields)
      columns += (columns.empty() ? "\"" : ",\"") + std::string(field.name) + "\"";
    return "SELECT " + columns + " FROM OPDebitor WHERE Mandant=1 AND Nr>? ORDER BY Nr LIMIT 1";
  }
  BareStatement next_;
};

template <class Work> double milliseconds(int rows, Work &&work) {
  auto begin = Clock::now();
  require(work() == rows, "the rows of a walk");
  return std::chrono::duration<double, std::milli>(Clock::now() - begin).count();
}

double median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + ptrdiff_t(values.size() / 2), values.end());
  return values[values.size() / 2];
}

} // namespace

Figures openItemFigures() {
  fill();
  BareConnection connection(books().libraryFile());
  BareWalk bare(connection);
  const std::string account = accountNumber(kLastAccount);
  std::vector<double> all, own, beside, ratios;
  for (int turn = 0; turn < kTurns; ++turn) {
    all.push_back(milliseconds(kItems + kOwnItems, [] { return walk(nullptr); }));
    beside.push_back(milliseconds(kItems + kOwnItems, [&] { return bare.run(); }));
    own.push_back(milliseconds(kOwnItems, [&] { return walk(account.c_str()); }));
    ratios.push_back(all.back() / beside.back());
  }
  std::printf("open items: walk over %d median %.1f ms, bare %.1f ms; the %d of one account among them %.3f ms\n",
              kItems + kOwnItems, median(all), median(beside), kOwnItems, median(own));
  return {{"walk over 100,000 open items / bare re-seek per row", median(ratios), Bound::AtMost, 3}};
}

} // namespace bench
