/// The fetch that families of the shared kind have in common.
#pragma once

#include <any>
#include <cstdint>

#include "store/store.h"

namespace frame {

/// No shared fetch is running.
constexpr int32_t kNoFetch = -1;

/// Where the thread's fetch stands. The number of the data kind is the store's table number, so that a fetch function
/// tells its own fetch from another one.
struct SharedFetch {
  int32_t kind = kNoFetch;
  bool pending = false;        ///< record holds the next one to deliver
  vldb98::FileNumber file = 0; ///< table and key of the walk
  vldb98::DATENBANK record{};
  int32_t client = 0;
  char year[3] = ""; ///< open fiscal year of the walk
  std::any own;      ///< what the family that runs it keeps beside; ends with it

  /// Stands on a record that was read in the store's open client and year; nothing of an earlier fetch is left.
  void begin(const vldb98::Store &store, vldb98::FileNumber walked, const vldb98::DATENBANK &first, std::any kept = {});
  /// The same of a later record of the running fetch, which may lie in another year.
  void moveTo(const vldb98::Store &store, vldb98::FileNumber walked, const vldb98::DATENBANK &next);
  void end() {
    kind = kNoFetch;
    pending = false;
    own.reset();
  }
};

} // namespace frame
