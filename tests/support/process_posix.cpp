#include "support/process.h"

#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

extern char **environ;

namespace test {
namespace {
std::string program;
}

int processId() { return int(::getpid()); }

void setEnvironment(const std::string &name, const std::string &value) {
  if (value.empty()) ::unsetenv(name.c_str());
  else ::setenv(name.c_str(), value.c_str(), 1);
}

void isolateSettings(const std::string &folder) { setEnvironment("ZELK_SETTINGS", folder + "/settings.ini"); }
void dropSettings(const std::string &) {}

void rememberProgram(const std::string &path) { program = path; }

int runSelf(const std::string &role, const std::string &argument) {
  std::string roleEntry = "ZELK_TEST_CHILD=" + role, argumentEntry = "ZELK_TEST_ARGUMENT=" + argument;
  std::vector<char *> environment{roleEntry.data(), argumentEntry.data()};
  for (char **entry = environ; *entry; ++entry) environment.push_back(*entry);
  environment.push_back(nullptr);
  char *arguments[] = {program.data(), nullptr};
  pid_t child;
  if (::posix_spawn(&child, "/proc/self/exe", nullptr, nullptr, arguments, environment.data()) != 0) return -1;
  int status;
  ::waitpid(child, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

} // namespace test
