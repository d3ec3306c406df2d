#include "frame/own_files.h"

#include <algorithm>
#include <filesystem>

#include "platform/registry.h"
#include "store/database.h"

namespace frame {
namespace {

namespace fs = std::filesystem;

fs::path pathOf(const std::string &utf8) {
  return std::u8string(utf8.begin(), utf8.end());
}

fs::path withoutLinks(const fs::path &path) {
  std::error_code error;
  fs::path resolved = fs::weakly_canonical(path, error);
  return error ? path : resolved;
}

// In capitals, since Windows does not tell them apart.
std::u8string nameOf(const fs::path &path) {
  std::u8string name = path.filename().u8string();
  std::transform(name.begin(), name.end(), name.begin(),
                 [](char8_t c) { return c >= u8'a' && c <= u8'z' ? char8_t(c - 32) : c; });
  return name;
}

} // namespace

bool isOwnFile(const std::string &path) {
  const fs::path asked = withoutLinks(pathOf(path));
  auto isNamed = [&](const std::string &name) { return nameOf(asked) == nameOf(pathOf(name)); };
  auto is = [&](const std::string &own) {
    std::error_code error;
    return fs::equivalent(asked, pathOf(own), error);
  };
  const std::string data = vldb98::HoleDbPfad();
  for (const char *suffix : {"", "-wal", "-shm", "-journal"})
    if (const std::string name = std::string(vldb98::kDatabaseFile) + suffix; isNamed(name) || is(data + name))
      return true;
  if (isNamed(vldb98::kLockFile) || is(data + vldb98::kLockFile)) return true;
  const std::string settings = platform::registryFile();
  if (settings.empty()) return false;
  if (isNamed(kProtocolRegistryMutex) || isNamed(kProtocolWriteMutex) || is(settings)) return true;
  const fs::path file = withoutLinks(pathOf(settings));
  return asked.parent_path() == file.parent_path() && nameOf(asked).starts_with(nameOf(file));
}

} // namespace frame
