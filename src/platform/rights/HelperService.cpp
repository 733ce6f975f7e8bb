// SPDX-License-Identifier: Apache-2.0

#include "platform/rights/HelperService.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "foundation/Path.h"
#include "foundation/Text.h"
#include "platform/files/StagedTransaction.h"
#include "platform/files/SystemCalls.h"

namespace {

/// Readable when a signal has come that asks the process to end; the signals themselves are held back from now on.
FileDescriptor endSignals() {
  sigset_t signals;
  ::sigemptyset(&signals);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) ::sigaddset(&signals, signal);
  ::sigprocmask(SIG_SETMASK, &signals, nullptr);
  return FileDescriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
}

bool goesUp(const std::string& path) {
  const auto components = split(path, '/');
  return std::ranges::find(components, "..") != components.end();
}

bool areSame(int item, int otherItem) {
  struct stat one {};
  struct stat other {};
  return ::fstat(item, &one) == 0 && ::fstat(otherItem, &other) == 0 && isSameItem(one, other);
}

}  // namespace

/// Tells the installer what becomes of each item, a few items at a time, and listens for it to stop.
class HelperService::Observer : public TransactionObserver {
 public:
  explicit Observer(HelperService& service) : service_(service) {}

  void willStage(std::size_t /*item*/) override {}

  bool didStage(std::size_t item, const ItemResult& result) override {
    progress_.texts.push_back(std::to_string(item));
    addResult(progress_, result.status);
    addResult(progress_, result.attributes);
    return true;
  }

  bool whileBusy(const CopiedAmount& copied) override {
    copied_ = copied;
    constexpr std::chrono::milliseconds pause(4);
    const auto now = std::chrono::steady_clock::now();
    if (now < told_ + pause) return true;
    told_ = now;
    return tell() && mayGoOn();
  }

  /// Sends what was not sent yet.
  bool tell() {
    progress_.texts.insert(progress_.texts.begin(), {std::to_string(copied_.bytes), std::to_string(copied_.files)});
    const bool isSent = service_.send(progress_);
    progress_.texts.clear();
    return isSent;
  }

 private:
  bool mayGoOn() {
    signalfd_siginfo info{};
    if (::read(service_.signals_.get(), &info, sizeof info) > 0) service_.signal_ = static_cast<int>(info.ssi_signo);
    if (service_.signal_ != 0) return false;
    pollfd polled{service_.socket_.descriptor(), POLLIN, 0};
    if (::poll(&polled, 1, 0) <= 0) return true;
    // Either "stop", which is not answered, or the end of the installer; nobody says anything else here.
    const Message message = service_.socket_.receive();
    PacketReader reader;
    const bool isStop = message.kind == Message::Kind::whole &&
                        reader.add(message.bytes) == PacketReader::State::complete &&
                        reader.packet().name == InstallerSays::stop;
    service_.isGone_ = !isStop;
    return false;
  }

  HelperService& service_;
  Packet progress_{std::string(HelperSays::progress)};
  std::chrono::steady_clock::time_point told_;
  CopiedAmount copied_;
};

HelperService::HelperService(MessageSocket socket, const Volume& volume, LocalElevation& elevation,
                             const Operations& operations)
    : socket_(std::move(socket)),
      volume_(volume),
      elevation_(elevation),
      operations_(operations),
      signals_(endSignals()) {}

HelperService::~HelperService() {
  if (hasCommitted_) ignore(flush());  // nobody is left to hear of it
}

bool HelperService::serve() {
  if (!signals_ || !send({std::string(HelperSays::ready)})) return false;
  PacketReader reader;
  while (!isGone_) {
    std::array<pollfd, 2> polled = {pollfd{socket_.descriptor(), POLLIN, 0}, pollfd{signals_.get(), POLLIN, 0}};
    if (::poll(polled.data(), polled.size(), -1) < 0) continue;
    signalfd_siginfo info{};
    // The installer hears of it with the next answer, and ends.
    if (::read(signals_.get(), &info, sizeof info) > 0) signal_ = static_cast<int>(info.ssi_signo);
    if (polled[0].revents == 0) continue;
    Message message = socket_.receive();
    if (message.kind == Message::Kind::end) return true;
    if (message.kind == Message::Kind::broken) return false;
    const auto state = reader.add(message.bytes);
    const bool isEarly = state == PacketReader::State::unfinished && message.descriptor;
    if (state == PacketReader::State::broken || isEarly) return false;
    if (state == PacketReader::State::complete && !answer(reader.packet(), std::move(message.descriptor))) return false;
  }
  return true;
}

bool HelperService::answer(const Packet& packet, FileDescriptor descriptor) {
  if (packet.name == InstallerSays::stop) return true;  // the step had ended already
  isGone_ = !send(carryOut(packet, descriptor)) || isGone_;
  return true;
}

Packet HelperService::carryOut(const Packet& packet, const FileDescriptor& descriptor) {
  const auto result = [this](const Status& status) {
    Packet reply = done();
    addResult(reply, status);
    return reply;
  };
  if (packet.name == InstallerSays::begin) return result(begin(descriptor));
  if (transaction_ != nullptr) {
    if (packet.name == InstallerSays::stage) return stage(packet);
    if (packet.name == InstallerSays::flush) return result(flush());
    if (packet.name == InstallerSays::commit) return commit(packet);
    if (packet.name == InstallerSays::finish) return finish();
  }
  const auto operation = operationFor(packet, operations_.userName());
  if (!operation) return {std::string(HelperSays::refused)};
  return result(operations_.run(*operation));
}

Status HelperService::begin(const FileDescriptor& lock) {
  // The lock is that of the installer, and goes on while the helper completes what it has begun.
  const bool isLock = lock && areSame(lock.get(), volume_.rootHandle()) && ::flock(lock.get(), LOCK_EX | LOCK_NB) == 0;
  if (!isLock) return Error::posix(std::errc::device_or_resource_busy, volume_.root());
  lock_ = FileDescriptor(::fcntl(lock.get(), F_DUPFD_CLOEXEC, 0));
  transaction_.reset();
  hasCommitted_ = false;
  auto begun = StagedTransaction::begin(volume_, elevation_, operations_.ownership(), CopyPool::Caller::helps);
  if (!begun) return begun.error();
  transaction_ = std::move(*begun);
  return {};
}

Packet HelperService::stage(const Packet& packet) {
  std::vector<TransactionItem> items;
  constexpr std::size_t textsOfItem = 3;
  for (std::size_t i = 0; i + textsOfItem <= packet.texts.size(); i += textsOfItem) {
    const std::string& source = packet.texts[i];
    // What others may not read is read with the rights of the client; the payload is all there is to install.
    if (!source.empty() && (!volume_.isInBundle(source) || goesUp(source))) return {std::string(HelperSays::refused)};
    items.push_back({source, packet.texts[i + 1], packet.texts[i + 2] == "q"});
  }
  Observer observer(*this);
  const Status staged = transaction_->stage(items, observer);
  isGone_ = !observer.tell() || isGone_;
  Packet reply = done();
  addResult(reply, staged);
  return reply;
}

Packet HelperService::commit(const Packet& packet) {
  std::vector<std::size_t> items;
  for (std::size_t i = 0; i < packet.texts.size();) items.push_back(takeNumber(packet, i));
  hasCommitted_ = true;
  const auto results = transaction_->commit(items);
  Packet reply = done();
  for (const Status& result : results) addResult(reply, result);
  return reply;
}

Status HelperService::flush() {
  Observer observer(*this);
  return transaction_->flush(observer);
}

Packet HelperService::finish() {
  Packet reply = done();
  Observer observer(*this);
  hasCommitted_ = false;
  for (const Error& left : transaction_->finish(observer)) addResult(reply, left);
  return reply;
}

Packet HelperService::done() const { return {std::string(HelperSays::done), {std::to_string(signal_)}}; }

bool HelperService::send(const Packet& packet) const {
  const auto messages = messagesFor(packet);
  return !messages.empty() && std::ranges::all_of(messages, [this](const auto& text) { return socket_.send(text); });
}
