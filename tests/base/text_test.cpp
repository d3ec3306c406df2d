#include "vlba98/date.h"
#include "vlba98/encoding.h"
#include "vlba98/text.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

using namespace vlba98;

namespace {

TEST(Text, EditsInPlace) {
  const auto always = [](void (*edit)(char *)) {
    return [edit](char *text) {
      edit(text);
      return true;
    };
  };
  const auto spaces = [](char *text) { return FillWithSpaces(text, 7); };
  const auto zeros = [](char *text) { return FillWithNull(text, 7); };
  const struct {
    std::function<bool(char *)> edit;
    const char *before, *after; ///< after null: refused, unchanged
  } cases[] = {
      {spaces, "1200", "1200   "},
      {spaces, "", "       "},
      {spaces, "1234567", "1234567"},
      {spaces, "12345678", nullptr},
      {zeros, "12", "0000012"},
      {zeros, "", "0000000"},
      {zeros, "12345678", nullptr},
      {always(KillSpaces), " 12 00 ", "1200"},
      {always(KillSpaces), "   ", ""},
      {always(trimSpaces), " Rot & Blau ", "Rot & Blau"},
      {always(trimSpaces), "   ", ""},
      {always(KillWhiteSpaces), " \t A \r B\n", "A \r B"},
      {always(KillWhiteSpaces), " \t\r\n\v\f", ""},
      {always(KillNull), "000000012-50", "12-50"},
      {always(KillNull), "000000000,00", "0,00"},
      {always(KillNull), "000", "0"},
      {always(KillNull), "100", "100"},
      {always(KillNull), "", ""},
      {IncDecNr, "0099", "0100"},
      {IncDecNr, "1", "2"},
      {IncDecNr, "9999", nullptr},
      {IncDecNr, "", nullptr},
      {IncDecNr, "12 ", nullptr},
      {ReverseDatum, "211146", "461121"},
      {ReverseDatum, "", nullptr},
      {ReverseDatum, "2111461", nullptr},
      {IncMonat, "461121", "461221"},
      {IncMonat, "461231", "470131"},
      {IncMonat, "460131", "460228"},
      {IncMonat, "480131", "480229"},
      {IncMonat, "991231", nullptr},
      {IncMonat, "461131", nullptr},
      {IncMonat, "", nullptr},
  };
  for (const auto &row : cases) {
    SCOPED_TRACE(row.before);
    char text[16];
    strncpy2(text, row.before);
    EXPECT_EQ(row.edit(text), row.after != nullptr);
    EXPECT_STREQ(text, row.after ? row.after : row.before);
  }
}

TEST(Text, CopiesAndReadsWithinBounds) {
  char field[5], guarded[] = "xxx";
  EXPECT_TRUE(strncpy2(field, "1234"));
  EXPECT_STREQ(field, "1234");
  EXPECT_TRUE(FillWithSpaces(field) && FillWithNull(field));
  EXPECT_FALSE(strncpy2(field, "56789"));
  EXPECT_STREQ(field, "5678");
  EXPECT_FALSE(strncpy2(guarded, "1", 0));
  EXPECT_STREQ(guarded, "xxx");

  EXPECT_TRUE(IsZahl("0042"));
  for (const char *text : {"", " 1", "1,0", "-1", "1a", "\xB2"})
    EXPECT_FALSE(IsZahl(text)) << text;
  for (int value = 0; value < 100; ++value) {
    ASSERT_TRUE(itotwo(value, guarded));
    ASSERT_EQ(guarded[2], '\0');
    ASSERT_EQ(twotoi(guarded), value);
  }
  EXPECT_FALSE(itotwo(100, guarded) || itotwo(-1, guarded));
  EXPECT_STREQ(guarded, "99");
  for (const char *text : {"", "1", "a1", "1a", " 1"})
    EXPECT_EQ(twotoi(text), -1) << text;
}

TEST(Date, EveryDayOfTheRange) {
  constexpr int lengths[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  std::int32_t number = 3652; // 1 January 1980: ten years of which 1972 and 1976 had a leap day
  std::string before;
  for (int year = 1980; year <= 2079; ++year) {
    for (int month = 1; month <= 12; ++month) {
      // 2000 is a leap year and no other year of the range is divisible by 100.
      const int length = lengths[month - 1] + (month == 2 && year % 4 == 0);
      ASSERT_EQ(daysInMonth(year, month), length);
      ASSERT_FALSE(isValid({year, month, length + 1}));
      for (int day = 1; day <= length; ++day, ++number) {
        const Date date{year, month, day};
        ASSERT_EQ(toDayNumber(date), number);
        ASSERT_EQ(fromDayNumber(number), date);
        ASSERT_EQ(fromInternal(toInternal(date).data()), date);
        ASSERT_EQ(fromReversed(toReversed(date).data()), date);
        ASSERT_EQ(fromIso(toIso(date).data()), date);
        ASSERT_EQ(parseDate(toExternal6(date).data()), date);
        ASSERT_EQ(parseDate(toDisplay(date).data()), date);
        auto reversed = toInternal(date);
        ASSERT_TRUE(ReverseDatum(reversed.data()));
        ASSERT_EQ(reversed, toReversed(date));
        ASSERT_LT(before, reversed.data());
        before = reversed.data();
      }
    }
  }
  EXPECT_EQ(number, 3652 + 36'525);
  EXPECT_FALSE(fromDayNumber(3651) || fromDayNumber(number) || fromDayNumber(std::int64_t{1} << 40));
  EXPECT_TRUE(isLeapYear(2000) && !isLeapYear(2100) && !isLeapYear(2026));
}

TEST(Date, Texts) {
  const Date date{2026, 11, 2};
  EXPECT_STREQ(toInternal(date).data(), "021146");
  EXPECT_STREQ(toReversed(date).data(), "461102");
  EXPECT_STREQ(toExternal6(date).data(), "021126");
  EXPECT_STREQ(toDisplay(date).data(), "02.11.2026");
  EXPECT_STREQ(toIso(date).data(), "2026-11-02");
  for (const Date &invalid : {Date{2026, 2, 29}, Date{1979, 12, 31}, Date{2080, 1, 1}, Date{2026, 0, 1}, Date{}})
    EXPECT_STREQ(toReversed(invalid).data(), "") << invalid.year;

  for (const char *text : {"021126", "02.11.26", "02.11.2026"})
    EXPECT_EQ(parseDate(text), date) << text;
  EXPECT_EQ(parseDate("010180"), (Date{1980, 1, 1}));
  EXPECT_EQ(parseDate("31.12.79"), (Date{2079, 12, 31}));
  EXPECT_EQ(parseDate("29.02.2000"), (Date{2000, 2, 29}));
  for (const char *text : {"",         "29.02.2026", "310426",      "001126",    "021326",   "31.12.1979", "01.01.2080",
                           "2.11.26",  "02.1.2026",  "02.11.026",   "002.11.26", ".11.26",   "02.11",      "02-11-26",
                           " 021126",  "021126 ",    "02112026",    "02.1.1.26", "+2.11.26", "2026-11-02", "1.1.25",
                           "02.11.2 ", "02.11.",     "02.11.02026", "02.11:26"})
    EXPECT_FALSE(parseDate(text)) << text;
  for (const char *text :
       {"", "2026-11-2", "2026.11-02", "2026-11.02", "2026-02-29", "1979-12-31", "2026-11-0x", "2026-11-020"})
    EXPECT_FALSE(fromIso(text)) << text;
  EXPECT_FALSE(fromInternal("310246") || fromInternal("0211466") || fromReversed("460231") || fromReversed("46 102"));
}

TEST(Date, Steps) {
  const struct {
    Date from;
    int months, days;
    std::optional<Date> byMonths, byDays;
  } cases[] = {
      {{2026, 1, 31}, 1, 1, Date{2026, 2, 28}, Date{2026, 2, 1}},
      {{2028, 3, 31}, -1, -31, Date{2028, 2, 29}, Date{2028, 2, 29}},
      {{2026, 1, 15}, -1, -15, Date{2025, 12, 15}, Date{2025, 12, 31}},
      {{1980, 1, 31}, 1199, 36'494, Date{2079, 12, 31}, Date{2079, 12, 31}},
      {{1980, 1, 31}, 1200, 36'495, std::nullopt, std::nullopt},
      {{1980, 1, 1}, -1, -1, std::nullopt, std::nullopt},
      {{2026, 1, 1}, std::numeric_limits<int>::max(), std::numeric_limits<int>::min(), std::nullopt, std::nullopt},
      {{2026, 2, 29}, 0, 0, std::nullopt, std::nullopt},
  };
  for (const auto &row : cases) {
    SCOPED_TRACE(testing::Message() << toIso(row.from).data() << ' ' << row.months << ' ' << row.days);
    EXPECT_EQ(addMonths(row.from, row.months), row.byMonths);
    EXPECT_EQ(addDays(row.from, row.days), row.byDays);
  }
}

TEST(Encoding, EveryByteThereAndBack) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) {
    all += static_cast<char>(byte);
    // On every offset around the block of eight that the fast path takes.
    for (std::size_t ahead = 0; ahead < 10; ++ahead) {
      const std::string text = std::string(ahead, 'a') + static_cast<char>(byte) + "z";
      ASSERT_EQ(toWindows1252(toUtf8(text)), text) << byte;
    }
  }
  EXPECT_EQ(toWindows1252(toUtf8(all)), all);
  const struct {
    const char *cp1252, *utf8;
  } cases[] = {
      {"\x80", "\u20AC"}, {"\x81\x8D\x8F\x90\x9D", "\u0081\u008D\u008F\u0090\u009D"}, {"\x99", "\u2122"},
      {"\x9F", "\u0178"}, {"M\xFCller & S\xF6hne", "M\u00FCller & S\u00F6hne"},       {"\xA0\xFF", "\u00A0\u00FF"}};
  for (const auto &[cp1252, utf8] : cases)
    EXPECT_EQ(toUtf8(cp1252), utf8);
}

TEST(Encoding, RefusesWhatIsNoUtf8OrNotInTheCodePage) {
  for (const std::string bad :
       {"\x80", "\xC3", "\xC3(", "\xC0\xAF", "\xC1\x81", "\xE2\x82", "\xE2(\xAC", "\xE0\x82\xAC", "\xED\xA0\x80",
        "\xF0\x9F\x98\x80", "\xF0\x82\x82\xAC", "\xFF", "\xC3\xBC\xBC", "\u0080", "\u009F", "\u0100", "\u2190"}) {
    for (std::size_t ahead = 0; ahead < 10; ++ahead) {
      EXPECT_FALSE(toWindows1252(std::string(ahead, 'a') + bad)) << bad;
      EXPECT_FALSE(toWindows1252(std::string(ahead, 'a') + bad + "12345678")) << bad;
    }
  }
}

TEST(Encoding, KeepsWithinItsBuffers) {
  const struct {
    std::string utf8, whole;
  } cases[] = {{"abcdefgh\u00FCxyz", "abcdefgh\xFCxyz"}, {"abcdefghijklmnop", "abcdefghijklmnop"}};
  for (const auto &[utf8, whole] : cases) {
    for (std::size_t cap = 0; cap <= whole.size() + 1; ++cap) {
      std::string out(whole.size() + 4, '#');
      std::size_t length = 99;
      const bool fits = cap >= whole.size();
      EXPECT_EQ(windows1252FromUtf8(utf8.data(), utf8.size(), out.data(), cap, length), fits) << cap;
      EXPECT_LE(length, cap);
      EXPECT_EQ(out, whole.substr(0, length) + std::string(out.size() - length, '#'));
    }
  }
  for (std::size_t bytes = 0; bytes < 3; ++bytes) // a character that the size cuts off
    EXPECT_EQ(toWindows1252(std::string_view("\u20AC", bytes)).has_value(), bytes == 0);
}

} // namespace
