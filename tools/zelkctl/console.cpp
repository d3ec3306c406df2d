#include "zelkctl/console.h"

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <cstdio>

#include "platform/system.h"
#include "vlba98/encoding.h"
#include "zelkctl/verbs.h"

namespace zelkctl {
namespace {

constexpr size_t kWorthShowing = 1000;
constexpr size_t kLeastCutWidth = 12;
constexpr size_t kColumnGap = 2;

bool beginsCharacter(char utf8) {
  return (uint8_t(utf8) & 0xC0) != 0x80;
}

size_t width(const std::string &utf8) {
  return size_t(std::count_if(utf8.begin(), utf8.end(), beginsCharacter));
}

std::string cut(const std::string &utf8, size_t characters) {
  if (width(utf8) <= characters) return utf8;
  size_t end = 0;
  for (size_t seen = 0; seen < characters; ++end)
    if (beginsCharacter(utf8[end])) ++seen;
  return utf8.substr(0, end - 1) + "…";
}

void printRow(const std::vector<std::string> &cells, const std::vector<TextTable::Column> &columns,
              const std::vector<size_t> &widths) {
  std::string line;
  for (size_t i = 0; i < cells.size(); ++i) {
    std::string cell = cut(cells[i], widths[i]), padding(widths[i] - width(cell), ' ');
    line += std::string(i ? kColumnGap : 0, ' ') + (columns[i].right ? padding + cell : cell + padding);
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
    widths.push_back(widest);
  }
  size_t before = (columns_.size() - 1) * kColumnGap;
  for (size_t i = 0; i + 1 < widths.size(); ++i)
    before += widths[i];
  if (lineWidth_ > 0)
    widths.back() = std::min(widths.back(), std::max(kLeastCutWidth, lineWidth_ - std::min(lineWidth_, before)));
  for (size_t each : widths)
    rules.emplace_back(each, '-');
  printRow(titles, columns_, widths);
  printRow(rules, columns_, widths);
  for (size_t i = 0; i < rows_.size() && !std::ferror(stdout); ++i)
    printRow(rows_[i], columns_, widths);
}

void TextTable::printCsv() const {
  auto printValues = [](size_t count, auto &&valueOf) {
    std::string line;
    for (size_t i = 0; i < count; ++i) {
      std::string value = valueOf(i);
      if (value.find_first_of(";\"\r\n") != std::string::npos) {
        for (size_t at = 0; (at = value.find('"', at)) != std::string::npos; at += 2)
          value.insert(at, 1, '"');
        value = '"' + value + '"';
      }
      line += (i ? ";" : "") + value;
    }
    std::puts(line.c_str());
  };
  printValues(columns_.size(), [&](size_t i) { return columns_[i].title; });
  for (size_t at = 0; at < rows_.size() && !std::ferror(stdout); ++at)
    printValues(rows_[at].size(), [&](size_t i) { return rows_[at][i]; });
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

void watchOutput() {
#ifdef SIGPIPE
  // A handler, unlike SIG_IGN, is not handed on to programs that the library starts.
  std::signal(SIGPIPE, [](int) {});
#endif
}

int finishOutput(int exitCode) {
  // A failed write leaves its mark in the stream, whoever made it.
  if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return exitCode;
  complain(
      "Die Ausgabe konnte nicht vollständig geschrieben werden: der Datenträger ist voll, oder das Programm, das sie "
      "liest, hat aufgehört.");
  return kUnwritten;
}

void complain(const std::string &text) {
  std::fflush(stdout);
  std::fprintf(stderr, "%s\n", text.c_str());
}

} // namespace zelkctl
