/// Payment terms and due dates.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "store/store.h"
#include "vlba98/date.h"

namespace vlfn98 {

/// A short name as it is stored: without the white space around it, and no longer than its field. \param given may be
/// null
std::string storedShortName(const char *given);

/// Whether the open client has a payment term of the number.
bool IsZahlziel(vldb98::Store &store, int32_t number);

/// The day on which payment is due: the net payment period after the day given; then so many months on as the term
/// names following months; then, where it names a day of the month, that day of the month reached (the last of a
/// shorter one). Without following months a day that has passed is that of the next month. \return nothing when it lies
/// after 2079
std::optional<vlba98::Date> dueDate(const vldb98::ZAHLZIEL &term, const vlba98::Date &from);

/// The due date of a payment term of the open client.
/// \param due receives the reversed date; empty where there is no such term or no such day
void ErmittleZahlungsziel(vldb98::Store &store, int32_t number, const vlba98::Date &from, char (&due)[7]);

} // namespace vlfn98
