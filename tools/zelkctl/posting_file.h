/// A CSV file of postings, read: its rows, put together to postings.
#pragma once

#include <string>
#include <vector>

#include "zelk98/zelk98.h"

namespace zelkctl {

/// A cost posting as ZELK_SplitKobuEinfuegenEx takes it. Texts are Windows-1252.
struct CostPosting {
  int32_t Kostenkennung;
  char Kostenstelle[6][8];
  char Betrag[13];
  char Menge[13];
  char Einheit[4];
  char Bemerkung[41];
  char Bemerkung2[41];
};

struct PostingRow {
  ZELK_BUCHUNG posting{}; ///< head and line of the posting
  CostPosting cost{};
  bool hasLine = false; ///< any column of the line is filled in; else the row only adds a cost posting
  bool hasCost = false;
};

struct FilePosting {
  int firstLine, lastLine; ///< of the file
  std::vector<PostingRow> rows;
  bool inPieces = false; ///< a split posting, or one with cost postings
  std::string split;     ///< what its rows have in the column of that name

  // Why it cannot be handed over; no text: it can.
  std::string problem;
  std::string problemField;
  ZelkResult problemCode = 0; ///< 0: none of the library's
};

struct PostingFile {
  std::vector<FilePosting> postings;
  size_t rows = 0;
  std::string problem; ///< of the file as a whole; then there are no postings
};

/// \param path UTF-8
PostingFile readPostings(const std::string &path);

/// The column whose value a code of the library refuses; empty when there is none in the file.
std::string columnOf(ZelkResult code);

} // namespace zelkctl
