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

} // namespace vldb98
