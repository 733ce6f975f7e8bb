// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstdint>
#include <memory>

#include "platform/Platform.h"
#include "steps/PageController.h"

/// A page for installs that Aperture has a part in. Leaving it, either way, runs the installed stand-alone application
/// for a moment, for Aperture to take notice of it. The wizard has the page where the maker wants it and Aperture is
/// there.
class ApertureRunController : public PageController {
 public:
  explicit ApertureRunController(Platform& platform) : platform_(platform) {}

  /// The model is an ApertureRunModel.
  void didEnterWithModel(std::shared_ptr<SetupStepModel> model, std::shared_ptr<View> withView,
                         SetupMainController* withMainController, std::int32_t direction) override;

  /// Blocks for two seconds when the application starts. The bundle must hold a stand-alone application:
  /// std::out_of_range is raised when it does not.
  void didProceed(std::int32_t delta) override;

 private:
  void runStandAloneApplication();

  Platform& platform_;
};
