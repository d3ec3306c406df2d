#include "zelkctl/copy.h"

#include <algorithm>
#include <array>

#include "store/guards.h"
#include "store/typed.h"
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

std::vector<YearCode> yearsOf(Store &store) {
  std::vector<YearCode> years;
  forEachStored<GESCHAEFTSJAHR>(store, [&](const GESCHAEFTSJAHR &year) {
    YearCode &code = years.emplace_back();
    vlba98::itotwo(year.Jahr - vlba98::firstYear, code.data());
  });
  return years;
}

// What is done with the rows of a client.
class Visitor {
public:
  virtual ~Visitor() = default;
  virtual void year(const YearCode &code) = 0;
  virtual void row(const Table &table, DATENBANK &record) = 0;
  virtual void endOfTable(const Table &table) = 0;
};

class Walk {
public:
  Walk(Store &store, uint16_t client, Visitor &visitor) : store_(store), client_(client), visitor_(visitor) {}

  // Where there is no such client there are no rows.
  void run() {
    uint8_t found;
    must(store_.SetzeFista(client_, found));
    if (!found) return;
    years_ = yearsOf(store_);
    for (int number : kLeadingTables)
      table(*findTable(number));
    for (const Table &t : allTables())
      if (std::find(kLeadingTables.begin(), kLeadingTables.end(), t.number) == kLeadingTables.end()) table(t);
  }

private:
  void table(const Table &t) {
    const In rows{store_, FileNumber(t.number)};
    const auto visit = [&](DATENBANK &record) { visitor_.row(t, record); };
    if (t.scope == Scope::Global) {
      if (auto own = find<DATENBANK>(rows, client_)) visit(*own);
    } else if (t.scope == Scope::Client) {
      forEachStored<DATENBANK>(rows, visit);
    } else {
      for (const YearCode &code : years_) {
        must(store_.SetzeOpenJahr(code.data()));
        visitor_.year(code);
        forEachStored<DATENBANK>(rows, visit);
      }
    }
    visitor_.endOfTable(t);
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

  void year(const YearCode &code) override { year_ = code; }

  void row(const Table &table, DATENBANK &record) override {
    if (table.scope == Scope::FiscalYear) sum_.add(year_.data(), year_.size());
    sum_.add(record.bytes, table.recordSize);
    ++rows_;
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

// Thrown: the target failed, and not what is read.
struct TargetFailed {};

template <class Work> auto inTarget(Work &&work) try { return work(); } catch (const StoreFailed &) {
  throw TargetFailed();
}

class Copying final : public Reckoning {
public:
  Copying(Store &target, uint16_t client, std::vector<TableContent> &tables, const CopyProgress &progress)
      : Reckoning(tables), target_(target), client_(client), progress_(progress) {}

  void year(const YearCode &code) override {
    inTarget([&] { must(target_.SetzeOpenJahr(code.data())); });
    Reckoning::year(code);
  }

  void row(const Table &table, DATENBANK &record) override {
    inTarget([&] {
      must(target_.Insert(record, FileNumber(table.number)));
      uint8_t found = 1;
      if (table.number == kFirmenstamm) must(target_.SetzeFista(client_, found) && found);
    });
    if (progress_) progress_();
    Reckoning::row(table, record);
  }

private:
  Store &target_;
  uint16_t client_;
  const CopyProgress &progress_;
};

} // namespace

std::vector<TableContent> content(Store &store, uint16_t client) {
  std::vector<TableContent> tables;
  Reckoning reckoning(tables);
  Walk(store, client, reckoning).run();
  return tables;
}

CopyOutcome Kopiere(Store &source, Store &target, uint16_t client, std::vector<TableContent> &copied,
                    const CopyProgress &progress) try {
  if (!exists<FIRMENSTAMM>(source, client)) return CopyOutcome::NoSuchClient;
  if (inTarget([&] { return exists<FIRMENSTAMM>(target, client); })) return CopyOutcome::ClientIsThere;

  // Without locks: postings that come meanwhile would wait for them and then be skipped.
  Transaction reading(source, true), writing(target, false);
  must(reading.isOpen());
  inTarget([&] { must(writing.isOpen()); });
  Copying copying(target, client, copied, progress);
  Walk(source, client, copying).run();
  if (inTarget([&] { return content(target, client); }) != copied) return CopyOutcome::Different;
  inTarget([&] { must(writing.commit()); });
  return CopyOutcome::Done;
} catch (const TargetFailed &) {
  return CopyOutcome::TargetFailed;
} catch (const StoreFailed &) {
  return CopyOutcome::SourceFailed;
}

bool removeCopied(Store &store, uint16_t client, const std::vector<TableContent> &copied) {
  Transaction transaction(store, false);
  must(transaction.isOpen());
  if (content(store, client) != copied) return false;
  const auto clear = [&](Scope scope) {
    for (const Table &table : allTables())
      if (table.scope == scope) must(store.DeleteTable(table.number));
  };
  for (const YearCode &code : yearsOf(store)) {
    must(store.SetzeOpenJahr(code.data()));
    clear(Scope::FiscalYear);
  }
  clear(Scope::Client);
  for (int number : {kFistaExt, kFirmenstamm})
    if (find<DATENBANK>({store, FileNumber(number)}, client)) must(store.Delete(FileNumber(number)));
  must(transaction.commit());
  return true;
}

} // namespace zelkctl
