/// Credit ratings: the request, the source that answers it, the record of the answer.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "store/store.h"

namespace vlfn98 {

/// Bit of RatingRequest::options: the source shows its answer to the person at the parent window.
constexpr int32_t kShowRating = 2;

/// Who is to be rated: an account, or a party that has none.
struct RatingRequest {
  void *parent = nullptr;        ///< window to which the source's dialogs belong; null: none
  int32_t client = 0;            ///< client number
  int32_t kind = 0;              ///< kind of the account at the boundary (2, 4); 0: a party without one
  vldb98::PERSONENKONTO party{}; ///< the account; else name, addition, street, postal code, town and first name only
  int32_t searchType = 0;        ///< 0 to 3, as the source understands it; of a party without account, as what follows
  char date[11] = "";            ///< TT.MM.JJJJ: of the party's birth or foundation; empty: not known
  char registerNumber[21] = "";  ///< in the commercial register
  int32_t options = kShowRating;
};

/// The answer of a source.
struct Rating {
  int32_t ratingClass = 0;  ///< 1 to 3; any other: no rating
  char text[8] = "";        ///< as it is stored in the account
  std::string problem = {}; ///< German, why the source cannot tell, so that nothing is changed; empty: it can
};

constexpr bool isRating(int32_t ratingClass) {
  return ratingClass >= 1 && ratingClass <= 3;
}

/// Where ratings come from: an agency, a file, a person.
class RatingSource {
public:
  virtual ~RatingSource() = default;
  /// Called without locks and transactions, on the thread of the request; it may take its time and show dialogs.
  /// \return nothing where ratings are not kept at all
  virtual std::optional<Rating> rate(const RatingRequest &request) = 0;
};

/// Installs the source of the process, which must outlive it; null: none.
void setRatingSource(RatingSource *source);

/// Asks the source that is installed, else the one given. \return its answer, without a text where that is no rating
std::optional<Rating> PruefeBonitaet(const RatingRequest &request, RatingSource &otherwise);

/// Ratings that people keep in a CSV file (semicolon, UTF-8, a header row). A row rates the account of its Konto, the
/// party of its Registernummer, or whoever agrees with all that it says of Name, Vorname, Zusatz, Strasse, PLZ and Ort;
/// the first of them has precedence, and of several rows the first one. Mandant: only that client's. Klasse: 1 to 3,
/// another number or nothing: no rating. Text: what is stored. A row with a mistake, wherever it stands, is a problem.
/// \param path UTF-8
/// \return nothing when there is no such file
std::optional<Rating> rateFromFile(const std::string &path, const RatingRequest &request);

/// Actions of the account-change protocol.
constexpr int16_t kRatingChanged = 10;

/// Writes a change of an account, now, into the account-change protocol.
/// \param table    the account's: 2, 3
/// \param yearCode fiscal year of the account
void PekoProtokoll(vldb98::Store &store, int table, const char *account, int16_t action, const char *yearCode,
                   const char *before, const char *after);

} // namespace vlfn98
