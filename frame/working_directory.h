/// The current directory of a call.
#pragma once

#include "platform/files.h"

namespace frame {

/// In the own directory mode makes the database directory current for a scope, and the host's again at its end. What
/// the scope leaves as the current directory is the database directory of the next one.
class WorkingDirectory {
public:
  WorkingDirectory();
  ~WorkingDirectory();
  WorkingDirectory(const WorkingDirectory &) = delete;
  WorkingDirectory &operator=(const WorkingDirectory &) = delete;

private:
  platform::DirectoryName saved_; ///< empty: there is nothing to go back to
};

} // namespace frame
