/*
 * zelk98 - the programming interface of the Velta MERKA FIBU accounting program. C99 and C++.
 *
 * The contract of every function:
 *
 *  1. Calling convention. On Windows __stdcall, exported under the undecorated name; elsewhere the platform's own.
 *  2. Result. A ZelkResult: 1 success, 2 last record of a fetch, 0 neutral (none, not in use, cancelled), negative values
 *     are errors. ZELK_HoleFehlertext tells the name and the German text of each. Whatever the code, a refused call has
 *     changed nothing and holds no lock; only a new document identifier (DMS-ID) stays registered.
 *  3. Texts are zero-terminated 8-bit strings in Windows-1252, in arrays of the stated width; the width includes the
 *     terminator. A text of a record that does not end within its width is refused with -37 ZELKERR_Ueberlauf.
 *  4. Amounts and rates are texts in German notation ("1234,50", "-12,00", "19,00"); dates are texts "TTMMJJ" with a
 *     calendar year (80 to 99 = 1980 to 1999, 00 to 79 = 2000 to 2079) unless other forms are named.
 *  5. Memory. The library keeps no pointer behind a call. Buffers belong to the caller and have at least the stated size.
 *     Where an out pointer may be null, that value is not delivered.
 *  6. Threads. Any function may be called from any thread. Each thread has its own fetches and its own split posting
 *     under construction; they end with the thread.
 *  7. Start. There is no start call: the first call finds the program directory in the settings and opens the database.
 *     Without the settings every working function returns -36 ZELKERR_Ini; without the database -3 ZELKERR_Datenbank.
 *  8. Fehlermeldungen. Where a function takes this flag, non-zero shows each refusal as a message box, too.
 *  9. No exception leaves the library; what would be one is -2 ZELKERR_sonst.
 */
#ifndef ZELK98_H
#define ZELK98_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#define ZELK_CALL __stdcall
#define ZELK_API
#else
#define ZELK_CALL
#define ZELK_API __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef int32_t ZelkResult;

/* The result codes that calls return. Codes that are missing between these are retired. */
enum {
  ZELK_letzterDatensatz = 2,
  ZELK_OK = 1,
  ZELK_keinKonto = 0,
  ZELKERR_keine_Mandanten = -1,
  ZELKERR_sonst = -2,
  ZELKERR_Datenbank = -3,
  ZELKERR_uzl_Mandnr = -5,
  ZELKERR_uzl_Stapelnr = -6,
  ZELKERR_uzl_Kontoart = -7,
  ZELKERR_uzl_Sollkontonr = -8,
  ZELKERR_uzl_Habenkontonr = -9,
  ZELKERR_uzl_Kontonr = -10,
  ZELKERR_uzl_Belegdatum = -11,
  ZELKERR_uzl_Bruttobetrag = -12,
  ZELKERR_uzl_Steuersatz = -13,
  ZELKERR_uzl_Steuerbetrag = -14,
  ZELKERR_uzl_Gegenkonto = -15,
  ZELKERR_uzl_Bankverbindung = -16,
  ZELKERR_uzl_Skontoprozente = -17,
  ZELKERR_uzl_Mahnkennziffer = -18,
  ZELKERR_uzl_Kuerzel = -19,
  ZELKERR_uzl_Format = -20,
  ZELKERR_uzl_Kostenstelle = -23,
  ZELKERR_uzl_Kostenrechnung = -24,
  ZELKERR_uzl_Teilbuchungsanzahl = -25,
  ZELKERR_uzl_Split = -26,
  ZELKERR_uzl_Zahlungsziel = -27,
  ZELKERR_kein_Konto = -28,
  ZELKERR_kein_Kuerzel = -29,
  ZELKERR_kein_Name = -30,
  ZELKERR_Kuerzel_existiert = -32,
  ZELKERR_Ini = -36,
  ZELKERR_Ueberlauf = -37,
  ZELKERR_nicht_moeglich = -38,
  ZELKERR_keinDatensatz = -39,
  ZELKERR_keinInit = -40,
  ZELKERR_Thread = -42,
  ZELKERR_uzl_Zeitraum = -44,
  ZELKERR_uzl_Kostenkennung = -46,
  ZELKERR_uzl_Kostenbetrag = -47,
  ZELKERR_uzl_Sortierung = -48,
  ZELKERR_ZZ_existiert = -50,
  ZELKERR_uzl_Skontoprozent = -51,
  ZELKERR_uzl_Zahltage = -52,
  ZELKERR_uzl_Skontotage = -53,
  ZELKERR_uzl_TagInMonat = -54,
  ZELKERR_uzl_MonatePlus = -55,
  ZELKERR_alter_Mandant = -56,
  ZELKERR_uzl_Aktion = -57,
  ZELKERR_keine_Protokolldatei = -58,
  ZELKERR_bereits_Protokolldatei = -59,
  ZELKERR_uzl_Data = -60,
  ZELKERR_uzl_Valutadatum = -61,
  ZELKERR_uzl_Belegnr = -62,
  ZELKERR_nicht_eindeutige_Waehrung = -63,
  ZELKERR_uzl_Datum = -64,
  ZELKERR_kein_Kurs = -65,
  ZELKERR_Kurs_vorhanden = -66,
  ZELKERR_uzl_Klasse = -67,
  ZELKERR_uzl_KursDurchschnitt = -68,
  ZELKERR_keinMKRInit = -69,
  ZELKERR_Helva_only = -70,
  ZELKERR_bereitsInitialisiert = -71,
  ZELKERR_Verbindungsfehler = -72,
  ZELKERR_uzl_Datenbank = -73,
  ZELKERR_Verbindung_unterbrochen = -74,
  ZELKERR_kein_SQL_Modus = -75,
  ZELKERR_Fehler = -76,
  ZELKERR_uzl_Name = -81,
  ZELKERR_uzl_Koscha = -82,
  ZELKERR_uzl_Waehrung = -83,
  ZELKERR_uzl_Kontoklasse = -84,
  ZELKERR_uzl_Steuerart = -85,
  ZELKERR_uzl_Steuerkennung = -86,
  ZELKERR_uzl_Steusa = -87,
  ZELKERR_uzl_Ustvakz = -88,
  ZELKERR_Datev = -89,
  ZELKERR_uzl_StapelWiederkehr = -90,
  ZELKERR_StapelPasswort = -91,
  ZELKERR_Dummy = -92,
  ZELKERR_uzl_Zahlungsart = -93,
  ZELKERR_keine_Fehlernummer = -94,
  ZELKERR_uzl_Buchungsdatum = -95,
  ZELKERR_nur_PlusVersion = -96,
  ZELKERR_uzl_Laufzeit = -97,
  ZELKERR_uzl_Ustidnr = -98,
  ZELKERR_uzl_Menge = -99,
  ZELKERR_uzl_Einheitenwechsel = -100,
  ZELKERR_uzl_Bonitaet = -101,
  ZELKERR_uzl_BonitaetSuchTyp = -102,
  ZELKERR_neuerer_Mandant = -103
};

/* Account kinds (Kontoart). */
enum { ZELK_SACHKONTO = 1, ZELK_KREDITOR = 2, ZELK_DEBITOR = 4, ZELK_KOSTENSTELLE = 8 };

/* Fails to compile where a field does not lie where hosts in other languages expect it. */
#define ZELK_ASSERT(name, condition) typedef char zelk_assert_##name[(condition) ? 1 : -1]
#define ZELK_ASSERT_AT(record, field, offset) ZELK_ASSERT(record##_##field, offsetof(record, field) == (offset))

#pragma pack(push, 1)

/* Master data of a client. */
typedef struct ZELK_MANDANTENINFO {
  int32_t AktuellesJahr;  /* current fiscal year, four digits */
  int32_t Gejabeginn;     /* month in which the fiscal year begins, 1 to 12 */
  int32_t Kontenrahmen;   /* chart of accounts, 0 to 6 */
  int32_t Istversteuerer; /* 1 = taxed on cash receipts */
  int32_t EUeRechner;     /* 1 = profit by cash-basis accounting */
  int32_t Steuerfrei;     /* 1 = exempt from VAT */
  int32_t Euro;           /* 1 = the books are kept in Euro */
  char UStIdNr[16];
  char Land[4];
  char Waehrung[4];       /* currency of the books */
  char Eurokurs[12];      /* units of that currency for one Euro */
  char SvSako[8];         /* number layout of general-ledger, creditor, debtor accounts: a 9 for each digit */
  char SvKred[8];
  char SvDebi[8];
  char Name[41];
  char Zusatz[41];
} ZELK_MANDANTENINFO;

/* A single posting. */
typedef struct ZELK_BUCHUNG {
  int32_t Mandantennummer;
  int32_t Stapelnummer;       /* target batch */
  int32_t Kostenschablone;    /* cost template, 0 = none */
  int32_t Zahlungsziel;       /* payment term, 0 = none */
  int32_t Eroeffnungsbuchung; /* flag: opening posting; one account is passed empty */
  int32_t Abschlussbuchung;   /* flag: closing posting */
  int32_t Sollart;            /* kind of the debit account: 1, 2 or 4 */
  int32_t Habenart;           /* kind of the credit account */
  int32_t UStDirekt;          /* flag: VAT posted directly */
  int32_t Umbuchung;          /* flag: transfer posting */
  char Belegdatum[7];         /* document date TTMMJJ */
  char Belegnummer[17];       /* document number, not empty */
  char Text[36];
  char Sollkonto[8];
  char Habenkonto[8];
  char Bruttobetrag[13];
  char Steuersatz[6];
  char Steuerbetrag[13];
  char OPBelegnummer[17];     /* document number of the open item that the posting settles */
  char Valutadatum[7];        /* value date TTMMJJ or empty */
  char Waehrung[4];           /* at most 3 letters; empty = the client's */
  char ESR[50];               /* Swiss payment-slip reference number */
  char Text2[36];
  char DMSID[51];             /* document-management identifier */
} ZELK_BUCHUNG;

/* One line of a split posting. */
typedef struct ZELK_TEILBUCHUNG {
  int32_t Sollart;
  int32_t Habenart;
  int32_t Kostenschablone;
  char Sollkonto[8];
  char Habenkonto[8];
  char Bruttobetrag[13];
  char reserviert1;
  char Steuersatz[6];
  char Steuerbetrag[13];
  char reserviert2;
  char Text[36];
  char Text2[36];
} ZELK_TEILBUCHUNG;

/* A posting of up to ten lines. */
typedef struct ZELK_SPLITBUCHUNG {
  int32_t Mandantennummer;
  int32_t Stapelnummer;
  int32_t Teilbuchungsanzahl; /* lines used, 1 to 10 */
  int32_t UStDirekt;
  int32_t Zahlungsziel;
  int32_t Eroeffnungsbuchung;
  int32_t Abschlussbuchung;
  int32_t Umbuchung;
  char Belegdatum[7];
  char Belegnummer[17];
  char OPBelegnummer[17];
  char Valutadatum[7];
  char Waehrung[4];
  char ESR[50];
  char DMSID[51];
  ZELK_TEILBUCHUNG Teilbuchung[10];
} ZELK_SPLITBUCHUNG;

/* General-ledger account. */
typedef struct ZELK_SAKO {
  char Kontonummer[8];
  char Kuerzel[9];           /* short name */
  char Name[41];
  int32_t GuV;               /* 1 = income-statement account, 0 = balance-sheet account */
  int32_t Steuerschluessel;  /* tax key, 0 = none */
  int32_t Kostenart;         /* 1 = cost type */
  int32_t Kostenschablone;   /* default cost template, 0 = none */
  char Waehrung[4];          /* empty = the client's */
  int32_t Gesperrt;          /* 1 = not to be posted to */
} ZELK_SAKO;

/* Creditor or debtor. */
typedef struct ZELK_PEKO {
  char Kontonummer[8];
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
  char Waehrung[4];          /* empty = the client's */
  int32_t Zahlungsziel;      /* payment term, 0 = none */
  char Sammelkonto[8];       /* control account in the general ledger */
  char Kreditlimit[13];      /* amount in internal form, empty = none */
  int32_t Mahnkennziffer;    /* dunning group */
  int32_t Gesperrt;
} ZELK_PEKO;

/* Cost centre. */
typedef struct ZELK_KOST {
  char Kontonummer[8];
  int32_t Dimension;         /* cost-accounting dimension, 0 to 5 */
  char Kostref[8];           /* cost reference or empty */
  char Kuerzel[9];
  char Name[41];
  char LaufzeitVon[7];       /* running time TTMMJJ, empty = unbounded */
  char LaufzeitBis[7];
} ZELK_KOST;

#pragma pack(pop)

ZELK_ASSERT(SAKO, sizeof(ZELK_SAKO) == 82);
ZELK_ASSERT(PEKO, sizeof(ZELK_PEKO) == 385);
ZELK_ASSERT(KOST, sizeof(ZELK_KOST) == 84);

ZELK_ASSERT(MANDANTENINFO, sizeof(ZELK_MANDANTENINFO) == 170);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, AktuellesJahr, 0);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, Gejabeginn, 4);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, Kontenrahmen, 8);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, Istversteuerer, 12);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, EUeRechner, 16);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, Steuerfrei, 20);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, Euro, 24);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, UStIdNr, 28);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, Land, 44);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, Waehrung, 48);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, Eurokurs, 52);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, SvSako, 64);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, SvKred, 72);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, SvDebi, 80);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, Name, 88);
ZELK_ASSERT_AT(ZELK_MANDANTENINFO, Zusatz, 129);

ZELK_ASSERT(BUCHUNG, sizeof(ZELK_BUCHUNG) == 313);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Mandantennummer, 0);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Stapelnummer, 4);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Kostenschablone, 8);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Zahlungsziel, 12);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Eroeffnungsbuchung, 16);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Abschlussbuchung, 20);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Sollart, 24);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Habenart, 28);
ZELK_ASSERT_AT(ZELK_BUCHUNG, UStDirekt, 32);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Umbuchung, 36);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Belegdatum, 40);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Belegnummer, 47);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Text, 64);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Sollkonto, 100);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Habenkonto, 108);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Bruttobetrag, 116);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Steuersatz, 129);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Steuerbetrag, 135);
ZELK_ASSERT_AT(ZELK_BUCHUNG, OPBelegnummer, 148);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Valutadatum, 165);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Waehrung, 172);
ZELK_ASSERT_AT(ZELK_BUCHUNG, ESR, 176);
ZELK_ASSERT_AT(ZELK_BUCHUNG, Text2, 226);
ZELK_ASSERT_AT(ZELK_BUCHUNG, DMSID, 262);

ZELK_ASSERT(TEILBUCHUNG, sizeof(ZELK_TEILBUCHUNG) == 134);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, Sollart, 0);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, Habenart, 4);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, Kostenschablone, 8);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, Sollkonto, 12);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, Habenkonto, 20);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, Bruttobetrag, 28);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, reserviert1, 41);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, Steuersatz, 42);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, Steuerbetrag, 48);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, reserviert2, 61);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, Text, 62);
ZELK_ASSERT_AT(ZELK_TEILBUCHUNG, Text2, 98);

ZELK_ASSERT(SPLITBUCHUNG, sizeof(ZELK_SPLITBUCHUNG) == 1525);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Mandantennummer, 0);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Stapelnummer, 4);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Teilbuchungsanzahl, 8);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, UStDirekt, 12);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Zahlungsziel, 16);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Eroeffnungsbuchung, 20);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Abschlussbuchung, 24);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Umbuchung, 28);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Belegdatum, 32);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Belegnummer, 39);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, OPBelegnummer, 56);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Valutadatum, 73);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Waehrung, 80);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, ESR, 84);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, DMSID, 134);
ZELK_ASSERT_AT(ZELK_SPLITBUCHUNG, Teilbuchung, 185);

/* --- Results and status ------------------------------------------------------------------------------------------- */

/* The name and the German text of a result code. Works in every state of the library.
 * code: -103 to 2; else -94 and neither buffer is touched. Kurztext: 50 bytes or null. Langtext: 250 bytes or null; a
 * longer text is cut. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleFehlertext(int32_t code, char *Kurztext, char *Langtext);

/* 1, or the negative code with which the library could not be initialised (-36, -42). */
ZELK_API ZelkResult ZELK_CALL ZELK_Status(void);

/* --- Lifecycle ---------------------------------------------------------------------------------------------------- */

/* Attaches the library; a later call does nothing. Called by itself with the first function that a host calls.
 * connect: also open the database. Always 1; a failure shows in ZELK_Status. */
ZELK_API int ZELK_CALL ZELK_Attach(bool connect);

/* Undoes the attach and gives up the calling thread's state; the next call attaches again. Other threads must have
 * ended, or their state is lost. Always 1. */
ZELK_API int ZELK_CALL ZELK_Detach(void);

/* Start and end the notification of dependent applications; called by attach and detach. */
ZELK_API void ZELK_CALL ZELK_InitDLLs(void);
ZELK_API void ZELK_CALL ZELK_FreeDLLs(void);

/* The engine in use: 1 embedded database, 2 MySQL, 3 MSSQL. */
ZELK_API ZelkResult ZELK_CALL ZELK_GetUsedEngine(void);

/* Connects to a database. engine: 1 to 3 as above, anything else the default. port: below 0 counts as 0, above 65536 as
 * 65535. Database: for the embedded engine its directory, null or empty for the one in use.
 * 1 connected, 0 dialog cancelled, -72 no connection. */
ZELK_API ZelkResult ZELK_CALL ZELK_SQLInit(int32_t engine, int32_t dialog, const char *Host, const char *User,
                                           const char *Passwort, int32_t port, const char *Zusatz,
                                           const char *Datenbank);

/* Ends the work with the database for the rest of the process (other threads' connections close with them): from then on -3 from every function but ZELK_HoleFehlertext and
 * ZELK_Status. */
ZELK_API ZelkResult ZELK_CALL ZELK_SQLDeInit(void);

/* --- Settings store ------------------------------------------------------------------------------------------------ */

/* Reads a setting as text. Section: at most 100 characters count. Key null: the names of the section's values, each with
 * its terminator, and one more terminator. Default null counts as empty; one of Size characters or more is cut to Size - 2
 * and ends with two zero bytes. File is not used: settings lie in the registry. Returns the number of characters. */
ZELK_API uint32_t ZELK_CALL MFGetPrivateProfileString(const char *Section, const char *Key, const char *Default,
                                                      char *Buffer, uint32_t Size, const char *File);

/* The same as a decimal number; a text that is none counts as far as its digits go. */
ZELK_API int32_t ZELK_CALL MFGetPrivateProfileInt(const char *Section, const char *Key, int32_t Default,
                                                  const char *File);

/* Writes a setting; a null Value counts as empty. Non-zero when written. */
ZELK_API int32_t ZELK_CALL MFWritePrivateProfileString(const char *Section, const char *Key, const char *Value,
                                                       const char *File);

/* --- Clients ------------------------------------------------------------------------------------------------------ */

/* Positions on the first client: 1, or -1 when there is none. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleMandant(void);

/* Delivers the client under the cursor and moves on: 1 more follow, 2 this was the last, -40 without Init or after the
 * last, -3 also when the client was deleted meanwhile. Name, Zusatz: 41 bytes each. Each pointer may be null. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleMandant(uint32_t *Mandantennummer, char *Name, char *Zusatz);

/* Reads a client's master data. Option: reserved, pass 0. -38 when Info is null, -5 for an unknown client, -56 and -103
 * for one of another program version. A Kontenrahmen that is stored outside 0 to 6 leaves the field as it was. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleMandantenInfo(int32_t Mandantennummer, ZELK_MANDANTENINFO *Info, uint32_t Option);

/* The same into single values; each pointer may be null. Texts have the sizes of ZELK_MANDANTENINFO. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleMandantenInfoDirekt(
    int32_t Mandantennummer, int32_t *AktuellesJahr, int32_t *Gejabeginn, int32_t *Kontenrahmen,
    int32_t *Istversteuerer, int32_t *EUeRechner, int32_t *Steuerfrei, int32_t *Euro, char *UStIdNr, char *Land,
    char *Waehrung, char *Eurokurs, char *SvSako, char *SvKred, char *SvDebi, char *Name, char *Zusatz,
    uint32_t Option);

/* The program version of a client's data, and its first fiscal year (four digits): the value itself, or -5. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleMandantenVersion(int32_t Mandantennummer);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleStartJahr(int32_t Mandantennummer);

/* --- Fetches -------------------------------------------------------------------------------------------------------- */

/* Ends the calling thread's fetch, of whatever kind, except that of clients. Always 1. */
ZELK_API ZelkResult ZELK_CALL ZELK_BeendeHolen(void);

/* --- Accounts ------------------------------------------------------------------------------------------------------- */

/* Whether an account exists: 1 or 0; -7 for an unknown Kontoart. Dimension and Kostref: cost centres only; Kostref may be
 * null. */
ZELK_API ZelkResult ZELK_CALL ZELK_ExistiertKonto(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                                  int32_t Dimension, const char *Kostref);

/* Positions on the first account of a kind in the client's current fiscal year: 1, or 0 when there is none. Sortierung: 0
 * by number, 1 by short name, 2 by name. Ab: first value of that order to be delivered, at most 41 characters; null or
 * empty: from the start. -7 Kontoart, -48 Sortierung. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleKonto(int32_t Mandantennummer, int32_t Kontoart, int32_t Sortierung,
                                                 const char *Ab, int32_t Fehlermeldungen);

/* Deliver the account under the cursor and move on: 1 more follow, 2 this was the last, -40 when the last Init was not for
 * this kind, -39 after the last. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleSako(ZELK_SAKO *Konto);
ZELK_API ZelkResult ZELK_CALL ZELK_HolePeko(ZELK_PEKO *Konto);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleKost(ZELK_KOST *Konto);

/* --- Batches -------------------------------------------------------------------------------------------------------- */

/* Positions on a client's first batch: 1, or -1 when there is none. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleStapel(int32_t Mandantennummer, int32_t Fehlermeldungen);

/* Delivers the batch under the cursor and moves on: 1, 2, -40, -39 as above. Each pointer may be null. Stapelname: 41
 * bytes. Wiederkehr: recurrence in months. The others are flags: transitory, locked, holds postings, reconciliation. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleStapel(int32_t *Stapelnummer, char *Stapelname, int32_t *Wiederkehr,
                                              int32_t *Transitorisch, int32_t *Sperre, int32_t *Bebucht,
                                              int32_t *Abstimm0);

/* --- Postings ------------------------------------------------------------------------------------------------------- */

/* Inserts a posting into a batch: 1, or the code of the first check that refused it. */
ZELK_API ZelkResult ZELK_CALL ZELK_BuchungEinfuegen(const ZELK_BUCHUNG *Buchung, int32_t Fehlermeldungen);
ZELK_API ZelkResult ZELK_CALL ZELK_SplitBuchungEinfuegen(const ZELK_SPLITBUCHUNG *Buchung, int32_t Fehlermeldungen);

/* Reads the postings of a batch: Init positions on the first (1, or 0 when there is none; -6 for an unknown batch), each
 * fetch delivers one (1 more follow, 2 this was the last, -40 without Init, -39 after the last). Account numbers come
 * without blanks, amounts in internal form "000000000,00". Teilbuchungsanzahl counts all lines; the first ten are
 * delivered. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleBatch(int32_t Mandantennummer, int32_t Stapelnummer, int32_t Fehlermeldungen);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleBatch(ZELK_SPLITBUCHUNG *Buchung);

#ifdef __cplusplus
}
#endif

#endif
