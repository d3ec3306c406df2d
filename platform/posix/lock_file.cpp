#include "platform/lock_file.h"

#include <fcntl.h>
#include <unistd.h>

namespace platform {
namespace {

// Open-file-description locks: owned by the open file, not by the process, so that sessions of two threads exclude each
// other too, and closing one file does not drop the locks of another.
class PosixLockFile final : public LockFile {
public:
  explicit PosixLockFile(int descriptor) : descriptor_(descriptor) {}
  ~PosixLockFile() override { ::close(descriptor_); }

  bool tryLock(uint64_t offset, bool exclusive) override { return apply(offset, exclusive ? F_WRLCK : F_RDLCK); }
  void unlock(uint64_t offset) override { apply(offset, F_UNLCK); }

private:
  bool apply(uint64_t offset, short type) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = off_t(offset);
    range.l_len = 1;
    return ::fcntl(descriptor_, F_OFD_SETLK, &range) == 0;
  }

  int descriptor_;
};

} // namespace

std::unique_ptr<LockFile> LockFile::open(const std::string &path) {
  int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  return descriptor < 0 ? nullptr : std::make_unique<PosixLockFile>(descriptor);
}

} // namespace platform
