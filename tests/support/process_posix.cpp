#include "support/process.h"

#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char **environ;

namespace test {
namespace {
std::string program;
}

int processId() {
  return int(::getpid());
}

void setEnvironment(const std::string &name, const std::string &value) {
  if (value.empty())
    ::unsetenv(name.c_str());
  else
    ::setenv(name.c_str(), value.c_str(), 1);
}

void isolateSettings(const std::string &folder) {
  setEnvironment("ZELK_SETTINGS", folder + "/settings.ini");
}
void dropSettings(const std::string &) {}

bool limitFileSize(uint64_t bytes) {
  ::signal(SIGXFSZ, SIG_IGN);
  struct rlimit limit {};
  ::getrlimit(RLIMIT_FSIZE, &limit);
  limit.rlim_cur = bytes ? bytes : limit.rlim_max;
  return ::setrlimit(RLIMIT_FSIZE, &limit) == 0;
}

bool becomeOrdinaryUser() {
  constexpr uid_t kNobody = 65534;
  return ::geteuid() != 0 || (::setgid(kNobody) == 0 && ::setuid(kNobody) == 0);
}

int64_t peakMemory() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  return 0;
#else
  rusage usage{};
  return ::getrusage(RUSAGE_SELF, &usage) == 0 ? int64_t(usage.ru_maxrss) * 1024 : 0;
#endif
}

bool processRuns(int id) {
  // Where nobody collects the orphans of a machine, one that has ended can still be signalled.
  std::ifstream file("/proc/" + std::to_string(id) + "/stat");
  // Not by iterators over the buffer: when the process ends meanwhile, they would throw.
  std::string text;
  std::getline(file, text, '\0');
  size_t name = text.rfind(')');
  return name != std::string::npos && text.find('Z', name) == std::string::npos;
}

void endProcess(int id) {
  ::kill(pid_t(id), SIGKILL);
}

bool hasZombie() {
  siginfo_t info{};
  return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
}

void rememberProgram(const std::string &path) {
  program = path;
}

int runProgram(const std::string &path, const std::string &arguments, const std::string &output) {
  int status = std::system(("'" + path + "' " + arguments + " >'" + output + "' 2>&1 </dev/null").c_str());
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

bool shareSettings() {
  return true;
}

LoadedLibrary::LoadedLibrary(const std::string &path) : module_(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {}
LoadedLibrary::~LoadedLibrary() {
  if (module_) ::dlclose(module_);
}
void *LoadedLibrary::function(const std::string &name) const {
  return module_ ? ::dlsym(module_, name.c_str()) : nullptr;
}

int openHandles() {
  std::filesystem::directory_iterator all("/proc/self/fd");
  return int(std::distance(begin(all), end(all)));
}

bool limitDescriptors(int count) {
  struct rlimit limit {};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  static const rlim_t before = limit.rlim_cur;
  limit.rlim_cur = count ? rlim_t(count) : before;
  return ::setrlimit(RLIMIT_NOFILE, &limit) == 0;
}

int runSelf(const std::string &role, const std::string &argument) {
  std::string roleEntry = "ZELK_TEST_CHILD=" + role, argumentEntry = "ZELK_TEST_ARGUMENT=" + argument;
  std::vector<char *> environment{roleEntry.data(), argumentEntry.data()};
  for (char **entry = environ; *entry; ++entry)
    environment.push_back(*entry);
  environment.push_back(nullptr);
  char *arguments[] = {program.data(), nullptr};
  pid_t child;
  if (::posix_spawn(&child, "/proc/self/exe", nullptr, nullptr, arguments, environment.data()) != 0) return -1;
  int status;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace test
