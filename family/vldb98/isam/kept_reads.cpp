#include "isam/kept_reads.h"

#include <algorithm>
#include <cstring>

namespace vldb98 {
namespace {

bool answers(const KeptReads::Answer &answer, ReadOp op) {
  if (answer.asked.op == op) return true;
  if (op == ReadOp::Exists) return answer.asked.op == ReadOp::Exact;
  return op == ReadOp::Exact && answer.asked.op == ReadOp::Exists && !answer.found;
}

} // namespace

const KeptReads::Answer *KeptReads::find(ReadOp op, FileNumber file, const SCHLUESSEL &key) const {
  for (const Answer &answer : answers_)
    if (answer.asked.file == file && answers(answer, op) &&
        std::memcmp(answer.asked.key.bytes, key.bytes, sizeof key.bytes) == 0)
      return &answer;
  return nullptr;
}

void KeptReads::forget(int table) {
  std::erase_if(answers_, [table](const Answer &answer) { return tableOf(answer.asked.file) == table; });
}

} // namespace vldb98
