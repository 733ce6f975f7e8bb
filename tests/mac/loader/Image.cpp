// SPDX-License-Identifier: Apache-2.0

#include "Image.h"

#include <sys/mman.h>

#include <cstring>
#include <fstream>
#include <iterator>

namespace {

constexpr std::uint32_t magic64 = 0xfeedfacf;
constexpr std::uint32_t universalMagic = 0xbebafeca;  // big-endian in the file
constexpr std::uint32_t processorX86 = 0x01000007;
constexpr std::uint32_t segmentCommand = 0x19;
constexpr std::uint32_t symbolsCommand = 0x2;
constexpr std::uint32_t dyldInfoCommand = 0x80000022;
constexpr std::uint32_t mainCommand = 0x80000028;
constexpr std::uint8_t initializersType = 0x9;

std::uint32_t bigEndian(const std::uint8_t* bytes) {
  std::uint32_t value = 0;
  std::memcpy(&value, bytes, 4);
  return __builtin_bswap32(value);
}

/// The part of a universal file for this processor; all of another file.
std::vector<std::uint8_t> readProgram(const std::string& path) {
  std::ifstream stream(path, std::ios::binary);
  std::vector<std::uint8_t> file((std::istreambuf_iterator(stream)), {});
  std::uint32_t magic = 0;
  if (file.size() >= 32) std::memcpy(&magic, file.data(), 4);
  if (magic == universalMagic) {
    for (std::uint32_t i = 0; i < bigEndian(file.data() + 4); ++i) {
      const std::uint8_t* const part = file.data() + 8 + std::size_t{20} * i;
      if (bigEndian(part) != processorX86) continue;
      const auto begin = file.begin() + bigEndian(part + 8);
      return {begin, begin + bigEndian(part + 12)};
    }
  }
  std::uint32_t processor = 0;
  if (magic == magic64) std::memcpy(&processor, file.data() + 4, 4);
  if (processor != processorX86) throw LoadError(path + ": no Mach-O program for x86_64");
  return file;
}

/// Reads the opcodes of binding and rebasing.
class Opcodes {
 public:
  explicit Opcodes(std::span<const std::uint8_t> bytes) : at_(bytes.data()), end_(at_ + bytes.size()) {}

  [[nodiscard]] bool atEnd() const { return at_ >= end_; }
  std::uint8_t next() { return *at_++; }
  std::uint64_t number() {
    std::uint64_t value = 0;
    int shift = 0;
    std::uint8_t byte = 0;
    do {
      byte = next();
      value |= std::uint64_t{byte & 0x7FU} << shift;
      shift += 7;
    } while ((byte & 0x80U) != 0);
    return value;
  }
  std::int64_t signedNumber() {
    const std::uint8_t* const begin = at_;
    auto value = static_cast<std::int64_t>(number());
    const auto bits = 7 * (at_ - begin);
    if (bits < 64 && (at_[-1] & 0x40U) != 0) value -= std::int64_t{1} << bits;
    return value;
  }
  std::string text() {
    std::string value(reinterpret_cast<const char*>(at_));
    at_ += value.size() + 1;
    return value;
  }

 private:
  const std::uint8_t* at_;
  const std::uint8_t* end_;
};

std::uint64_t& word(std::uint64_t address) { return *reinterpret_cast<std::uint64_t*>(address); }

}  // namespace

template <class T>
T Image::at(std::uint64_t offset) const {
  if (offset + sizeof(T) > file_.size()) throw LoadError(path_ + ": the file is cut off");
  T value;
  std::memcpy(&value, file_.data() + offset, sizeof(T));
  return value;
}

std::span<const std::uint8_t> Image::piece(std::uint32_t offset, std::uint32_t size) const {
  if (std::uint64_t{offset} + size > file_.size()) throw LoadError(path_ + ": the file is cut off");
  return {file_.data() + offset, size};
}

Image::Image(const std::string& path, std::uint64_t slide) : path_(path), file_(readProgram(path)), slide_(slide) {
  readCommands();
}

void Image::readCommands() {
  const auto count = at<std::uint32_t>(16);
  std::uint64_t command = 32;
  for (std::uint32_t i = 0; i < count; ++i, command += at<std::uint32_t>(command + 4)) {
    switch (at<std::uint32_t>(command)) {
      case segmentCommand: mapSegment(command); break;
      case symbolsCommand: readSymbols(command); break;
      case mainCommand: entry_ = start_ + at<std::uint64_t>(command + 8); break;
      case dyldInfoCommand:
        rebases_ = piece(at<std::uint32_t>(command + 8), at<std::uint32_t>(command + 12));
        binds_ = piece(at<std::uint32_t>(command + 16), at<std::uint32_t>(command + 20));
        lazyBinds_ = piece(at<std::uint32_t>(command + 32), at<std::uint32_t>(command + 36));
        break;
      default: break;
    }
  }
}

void Image::mapSegment(std::uint64_t command) {
  const std::string name(reinterpret_cast<const char*>(file_.data()) + command + 8);
  const std::uint64_t address = at<std::uint64_t>(command + 24) + slide_;
  const auto size = at<std::uint64_t>(command + 32);
  const auto fileSize = at<std::uint64_t>(command + 48);
  const auto protection = at<std::int32_t>(command + 60);
  segments_.push_back({address, size, protection});
  if (name == "__PAGEZERO" || size == 0) return;
  if (name == "__TEXT") start_ = address;
  end_ = std::max(end_, address + size);
  void* const place = reinterpret_cast<void*>(address);
  if (::mmap(place, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0) != place) {
    throw LoadError(path_ + ": " + name + " cannot be mapped where it has to lie");
  }
  const auto bytes =
      piece(static_cast<std::uint32_t>(at<std::uint64_t>(command + 40)), static_cast<std::uint32_t>(fileSize));
  std::memcpy(place, bytes.data(), bytes.size());
  for (std::uint32_t i = 0; i < at<std::uint32_t>(command + 64); ++i) {
    const std::uint64_t section = command + 72 + std::uint64_t{80} * i;
    const Section found{at<std::uint64_t>(section + 32) + slide_, at<std::uint64_t>(section + 40)};
    const auto* const sectionName = reinterpret_cast<const char*>(file_.data()) + section;
    sections_[std::string(sectionName, ::strnlen(sectionName, 16))] = found;
    if ((at<std::uint32_t>(section + 64) & 0xFFU) == initializersType) initializers_.push_back(found);
  }
}

void Image::readSymbols(std::uint64_t command) {
  const auto symbols = at<std::uint32_t>(command + 8);
  const auto texts = at<std::uint32_t>(command + 16);
  for (std::uint32_t i = 0; i < at<std::uint32_t>(command + 12); ++i) {
    const std::uint64_t symbol = symbols + std::uint64_t{16} * i;
    constexpr std::uint8_t definedAndExternal = 0x0F;
    if (at<std::uint8_t>(symbol + 4) != definedAndExternal) continue;
    const char* const name = reinterpret_cast<const char*>(file_.data()) + texts + at<std::uint32_t>(symbol);
    exports_[name] = at<std::uint64_t>(symbol + 8) + slide_;
  }
}

void Image::bind(const Resolve& resolve) {
  rebase(rebases_);
  bindNames(binds_, /*isLazy=*/false, resolve);
  bindNames(lazyBinds_, /*isLazy=*/true, resolve);
  for (const Segment& segment : segments_) {
    if (segment.size == 0 || segment.address < start_) continue;
    // The same three bits in both systems.
    if (::mprotect(reinterpret_cast<void*>(segment.address), segment.size, segment.protection) != 0) {
      throw LoadError(path_ + ": a segment cannot be protected");
    }
  }
}

void Image::rebase(std::span<const std::uint8_t> opcodes) const {
  if (slide_ == 0) return;
  std::uint64_t address = 0;
  const auto move = [&](std::uint64_t times, std::uint64_t skip) {
    for (; times > 0; --times, address += 8 + skip) word(address) += slide_;
  };
  for (Opcodes code(opcodes); !code.atEnd();) {
    const std::uint8_t byte = code.next();
    const std::uint8_t immediate = byte & 0x0FU;
    switch (byte & 0xF0U) {
      case 0x00: return;
      case 0x10: break;  // always an address
      case 0x20: address = segments_.at(immediate).address + code.number(); break;
      case 0x30: address += code.number(); break;
      case 0x40: address += std::uint64_t{immediate} * 8; break;
      case 0x50: move(immediate, 0); break;
      case 0x60: move(code.number(), 0); break;
      case 0x70: move(1, code.number()); break;
      case 0x80: {
        const std::uint64_t times = code.number();
        move(times, code.number());
        break;
      }
      default: throw LoadError(path_ + ": unknown opcode of rebasing");
    }
  }
}

void Image::bindNames(std::span<const std::uint8_t> opcodes, bool isLazy, const Resolve& resolve) const {
  std::string name;
  std::uint64_t address = 0;
  std::int64_t addend = 0;
  const auto put = [&](std::uint64_t skip) {
    word(address) = resolve(name) + static_cast<std::uint64_t>(addend);
    address += 8 + skip;
  };
  for (Opcodes code(opcodes); !code.atEnd();) {
    const std::uint8_t byte = code.next();
    const std::uint8_t immediate = byte & 0x0FU;
    switch (byte & 0xF0U) {
      case 0x00:
        if (!isLazy) return;  // lazy ones end each of their names so
        break;
      case 0x10:
      case 0x30:
      case 0x50: break;  // which library, and always an address
      case 0x20: static_cast<void>(code.number()); break;
      case 0x40: name = code.text(); break;
      case 0x60: addend = code.signedNumber(); break;
      case 0x70: address = segments_.at(immediate).address + code.number(); break;
      case 0x80: address += code.number(); break;
      case 0x90: put(0); break;
      case 0xA0: put(code.number()); break;
      case 0xB0: put(std::uint64_t{immediate} * 8); break;
      case 0xC0: {
        const std::uint64_t times = code.number();
        const std::uint64_t skip = code.number();
        for (std::uint64_t i = 0; i < times; ++i) put(skip);
        break;
      }
      default: throw LoadError(path_ + ": unknown opcode of binding");
    }
  }
}

void Image::initialize(int argc, char** argv) const {
  for (const Section& section : initializers_) {
    for (std::uint64_t i = 0; i < section.size; i += 8) {
      reinterpret_cast<void (*)(int, char**)>(word(section.address + i))(argc, argv);
    }
  }
}

Image::Section Image::section(const std::string& name) const {
  const auto found = sections_.find(name);
  return found != sections_.end() ? found->second : Section();
}
