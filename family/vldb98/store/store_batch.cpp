// Batch postings: assembled in memory, written and deleted whole.
#include "store/store.h"

#include <cstring>
#include <limits>
#include <type_traits>

namespace vldb98 {
namespace {

template <class Record> Record &in(DATENBANK &record) {
  if constexpr (std::is_same_v<Record, SPLIT>)
    return record.Split;
  else
    return record.Kobu;
}

KeyBuilder linesFrom(const BATCHBUCHUNG &posting) {
  return KeyBuilder().number(posting.Stapel).number(posting.Nr);
}

} // namespace

void Store::SplitFree() {
  lines_.clear();
  costs_.clear();
}

int Store::MemInsertSplit(const SPLIT &line) {
  lines_.push_back(line);
  return 1;
}

SPLIT *Store::PSplit(size_t index) {
  return index < lines_.size() ? &lines_[index] : nullptr;
}

int Store::MemInsertKobu(const KOBU &cost) {
  costs_.push_back(cost);
  return 1;
}

KOBU *Store::costAt(size_t index) {
  return index < costs_.size() ? &costs_[index] : nullptr;
}

template <class Work> int Store::inTransaction(Work &&work) {
  if (!Transaktion(1, 0)) return 0;
  bool done = work();
  return Transaktion(done ? 2 : 4, 0) && done;
}

int Store::InsertBat(BATCHBUCHUNG &posting) {
  posting.Nr = 0;
  posting.Anzahl = int32_t(lines_.size());
  *posting.Kennung = 0;
  bool complete = false;
  int written = inTransaction([&] { return complete = writePosting(posting); });
  outcomeUnknown_ = false;
  if (!written && complete && settlement_ && engine_->commitUnanswered()) {
    const Settlement::Outcome outcome = settlement_->of(posting, client_.Nummer, trace());
    written = outcome == Settlement::Outcome::Stored;
    outcomeUnknown_ = outcome == Settlement::Outcome::Unknown;
  }
  posting_ = written ? posting : BATCHBUCHUNG{};
  if (!written) posting.Nr = 0;
  return written;
}

bool Store::writePosting(BATCHBUCHUNG &posting) {
  DATENBANK record{};
  record.Batchbuchung = posting;
  if (!Insert(record, kBatchbuchung)) return false;
  posting = record.Batchbuchung;
  int32_t number = 0;
  for (SPLIT &line : lines_) {
    line.Stapel = posting.Stapel;
    line.Buchung = posting.Nr;
    line.Nr = number++;
  }
  int32_t split = -1;
  for (KOBU &cost : costs_) {
    number = cost.Split == split ? number + 1 : 0;
    split = cost.Split;
    cost.Stapel = posting.Stapel;
    cost.Buchung = posting.Nr;
    cost.Nr = number;
  }
  return insertAll(kSplit, lines_) && insertAll(kKobu, costs_) && markBatch(posting.Stapel, true);
}

bool Store::markBatch(int32_t batch, bool holdsPostings) {
  DATENBANK record{};
  uint8_t found;
  if (!UsedGet(record, KeyBuilder().number(batch), found, kStapel)) return false;
  // Postings without their batch can be deleted, but none is added to them.
  if (!found) return !holdsPostings;
  if (record.Stapel.Bebucht == uint8_t(holdsPostings)) return true;
  record.Stapel.Bebucht = holdsPostings;
  return Update(record, kStapel);
}

template <class Record> bool Store::insertAll(FileNumber file, const std::vector<Record> &records) {
  return engine_->insertAll(file, reinterpret_cast<const char *>(records.data()), records.size());
}

template <class Record> int Store::readLines(FileNumber file, std::vector<Record> &lines, const BATCHBUCHUNG &posting) {
  DATENBANK record{};
  uint8_t found;
  constexpr int32_t greatest = std::numeric_limits<int32_t>::max();
  int done = GetRangeExt(record, linesFrom(posting), linesFrom(posting).number(greatest).number(greatest), found, file);
  while (done && found) {
    lines.push_back(in<Record>(record));
    done = GetNextExt(record, found, file);
  }
  return done;
}

int Store::ReadBat(BATCHBUCHUNG &posting, int32_t batch, int32_t number, uint8_t &found) {
  DATENBANK record{};
  posting_ = {};
  if (!GetGeExt(record, KeyBuilder().number(batch).number(number), found, kBatchbuchung)) return 0;
  found = found && record.Batchbuchung.Stapel == batch;
  if (!found) return 1;
  SplitFree();
  if (!readLines(kSplit, lines_, record.Batchbuchung) || !readLines(kKobu, costs_, record.Batchbuchung)) return 0;
  posting = posting_ = record.Batchbuchung;
  return 1;
}

bool Store::deletePosting(const BATCHBUCHUNG &posting) {
  DATENBANK record{};
  uint8_t found;
  constexpr int ofPosting = 2;
  if (!UsedGet(record, linesFrom(posting), found, kBatchbuchung) || !found ||
      !DeleteBeginning(linesFrom(posting), ofPosting, kSplit) ||
      !DeleteBeginning(linesFrom(posting), ofPosting, kKobu) || !Delete(kBatchbuchung) ||
      !GetGeExt(record, KeyBuilder().number(posting.Stapel), found, kBatchbuchung))
    return false;
  bool others = found && record.Batchbuchung.Stapel == posting.Stapel;
  return others || markBatch(posting.Stapel, false);
}

int Store::DeleteBat() {
  if (posting_.Nr == 0) return 0;
  int done = inTransaction([&] { return deletePosting(posting_); });
  if (done) posting_ = {};
  return done;
}

bool Store::deleteAllOf(int32_t batch) {
  constexpr int ofBatch = 1;
  for (FileNumber file : {kBatchbuchung, kSplit, kKobu})
    if (!DeleteBeginning(KeyBuilder().number(batch), ofBatch, file)) return false;
  return markBatch(batch, false);
}

int Store::EmptyBat(int32_t batch) {
  int done = inTransaction([&] { return deleteAllOf(batch); });
  if (done && posting_.Stapel == batch) posting_ = {};
  return done;
}

} // namespace vldb98
