#include "platform/registry.h"

#include "platform/files.h"
#include "platform/posix/posix.h"

// The packaged library has the code ready, but with it a Unicode library that nothing here needs.
#define SI_IMPLEMENTATION
#define SI_NO_CONVERSION
#include <SimpleIni.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <string_view>
#include <strings.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {

std::string settingsPath() {
  if (const char *path = std::getenv("ZELK_SETTINGS"); path && *path) return path;
  const char *home = std::getenv("HOME");
  return std::string(home ? home : "") + "/.config/velta/settings.ini";
}

bool makeFolderOf(const std::string &path) {
  size_t slash = path.rfind('/');
  return slash == std::string::npos || slash == 0 || makeDirectories(path.substr(0, slash));
}

namespace {

std::string sectionName(Hive hive, const std::string &key) {
  return (hive == Hive::LocalMachine ? "HKEY_LOCAL_MACHINE\\" : "HKEY_CURRENT_USER\\") + key;
}

// Names do not regard case, as in the registry.
bool load(CSimpleIniA &ini, const std::string &path) {
  ini.SetUnicode();
  return isFile(path) && ini.LoadFile(path.c_str()) >= 0;
}

// Held while a writer reads, changes and replaces the file. On a file of its own, since the settings file is replaced.
class WriterLock {
public:
  explicit WriterLock(const std::string &settings)
      : descriptor_(::open((settings + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666)) {
    held_ = descriptor_ >= 0 && ::flock(descriptor_, LOCK_EX) == 0;
  }
  ~WriterLock() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  WriterLock(const WriterLock &) = delete;
  WriterLock &operator=(const WriterLock &) = delete;
  bool held() const { return held_; }

private:
  int descriptor_;
  bool held_;
};

// The file that links lead to, also when it is still missing.
std::string targetOf(std::string path) {
  constexpr int mostLinks = 40; // as many as the system follows
  std::error_code error;
  for (int i = 0; i < mostLinks && std::filesystem::is_symlink(path, error); ++i)
    path = std::filesystem::path(path).parent_path() / std::filesystem::read_symlink(path, error);
  return path;
}

// Puts a new file in the place of the old one, with its owner and mode, or leaves all as it is. To write in place would
// keep the owner where this cannot, but leave half a file on a full disk.
bool replaceFile(const std::string &path, const std::string &content) {
  struct stat old {};
  const bool exists = ::stat(path.c_str(), &old) == 0;
  if (exists && !S_ISREG(old.st_mode)) return false;
  const std::string fresh = path + ".new";
  ::unlink(fresh.c_str()); // of a writer that died
  // Passwords stand in it.
  const int file = ::open(fresh.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR);
  if (file < 0) return false;
  bool done = !exists || (::fchown(file, old.st_uid, old.st_gid) == 0 && ::fchmod(file, old.st_mode & 07777) == 0);
  for (size_t written = 0; done && written < content.size();) {
    const ssize_t count = ::write(file, content.data() + written, content.size() - written);
    if (count > 0) written += size_t(count);
    done = count > 0 || (count < 0 && errno == EINTR);
  }
  done = done && ::fsync(file) == 0;
  done = ::close(file) == 0 && done;
  done = done && ::rename(fresh.c_str(), path.c_str()) == 0;
  if (!done) ::unlink(fresh.c_str());
  return done;
}

bool isBlank(char c) {
  return c == ' ' || c == '\t';
}
bool hasBlankEnd(std::string_view text) {
  return !text.empty() && (isBlank(text.front()) || isBlank(text.back()));
}
bool hasControlCharacter(std::string_view text) {
  return std::any_of(text.begin(), text.end(), [](char c) { return uint8_t(c) < ' ' || c == 0x7F; });
}

// What the file would give back as another key or name, or as a comment.
bool isKey(const std::string &key) {
  return !hasBlankEnd(key) && !hasControlCharacter(key) && key.find(']') == key.npos;
}
bool isName(const std::string &name) {
  return !name.empty() && !hasBlankEnd(name) && !hasControlCharacter(name) && name.find('=') == name.npos &&
         !std::strchr(";#[", name.front());
}

// The file drops blanks at the ends of values: those stand in quotes, and so does what would else pass for such a one.
bool isQuoted(std::string_view text) {
  if (text.size() < 2 || text.front() != '"' || text.back() != '"') return false;
  text = text.substr(1, text.size() - 2);
  return hasBlankEnd(text) || isQuoted(text);
}
std::string quoted(const std::string &value) {
  return hasBlankEnd(value) || isQuoted(value) ? '"' + value + '"' : value;
}
std::string unquoted(const std::string &text) {
  return isQuoted(text) ? text.substr(1, text.size() - 2) : text;
}

} // namespace

std::optional<std::string> readRegistry(Hive hive, const std::string &key, const std::string &name) {
  CSimpleIniA ini;
  if (!load(ini, settingsPath())) return std::nullopt;
  const char *value = ini.GetValue(sectionName(hive, key).c_str(), name.c_str());
  return value ? std::optional<std::string>(unquoted(value)) : std::nullopt;
}

bool writeRegistry(Hive hive, const std::string &key, const std::string &name, const std::string &value) {
  if (!isKey(key) || !isName(name) || value.find_first_of(std::string("\r\n\0", 3)) != std::string::npos) return false;
  std::string path = targetOf(settingsPath());
  if (!makeFolderOf(path)) return false;
  WriterLock lock(path);
  if (!lock.held()) return false;
  CSimpleIniA ini;
  if (!load(ini, path) && isFile(path)) return false;
  std::string content;
  return ini.SetValue(sectionName(hive, key).c_str(), name.c_str(), quoted(value).c_str()) >= 0 &&
         ini.Save(content) >= 0 && replaceFile(path, content);
}

std::optional<uint32_t> readRegistryNumber(Hive hive, const std::string &key, const std::string &name) {
  auto text = readRegistry(hive, key, name);
  uint32_t number = 0;
  if (!text || std::from_chars(text->data(), text->data() + text->size(), number).ec != std::errc())
    return std::nullopt;
  return number;
}

bool writeRegistryNumber(Hive hive, const std::string &key, const std::string &name, uint32_t value) {
  return writeRegistry(hive, key, name, std::to_string(value));
}

std::vector<std::string> registryValueNames(Hive hive, const std::string &key) {
  CSimpleIniA ini;
  std::vector<std::string> names;
  if (!load(ini, settingsPath())) return names;
  CSimpleIniA::TNamesDepend keys;
  ini.GetAllKeys(sectionName(hive, key).c_str(), keys);
  keys.sort(CSimpleIniA::Entry::LoadOrder());
  for (const auto &entry : keys)
    names.emplace_back(entry.pItem);
  return names;
}

std::string registryFile() {
  return settingsPath();
}

int registrySubkeyCount(Hive hive, const std::string &key) {
  CSimpleIniA ini;
  if (!load(ini, settingsPath())) return 0;
  CSimpleIniA::TNamesDepend sections;
  ini.GetAllSections(sections);
  std::string prefix = sectionName(hive, key) + "\\";
  std::set<std::string> children;
  for (const auto &section : sections) {
    std::string name = section.pItem;
    if (::strncasecmp(name.c_str(), prefix.c_str(), prefix.size()) == 0)
      children.insert(name.substr(prefix.size(), name.find('\\', prefix.size()) - prefix.size()));
  }
  return int(children.size());
}

} // namespace platform
