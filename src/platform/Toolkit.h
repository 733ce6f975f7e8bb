#pragma once

#include <string>

/// A part of the window. The window owns how it looks.
class View {
 public:
  View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;
  virtual ~View() = default;

  virtual void setHidden(bool hidden) = 0;
};

struct Alert {
  std::string title;
  std::string message;
  std::string defaultButton;
  std::string alternateButton = {};  ///< empty: there is none
};

enum class AlertAnswer { defaultButton, alternateButton };

/// Talks to the person at the machine.
class Toolkit {
 public:
  Toolkit() = default;
  Toolkit(const Toolkit&) = delete;
  Toolkit& operator=(const Toolkit&) = delete;
  virtual ~Toolkit() = default;

  /// Shows a modal alert and waits for the answer. Without a window: one line on standard error, and the default
  /// answer.
  virtual AlertAnswer runAlertPanel(const Alert& alert) = 0;
};
