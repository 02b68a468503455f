// SPDX-License-Identifier: Apache-2.0
#include "touch_line.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include "fp_host/touch_node.h"

namespace fp_phone {
namespace {

constexpr char kName[] = "touch";
constexpr size_t kMaxReport = 11272;  // what one read of the device takes
constexpr char kTaken = 'k';

// The folder's descriptor keeps the address short: a socket's path has at most 107 bytes.
class Address {
 public:
  explicit Address(const std::filesystem::path& folder)
      : folder_(open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    fmt::format_to_n(address_.sun_path, sizeof address_.sun_path - 1, "/proc/self/fd/{}/{}",
                     folder_, kName);
  }
  ~Address() { close(folder_); }
  Address(const Address&) = delete;
  Address& operator=(const Address&) = delete;

  bool Bind(int socket) const { return bind(socket, Get(), sizeof address_) == 0; }
  bool Connect(int socket) const { return connect(socket, Get(), sizeof address_) == 0; }

 private:
  const sockaddr* Get() const { return reinterpret_cast<const sockaddr*>(&address_); }

  const int folder_;
  sockaddr_un address_ = {.sun_family = AF_UNIX, .sun_path = {}};
};

int NewSocket() { return socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0); }

// Gives the device what one player sends, until it ends or sends something other than a report.
void Serve(int player, fp_host::TouchNode& node) {
  std::string report(kMaxReport, '\0');
  ssize_t size = 0;
  while ((size = recv(player, report.data(), report.size(), MSG_TRUNC)) > 0 &&
         static_cast<size_t>(size) <= kMaxReport) {
    if (!node.PushBytes(report.substr(0, static_cast<size_t>(size)))) {
      break;
    }
  }
  if (size == 0) {
    send(player, &kTaken, 1, MSG_NOSIGNAL);
  }
  close(player);
}

void ServeAll(int line, fp_host::TouchNode& node) {
  for (int player; (player = accept4(line, nullptr, nullptr, SOCK_CLOEXEC)) >= 0;) {
    Serve(player, node);
  }
}

}  // namespace

std::string TouchLine::Open(const std::filesystem::path& folder) {
  const Address address(folder);
  const int line = NewSocket();
  bool is_bound = address.Bind(line);
  if (!is_bound && errno == EADDRINUSE) {
    const int other = NewSocket();
    const bool is_used = address.Connect(other);
    close(other);
    if (is_used) {
      return "another program runs on this phone with --touch";
    }
    unlink((folder / kName).c_str());  // of a run that was killed
    is_bound = address.Bind(line);
  }
  if (!is_bound || listen(line, SOMAXCONN) != 0) {
    return strerror(errno);
  }
  socket_ = folder / kName;
  auto* const node = new fp_host::TouchNode;
  device_ = open("/dev/fth_fd", O_RDWR);  // NOLINT(android-cloexec-open): for the program
  std::thread(ServeAll, line, std::ref(*node)).detach();
  return {};
}

void TouchLine::Close() {
  if (!socket_.empty()) {
    unlink(socket_.c_str());
  }
}

TouchPlayer::~TouchPlayer() { close(socket_); }

bool TouchPlayer::Connect(const std::filesystem::path& folder) {
  socket_ = NewSocket();
  return Address(folder).Connect(socket_);
}

bool TouchPlayer::Send(const std::string& report) const {
  return send(socket_, report.data(), report.size(), MSG_NOSIGNAL) >= 0;
}

bool TouchPlayer::Finish() const {
  char answer = 0;
  return shutdown(socket_, SHUT_WR) == 0 && recv(socket_, &answer, 1, 0) == 1 && answer == kTaken;
}

}  // namespace fp_phone
