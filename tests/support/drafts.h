/// Postings as a test writes them down: handed over whole or built piece by piece, and the outcome in words.
#pragma once

#include <string>
#include <vector>

#include "support/books.h"

namespace test {

struct DraftCost {
  std::vector<std::string> centres = {}; ///< up to six
  std::string amount = {};
  int32_t kind = 0;
  std::string quantity = {}, unit = {}, remark = {}, remark2 = {};
};

struct DraftLine {
  std::string debit = {}, credit = {}, gross = "100,00", rate = {}, tax = {};
  std::vector<DraftCost> costs = {};
  int32_t costTemplate = 0;
  int32_t debitKind = -1, creditKind = -1; ///< -1: that of the number in the sample books
  std::string text = {}, text2 = {};
  std::string ownGross = {}, ownTax = {}; ///< for ZELK_SplitEinfuegenEx
  int32_t movement = 0, document = 0;
};

struct Draft {
  int32_t client = 1, batch = 3;
  std::vector<DraftLine> lines = {};
  std::string currency = {}, date = "210126", number = "B-1", valueDate = {}, openItem = {}, slip = {}, document = {};
  int32_t term = 0, opening = 0, closing = 0, transfer = 0, direct = 0;
  bool ex = false; ///< lines with own amounts
};

/// Five digits are personal accounts in the sample books: debtors from 10000, creditors from 70000.
int32_t kindOf(const std::string &account);

/// At most ten lines; cost postings and own amounts have no place in it.
ZELK_SPLITBUCHUNG toRecord(const Draft &draft);

/// The header and the first line.
ZELK_BUCHUNG toSingle(const Draft &draft);
ZelkResult insertFlat(const ZELK_BUCHUNG &posting, const char *date, const char *valueDate, int32_t flag = 1);

ZelkResult insertWhole(const Draft &draft, int32_t flag = 1);
/// Opening and closing postings cannot be built this way.
ZelkResult insertInPieces(const Draft &draft, int32_t flag = 1);

/// A posting as it lies in the store.
struct StoredPosting {
  vldb98::BATCHBUCHUNG posting{};
  std::vector<vldb98::SPLIT> lines;
  std::vector<vldb98::KOBU> costs;
};
std::vector<StoredPosting> storedPostings(vldb98::Store &store, int32_t client, int32_t batch);

/// "000001234-50" as "-1234,50".
std::string plain(const char *money);
/// "100,00+19,00 19,00% 3/1": net, tax, rate, tax key, side of the tax (1 credit, 2 debit).
std::string taxOf(const vldb98::SPLIT &line);
/// "93,08-6,98 = 100,00-7,50 at 0,9308/1": gross amount and tax in both currencies, rate and units.
std::string conversionOf(const StoredPosting &stored, size_t line = 0);
/// "100:50,00/50,00% 200.5001:50,00/50,00%": centres, amount and share of a line's cost postings.
std::string costsOf(const StoredPosting &stored, size_t line = 0);

/// Sample books, and the outcome of a posting in words.
class PostingBooks : public Books {
protected:
  enum class Way { Whole, Pieces };
  /// Inserts with messages. \return "1", or code and message: "-13 Der Steuersatz ist unzulässig!". Sees that a refused
  /// posting has changed nothing but the documents, and that nothing is left locked.
  std::string insert(const Draft &draft, Way way);
  /// The posting that was inserted last.
  StoredPosting last(const Draft &draft);

  std::unique_ptr<vldb98::Store> other_ = session(std::chrono::milliseconds(0));
  std::string dumpAll();
  /// Changes a record of a client below the exports.
  void change(uint16_t client, vldb98::FileNumber file, const vldb98::SCHLUESSEL &key,
              const std::function<void(vldb98::DATENBANK &)> &edit);
  /// Writes a setting and attaches anew.
  void setting(const char *section, const char *key, const char *value);
};

} // namespace test
