/// Period codes at the boundary.
#pragma once

#include <cstdint>

namespace vlfn98 {

/// Of every evaluation: 1 to 12 are months, then come the four quarters.
constexpr int32_t kFirstQuarter = 13;

/// Of a turnover, after the quarters, in the low bits that the mask leaves: opening and closing values alone, the
/// months without and with them.
constexpr int32_t kPeriodMask = 31;
constexpr int32_t kOpeningOnly = 17, kAllMonths = 18, kClosingOnly = 19, kWholeYear = 20;
/// Flags above: opening and closing values besides, and the months from the first one on.
constexpr int32_t kWithOpening = 32, kWithClosing = 64, kCumulative = 128;

/// Of costs, which have months only: the year, right after the quarters.
constexpr int32_t kYearOfCosts = 17;

} // namespace vlfn98
