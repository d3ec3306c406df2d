/// What was read from a server at once, to be used piece by piece.
#pragma once

#include <cstdint>
#include <vector>

#include "isam/engine.h"

namespace vldb98 {

/// The answers to look-ups that were put together.
class KeptReads {
public:
  struct Answer {
    LookUp asked;
    bool found;
    std::vector<char> record; ///< empty where none was found or asked for
  };

  void keep(Answer answer) { answers_.push_back(std::move(answer)); }
  /// An answer that says what the read would; null when there is none. That there is no record answers an exact read
  /// and a test alike.
  const Answer *find(ReadOp op, FileNumber file, const SCHLUESSEL &key) const;
  void forget(int table);
  void clear() { answers_.clear(); }
  bool empty() const { return answers_.empty(); }

private:
  std::vector<Answer> answers_;
};

/// Rows of a table that come after (before) its current record in the order of a key, for the steps that follow.
///
/// One row is read for the first step, then ten, then a hundred, so that nobody pays for what only walks use. A block
/// serves as long as the current record is the one that it delivered last, and for kLife: others may write the table
/// meanwhile, and a host that pauses must not be given what the table held before. That a range ends is known with its
/// last rows. That a table ends never is: fetches go on across calls, and what is added after the last record is not
/// missed.
class ReadBlock {
public:
  static constexpr uint64_t kLife = 1000; ///< milliseconds
  static constexpr int kFirstOfRange = 10;

  enum class Next : uint8_t { Row, End, Unknown };

  /// What a step delivers, as far as it is known. \param current record of the table
  Next next(ReadOp op, int key, bool bounded, const std::vector<char> &current);
  /// How many rows are to be read for a step whose row was not known.
  int rowsToRead() const { return kSizes[size_t(size_)]; }
  /// The row that is delivered. Valid until the next call.
  const char *row() const { return rows_.data() + (served_ - 1) * recordSize_; }

  /// Takes the rows of a read, in its order, between begin() and end(). \param rows one of the sizes
  void begin(ReadOp op, int key, bool bounded, size_t recordSize, int rows);
  /// Room for one more, and none for that one.
  char *add();
  void takeBack() { --count_; }
  bool empty() const { return count_ == 0; }
  /// There are more rows, although they are fewer than asked for.
  void leaveOpen() { asked_ = count_; }
  /// Delivers the first one. \return whether there is one
  bool end();
  void drop();

private:
  static constexpr int kSizes[] = {1, 10, 100};

  ReadOp op_ = ReadOp::First;
  int key_ = 0, size_ = 0;
  bool bounded_ = false;
  size_t asked_ = 0;
  size_t recordSize_ = 0, count_ = 0, served_ = 0; ///< none served: no block
  uint64_t readAt_ = 0;
  std::vector<char> rows_;
};

} // namespace vldb98
