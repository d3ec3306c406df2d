#include "frame/working_directory.h"

#include <cstring>
#include <mutex>
#include <string>

#include "store/database.h"

namespace frame {
namespace {

// The directory that is made current while the product works in its own directory. One for the process, changed by
// every call; hosts that call from several threads share it, as they share the current directory itself.
class DatabaseDirectory {
public:
  /// Becomes the directory when there is none yet, else makes it current when another one is.
  void enter(const char *current) {
    std::lock_guard guard(mutex_);
    if (path_.empty())
      path_ = current;
    else if (path_ != current)
      platform::setCurrentDirectory(path_);
  }
  void set(const char *path) {
    std::lock_guard guard(mutex_);
    path_ = path;
  }

private:
  std::mutex mutex_;
  std::string path_;
};

DatabaseDirectory &databaseDirectory() {
  static DatabaseDirectory instance;
  return instance;
}

} // namespace

WorkingDirectory::WorkingDirectory() {
  saved_[0] = 0;
  if (!vldb98::IsZELKMode()) return;
  platform::currentDirectory(saved_);
  // From a directory without a name (it was deleted) there is no way back.
  if (*saved_) databaseDirectory().enter(saved_);
}

WorkingDirectory::~WorkingDirectory() {
  if (!*saved_) return;
  platform::DirectoryName now;
  platform::currentDirectory(now);
  if (std::strcmp(now, saved_) == 0) return;
  try {
    databaseDirectory().set(now);
    platform::setCurrentDirectory(saved_);
  } catch (...) {
    // Out of memory: the host's directory then stays the database's.
  }
}

} // namespace frame
