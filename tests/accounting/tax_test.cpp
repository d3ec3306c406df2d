// Tax keys and the reckoning of net amount and tax, against rational arithmetic in plain 64-bit integers.
#include "vlfn98/tax.h"

#include "base/random.h"
#include "support/books.h"
#include "vlba98/money.h"

namespace test {
namespace {

using namespace vldb98;
using namespace vlfn98;

/// p / q to the nearest whole number, halves away from zero. The products that occur stay below 10^16.
int64_t nearest(int64_t p, int64_t q) {
  int64_t magnitude = (2 * (p < 0 ? -p : p) + q) / (2 * q);
  return p < 0 ? -magnitude : magnitude;
}

int64_t toFive(int64_t amount) {
  return 5 * nearest(amount, 5);
}

STEUSA taxKey(int16_t number, int16_t kind, int16_t share) {
  STEUSA key{};
  key.Schluessel = number;
  key.Art = kind;
  key.Anteil = share;
  return key;
}

constexpr auto kNone = std::optional<int64_t>();

std::string shown(const std::optional<TaxSplit> &r) {
  return r ? std::to_string(r->net) + " + " + std::to_string(r->tax) + " at " + std::to_string(r->rate) +
                 (r->keyKept ? " with key" : " without key")
           : "refused";
}

/// The rules once more, written down from the outcome instead of step by step.
std::optional<TaxSplit> expected(int64_t gross, int64_t rate, std::optional<int64_t> given, const STEUSA *key,
                                 bool five) {
  const bool withKey = key && rate != 0;
  const bool excluded = withKey && (key->Art == kTaxFree || key->Art == kAcquisition || key->Art == kReverseCharge);
  int64_t tax = 0;
  if (!excluded && given) {
    tax = five ? toFive(*given) : *given;
  } else if (withKey && !excluded && key->Schluessel != 8) {
    int64_t net = nearest(gross * 10'000, 10'000 + rate);
    if (five) net = toFive(net);
    tax = gross - net;
    if (key->Anteil > 0 && key->Anteil < 100) tax = nearest(tax * key->Anteil, 100);
    if (five) tax = toFive(tax);
  }
  int64_t net = gross - tax;
  const bool signChanged = given && ((gross >= 0 && net < 0) || (gross <= 0 && net > 0));
  const bool fits = std::max(std::abs(net), std::abs(tax)) <= vlba98::maxMoney;
  if (signChanged || !fits) return std::nullopt;
  return TaxSplit{net, tax, excluded ? 0 : rate, withKey};
}

TEST(Tax, IsReckonedLikeExactFractions) {
  auto random = generator();
  auto oneOf = [&](std::initializer_list<int64_t> values) { return values.begin()[random() % values.size()]; };
  auto check = [&](int64_t gross, int64_t rate, std::optional<int64_t> given, const STEUSA *key, bool five) {
    const auto reckoned = splitTax(gross, rate, given, key, five);
    ASSERT_EQ(shown(reckoned), shown(expected(gross, rate, given, key, five)))
        << gross << " at " << rate << (given ? " given " + std::to_string(*given) : "") << (five ? " in fives" : "")
        << (key ? " key " + std::to_string(key->Schluessel) + " kind " + std::to_string(key->Art) + " share " +
                      std::to_string(key->Anteil)
                : "");
    if (reckoned) {
      ASSERT_EQ(reckoned->net + reckoned->tax, gross);
    }
  };
  const STEUSA plain = taxKey(3, kOutputTax, 0), half = taxKey(5, kInputTax, 50);
  for (int64_t gross = -1'000; gross <= 1'000; ++gross)
    for (int64_t rate : {1, 260, 700, 810, 1'900, 9'999})
      for (const STEUSA *key : {&plain, &half})
        for (bool five : {false, true})
          ASSERT_NO_FATAL_FAILURE(check(gross, rate, kNone, key, five));
  for (int i = 0; i < 60'000; ++i) {
    const int64_t gross =
        random() % 50 ? anyMagnitude(random, vlba98::maxMoney) : oneOf({0, 1, -1, vlba98::maxMoney, -vlba98::maxMoney});
    const int64_t rate = random() % 2 ? oneOf({0, 1, 250, 260, 380, 500, 700, 770, 810, 1'600, 1'900, 9'999})
                                      : int64_t(random() % 10'000);
    const STEUSA key = taxKey(int16_t(oneOf({1, 5, 8, 32, 511})), int16_t(oneOf({0, 1, 1, 2, 2, 2, 3, 4})),
                              int16_t(random() % 3 ? 0 : oneOf({-1, 1, 50, 70, 99, 100})));
    std::optional<int64_t> given;
    if (random() % 3 == 0)
      given = random() % 2 ? anyMagnitude(random, vlba98::maxMoney) : nearest(gross, oneOf({1, -1, 2, 5, 20}));
    ASSERT_NO_FATAL_FAILURE(check(gross, rate, given, random() % 8 ? &key : nullptr, random() % 2));
  }
}

TEST(Tax, OfTheBook) {
  const STEUSA output = taxKey(3, kOutputTax, 0), input = taxKey(5, kInputTax, 0), half = taxKey(9, kInputTax, 50),
               eight = taxKey(8, kInputTax, 0), acquisition = taxKey(8, kAcquisition, 0),
               reverse = taxKey(10, kReverseCharge, 0), free = taxKey(1, kTaxFree, 0);
  const struct {
    int64_t gross, rate;
    std::optional<int64_t> given;
    const STEUSA *key;
    bool five;
    const char *result;
  } rows[] = {
      {119'00, 1900, kNone, &output, false, "10000 + 1900 at 1900 with key"},
      {-119'00, 1900, kNone, &output, false, "-10000 + -1900 at 1900 with key"},
      {100'00, 700, kNone, &input, false, "9346 + 654 at 700 with key"},
      {119'00, 1900, kNone, &half, false, "10950 + 950 at 1900 with key"},
      {99'90, 810, kNone, &input, true, "9240 + 750 at 810 with key"}, // 92,41; 7,49 without rounding
      {99'92, 810, kNone, &input, true, "9247 + 745 at 810 with key"}, // 92,43 and so 92,45; 7,47
      {3, 2500, kNone, &output, true, "-2 + 5 at 2500 with key"},
      {100'00, 1900, kNone, &eight, false, "10000 + 0 at 1900 with key"},
      {100'00, 1900, 15'97, &eight, false, "8403 + 1597 at 1900 with key"},
      {100'00, 1900, 19'00, &acquisition, false, "10000 + 0 at 0 with key"},
      {100'00, 1900, kNone, &reverse, false, "10000 + 0 at 0 with key"},
      {100'00, 1900, kNone, &free, false, "10000 + 0 at 0 with key"},
      {100'00, 0, kNone, &output, false, "10000 + 0 at 0 without key"},
      {100'00, 1900, kNone, nullptr, false, "10000 + 0 at 1900 without key"},
      {100'00, 1900, 15'98, &output, true, "8400 + 1600 at 1900 with key"},
      {100'00, 1900, 100'00, &output, false, "0 + 10000 at 1900 with key"},
      {100'00, 1900, 100'01, &output, false, "refused"},
      {-100'00, 1900, -100'01, &output, false, "refused"},
      {0, 1900, 5, &output, false, "refused"},
      {vlba98::maxMoney, 1900, -1, &output, false, "refused"},
      {vlba98::maxMoney + 1, 0, kNone, nullptr, false, "refused"},
  };
  for (const auto &row : rows)
    EXPECT_EQ(shown(splitTax(row.gross, row.rate, row.given, row.key, row.five)), row.result)
        << row.gross << " at " << row.rate;
}

TEST(Tax, ThatIsGivenFitsWithinFiveHundredths) {
  const STEUSA whole = taxKey(5, kInputTax, 0), half = taxKey(9, kInputTax, 50),
               acquisition = taxKey(8, kAcquisition, 0);
  const struct {
    int64_t gross, rate;
    const STEUSA *key;
    int64_t least, greatest; ///< tax amounts that fit: these, those in between, and none beside them
  } rows[] = {{119'00, 1900, &whole, 18'95, 19'05},
              {-119'00, 1900, &whole, -19'05, -18'95},
              {100'00, 700, &whole, 6'49, 6'59},
              {119'00, 1900, &half, 9'45, 9'55},
              {10, 1900, &whole, 0, 7},
              {-10, 1900, &whole, -7, 0},
              {119'00, 1900, &half, 18'95, 19'05},
              {119'00, 0, &whole, 0, 0},
              {100'00, 1900, &acquisition, 15'92, 16'02},
              {100'00, 1900, &acquisition, 18'95, 19'05}};
  for (const auto &row : rows) {
    for (int64_t tax : {row.least, (row.least + row.greatest) / 2, row.greatest})
      EXPECT_TRUE(fitsTaxRate(row.gross, row.rate, tax, *row.key)) << tax;
    for (int64_t tax : {row.least - 1, row.greatest + 1})
      EXPECT_FALSE(fitsTaxRate(row.gross, row.rate, tax, *row.key)) << tax;
  }
}

TEST(TaxKey, AndItsSideForAllAccounts) {
  constexpr int32_t kinds[] = {1, 2, 4, 8};
  // Side by the kind of the debit account (the four words) and of the credit account (the letters of a word).
  struct Rule {
    bool debit, credit; ///< which accounts have a key
    const char *german, *swiss;
  };
  static constexpr Rule rules[] = {
      {false, false, "---- ---- ---- ----", "---- ---- ---- ----"},
      {false, true, "HH-H HH-H HH-H ----", "HHHH HHHH HHHH ----"},
      {true, false, "SSS- SSS- ---- SSS-", "SSS- SSS- SSS- SSS-"},
      {true, true, "---- ---- ---- ----", "---- ---- ---- ----"},
  };
  for (const Rule &rule : rules)
    for (bool swiss : {false, true})
      for (int16_t debit : rule.debit ? std::vector<int16_t>{3, 33, 480} : std::vector<int16_t>{0, 32})
        for (int16_t credit : rule.credit ? std::vector<int16_t>{5, 37, 511} : std::vector<int16_t>{0, 32})
          for (int s = 0; s < 4; ++s)
            for (int h = 0; h < 4; ++h) {
              const char side = (swiss ? rule.swiss : rule.german)[5 * s + h];
              const TaxChoice choice = chooseTaxKey(debit, credit, kinds[s], kinds[h], swiss);
              SCOPED_TRACE(std::to_string(debit) + " " + std::to_string(credit) + " kinds " + std::to_string(kinds[s]) +
                           " " + std::to_string(kinds[h]) + (swiss ? " Swiss" : ""));
              EXPECT_EQ(choice.key, side == 'S' ? debit : side == 'H' ? credit : 0);
              EXPECT_EQ(int(choice.side), side == 'S' ? 2 : side == 'H' ? 1 : 0);
            }
}

TEST(TaxKey, FlagsFollowItsKind) {
  constexpr int32_t flags[] = {0x1000, 1, 2, 0x0400, 0x0200};
  for (int16_t kind = 0; kind < 5; ++kind)
    EXPECT_EQ(taxFlags(taxKey(1, kind, 0)), flags[kind]);
  EXPECT_EQ(taxFlags(taxKey(1, -1, 0)), 0);
  EXPECT_EQ(taxFlags(taxKey(1, 5, 0)), 0);
}

TEST_F(Books, TaxKeyOfADayAndARate) {
  auto store = session();
  struct Row {
    uint16_t client;
    int16_t key;
    const char *day;
    int64_t rate;
    const char *validFrom, *rateText; ///< null: none
  };
  static constexpr Row rows[] = {
      {1, 3, "461121", -1, "410101", "19,00"},    {1, 3, "410101", -1, "410101", "19,00"},
      {1, 3, "401231", -1, "400701", "16,00"},    {1, 3, "400701", -1, "400701", "16,00"},
      {1, 3, "400630", -1, "270101", "19,00"},    {1, 3, "270101", -1, "270101", "19,00"},
      {1, 3, "261231", -1, nullptr, nullptr},     {1, 3, "461121", 19'00, "410101", "19,00"},
      {1, 3, "461121", 16'00, "400701", "16,00"}, {1, 3, "400815", 19'00, "270101", "19,00"},
      {1, 3, "400815", 16'00, "400701", "16,00"}, {1, 3, "400630", 16'00, nullptr, nullptr},
      {1, 3, "461121", 7'00, nullptr, nullptr},   {1, 2, "461121", 19'00, nullptr, nullptr},
      {1, 2, "100101", -1, nullptr, nullptr},     {1, 1, "000101", -1, "000101", "00,00"},
      {1, 1, "461121", 0, "000101", "00,00"},     {1, 9, "461121", -1, "410101", "19,00"},
      {1, 10, "461121", -1, nullptr, nullptr},    {1, 0, "461121", -1, nullptr, nullptr},
      {1, 511, "991231", -1, nullptr, nullptr},   {2, 1, "431231", -1, "380101", "07,70"},
      {2, 1, "440101", -1, "440101", "08,10"},    {2, 1, "461121", 7'70, "380101", "07,70"},
      {2, 8, "461121", -1, nullptr, nullptr},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE("client " + std::to_string(row.client) + " key " + std::to_string(row.key) + " on " + row.day +
                 " at " + std::to_string(row.rate));
    uint8_t found = 0;
    ASSERT_TRUE(store->SetzeFista(row.client, found) && found);
    const auto record = GetSteusa(*store, row.key, row.day, row.rate);
    EXPECT_EQ(record.has_value(), row.rateText != nullptr);
    if (!record || !row.rateText) continue;
    EXPECT_EQ(record->Schluessel, row.key);
    EXPECT_STREQ(record->GueltigAb, row.validFrom);
    EXPECT_STREQ(record->Satz, row.rateText);
  }
  uint8_t found = 0;
  ASSERT_TRUE(store->SetzeFista(1, found));
  EXPECT_EQ(CalcSteuerAnteil(19'01, GetSteusa(*store, 9, "461121", -1).value()), 9'51);
}

} // namespace
} // namespace test
