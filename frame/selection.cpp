#include "frame/selection.h"

#include <algorithm>

#include "frame/messages.h"
#include "store/typed.h"
#include "vlba98/encoding.h"
#include "vlba98/text.h"

namespace frame {
namespace {

// Width to which the number is padded where it leads the line.
constexpr size_t kNumberWidth = 7;

// Kept for each thread.
struct LastSelection {
  SelectionOrder order = SelectionOrder::Number;
};

// Letters of Windows-1252 in lower case, so that a search finds them whatever their case.
unsigned char folded(char c) {
  auto byte = static_cast<unsigned char>(c);
  bool upper = (byte >= 'A' && byte <= 'Z') || (byte >= 0xC0 && byte <= 0xDE && byte != 0xD7);
  if (upper) return byte + 0x20;
  if (byte == 0x8A || byte == 0x8C || byte == 0x8E) return byte + 0x10;
  return byte == 0x9F ? 0xFF : byte;
}

bool beginsWith(std::string_view line, std::string_view start) {
  return line.size() >= start.size() &&
         std::equal(start.begin(), start.end(), line.begin(), [](char a, char b) { return folded(a) == folded(b); });
}

std::string lineOf(SelectionOrder order, std::string_view number, std::string_view name) {
  std::string line(order == SelectionOrder::Number ? number : name);
  // The first tab is the one between the columns.
  std::replace(line.begin(), line.end(), '\t', ' ');
  if (order == SelectionOrder::Number) line.append(kNumberWidth - std::min(line.size(), kNumberWidth), ' ');
  return line.append(1, '\t').append(order == SelectionOrder::Number ? name : number);
}

std::string_view numberOf(SelectionOrder order, std::string_view line) {
  size_t tab = line.find('\t');
  return vlba98::trimmed(order == SelectionOrder::Number ? line.substr(0, tab) : line.substr(tab + 1));
}

} // namespace

Selection::Selection(int title, SelectionOrder order, FillSelection fill)
    : title_(title), order_(order), fill_(std::move(fill)) {}

ZelkResult Selection::refill() {
  lines_.clear();
  selected_.reset();
  const AddEntry add = [&](std::string_view number, std::string_view name) {
    lines_.push_back(lineOf(order_, number, name));
  };
  ZelkResult filled;
  try {
    filled = fill_(order_, add);
  } catch (const vldb98::StoreFailed &) {
    // A dialog may be what asks, and nothing may be thrown through its window.
    filled = ZELKERR_Datenbank;
  }
  if (filled < ZELK_OK) lines_.clear();
  return filled;
}

std::string Selection::title() const {
  return std::string(resources::text(title_));
}

std::string Selection::orderName(int order) const {
  return std::string(resources::text(order == 0 ? resources::kOrderByNumber : resources::kOrderByName));
}

std::string Selection::line(size_t index) const {
  return vlba98::toUtf8(lines_.at(index));
}

bool Selection::switchOrder(int order) {
  order_ = order == 0 ? SelectionOrder::Number : SelectionOrder::Name;
  if (ZelkResult filled = refill(); filled < ZELK_OK) {
    result_ = filled;
    return false;
  }
  search(typed_);
  return true;
}

void Selection::search(const std::string &typed) {
  typed_ = typed;
  // Nothing rather than the line before: OK must not take an entry that nobody meant.
  selected_.reset();
  auto start = vlba98::toWindows1252(typed);
  if (!start || start->empty()) return;
  auto line = std::find_if(lines_.begin(), lines_.end(), [&](const std::string &l) { return beginsWith(l, *start); });
  if (line != lines_.end()) selected_ = size_t(line - lines_.begin());
}

void Selection::select(size_t index) {
  if (index < lines_.size()) selected_ = index;
}

bool Selection::confirm() {
  if (!selected_) {
    // Whatever the messages flag: it answers a click, no call is refused.
    showMessage(resources::kPleaseSelect);
    return false;
  }
  chosen_ = numberOf(order_, lines_[*selected_]);
  result_ = ZELK_OK;
  return true;
}

ZelkResult choose(ThreadContext &context, int title, const FillSelection &fill, void *parent, std::string &chosen) {
  SelectionOrder &last = context.slot<LastSelection>().order;
  Selection selection(title, last, fill);
  if (ZelkResult filled = selection.refill(); filled < ZELK_OK) return filled;
  platform::ui().choose(selection, parent);
  last = SelectionOrder(selection.order());
  chosen = selection.chosen();
  return selection.result();
}

} // namespace frame
