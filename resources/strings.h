/// The German texts: names and long texts of the result codes, messages. All as UTF-8.
#pragma once

#include <string_view>

namespace resources {

constexpr int kLeastResult = -103;
constexpr int kGreatestResult = 2;

struct ResultTexts {
  int code;
  const char *name;
  const char *text;
};

/// One row per code, from kGreatestResult down to kLeastResult.
extern const ResultTexts kResultTexts[kGreatestResult - kLeastResult + 1];

// Ids of the names that give an ambiguous code its meaning for one family of functions.
enum CompanionName {
  kNoCompanion = 0,
  kKeineMandanten = 80,
  kKeineStapel = 81,
  kKeineKonten = 82,
  kKeineZahlungsziele = 83,
  kKeineKostenschablonen = 84,
  kKeineSprachen = 85,
  kAbbruch = 87,
  kWeitererDatensatz = 89,
  kKeinDatensatz = 90,
};

// Ids of the name and the long text of a result code.
constexpr int nameId(int code) {
  return 100 - code;
}
constexpr int textId(int code) {
  return 300 - code;
}

/// Texts of the selection dialogs.
enum DialogText {
  kLedgerAccountSelection = 1,
  kCreditorSelection = 2,
  kDebtorSelection = 3,
  kCostCentreSelection = 4,
  kClientSelection = 5,
  kBatchSelection = 6,
  kOrderByNumber = 10,
  kOrderByName = 11,
  kRateEntry = 12,
};

/// Messages from 1000 on. A group of 200 shares one style of message box.
enum Message {
  kRatingShown = 1010,
  kPleaseSelect = 1401,
  kDoesNotExist = 1408,
  kIsInadmissible = 1410,
  kAccountKindInadmissible = 1413,
  kActionInadmissible = 1414,
  kAccountNumberInadmissible = 1415,
  kShortNameMissing = 1416,
  kExistsAlready = 1417,
  kInadmissible = 1419,
  kSplitFirstLineAccounts = 1420,
  kSplitOneSideAlike = 1421,
  kSplitPersonalAccount = 1422,
  kLineCountWrong = 1423,
  kPostingDateInadmissible = 1424,
  kValueDateInadmissible = 1425,
  kCostAccountingBatch = 1426,
  kOpeningOneAccount = 1427,
  kOpeningTaxFree = 1428,
  kPaymentSlipSwissOnly = 1429,
  kPaymentSlipWrong = 1430,
  kBasicForeignCurrency = 1431,
  kCurrencyLettersOnly = 1432,
  kDebitNumberInadmissible = 1433,
  kCreditNumberInadmissible = 1434,
  kDocumentNumberMissing = 1435,
  kAccountNumbersEqual = 1436,
  kDebitAccountWrong = 1437,
  kCreditAccountWrong = 1438,
  kNoTaxAllowed = 1439,
  kPaymentTermInadmissible = 1440,
  kCostTemplateMissing = 1441,
  kTaxAmountDoesNotFit = 1442,
  kCurrencyLedgerAccounts = 1443,
  kCurrencyAmbiguous = 1444,
  kCostCentreMissing = 1445,
  kCostCentreRunningTime = 1446,
  kNoCostCentreGiven = 1447,
  kIsInadmissibleFeminine = 1449,
  kCombinationInadmissible = 1450,
  kCostSumWrong = 1451,
  kCostCentreMandatory = 1452,
  kCostTemplateMandatory = 1453,
  kTwoCostAccounts = 1454,
  kIncomeTransfer = 1455,
  kSplitExMixed = 1456,
  kRateInadmissible = 1457,
  kRateMissing = 1458,
  kBasicCosts = 1459,
  kOrderInadmissible = 1469,
  kPaymentTermMissing = 1474,
  kNameTooLong = 1475,
  kNameEmpty = 1476,
  kStandardBatch = 1477,
  kChangedBatchMissing = 1478,
  kBatchPasswordChange = 1479,
  kBatchNameTaken = 1480,
  kBatchRecurrence = 1481,
  kBatchNumberTaken = 1482,
  kBatchMissing = 1483,
  kBatchNotFromOutside = 1484,
  kBatchCleared = 1485,
  kBatchPasswordDeletion = 1486,
  kDiscountOrder = 1491,
  kDiscountEmpty = 1501,
  kHistoricalItems = 1510,
  kDateInadmissible = 1531,
  kClassInadmissible = 1532,
  kCostCentreOrType = 1533,
  kAmountTooGreat = 1534,
  kRatingUnreadable = 1541,
  kCompanionNotStarted = 1552,
  kCompanionIncomplete = 1553,
  kTextOverflow = 1608,
};

/// The text of a string id; empty where there is none.
std::string_view text(int id);

} // namespace resources
