// What the posting of batches leaves in the books, and who changed an account. In the shapes of records.h.
#pragma once

#include <cstdint>

namespace vldb98 {

#pragma pack(push, 1)

// Posted entry: one line of the journal of a fiscal year, which moves one account.
struct BUCHUNGSBELEG {
  int32_t Nr;           // of the entry; the lines of one posting share it
  int32_t Zeile;        // line of the entry, 0 and up
  int16_t Kontotabelle; // table of the account: 0 general ledger, 2 creditors, 3 debtors
  char Konto[8];        // key text
  int16_t Art;          // 0 of the year, 1 opening, 2 closing
  char Datum[7];        // document date
  char Soll[13];        // money in the client's currency; one of the two is zero
  char Haben[13];
  char EuroSoll[13];
  char EuroHaben[13];
  char Waehrung[4]; // of the amount in foreign currency; empty = none
  char BetragFW[13];
  int16_t Gegentabelle; // table of the contra account
  char Gegenkonto[8];
  int16_t Steuerschluessel;
  char Steuersatz[6]; // rate
  char Belegnummer[17];
  char OPBelegnummer[17];
  char Text[36];
  char Text2[36];
  int32_t DMSNr;
  int32_t Stapel; // batch, posting and line from which the entry was made
  int32_t Buchung;
  int32_t Split;
  char Buchungstag[7]; // day on which the batch was posted
};

// Posted cost posting of a fiscal year.
struct KOSTENBELEG {
  int32_t Nr;            // BUCHUNGSBELEG.Nr
  int32_t Zeile;         // 0 and up
  char Datum[7];         // document date
  char Kostenart[8];     // general-ledger account (key text)
  char Kostenstelle1[8]; // key texts
  char Kostenstelle2[8];
  char Kostenstelle3[8];
  char Kostenstelle4[8];
  char Kostenstelle5[8];
  char Kostenstelle6[8];
  int16_t Flags;   // 1 fixed costs, 2 variable costs, 32 = the amount lessens the costs
  char Betrag[13]; // money in the client's currency
  char EuroBetrag[13];
  char Menge[13];
  char Einheit[4];
  char Belegnummer[17];
  char Bemerkung[41];
  char Bemerkung2[41];
  char Kostref1[8]; // references of the cost centres whose costs it has moved (key texts); blank = none
  char Kostref2[8];
  char Kostref3[8];
  char Kostref4[8];
  char Kostref5[8];
  char Kostref6[8];
};

// Open item of a personal account.
struct OPBELEG {
  int32_t Nr;    // of the item, 1 and up, whatever the account
  char Konto[8]; // key text
  char Kuerzel[9];
  char Name[41];
  char Belegnummer[17];
  char OPBelegnummer[17];
  char Belegdatum[7];
  char Faelligkeit[7];
  char Skontodatum1[7];
  char Valutadatum[7];
  char Skontodatum2[7];
  char Text[36];
  char Brutto[13];   // money; above zero what is owed in the usual direction (by a debtor, to a creditor)
  char Ausstand[13]; // what is left of it
  char Waehrung[4];
  int16_t Waehrungsindex; // 0 = the client's currency, -1 = Euro, 1 = Waehrung
  int16_t Mahnstufe;      // -1 = dunning is blocked
  char Mahndatum[11];     // day of the last reminder, TT.MM.JJJJ; empty = none
  char Bemerkung[41];
  char Gegenkonto[8]; // key text
  int32_t Zahlungsziel;
  int32_t Flags;        // 8 payment blocked, 16 handed to debt collection
  char Skontokonto1[8]; // key texts
  char Skontokonto2[8];
  char Skontosatz1[6]; // rates
  char Skontosatz2[6];
  char Steuersatz1[6];
  char Steuersatz2[6];
  char Ausstand2[13]; // what is left in the foreign currency; empty = in the client's
  char BetragFW[13];  // gross amount in the foreign currency; empty = in the client's
  char Text2[36];
  int32_t DMSNr;
  int32_t InkassoAkte; // numbers of the debt collection, 0 = none: file, claim, costs of reminders
  int32_t InkassoForderung;
  int32_t InkassoMahnkosten;
};

// Historical item: an item as it was after a payment, and the payment. It lies in the fiscal year of the payment.
struct OPHISTORIE {
  OPBELEG OP;
  int32_t Zeile;    // which payment of the item, 1 and up
  char Zahlung[13]; // money
  char Zahldatum[7];
  int32_t Benutzer;
  char Skontobetrag[13]; // money; empty = none
  char Zahlbelegnummer[17];
  char Zahltext[36];
  int32_t Zahlungsart; // as in ZAHLZIEL
  char Zahltext2[36];
};

// Change of an account by a program.
struct KONTOPROTOKOLL {
  int32_t Nr;           // assigned by Insert when 0
  int16_t Kontotabelle; // 0 general ledger, 2 creditors, 3 debtors
  char Konto[8];        // key text
  int16_t Aktion;       // 10 = credit rating
  int16_t Jahr;         // fiscal year
  char Datum[7];
  char Uhrzeit[9]; // HH:MM:SS
  char Alt[41];    // what was there before and after
  char Neu[41];
};

#pragma pack(pop)

} // namespace vldb98
