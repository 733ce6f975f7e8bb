// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform/window/WindowModule.h"

/// What the toolkits with windows have in common. A toolkit adds what depends on its system.
class WindowToolkit : public Toolkit {
 public:
  AlertAnswer runAlertPanel(const Alert& alert) override;
  /// From NAME.icns, NAME.tiff or NAME.png of the bundle's resources, in the user's language where there is one.
  Picture imageNamed(const std::string& name) override;
  Picture imageWithContentsOfFile(const std::string& path) override { return readPicture(path, {}); }

 protected:
  /// The services must outlive the toolkit.
  explicit WindowToolkit(const WindowServices& services) : services_(services) {}

  [[nodiscard]] const WindowServices& services() const { return services_; }
  [[nodiscard]] const Bundle& bundle() const { return services_.bundles.mainBundle(); }

  /// Reads NAME.ui, which Qt's Designer writes, from the bundle's resources. docs/making-an-installer.md says more.
  [[nodiscard]] Result<std::string> readDescription(const std::string& name) const;
  /// The error of a description that cannot be used.
  [[nodiscard]] static Error unusable(const std::string& name, std::string_view reason);

  /// Performs what every application does: "quit:", "hide:" and "about:". Returns false for any other action.
  bool performOwnAction(const std::string& action);

 private:
  void showAbout();

  /// Shows an alert whose buttons all have captions, and waits for the answer.
  virtual AlertAnswer askAlert(const Alert& alert, const Picture& picture) = 0;
  /// Returns null when the file cannot be read or is not a picture. A screen reader says `meaning`.
  virtual Picture readPicture(const std::string& path, const std::string& meaning) = 0;
  virtual void quit() = 0;
  virtual void hide() = 0;

  WindowServices services_;
  std::map<std::string, Picture> pictures_;  ///< by the names that were asked for
};
