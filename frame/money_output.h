/// Amounts for hosts, in the form that they ask for.
#pragma once

#include <cstdint>

namespace frame {

/// Output forms (Ausgabeart), shown for -1234,50.
enum AmountForm : int32_t {
  kFixedForm = 1,   ///< "-000001234,50": 13 characters, led by "-", "+", or "0" for zero
  kPlainForm = 2,   ///< "-1234,50"
  kGroupedForm = 3, ///< "-1.234,50"; without grouping where that would take more than 13 characters
};

/// Bytes that hold an amount in any form, terminator included.
constexpr int kAmountSize = 14;

constexpr bool isAmountForm(int32_t form) {
  return form >= kFixedForm && form <= kGroupedForm;
}

/// Writes an amount in an output form; any form but 1 and 2 is taken for 3.
/// \param buffer   of kAmountSize bytes; null: nothing is written
/// \param internal money text of any width; null and empty count as zero
void formatAmount(int32_t form, char *buffer, const char *internal);

} // namespace frame
