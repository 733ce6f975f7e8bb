// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.h"
#include "install/PrivilegedTools.h"
#include "tool/RemovalPlan.h"

/// What has become of a plan.
struct RemovalOutcome {
  std::vector<std::string> removed = {};
  std::vector<KeptPath> kept = {};              ///< those of the plan, and what could not be removed
  bool isDenied = false;                        ///< rights were refused, and nothing was changed
  bool isBegun = false;                         ///< changes could be begun
  std::optional<Error> problem = std::nullopt;  ///< why nothing was changed
  bool isInterrupted = false;                   ///< the program was asked to end in time: nothing was changed
  bool isLogLeft = false;                       ///< the log still lists what is gone
};

/// Removes in one transaction: everything goes at once, after all of it was found to be removable. The volume must be
/// locked and rights obtained.
class Remover {
 public:
  Remover(Platform& platform, PrivilegedTools& tools) : platform_(platform), tools_(tools) {}

  /// Puts back what a removal that was cut short had taken. The plan is made after that.
  Status begin();

  /// Once, after begin() succeeded.
  RemovalOutcome remove(const RemovalPlan& plan);

 private:
  class Observer;
  struct Member {
    std::string path;
    std::size_t number = 0;
  };

  [[nodiscard]] bool stage(const std::vector<std::string>& paths);
  void commit();
  void bringLogUpToDate(const RemovalPlan& plan);

  Platform& platform_;
  PrivilegedTools& tools_;
  std::unique_ptr<Transaction> transaction_;
  std::vector<Member> staged_;
  std::size_t numbered_ = 0;
  RemovalOutcome outcome_;
};
