/// The record store: the one door to the books.
///
/// A Store is one session: its connection, the current record of every table, the open client and fiscal year, the
/// locks held, the batch posting being built. It belongs to one thread; sessions of any threads and processes work on
/// the same data side by side.
///
/// Every operation returns non-zero when it was carried out and 0 when it failed. "Not there" is no failure: the found
/// flag tells it apart. Reads without a found flag return 0 also when there is no record.
///
/// - A read makes the record delivered the table's current one: the stepping reads go on from it, Update and Delete act
///   on it. After Delete, stepping goes on from where the record was. When nothing is found, buffer and current record
///   stay as they were.
/// - File number = table number + 127 x key index. Rows of a table per client are those of the open client, per fiscal
///   year those of its open year. The engine argument is ZELK_ENG_DEFAULT or the engine in use; another one fails.
/// - Lock selector of the positioning reads: 0 takes nothing; any other value waits until no other session holds the
///   table's lock and takes nothing either, so that a fetch that is abandoned never stands in a posting's way.
#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "isam/engine.h"
#include "store/identifier.h"
#include "store/settlement.h"

namespace vldb98 {

class Store {
public:
  /// \param settlement where a connection can be lost
  explicit Store(std::unique_ptr<Engine> engine, std::unique_ptr<Settlement> settlement = nullptr);
  ~Store();

  // --- Positioning reads ---
  int GetFirst(DATENBANK &record, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT, int32_t selector = 0);
  int GetLast(DATENBANK &record, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT, int32_t selector = 0);
  int GetGe(DATENBANK &record, const SCHLUESSEL &key, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT,
            int32_t selector = 0);
  int GetNext(DATENBANK &record, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  int GetFirstExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT,
                  int32_t selector = 0);
  int GetLastExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT,
                 int32_t selector = 0);
  int GetGeExt(DATENBANK &record, const SCHLUESSEL &key, uint8_t &found, FileNumber file,
               DBENGINE engine = ZELK_ENG_DEFAULT, int32_t selector = 0);
  int GetLeExt(DATENBANK &record, const SCHLUESSEL &key, uint8_t &found, FileNumber file,
               DBENGINE engine = ZELK_ENG_DEFAULT, int32_t selector = 0);
  /// After GetRangeExt on the same file number only as far as its upper key: nothing when there was none in the range.
  int GetNextExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  int GetPrevExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  int GetRangeExt(DATENBANK &record, const SCHLUESSEL &lower, const SCHLUESSEL &upper, uint8_t &found, FileNumber file,
                  DBENGINE engine = ZELK_ENG_DEFAULT);
  int StepFirstExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  int StepNextExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);

  /// Sums over a range of keys, see Engine::sum.
  int Sum(const SCHLUESSEL &lower, const SCHLUESSEL &upper, std::span<const int> fields, std::span<int64_t> sums,
          FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);

  /// Puts the table back to a record that was read earlier, whatever was read in between, so that stepping goes on from
  /// there.
  void setCurrent(const DATENBANK &record, FileNumber file) { engine_->setCurrent(tableOf(file), record); }

  // --- Exact reads and tests ---
  /// The current record stays.
  int Used(const SCHLUESSEL &key, uint8_t &found, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  int UsedGet(DATENBANK &record, const SCHLUESSEL &key, uint8_t &found, FileNumber file,
              DBENGINE engine = ZELK_ENG_DEFAULT);
  int UsedGetExt(DATENBANK &record, const SCHLUESSEL &key, uint8_t &found, FileNumber file,
                 DBENGINE engine = ZELK_ENG_DEFAULT);
  /// Whether an account table has the short name. \param table 0, 2, 3 or 16
  int UsedKuerzel(const char *shortName, uint8_t &found, int table);
  /// Looks an account number up among general-ledger accounts, creditors, debtors and cost centres, in this order.
  /// \param found  the account's kind at the boundary: 1, 2 or 4; 16 for a cost centre (whose numbers are a space of
  ///               their own); 0 when there is none
  /// \param table  receives the table number: 0, 2, 3 or 16
  int UsedAndGetKnr(const char *account, uint8_t &found, DATENBANK &record, int32_t &table);

  /// Tells a server what will be read, see Engine::readAhead.
  int ReadAhead(std::span<const LookUp> wanted) { return engine_->readAhead(wanted); }

  // --- Changes ---
  /// Fails for a duplicate of a unique key, and while no client (no fiscal year) is open that the record would belong
  /// to. A number that the table assigns (payment terms, batches, batch postings,
  /// document links) is written back when the record carries 0, and so is the identifier of a batch posting that has
  /// none. The record becomes the current one.
  int Insert(DATENBANK &record, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  int Update(DATENBANK &record, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  int Delete(FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  /// Deletes all records whose key begins with the first fields of the key given (at least one), however many there
  /// are, at the cost of one statement; done also when there is none. The current record stays where it was.
  int DeleteBeginning(const SCHLUESSEL &key, int fields, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  /// Bulk insertion: all records between InitMultiInsert and EndMultiInsert, or none. After a failed MultiInsertNext,
  /// EndMultiInsert undoes the others and fails. Those of several tables that overlap are decided together, with the
  /// last end: all of their records, or none.
  int InitMultiInsert(FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  int MultiInsertNext(DATENBANK &record, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  int EndMultiInsert(FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  /// Empties a table for a client and fiscal year; fails for a table that is not kept per client. \param client,year
  /// number and four-digit year as text; null or empty: those that are open \param record cleared, so that no emptied
  /// record lingers there; may be null
  int LeereRelation(int file, DATENBANK *record, const char *client, const char *year);

  // --- Transactions and locks ---
  /// \param operation 1 begins, 2 commits, 4 rolls back. Nested: see Engine::transaction
  /// \param flag      0: to write; 1: to read several tables in one state
  int Transaktion(int operation, int flag, DBENGINE engine = ZELK_ENG_DEFAULT);
  int transactionDepth() const { return engine_->transactionDepth(); }
  /// Locks on a table that has one set of rows for all clients are those of all clients. A table's lock and those on
  /// its resources are separate, see LockName. \param name null: the table of the open client; else an area of it that
  /// the name stands for \param mode 0: against all others, until Unlock; 1: waits for the holder only and takes
  /// nothing
  int Lock(FileNumber file, const char *name, int mode, DBENGINE engine = ZELK_ENG_DEFAULT);
  /// Tables of the open client in the order given, all of them or none; on a server in one step.
  int Lock(std::span<const FileNumber> files, DBENGINE engine = ZELK_ENG_DEFAULT);
  /// Lets go what Lock and LockRes took on the table; done also when there is nothing.
  /// \param flag 1: at once; 0: inside a transaction at its end
  int Unlock(FileNumber file, int flag, DBENGINE engine = ZELK_ENG_DEFAULT);
  int Unlock(std::span<const FileNumber> files, int flag, DBENGINE engine = ZELK_ENG_DEFAULT);
  /// \param flag as mode of Lock where mode is 0
  int LockRes(FileNumber file, uint16_t client, const char *resource, int mode, int flag,
              DBENGINE engine = ZELK_ENG_DEFAULT);
  int LockRes(FileNumber file, uint16_t client, int32_t resource, int mode, int flag,
              DBENGINE engine = ZELK_ENG_DEFAULT);
  /// A resource of the whole database, whatever the client.
  int LockResExtern(const char *name, FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  /// Records carry no locks of their own here, so there is never one left to release: always done.
  int UnlockCurrentRecord(FileNumber file, DBENGINE engine = ZELK_ENG_DEFAULT);
  bool holdsLocks() const { return engine_->holdsLocks(); }
  /// False when the session is of no more use: the connection to a server is lost, with locks and transaction, or
  /// the embedded database's file is no longer in its place.
  bool usable() const { return engine_->usable(); }
  /// For a later session to end this one with, when its connection was lost and the server has not noticed.
  SessionTrace trace() const { return engine_->trace(); }
  void endLost(const SessionTrace &lost) { engine_->endLost(lost); }
  /// Why the last transaction was not carried out; Retry: others were in the way, and everything is undone.
  Failure failure() const { return engine_->failure(); }

  // --- Batch postings in memory ---
  /// Empties the lines and cost postings in memory.
  void SplitFree();
  /// Appends a line; Stapel, Buchung and Nr are set when it is written.
  int MemInsertSplit(const SPLIT &line);
  /// The line of an index from 0; null past the end.
  SPLIT *PSplit(size_t index);
  size_t lineCount() const { return lines_.size(); }
  /// Appends a cost posting of the line with the index that its field Split names.
  int MemInsertKobu(const KOBU &cost);
  KOBU *costAt(size_t index);
  size_t costCount() const { return costs_.size(); }
  /// Writes the posting with the lines and cost postings in memory and marks its batch as holding postings, all or
  /// nothing. The posting receives its number, count of lines and identifier. When the connection is lost with the
  /// COMMIT, it is found out through another session whether the posting is stored, and the result is as if nothing had
  /// happened; this session is of no more use then.
  int InsertBat(BATCHBUCHUNG &posting);
  /// Whether InsertBat failed without having found that out: the posting is stored whole or not at all.
  bool outcomeUnknown() const { return outcomeUnknown_; }
  /// Reads the posting that the key (batch, number) names, or the first after it in the same batch, with its lines and
  /// cost postings into memory.
  int ReadBat(BATCHBUCHUNG &posting, int32_t batch, int32_t number, uint8_t &found);
  /// Deletes the posting that was read last by ReadBat or written by InsertBat, with its lines and cost postings; with
  /// the last posting the batch loses its mark.
  int DeleteBat();
  /// Deletes all postings of a batch with their lines and cost postings, and the batch's mark, all or nothing.
  int EmptyBat(int32_t batch);

  // --- Client and fiscal year ---
  /// Opens a client: reads its master record and takes its current fiscal year as the open one. The client that is open
  /// already is read again; another one's batch posting in memory is given up. When there is no such client, the open
  /// one stays.
  int SetzeFista(uint16_t client, uint8_t &found);
  /// The open client's master record; its number is 0 when none is open.
  const FIRMENSTAMM &HoleFista() const { return client_; }
  int SaveFista(const FIRMENSTAMM &client);
  int GetExtFista(FISTA_EXT &extension, uint8_t &found);
  int SetExtFista(const FISTA_EXT &extension);
  /// Fiscal-year codes ("46"): the open year, whose accounts are meant, and the client's current year.
  const char *HoleOpenJahr() const { return openYear_; }
  const char *HoleBuchJahr() const { return client_.AktJahr; }
  int SetzeOpenJahr(const char *yearCode);
  /// Makes another year the client's current one, in its master record.
  int SetzeBuchJahr(const char *yearCode);
  int ExistiertJahr(const char *yearCode, uint8_t &exists);
  /// Whether a fiscal year exists and is still bookable.
  int IsBuchjahr(const char *yearCode, uint8_t &bookable);
  int HoleMinJahr(char (&yearCode)[3]);

  // --- Engine and tables ---
  DBENGINE GetUsedEngine() const { return engine_->kind(); }
  bool IsUsedEngineSQL() const { return GetUsedEngine() != ZELK_ENG_BTRIEVE; }
  int TableExists(int table, uint8_t &exists);
  int CreateTable(int table);
  /// Removes the open client's rows (of the open year).
  int DeleteTable(int table);
  /// Removes the table with the rows of all clients.
  int DropTable(int table);
  int CreateSako() { return CreateTable(kSachkonto); }
  int CreateKost() { return CreateTable(kKost); }
  int CreateBube() { return CreateTable(kBuchungsbeleg); }
  /// Those of both kinds of personal accounts.
  int CreateOp() { return CreateTable(kOPDebitor) && CreateTable(kOPKreditor); }
  int CreateBatch() { return CreateTable(kBatchbuchung); }
  int CreateSplit() { return CreateTable(kSplit); }
  int CreateKobu() { return CreateTable(kKobu); }

private:
  int read(ReadOp op, FileNumber file, DBENGINE engine, const SCHLUESSEL *key, const SCHLUESSEL *upper,
           DATENBANK *record, uint8_t &found, int32_t selector = 0);
  bool inUse(DBENGINE engine) const { return engine == ZELK_ENG_DEFAULT || engine == engine_->kind(); }
  bool lockNamed(const LockName &name, int mode);
  bool inBulk(FileNumber file);
  bool writePosting(BATCHBUCHUNG &posting);
  bool markBatch(int32_t batch, bool holdsPostings);
  template <class Record> bool insertAll(FileNumber file, const std::vector<Record> &records);
  template <class Record> int readLines(FileNumber file, std::vector<Record> &lines, const BATCHBUCHUNG &posting);
  template <class Work> int inTransaction(Work &&work);
  bool deletePosting(const BATCHBUCHUNG &posting);
  bool deleteAllOf(int32_t batch);
  int openCalendarYear() const; // 0: none
  void applyScope();

  std::unique_ptr<Engine> engine_;
  std::unique_ptr<Settlement> settlement_;
  IdentifierSource identifiers_;
  FIRMENSTAMM client_{};
  std::optional<uint64_t> clientVersion_; // Engine::stateVersion when it was read
  char openYear_[3] = "";
  std::vector<SPLIT> lines_;
  std::vector<KOBU> costs_;
  BATCHBUCHUNG posting_{};    // as last read or written; number 0: none
  std::map<int, bool> bulks_; // bulk insertions under way: by table, whether a record was refused
  bool bulkRefused_ = false;  // of those that overlap
  bool outcomeUnknown_ = false;
};

} // namespace vldb98
