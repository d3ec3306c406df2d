#include "frame/protocol.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "odbc/connection_string.h"
#include "platform/system.h"
#include "records/keys.h"
#include "vlba98/encoding.h"

namespace frame {
namespace {

// No more of a text is read than this, should a host have forgotten to end it.
constexpr size_t kLongestText = 1000;
constexpr size_t kUsualPiece = 1024;

// The running call of the thread whose entry has begun last.
thread_local Protokoll *innermost = nullptr;

const char *engineName(int64_t engine) {
  switch (engine) {
  case vldb98::ZELK_ENG_BTRIEVE:
    return "ZELK_ENG_BTRIEVE";
  case vldb98::ZELK_ENG_MYSQL:
    return "ZELK_ENG_MYSQL";
  case vldb98::ZELK_ENG_MSSQL:
    return "ZELK_ENG_MSSQL";
  default:
    return "ZELK_ENG_DEFAULT";
  }
}

void makePrintable(std::string &text, size_t from) {
  std::replace_if(
      text.begin() + ptrdiff_t(from), text.end(), [](char c) { return uint8_t(c) < ' '; }, '?');
}

// A part of the file in the making: Windows-1252.
class Piece {
public:
  Piece() { text_.reserve(kUsualPiece); }

  Piece &utf8(std::string_view text) {
    size_t before = text_.size(), written = 0;
    text_.resize(before + text.size());
    vlba98::windows1252FromUtf8(text.data(), text.size(), text_.data() + before, text.size(), written);
    text_.resize(before + written);
    return *this;
  }
  Piece &bytes(std::string_view text) {
    text_ += text;
    return *this;
  }
  Piece &number(int64_t value) {
    char digits[24];
    auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    text_.append(digits, end);
    return *this;
  }
  Piece &host(const char *text, size_t longest) {
    size_t before = text_.size();
    text_.append(text, ::strnlen(text, longest));
    makePrintable(text_, before);
    return *this;
  }
  Piece &origin() {
    return bytes(", ThreadID: ").number(platform::threadId()).bytes(", ProcessID: ").number(platform::processId());
  }
  Piece &lineEnd() { return bytes("\r\n"); }

  Piece &parameter(const Parameter &p) {
    utf8(p.label).bytes(" ");
    auto text = static_cast<const char *>(p.pointer);
    switch (p.kind) {
    case Parameter::Kind::Number:
    case Parameter::Kind::Messages:
      return number(p.number);
    case Parameter::Kind::Engine:
      return bytes(engineName(p.number));
    case Parameter::Kind::Text:
      return text ? host(text, kLongestText) : bytes("NULL");
    case Parameter::Kind::Options:
      return text ? options({text, ::strnlen(text, kLongestText)}) : bytes("NULL");
    case Parameter::Kind::Field:
      return host(text, p.width);
    case Parameter::Kind::Given:
      return bytes(text ? "gegeben" : "NULL");
    }
    return *this;
  }

  const std::string &text() const { return text_; }

private:
  Piece &options(std::string_view text) {
    const std::string shown = vldb98::odbc::withoutSecrets(text);
    return host(shown.data(), shown.size());
  }

  std::string text_;
};

void dump(Piece &piece, const Export &self, std::span<const Parameter> parameters) {
  bool first = true;
  for (const Parameter &parameter : parameters) {
    if (!parameter.printed) continue;
    if (self.dumpInOneLine && !first) piece.bytes("; ");
    first = false;
    piece.parameter(parameter);
    if (!self.dumpInOneLine) piece.lineEnd();
  }
  if (self.dumpInOneLine && !first) piece.bytes(".").lineEnd();
}

} // namespace

void Protokoll::begin(std::span<const Parameter> parameters) noexcept {
  outer_ = innermost;
  innermost = this;
  began_ = true;
  try {
    Piece piece;
    piece.bytes(self_.name).bytes(":");
    if (self_.remark) piece.bytes(" ").utf8(self_.remark);
    piece.lineEnd().origin().lineEnd();
    dump(piece, self_, parameters);
    // One flush for each call is enough: what the call reports is there with its parameters or not at all.
    writeProtocol(piece.text(), Flush::WithNextPiece);
  } catch (...) {
    // Out of memory: the call goes on without its entry.
  }
}

void Protokoll::end() noexcept {
  if (began_) innermost = outer_;
  try {
    Piece piece;
    piece.bytes(lines_).utf8("Rückgabe von ").bytes(self_.name).bytes(": ").number(result_);
    if (self_.engine && result_ >= vldb98::ZELK_ENG_BTRIEVE && result_ <= vldb98::ZELK_ENG_MSSQL)
      piece.bytes(" ").bytes(engineName(result_));
    else if (int name = resultNameId(self_, result_))
      piece.bytes(" ").utf8(resources::text(name));
    // A call within a call leaves the flush to the outer one.
    writeProtocol(piece.origin().lineEnd().text(), outer_ ? Flush::WithNextPiece : Flush::Now);
  } catch (...) {
    // As above.
  }
}

void Protokoll::note(std::string_view line) {
  lines_ += Piece().utf8(line).lineEnd().text();
}

std::string printable(std::string_view text) {
  std::string shown(text);
  makePrintable(shown, 0);
  return shown;
}

void protocolLine(std::string_view utf8) {
  if (protocolOpen() && innermost) innermost->note(printable(utf8));
}

void protocolRefusal(std::string_view utf8) {
  if (!protocolOpen() || !innermost) return;
  if (!innermost->refused_) innermost->note("Fehlermeldungen:");
  innermost->refused_ = true;
  for (size_t end = 0; end != utf8.npos; utf8.remove_prefix(std::min(end + 1, utf8.size()))) {
    end = utf8.find('\n');
    innermost->note("\t" + std::string(utf8.substr(0, end)));
  }
}

} // namespace frame
