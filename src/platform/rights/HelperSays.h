// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <string_view>

#include "foundation/Result.h"
#include "platform/rights/Packet.h"

// The conversation between the installer and its helper, in packets. The installer sends a tool's path with its
// arguments (see Operation.h), or a step of a transaction; the helper answers each with one packet. Only while items
// are staged does it say more: what became of each item.

namespace InstallerSays {
inline constexpr std::string_view begin = "begin";  ///< with the lock of the volume
inline constexpr std::string_view stage = "stage";  ///< source, target, and "q" when the quarantine mark goes; of each
inline constexpr std::string_view stop = "stop";    ///< no more staging; not answered
inline constexpr std::string_view flush = "flush";
inline constexpr std::string_view commit = "commit";  ///< numbers of items
inline constexpr std::string_view finish = "finish";
}  // namespace InstallerSays

namespace HelperSays {
inline constexpr std::string_view ready = "ready";      ///< the first packet
inline constexpr std::string_view refused = "refused";  ///< not a tool or step that there is
/// The signal that asks the helper to end (0 for none), then two texts for each result: an errno value and what it is
/// about; "0" for success.
inline constexpr std::string_view done = "done";
/// Bytes and files copied so far, then five texts for each item: its number and two results.
inline constexpr std::string_view progress = "progress";
}  // namespace HelperSays

/// Adds a result to a packet. An error of another kind than errno values is sent as EIO.
void addResult(Packet& packet, const Status& status);

/// Reads the result at the position, and moves the position past it. A packet without one gives an error.
Status takeResult(const Packet& packet, std::size_t& position);

/// Reads a number at the position, and moves the position past it; 0 when there is none.
std::uint64_t takeNumber(const Packet& packet, std::size_t& position);
