/// The call protocol as the frame writes it: the entry of each call, and what a call has to say beside its result.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "frame/protocol_file.h"
#include "frame/signature.h"

namespace frame {

/// The entry of one call. While no protocol is open, it costs a look at the flag that tells so.
class Protokoll {
public:
  /// Writes the function's name, thread and process, and the parameters, as one piece.
  /// \param result what the call returns, as it stands when the scope closes
  Protokoll(const Export &self, std::span<const Parameter> parameters, const ZelkResult &result) noexcept
      : self_(self), result_(result) {
    if (protocolOpen()) begin(parameters);
  }
  /// Writes the lines that were noted and the result, as one piece.
  virtual ~Protokoll() {
    // Without its parameters where the protocol was started meanwhile, by the call itself or by another thread's.
    if (began_ || protocolOpen()) end();
  }
  Protokoll(const Protokoll &) = delete;
  Protokoll &operator=(const Protokoll &) = delete;

private:
  friend void protocolLine(std::string_view utf8);
  friend void protocolRefusal(std::string_view utf8);

  void begin(std::span<const Parameter> parameters) noexcept;
  void end() noexcept;
  void note(std::string_view line);

  const Export &self_;
  const ZelkResult &result_;
  Protokoll *outer_ = nullptr; ///< the call that this one was made in
  bool began_ = false;
  bool refused_ = false;
  std::string lines_; ///< Windows-1252
};

/// A host's text as the protocol shows it: control characters as question marks, so that none ends a line.
std::string printable(std::string_view text);

/// Notes a line in the entry of the thread's running call, in front of its result; nothing while no protocol is open.
void protocolLine(std::string_view utf8);

/// The same for the text of a refusal, which stands under "Fehlermeldungen:", each of its lines in one of its own. What
/// a host wrote of it has to be printable.
void protocolRefusal(std::string_view utf8);

} // namespace frame
