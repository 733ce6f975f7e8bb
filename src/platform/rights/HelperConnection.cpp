// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/HelperConnection.h"

#include <poll.h>

bool HelperConnection::receiveReady() {
  const auto packet = receive();
  return packet && packet->name == HelperSays::ready;
}

bool HelperConnection::send(const Packet& packet, int descriptor) {
  const auto messages = messagesFor(packet);
  if (messages.empty()) return false;
  for (const std::string& message : messages) {
    const bool isLast = &message == &messages.back();
    if (!socket_.send(message, isLast ? descriptor : -1)) {
      isGone_ = true;
      return false;
    }
  }
  return true;
}

std::optional<Packet> HelperConnection::receive(int milliseconds) {
  while (!isGone_) {
    pollfd polled{socket_.descriptor(), POLLIN, 0};
    if (milliseconds >= 0 && ::poll(&polled, 1, milliseconds) <= 0) return std::nullopt;
    const Message message = socket_.receive();
    const auto state = message.kind == Message::Kind::whole ? reader_.add(message.bytes) : PacketReader::State::broken;
    if (state == PacketReader::State::broken) isGone_ = true;
    if (state != PacketReader::State::complete) continue;
    std::size_t position = 0;
    Packet packet = reader_.packet();
    const int signal = packet.name == HelperSays::done ? static_cast<int>(takeNumber(packet, position)) : 0;
    if (signal != 0 && wasInterrupted_) wasInterrupted_(signal);
    return packet;
  }
  return std::nullopt;
}

Packet HelperConnection::ask(const Packet& packet, int descriptor) {
  if (!send(packet, descriptor)) return {};
  return receive().value_or(Packet{});
}
