/*
 * zelk98 - the programming interface of the Velta MERKA FIBU accounting program, for C99 and C++. This file is its
 * manual.
 *
 *    1  What holds for every call
 *    2  Result codes
 *    3  Texts of results, status      ZELK_HoleFehlertext, ZELK_Status
 *    4  Start, end, database          ZELK_Attach, ZELK_Detach, ZELK_GetUsedEngine, ZELK_SQLInit, ZELK_SQLDeInit
 *    5  Settings                      MFGetPrivateProfileString, ...Int, MFWritePrivateProfileString
 *    6  Call protocol                 ZELK_ProtokollStart, ZELK_ProtokollEnde, ZELK_Protokoll
 *    7  Fetches                       ZELK_BeendeHolen
 *    8  Clients                       ZELK_InitHoleMandant, ZELK_HoleMandant, ZELK_HoleMandantenInfo, ...Direkt,
 *                                     ZELK_HoleMandantenVersion, ZELK_HoleStartJahr, ZELK_HoleMandantenNr
 *    9  Accounts                      ZELK_ExistiertKonto, ZELK_ExistiertKuerzel, ZELK_InitHoleKonto, ZELK_HoleSako,
 *                                     ZELK_HolePeko, ZELK_HoleKost, ZELK_HoleKonto, ZELK_HoleFreieKontonr
 *   10  Batches                       ZELK_InitHoleStapel, ZELK_HoleStapel, ZELK_HoleStapelNr, ZELK_Stapel,
 *                                     ZELK_LoescheStapel
 *   11  Postings                      ZELK_BuchungEinfuegen, ...Direkt, ZELK_SplitBuchungEinfuegen
 *   12  Postings piece by piece       ZELK_SplitStart, ZELK_SplitEinfuegen, ...Ex, ZELK_SplitKobuEinfuegen, ...Ex,
 *                                     ZELK_SetAnbuBewegungsart, ZELK_SetDmsID, ZELK_SplitEnde
 *   13  Postings read back            ZELK_InitHoleBatch, ZELK_HoleBatch, ZELK_HoleBatchZeile, ZELK_HoleBatchKobu
 *   14  Payment terms                 ZELK_Zahlungsziel, ZELK_HoleZahlungsziel, ZELK_HoleZZnr
 *   15  Open items                    ZELK_InitHoleOP, ZELK_HoleOP, ZELK_InitHoleHistOP, ZELK_HoleHistOP
 *   16  Dunning, credit ratings       ZELK_HoleAktMahnstufe, ZELK_ErmittleBonitaet
 *   17  Balances, budget values       ZELK_HoleUmsatz, ZELK_HoleSaldo, ZELK_HoleKostenSaldo, ZELK_InitHoleSollwerte,
 *                                     ZELK_HoleSollwerte
 *   18  Report structures             ZELK_InitHoleAufbau, ZELK_HoleAufbau, ZELK_HoleAufbauID
 *   19  Change notification           ZELK_InitDLLs, ZELK_FreeDLLs, ZELK_Out
 *
 *
 * 1  What holds for every call
 * ============================
 *
 * Calling. On Windows __stdcall, exported under the undecorated name; elsewhere the platform's own convention. No
 * exception leaves the library.
 *
 * Result. A ZelkResult unless said otherwise: 1 success, 2 the last record of a fetch, 0 neutral (none, not in use,
 * cancelled), below zero an error. A refused call has changed nothing, delivers nothing and holds no lock. Two things
 * outlive a refused posting: its document identifier (DMSID) stays registered, and an exchange rate that a person has
 * entered stays stored. Below, a code with nothing but a parameter after it means that this is none of the values
 * named for it.
 *
 * Every call can return these; a function names only what it returns beside them:
 *
 *    -2  something that nobody foresaw, such as memory that is wanting
 *    -3  the database cannot be opened, read or written; a lock was not to be had in time; or after ZELK_SQLDeInit
 *   -36  the settings name no program directory (ProgPfad98 or ProgPfad of section MFIBU, ProgPfad of ZELK)
 *   -42  the thread can have no memory of its own (thread-local storage)
 *
 * and every call that takes a Mandantennummer:
 *
 *    -5  there is no client of that number (1 to 65535)
 *   -56  its data are those of an older program version
 *  -103  its data are those of a newer program version
 *
 * After -3 nothing has changed and the next call connects anew, so a host recovers without a restart. On a database
 * server, when the connection breaks while a change is made final, the library finds out by itself what became of a
 * posting: -3 then means that it is not stored and may be inserted again. Only when the server cannot be asked either
 * (Sperrwartezeit), it remains open; the call protocol says so, with document number and identifier. Of other changes,
 * read what was to be changed: all of it is there or nothing.
 *
 * Texts are zero-terminated 8-bit strings in Windows-1252. The widths of fields and buffers, in bytes, include the
 * terminator. A text that a host passes by pointer may be null, which counts as empty, and is cut to what its field
 * holds, unless said otherwise. A text of a record that does not end within its field is refused with -37.
 *
 * Amounts are texts in German notation: up to nine digits in front of the comma, plain or in groups of three, one or
 * two after it or none, a sign before or a minus after, blanks around: "1234,5", "1.234,50", "-12,00", "12,00-".
 * Rates are the same with two digits in front of the comma and no sign: "19,00", "7". The internal form of an amount
 * is "000001234,50", below zero with the minus in the comma's place: "000000012-50"; of a rate "07,00". Both are taken
 * wherever an amount or rate is.
 *
 * Dates are texts of real days from 1980 to 2079: "TTMMJJ" in records; where "any form" is said "TT.MM.JJ" and
 * "TT.MM.JJJJ" as well. JJ is 80 to 99 for 1980 to 1999, 00 to 79 for 2000 to 2079.
 *
 * Memory. Buffers belong to the caller and have at least the stated size; the library keeps no pointer after a call.
 * A value whose pointer is null is not delivered. A pointer to a record must not be null: -38.
 *
 * Fehlermeldungen. Where a function takes this flag, non-zero shows each refusal of what the host passed as a message
 * box, too, in German and naming the field, when nothing is locked any more. ZELK_HoleFreieKontonr,
 * ZELK_ErmittleBonitaet and ZELK_SplitEinfuegenEx, which have refusals to show but no flag, go by that of the thread's
 * last call that had one.
 *
 * Dialogs are modal. HandleParent is the window (HWND) that owns the dialog; null: the active window. Where there is
 * no desktop, and on Linux, a message goes to standard error and a dialog counts as cancelled. This version has no
 * windows yet for picking from lists and for entering values, so these count as cancelled everywhere.
 *
 * Threads. Any function may be called from any thread. Each thread has its own fetches, its own split posting under
 * construction and its own connection to the database; they end with the thread.
 *
 * Start. There is no start call: the first call reads the settings, finds the program directory and opens the database.
 * While that is a file, calls run in the directory that was current in the first one, and put the host's back at their
 * end; the process has but one, so a host with several threads does better with absolute paths.
 *
 * Waiting. A call that needs a lock that others hold waits for it, at most Sperrwartezeit, then returns -3; but see
 * chapter 11 for the insertion of a posting. Fetches and dialogs hold no lock, so one that is abandoned blocks nobody.
 * Fetches read ahead: changes that other programs made within the last five milliseconds, on a database server within
 * the last second, may not be seen. Those of other threads are.
 *
 * Settings that change what calls do, read at the attach (docs/betrieb.md has all, and where they are kept):
 *
 *   ZELK   Sperrwartezeit  how long a call waits for locks, in milliseconds; 10000 when it is missing
 *   MFIBU  Edition         "Basis": the basic edition, without foreign currencies, cost postings and historical items
 *   MFIBU  NoGejaCheck     "j": closed fiscal years can be posted to
 *   ZELK   Protokoll       beginning with "j": every host writes the call protocol (chapter 6)
 *
 * Fiscal years are named by the calendar year in which they begin. Accounts belong to a fiscal year; where a function
 * takes no year, it means the client's current one. Months are months of the fiscal year: 1 is the one in which it
 * begins; what lies after the twelfth month of a longer year belongs to the twelfth.
 *
 * Account numbers have at most 7 characters and compare as texts; of a longer one the first 7 count, unless it is
 * refused. Cost centres are told apart by Dimension (0 cost centre, 1 cost unit, 2 to 5) and Kostref (a reference of
 * at most 7 characters; null or empty: the first of that number, whatever its reference). Where a function takes
 * these, they count for cost centres only.
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

/* --- 2  Result codes ---------------------------------------------------------------------------------------------- */

/* ZELK_HoleFehlertext tells the name and the German text of each. What stands in parentheses is of the product family,
 * and returned by no function of this library. Codes that are missing in between are retired. */
enum {
  ZELK_letzterDatensatz = 2,               /* fetch: delivered, and this was the last record */
  ZELK_OK = 1,                             /* done; fetch: more follow; posting: perhaps skipped (chapter 11) */
  ZELK_keinKonto = 0,                      /* not in use; no record; dialog cancelled; no source to ask */
  ZELKERR_keine_Mandanten = -1,            /* there is no client */
  ZELKERR_keine_Stapel = -1,               /* the client has no batch */
  ZELKERR_keine_Zahlungsziele = -1,        /* the client has no payment term */
  ZELKERR_sonst = -2,                      /* unforeseen; figures: too great to be delivered; terms: Aktion */
  ZELKERR_Datenbank = -3,                  /* database failed, no lock in time, or after ZELK_SQLDeInit */
  ZELKERR_uzl_Mandnr = -5,                 /* no such client */
  ZELKERR_uzl_Stapelnr = -6,               /* no such batch, or not one for this */
  ZELKERR_uzl_Kontoart = -7,               /* account kind that there is not, or not one for this */
  ZELKERR_uzl_Sollkontonr = -8,            /* posting: debit account missing, locked or of another kind */
  ZELKERR_uzl_Habenkontonr = -9,           /* posting: credit account missing, locked or of another kind */
  ZELKERR_uzl_Kontonr = -10,               /* no such account, or the number is too long */
  ZELKERR_uzl_Belegdatum = -11,            /* posting: no date, or in no fiscal year that can be posted to */
  ZELKERR_uzl_Bruttobetrag = -12,          /* posting: gross amount is none, or too great when converted */
  ZELKERR_uzl_Steuersatz = -13,            /* posting: rate is none, not one of the tax key, or none may be given */
  ZELKERR_uzl_Steuerbetrag = -14,          /* posting: tax is none, does not fit the rate, or none may be given */
  ZELKERR_uzl_Gegenkonto = -15,            /* (contra account) */
  ZELKERR_uzl_Bankverbindung = -16,        /* (bank details) */
  ZELKERR_uzl_Skontoprozente = -17,        /* (discount percentage) */
  ZELKERR_uzl_Mahnkennziffer = -18,        /* (dunning group) */
  ZELKERR_uzl_Kuerzel = -19,               /* payment term without a short name */
  ZELKERR_uzl_Format = -20,                /* Ausgabeart other than 1 to 3 */
  ZELKERR_uzl_Kostenstelle = -23,          /* no such cost centre; cost posting that names none */
  ZELKERR_uzl_Kostenrechnung = -24,        /* costs cannot be distributed, are wanting, or in the basic edition */
  ZELKERR_uzl_Teilbuchungsanzahl = -25,    /* number of lines below 1 or above 10 */
  ZELKERR_uzl_Split = -26,                 /* shape of a split posting */
  ZELKERR_uzl_Zahlungsziel = -27,          /* no such payment term */
  ZELKERR_kein_Konto = -28,                /* (no account was made) */
  ZELKERR_kein_Kuerzel = -29,              /* (no short name) */
  ZELKERR_kein_Name = -30,                 /* (no name of an account) */
  ZELKERR_Kuerzel_existiert = -32,         /* changed payment term: another one has the short name */
  ZELKERR_Ini = -36,                       /* no program directory in the settings */
  ZELKERR_Ueberlauf = -37,                 /* text does not end within its field; no free account number */
  ZELKERR_nicht_moeglich = -38,            /* pointer to a record is null */
  ZELKERR_keinDatensatz = -39,             /* fetch: after the last record */
  ZELKERR_keinInit = -40,                  /* fetch: not begun, ended, or another one was begun; no SplitStart */
  ZELKERR_Thread = -42,                    /* no thread-local storage */
  ZELKERR_uzl_Zeitraum = -44,              /* period that there is not, or fiscal year that the client has not */
  ZELKERR_uzl_Kostenkennung = -46,         /* cost posting: Kostenkennung other than 0 to 2 */
  ZELKERR_uzl_Kostenbetrag = -47,          /* cost posting: no amount, or the sum is not the line's net amount */
  ZELKERR_uzl_Sortierung = -48,            /* order other than 0 to 2 */
  ZELKERR_ZZ_existiert = -50,              /* new payment term: another one has the short name */
  ZELKERR_uzl_Skontoprozent = -51,         /* payment term: discount rate */
  ZELKERR_uzl_Zahltage = -52,              /* payment term: net period other than 0 to 999 days */
  ZELKERR_uzl_Skontotage = -53,            /* payment term: discount period, or their order */
  ZELKERR_uzl_TagInMonat = -54,            /* payment term: day of the month other than 0 to 31 */
  ZELKERR_uzl_MonatePlus = -55,            /* payment term: following months other than 0 to 99 */
  ZELKERR_alter_Mandant = -56,             /* client of an older program version */
  ZELKERR_uzl_Aktion = -57,                /* Aktion that there is not */
  ZELKERR_keine_Protokolldatei = -58,      /* no file for the call protocol, or it cannot be written */
  ZELKERR_bereits_Protokolldatei = -59,    /* the call protocol is started already */
  ZELKERR_uzl_Data = -60,                  /* posting: payment-slip reference */
  ZELKERR_uzl_Valutadatum = -61,           /* posting: value date is none */
  ZELKERR_uzl_Belegnr = -62,               /* posting: document number is empty */
  ZELKERR_nicht_eindeutige_Waehrung = -63, /* posting: an account has another currency than it */
  ZELKERR_uzl_Datum = -64,                 /* no date */
  ZELKERR_kein_Kurs = -65,                 /* posting: no exchange rate up to its day, and none was entered */
  ZELKERR_Kurs_vorhanden = -66,            /* (exchange rate is there already) */
  ZELKERR_uzl_Klasse = -67,                /* class of report structures other than 0 to 32 */
  ZELKERR_uzl_KursDurchschnitt = -68,      /* (average rate) */
  ZELKERR_keinMKRInit = -69,               /* (cost accounting was not initialised) */
  ZELKERR_Helva_only = -70,                /* client's books are not kept under the rules of Switzerland */
  ZELKERR_bereitsInitialisiert = -71,      /* (connected already) */
  ZELKERR_Verbindungsfehler = -72,         /* no connection to the database */
  ZELKERR_uzl_Datenbank = -73,             /* (no such database, or tables are missing) */
  ZELKERR_Verbindung_unterbrochen = -74,   /* (connection lost; its text is that of -75, whose text is that of -76) */
  ZELKERR_kein_SQL_Modus = -75,            /* (SQL mode is off) */
  ZELKERR_Fehler = -76,                    /* (general error of SQL) */
  ZELKERR_uzl_Name = -81,                  /* batch: name is empty, too long or in use */
  ZELKERR_uzl_Koscha = -82,                /* posting: no such cost template */
  ZELKERR_uzl_Waehrung = -83,              /* posting: currency is none, or may not be given */
  ZELKERR_uzl_Kontoklasse = -84,           /* (account class) */
  ZELKERR_uzl_Steuerart = -85,             /* (kind of tax) */
  ZELKERR_uzl_Steuerkennung = -86,         /* (tax code) */
  ZELKERR_uzl_Steusa = -87,                /* (tax rate of a tax key) */
  ZELKERR_uzl_Ustvakz = -88,               /* (number of the advance VAT return) */
  ZELKERR_Datev = -89,                     /* (account number against the rules of DATEV) */
  ZELKERR_uzl_StapelWiederkehr = -90,      /* batch: recurrence other than 0 to 99 months */
  ZELKERR_StapelPasswort = -91,            /* batch with a password cannot be changed */
  ZELKERR_Dummy = -92,                     /* (function without effect in this program) */
  ZELKERR_uzl_Zahlungsart = -93,           /* payment term: payment method other than 0 to 5 */
  ZELKERR_keine_Fehlernummer = -94,        /* number is no result code */
  ZELKERR_uzl_Buchungsdatum = -95,         /* (posting date) */
  ZELKERR_nur_PlusVersion = -96,           /* not in the basic edition */
  ZELKERR_uzl_Laufzeit = -97,              /* posting: its day lies outside a cost centre's running time */
  ZELKERR_uzl_Ustidnr = -98,               /* (VAT identification number) */
  ZELKERR_uzl_Menge = -99,                 /* cost posting: quantity is no number */
  ZELKERR_uzl_Einheitenwechsel = -100,     /* cost postings of one posting in different units */
  ZELKERR_uzl_Bonitaet = -101,             /* (credit rating) */
  ZELKERR_uzl_BonitaetSuchTyp = -102,      /* credit rating: kind of search other than 0 to 3 */
  ZELKERR_neuerer_Mandant = -103           /* client of a newer program version */
};

/* Account kinds (Kontoart): general ledger, creditor, debtor, cost centre. */
enum { ZELK_SACHKONTO = 1, ZELK_KREDITOR = 2, ZELK_DEBITOR = 4, ZELK_KOSTENSTELLE = 8 };

/* Records are byte-packed, integers little-endian. After each stands its size in bytes and the offset of each field,
 * which the compiler checks: hosts in other languages declare them by these numbers. */
#define ZELK_SIZE(record, bytes) typedef char record##_of_##bytes##_bytes[sizeof(record) == (bytes) ? 1 : -1]
#define ZELK_AT(record, field, offset)                                                                                 \
  typedef char record##_##field##_at_##offset[offsetof(record, field) == (offset) ? 1 : -1]
#define ZELK_AT3(record, f1, o1, f2, o2, f3, o3)                                                                       \
  ZELK_AT(record, f1, o1);                                                                                             \
  ZELK_AT(record, f2, o2);                                                                                             \
  ZELK_AT(record, f3, o3)
#define ZELK_AT4(record, f1, o1, f2, o2, f3, o3, f4, o4)                                                               \
  ZELK_AT3(record, f1, o1, f2, o2, f3, o3);                                                                            \
  ZELK_AT(record, f4, o4)

#pragma pack(push, 1)

/* --- 3  Texts of results, status ---------------------------------------------------------------------------------- */

/* Delivers the name and the German text of a result code.
 *
 *   code      -103 to 2, also a retired one
 *   Kurztext  50 bytes or null
 *   Langtext  250 bytes or null; a longer text is cut
 *
 * 1; -94 for any other code. Works in every state of the library, also after ZELK_SQLDeInit. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleFehlertext(int32_t code, char *Kurztext, char *Langtext);

/* Tells whether the library could be initialised: 1, or -36, -42. Does not initialise it: 1 before the first call of
 * another function. Whether the database can be opened shows in the calls that need it. */
ZELK_API ZelkResult ZELK_CALL ZELK_Status(void);

/* --- 4  Start, end, database -------------------------------------------------------------------------------------- */

/* Attaches the library to the process: reads the settings, starts call protocol and change notification where the
 * settings ask for them. Every working function does so first of all; a later call, or one after a failure, does
 * nothing until ZELK_Detach. On Windows it sets the C runtime's locale for character types and collation to the user's,
 * and loading the library initialises COM for the loading thread (single-threaded apartment), until a thread ends or
 * ZELK_Detach.
 *
 *   connect  also open the database
 *
 * Always 1; a failure shows in ZELK_Status. */
ZELK_API int ZELK_CALL ZELK_Attach(bool connect);

/* Undoes the attach: ends call protocol and change notification, closes the database, gives up the calling thread's
 * state. The next call attaches again and reads the settings anew. Always 1.
 *
 * For a host that frees the library before its process ends. The library itself stays in the process then, and attached
 * with its database open where it was not detached:
 *
 *     (end all other threads that have called: the state of those that run on is lost)
 *     ZELK_Detach();
 *     FreeLibrary(zelk98); */
ZELK_API int ZELK_CALL ZELK_Detach(void);

/* The database in use: 1 file (embedded), 2 MySQL or MariaDB, 3 Microsoft SQL Server. */
ZELK_API ZelkResult ZELK_CALL ZELK_GetUsedEngine(void);

/* Connects to a database other than that of the settings. The password is kept, masked, for later connections. Sessions
 * of other threads go over with their next call. As the first call, it opens no other database before. A failed connect
 * leaves the former database in use.
 *
 *   engine     1 to 3 as above, any other value: that of the settings
 *   dialog     non-zero: host, user, password and database are asked for, as far as they are missing
 *   Host       server, or a list of servers of which the first one that answers is used (docs/datenbankserver.md)
 *   User, Passwort
 *   port       0 or less, and 65536: the settings'; above: 65535
 *   Zusatz     further options of the ODBC driver, as in a connection string
 *   Datenbank  name of the database on the server; for engine 1 its folder, null or empty for the one in use
 *
 * What is null or empty is taken from the settings (section SQL) where they are for the same engine; an empty Passwort
 * counts as given when there is a User. For engine 1 all but Datenbank is ignored.
 *
 * 1 connected; 0 dialog cancelled; -72 no connection. */
ZELK_API ZelkResult ZELK_CALL ZELK_SQLInit(int32_t engine, int32_t dialog, const char *Host, const char *User,
                                           const char *Passwort, int32_t port, const char *Zusatz,
                                           const char *Datenbank);

/* Ends the work with the database for the rest of the process. 1; from then on -3 from every function, this one
 * included, but ZELK_HoleFehlertext, ZELK_Status, ZELK_ProtokollEnde and chapter 5. */
ZELK_API ZelkResult ZELK_CALL ZELK_SQLDeInit(void);

/* --- 5  Settings -------------------------------------------------------------------------------------------------- */

/* The settings store of the product family (docs/betrieb.md): the registry, on Linux a text file. These functions
 * neither attach the library nor stand in the call protocol. File is not used and may be null.
 *
 * Reads a setting as text.
 *
 *   Section  at most 100 characters count; null: a message box says that sections cannot be listed, and 0
 *   Key      null: the names of the section's values, each with its terminator
 *   Default  delivered where the setting is missing
 *   Buffer   Size bytes; null, or Size 0: 0
 *
 * Returns the number of characters delivered, without the last terminator. A value that is too long is cut to Size - 1
 * characters; Default and the list of names to Size - 2, with two zero bytes after them. */
ZELK_API uint32_t ZELK_CALL MFGetPrivateProfileString(const char *Section, const char *Key, const char *Default,
                                                      char *Buffer, uint32_t Size, const char *File);

/* Reads a setting as a decimal number, of which 10 characters count; a text that is none counts as far as its digits
 * go. Default where it is missing, and where Section or Key is null. */
ZELK_API int32_t ZELK_CALL MFGetPrivateProfileInt(const char *Section, const char *Key, int32_t Default,
                                                  const char *File);

/* Writes a setting; a null Value counts as empty. Non-zero when it is written. 0, and nothing changed, when it cannot
 * be, when Section or Key is null, and on Linux for names that cannot stand in the settings file (control characters,
 * blanks at their ends, "=" in Key, "]" in Section). */
ZELK_API int32_t ZELK_CALL MFWritePrivateProfileString(const char *Section, const char *Key, const char *Value,
                                                       const char *File);

/* --- 6  Call protocol --------------------------------------------------------------------------------------------- */

/* For support. While the protocol is open, every call of the process is written to a text file (Windows-1252):
 * function, thread, process, a line for each parameter, the texts of its refusals, whether they were shown or not, and
 * the result. Of passwords and of what a call delivers it only says whether a pointer was given ("gegeben", "NULL").
 *
 * All processes share the file: the first one that starts the protocol empties it (unless the setting TotalRecall of
 * MFIBU is "98"), the others append. Only a file that is new, empty or begins with the start header is written or
 * emptied, and none of the database's or the settings'. One that is deleted, moved or emptied meanwhile is begun anew.
 * With the setting Protokoll of ZELK beginning with "j", the first call starts it, in ZELKPROT.TXT of the program
 * directory.
 *
 *     ZELK_Protokoll(0, 2, "C:\\Temp\\fibu.txt");     where it is to go; holds for the user's other programs, too
 *     ZELK_ProtokollStart();
 *     ...                                             what went wrong
 *     ZELK_ProtokollEnde(); */

/* Starts the protocol: in ZELKPROT.TXT of the program directory where the setting asks for it or no file was ever
 * chosen, else in the chosen one. 1; -58 the file cannot be written, or is none for the protocol; -59 it is started
 * already, and one more start header is written. */
ZELK_API ZelkResult ZELK_CALL ZELK_ProtokollStart(void);

/* Ends the protocol of this process. Always 1, in every state of the library. */
ZELK_API ZelkResult ZELK_CALL ZELK_ProtokollEnde(void);

/* Chooses the file of the next start, for all programs of the user, or tells it.
 *
 *   Fenster    Aktion 1: window before which the dialog stands; 0: the active one
 *   Aktion     1: lets the user choose in a dialog. 2: takes Dateiname. 4: delivers the name into Dateiname
 *   Dateiname  Aktion 2: at most 259 characters, best an absolute path. Aktion 4: 260 bytes
 *
 * 1; 0 dialog cancelled; -57 any other Aktion; -58 Dateiname is null, empty or too long, the choice cannot be kept, or
 * there is no name yet to be told. */
ZELK_API ZelkResult ZELK_CALL ZELK_Protokoll(int32_t Fenster, int32_t Aktion, char *Dateiname);

/* --- 7  Fetches --------------------------------------------------------------------------------------------------- */

/* Sets of records are delivered one by one. Init positions on the first, each fetch delivers one and moves on:
 *
 *     ZELK_SAKO account;
 *     ZelkResult result = ZELK_InitHoleKonto(1, ZELK_SACHKONTO, 0, NULL, 0);
 *     while (result == ZELK_OK) {
 *       result = ZELK_HoleSako(&account);
 *       if (result > 0) show(&account);            1: more follow; 2: this was the last
 *     }
 *     if (result < 0) failed(result);              0: there was none
 *
 *   Fetch of              Init without a record   after the last    -3 within the fetch
 *   clients               -1                      -40               same record again
 *   batches               -1                      -39               ends it (-40)
 *   accounts              0                       -39               ends it (-40)
 *   postings of a batch   0                       -39               same record again
 *   open items            0                       -39               same record again
 *   historical items      0                       -40               same record again
 *   budget values         0                       -39               ends it (-40)
 *   report structures     0                       -40               ends it (-40)
 *
 * -40 is also the result of a fetch without Init, with an Init that found nothing or failed, or with another kind begun
 * meanwhile: a thread has one fetch at a time, where every Init ends the one before. Clients and report structures are
 * kept apart and go on beside it. Other calls disturb no fetch, whatever client they name. */

/* Ends the calling thread's fetch, of whatever kind but clients and report structures. 1, also where there is none.
 * A host that fetches to the end, or begins another fetch, needs no such call. */
ZELK_API ZelkResult ZELK_CALL ZELK_BeendeHolen(void);

/* --- 8  Clients --------------------------------------------------------------------------------------------------- */

/* Begin and go on with the fetch of all clients, in the order of their numbers, those of other program versions too.
 *
 *   Mandantennummer  1 to 65535
 *   Name, Zusatz     41 bytes each: name, additional line
 *
 * Init: 1, or -1 when there is none. Fetch: 1, 2, -40 (chapter 7); -3 also when the client was deleted meanwhile. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleMandant(void);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleMandant(uint32_t *Mandantennummer, char *Name, char *Zusatz);

/* Master data of a client. */
typedef struct ZELK_MANDANTENINFO {
  int32_t AktuellesJahr;  /* current fiscal year, four digits */
  int32_t Gejabeginn;     /* month in which the fiscal year begins, 1 to 12 */
  int32_t Kontenrahmen;   /* chart of accounts, 0 to 6 */
  int32_t Istversteuerer; /* 1 = taxed on cash receipts */
  int32_t EUeRechner;     /* 1 = profit by cash-basis accounting */
  int32_t Steuerfrei;     /* 1 = exempt from VAT */
  int32_t Euro;           /* 1 = the books are kept in Euro */
  char UStIdNr[16];       /* VAT identification number */
  char Land[4];           /* country as on vehicles: "D", "CH" */
  char Waehrung[4];       /* currency of the books: "EUR", "CHF" */
  char Eurokurs[12];      /* units of that currency for one Euro, with a decimal comma */
  char SvSako[8];         /* number layout of general-ledger accounts: a 9 for each digit, without blanks */
  char SvKred[8];         /* the same of creditors */
  char SvDebi[8];         /* and of debtors */
  char Name[41];          /* name of the client */
  char Zusatz[41];        /* additional line */
} ZELK_MANDANTENINFO;
ZELK_SIZE(ZELK_MANDANTENINFO, 170);
ZELK_AT4(ZELK_MANDANTENINFO, AktuellesJahr, 0, Gejabeginn, 4, Kontenrahmen, 8, Istversteuerer, 12);
ZELK_AT4(ZELK_MANDANTENINFO, EUeRechner, 16, Steuerfrei, 20, Euro, 24, UStIdNr, 28);
ZELK_AT4(ZELK_MANDANTENINFO, Land, 44, Waehrung, 48, Eurokurs, 52, SvSako, 64);
ZELK_AT4(ZELK_MANDANTENINFO, SvKred, 72, SvDebi, 80, Name, 88, Zusatz, 129);

/* Reads the master data of a client. Option is reserved: 0. A Kontenrahmen that is stored outside 0 to 6 leaves the
 * field as it was. 1; -38 Info is null. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleMandantenInfo(int32_t Mandantennummer, ZELK_MANDANTENINFO *Info,
                                                     uint32_t Option);

/* The same into single values, each of which may be null; texts have the widths of the record. A Kontenrahmen outside 0
 * to 6 is 0 here. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleMandantenInfoDirekt(int32_t Mandantennummer, int32_t *AktuellesJahr,
                                                           int32_t *Gejabeginn, int32_t *Kontenrahmen,
                                                           int32_t *Istversteuerer, int32_t *EUeRechner,
                                                           int32_t *Steuerfrei, int32_t *Euro, char *UStIdNr,
                                                           char *Land, char *Waehrung, char *Eurokurs, char *SvSako,
                                                           char *SvKred, char *SvDebi, char *Name, char *Zusatz,
                                                           uint32_t Option);

/* Program version of a client's data, as the result itself: 98 for data that this library works with. Also of other
 * versions, so without -56 and -103. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleMandantenVersion(int32_t Mandantennummer);

/* First fiscal year of a client (four digits), as the result itself. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleStartJahr(int32_t Mandantennummer);

/* Lets the user pick a client from a list, by number or by name, of other program versions too: its number, 0 when
 * cancelled, -1 when there is no client. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleMandantenNr(void *HandleParent);

/* --- 9  Accounts -------------------------------------------------------------------------------------------------- */

/* Whether an account exists in the client's current year: 1 or 0. The number is compared as it stands: "27" is not
 * "0027". -7 Kontoart is none of 1, 2, 4, 8. */
ZELK_API ZelkResult ZELK_CALL ZELK_ExistiertKonto(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                                  int32_t Dimension, const char *Kostref);

/* Whether an account of that kind has that short name, of which 8 characters count, byte by byte: 1 or 0. -7 Kontoart
 * is none of 1, 2, 4, 8. */
ZELK_API ZelkResult ZELK_CALL ZELK_ExistiertKuerzel(int32_t Mandantennummer, const char *Kuerzel, int32_t Kontoart);

/* General-ledger account. */
typedef struct ZELK_SAKO {
  char Kontonummer[8];      /* without blanks */
  char Kuerzel[9];          /* short name */
  char Name[41];            /* name */
  int32_t GuV;              /* 1 = income-statement account, 0 = balance-sheet account */
  int32_t Steuerschluessel; /* tax key; 0 and 32 = none */
  int32_t Kostenart;        /* 1 = cost type: bears cost postings */
  int32_t Kostenschablone;  /* cost template of postings that name none, 0 = none */
  char Waehrung[4];         /* currency of the account, empty = the client's */
  int32_t Gesperrt;         /* 1 = not to be posted to */
} ZELK_SAKO;
ZELK_SIZE(ZELK_SAKO, 82);
ZELK_AT4(ZELK_SAKO, Kontonummer, 0, Kuerzel, 8, Name, 17, GuV, 58);
ZELK_AT4(ZELK_SAKO, Steuerschluessel, 62, Kostenart, 66, Kostenschablone, 70, Waehrung, 74);
ZELK_AT(ZELK_SAKO, Gesperrt, 78);

/* Creditor or debtor. */
typedef struct ZELK_PEKO {
  char Kontonummer[8];    /* without blanks */
  char Kuerzel[9];        /* short name */
  char Name[41];          /* family name or company */
  char Zusatz[41];        /* additional line */
  char Vorname[31];       /* first name */
  char Strasse[31];       /* street */
  char Land[4];           /* country */
  char PLZ[7];            /* postal code */
  char Ort[31];           /* town */
  char Telefon[21];       /* telephone */
  char EMail[61];         /* e-mail address */
  char UStIdNr[16];       /* VAT identification number */
  char IBAN[35];          /* bank account */
  char BIC[12];           /* bank */
  char Waehrung[4];       /* currency of the account, empty = the client's */
  int32_t Zahlungsziel;   /* payment term, 0 = none */
  char Sammelkonto[8];    /* control account in the general ledger */
  char Kreditlimit[13];   /* amount in internal form, empty = none */
  int32_t Mahnkennziffer; /* dunning group, 0 = the ordinary one */
  int32_t Gesperrt;       /* 1 = not to be posted to */
} ZELK_PEKO;
ZELK_SIZE(ZELK_PEKO, 385);
ZELK_AT4(ZELK_PEKO, Kontonummer, 0, Kuerzel, 8, Name, 17, Zusatz, 58);
ZELK_AT4(ZELK_PEKO, Vorname, 99, Strasse, 130, Land, 161, PLZ, 165);
ZELK_AT4(ZELK_PEKO, Ort, 172, Telefon, 203, EMail, 224, UStIdNr, 285);
ZELK_AT4(ZELK_PEKO, IBAN, 301, BIC, 336, Waehrung, 348, Zahlungsziel, 352);
ZELK_AT4(ZELK_PEKO, Sammelkonto, 356, Kreditlimit, 364, Mahnkennziffer, 377, Gesperrt, 381);

/* Cost centre or cost unit. */
typedef struct ZELK_KOST {
  char Kontonummer[8]; /* without blanks */
  int32_t Dimension;   /* cost-accounting dimension, 0 to 5 */
  char Kostref[8];     /* cost reference, empty = none */
  char Kuerzel[9];     /* short name */
  char Name[41];       /* name */
  char LaufzeitVon[7]; /* first day of the running time, TTMMJJ, empty = unbounded */
  char LaufzeitBis[7]; /* last day */
} ZELK_KOST;
ZELK_SIZE(ZELK_KOST, 84);
ZELK_AT4(ZELK_KOST, Kontonummer, 0, Dimension, 8, Kostref, 12, Kuerzel, 20);
ZELK_AT3(ZELK_KOST, Name, 29, LaufzeitVon, 70, LaufzeitBis, 77);

/* Begins the fetch of a client's accounts of one kind in its current year.
 *
 *   Kontoart    1, 2, 4, 8
 *   Sortierung  order: 0 number, 1 short name, 2 name
 *   Ab          first value of that order to be delivered, at most 41 characters; null or empty: from the start
 *
 * 1; 0 there is none from there on; -7 Kontoart; -48 Sortierung. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleKonto(int32_t Mandantennummer, int32_t Kontoart, int32_t Sortierung,
                                                 const char *Ab, int32_t Fehlermeldungen);

/* Fetch the accounts: ZELK_HoleSako those of kind 1, ZELK_HolePeko of 2 and 4, ZELK_HoleKost of 8. 1, 2, -39, -40
 * (chapter 7; -40 also when Init was for another kind); -38 Konto is null. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleSako(ZELK_SAKO *Konto);
ZELK_API ZelkResult ZELK_CALL ZELK_HolePeko(ZELK_PEKO *Konto);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleKost(ZELK_KOST *Konto);

/* Lets the user pick an account of a kind from a list, by number or by name.
 *
 *   Kontoart     1, 2, 4, 8
 *   Von, Bis     least and greatest number of the list, 7 characters count, blanks around do not; null or empty: no
 *                bound
 *   Kontonummer  8 bytes
 *   Name         41 bytes
 *   Kuerzel      9 bytes: short name
 *   Dimension    the list holds the cost centres of this dimension
 *   Kostref      and of this reference; null or empty: of all. Name and short name are then those of the first one of
 *                the number
 *
 * 1 picked; 0 cancelled; -7 Kontoart; -3 also when the account was deleted meanwhile. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleKonto(void *HandleParent, int32_t Mandantennummer, int32_t Kontoart,
                                             const char *Von, const char *Bis, char *Kontonummer, char *Name,
                                             char *Kuerzel, int32_t Dimension, const char *Kostref);

/* Proposes a number for a new account that no account has in any fiscal year of the client (cost centres do not
 * count). It lies after the greatest number of that kind, with both bounds after the greatest one between them. Where
 * nothing is in use yet, it is NummerVon, or without bounds the first of the kind: with four-digit general-ledger
 * accounts "0001", creditors "70000", debtors "10000". With both bounds, a range that is used up at its end is searched
 * for a gap, the bounds themselves excepted. Nothing is reserved.
 *
 *   Kontoart              1, 2, 4
 *   NummerVon, NummerBis  bounds, 7 characters count, blanks around do not; null or empty: none. NummerVon alone is
 *                         ignored, NummerBis alone only limits
 *   NummerOut             8 bytes
 *
 * 1 proposed; -7 Kontoart; -37 there is no free number; -38 NummerOut is null. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleFreieKontonr(int32_t Mandantennummer, int32_t Kontoart, const char *NummerVon,
                                                    const char *NummerBis, char *NummerOut);

/* --- 10  Batches -------------------------------------------------------------------------------------------------- */

/* Begin and go on with the fetch of a client's batches, in the order of their numbers.
 *
 *   Stapelnummer   1 and up
 *   Stapelname     41 bytes
 *   Wiederkehr     recurrence in months, 0 = not recurring
 *   Transitorisch  flag: transitory batch
 *   Sperre         flag: locked by the accounting program; this library does not mind it
 *   Bebucht        flag: holds postings
 *   Abstimm0       flag: reconciliation
 *
 * Init: 1, or -1 when the client has none. Fetch: 1, 2, -39, -40 (chapter 7). */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleStapel(int32_t Mandantennummer, int32_t Fehlermeldungen);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleStapel(int32_t *Stapelnummer, char *Stapelname, int32_t *Wiederkehr,
                                              int32_t *Transitorisch, int32_t *Sperre, int32_t *Bebucht,
                                              int32_t *Abstimm0);

/* Lets the user pick one of a client's batches from a list, by number or by name: its number, 0 when cancelled, -1 when
 * the client has none. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleStapelNr(void *HandleParent, int32_t Mandantennummer, int32_t Fehlermeldungen);

/* Creates or changes a batch. A change sets everything that is named here, and leaves the rest; cleared batches can be
 * changed, too.
 *
 *   Aktion         1 create, 2 change
 *   Stapelnummer   to be changed; of a new batch one that is not in use, or 0: the next free one, which the fetch of
 *                  the batches then tells by the name
 *   Stapelname     1 to 40 characters, unlike that of any other batch of the client; white space around does not count
 *   Wiederkehr     recurrence in months, 0 to 99; 0 = not recurring
 *   Transitorisch  flag
 *   Abstimm0       flag
 *
 * 1, or the first of: -57 Aktion; -81 Stapelname is empty or too long; -6 new batch: number below 0 or in use, change:
 * one of the accounting program's standard batches, or none at all; -91 the batch has a password; -81 Stapelname is in
 * use; -90 Wiederkehr. */
ZELK_API ZelkResult ZELK_CALL ZELK_Stapel(int32_t Aktion, int32_t Mandantennummer, int32_t Stapelnummer,
                                          const char *Stapelname, int32_t Wiederkehr, int32_t Transitorisch,
                                          int32_t Abstimm0, int32_t Fehlermeldungen);

/* Deletes all postings of a batch and, where mitStapel is not 0, the batch itself; all or nothing. Documents that its
 * postings registered stay registered. Dependent applications are told. 1; -6 there is no such batch, it was not
 * created by ZELK_Stapel, it has been cleared, or it has a password. */
ZELK_API ZelkResult ZELK_CALL ZELK_LoescheStapel(int32_t Mandant, int32_t Stapel, int32_t mitStapel,
                                                 int32_t Fehlermeldungen);

/* --- 11  Postings ------------------------------------------------------------------------------------------------- */

/* A posting goes into a batch of a client. It has one or more lines; a line moves an amount from a credit account
 * (Haben) to a debit account (Soll). It is stored as a whole or not at all, and not posted to the ledger. Whether the
 * batch is locked, cleared or has a password does not matter. */

/* A posting of one line. */
typedef struct ZELK_BUCHUNG {
  int32_t Mandantennummer;
  int32_t Stapelnummer;       /* batch that it goes into */
  int32_t Kostenschablone;    /* cost template, 0 = none */
  int32_t Zahlungsziel;       /* payment term, 0 = that of the account */
  int32_t Eroeffnungsbuchung; /* flag: opening posting; one account is empty, and replaced */
  int32_t Abschlussbuchung;   /* flag: closing posting */
  int32_t Sollart;            /* kind of the debit account: 1, 2, 4 */
  int32_t Habenart;           /* kind of the credit account */
  int32_t UStDirekt;          /* flag: VAT is posted directly; kept for the ledger */
  int32_t Umbuchung;          /* flag: transfer posting; kept for the ledger */
  char Belegdatum[7];         /* document date, TTMMJJ */
  char Belegnummer[17];       /* document number, not empty */
  char Text[36];              /* text of the line */
  char Sollkonto[8];          /* debit account */
  char Habenkonto[8];         /* credit account */
  char Bruttobetrag[13];      /* gross amount; empty = zero */
  char Steuersatz[6];         /* VAT rate in percent; empty = no tax */
  char Steuerbetrag[13];      /* tax in the gross amount; empty or zero = it is reckoned */
  char OPBelegnummer[17];     /* document number of the open item that it settles, or empty */
  char Valutadatum[7];        /* value date, TTMMJJ, or empty */
  char Waehrung[4];           /* currency of the amounts, at most 3 letters; empty = the client's */
  char ESR[50];               /* reference of a Swiss payment slip, or empty */
  char Text2[36];             /* second text of the line */
  char DMSID[51];             /* identifier in a document-management system, or empty */
} ZELK_BUCHUNG;
ZELK_SIZE(ZELK_BUCHUNG, 313);
ZELK_AT4(ZELK_BUCHUNG, Mandantennummer, 0, Stapelnummer, 4, Kostenschablone, 8, Zahlungsziel, 12);
ZELK_AT4(ZELK_BUCHUNG, Eroeffnungsbuchung, 16, Abschlussbuchung, 20, Sollart, 24, Habenart, 28);
ZELK_AT4(ZELK_BUCHUNG, UStDirekt, 32, Umbuchung, 36, Belegdatum, 40, Belegnummer, 47);
ZELK_AT4(ZELK_BUCHUNG, Text, 64, Sollkonto, 100, Habenkonto, 108, Bruttobetrag, 116);
ZELK_AT4(ZELK_BUCHUNG, Steuersatz, 129, Steuerbetrag, 135, OPBelegnummer, 148, Valutadatum, 165);
ZELK_AT4(ZELK_BUCHUNG, Waehrung, 172, ESR, 176, Text2, 226, DMSID, 262);

/* One line of a split posting. The fields mean what those of ZELK_BUCHUNG do. */
typedef struct ZELK_TEILBUCHUNG {
  int32_t Sollart;
  int32_t Habenart;
  int32_t Kostenschablone;
  char Sollkonto[8];
  char Habenkonto[8];
  char Bruttobetrag[13];
  char reserviert1; /* zero */
  char Steuersatz[6];
  char Steuerbetrag[13];
  char reserviert2; /* zero */
  char Text[36];
  char Text2[36];
} ZELK_TEILBUCHUNG;
ZELK_SIZE(ZELK_TEILBUCHUNG, 134);
ZELK_AT4(ZELK_TEILBUCHUNG, Sollart, 0, Habenart, 4, Kostenschablone, 8, Sollkonto, 12);
ZELK_AT4(ZELK_TEILBUCHUNG, Habenkonto, 20, Bruttobetrag, 28, reserviert1, 41, Steuersatz, 42);
ZELK_AT4(ZELK_TEILBUCHUNG, Steuerbetrag, 48, reserviert2, 61, Text, 62, Text2, 98);

/* A posting of up to ten lines. The fields mean what those of ZELK_BUCHUNG do. */
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
ZELK_SIZE(ZELK_SPLITBUCHUNG, 1525);
ZELK_AT4(ZELK_SPLITBUCHUNG, Mandantennummer, 0, Stapelnummer, 4, Teilbuchungsanzahl, 8, UStDirekt, 12);
ZELK_AT4(ZELK_SPLITBUCHUNG, Zahlungsziel, 16, Eroeffnungsbuchung, 20, Abschlussbuchung, 24, Umbuchung, 28);
ZELK_AT4(ZELK_SPLITBUCHUNG, Belegdatum, 32, Belegnummer, 39, OPBelegnummer, 56, Valutadatum, 73);
ZELK_AT4(ZELK_SPLITBUCHUNG, Waehrung, 80, ESR, 84, DMSID, 134, Teilbuchung, 185);

/* Insert a posting. 1 can also mean that it was SKIPPED: others held the client's tables for the whole Sperrwartezeit.
 * Then nothing is stored, and no code says so, only the call protocol. Keep Sperrwartezeit long; a host that must be
 * certain reads the batch back (chapter 13).
 *
 *     ZELK_BUCHUNG posting = {.Mandantennummer = 1, .Stapelnummer = 3, .Sollart = 1, .Habenart = 1,
 *                             .Belegdatum = "210126", .Belegnummer = "KA-7", .Text = "Briefmarken",
 *                             .Sollkonto = "4910", .Habenkonto = "1000", .Bruttobetrag = "4,25"};
 *     ZelkResult result = ZELK_BuchungEinfuegen(&posting, 0);
 *
 * 1, or the code of the first check that fails, in this order:
 *
 *   -38            Buchung is null
 *   -37            a text does not end within its field
 *   -5, -56, -103  client
 *   -6             there is no such batch, or it belongs to cost accounting
 *   -11            Belegdatum is no date, or lies in no fiscal year of the client or a closed one
 *   -25            Teilbuchungsanzahl is not 1 to 10
 *   -10            opening posting without exactly one empty account in each line
 *   -60            ESR, where the client's country is not "CH"; or other than 16 or 27 digits (blanks between them
 *                  aside), of which the last is the check digit (modulo 10, recursive)
 *   -26            several lines: the first one lacks an account; or neither the debit nor the credit account is the
 *                  same in all lines; or a creditor or debtor stands on the side that differs
 *   -27            there is no payment term Zahlungsziel
 *   -83            Waehrung is not letters only; or foreign in the basic edition; or is given though no line has a
 *                  creditor or debtor, and the client's country is not "CH"
 *   -10            there is no such account: debit, then credit account of the first line
 *   -63            Waehrung differs from that of an account of the first line that has one
 *   -62            Belegnummer is empty
 *   -61            Valutadatum is no date
 *   then line by line, in the text with "Teilbuchung" and its number where there are several:
 *   -10            both accounts are the same
 *   -8, -9         Sollkonto, Habenkonto: there is no such account, it is of another kind, or locked
 *   -63            Waehrung differs from that of one of them
 *   -12, -13, -14  Bruttobetrag, Steuersatz, Steuerbetrag is no amount, no rate
 *   -82            there is no cost template Kostenschablone
 *   -14            opening posting with tax
 *   -14, -13       tax amount, rate, though the line can have no tax
 *   -14            tax amount without a rate
 *   -13            the tax key does not have that rate
 *   -14            the tax amount does not fit, or has another sign than the gross amount
 *   -65            there is no exchange rate up to the document date, and none was entered
 *   -12            the amount in the client's currency is too great
 *   -23, -97       a cost centre of the cost template does not exist, or not on that day
 *   -24            the cost template does not go with the cost type; costs between two accounts that bear costs, or two
 *                  income-statement accounts; cost centres are mandatory, and none is reached; a cost template in the
 *                  basic edition
 *   -47            a cost amount, or its share in percent, is too great
 *
 * Account numbers. Blanks around do not count; a number of digits that is shorter than the client's general-ledger
 * numbers gets leading zeros ("27" is "0027"). The empty account of an opening posting becomes the client's
 * balance-forward account for the kind of the other one; its kind need not be given.
 *
 * Tax. The tax key is that of the general-ledger account that has one; where both have one, or none, the line is free
 * of tax. So it is without a rate, or with rate 0, whatever the key. The rate is one that the key has on the document
 * date or had before. Keys of acquisition, reverse charge and tax-free kind take no tax out of the gross amount. Else
 * the tax is reckoned from gross amount and rate, as far as it is deductible, and rounded commercially; for postings in
 * a foreign currency to five hundredths, where the client is set so. A tax amount that is given holds instead, if it
 * lies within five hundredths of the tax or of its deductible share (invoices that round line by line); with a key that
 * takes no tax out, of the tax on top. With key 8 nothing is reckoned; a tax amount that fits is deducted.
 *
 * Currency. A Waehrung other than the client's is foreign. Gross amount and tax are then in it, and are converted at
 * the latest rate up to the document date; the net amount is their difference. A missing rate is asked for in a dialog
 * (-65 when it is cancelled) while nothing is locked; what is entered is stored for that day.
 *
 * Due date. By the posting's payment term; without one by the account's, where a debtor is debited or a creditor
 * credited. It counts from the value date, else the document date. After 2079 there is none.
 *
 * Costs. A general-ledger account bears costs when it is a cost type; where the client demands cost centres, each
 * income-statement account does. Exactly one account of a line may. Its net amount is distributed by the first cost
 * template that there is: the line's, that of the captured document DMSID, the account's. The line's is a demand and
 * refused where it does not fit; the others are left out then. Its shares are weights; the parts add up exactly. A cost
 * type goes with every cost centre, or, where the client names combinations for it, with those only. Opening and
 * closing postings need no cost centre. In the basic edition, templates of documents and accounts are left out, and no
 * cost centre is mandatory. */
ZELK_API ZelkResult ZELK_CALL ZELK_BuchungEinfuegen(const ZELK_BUCHUNG *Buchung, int32_t Fehlermeldungen);
ZELK_API ZelkResult ZELK_CALL ZELK_SplitBuchungEinfuegen(const ZELK_SPLITBUCHUNG *Buchung, int32_t Fehlermeldungen);

/* The same with the fields of ZELK_BUCHUNG as arguments. Belegdatum, Valutadatum: any form. The codes of the client
 * come first, then -11 and -61 for texts that are no dates, then -37 for texts too long for their fields, which are not
 * cut; then the others. */
ZELK_API ZelkResult ZELK_CALL ZELK_BuchungEinfuegenDirekt(
    int32_t Fehlermeldungen, int32_t Mandantennummer, int32_t Stapelnummer, const char *Belegdatum,
    const char *Belegnummer, const char *Text, const char *Sollkonto, int32_t Sollart, const char *Habenkonto,
    int32_t Habenart, const char *Bruttobetrag, const char *Steuersatz, const char *Steuerbetrag, int32_t UStDirekt,
    int32_t Kostenschablone, int32_t Zahlungsziel, int32_t Eroeffnungsbuchung, int32_t Abschlussbuchung,
    const char *OPBelegnummer, const char *Valutadatum, const char *Waehrung, int32_t Umbuchung, const char *ESR,
    const char *Text2, const char *DMSID);

/* --- 12  Postings piece by piece ---------------------------------------------------------------------------------- */

/* A split posting can be built in the calling thread; it may then have more than ten lines, and cost postings:
 *
 *     ZELK_SplitStart(1, 3, "21.01.2026", "ER-7", 0, 0, NULL, NULL, NULL, 0, NULL, NULL);
 *     ZELK_SplitEinfuegen("4930", ZELK_SACHKONTO, "70010", ZELK_KREDITOR, "119,00", "19,00", NULL, "Papier", 0, NULL);
 *     ZELK_SplitKobuEinfuegen("100", NULL, 1, "60,00", NULL, NULL, NULL, NULL);       of the line above
 *     ZELK_SplitKobuEinfuegen("200", NULL, 1, "40,00", NULL, NULL, NULL, NULL);       together its net amount
 *     ZELK_SplitEinfuegen("4910", ZELK_SACHKONTO, "70010", ZELK_KREDITOR, "5,00", NULL, NULL, "Porto", 0, NULL);
 *     result = ZELK_SplitEnde(1, 0);
 *
 * The arguments mean what the fields of the records do; texts that are too long are cut. Belegdatum, Valutadatum: any
 * form. Opening and closing postings cannot be built so. A piece that is refused is not added, and the posting goes on
 * without it. What the pieces hold is checked by ZELK_SplitEnde. Whatever that returns, the next one begins with
 * ZELK_SplitStart.
 *
 * Other postings may be inserted in between. What was said of the lines so far by ZELK_SplitEinfuegenEx (own amounts),
 * ZELK_SetAnbuBewegungsart and ZELK_SetDmsID is lost then (the amounts are converted); lines and cost postings stay. */

/* Begins a split posting; one that was begun before is discarded, but for the one that the thread's ZELK_SplitEnde is
 * inserting while it shows a dialog. The client is not looked at yet. 1. */
ZELK_API ZelkResult ZELK_CALL ZELK_SplitStart(int32_t Mandantennummer, int32_t Stapelnummer, const char *Belegdatum,
                                              const char *Belegnummer, int32_t UStDirekt, int32_t Zahlungsziel,
                                              const char *OPBelegnummer, const char *Valutadatum, const char *Waehrung,
                                              int32_t Umbuchung, const char *ESR, const char *DMSID);

/* Adds a line. 1; -40 without ZELK_SplitStart. */
ZELK_API ZelkResult ZELK_CALL ZELK_SplitEinfuegen(const char *Sollkonto, int16_t Sollart, const char *Habenkonto,
                                                  int16_t Habenart, const char *Bruttobetrag, const char *Steuersatz,
                                                  const char *Steuerbetrag, const char *Text, int16_t Kostenschablone,
                                                  const char *Text2);

/* Adds a line of a posting in a foreign currency with its amounts in the client's own, too; then nothing is converted.
 * Only for clients whose books are kept under the rules of Switzerland. Either all lines of a posting are added so or
 * none.
 *
 *   BruttobetragEigen  gross amount in the client's currency
 *   SteuerbetragEigen  tax in it; null or empty: it is reckoned; else it has to fit
 *
 * Both null or empty: the line is converted. In a posting in the client's currency they are ignored.
 *
 * 1; -40 without ZELK_SplitStart; -5, -56, -103 client; -70 its books are kept under other rules. */
ZELK_API ZelkResult ZELK_CALL ZELK_SplitEinfuegenEx(const char *Sollkonto, int16_t Sollart, const char *Habenkonto,
                                                    int16_t Habenart, const char *Bruttobetrag,
                                                    const char *BruttobetragEigen, const char *Steuersatz,
                                                    const char *Steuerbetrag, const char *SteuerbetragEigen,
                                                    const char *Text, int16_t Kostenschablone, const char *Text2);

/* Add a cost posting of the line added last. They take the place of cost templates.
 *
 *   Kostenstelle1        cost centre
 *   Kostenstelle2        cost unit
 *   Kostenstelle3 to 6   further ones, in the dimensions that the client assigns, else 2 to 5. At least one of the six
 *   Kostenkennung        0 none, 1 fixed, 2 variable costs
 *   Betrag               amount in the currency of the posting; those of a line add up to its net amount
 *   Menge                quantity, two decimals, at most 12 characters; null or empty: none
 *   Einheit              unit of the quantity, 3 characters count; one for the whole posting
 *   Bemerkung            remark, 40 characters count
 *   Bemerkung2           second remark
 *
 * 1; -40 without ZELK_SplitStart, or before the first line; -24 in the basic edition. */
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

/* Values for the line added last: kind of the fixed-asset movement, number of the line's own document (that of the
 * whole posting is the DMSID of ZELK_SplitStart). A second call replaces the value; before the first line it has no
 * effect. */
ZELK_API void ZELK_CALL ZELK_SetAnbuBewegungsart(int32_t Bewegungsart);
ZELK_API void ZELK_CALL ZELK_SetDmsID(int32_t DmsId);

/* Ends the split posting.
 *
 *   Einfuegen  non-zero: inserts it; zero: discards it
 *
 * Discarded: 1, without ZELK_SplitStart as well. Either way -26 when lines of both ZELK_SplitEinfuegen and ...Ex were
 * added. Inserted: 1 or the codes of ZELK_SplitBuchungEinfuegen, and
 *
 *   -40            without ZELK_SplitStart
 *   -12, -14       own gross amount, own tax is no amount; the own tax does not fit
 *   -23, -97       a cost centre does not exist, or not on that day; a cost posting names none
 *   -46, -99       Kostenkennung; Menge is no number
 *   -100           units differ
 *   -47            Betrag is no amount; the sum of a line is not its net amount
 *   -24            cost postings of a line without an account that bears costs, or a cost centre that does not go with
 *                  the cost type */
ZELK_API ZelkResult ZELK_CALL ZELK_SplitEnde(int32_t Einfuegen, int32_t Fehlermeldungen);

/* --- 13  Postings read back --------------------------------------------------------------------------------------- */

/* Begin and go on with the fetch of a batch's postings, in the order in which they were inserted.
 *
 * A posting comes as the record that inserts one: account numbers without blanks, with their leading zeros; amounts in
 * internal form, in the currency of the posting; tax as it was reckoned, in Steuersatz the rate of what tax the gross
 * amount holds. Teilbuchungsanzahl counts all lines, of which the first ten are in the record. Each is read when it is
 * delivered: what was inserted meanwhile comes too, what was deleted does not.
 *
 * Init: 1, or 0 when the batch is empty; -6 there is no such batch. Fetch: 1, 2, -39, -40 (chapter 7); -38 Buchung is
 * null. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleBatch(int32_t Mandantennummer, int32_t Stapelnummer,
                                                 int32_t Fehlermeldungen);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleBatch(ZELK_SPLITBUCHUNG *Buchung);

/* A line of a stored posting. Amounts in internal form, in the client's currency. */
typedef struct ZELK_BATCHZEILE {
  ZELK_TEILBUCHUNG Teilbuchung; /* the line as ZELK_HoleBatch delivers it */
  int32_t Steuerschluessel;     /* tax key, 0 = none */
  int32_t Steuerseite;          /* account that bears the tax: 0 none, 1 credit, 2 debit */
  char Brutto[13];              /* gross amount */
  char Netto[13];               /* net amount */
  char Steuer[13];              /* tax: gross less net amount */
  char Faelligkeit[7];          /* due date TTMMJJ, empty = none */
  int32_t Bewegungsart;         /* as ZELK_SetAnbuBewegungsart set it, 0 = none */
  int32_t DmsId;                /* as ZELK_SetDmsID set it, 0 = none */
} ZELK_BATCHZEILE;
ZELK_SIZE(ZELK_BATCHZEILE, 196);
ZELK_AT4(ZELK_BATCHZEILE, Teilbuchung, 0, Steuerschluessel, 134, Steuerseite, 138, Brutto, 142);
ZELK_AT4(ZELK_BATCHZEILE, Netto, 155, Steuer, 168, Faelligkeit, 181, Bewegungsart, 188);
ZELK_AT(ZELK_BATCHZEILE, DmsId, 192);

/* A cost posting of a stored posting. Amounts in internal form. */
typedef struct ZELK_BATCHKOBU {
  int32_t Teilbuchung;   /* line that it belongs to, from 0 */
  char Kostenstelle1[8]; /* cost centre, empty = none */
  char Kostenstelle2[8]; /* cost unit */
  char Kostenstelle3[8]; /* further ones */
  char Kostenstelle4[8];
  char Kostenstelle5[8];
  char Kostenstelle6[8];
  int32_t Kostenkennung; /* 0 none, 1 fixed, 2 variable costs */
  char Betrag[13];       /* amount in the client's currency */
  char BetragFW[13];     /* in the posting's foreign currency, empty = none */
  char Prozent[13];      /* share of the line's net amount in percent */
  char Menge[13];        /* quantity, empty = none */
  char Einheit[4];       /* its unit */
  char Bemerkung[41];    /* remarks */
  char Bemerkung2[41];
} ZELK_BATCHKOBU;
ZELK_SIZE(ZELK_BATCHKOBU, 194);
ZELK_AT4(ZELK_BATCHKOBU, Teilbuchung, 0, Kostenstelle1, 4, Kostenstelle2, 12, Kostenstelle3, 20);
ZELK_AT4(ZELK_BATCHKOBU, Kostenstelle4, 28, Kostenstelle5, 36, Kostenstelle6, 44, Kostenkennung, 52);
ZELK_AT4(ZELK_BATCHKOBU, Betrag, 56, BetragFW, 69, Prozent, 82, Menge, 95);
ZELK_AT3(ZELK_BATCHKOBU, Einheit, 108, Bemerkung, 112, Bemerkung2, 153);

/* Fetch the lines, the cost postings of the posting that ZELK_HoleBatch delivered last, one by one, in two fetches of
 * their own that need no Init. 1 more follow; 2 this was the last; 0 the posting has none; -39 after the last; -40
 * before the first ZELK_HoleBatch, or when another fetch was begun after it; -38 the pointer is null. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleBatchZeile(ZELK_BATCHZEILE *Zeile);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleBatchKobu(ZELK_BATCHKOBU *Kobu);

/* --- 14  Payment terms -------------------------------------------------------------------------------------------- */

/* Payment term: when an invoice is due, and what discounts are granted for paying it earlier. Payment is due Zahltage
 * after the day that counts, then MonatePlus months on (the last day of a month that is too short), then, where
 * TagInMonat is not 0, on that day of the month reached, or without MonatePlus the first such day from there on. */
typedef struct ZELK_ZAHLUNGSZIEL {
  int32_t Zahlzielnummer; /* 1 and up */
  char Name[11];          /* short name */
  int32_t Skontotage1;    /* first discount period in days, 0 = no discount */
  char Skontosatz1[6];    /* first discount rate in percent, "03,00"; "00,00" = none */
  int32_t Skontotage2;    /* second discount period, longer than the first, 0 = no second discount */
  char Skontosatz2[6];    /* second discount rate, smaller than the first; empty = none */
  int32_t Zahltage;       /* net payment period in days */
  int32_t TagInMonat;     /* day of the month on which payment is due, the last of a shorter month; 0 = any day */
  int32_t MonatePlus;     /* following months */
  char Bemerkung[41];     /* remark */
  int32_t Zahlungsart;    /* payment method, 0 to 5 */
  int32_t Naechstes;      /* number of the client's next payment term, 0 = this is the last */
} ZELK_ZAHLUNGSZIEL;
ZELK_SIZE(ZELK_ZAHLUNGSZIEL, 96);
ZELK_AT4(ZELK_ZAHLUNGSZIEL, Zahlzielnummer, 0, Name, 4, Skontotage1, 15, Skontosatz1, 19);
ZELK_AT4(ZELK_ZAHLUNGSZIEL, Skontotage2, 25, Skontosatz2, 29, Zahltage, 35, TagInMonat, 39);
ZELK_AT4(ZELK_ZAHLUNGSZIEL, MonatePlus, 43, Bemerkung, 47, Zahlungsart, 88, Naechstes, 92);

/* Creates or changes a payment term. A change sets everything.
 *
 *   Aktion          1 create, 2 change
 *   Zahlzielnummer  to be changed; a new one's number is assigned, whatever this says
 *   Name            short name, unlike that of any other term of the client, byte by byte; white space around does not
 *                   count, of the rest 10 characters do
 *   Skontotage1     0 to 999
 *   Skontosatz1     rate, 5 characters count; null or empty, but not blank: none
 *   Skontotage2     0 to 999; 0, or more than Skontotage1
 *   Skontosatz2     the same; smaller than the first, or without Skontotage2 only not equal
 *   Zahltage        0 to 999
 *   TagInMonat      0 to 31
 *   MonatePlus      0 to 99
 *   Bemerkung       40 characters count
 *   Zahlungsart     0 to 5
 *
 * The number of the term, or the first of: -2 Aktion; -19 Name is empty; -50 new term: Name is in use; -27 change:
 * there is no such term; -32 change: another term has the Name; -53 Skontotage, or the second is not longer; -51
 * Skontosatz is no rate, a period has none, or the second is not smaller; -52 Zahltage; -54 TagInMonat; -55 MonatePlus;
 * -93 Zahlungsart. */
ZELK_API ZelkResult ZELK_CALL ZELK_Zahlungsziel(int32_t Mandantennummer, int32_t Aktion, int32_t Zahlzielnummer,
                                                const char *Name, int32_t Skontotage1, const char *Skontosatz1,
                                                int32_t Skontotage2, const char *Skontosatz2, int32_t Zahltage,
                                                int32_t TagInMonat, int32_t MonatePlus, const char *Bemerkung,
                                                int32_t Zahlungsart, int32_t Fehlermeldungen);

/* Reads a payment term. Zahlzielnummer 0 is the client's first one; with Naechstes a host goes on from there:
 *
 *     ZELK_ZAHLUNGSZIEL term = {.Naechstes = 0};
 *     do
 *       result = ZELK_HoleZahlungsziel(1, term.Naechstes, &term, 0);
 *     while (result == ZELK_OK && show(&term) && term.Naechstes != 0);
 *
 * 1; -38 Zahlungsziel is null; -27 there is no such term; -1 the client has none at all. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleZahlungsziel(int32_t Mandantennummer, int32_t Zahlzielnummer,
                                                    ZELK_ZAHLUNGSZIEL *Zahlungsziel, int32_t Fehlermeldungen);

/* Number of the payment term of that short name (as in ZELK_Zahlungsziel), as the result itself; 0 there is none. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleZZnr(int32_t Mandantennummer, const char *Name);

/* --- 15  Open items ----------------------------------------------------------------------------------------------- */

/* Begins the fetch of the items that are open now, in the order of their numbers.
 *
 *   Kontonummer  items of this account; null or blank: of all; blanks around do not count
 *   Kontoart     2, 4
 *
 * 1; 0 there is none; -7 Kontoart; -10 there is no such account in the client's current year, or the number has more
 * than 7 characters. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleOP(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                              int32_t Fehlermeldungen);

/* Fetches an open item. Each pointer may be null. Amounts are above zero for what a debtor owes or a creditor is owed.
 *
 *   Kontonummer          8  account, without blanks
 *   Kuerzel              9  its short name
 *   Name                41  its name
 *   Belegnummer         17  document number
 *   OPBelegnummer       17  document number of the item
 *   Belegdatum          11  document date; dates as "TT.MM.JJJJ", empty when there is none
 *   Valutadatum         11  value date
 *   Skontodatum1        11  last day of the first discount
 *   Skontosatz1          6  its rate; rates as "03,00", empty when there is none
 *   Skontodatum2        11  the same of the second discount
 *   Skontosatz2          6
 *   Faelligkeitsdatum   11  due date
 *   Text                36
 *   Ausgabeart              form of the amounts, 1 to 3 as in chapter 17
 *   Bruttobetrag        14  gross amount in the client's currency
 *   Ausstand            14  what is left of it
 *   Waehrung             4  currency of the item
 *   Mahnstufe               dunning level, 65535 when dunning is blocked; not written for creditors
 *   Mahndatum           11  day of the last reminder
 *   Bemerkung           41  remark
 *   Gegenkonto           8  contra account, without blanks
 *   Zahlziel                payment term, 0 = none
 *   Zahlungssperre          1 = payment is blocked, else 0
 *   Skontokonto1         8  accounts of the discounts, without blanks
 *   Skontokonto2         8
 *   Steuersatz1          6  their tax rates
 *   Steuersatz2          6
 *   Ausstand2           14  what is left in the foreign currency; zero when the item is in the client's
 *   GWBetrag            14  gross amount in the foreign currency; empty then
 *   Mahnsperre              1 = dunning is blocked, else 0
 *   Text2               36
 *   DMSID               51  document identifier, empty when there is none
 *   Inkasso                 1 = handed to debt collection, else 0
 *   InkassoAkte             numbers of the file, the claim, the costs of reminders there; the last two are 0 unless
 *   InkassoForderung        Inkasso is 1
 *   InkassoMahnkosten
 *
 * 1, 2, -39, -40 (chapter 7); -20 Ausgabeart is not 1 to 3, and Bruttobetrag or Ausstand is wanted (the other amounts
 * take such a one for 3). An item that is settled meanwhile is still delivered, as it was when the fetch came to it. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleOP(char *Kontonummer, char *Kuerzel, char *Name, char *Belegnummer,
                                          char *OPBelegnummer, char *Belegdatum, char *Valutadatum, char *Skontodatum1,
                                          char *Skontosatz1, char *Skontodatum2, char *Skontosatz2,
                                          char *Faelligkeitsdatum, char *Text, int32_t Ausgabeart, char *Bruttobetrag,
                                          char *Ausstand, char *Waehrung, int32_t *Mahnstufe, char *Mahndatum,
                                          char *Bemerkung, char *Gegenkonto, int32_t *Zahlziel, int32_t *Zahlungssperre,
                                          char *Skontokonto1, char *Skontokonto2, char *Steuersatz1, char *Steuersatz2,
                                          char *Ausstand2, char *GWBetrag, int32_t *Mahnsperre, char *Text2,
                                          char *DMSID, int32_t *Inkasso, int32_t *InkassoAkte,
                                          int32_t *InkassoForderung, int32_t *InkassoMahnkosten);

/* Begins the fetch of historical items: items as they were after each payment, with that payment, from the client's
 * first fiscal year to its current one. The first of these that is given (neither null nor blank) selects:
 *
 *   Buchungsdatum       payments of that day and later; any form; by day
 *   Belegnr, OPBelegnr  items of that document number, 16 characters count; blanks before are part of it, blanks
 *                       after are not
 *   Kontonummer         items of that account; it need not exist
 *   none of them        all items, in the order of their numbers
 *   Kontoart            2, 4
 *
 * Within a year they come in the order of what selects.
 *
 * 1; 0 there is none; -96 in the basic edition; -7 Kontoart; -64 Buchungsdatum is no date; -10 Kontonummer has more
 * than 7 characters. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleHistOP(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                                  const char *Buchungsdatum, const char *Belegnr, const char *OPBelegnr,
                                                  int32_t Fehlermeldungen);

/* Fetches a historical item. Beside what ZELK_HoleOP delivers:
 *
 *   Zahlung             14  payment
 *   Zahldatum           11  its day
 *   Benutzer            41  name of the user who entered it, empty when there is none
 *   Skontobetrag        14  discount taken
 *   Zahlbelegnr         17  document number of the payment
 *   Zahltext            36  its texts
 *   Zahltext2           36
 *   Zahlungsart             payment method, 0 to 5
 *
 * 1, 2, -40 (chapter 7); -20 as for ZELK_HoleOP. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleHistOP(
    char *Kontonummer, char *Kuerzel, char *Name, char *Belegnummer, char *OPBelegnummer, char *Belegdatum,
    char *Valutadatum, char *Skontodatum1, char *Skontosatz1, char *Skontodatum2, char *Skontosatz2,
    char *Faelligkeitsdatum, char *Text, int32_t Ausgabeart, char *Bruttobetrag, char *Ausstand, char *Waehrung,
    int32_t *Mahnstufe, char *Mahndatum, char *Bemerkung, char *Gegenkonto, int32_t *Zahlziel, int32_t *Zahlungssperre,
    char *Skontokonto1, char *Skontokonto2, char *Steuersatz1, char *Steuersatz2, char *Ausstand2, char *GWBetrag,
    int32_t *Mahnsperre, char *Zahlung, char *Zahldatum, char *Benutzer, char *Skontobetrag, char *Zahlbelegnr,
    char *Zahltext, int32_t *Zahlungsart, char *Text2, char *Zahltext2, char *DMSID, int32_t *Inkasso,
    int32_t *InkassoAkte, int32_t *InkassoForderung, int32_t *InkassoMahnkosten);

/* --- 16  Dunning, credit ratings ---------------------------------------------------------------------------------- */

/* Dunning level of a debtor, as the result itself: the greatest one of its open items; 0 when there is none, or dunning
 * is blocked for all. -10 there is no such debtor in the client's current year, or the number has more than 7
 * characters, blanks included. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleAktMahnstufe(int32_t Mandantennummer, const char *DebiKonto);

/* Asks the source of credit ratings: the file bonitaet.csv in the program directory (docs/betrieb.md). An answer is
 * shown to the user where refusals are shown, too.
 *
 * Of an account: Kontoart 2 or 4, and Kontonr (blanks around do not count). Its rating is stored in the account, or
 * cleared where the source has none, and the change is entered in the protocol of account changes, both or nothing.
 * What follows Kontonr is not looked at.
 *
 *    1  the rating was stored or cleared
 *    0  there is no source; or no Kontonr
 *   -7  another Kontoart
 *  -10  there is no such account in the client's current year
 *
 * Of a party without an account: Kontoart 0, and Kontonr null or blank. Nothing is stored.
 *
 *   Suchtyp         0 to 3, as the source understands it
 *   Name, Zusatz    40 characters count
 *   Strasse         30
 *   PLZ             6
 *   Ort, Vorname    30
 *   Datum           of birth or foundation, TT.MM.JJJJ of any year; null or empty: not known
 *   Registernummer  20; number in the commercial register
 *
 *    1  the source has a rating, which it shows
 *    0  it has none, or there is no source
 * -102  Suchtyp
 *  -64  Datum is no date
 *
 * Either way -5 for Mandantennummer 0, and -2 when there is a mistake in the file: the call protocol names the line. */
ZELK_API ZelkResult ZELK_CALL ZELK_ErmittleBonitaet(void *HandleParent, int32_t Mandantennummer, int32_t Kontoart,
                                                    const char *Kontonr, int32_t Suchtyp, const char *Name,
                                                    const char *Zusatz, const char *Strasse, const char *PLZ,
                                                    const char *Ort, const char *Vorname, const char *Datum,
                                                    const char *Registernummer);

/* --- 17  Balances, budget values ---------------------------------------------------------------------------------- */

/* Figures of the ledger. Amounts are delivered in 14 bytes, in the form that Ausgabeart names, here for -1234,50:
 *
 *   1  "-000001234,50"  thirteen characters, the first one "-", "+", or "0" for zero
 *   2  "-1234,50"
 *   3  "-1.234,50"      but "-12345678,90", without grouping, where that would take more than 13 characters
 *
 * Every function of this chapter returns -20 for another Ausgabeart, and -2 when an amount that is wanted lies beyond
 * 999.999.999,99; nothing is delivered then. */

/* Delivers what an account was debited and credited with in a fiscal year. A cost centre has but one figure, its costs,
 * as Umsatzsaldo and Eurosaldo, and no opening and closing values.
 *
 *   Kontoart      1, 2, 4, 8
 *   Zeitraum      1 to 12 a month, 13 to 16 a quarter, 18 all months; 17 the opening values, 19 the closing values,
 *                 20 all months with both.
 *                 plus 128: the months from the first one on
 *                 plus 32: with the opening values, where the months begin with the first
 *                 plus 64: with the closing values, where they end with the twelfth
 *   Jahr          fiscal year, four digits; below 0: the current one
 *   Sollumsatz    debits in the client's currency
 *   Habenumsatz   credits
 *   Umsatzsaldo   debits less credits
 *   Eurosoll, Eurohaben, Eurosaldo   the same in Euro
 *
 * 1, or the first of: -20; -7 Kontoart; -10 Kontonummer has more than 7 characters; -44 Zeitraum; client; -44 Jahr;
 * -10, of a cost centre -23: there is none of that number; -2. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleUmsatz(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                              int32_t Zeitraum, int32_t Jahr, int32_t Fehlermeldungen,
                                              int32_t Ausgabeart, char *Sollumsatz, char *Habenumsatz,
                                              char *Umsatzsaldo, char *Eurosoll, char *Eurohaben, char *Eurosaldo,
                                              int32_t Dimension, const char *Kostref);

/* Delivers the balance of an account (debits less credits) or of a cost centre.
 *
 *   Saldo, Eurosaldo  in the client's currency, in Euro
 *   PerDatum          null or empty: of the current fiscal year, with opening and closing values. A date in any form:
 *                     at the end of that day, with the opening values of its fiscal year, without closing values
 *
 * 1; -20; -7 Kontoart; -64 PerDatum is no date; -10, of a cost centre -23: there is none of that number in that year,
 * or no such year; -2. Cost centres of one dimension that differ in their Kostref only: on a day, what named none
 * counts for the first of them. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleSaldo(int32_t Mandantennummer, const char *Kontonummer, int32_t Kontoart,
                                             int32_t Fehlermeldungen, int32_t Ausgabeart, char *Saldo, char *Eurosaldo,
                                             const char *PerDatum, int32_t Dimension, const char *Kostref);

/* Delivers what the cost postings of a fiscal year add up to, in Euro; those that lessen costs are subtracted. A cost
 * posting counts once, however many of its cost centres are meant.
 *
 *   Kontonummer  cost centre; null or blank: all
 *   Kostenart    cost type (general-ledger account); null or blank: all. One of the two must be given
 *   Aufbau       1 to 32: only cost centres that visible account lines of the report structure of that class name; 0 or
 *                less: all
 *   Zeitraum     1 to 12 a month, 13 to 16 a quarter, 17 the year
 *   Jahr         fiscal year, four digits, from the client's first to its current one
 *   Eurosaldo    14 bytes
 *   Dimension    0 to 5, in which the cost centres are named; any other: in whichever
 *   Kostref      only what moved cost centres of this reference, where some cost centre of the year has one; null or
 *                blank: all
 *
 * 1, or the first of: -20; -10 neither number is given, or one has more than 9 characters; client; -44 Jahr; -10
 * there is no such cost type, Aufbau is above 32, or no cost centre is left; -44 Zeitraum; -2. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleKostenSaldo(int32_t Mandantennummer, const char *Kontonummer,
                                                   const char *Kostenart, int32_t Aufbau, int32_t Zeitraum,
                                                   int32_t Jahr, int32_t Fehlermeldungen, int32_t Ausgabeart,
                                                   char *Eurosaldo, int32_t Dimension, const char *Kostref);

/* Begins the fetch of the budget values of a client's accounts.
 *
 *   Kontoart        1, 4, 8; any other value is read as 2
 *   Jahr            fiscal year, four digits; 0: the current one
 *   Sortierung, Ab  as for ZELK_InitHoleKonto
 *   Dimension       cost centres of this dimension only
 *   Kostref         and of this reference; null or empty: of all
 *
 * 1; 0 there is none; -48 Sortierung; -44 the client has no such year. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleSollwerte(int32_t Mandantennummer, int32_t Kontoart, int32_t Jahr,
                                                     int32_t Sortierung, const char *Ab, int32_t Dimension,
                                                     const char *Kostref, int32_t Fehlermeldungen);

/* Fetches the budget values of an account.
 *
 *   Kontonummer         8 bytes, without blanks
 *   Kuerzel             9 bytes
 *   Name                41 bytes
 *   pszMon1 to 12       months, 14 bytes each
 *   pszGesamt           year, 14 bytes
 *   plSWinEuro          1 = the values are in Euro, 0 = in the client's currency
 *
 * 1, 2, -39, -40 (chapter 7); -20 where an amount is wanted; -2. After -20 and -2 the fetch stays on the account. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleSollwerte(char *Kontonummer, char *Kuerzel, char *Name, int32_t Ausgabeart,
                                                 char *pszMon1, char *pszMon2, char *pszMon3, char *pszMon4,
                                                 char *pszMon5, char *pszMon6, char *pszMon7, char *pszMon8,
                                                 char *pszMon9, char *pszMon10, char *pszMon11, char *pszMon12,
                                                 char *pszGesamt, int32_t *plSWinEuro);

/* --- 18  Report structures ---------------------------------------------------------------------------------------- */

/* A report structure is a tree of headings with account lines below them. It is fetched in the order in which a report
 * prints it, beside any other fetch, so that a host can ask for each line's figures. Only one thread may do so at a
 * time: the depth is one for all, and another thread's fetch makes it wrong.
 *
 * Begins the fetch of the structure of a class. The root is not delivered.
 *
 *   Klasse  0 to 32; plus 32768: with the lines that are hidden. What is below a hidden line is not hidden by it
 *
 * 1; 0 it has no lines; -67 Klasse. */
ZELK_API ZelkResult ZELK_CALL ZELK_InitHoleAufbau(int32_t Mandatennummer, int32_t Klasse, int32_t Fehlermeldungen);

/* Fetch a line. It is read when it is delivered, so what was put in or taken out after it meanwhile is seen.
 *
 *   Art    kind, 0 to 3; 1 and 3: account line. Plus 4: hidden
 *   Name   41 bytes: heading; of an account line the account number, without blanks
 *   Ebene  depth of a heading, 1 for the uppermost; of an account line that of the heading above it
 *   ID     41 bytes: identifier of a heading, of an account line the account number; without blanks
 *
 * 1, 2, -40 (chapter 7); -3 also where the structure leads to a line that is not there, or in a circle. */
ZELK_API ZelkResult ZELK_CALL ZELK_HoleAufbau(int32_t *Art, char *Name, int32_t *Ebene);
ZELK_API ZelkResult ZELK_CALL ZELK_HoleAufbauID(int32_t *Art, char *Name, int32_t *Ebene, char *ID);

/* --- 19  Change notification -------------------------------------------------------------------------------------- */

/* Applications that keep copies of the books register in the settings. The library then starts one process for each
 * host, hands it each change in a block of shared memory, and that process tells the applications
 * (docs/benachrichtigung.md, for who writes such a process). By itself the library hands over each posting that it has
 * stored, each batch that it has emptied or deleted (Aktion 3, Art 16, client and batch only), and each account whose
 * credit rating it has changed. That a change cannot be handed over fails no call; the user is told, whatever
 * Fehlermeldungen says. */

/* General-ledger account: payload of kind 1. */
typedef struct ZELK_OUT_SACHKONTO {
  int32_t Wert;             /* what the caller of ZELK_Out passed; from the library itself the client's number */
  int32_t Kontoart;         /* 2: general-ledger account, as the store numbers kinds */
  int32_t Steuerschluessel; /* tax key, 0 = none */
  int32_t Kostenschablone;  /* default cost template, 0 = none */
  char Kontonummer[8];      /* without blanks */
  char Kuerzel[9];          /* short name */
  char Name[41];            /* name */
} ZELK_OUT_SACHKONTO;
ZELK_SIZE(ZELK_OUT_SACHKONTO, 74);
ZELK_AT4(ZELK_OUT_SACHKONTO, Wert, 0, Kontoart, 4, Steuerschluessel, 8, Kostenschablone, 12);
ZELK_AT3(ZELK_OUT_SACHKONTO, Kontonummer, 16, Kuerzel, 24, Name, 33);

/* Creditor or debtor: payload of the kinds 2 and 4. What is not named here is as in ZELK_PEKO. */
typedef struct ZELK_OUT_PERSONENKONTO {
  int32_t Wert; /* as above */
  int32_t Zahlungsziel;
  int32_t Mahnkennziffer;
  int32_t Gesperrt;
  char Kontonummer[8];
  char Kuerzel[9];
  char Sammelkonto[8];
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
  char Waehrung[4];
  char Kreditlimit[13];
  char UStIdNr[16];
  char Steuersatz[6];    /* "00,00": these accounts have no tax rate */
  char reserviert[1475]; /* zero */
} ZELK_OUT_PERSONENKONTO;
ZELK_SIZE(ZELK_OUT_PERSONENKONTO, 1870);
ZELK_AT4(ZELK_OUT_PERSONENKONTO, Wert, 0, Zahlungsziel, 4, Mahnkennziffer, 8, Gesperrt, 12);
ZELK_AT4(ZELK_OUT_PERSONENKONTO, Kontonummer, 16, Kuerzel, 24, Sammelkonto, 33, Name, 41);
ZELK_AT4(ZELK_OUT_PERSONENKONTO, Zusatz, 82, Vorname, 123, Strasse, 154, Land, 185);
ZELK_AT4(ZELK_OUT_PERSONENKONTO, PLZ, 189, Ort, 196, Telefon, 227, EMail, 248);
ZELK_AT4(ZELK_OUT_PERSONENKONTO, IBAN, 309, BIC, 344, Waehrung, 356, Kreditlimit, 360);
ZELK_AT3(ZELK_OUT_PERSONENKONTO, UStIdNr, 373, Steuersatz, 389, reserviert, 395);

/* The shared block. What Art has no use for is zero. In a posting, Waehrung is never empty, amounts have nine digits
 * with a minus in front ("-000000012,50" fills its field, the reserved byte after it ends it), and Steuersatz and
 * Steuerbetrag are empty for a line without tax. */
typedef struct ZELK_OUT_BLOCK {
  uint8_t Befehl; /* 1 = a change follows, 0 = end of work */
  int32_t Aktion; /* 1 = new, 2 = changed, 3 = deleted */
  int32_t Art;    /* kind of the payload */
  union {
    ZELK_OUT_SACHKONTO Sachkonto;         /* Art 1 */
    ZELK_OUT_PERSONENKONTO Personenkonto; /* Art 2 and 4 */
    ZELK_SPLITBUCHUNG Buchung;            /* Art 16; Mandantennummer is Wert */
  } Nutzlast;
} ZELK_OUT_BLOCK;
ZELK_SIZE(ZELK_OUT_BLOCK, 1879);
ZELK_AT4(ZELK_OUT_BLOCK, Befehl, 0, Aktion, 1, Art, 5, Nutzlast, 9);

/* Start and end the notification process; attach and detach do so by themselves. Where no application is registered,
 * nothing is started. A start ends the process of an earlier one first; as the first call it attaches. */
ZELK_API void ZELK_CALL ZELK_InitDLLs(void);
ZELK_API void ZELK_CALL ZELK_FreeDLLs(void);

/* Hands a change over. For libraries of the product family: the record lies in the record store's layout.
 *
 *   Aktion  1 new, 2 changed, 3 deleted
 *   Art     1 general-ledger account, 2 creditor, 4 debtor, 16 posting; any other: the change goes without payload
 *   Wert    head of the payload, see above
 *   Satz    the record; null: without payload. A posting without Nr stands for all postings of its Stapel
 *   Start   postings: first line to be handed over, from 0; a change carries ten
 *
 * The lines of a posting are those that the calling thread's session has in memory for it, else those in the books of
 * the client Wert. A change that cannot be handed over in time (setting ZelkOutTimeout of ZELK) is told to the user,
 * and none is handed over after it until the next attach or ZELK_InitDLLs. */
ZELK_API void ZELK_CALL ZELK_Out(int32_t Aktion, int32_t Art, int32_t Wert, const void *Satz, int16_t Start);

#pragma pack(pop)

#undef ZELK_SIZE
#undef ZELK_AT
#undef ZELK_AT3
#undef ZELK_AT4

#ifdef __cplusplus
}
#endif

#endif
