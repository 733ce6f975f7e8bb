#include "platform/rights/HelperConnection.h"

#include <charconv>
#include <utility>

#include "platform/processes/Pipe.h"
#include "platform/rights/ToolOutput.h"

bool HelperConnection::receiveReady() { return receiveAnswer() == HelperSays::ready; }

LaunchStatus HelperConnection::launch(const Request& request, std::unique_ptr<CommunicationsPipe>& pipe) {
  const auto messages = messagesFor(request);
  auto output = makePipe();
  if (messages.empty() || !output) return errAuthorizationToolExecuteFailure;
  for (const std::string& message : messages) {
    const bool isLast = &message == &messages.back();
    if (!socket_.send(message, isLast ? output->writing.get() : -1)) return errAuthorizationToolExecuteFailure;
  }
  if (receiveAnswer() != HelperSays::started) return errAuthorizationToolExecuteFailure;
  running_.insert(++started_);
  pipe = std::make_unique<ToolOutput>(std::move(output->reading));
  return launchSucceeded;
}

void HelperConnection::waitForTool() {
  if (!hasTools()) return;
  std::set<unsigned> tools = running_;
  tools.insert(ended_.begin(), ended_.end());
  const unsigned last = *tools.rbegin();
  while (running_.contains(last)) static_cast<void>(receiveAny());
  ended_.erase(last);
}

std::string HelperConnection::receiveAnswer() {
  std::string said = receiveAny();
  while (said.starts_with(HelperSays::ended)) said = receiveAny();
  return said;
}

std::string HelperConnection::receiveAny() {
  Message message = socket_.receive();
  if (message.kind != Message::Kind::whole) {
    ended_.merge(running_);
    return {};
  }
  if (message.bytes.starts_with(HelperSays::ended)) noteEnd(message.bytes);
  return std::move(message.bytes);
}

void HelperConnection::noteEnd(const std::string& said) {
  unsigned number = 0;
  std::from_chars(said.data() + HelperSays::ended.size(), said.data() + said.size(), number);
  if (running_.erase(number) != 0) ended_.insert(number);
}
