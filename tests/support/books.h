/// Books to test on: a program directory of the test's own, real databases, a recorder in place of the message boxes.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/ui.h"
#include "store/database.h"
#include "store/store.h"
#include "support/server.h"
#include "zelk98/zelk98.h"

namespace test {

/// What a message box showed.
struct Shown {
  std::string caption, text; ///< UTF-8
  platform::BoxIcon icon;
  platform::BoxButtons buttons;
};

/// What the person does in a selection dialog.
struct DialogEvent {
  enum Kind { Order, Type, Select, Ok, DoubleClick, Cancel } kind;
  int value = 0;         ///< Order: its index; Select, DoubleClick: the line's
  std::string text = ""; ///< Type: what the search field holds then
};

/// A selection dialog as it was when it ended.
struct ShownDialog {
  std::string title;
  void *parent;
  int order;
  std::vector<std::string> lines;
  std::string selected; ///< "" for none
  size_t played;        ///< events of the script until it ended
};

/// Records message boxes and answers them from a script, with OK when it has ended.
class Recorder : public platform::Ui {
public:
  Recorder() { platform::setUi(this); }
  ~Recorder() override { platform::setUi(nullptr); }
  platform::Button message(const std::string &caption, const std::string &text, platform::BoxIcon icon,
                           platform::BoxButtons buttons) override;
  std::optional<std::string> input(const std::string &caption, const std::string &text) override;
  void choose(platform::Selection &selection, void *parent) override;
  std::optional<std::string> saveFile(uintptr_t owner, const std::string &what, const std::string &pattern) override;

  /// The text of the only message since the last call; "" for none, all of them joined by " | " for several.
  std::string takeText();
  std::vector<Shown> shown;
  std::vector<platform::Button> answers;
  std::vector<std::string> inputs; ///< answers to requests for a line of text; then they are cancelled
  std::vector<DialogEvent> script; ///< of every dialog; cancelled when it has ended
  std::vector<ShownDialog> dialogs;
  std::vector<std::string> savePatterns; ///< what the save-file dialogs offered
  std::optional<std::string> saveChoice; ///< what is chosen in them
  std::function<void()> whileShown;      ///< what happens meanwhile
};

/// A temporary folder and settings of the test's own (on Windows a registry of its own); no database yet.
class Environment : public ::testing::Test {
protected:
  Environment();
  ~Environment() override;

  /// Makes the program directory with an empty database and lets the settings lead to it.
  void provision();
  /// Loads a client of the sample books ("musterhandel" is client 1, "alpenwerk" client 2).
  void load(const std::string &sample);
  /// A session below the exports, in the same database.
  std::unique_ptr<vldb98::Store> session(std::chrono::milliseconds lockWait = std::chrono::seconds(10));

  std::filesystem::path folder() const { return folder_; }
  std::filesystem::path dataFolder() const { return folder_ / "programm" / "DATEN"; }
  Recorder recorder;

private:
  std::filesystem::path folder_;
};

/// Ends a test whose subject is the embedded database's files when the tests run on a server.
#define ZELK_ONLY_EMBEDDED()                                                                                           \
  if (::test::onServer()) GTEST_SKIP() << "about the embedded database"

/// Provisioned books with both sample clients.
class Books : public Environment {
protected:
  Books() {
    provision();
    load("musterhandel");
    load("alpenwerk");
  }
};

/// The project's folder, for tests that read its files.
std::filesystem::path sourceFolder();

/// All rows of a client's tables as text, to compare before and after a call that must change nothing.
std::string dump(vldb98::Store &store, uint16_t client, std::initializer_list<int> tables);

/// Runs this test program once more as another process that plays a role in the same books, and waits for it.
/// \return its exit code
int runChild(const std::string &role, const std::string &argument = "");

/// Defines such a role: a function that returns the exit code.
class ChildRole {
public:
  ChildRole(std::string name, std::function<int(const std::string &argument)> work);
};

/// A valid tax-free posting of client 1 into batch 3: 1200 to 1000, 100,00, 21.01.2026.
ZELK_BUCHUNG validPosting();

/// The same as a split posting: every line from 1200, to 1000, 1010, 1210, 1000 and so on, with 1,00 more each.
ZELK_SPLITBUCHUNG validSplit(int lines);

/// The postings of a batch as the exports deliver them.
std::vector<ZELK_SPLITBUCHUNG> postingsOf(int32_t client, int32_t batch);

/// The tables that an insertion locks.
inline constexpr std::initializer_list<int> kLockedTables = {
    vldb98::kKreditor, vldb98::kDebitor, vldb98::kSachkonto, vldb98::kBatchbuchung,
    vldb98::kSplit,    vldb98::kStapel,  vldb98::kKobu};

/// Whether the session can lock all tables of a client at once, so that nobody else holds one. It holds none
/// afterwards.
bool nothingLocked(vldb98::Store &other, uint16_t client);

/// Puts a text into a field of a record; one that is too long fills the field without its end.
template <size_t N> void put(char (&field)[N], const std::string &text) {
  std::memset(field, 0, N);
  std::memcpy(field, text.data(), std::min(N, text.size()));
}

/// Makes the n-th operation of every engine fail that is opened while it lives.
class Faults {
public:
  Faults();
  ~Faults();
  Faults(const Faults &) = delete;
  /// Fails operation n from now on, counting from 1; 0: none.
  void failAt(int n);
  /// Operations since the last failAt.
  int operations() const;
};

/// Makes each operation of the store fail once, each under a call of its own, until a call gets along without the one
/// that is to fail.
/// \param prepare brings the books to where every call begins
/// \param failed  looks at what a call with a failure returned and left behind
/// \return operations of a call, and the result of the last one, in which none failed
template <class Prepare, class Call, class Failed>
auto sweep(Faults &faults, Prepare &&prepare, Call &&call, Failed &&failed) {
  for (int n = 1;; ++n) {
    SCOPED_TRACE("operation " + std::to_string(n));
    faults.failAt(0);
    prepare();
    faults.failAt(n);
    auto result = call();
    const bool met = faults.operations() >= n;
    faults.failAt(0);
    if (!met) return std::pair(n - 1, std::move(result));
    failed(result);
  }
}

} // namespace test
