// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/posix/FileDescriptor.h"

/// Limit of one message.
inline constexpr std::size_t maxMessageBytes = std::size_t{64} * 1024;

/// What came over a MessageSocket.
struct Message {
  enum class Kind {
    whole,
    broken,  ///< longer than a message may be, or with more than one descriptor
    end,     ///< the other side has closed the connection
  };
  Kind kind = Kind::end;
  std::string bytes = {};
  FileDescriptor descriptor = {};  ///< the one that came with it, if any
};

/// One end of a connection that keeps messages apart (SOCK_SEQPACKET) and can carry descriptors.
class MessageSocket {
 public:
  explicit MessageSocket(FileDescriptor socket) : socket_(std::move(socket)) {}

  [[nodiscard]] int descriptor() const { return socket_.get(); }

  /// Waits for buffer space. Returns false when the other side has closed the connection.
  [[nodiscard]] bool send(std::string_view bytes, int descriptor = -1) const;

  /// Waits for a message. One without bytes counts as the end.
  [[nodiscard]] Message receive() const;

  void close() { socket_.close(); }

 private:
  FileDescriptor socket_;
};
