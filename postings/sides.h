/// Debit and credit of a posting line, so that neither needs code of its own.
#pragma once

#include <cstring>

#include "resources/strings.h"
#include "zelk98/zelk98.h"

namespace postings {

struct Side {
  char (ZELK_TEILBUCHUNG::*account)[8];
  size_t kindOffset;  // lines are packed: a pointer to the member would have to be aligned
  int unknownMessage; // of the first look at the accounts
  ZelkResult wrongCode;
  int wrongMessage;

  int32_t kind(const ZELK_TEILBUCHUNG &line) const {
    int32_t value;
    std::memcpy(&value, reinterpret_cast<const char *>(&line) + kindOffset, sizeof value);
    return value;
  }
};

inline constexpr Side kDebit{&ZELK_TEILBUCHUNG::Sollkonto, offsetof(ZELK_TEILBUCHUNG, Sollart),
                             resources::kSollkontonummerUnzulaessig, ZELKERR_uzl_Sollkontonr,
                             resources::kSollkontoFalsch};
inline constexpr Side kCredit{&ZELK_TEILBUCHUNG::Habenkonto, offsetof(ZELK_TEILBUCHUNG, Habenart),
                              resources::kHabenkontonummerUnzulaessig, ZELKERR_uzl_Habenkontonr,
                              resources::kHabenkontoFalsch};
inline constexpr const Side *kSides[] = {&kDebit, &kCredit};

} // namespace postings
