/// The verbs of zelkctl. Each returns the exit code of the program.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace zelkctl {

constexpr int kDone = 0;
constexpr int kRefused = 1;   ///< something was refused, and said so; what was not refused is done
constexpr int kFailed = 2;    ///< nothing could be done, or not to its end
constexpr int kUnwritten = 3; ///< standard output could not be written; what was to be done in the books is as always

// Below the exports: the stand-ins for the accounting program.
int provision(const std::string &directory);
int createClient(const std::string &folder);
/// Copies a client between the embedded database and the server of the settings. \param target "server" or "datei"
int copyClient(int32_t client, const std::string &target, bool remove);
/// \param day  on which the batch is posted; empty: today
/// \param user who posts; 0: nobody in particular
int postToLedger(int32_t client, int32_t batch, const std::string &day, int32_t user);

// Beside the exports, since calls of the library would change what is shown.
int switchProtocol(bool on);
int chooseProtocolFile(const std::string &file);
int showProtocol(const std::string &file); ///< empty: the one that programs write to now

// Everything else calls the exported functions and nothing else.
int importPostings(int32_t client, int32_t batch, const std::string &file);
int listClients();
int listBatches(int32_t client);
int showBatch(int32_t client, int32_t batch);
int listAccounts(int32_t client, const std::string &kind, int32_t order, const std::string &from);
/// \param from,to bounds of the range; empty: none
int showFreeNumber(int32_t client, const std::string &kind, const std::string &from, const std::string &to);
int showResultText(int32_t code);

/// What is not given stays as it is, or is that of a new one.
struct BatchValues {
  std::optional<std::string> name;
  std::optional<int32_t> recurrence;
  std::optional<bool> transitory, reconciliation;
};
int createBatch(int32_t client, int32_t number, const BatchValues &values); ///< number 0: the next free one
int changeBatch(int32_t client, int32_t number, const BatchValues &values);
int deleteBatch(int32_t client, int32_t number, bool withBatch);

struct TermValues {
  std::optional<std::string> shortName, rate1, rate2, remark;
  std::optional<int32_t> days1, days2, days, dayOfMonth, months, method;
};
int createTerm(int32_t client, const TermValues &values);
/// \param which number or short name
int changeTerm(int32_t client, const std::string &which, const TermValues &values);
int showTerm(int32_t client, const std::string &which);
int listTerms(int32_t client);

/// Which items are shown; what is not given is empty.
struct ItemQuery {
  std::string account, kind; ///< kind: "debi" or "kred"
  bool historical = false;
  std::string from, document, openItem; ///< of historical ones: first day of payment, numbers
  bool csv = false;
};
int listItems(int32_t client, const ItemQuery &query);
int showDunningLevel(int32_t client, const std::string &account, bool csv);

/// Which account or accounts are meant, and how they are shown.
struct FigureQuery {
  std::string account; ///< empty: all of the kind
  std::string kind;    ///< "sako", "kred", "debi" or "kost"; empty: that of the account, without one sako
  std::string date;    ///< of a balance; empty: the current fiscal year
  std::optional<int32_t> year;
  std::optional<int32_t> dimension; ///< of cost centres
  std::string reference;
  int32_t order = 0; ///< of budget values
  std::string from;
  bool all = false; ///< also what has no budget values; also hidden lines
  bool csv = false;
};
int showBalances(int32_t client, const FigureQuery &query);
int showTurnover(int32_t client, const FigureQuery &query);
int showBudgets(int32_t client, const FigureQuery &query);
int showStructure(int32_t client, int32_t structure, const FigureQuery &query);

/// Complains of a result of the library by its number, name and text, after a text that says what was tried.
/// \return kFailed
int complainOf(const std::string &tried, int32_t result);
/// Complains of characters that Windows-1252 has not. \return kFailed
int complainOfCharacters(const char *option, const std::string &value);

} // namespace zelkctl
