// What an insertion will look up, told to a server beforehand: in few steps what the checks read piece by piece. A
// look-up that is missing here costs a step, and nothing else.
#include <algorithm>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "postings/insertion.h"
#include "postings/sides.h"
#include "vlba98/datum.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"

using namespace vldb98;
using vlfn98::Kostenseite;

namespace postings {
namespace {

constexpr size_t kWorthAStep = 2; // look-ups

bool isEmpty(std::string_view text) {
  return vlba98::trimmed(text).empty();
}

// The account that bears a line's costs; null: none, or both.
const char *costTypeOf(const ZELK_TEILBUCHUNG &line, Kostenseite side) {
  return side == Kostenseite::Soll ? line.Sollkonto : side == Kostenseite::Haben ? line.Habenkonto : nullptr;
}

} // namespace

/// Look-ups, each of them once.
class Insertion::LookUps {
public:
  void add(ReadOp op, FileNumber file, const SCHLUESSEL &key) {
    if (known_.emplace(op, file, std::string(key.bytes, sizeof key.bytes)).second) list_.push_back({op, file, key});
  }

  /// An account is looked for in one table after the other, up to that of its kind.
  void addAccount(std::string_view number, int32_t kind) {
    constexpr std::pair<FileNumber, int32_t> tables[] = {
        {kSachkonto, ZELK_SACHKONTO}, {kKreditor, ZELK_KREDITOR}, {kDebitor, ZELK_DEBITOR}};
    const SCHLUESSEL key = KeyBuilder().account(number);
    for (const auto &[file, its] : tables) {
      add(its == kind ? ReadOp::Exact : ReadOp::Exists, file, key);
      if (its == kind) break;
    }
  }

  /// The n-th cost centre of a cost posting, and whether the cost type goes with it.
  void addCentre(const FISTA_EXT &client, const char *costType, int n, std::string_view number) {
    const std::string centre(vlba98::trimmed(number));
    if (centre.empty()) return;
    SCHLUESSEL key;
    const int byNumber = vlfn98::GetKostKontoKey(centre.c_str(), vlfn98::kostDimension(client, n), nullptr, key);
    add(ReadOp::Exact, FileNumber(kKost + byNumber), key);
    if (!costType) return;
    add(ReadOp::Ge, kKombination, KeyBuilder().account(costType));
    add(ReadOp::Exists, kKombination, KeyBuilder().account(costType).account(centre));
  }

  bool tell(Store &store) const { return list_.size() < kWorthAStep || store.ReadAhead(list_); }

private:
  std::set<std::tuple<ReadOp, FileNumber, std::string>> known_;
  std::vector<LookUp> list_;
};

bool Insertion::readAhead() {
  if (!store_.IsUsedEngineSQL()) return true;
  LookUps wanted;
  const FIRMENSTAMM &client = store_.HoleFista();
  wanted.add(ReadOp::Exact, kStapel, KeyBuilder().number(request_.Stapelnummer));
  wanted.add(ReadOp::Exact, kFistaExt, KeyBuilder().number(uint16_t(client.Nummer)));
  if (auto date = vlba98::parseDatum(request_.Belegdatum))
    wanted.add(ReadOp::Le, fileNumber(kGeschaeftsjahr, 1), KeyBuilder().text(vlba98::toReversed(*date).data(), 6));
  if (request_.Zahlungsziel != 0)
    wanted.add(ReadOp::Exact, kZahlziel, KeyBuilder().number(int32_t(request_.Zahlungsziel)));
  auto addAccounts = [&](const ZELK_TEILBUCHUNG &line) {
    for (const Side *side : kSides) {
      char number[8];
      vlba98::strncpy2(number, line.*side->account);
      if (isEmpty(number)) continue;
      vlfn98::KonvertKonto(number, client.Kontolaenge);
      wanted.addAccount(number, side->kind(line));
    }
  };
  for (int32_t i = 0; i < std::min(int32_t(request_.Teilbuchungsanzahl), kRecordLines); ++i)
    addAccounts(request_.Teilbuchung[i]);
  if (construction_) std::for_each(construction_->overflow.begin(), construction_->overflow.end(), addAccounts);
  return wanted.tell(store_);
}

ZelkResult Insertion::readAheadOfAccounts() {
  if (!store_.IsUsedEngineSQL()) return ZELK_OK;
  LookUps wanted;
  const FISTA_EXT *client = extension();
  if (!client) return ZELKERR_Datenbank;
  if (foreign_)
    wanted.add(ReadOp::Le, kKurse,
               KeyBuilder().text(posting_.Waehrung, sizeof(KURSE::Waehrung) - 1).text(posting_.Belegdatum, 6));
  for (const ZELK_TEILBUCHUNG &line : lines_) {
    const Account *accounts[2];
    for (size_t i = 0; i < std::size(accounts); ++i)
      if (ZelkResult result = lookUp(line.*kSides[i]->account, accounts[i]); result != ZELK_OK) return result;
    for (const Account *account : accounts) {
      if (const int16_t key = account->taxKey(); key != 0)
        wanted.add(ReadOp::Le, kSteusa, KeyBuilder().number(key).text(posting_.Belegdatum, 6));
      if (account->term != 0 && request_.Zahlungsziel == 0)
        wanted.add(ReadOp::Exact, kZahlziel, KeyBuilder().number(account->term));
    }
    const Kostenseite side = vlfn98::BestimmeKostenseite(accounts[0]->ledgerAccount(), accounts[1]->ledgerAccount(),
                                                         client->Kostenstellenpflicht);
    const auto at = size_t(&line - lines_.data());
    for (size_t i = 0; construction_ && i < construction_->costs.size(); ++i)
      if (const CostEntry &entry = construction_->costs[i]; entry.line == at)
        for (int n = 0; n < kKostenstellen; ++n)
          wanted.addCentre(*client, costTypeOf(line, side), n, entry.Kostenstelle[n]);
  }
  return wanted.tell(store_) ? ZELK_OK : ZELKERR_Datenbank;
}

bool Insertion::readAheadOfShares(const Line &line, Kostenseite side, const std::vector<KOSCHA_ZEILE> &shares) {
  if (!store_.IsUsedEngineSQL() || shares.empty()) return true;
  const FISTA_EXT *client = extension();
  if (!client) return false;
  LookUps wanted;
  for (const KOSCHA_ZEILE &share : shares) {
    wanted.addCentre(*client, costTypeOf(line.request, side), 0, share.Kostenstelle1);
    wanted.addCentre(*client, costTypeOf(line.request, side), 1, share.Kostenstelle2);
  }
  return wanted.tell(store_);
}

} // namespace postings
