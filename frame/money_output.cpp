#include "frame/money_output.h"

#include <cstring>

#include "vlba98/money.h"
#include "vlba98/text.h"

namespace frame {

void formatAmount(int32_t form, char *buffer, const char *internal) {
  if (!buffer) return;
  // What the store delivers is a money text or empty.
  const int64_t value = vlba98::parseMoney(vlba98::trimmed(internal ? internal : "")).value_or(0);
  char digits[vlba98::moneyWidth + 1] = "";
  vlba98::formatMoney(value, digits);
  if (form != kFixedForm && form != kPlainForm) {
    char display[vlba98::moneyDisplaySize];
    vlba98::MakeGeld(display, digits, 1);
    // Hosts were promised this size; an amount that is hard to read is better than bytes after their buffer.
    if (std::strlen(display) >= kAmountSize) vlba98::MakeGeld(display, digits, 0);
    std::memcpy(buffer, display, std::strlen(display) + 1);
    return;
  }
  digits[vlba98::moneyWidth - 3] = vlba98::HoleDezimalTrenner();
  if (form == kFixedForm)
    *buffer++ = value < 0 ? '-' : value > 0 ? '+' : '0';
  else {
    vlba98::KillNull(digits);
    if (value < 0) *buffer++ = '-';
  }
  std::memcpy(buffer, digits, std::strlen(digits) + 1);
}

} // namespace frame
