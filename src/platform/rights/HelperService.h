#pragma once

#include <sys/types.h>

#include <map>
#include <string>

#include "platform/rights/HelperWork.h"
#include "platform/rights/MessageSocket.h"

/// The helper's side of the conversation, from when it is ready until the installer is gone.
class HelperService {
 public:
  /// `userName` is the name of the one user who is served.
  HelperService(MessageSocket socket, const HelperWork& work, std::string userName)
      : socket_(std::move(socket)), work_(work), userName_(std::move(userName)) {}

  /// Says that it is ready, and serves. Returns true when the other side has gone, false at the first thing that no
  /// installer says. Tools that still run are left to finish.
  [[nodiscard]] bool serve();

 private:
  [[nodiscard]] bool receive();
  [[nodiscard]] bool answer(FileDescriptor output);
  [[nodiscard]] bool start(const Operation& operation, const FileDescriptor& output);
  [[nodiscard]] bool reportEnded();

  MessageSocket socket_;
  const HelperWork& work_;
  std::string userName_;
  RequestReader reader_;
  FileDescriptor ends_;                ///< readable when a tool has ended
  std::map<pid_t, unsigned> running_;  ///< the numbers of the tools that run
  unsigned started_ = 0;
};
