/// What the tests need of the system: processes, environment, settings of their own.
#pragma once

#include <cstdint>
#include <string>

namespace test {

int processId();
void setEnvironment(const std::string &name, const std::string &value);

/// Lets the library's settings be found below the folder, for this process and those that it starts.
void isolateSettings(const std::string &folder);
void dropSettings(const std::string &folder);

/// Runs a program, with its standard output and standard error in a file. \param arguments with their quotes
/// \return its exit code
int runProgram(const std::string &program, const std::string &arguments, const std::string &output);

/// Lets programs that this process starts find the same settings, for the rest of the process. \return false where that
/// would touch the settings of a real installation
bool shareSettings();

/// A library file that is loaded for as long as this lives.
class LoadedLibrary {
public:
  explicit LoadedLibrary(const std::string &path);
  ~LoadedLibrary();
  LoadedLibrary(const LoadedLibrary &) = delete;
  explicit operator bool() const { return module_ != nullptr; }
  /// An exported function; null when there is none of that name.
  void *function(const std::string &name) const;

private:
  void *module_;
};

/// Handles or descriptors that this process has open.
int openHandles();

/// From now on this process has no descriptor of that number or a greater one; 0: as many as before. \return false
/// where the system has no such limit
bool limitDescriptors(int count);

/// From now on no file of this process can be written beyond so many bytes, as on a full disk; 0: as far as it was.
/// \return false where the system has no such limit
bool limitFileSize(uint64_t bytes);

/// Lets this process, for the rest of its life, be a user whom write protection stops. \return false where there is
/// none
bool becomeOrdinaryUser();

/// The most memory that this process has had so far, in bytes; 0 where that cannot be told or means nothing.
int64_t peakMemory();

/// Whether a process of that id runs; ends one, and does not wait for that.
bool processRuns(int id);
void endProcess(int id);

/// Whether a child of this process has ended that nobody has collected.
bool hasZombie();

void rememberProgram(const std::string &program);
/// Starts this program again with ZELK_TEST_CHILD and ZELK_TEST_ARGUMENT set, waits for it and returns its exit code.
int runSelf(const std::string &role, const std::string &argument);

} // namespace test
