/// The file of the call protocol, which all processes that use the library share.
#pragma once

#include <atomic>
#include <string>
#include <string_view>

#include "zelk98/zelk98.h"

namespace frame {

namespace detail {
inline std::atomic<bool> protocolIsOpen{false};
}

/// Whether this process has the protocol open. May be out of date as soon as it is told.
inline bool protocolOpen() {
  return detail::protocolIsOpen.load(std::memory_order_relaxed);
}

/// Bytes of the file's name with its terminator.
constexpr size_t kProtocolNameSize = 260;

/// Opens the file that is chosen now, emptied when nobody has one open, and writes the start header.
/// \return 1; -58 when the file cannot be written; -59, and one more header, when it is open already
ZelkResult startProtocol();

/// The same at attach when the setting "Protokoll" asks for it: the file in the program directory, and a line that
/// tells who has started it.
void startProtocolBySetting();

/// Writes the end header when the file is open.
void writeProtocolEnd() noexcept;

/// Closes the file; nothing when it is not open.
void closeProtocol() noexcept;

/// When a piece has to be on the disk. With the system it is at once, so that it outlives the process.
enum class Flush { Now, WithNextPiece };

/// Appends a piece that no other thread or process comes between. \param piece Windows-1252, lines with CR LF
/// \return 1; -58 when no file is open or it cannot be written
ZelkResult writeProtocol(std::string_view piece, Flush flush = Flush::Now);

/// Takes a file for the next start and keeps its name for other processes of the user. \param name UTF-8
/// \return false when it is empty, too long, or cannot be kept
bool chooseProtocolFile(const std::string &name);

/// The file that was used or chosen last, by this process or, as long as it has none, by another one; UTF-8.
std::string protocolFileName();

} // namespace frame
