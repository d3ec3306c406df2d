// The call protocol that threads of several processes write at once.
#include <map>
#include <set>
#include <sstream>
#include <thread>

#include "platform/files.h"
#include "platform/named_mutex.h"
#include "platform/registry.h"
#include "platform/system.h"
#include "support/books.h"
#include "vlba98/encoding.h"

namespace test {
namespace {

namespace fs = std::filesystem;

constexpr int kThreads = 4, kRounds = 6;

/// Posts and walks the batches in several threads. \return the number of threads that did all of it
int workAs(const std::string &process) {
  std::vector<std::thread> threads;
  std::vector<int> done(kThreads);
  for (int t = 0; t < kThreads; ++t)
    threads.emplace_back([&, t] {
      bool all = true;
      for (int i = 0; i < kRounds; ++i) {
        ZELK_SPLITBUCHUNG posting = validSplit(1 + i);
        put(posting.Belegnummer, process + std::to_string(t) + "-" + std::to_string(i));
        all = all && ZELK_SplitBuchungEinfuegen(&posting, 0) == ZELK_OK;
        all = all && ZELK_InitHoleStapel(1, 0) == ZELK_OK;
        char name[41];
        for (int n = 0; n < 3; ++n)
          all = all && ZELK_HoleStapel(nullptr, name, nullptr, nullptr, nullptr, nullptr, nullptr) == ZELK_OK;
      }
      done[size_t(t)] = all;
    });
  for (std::thread &thread : threads)
    thread.join();
  return int(std::count(done.begin(), done.end(), 1));
}

struct ChildBooks : Environment {
  void TestBody() override {}
};

ChildRole worker("work with the protocol", [](const std::string &process) {
  ChildBooks books;
  return ZELK_ProtokollStart() == ZELK_OK && workAs(process) == kThreads && ZELK_ProtokollEnde() == ZELK_OK ? 0 : 1;
});

/// Reads a protocol piece by piece. A piece that is torn, or has another one in it, breaks the form of its lines.
struct Reading {
  std::map<std::string, int> results;                 ///< by function and result
  std::map<std::string, std::set<std::string>> dumps; ///< by function: the labels of its entries
  std::set<std::string> documents;
  std::map<std::string, std::vector<std::string>> open; ///< by thread: calls without their result
  std::string problems;

  explicit Reading(const std::string &text) {
    std::istringstream lines(text);
    std::string function, labels;
    for (std::string line; std::getline(lines, line);) {
      if (line.empty() || line.back() != '\r') problems += "no line end: " + line + "\n";
      if (!line.empty()) line.pop_back();
      bool origin = line.rfind(", ThreadID: ", 0) == 0, result = line.rfind("Rückgabe von ", 0) == 0;
      bool header = line.rfind("Start des", 0) == 0 || line.rfind("Ende des", 0) == 0;
      bool entry = line.rfind("ZELK_", 0) == 0 && line.back() == ':';
      if (origin) {
        if (function.empty() || !labels.empty()) problems += "out of place: " + line + "\n";
        open[line].push_back(function);
      } else if (entry || result || header) {
        if (!function.empty()) dumps[function].insert(labels);
        function = entry ? line.substr(0, line.size() - 1) : "";
        labels.clear();
        if (result) close(line);
      } else {
        size_t colon = line.find(": ");
        if (colon == std::string::npos) problems += "no parameter: " + line + "\n";
        labels += line.substr(0, colon) + "|";
        if (line.rfind("Belegnummer: ", 0) == 0) documents.insert(line.substr(13));
      }
    }
  }

  void close(const std::string &line) {
    constexpr size_t kBegin = sizeof "Rückgabe von " - 1;
    size_t origin = line.find(", ThreadID: ");
    if (origin == std::string::npos) {
      problems += "no end: " + line + "\n";
      return;
    }
    std::string what = line.substr(kBegin, origin - kBegin), name = what.substr(0, what.find(':'));
    auto &calls = open[line.substr(origin)];
    // The start of the protocol has no entry of its own.
    if (name != "ZELK_ProtokollStart") {
      if (calls.empty() || calls.back() != name) problems += "no such call: " + line + "\n";
      if (!calls.empty()) calls.pop_back();
    }
    ++results[what];
  }
};

using ProtocolThreads = Books;

TEST_F(ProtocolThreads, KeepEachPieceWhole) {
  ASSERT_EQ(ZELK_ProtokollStart(), ZELK_OK);
  int inChild = -1;
  std::thread child([&] { inChild = runChild("work with the protocol", "P"); });
  EXPECT_EQ(workAs("T"), kThreads);
  child.join();
  EXPECT_EQ(inChild, 0);
  EXPECT_EQ(ZELK_ProtokollEnde(), ZELK_OK);

  std::string file = (folder() / "programm" / "ZELKPROT.TXT").string();
  Reading reading(vlba98::toUtf8(platform::readFile(file).value_or("")));
  EXPECT_EQ(reading.problems, "");
  for (const auto &[thread, calls] : reading.open)
    EXPECT_EQ(calls.size(), 0u) << thread;
  constexpr int kCalls = 2 * kThreads * kRounds;
  std::map<std::string, int> expected = {{"ZELK_SplitBuchungEinfuegen: 1 ZELK_OK", kCalls},
                                         {"ZELK_InitHoleStapel: 1 ZELK_OK", kCalls},
                                         {"ZELK_HoleStapel: 1 ZELK_weitererDatensatz", 3 * kCalls},
                                         {"ZELK_ProtokollStart: 1 ZELK_OK", 2},
                                         {"ZELK_ProtokollEnde: 1 ZELK_OK", 2}};
  EXPECT_EQ(reading.results, expected);
  EXPECT_EQ(reading.documents.size(), size_t(kCalls));
  // Each function shows the same labels every time; postings by their numbers of lines.
  for (const auto &[function, dumps] : reading.dumps)
    EXPECT_EQ(dumps.size(), function == "ZELK_SplitBuchungEinfuegen" ? size_t(kRounds) : 1u) << function;
}

/// What the library does while another process holds one of its mutexes: nothing, until it lets go.
TEST_F(ProtocolThreads, WaitForTheMutexes) {
  const std::string key = "Software\\Velta\\ZELK", value = "Protokolldatei";
  const fs::path file = folder() / "programm" / "ZELKPROT.TXT";
  ASSERT_EQ(ZELK_BeendeHolen(), ZELK_OK) << "attached";
  auto registry = platform::NamedMutex::open("VELTA_ZELK_MUTEX_PROTOKOLL_REGISTRY"),
       write = platform::NamedMutex::open("VELTA_ZELK_MUTEX_PROTOKOLL_WRITE");
  auto whileHeld = [](platform::NamedMutex &mutex, ZelkResult(ZELK_CALL * call)(), const std::function<void()> &work) {
    mutex.lock();
    std::thread waiting([&] { EXPECT_EQ(call(), ZELK_OK); });
    platform::sleepMicroseconds(50000); // time to go wrong
    work();
    mutex.unlock();
    waiting.join();
  };
  auto count = [&] { return platform::readRegistryNumber(platform::Hive::LocalMachine, key, value); };
  auto setCount = [&] { platform::writeRegistryNumber(platform::Hive::LocalMachine, key, value, 5); };
  whileHeld(*registry, ZELK_ProtokollStart, setCount);
  EXPECT_EQ(count(), 6u);
  auto before = fs::file_size(file);
  whileHeld(*write, ZELK_BeendeHolen, [&] { EXPECT_EQ(fs::file_size(file), before); });
  EXPECT_GT(fs::file_size(file), before);
  whileHeld(*registry, ZELK_ProtokollEnde, setCount);
  EXPECT_EQ(count(), 4u);
}

} // namespace
} // namespace test
