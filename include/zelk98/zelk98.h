/*
 * zelk98 - the programming interface of the Velta MERKA FIBU accounting program. C99 and C++.
 *
 * The contract of every function:
 *
 *  1. Calling convention. On Windows __stdcall, exported under the undecorated name; elsewhere the platform's own.
 *  2. Result. A ZelkResult: 1 success, 2 last record of a fetch, 0 neutral (none, not in use, cancelled), negative values
 *     are errors. ZELK_HoleFehlertext tells the name and the German text of each. Whatever the code, a refused call has
 *     changed nothing and holds no lock; only a new document identifier (DMS-ID) stays registered, and an exchange rate
 *     that a person has entered stays stored.
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
 *     A host that frees the library calls ZELK_Detach before, when its other threads that have called have ended: the
 *     library itself stays in the process, and attached with its database open where it was not detached.
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
  ZELKERR_keine_Stapel = -1,        /* by function, as for clients */
  ZELKERR_keine_Zahlungsziele = -1,
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

/* One line of a stored posting, with what the library made of it. Amounts in internal form "000000000,00". */
typedef struct ZELK_BATCHZEILE {
  ZELK_TEILBUCHUNG Teilbuchung; /* as it was inserted */
  int32_t Steuerschluessel;     /* tax key, 0 = none */
  int32_t Steuerseite;          /* account that bears the tax: 0 none, 1 credit, 2 debit */
  char Brutto[13];              /* in the client's currency */
  char Netto[13];
  char Steuer[13];
  char Faelligkeit[7];          /* due date TTMMJJ, empty = none */
  int32_t Bewegungsart;         /* as ZELK_SetAnbuBewegungsart set it, 0 = none */
  int32_t DmsId;                /* as ZELK_SetDmsID set it, 0 = none */
} ZELK_BATCHZEILE;

/* One cost posting of a stored posting. */
typedef struct ZELK_BATCHKOBU {
  int32_t Teilbuchung;          /* line that it belongs to, from 0 */
  char Kostenstelle1[8];
  char Kostenstelle2[8];
  char Kostenstelle3[8];
  char Kostenstelle4[8];
  char Kostenstelle5[8];
  char Kostenstelle6[8];
  int32_t Kostenkennung;
  char Betrag[13];              /* in the client's currency, internal form */
  char BetragFW[13];            /* in the posting's foreign currency, empty = none */
  char Prozent[13];             /* share of the line's net amount in percent */
  char Menge[13];
  char Einheit[4];
  char Bemerkung[41];
  char Bemerkung2[41];
} ZELK_BATCHKOBU;

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

/* Payment term. */
typedef struct ZELK_ZAHLUNGSZIEL {
  int32_t Zahlzielnummer;
  char Name[11];             /* short name */
  int32_t Skontotage1;       /* first discount period in days; 0 = no discount */
  char Skontosatz1[6];       /* first discount rate in percent, "03,00"; "00,00" or empty = none */
  int32_t Skontotage2;       /* the same of the second discount, which is longer and smaller */
  char Skontosatz2[6];
  int32_t Zahltage;          /* net payment period in days */
  int32_t TagInMonat;        /* day of the month on which payment is due, the last of a shorter month; 0 = any day */
  int32_t MonatePlus;        /* following months */
  char Bemerkung[41];        /* remark */
  int32_t Zahlungsart;       /* payment method, 0 to 5 */
  int32_t Naechstes;         /* number of the client's next payment term, 0 = this is the last */
} ZELK_ZAHLUNGSZIEL;

/* What a change notification hands over (docs/benachrichtigung.md). Wert: what the caller of ZELK_Out passed; the library
 * itself passes the client's number. */

/* General-ledger account: the payload of kind 1. */
typedef struct ZELK_OUT_SACHKONTO {
  int32_t Wert;
  int32_t Kontoart;          /* kind in the store: 2 = general-ledger account */
  int32_t Steuerschluessel;  /* tax key, 0 = none */
  int32_t Kostenschablone;   /* default cost template, 0 = none */
  char Kontonummer[8];
  char Kuerzel[9];
  char Name[41];
} ZELK_OUT_SACHKONTO;

/* Creditor or debtor: the payload of the kinds 2 and 4. */
typedef struct ZELK_OUT_PERSONENKONTO {
  int32_t Wert;
  int32_t Zahlungsziel;      /* payment term, 0 = none */
  int32_t Mahnkennziffer;    /* dunning group */
  int32_t Gesperrt;          /* 1 = not to be posted to */
  char Kontonummer[8];
  char Kuerzel[9];
  char Sammelkonto[8];       /* control account in the general ledger */
  char Name[41];
  char Zusatz[41];
  char Vorname[31];
  char Strasse[31];
  char Land[4];
  char PLZ[7];
  char Ort[31];
  char Telefon[21];
  char EMail[61];
  char IBAN[35];
  char BIC[12];
  char Waehrung[4];          /* empty = the client's */
  char Kreditlimit[13];      /* amount in internal form, empty = none */
  char UStIdNr[16];
  char Steuersatz[6];        /* rate "00,00" = none; these accounts carry none */
  char reserviert[1475];     /* zero */
} ZELK_OUT_PERSONENKONTO;

/* The shared block. Of the payload, what Art has no use for is zero. */
typedef struct ZELK_OUT_BLOCK {
  uint8_t Befehl;            /* 1 = a change follows, 0 = end of work */
  int32_t Aktion;            /* 1 = new, 2 = changed, 3 = deleted */
  int32_t Art;               /* kind of the payload */
  union {
    ZELK_OUT_SACHKONTO Sachkonto;         /* Art 1 */
    ZELK_OUT_PERSONENKONTO Personenkonto; /* Art 2 and 4 */
    ZELK_SPLITBUCHUNG Buchung;            /* Art 16 */
  } Nutzlast;
} ZELK_OUT_BLOCK;

#pragma pack(pop)

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

/* Start and end the notification of dependent applications; called by attach and detach. Where none is registered,
 * nothing is started. A start ends the notification process of an earlier one first; as the first call it attaches. */
ZELK_API void ZELK_CALL ZELK_InitDLLs(void);
ZELK_API void ZELK_CALL ZELK_FreeDLLs(void);

/* Hands a change over to the notification process; for libraries of the product family, since the record lies in the
 * record store's layout. The insertion of a posting and the deletion of a batch do it by themselves.
 * Aktion: 1 new, 2 changed, 3 deleted. Art: 1 general-ledger account, 2 creditor, 4 debtor, 16 posting; for another one,
 * and a null Satz, the change goes without a payload. Wert: head of the payload. Start: postings only, first line to be
 * handed over, from 0; a change carries ten. The lines of a posting are those that the calling thread's session has in
 * memory for it, else those in the books of the client Wert; a posting without Nr stands for all of its Stapel. A change
 * that cannot be handed over in time is told to the user, and none is handed over after it. */
ZELK_API void ZELK_CALL ZELK_Out(int32_t Aktion, int32_t Art, int32_t Wert, const void *Satz, int16_t Start);

/* The engine in use: 1 embedded database, 2 MySQL, 3 MSSQL. */
ZELK_API ZelkResult ZELK_CALL ZELK_GetUsedEngine(void);

/* Connects to a database. engine: 1 to 3 as above, anything else the default. port: below 0 counts as 0, above 65536 as
 * 65535. Database: for the embedded engine its directory, null or empty for the one in use.
 * 1 connected, 0 dialog cancelled, -72 no connection. */
ZELK_API ZelkResult ZELK_CALL ZELK_SQLInit(int32_t engine, int32_t dialog, const char *Host, const char *User,
                                           const char *Passwort, int32_t port, const char *Zusatz,
                                           const char *Datenbank);

/* Ends the work with the database for the rest of the process (other threads' connections close with them): from then on
 * -3 from every function but ZELK_HoleFehlertext, ZELK_Status and ZELK_ProtokollEnde. */
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

/* Writes a setting; a null Value counts as empty. Non-zero when written; 0 and nothing changed else, on Linux also for names
 * that cannot stand in the settings file (control characters, blanks at their ends, "=" in Key, "]" in Section). */
ZELK_API int32_t ZELK_CALL MFWritePrivateProfileString(const char *Section, const char *Key, const char *Value,
                                                       const char *File);

/* --- Call protocol -------------------------------------------------------------------------------------------------- */

/* For support: while the protocol is open, every call of the process is written to a text file (Windows-1252) with its
 * parameters, the texts of its refusals and its result; passwords are not. All processes share the file: the first one
 * that starts the protocol empties it (unless the setting TotalRecall of MFIBU is 98), the others append. Only a file that
 * is new, empty or begins with the start header is ever written or emptied, none of the database's or the settings'. One
 * that is deleted, moved or emptied meanwhile is begun anew. The setting Protokoll of ZELK, beginning with j, starts it
 * with the first call, in ZELKPROT.TXT of the program directory. */

/* Starts the protocol in that file when the setting asks for it or no file was ever chosen, else in the one chosen. 1;
 * -58 when the file cannot be written, or is none for it; -59, and one more start header in the file, when it is
 * started already. */
ZELK_API ZelkResult ZELK_CALL ZELK_ProtokollStart(void);

/* Ends the protocol of this process. Always 1, in every state of the library. */
ZELK_API ZelkResult ZELK_CALL ZELK_ProtokollEnde(void);

/* The file of the next start; the choice holds for all programs of the user.
 * Aktion 1: lets the user choose it in a dialog before the window Fenster: 1, or 0 when the dialog was cancelled. 2: takes
 * Dateiname, at most 259 characters, best a full path. 4: delivers the name into Dateiname, 260 bytes. -57 for any other
 * Aktion; -58 when Dateiname is null, empty or too long, when the choice cannot be kept, or when there is no file yet. */
ZELK_API ZelkResult ZELK_CALL ZELK_Protokoll(int32_t Fenster, int32_t Aktion, char *Dateiname);

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

/* Lets the user pick a client in a dialog: its number, 0 when cancelled, -1 when there is no client. HandleParent: window
 * handle (HWND) of the dialog's owner; null: the active window. Where there is no desktop, the dialog counts as
 * cancelled. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleMandantenNr(void *HandleParent);

/* --- Fetches -------------------------------------------------------------------------------------------------------- */

/* Ends the calling thread's fetch, of whatever kind, except those of clients and of report structures, which other
 * fetches do not disturb either. Always 1. */
ZELK_API ZelkResult ZELK_CALL ZELK_BeendeHolen(void);

/* --- Accounts ------------------------------------------------------------------------------------------------------- */

/* Whether an account exists: 1 or 0; -7 for an unknown Kontoart. Dimension and Kostref: cost centres only; Kostref may be
 * null. */
ZELK_API ZelkResult ZELK_CALL ZELK_ExistiertKonto(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                                  int32_t Dimension, const char *Kostref);

/* Whether some account of a kind has a short name already: 1 or 0; -7 for an unknown Kontoart. At most 8 characters of
 * Kuerzel count. */
ZELK_API ZelkResult ZELK_CALL ZELK_ExistiertKuerzel(int32_t Mandantennummer, const char *Kuerzel, int32_t Kontoart);

/* Lets the user pick an account of a kind in a dialog: 1 picked, 0 cancelled; -7 for an unknown Kontoart.
 * HandleParent: window handle (HWND) of the dialog's owner; null: the active window. Von, Bis: least and greatest account
 * number of the list, at most 7 characters; null or empty: no bound. Kontonummer: 8 bytes, Name: 41 bytes, Kuerzel: 9
 * bytes, each may be null; nothing is delivered unless an account was picked. Dimension, Kostref: cost centres only; the
 * list holds those of the dimension, and with a Kostref those of that reference. Where there is no desktop, the dialog
 * counts as cancelled. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleKonto(void *HandleParent, int32_t Mandantennummer, int32_t Kontoart,
                                             const char *Von, const char *Bis, char *Kontonummer, char *Name,
                                             char *Kuerzel, int32_t Dimension, const char *Kostref);

/* Proposes a free account number of a kind (1, 2 or 4; else -7) behind the greatest one in use, which no account
 * has in any fiscal year of the client (cost centres do not count). NummerVon, NummerBis:
 * bounds of the range, at most 7 characters; null or empty: none. When the range is used up at its end, a gap within it is
 * proposed, the bounds themselves excepted. NummerOut: 8 bytes. 1 proposed, -37 no free number, -38 NummerOut is null.
 * Nothing is reserved. Shows its refusals when the thread's last call with Fehlermeldungen passed the flag set. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleFreieKontonr(int32_t Mandantennummer, int32_t Kontoart, const char *NummerVon,
                                                    const char *NummerBis, char *NummerOut);

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

/* Creates a batch (Aktion 1) or changes one (2): 1, or the code of the first check that refused it. Stapelnummer: the
 * batch to change; of a new batch a number that is not in use, or 0 for the next free one, which the list of batches tells
 * by the name. Stapelname: at most 40 characters, not those of another batch of the client; white space around it does not
 * count. Wiederkehr: recurrence in months, 0 = none, at most 99. Transitorisch, Abstimm0: flags. A change sets all of them.
 * -57 Aktion; -81 Stapelname; -6 a standard batch, no such batch, a number in use; -91 the batch has a password;
 * -90 Wiederkehr. */
ZELK_API ZelkResult ZELK_CALL ZELK_Stapel(int32_t Aktion, int32_t Mandantennummer, int32_t Stapelnummer,
                                          const char *Stapelname, int32_t Wiederkehr, int32_t Transitorisch,
                                          int32_t Abstimm0, int32_t Fehlermeldungen);

/* Deletes all postings of a batch and, where mitStapel is non-zero, the batch itself: 1; -6 there is no such batch, it was
 * not created by ZELK_Stapel, it has been cleared, it has a password. All of it is deleted or nothing. */
ZELK_API ZelkResult ZELK_CALL ZELK_LoescheStapel(int32_t Mandant, int32_t Stapel, int32_t mitStapel,
                                                 int32_t Fehlermeldungen);

/* Lets the user pick a batch of a client in a dialog: its number, 0 when cancelled, -1 when there is no batch.
 * HandleParent: as for ZELK_HoleKonto. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleStapelNr(void *HandleParent, int32_t Mandantennummer, int32_t Fehlermeldungen);

/* --- Payment terms -------------------------------------------------------------------------------------------------- */

/* Creates a payment term (Aktion 1) or changes one (2): its number, or the code of the first check that refused it.
 * Zahlzielnummer: the term to change. Name: short name, not that of another term of the client; white space around it does
 * not count, of the rest 10 characters do.
 * Skontotage1, Skontotage2: discount periods, 0 to 999 days, the second longer than the first or 0 = no second discount.
 * Skontosatz1, Skontosatz2: discount rates ("3,00"), 5 characters count; null or empty: none; the first greater than the
 * second. Zahltage: net payment period, 0 to 999 days. TagInMonat: 0 to 31. MonatePlus: 0 to 99. Bemerkung: 40 characters
 * count; may be null. Zahlungsart: 0 to 5. A change sets all of them.
 * Payment is due Zahltage after the day that counts, then MonatePlus months later (on the last day of a month that is too
 * short), then, where TagInMonat is not 0, on the first such day from there on.
 * -2 Aktion; -19 no Name; -50, -32 the Name is in use (new, changed term); -27 no such term; -53 Skontotage; -51
 * Skontosatz; -52 Zahltage; -54 TagInMonat; -55 MonatePlus; -93 Zahlungsart. */
ZELK_API ZelkResult ZELK_CALL ZELK_Zahlungsziel(int32_t Mandantennummer, int32_t Aktion, int32_t Zahlzielnummer,
                                                const char *Name, int32_t Skontotage1, const char *Skontosatz1,
                                                int32_t Skontotage2, const char *Skontosatz2, int32_t Zahltage,
                                                int32_t TagInMonat, int32_t MonatePlus, const char *Bemerkung,
                                                int32_t Zahlungsart, int32_t Fehlermeldungen);

/* Reads a payment term by its number: 1; -27 there is no such term, -1 the client has none at all, -38 Zahlungsziel is
 * null. Zahlzielnummer 0 reads the client's first one; with the field Naechstes a host goes through all of them. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleZahlungsziel(int32_t Mandantennummer, int32_t Zahlzielnummer,
                                                    ZELK_ZAHLUNGSZIEL *Zahlungsziel, int32_t Fehlermeldungen);

/* The number of the payment term that has a short name; 0 when none has. 10 characters of Name count. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleZZnr(int32_t Mandantennummer, const char *Name);

/* --- Open items ----------------------------------------------------------------------------------------------------- */

/* Reads the items of the creditors (Kontoart 2) or debtors (4) that are open now, in the order of their numbers: of
 * one account, or of all where Kontonummer is null or empty. Init positions on the first (1, or 0 when there is none;
 * -7 Kontoart, -10 there is no such account in the client's current year), each fetch delivers one (1 more follow, 2
 * this was the last, -40 without Init, -39 after the last). Every out pointer may be null. Should the database fail
 * (-3), the next fetch delivers the same item.
 * Buffers: account numbers (without blanks) 8 bytes, Kuerzel 9, Name 41, document numbers 17, dates ("TT.MM.JJJJ",
 * empty when there is none) 11, rates ("03,00", empty when there is none) 6, Text and Text2 36, amounts 14, Waehrung
 * 4, Bemerkung 41, DMSID 51.
 * Ausgabeart: form of the amounts, 1 to 3 (-20 for another one where Bruttobetrag or Ausstand is wanted; taken for 3
 * in the others): 1 "+000001234,50" (led by "-" below zero, by "0" for zero), 2 "1234,50", 3 "1.234,50", but
 * "-12345678,90" where grouping would take more than 13 characters. Amounts are
 * in the client's currency, above zero what a debtor owes or is owed to a creditor; Ausstand2 (zero when the item is
 * in the client's currency) and GWBetrag (empty then) are what is left and the gross amount in the foreign one.
 * Mahnstufe: dunning level, 65535 when dunning is blocked (then Mahnsperre is 1); of a creditor's item it is not
 * written.
 * Zahlungssperre, Mahnsperre, Inkasso: 0 or 1. Zahlziel: number of the payment term. InkassoForderung,
 * InkassoMahnkosten: 0 unless Inkasso is 1. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleOP(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                              int32_t Fehlermeldungen);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleOP(
    char *Kontonummer, char *Kuerzel, char *Name, char *Belegnummer, char *OPBelegnummer, char *Belegdatum,
    char *Valutadatum, char *Skontodatum1, char *Skontosatz1, char *Skontodatum2, char *Skontosatz2,
    char *Faelligkeitsdatum, char *Text, int32_t Ausgabeart, char *Bruttobetrag, char *Ausstand, char *Waehrung,
    int32_t *Mahnstufe, char *Mahndatum, char *Bemerkung, char *Gegenkonto, int32_t *Zahlziel, int32_t *Zahlungssperre,
    char *Skontokonto1, char *Skontokonto2, char *Steuersatz1, char *Steuersatz2, char *Ausstand2, char *GWBetrag,
    int32_t *Mahnsperre, char *Text2, char *DMSID, int32_t *Inkasso, int32_t *InkassoAkte, int32_t *InkassoForderung,
    int32_t *InkassoMahnkosten);

/* Reads the items as they were after each payment, with that payment: from the client's first fiscal year to its
 * current one, within a year in the order of what is selected. The first of these that is given (neither null nor
 * empty) selects: Buchungsdatum - payments from that day on (TTMMJJ, TT.MM.JJ, TT.MM.JJJJ; -64 for no date); Belegnr,
 * OPBelegnr - items of that number, 16 characters count, blanks in front too; Kontonummer - items of that account.
 * Without any all are read, in the order of their numbers. Results as for ZELK_InitHoleOP and ZELK_HoleOP, but -40
 * after the last; -96 in the basic edition.
 * Beside the buffers named there: Benutzer (name of the user who entered the payment, empty when there is none) 41
 * bytes, Zahlbelegnr 17, Zahltext and Zahltext2 36. Zahlungsart: 0 to 5, as for payment terms. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleHistOP(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                                  const char *Buchungsdatum, const char *Belegnr,
                                                  const char *OPBelegnr, int32_t Fehlermeldungen);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleHistOP(
    char *Kontonummer, char *Kuerzel, char *Name, char *Belegnummer, char *OPBelegnummer, char *Belegdatum,
    char *Valutadatum, char *Skontodatum1, char *Skontosatz1, char *Skontodatum2, char *Skontosatz2,
    char *Faelligkeitsdatum, char *Text, int32_t Ausgabeart, char *Bruttobetrag, char *Ausstand, char *Waehrung,
    int32_t *Mahnstufe, char *Mahndatum, char *Bemerkung, char *Gegenkonto, int32_t *Zahlziel, int32_t *Zahlungssperre,
    char *Skontokonto1, char *Skontokonto2, char *Steuersatz1, char *Steuersatz2, char *Ausstand2, char *GWBetrag,
    int32_t *Mahnsperre, char *Zahlung, char *Zahldatum, char *Benutzer, char *Skontobetrag, char *Zahlbelegnr,
    char *Zahltext, int32_t *Zahlungsart, char *Text2, char *Zahltext2, char *DMSID, int32_t *Inkasso,
    int32_t *InkassoAkte, int32_t *InkassoForderung, int32_t *InkassoMahnkosten);

/* The dunning level of a debtor, as the result itself: the greatest one of its open items, 0 where there is none or
 * dunning is blocked for all. -10 there is no such account in the client's current year. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleAktMahnstufe(int32_t Mandantennummer, const char *DebiKonto);

/* Asks the source of credit ratings. HandleParent: as for ZELK_HoleKonto.
 * Of an account (Kontoart 2 or 4 with Kontonr): its rating is stored in the account, or cleared where the source has
 * none, and the change is entered in the account-change protocol, both or nothing: 1. -7 another Kontoart, -10 there
 * is no such account in the client's current year; 0 for a Kontoart without Kontonr. What follows Kontonr is not
 * looked at.
 * Of a party that has no account (Kontoart 0, no Kontonr): 1 the source has a rating, which it shows; 0 it has none.
 * Nothing is stored. Suchtyp: 0 to 3, as the source understands it (-102). Datum: TT.MM.JJJJ, of any year (-64); null
 * or empty: not known. Of Name and Zusatz 40 characters count, Strasse, Ort and Vorname 30, PLZ 6, Registernummer 20;
 * each may be null.
 * The source is the file bonitaet.csv in the program directory (docs/betrieb.md). Without it: 0, and nothing is changed.
 * With a mistake in it: -2, nothing is changed, and the call protocol names the line. */
ZELK_API ZelkResult ZELK_CALL ZELK_ErmittleBonitaet(void *HandleParent, int32_t Mandantennummer, int32_t Kontoart,
                                                    const char *Kontonr, int32_t Suchtyp, const char *Name,
                                                    const char *Zusatz, const char *Strasse, const char *PLZ,
                                                    const char *Ort, const char *Vorname, const char *Datum,
                                                    const char *Registernummer);

/* --- Balances and turnover ------------------------------------------------------------------------------------------ */

/* Amounts are delivered in the form that Ausgabeart names, shown for -1234,50: 1 a sign ("-", "+", or "0" for zero) and
 * twelve characters, "-000001234,50"; 2 plain, "-1234,50"; 3 with grouping, "-1.234,50", but "-12345678,90" where that would take more
 * than 13 characters. Any other value: -20. Each buffer has 14 bytes; null: not delivered. An amount beyond 999.999.999,99
 * is refused with -2, and nothing is delivered.
 *
 * Months are months of the fiscal year: 1 is the one in which it begins. */

/* Delivers what an account has been debited and credited with, and the difference (debit minus credit), in the client's
 * currency and in Euro. Of a cost centre (Kontoart 8) only Umsatzsaldo and Eurosaldo are delivered: its costs. Zeitraum: 1 to
 * 12 a month, 13 to 16 a quarter, 17 the opening values, 18 all months, 19 the closing values, 20 all months with opening
 * and closing values; plus 128: from month 1 on; plus 32: with the opening values, where the months begin with month 1;
 * plus 64: with the closing values, where they end with month 12. Jahr: fiscal year, four digits; negative: the client's
 * current one. Dimension, Kostref: cost centres only; Kostref may be null. -20 Ausgabeart, -7 Kontoart, -10 Kontonummer,
 * -44 Zeitraum or Jahr, -5 client, -23 cost centre. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleUmsatz(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                              int32_t Zeitraum, int32_t Jahr, int32_t Fehlermeldungen,
                                              int32_t Ausgabeart, char *Sollumsatz, char *Habenumsatz,
                                              char *Umsatzsaldo, char *Eurosoll, char *Eurohaben, char *Eurosaldo,
                                              int32_t Dimension, const char *Kostref);

/* Delivers the balance of an account (debit minus credit) or of a cost centre. Without PerDatum (null or empty): of the
 * client's current fiscal year with opening and closing values. With it ("TTMMJJ", "TT.MM.JJ" or "TT.MM.JJJJ"): at the end
 * of that day, with the opening values of its fiscal year and without closing values. Results as of ZELK_HoleUmsatz; -64
 * PerDatum; in a year that the client has not, no account exists (-10, -23). */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleSaldo(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                             int32_t Fehlermeldungen, int32_t Ausgabeart, char *Saldo, char *Eurosaldo,
                                             const char *PerDatum, int32_t Dimension, const char *Kostref);

/* Delivers what the cost postings of a fiscal year add up to, in Euro, those that lessen costs subtracted. Kontonummer (cost
 * centre), Kostenart (cost type): at least one of them; null or empty: all. Aufbau: 1 to 32, the class of a report structure
 * whose visible account lines name the cost centres that count; 0 or less: all. Dimension: 0 to 5, in which the cost centres
 * are named; any other value: in whichever. Kostref: only what moved cost centres of that reference, where the client uses
 * references; null or empty: all. A cost posting counts once. Zeitraum: 1 to 12 a month, 13 to 16 a quarter, 17 the year.
 * Jahr: four digits, from the client's first to its current one. -20 Ausgabeart; -10 Kontonummer, Kostenart or Aufbau:
 * missing, too long or without a cost centre; -5 client; -44 Jahr or Zeitraum. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleKostenSaldo(int32_t Mandantennummer, const char *Kontonummer,
                                                   const char *Kostenart, int32_t Aufbau, int32_t Zeitraum, int32_t Jahr,
                                                   int32_t Fehlermeldungen, int32_t Ausgabeart, char *Eurosaldo,
                                                   int32_t Dimension, const char *Kostref);

/* Positions on the first account whose budget values are wanted: 1, or 0 when there is none. Kontoart: 1, 4, 8; any other
 * value is read as 2. Jahr: fiscal year, four digits; 0: the client's current one. Sortierung, Ab: as for
 * ZELK_InitHoleKonto. Dimension, Kostref: only cost centres of that dimension and, unless null or empty, of that reference.
 * -48 Sortierung, -5 client, -44 Jahr. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleSollwerte(int32_t Mandantennummer, int32_t Kontoart, int32_t Jahr,
                                                     int32_t Sortierung, const char *Ab, int32_t Dimension,
                                                     const char *Kostref, int32_t Fehlermeldungen);

/* Delivers the budget values of the account under the cursor and moves on: 1 more follow, 2 this was the last, -40, -39 as
 * for accounts, -20 Ausgabeart. Kontonummer: 8 bytes, Kuerzel: 9 bytes, Name: 41 bytes. pszMon1 to pszMon12: the months,
 * pszGesamt: the year, 14 bytes each. plSWinEuro: 1 when they are in Euro, 0 in the client's currency. Each may be null. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleSollwerte(char *Kontonummer, char *Kuerzel, char *Name, int32_t Ausgabeart,
                                                 char *pszMon1, char *pszMon2, char *pszMon3, char *pszMon4,
                                                 char *pszMon5, char *pszMon6, char *pszMon7, char *pszMon8,
                                                 char *pszMon9, char *pszMon10, char *pszMon11, char *pszMon12,
                                                 char *pszGesamt, int32_t *plSWinEuro);

/* --- Report structures ---------------------------------------------------------------------------------------------- */

/* Positions on the first line of a report structure: 1, or 0 when it has none. Klasse: 0 to 32; plus 32768: with the lines
 * that are hidden. -67 Klasse. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleAufbau(int32_t Mandatennummer, int32_t Klasse, int32_t Fehlermeldungen);

/* Deliver the line under the cursor and move on, in the order in which a report prints them: 1 more follow, 2 this was the
 * last, -40 there is no line under the cursor, -3 also where the structure leads to a line that is not there or in a circle.
 * Art: 0 to 3, 1 and 3 being account lines; plus 4: hidden. Name: 41 bytes; the account number of an account line. Ebene: the
 * depth of a heading, 1 for the uppermost, and of the heading above an account line. The depth is one for all threads: only
 * one may walk at a time, or the others' depths are wrong. ID: 41 bytes; the account number of an account line, else the
 * identifier of the heading. Each pointer may be null. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleAufbau(int32_t *Art, char *Name, int32_t *Ebene);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleAufbauID(int32_t *Art, char *Name, int32_t *Ebene, char *ID);

/* --- Postings ------------------------------------------------------------------------------------------------------- */

/* Inserts a posting into a batch: 1, or the code of the first check that refused it. 1 can mean that the posting was
 * skipped: others held the client's tables for the whole waiting time (setting Sperrwartezeit of ZELK). The call protocol
 * says so; the batch read back (ZELK_InitHoleBatch) tells for certain.
 * Checked in this order: -38 Buchung is null; -37 a text does not end within its field; -5, -56, -103 client; -6 batch (it
 * does not exist, or belongs to cost accounting); -11 Belegdatum (no date, or in no open fiscal year); -25
 * Teilbuchungsanzahl; -10 an opening posting without exactly one empty account; -60 ESR; -26 shape of a split; -27
 * Zahlungsziel; -83 Waehrung; -10 an account of the first line does not exist; -63 it has another currency than the
 * posting; -62 Belegnummer is empty; -61 Valutadatum. Then line by line: -10 both accounts are the same; -8, -9 Sollkonto,
 * Habenkonto (missing, locked, of another kind); -63 their currency; -12, -13, -14 form of Bruttobetrag, Steuersatz,
 * Steuerbetrag; -82 Kostenschablone; -13, -14 tax where none may be, a rate that the tax key does not have, an amount that
 * does not fit the rate or has another sign; -65 the currency has no exchange rate up to that day, and none was entered;
 * -23, -97, -46, -99, -100, -47 cost postings; -24 costs that cannot be distributed, that are missing though the client
 * demands them, or in the basic edition. */
ZELK_API ZelkResult ZELK_CALL ZELK_BuchungEinfuegen(const ZELK_BUCHUNG *Buchung, int32_t Fehlermeldungen);
ZELK_API ZelkResult ZELK_CALL ZELK_SplitBuchungEinfuegen(const ZELK_SPLITBUCHUNG *Buchung, int32_t Fehlermeldungen);

/* The same with the posting's fields as arguments; a null text counts as empty. Belegdatum and Valutadatum: also
 * TT.MM.JJ and TT.MM.JJJJ. */
ZELK_API ZelkResult ZELK_CALL ZELK_BuchungEinfuegenDirekt(
    int32_t Fehlermeldungen, int32_t Mandantennummer, int32_t Stapelnummer, const char *Belegdatum,
    const char *Belegnummer, const char *Text, const char *Sollkonto, int32_t Sollart, const char *Habenkonto,
    int32_t Habenart, const char *Bruttobetrag, const char *Steuersatz, const char *Steuerbetrag, int32_t UStDirekt,
    int32_t Kostenschablone, int32_t Zahlungsziel, int32_t Eroeffnungsbuchung, int32_t Abschlussbuchung,
    const char *OPBelegnummer, const char *Valutadatum, const char *Waehrung, int32_t Umbuchung, const char *ESR,
    const char *Text2, const char *DMSID);

/* A split posting, built piece by piece in the calling thread; it may have more than ten lines, and cost postings.
 * SplitStart begins (an earlier one is discarded), SplitEinfuegen adds a line, SplitKobuEinfuegen a cost posting of the
 * line added last, SplitEnde inserts or discards. Each piece returns 1, or -40 without SplitStart; what is refused is not
 * added, and the posting stays as it was. The content is checked at SplitEnde, which returns the code of the first check
 * that failed; whatever it returns, the next posting begins with SplitStart.
 *
 * The arguments mean what the fields of ZELK_SPLITBUCHUNG, ZELK_TEILBUCHUNG and ZELK_BATCHKOBU do. A null text counts as
 * empty; a longer one than its field is cut. Belegdatum and Valutadatum: also TT.MM.JJ and TT.MM.JJJJ. Opening and closing
 * postings cannot be built this way.
 *
 * Other postings may be inserted in between, at the price of what was said of the lines so far by SplitEinfuegenEx (own
 * amounts), SetAnbuBewegungsart and SetDmsID; lines and cost postings stay. */
ZELK_API ZelkResult ZELK_CALL ZELK_SplitStart(int32_t Mandantennummer, int32_t Stapelnummer, const char *Belegdatum,
                                              const char *Belegnummer, int32_t UStDirekt, int32_t Zahlungsziel,
                                              const char *OPBelegnummer, const char *Valutadatum, const char *Waehrung,
                                              int32_t Umbuchung, const char *ESR, const char *DMSID);
ZELK_API ZelkResult ZELK_CALL ZELK_SplitEinfuegen(const char *Sollkonto, int16_t Sollart, const char *Habenkonto,
                                                  int16_t Habenart, const char *Bruttobetrag, const char *Steuersatz,
                                                  const char *Steuerbetrag, const char *Text, int16_t Kostenschablone,
                                                  const char *Text2);

/* A line with its amounts in the client's own currency too (...Eigen), for postings in a foreign one; both empty: they are
 * converted. Only for books under the rules of Switzerland, else -70; -5 there is no such client. All lines of a posting
 * are added this way, or none (-26 at the end). */
ZELK_API ZelkResult ZELK_CALL ZELK_SplitEinfuegenEx(const char *Sollkonto, int16_t Sollart, const char *Habenkonto,
                                                    int16_t Habenart, const char *Bruttobetrag,
                                                    const char *BruttobetragEigen, const char *Steuersatz,
                                                    const char *Steuerbetrag, const char *SteuerbetragEigen,
                                                    const char *Text, int16_t Kostenschablone, const char *Text2);

/* A cost posting of the line added last. Betrag in the currency of the posting; all of a line add up to its net amount.
 * Kostenstelle1: cost centre, Kostenstelle2: cost unit, 3 to 6: in the dimensions that the client assigns; null: none.
 * Kostenkennung: 0 none, 1 fixed, 2 variable costs. Menge: quantity, two decimals. -40 before the first line, too; -24 in
 * the basic edition. */
ZELK_API ZelkResult ZELK_CALL ZELK_SplitKobuEinfuegen(const char *Kostenstelle1, const char *Kostenstelle2,
                                                      int32_t Kostenkennung, const char *Betrag, const char *Menge,
                                                      const char *Einheit, const char *Bemerkung,
                                                      const char *Bemerkung2);
ZELK_API ZelkResult ZELK_CALL ZELK_SplitKobuEinfuegenEx(const char *Kostenstelle1, const char *Kostenstelle2,
                                                        int32_t Kostenkennung, const char *Betrag, const char *Menge,
                                                        const char *Einheit, const char *Bemerkung,
                                                        const char *Bemerkung2, const char *Kostenstelle3,
                                                        const char *Kostenstelle4, const char *Kostenstelle5,
                                                        const char *Kostenstelle6);

/* Values for the line added last: kind of the fixed-asset movement, number of the line's own document (that of the posting
 * is the DMSID of SplitStart). A second call replaces the value; without a line it has no effect. */
ZELK_API void ZELK_CALL ZELK_SetAnbuBewegungsart(int32_t Bewegungsart);
ZELK_API void ZELK_CALL ZELK_SetDmsID(int32_t DmsId);

/* Ends the split posting. Einfuegen: non-zero inserts it, and returns what ZELK_SplitBuchungEinfuegen does; zero discards
 * it: 1, without SplitStart as well. -26 in either case when lines of both kinds were added. */
ZELK_API ZelkResult ZELK_CALL ZELK_SplitEnde(int32_t Einfuegen, int32_t Fehlermeldungen);

/* Reads the postings of a batch: Init positions on the first (1, or 0 when there is none; -6 for an unknown batch), each
 * fetch delivers one (1 more follow, 2 this was the last, -40 without Init, -39 after the last). Account numbers come
 * without blanks, amounts in internal form "000000000,00". Teilbuchungsanzahl counts all lines; the first ten are
 * delivered. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleBatch(int32_t Mandantennummer, int32_t Stapelnummer, int32_t Fehlermeldungen);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleBatch(ZELK_SPLITBUCHUNG *Buchung);

/* Deliver the lines and the cost postings of the posting that ZELK_HoleBatch delivered last, one by one: 1 more follow,
 * 2 this was the last, 0 there is none, -39 after the last, -40 without ZELK_HoleBatch or when the fetch of another kind was
 * begun behind it. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleBatchZeile(ZELK_BATCHZEILE *Zeile);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleBatchKobu(ZELK_BATCHKOBU *Kobu);

#ifdef __cplusplus
}
#endif

#endif
