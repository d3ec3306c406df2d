// Exchange rates as text and in the books, and conversion against reckoning on paper.
#include "vlfn98/currency.h"

#include "base/longhand.h"
#include "base/random.h"
#include "store/typed.h"
#include "support/books.h"
#include "vlba98/money.h"

namespace test {
namespace {

using namespace vldb98;
using namespace vlfn98;

TEST(ExchangeRate, TextsThatAreNone) {
  for (const char *text : {"", ",", "1,", ",5", "0", "0,000000", "-1,05", "1.05", "1,1234567", "1234567890", "1,05 ",
                           " 1,05", "1,0,5", "1,0x", "12345678,1234", "1e3"})
    EXPECT_EQ(parseRate(text), std::nullopt) << text;
}

TEST(ExchangeRate, TextsAndMillionths) {
  const struct {
    const char *text;
    int64_t millionths;
    const char *written;
  } rows[] = {{"1,0745", 1'074'500, "1,0745"},
              {"1", 1'000'000, "1,00"},
              {"0,5", 500'000, "0,50"},
              {"0,848176", 848'176, "0,848176"},
              {"0,000001", 1, "0,000001"},
              {"1,100000", 1'100'000, "1,10"},
              {"007,5", 7'500'000, "7,50"},
              {"999999999", 999'999'999'000'000, "999999999,00"},
              {"12345678,125", 12'345'678'125'000, "12345678,125"}};
  for (const auto &row : rows) {
    EXPECT_EQ(parseRate(row.text), row.millionths) << row.text;
    char text[13];
    formatRate(row.millionths, text);
    EXPECT_STREQ(text, row.written);
    EXPECT_EQ(parseRate(text), row.millionths) << text;
  }
}

TEST(ExchangeRate, ConvertsLikeReckoningOnPaper) {
  auto random = generator();
  auto check = [](int64_t foreign, const ExchangeRate &rate) {
    const std::string exact =
        longhand::mulDiv(foreign, rate.millionths, int64_t{rate.units} * 1'000'000, vlba98::Rounding::halfAwayFromZero);
    const bool fits = !exact.empty() && std::abs(std::stoll(exact)) <= vlba98::maxMoney;
    const auto own = toOwnCurrency(foreign, rate);
    ASSERT_EQ(own ? std::to_string(*own) : "", fits ? exact : "")
        << foreign << " at " << rate.millionths << " for " << rate.units;
  };
  for (int64_t foreign : {int64_t{0}, int64_t{1}, vlba98::maxMoney, -vlba98::maxMoney})
    for (int64_t millionths : {int64_t{1}, int64_t{1'000'000}, int64_t{1'000'001}, int64_t{999'999'999'000'000}})
      for (int32_t units : {1, 1'000, INT32_MAX})
        ASSERT_NO_FATAL_FAILURE(check(foreign, {millionths, units}));
  for (int i = 0; i < 20'000; ++i) {
    const int64_t millionths = 1 + std::abs(anyMagnitude(random, 999'999'999'000'000));
    const int32_t units = std::array{1, 1, 10, 100, 1'000}[random() % 5];
    ASSERT_NO_FATAL_FAILURE(check(anyMagnitude(random, vlba98::maxMoney), {millionths, units}));
  }
  EXPECT_EQ(toOwnCurrency(1'000'00, {547'999, 100}), 5'48);
  EXPECT_EQ(toOwnCurrency(50, {1'010'000, 1}), 51); // 0,505
  EXPECT_EQ(toOwnCurrency(-50, {1'010'000, 1}), -51);
}

class Rates : public Books {
protected:
  /// "rate/units" on a day; "none"; "failed".
  std::string on(const char *currency, const char *day) try {
    const auto rate = findRate(*store, currency, day);
    return rate ? std::to_string(rate->millionths) + "/" + std::to_string(rate->units) : "none";
  } catch (const StoreFailed &) {
    return "failed";
  }
  void SetUp() override {
    uint8_t found = 0;
    store = session();
    ASSERT_TRUE(store->SetzeFista(1, found) && found);
  }
  std::unique_ptr<Store> store;
};

TEST_F(Rates, OfADayAreTheLatestUpToIt) {
  const struct {
    const char *currency, *day, *rate;
  } rows[] = {{"USD", "450102", "970000/1"}, {"USD", "450331", "970000/1"}, {"USD", "450401", "926800/1"},
              {"USD", "991231", "861000/1"}, {"USD", "450101", "none"},     {"JPY", "460630", "548000/100"},
              {"CHF", "450101", "none"},     {"EUR", "460630", "none"},     {"JPZ", "460630", "none"},
              {"ZZZ", "460630", "none"},     {"", "460630", "none"}};
  for (const auto &row : rows)
    EXPECT_EQ(on(row.currency, row.day), row.rate) << row.currency << " on " << row.day;
}

TEST_F(Rates, AreStoredOncePerDay) {
  storeRate(*store, "GBP", "460315", {1'154'321, 10});
  EXPECT_EQ(on("GBP", "460315"), "1154321/10");
  EXPECT_EQ(on("GBP", "460314"), "none");
  storeRate(*store, "GBP", "460315", {2'000'000, 1});
  EXPECT_EQ(on("GBP", "461231"), "1154321/10") << "somebody was quicker";
  storeRate(*store, "GBP", "460316", {2'000'000, 1});
  EXPECT_EQ(on("GBP", "461231"), "2000000/1");
  uint8_t found = 0;
  ASSERT_TRUE(store->SetzeFista(2, found) && found);
  EXPECT_EQ(on("GBP", "461231"), "none");
}

TEST_F(Rates, ThatAreDamagedAreNoneToReckonWith) {
  for (const auto &[text, units] : {std::pair{"1,2,3", 1}, {"0,00", 1}, {"", 1}, {"1,25", 0}, {"1,25", -1}}) {
    DATENBANK record{};
    put(record.Kurse.Waehrung, "QQQ");
    put(record.Kurse.Datum, "460101");
    put(record.Kurse.Kurs, text);
    record.Kurse.Einheiten = units;
    ASSERT_TRUE(store->Insert(record, kKurse));
    EXPECT_EQ(on("QQQ", "460101"), "failed") << text << " for " << units;
    ASSERT_TRUE(store->Delete(kKurse));
  }
}

} // namespace
} // namespace test
