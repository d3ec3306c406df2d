#include "platform/append_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

// Users lock one byte far beyond the end of any file, shared; the first one for a moment exclusively.
constexpr off_t kUsers = off_t{1} << 62;

class PosixAppendFile final : public AppendFile {
public:
  PosixAppendFile(int descriptor, const std::string &path, const struct stat &file)
      : descriptor_(descriptor), path_(path), device_(file.st_dev), inode_(file.st_ino) {}
  ~PosixAppendFile() override { ::close(descriptor_); }

  bool isEmptyOrBeginsWith(std::string_view bytes) override {
    std::string found(bytes.size(), 0);
    const ssize_t size = ::pread(descriptor_, found.data(), found.size(), 0);
    return size == 0 || (size == ssize_t(found.size()) && found == bytes);
  }

  void join(bool emptyWhenFirst) override {
    // Where no lock is to be had, nobody knows to be the first.
    if (lock(F_OFD_SETLK, F_WRLCK) && emptyWhenFirst) cutAt(0);
    while (!lock(F_OFD_SETLKW, F_RDLCK) && errno == EINTR) {
    }
  }

  State state() override {
    struct stat there {};
    if (::stat(path_.c_str(), &there) != 0) return errno == ENOENT || errno == ENOTDIR ? State::Gone : State::Filled;
    if (there.st_ino != inode_ || there.st_dev != device_) return State::Gone;
    return there.st_size == 0 ? State::Empty : State::Filled;
  }

  bool append(std::string_view bytes, bool flush) override {
    ssize_t written;
    do
      written = ::write(descriptor_, bytes.data(), bytes.size());
    while (written < 0 && errno == EINTR);
    if (written == ssize_t(bytes.size())) {
      // The system keeps what it was given when the process dies. Its way to the disk begins now and is not waited for:
      // that would cost every call as much as a posting.
      if (flush) ::sync_file_range(descriptor_, 0, 0, SYNC_FILE_RANGE_WRITE);
      return true;
    }
    if (written > 0) takeBack(written);
    return false;
  }

private:
  // The lock is the open file's, so that two objects of one process count as two users.
  bool lock(int how, short type) {
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = kUsers;
    range.l_len = 1;
    return ::fcntl(descriptor_, how, &range) == 0;
  }

  void cutAt(off_t size) {
    if (::ftruncate(descriptor_, size) != 0) return;
  }

  // The disk was full in the middle of the piece.
  void takeBack(ssize_t written) {
    struct stat now {};
    if (::fstat(descriptor_, &now) == 0) cutAt(now.st_size - written);
  }

  int descriptor_;
  std::string path_;
  dev_t device_;
  ino_t inode_;
};

} // namespace

std::unique_ptr<AppendFile> AppendFile::open(const std::string &path) {
  struct stat file {};
  // Looked at first, too, since opening alone can do something to a device or to who reads a pipe.
  if (::stat(path.c_str(), &file) == 0 && !S_ISREG(file.st_mode)) return nullptr;
  int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0666);
  if (descriptor < 0) return nullptr;
  if (::fstat(descriptor, &file) == 0 && S_ISREG(file.st_mode))
    return std::make_unique<PosixAppendFile>(descriptor, path, file);
  ::close(descriptor);
  return nullptr;
}

} // namespace platform
