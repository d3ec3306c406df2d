/// Output for people: tables that line up, progress of long work.
#pragma once

#include <string>
#include <vector>

namespace zelkctl {

/// A table whose columns are as wide as their widest cell. All texts are UTF-8.
class TextTable {
public:
  struct Column {
    std::string title;
    bool right = false; ///< numbers stand at the right
  };
  /// \param lineWidth the last column is cut so that a line has no more characters, if that leaves it readable; 0:
  /// never
  explicit TextTable(std::vector<Column> columns, size_t lineWidth = 0)
      : columns_(std::move(columns)), lineWidth_(lineWidth) {}

  void add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
  size_t rows() const { return rows_.size(); }
  void print() const;
  /// As a CSV file: separator ";", the titles as its header, nothing cut.
  void printCsv() const;

private:
  std::vector<Column> columns_;
  size_t lineWidth_;
  std::vector<std::vector<std::string>> rows_;
};

/// A line on the terminal that tells how far long work is; nothing where standard error is no terminal.
class Progress {
public:
  Progress(std::string what, size_t total);
  ~Progress();
  Progress(const Progress &) = delete;
  Progress &operator=(const Progress &) = delete;
  void advance();

private:
  std::string what_;
  size_t total_, done_ = 0;
  int shown_ = -1;
  bool visible_;
};

/// A text from the library, Windows-1252, as UTF-8 for the terminal.
std::string shown(const char *text);

/// From now on a reader that goes away is an error of the write, not the end of the program.
void watchOutput();

/// To be asked when everything is printed. \return the exit code, or kUnwritten, and said so, when standard output
/// could not be written to its end
int finishOutput(int exitCode);

/// Says what went wrong, on standard error.
void complain(const std::string &text);

} // namespace zelkctl
