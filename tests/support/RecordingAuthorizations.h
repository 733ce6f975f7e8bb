// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "platform/Authorization.h"

/// How the transactions of a test go, and what they do.
struct TransactionScript {
  std::vector<std::string> steps = {};  ///< "stage TARGET", "flush", "commit N N…", "finish"
  /// Errors of the steps "stage TARGET", "commit TARGET", "flush" and "finish", and of "attributes TARGET" for an
  /// attribute that cannot be set.
  std::map<std::string, std::errc> faults = {};
  std::size_t roomForItems = SIZE_MAX;  ///< how many fit before the disk is full
  std::function<void(const std::string& step)> before = [](const std::string&) {};
};

/// Rights that are there unless a test takes them away. Changes are made for real.
class RecordingAuthorizations : public Authorizations {
 public:
  explicit RecordingAuthorizations(Authorizations& real) : real_(real) {}

  std::vector<std::string> launches;  ///< tool and arguments, joined by "|"
  bool canBeObtained = true;
  std::map<std::string, LaunchStatus> statusOfTool = {};  ///< tools that are not run
  LaunchStatus statusOfTransactions = launchSucceeded;
  TransactionScript transaction;
  std::function<void()> beforeLaunch = [] {};
  int held = 0;  ///< authorizations that exist

  [[nodiscard]] std::unique_ptr<Authorization> createAuthorization() override;

 private:
  class Recording;

  Authorizations& real_;
};
