// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/HelperSays.h"

#include <cerrno>
#include <charconv>

#include "platform/files/SystemCalls.h"

void addResult(Packet& packet, const Status& status) {
  const bool isPosix = !status && status.error().domain == Error::posixDomain;
  const int code = status ? 0 : isPosix ? status.error().code : EIO;
  std::string subject = status ? std::string() : status.error().subject;
  std::erase(subject, '\0');
  packet.texts.push_back(std::to_string(code));
  packet.texts.push_back(std::move(subject));
}

std::uint64_t takeNumber(const Packet& packet, std::size_t& position) {
  std::uint64_t number = 0;
  if (position >= packet.texts.size()) return number;
  const std::string& text = packet.texts[position++];
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

Status takeResult(const Packet& packet, std::size_t& position) {
  if (position + 1 >= packet.texts.size()) return systemError(EPIPE, "");
  const auto code = static_cast<int>(takeNumber(packet, position));
  const std::string& subject = packet.texts[position++];
  return systemStatus(code, subject);
}
