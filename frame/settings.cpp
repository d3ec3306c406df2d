#include "frame/settings.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "platform/registry.h"
#include "platform/ui.h"
#include "vlba98/encoding.h"
#include "zelk98/zelk98.h"

namespace frame {
namespace {

using platform::Hive;

const std::string kSettingsKey = "Software\\Velta\\settings\\";
constexpr size_t kMaxSection = 100;
constexpr size_t kNumberSize = 11;

// At most so many characters of a UTF-8 text.
std::string firstCharacters(const std::string &utf8, size_t count) {
  size_t end = 0;
  for (; end < utf8.size(); ++end)
    if ((uint8_t(utf8[end]) & 0xC0) != 0x80 && count-- == 0) break;
  return utf8.substr(0, end);
}

std::string sectionKey(const std::string &section) {
  return kSettingsKey + firstCharacters(section, kMaxSection);
}

// Decided once for the process.
bool userSpecific() {
  static const bool decided = platform::readRegistry(Hive::LocalMachine, kSettingsKey, "RegUserSpecific") == "J";
  return decided;
}

std::optional<std::string> read(const std::string &section, const std::string &key) {
  std::string path = sectionKey(section);
  if (userSpecific())
    if (auto value = platform::readRegistry(Hive::CurrentUser, path, key)) return value;
  return platform::readRegistry(Hive::LocalMachine, path, key);
}

bool writeSetting(const std::string &section, const std::string &key, const std::string &value) {
  return platform::writeRegistry(userSpecific() ? Hive::CurrentUser : Hive::LocalMachine, sectionKey(section), key,
                                 value);
}

std::string fromCodePage(const char *text) {
  return vlba98::toUtf8(text ? text : "");
}

uint32_t deliver(const std::string &text, char *buffer, uint32_t size) {
  uint32_t length = std::min(uint32_t(text.size()), size - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = 0;
  return length;
}

// Two terminators after a text that was cut, as after a list of names.
uint32_t deliverCut(const std::string &text, char *buffer, uint32_t size) {
  if (text.size() < size) return deliver(text, buffer, size);
  if (size < 2) return deliver("", buffer, size);
  uint32_t length = size - 2;
  std::memcpy(buffer, text.data(), length);
  buffer[length] = buffer[length + 1] = 0;
  return length;
}

uint32_t deliverNames(const std::string &section, char *buffer, uint32_t size) {
  std::string path = sectionKey(section), list;
  auto names = platform::registryValueNames(userSpecific() ? Hive::CurrentUser : Hive::LocalMachine, path);
  for (const std::string &name : names)
    list += toCodePage(name) + '\0';
  return deliverCut(list, buffer, size);
}

} // namespace

std::string toCodePage(const std::string &utf8) {
  if (auto text = vlba98::toWindows1252(utf8)) return *text;
  std::string text;
  for (size_t i = 0; i < utf8.size();) {
    size_t length = 1;
    while (i + length < utf8.size() && (uint8_t(utf8[i + length]) & 0xC0) == 0x80)
      ++length;
    auto character = vlba98::toWindows1252(utf8.substr(i, length));
    text += character ? *character : "?";
    i += length;
  }
  return text;
}

std::string setting(const char *section, const char *key, size_t size) {
  auto value = read(section, key);
  return value ? firstCharacters(*value, size - 1) : "";
}

int positiveSetting(const char *section, const char *key, int missing) {
  std::string value = setting(section, key, kNumberSize);
  int number = 0;
  auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  return error == std::errc() && *end == 0 && number > 0 ? number : missing;
}

} // namespace frame

uint32_t ZELK_CALL MFGetPrivateProfileString(const char *Section, const char *Key, const char *Default, char *Buffer,
                                             uint32_t Size, const char *) try {
  if (!Section) {
    platform::ui().message(
        "Fehler", "Es wurde versucht die Sektionsnamen aus der Registry abzurufen. Dies ist jedoch nicht möglich.",
        platform::BoxIcon::Exclamation, platform::BoxButtons::Ok);
    return 0;
  }
  if (!Buffer || Size == 0) return 0;
  std::string section = frame::fromCodePage(Section);
  if (!Key) return frame::deliverNames(section, Buffer, Size);
  if (auto value = frame::read(section, frame::fromCodePage(Key)))
    return frame::deliver(frame::toCodePage(*value), Buffer, Size);
  return frame::deliverCut(Default ? Default : "", Buffer, Size);
} catch (...) {
  return 0;
}

int32_t ZELK_CALL MFGetPrivateProfileInt(const char *Section, const char *Key, int32_t Default, const char *) try {
  if (!Section || !Key) return Default;
  auto value = frame::read(frame::fromCodePage(Section), frame::fromCodePage(Key));
  if (!value) return Default;
  long long number = std::strtoll(value->substr(0, frame::kNumberSize - 1).c_str(), nullptr, 10);
  return int32_t(std::clamp<long long>(number, INT32_MIN, INT32_MAX));
} catch (...) {
  return Default;
}

int32_t ZELK_CALL MFWritePrivateProfileString(const char *Section, const char *Key, const char *Value,
                                              const char *) try {
  if (!Section || !Key) return 0;
  return frame::writeSetting(frame::fromCodePage(Section), frame::fromCodePage(Key), frame::fromCodePage(Value));
} catch (...) {
  return 0;
}
