/// The state of a calling thread.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <vector>

#include "store/store.h"

namespace postings {
struct Construction;
}

namespace frame {

/// No shared fetch is running.
constexpr int32_t kNoFetch = -1;

/// The fetch that families of the shared kind have in common. The number of the data kind is the store's table number,
/// so that a fetch function tells its own fetch from another one.
struct SharedFetch {
  int32_t kind = kNoFetch;
  bool pending = false;        ///< record holds the next one to deliver
  vldb98::FileNumber file = 0; ///< table and key of the walk
  vldb98::DATENBANK record{};
  int32_t client = 0;
  char year[3] = ""; ///< open fiscal year of the walk
  // Of a walk over the cost centres of one dimension.
  int32_t dimension = 0;
  char reference[8] = ""; ///< blank-padded; empty: whatever theirs is

  /// Stands on a record that was read in the store's open client and year; nothing of an earlier fetch is left.
  void begin(const vldb98::Store &store, vldb98::FileNumber walked, const vldb98::DATENBANK &first);
  void end() {
    kind = kNoFetch;
    pending = false;
  }
};

/// What a fetch of open or historical items is limited to, beside the shared fetch.
struct ItemSelection {
  enum class By : uint8_t { Nothing, Account, Document, OpenItem, Date };
  By by = By::Nothing;
  char value[17] = ""; ///< as the field is stored: an account blank-padded, a date reversed
  int lastYear = 0;    ///< historical items: the client's current year, with four digits
};

/// The posting that the batch reading delivered last.
struct DeliveredPosting {
  std::vector<vldb98::SPLIT> lines;
  std::vector<vldb98::KOBU> costs;
  size_t nextLine = 0, nextCost = 0;
  bool any = false;
};

/// A walk through a report structure.
struct StructureWalk {
  bool active = false;
  bool hiddenToo = false;
  int32_t client = 0;
  vldb98::FileNumber file = 0;
  vldb98::AUFBAU line{};       ///< the next one to deliver
  std::set<int32_t> delivered; ///< numbers of the lines so far, hidden ones included
};

/// Created on first need, freed when the thread ends or the library is detached.
struct ThreadContext {
  int32_t fehlermeldungen = 0; ///< messages flag of the thread's last call that takes one
  int32_t selectionOrder = 0;  ///< order chosen last in a selection dialog
  uint32_t clientOption = 0;   ///< option of the last read of client information
  uint32_t clientCursor = 0;   ///< number of the next client of the client list; 0: no such fetch
  SharedFetch fetch;
  ItemSelection itemSelection;
  vldb98::BATCHBUCHUNG batchPosting{}; ///< posting under the cursor of the batch reading
  DeliveredPosting delivered;
  StructureWalk structure;
  std::shared_ptr<postings::Construction> construction; ///< split posting under construction; made on first need

  /// The thread's session, opened on first need; null when the database cannot be opened.
  vldb98::Store *session();

  /// Whether the session has lost its connection, or its file is no longer in its place.
  bool sessionLost() const { return session_ && !session_->usable(); }

  /// Closes the session: what it had begun is rolled back, what it had locked is free.
  void closeSession();

private:
  std::unique_ptr<vldb98::Store> session_;
  vldb98::SessionTrace lost_; ///< of the last session whose connection was lost
  uint32_t generation_ = 0;
};

/// The calling thread's context; null when there is none to be had.
ThreadContext *threadContext();

/// For attach and detach. \return false when the process has no thread-local slot left
bool allocateContextSlot();
void freeContextSlot();
void freeThreadContext();

} // namespace frame
