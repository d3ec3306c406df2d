// VAT of a posting: which key and side, whether rate and amount fit, and what net amount and tax are stored.
#include "support/drafts.h"

namespace test {
namespace {

using namespace vldb98;

struct Row {
  int32_t client;
  const char *date, *debit, *credit, *gross, *rate, *tax;
  std::string outcome; ///< net+tax rate key/side, or the refusal
};

const std::string kRate = "-13 Der Steuersatz ist unzulässig!",
                  kNoRate = "-13 In dieser Buchung darf keine Steuer angegeben werden!",
                  kNoTax = "-14 In dieser Buchung darf keine Steuer angegeben werden!",
                  kFit = "-14 Der angegebene Steuerbetrag ist unzulässig (Format? Passend zum Steuersatz?).",
                  kSign = "-14 Der Steuerbetrag ist unzulässig!";

class PostingTax : public PostingBooks {
protected:
  void expect(std::initializer_list<Row> rows) {
    for (const Row &row : rows)
      for (Way way : {Way::Whole, Way::Pieces}) {
        SCOPED_TRACE(std::string(row.debit) + '/' + row.credit + ' ' + row.gross + ' ' + row.rate + "% " + row.tax +
                     ' ' + row.date);
        Draft draft{row.client, 2, {{row.debit, row.credit, row.gross, row.rate, row.tax}}, "", row.date};
        std::string outcome = insert(draft, way);
        EXPECT_EQ(outcome == "1" ? taxOf(last(draft).lines.at(0)) : outcome, row.outcome);
      }
  }
  /// Another tax key of an account of client 1.
  void setKey(const char *account, int16_t key) {
    change(1, kSachkonto, KeyBuilder().account(account),
           [=](auto &record) { record.Sachkonto.Steuerschluessel = key; });
  }
  void addKey(int16_t key, const char *from, const char *rate, int16_t kind) {
    DATENBANK record{};
    record.Steusa.Schluessel = key;
    put(record.Steusa.GueltigAb, from);
    put(record.Steusa.Satz, rate);
    record.Steusa.Art = kind;
    uint8_t found;
    ASSERT_TRUE(other_->SetzeFista(1, found) && other_->Insert(record, kSteusa));
  }
};

TEST_F(PostingTax, IsTakenOutOfTheGrossAmount) {
  expect({{1, "210126", "10010", "8400", "119,00", "19,00", "", "100,00+19,00 19,00% 3/1"},
          {1, "210126", "3400", "70010", "119", "19", "", "100,00+19,00 19,00% 5/2"},
          {1, "210126", "10010", "8400", "-119,00", "19,00", "", "-100,00+-19,00 19,00% 3/1"},
          {1, "210126", "10010", "8400", "100,00", "19,00", "", "84,03+15,97 19,00% 3/1"},
          {1, "210126", "10010", "8300", "0,07", "7", "", "0,07+0,00 7,00% 2/1"},
          {1, "210126", "10010", "8400", "999999999,99", "19", "", "840336134,45+159663865,54 19,00% 3/1"},
          {1, "210126", "1571", "1000", "107", "7", "", "100,00+7,00 7,00% 4/2"},
          {2, "210126", "10010", "3200", "100,00", "8,1", "", "92,51+7,49 8,10% 1/1"},
          // Half of the tax is deductible.
          {1, "210126", "4535", "1200", "119,00", "19", "", "109,50+9,50 19,00% 9/2"},
          {1, "210126", "4535", "1200", "119,00", "19", "9,50", "109,50+9,50 19,00% 9/2"},
          {1, "210126", "4535", "1200", "119,00", "19", "19,00", "100,00+19,00 19,00% 9/2"},
          {1, "210126", "4535", "1200", "119,00", "19", "14,00", kFit},
          // An acquisition: the gross amount holds no tax, stated or not.
          {1, "210126", "3425", "70010", "100,00", "19", "", "100,00+0,00 0,00% 8/2"},
          {1, "210126", "3425", "70010", "100,00", "19", "19,00", "100,00+0,00 0,00% 8/2"},
          {1, "210126", "3425", "70010", "100,00", "19", "15,97", "100,00+0,00 0,00% 8/2"},
          {1, "210126", "3425", "70010", "100,00", "19", "5,00", kFit}});
}

TEST_F(PostingTax, GivenHasToFit) {
  expect({{1, "210126", "10010", "8400", "119,00", "19", "19,05", "99,95+19,05 19,00% 3/1"},
          {1, "210126", "10010", "8400", "119,00", "19", "18,95", "100,05+18,95 19,00% 3/1"},
          {1, "210126", "10010", "8400", "119,00", "19", "19,06", kFit},
          {1, "210126", "10010", "8400", "119,00", "19", "18,94", kFit},
          {1, "210126", "10010", "8400", "-119,00", "19", "-19,05", "-99,95+-19,05 19,00% 3/1"},
          {1, "210126", "10010", "8400", "-119,00", "19", "19,00", kFit},
          {1, "210126", "10010", "8400", "10,00", "19", "11,90", kFit},
          // Within the tolerance, but more than the whole amount.
          {1, "210126", "10010", "8400", "0,03", "19", "0,03", "0,00+0,03 19,00% 3/1"},
          {1, "210126", "10010", "8400", "0,01", "19", "0,05", kSign},
          {1, "210126", "10010", "8400", "-0,01", "19", "-0,05", kSign},
          {1, "210126", "10010", "8400", "0,00", "19", "0,03", kSign},
          {1, "210126", "10010", "8400", "0,10", "19", "-0,03", kFit},
          {1, "210126", "10010", "8400", "-0,10", "19", "0,03", kFit},
          {1, "210126", "10010", "8400", "0,00", "19", "", "0,00+0,00 19,00% 3/1"},
          // A rate of zero makes it a tax-free posting.
          {1, "210126", "10010", "8400", "119,00", "", "", "119,00+0,00 0,00% 0/0"},
          {1, "210126", "10010", "8400", "119,00", "0", "0", "119,00+0,00 0,00% 0/0"},
          {1, "210126", "10010", "8400", "119,00", "", "19,00", kFit},
          {1, "210126", "10010", "8400", "119,00", "00,00", "0,01", kFit}});
}

TEST_F(PostingTax, RateIsOneOfTheKey) {
  addKey(3, "460701", "21,00", 1); // 2026-07-01
  expect({{1, "210126", "10010", "8400", "119,00", "7", "", kRate},
          {1, "210126", "10010", "8400", "119,00", "19,01", "", kRate},
          {1, "210126", "10010", "8100", "119,00", "19", "", kRate},
          // Rates of before still apply to deliveries of before; those to come do not.
          {1, "210126", "10010", "8400", "116,00", "16", "", "100,00+16,00 16,00% 3/1"},
          {2, "210126", "10010", "3200", "107,70", "7,7", "", "100,00+7,70 7,70% 1/1"},
          {1, "300626", "10010", "8400", "121,00", "21", "", kRate},
          {1, "010726", "10010", "8400", "121,00", "21", "", "100,00+21,00 21,00% 3/1"},
          {1, "010726", "10010", "8400", "119,00", "19", "", "100,00+19,00 19,00% 3/1"}});
}

TEST_F(PostingTax, IsBorneByTheSideWithTheKey) {
  setKey("1000", 32);
  expect({{1, "210126", "1200", "1010", "119,00", "19", "", kNoRate},
          {1, "210126", "1200", "1010", "119,00", "", "19,00", kNoTax},
          {1, "210126", "1200", "1010", "119,00", "19", "19,00", kNoTax},
          {1, "210126", "1200", "1010", "119,00", "00,00", "0,00", "119,00+0,00 0,00% 0/0"},
          {1, "210126", "10010", "70010", "119,00", "19", "", kNoRate},
          {1, "210126", "1000", "1200", "119,00", "19", "", kNoRate},
          {1, "210126", "1000", "8400", "119,00", "19", "", "100,00+19,00 19,00% 3/1"},
          {1, "210126", "8400", "1000", "119,00", "19", "", "100,00+19,00 19,00% 3/2"},
          // Keys on both sides are none.
          {1, "210126", "1576", "8400", "119,00", "19", "", kNoRate},
          {1, "210126", "1576", "8400", "119,00", "", "", "119,00+0,00 0,00% 0/0"}});
}

TEST_F(PostingTax, KeyEightTakesNoneOut) {
  addKey(8, "450101", "19,00", 2); // as an input tax
  expect({{1, "210126", "3425", "70010", "119,00", "19", "", "119,00+0,00 19,00% 8/2"},
          {1, "210126", "3425", "70010", "119,00", "19", "19,00", "100,00+19,00 19,00% 8/2"}});
}

} // namespace
} // namespace test
