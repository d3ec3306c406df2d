#include "postings/look_ups.h"

#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "vlba98/date.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"

using namespace vldb98;
using vlfn98::CostSide;

namespace postings {
namespace {

constexpr size_t kWorthAStep = 2; // look-ups

// The account that bears a line's costs; null: none, or both.
const char *costTypeOf(const LineInProgress &line, CostSide side) {
  return side == CostSide::Debit ? line.debit.number : side == CostSide::Credit ? line.credit.number : nullptr;
}

/// Look-ups, each of them once.
class LookUps {
public:
  void add(ReadOp op, FileNumber file, const SCHLUESSEL &key) {
    if (known_.emplace(op, file, std::string(key.bytes, sizeof key.bytes)).second) list_.push_back({op, file, key});
  }
  template <class... Values> void add(ReadOp op, FileNumber file, const Values &...values) {
    add(op, file, keyOf(file, values...));
  }

  /// An account is looked for in one table after the other, up to that of its kind.
  void addAccount(std::string_view number, int32_t kind) {
    constexpr std::pair<FileNumber, int32_t> tables[] = {
        {kSachkonto, ZELK_SACHKONTO}, {kKreditor, ZELK_KREDITOR}, {kDebitor, ZELK_DEBITOR}};
    for (const auto &[file, its] : tables) {
      add(its == kind ? ReadOp::Exact : ReadOp::Exists, file, number);
      if (its == kind) break;
    }
  }

  /// The n-th cost centre of a cost posting, and whether the cost type goes with it.
  void addCentre(const FISTA_EXT &client, const char *costType, int n, std::string_view number) {
    const std::string centre(vlba98::trimmed(number));
    if (centre.empty()) return;
    SCHLUESSEL key;
    const int byNumber = vlfn98::GetKostKontoKey(centre.c_str(), vlfn98::costDimension(client, n), nullptr, key);
    add(ReadOp::Exact, FileNumber(kKost + byNumber), key);
    if (!costType) return;
    add(ReadOp::Ge, kKombination, std::string_view(costType));
    add(ReadOp::Exists, kKombination, std::string_view(costType), std::string_view(centre));
  }

  void tell(Store &store) const { must(list_.size() < kWorthAStep || store.ReadAhead(list_)); }

private:
  std::set<std::tuple<ReadOp, FileNumber, std::string>> known_;
  std::vector<LookUp> list_;
};

} // namespace

void tellLookUps(PostingInProgress &posting) {
  if (!posting.store.IsUsedEngineSQL()) return;
  LookUps wanted;
  const FIRMENSTAMM &client = posting.client();
  const PostingHead &head = posting.given.head;
  wanted.add(ReadOp::Exact, kStapel, head.Stapelnummer);
  wanted.add(ReadOp::Exact, kFistaExt, uint16_t(client.Nummer));
  if (const auto date = vlba98::parseDate(head.Belegdatum))
    wanted.add(ReadOp::Le, fileNumber(kGeschaeftsjahr, 1), std::string_view(vlba98::toReversed(*date).data()));
  if (head.Zahlungsziel != 0) wanted.add(ReadOp::Exact, kZahlziel, head.Zahlungsziel);
  for (const PostingLine &given : posting.given.lines) {
    LineInProgress line(0, given);
    for (const Side &side : kSides) {
      LineAccount &account = line.*side.account;
      if (isBlank(account.number)) continue;
      vlfn98::KonvertKonto(account.number, client.Kontolaenge);
      wanted.addAccount(account.number, account.kind);
    }
  }
  wanted.tell(posting.store);
}

void tellLookUpsOfAccounts(PostingInProgress &posting) {
  if (!posting.store.IsUsedEngineSQL()) return;
  LookUps wanted;
  const FISTA_EXT &client = posting.clientExtension();
  const std::string_view day = posting.stored.Belegdatum;
  if (posting.foreign) wanted.add(ReadOp::Le, kKurse, std::string_view(posting.stored.Waehrung), day);
  for (const LineInProgress &line : posting.lines) {
    const SACHKONTO *ledgerAccounts[std::size(kSides)];
    for (size_t i = 0; i < std::size(kSides); ++i) {
      const PostingAccount &account = posting.accounts.find((line.*kSides[i].account).number);
      ledgerAccounts[i] = account.ledgerAccount();
      if (const int16_t key = account.taxKey(); key != 0) wanted.add(ReadOp::Le, kSteusa, key, day);
      if (account.term != 0 && posting.given.head.Zahlungsziel == 0) wanted.add(ReadOp::Exact, kZahlziel, account.term);
    }
    const CostSide side =
        vlfn98::BestimmeKostenseite(ledgerAccounts[0], ledgerAccounts[1], client.Kostenstellenpflicht);
    for (const PostingCost &cost : line.given->costs) {
      int n = 0;
      for (const char *centre : {cost.Kostenstelle1, cost.Kostenstelle2, cost.Kostenstelle3, cost.Kostenstelle4,
                                 cost.Kostenstelle5, cost.Kostenstelle6})
        wanted.addCentre(client, costTypeOf(line, side), n++, centre);
    }
  }
  wanted.tell(posting.store);
}

void tellLookUpsOfShares(PostingInProgress &posting, const LineInProgress &line, CostSide side,
                         const std::vector<KOSCHA_ZEILE> &shares) {
  if (!posting.store.IsUsedEngineSQL() || shares.empty()) return;
  LookUps wanted;
  for (const KOSCHA_ZEILE &share : shares) {
    wanted.addCentre(posting.clientExtension(), costTypeOf(line, side), 0, share.Kostenstelle1);
    wanted.addCentre(posting.clientExtension(), costTypeOf(line, side), 1, share.Kostenstelle2);
  }
  wanted.tell(posting.store);
}

} // namespace postings
