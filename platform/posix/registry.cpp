#include "platform/registry.h"

#include "platform/files.h"
#include "platform/posix/posix.h"

// The packaged library has the code ready, but with it a Unicode library that nothing here needs.
#define SI_IMPLEMENTATION
#define SI_NO_CONVERSION
#include <SimpleIni.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <set>
#include <strings.h>
#include <sys/file.h>
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

} // namespace

std::optional<std::string> readRegistry(Hive hive, const std::string &key, const std::string &name) {
  CSimpleIniA ini;
  if (!load(ini, settingsPath())) return std::nullopt;
  const char *value = ini.GetValue(sectionName(hive, key).c_str(), name.c_str());
  return value ? std::optional<std::string>(value) : std::nullopt;
}

bool writeRegistry(Hive hive, const std::string &key, const std::string &name, const std::string &value) {
  // In the file, they would become lines, names or sections of their own.
  const std::string lineEnds("\r\n\0", 3);
  if ((key + name + value).find_first_of(lineEnds) != std::string::npos || key.find(']') != std::string::npos ||
      name.empty() || name.find('=') != std::string::npos || std::strchr(";#[", name.front()))
    return false;
  std::string path = settingsPath();
  if (!makeFolderOf(path)) return false;
  WriterLock lock(path);
  if (!lock.held()) return false;
  CSimpleIniA ini;
  if (!load(ini, path) && isFile(path)) return false;
  if (ini.SetValue(sectionName(hive, key).c_str(), name.c_str(), value.c_str()) < 0) return false;
  std::string fresh = path + ".new";
  return ini.SaveFile(fresh.c_str(), false) >= 0 && std::rename(fresh.c_str(), path.c_str()) == 0;
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
