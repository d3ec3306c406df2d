// Turnover and balance of an account.
#include "evaluations/turnover.h"
#include "frame/call.h"
#include "vlfn98/periods.h"

using namespace frame;
using namespace evaluations;

ZelkResult ZELK_CALL ZELK_HoleUmsatz(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                     int32_t Zeitraum, int32_t Jahr, int32_t Fehlermeldungen, int32_t Ausgabeart,
                                     char *Sollumsatz, char *Habenumsatz, char *Umsatzsaldo, char *Eurosoll,
                                     char *Eurohaben, char *Eurosaldo, int32_t Dimension, const char *Kostref) {
  static constexpr Export self{.name = "ZELK_HoleUmsatz"};
  return run(
      self,
      {number("Mandantennummer:", Mandantennummer), text("Kontonummer:", Kontonummer), number("Kontoart:", Kontoart),
       number("Zeitraum:", Zeitraum), number("Jahr:", Jahr), messages(Fehlermeldungen),
       number("Ausgabeart:", Ausgabeart), out("Sollumsatz:", Sollumsatz), out("Habenumsatz:", Habenumsatz),
       out("Umsatzsaldo:", Umsatzsaldo), out("Eurosoll:", Eurosoll), out("Eurohaben:", Eurohaben),
       out("Eurosaldo:", Eurosaldo), number("Dimension:", Dimension), text("Kostref:", Kostref)},
      [&](ThreadContext *context) {
        return finish(*context,
                      turnover(*context, {Mandantennummer, Kontonummer, Kontoart, Dimension, Kostref}, Zeitraum, Jahr,
                               Ausgabeart, {Sollumsatz, Habenumsatz, Umsatzsaldo, Eurosoll, Eurohaben, Eurosaldo}));
      });
}

ZelkResult ZELK_CALL ZELK_HoleSaldo(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                    int32_t Fehlermeldungen, int32_t Ausgabeart, char *Saldo, char *Eurosaldo,
                                    const char *PerDatum, int32_t Dimension, const char *Kostref) {
  static constexpr Export self{.name = "ZELK_HoleSaldo"};
  return run(self,
             {number("Mandantennummer:", Mandantennummer), text("Kontonummer:", Kontonummer),
              number("Kontoart:", Kontoart), messages(Fehlermeldungen), number("Ausgabeart:", Ausgabeart),
              out("Saldo:", Saldo), out("Eurosaldo:", Eurosaldo), text("Per-Datum:", PerDatum),
              number("Dimension:", Dimension), text("Kostref:", Kostref)},
             [&](ThreadContext *context) {
               const AccountRequest account{Mandantennummer, Kontonummer, Kontoart, Dimension, Kostref};
               if (PerDatum && *PerDatum)
                 return finish(*context, balanceOnDay(*context, account, PerDatum, Ausgabeart, Saldo, Eurosaldo));
               return finish(*context, turnover(*context, account, vlfn98::kWholeYear, -1, Ausgabeart,
                                                {nullptr, nullptr, Saldo, nullptr, nullptr, Eurosaldo}));
             });
}
