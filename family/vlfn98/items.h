/// What open and historical items refer to.
#pragma once

#include <cstdint>

#include "store/store.h"

namespace vlfn98 {

/// Marks of an item in OPBELEG.Flags.
enum ItemFlag : int32_t { kPaymentBlocked = 8, kInCollection = 16 };

/// Dunning level of an item whose dunning is blocked.
constexpr int16_t kDunningBlocked = -1;

/// The currency of an item, from its code and currency index (0 the client's, -1 Euro, 1 the code's).
const char *GetWaehrung(const vldb98::FIRMENSTAMM &client, const char *code, int16_t index);

/// The two numbers under which the debt collection keeps an item; both 0 while it is not handed over.
struct CollectionNumbers {
  int32_t claim = 0, costs = 0; ///< the claim itself, the costs of its reminders
};
CollectionNumbers GetInkassoForderungsnummer(const vldb98::OPBELEG &item);

/// The name of a user of the accounting program; empty when there is none of the number.
void readUserName(vldb98::Store &store, int32_t number, char (&name)[41]);

} // namespace vlfn98
