#pragma once

#include <cstdint>
#include <map>
#include <string>

/// How much of an install is done, by the bytes of the items. Each item counts for some bytes more than it has: handing
/// it over to the user takes its time, however small it is.
class InstallProgress {
 public:
  /// Nothing is planned, nothing done.
  void start(std::uint64_t bytesCopiedBefore);

  /// One more item, which may be planned for several places.
  void plan(const std::string& source, std::uint64_t size);
  [[nodiscard]] bool isKnown(const std::string& source) const { return weights_.contains(source); }
  /// The item again, for another place.
  void planAgain(const std::string& source) { planned_ += weights_.at(source); }

  /// The item is in place, or never will be.
  void finish(const std::string& source);
  void finishAll() { isOver_ = true; }

  /// From 0 to 1; never less than it was since the start. `bytesCopied` are those of the file system, which may be
  /// ahead of the items.
  [[nodiscard]] double fraction(std::uint64_t bytesCopied);

 private:
  std::map<std::string, std::uint64_t> weights_;
  std::uint64_t planned_ = 0;
  std::uint64_t finished_ = 0;
  std::uint64_t before_ = 0;
  double shown_ = 0;
  bool isOver_ = false;
};
