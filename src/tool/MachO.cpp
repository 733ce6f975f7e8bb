// SPDX-License-Identifier: Apache-2.0

#include "tool/MachO.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace {

constexpr std::uint32_t magicOf32Bits = 0xFEEDFACE;
constexpr std::uint32_t magicOf64Bits = 0xFEEDFACF;
constexpr std::uint32_t magicOfSeveral = 0xCAFEBABE;
constexpr std::uint32_t magicOfSeveralLarge = 0xCAFEBABF;

/// Classes of another language's programs start alike; the number of their version follows and is greater.
constexpr std::uint32_t mostArchitectures = 42;

enum class ByteOrder { little, big };

constexpr std::size_t wordSize = 4;

std::uint32_t wordAt(std::string_view bytes, std::size_t offset, ByteOrder order) {
  std::uint32_t word = 0;
  for (std::size_t i = 0; i < wordSize; ++i) {
    const std::size_t position = order == ByteOrder::big ? i : wordSize - 1 - i;
    word = (word << 8U) | static_cast<unsigned char>(bytes[offset + position]);
  }
  return word;
}

std::string nameOf(std::uint32_t type, std::uint32_t subtype) {
  struct Known {
    std::uint32_t type;
    std::uint32_t subtype;
    const char* name;
  };
  constexpr std::uint32_t any = 0xFFFFFFFF;
  constexpr std::array<Known, 9> known = {{{7, any, "i386"},
                                           {0x01000007, 8, "x86_64h"},
                                           {0x01000007, any, "x86_64"},
                                           {12, any, "arm"},
                                           {0x0100000C, 2, "arm64e"},
                                           {0x0100000C, any, "arm64"},
                                           {0x0200000C, any, "arm64_32"},
                                           {18, any, "ppc"},
                                           {0x01000012, any, "ppc64"}}};
  // The uppermost byte holds capabilities.
  const std::uint32_t kind = subtype & 0x00FFFFFFU;
  const auto* const found = std::ranges::find_if(known, [&](const Known& candidate) {
    return candidate.type == type && (candidate.subtype == any || candidate.subtype == kind);
  });
  return found == known.end() ? "cpu " + std::to_string(type) : found->name;
}

std::optional<std::vector<std::string>> readSeveral(std::string_view bytes, ByteOrder order, std::size_t entrySize) {
  constexpr std::size_t headerSize = 2 * wordSize;
  if (bytes.size() < headerSize) return std::nullopt;
  const std::uint32_t count = wordAt(bytes, wordSize, order);
  if (count == 0 || count > mostArchitectures || bytes.size() < headerSize + count * entrySize) return std::nullopt;
  std::vector<std::string> names;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t entry = headerSize + i * entrySize;
    names.push_back(nameOf(wordAt(bytes, entry, order), wordAt(bytes, entry + wordSize, order)));
  }
  return names;
}

}  // namespace

std::optional<std::vector<std::string>> architecturesOfMachO(std::string_view bytes) {
  constexpr std::size_t smallestHeader = 28;
  constexpr std::size_t entrySize = 20;
  constexpr std::size_t largeEntrySize = 32;
  if (bytes.size() < wordSize) return std::nullopt;
  for (const ByteOrder order : {ByteOrder::little, ByteOrder::big}) {
    switch (wordAt(bytes, 0, order)) {
      case magicOf32Bits:
      case magicOf64Bits:
        if (bytes.size() < smallestHeader) return std::nullopt;
        return std::vector{nameOf(wordAt(bytes, wordSize, order), wordAt(bytes, 2 * wordSize, order))};
      case magicOfSeveral: return readSeveral(bytes, order, entrySize);
      case magicOfSeveralLarge: return readSeveral(bytes, order, largeEntrySize);
      default: break;
    }
  }
  return std::nullopt;
}
