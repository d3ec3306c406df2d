#include "zelkctl/console.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "platform/system.h"
#include "vlba98/encoding.h"

namespace zelkctl {
namespace {

constexpr size_t kWorthShowing = 1000;

size_t width(const std::string &utf8) {
  return size_t(std::count_if(utf8.begin(), utf8.end(), [](char c) { return (uint8_t(c) & 0xC0) != 0x80; }));
}

void printRow(const std::vector<std::string> &cells, const std::vector<TextTable::Column> &columns,
              const std::vector<size_t> &widths) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    std::string padding(widths[i] - width(cells[i]), ' ');
    line += (i ? "  " : "") + (columns[i].right ? padding + cells[i] : cells[i] + padding);
  }
  line.erase(line.find_last_not_of(' ') + 1);
  std::puts(line.c_str());
}

} // namespace

void TextTable::print() const {
  std::vector<std::string> titles, rules;
  std::vector<size_t> widths;
  for (size_t i = 0; i < columns_.size(); ++i) {
    size_t widest = width(columns_[i].title);
    for (const auto &row : rows_)
      widest = std::max(widest, width(row[i]));
    titles.push_back(columns_[i].title);
    rules.emplace_back(widest, '-');
    widths.push_back(widest);
  }
  printRow(titles, columns_, widths);
  printRow(rules, columns_, widths);
  for (const auto &row : rows_)
    printRow(row, columns_, widths);
}

Progress::Progress(std::string what, size_t total)
    : what_(std::move(what)), total_(total), visible_(total >= kWorthShowing && platform::errorIsTerminal()) {}

Progress::~Progress() {
  if (visible_) std::fprintf(stderr, "\r%*s\r", int(what_.size()) + 40, "");
}

void Progress::advance() {
  ++done_;
  int percent = int(done_ * 100 / std::max<size_t>(total_, 1));
  if (!visible_ || percent == shown_) return;
  shown_ = percent;
  std::string bar(size_t(percent) / 5, '#');
  std::fprintf(stderr, "\r%s [%-20s] %3d %%", what_.c_str(), bar.c_str(), percent);
  std::fflush(stderr);
}

std::string shown(const char *text) {
  return vlba98::toUtf8(text);
}

void complain(const std::string &text) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", text.c_str());
}

} // namespace zelkctl
