// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "install/InstallPlan.h"
#include "install/InstallProgress.h"
#include "install/InstallReport.h"
#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// Follows an install. Its operations may run the run loop.
class InstallListener {
 public:
  InstallListener() = default;
  InstallListener(const InstallListener&) = delete;
  InstallListener& operator=(const InstallListener&) = delete;
  virtual ~InstallListener() = default;

  /// The item's turn has come: it is going to be installed, or passed over because what is there is newer.
  virtual void itemBegins(const PlannedItem& item) = 0;
  /// The item cannot be installed; what was there is still there.
  virtual void itemFailed(const std::string& path, const Error& reason) = 0;
  /// Another part of the install is done. Called every few hundredths of a second at least.
  virtual void progressed(const InstallProgress& progress) = 0;
  /// Whether a failure has come up that keeps the next group from being installed.
  [[nodiscard]] virtual bool hasFailed() const = 0;
  /// Whether the person wants the install to stop, as long as nothing has changed.
  [[nodiscard]] virtual bool wantsToStop() const = 0;
};

/// Carries out a plan: stages all items, flushes, and gives them their places in one go; or one item after the other,
/// where there is no room for all of them. The volume must be locked.
class ItemInstaller {
 public:
  ItemInstaller(Platform& platform, PrivilegedTools& tools, InstallListener& listener, InstallReport& report)
      : platform_(platform), tools_(tools), listener_(listener), report_(report) {}

  /// Installs. What became of the items is in the report. Nothing is changed when rights are refused, when there is no
  /// room for the largest item, or when the program is asked to end before the first item gets its place.
  void install(const InstallPlan& plan);

  /// Makes durable what was installed, and removes the old versions.
  void finish();

 private:
  class Observer;
  /// An item of the plan, where it stands there, and its number in the transaction.
  struct Member {
    const PlannedItem* item;
    const PlannedBatch* batch;
    std::size_t host;  ///< see InstallReport::hostsOfPaths
    std::size_t number = 0;
  };
  using Members = std::vector<Member>;

  [[nodiscard]] static Members membersOf(const PlannedGroup& group);
  /// Notes a shortage when there is not even room for the largest item.
  [[nodiscard]] bool hasRoomForLargest(const InstallPlan& plan);
  /// Stages group after group up to the first failure. False when nothing is to be committed.
  [[nodiscard]] bool stageAll(const InstallPlan& plan);
  void installOneAtATime(const InstallPlan& plan);
  /// Stages the items. False when staging has to stop altogether: rights were refused, the room is used up, or the
  /// program is asked to end.
  [[nodiscard]] bool stage(Members members);
  [[nodiscard]] Status begin();
  /// Gives the staged items their places, group by group up to the first failure.
  void commit();
  [[nodiscard]] std::vector<ReportedProblem> commitGroup(std::span<const Member> group);
  /// Looks for the item for some milliseconds: a file system may be slow to show it.
  [[nodiscard]] bool appearsInTime(const PlannedItem& item);
  /// Forgets staged items whose places are to stay as they are by now.
  void dropUnwanted();
  void discard();
  /// Tells of a failure, unless it was told of before.
  void fail(const std::string& path, const Error& reason);
  /// The same failure keeps all of these from being installed: tells of the first, and adds the others to the report.
  void failAll(std::span<const Member> members, const Error& reason);
  /// Whether the program is asked to end, which cuts the install short.
  [[nodiscard]] bool isStopWanted() const { return platform_.interruptions.requested() || listener_.wantsToStop(); }
  /// The same; the report then tells of it.
  [[nodiscard]] bool isInterrupted();
  [[nodiscard]] Status flush();

  Platform& platform_;
  PrivilegedTools& tools_;
  InstallListener& listener_;
  InstallReport& report_;
  std::unique_ptr<Transaction> transaction_;
  Members staged_;
  InstallProgress progress_;
  std::size_t numbered_ = 0;  ///< items that the transaction has seen
  bool isOutOfRoom_ = false;  ///< all items together do not fit
  bool isOneAtATime_ = false;
};
