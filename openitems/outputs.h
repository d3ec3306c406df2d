/// The parameters of the two fetches of items, and how an item is delivered to them.
#pragma once

#include <span>

#include "frame/call.h"
#include "store/store.h"

namespace openitems {

/// Where a fetch call delivers its item. The parameters of both fetches, their labels and what fills them come from one
/// table: historical items have all of them, open ones those that no payment is needed for.
class Outputs {
public:
  static constexpr size_t kHistorical = 44, kOpen = 36; ///< parameters of the fetches

  /// \param form     output form of the amounts
  /// \param pointers one for each parameter, in their order; null: not wanted; the form's own is not looked at
  Outputs(int32_t form, std::span<void *const, kHistorical> pointers) : Outputs(true, form, pointers.data()) {}
  Outputs(int32_t form, std::span<void *const, kOpen> pointers) : Outputs(false, form, pointers.data()) {}

  /// For the call protocol.
  std::span<const frame::Parameter> parameters() const { return {parameters_, count_}; }

  /// Whether gross or outstanding amount is wanted in a form that there is not.
  bool formMissing() const;

  /// Reads what the item refers to in other tables, as far as it is wanted. \return false when the store failed
  void lookUp(vldb98::Store &store, const vldb98::DATENBANK &item);

  /// Writes an item, with what was looked up for it.
  /// \param table that of the item
  void write(const vldb98::DATENBANK &item, int table, const vldb98::FIRMENSTAMM &client) const;

private:
  Outputs(bool historical, int32_t form, void *const *pointers);

  frame::Parameter parameters_[kHistorical];
  uint8_t fields_[kHistorical]; // rows of the table, one for each parameter
  void *const *pointers_;
  size_t count_ = 0;
  int32_t form_;
  char document_[51] = "", user_[41] = "";
};

} // namespace openitems
