#include "platform/named_mutex.h"

#include "platform/posix/posix.h"

#include <cerrno>
#include <fcntl.h>
#include <mutex>
#include <unistd.h>

namespace platform {
namespace {

// The lock is the open file's: it ends with its holder, and excludes other objects of the same process. Threads that
// share an object share its file, so a mutex stands before it.
class FileMutex final : public NamedMutex {
public:
  explicit FileMutex(int descriptor) : descriptor_(descriptor) {}
  ~FileMutex() override { ::close(descriptor_); }

  void lock() override {
    threads_.lock();
    apply(F_WRLCK);
  }
  void unlock() override {
    apply(F_UNLCK);
    threads_.unlock();
  }

private:
  void apply(short type) {
    struct flock whole {};
    whole.l_type = type;
    whole.l_whence = SEEK_SET;
    while (::fcntl(descriptor_, F_OFD_SETLKW, &whole) != 0 && errno == EINTR) {
    }
  }

  int descriptor_;
  std::mutex threads_;
};

} // namespace

std::unique_ptr<NamedMutex> NamedMutex::open(const std::string &name) {
  std::string settings = settingsPath();
  if (!makeFolderOf(settings)) return nullptr;
  std::string path = settings.substr(0, settings.rfind('/') + 1) + name;
  int descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
  return descriptor < 0 ? nullptr : std::make_unique<FileMutex>(descriptor);
}

} // namespace platform
