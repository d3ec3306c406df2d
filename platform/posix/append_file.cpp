#include "platform/append_file.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

class PosixAppendFile final : public AppendFile {
public:
  explicit PosixAppendFile(int descriptor) : descriptor_(descriptor) {}
  ~PosixAppendFile() override { ::close(descriptor_); }

  bool empty() override { return ::ftruncate(descriptor_, 0) == 0; }

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
  // The disk was full in the middle of the piece.
  void takeBack(ssize_t written) {
    struct stat now {};
    if (::fstat(descriptor_, &now) == 0 && ::ftruncate(descriptor_, now.st_size - written) != 0) return;
  }

  int descriptor_;
};

} // namespace

std::unique_ptr<AppendFile> AppendFile::open(const std::string &path) {
  int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
  return descriptor < 0 ? nullptr : std::make_unique<PosixAppendFile>(descriptor);
}

} // namespace platform
