// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <optional>

#include "platform/rights/HelperSays.h"
#include "platform/rights/MessageSocket.h"

/// The installer's side of the conversation with its helper. Closing it ends the helper.
class HelperConnection {
 public:
  /// `wasInterrupted` is called with the signal that asks the helper to end.
  HelperConnection(MessageSocket socket, std::function<void(int)> wasInterrupted)
      : socket_(std::move(socket)), wasInterrupted_(std::move(wasInterrupted)) {}

  /// Reads the helper's first packet, which proves that it has rights. Waits for it; false when the helper has gone.
  [[nodiscard]] bool receiveReady();

  /// Sends a packet, with a descriptor if there is one. Returns false when the helper has gone, or when the packet is
  /// too large to be sent.
  [[nodiscard]] bool send(const Packet& packet, int descriptor = -1);

  /// Waits for the next packet, for at most so many milliseconds (-1: as long as it takes). Returns nothing when none
  /// has come; see isGone().
  [[nodiscard]] std::optional<Packet> receive(int milliseconds = -1);

  /// send() and receive(); a helper that has gone gives an empty packet.
  [[nodiscard]] Packet ask(const Packet& packet, int descriptor = -1);

  /// Ends the conversation.
  void close() { socket_.close(); }

  [[nodiscard]] bool isGone() const { return isGone_; }
  [[nodiscard]] int descriptor() const { return socket_.descriptor(); }

 private:
  MessageSocket socket_;
  PacketReader reader_;
  std::function<void(int)> wasInterrupted_;
  bool isGone_ = false;
};
