// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

/// What keeps a file from being loaded.
class LoadError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A Mach-O program or library for x86_64, mapped into this process.
class Image {
 public:
  using Resolve = std::function<std::uint64_t(const std::string& name)>;

  struct Section {
    std::uint64_t address = 0;
    std::uint64_t size = 0;
  };

  /// Maps the file: a program where it wants to lie, a library at `slide`.
  Image(const std::string& path, std::uint64_t slide);

  /// Puts the addresses of what the image takes from others into their places, and makes the image ready to run.
  void bind(const Resolve& resolve);

  /// Runs what the image wants run before main().
  void initialize(int argc, char** argv) const;

  [[nodiscard]] std::uint64_t entry() const { return entry_; }
  [[nodiscard]] std::uint64_t start() const { return start_; }
  [[nodiscard]] std::uint64_t end() const { return end_; }
  [[nodiscard]] Section section(const std::string& name) const;
  /// Names without version or library, as symbol tables have them.
  [[nodiscard]] const std::map<std::string, std::uint64_t>& exports() const { return exports_; }

 private:
  struct Segment {
    std::uint64_t address;
    std::uint64_t size;
    int protection;
  };

  void readCommands();
  void mapSegment(std::uint64_t command);
  void readSymbols(std::uint64_t command);
  void rebase(std::span<const std::uint8_t> opcodes) const;
  void bindNames(std::span<const std::uint8_t> opcodes, bool isLazy, const Resolve& resolve) const;
  template <class T>
  [[nodiscard]] T at(std::uint64_t offset) const;
  [[nodiscard]] std::span<const std::uint8_t> piece(std::uint32_t offset, std::uint32_t size) const;

  std::string path_;
  std::vector<std::uint8_t> file_;
  std::uint64_t slide_;
  std::uint64_t start_ = 0;
  std::uint64_t end_ = 0;
  std::uint64_t entry_ = 0;
  std::vector<Segment> segments_;
  std::map<std::string, Section> sections_;
  std::vector<Section> initializers_;
  std::map<std::string, std::uint64_t> exports_;
  std::span<const std::uint8_t> rebases_;
  std::span<const std::uint8_t> binds_;
  std::span<const std::uint8_t> lazyBinds_;
};
