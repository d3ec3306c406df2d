// Random sequences of the piecewise functions, in two threads at once, beside a model of what they are to do.
#include <map>
#include <optional>
#include <thread>

#include "base/random.h"
#include "support/drafts.h"
#include "vlba98/text.h"

namespace test {
namespace {

constexpr int kSequences = 150, kBatch = 3, kNoBatch = 99, kRate = 9308; // EUR in CHF on the day of the postings

/// The side that changes from line to line: with cost postings or without.
struct Side {
  const char *stays, *currency, *costType, *plain, *own, *centre, *third;
};
constexpr Side kSides[] = {{"1200", "", "4120", "1360", "1200", "200", "NORD"},
                           {"70060", "EUR", "5000", "1090", "1020", "20", ""}};
const Side &sideOf(int client) {
  return kSides[client - 1];
}

std::string units(int amount) {
  return std::to_string(amount) + ",00";
}
std::string hundredths(int amount) {
  return std::to_string(amount / 100) + (amount % 100 < 10 ? ",0" : ",") + std::to_string(amount % 100);
}

/// One thread's construction, and the postings that it has left in the books.
class Model {
public:
  ZelkResult start(int client, int batch, const std::string &number) {
    clear();
    client_ = client, batch_ = batch, number_ = number;
    started_ = true;
    return ZELK_OK;
  }
  ZelkResult add(bool costType, int gross, const std::string &text, std::optional<int> own) {
    if (!started_) return idle();
    if (own && client_ != 2) return ZELKERR_Helva_only;
    if (own) own_[lines_.size()] = *own;
    ++(own ? exAdditions_ : plainAdditions_);
    lines_.push_back({costType, gross, text.substr(0, 35)});
    return ZELK_OK;
  }
  ZelkResult addCost(const std::string &centres, int amount, const std::string &remark) {
    if (!started_) return idle();
    if (lines_.empty()) return ZELKERR_keinInit;
    Line &line = lines_.back();
    line.costs += ' ' + centres + ':' + units(amount) + remark.substr(0, 40);
    line.costSum += amount;
    return ZELK_OK;
  }
  void setMovement(int value) { movements_[lines_.size()] = value; }
  void setDocument(int value) { documents_[lines_.size()] = value; }
  ZelkResult single(int client, int batch, const std::string &number, int gross) {
    resetExtras();
    if (batch != kBatch) return refused(ZELKERR_uzl_Stapelnr);
    stored[client].push_back(number + " " + sideOf(client).plain + ' ' + units(gross) + '=' + units(gross) + " 0/0 ");
    return ZELK_OK;
  }
  ZelkResult end(bool insert) {
    ZelkResult result = plainAdditions_ && exAdditions_ ? ZELKERR_uzl_Split : ZELK_OK;
    if (insert && result == ZELK_OK) result = started_ ? check() : ZELKERR_keinInit;
    if (insert && result == ZELK_OK) stored[client_].push_back(posting());
    clear();
    return result;
  }

  bool started() const { return started_; }
  int client() const { return client_; }
  std::map<int, std::vector<std::string>> stored; ///< by client
  int refusals = 0;                               ///< that tell why in a message

private:
  struct Line {
    bool costType;
    int gross;
    std::string text;
    std::string costs = {};
    int costSum = 0;
  };
  void resetExtras() {
    plainAdditions_ = exAdditions_ = 0;
    own_.clear(), movements_.clear(), documents_.clear();
  }
  void clear() {
    resetExtras();
    lines_.clear();
    started_ = false;
  }
  ZelkResult idle() {
    clear();
    return ZELKERR_keinInit;
  }
  ZelkResult refused(ZelkResult code) {
    ++refusals;
    return code;
  }
  ZelkResult check() {
    if (batch_ != kBatch) return refused(ZELKERR_uzl_Stapelnr);
    if (lines_.empty()) return refused(ZELKERR_uzl_Teilbuchungsanzahl);
    for (const Line &line : lines_) {
      if (line.costs.empty()) continue;
      if (!line.costType) return refused(ZELKERR_uzl_Kostenrechnung);
      if (line.costSum != line.gross) return refused(ZELKERR_uzl_Kostenbetrag);
    }
    return ZELK_OK;
  }
  std::string posting() {
    std::string all = number_;
    const Side &side = sideOf(client_);
    for (size_t i = 0; i < lines_.size(); ++i) {
      const Line &line = lines_[i];
      int own = own_.count(i) ? own_[i] * 100 : client_ == 2 ? (line.gross * kRate + 50) / 100 : line.gross * 100;
      all += std::string(" ") + (line.costType ? side.costType : side.plain) + ' ' + units(line.gross) + '=' +
             hundredths(own) + ' ' + std::to_string(movements_[i + 1]) + '/' + std::to_string(documents_[i + 1]) + ' ' +
             line.text + line.costs;
    }
    return all;
  }

  bool started_ = false;
  int client_ = 0, batch_ = 0, plainAdditions_ = 0, exAdditions_ = 0;
  std::string number_;
  std::vector<Line> lines_;
  std::map<size_t, int> own_;                   ///< by index of the line
  std::map<size_t, int> movements_, documents_; ///< by number of lines
};

/// Calls the functions of a thread at random, and the model with the same.
class Machine {
public:
  Machine(char name, std::vector<int> clients, uint64_t seed, bool messages)
      : name_(name), clients_(std::move(clients)), random_(seed), messages_(messages) {}

  void run() {
    // What one sequence leaves open, the next one finds.
    for (int i = 0; i < kSequences && agrees_; ++i) {
      trace_ += "\n";
      for (int steps = 5 + below(16); steps > 0 && agrees_; --steps)
        step();
    }
  }

  Model model;

private:
  int below(int n) { return int(random_() % uint64_t(n)); }
  bool seldom() { return below(10) == 0; }
  std::string number() { return name_ + std::to_string(++numbers_); }
  std::string text() { return "T" + std::to_string(++texts_) + (seldom() ? std::string(50, 'x') : ""); }

  void expect(const std::string &call, ZelkResult actual, ZelkResult expected) {
    trace_ += call + ' ' + std::to_string(expected) + "; ";
    agrees_ = actual == expected;
    EXPECT_EQ(actual, expected) << name_ << ": " << trace_.substr(trace_.rfind('\n', trace_.size() - 200));
  }

  void step() {
    const std::string_view steps = model.started() ? "LLLLLLLLLLLLCCCCCCCCMMMMDDDDSEEEXP" : "SSSSSSSSLCMDEXP";
    switch (steps[size_t(below(int(steps.size())))]) {
    case 'S':
      return start();
    case 'L':
      for (int lines = seldom() ? 11 : 1; lines > 0 && agrees_; --lines)
        add();
      return;
    case 'C':
      return addCosts();
    case 'M': {
      int value = below(99);
      ZELK_SetAnbuBewegungsart(value);
      return model.setMovement(value);
    }
    case 'D': {
      int value = below(99);
      ZELK_SetDmsID(value);
      return model.setDocument(value);
    }
    case 'E':
      return expect("end", ZELK_SplitEnde(1, messages_), model.end(true));
    case 'X':
      return expect("discard", ZELK_SplitEnde(0, messages_), model.end(false));
    case 'P':
      return single();
    }
  }

  void start() {
    int client = clients_[size_t(below(int(clients_.size())))], batch = seldom() ? kNoBatch : kBatch;
    std::string document = number();
    own_ = below(2);
    expect("start " + std::to_string(client),
           ZELK_SplitStart(client, batch, "210126", document.c_str(), 0, 0, "", "", sideOf(client).currency, 0, "", ""),
           model.start(client, batch, document));
  }

  void add() {
    // Mostly of one kind, or hardly a posting would be one.
    const bool swiss = model.client() == 2, ex = swiss ? own_ != (below(30) == 0) : seldom();
    const Side &side = sideOf(swiss ? 2 : 1);
    costType_ = below(2);
    gross_ = 3 + ++amounts_;
    const char *debit = costType_ ? side.costType : side.plain;
    const auto kind = int16_t(kindOf(side.stays));
    std::string gross = units(gross_), own = units(3 * gross_), words = text();
    if (ex)
      expect("add ex",
             ZELK_SplitEinfuegenEx(debit, 1, side.stays, kind, gross.c_str(), own.c_str(), "", "", "", words.c_str(), 0,
                                   ""),
             model.add(costType_, gross_, words, 3 * gross_));
    else
      expect("add", ZELK_SplitEinfuegen(debit, 1, side.stays, kind, gross.c_str(), "", "", words.c_str(), 0, ""),
             model.add(costType_, gross_, words, {}));
  }

  /// As much as the line amounts to, if nothing comes between.
  void addCosts() {
    if (!costType_ && !seldom()) return;
    const Side &side = sideOf(model.client() == 2 ? 2 : 1);
    for (int left = seldom() ? gross_ + 1 : gross_, count = 1 + below(3); count > 0 && agrees_; --count) {
      int amount = count == 1 ? left : 1;
      left -= amount;
      std::string money = units(amount), remark = text();
      if (below(2))
        expect("cost", ZELK_SplitKobuEinfuegen(side.centre, "", 0, money.c_str(), nullptr, nullptr, remark.c_str(), ""),
               model.addCost(side.centre, amount, remark));
      else
        expect("cost ex",
               ZELK_SplitKobuEinfuegenEx(side.centre, "", 0, money.c_str(), nullptr, nullptr, remark.c_str(), "",
                                         side.third, nullptr, nullptr, nullptr),
               model.addCost(side.centre + (*side.third ? std::string("..") + side.third : ""), amount, remark));
    }
    costType_ = false;
  }

  void single() {
    int client = clients_[size_t(below(int(clients_.size())))], batch = seldom() ? kNoBatch : kBatch;
    Draft draft{client, batch, {{sideOf(client).plain, sideOf(client).own, units(++amounts_)}}};
    draft.number = number();
    ZELK_BUCHUNG posting = toSingle(draft);
    expect("single", ZELK_BuchungEinfuegen(&posting, messages_), model.single(client, batch, draft.number, amounts_));
  }

  const char name_;
  const std::vector<int> clients_;
  std::mt19937_64 random_;
  const int32_t messages_;
  bool agrees_ = true, own_ = false;
  bool costType_ = false; ///< of the last line, which has no costs yet
  int gross_ = 0, amounts_ = 0, numbers_ = 0, texts_ = 0;
  std::string trace_;
};

std::string wordsOf(const StoredPosting &stored) {
  std::string all = stored.posting.Belegnummer;
  for (size_t i = 0; i < stored.lines.size(); ++i) {
    const vldb98::SPLIT &line = stored.lines[i];
    all += ' ' + std::string(vlba98::trimmed(line.Sollkonto)) + ' ' +
           plain(*line.BruttoFW ? line.BruttoFW : line.Brutto) + '=' + plain(line.Brutto) + ' ' +
           std::to_string(line.Bewegungsart) + '/' + std::to_string(line.DMSNr) + ' ' + line.Text;
    for (const vldb98::KOBU &cost : stored.costs)
      if (cost.Split == int32_t(i)) {
        std::string_view third = vlba98::trimmed(cost.Kostenstelle3);
        all += ' ' + std::string(vlba98::trimmed(cost.Kostenstelle1)) + (third.empty() ? "" : "..") +
               std::string(third) + ':' + plain(*cost.BetragFW ? cost.BetragFW : cost.Betrag) + cost.Bemerkung;
      }
  }
  return all;
}

class SplitMachine : public Books {
protected:
  /// Two threads, each with clients of its own or not; always the same batch.
  void agree(const std::vector<int> &first, const std::vector<int> &second) {
    std::mt19937_64 seeds = generator();
    Machine a('A', first, seeds(), true), b('B', second, seeds(), false);
    std::thread other([&] { b.run(); });
    a.run();
    other.join();
    EXPECT_EQ(int(recorder.shown.size()), a.model.refusals) << "messages of the thread that shows them";
    auto store = session(std::chrono::milliseconds(0));
    for (int client : {1, 2}) {
      std::map<char, std::vector<std::string>> stored;
      for (const StoredPosting &posting : storedPostings(*store, client, kBatch))
        stored[*posting.posting.Belegnummer].push_back(wordsOf(posting));
      EXPECT_EQ(stored['A'], a.model.stored[client]);
      EXPECT_EQ(stored['B'], b.model.stored[client]);
      EXPECT_TRUE(nothingLocked(*store, uint16_t(client)));
    }
  }
};

TEST_F(SplitMachine, EachThreadItsClient) {
  agree({1}, {2});
}

TEST_F(SplitMachine, SameClientsAndBatch) {
  agree({1, 2}, {2, 1});
}

} // namespace
} // namespace test
