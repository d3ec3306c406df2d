#include "vlfn98/cost_postings.h"

#include <algorithm>

#include "store/typed.h"
#include "vlba98/money.h"
#include "vlba98/text.h"
#include "vlfn98/costs.h"

using namespace vldb98;

namespace vlfn98 {
namespace {

// The cost centres of a posting that may be the one asked for. However many of them it names, the posting counts once.
class NamedCentres {
public:
  NamedCentres(const FISTA_EXT &client, int32_t dimension) {
    for (int n = 0; n < kCentresPerPosting; ++n)
      counts_[n] = dimension < 0 || dimension >= kDimensions || costDimension(client, n) == dimension;
  }
  template <class Wanted> bool any(const KOSTENBELEG &posting, Wanted &&wanted) const {
    struct Named {
      const char *number, *reference;
    };
    const Named named[kCentresPerPosting] = {
        {posting.Kostenstelle1, posting.Kostref1}, {posting.Kostenstelle2, posting.Kostref2},
        {posting.Kostenstelle3, posting.Kostref3}, {posting.Kostenstelle4, posting.Kostref4},
        {posting.Kostenstelle5, posting.Kostref5}, {posting.Kostenstelle6, posting.Kostref6}};
    for (int n = 0; n < kCentresPerPosting; ++n)
      if (counts_[n] && wanted(std::string(vlba98::trimmed(named[n].number)), vlba98::trimmed(named[n].reference)))
        return true;
    return false;
  }

private:
  bool counts_[kCentresPerPosting];
};

void add(AccountValues &values, const KOSTENBELEG &posting) {
  const int sign = posting.Flags & kLessensCosts ? -1 : 1;
  values.debit += sign * vlba98::parseMoney(posting.Betrag).value_or(0);
  values.euroDebit += sign * vlba98::parseMoney(posting.EuroBetrag).value_or(0);
}

} // namespace

bool IsKostrefActive(Store &store) {
  bool active = false;
  forEach<KOST>(store, [&](const KOST &centre) {
    active = !vlba98::trimmed(centre.Kostref).empty();
    return !active;
  });
  return active;
}

AccountValues sumOfCosts(Store &store, const DateRange &days, const CostSelection &selection) {
  AccountValues values;
  if (days.first > days.last) return values;
  FISTA_EXT client{};
  uint8_t found;
  must(store.GetExtFista(client, found));
  const NamedCentres centres(client, selection.dimension);
  auto counts = [&](const KOSTENBELEG &posting) {
    if (!selection.costType.empty() && vlba98::trimmed(posting.Kostenart) != selection.costType) return false;
    return !selection.costCentres || centres.any(posting, [&](const std::string &number, std::string_view reference) {
      return selection.costCentres->count(number) > 0 && (!selection.reference || reference == *selection.reference);
    });
  };
  constexpr FileNumber byDate = fileNumber(kKostenbeleg, 1);
  auto key = [](const vlba98::Date &day) { return keyOf(byDate, vlba98::toReversed(day).data()); };
  forEach<KOSTENBELEG>({store, byDate}, Between{key(days.first), key(days.last)}, [&](const KOSTENBELEG &posting) {
    if (counts(posting)) add(values, posting);
  });
  return values;
}

AccountValues costsOfCentre(Store &store, const KOST &centre, const DateRange &days) {
  CostSelection selection;
  selection.costCentres = {std::string(vlba98::trimmed(centre.Nr))};
  selection.reference = vlba98::trimmed(centre.Kostref);
  selection.dimension = centre.Dimension;
  return sumOfCosts(store, days, selection);
}

} // namespace vlfn98
