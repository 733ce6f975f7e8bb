#pragma once

#include <atomic>
#include <cstdint>
#include <string>

#include "foundation/Result.h"
#include "platform/files/Volume.h"
#include "platform/posix/FileDescriptor.h"

// What is being made stands under a hidden name beside its place until it is complete. The name is always the same for
// the same place, so that the next install finds and removes what one that was killed left behind.

/// How many hidden names a place has: one that another installer is busy with, or that cannot be removed, is passed
/// over.
inline constexpr int mostStagedNames = 10;
[[nodiscard]] std::string stagedName(std::string_view name, int attempt);

/// Removes what stands under the hidden name. False when the name cannot be had.
[[nodiscard]] bool freeStagedName(int folder, const std::string& name);

/// A complete copy beside its place. Destroying it removes the copy, unless it was put in place.
class StagedCopy {
 public:
  /// Copies the item at `source` to beside `target`, with at most so many threads; `bytes` grows with those copied.
  static Result<StagedCopy> make(const Volume& volume, const std::string& source, const std::string& target,
                                 unsigned mostThreads, std::atomic<std::uint64_t>& bytes);

  StagedCopy(StagedCopy&& other) noexcept = default;
  StagedCopy& operator=(StagedCopy&&) = delete;
  ~StagedCopy();

  /// Whether the place is the one that was copied to: folders may have been exchanged since.
  [[nodiscard]] bool isFor(const Volume::Place& place) const;

  /// Gives the copy its name; fails with file_exists when that is taken.
  [[nodiscard]] Status putInPlace() &&;

  /// The same for a name that is taken: in one step where the file system can, and with the old item back in place
  /// where a second step fails. Then removes the old item; what cannot be removed of it stays under the hidden name.
  [[nodiscard]] Status exchangeWithOldItem() &&;

 private:
  StagedCopy(Volume::Place place, std::string name, FileDescriptor lock)
      : place_(std::move(place)), name_(std::move(name)), lock_(std::move(lock)) {}

  Volume::Place place_;
  std::string name_;
  FileDescriptor lock_;  ///< tells other installers that the copy is not left over
};
