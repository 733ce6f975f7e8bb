// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Toolkit.h"

/// Talks to the person through standard error, and takes the default for an answer. There are no interfaces and no
/// pictures.
class ConsoleToolkit : public Toolkit {
 public:
  AlertAnswer runAlertPanel(const Alert& alert) override;
  std::optional<std::string> runOpenPanel(const OpenPanel& /*panel*/) override { return std::nullopt; }
  Result<std::unique_ptr<Interface>> loadInterface(const std::string& name, InterfaceOwner& owner) override;
  Picture imageNamed(const std::string& /*name*/) override { return nullptr; }
  Picture imageWithContentsOfFile(const std::string& /*path*/) override { return nullptr; }
  void setApplicationDelegate(ApplicationDelegate* /*delegate*/) override {}
  void run() override {}
};
