// SPDX-License-Identifier: Apache-2.0

#include "foundation/MachO.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace {

constexpr std::uint32_t magicOf32Bits = 0xFEEDFACE;
constexpr std::uint32_t magicOf64Bits = 0xFEEDFACF;
constexpr std::uint32_t magicOfSeveral = 0xCAFEBABE;
constexpr std::uint32_t magicOfSeveralLarge = 0xCAFEBABF;

// Load commands.
constexpr std::uint32_t segment = 0x1;
constexpr std::uint32_t largeSegment = 0x19;
constexpr std::uint32_t signature = 0x1D;
constexpr std::uint32_t minimumOfMac = 0x24;
constexpr std::uint32_t buildVersion = 0x32;

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

/// An architecture of a file, and where what is for it starts.
struct Header {
  std::string name;
  std::size_t offset = 0;
};
using Headers = std::optional<std::vector<Header>>;

Headers readSeveral(std::string_view bytes, ByteOrder order, bool isLarge) {
  constexpr std::size_t headerSize = 2 * wordSize;
  constexpr std::size_t entryWords = 5;
  constexpr std::size_t largeEntryWords = 8;
  const std::size_t entrySize = (isLarge ? largeEntryWords : entryWords) * wordSize;
  if (bytes.size() < headerSize) return std::nullopt;
  const std::uint32_t count = wordAt(bytes, wordSize, order);
  if (count == 0 || count > mostArchitectures || bytes.size() < headerSize + count * entrySize) return std::nullopt;
  std::vector<Header> headers;
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t entry = headerSize + i * entrySize;
    // A place beyond what the lower word can say is beyond the bytes as well.
    const std::size_t place = entry + (isLarge ? 3 : 2) * wordSize;
    const bool isFar = isLarge && wordAt(bytes, place - wordSize, order) != 0;
    headers.push_back({.name = nameOf(wordAt(bytes, entry, order), wordAt(bytes, entry + wordSize, order)),
                       .offset = isFar ? bytes.size() : wordAt(bytes, place, order)});
  }
  return headers;
}

Headers readHeaders(std::string_view bytes) {
  constexpr std::size_t smallestHeader = 28;
  if (bytes.size() < wordSize) return std::nullopt;
  for (const ByteOrder order : {ByteOrder::little, ByteOrder::big}) {
    switch (wordAt(bytes, 0, order)) {
      case magicOf32Bits:
      case magicOf64Bits:
        if (bytes.size() < smallestHeader) return std::nullopt;
        return std::vector{Header{.name = nameOf(wordAt(bytes, wordSize, order), wordAt(bytes, 2 * wordSize, order))}};
      case magicOfSeveral: return readSeveral(bytes, order, /*isLarge=*/false);
      case magicOfSeveralLarge: return readSeveral(bytes, order, /*isLarge=*/true);
      default: break;
    }
  }
  return std::nullopt;
}

/// "11.0" from its packed form: two bytes, one, and one that is left out when it is 0.
std::string versionFrom(std::uint32_t packed) {
  const std::string version = std::to_string(packed >> 16U) + "." + std::to_string((packed >> 8U) & 0xFFU);
  return (packed & 0xFFU) == 0 ? version : version + "." + std::to_string(packed & 0xFFU);
}

/// Whether so many bytes from an offset on are there. The numbers have 32 bits.
bool isThere(std::string_view bytes, std::uint64_t offset, std::uint64_t length) {
  return offset + length <= bytes.size();
}

/// Whether the segment or the signature that a whole load command speaks of is there. `bytes` begin with the header.
bool holdsContent(std::string_view bytes, std::size_t at, ByteOrder order) {
  constexpr std::size_t signatureSize = 16;
  constexpr std::size_t segmentSize = 56;
  constexpr std::size_t largeSegmentSize = 72;
  const auto word = [&](std::size_t number) { return wordAt(bytes, at + number * wordSize, order); };
  const std::uint32_t command = word(0);
  if (command == signature) return word(1) >= signatureSize && isThere(bytes, word(2), word(3));
  if (command == segment) return word(1) >= segmentSize && isThere(bytes, word(8), word(9));
  if (command != largeSegment) return true;
  // Upper words first or last; what needs them is beyond the bytes of any program.
  const std::size_t low = order == ByteOrder::big ? 1 : 0;
  return word(1) >= largeSegmentSize && word(11 - low) == 0 && word(13 - low) == 0 &&
         isThere(bytes, word(10 + low), word(12 + low));
}

/// Reads the load commands of what is for one architecture.
void readCommands(std::string_view bytes, MachOPart& part) {
  constexpr std::size_t header32 = 28;
  constexpr std::size_t header64 = 32;
  if (bytes.size() < header32) return;
  const std::uint32_t asLittle = wordAt(bytes, 0, ByteOrder::little);
  const auto order = asLittle == magicOf32Bits || asLittle == magicOf64Bits ? ByteOrder::little : ByteOrder::big;
  const std::uint32_t count = wordAt(bytes, 4 * wordSize, order);
  std::size_t at = wordAt(bytes, 0, order) == magicOf64Bits ? header64 : header32;
  for (std::uint32_t i = 0; i < count; ++i) {
    if (!isThere(bytes, at, 2 * wordSize)) return;
    const std::uint32_t size = wordAt(bytes, at + wordSize, order);
    if (size < 2 * wordSize || !isThere(bytes, at, size)) return;
    const std::uint32_t command = wordAt(bytes, at, order);
    const bool hasValues = size >= 4 * wordSize;
    if (hasValues && command == signature) part.isSigned = true;
    if (hasValues && command == minimumOfMac) part.minimumSystem = versionFrom(wordAt(bytes, at + 2 * wordSize, order));
    if (hasValues && command == buildVersion) part.minimumSystem = versionFrom(wordAt(bytes, at + 3 * wordSize, order));
    if (!holdsContent(bytes, at, order)) return;
    at += size;
  }
  part.isWhole = true;
}

}  // namespace

std::optional<std::vector<std::string>> architecturesOfMachO(std::string_view bytes) {
  const Headers headers = readHeaders(bytes);
  if (!headers) return std::nullopt;
  std::vector<std::string> names;
  for (const Header& header : *headers) names.push_back(header.name);
  return names;
}

std::optional<std::vector<MachOPart>> partsOfMachO(std::string_view bytes) {
  const Headers headers = readHeaders(bytes);
  if (!headers) return std::nullopt;
  std::vector<MachOPart> parts;
  for (const auto& [name, offset] : *headers) {
    MachOPart part{.architecture = name};
    if (offset < bytes.size()) readCommands(bytes.substr(offset), part);
    parts.push_back(std::move(part));
  }
  return parts;
}
