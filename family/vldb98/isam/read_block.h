/// Rows that a walk comes to next, read together.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "isam/engine.h"

namespace vldb98 {

/// Counts the changes that sessions of this process have committed, so that each of them meets at once what another
/// one did.
inline std::atomic<uint64_t> committedChanges{0};

/// Rows of a table that lie after (before) its current record in the order of a key, for the steps that follow.
///
/// One row is read for the first step, then ten, then a hundred, so that nobody pays for what only walks use. A block
/// serves as long as the current record is the one that it delivered last, nobody in this process has committed a
/// change, and its time is not over: other processes may write the table, too, and a host that pauses must not be given
/// what the table held before. That a range ends is known with its last rows. That a table ends never is: fetches go on
/// across calls, and what is added after the last record is not missed.
class ReadBlock {
public:
  static constexpr int kFirstOfRange = 10;

  enum class Next : uint8_t { Row, End, Unknown };

  explicit ReadBlock(uint64_t life = 0) : life_(life) {}

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
  uint64_t life_;                                  ///< milliseconds
  uint64_t readAt_ = 0, changes_ = 0;
  std::vector<char> rows_;
};

} // namespace vldb98
