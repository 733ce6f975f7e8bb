#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Authorization.h"
#include "platform/rights/HelperConnection.h"
#include "platform/rights/HelperStart.h"

/// Rights of an ordinary user: one helper runs every tool. The first launch starts it and asks for the password; nobody
/// is asked twice, whatever the answer was and whatever becomes of the helper. Destroying this ends the helper.
class HelperAuthorization : public Authorization {
 public:
  explicit HelperAuthorization(HelperSetup setup) : setup_(std::move(setup)) {}

  /// Asks nobody. False without the flag that lets the rights be extended, and where there is no way to ask.
  bool obtain(std::uint32_t flags) override;
  LaunchStatus executeWithPrivileges(const std::string& toolPath, const std::vector<std::string>& arguments,
                                     std::unique_ptr<CommunicationsPipe>& pipe) override;
  /// The helper's tools count as children of the installer, the helper itself does not. Of several that have been
  /// launched, the last is waited for: whoever waits is about to look at what it did.
  void waitForAnyChild() override;

 private:
  HelperSetup setup_;
  std::optional<HelperConnection> helper_;
  LaunchStatus failure_ = launchSucceeded;  ///< why there is no helper, once it was asked for
};
