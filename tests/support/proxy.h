/// A network between the library and the server of the tests, which fails when and how a test wants it to.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

namespace test {

class Proxy {
public:
  enum class Fate : uint8_t {
    Forward,
    CutBefore, ///< both connections end, and the server never sees the command
    CutAfter,  ///< both end, when the server has answered and before the answer is handed on
    Deadlock,  ///< the server never sees the command, and the client is told of error 1213, as a cluster does at a
               ///< COMMIT
    Hold,      ///< the client's connection ends; the server's stays open, and gets the command with release()
  };
  /// Says what becomes of a command of the client: of all commands so far the n-th, from 1, with its bytes after the
  /// packet's length. It runs in the proxy's thread.
  using Judge = std::function<Fate(int number, std::string_view command)>;

  /// Listens on a port of the loopback address and leads to another one.
  explicit Proxy(uint16_t to);
  ~Proxy();
  Proxy(const Proxy &) = delete;

  uint16_t port() const;
  /// Commands are counted anew. Without a judge all are forwarded.
  void judge(Judge judge);
  /// Commands since then.
  int commands() const;
  /// Connections are refused from now on, or accepted again.
  void refuse(bool refused);
  /// Hands on what is held, and waits until the server has ended it.
  void release();

private:
  struct State;
  std::unique_ptr<State> state_;
};

} // namespace test
