// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "platform/files/PosixFileSystem.h"

/// The real file system, whose next calls of one kind can be made to fail.
class FaultyFileSystem : public PosixFileSystem {
 public:
  using PosixFileSystem::PosixFileSystem;

  enum class Call { createDirectory, createFile, writeData, tryLock };
  /// The next calls fail with the error, so many of them.
  void fail(Call call, std::errc error, int times = 1) { faults_[call] = {error, times}; }
  std::optional<std::uint64_t> available = std::nullopt;  ///< bytes; nothing: what there really is
  /// Folders whose listing has another order than the disk's.
  std::map<std::string, std::vector<std::string>> listings;

  Result<std::vector<std::string>> listing(const std::string& path) const override;
  Result<std::unique_ptr<WritableFile>> openForWriting(const std::string& path) override;
  Status createDirectory(const std::string& path, std::uint32_t permissions) override;
  Status createFile(const std::string& path, std::string_view content, std::uint32_t permissions) override;
  [[nodiscard]] bool mayShareBlocks(const std::string& source, const std::string& target) const override;
  Result<DiskSpace> spaceFor(const std::string& path) const override;
  Result<std::unique_ptr<VolumeLock>> tryLock() override;

 private:
  Status fault(Call call, const std::string& path);

  std::map<Call, std::pair<std::errc, int>> faults_;
};
