#include "zelkctl/amounts.h"

#include "vlba98/money.h"

namespace zelkctl {

int64_t hundredths(const char *plain) {
  char internal[vlba98::moneyWidth + 1];
  bool amount = vlba98::IsGeld(plain, int(vlba98::moneyWidth), 1, 1, internal);
  return amount ? vlba98::parseMoney(internal).value_or(0) : 0;
}

std::string grouped(int64_t value) {
  std::string digits = std::to_string(value < 0 ? -value : value);
  if (digits.size() < 3) digits.insert(0, 3 - digits.size(), '0');
  digits.insert(digits.size() - 2, ",");
  for (size_t at = digits.size() - 3; at > 3; at -= 3)
    digits.insert(at - 3, ".");
  return (value < 0 ? "-" : "") + digits;
}

} // namespace zelkctl
