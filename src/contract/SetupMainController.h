// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>
#include <vector>

#include "platform/InterfaceOwner.h"

class HostModel;
class SetupStepController;

/// What a page may ask of the wizard that shows it.
class SetupMainController : public InterfaceOwner {
 public:
  /// Every host that was found, and those of them that the user chose.
  [[nodiscard]] virtual std::vector<std::shared_ptr<HostModel>> foundHosts() const = 0;
  [[nodiscard]] virtual std::vector<std::shared_ptr<HostModel>> selectedHosts() const = 0;

  [[nodiscard]] virtual bool shouldConfigureLumatraExternalEditors() const = 0;
  /// Whether the last install put everything in place.
  [[nodiscard]] virtual bool successfulInstall() const = 0;

  // A folder of the user's own as a host: unlocked, being installed into, worth offering where nothing was found.
  [[nodiscard]] virtual bool isCustomInstallAllowed() const = 0;
  virtual void setIsCustomInstallAllowed(bool allowed) = 0;
  [[nodiscard]] virtual bool isCustomInstallChosen() const = 0;
  virtual void setIsCustomInstallChosen(bool chosen) = 0;
  [[nodiscard]] virtual bool customInstallRecommended() const = 0;
  /// Adds the host to the list, where it becomes the only selected row.
  virtual void customHostAdded(const std::shared_ptr<HostModel>& host) = 0;
  virtual void customHostRemoved(const std::shared_ptr<HostModel>& host) = 0;

  /// Moves on to the next page, as the forward button does.
  virtual void nextView(SetupStepController* sender) = 0;
};
