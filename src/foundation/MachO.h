// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How many bytes from the start of a file are enough for architecturesOfMachO().
inline constexpr std::size_t machOHeaderBytes = 4096;

/// The names of the architectures that a Mac executable is for, in the order of the file, from its first bytes; nothing
/// when they are not those of one. Understands files for one architecture and for several, 32 and 64 bits, in either
/// byte order. An architecture without a well-known name is "cpu N".
[[nodiscard]] std::optional<std::vector<std::string>> architecturesOfMachO(std::string_view bytes);

/// What a Mac executable holds for one architecture.
struct MachOPart {
  std::string architecture;
  std::string minimumSystem = {};  ///< "11.0"; empty where the file does not say
  bool isSigned = false;           ///< holds a signature, be it one that names nobody
  bool isWhole = false;            ///< everything that its load commands speak of is there
};

/// The parts of a Mac executable, from all of its bytes; nothing when they are not those of one. Damage inside a part
/// leaves its other fields empty.
[[nodiscard]] std::optional<std::vector<MachOPart>> partsOfMachO(std::string_view bytes);
