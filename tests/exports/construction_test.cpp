// A split posting that is built piece by piece: its states, what comes between its pieces, and its extra values.
#include "support/drafts.h"

namespace test {
namespace {

using namespace vldb98;

class Construction : public PostingBooks {
protected:
  static ZelkResult start(int32_t client = 1, const char *currency = "", const char *date = "210126",
                          const char *valueDate = "") {
    return ZELK_SplitStart(client, 2, date, "B-1", 0, 0, "", valueDate, currency, 0, "", "");
  }
  static ZelkResult add(const char *debit = "1200", const char *credit = "1000", const char *text = "") {
    return ZELK_SplitEinfuegen(debit, int16_t(kindOf(debit)), credit, 1, "100", "", "", text, 0, "");
  }
  static ZelkResult addEx(const char *ownGross = "90") {
    return ZELK_SplitEinfuegenEx("10070", 4, "3600", 1, "100", ownGross, "", "", "", "", 0, "");
  }
  static ZelkResult addCost(const char *centre = "200") {
    return ZELK_SplitKobuEinfuegen(centre, "", 0, "100", nullptr, nullptr, "", "");
  }
  static ZelkResult end(int32_t insert = 1) { return ZELK_SplitEnde(insert, 1); }
  std::vector<StoredPosting> stored(int32_t client = 1) { return storedPostings(*other_, client, 2); }
};

TEST_F(Construction, Calls) {
  using Calls = std::vector<std::pair<std::function<ZelkResult()>, ZelkResult>>;
  auto plain = [] { return add(); };
  auto cost = [] { return addCost(); };
  auto ex = [] { return addEx(); };
  auto begin = [] { return start(); };
  auto swiss = [] { return start(2, "EUR"); };
  auto insert = [] { return end(1); };
  auto discard = [] { return end(0); };
  const struct {
    const char *name;
    Calls calls;
    std::vector<size_t> lines; // of the postings that are there then
  } rows[] = {
      {"idle", {{plain, -40}, {cost, -40}, {ex, -40}, {insert, -40}, {discard, 1}, {insert, -40}}, {}},
      {"nothing added", {{begin, 1}, {insert, -25}, {insert, -40}}, {}},
      {"inserted once", {{begin, 1}, {plain, 1}, {plain, 1}, {insert, 1}, {insert, -40}, {plain, -40}}, {2}},
      {"discarded", {{begin, 1}, {plain, 1}, {discard, 1}, {insert, -40}}, {}},
      {"restarted", {{begin, 1}, {plain, 1}, {plain, 1}, {begin, 1}, {plain, 1}, {insert, 1}}, {1}},
      {"cost before a line", {{begin, 1}, {cost, -40}, {plain, 1}, {insert, 1}}, {1}},
      {"refused", {{begin, 1}, {plain, 1}, {cost, 1}, {insert, -24}, {insert, -40}, {plain, -40}}, {}},
      {"costs of the refused one", {{begin, 1}, {plain, 1}, {insert, 1}}, {1}},
      {"wrong client", {{[] { return start(99); }, 1}, {ex, -5}, {plain, 1}, {insert, -5}}, {}},
      {"own amounts elsewhere", {{begin, 1}, {ex, -70}, {plain, 1}, {insert, 1}}, {1}},
      {"mixed", {{swiss, 1}, {ex, 1}, {plain, 1}, {insert, -26}, {insert, -40}}, {}},
      {"mixed the other way", {{swiss, 1}, {plain, 1}, {ex, 1}, {insert, -26}}, {}},
      {"mixed and discarded", {{swiss, 1}, {plain, 1}, {ex, 1}, {discard, -26}, {swiss, 1}, {ex, 1}, {insert, 1}}, {1}},
      {"wrong date", {{[] { return start(1, "", "30.02.2026"); }, 1}, {plain, 1}, {insert, -11}}, {}}};
  for (const auto &row : rows) {
    size_t before = stored(1).size(), beforeSwiss = stored(2).size();
    for (size_t i = 0; i < row.calls.size(); ++i)
      EXPECT_EQ(row.calls[i].first(), row.calls[i].second) << row.name << ", call " << i;
    std::vector<size_t> lines;
    for (auto [client, from] : {std::pair{1, before}, {2, beforeSwiss}})
      for (auto all = stored(client); from < all.size(); ++from)
        lines.push_back(all[from].lines.size());
    EXPECT_EQ(lines, row.lines) << row.name;
    EXPECT_TRUE(nothingLocked(*other_, 1) && nothingLocked(*other_, 2)) << row.name;
  }
  setting("MFIBU", "Edition", "Basis");
  EXPECT_EQ(start() + add(), 2);
  EXPECT_EQ(addCost(), ZELKERR_uzl_Kostenrechnung);
  EXPECT_EQ(end(), ZELK_OK);
}

TEST_F(Construction, TakesWhatFits) {
  std::string fifty(50, 'x'), cut = fifty.substr(0, 35);
  ASSERT_EQ(ZELK_SplitStart(1, 2, "21.01.2026", fifty.c_str(), 0, 0, fifty.c_str(), "01.02.2026", nullptr, 0, nullptr,
                            (fifty + "yz").c_str()),
            ZELK_OK);
  for (int i = 0; i < 15; ++i)
    ASSERT_EQ(add("1200", "1000", fifty.c_str()), ZELK_OK);
  // A record holds ten lines, even while the thread has more of them.
  ZELK_SPLITBUCHUNG record = validSplit(10);
  record.Teilbuchungsanzahl = 15;
  EXPECT_EQ(ZELK_SplitBuchungEinfuegen(&record, 0), ZELKERR_uzl_Teilbuchungsanzahl);
  ASSERT_EQ(end(), ZELK_OK);
  StoredPosting all = stored().back();
  EXPECT_STREQ(all.posting.Belegdatum, "460121");
  EXPECT_STREQ(all.posting.Valutadatum, "460201");
  EXPECT_EQ(all.posting.Belegnummer, fifty.substr(0, 16));
  EXPECT_EQ(postingsOf(1, 2).back().DMSID, fifty);
  ASSERT_EQ(all.lines.size(), 15u);
  for (const SPLIT &line : all.lines)
    EXPECT_EQ(line.Text, cut);
}

TEST_F(Construction, OtherPostingsComeBetween) {
  Draft single{1, 3, {{"4120", "1200", "5", "", "", {}, 1}}}, refused{1, 99, {{"1200", "1000"}}};
  ASSERT_EQ(start(), 1);
  ASSERT_EQ(add("4120"), 1);
  ASSERT_EQ(addCost("200"), 1);
  ZELK_SetAnbuBewegungsart(5);
  EXPECT_EQ(insertWhole(single), ZELK_OK);
  EXPECT_EQ(insertWhole(refused), ZELKERR_uzl_Stapelnr);
  ASSERT_EQ(add("4130"), 1);
  ASSERT_EQ(addCost("300"), 1);
  ZELK_SetAnbuBewegungsart(6);
  EXPECT_EQ(insertWhole(single, 0), ZELK_OK);
  ZELK_SetDmsID(7);
  recorder.takeText();
  ASSERT_EQ(end(), 1) << recorder.takeText();
  StoredPosting all = stored().back();
  EXPECT_EQ(costsOf(all, 0) + ' ' + costsOf(all, 1), "200:100,00/100,00% 300:100,00/100,00%");
  EXPECT_EQ(all.lines[0].Bewegungsart + all.lines[1].Bewegungsart, 0) << "such values end with another posting";
  EXPECT_EQ(+all.lines[1].DMSNr, 7);
  EXPECT_EQ(costsOf(storedPostings(*other_, 1, 3).back()), "300:2,75/55,00% 410:1,50/30,00% 500:0,75/15,00%");
  // Own amounts end with it as well; those that come later stay with their line.
  ASSERT_EQ(start(2, "EUR"), 1);
  ASSERT_EQ(addEx("90"), 1);
  EXPECT_EQ(insertWhole(single), ZELK_OK);
  ASSERT_EQ(addEx("80"), 1);
  ASSERT_EQ(end(), 1);
  all = stored(2).back();
  EXPECT_EQ(plain(all.lines[0].Brutto) + ' ' + plain(all.lines[1].Brutto), "93,08 80,00");
}

TEST_F(Construction, OwnAmountsReachTheLine) {
  static const struct {
    const char *debit, *credit, *gross, *rate, *ownGross, *ownTax;
    std::string outcome;
    const char *currency = "EUR";
  } rows[] = {{"10070", "3200", "100", "8,1", "93", "6,97", "93,00-6,97 = 100,00-7,50 at /0"},
              {"10070", "3200", "100", "8,1", "93", "", "93,00-6,97 = 100,00-7,50 at /0"},
              {"10070", "3200", "-100", "8,1", "-93", "-6,97", "-93,00--6,97 = -100,00--7,50 at /0"},
              {"6200", "70060", "50", "8,1", "46,50", "1,74", "46,50-1,74 = 50,00-1,90 at /0"},
              {"10070", "3600", "0", "", "1,25", "", "1,25-0,00 = 0,00-0,00 at /0"},
              // None given: converted. In the client's currency they do not matter.
              {"10070", "3200", "100", "8,1", "", " ", "93,08-6,98 = 100,00-7,50 at 0,9308/1"},
              {"10010", "3200", "100", "8,1", "50", "x", "100,00-7,49", "CHF"},
              {"10010", "3200", "100", "8,1", "50", "20", "100,00-7,49", ""},
              {"10070", "3200", "100", "8,1", "9,3,0", "", "-12 Der Bruttobetrag (EW) ist unzulässig!"},
              {"10070", "3200", "100", "8,1", "93", "6.97", "-14 Der Steuerbetrag (EW) ist unzulässig!"},
              {"10070", "3200", "100", "8,1", "93", "7,50", "-14 Der Steuerbetrag (EW) ist unzulässig!"},
              {"10070", "3200", "100", "8,1", "", "6,97", "-14 Der Steuerbetrag (EW) ist unzulässig!"},
              {"10070", "3200", "100", "", "93", "6,97", "-14 Der Steuerbetrag (EW) ist unzulässig!"},
              {"1200", "1020", "100", "", "93", "1", "-14 Der Steuerbetrag (EW) ist unzulässig!"}};
  for (const auto &row : rows) {
    DraftLine line{row.debit, row.credit, row.gross, row.rate};
    line.ownGross = row.ownGross, line.ownTax = row.ownTax;
    Draft draft{2, 2, {line}, row.currency};
    draft.ex = true;
    std::string outcome = insert(draft, Way::Pieces);
    EXPECT_EQ(outcome == "1" ? conversionOf(last(draft)) : outcome, row.outcome)
        << row.debit << ' ' << row.ownGross << ' ' << row.ownTax;
  }
  // Cost postings add up to the net amount in both currencies.
  Draft draft{
      2, 2, {{"6500", "70060", "108,10", "8,1", "", {{{"10"}, "33,33"}, {{"20"}, "33,33"}, {{"30"}, "33,34"}}}}, "EUR"};
  draft.lines[0].ownGross = "99,99";
  draft.ex = true;
  ASSERT_EQ(insert(draft, Way::Pieces), "1");
  EXPECT_EQ(costsOf(last(draft)), "10:30,83/33,33% 20:30,83/33,33% 30:30,84/33,34%");
}

} // namespace
} // namespace test
