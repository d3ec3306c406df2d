/// Client master data and fiscal years.
#pragma once

#include <cstdint>

#include "store/store.h"
#include "vlba98/date.h"

namespace vlfn98 {

/// A posting option of a client (FIRMENSTAMM.Optionen): tax and net amounts are rounded to five hundredths.
constexpr int32_t kRoundToFive = 0x2000;

/// Opens a client by its number and reads its master record into the store's open client.
/// \return 1; -5 ZELKERR_uzl_Mandnr for a number that is not in use; -56 ZELKERR_alter_Mandant, -103
///         ZELKERR_neuerer_Mandant for data of another program version
int32_t HoleMandantenDaten(vldb98::Store &store, int64_t client);

/// Whether a day lies in a fiscal year of the open client that exists and is not closed. If so, that year becomes the
/// open one, so that its accounts are meant.
/// \param closedToo closed fiscal years count as bookable
bool IsBuchjahr(vldb98::Store &store, const vlba98::Date &day, bool closedToo = false);

} // namespace vlfn98
