#include "platform/files.h"

#include "platform/win32/win32.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace platform {

std::wstring toWide(const std::string &utf8) {
  int length = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), int(utf8.size()), nullptr, 0);
  std::wstring wide(size_t(length), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, utf8.data(), int(utf8.size()), wide.data(), length);
  return wide;
}

std::string fromWide(const wchar_t *text, int length) {
  if (length < 0) length = lstrlenW(text);
  int size = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
  std::string utf8(size_t(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, length, utf8.data(), size, nullptr, nullptr);
  return utf8;
}

const char kPathSeparator = '\\';

std::string withSeparator(std::string path) {
  if (path.empty() || (path.back() != kPathSeparator && path.back() != '/')) path += kPathSeparator;
  return path;
}

void currentDirectory(DirectoryName &path) {
  wchar_t wide[1024];
  DWORD length = GetCurrentDirectoryW(DWORD(std::size(wide)), wide);
  bool known = length > 0 && length < std::size(wide);
  int size =
      known ? WideCharToMultiByte(CP_UTF8, 0, wide, int(length), path, int(sizeof path) - 1, nullptr, nullptr) : 0;
  path[size] = 0;
}

bool setCurrentDirectory(const std::string &path) {
  return SetCurrentDirectoryW(toWide(path).c_str()) != 0;
}

bool isDirectory(const std::string &path) {
  DWORD attributes = GetFileAttributesW(toWide(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool isFile(const std::string &path) {
  DWORD attributes = GetFileAttributesW(toWide(path).c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool isNetworkFolder(const std::string &path) {
  std::string absolute = absolutePath(path);
  if (absolute.rfind("\\\\", 0) == 0) return true;
  return absolute.size() > 2 && absolute[1] == ':' &&
         GetDriveTypeW(toWide(absolute.substr(0, 2) + "\\").c_str()) == DRIVE_REMOTE;
}

bool makeDirectories(const std::string &path) {
  std::error_code error;
  std::filesystem::create_directories(std::filesystem::path(toWide(path)), error);
  return isDirectory(path);
}

std::string absolutePath(const std::string &path) {
  wchar_t buffer[1024];
  DWORD length = GetFullPathNameW(toWide(path).c_str(), DWORD(std::size(buffer)), buffer, nullptr);
  return length > 0 && length < std::size(buffer) ? fromWide(buffer, int(length)) : path;
}

FileIdentity fileIdentity(const std::string &) {
  return {};
}

std::string longPath(const std::string &path) {
  wchar_t buffer[1024];
  DWORD length = GetLongPathNameW(toWide(path).c_str(), buffer, DWORD(std::size(buffer)));
  return length > 0 && length < std::size(buffer) ? fromWide(buffer, int(length)) : path;
}

std::optional<std::string> readFile(const std::string &path) {
  if (!isFile(path)) return std::nullopt;
  std::ifstream file(std::filesystem::path(toWide(path)), std::ios::binary);
  if (!file) return std::nullopt;
  std::string content{std::istreambuf_iterator<char>(file), {}};
  return file.bad() ? std::nullopt : std::optional(std::move(content));
}

} // namespace platform
