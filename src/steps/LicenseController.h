// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>

#include "platform/Platform.h"
#include "steps/PageController.h"

/// The page of the licence agreement. The user has to agree once in a run to get past it.
class LicenseController : public PageController {
 public:
  explicit LicenseController(Platform& platform) : platform_(platform) {}

  /// Going forward asks for agreement, in a modal alert, as long as there is none.
  [[nodiscard]] bool canProceed(std::int32_t direction) override;

  /// Takes the answer to the same question from a sheet. The wizard asks in an alert of its own instead.
  void sheetDidEnd(AlertAnswer returnCode) { agreed_ = returnCode == AlertAnswer::defaultButton; }

 private:
  Platform& platform_;
  bool agreed_ = false;
};
