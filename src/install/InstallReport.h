// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Result.h"

/// An item, and why it is not as it should be.
struct ReportedProblem {
  std::string path;
  Error reason;
};

/// Room that an install would have needed and did not find.
struct SpaceShortage {
  std::uint64_t required = 0;  ///< bytes
  std::uint64_t available = 0;
};

/// How the program was asked to end during an install.
struct Interruption {
  enum class Moment {
    beforeChanges,  ///< nothing was changed
    betweenItems,   ///< items were installed one at a time, and some are in place
    tooLate,        ///< the install was completed
  };
  int signal = 0;  ///< 0: the person stopped the install
  Moment moment = Moment::beforeChanges;
};

/// What an install did, as far as it was seen on the disk.
struct InstallReport {
  std::vector<std::string> installedPaths = {};  ///< in order; one for each place in the plan
  std::vector<std::size_t> hostsOfPaths = {};    ///< for each of them: 0 for none, else the host's position plus 1
  std::vector<ReportedProblem> failures = {};    ///< items that are not installed, in order
  std::vector<ReportedProblem> attributes = {};  ///< installed items with an owner, mode or time that could not be set
  std::vector<ReportedProblem> leftBehind = {};  ///< hidden items that could not be removed
  std::vector<ReportedProblem> unreadable = {};  ///< what could not be looked at, so that something may be missing
  std::optional<SpaceShortage> shortage = std::nullopt;
  std::optional<Interruption> interruption = std::nullopt;
  bool isLogWritten = false;

  /// Whether the install ended before all items were attempted.
  [[nodiscard]] bool wasCutShort() const {
    return interruption && interruption->moment != Interruption::Moment::tooLate;
  }
  /// Paths that were installed, each counted once.
  [[nodiscard]] std::size_t placeCount() const;
  /// `usual` when an item was installed below it for the host at this position, else the folder of the host's first
  /// item; empty when there is none.
  [[nodiscard]] std::string folderOfHost(std::size_t host, const std::string& usual) const;
};
