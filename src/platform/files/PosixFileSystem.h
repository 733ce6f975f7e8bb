#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/FileSystem.h"
#include "platform/files/StagedCopy.h"
#include "platform/files/Volume.h"
#include "platform/posix/PosixUser.h"

class CopyAhead;

/// The disk behind a Volume.
class PosixFileSystem : public FileSystem {
 public:
  PosixFileSystem(const Volume& volume, const PosixUser& user) : volume_(volume), user_(user) {}

  [[nodiscard]] bool exists(const std::string& path) const override;
  [[nodiscard]] bool isTaken(const std::string& path) const override;
  Result<ItemAttributes> attributesOfItem(const std::string& path) const override;
  Result<std::vector<std::string>> contentsOfDirectory(const std::string& path) const override;
  void walk(const std::string& folder, const std::function<void(const WalkedItem&)>& visit) const override;
  [[nodiscard]] std::vector<WalkedItem> visibleEntries(const std::string& folder) const override;
  Result<std::string> readFile(const std::string& path, std::size_t limit) const override;
  Status createFile(const std::string& path, std::string_view content, std::uint32_t permissions) override;
  Result<std::unique_ptr<WritableFile>> openForWriting(const std::string& path) override;
  Status createDirectory(const std::string& path, std::uint32_t permissions) override;
  Status setAttributes(const std::string& path, const OwnershipAndMode& attributes) override;
  Status removeItem(const std::string& path) override;
  Status copyItem(const std::string& source, const std::string& target) override;
  Status replaceItem(const std::string& source, const std::string& target) override;
  [[nodiscard]] std::uint64_t bytesCopied() const override { return bytesCopied_; }
  [[nodiscard]] std::uint64_t sizeOfItem(const std::string& path) const override;
  void setWhileBusy(std::function<void()> handler) override { whileBusy_ = std::move(handler); }
  [[nodiscard]] std::unique_ptr<CopyPlan> planCopies(std::vector<PlannedCopy> copies) override;

 private:
  class Plan;

  /// Opens the item that the path leads to.
  Result<FileDescriptor> open(const std::string& path, int flags, Volume::Purpose purpose) const;
  /// The same for a regular file; anything else fails.
  Result<FileDescriptor> openFile(const std::string& path, int flags, Volume::Purpose purpose) const;
  /// Gives an item that was made in the folder to the logged-in user when this is root; 0 or an errno value.
  [[nodiscard]] int handToUser(int item, int folder) const;
  /// The copy at its turn, made ahead or now.
  Result<StagedCopy> stage(const std::string& source, const std::string& target, const Volume::Place& place);

  /// Whether there is so little to copy or to remove there that nobody notices.
  [[nodiscard]] bool isSmall(const std::string& path) const;
  /// Does the work in a thread of its own while there is a handler to be called meanwhile.
  Status attended(const std::function<Status()>& work);
  Status copyToFreeName(const std::string& source, const std::string& target);
  Status replaceOldItem(const std::string& source, const std::string& target);

  const Volume& volume_;
  const PosixUser& user_;
  std::atomic<std::uint64_t> bytesCopied_ = 0;
  std::function<void()> whileBusy_;
  CopyAhead* ahead_ = nullptr;  ///< of the plan that was made last and still lives
};
