// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "foundation/Exception.h"
#include "platform/Platform.h"
#include "platform/files/PosixFileSystem.h"

// Stand-ins that note what they are asked, do it for real where they can, and fail where a test wants them to.

class RecordingLog : public Log {
 public:
  std::vector<std::string> lines;

  void write(std::string_view message) override { lines.emplace_back(message); }
  /// How many lines hold the text.
  [[nodiscard]] std::ptrdiff_t count(std::string_view text) const {
    return std::ranges::count_if(lines, [&](const std::string& line) { return line.find(text) != std::string::npos; });
  }
};

class RecordingClock : public Clock {
 public:
  std::vector<std::chrono::microseconds> sleeps;
  std::function<void()> whileSleeping = [] {};

  void sleepFor(std::chrono::microseconds time) override {
    sleeps.push_back(time);
    whileSleeping();
  }
};

/// A part of a window that is not there: notes how it is set up.
class RecordingView : public virtual TextField, public virtual ImageView, public virtual ListView {
 public:
  bool isHidden = true;
  Rect place;
  std::string text;
  std::string description;
  bool isBold = false;
  TextColour colour = TextColour::black;
  Picture image;
  std::optional<std::size_t> selectedRow;
  std::vector<std::shared_ptr<View>> subviews;

  void setHidden(bool hidden) override { isHidden = hidden; }
  [[nodiscard]] Rect frame() const override { return place; }
  void setFrame(const Rect& frame) override { place = frame; }
  void addSubview(const std::shared_ptr<View>& view) override {
    subviews.push_back(view);
    if (auto* const recording = dynamic_cast<RecordingView*>(view.get())) recording->superview_ = self_;
  }
  [[nodiscard]] std::shared_ptr<View> superview() const override { return superview_.lock(); }
  void setStringValue(const std::string& value) override { text = value; }
  void setFont(bool bold, TextColour textColour) override {
    isBold = bold;
    colour = textColour;
  }
  void setDescription(const std::string& value) override { description = value; }
  void setImage(const Picture& picture) override { image = picture; }
  void selectRow(std::size_t row) override { selectedRow = row; }

  static std::shared_ptr<RecordingView> make() {
    auto view = std::make_shared<RecordingView>();
    view->self_ = view;
    return view;
  }

 private:
  std::weak_ptr<View> self_;
  std::weak_ptr<View> superview_;
};

class RecordingWindow : public Window {
 public:
  int closed = 0;
  void centre() override {}
  void close() override { ++closed; }
};

/// Has every view that it is asked for, but the missing ones.
class RecordingInterface : public Interface {
 public:
  struct Parts {
    std::string name;
    std::map<std::string, Rect> frames;
    std::set<std::string> missing = {};
    std::map<std::string, std::shared_ptr<RecordingView>> views = {};
    std::shared_ptr<RecordingWindow> window = std::make_shared<RecordingWindow>();
    /// The view of the name, made when it is first asked for.
    std::shared_ptr<RecordingView> view(const std::string& viewName) {
      if (missing.contains(viewName)) return nullptr;
      auto& found = views[viewName];
      if (found == nullptr) {
        found = RecordingView::make();
        if (frames.contains(viewName)) found->place = frames.at(viewName);
      }
      return found;
    }
  };

  explicit RecordingInterface(std::shared_ptr<Parts> parts) : parts_(std::move(parts)) {}

  [[nodiscard]] std::shared_ptr<View> view(const std::string& name) const override { return parts_->view(name); }
  [[nodiscard]] std::shared_ptr<TextField> textField(const std::string& name) const override {
    return parts_->view(name);
  }
  [[nodiscard]] std::shared_ptr<ImageView> imageView(const std::string& name) const override {
    return parts_->view(name);
  }
  [[nodiscard]] std::shared_ptr<ListView> listView(const std::string& name) const override {
    return parts_->view(name);
  }
  [[nodiscard]] std::shared_ptr<Window> window(const std::string& /*name*/) const override { return parts_->window; }

 private:
  std::shared_ptr<Parts> parts_;
};

/// A picture that is known by where it comes from.
struct RecordingImage : Image {
  explicit RecordingImage(std::string imageName) : name(std::move(imageName)) {}
  std::string name;
};

class RecordingToolkit : public Toolkit {
 public:
  std::vector<Alert> alerts;
  AlertAnswer answer = AlertAnswer::defaultButton;
  std::vector<OpenPanel> panels;
  std::optional<std::string> chosenFolder = std::nullopt;
  /// What was made of the interface descriptions, in order.
  std::vector<std::shared_ptr<RecordingInterface::Parts>> interfaces;
  std::map<std::string, Rect> frames;  ///< of views that are going to be made
  std::set<std::string> missingViews;
  std::set<std::string> missingInterfaces;

  std::optional<std::string> runOpenPanel(const OpenPanel& panel) override {
    panels.push_back(panel);
    return chosenFolder;
  }
  Result<std::unique_ptr<Interface>> loadInterface(const std::string& name, InterfaceOwner& /*owner*/) override {
    if (missingInterfaces.contains(name)) return Error::posix(std::errc::no_such_file_or_directory, name);
    auto parts = std::make_shared<RecordingInterface::Parts>(
        RecordingInterface::Parts{.name = name, .frames = frames, .missing = missingViews});
    interfaces.push_back(parts);
    return std::unique_ptr<Interface>(std::make_unique<RecordingInterface>(parts));
  }
  Picture imageNamed(const std::string& name) override { return std::make_shared<RecordingImage>(name); }
  Picture imageWithContentsOfFile(const std::string& path) override { return std::make_shared<RecordingImage>(path); }
  void setApplicationDelegate(ApplicationDelegate* /*delegate*/) override {}
  void run() override {}

  AlertAnswer runAlertPanel(const Alert& alert) override {
    alerts.push_back(alert);
    return answer;
  }
};

/// Runs what a test says is running.
class RecordingWorkspace : public Workspace {
 public:
  std::vector<std::string> running;
  /// Each launch: path and arguments, joined by "|", or "terminate".
  std::vector<std::string> launches;
  bool canLaunch = true;

  [[nodiscard]] std::vector<std::string> launchedApplications() const override { return running; }
  [[nodiscard]] Observation observeTerminations(TerminationHandler handler) override {
    auto held = std::make_shared<TerminationHandler>(std::move(handler));
    observer_ = held;
    return held;
  }
  [[nodiscard]] Observation observeLaunches(LaunchHandler handler) override {
    auto held = std::make_shared<LaunchHandler>(std::move(handler));
    launchObserver_ = held;
    return held;
  }
  [[nodiscard]] bool isObserved() const { return !observer_.expired() && !launchObserver_.expired(); }
  /// The application starts; who observes is told.
  void begin(const std::string& name) {
    running.push_back(name);
    if (const auto observer = launchObserver_.lock()) (*observer)(name);
  }
  /// The application ends; who observes is told.
  void end(const std::string& name) {
    std::erase(running, name);
    if (const auto observer = observer_.lock()) (*observer)(name);
  }
  std::unique_ptr<RunningApplication> launchHidden(const std::string& path,
                                                   const std::vector<std::string>& arguments) override {
    struct Launched : RunningApplication {
      explicit Launched(std::vector<std::string>& noted) : launches(noted) {}
      void terminate() override { launches.emplace_back("terminate"); }
      std::vector<std::string>& launches;
    };
    std::string launch = path;
    for (const std::string& argument : arguments) launch += "|" + argument;
    launches.push_back(launch);
    return canLaunch ? std::make_unique<Launched>(launches) : nullptr;
  }
  std::vector<std::string> opened;
  void openUrl(const std::string& /*url*/) override {}
  void openItem(const std::string& path) override { opened.push_back(path); }
  [[nodiscard]] std::string iconFile(const std::string& path) const override { return path + "/icon"; }

 private:
  std::weak_ptr<TerminationHandler> observer_;
  std::weak_ptr<LaunchHandler> launchObserver_;
};

/// A real transaction that notes its steps, and fails where a test wants it to.
class RecordingTransaction : public Transaction {
 public:
  struct Script {
    std::vector<std::string> steps = {};                  ///< "stage TARGET", "flush", "commit N N…", "finish"
    std::map<std::string, std::errc> unstageable = {};    ///< by target
    std::map<std::string, std::errc> uncommittable = {};  ///< by target
    std::map<std::string, std::errc> without = {};        ///< by target: an attribute that cannot be set
    std::function<void(const std::string& step)> before = [](const std::string&) {};
    std::optional<std::errc> flushError = std::nullopt;
    std::vector<std::string> leftBehind = {};
    std::size_t roomForItems = SIZE_MAX;  ///< how many fit before the disk is full
  };

  RecordingTransaction(std::unique_ptr<Transaction> real, Script& script) : real_(std::move(real)), script_(script) {}

  Status stage(std::span<const TransactionItem> items, TransactionObserver& observer) override {
    struct Filter : TransactionObserver {
      Filter(RecordingTransaction& o, TransactionObserver& t) : owner(o), told(t) {}
      void willStage(std::size_t item) override {
        owner.note("stage " + owner.targets_[item]);
        told.willStage(item);
      }
      bool didStage(std::size_t item, const ItemResult& result) override {
        ItemResult changed = result;
        const std::string& target = owner.targets_[item];
        if (const auto fault = owner.script_.unstageable.find(target); fault != owner.script_.unstageable.end()) {
          changed.status = Error::posix(fault->second, target);
        }
        if (owner.staged_++ >= owner.script_.roomForItems) {
          changed.status = Error::posix(std::errc::no_space_on_device, target);
        }
        if (const auto fault = owner.script_.without.find(target); fault != owner.script_.without.end()) {
          changed.attributes = Error::posix(fault->second, target);
        }
        return told.didStage(item, changed);
      }
      bool whileBusy(const CopiedAmount& copied) override { return told.whileBusy(copied); }
      RecordingTransaction& owner;
      TransactionObserver& told;
    };
    for (const TransactionItem& item : items) targets_.emplace_back(item.target);
    Filter filter(*this, observer);
    return real_->stage(items, filter);
  }
  Status flush(TransactionObserver& observer) override {
    note("flush");
    if (script_.flushError) return Error::posix(*script_.flushError, "/");
    return real_->flush(observer);
  }
  std::vector<Status> commit(std::span<const std::size_t> items) override {
    std::string step = "commit";
    for (const std::size_t item : items) step += " " + std::to_string(item);
    note(step);
    std::vector<Status> results = real_->commit(items);
    for (std::size_t i = 0; i < items.size(); ++i) {
      const std::string& target = targets_[items[i]];
      const auto fault = script_.uncommittable.find(target);
      if (fault != script_.uncommittable.end()) results[i] = Error::posix(fault->second, target);
    }
    return results;
  }
  std::vector<Error> finish(TransactionObserver& observer) override {
    note("finish");
    staged_ = 0;
    std::vector<Error> left = real_->finish(observer);
    for (const std::string& path : script_.leftBehind) left.push_back(Error::posix(std::errc::io_error, path));
    return left;
  }

 private:
  void note(const std::string& step) {
    script_.before(step);
    script_.steps.push_back(step);
  }

  std::unique_ptr<Transaction> real_;
  Script& script_;
  std::vector<std::string> targets_;
  std::size_t staged_ = 0;
};

/// Rights that are there unless a test takes them away. Changes are made for real.
class RecordingAuthorizations : public Authorizations {
 public:
  explicit RecordingAuthorizations(Authorizations& real) : real_(real) {}

  std::vector<std::string> launches;  ///< tool and arguments, joined by "|"
  bool canBeObtained = true;
  std::map<std::string, LaunchStatus> statusOfTool = {};  ///< tools that are not run
  LaunchStatus statusOfTransactions = launchSucceeded;
  RecordingTransaction::Script transaction;
  std::function<void()> beforeLaunch = [] {};
  int held = 0;  ///< authorizations that exist

  [[nodiscard]] std::unique_ptr<Authorization> createAuthorization() override {
    return std::make_unique<Recording>(*this);
  }
  [[nodiscard]] std::vector<std::string> launchesOf(const std::string& tool) const {
    std::vector<std::string> found = launches;
    std::erase_if(found, [&](const std::string& launch) { return !launch.starts_with(tool + "|"); });
    return found;
  }

 private:
  struct Recording : Authorization {
    explicit Recording(RecordingAuthorizations& o) : owner(o), real(o.real_.createAuthorization()) { ++owner.held; }
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;
    ~Recording() override { --owner.held; }

    bool obtain(std::uint32_t flags) override { return owner.canBeObtained && flags == extendRights; }
    LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                       std::unique_ptr<CommunicationsPipe>& pipe) override {
      owner.beforeLaunch();
      std::string& launch = owner.launches.emplace_back(toolPath);
      for (const std::string& argument : arguments) launch += "|" + argument;
      const auto status = owner.statusOfTool.find(toolPath);
      if (status != owner.statusOfTool.end()) return status->second;
      return real->executeWithPrivileges(toolPath, arguments, pipe);
    }
    Result<std::unique_ptr<Transaction>> beginTransaction() override {
      owner.beforeLaunch();
      if (owner.statusOfTransactions != launchSucceeded) {
        return Error{.domain = std::string(authorizationErrorDomain), .code = owner.statusOfTransactions};
      }
      auto begun = real->beginTransaction();
      if (!begun) return begun.error();
      return std::unique_ptr<Transaction>(std::make_unique<RecordingTransaction>(std::move(*begun), owner.transaction));
    }
    void waitForAnyChild() override { real->waitForAnyChild(); }

    RecordingAuthorizations& owner;
    std::unique_ptr<Authorization> real;
  };

  Authorizations& real_;
};

/// A program that is asked to end when a test wants it to be.
class RecordingInterruptions : public Interruptions {
 public:
  std::optional<int> signal;

  [[nodiscard]] std::optional<int> requested() const override { return signal; }
  [[nodiscard]] Observation observe(std::function<void()> handler) override {
    observer = std::move(handler);
    return nullptr;
  }
  std::function<void()> observer;
};

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

  Result<std::vector<std::string>> listing(const std::string& path) const override {
    const auto known = listings.find(path);
    return known != listings.end() ? known->second : PosixFileSystem::listing(path);
  }
  Result<std::unique_ptr<WritableFile>> openForWriting(const std::string& path) override {
    class BrokenFile : public WritableFile {
      void writeData(std::string_view /*data*/) override { throw Exception("no room"); }
    };
    if (fault(Call::writeData, path)) return PosixFileSystem::openForWriting(path);
    return std::unique_ptr<WritableFile>(std::make_unique<BrokenFile>());
  }
  Status createDirectory(const std::string& path, std::uint32_t permissions) override {
    const Status status = fault(Call::createDirectory, path);
    return status ? PosixFileSystem::createDirectory(path, permissions) : status;
  }
  Status createFile(const std::string& path, std::string_view content, std::uint32_t permissions) override {
    const Status status = fault(Call::createFile, path);
    return status ? PosixFileSystem::createFile(path, content, permissions) : status;
  }
  [[nodiscard]] bool mayShareBlocks(const std::string& source, const std::string& target) const override {
    return !available && PosixFileSystem::mayShareBlocks(source, target);
  }
  Result<DiskSpace> spaceFor(const std::string& path) const override {
    auto space = PosixFileSystem::spaceFor(path);
    if (space && available) space->available = *available;
    return space;
  }
  Result<std::unique_ptr<VolumeLock>> tryLock() override {
    if (const Status status = fault(Call::tryLock, "/"); !status) return status.error();
    return PosixFileSystem::tryLock();
  }

 private:
  Status fault(Call call, const std::string& path) {
    auto& [error, times] = faults_[call];
    if (times == 0) return {};
    --times;
    return Error::posix(error, path);
  }

  std::map<Call, std::pair<std::errc, int>> faults_;
};
