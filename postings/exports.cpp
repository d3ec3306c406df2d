// The exports that take in a posting as a whole. Their parameters are gathered in memory that may be wanting, before
// the frame is there to say so.
#include <optional>

#include "frame/client.h"
#include "frame/messages.h"
#include "postings/attempts.h"
#include "postings/fields.h"
#include "vlba98/text.h"

using namespace frame;
using postings::Posting;

ZelkResult ZELK_CALL ZELK_SplitBuchungEinfuegen(const ZELK_SPLITBUCHUNG *Buchung, int32_t Fehlermeldungen) try {
  const auto posting = Buchung ? std::optional(postings::toPosting(*Buchung)) : std::nullopt;
  std::vector<Parameter> parameters;
  if (posting) parameters = postings::parametersOf(*posting);
  parameters.push_back(messages(Fehlermeldungen));
  return run(postings::kInsertingExport, parameters, [&](ThreadContext *context) -> ZelkResult {
    return posting ? postings::insert(*context, *posting) : ZELKERR_nicht_moeglich;
  });
} catch (...) {
  return ZELKERR_sonst;
}

ZelkResult ZELK_CALL ZELK_BuchungEinfuegen(const ZELK_BUCHUNG *Buchung, int32_t Fehlermeldungen) try {
  static constexpr Export self{.name = "ZELK_BuchungEinfuegen"};
  std::vector<Parameter> parameters;
  if (Buchung) parameters = postings::parametersOf(*Buchung);
  parameters.push_back(messages(Fehlermeldungen));
  return run(self, parameters, [&](ThreadContext *context) -> ZelkResult {
    if (!Buchung) return ZELKERR_nicht_moeglich;
    return postings::insertWithin(*context, postings::toPosting(*Buchung), Fehlermeldungen);
  });
} catch (...) {
  return ZELKERR_sonst;
}

ZelkResult ZELK_CALL ZELK_BuchungEinfuegenDirekt(int32_t Fehlermeldungen, int32_t Mandantennummer, int32_t Stapelnummer,
                                                 const char *Belegdatum, const char *Belegnummer, const char *Text,
                                                 const char *Sollkonto, int32_t Sollart, const char *Habenkonto,
                                                 int32_t Habenart, const char *Bruttobetrag, const char *Steuersatz,
                                                 const char *Steuerbetrag, int32_t UStDirekt, int32_t Kostenschablone,
                                                 int32_t Zahlungsziel, int32_t Eroeffnungsbuchung,
                                                 int32_t Abschlussbuchung, const char *OPBelegnummer,
                                                 const char *Valutadatum, const char *Waehrung, int32_t Umbuchung,
                                                 const char *ESR, const char *Text2, const char *DMSID) try {
  static constexpr Export self{.name = "ZELK_BuchungEinfuegenDirekt"};
  const postings::FlatArgument arguments[] = {ZELK_FLAT(Mandantennummer),
                                              ZELK_FLAT(Stapelnummer),
                                              ZELK_FLAT(Belegdatum),
                                              ZELK_FLAT(Belegnummer),
                                              ZELK_FLAT(Text),
                                              ZELK_FLAT(Sollkonto),
                                              ZELK_FLAT(Sollart),
                                              ZELK_FLAT(Habenkonto),
                                              ZELK_FLAT(Habenart),
                                              ZELK_FLAT(Bruttobetrag),
                                              ZELK_FLAT(Steuersatz),
                                              ZELK_FLAT(Steuerbetrag),
                                              ZELK_FLAT(UStDirekt),
                                              ZELK_FLAT(Kostenschablone),
                                              ZELK_FLAT(Zahlungsziel, "Zahlungziel:"),
                                              ZELK_FLAT(Eroeffnungsbuchung),
                                              ZELK_FLAT(Abschlussbuchung),
                                              ZELK_FLAT(OPBelegnummer),
                                              ZELK_FLAT(Valutadatum),
                                              ZELK_FLAT(Waehrung),
                                              ZELK_FLAT(Umbuchung),
                                              ZELK_FLAT(ESR),
                                              ZELK_FLAT(Text2),
                                              ZELK_FLAT(DMSID)};
  std::vector<Parameter> parameters = {messages(Fehlermeldungen)};
  for (const postings::FlatArgument &argument : arguments)
    parameters.push_back(postings::parameterOf(argument));
  return run(self, parameters, [&](ThreadContext *context) -> ZelkResult {
    vldb98::Store &store = context->store();
    if (ZelkResult opened = openClient(*context, store, Mandantennummer); opened <= 0) return opened;
    if (!postings::isDate(Belegdatum))
      return refuse(*context, ZELKERR_uzl_Belegdatum, resources::kPostingDateInadmissible);
    if (!vlba98::trimmed(Valutadatum ? Valutadatum : "").empty() && !postings::isDate(Valutadatum))
      return refuse(*context, ZELKERR_uzl_Valutadatum, resources::kValueDateInadmissible);
    return postings::insertWithin(*context, postings::toPosting(arguments), Fehlermeldungen, postings::Client::IsOpen);
  });
} catch (...) {
  return ZELKERR_sonst;
}
