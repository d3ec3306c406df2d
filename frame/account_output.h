/// Fields of accounts that several records of the interface hold under the same names.
#pragma once

#include "records/records.h"
#include "vlba98/text.h"

namespace frame {

/// \param out ZELK_PEKO or ZELK_OUT_PERSONENKONTO; its other fields stay
template <class Out> void fillPersonal(Out &out, const vldb98::PERSONENKONTO &account) {
  vlba98::copyTrimmed(out.Kontonummer, account.Nr);
  vlba98::copyTrimmed(out.Sammelkonto, account.Sammelkonto);
  vlba98::strncpy2(out.Kuerzel, account.Kuerzel);
  vlba98::strncpy2(out.Name, account.Name);
  vlba98::strncpy2(out.Zusatz, account.Zusatz);
  vlba98::strncpy2(out.Vorname, account.Vorname);
  vlba98::strncpy2(out.Strasse, account.Strasse);
  vlba98::strncpy2(out.Land, account.Land);
  vlba98::strncpy2(out.PLZ, account.PLZ);
  vlba98::strncpy2(out.Ort, account.Ort);
  vlba98::strncpy2(out.Telefon, account.Telefon);
  vlba98::strncpy2(out.EMail, account.EMail);
  vlba98::strncpy2(out.UStIdNr, account.UStIdNr);
  vlba98::strncpy2(out.IBAN, account.IBAN);
  vlba98::strncpy2(out.BIC, account.BIC);
  vlba98::strncpy2(out.Waehrung, account.Waehrung);
  vlba98::strncpy2(out.Kreditlimit, account.Kreditlimit);
  out.Zahlungsziel = account.Zahlungsziel;
  out.Mahnkennziffer = account.Mahnkennziffer;
  out.Gesperrt = account.Gesperrt;
}

} // namespace frame
