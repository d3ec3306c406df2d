// Cost centres, templates and combinations of the sample books, and the distribution of amounts.
#include "vlfn98/costs.h"

#include <numeric>

#include "base/longhand.h"
#include "base/random.h"
#include "netwr98/capture.h"
#include "support/books.h"
#include "vlba98/money.h"

namespace test {
namespace {

using namespace vldb98;
using namespace vlfn98;

TEST(CostDistribution, IsExact) {
  auto random = generator();
  auto check = [](int64_t amount, const std::vector<int64_t> &weights) {
    std::vector<int64_t> parts(weights.size(), 4711);
    distribute(amount, weights, parts);
    auto positive = [](int64_t sum, int64_t weight) { return sum + std::max<int64_t>(weight, 0); };
    const int64_t total = std::accumulate(weights.begin(), weights.end(), int64_t{0}, positive);
    if (total == 0) {
      std::vector<int64_t> first(weights.size(), 0);
      if (!first.empty()) first[0] = amount;
      ASSERT_EQ(parts, first);
      return;
    }
    int64_t weightSoFar = 0, amountSoFar = 0;
    for (size_t i = 0; i < weights.size(); ++i) {
      SCOPED_TRACE(std::to_string(amount) + ", part " + std::to_string(i));
      weightSoFar = positive(weightSoFar, weights[i]);
      amountSoFar += parts[i];
      ASSERT_EQ(std::to_string(amountSoFar),
                longhand::mulDiv(amount, weightSoFar, total, vlba98::Rounding::halfAwayFromZero));
      // Never further from the exact share than the next whole hundredth, never of the other sign.
      const int64_t magnitude = amount < 0 ? -parts[i] : parts[i];
      const int64_t whole = std::stoll(
          longhand::mulDiv(std::abs(amount), std::max<int64_t>(weights[i], 0), total, vlba98::Rounding::towardZero));
      ASSERT_GE(magnitude, whole);
      ASSERT_LE(magnitude, weights[i] > 0 ? whole + 1 : 0);
    }
    ASSERT_EQ(amountSoFar, amount);
  };
  const int64_t greatest = vlba98::maxMoney;
  for (int64_t amount : {int64_t{0}, int64_t{1}, int64_t{-1}, int64_t{100'00}, greatest, -greatest}) {
    for (const auto &weights : {std::vector<int64_t>{},
                                {5},
                                {1, 1, 1},
                                {0, 0},
                                {-3, 0, -1},
                                {0, 7, -2, 0, 7},
                                std::vector<int64_t>(1'000, greatest),
                                std::vector<int64_t>(1'000, 1)})
      ASSERT_NO_FATAL_FAILURE(check(amount, weights));
  }
  for (int i = 0; i < 1'000; ++i) {
    std::vector<int64_t> weights(1 + random() % 20);
    for (int64_t &weight : weights)
      weight = anyMagnitude(random, greatest) * (random() % 4 ? 1 : -1);
    ASSERT_NO_FATAL_FAILURE(check(anyMagnitude(random, greatest), weights));
  }
}

TEST(CostSide, IsThatOfTheAccountsThatBearCosts) {
  SACHKONTO balance{}, income{}, cost{};
  income.GuV = 1;
  cost.GuV = cost.Kostenart = 1;
  SACHKONTO balanceCost{};
  balanceCost.Kostenart = 1;
  const struct {
    const SACHKONTO *account;
    bool bears, bearsWhenMandatory;
  } accounts[] = {{nullptr, false, false},
                  {&balance, false, false},
                  {&income, false, true},
                  {&cost, true, true},
                  {&balanceCost, true, true}};
  constexpr CostSide sides[2][2] = {{CostSide::None, CostSide::Credit}, {CostSide::Debit, CostSide::Both}};
  for (const auto &debit : accounts)
    for (const auto &credit : accounts) {
      EXPECT_EQ(BestimmeKostenseite(debit.account, credit.account, false), sides[debit.bears][credit.bears]);
      EXPECT_EQ(BestimmeKostenseite(debit.account, credit.account, true),
                sides[debit.bearsWhenMandatory][credit.bearsWhenMandatory]);
    }
}

TEST(CostCentre, RunningTimeHoldsItsFirstAndLastDay) {
  const struct {
    const char *from, *to, *day;
    bool valid;
  } rows[] = {{"", "", "000101", true},
              {"460301", "", "460228", false},
              {"460301", "", "460301", true},
              {"460301", "", "991231", true},
              {"", "460930", "460930", true},
              {"", "460930", "461001", false},
              {"460301", "460930", "460228", false},
              {"460301", "460930", "460301", true},
              {"460301", "460930", "460930", true},
              {"460301", "460930", "461001", false},
              {"460301", "460301", "460301", true}};
  for (const auto &row : rows) {
    KOST centre{};
    put(centre.LaufzeitVon, row.from);
    put(centre.LaufzeitBis, row.to);
    EXPECT_EQ(IsKostDateValid(centre, row.day), row.valid) << row.from << " to " << row.to << " on " << row.day;
  }
}

TEST(CostCentre, DimensionsAreTheClientsOrTheUsualOnes) {
  FISTA_EXT client{};
  for (int n = 0; n < kCentresPerPosting; ++n)
    EXPECT_EQ(costDimension(client, n), n);
  client.Dimension3 = 5;
  client.Dimension5 = 2;
  client.Dimension6 = 3;
  constexpr int assigned[] = {0, 1, 5, 3, 2, 3};
  for (int n = 0; n < kCentresPerPosting; ++n)
    EXPECT_EQ(costDimension(client, n), assigned[n]) << n;
}

class CostBooks : public Books {
protected:
  void SetUp() override { open(1, "46"); }
  void open(uint16_t client, const char *year) {
    uint8_t found = 0;
    if (!store) store = session();
    ASSERT_TRUE(store->SetzeFista(client, found) && found && store->SetzeOpenJahr(year));
  }
  std::unique_ptr<Store> store;
};

TEST_F(CostBooks, CentresOfADimensionAndYear) {
  const struct {
    uint16_t client;
    const char *year, *number;
    int dimension;
    bool exists;
  } rows[] = {{1, "46", "100", 0, true},       {1, "46", "100    ", 0, true}, {1, "46", "100", 1, false},
              {1, "46", "5001", 1, true},      {1, "46", "5001", 0, false},   {1, "46", "NORD", 2, true},
              {1, "46", "600", 0, true},       {1, "45", "600", 0, false},    {1, "46", "", 0, false},
              {1, "46", "100", 70'000, false}, {1, "46", "100", -1, false},   {2, "46", "100", 0, false},
              {2, "46", "801", 1, true}};
  for (const auto &row : rows) {
    SCOPED_TRACE(std::string(row.number) + " in " + std::to_string(row.dimension));
    open(row.client, row.year);
    const auto centre = IsKostenstelle(*store, row.number, row.dimension);
    EXPECT_EQ(centre.has_value(), row.exists);
    EXPECT_EQ(centre ? centre->Dimension : 0, row.exists ? row.dimension : 0);
  }
  open(1, "46");
  EXPECT_STREQ(IsKostenstelle(*store, "600", 0).value().LaufzeitVon, "460301");
}

TEST_F(CostBooks, CombinationsThatAreAllowed) {
  const struct {
    const char *costType, *centre;
    bool allowed;
  } rows[] = {{"4610", "400", true}, {"4610", "420", true}, {"4610", "410", false}, {"4610   ", "400    ", true},
              {"4610", "4", false},  {"4710", "300", true}, {"4710", "400", false}, {"4600", "400", true},
              {"4609", "400", true}, {"4700", "300", true}, {"0027", "100", true},  {"9999", "100", true},
              {"461", "100", true},  {"46100", "100", true}};
  for (const auto &row : rows)
    EXPECT_EQ(CheckKomb(*store, row.costType, row.centre), row.allowed) << row.costType << " and " << row.centre;
}

TEST_F(CostBooks, TemplatesWithTheirShares) {
  const struct {
    int32_t number;
    std::string shares; ///< centre/unit/kind/weight
  } rows[] = {{1, "300//1/000000055,00 410//1/000000030,00 500//1/000000015,00 "},
              {2, "100//0/000000003,00 200//0/000000002,00 400//0/000000004,00 500//0/000000005,00 "},
              {3, "410/5001/2/000000040,00 420/5001/2/000000033,33 420/5002/2/000000026,67 "},
              {4, "600//0/000000070,00 300//0/000000030,00 "},
              {5, ""},
              {0, ""},
              {-1, ""}};
  for (const auto &row : rows) {
    std::string text;
    for (const KOSCHA_ZEILE &share : sharesOfTemplate(*store, row.number))
      text += std::string(vlba98::trimmed(share.Kostenstelle1)) + "/" +
              std::string(vlba98::trimmed(share.Kostenstelle2)) + "/" + std::to_string(share.Kostenkennung) + "/" +
              share.Anteil + " ";
    EXPECT_EQ(text, row.shares) << row.number;
    EXPECT_EQ(IsKoscha(*store, row.number), !row.shares.empty()) << row.number;
  }
}

TEST_F(CostBooks, TemplateThatCaptureAssigned) {
  int32_t numbers[2];
  for (int32_t costTemplate : {0, 2}) {
    DATENBANK link{};
    put(link.DmsId.Id, "Beleg " + std::to_string(costTemplate));
    link.DmsId.Kostenschablone = costTemplate;
    ASSERT_TRUE(store->Insert(link, kDmsId));
    numbers[costTemplate / 2] = link.DmsId.Nr;
  }
  for (const auto &[document, assigned] : {std::pair{0, 0}, {numbers[0], 0}, {numbers[1], 2}, {4711, 0}, {-1, 0}}) {
    EXPECT_EQ(netwr98::OCR_IsBelegkontierungAktiv(*store, document), assigned != 0) << document;
    EXPECT_EQ(netwr98::OCR_GetBucDlg(*store, document), assigned) << document;
  }
}

} // namespace
} // namespace test
