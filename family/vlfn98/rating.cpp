#include "vlfn98/rating.h"

#include <atomic>

#include "platform/system.h"
#include "store/typed.h"
#include "vlba98/date.h"
#include "vlba98/text.h"

using namespace vldb98;

namespace vlfn98 {
namespace {

std::atomic<RatingSource *> installed{nullptr};

void putTwo(char *text, int value) {
  text[0] = char('0' + value / 10);
  text[1] = char('0' + value % 10);
}

} // namespace

void setRatingSource(RatingSource *source) {
  installed = source;
}

std::optional<Rating> PruefeBonitaet(const RatingRequest &request, RatingSource &otherwise) {
  RatingSource *source = installed;
  std::optional<Rating> rating = (source ? *source : otherwise).rate(request);
  if (rating && !isRating(rating->ratingClass)) *rating->text = 0;
  return rating;
}

void PekoProtokoll(Store &store, int table, const char *account, int16_t action, const char *yearCode,
                   const char *before, const char *after) {
  const platform::LocalTime now = platform::localTime();
  KONTOPROTOKOLL entry{};
  entry.Kontotabelle = int16_t(table);
  vlba98::strncpy2(entry.Konto, account);
  entry.Aktion = action;
  entry.Jahr = int16_t(vlba98::yearOfCode(yearCode));
  vlba98::strncpy2(entry.Datum, vlba98::toReversed({now.year, now.month, now.day}).data());
  vlba98::strncpy2(entry.Uhrzeit, "00:00:00");
  putTwo(entry.Uhrzeit, now.hour);
  putTwo(entry.Uhrzeit + 3, now.minute);
  putTwo(entry.Uhrzeit + 6, now.second);
  vlba98::strncpy2(entry.Alt, before);
  vlba98::strncpy2(entry.Neu, after);
  insert(store, entry);
}

} // namespace vlfn98
