// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/LaunchServices.h"
#include "platform/files/Volume.h"

/// The database of the running system. Applications on another volume are not entered: it is that volume's own system
/// which will run them.
class MacLaunchServices : public LaunchServices {
 public:
  explicit MacLaunchServices(const Volume& volume) : volume_(volume) {}

  std::int32_t registerApplication(const std::string& path, bool update) override;

 private:
  const Volume& volume_;
};
