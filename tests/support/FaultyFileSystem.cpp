// SPDX-License-Identifier: Apache-2.0

#include "support/FaultyFileSystem.h"

#include "foundation/Exception.h"

namespace {

class BrokenFile : public WritableFile {
  void writeData(std::string_view /*data*/) override { throw Exception("no room"); }
};

}  // namespace

Result<std::vector<std::string>> FaultyFileSystem::listing(const std::string& path) const {
  const auto known = listings.find(path);
  return known != listings.end() ? known->second : PosixFileSystem::listing(path);
}

Result<std::unique_ptr<WritableFile>> FaultyFileSystem::openForWriting(const std::string& path) {
  if (fault(Call::writeData, path)) return PosixFileSystem::openForWriting(path);
  return std::unique_ptr<WritableFile>(std::make_unique<BrokenFile>());
}

Status FaultyFileSystem::createDirectory(const std::string& path, std::uint32_t permissions) {
  const Status status = fault(Call::createDirectory, path);
  return status ? PosixFileSystem::createDirectory(path, permissions) : status;
}

Status FaultyFileSystem::createFile(const std::string& path, std::string_view content, std::uint32_t permissions) {
  const Status status = fault(Call::createFile, path);
  return status ? PosixFileSystem::createFile(path, content, permissions) : status;
}

bool FaultyFileSystem::mayShareBlocks(const std::string& source, const std::string& target) const {
  return !available && PosixFileSystem::mayShareBlocks(source, target);
}

Result<DiskSpace> FaultyFileSystem::spaceFor(const std::string& path) const {
  auto space = PosixFileSystem::spaceFor(path);
  if (space) space->available = available.value_or(space->available);
  return space;
}

Result<std::unique_ptr<VolumeLock>> FaultyFileSystem::tryLock() {
  if (const Status status = fault(Call::tryLock, "/"); !status) return status.error();
  return PosixFileSystem::tryLock();
}

Status FaultyFileSystem::fault(Call call, const std::string& path) {
  auto& [error, times] = faults_[call];
  if (times == 0) return {};
  --times;
  return Error::posix(error, path);
}
