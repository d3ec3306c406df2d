// Postings in foreign currencies: what is refused, at which rate they are converted, and the rate that a person enters.
#include <cstring>

#include "support/drafts.h"

namespace test {
namespace {

using namespace vldb98;

class PostingCurrency : public PostingBooks {
protected:
  std::string convert(const Draft &draft, Way way = Way::Whole) {
    std::string outcome = insert(draft, way);
    return outcome == "1" ? conversionOf(last(draft)) : outcome;
  }
};

const std::string kLetters = "-83 Das Währungskürzel darf nur (max. 3) Buchstaben enthalten!",
                  kLedger = "-83 Die Angabe einer Währung bei Sachkontenbuchungen ist nur bei schweizer Mandanten "
                            "gestattet!",
                  kBasic = "-83 In der Basisversion kann nicht mit Fremdwährung gebucht werden. Bitte übergeben Sie "
                           "Ihre Buchungen in der Mandantenwährung.",
                  kUnclear = "-63 Die Währung der Buchung ist nicht eindeutig!";

TEST_F(PostingCurrency, IsCheckedAndConverted) {
  static const struct {
    int32_t client;
    const char *currency, *date, *debit, *credit, *gross, *rate, *tax;
    std::string outcome;
  } rows[] = {
      {1, "US1", "210126", "10010", "8120", "100,00", "", "", kLetters},
      {1, "E\xDCR", "210126", "10010", "8120", "100,00", "", "", kLetters},
      {1, "[UR", "210126", "10010", "8120", "100,00", "", "", kLetters},
      {1, "USD", "210126", "1200", "1000", "100,00", "", "", kLedger},
      {1, "EUR", "210126", "1200", "1000", "100,00", "", "", kLedger},
      {2, "CHF", "210126", "1020", "1000", "100,00", "", "", "100,00-0,00"},
      {2, "USD", "210126", "1020", "1000", "100,00", "", "", "79,31-0,00 = 100,00-0,00 at 0,7931/1"},
      // The currency of an account: a debtor's, a bank account's.
      {1, "USD", "210126", "10240", "8120", "100,00", "", "", "85,25-0,00 = 100,00-0,00 at 0,8525/1"},
      {1, "CHF", "210126", "10240", "8120", "100,00", "", "", kUnclear},
      {1, "EUR", "210126", "10240", "8120", "100,00", "", "", kUnclear},
      {1, "", "210126", "10240", "8120", "100,00", "", "", "100,00-0,00"},
      {1, "CHF", "210126", "1220", "10010", "100,00", "", "", kUnclear},
      {1, "usd", "210126", "1220", "10010", "100,00", "", "", "85,25-0,00 = 100,00-0,00 at 0,8525/1"},
      // The client's own one.
      {1, "eur", "210126", "10010", "8400", "119,00", "19", "", "119,00-19,00"},
      // The latest rate of the day or before; tax is converted apart from the gross amount.
      {1, "CHF", "300626", "10010", "8400", "119,00", "19", "", "127,81-20,41 = 119,00-19,00 at 1,074/1"},
      {1, "CHF", "010726", "10010", "8400", "119,00", "19", "", "127,27-20,32 = 119,00-19,00 at 1,0695/1"},
      {1, "CHF", "010725", "10010", "8400", "-119,00", "19", "-19,05", "-127,39--20,39 = -119,00--19,05 at 1,0705/1"},
      {1, "JPY", "210126", "10010", "8120", "10001", "", "", "54,81-0,00 = 10001,00-0,00 at 0,548/100"},
      {1, "CHF", "210126", "10010", "8120", "999999999,99", "", "", "-12 Der Bruttobetrag (EW) ist unzulässig!"},
      // Rounded to five hundredths, but not in the client's own currency.
      {2, "EUR", "210126", "10070", "3200", "100,00", "8,1", "", "93,08-6,98 = 100,00-7,50 at 0,9308/1"},
      {2, "EUR", "210126", "10070", "3200", "-100,00", "8,1", "", "-93,08--6,98 = -100,00--7,50 at 0,9308/1"},
      {2, "EUR", "210126", "10070", "3200", "100,00", "8,1", "7,47", "93,08-6,93 = 100,00-7,45 at 0,9308/1"},
      {2, "EUR", "210126", "6200", "70060", "50,00", "8,1", "", "46,54-1,77 = 50,00-1,90 at 0,9308/1"},
      {2, "CHF", "210126", "6200", "70010", "50,00", "8,1", "", "50,00-1,88"},
      {1, "CHF", "210126", "10010", "8400", "100,00", "19", "", "107,40-17,15 = 100,00-15,97 at 1,074/1"}};
  for (const auto &row : rows)
    for (Way way : {Way::Whole, Way::Pieces}) {
      SCOPED_TRACE(std::string(row.currency) + ' ' + row.date + ' ' + row.debit + '/' + row.credit + ' ' + row.gross);
      EXPECT_EQ(
          convert({row.client, 2, {{row.debit, row.credit, row.gross, row.rate, row.tax}}, row.currency, row.date},
                  way),
          row.outcome);
    }
  // An account of a later line.
  EXPECT_EQ(insert({1, 3, {{"10010", "8400"}, {"10010", "1220"}}, "CHF"}, Way::Whole),
            "-63 Teilbuchung 2: Die Währung der Buchung ist nicht eindeutig!");
}

TEST_F(PostingCurrency, InTheBasicEditionIsTheClientsOnly) {
  setting("MFIBU", "Edition", "Basis");
  for (auto [currency, outcome] : {std::pair{"USD", kBasic}, {"", "100,00-0,00"}, {"EUR", "100,00-0,00"}})
    EXPECT_EQ(convert({1, 3, {{"10010", "8120"}}, currency}), outcome) << currency;
  setting("MFIBU", "Edition", "");
  EXPECT_EQ(convert({1, 3, {{"10010", "8120"}}, "CHF"}), "107,40-0,00 = 100,00-0,00 at 1,074/1");
}

const std::string kAsked = "Für die Währung GBP ist am 21.01.2026 kein Kurs hinterlegt. Wie viele EUR sind eine "
                           "Einheit GBP wert?",
                  kMissing = "Der Kurs der Währung GBP am 21.01.2026 ist nicht hinterlegt!",
                  kWrong =
                      "Der Kurs ist unzulässig! Erwartet wird eine Zahl größer 0 mit höchstens 6 Nachkommastellen.";

TEST_F(PostingCurrency, MissingRateIsAskedForUntilItIsOne) {
  Draft draft{1, 3, {{"10010", "8400", "119,00", "19,00"}, {"10010", "8120"}}, "GBP"};
  EXPECT_EQ(insert(draft, Way::Whole), "-65 " + kAsked + " | " + kMissing) << "cancelled";
  recorder.inputs = {"1.15", "-1"};
  EXPECT_EQ(insert(draft, Way::Pieces),
            "-65 " + kAsked + " | " + kWrong + " | " + kAsked + " | " + kWrong + " | " + kAsked + " | " + kMissing);
  recorder.inputs = {"", " 1,15 ", "9"};
  EXPECT_EQ(insert(draft, Way::Pieces), "1 " + kAsked + " | " + kWrong + " | " + kAsked) << "once for all lines";
  EXPECT_EQ(conversionOf(last(draft)), "136,85-21,85 = 119,00-19,00 at 1,15/1");
  EXPECT_EQ(conversionOf(last(draft), 1), "115,00-0,00 = 100,00-0,00 at 1,15/1");
  // Stored for that day and those after it.
  EXPECT_EQ(insert(draft, Way::Whole), "1");
  draft.date = "311226";
  EXPECT_EQ(insert(draft, Way::Whole), "1");
  recorder.inputs.clear();
  draft.date = "200126";
  EXPECT_EQ(insert(draft, Way::Whole).substr(0, 4), "-65 ");
}

TEST_F(PostingCurrency, AnEarlierRefusalComesBeforeTheQuestion) {
  Draft draft{1, 3, {{"10010", "8400", "119,00", "18,00"}}, "GBP"};
  EXPECT_EQ(insert(draft, Way::Whole), "-13 Der Steuersatz ist unzulässig!");
  // Later checks run with the rate, which stays stored.
  draft.lines[0] = {"10010", "8400", "999999999", "19,00"};
  recorder.inputs = {"2"};
  EXPECT_EQ(insertWhole(draft), ZELKERR_uzl_Bruttobetrag);
  EXPECT_EQ(recorder.takeText(), kAsked + " | Der Bruttobetrag (EW) ist unzulässig!");
  draft.lines[0].gross = "1";
  EXPECT_EQ(convert(draft), "2,00-0,32 = 1,00-0,16 at 2,00/1");
}

TEST_F(PostingCurrency, OthersWorkWhileThePersonThinks) {
  Draft draft{1, 3, {{"10010", "8120"}}, "GBP"}, swiss{2, 2, {{"1020", "1000"}}};
  // Somebody else stores a rate: that one holds.
  recorder.inputs = {"3"};
  recorder.whileShown = [&] {
    uint8_t found;
    DATENBANK record{};
    put(record.Kurse.Waehrung, "GBP");
    put(record.Kurse.Datum, "460121");
    put(record.Kurse.Kurs, "120,00");
    record.Kurse.Einheiten = 100;
    ASSERT_TRUE(other_->SetzeFista(1, found) && found && other_->Insert(record, kKurse));
    EXPECT_TRUE(nothingLocked(*other_, 1));
  };
  EXPECT_EQ(insert(draft, Way::Whole).substr(0, 2), "1 ");
  EXPECT_EQ(conversionOf(last(draft)), "120,00-0,00 = 100,00-0,00 at 120,00/100");
  // The host posts from under the dialog, for another client.
  draft.date = "200126";
  recorder.inputs = {"4"};
  recorder.whileShown = [&] { EXPECT_EQ(insertInPieces(swiss), ZELK_OK); };
  EXPECT_EQ(insert(draft, Way::Pieces).substr(0, 2), "1 ");
  EXPECT_EQ(conversionOf(last(draft)), "400,00-0,00 = 100,00-0,00 at 4,00/1");
  EXPECT_EQ(postingsOf(2, 2).size(), 1u);
  EXPECT_EQ(dump(*other_, 2, {kKurse}).find("GBP"), std::string::npos);
}

} // namespace
} // namespace test
