/// The files that the library keeps itself.
#pragma once

#include <string>

namespace frame {

/// Names of the mutexes of the call protocol; on Linux also of files, beside the settings file.
inline constexpr char kProtocolRegistryMutex[] = "VELTA_ZELK_MUTEX_PROTOKOLL_REGISTRY";
inline constexpr char kProtocolWriteMutex[] = "VELTA_ZELK_MUTEX_PROTOKOLL_WRITE";

/// Whether a path is that of a database, in whichever folder, with what belongs to it, or of the settings; under other
/// names, too (links). Nothing is opened: a database file must not be, since closing it would drop the locks that its
/// engine holds on it for this process.
/// \param path UTF-8; the file need not exist
bool isOwnFile(const std::string &path);

} // namespace frame
