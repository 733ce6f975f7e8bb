// SPDX-License-Identifier: Apache-2.0

#include "platform/processes/FolderQuery.h"

#include <fcntl.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "foundation/KeyValueCoding.h"
#include "foundation/Path.h"
#include "platform/files/FolderWalk.h"
#include "platform/processes/Pipe.h"

namespace {

/// An entry as the predicate sees it.
class Candidate : public KeyValueCoding {
 public:
  Candidate(std::string_view folder, std::string_view name) : folder_(folder), name_(name) {}

  [[nodiscard]] std::string path() const { return std::string(folder_).append(name_); }
  [[nodiscard]] Value valueForKey(std::string_view key) const override {
    if (key == kMDItemFSName) return std::string(name_);
    if (key == kMDItemPath) return path();
    return {};  // an attribute that nothing here has
  }

 private:
  std::string_view folder_;
  std::string_view name_;
};

class FolderQuery : public MetadataQuery {
 public:
  FolderQuery(const Volume& volume, DescriptorRunLoop& runLoop) : volume_(volume), runLoop_(runLoop) {}

  void setPredicate(const Predicate& predicate) override { nextPredicate_ = predicate; }
  void setSearchScopes(const std::vector<std::string>& folders) override { nextScopes_ = folders; }

  bool startQuery() override {
    stopQuery();
    results_.clear();
    auto turn = makePipe();
    if (!nextPredicate_ || !turn) return false;
    predicate_ = nextPredicate_;
    scopes_.assign(nextScopes_.rbegin(), nextScopes_.rend());
    // With its writing end closed the pipe can be read at any time: every run of the loop takes its turn.
    turn->writing.close();
    turn_ = std::move(turn->reading);
    watch_ = runLoop_.watchReadable(turn_.get(), [this] { gather(); });
    return true;
  }

  [[nodiscard]] bool isGathering() const override { return watch_ != nullptr; }

  void stopQuery() override {
    if (!isGathering()) return;
    watch_.reset();
    turn_.close();
    walk_.reset();
    std::ranges::sort(results_, {}, &Result::path);
  }

  [[nodiscard]] std::size_t resultCount() const override { return results_.size(); }

  [[nodiscard]] std::string valueOfAttribute(std::string_view attribute, std::size_t forResultAtIndex) const override {
    const Result& result = results_.at(forResultAtIndex);
    if (attribute == kMDItemFSName) return result.path.substr(result.nameAt);
    return attribute == kMDItemPath ? result.path : std::string();
  }

 private:
  struct Result {
    std::string path;
    std::size_t nameAt;
  };

  /// About a millisecond's work.
  void gather() {
    constexpr std::size_t entriesAtOnce = 2000;
    if (!walk_ && !nextWalk()) {
      stopQuery();
      return;
    }
    const bool hasMore = walk_->goOn(entriesAtOnce, [this](std::string_view folder, std::string_view name) {
      const Candidate candidate(folder, name);
      if (predicate_->evaluate(candidate)) results_.push_back({candidate.path(), folder.size()});
    });
    if (!hasMore) walk_.reset();
  }

  /// Begins with the next folder that can be read; false when there is none.
  bool nextWalk() {
    while (!scopes_.empty()) {
      const std::string scope = std::move(scopes_.back());
      scopes_.pop_back();
      const auto place = volume_.find(scope, Volume::LastLink::follow, Volume::Purpose::look);
      if (!place) continue;
      FileDescriptor folder(
          ::openat(place->folder.get(), place->name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
      if (!folder) continue;
      walk_.emplace(std::move(folder), joinPath({scope}));
      return true;
    }
    return false;
  }

  const Volume& volume_;
  DescriptorRunLoop& runLoop_;
  std::optional<Predicate> nextPredicate_;
  std::vector<std::string> nextScopes_;
  std::optional<Predicate> predicate_;
  std::vector<std::string> scopes_;  ///< still to be walked, the next one last
  std::optional<FolderWalk> walk_;
  std::vector<Result> results_;
  FileDescriptor turn_;
  DescriptorRunLoop::Watch watch_;
};

}  // namespace

std::unique_ptr<MetadataQuery> FolderQueries::makeQuery() { return std::make_unique<FolderQuery>(volume_, runLoop_); }
