// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/Packet.h"

#include <algorithm>

#include "platform/rights/MessageSocket.h"

namespace {

// The first byte of every message. What follows is a part of the content: each text with a NUL at its end, the
// name first.
constexpr char partOfMore = 'p';
constexpr char lastPart = 'l';

}  // namespace

std::vector<std::string> messagesFor(const Packet& packet) {
  std::string content;
  const auto append = [&](const std::string& text) {
    if (text.find('\0') != std::string::npos || text.size() >= maxPacketBytes) return false;
    content.append(text).push_back('\0');
    return content.size() <= maxPacketBytes;
  };
  if (packet.texts.size() > maxTexts || !append(packet.name)) return {};
  if (!std::ranges::all_of(packet.texts, append)) return {};

  std::vector<std::string> messages;
  constexpr std::size_t room = maxMessageBytes - 1;
  for (std::size_t start = 0; start < content.size(); start += room) {
    messages.push_back(partOfMore + content.substr(start, room));
  }
  messages.back().front() = lastPart;
  return messages;
}

PacketReader::State PacketReader::add(std::string_view message) {
  if (message.empty() || (message.front() != partOfMore && message.front() != lastPart)) return State::broken;
  const bool isLast = message.front() == lastPart;
  message.remove_prefix(1);
  if (message.size() > maxPacketBytes - content_.size()) return State::broken;
  content_ += message;
  if (!isLast) return message.empty() ? State::broken : State::unfinished;
  const bool isSplit = split();
  content_.clear();
  return isSplit ? State::complete : State::broken;
}

bool PacketReader::split() {
  packet_ = {};
  if (content_.empty() || content_.back() != '\0') return false;
  if (static_cast<std::size_t>(std::ranges::count(content_, '\0')) > maxTexts + 1) return false;
  std::string_view rest = content_;
  const auto next = [&] {
    std::string text(rest.substr(0, rest.find('\0')));
    rest.remove_prefix(text.size() + 1);
    return text;
  };
  packet_.name = next();
  while (!rest.empty()) packet_.texts.push_back(next());
  return true;
}
