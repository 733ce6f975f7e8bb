#pragma once

#include <memory>
#include <set>
#include <string>

#include "platform/Authorization.h"
#include "platform/rights/MessageSocket.h"
#include "platform/rights/Request.h"

/// The installer's side of the conversation with its helper. Closing it ends the helper.
class HelperConnection {
 public:
  explicit HelperConnection(MessageSocket socket) : socket_(std::move(socket)) {}

  /// Reads the helper's first message, which proves that it has rights. Waits for it; false when the helper has gone.
  [[nodiscard]] bool receiveReady();

  /// As Authorization::executeWithPrivileges(). A helper that is gone is a launch that failed.
  [[nodiscard]] LaunchStatus launch(const Request& request, std::unique_ptr<CommunicationsPipe>& pipe);

  /// Whether there are tools whose end nobody has waited for, running or not.
  [[nodiscard]] bool hasTools() const { return !running_.empty() || !ended_.empty(); }

  /// Waits for the end of one of them: the one that was launched last. All end with the helper.
  void waitForTool();

  [[nodiscard]] int descriptor() const { return socket_.descriptor(); }

 private:
  /// The next message that is not about the end of a tool; empty when the helper is gone.
  std::string receiveAnswer();
  [[nodiscard]] std::string receiveAny();
  void noteEnd(const std::string& said);

  MessageSocket socket_;
  // Numbers of tools.
  unsigned started_ = 0;
  std::set<unsigned> running_;
  std::set<unsigned> ended_;
};
