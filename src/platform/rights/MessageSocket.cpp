// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/MessageSocket.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace {

/// Room for the control data of one descriptor, aligned as the system wants it.
struct alignas(cmsghdr) ControlData {
  std::array<char, CMSG_SPACE(sizeof(int))> bytes{};
};

/// Takes over every descriptor that came; false when there was more than one.
bool takeDescriptor(msghdr& header, FileDescriptor& descriptor) {
  bool isOne = true;
  for (cmsghdr* part = CMSG_FIRSTHDR(&header); part != nullptr; part = CMSG_NXTHDR(&header, part)) {
    if (part->cmsg_level != SOL_SOCKET || part->cmsg_type != SCM_RIGHTS) continue;
    const std::size_t count = (part->cmsg_len - CMSG_LEN(0)) / sizeof(int);
    for (std::size_t i = 0; i < count; ++i) {
      int number = -1;
      std::memcpy(&number, CMSG_DATA(part) + i * sizeof number, sizeof number);
      FileDescriptor taken(number);
      if (descriptor) {
        isOne = false;
      } else {
        descriptor = std::move(taken);
      }
    }
  }
  return isOne;
}

}  // namespace

bool MessageSocket::send(std::string_view bytes, int descriptor) const {
  iovec content{const_cast<char*>(bytes.data()), bytes.size()};
  ControlData control;
  msghdr header{};
  header.msg_iov = &content;
  header.msg_iovlen = 1;
  if (descriptor >= 0) {
    header.msg_control = control.bytes.data();
    header.msg_controllen = control.bytes.size();
    cmsghdr* const part = CMSG_FIRSTHDR(&header);
    part->cmsg_level = SOL_SOCKET;
    part->cmsg_type = SCM_RIGHTS;
    part->cmsg_len = CMSG_LEN(sizeof descriptor);
    std::memcpy(CMSG_DATA(part), &descriptor, sizeof descriptor);
  }
  for (;;) {
    const ssize_t sent = ::sendmsg(socket_.get(), &header, MSG_NOSIGNAL);
    if (sent >= 0) return static_cast<std::size_t>(sent) == bytes.size();
    if (errno != EINTR) return false;
  }
}

Message MessageSocket::receive() const {
  // Kept from one message to the next: clearing it for each would cost more than receiving.
  static thread_local std::array<char, maxMessageBytes> buffer;
  iovec content{buffer.data(), buffer.size()};
  ControlData control;
  msghdr header{};
  header.msg_iov = &content;
  header.msg_iovlen = 1;
  header.msg_control = control.bytes.data();
  header.msg_controllen = control.bytes.size();
  ssize_t length = 0;
  do {
    length = ::recvmsg(socket_.get(), &header, MSG_CMSG_CLOEXEC);
  } while (length < 0 && errno == EINTR);

  Message message;
  if (length < 0) return message;
  const bool isOne = takeDescriptor(header, message.descriptor);
  if (length == 0) return message;
  const bool isWhole = (header.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) == 0;
  message.kind = isWhole && isOne ? Message::Kind::whole : Message::Kind::broken;
  message.bytes.assign(buffer.data(), static_cast<std::size_t>(length));
  return message;
}
