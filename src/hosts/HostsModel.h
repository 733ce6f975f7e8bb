// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "contract/SetupStepModel.h"
#include "hosts/HostModel.h"
#include "platform/Platform.h"

/// The host applications of the machine, found once when this is made, and the texts of the page on which they are
/// chosen.
class HostsModel : public SetupStepModel {
 public:
  /// Discovery. An unreadable Paths file costs one and a half seconds, see PhotoshopHostModel.
  explicit HostsModel(Platform& platform);

  /// The installed hosts, ascending by displaySortOrder; hosts that sort alike stay in the order in which they came.
  [[nodiscard]] HostList foundHosts() const;

  /// Always empty on purpose: no host is offered as a place to take the scripts and panels folders from.
  [[nodiscard]] HostList scriptsOrPanelsHosts() const;

  void addHostAtRuntime(std::shared_ptr<HostModel> host);
  /// Removes every occurrence.
  void removeHostAtRuntime(const std::shared_ptr<HostModel>& host);

  [[nodiscard]] std::optional<std::string> mainLabelText() const override { return mainLabelText_; }
  [[nodiscard]] std::string stepIndicatorLabelText() const override { return stepIndicatorLabelText_; }
  [[nodiscard]] RichText informativeText() const override { return RichText(informativeText_); }
  [[nodiscard]] const std::string& customInstallBrowseButtonText() const { return customInstallBrowseButtonText_; }
  [[nodiscard]] const std::string& customInstallPathLabelText() const { return customInstallPathLabelText_; }
  [[nodiscard]] const std::string& customInstallButtonText() const { return customInstallButtonText_; }
  [[nodiscard]] const std::string& customInstallCheckBoxText() const { return customInstallCheckBoxText_; }
  [[nodiscard]] const std::string& customInstallHostsExplanationText() const {
    return customInstallHostsExplanationText_;
  }

 private:
  void readRememberedCustomFolder();
  void loadTexts();
  void findHosts();
  void findPhotoshops();

  Platform& platform_;
  std::string mainLabelText_;
  std::string stepIndicatorLabelText_;
  HostList hostsArray_;  ///< every host discovered or added, installed or not
  std::string informativeText_;
  std::string customInstallBrowseButtonText_;
  std::string customInstallPathLabelText_;
  std::string customInstallButtonText_;
  std::string customInstallCheckBoxText_;
  std::string customInstallHostsExplanationText_;
};

/// The hosts of the list that fulfil the predicate, which is written over their keys; none when a key is unknown.
[[nodiscard]] HostList filteredHosts(const HostList& hosts, std::string_view predicate);
