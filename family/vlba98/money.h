/// Money texts: amounts and rates as text in German notation, and exact arithmetic on them.
///
/// Internal form: integer digits with leading zeros, a separator, two decimals. The separator carries the sign: a comma
/// for zero or more, a minus sign below zero. An amount has nine integer digits ("000001234,50", "000000012-50": 12
/// characters, a buffer of 13 bytes), a rate two ("19,00": 5 characters, 6 bytes). Values count in hundredths.
///
/// The German-named functions work on zero-terminated texts. For all of them:
/// - an operand is a text in internal form with one to nine integer digits, so that amounts and rates mix freely; an
///   empty or blank text counts as zero, blanks around are passed over;
/// - the result goes into the first argument, a buffer of 13 bytes that may also be an operand;
/// - rounding is commercial (half away from zero);
/// - true means done; false means refused (an operand is no money text, the result exceeds nine integer digits, or
///   what the function itself names), and the result is untouched.
#pragma once

#include "vlba98/muldiv.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace vlba98 {

inline constexpr std::size_t moneyWidth = 12;            ///< characters of an amount in internal form
inline constexpr std::size_t rateWidth = 5;              ///< characters of a rate in internal form
inline constexpr std::int64_t maxMoney = 99'999'999'999; ///< greatest amount, in hundredths: 999999999,99
inline constexpr std::size_t moneyDisplaySize = 16;      ///< bytes of the longest display: "-999.999.999,99"
inline constexpr char rateZero[rateWidth + 1] = "00,00";

/// The separators of German notation.
constexpr char HoleDezimalTrenner() {
  return ',';
}
constexpr char HoleTausenderTrenner() {
  return '.';
}

// The core on hundredths.

/// The value of a text in internal form, in hundredths. One to nine integer digits, hence 4 to 12 characters.
/// "000000000-00" is zero. \return nothing for any other text, the empty one included
std::optional<std::int64_t> parseMoney(std::string_view internalForm);

/// Writes the amount in internal form: 12 characters and the terminator.
/// \return false, and out untouched, beyond ±maxMoney
bool formatMoney(std::int64_t hundredths, char out[moneyWidth + 1]);

/// Writes the value in the internal form of another width (5 for a rate), 4 to 12 characters and the terminator.
/// \return false, and out untouched, when the value needs more digits or the width is none of these
bool formatMoney(std::int64_t hundredths, char *out, std::size_t width);

// The operands of the next three are hundredths within ±maxMoney; rounding is commercial.

/// The net value of which the gross value is net plus rate percent: gross * 100 / (100 + rate).
/// \return nothing when the rate is -100 percent or the result exceeds ±maxMoney
std::optional<std::int64_t> netOfGross(std::int64_t gross, std::int64_t rate);

/// Rate percent of the net value: net * rate / 100.
/// \return nothing when the result exceeds ±maxMoney
std::optional<std::int64_t> percentOf(std::int64_t net, std::int64_t rate);

/// The value rounded to five hundredths, as Swiss cash amounts are.
std::int64_t roundToFive(std::int64_t hundredths);

// Tests and conversions.

/// Tests an amount or rate as a user or an outside program writes it, and delivers its internal form.
///
/// Accepted are, with blanks around: integer digits, plain ("1234") or in groups of three ("1.234"); one or two
/// decimals after a comma ("1234,5"); a sign before ("-12", "+12") or a minus after ("12,00-"); and the internal
/// form of exactly that width ("000000012-50"). Refused is everything else, among it embedded blanks, a comma without
/// digits on both sides, and more integer digits than the width has.
///
/// \param text           zero-terminated; null counts as empty
/// \param width          characters of the internal form: 12 for an amount, 5 for a rate (4 to 12 in general)
/// \param allowEmpty     non-zero: an empty or blank text is accepted, as zero
/// \param allowNegative  non-zero: a value below zero is accepted
/// \param normalised     may be null; receives the internal form, width + 1 bytes. May be the text itself. Untouched
///                       when the text is refused
/// \param rest           may be null; receives an empty text when all is well, otherwise the refused remainder of the
///                       text: from the first character that does not belong, or from the start of the number when
///                       it breaks off or its value is refused (of an empty or blank text nothing remains)
bool IsGeld(const char *text, int width, int allowEmpty = 0, int allowNegative = 0, char *normalised = nullptr,
            const char **rest = nullptr);

/// True for a text without a value: null, empty, blank, zeros only ("0", "000") or a money text of value zero.
bool IsNull(const char *text);

/// The amount as a currency integer (the platform's CY type, four implied decimals).
bool GeldToCurrency(std::int64_t &currency, const char *text);

/// The money text of a currency integer, rounded to hundredths.
bool CurrencyToGeld(char *text, std::int64_t currency);

/// Formats for display: no leading zeros, the sign in front, groups of three where grouped is non-zero:
/// "-1.234,50" or "-1234,50". The result needs up to moneyDisplaySize (16) bytes.
bool MakeGeld(char *display, const char *text, int grouped);

/// The same in place; the buffer has moneyDisplaySize bytes.
bool MakeGeld(char *text, int grouped);

/// The amount as a floating-point number, for display and graphics only; a text that is no money text gives 0.
double GeldToDouble(const char *text);

/// True when a is greater than b; false also when one of them is no money text.
bool GeldIsGreater(const char *a, const char *b);

// Arithmetic on money texts.

/// sum += summand.
bool add2(char *sum, const char *summand);

/// result = a - b for amounts that cannot go below zero; a negative difference is refused.
bool sub(char *result, const char *a, const char *b);

/// result = a - b of any sign.
bool subnegativ(char *result, const char *a, const char *b);

/// result = a * b.
bool mul(char *result, const char *a, const char *b);

/// result = a / b; division by zero is refused.
bool div(char *result, const char *a, const char *b);

/// result = the net amount of which gross is net plus percent: 119,00 and 19,00 give 100,00. Refused at -100 percent.
bool proz(char *result, const char *gross, const char *percent);

/// result = percent of net: 100,00 and 19,00 give 19,00.
bool nettoproz(char *result, const char *net, const char *percent);

/// Rounds an amount to five hundredths, in place.
bool RundeAuf5(char *text);

} // namespace vlba98
