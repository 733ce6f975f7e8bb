// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "hosts/HostModel.h"
#include "install/InstallPlan.h"
#include "tool/ToolTexts.h"

/// A plug-in of the payload, as far as it matters to who loads it.
struct OfferedPlugIn {
  std::string path;  ///< in the installer's bundle
  std::string version = {};
  std::vector<std::string> architectures = {};  ///< none: unknown
  std::string minimumHostVersion = {};          ///< "MinimumHostVersion" of its info dictionary
};

/// Why a host does not load a plug-in, or not the one that is installed.
struct LoadingProblem {
  enum class Kind {
    architecture,  ///< `detail`: one in which the host runs and for which there is no plug-in
    hostVersion,   ///< `detail`: the version that the plug-in asks for
    olderCopy,     ///< `path` lies in the host's search path; `detail`: its version
  };
  Kind kind;
  std::string plugIn;  ///< its name
  std::string detail = {};
  std::string path = {};
};

struct HostFacts {
  std::string name;
  std::string folder = {};       ///< where plug-ins go; empty for a host that takes none
  std::string application = {};  ///< empty: not found
  std::string version = {};
  std::vector<std::string> architectures = {};  ///< none: unknown
  std::vector<LoadingProblem> problems = {};
  /// Nothing when it cannot be told: the host takes no plug-ins, or its architectures or those of the plug-ins are
  /// unknown.
  std::optional<bool> canLoad = std::nullopt;
};

/// Finds out what the hosts of the volume are, and whether they can load what the payload brings for them.
class HostSurvey {
 public:
  explicit HostSurvey(Platform& platform);

  [[nodiscard]] std::vector<HostFacts> facts() const;

 private:
  [[nodiscard]] OfferedPlugIn offer(const std::string& path) const;
  [[nodiscard]] HostFacts factsOf(const HostModel& host) const;
  [[nodiscard]] std::string applicationOf(const HostModel& host) const;
  [[nodiscard]] std::vector<std::string> architecturesOf(const std::string& bundlePath) const;
  void judge(HostFacts& facts, const OfferedPlugIn& plugIn) const;
  void findOlderCopies(HostFacts& facts, const HostModel& host) const;

  Platform& platform_;
  HostList hosts_;
  std::vector<OfferedPlugIn> plugIns_;
};

void writeHosts(const std::vector<HostFacts>& hosts, const ToolTexts& texts, std::ostream& output);
