#include "platform/peer_process.h"

#include "platform/system.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

// The header of glibc 2.36 does not say that these are C.
extern "C" {
#include <sys/pidfd.h>
}

extern char **environ;

namespace platform {
namespace {

// The numbers that the peer has its descriptors under, in the order of its command line.
constexpr int kFirstOfPeer = 3;
constexpr int kPeerCount = 4;

// Closed by every exec of the host; the peer's are copies. It lies above the peer's numbers, so that making one copy
// does not overwrite what the next is made of.
class Descriptor {
public:
  explicit Descriptor(int number) {
    if (number < 0) return;
    number_ = ::fcntl(number, F_DUPFD_CLOEXEC, kFirstOfPeer + kPeerCount);
    ::close(number);
  }
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(Descriptor &&other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor &operator=(Descriptor &&) = delete;
  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }

private:
  int number_ = -1;
};

struct Objects {
  Descriptor self{::pidfd_open(::getpid(), 0)};
  Descriptor submit{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  Descriptor ready{::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)};
  Descriptor memory{::memfd_create("zelkout", MFD_CLOEXEC | MFD_ALLOW_SEALING)};

  explicit operator bool() const { return self && submit && ready && memory; }
};

// \return null when the memory cannot be had
void *map(const Descriptor &memory, size_t size) {
  // A block that the peer could shorten would be a trap for the host.
  if (::ftruncate(memory.get(), off_t(size)) != 0 ||
      ::fcntl(memory.get(), F_ADD_SEALS, F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL) != 0)
    return nullptr;
  void *block = ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, memory.get(), 0);
  return block == MAP_FAILED ? nullptr : block;
}

// \return the process id, or -1
pid_t spawn(const std::string &program, const Objects &objects) {
  posix_spawn_file_actions_t files;
  posix_spawnattr_t attributes;
  if (::posix_spawn_file_actions_init(&files) != 0) return -1;
  if (::posix_spawnattr_init(&attributes) != 0) {
    ::posix_spawn_file_actions_destroy(&files);
    return -1;
  }
  bool prepared = true;
  auto done = [&](int error) { prepared = prepared && error == 0; };
  // The peer may outlive the host, whose streams others wait for.
  for (int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
    done(::posix_spawn_file_actions_addopen(&files, stream, "/dev/null", O_RDWR, 0));
  const int own[kPeerCount] = {objects.self.get(), objects.submit.get(), objects.ready.get(), objects.memory.get()};
  for (int i = 0; i < kPeerCount; ++i)
    done(::posix_spawn_file_actions_adddup2(&files, own[i], kFirstOfPeer + i));
  done(::posix_spawn_file_actions_addclosefrom_np(&files, kFirstOfPeer + kPeerCount));
  sigset_t all, none;
  ::sigfillset(&all);
  ::sigemptyset(&none);
  done(::posix_spawnattr_setsigdefault(&attributes, &all));
  done(::posix_spawnattr_setsigmask(&attributes, &none));
  done(::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSID));

  std::array<char[2 * sizeof(int) + 1], kPeerCount> numbers;
  std::string path = program;
  char *arguments[kPeerCount + 2] = {path.data()};
  for (int i = 0; i < kPeerCount; ++i) {
    std::snprintf(numbers[size_t(i)], sizeof numbers[size_t(i)], "%x", unsigned(kFirstOfPeer + i));
    arguments[i + 1] = numbers[size_t(i)];
  }
  pid_t child = -1;
  if (!prepared || ::posix_spawn(&child, path.c_str(), &files, &attributes, arguments, environ) != 0) child = -1;
  ::posix_spawnattr_destroy(&attributes);
  ::posix_spawn_file_actions_destroy(&files);
  return child;
}

// Waits for the one process only, so that the host's other children stay the host's. The host may have been quicker.
void reap(const Descriptor &process) {
  siginfo_t info;
  while (::waitid(P_PIDFD, id_t(process.get()), &info, WEXITED) != 0 && errno == EINTR) {
  }
}

// A child that nobody has collected yet, so that no other process has got its number.
bool isOwn(const Descriptor &process) {
  siginfo_t info;
  return ::waitid(P_PIDFD, id_t(process.get()), &info, WEXITED | WNOHANG | WNOWAIT) == 0;
}

bool hasEnded(const Descriptor &process) {
  pollfd state{process.get(), POLLIN, 0};
  return ::poll(&state, 1, 0) > 0;
}

// Lets a process run on and collects it when it ends, in a thread that takes none of the host's signals.
void reapLater(Descriptor process) {
  sigset_t all, before;
  ::sigfillset(&all);
  ::pthread_sigmask(SIG_SETMASK, &all, &before);
  try {
    std::thread([own = std::move(process)] { reap(own); }).detach();
  } catch (...) {
    // Without a thread it is collected when the host ends.
  }
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

class PosixPeerProcess final : public PeerProcess {
public:
  PosixPeerProcess(Descriptor process, Objects objects, void *block, size_t size)
      : process_(std::move(process)), objects_(std::move(objects)), block_(block), size_(size) {}

  ~PosixPeerProcess() override {
    ::munmap(block_, size_);
    if (reaped_) return;
    if (hasEnded(process_))
      reap(process_);
    else
      reapLater(std::move(process_));
  }

  void *block() override { return block_; }

  bool waitReady(uint64_t milliseconds) override {
    for (const uint64_t end = steadyMilliseconds() + milliseconds;;) {
      uint64_t now = steadyMilliseconds(), left = end > now ? end - now : 0;
      pollfd state{objects_.ready.get(), POLLIN, 0};
      int set = ::poll(&state, 1, int(std::min<uint64_t>(left, INT_MAX)));
      if (set > 0) return true;
      if (set < 0 ? errno != EINTR : left <= INT_MAX) return false;
    }
  }

  void resetReady() override {
    eventfd_t ignored;
    ::eventfd_read(objects_.ready.get(), &ignored);
  }
  void setSubmit() override { ::eventfd_write(objects_.submit.get(), 1); }

  void terminate() override {
    if (reaped_) return;
    // Only this cannot be held up. That the exit status tells of it does not matter: nobody but this reads it.
    ::pidfd_send_signal(process_.get(), SIGKILL, nullptr, 0);
    reap(process_);
    reaped_ = true;
  }

private:
  Descriptor process_;
  Objects objects_;
  void *block_;
  size_t size_;
  bool reaped_ = false;
};

} // namespace

std::unique_ptr<PeerProcess> PeerProcess::start(const std::string &program, size_t blockSize) {
  Objects objects;
  if (!objects) return nullptr;
  void *block = map(objects.memory, blockSize);
  if (!block) return nullptr;
  if (pid_t child = spawn(program, objects); child >= 0) {
    // clone() would give the handle with the process, but asks for a fork of the host by hand in place of posix_spawn.
    if (Descriptor process(::pidfd_open(child, 0)); process && isOwn(process))
      return std::make_unique<PosixPeerProcess>(std::move(process), std::move(objects), block, blockSize);
    // Never by its number: a host that collects every child may have done so, and the number be another process's.
    ::eventfd_write(objects.submit.get(), 1);
  }
  ::munmap(block, blockSize);
  return nullptr;
}

} // namespace platform
