#include "support/Recording.h"

#include <algorithm>

#include "foundation/Exception.h"

std::ptrdiff_t RecordingLog::count(std::string_view line) const { return std::ranges::count(lines, line); }

bool RecordingLog::contains(std::string_view part) const {
  return std::ranges::any_of(lines, [&](const std::string& line) { return line.find(part) != std::string::npos; });
}

class RecordingAuthorizations::Recording : public Authorization {
 public:
  explicit Recording(RecordingAuthorizations& owner) : owner_(owner), real_(owner.real_.createAuthorization()) {}

  bool obtain(std::uint32_t flags) override {
    ++owner_.obtained;
    return owner_.canBeObtained && flags == extendRights;
  }

  LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                     std::unique_ptr<CommunicationsPipe>& pipe) override {
    std::string launch = toolPath;
    for (const std::string& argument : arguments) launch += "|" + argument;
    owner_.beforeLaunch(launch);
    owner_.launches.push_back(launch);
    const auto status = owner_.statusOfTool.find(toolPath);
    if (status != owner_.statusOfTool.end()) return status->second;
    return real_->executeWithPrivileges(toolPath, arguments, pipe);
  }

  void waitForAnyChild() override { real_->waitForAnyChild(); }

 private:
  RecordingAuthorizations& owner_;
  std::unique_ptr<Authorization> real_;
};

std::unique_ptr<Authorization> RecordingAuthorizations::createAuthorization() {
  return std::make_unique<Recording>(*this);
}

std::vector<std::string> RecordingAuthorizations::launchesOf(const std::string& tool) const {
  std::vector<std::string> found;
  std::ranges::copy_if(launches, std::back_inserter(found),
                       [&](const std::string& launch) { return launch.starts_with(tool + "|"); });
  return found;
}

Status FaultyFileSystem::fault(Call call, const std::string& path) const {
  const auto found = faults_.find(call);
  if (found == faults_.end() || found->second.times == 0) return {};
  --found->second.times;
  return Error::posix(found->second.error, path);
}

bool FaultyFileSystem::isTaken(const std::string& path) const {
  const auto found = hidden_.find(path);
  if (found == hidden_.end() || found->second == 0) return PosixFileSystem::isTaken(path);
  --found->second;
  return false;
}

Result<std::string> FaultyFileSystem::readFile(const std::string& path, std::size_t limit) const {
  const Status status = fault(Call::readFile, path);
  return status ? PosixFileSystem::readFile(path, limit) : status.error();
}

Status FaultyFileSystem::createFile(const std::string& path, std::string_view content, std::uint32_t permissions) {
  Status status = fault(Call::createFile, path);
  return status ? PosixFileSystem::createFile(path, content, permissions) : status;
}

Result<std::unique_ptr<WritableFile>> FaultyFileSystem::openForWriting(const std::string& path) {
  class BrokenFile : public WritableFile {
    void writeData(std::string_view /*data*/) override { throw Exception("no room"); }
  };
  if (!fault(Call::writeData, path)) return std::unique_ptr<WritableFile>(std::make_unique<BrokenFile>());
  const Status status = fault(Call::openForWriting, path);
  return status ? PosixFileSystem::openForWriting(path) : status.error();
}

Status FaultyFileSystem::createDirectory(const std::string& path, std::uint32_t permissions) {
  Status status = fault(Call::createDirectory, path);
  return status ? PosixFileSystem::createDirectory(path, permissions) : status;
}

Status FaultyFileSystem::copyItem(const std::string& source, const std::string& target) {
  Status status = fault(Call::copyItem, target);
  return status ? PosixFileSystem::copyItem(source, target) : status;
}

Status FaultyFileSystem::replaceItem(const std::string& source, const std::string& target) {
  Status status = fault(Call::replaceItem, target);
  return status ? PosixFileSystem::replaceItem(source, target) : status;
}
