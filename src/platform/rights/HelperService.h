// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <memory>

#include "platform/Transaction.h"
#include "platform/rights/HelperSays.h"
#include "platform/rights/MessageSocket.h"
#include "platform/rights/Operations.h"

/// The helper's side of the conversation, from when it is ready until the installer is gone.
class HelperService {
 public:
  /// Signals that ask a process to end are held back from now on, and noted.
  HelperService(MessageSocket socket, const Volume& volume, LocalElevation& elevation, const Operations& operations);
  ~HelperService();

  /// Says that it is ready, and serves. Returns true when the other side has gone, false at the first thing that no
  /// installer says. What was not committed by then is removed; a commit that has begun is completed, flushed and
  /// cleaned up.
  [[nodiscard]] bool serve();

 private:
  class Observer;

  [[nodiscard]] bool answer(const Packet& packet, FileDescriptor descriptor);
  [[nodiscard]] Packet carryOut(const Packet& packet, const FileDescriptor& descriptor);
  Status begin(const FileDescriptor& lock);
  [[nodiscard]] Packet stage(const Packet& packet);
  [[nodiscard]] Packet commit(const Packet& packet);
  Status flush();
  [[nodiscard]] Packet finish();
  [[nodiscard]] Packet done() const;
  [[nodiscard]] bool send(const Packet& packet) const;

  MessageSocket socket_;
  const Volume& volume_;
  LocalElevation& elevation_;
  const Operations& operations_;
  FileDescriptor signals_;
  int signal_ = 0;
  FileDescriptor lock_;
  std::unique_ptr<Transaction> transaction_;
  bool hasCommitted_ = false;  ///< and the installer has not finished yet
  bool isGone_ = false;        ///< the installer
};
