#include "zelkctl/posting_file.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <map>

#include "vlba98/csv.h"
#include "vlba98/date.h"
#include "vlba98/encoding.h"
#include "vlba98/text.h"
#include "zelkctl/values.h"

namespace zelkctl {
namespace {

enum class Form { Number, Text, Date };
enum class Part { Head, Line, Cost };

struct Column {
  const char *name;
  Form form;
  Part part;
  bool required;
  size_t offset, size; // in a PostingRow
  ZelkResult code;     // that refuses the column's value, 0: none of its own
};

constexpr const char *kSplit = "Split"; // holds the rows of a posting together and goes nowhere

#define POSTING(name, form, part, required, member, code)                                                              \
  {                                                                                                                    \
    name, Form::form, Part::part, required, offsetof(PostingRow, posting) + offsetof(ZELK_BUCHUNG, member),            \
        sizeof(ZELK_BUCHUNG::member), code                                                                             \
  }
#define COST(name, form, member, code)                                                                                 \
  {                                                                                                                    \
    name, Form::form, Part::Cost, false, offsetof(PostingRow, cost) + offsetof(CostPosting, member),                   \
        sizeof(CostPosting::member), code                                                                              \
  }
#define CENTRE(name, index, code)                                                                                      \
  {                                                                                                                    \
    name, Form::Text, Part::Cost, false,                                                                               \
        offsetof(PostingRow, cost) + offsetof(CostPosting, Kostenstelle) +                                             \
            (index) * sizeof(CostPosting::Kostenstelle[0]),                                                            \
        sizeof(CostPosting::Kostenstelle[0]), code                                                                     \
  }
constexpr Column kColumns[] = {
    POSTING("Belegdatum", Date, Head, true, Belegdatum, ZELKERR_uzl_Belegdatum),
    POSTING("Belegnummer", Text, Head, true, Belegnummer, ZELKERR_uzl_Belegnr),
    POSTING("Text", Text, Line, false, Text, 0),
    POSTING("Text 2", Text, Line, false, Text2, 0),
    POSTING("Sollkonto", Text, Line, true, Sollkonto, ZELKERR_uzl_Sollkontonr),
    POSTING("Sollart", Number, Line, false, Sollart, 0),
    POSTING("Habenkonto", Text, Line, true, Habenkonto, ZELKERR_uzl_Habenkontonr),
    POSTING("Habenart", Number, Line, false, Habenart, 0),
    POSTING("Bruttobetrag", Text, Line, true, Bruttobetrag, ZELKERR_uzl_Bruttobetrag),
    POSTING("Steuersatz", Text, Line, false, Steuersatz, ZELKERR_uzl_Steuersatz),
    POSTING("Steuerbetrag", Text, Line, false, Steuerbetrag, ZELKERR_uzl_Steuerbetrag),
    POSTING("OP-Belegnummer", Text, Head, false, OPBelegnummer, 0),
    POSTING("Valutadatum", Date, Head, false, Valutadatum, ZELKERR_uzl_Valutadatum),
    POSTING("Währung", Text, Head, false, Waehrung, ZELKERR_uzl_Waehrung),
    POSTING("ESR", Text, Head, false, ESR, ZELKERR_uzl_Data),
    POSTING("DMS-ID", Text, Head, false, DMSID, 0),
    POSTING("Zahlungsziel", Number, Head, false, Zahlungsziel, ZELKERR_uzl_Zahlungsziel),
    POSTING("Kostenschablone", Number, Line, false, Kostenschablone, ZELKERR_uzl_Koscha),
    POSTING("Eröffnungsbuchung", Number, Head, false, Eroeffnungsbuchung, 0),
    POSTING("Abschlussbuchung", Number, Head, false, Abschlussbuchung, 0),
    POSTING("USt-Direkt", Number, Head, false, UStDirekt, 0),
    POSTING("Umbuchung", Number, Head, false, Umbuchung, 0),
    CENTRE("Kostenstelle", 0, ZELKERR_uzl_Kostenstelle),
    CENTRE("Kostenträger", 1, 0),
    CENTRE("Kostenstelle 3", 2, 0),
    CENTRE("Kostenstelle 4", 3, 0),
    CENTRE("Kostenstelle 5", 4, 0),
    CENTRE("Kostenstelle 6", 5, 0),
    COST("Kostenkennung", Number, Kostenkennung, ZELKERR_uzl_Kostenkennung),
    COST("Kostenbetrag", Text, Betrag, ZELKERR_uzl_Kostenbetrag),
    COST("Menge", Text, Menge, ZELKERR_uzl_Menge),
    COST("Einheit", Text, Einheit, ZELKERR_uzl_Einheitenwechsel),
    COST("Bemerkung", Text, Bemerkung, 0),
    COST("Bemerkung 2", Text, Bemerkung2, 0),
};
#undef POSTING
#undef COST
#undef CENTRE

// Codes that refuse what columns have together.
struct CodeColumns {
  ZelkResult code;
  const char *columns;
};
constexpr CodeColumns kCodeColumns[] = {{ZELKERR_uzl_Kontonr, "Sollkonto, Habenkonto"},
                                        {ZELKERR_uzl_Stapelnr, "Stapel"},
                                        {ZELKERR_uzl_Split, kSplit},
                                        {ZELKERR_uzl_Teilbuchungsanzahl, kSplit},
                                        {ZELKERR_nicht_eindeutige_Waehrung, "Währung"},
                                        {ZELKERR_kein_Kurs, "Währung"},
                                        {ZELKERR_uzl_Laufzeit, "Kostenstelle"},
                                        {ZELKERR_uzl_Kostenrechnung, "Kostenstelle"}};

const Column *findColumn(const std::string &name) {
  auto it = std::find_if(std::begin(kColumns), std::end(kColumns), [&](const Column &c) { return name == c.name; });
  return it == std::end(kColumns) ? nullptr : it;
}

char *fieldOf(PostingRow &row, const Column &column) {
  return reinterpret_cast<char *>(&row) + column.offset;
}

// What is no date goes over as a text that is none either, never as a part of it that happens to be one.
std::string boundaryDate(const std::string &value) {
  std::string_view text = vlba98::trimmed(value);
  if (auto date = vlba98::parseDate(text)) return vlba98::toExternal6(*date).data();
  return text.empty() ? "" : "?";
}

void refuse(FilePosting &posting, std::string problem, std::string field = "", ZelkResult code = 0) {
  if (!posting.problem.empty()) return;
  posting.problem = std::move(problem);
  posting.problemField = std::move(field);
  posting.problemCode = code;
}

class Reader {
public:
  explicit Reader(const vlba98::CsvFile &csv) : csv_(csv), splitColumn_(csv.column(kSplit)) {
    for (const std::string &name : csv.columns)
      columns_.push_back(findColumn(name));
  }

  std::vector<FilePosting> read() {
    for (const vlba98::CsvRow &row : csv_.rows) {
      std::string split = splitColumn_ >= 0 && row.problem.empty() ? row.values[size_t(splitColumn_)] : "";
      if (split.empty() || postings_.empty() || postings_.back().split != split) {
        postings_.push_back({row.line, row.line, {}, !split.empty(), split, "", "", 0});
        noteSplit(split);
      }
      postings_.back().lastLine = row.line;
      add(postings_.back(), row);
    }
    return std::move(postings_);
  }

private:
  // Rows that stand apart could be posted as two postings, neither of which was meant.
  void noteSplit(const std::string &split) {
    if (split.empty()) return;
    auto [known, fresh] = splits_.try_emplace(split, postings_.size() - 1);
    if (fresh) return;
    for (size_t index : {known->second, postings_.size() - 1})
      refuse(postings_[index], "Die Zeilen der Splitbuchung \"" + split + "\" stehen nicht beisammen.", kSplit);
  }

  void add(FilePosting &posting, const vlba98::CsvRow &row) {
    if (!row.problem.empty()) return refuse(posting, row.problem);
    PostingRow added;
    for (size_t i = 0; i < columns_.size(); ++i) {
      const std::string &value = row.values[i];
      const Column *column = columns_[i];
      if (!column || value.empty()) continue;
      take(posting, added, *column, value);
      if (column->part == Part::Line) added.hasLine = true;
      if (column->part == Part::Cost) added.hasCost = true;
      if (column->part == Part::Head && !posting.rows.empty()) checkHead(posting, added, *column);
    }
    if (!added.hasLine && posting.rows.empty())
      refuse(posting, added.hasCost ? "Vor der Kostenbuchung steht keine Zeile ihrer Splitbuchung."
                                    : "Die Zeile nennt keine Konten.");
    if (!added.hasLine && !added.hasCost) refuse(posting, "Die Zeile nennt weder Konten noch eine Kostenbuchung.");
    posting.inPieces = posting.inPieces || added.hasCost;
    posting.rows.push_back(added);
    const ZELK_BUCHUNG &head = posting.rows.front().posting;
    if (posting.inPieces && (head.Eroeffnungsbuchung || head.Abschlussbuchung))
      refuse(posting, "Eröffnungs- und Abschlussbuchungen haben weder Splits noch Kostenbuchungen.");
  }

  static void take(FilePosting &posting, PostingRow &row, const Column &column, const std::string &value) {
    char *field = fieldOf(row, column);
    if (column.form == Form::Number) {
      auto number = wholeNumber<int32_t>(value);
      if (!number) return refuse(posting, "\"" + value + "\" ist keine ganze Zahl.", column.name);
      std::memcpy(field, &*number, sizeof *number);
      return;
    }
    // Readable in Windows-1252: a text that is not was the problem of its row.
    std::string text = *vlba98::toWindows1252(column.form == Form::Date ? boundaryDate(value) : value);
    // The functions that take a posting in pieces would cut it.
    if (text.size() >= column.size)
      return refuse(posting, "Der Text ist zu lang für sein Feld.", column.name, ZELKERR_Ueberlauf);
    std::memcpy(field, text.c_str(), text.size() + 1);
  }

  static void checkHead(FilePosting &posting, PostingRow &row, const Column &column) {
    if (std::memcmp(fieldOf(row, column), fieldOf(posting.rows.front(), column), column.size) != 0)
      refuse(posting, "Die Zeilen einer Splitbuchung haben hier denselben Wert oder, nach der ersten, keinen.",
             column.name);
  }

  const vlba98::CsvFile &csv_;
  int splitColumn_;
  std::vector<const Column *> columns_;
  std::vector<FilePosting> postings_;
  std::map<std::string, size_t> splits_;
};

std::string checkColumns(const vlba98::CsvFile &csv) {
  for (const std::string &name : csv.columns)
    if (name != kSplit && !findColumn(name)) return "Die Spalte \"" + name + "\" gibt es nicht.";
  for (const Column &column : kColumns)
    if (column.required && csv.column(column.name) < 0) return std::string("Die Spalte \"") + column.name + "\" fehlt.";
  return "";
}

} // namespace

PostingFile readPostings(const std::string &path) {
  vlba98::CsvFile csv = vlba98::readCsv(path);
  PostingFile file;
  file.problem = csv.problem.empty() ? checkColumns(csv) : csv.problem;
  if (!file.problem.empty()) return file;
  file.rows = csv.rows.size();
  file.postings = Reader(csv).read();
  return file;
}

std::string columnOf(ZelkResult code) {
  for (const CodeColumns &columns : kCodeColumns)
    if (columns.code == code) return columns.columns;
  for (const Column &column : kColumns)
    if (column.code == code && code != 0) return column.name;
  return "";
}

} // namespace zelkctl
