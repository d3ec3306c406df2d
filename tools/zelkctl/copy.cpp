#include "zelkctl/copy.h"

#include <algorithm>
#include <array>

#include "store/guards.h"
#include "vlba98/date.h"
#include "vlba98/text.h"

using namespace vldb98;

namespace zelkctl {
namespace {

// Written first, since they say which client and which years the rows of the others belong to.
constexpr std::array kLeadingTables = {kFirmenstamm, kFistaExt, kGeschaeftsjahr};

using YearCode = std::array<char, 3>;

class Fnv1a {
public:
  void add(const char *data, size_t size) {
    for (size_t i = 0; i < size; ++i)
      value_ = (value_ ^ static_cast<unsigned char>(data[i])) * 0x100000001b3;
  }
  uint64_t value() const { return value_; }

private:
  uint64_t value_ = 0xcbf29ce484222325;
};

bool yearsOf(Store &store, std::vector<YearCode> &years) {
  DATENBANK record{};
  uint8_t found;
  int done = store.StepFirstExt(record, found, kGeschaeftsjahr);
  while (done && found) {
    YearCode code{};
    vlba98::itotwo(record.Geschaeftsjahr.Jahr - vlba98::firstYear, code.data());
    years.push_back(code);
    done = store.StepNextExt(record, found, kGeschaeftsjahr);
  }
  return done != 0;
}

// What is done with the rows of a client. Each function returns false to end the walk.
class Visitor {
public:
  virtual ~Visitor() = default;
  virtual bool year(const YearCode &code) = 0;
  virtual bool row(const Table &table, DATENBANK &record) = 0;
  virtual void endOfTable(const Table &table) = 0;
};

class Walk {
public:
  Walk(Store &store, uint16_t client, Visitor &visitor) : store_(store), client_(client), visitor_(visitor) {}

  // Done also when there is no such client: then there are no rows.
  bool run() {
    uint8_t found;
    if (!store_.SetzeFista(client_, found)) return false;
    if (!found) return true;
    if (!yearsOf(store_, years_)) return false;
    for (int number : kLeadingTables)
      if (!table(*findTable(number))) return false;
    for (const Table &t : allTables())
      if (std::find(kLeadingTables.begin(), kLeadingTables.end(), t.number) == kLeadingTables.end() && !table(t))
        return false;
    return true;
  }

private:
  bool table(const Table &t) {
    bool done = t.scope == Scope::Global ? ownRow(t) : t.scope == Scope::Client ? rows(t) : rowsOfYears(t);
    if (done) visitor_.endOfTable(t);
    return done;
  }

  bool ownRow(const Table &t) {
    DATENBANK record{};
    uint8_t found;
    return store_.UsedGet(record, KeyBuilder().number(client_), found, FileNumber(t.number)) &&
           (!found || visitor_.row(t, record));
  }

  bool rowsOfYears(const Table &t) {
    for (const YearCode &code : years_)
      if (!store_.SetzeOpenJahr(code.data()) || !visitor_.year(code) || !rows(t)) return false;
    return true;
  }

  bool rows(const Table &t) {
    DATENBANK record{};
    uint8_t found;
    FileNumber file = FileNumber(t.number);
    int done = store_.StepFirstExt(record, found, file);
    while (done && found) {
      if (!visitor_.row(t, record)) return false;
      done = store_.StepNextExt(record, found, file);
    }
    return done != 0;
  }

  Store &store_;
  uint16_t client_;
  Visitor &visitor_;
  std::vector<YearCode> years_;
};

// Sums up what the tables hold.
class Reckoning : public Visitor {
public:
  explicit Reckoning(std::vector<TableContent> &tables) : tables_(tables) { tables_.clear(); }

  bool year(const YearCode &code) override {
    year_ = code;
    return true;
  }

  bool row(const Table &table, DATENBANK &record) override {
    if (table.scope == Scope::FiscalYear) sum_.add(year_.data(), year_.size());
    sum_.add(record.bytes, table.recordSize);
    ++rows_;
    return true;
  }

  void endOfTable(const Table &table) override {
    if (rows_ > 0) tables_.push_back({&table, rows_, sum_.value()});
    rows_ = 0;
    sum_ = {};
  }

private:
  std::vector<TableContent> &tables_;
  YearCode year_{};
  uint64_t rows_ = 0;
  Fnv1a sum_;
};

class Copying final : public Reckoning {
public:
  Copying(Store &target, uint16_t client, std::vector<TableContent> &tables, const CopyProgress &progress)
      : Reckoning(tables), target_(target), client_(client), progress_(progress) {}

  bool failed() const { return failed_; }

  bool year(const YearCode &code) override {
    if (!target_.SetzeOpenJahr(code.data())) failed_ = true;
    return !failed_ && Reckoning::year(code);
  }

  bool row(const Table &table, DATENBANK &record) override {
    uint8_t found = 1;
    bool written = target_.Insert(record, FileNumber(table.number)) &&
                   (table.number != kFirmenstamm || target_.SetzeFista(client_, found)) && found;
    if (!written) failed_ = true;
    if (written && progress_) progress_();
    return written && Reckoning::row(table, record);
  }

private:
  Store &target_;
  uint16_t client_;
  const CopyProgress &progress_;
  bool failed_ = false;
};

} // namespace

int content(Store &store, uint16_t client, std::vector<TableContent> &tables) {
  Reckoning reckoning(tables);
  return Walk(store, client, reckoning).run();
}

CopyOutcome Kopiere(Store &source, Store &target, uint16_t client, std::vector<TableContent> &copied,
                    const CopyProgress &progress) {
  uint8_t there;
  SCHLUESSEL key = KeyBuilder().number(client);
  if (!source.Used(key, there, kFirmenstamm)) return CopyOutcome::SourceFailed;
  if (!there) return CopyOutcome::NoSuchClient;
  if (!target.Used(key, there, kFirmenstamm)) return CopyOutcome::TargetFailed;
  if (there) return CopyOutcome::ClientIsThere;

  // Without locks: postings that come meanwhile would wait for them and then be skipped.
  Transaction reading(source, true), writing(target, false);
  if (!reading.isOpen()) return CopyOutcome::SourceFailed;
  if (!writing.isOpen()) return CopyOutcome::TargetFailed;
  Copying copying(target, client, copied, progress);
  if (!Walk(source, client, copying).run())
    return copying.failed() ? CopyOutcome::TargetFailed : CopyOutcome::SourceFailed;
  std::vector<TableContent> written;
  if (!content(target, client, written)) return CopyOutcome::TargetFailed;
  if (written != copied) return CopyOutcome::Different;
  return writing.commit() ? CopyOutcome::Done : CopyOutcome::TargetFailed;
}

int removeCopied(Store &store, uint16_t client, const std::vector<TableContent> &copied, bool &unchanged) {
  unchanged = false;
  Transaction transaction(store, false);
  std::vector<TableContent> now;
  if (!transaction.isOpen() || !content(store, client, now)) return 0;
  if (now != copied) return 1;
  std::vector<YearCode> years;
  if (!yearsOf(store, years)) return 0;
  for (const YearCode &code : years) {
    if (!store.SetzeOpenJahr(code.data())) return 0;
    for (const Table &table : allTables())
      if (table.scope == Scope::FiscalYear && !store.DeleteTable(table.number)) return 0;
  }
  for (const Table &table : allTables())
    if (table.scope == Scope::Client && !store.DeleteTable(table.number)) return 0;
  for (int number : {kFistaExt, kFirmenstamm}) {
    DATENBANK record{};
    uint8_t found;
    FileNumber file = FileNumber(number);
    if (!store.UsedGet(record, KeyBuilder().number(client), found, file) || (found && !store.Delete(file))) return 0;
  }
  if (!transaction.commit()) return 0;
  unchanged = true;
  return 1;
}

} // namespace zelkctl
