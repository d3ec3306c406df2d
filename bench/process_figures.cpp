// Several processes that post at once.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <numeric>
#include <sys/wait.h>
#include <unistd.h>

#include "bare.h"
#include "books.h"
#include "figures.h"
#include "processes.h"

namespace bench {
namespace {

constexpr int kProcesses = 4;
constexpr int kTurns = 20;
constexpr int kTurnMilliseconds = 500;

/// A process of this program that posts, turn by turn, and tells how often it did.
class Worker {
public:
  explicit Worker(const char *kind) {
    int toWorker[2], fromWorker[2];
    // Only this worker gets its ends, so that it meets the end of its input.
    require(::pipe2(toWorker, O_CLOEXEC) == 0 && ::pipe2(fromWorker, O_CLOEXEC) == 0, "a pipe");
    process_ = ::fork();
    if (process_ == 0) {
      ::dup2(toWorker[0], STDIN_FILENO);
      ::dup2(fromWorker[1], STDOUT_FILENO);
      std::string settings = books().settingsFile(), bare = books().bareFile(), like = books().libraryFile();
      ::execl("/proc/self/exe", "zelk98_bench", kWorkerOption, kind, settings.c_str(), bare.c_str(), like.c_str(),
              nullptr);
      ::_exit(127);
    }
    ::close(toWorker[0]);
    ::close(fromWorker[1]);
    start_ = toWorker[1];
    results_ = fromWorker[0];
    long ready;
    require(process_ > 0 && ::read(results_, &ready, sizeof ready) == sizeof ready, "a posting process");
  }
  ~Worker() {
    ::close(start_);
    ::close(results_);
    ::waitpid(process_, nullptr, 0);
  }
  Worker(const Worker &) = delete;
  Worker &operator=(const Worker &) = delete;

  void start() { require(::write(start_, "", 1) == 1, "a posting process"); }
  void finishTurn() {
    long count;
    require(::read(results_, &count, sizeof count) == sizeof count, "a posting process");
    postings += count;
  }

  long postings = 0;

private:
  pid_t process_;
  int start_, results_;
};

class Team {
public:
  explicit Team(const char *kind) {
    for (int i = 0; i < kProcesses; ++i)
      workers_.push_back(std::make_unique<Worker>(kind));
  }
  void turn() {
    for (auto &worker : workers_)
      worker->start();
    for (auto &worker : workers_)
      worker->finishTurn();
  }
  double together() const {
    return std::accumulate(workers_.begin(), workers_.end(), 0.0,
                           [](double sum, const auto &worker) { return sum + double(worker->postings); });
  }
  double leastShare() const {
    double least = together();
    for (auto &worker : workers_)
      least = std::min(least, double(worker->postings));
    return least * kProcesses / together();
  }

private:
  std::vector<std::unique_ptr<Worker>> workers_;
};

/// Announces itself, then posts for one turn with each start and tells its number of postings.
template <class Post> void work(Post post) {
  auto tell = [](long count) { require(::write(STDOUT_FILENO, &count, sizeof count) == sizeof count, "telling"); };
  post(); // opens what is to be opened
  tell(0);
  for (char start; ::read(STDIN_FILENO, &start, 1) == 1;) {
    long count = 0;
    auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(kTurnMilliseconds);
    for (; std::chrono::steady_clock::now() < end; ++count)
      post();
    tell(count);
  }
}

} // namespace

int workerMain(char **arguments) {
  auto [kind, settings, bareFile, libraryFile] = std::tuple(arguments[0], arguments[1], arguments[2], arguments[3]);
  useSettings(settings);
  if (std::strcmp(kind, "library") == 0) {
    work([] {
      ZELK_BUCHUNG posting = makePosting(kBatch);
      require(ZELK_BuchungEinfuegen(&posting, 0) == ZELK_OK, "a posting through the library");
    });
  } else {
    BareConnection connection(bareFile);
    BarePosting posting(connection, libraryFile, kBatch);
    work([&] { posting.insert(); });
  }
  return 0;
}

Figures processFigures() {
  BareConnection connection(books().libraryFile());
  BareStatement stored(connection, "SELECT COUNT(*) FROM Batchbuchung");
  stored.run();
  int64_t before = stored.firstNumber();
  Team library("library"), bare("bare");
  for (int i = 0; i < kTurns; ++i) {
    library.turn();
    bare.turn();
  }
  // The library skips a posting without a word when its tables cannot be had in time.
  stored.run();
  require(double(stored.firstNumber() - before) == library.together() + kProcesses, "storing each of the postings");
  double seconds = kTurns * kTurnMilliseconds / 1000.0;
  std::printf("%d processes, postings a second       %7.0f, bare %7.0f\n", kProcesses, library.together() / seconds,
              bare.together() / seconds);
  return {{"four processes together / four bare ones", library.together() / bare.together(), Bound::AtLeast, 0.7},
          {"  the slowest one's part of its fair share", library.leastShare(), Bound::AtLeast, 0.5}};
}

} // namespace bench
