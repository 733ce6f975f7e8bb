#pragma once

#include <memory>
#include <vector>

#include "foundation/KeyValueObserving.h"

class HostModel;
class SetupStepController;

/// What a page may ask of the wizard that shows it.
class SetupMainController : public KeyValueObserving {
 public:
  /// Every host that was found, and those of them that the user chose.
  [[nodiscard]] virtual std::vector<std::shared_ptr<HostModel>> foundHosts() const = 0;
  [[nodiscard]] virtual std::vector<std::shared_ptr<HostModel>> selectedHosts() const = 0;

  [[nodiscard]] virtual bool shouldConfigureLumatraExternalEditors() const = 0;

  /// Moves on to the next page, as the forward button does.
  virtual void nextView(SetupStepController* sender) = 0;
};
