/// The record operations on a server: several write at once, every statement is a way there and back, and a connection
/// can be lost.
#pragma once

#include "isam/isam_engine.h"
#include "isam/kept_reads.h"

namespace vldb98 {

class ServerEngine final : public IsamEngine {
public:
  ServerEngine(std::unique_ptr<SqlConnection> connection, std::unique_ptr<Locks> locks);

  bool readAhead(std::span<const LookUp> wanted) override;
  bool commitUnanswered() const override { return commitUnanswered_; }
  SessionTrace trace() const override { return {connection_->number(), locks_->lastTable()}; }
  void endLost(const SessionTrace &lost) override {
    if (lost.connection) locks_->endHolder(lost.lock, lost.connection);
  }

private:
  // Beside the statements that every engine has.
  struct ServerState {
    std::map<size_t, Statement> inserts; // of several records, by their count
    Statement insertNumbered;
  };

  bool readRow(const ReadRequest &asked, DATENBANK *record, bool &found) override;
  bool keepsRows() const override { return inTransaction() && !snapshot_; }
  bool beginsLate() const override { return false; }
  void tableChanges(const Table &table) override;
  void guardsEnd() override { kept_.clear(); }
  void commitFailed() override {
    if (!usable()) commitUnanswered_ = true;
  }
  bool insertAssigned(const Table &table, DATENBANK &record) override;
  bool insertRows(const Table &table, const char *records, size_t count) override;

  const KeptReads::Answer *kept(const ReadRequest &asked) const;
  bool readTogether(std::span<const LookUp> wanted);
  bool insertNumbered(const Table &table, char *record, bool &understood);
  bool writeRows(const Table &table, const char *records, size_t count);
  ServerState &serverStateOf(const Table &table) { return onServer_[size_t(table.number)]; }

  std::array<ServerState, kTableLimit> onServer_;
  std::vector<std::unique_ptr<Scratch>> rowScratch_; // of records that are inserted together
  KeptReads kept_;
  std::map<std::vector<std::pair<ReadOp, FileNumber>>, Statement> lookUps_; // by what is read together
  bool commitUnanswered_ = false;
};

} // namespace vldb98
