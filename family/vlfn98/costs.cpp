#include "vlfn98/costs.h"

#include <algorithm>
#include <cstring>
#include <limits>

#include "store/typed.h"
#include "vlba98/muldiv.h"
#include "vlba98/text.h"
#include "vlfn98/accounts.h"

using namespace vldb98;

namespace vlfn98 {

int costDimension(const FISTA_EXT &client, int n) {
  const int16_t assigned[kCentresPerPosting] = {
      0, 0, client.Dimension3, client.Dimension4, client.Dimension5, client.Dimension6};
  return assigned[n] != 0 ? assigned[n] : n;
}

std::optional<KOST> IsKostenstelle(Store &store, const char *number, int dimension) {
  SCHLUESSEL key;
  const auto file = FileNumber(kKost + GetKostKontoKey(number, dimension, nullptr, key));
  return find<KOST>({store, file}, key);
}

bool IsKostDateValid(const KOST &centre, const char *reversedDate) {
  return (!*centre.LaufzeitVon || std::strcmp(centre.LaufzeitVon, reversedDate) <= 0) &&
         (!*centre.LaufzeitBis || std::strcmp(reversedDate, centre.LaufzeitBis) <= 0);
}

bool CheckKomb(Store &store, const char *costType, const char *centre) {
  const auto first = atLeast<KOMBINATION>(store, costType);
  const bool limited = first && vlba98::trimmed(first->Kostenart) == vlba98::trimmed(costType);
  return !limited || exists<KOMBINATION>(store, costType, centre);
}

bool IsKoscha(Store &store, int32_t number) {
  return exists<KOSCHA>(store, number);
}

std::vector<KOSCHA_ZEILE> sharesOfTemplate(Store &store, int32_t number) {
  std::vector<KOSCHA_ZEILE> shares;
  const Between all{keyOf(kKoschaZeile, number, std::numeric_limits<int32_t>::min()),
                    keyOf(kKoschaZeile, number, std::numeric_limits<int32_t>::max())};
  forEach<KOSCHA_ZEILE>(store, all, [&](const KOSCHA_ZEILE &share) { shares.push_back(share); });
  return shares;
}

void distribute(int64_t amount, std::span<const int64_t> weights, std::span<int64_t> parts) {
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

CostSide BestimmeKostenseite(const SACHKONTO *debit, const SACHKONTO *credit, bool mandatory) {
  auto bearsCosts = [&](const SACHKONTO *account) {
    return account && (account->Kostenart || (mandatory && account->GuV));
  };
  if (bearsCosts(debit)) return bearsCosts(credit) ? CostSide::Both : CostSide::Debit;
  return bearsCosts(credit) ? CostSide::Credit : CostSide::None;
}

} // namespace vlfn98
