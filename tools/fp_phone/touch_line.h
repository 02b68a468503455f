// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <string>
#include <vector>

// The line between `fp_phone run --touch` and `fp_phone play`: a socket in the phone's folder.

namespace fp_phone {

// The touch device of a program that runs on the phone: a node that the program inherits, and a
// thread that gives it what players send. Both live until the process ends.
class TouchLine {
 public:
  // An empty text, or why no line can be opened.
  std::string Open(const std::filesystem::path& folder);

  // The inherited descriptor of the device's end.
  int GetDevice() const { return device_; }

  // Removes the socket.
  void Close();

 private:
  std::filesystem::path socket_;
  int device_ = -1;
};

// The other end of the line.
class TouchPlayer {
 public:
  ~TouchPlayer();

  // False if no program listens.
  bool Connect(const std::filesystem::path& folder);

  // Blocks while the device has too many unread reports. False if the program has ended.
  bool Send(const std::string& report) const;

  // Waits until the device has taken all reports. False if the program ended before.
  bool Finish() const;

 private:
  int socket_ = -1;
};

}  // namespace fp_phone
