// The record types of the database, as they lie in the record buffer.
//
// Byte-packed. Texts are Windows-1252. Five shapes of character array occur; the schema (schema.h) says which field has
// which:
//   key text   blank-padded to the array's size minus one, then a zero byte (an account number: 7 characters)
//   text       zero-terminated, at most the array's size minus one characters
//   money      char[13], internal money text "000000000,00"; char[6], rate in percent "00,00"; empty = no value
//              (of an account's values: zero)
//   date       char[7], reversed date JJMMTT whose JJ is the year minus 1980; empty = no date
//   year       char[3], fiscal-year code: the year minus 1980 as two digits ("46" = 2026); empty = no year
// Flags are 0 or 1 unless said otherwise.
#pragma once

#include <cstdint>

#include "records/ledger_records.h"

namespace vldb98 {

#pragma pack(push, 1)

// Client master record.
struct FIRMENSTAMM {
  uint16_t Nummer; // client number, 1 to 65535
  char Name[41];
  char Zusatz[41];
  char AktJahr[3];      // current fiscal year
  char StartJahr[3];    // first fiscal year; empty = the current one
  int16_t Gejabeginn;   // month in which the fiscal year begins, 1 to 12
  int16_t Kontenrahmen; // chart of accounts, 0 to 6
  int16_t Istversteuerer;
  int16_t EUeRechner;
  int16_t Steuerfrei;
  int16_t Euro; // 1 = the books are kept in Euro
  char UStIdNr[16];
  char Land[4];      // country code as on vehicles ("D", "CH")
  char Waehrung[4];  // currency of the books ("EUR", "CHF")
  char Eurokurs[12]; // units of the client's currency for one Euro, decimal comma
  char SvSako[8];    // number layouts for display: a 9 for each digit, blanks as grouping ("99 99")
  char SvKred[8];
  char SvDebi[8];
  int16_t Kontolaenge; // digits of general-ledger account numbers, 4 to 7; 0 counts as 4
  int32_t Optionen;    // posting options; 8192 = round amounts to five hundredths
  char VortragSako[8]; // balance-forward accounts (key texts) for general-ledger accounts, creditors and debtors
  char VortragKred[8];
  char VortragDebi[8];
  int16_t Version; // version of the client's data, see kDataVersion
};

// Extension of the client master record.
struct FISTA_EXT {
  uint16_t Nummer; // client number
  char Strasse[41];
  char PLZ[8];
  char Ort[41];
  char Steuernummer[21];
  uint8_t Schweiz; // books are kept under the rules of Switzerland
  uint8_t Kostenstellenpflicht;
  int16_t Dimension3; // dimensions of the third to sixth cost centre of a cost posting; 0 = 2, 3, 4, 5
  int16_t Dimension4;
  int16_t Dimension5;
  int16_t Dimension6;
};

// Fiscal year of a client.
struct GESCHAEFTSJAHR {
  int16_t Jahr;   // calendar year in which the fiscal year begins
  char Beginn[7]; // first and last day (dates)
  char Ende[7];
  uint8_t Abgeschlossen; // 1 = no longer bookable
};

// What the ledger has posted to an account: debit and credit.
struct WERTEPAAR {
  char Soll[13]; // money
  char Haben[13];
};

// The values of an account in a fiscal year, in one currency.
struct KONTOWERTE {
  WERTEPAAR Eroeffnung; // opening postings of the year
  WERTEPAAR Abschluss;  // closing postings of the year
  WERTEPAAR Monat[12];  // all other postings, by month of the fiscal year
};

// Budget values of a fiscal year.
struct SOLLWERTE {
  char Monat[12][13]; // money, by month of the fiscal year
  char Gesamt[13];    // of the year
};

// General-ledger account of a fiscal year.
struct SACHKONTO {
  char Nr[8]; // key text
  char Kuerzel[9];
  char Name[41];
  uint8_t GuV;              // 1 = income-statement account, 0 = balance-sheet account
  int16_t Steuerschluessel; // tax key, 0 = none
  uint8_t Kostenart;        // 1 = cost type: postings may carry cost postings
  int32_t Kostenschablone;  // default cost template, 0 = none
  char Waehrung[4];         // currency of the account; empty = the client's
  uint8_t Gesperrt;         // 1 = not to be posted to
  uint8_t SWinEuro;         // 1 = the budget values are in Euro
  SOLLWERTE Sollwerte;
  KONTOWERTE Werte; // in the client's currency
  KONTOWERTE EuroWerte;
};

// Creditor or debtor account of a fiscal year.
struct PERSONENKONTO {
  char Nr[8]; // key text
  char Kuerzel[9];
  char Name[41];
  char Zusatz[41];
  char Vorname[31];
  char Strasse[31];
  char Land[4];
  char PLZ[7];
  char Ort[31];
  char Telefon[21];
  char EMail[61];
  char UStIdNr[16];
  char IBAN[35];
  char BIC[12];
  char Waehrung[4];       // currency of the account; empty = the client's
  int32_t Zahlungsziel;   // payment term, 0 = none
  char Sammelkonto[8];    // control account in the general ledger (key text)
  char Kreditlimit[13];   // money; empty = none
  int16_t Mahnkennziffer; // dunning group, 0 = normal
  uint8_t Gesperrt;
  char Bonitaet[8]; // credit rating; empty = none
  uint8_t SWinEuro; // 1 = the budget values are in Euro
  SOLLWERTE Sollwerte;
  KONTOWERTE Werte; // in the client's currency
  KONTOWERTE EuroWerte;
};

// Cost centre of a fiscal year.
struct KOST {
  char Nr[8];        // key text
  int16_t Dimension; // cost-accounting dimension, 0 to 5
  char Kostref[8];   // cost reference (key text); blank = none
  char Kuerzel[9];
  char Name[41];
  char LaufzeitVon[7]; // running time (dates); empty = unbounded
  char LaufzeitBis[7];
  uint8_t SWinEuro; // 1 = the budget values are in Euro
  SOLLWERTE Sollwerte;
  SOLLWERTE Sollwerte2; // second set, which counts beside the first
  char Kosten[12][13];  // money: costs by month of the fiscal year, in the client's currency
  char EuroKosten[12][13];
};

// Batch.
struct STAPEL {
  int32_t Nr; // 1 and up; assigned by Insert when 0
  char Name[41];
  int16_t Wiederkehr; // recurrence interval in months, 0 to 99
  uint8_t Transitorisch;
  uint8_t Sperre;
  uint8_t Bebucht; // the batch holds postings
  uint8_t Abstimm0;
  char Passwort[17];
  uint8_t VonExtern; // created through the programming interface
  uint8_t Gecleart;
  uint8_t Pflicht; // standard batch of the accounting program
  uint8_t Kore;    // batch of the cost-accounting product
};

// Posting of a batch.
struct BATCHBUCHUNG {
  int32_t Stapel;
  int32_t Nr; // within the batch; assigned by Insert when 0
  char Belegdatum[7];
  char Belegnummer[17];
  char OPBelegnummer[17];
  char Valutadatum[7];
  char Waehrung[4]; // empty = the client's
  char Kurs[13];    // rate and units of the conversion, as in KURSE; empty = in the client's currency
  int32_t Einheiten;
  char ESR[50];
  int32_t DMSNr; // number of the document-management link, 0 = none
  int32_t Zahlungsziel;
  uint8_t USTDirekt;
  uint8_t Eroeffnung;
  uint8_t Abschluss;
  uint8_t Umbuchung;
  int32_t Anzahl;   // number of partial postings
  char Kennung[33]; // identifier of the posting, unique within the client; assigned by Insert when empty (identifier.h)
};

// One line of a batch posting.
struct SPLIT {
  int32_t Stapel;
  int32_t Buchung; // BATCHBUCHUNG.Nr
  int32_t Nr;      // 0 and up
  int16_t Sollart; // 2 general-ledger account, 4 creditor, 8 debtor
  int16_t Habenart;
  char Sollkonto[8]; // key text
  char Habenkonto[8];
  char Brutto[13]; // money, as Netto and Steuerbetrag in the client's currency
  char Netto[13];
  int16_t Steuerschluessel;
  int16_t Steuerseite;   // 0 none, 1 credit, 2 debit
  char Steuersatz[6];    // rate of the tax in the gross amount
  char Steuerbetrag[13]; // money
  char BruttoFW[13];     // money in the posting's foreign currency; empty = in the client's
  char SteuerFW[13];
  char Faelligkeit[7]; // due date
  char Text[36];
  char Text2[36];
  int32_t Kostenschablone;
  int32_t Bewegungsart;   // kind of a fixed-asset movement, 0 = none
  int32_t DMSNr;          // identifier of a document of this line, 0 = none
  char Schluesselsatz[6]; // rate of the tax key, whether or not the gross amount holds tax; empty = no key
};

// Cost posting of a line of a batch posting.
struct KOBU {
  int32_t Stapel;
  int32_t Buchung;
  int32_t Split;         // SPLIT.Nr
  int32_t Nr;            // 0 and up
  char Kostenstelle1[8]; // key texts
  char Kostenstelle2[8];
  char Kostenstelle3[8];
  char Kostenstelle4[8];
  char Kostenstelle5[8];
  char Kostenstelle6[8];
  int32_t Kostenkennung; // 0 none, 1 fixed, 2 variable
  char Betrag[13];       // money in the client's currency
  char BetragFW[13];     // money in the posting's foreign currency; empty = in the client's
  char Prozent[13];      // money: share of the line's net amount in percent
  char Menge[13];
  char Einheit[4];
  char Bemerkung[41];
  char Bemerkung2[41];
};

// User of the accounting program.
struct BENUTZER {
  int32_t Nr;
  char Name[41];
};

// Payment term.
struct ZAHLZIEL {
  int32_t Nr; // 1 and up; assigned by Insert when 0
  char Kuerzel[11];
  int16_t Skontotage1; // discount period in days
  char Skontosatz1[6]; // rate
  int16_t Zahltage;    // net payment period in days
  int16_t TagInMonat;  // day of the month on which payment is due, 0 = none
  int16_t MonatePlus;  // following months
  int16_t Zahlungsart; // 0 to 5
  char Bemerkung[41];
  int16_t Skontotage2;
  char Skontosatz2[6]; // rate
};

// Tax key, valid from a date on.
struct STEUSA {
  int16_t Schluessel;
  char GueltigAb[7]; // date
  char Bezeichnung[41];
  char Satz[6];        // rate
  int16_t Art;         // 0 tax-free, 1 output tax, 2 input tax, 3 intra-community acquisition, 4 reverse charge
  int16_t Anteil;      // percent of the tax that is deductible, 1 to 99; 0 = all of it
  char Steuerkonto[8]; // tax account (key text); blank = none
  char Gegenkonto[8];  // second tax account of an acquisition (input tax); blank = none
  int16_t Ustvakz;     // line of the VAT advance return, 0 = none
};

// Exchange rate, valid from a date on.
struct KURSE {
  char Waehrung[4];
  char Datum[7];     // date
  char Kurs[13];     // units of the client's currency for Einheiten of Waehrung, decimal comma, up to 6 decimals
  int32_t Einheiten; // 1, 10, 100, ...
};

// Line of a report structure.
struct AUFBAU {
  int32_t Nr; // 1 = root
  int32_t Vater;
  int32_t Flags;    // 1 account line, 4 hidden
  int32_t Naechste; // next sibling, 0 = none
  int32_t Kind;     // first child, 0 = none
  char Name[41];    // for an account line the account number
  char Kennung[21];
  int32_t Flags2; // 4 = the second identifier holds
  char Kennung2[21];
};

// Document-management link.
struct DMS_ID {
  int32_t Nr; // assigned by Insert when 0
  char Id[51];
  int32_t Kostenschablone; // cost template that document capture assigned, 0 = none
};

// Cost template: distributes an amount over cost centres.
struct KOSCHA {
  int32_t Nr;
  char Name[41];
};

// One share of a cost template.
struct KOSCHA_ZEILE {
  int32_t Schablone;
  int32_t Nr;            // 1 and up
  char Kostenstelle1[8]; // key texts
  char Kostenstelle2[8];
  int32_t Kostenkennung; // as in KOBU
  char Anteil[13];       // money: weight of the share; percent where the shares add up to 100
};

// Cost type and cost centre that go together. A cost type without such records goes with every cost centre.
struct KOMBINATION {
  char Kostenart[8];    // general-ledger account (key text)
  char Kostenstelle[8]; // key text
};

#pragma pack(pop)

// Version of the client data that this library reads and writes.
constexpr int16_t kDataVersion = 98;

// One record buffer for every table.
union DATENBANK {
  FIRMENSTAMM Firmenstamm;
  FISTA_EXT FistaExt;
  GESCHAEFTSJAHR Geschaeftsjahr;
  SACHKONTO Sachkonto;
  PERSONENKONTO Personenkonto;
  KOST Kost;
  STAPEL Stapel;
  BATCHBUCHUNG Batchbuchung;
  SPLIT Split;
  KOBU Kobu;
  ZAHLZIEL Zahlziel;
  STEUSA Steusa;
  KURSE Kurse;
  AUFBAU Aufbau;
  DMS_ID DmsId;
  KOSCHA Koscha;
  KOSCHA_ZEILE KoschaZeile;
  KOMBINATION Kombination;
  BUCHUNGSBELEG Buchungsbeleg;
  KOSTENBELEG Kostenbeleg;
  OPBELEG Opbeleg;
  OPHISTORIE Ophistorie;
  BENUTZER Benutzer;
  KONTOPROTOKOLL Kontoprotokoll;
  char bytes[1536];
};

} // namespace vldb98
