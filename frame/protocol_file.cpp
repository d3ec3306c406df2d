#include "frame/protocol_file.h"

#include <cstdio>
#include <memory>
#include <mutex>

#include "frame/own_files.h"
#include "frame/program.h"
#include "frame/settings.h"
#include "platform/append_file.h"
#include "platform/files.h"
#include "platform/named_mutex.h"
#include "platform/registry.h"
#include "platform/system.h"
#include "vlba98/encoding.h"

namespace frame {
namespace {

using platform::Hive;

const char kDefaultName[] = "ZELKPROT.TXT";
const char kKey[] = "Software\\Velta\\ZELK";
const char kValue[] = "Protokolldatei"; // for the machine the number of users, for the user the file's name
const char kStart[] = "Start des Protokolls. Systemdatum und Zeit:";
const char kEnd[] = "Ende des Protokolls. Systemdatum und Zeit:";

std::string header(const char *text) {
  platform::LocalTime now = platform::localTime();
  char line[100];
  std::snprintf(line, sizeof line, "%s %02d.%02d.%04d %02d:%02d:%02d\r\n", text, now.day, now.month, now.year, now.hour,
                now.minute, now.second);
  return line;
}

// Held for a scope; does nothing where the system has no such mutex to give.
class Held {
public:
  explicit Held(platform::NamedMutex *mutex) : mutex_(mutex) {
    if (mutex_) mutex_->lock();
  }
  ~Held() {
    if (mutex_) mutex_->unlock();
  }
  Held(const Held &) = delete;
  Held &operator=(const Held &) = delete;

private:
  platform::NamedMutex *mutex_;
};

// A protocol or a file that can become one, and nothing that somebody keeps for another use.
std::unique_ptr<platform::AppendFile> openProtocol(const std::string &path) {
  if (isOwnFile(path)) return nullptr;
  auto file = platform::AppendFile::open(path);
  return file && file->isEmptyOrBeginsWith(kStart) ? std::move(file) : nullptr;
}

class ProtocolFile {
public:
  std::mutex mutex; // of all below
  std::string name; // UTF-8; empty until one was chosen

  bool isOpen() const { return file_ != nullptr; }

  bool open(bool keepContent) {
    auto registry = platform::NamedMutex::open(kProtocolRegistryMutex);
    Held held(registry.get());
    uint32_t users = platform::readRegistryNumber(Hive::LocalMachine, kKey, kValue).value_or(0);
    // Where the users cannot be counted, nobody knows to be the first.
    bool counted = platform::writeRegistryNumber(Hive::LocalMachine, kKey, kValue, users + 1);
    if (!writeMutex_) writeMutex_ = platform::NamedMutex::open(kProtocolWriteMutex);
    // Calls that end the protocol run in another directory than the one that started it.
    path_ = platform::absolutePath(name);
    file_ = openProtocol(path_);
    if (!file_) return false;
    // Programs with other settings count by themselves; the file knows of theirs, too.
    file_->join(counted && users == 0 && !keepContent);
    detail::protocolIsOpen = true;
    return true;
  }

  ZelkResult write(std::string_view piece, Flush flush = Flush::Now) {
    if (!file_) return ZELKERR_keine_Protokolldatei;
    Held held(writeMutex_.get());
    const auto state = file_->state();
    if (state == platform::AppendFile::State::Gone && !begin()) return ZELKERR_keine_Protokolldatei;
    const bool whole = state == platform::AppendFile::State::Filled || piece.starts_with(kStart);
    const bool written = file_->append(whole ? piece : header(kStart).append(piece), flush == Flush::Now);
    return written ? ZELK_OK : ZELKERR_keine_Protokolldatei;
  }

  void close() {
    if (!file_) return;
    detail::protocolIsOpen = false;
    file_.reset();
    auto registry = platform::NamedMutex::open(kProtocolRegistryMutex);
    Held held(registry.get());
    uint32_t users = platform::readRegistryNumber(Hive::LocalMachine, kKey, kValue).value_or(0);
    if (users > 0) platform::writeRegistryNumber(Hive::LocalMachine, kKey, kValue, users - 1);
  }

private:
  // In place of one that was deleted or moved away. Until that succeeds, each piece tries it anew.
  bool begin() {
    auto fresh = openProtocol(path_);
    if (!fresh) return false;
    fresh->join(false);
    file_ = std::move(fresh);
    return true;
  }

  std::string path_; // of the open file, from the root
  std::unique_ptr<platform::AppendFile> file_;
  std::unique_ptr<platform::NamedMutex> writeMutex_; // kept open from one write to the next
};

ProtocolFile &protocolFile() {
  static ProtocolFile instance;
  return instance;
}

bool askedForBySetting() {
  std::string value = setting("ZELK", "Protokoll", 5);
  return !value.empty() && (value[0] == 'j' || value[0] == 'J');
}

std::string storedName() {
  return platform::readRegistry(Hive::CurrentUser, kKey, kValue).value_or("");
}

} // namespace

ZelkResult startProtocol() {
  ProtocolFile &file = protocolFile();
  std::lock_guard guard(file.mutex);
  if (file.isOpen()) {
    file.write(header(kStart));
    return ZELKERR_bereits_Protokolldatei;
  }
  const ProgramSettings &program = programSettings();
  std::string stored = storedName();
  if (askedForBySetting() || (stored.empty() && file.name.empty()))
    file.name = program.programDirectory + kDefaultName;
  else if (!stored.empty())
    file.name = stored;
  return file.open(program.totalRecall) ? file.write(header(kStart)) : ZELKERR_keine_Protokolldatei;
}

void startProtocolBySetting() {
  if (!askedForBySetting()) return;
  ProtocolFile &file = protocolFile();
  std::lock_guard guard(file.mutex);
  if (file.isOpen()) return;
  const ProgramSettings &program = programSettings();
  file.name = program.programDirectory + kDefaultName;
  if (file.open(program.totalRecall))
    file.write(header(kStart) + "\tStart des Protokolls erfolgte durch Registry-Eintrag.\r\n");
}

void writeProtocolEnd() noexcept try {
  if (protocolOpen()) writeProtocol(header(kEnd));
} catch (...) {
  // Out of memory: the file ends without it.
}

void closeProtocol() noexcept try {
  ProtocolFile &file = protocolFile();
  std::lock_guard guard(file.mutex);
  file.close();
} catch (...) {
  // Out of memory: the file is closed, and counted as in use from now on.
}

ZelkResult writeProtocol(std::string_view piece, Flush flush) {
  ProtocolFile &file = protocolFile();
  std::lock_guard guard(file.mutex);
  return file.write(piece, flush);
}

bool chooseProtocolFile(const std::string &name) {
  ProtocolFile &file = protocolFile();
  std::lock_guard guard(file.mutex);
  // What the file is will be looked at when the protocol starts: it may change until then.
  if (name.empty() || toCodePage(name).size() >= kProtocolNameSize ||
      !platform::writeRegistry(Hive::CurrentUser, kKey, kValue, name))
    return false;
  file.name = name;
  return true;
}

std::string protocolFileName() {
  ProtocolFile &file = protocolFile();
  std::lock_guard guard(file.mutex);
  return file.name.empty() ? storedName() : file.name;
}

} // namespace frame
