// Proposing a free account number.
#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <vector>

#include "frame/call.h"
#include "frame/client.h"
#include "frame/messages.h"
#include "frame/snapshot.h"
#include "vlba98/datum.h"
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

// Goes through the client's fiscal years, and back to the one that was open.
class OtherYears {
public:
  explicit OtherYears(Store &store) : store_(store), open_(store.HoleOpenJahr()) {}

  // \return false when the store failed
  bool read() {
    DATENBANK record{};
    uint8_t found;
    int done = store_.GetFirstExt(record, found, kGeschaeftsjahr);
    for (; done && found; done = store_.GetNextExt(record, found, kGeschaeftsjahr)) {
      char code[3];
      if (vlba98::itotwo(record.Geschaeftsjahr.Jahr - vlba98::firstYear, code) && code != open_) codes_.push_back(code);
    }
    return done;
  }

  // Whether the number is an account's in one of them. \return false when the store failed
  bool use(const std::string &candidate, bool &used) {
    used = false;
    bool done = true;
    for (size_t i = 0; done && !used && i < codes_.size(); ++i) {
      uint8_t kind = 0;
      int32_t where;
      DATENBANK record{};
      done = store_.SetzeOpenJahr(codes_[i].c_str()) &&
             store_.UsedAndGetKnr(padded(candidate).c_str(), kind, record, where);
      used = done && kind != 0 && kind != kOnlyCostCentre;
    }
    return (codes_.empty() || store_.SetzeOpenJahr(open_.c_str())) && done;
  }

private:
  Store &store_;
  std::string open_;
  std::vector<std::string> codes_;
};

struct Search {
  Store &store;
  int table;
  std::string from, to;
  OtherYears others{store};

  bool bounded() const { return !from.empty() && !to.empty(); }

  // \return 1; -37 when there is no free number, -3 when the store failed
  ZelkResult run(std::string &proposal);

private:
  std::string firstOfTable() const;
  ZelkResult behind(const std::string &greatest, std::string &proposal);
  ZelkResult gap(std::string &proposal);
};

ZelkResult Search::run(std::string &proposal) {
  DATENBANK record{};
  uint8_t found;
  FileNumber file = FileNumber(table);
  int done = bounded() ? store.GetLeExt(record, KeyBuilder().account(to), found, file, ZELK_ENG_DEFAULT, kWaitForWriter)
                       : store.GetLastExt(record, found, file, ZELK_ENG_DEFAULT, kWaitForWriter);
  if (!done || !others.read()) return ZELKERR_Datenbank;
  std::string greatest = table == kSachkonto ? record.Sachkonto.Nr : record.Personenkonto.Nr;
  if (found && !(bounded() && greatest < padded(from))) return behind(std::string(vlba98::trimmed(greatest)), proposal);
  proposal = bounded() ? from : firstOfTable();
  bool elsewhere;
  if (!others.use(proposal, elsewhere)) return ZELKERR_Datenbank;
  return elsewhere ? behind(std::string(proposal), proposal) : ZELK_OK;
}

// The first number of an empty table. Personal accounts have one digit more than the general ledger.
std::string Search::firstOfTable() const {
  int stored = store.HoleFista().Kontolaenge;
  size_t length = stored < 1 ? 4 : size_t(stored);
  if (table == kSachkonto) return std::string(std::min(length, kWidth) - 1, '0') + '1';
  return std::string(table == kDebitor ? "1" : "7").append(std::min(length + 1, kWidth) - 1, '0');
}

ZelkResult Search::behind(const std::string &greatest, std::string &proposal) {
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
    bool elsewhere = false;
    if (used != 0 && used != kOnlyCostCentre) continue;
    if (!others.use(candidate, elsewhere)) return ZELKERR_Datenbank;
    if (elsewhere) continue;
    proposal = candidate;
    return ZELK_OK;
  }
}

// Between the bounds, themselves excepted.
ZelkResult Search::gap(std::string &proposal) {
  int32_t low = std::atoi(from.c_str()), high = std::atoi(to.c_str());
  if (high < low) std::swap(low, high);
  if (!store.Lock(FileNumber(table), nullptr, kWaitMode)) return ZELKERR_Datenbank;
  return inSnapshot(store, [&]() -> ZelkResult {
    for (int32_t number = low + 1; number < high; ++number) {
      uint8_t used;
      std::string candidate = std::to_string(number);
      if (!store.Used(KeyBuilder().account(candidate), used, FileNumber(table))) return ZELKERR_Datenbank;
      bool elsewhere = false;
      if (!used && !others.use(candidate, elsewhere)) return ZELKERR_Datenbank;
      if (used || elsewhere) continue;
      proposal = candidate;
      return ZELK_OK;
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
