#include "vlfn98/costs.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "vlba98/muldiv.h"
#include "vlfn98/accounts.h"

using namespace vldb98;

namespace vlfn98 {

int kostDimension(const FISTA_EXT &client, int n) {
  const int16_t assigned[kKostenstellen] = {
      0, 0, client.Dimension3, client.Dimension4, client.Dimension5, client.Dimension6};
  return assigned[n] != 0 ? assigned[n] : n;
}

int IsKostenstelle(Store &store, const char *number, int dimension, KOST &centre, uint8_t &exists) {
  SCHLUESSEL key;
  const auto file = FileNumber(kKost + GetKostKontoKey(number, dimension, nullptr, key));
  DATENBANK record{};
  exists = 0;
  if (!store.UsedGet(record, key, exists, file)) return 0;
  if (exists) centre = record.Kost;
  return 1;
}

bool IsKostDateValid(const KOST &centre, const char *reversedDate) {
  return (!*centre.LaufzeitVon || std::strcmp(centre.LaufzeitVon, reversedDate) <= 0) &&
         (!*centre.LaufzeitBis || std::strcmp(reversedDate, centre.LaufzeitBis) <= 0);
}

int CheckKomb(Store &store, const char *costType, const char *centre, uint8_t &allowed) {
  DATENBANK first{};
  uint8_t there = 0;
  allowed = 0;
  if (!store.GetGeExt(first, KeyBuilder().account(costType), there, kKombination)) return 0;
  const SCHLUESSEL wanted = KeyBuilder().account(costType).account(centre);
  const bool limited = there && std::memcmp(first.Kombination.Kostenart, wanted.bytes, 7) == 0;
  if (limited) return store.Used(wanted, allowed, kKombination);
  allowed = 1;
  return 1;
}

int IsKoscha(Store &store, int32_t number, uint8_t &exists) {
  return store.Used(KeyBuilder().number(number), exists, kKoscha);
}

int HoleKoscha(Store &store, int32_t number, std::vector<KOSCHA_ZEILE> &shares) {
  shares.clear();
  DATENBANK record{};
  uint8_t there = 0;
  int done =
      store.GetRangeExt(record, KeyBuilder().number(number).number(std::numeric_limits<int32_t>::min()),
                        KeyBuilder().number(number).number(std::numeric_limits<int32_t>::max()), there, kKoschaZeile);
  while (done && there) {
    shares.push_back(record.KoschaZeile);
    done = store.GetNextExt(record, there, kKoschaZeile);
  }
  return done;
}

void verteile(int64_t amount, std::span<const int64_t> weights, std::span<int64_t> parts) {
  int64_t total = 0;
  for (int64_t weight : weights)
    total += std::max<int64_t>(weight, 0);
  int64_t weightSoFar = 0, amountSoFar = 0;
  for (size_t i = 0; i < parts.size(); ++i) {
    weightSoFar += std::max<int64_t>(weights[i], 0);
    // Without any weight the quotient does not exist.
    int64_t upToHere = vlba98::mulDiv(amount, weightSoFar, total, vlba98::Rounding::halfAwayFromZero).value_or(amount);
    parts[i] = upToHere - amountSoFar;
    amountSoFar = upToHere;
  }
}

Kostenseite BestimmeKostenseite(const SACHKONTO *debit, const SACHKONTO *credit, bool mandatory) {
  auto bearsCosts = [&](const SACHKONTO *account) {
    return account && (account->Kostenart || (mandatory && account->GuV));
  };
  if (bearsCosts(debit)) return bearsCosts(credit) ? Kostenseite::Beide : Kostenseite::Soll;
  return bearsCosts(credit) ? Kostenseite::Haben : Kostenseite::Keine;
}

} // namespace vlfn98
