#include "platform/registry.h"

#include "platform/win32/win32.h"

namespace platform {
namespace {

class Key {
public:
  Key(Hive hive, const std::string &path, REGSAM access, bool create = false) {
    HKEY root = hive == Hive::LocalMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
    std::wstring wide = toWide(path);
    LSTATUS status = create ? RegCreateKeyExW(root, wide.c_str(), 0, nullptr, 0, access, nullptr, &key_, nullptr)
                            : RegOpenKeyExW(root, wide.c_str(), 0, access, &key_);
    if (status != ERROR_SUCCESS) key_ = nullptr;
  }
  ~Key() {
    if (key_) RegCloseKey(key_);
  }
  Key(const Key &) = delete;
  Key &operator=(const Key &) = delete;
  explicit operator bool() const { return key_ != nullptr; }
  HKEY get() const { return key_; }

private:
  HKEY key_ = nullptr;
};

} // namespace

std::optional<std::string> readRegistry(Hive hive, const std::string &path, const std::string &name) {
  Key key(hive, path, KEY_READ);
  if (!key) return std::nullopt;
  std::wstring wideName = toWide(name);
  DWORD bytes = 0;
  if (RegGetValueW(key.get(), nullptr, wideName.c_str(), RRF_RT_REG_SZ, nullptr, nullptr, &bytes) != ERROR_SUCCESS)
    return std::nullopt;
  std::wstring value(bytes / sizeof(wchar_t), L'\0');
  if (RegGetValueW(key.get(), nullptr, wideName.c_str(), RRF_RT_REG_SZ, nullptr, value.data(), &bytes) != ERROR_SUCCESS)
    return std::nullopt;
  return fromWide(value.c_str());
}

bool writeRegistry(Hive hive, const std::string &path, const std::string &name, const std::string &value) {
  Key key(hive, path, KEY_WRITE, true);
  if (!key) return false;
  std::wstring wide = toWide(value);
  return RegSetValueExW(key.get(), toWide(name).c_str(), 0, REG_SZ, reinterpret_cast<const BYTE *>(wide.c_str()),
                        DWORD((wide.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS;
}

std::optional<uint32_t> readRegistryNumber(Hive hive, const std::string &path, const std::string &name) {
  Key key(hive, path, KEY_READ);
  DWORD value = 0, bytes = sizeof value;
  if (!key || RegGetValueW(key.get(), nullptr, toWide(name).c_str(), RRF_RT_REG_DWORD, nullptr, &value, &bytes) !=
                  ERROR_SUCCESS)
    return std::nullopt;
  return value;
}

bool writeRegistryNumber(Hive hive, const std::string &path, const std::string &name, uint32_t value) {
  Key key(hive, path, KEY_WRITE, true);
  DWORD number = value;
  return key && RegSetValueExW(key.get(), toWide(name).c_str(), 0, REG_DWORD, reinterpret_cast<const BYTE *>(&number),
                               sizeof number) == ERROR_SUCCESS;
}

std::vector<std::string> registryValueNames(Hive hive, const std::string &path) {
  std::vector<std::string> names;
  Key key(hive, path, KEY_READ);
  if (!key) return names;
  wchar_t name[16384];
  for (DWORD i = 0;; ++i) {
    DWORD length = DWORD(std::size(name));
    if (RegEnumValueW(key.get(), i, name, &length, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS) return names;
    names.push_back(fromWide(name, int(length)));
  }
}

std::string registryFile() {
  return "";
}

int registrySubkeyCount(Hive hive, const std::string &path) {
  Key key(hive, path, KEY_READ);
  DWORD count = 0;
  if (!key || RegQueryInfoKeyW(key.get(), nullptr, nullptr, nullptr, &count, nullptr, nullptr, nullptr, nullptr,
                               nullptr, nullptr, nullptr) != ERROR_SUCCESS)
    return 0;
  return int(count);
}

} // namespace platform
