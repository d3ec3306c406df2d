/// What became of a posting whose COMMIT was never answered: only sessions on a server need to ask.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "isam/engine.h"
#include "store/identifier.h"

namespace vldb98 {

class Store;

class Settlement {
public:
  /// Opens another session of the same database, which waits so long for locks; null when it cannot be had.
  using Reopen = std::function<std::unique_ptr<Store>(std::chrono::milliseconds wait)>;

  /// \param patience how long an outcome is asked for
  Settlement(Reopen reopen, std::chrono::milliseconds patience) : reopen_(std::move(reopen)), patience_(patience) {}

  enum class Outcome : uint8_t { Stored, NotStored, Unknown };

  /// \param posting with its identifier \param client it belongs to \param lost the session whose COMMIT it was
  Outcome of(const BATCHBUCHUNG &posting, uint16_t client, const SessionTrace &lost);

private:
  Outcome ask(const BATCHBUCHUNG &posting, uint16_t client, const SessionTrace &lost, std::chrono::milliseconds wait);

  Reopen reopen_;
  std::chrono::milliseconds patience_;
  IdentifierSource numbers_;
};

} // namespace vldb98
