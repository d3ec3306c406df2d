// Creating and changing payment terms.
#include <string>
#include <string_view>

#include "frame/call.h"
#include "frame/locked_tables.h"
#include "store/typed.h"
#include "vlba98/money.h"
#include "vlba98/text.h"
#include "vlfn98/client.h"
#include "vlfn98/terms.h"

using namespace frame;
using namespace vldb98;

namespace {

enum Action { kCreate = 1, kChange = 2 };

constexpr FileNumber kByShortName = fileNumber(kZahlziel, 1);
constexpr FileNumber kTermTable[] = {kZahlziel};

// What a host asks for; texts that it left out are empty.
struct TermRequest {
  int32_t action, number;
  std::string shortName; // as it is stored
  int32_t discountDays1;
  const char *discountRate1;
  int32_t discountDays2;
  const char *discountRate2;
  int32_t days, dayOfMonth, months;
  const char *remark;
  int32_t method;
};

// A number that goes from 0 to a greatest value.
struct Range {
  int32_t value, greatest;
  ZelkResult code;
  int message;
  const char *fill;

  bool holds() const { return value >= 0 && value <= greatest; }
  Outcome refusal() const { return {code, message, fill}; }
};

// Whether a term can have the number and the short name. For a change, the stored term is the current record then.
Outcome checkIdentity(Store &store, const TermRequest &request) {
  auto stored = [&] { return find<ZAHLZIEL>(store, request.number).has_value(); };
  const auto sameName = [&] { return find<ZAHLZIEL>({store, kByShortName}, request.shortName); };
  if (request.action == kCreate)
    return sameName() ? Outcome{ZELKERR_ZZ_existiert, resources::kExistsAlready, "Zahlungsziel"} : Outcome{};
  const Outcome missing{ZELKERR_uzl_Zahlungsziel, resources::kPaymentTermMissing};
  if (!stored()) return missing;
  if (const auto other = sameName(); other && other->Nr != request.number)
    return {ZELKERR_Kuerzel_existiert, resources::kExistsAlready, "K\xFCrzel"};
  return stored() ? Outcome{} : missing;
}

// Takes a rate in internal form, "00,00" where none is given. \return false when the text is no rate
bool takeRate(char (&rate)[6], const char *text) {
  vlba98::strncpy2(rate, *text ? text : vlba98::rateZero);
  return vlba98::IsGeld(rate, int(vlba98::rateWidth), 0, 0, rate);
}

Outcome checkDiscounts(const TermRequest &request, ZAHLZIEL &term) {
  const Range periods[] = {
      {request.discountDays1, 999, ZELKERR_uzl_Skontotage, resources::kInadmissible, "Die Skontofrist 1 ist"},
      {request.discountDays2, 999, ZELKERR_uzl_Skontotage, resources::kInadmissible, "Die Skontofrist 2 ist"}};
  for (const Range &period : periods)
    if (!period.holds()) return period.refusal();
  if (request.discountDays1 >= request.discountDays2 && request.discountDays2 != 0)
    return {ZELKERR_uzl_Skontotage, resources::kDiscountOrder};
  if (!takeRate(term.Skontosatz1, request.discountRate1))
    return {ZELKERR_uzl_Skontoprozent, resources::kIsInadmissible, "Skontosatz"};
  if (!takeRate(term.Skontosatz2, request.discountRate2))
    return {ZELKERR_uzl_Skontoprozent, resources::kIsInadmissible, "Skontosatz 2"};
  // In internal form rates compare as texts.
  std::string_view rate1 = term.Skontosatz1, rate2 = term.Skontosatz2, none = vlba98::rateZero;
  if (request.discountDays2 != 0 && rate1 <= rate2) return {ZELKERR_uzl_Skontoprozent, resources::kDiscountOrder};
  if ((rate1 == none && request.discountDays1 > 0) || (rate2 == none && request.discountDays2 > 0) ||
      (rate1 == rate2 && rate1 != none))
    return {ZELKERR_uzl_Skontoprozent, resources::kDiscountEmpty};
  if (rate2 == none && request.discountDays2 == 0) term.Skontosatz2[0] = 0;
  term.Skontotage1 = int16_t(request.discountDays1);
  term.Skontotage2 = int16_t(request.discountDays2);
  return {};
}

Outcome checkDueDate(const TermRequest &request, ZAHLZIEL &term) {
  const Range ranges[] = {{request.days, 999, ZELKERR_uzl_Zahltage, resources::kInadmissible, "Die Zahlungsfrist ist"},
                          {request.dayOfMonth, 31, ZELKERR_uzl_TagInMonat, resources::kIsInadmissible, "Tag im Monat"},
                          {request.months, 99, ZELKERR_uzl_MonatePlus, resources::kInadmissible, "Die Folgemonatszahl"},
                          {request.method, 5, ZELKERR_uzl_Zahlungsart, resources::kInadmissible, "Die Zahlungsart"}};
  for (const Range &range : ranges)
    if (!range.holds()) return range.refusal();
  term.Zahltage = int16_t(request.days);
  term.TagInMonat = int16_t(request.dayOfMonth);
  term.MonatePlus = int16_t(request.months);
  term.Zahlungsart = int16_t(request.method);
  return {};
}

// With the table locked. The result is the number of the term.
Outcome save(Store &store, const TermRequest &request) {
  if (request.shortName.empty()) return {ZELKERR_uzl_Kuerzel, resources::kShortNameMissing};
  if (Outcome identity = checkIdentity(store, request); identity.result != ZELK_OK) return identity;
  ZAHLZIEL term{};
  if (request.action == kChange) term.Nr = request.number;
  vlba98::strncpy2(term.Kuerzel, request.shortName);
  for (auto check : {checkDiscounts, checkDueDate})
    if (Outcome checked = check(request, term); checked.result != ZELK_OK) return checked;
  vlba98::strncpy2(term.Bemerkung, request.remark);
  if (request.action == kChange)
    update(store, term);
  else
    insert(store, term);
  return {ZelkResult(term.Nr)};
}

const char *orEmpty(const char *text) {
  return text ? text : "";
}

} // namespace

ZelkResult ZELK_CALL ZELK_Zahlungsziel(int32_t Mandantennummer, int32_t Aktion, int32_t Zahlzielnummer,
                                       const char *Name, int32_t Skontotage1, const char *Skontosatz1,
                                       int32_t Skontotage2, const char *Skontosatz2, int32_t Zahltage,
                                       int32_t TagInMonat, int32_t MonatePlus, const char *Bemerkung,
                                       int32_t Zahlungsart, int32_t Fehlermeldungen) {
  static constexpr Export self{.name = "ZELK_Zahlungsziel"};
  Parameter method = number("Zahlungsart:", Zahlungsart);
  method.printed = false;
  return run(self,
             {number("Mandantennummer:", Mandantennummer), number("Aktion:", Aktion),
              number("Zahlzielnummer:", Zahlzielnummer), text("Name:", Name), number("Skontotage1:", Skontotage1),
              text("Skontosatz1:", Skontosatz1), number("Skontotage2:", Skontotage2), text("Skontosatz2:", Skontosatz2),
              number("Zahltage:", Zahltage), number("TagInMonat:", TagInMonat), number("MonatePlus:", MonatePlus),
              text("Bemerkung:", Bemerkung), method, messages(Fehlermeldungen)},
             [&](ThreadContext *context) -> ZelkResult {
               Store &store = context->store();
               if (int32_t opened = vlfn98::HoleMandantenDaten(store, Mandantennummer); opened < 1) return opened;
               if (Aktion != kCreate && Aktion != kChange)
                 return refuse(*context, ZELKERR_sonst, resources::kActionInadmissible);
               TermRequest request{Aktion,
                                   Zahlzielnummer,
                                   vlfn98::storedShortName(Name),
                                   Skontotage1,
                                   orEmpty(Skontosatz1),
                                   Skontotage2,
                                   orEmpty(Skontosatz2),
                                   Zahltage,
                                   TagInMonat,
                                   MonatePlus,
                                   orEmpty(Bemerkung),
                                   Zahlungsart};
               return changeLocked(*context, store, kTermTable, [&] { return save(store, request); });
             });
}
