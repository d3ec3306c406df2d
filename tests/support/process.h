/// What the tests need of the system: processes, environment, settings of their own.
#pragma once

#include <string>

namespace test {

int processId();
void setEnvironment(const std::string &name, const std::string &value);

/// Lets the library's settings be found below the folder, for this process and those that it starts.
void isolateSettings(const std::string &folder);
void dropSettings(const std::string &folder);

void rememberProgram(const std::string &program);
/// Starts this program again with ZELK_TEST_CHILD and ZELK_TEST_ARGUMENT set, waits for it and returns its exit code.
int runSelf(const std::string &role, const std::string &argument);

} // namespace test
