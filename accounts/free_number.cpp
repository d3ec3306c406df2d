// Proposing a free account number.
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>

#include "frame/call.h"
#include "frame/fetch.h"
#include "frame/messages.h"
#include "frame/snapshot.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"

using namespace frame;
using namespace vldb98;

namespace {

constexpr size_t kWidth = 7;

// Waits for a writer of the table and takes nothing: the search must not stand in a posting's way.
constexpr int32_t kWaitForWriter = 5;
constexpr int kWaitMode = 1;

// What UsedAndGetKnr says of the number of a cost centre: those do not get in the way of accounts.
constexpr uint8_t kOnlyCostCentre = 16;

// A bound as hosts pass it; empty when there is none.
std::string bound(const char *text) {
  return text ? std::string(vlba98::trimmed(text).substr(0, kWidth)) : std::string();
}

// Account numbers are compared as texts, padded as they are stored.
std::string padded(std::string number) {
  number.resize(kWidth, ' ');
  return number;
}

struct Search {
  Store &store;
  int table;
  std::string from, to;

  bool bounded() const { return !from.empty() && !to.empty(); }

  // \return 1; -37 when there is no free number, -3 when the store failed
  ZelkResult run(std::string &proposal) const;

private:
  std::string firstOfTable() const;
  ZelkResult behind(const std::string &greatest, std::string &proposal) const;
  ZelkResult gap(std::string &proposal) const;
};

ZelkResult Search::run(std::string &proposal) const {
  DATENBANK record{};
  uint8_t found;
  FileNumber file = FileNumber(table);
  int done = bounded() ? store.GetLeExt(record, KeyBuilder().account(to), found, file, ZELK_ENG_DEFAULT, kWaitForWriter)
                       : store.GetLastExt(record, found, file, ZELK_ENG_DEFAULT, kWaitForWriter);
  if (!done) return ZELKERR_Datenbank;
  std::string greatest = table == kSachkonto ? record.Sachkonto.Nr : record.Personenkonto.Nr;
  if (found && !(bounded() && greatest < padded(from))) return behind(std::string(vlba98::trimmed(greatest)), proposal);
  proposal = bounded() ? from : firstOfTable();
  return ZELK_OK;
}

// The first number of an empty table. Personal accounts have one digit more than the general ledger.
std::string Search::firstOfTable() const {
  int stored = store.HoleFista().Kontolaenge;
  size_t length = stored < 1 ? 4 : size_t(stored);
  if (table == kSachkonto) return std::string(std::min(length, kWidth) - 1, '0') + '1';
  return std::string(table == kDebitor ? "1" : "7").append(std::min(length + 1, kWidth) - 1, '0');
}

ZelkResult Search::behind(const std::string &greatest, std::string &proposal) const {
  size_t lastOther = greatest.find_last_not_of("0123456789");
  std::string prefix = lastOther == std::string::npos ? "" : greatest.substr(0, lastOther + 1);
  int64_t number = std::atoll(greatest.c_str() + prefix.size());
  // Behind letters the search begins with the number itself, which then is written without its leading zeros.
  if (prefix.empty()) ++number;
  for (;; ++number) {
    std::string digits = number ? std::to_string(number) : "";
    if (digits.size() > kWidth) return ZELKERR_Ueberlauf;
    std::string candidate = prefix.substr(0, kWidth - digits.size()) + digits;
    if (!to.empty() && padded(candidate) > padded(to)) return bounded() ? gap(proposal) : ZELKERR_Ueberlauf;
    uint8_t used;
    int32_t where;
    DATENBANK record{};
    if (!store.UsedAndGetKnr(padded(candidate).c_str(), used, record, where)) return ZELKERR_Datenbank;
    if (used == 0 || used == kOnlyCostCentre) {
      proposal = candidate;
      return ZELK_OK;
    }
  }
}

// Between the bounds, themselves excepted.
ZelkResult Search::gap(std::string &proposal) const {
  int32_t low = std::atoi(from.c_str()), high = std::atoi(to.c_str());
  if (high < low) std::swap(low, high);
  if (!store.Lock(FileNumber(table), nullptr, kWaitMode, ZELK_ENG_DEFAULT)) return ZELKERR_Datenbank;
  return inSnapshot(store, [&]() -> ZelkResult {
    for (int32_t number = low + 1; number < high; ++number) {
      uint8_t used;
      std::string candidate = std::to_string(number);
      if (!store.Used(KeyBuilder().account(candidate), used, FileNumber(table), ZELK_ENG_DEFAULT))
        return ZELKERR_Datenbank;
      if (!used) {
        proposal = candidate;
        return ZELK_OK;
      }
    }
    return ZELKERR_Ueberlauf;
  });
}

} // namespace

ZelkResult ZELK_CALL ZELK_HoleFreieKontonr(int32_t Mandantennummer, int32_t Kontoart, const char *NummerVon,
                                           const char *NummerBis, char *NummerOut) {
  static constexpr Export self{.name = "ZELK_HoleFreieKontonr"};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), number("Kontoart:", Kontoart),
              text("Nummer-Von:", NummerVon), text("Nummer-Bis:", NummerBis), out("Nummer-Out:", NummerOut)},
             [&](ThreadContext *context) -> ZelkResult {
               if (!vlfn98::isAccountKind(Kontoart) || Kontoart == ZELK_KOSTENSTELLE) return ZELKERR_uzl_Kontoart;
               if (!NummerOut)
                 return refuse(*context, ZELKERR_nicht_moeglich, resources::textId(ZELKERR_nicht_moeglich));
               Store *store = context->session();
               if (!store) return ZELKERR_Datenbank;
               if (ZelkResult opened = openClient(*context, *store, Mandantennummer); opened <= 0) return opened;
               std::string proposal;
               Search search{*store, vlfn98::KzFromZELKArt(Kontoart), bound(NummerVon), bound(NummerBis)};
               ZelkResult result = search.run(proposal);
               if (result == ZELK_OK) vlba98::strncpy2(NummerOut, vlba98::trimmed(proposal), kWidth + 1);
               return result;
             });
}
