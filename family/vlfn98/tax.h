/// VAT: tax keys, rates, and the split of a gross amount into net amount and tax. Amounts and rates in hundredths.
#pragma once

#include <cstdint>
#include <optional>

#include "store/store.h"

namespace vlfn98 {

/// Which account of a posting bears the tax.
enum class TaxSide : int16_t { None = 0, Credit = 1, Debit = 2 };

struct TaxChoice {
  int16_t key = 0; ///< 0: none
  TaxSide side = TaxSide::None;
};

/// An account that is marked as having no tax key.
constexpr int16_t kNoTaxKey = 32;

/// The tax key of a posting and the side that bears the tax.
/// \param debitKey,creditKey   tax keys of the accounts; 0 or 32: none
/// \param debitKind,creditKind account kinds at the boundary (1, 2, 4, 8)
/// \param swissRules           the client's books are kept under the rules of Switzerland
TaxChoice chooseTaxKey(int16_t debitKey, int16_t creditKey, int32_t debitKind, int32_t creditKind, bool swissRules);

/// Kinds of tax keys (STEUSA.Art).
enum TaxKind : int16_t {
  kTaxFree = 0,
  kOutputTax = 1,
  kInputTax = 2,
  kAcquisition = 3, ///< within the European Union
  kReverseCharge = 4,
};

/// Any of these flags of a tax key: the gross amount holds no tax. Tax-free keys, acquisitions and reverse charge have
/// one.
constexpr int32_t kTaxExcluded = 0x3600;

/// The flags of a tax key, from its kind; 0 where that is none.
int32_t taxFlags(const vldb98::STEUSA &key);

/// The record of a tax key of the open client that is valid on a day.
/// \param reversedDate the document date, reversed
/// \param rate         when the record of that day has another rate: the latest record of the key, from an earlier day
///                     on, that has this one (a delivery before a change of the rate); below 0: whatever its rate
/// \return nothing when the key has no such record
std::optional<vldb98::STEUSA> GetSteusa(vldb98::Store &store, int16_t key, const char *reversedDate, int64_t rate);

/// The deductible share of a tax amount.
int64_t CalcSteuerAnteil(int64_t tax, const vldb98::STEUSA &key);

/// A gross amount taken apart: gross = net + tax, always.
struct TaxSplit {
  int64_t net;
  int64_t tax;
  int64_t rate; ///< 0 where the key excludes tax
  bool keyKept; ///< false: a rate of zero has cleared the tax key
};

/// Takes a gross amount apart.
/// \param given       tax amount that came with the posting; nothing: it is computed
/// \param key         record of the posting's tax key; null: none
/// \param roundToFive round tax and net amount to five hundredths
/// \return nothing when a tax amount that came with the posting gives the net amount another sign than the gross amount
///         has, or when an amount leaves its range
std::optional<TaxSplit> splitTax(int64_t gross, int64_t rate, std::optional<int64_t> given, const vldb98::STEUSA *key,
                                 bool roundToFive);

/// Whether a tax amount that came with a posting fits its gross amount and rate: of the same sign, and within five
/// hundredths of the tax or of its deductible share, which invoices that round line by line keep to.
bool fitsTaxRate(int64_t gross, int64_t rate, int64_t given, const vldb98::STEUSA &key);

} // namespace vlfn98
