// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/Authorization.h"
#include "platform/Log.h"
#include "platform/files/Volume.h"
#include "platform/rights/HelperConnection.h"
#include "platform/rights/HelperStart.h"

/// Rights of an ordinary user: one helper makes every privileged change. The first change starts it and asks for the
/// password; nobody is asked twice, whatever the answer was and whatever becomes of the helper. Destroying this ends
/// the helper.
class HelperAuthorization : public Authorization {
 public:
  HelperAuthorization(const Volume& volume, HelperSetup setup, Log& log)
      : volume_(volume), setup_(std::move(setup)), log_(log) {}

  /// Asks nobody. False without the flag that lets the rights be extended, and where there is no way to ask.
  bool obtain(std::uint32_t flags) override;
  LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                     std::unique_ptr<CommunicationsPipe>& pipe) override;
  Result<std::unique_ptr<Transaction>> beginTransaction() override;
  /// Does nothing: a change is complete when its launch returns.
  void waitForAnyChild() override {}

 private:
  [[nodiscard]] LaunchStatus start();

  const Volume& volume_;
  HelperSetup setup_;
  Log& log_;
  std::shared_ptr<HelperConnection> helper_;
  LaunchStatus failure_ = launchSucceeded;  ///< why there is no helper, once it was asked for
};
