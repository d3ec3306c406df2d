#include "platform/files.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace platform {

const char kPathSeparator = '/';

std::string withSeparator(std::string path) {
  if (path.empty() || path.back() != kPathSeparator) path += kPathSeparator;
  return path;
}

void currentDirectory(DirectoryName &path) {
  if (!::getcwd(path, sizeof path)) path[0] = 0;
}

bool setCurrentDirectory(const std::string &path) {
  return ::chdir(path.c_str()) == 0;
}

bool isDirectory(const std::string &path) {
  std::error_code error;
  return std::filesystem::is_directory(path, error);
}

bool isFile(const std::string &path) {
  std::error_code error;
  return std::filesystem::is_regular_file(path, error);
}

bool isNetworkFolder(const std::string &path) {
  // Magic numbers of statfs(2): NFS, SMB, CIFS, SMB2, AFS, Coda, 9P.
  constexpr unsigned long remote[] = {0x6969, 0x517B, 0xFF534D42, 0xFE534D42, 0x5346414F, 0x73757245, 0x01021997};
  struct statfs info {};
  if (::statfs(path.c_str(), &info) != 0) return false;
  for (unsigned long magic : remote)
    if ((static_cast<unsigned long>(info.f_type) & 0xFFFFFFFFul) == magic) return true;
  return false;
}

bool makeDirectories(const std::string &path) {
  std::error_code error;
  std::filesystem::create_directories(path, error);
  return isDirectory(path);
}

std::string absolutePath(const std::string &path) {
  std::error_code error;
  std::filesystem::path absolute = std::filesystem::absolute(path, error);
  return error ? path : absolute.lexically_normal().string();
}

FileIdentity fileIdentity(const std::string &path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? FileIdentity{status.st_dev, status.st_ino} : FileIdentity{};
}

std::string longPath(const std::string &path) {
  return path;
}

std::optional<std::string> readFile(const std::string &path) {
  if (!isFile(path)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::string content{std::istreambuf_iterator<char>(file), {}};
  return file.bad() ? std::nullopt : std::optional(std::move(content));
}

} // namespace platform
