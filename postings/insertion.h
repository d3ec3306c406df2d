/// Validates a split posting and writes it into its batch.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "postings/construction.h"
#include "postings/rate_entry.h"
#include "vlfn98/costs.h"
#include "vlfn98/currency.h"
#include "vlfn98/tax.h"
#include "zelk98/zelk98.h"

namespace postings {

/// An account of the posting, as the store knows it.
struct Account {
  int32_t kind = 0; ///< at the boundary; 0: there is no such account
  bool locked = false;
  std::string currency; ///< empty: the client's
  int32_t term = 0;     ///< payment term of a personal account
  vldb98::SACHKONTO ledger{};

  const vldb98::SACHKONTO *ledgerAccount() const { return kind == ZELK_SACHKONTO ? &ledger : nullptr; }
  int16_t taxKey() const { return ledgerAccount() ? ledger.Steuerschluessel : 0; }
};

/// A line on its way through the checks. Amounts in hundredths.
struct Line {
  Line(size_t at, const ZELK_TEILBUCHUNG &line) : index(at), request(line) {}

  size_t index;
  ZELK_TEILBUCHUNG request; ///< accounts and amounts in the store's form
  const Account *debit = nullptr;
  const Account *credit = nullptr;
  vlfn98::Steuerwahl tax;
  vldb98::STEUSA taxKey{};
  vlfn98::Steuerrechnung amounts{}; ///< in the currency of the posting
  char ownGrossText[13] = "";       ///< amounts in the client's currency that came with a foreign one
  char ownTaxText[13] = "";
  int64_t ownGross = 0, ownNet = 0; ///< in the client's currency
  vldb98::SPLIT stored{};
};

/// A refusal that is not yet spoken.
struct Refusal {
  ZelkResult code = ZELK_OK;
  int message = 0;
  std::string fill;
  int line = -1; ///< partial posting that it names; -1: none
};

/// One run of the checks over one posting. The client is open and the tables are locked.
class Insertion {
public:
  /// \param construction what the posting was built in; null when it was handed over whole
  Insertion(vldb98::Store &store, const ZELK_SPLITBUCHUNG &request, const Construction *construction)
      : store_(store), request_(request), construction_(construction) {}

  /// Runs the checks in their order and stores the posting. \return 1, or the code of the first check that failed; then
  /// the batch is as it was
  ZelkResult run();

  /// Why run refused the posting; without a message for failures of the store. Not shown by run: a person who looks at
  /// a message box must not keep the tables locked.
  const Refusal &refusal() const { return refusal_; }

  /// The posting that run has stored; its lines are in the store's memory.
  const vldb98::BATCHBUCHUNG &stored() const { return posting_; }

  /// The rate for want of which run returned -65.
  const MissingRate &missingRate() const { return missingRate_; }

private:
  // Each returns ZELK_OK to go on.
  ZelkResult checkBatch();
  ZelkResult checkDocumentDate();
  ZelkResult checkLineCount();
  ZelkResult replaceOpeningAccounts();
  ZelkResult checkPaymentSlip();
  ZelkResult registerDocument();
  ZelkResult convertAccounts();
  ZelkResult checkSplitShape();
  ZelkResult checkPaymentTerm();
  ZelkResult checkCurrency();
  ZelkResult checkFirstAccounts();
  ZelkResult checkFirstCurrencies();
  ZelkResult takeDocumentNumber();
  ZelkResult checkValueDate();
  ZelkResult checkLines();
  ZelkResult write();

  // Of one line.
  ZelkResult checkAccountsDiffer(Line &line);
  ZelkResult checkAccounts(Line &line);
  ZelkResult checkAmounts(Line &line);
  ZelkResult checkCostTemplate(Line &line);
  ZelkResult checkOwnAmounts(Line &line);
  ZelkResult checkOpeningWithoutTax(Line &line);
  ZelkResult chooseTax(Line &line);
  ZelkResult readTaxKey(Line &line);
  ZelkResult reckonAmounts(Line &line);
  ZelkResult convertAmounts(Line &line);
  ZelkResult reckonDueDate(Line &line);
  ZelkResult addCosts(Line &line);
  ZelkResult addLine(Line &line);

  // Cost postings of a line. The checks put a refusal of the posting into their last argument.
  struct Costs;
  ZelkResult addGivenCosts(const Line &line, vlfn98::Kostenseite side, Costs &costs);
  ZelkResult addTemplateCosts(const Line &line, vlfn98::Kostenseite side, bool bothIncome, Costs &costs);
  ZelkResult checkCentres(const vldb98::KOBU &cost, Refusal &refusal);
  ZelkResult checkCombinations(const Line &line, vlfn98::Kostenseite side, const vldb98::KOBU &cost, Refusal &refusal);
  ZelkResult storeCosts(const Line &line, Costs &costs);

  // What will be looked up is read from a server in few steps. First what the request names, then what its accounts
  // lead to, then what the shares of a cost template do. Elsewhere they do nothing.
  class LookUps;
  bool readAhead();
  ZelkResult readAheadOfAccounts();
  bool readAheadOfShares(const Line &line, vlfn98::Kostenseite side, const std::vector<vldb98::KOSCHA_ZEILE> &shares);

  ZelkResult lookUp(const char (&number)[8], const Account *&account);
  /// The amounts in the client's currency that came with a line; null: they are converted.
  const OwnAmounts *ownAmounts(const Line &line) const;
  bool currenciesAgree(const Account &debit, const Account &credit) const;
  const vldb98::FISTA_EXT *extension();
  /// The rate of the posting's currency on the document date.
  ZelkResult rate(vlfn98::Wechselkurs &rate);
  ZelkResult refuse(ZelkResult code, int message, std::string_view fill = {}, int line = -1);
  ZelkResult refuse(ZelkResult code, int message, const Line &line, std::string_view fill = {}) {
    return refuse(code, message, fill, int(line.index));
  }
  ZelkResult refuseAmount(ZelkResult code, const Line &line, std::string_view name);
  // Between these, what is read from the embedded database is of one state, and costs one look at its log instead of
  // one each. On a server nothing is begun: the accounts, the batch and the postings are locked by now, everything else
  // is one record each, and a transaction would cost two or three ways to it.
  bool beginReading();
  bool endReading();

  vldb98::Store &store_;
  ZELK_SPLITBUCHUNG request_;
  const Construction *construction_;
  bool reading_ = false;
  std::vector<ZELK_TEILBUCHUNG> lines_; // copies: the checks bring accounts to the store's form
  vldb98::BATCHBUCHUNG posting_{};
  bool foreign_ = false;
  std::optional<vlfn98::Wechselkurs> rate_;
  MissingRate missingRate_{};
  Refusal refusal_;
  std::map<std::string, Account, std::less<>> accounts_;
  std::optional<vldb98::FISTA_EXT> extension_;
  std::map<int32_t, std::string> dueDates_; // by payment term
  size_t nextCost_ = 0;                     // in the construction's list
  std::optional<std::string> unit_;         // of the cost postings so far
};

} // namespace postings
