// Ratings from a file that people keep.
#include "vlfn98/rating.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "platform/files.h"
#include "vlba98/csv.h"
#include "vlba98/encoding.h"
#include "vlba98/text.h"

using vldb98::PERSONENKONTO;

namespace vlfn98 {
namespace {

enum Column { kMandant, kKonto, kRegister, kName, kVorname, kZusatz, kStrasse, kPLZ, kOrt, kKlasse, kText, kColumns };
constexpr const char *kTitles[kColumns] = {"Mandant", "Konto", "Registernummer", "Name", "Vorname", "Zusatz", "Strasse",
                                           "PLZ",     "Ort",   "Klasse",         "Text"};

enum class Match { None, Name, Register, Account };

// Blanks around what somebody wrote do not count.
std::string trimmed(const char *text) {
  return std::string(vlba98::trimmed(text));
}

class RatingTable {
public:
  explicit RatingTable(const vlba98::CsvFile &csv) : csv_(csv) {}

  Rating answer(const RatingRequest &request) {
    Rating best;
    Match found = Match::None;
    if (std::string problem = checkColumns(); !problem.empty()) return {0, "", problem};
    for (const vlba98::CsvRow &row : csv_.rows) {
      Rating rating;
      rating.problem = row.problem.empty() ? read(row, rating) : row.problem;
      if (!rating.problem.empty()) return {0, "", "Zeile " + std::to_string(row.line) + ": " + rating.problem};
      if (const Match match = matches(request); match > found) {
        best = rating;
        found = match;
      }
    }
    return best;
  }

private:
  std::string checkColumns() {
    if (!csv_.problem.empty()) return csv_.problem;
    for (const std::string &column : csv_.columns)
      if (std::find(std::begin(kTitles), std::end(kTitles), column) == std::end(kTitles))
        return "Die Spalte \"" + column + "\" gibt es nicht.";
    return csv_.column(kTitles[kKlasse]) < 0 ? "Die Spalte \"Klasse\" fehlt." : "";
  }

  // Takes the row's values. \return what is wrong with it
  std::string read(const vlba98::CsvRow &row, Rating &rating) {
    for (int column = 0; column < kColumns; ++column) {
      const int index = csv_.column(kTitles[column]);
      // Readable in Windows-1252: a text that is not was the problem of its row.
      value_[column] = index < 0 ? "" : trimmed(vlba98::toWindows1252(row.values[size_t(index)])->c_str());
    }
    if (value_[kKonto].empty() && value_[kRegister].empty() && value_[kName].empty())
      return "Konto, Registernummer und Name fehlen.";
    if (!number(kMandant, client_) || !number(kKlasse, rating.ratingClass))
      return "Mandant und Klasse müssen ganze Zahlen sein.";
    return vlba98::strncpy2(rating.text, value_[kText]) ? "" : "Text hat mehr als 7 Zeichen.";
  }

  bool number(Column column, int32_t &number) const {
    const std::string &text = value_[column];
    number = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return text.empty() || (error == std::errc() && end == text.data() + text.size());
  }

  Match matches(const RatingRequest &request) const {
    if (client_ != 0 && client_ != request.client) return Match::None;
    if (request.kind != 0 && !value_[kKonto].empty())
      return value_[kKonto] == trimmed(request.party.Nr) ? Match::Account : Match::None;
    if (*request.registerNumber && !value_[kRegister].empty())
      return value_[kRegister] == trimmed(request.registerNumber) ? Match::Register : Match::None;
    const PERSONENKONTO &party = request.party;
    const std::pair<Column, const char *> said[] = {{kName, party.Name},     {kVorname, party.Vorname},
                                                    {kZusatz, party.Zusatz}, {kStrasse, party.Strasse},
                                                    {kPLZ, party.PLZ},       {kOrt, party.Ort}};
    const bool agrees = !value_[kName].empty() && std::all_of(std::begin(said), std::end(said), [&](const auto &one) {
      const std::string &text = value_[one.first];
      return text.empty() || text == trimmed(one.second);
    });
    return agrees ? Match::Name : Match::None;
  }

  const vlba98::CsvFile &csv_;
  std::string value_[kColumns]; // of the row read last, Windows-1252
  int32_t client_ = 0;
};

} // namespace

std::optional<Rating> rateFromFile(const std::string &path, const RatingRequest &request) {
  if (!platform::isFile(path)) return std::nullopt;
  return RatingTable(vlba98::readCsv(path)).answer(request);
}

} // namespace vlfn98
