/// A posting on its way into its batch: what the checks have found out so far, and what is to be stored.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "postings/posting.h"
#include "resources/strings.h"
#include "store/guards.h"
#include "store/typed.h"
#include "vlfn98/tax.h"
#include "zelk98/zelk98.h"

namespace postings {

/// Why a posting is not taken; nothing while it is. Not spoken here: a person who reads a message box must not keep the
/// tables locked.
struct Refusal {
  ZelkResult code = ZELK_OK;
  int message = 0; ///< 0: none, for a failure of the store
  std::string fill = {};
  int line = -1; ///< index of the partial posting that it names; -1: none

  explicit operator bool() const { return code != ZELK_OK; }
};

/// An account of the posting, as the store knows it.
struct PostingAccount {
  int32_t kind = 0; ///< at the boundary; 0: there is no such account
  bool locked = false;
  std::string currency; ///< empty: the client's
  int32_t term = 0;     ///< payment term of a personal account
  vldb98::SACHKONTO ledger{};

  const vldb98::SACHKONTO *ledgerAccount() const { return kind == ZELK_SACHKONTO ? &ledger : nullptr; }
  int16_t taxKey() const { return ledgerAccount() ? ledger.Steuerschluessel : 0; }
  bool isIncome() const { return ledgerAccount() && ledger.GuV; }
};

/// The accounts of a posting, each of them read once.
class PostingAccounts {
public:
  explicit PostingAccounts(vldb98::Store &store) : store_(store) {}
  const PostingAccount &find(const char (&number)[8]);

private:
  vldb98::Store &store_;
  std::map<std::string, PostingAccount, std::less<>> known_;
};

/// The debit or credit account of a line.
struct LineAccount {
  char number[8]; ///< from the conversion on in the store's form
  int32_t kind;   ///< that the posting names
  const PostingAccount *found = nullptr;
};

/// A line on its way. Amounts and rates in hundredths.
struct LineInProgress {
  LineInProgress(size_t at, const PostingLine &line);

  Refusal refuse(ZelkResult code, int message, std::string_view fill = {}) const {
    return {code, message, std::string(fill), int(index)};
  }

  size_t index;
  const PostingLine *given;
  LineAccount debit, credit;
  int64_t gross = 0, rate = 0, tax = 0; ///< as given, in the currency of the posting
  struct OwnAmounts {
    int64_t gross, tax;
  };
  std::optional<OwnAmounts> own; ///< as given, beside a foreign currency; without them it is converted
  vlfn98::TaxChoice taxChoice;
  vldb98::STEUSA taxKey{};
  vlfn98::TaxSplit amounts{};       ///< in the currency of the posting
  int64_t ownGross = 0, ownNet = 0; ///< in the client's
  char dueDate[7] = "";             ///< reversed; empty: none
};

/// Debit and credit, so that neither needs code of its own.
struct Side {
  LineAccount LineInProgress::*account;
  int unknownMessage; ///< of the first look at the accounts
  ZelkResult wrongCode;
  int wrongMessage;
};
inline constexpr Side kSides[] = {{&LineInProgress::debit, resources::kDebitNumberInadmissible, ZELKERR_uzl_Sollkontonr,
                                   resources::kDebitAccountWrong},
                                  {&LineInProgress::credit, resources::kCreditNumberInadmissible,
                                   ZELKERR_uzl_Habenkontonr, resources::kCreditAccountWrong}};

struct PostingInProgress {
  /// \param posting stays where and as it is until the end
  PostingInProgress(vldb98::Store &in, const Posting &posting) : store(in), given(posting), accounts(in), reading(in) {}

  /// The open client's master record, and what belongs to it beside that, which is read when it is first asked for.
  const vldb98::FIRMENSTAMM &client() const { return store.HoleFista(); }
  const vldb98::FISTA_EXT &clientExtension();

  vldb98::Store &store;
  const Posting &given;
  std::vector<LineInProgress> lines; ///< from the check of their number on
  vldb98::BATCHBUCHUNG stored{};
  bool foreign = false; ///< in another currency than the client's
  PostingAccounts accounts;
  vldb98::ReadingOneState reading;

private:
  std::optional<vldb98::FISTA_EXT> extension_;
};

bool isBlank(std::string_view text);

/// Whether an account kind at the boundary is that of a creditor or debtor.
constexpr bool isPersonal(int32_t kind) {
  return kind == ZELK_KREDITOR || kind == ZELK_DEBITOR;
}

/// Whether the posting's currency is that of the accounts, where these have one.
bool currenciesAgree(const PostingInProgress &posting, const LineInProgress &line);

/// An amount, or a rate, as a host writes it. \return hundredths; nothing where it is none
/// \param width    characters of the internal form: moneyWidth, or rateWidth for a rate, which is never below zero
/// \param optional an empty text counts as zero
std::optional<int64_t> readAmount(const char *text, size_t width, bool optional);

/// Runs checks in their order. \return what the first one found that found something
template <class Check, size_t count, class... Arguments>
Refusal firstRefusal(const Check (&checks)[count], Arguments &...arguments) {
  for (const Check &check : checks)
    if (Refusal refusal = check(arguments...)) return refusal;
  return {};
}

} // namespace postings
