#include "isam/read_block.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "platform/system.h"

namespace vldb98 {

ReadBlock::Next ReadBlock::next(ReadOp op, int key, bool bounded, const std::vector<char> &current) {
  const bool goesOn = served_ > 0 && op_ == op && key_ == key && bounded_ == bounded &&
                      std::memcmp(row(), current.data(), recordSize_) == 0;
  if (!goesOn) {
    size_ = 0;
    return Next::Unknown;
  }
  const bool fresh = committedChanges == changes_ && platform::steadyMilliseconds() - readAt_ < life_;
  if (served_ == count_) {
    if (fresh && bounded_ && count_ < asked_) return Next::End;
    size_ = std::min(size_ + 1, int(std::size(kSizes)) - 1);
    return Next::Unknown;
  }
  if (!fresh) return Next::Unknown;
  ++served_;
  return Next::Row;
}

void ReadBlock::begin(ReadOp op, int key, bool bounded, size_t recordSize, int rows) {
  // Before the read: the rows are no younger.
  readAt_ = platform::steadyMilliseconds();
  changes_ = committedChanges;
  op_ = op;
  key_ = key;
  bounded_ = bounded;
  recordSize_ = recordSize;
  asked_ = size_t(rows);
  size_ = int(std::find(std::begin(kSizes), std::end(kSizes), rows) - std::begin(kSizes));
  count_ = served_ = 0;
}

char *ReadBlock::add() {
  rows_.resize(std::max(rows_.size(), (count_ + 1) * recordSize_));
  return rows_.data() + count_++ * recordSize_;
}

bool ReadBlock::end() {
  served_ = count_ ? 1 : 0;
  return served_ > 0;
}

void ReadBlock::drop() {
  served_ = count_ = 0;
}

} // namespace vldb98
