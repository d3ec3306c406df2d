#include "store/store.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>

namespace vldb98 {

Store::Store(std::unique_ptr<Engine> engine, std::unique_ptr<Settlement> settlement)
    : engine_(std::move(engine)), settlement_(std::move(settlement)) {}
Store::~Store() = default;

int Store::read(ReadOp op, FileNumber file, DBENGINE engine, const SCHLUESSEL *key, const SCHLUESSEL *upper,
                DATENBANK *record, uint8_t &found, int32_t selector) {
  found = 0;
  if (!inUse(engine)) return 0;
  if (selector != 0 && !lockNamed(LockName::on(tableOf(file), client_.Nummer), 1)) return 0;
  bool there = false;
  bool done = engine_->read(op, file, key, upper, record, there);
  found = done && there;
  return done;
}

int Store::GetFirstExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine, int32_t selector) {
  return read(ReadOp::First, file, engine, nullptr, nullptr, &record, found, selector);
}
int Store::GetLastExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine, int32_t selector) {
  return read(ReadOp::Last, file, engine, nullptr, nullptr, &record, found, selector);
}
int Store::GetGeExt(DATENBANK &record, const SCHLUESSEL &key, uint8_t &found, FileNumber file, DBENGINE engine,
                    int32_t selector) {
  return read(ReadOp::Ge, file, engine, &key, nullptr, &record, found, selector);
}
int Store::GetLeExt(DATENBANK &record, const SCHLUESSEL &key, uint8_t &found, FileNumber file, DBENGINE engine,
                    int32_t selector) {
  return read(ReadOp::Le, file, engine, &key, nullptr, &record, found, selector);
}
int Store::GetNextExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine) {
  return read(ReadOp::Next, file, engine, nullptr, nullptr, &record, found);
}
int Store::GetPrevExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine) {
  return read(ReadOp::Prev, file, engine, nullptr, nullptr, &record, found);
}
int Store::GetRangeExt(DATENBANK &record, const SCHLUESSEL &lower, const SCHLUESSEL &upper, uint8_t &found,
                       FileNumber file, DBENGINE engine) {
  return read(ReadOp::Range, file, engine, &lower, &upper, &record, found);
}
int Store::StepFirstExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine) {
  return read(ReadOp::StepFirst, file, engine, nullptr, nullptr, &record, found);
}
int Store::StepNextExt(DATENBANK &record, uint8_t &found, FileNumber file, DBENGINE engine) {
  return read(ReadOp::StepNext, file, engine, nullptr, nullptr, &record, found);
}

int Store::Sum(const SCHLUESSEL &lower, const SCHLUESSEL &upper, std::span<const int> fields, std::span<int64_t> sums,
               FileNumber file, DBENGINE engine) {
  return inUse(engine) && engine_->sum(file, lower, upper, fields, sums);
}

int Store::GetFirst(DATENBANK &record, FileNumber file, DBENGINE engine, int32_t selector) {
  uint8_t found;
  return GetFirstExt(record, found, file, engine, selector) && found;
}
int Store::GetLast(DATENBANK &record, FileNumber file, DBENGINE engine, int32_t selector) {
  uint8_t found;
  return GetLastExt(record, found, file, engine, selector) && found;
}
int Store::GetGe(DATENBANK &record, const SCHLUESSEL &key, FileNumber file, DBENGINE engine, int32_t selector) {
  uint8_t found;
  return GetGeExt(record, key, found, file, engine, selector) && found;
}
int Store::GetNext(DATENBANK &record, FileNumber file, DBENGINE engine) {
  uint8_t found;
  return GetNextExt(record, found, file, engine) && found;
}

int Store::Used(const SCHLUESSEL &key, uint8_t &found, FileNumber file, DBENGINE engine) {
  return read(ReadOp::Exists, file, engine, &key, nullptr, nullptr, found);
}
int Store::UsedGet(DATENBANK &record, const SCHLUESSEL &key, uint8_t &found, FileNumber file, DBENGINE engine) {
  return read(ReadOp::Exact, file, engine, &key, nullptr, &record, found);
}
int Store::UsedGetExt(DATENBANK &record, const SCHLUESSEL &key, uint8_t &found, FileNumber file, DBENGINE engine) {
  return UsedGet(record, key, found, file, engine);
}

int Store::UsedKuerzel(const char *shortName, uint8_t &found, int table) {
  return Used(KeyBuilder().text(shortName, sizeof(SACHKONTO::Kuerzel) - 1), found, fileNumber(table, 1));
}

int Store::UsedAndGetKnr(const char *account, uint8_t &found, DATENBANK &record, int32_t &table) {
  struct Kind {
    int table;
    uint8_t flag;
  };
  static constexpr Kind kinds[] = {{kSachkonto, 1}, {kKreditor, 2}, {kDebitor, 4}, {kKost, 16}};
  found = 0;
  std::string_view number = account;
  number = number.substr(0, number.find_last_not_of(' ') + 1);
  if (number.size() >= sizeof(SACHKONTO::Nr)) return 1; // a key would cut it to another account's
  for (const Kind &kind : kinds) {
    uint8_t there = 0;
    // A cost centre's key goes on after the number, padded like the stored one where there is no reference.
    KeyBuilder key;
    key.account(number);
    if (kind.table == kKost) key.number<int16_t>(0).account("");
    if (!UsedGet(record, key, there, fileNumber(kind.table, 0))) return 0;
    if (there) {
      found = kind.flag;
      table = kind.table;
      return 1;
    }
  }
  return 1;
}

int Store::Insert(DATENBANK &record, FileNumber file, DBENGINE engine) {
  if (!inUse(engine)) return 0;
  const bool identified = tableOf(file) != kBatchbuchung || *record.Batchbuchung.Kennung;
  if (!identified) identifiers_.make(record.Batchbuchung.Kennung);
  const bool done = engine_->change(ChangeOp::Insert, file, &record);
  if (!done && !identified) *record.Batchbuchung.Kennung = 0;
  return done;
}
int Store::Update(DATENBANK &record, FileNumber file, DBENGINE engine) {
  return inUse(engine) && engine_->change(ChangeOp::Update, file, &record);
}
int Store::Delete(FileNumber file, DBENGINE engine) {
  return inUse(engine) && engine_->change(ChangeOp::Delete, file, nullptr);
}

int Store::DeleteBeginning(const SCHLUESSEL &key, int fields, FileNumber file, DBENGINE engine) {
  return inUse(engine) && engine_->deleteBeginning(file, key, fields);
}

bool Store::inBulk(FileNumber file) {
  // Of a transaction that was ended in their place.
  if (engine_->transactionDepth() == 0) {
    bulks_.clear();
    bulkRefused_ = false;
  }
  return bulks_.contains(tableOf(file));
}

int Store::InitMultiInsert(FileNumber file, DBENGINE engine) {
  return !inBulk(file) && Transaktion(1, 0, engine) && bulks_.emplace(tableOf(file), false).second;
}
int Store::MultiInsertNext(DATENBANK &record, FileNumber file, DBENGINE engine) {
  if (!inBulk(file)) return 0;
  bool &refused = bulks_[tableOf(file)];
  if (refused || !Insert(record, file, engine)) refused = true;
  return !refused;
}
int Store::EndMultiInsert(FileNumber file, DBENGINE engine) {
  if (!inBulk(file) || !inUse(engine)) return 0;
  // One that was refused undoes those that overlap with it, too, of which it may end neither first nor last.
  bulkRefused_ |= std::any_of(bulks_.begin(), bulks_.end(), [](const auto &bulk) { return bulk.second; });
  bulks_.erase(tableOf(file));
  const bool refused = bulkRefused_;
  if (bulks_.empty()) bulkRefused_ = false;
  const int ended = Transaktion(refused ? 4 : 2, 0, engine);
  return !refused && ended;
}

int Store::LeereRelation(int file, DATENBANK *record, const char *client, const char *year) {
  if (record) *record = DATENBANK{};
  int number = client && *client ? std::atoi(client) : client_.Nummer;
  if (number < 1 || number > UINT16_MAX) return 0;
  engine_->setScope(uint16_t(number), year && *year ? std::atoi(year) : openCalendarYear());
  int done = engine_->table(TableOp::Clear, tableOf(FileNumber(file)));
  applyScope();
  return done;
}

int Store::Transaktion(int operation, int flag, DBENGINE engine) {
  if (!inUse(engine) || (operation != 1 && operation != 2 && operation != 4)) return 0;
  return engine_->transaction(TransactionOp(operation), flag == 1);
}

bool Store::lockNamed(const LockName &name, int mode) {
  return engine_->lock({&name, 1}, mode == 1 ? LockMode::PassThrough : LockMode::Exclusive);
}

int Store::Lock(FileNumber file, const char *name, int mode, DBENGINE engine) {
  uint64_t resource = name && *name ? LockName::resourceOf(name) : 0;
  return inUse(engine) && lockNamed(LockName::on(tableOf(file), client_.Nummer, resource), mode);
}

int Store::Lock(std::span<const FileNumber> files, DBENGINE engine) {
  std::vector<LockName> names;
  for (FileNumber file : files)
    names.push_back(LockName::on(tableOf(file), client_.Nummer));
  return inUse(engine) && engine_->lock(names, LockMode::Exclusive);
}

int Store::Unlock(FileNumber file, int flag, DBENGINE engine) {
  return Unlock({&file, 1}, flag, engine);
}

int Store::Unlock(std::span<const FileNumber> files, int flag, DBENGINE engine) {
  if (!inUse(engine)) return 0;
  std::array<uint16_t, kTableLimit> tables;
  size_t count = 0;
  for (FileNumber file : files)
    if (count < tables.size()) tables[count++] = uint16_t(tableOf(file));
  engine_->unlock({tables.data(), count}, flag == 1);
  return 1;
}

int Store::LockRes(FileNumber file, uint16_t client, const char *resource, int mode, int flag, DBENGINE engine) {
  if (!inUse(engine) || !resource) return 0;
  return lockNamed(LockName::on(tableOf(file), client, LockName::resourceOf(resource)), mode ? mode : flag);
}

int Store::LockRes(FileNumber file, uint16_t client, int32_t resource, int mode, int flag, DBENGINE engine) {
  return LockRes(file, client, std::to_string(resource).c_str(), mode, flag, engine);
}

int Store::LockResExtern(const char *name, FileNumber file, DBENGINE engine) {
  return LockRes(file, 0, name, 0, 0, engine);
}

int Store::UnlockCurrentRecord(FileNumber, DBENGINE engine) {
  return inUse(engine);
}

int Store::TableExists(int table, uint8_t &exists) {
  bool there = false;
  int done = engine_->tableExists(table, there);
  exists = there;
  return done;
}
int Store::CreateTable(int table) {
  return engine_->table(TableOp::Create, table);
}
int Store::DeleteTable(int table) {
  return engine_->table(TableOp::Clear, table);
}
int Store::DropTable(int table) {
  return engine_->table(TableOp::Drop, table);
}

} // namespace vldb98
