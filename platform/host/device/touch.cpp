// SPDX-License-Identifier: Apache-2.0
#include "device/touch.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <deque>
#include <map>
#include <mutex>
#include <set>
#include <utility>

#include "device/misuse.h"
#include "fp_host/touch_node.h"

namespace fp_host {
namespace {

constexpr size_t kRequestsKept = 1000;

constexpr size_t kArgumentBytes = 32;

// The node is a socket pair. Users of the device hold duplicates of the device's end.
struct Node {
  std::string path = "/dev/fth_fd";
  int device_end = -1;
  int controller_end = -1;
  std::set<int> descriptors;
  std::map<unsigned long, int> results;
  std::deque<TouchNode::Request> requests;
};

// The environment variable with the inherited descriptor of the device's end of a node that another
// process drives.
constexpr char kInheritedVariable[] = "FP_DEVICE_TOUCH";

std::mutex mutex;
Node* node = nullptr;            // guarded by mutex
bool is_node_inherited = false;  // guarded by mutex

// The child of a fork() closes descriptors too, so it must not inherit the mutex locked.
[[maybe_unused]] const int kForkHandlers =
    pthread_atfork([] { mutex.lock(); }, [] { mutex.unlock(); }, [] { mutex.unlock(); });

// Each message of a sequenced-packet socket is one report buffer: one read, one buffer.
void Connect(Node& node) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
    AbortForMisuse("No descriptors are left for the touch node.");
  }
  node.device_end = ends[0];
  node.controller_end = ends[1];
}

// close() and fcntl() are interposed, so they are avoided here.
void CloseQuietly(int fd) { syscall(SYS_close, fd); }
int Duplicate(int fd) { return dup(fd); }  // NOLINT(android-cloexec-dup)

// The bytes that can be read there, up to kArgumentBytes: an argument may also be a number, or lie
// at the end of a page.
std::vector<uint8_t> ReadArgument(const void* argument) {
  std::vector<uint8_t> bytes(kArgumentBytes);
  const iovec to = {bytes.data(), bytes.size()};
  const iovec from = {const_cast<void*>(argument), bytes.size()};
  bytes.resize(std::max<ssize_t>(0, process_vm_readv(getpid(), &to, 1, &from, 1, 0)));
  return bytes;
}

template <typename Value>
void Append(std::string& bytes, const Value& value) {
  bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

bool TrySend(int end, const std::string& buffer) {
  return send(end, buffer.data(), buffer.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
}

// Waits until the reader has made room, without the mutex, so that the node can hang up in that
// time.
bool SendBlocking(const std::string& buffer) {
  int end = -1;
  {
    const std::lock_guard lock(mutex);
    if (node->controller_end < 0) {
      return false;
    }
    if (TrySend(node->controller_end, buffer)) {
      return true;
    }
    end = Duplicate(node->controller_end);
  }
  const bool sent = send(end, buffer.data(), buffer.size(), MSG_NOSIGNAL) >= 0;
  CloseQuietly(end);
  return sent;
}

// Called with the mutex held. If the program has closed the descriptor and reused its number for
// something else, it is not mistaken for the node.
void AdoptInheritedNode() {
  static const char* const variable = getenv(kInheritedVariable);
  if (node != nullptr || variable == nullptr) {
    return;
  }
  const int fd = atoi(variable);
  int type = 0;
  socklen_t size = sizeof type;
  if (getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET) {
    node = new Node{.device_end = fd};
    is_node_inherited = true;
  }
}

}  // namespace

bool IsTouchNode(const char* path) {
  const std::lock_guard lock(mutex);
  AdoptInheritedNode();
  return node != nullptr && path != nullptr && node->path == path;
}

int OpenTouchNode() {
  const std::lock_guard lock(mutex);
  const int fd = Duplicate(node->device_end);
  if (fd >= 0) {
    node->descriptors.insert(fd);
  }
  return fd;
}

bool IsTouchDescriptor(int fd) {
  const std::lock_guard lock(mutex);
  return node != nullptr && node->descriptors.contains(fd);
}

void ForgetTouchDescriptor(int fd) {
  const std::lock_guard lock(mutex);
  if (node != nullptr) {
    node->descriptors.erase(fd);
  }
}

int TakeTouchRequest(unsigned long number, const void* argument) {
  TouchNode::Request request = {number, ReadArgument(argument)};
  const std::lock_guard lock(mutex);
  if (node->requests.size() == kRequestsKept) {
    node->requests.pop_front();
  }
  node->requests.push_back(std::move(request));
  const auto known = node->results.find(number);
  return known == node->results.end() ? 0 : known->second;
}

std::string EncodeTouchRecords(const std::vector<TouchRecord>& records) {
  std::string bytes;
  Append(bytes, static_cast<uint32_t>(records.size()));
  Append(bytes, uint32_t{0});
  for (const TouchRecord& record : records) {
    Append(bytes, record.stamp);
    Append(bytes, record.coords);
    Append(bytes, record.signed_coords);
    Append(bytes, record.angle);
    Append(bytes, record.id);
    Append(bytes, record.type);
    Append(bytes, record.info);
    Append(bytes, record.valid);
    Append(bytes, record.flags);
    bytes.append(5, '\0');
  }
  return bytes;
}

TouchNode::TouchNode(const std::string& path) {
  auto* fresh = new Node{.path = path};
  Connect(*fresh);
  const std::lock_guard lock(mutex);
  if (node != nullptr && !std::exchange(is_node_inherited, false)) {
    AbortForMisuse("A second TouchNode was made; only one may exist at a time.");
  }
  delete std::exchange(node, fresh);
}

TouchNode::~TouchNode() {
  HangUp();
  const std::lock_guard lock(mutex);
  CloseQuietly(node->device_end);
  delete std::exchange(node, nullptr);
}

bool TouchNode::Push(const std::vector<TouchRecord>& records) {
  return PushBytes(EncodeTouchRecords(records));
}

bool TouchNode::PushBytes(const std::string& buffer) { return SendBlocking(buffer); }

bool TouchNode::TryPushBytes(const std::string& buffer) {
  const std::lock_guard lock(mutex);
  return node->controller_end >= 0 && TrySend(node->controller_end, buffer);
}

void TouchNode::HangUp() {
  const std::lock_guard lock(mutex);
  if (node->controller_end >= 0) {
    shutdown(node->controller_end, SHUT_RDWR);
    CloseQuietly(std::exchange(node->controller_end, -1));
  }
}

void TouchNode::Reconnect() {
  HangUp();
  const std::lock_guard lock(mutex);
  CloseQuietly(node->device_end);
  Connect(*node);
  for (const int fd : node->descriptors) {
    dup2(node->device_end, fd);
  }
}

void TouchNode::SetRequestResult(unsigned long number, int result) {
  const std::lock_guard lock(mutex);
  node->results[number] = result;
}

std::vector<TouchNode::Request> TouchNode::TakeRequests() {
  const std::lock_guard lock(mutex);
  const auto requests = std::exchange(node->requests, {});
  return {requests.begin(), requests.end()};
}

int TouchNode::CountOpenDescriptors() const {
  const std::lock_guard lock(mutex);
  return static_cast<int>(node->descriptors.size());
}

}  // namespace fp_host
