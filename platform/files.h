/// Folders and paths. All texts are UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

/// Separates the names of a path: '\\' on Windows, '/' elsewhere.
extern const char kPathSeparator;

/// The path with a separator at its end.
std::string withSeparator(std::string path);

/// A directory's path with its terminator, on the stack: it is asked for twice in every call.
using DirectoryName = char[4096];

/// The process's current directory; empty when it cannot be told.
void currentDirectory(DirectoryName &path);
bool setCurrentDirectory(const std::string &path);

bool isDirectory(const std::string &path);
bool isFile(const std::string &path);

/// True for a folder on another machine, where byte-range locks and shared memory are not to be relied on.
bool isNetworkFolder(const std::string &path);

/// Makes the folder and those above it. \return true also when it exists
bool makeDirectories(const std::string &path);

/// The path from the root of its volume; the path need not exist.
std::string absolutePath(const std::string &path);

/// Tells a file from another one that takes its place; none: there is no file. On Windows, where nobody can remove or
/// replace a file that is open, it is the same for all.
struct FileIdentity {
  uint64_t device = 0, number = 0;
  bool operator==(const FileIdentity &) const = default;
};
FileIdentity fileIdentity(const std::string &path);

/// The path with the long names of its folders, where it names one by its short name of eight characters (Windows).
std::string longPath(const std::string &path);

/// The content of a file; nothing when it cannot be read.
std::optional<std::string> readFile(const std::string &path);

} // namespace platform
