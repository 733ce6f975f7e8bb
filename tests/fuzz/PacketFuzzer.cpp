// SPDX-License-Identifier: Apache-2.0

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/rights/MessageSocket.h"
#include "platform/rights/Operation.h"
#include "platform/rights/Packet.h"

namespace {

void require(bool condition) {
  if (!condition) __builtin_trap();
}

/// What is taken for an operation does only what an installer asks for.
void checkOperation(const Packet& packet) {
  const auto operation = operationFor(packet, "user");
  if (!operation) return;
  require(packet.name.starts_with('/') && (operation->mode & ~0775U) == 0);
  require(operation->paths.empty() == (operation->kind == Operation::Kind::updateApplications));
  for (const std::string& path : operation->paths) {
    require(path.starts_with('/') && path.find('\0') == std::string::npos);
  }
  require(operation->kind == Operation::Kind::replace || operation->source.empty());
}

/// A packet that was read is written and read again the same.
void checkRoundTrip(const Packet& packet) {
  PacketReader again;
  auto state = PacketReader::State::broken;
  for (const std::string& message : messagesFor(packet)) state = again.add(message);
  require(state == PacketReader::State::complete);
  require(again.packet().name == packet.name && again.packet().texts == packet.texts);
}

}  // namespace

/// The input is a row of messages, each preceded by its length in one byte. A length of 255 stands for a message as
/// long as any may be, full of one letter.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string_view rest(reinterpret_cast<const char*>(data), size);
  PacketReader reader;
  static const std::string longest = "p" + std::string(maxMessageBytes - 1, 'x');
  std::size_t added = 0;
  while (rest.size() > 1) {
    const auto length = static_cast<unsigned char>(rest.front());
    const std::string_view message = length == 255 ? longest : rest.substr(1, length);
    rest.remove_prefix(length == 255 ? 1 : 1 + message.size());
    added += message.size();
    const auto state = reader.add(message);
    if (state == PacketReader::State::broken) return 0;
    require(added <= maxPacketBytes + maxPacketBytes / 1024 + size);
    if (state == PacketReader::State::unfinished) continue;
    require(reader.packet().texts.size() <= maxTexts);
    if (added < 2 * maxMessageBytes) checkRoundTrip(reader.packet());
    checkOperation(reader.packet());
    added = 0;
  }
  return 0;
}
