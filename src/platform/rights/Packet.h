// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// What the installer and its helper say to each other: a name and texts that belong to it. A packet travels as one or
/// more short messages.
struct Packet {
  std::string name;
  std::vector<std::string> texts = {};
};

/// Limits of one packet: about what a tool can be given as arguments.
inline constexpr std::size_t maxPacketBytes = std::size_t{2} * 1024 * 1024;
inline constexpr std::size_t maxTexts = 100'000;

/// The messages that make up a packet. None when the packet is larger than allowed, or when one of its texts holds a
/// NUL.
[[nodiscard]] std::vector<std::string> messagesFor(const Packet& packet);

/// Puts packets together from messages that anybody may have written.
class PacketReader {
 public:
  enum class State {
    unfinished,
    complete,  ///< packet() is whole; the next message starts another
    broken,    ///< not a packet; nothing can be expected from the sender
  };

  /// Takes the next message.
  State add(std::string_view message);

  [[nodiscard]] const Packet& packet() const { return packet_; }

 private:
  [[nodiscard]] bool split();

  std::string content_;
  Packet packet_;
};
