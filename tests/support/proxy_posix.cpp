#include <arpa/inet.h>
#include <atomic>
#include <list>
#include <mutex>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "support/proxy.h"

namespace test {
namespace {

// A packet's header: three bytes of length, the low one first, and its number within the exchange, which a command
// begins.
constexpr size_t kHeader = 4;

// The first packet of an answer: error 1213, its state and a text.
constexpr std::string_view kDeadlock("\x11\0\0\x01\xff\xbd\x04#40001Deadlock", 21);

class Socket {
public:
  explicit Socket(int handle = -1) : handle_(handle) {}
  Socket(Socket &&other) noexcept : handle_(std::exchange(other.handle_, -1)) {}
  Socket &operator=(Socket &&other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~Socket() { close(); }

  void close() {
    if (handle_ >= 0) ::close(std::exchange(handle_, -1));
  }
  int handle() const { return handle_; }
  bool isOpen() const { return handle_ >= 0; }
  bool send(std::string_view bytes) {
    while (!bytes.empty()) {
      const ssize_t sent = ::send(handle_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
      if (sent <= 0) return false;
      bytes.remove_prefix(size_t(sent));
    }
    return true;
  }
  /// What has arrived, or what arrives first; empty at the end.
  std::string receive() {
    char bytes[16384];
    const ssize_t had = ::recv(handle_, bytes, sizeof bytes, 0);
    return had > 0 ? std::string(bytes, size_t(had)) : std::string();
  }

private:
  int handle_;
};

sockaddr_in loopback(uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

struct Connection {
  Socket client, server;
  std::string received; ///< of the client, not yet a whole packet
  bool cutAtAnswer = false;
};

struct Held {
  Socket server;
  std::string packet;
};

} // namespace

struct Proxy::State {
  uint16_t to = 0, port = 0;
  Socket listener, stop[2];
  std::atomic<bool> refused{false};
  std::mutex mutex; // of what follows
  std::shared_ptr<const Judge> judge;
  int commands = 0;
  std::vector<Held> held;
  std::thread thread;

  void run();
  void accept(std::list<Connection> &connections);
  bool fromClient(Connection &connection);
  bool pass(Connection &connection, const std::string &packet);
};

void Proxy::State::accept(std::list<Connection> &connections) {
  Connection connection;
  connection.client = Socket(::accept(listener.handle(), nullptr, nullptr));
  if (refused) return;
  connection.server = Socket(::socket(AF_INET, SOCK_STREAM, 0));
  const sockaddr_in address = loopback(to);
  if (::connect(connection.server.handle(), reinterpret_cast<const sockaddr *>(&address), sizeof address) != 0) return;
  const int one = 1;
  for (const Socket *socket : {&connection.client, &connection.server})
    ::setsockopt(socket->handle(), IPPROTO_TCP, TCP_NODELAY, &one, sizeof one);
  connections.push_back(std::move(connection));
}

// \return false when the connection has ended
bool Proxy::State::pass(Connection &connection, const std::string &packet) {
  Fate fate = Fate::Forward;
  if (packet[3] == 0) {
    std::shared_ptr<const Judge> judging; // the same one each time: it may count
    int number;
    {
      std::lock_guard guard(mutex);
      judging = judge;
      number = ++commands;
    }
    if (*judging) fate = (*judging)(number, std::string_view(packet).substr(kHeader));
  }
  switch (fate) {
  case Fate::CutBefore:
    return false;
  case Fate::CutAfter:
    connection.cutAtAnswer = true;
    break;
  case Fate::Deadlock:
    return connection.client.send(kDeadlock);
  case Fate::Hold: {
    std::lock_guard guard(mutex);
    held.push_back({std::move(connection.server), packet});
    return false;
  }
  case Fate::Forward:
    break;
  }
  return connection.server.send(packet);
}

bool Proxy::State::fromClient(Connection &connection) {
  const std::string bytes = connection.client.receive();
  if (bytes.empty()) return false;
  std::string &all = connection.received += bytes;
  while (all.size() >= kHeader) {
    auto byte = [&](size_t i) { return size_t(static_cast<unsigned char>(all[i])); };
    const size_t length = kHeader + (byte(0) | byte(1) << 8 | byte(2) << 16);
    if (all.size() < length) break;
    if (!pass(connection, all.substr(0, length))) return false;
    all.erase(0, length);
  }
  return true;
}

void Proxy::State::run() {
  std::list<Connection> connections;
  for (;;) {
    std::vector<pollfd> waited{{stop[0].handle(), POLLIN, 0}, {listener.handle(), POLLIN, 0}};
    for (const Connection &connection : connections)
      for (const Socket *socket : {&connection.client, &connection.server})
        waited.push_back({socket->handle(), POLLIN, 0});
    if (::poll(waited.data(), waited.size(), -1) < 0) continue;
    if (waited[0].revents) return;
    size_t at = 2;
    for (auto connection = connections.begin(); connection != connections.end(); at += 2) {
      bool alive = !waited[at].revents || fromClient(*connection);
      if (alive && waited[at + 1].revents) {
        const std::string answer = connection->server.receive();
        alive = !answer.empty() && !connection->cutAtAnswer && connection->client.send(answer);
      }
      connection = alive ? std::next(connection) : connections.erase(connection);
    }
    if (waited[1].revents) accept(connections);
  }
}

Proxy::Proxy(uint16_t to) : state_(std::make_unique<State>()) {
  State &state = *state_;
  state.judge = std::make_shared<const Judge>();
  state.to = to;
  state.listener = Socket(::socket(AF_INET, SOCK_STREAM, 0));
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  int ends[2];
  if (::bind(state.listener.handle(), reinterpret_cast<const sockaddr *>(&address), size) != 0 ||
      ::listen(state.listener.handle(), SOMAXCONN) != 0 ||
      ::getsockname(state.listener.handle(), reinterpret_cast<sockaddr *>(&address), &size) != 0 || ::pipe(ends) != 0)
    throw std::runtime_error("the proxy of the tests cannot listen");
  state.port = ntohs(address.sin_port);
  state.stop[0] = Socket(ends[0]);
  state.stop[1] = Socket(ends[1]);
  state.thread = std::thread([&state] { state.run(); });
}

Proxy::~Proxy() {
  state_->stop[1].close();
  state_->thread.join();
}

uint16_t Proxy::port() const {
  return state_->port;
}

void Proxy::judge(Judge judge) {
  std::lock_guard guard(state_->mutex);
  state_->judge = std::make_shared<const Judge>(std::move(judge));
  state_->commands = 0;
}

int Proxy::commands() const {
  std::lock_guard guard(state_->mutex);
  return state_->commands;
}

void Proxy::refuse(bool refused) {
  state_->refused = refused;
}

void Proxy::release() {
  std::vector<Held> held;
  {
    std::lock_guard guard(state_->mutex);
    held.swap(state_->held);
  }
  for (Held &each : held)
    if (each.server.send(each.packet)) each.server.receive();
}

} // namespace test
