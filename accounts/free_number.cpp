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
#include "store/typed.h"
#include "vlba98/date.h"
#include "vlba98/text.h"
#include "vlfn98/account_fields.h"
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

// Whether the number is that of an account of the open fiscal year.
bool isAccount(Store &store, const std::string &number) {
  uint8_t kind = 0;
  int32_t where;
  DATENBANK record{};
  must(store.UsedAndGetKnr(padded(number).c_str(), kind, record, where));
  return kind != 0 && kind != kOnlyCostCentre;
}

// Goes through the client's fiscal years, and back to the one that was open. What is free in the current year alone is
// no proposal: the open items and balances of an account that was not carried over would get a new owner.
class OtherYears {
public:
  explicit OtherYears(Store &store) : store_(store), open_(store.HoleOpenJahr()) {}

  void read() {
    forEach<GESCHAEFTSJAHR>(store_, [&](const GESCHAEFTSJAHR &year) {
      char code[3];
      if (vlba98::itotwo(year.Jahr - vlba98::firstYear, code) && code != open_) codes_.push_back(code);
    });
  }

  // Whether the number is an account's in one of them.
  bool use(const std::string &candidate) {
    bool used = false;
    for (size_t i = 0; !used && i < codes_.size(); ++i) {
      must(store_.SetzeOpenJahr(codes_[i].c_str()));
      used = isAccount(store_, candidate);
    }
    if (!codes_.empty()) must(store_.SetzeOpenJahr(open_.c_str()));
    return used;
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

  // \return 1; -37 when there is no free number
  ZelkResult run(std::string &proposal);

private:
  std::string firstOfTable() const;
  ZelkResult after(const std::string &greatest, std::string &proposal);
  ZelkResult gap(std::string &proposal);
};

ZelkResult Search::run(std::string &proposal) {
  const In accounts{store, FileNumber(table), kWaitForWriter};
  const auto last = bounded() ? atMost<DATENBANK>(accounts, to) : vldb98::last<DATENBANK>(accounts);
  others.read();
  const std::string greatest = last ? vlfn98::accountOf(table, *last).number : "";
  if (last && !(bounded() && greatest < padded(from))) return after(std::string(vlba98::trimmed(greatest)), proposal);
  proposal = bounded() ? from : firstOfTable();
  return others.use(proposal) ? after(std::string(proposal), proposal) : ZELK_OK;
}

// The first number of an empty table. Personal accounts have one digit more than the general ledger.
std::string Search::firstOfTable() const {
  int stored = store.HoleFista().Kontolaenge;
  size_t length = stored < 1 ? 4 : size_t(stored);
  if (table == kSachkonto) return std::string(std::min(length, kWidth) - 1, '0') + '1';
  return std::string(table == kDebitor ? "1" : "7").append(std::min(length + 1, kWidth) - 1, '0');
}

ZelkResult Search::after(const std::string &greatest, std::string &proposal) {
  size_t lastOther = greatest.find_last_not_of("0123456789");
  std::string prefix = lastOther == std::string::npos ? "" : greatest.substr(0, lastOther + 1);
  int64_t number = std::atoll(greatest.c_str() + prefix.size());
  // After letters the search begins with the number itself, which then is written without its leading zeros.
  if (prefix.empty()) ++number;
  for (;; ++number) {
    std::string digits = number ? std::to_string(number) : "";
    if (digits.size() > kWidth) return ZELKERR_Ueberlauf;
    std::string candidate = prefix.substr(0, kWidth - digits.size()) + digits;
    if (!to.empty() && padded(candidate) > padded(to)) return bounded() ? gap(proposal) : ZELKERR_Ueberlauf;
    if (isAccount(store, candidate) || others.use(candidate)) continue;
    proposal = candidate;
    return ZELK_OK;
  }
}

// Between the bounds, themselves excepted.
ZelkResult Search::gap(std::string &proposal) {
  int32_t low = std::atoi(from.c_str()), high = std::atoi(to.c_str());
  if (high < low) std::swap(low, high);
  must(store.Lock(FileNumber(table), nullptr, kWaitMode));
  return inSnapshot(store, [&]() -> ZelkResult {
    for (int32_t number = low + 1; number < high; ++number) {
      const std::string candidate = std::to_string(number);
      if (exists<DATENBANK>({store, FileNumber(table)}, candidate) || others.use(candidate)) continue;
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
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
               std::string proposal;
               Search search{store, vlfn98::KzFromZELKArt(Kontoart), bound(NummerVon), bound(NummerBis)};
               ZelkResult result = search.run(proposal);
               if (result == ZELK_OK) vlba98::strncpy2(NummerOut, vlba98::trimmed(proposal), kWidth + 1);
               return result;
             });
}
