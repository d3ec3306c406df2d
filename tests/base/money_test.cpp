#include "vlba98/decimal.h"
#include "vlba98/money.h"
#include "vlba98/text.h"

#include "longhand.h"
#include "random.h"

#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>

using namespace vlba98;
using namespace test;

namespace {

constexpr auto maxInt64 = std::numeric_limits<std::int64_t>::max();
constexpr auto minInt64 = std::numeric_limits<std::int64_t>::min();

std::string internalForm(std::int64_t hundredths) {
  char text[13] = "unwritten";
  formatMoney(hundredths, text);
  return text;
}

std::string shown(const std::optional<std::int64_t> &value) {
  return value ? std::to_string(*value) : "";
}

TEST(MulDiv, AgreesWithLonghand) {
  auto random = generator();
  const std::int64_t corners[] = {
      minInt64,    -maxInt64, -maxMoney,          -3,      -2, -1, 0, 1, 2, 3, 100, 0xffffffff,
      0x100000000, maxMoney,  0x4000000000000000, maxInt64};
  const auto check = [](std::int64_t a, std::int64_t b, std::int64_t c) {
    for (const auto rounding : {Rounding::halfAwayFromZero, Rounding::towardZero}) {
      ASSERT_EQ(shown(mulDiv(a, b, c, rounding)), longhand::mulDiv(a, b, c, rounding)) << a << " * " << b << " / " << c;
    }
  };
  for (const auto a : corners)
    for (const auto b : corners)
      for (const auto c : corners)
        ASSERT_NO_FATAL_FAILURE(check(a, b, c));
  ASSERT_NO_FATAL_FAILURE(check(145'295'143'558'111, 253'921, 2)); // 2^64 - 1/2: rounding carries out of 64 bits
  for (int i = 0; i < 20'000; ++i) {
    const auto a = anyMagnitude(random, maxInt64), b = anyMagnitude(random, maxInt64),
               c = anyMagnitude(random, maxInt64);
    ASSERT_NO_FATAL_FAILURE(check(a, b, c));
    ASSERT_NO_FATAL_FAILURE(check(a, b, b % 500 * 2)); // small even divisors meet exact halves
  }
}

TEST(Money, PercentAgreesWithLonghand) {
  auto random = generator();
  const auto check = [](std::int64_t amount, std::int64_t rate) {
    char rateText[6], net[13], part[13];
    ASSERT_TRUE(formatMoney(rate, rateText, rateWidth));
    ASSERT_TRUE(proz(net, internalForm(amount).c_str(), rateText));
    ASSERT_TRUE(nettoproz(part, internalForm(amount).c_str(), rateText));
    const auto half = Rounding::halfAwayFromZero;
    ASSERT_EQ(shown(parseMoney(net)), longhand::mulDiv(amount, 10'000, 10'000 + rate, half)) << amount << ' ' << rate;
    ASSERT_EQ(shown(parseMoney(part)), longhand::mulDiv(amount, rate, 10'000, half)) << amount << ' ' << rate;
  };
  for (const auto amount : {-maxMoney, maxMoney, std::int64_t{0}})
    for (const auto rate : {0, 1, 700, 1900, 9999})
      ASSERT_NO_FATAL_FAILURE(check(amount, rate));
  for (int i = 0; i < 20'000; ++i)
    ASSERT_NO_FATAL_FAILURE(check(anyMagnitude(random, maxMoney), static_cast<int>(random() % 10'000)));
  for (const auto amount : {-maxMoney, maxMoney}) {
    EXPECT_EQ(percentOf(amount, 100'00), amount);
    EXPECT_EQ(percentOf(amount, 100'01), std::nullopt);
    EXPECT_EQ(netOfGross(amount, -1), std::nullopt);
  }
}

TEST(Money, InternalFormIsReadAndWrittenExactly) {
  const struct {
    std::int64_t value;
    const char *text;
  } cases[] = {{0, "000000000,00"},        {5, "000000000,05"},      {-5, "000000000-05"},
               {-1250, "000000012-50"},    {123450, "000001234,50"}, {maxMoney, "999999999,99"},
               {-maxMoney, "999999999-99"}};
  for (const auto &[value, text] : cases) {
    EXPECT_EQ(internalForm(value), text);
    EXPECT_EQ(parseMoney(text), value) << text;
  }
  EXPECT_EQ(parseMoney("19,00"), 1900);
  EXPECT_EQ(parseMoney("1-05"), -105);
  EXPECT_EQ(parseMoney("000000000-00"), 0);
  for (const char *text : {"", ",00", "0,0", "0000000000,00", "000000000.00", "000000000,0x", "00000000 ,00",
                           "-00000012,50", "000000012,5:", "000000012,5\xB2"})
    EXPECT_EQ(parseMoney(text), std::nullopt) << text;

  char rate[6] = "alt";
  for (const auto value : {std::int64_t{10'000}, std::int64_t{-10'000}, minInt64})
    EXPECT_FALSE(formatMoney(value, rate, rateWidth));
  EXPECT_FALSE(formatMoney(0, rate, 3));
  EXPECT_STREQ(rate, "alt");
  EXPECT_TRUE(formatMoney(-9999, rate, rateWidth));
  EXPECT_STREQ(rate, "99-99");
  EXPECT_EQ(internalForm(maxMoney + 1), "unwritten");
  EXPECT_EQ(internalForm(-maxMoney - 1), "unwritten");
}

TEST(Money, UserAmounts) {
  const struct {
    const char *text;
    int width, allowEmpty, allowNegative;
    const char *internal; ///< null: refused
    const char *rest = "";
  } cases[] = {
      {"1234", 12, 0, 0, "000001234,00"},
      {"1234,5", 12, 0, 0, "000001234,50"},
      {"1.234,50", 12, 0, 0, "000001234,50"},
      {"999.999.999,99", 12, 0, 0, "999999999,99"},
      {"  12,00 ", 12, 0, 0, "000000012,00"},
      {"+12,00", 12, 0, 0, "000000012,00"},
      {"-12,00", 12, 0, 1, "000000012-00"},
      {"12,00-", 12, 0, 1, "000000012-00"},
      {"12-", 12, 0, 1, "000000012-00"},
      {"000000012-50", 12, 0, 1, "000000012-50"},
      {"000000012,50", 12, 0, 0, "000000012,50"},
      {"123456789-", 12, 0, 1, "123456789-00"},
      {"-0,00", 12, 0, 0, "000000000,00"},
      {"", 12, 1, 0, "000000000,00"},
      {"   ", 12, 1, 0, "000000000,00"},
      {nullptr, 12, 1, 0, "000000000,00"},
      {"", 5, 1, 0, "00,00"},
      {"0", 5, 0, 0, "00,00"},
      {"7,7", 5, 0, 0, "07,70"},
      {"99,99", 5, 0, 0, "99,99"},
      {"12-50", 5, 0, 1, "12-50"},

      {"", 12, 0, 1, nullptr, ""},
      {nullptr, 12, 0, 1, nullptr, ""},
      {"-12,00", 12, 1, 0, nullptr, "-12,00"},
      {" 12,00-", 12, 1, 0, nullptr, "12,00-"},
      {"1,2,3", 12, 1, 1, nullptr, ",3"},
      {"1.23", 12, 1, 1, nullptr, "1.23"},
      {"1234.567", 12, 1, 1, nullptr, ".567"},
      {"1.2345", 12, 1, 1, nullptr, "5"},
      {"1234567890", 12, 1, 1, nullptr, "0"},
      {"1.000.000.000", 12, 1, 1, nullptr, "0"},
      {"1,234", 12, 1, 1, nullptr, "4"},
      {" 12,", 12, 1, 1, nullptr, "12,"},
      {",50", 12, 1, 1, nullptr, ",50"},
      {"12 50", 12, 1, 1, nullptr, "50"},
      {"- 12", 12, 1, 1, nullptr, " 12"},
      {"-12,00-", 12, 1, 1, nullptr, "-"},
      {"12,00+", 12, 1, 1, nullptr, "+"},
      {"--12", 12, 1, 1, nullptr, "-12"},
      {"00000012-50", 12, 1, 1, nullptr, "50"},
      {"000000012-5", 12, 1, 1, nullptr, "000000012-5"},
      {"-", 12, 1, 1, nullptr, "-"},
      {"1e3", 12, 1, 1, nullptr, "e3"},
      {"12\t", 12, 1, 1, nullptr, "\t"},
      {"100,00", 5, 1, 1, nullptr, "0,00"},
      {"19%", 5, 1, 1, nullptr, "%"},
      {"1", 13, 1, 1, nullptr, "1"},
  };
  for (const auto &row : cases) {
    SCOPED_TRACE(row.text ? row.text : "(null)");
    char normalised[13] = "unberuehrt";
    const char *rest = nullptr;
    EXPECT_EQ(IsGeld(row.text, row.width, row.allowEmpty, row.allowNegative, normalised, &rest),
              row.internal != nullptr);
    EXPECT_STREQ(normalised, row.internal ? row.internal : "unberuehrt");
    EXPECT_STREQ(rest, row.rest);
  }
  char inPlace[13] = "1.234,5";
  EXPECT_TRUE(IsGeld(inPlace, 12, 0, 0, inPlace));
  EXPECT_STREQ(inPlace, "000001234,50");
}

TEST(Money, Display) {
  const struct {
    const char *internal, *grouped, *plain;
  } cases[] = {{"000000000,00", "0,00", "0,00"},
               {"000000012-50", "-12,50", "-12,50"},
               {"000000999,99", "999,99", "999,99"},
               {"000001234,50", "1.234,50", "1234,50"},
               {"999999999-99", "-999.999.999,99", "-999999999,99"},
               {"", "0,00", "0,00"}};
  for (const auto &[internal, grouped, plain] : cases) {
    char display[moneyDisplaySize], inPlace[moneyDisplaySize];
    EXPECT_TRUE(MakeGeld(display, internal, 1));
    EXPECT_STREQ(display, grouped);
    strncpy2(inPlace, internal);
    EXPECT_TRUE(MakeGeld(inPlace, 0));
    EXPECT_STREQ(inPlace, plain);
  }
  char untouched[moneyDisplaySize] = "12x";
  EXPECT_FALSE(MakeGeld(untouched, 1));
  EXPECT_STREQ(untouched, "12x");
}

TEST(Money, Arithmetic) {
  const auto sum = [](char *result, const char *a, const char *b) {
    char left[13];
    strncpy2(left, a);
    return add2(left, b) && strncpy2(result, left, sizeof left);
  };
  const auto toFive = [](char *result, const char *a, const char *) {
    char amount[13];
    strncpy2(amount, a);
    return RundeAuf5(amount) && strncpy2(result, amount, sizeof amount);
  };
  const struct {
    bool (*operation)(char *, const char *, const char *);
    const char *a, *b, *result; ///< null: refused
  } cases[] = {
      {sum, "000000001,50", "000000002-25", "000000000-75"},
      {sum, "999999999,99", "000000000,01", nullptr},
      {sum, "999999999-99", "000000000-01", nullptr},
      {sum, "", "  ", "000000000,00"},
      {sub, "000000010,00", "000000009,99", "000000000,01"},
      {sub, "000000010,00", "10,00", "000000000,00"},
      {sub, "000000010,00", "000000010,01", nullptr},
      {subnegativ, "000000010,00", "000000010,01", "000000000-01"},
      {subnegativ, "999999999-99", "000000000,01", nullptr},
      {mul, "000000003,33", "000000000,50", "000000001,67"},
      {mul, "000000003-33", "000000000,50", "000000001-67"},
      {mul, "010000000,00", "99,99", "999900000,00"},
      {mul, "010000000,00", "000000100,00", nullptr},
      {mul, "999999999,99", "999999999,99", nullptr},
      {div, "000000001,00", "000000003,00", "000000000,33"},
      {div, "000000002-00", "000000003,00", "000000000-67"},
      {div, "999999999,99", "999999999-99", "000000001-00"},
      {div, "999999999,99", "000000000,01", nullptr},
      {div, "000000001,00", "000000000,00", nullptr},
      {proz, "000000119-00", "19,00", "000000100-00"},
      {proz, "000000001,00", "000000100-00", nullptr},
      {proz, "999999999,99", "99-99", nullptr},
      {nettoproz, "999999999,99", "000000100,01", nullptr},
      {nettoproz, "1.000,00", "19,00", nullptr},
      {nettoproz, "000001000,00", "19%", nullptr},
      {toFive, "000000001,02", "", "000000001,00"},
      {toFive, "000000001,03", "", "000000001,05"},
      {toFive, "000000001-02", "", "000000001-00"},
      {toFive, "000000001-03", "", "000000001-05"},
      {toFive, "000000000-02", "", "000000000,00"},
      {toFive, "999999999,97", "", "999999999,95"},
      {toFive, "999999999,98", "", nullptr},
  };
  for (const auto &[operation, a, b, result] : cases) {
    SCOPED_TRACE(testing::Message() << &operation - &cases[0].operation << ": " << a << " , " << b);
    char separate[13] = "unberuehrt", aliased[13];
    EXPECT_EQ(operation(separate, a, b), result != nullptr);
    EXPECT_STREQ(separate, result ? result : "unberuehrt");
    strncpy2(aliased, a);
    EXPECT_EQ(operation(aliased, aliased, b), result != nullptr);
    EXPECT_STREQ(aliased, result ? result : a);
  }
}

TEST(Money, ComparisonsAndConversions) {
  EXPECT_TRUE(GeldIsGreater("000000000-01", "000000000-02"));
  EXPECT_FALSE(GeldIsGreater("000000000-00", "000000000,00"));
  EXPECT_FALSE(GeldIsGreater("19,00", "000000019,00"));
  EXPECT_FALSE(GeldIsGreater("viel", "000000000-01"));
  EXPECT_EQ(GeldToDouble("000000012-50"), -12.5);
  for (const char *text :
       {static_cast<const char *>(nullptr), "", "   ", "0", "000", "00,00", "000000000,00", "000000000-00"})
    EXPECT_TRUE(IsNull(text)) << text;
  for (const char *text : {"1", "000000000,01", "000000000-01", "-", "x"})
    EXPECT_FALSE(IsNull(text)) << text;

  std::int64_t currency = 7;
  EXPECT_FALSE(GeldToCurrency(currency, "12"));
  EXPECT_EQ(currency, 7);
  const struct {
    std::int64_t currency;
    const char *text; ///< null: refused
  } cases[] = {{49, "000000000,00"},
               {50, "000000000,01"},
               {-50, "000000000-01"},
               {-49, "000000000,00"},
               {maxMoney * 100 + 49, "999999999,99"},
               {maxMoney * 100 + 50, nullptr},
               {minInt64, nullptr}};
  for (const auto &[value, text] : cases) {
    char result[13] = "unberuehrt";
    EXPECT_EQ(CurrencyToGeld(result, value), text != nullptr) << value;
    EXPECT_STREQ(result, text ? text : "unberuehrt");
    if (!text) continue;
    EXPECT_TRUE(GeldToCurrency(currency, text));
    EXPECT_LE(std::abs(currency - value), 50);
  }
}

TEST(Decimal, IsExactUpToItsLimits) {
  static_assert(!std::is_constructible_v<decimal, double> && !std::is_constructible_v<decimal, float>);
  decimal total("000000012-50");
  EXPECT_EQ(total.get_i64currency(), -125'000);
  EXPECT_EQ(total.get__decimal(), (decimal::parts{125'000, 0, 0, 4, true}));
  EXPECT_EQ(total.get_double(), -12.5);
  total += decimal(12);
  total -= -decimal("0,50");
  EXPECT_TRUE(total.is_null());
  EXPECT_FALSE(total.get__decimal().negative);
  EXPECT_TRUE(decimal(" ").is_null() && decimal("").is_null());
  EXPECT_TRUE(decimal(-1) < decimal(0) && decimal(0) >= decimal(0) && decimal(1) != decimal(-1));
  EXPECT_EQ(decimal(3) - decimal("3,01"), decimal("000000000-01"));
  total = decimal(5);
  total.swap_sign();
  EXPECT_EQ(total, decimal(-5));

  decimal least, greatest(decimal(922'337'203'685'477));
  least.set_i64currency(minInt64);
  EXPECT_EQ(least.get__decimal(), (decimal::parts{0, 0x80000000, 0, 4, true}));
  EXPECT_THROW(-least, std::overflow_error);
  EXPECT_THROW(least -= decimal("0,01"), std::overflow_error);
  EXPECT_THROW(greatest += decimal(1), std::overflow_error);
  EXPECT_EQ(greatest.get_i64currency(), 9'223'372'036'854'770'000);
  EXPECT_THROW(decimal(922'337'203'685'478), std::overflow_error);
  EXPECT_THROW(decimal("12"), std::invalid_argument);
}

} // namespace
