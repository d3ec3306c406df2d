// Credit ratings of accounts and of parties that have none.
#include "vlfn98/rating.h"

#include "frame/call.h"
#include "frame/client.h"
#include "frame/locked_tables.h"
#include "frame/messages.h"
#include "frame/notification.h"
#include "frame/program.h"
#include "frame/protocol.h"
#include "openitems/selection.h"
#include "store/typed.h"
#include "vlba98/encoding.h"
#include "vlfn98/accounts.h"
#include "vlfn98/dates.h"

using namespace frame;
using namespace vldb98;
using vlfn98::Rating;
using vlfn98::RatingRequest;

namespace {

constexpr int32_t kLastSearchType = 3;
const char kRatingFile[] = "bonitaet.csv";

// What a host has that installed no source: the file in the program directory, if somebody keeps one.
class RatingFile final : public vlfn98::RatingSource {
public:
  explicit RatingFile(const ThreadContext &context) : context_(context) {}

  std::optional<Rating> rate(const RatingRequest &request) override {
    auto answer = vlfn98::rateFromFile(programSettings().programDirectory + kRatingFile, request);
    if (!answer || !answer->problem.empty() || !vlfn98::isRating(answer->ratingClass)) return answer;
    const std::string shown = std::to_string(answer->ratingClass) + " " + answer->text;
    protocolLine("Bonität: " + vlba98::toUtf8(shown));
    if ((request.options & vlfn98::kShowRating) && context_.messages) showMessage(resources::kRatingShown, shown);
    return answer;
  }

private:
  const ThreadContext &context_;
};

// Asks the source. \return -2 when it cannot tell; 0 when there is none
ZelkResult ask(const ThreadContext &context, const RatingRequest &request, Rating &rating) {
  RatingFile file(context);
  const std::optional<Rating> answer = vlfn98::PruefeBonitaet(request, file);
  if (!answer) return ZELK_keinKonto;
  if (!answer->problem.empty())
    return refuse(context, ZELKERR_sonst, resources::kRatingUnreadable,
                  vlba98::toWindows1252(answer->problem).value_or(""));
  rating = *answer;
  return ZELK_OK;
}

const Outcome kNoSuchAccount{ZELKERR_uzl_Kontonr, resources::kAccountNumberInadmissible};

// An account of the open year.
std::optional<PERSONENKONTO> readAccount(Store &store, int table, std::string_view number) {
  if (number.size() > openitems::kAccountWidth) return std::nullopt;
  return find<PERSONENKONTO>({store, FileNumber(table)}, number);
}

// Stores a rating in the account as it is now, and in the account-change protocol, both or nothing. With the table
// locked.
Outcome writeRating(Store &store, int table, std::string_view number, const char *rating, PERSONENKONTO &changed) {
  Transaction writing(store, false);
  must(writing.isOpen());
  const auto account = readAccount(store, table, number);
  if (!account) {
    must(writing.rollback());
    return kNoSuchAccount;
  }
  changed = *account;
  vlba98::strncpy2(changed.Bonitaet, rating);
  vlfn98::PekoProtokoll(store, table, account->Nr, vlfn98::kRatingChanged, store.HoleOpenJahr(), account->Bonitaet,
                        changed.Bonitaet);
  update({store, FileNumber(table)}, changed);
  must(writing.commit());
  return {};
}

// The source is asked before anything is locked: it may take long, or wait for a person, and nobody else is to wait.
ZelkResult rateAccount(ThreadContext &context, Store &store, RatingRequest &request, std::string_view number) {
  if (request.kind != ZELK_KREDITOR && request.kind != ZELK_DEBITOR)
    return refuse(context, ZELKERR_uzl_Kontoart, resources::kAccountKindInadmissible);
  const int table = vlfn98::KzFromZELKArt(request.kind);
  const auto account = readAccount(store, table, number);
  if (!account) return refuse(context, kNoSuchAccount.result, kNoSuchAccount.message);
  request.party = *account;
  Rating rating;
  if (ZelkResult asked = ask(context, request, rating); asked != ZELK_OK) return asked;

  // The source may have called the library, which then stands in another client or year, or in another session.
  Store &now = context.store();
  if (ZelkResult opened = openClient(context, now, request.client); opened <= 0) return opened;
  // Also where the source does not know the account: a stored rating must not outlive its source's word.
  const FileNumber tables[] = {FileNumber(table)};
  PERSONENKONTO changed;
  ZelkResult result =
      changeLocked(context, now, tables, [&] { return writeRating(now, table, number, rating.text, changed); });
  if (result == ZELK_OK) notifyAccount(now, request.kind, changed);
  return result;
}

// \return 1 for a rating, 0 for none
ZelkResult rateParty(ThreadContext &context, const RatingRequest &request) {
  if (request.searchType < 0 || request.searchType > kLastSearchType)
    return refuse(context, ZELKERR_uzl_BonitaetSuchTyp, resources::kInadmissible, "Der Suchtyp ist");
  if (*request.date && !vlfn98::IsDatumLong(request.date))
    return refuse(context, ZELKERR_uzl_Datum, resources::kDateInadmissible);
  Rating rating;
  if (ZelkResult asked = ask(context, request, rating); asked != ZELK_OK) return asked;
  return vlfn98::isRating(rating.ratingClass) ? ZELK_OK : ZELK_keinKonto;
}

} // namespace

ZelkResult ZELK_CALL ZELK_ErmittleBonitaet(void *HandleParent, int32_t Mandantennummer, int32_t Kontoart,
                                           const char *Kontonr, int32_t Suchtyp, const char *Name, const char *Zusatz,
                                           const char *Strasse, const char *PLZ, const char *Ort, const char *Vorname,
                                           const char *Datum, const char *Registernummer) {
  static constexpr Export self{.name = "ZELK_ErmittleBonitaet"};
  return run(self,
             {out("Handle-Parnet:", HandleParent), number("Mandantenummer:", Mandantennummer),
              number("Kontoart:", Kontoart), text("Kontonr:", Kontonr), number("Suchtyp:", Suchtyp),
              text("Name:", Name), text("Zusatz:", Zusatz), text("Strasse:", Strasse), text("PLZ:", PLZ),
              text("Ort:", Ort), text("Vorname:", Vorname), text("Datum:", Datum),
              text("Registernummer:", Registernummer)},
             [&](ThreadContext *context) -> ZelkResult {
               if (Mandantennummer == 0) return ZELKERR_uzl_Mandnr;
               Store &store = context->store();
               if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
               RatingRequest request;
               request.parent = HandleParent;
               request.client = Mandantennummer;
               request.kind = Kontoart;
               std::string_view account = openitems::given(Kontonr);
               if (!account.empty()) return rateAccount(*context, store, request, account);
               if (Kontoart != 0) return ZELK_keinKonto;
               auto copy = [](auto &field, const char *given) { vlba98::strncpy2(field, given ? given : ""); };
               request.searchType = Suchtyp;
               copy(request.party.Name, Name);
               copy(request.party.Zusatz, Zusatz);
               copy(request.party.Strasse, Strasse);
               copy(request.party.PLZ, PLZ);
               copy(request.party.Ort, Ort);
               copy(request.party.Vorname, Vorname);
               copy(request.date, Datum);
               copy(request.registerNumber, Registernummer);
               return rateParty(*context, request);
             });
}
