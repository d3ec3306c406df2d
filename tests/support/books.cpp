#include "support/books.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <map>
#include <random>
#include <sstream>

#include "odbc/odbc_connection.h"
#include "sqlite/sqlite_connection.h"
#include "support/process.h"
#include "zelkctl/verbs.h"

namespace test {
namespace {

using namespace vldb98;

std::map<std::string, std::function<int(const std::string &)>> &roles() {
  static std::map<std::string, std::function<int(const std::string &)>> instance;
  return instance;
}

std::atomic<int> failing{0}, counted{0};

class FaultyEngine final : public Engine {
public:
  explicit FaultyEngine(std::unique_ptr<Engine> inner) : inner_(std::move(inner)) {}

  DBENGINE kind() const override { return inner_->kind(); }
  void setScope(uint16_t client, int year) override { inner_->setScope(client, year); }
  void setCurrent(int table, const DATENBANK &record) override { inner_->setCurrent(table, record); }
  bool read(ReadOp op, FileNumber file, const SCHLUESSEL *key, const SCHLUESSEL *upper, DATENBANK *record,
            bool &found) override {
    found = false;
    return !fails() && inner_->read(op, file, key, upper, record, found);
  }
  bool readAhead(std::span<const LookUp> wanted) override { return !fails() && inner_->readAhead(wanted); }
  bool sum(FileNumber file, const SCHLUESSEL &lower, const SCHLUESSEL &upper, std::span<const int> fields,
           std::span<int64_t> sums) override {
    return !fails() && inner_->sum(file, lower, upper, fields, sums);
  }
  bool change(ChangeOp op, FileNumber file, DATENBANK *record) override {
    return !fails() && inner_->change(op, file, record);
  }
  bool insertAll(FileNumber file, const char *records, size_t count) override {
    // Each record is an operation, whatever the engine makes of them.
    for (size_t i = 0; i < count; ++i)
      if (fails()) {
        inner_->insertAll(file, records, i);
        return false;
      }
    return inner_->insertAll(file, records, count);
  }
  bool deleteBeginning(FileNumber file, const SCHLUESSEL &key, int fields) override {
    return !fails() && inner_->deleteBeginning(file, key, fields);
  }
  bool transaction(TransactionOp op, bool snapshot) override {
    // A rollback cannot be refused; a commit that fails has rolled back.
    if (op == TransactionOp::Rollback || !fails()) return inner_->transaction(op, snapshot);
    if (op == TransactionOp::Commit) inner_->transaction(TransactionOp::Rollback, false);
    return false;
  }
  int transactionDepth() const override { return inner_->transactionDepth(); }
  bool table(TableOp op, int number) override { return !fails() && inner_->table(op, number); }
  bool tableExists(int number, bool &exists) override { return !fails() && inner_->tableExists(number, exists); }
  bool lock(std::span<const LockName> names, LockMode mode) override {
    // Each lock is an operation; when one of them is not had, none is.
    for (size_t i = 0; i < names.size(); ++i)
      if (fails()) return false;
    return inner_->lock(names, mode);
  }
  void unlock(std::span<const uint16_t> tables, bool atOnce) override { inner_->unlock(tables, atOnce); }
  bool holdsLocks() const override { return inner_->holdsLocks(); }
  bool usable() const override { return inner_->usable(); }
  Failure failure() const override { return inner_->failure(); }
  bool commitUnanswered() const override { return inner_->commitUnanswered(); }
  SessionTrace trace() const override { return inner_->trace(); }
  void endLost(const SessionTrace &lost) override { inner_->endLost(lost); }

private:
  static bool fails() { return ++counted == failing; }

  std::unique_ptr<Engine> inner_;
};

} // namespace

platform::Button Recorder::message(const std::string &caption, const std::string &text, platform::BoxIcon icon,
                                   platform::BoxButtons buttons) {
  shown.push_back({caption, text, icon, buttons});
  if (whileShown) whileShown();
  if (answers.empty()) return platform::Button::Ok;
  platform::Button answer = answers.front();
  answers.erase(answers.begin());
  return answer;
}

std::optional<std::string> Recorder::input(const std::string &caption, const std::string &text) {
  shown.push_back({caption, text, platform::BoxIcon::Question, platform::BoxButtons::OkCancel});
  if (whileShown) whileShown();
  if (inputs.empty()) return std::nullopt;
  std::string answer = inputs.front();
  inputs.erase(inputs.begin());
  return answer;
}

void Recorder::choose(platform::Selection &selection, void *parent) {
  auto open = [&](const DialogEvent &event) {
    switch (event.kind) {
    case DialogEvent::Order:
      return selection.switchOrder(event.value);
    case DialogEvent::Type:
      selection.search(event.text);
      return true;
    case DialogEvent::Select:
      selection.select(size_t(event.value));
      return true;
    case DialogEvent::DoubleClick:
      selection.select(size_t(event.value));
      return !selection.confirm();
    case DialogEvent::Ok:
      return !selection.confirm();
    case DialogEvent::Cancel:
      break;
    }
    return false;
  };
  ShownDialog shownNow{selection.title(), parent, 0, {}, "", 0};
  while (shownNow.played < script.size() && open(script[shownNow.played++]))
    ;
  shownNow.order = selection.order();
  for (size_t i = 0; i < selection.lineCount(); ++i)
    shownNow.lines.push_back(selection.line(i));
  if (selection.selected()) shownNow.selected = shownNow.lines.at(*selection.selected());
  dialogs.push_back(shownNow);
}

std::optional<std::string> Recorder::saveFile(uintptr_t, const std::string &what, const std::string &pattern) {
  savePatterns.push_back(what + "|" + pattern);
  return saveChoice;
}

std::string Recorder::takeText() {
  std::string all;
  for (const Shown &box : shown)
    all += (all.empty() ? "" : " | ") + box.text;
  shown.clear();
  return all;
}

Environment::Environment() {
  if (const char *given = std::getenv("ZELK_TEST_FOLDER")) {
    folder_ = given;
  } else {
    // A process id alone comes back: a killed test leaves its folder, and another test would find books in its own.
    renewServerDatabase();
    std::random_device random;
    do
      folder_ = std::filesystem::temp_directory_path() /
                ("zelk98-test-" + std::to_string(processId()) + "-" + std::to_string(random()));
    while (!std::filesystem::create_directory(folder_));
    setEnvironment("ZELK_TEST_FOLDER", folder_.string());
  }
  isolateSettings(folder_.string());
}

Environment::~Environment() {
  ZELK_Detach();
  if (std::getenv("ZELK_TEST_CHILD")) return;
  setEnvironment("ZELK_TEST_FOLDER", "");
  dropSettings(folder_.string());
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

void Environment::provision() {
  if (onServer()) writeServerSettings(serverDatabase());
  ::testing::internal::CaptureStdout();
  int code = zelkctl::provision((folder_ / "programm").string());
  std::string output = ::testing::internal::GetCapturedStdout();
  ASSERT_EQ(code, zelkctl::kDone) << output;
}

void Environment::load(const std::string &sample) {
  ::testing::internal::CaptureStdout();
  int code = zelkctl::createClient((sourceFolder() / "samples" / sample).string());
  std::string output = ::testing::internal::GetCapturedStdout();
  ASSERT_EQ(code, zelkctl::kDone) << output;
}

std::unique_ptr<Store> Environment::session(std::chrono::milliseconds lockWait) {
  DatabaseSettings settings;
  settings.directory = dataFolder().string();
  settings.lockWait = lockWait;
  settings.openEmbedded = [](const std::string &path, std::chrono::milliseconds wait) {
    return openSqlite(path, {wait, false, true});
  };
  if (onServer()) settings.server = serverDatabase();
  settings.openServer = openOdbc;
  return openSession(settings);
}

std::filesystem::path sourceFolder() {
  return ZELK_SOURCE_FOLDER;
}

std::string dump(Store &store, uint16_t client, std::initializer_list<int> tables) {
  std::ostringstream text;
  uint8_t found = 0;
  store.SetzeFista(client, found);
  for (int number : tables) {
    const Table *table = findTable(number);
    DATENBANK record{};
    int done = store.StepFirstExt(record, found, FileNumber(number));
    while (done && found) {
      text << table->name << ':' << std::string(record.bytes, table->recordSize) << '\n';
      done = store.StepNextExt(record, found, FileNumber(number));
    }
    if (!done) text << "store failed\n";
  }
  return text.str();
}

int runChild(const std::string &role, const std::string &argument) {
  return runSelf(role, argument);
}

ChildRole::ChildRole(std::string name, std::function<int(const std::string &)> work) {
  roles()[name] = std::move(work);
}

ZELK_BUCHUNG validPosting() {
  ZELK_BUCHUNG posting{};
  posting.Mandantennummer = 1;
  posting.Stapelnummer = 3;
  posting.Sollart = posting.Habenart = ZELK_SACHKONTO;
  put(posting.Belegdatum, "210126");
  put(posting.Belegnummer, "B-1");
  put(posting.Text, "Bareinzahlung");
  put(posting.Sollkonto, "1200");
  put(posting.Habenkonto, "1000");
  put(posting.Bruttobetrag, "100,00");
  return posting;
}

ZELK_SPLITBUCHUNG validSplit(int lines) {
  ZELK_SPLITBUCHUNG posting{};
  posting.Mandantennummer = 1;
  posting.Stapelnummer = 3;
  posting.Teilbuchungsanzahl = lines;
  put(posting.Belegdatum, "210126");
  put(posting.Belegnummer, "B-1");
  static constexpr const char *credits[] = {"1000", "1010", "1210"};
  for (int i = 0; i < std::min(lines, 10); ++i) {
    ZELK_TEILBUCHUNG &line = posting.Teilbuchung[i];
    line.Sollart = line.Habenart = ZELK_SACHKONTO;
    put(line.Sollkonto, "1200");
    put(line.Habenkonto, credits[i % 3]);
    put(line.Bruttobetrag, std::to_string(100 + i) + ",00");
    put(line.Text, "Teil " + std::to_string(i + 1));
  }
  return posting;
}

std::vector<ZELK_SPLITBUCHUNG> postingsOf(int32_t client, int32_t batch) {
  std::vector<ZELK_SPLITBUCHUNG> all;
  ZelkResult result = ZELK_InitHoleBatch(client, batch, 0);
  while (result == ZELK_OK) {
    ZELK_SPLITBUCHUNG posting;
    result = ZELK_HoleBatch(&posting);
    if (result > 0) all.push_back(posting);
  }
  EXPECT_GE(result, 0);
  return all;
}

bool nothingLocked(Store &other, uint16_t client) {
  uint8_t found = 0;
  bool all = other.SetzeFista(client, found) && found;
  for (const Table &table : allTables())
    all = all && other.Lock(FileNumber(table.number), nullptr, 0);
  for (const Table &table : allTables())
    other.Unlock(FileNumber(table.number), 1);
  return all;
}

Faults::Faults() {
  failAt(0);
  setEngineDecorator([](std::unique_ptr<Engine> engine) { return std::make_unique<FaultyEngine>(std::move(engine)); });
}

Faults::~Faults() {
  setEngineDecorator({});
}

void Faults::failAt(int n) {
  failing = n;
  counted = 0;
}

int Faults::operations() const {
  return counted;
}

} // namespace test

int main(int argc, char **argv) {
  test::rememberProgram(argv[0]);
  if (const char *role = std::getenv("ZELK_TEST_CHILD")) {
    const char *argument = std::getenv("ZELK_TEST_ARGUMENT");
    auto work = test::roles().find(role);
    return work == test::roles().end() ? 99 : work->second(argument ? argument : "");
  }
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
