/// Amounts as the library delivers them in its plain form ("-1234,50"), and how people read them.
#pragma once

#include <cstdint>
#include <string>

namespace zelkctl {

/// Its value in hundredths; 0 for a text that is no amount.
int64_t hundredths(const char *plain);

/// "-1.234,50". A sum may be greater than an amount of the books can.
std::string grouped(int64_t hundredths);

} // namespace zelkctl
