// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "foundation/Result.h"
#include "platform/InterfaceOwner.h"

struct Point {
  double x = 0;
  double y = 0;
};

struct Size {
  double width = 0;
  double height = 0;
};

struct Rect {
  Point origin;
  Size size;
};

/// A part of the window. Its appearance belongs to the window.
class View {
 public:
  View() = default;
  View(const View&) = delete;
  View& operator=(const View&) = delete;
  virtual ~View() = default;

  virtual void setHidden(bool hidden) = 0;

  /// Place and size in the view that it lies in, whose origin is the lower left corner; in points.
  [[nodiscard]] virtual Rect frame() const = 0;
  virtual void setFrame(const Rect& frame) = 0;

  /// Puts the view, which may lie elsewhere, on top of what is in this one.
  virtual void addSubview(const std::shared_ptr<View>& view) = 0;
  /// The view that this one lies in; null when there is none.
  [[nodiscard]] virtual std::shared_ptr<View> superview() const = 0;
};

/// Colours follow the user's appearance: black text is light on a dark window.
enum class TextColour { black, grey };

/// A line of text. Its font has the system's usual size.
class TextField : public virtual View {
 public:
  virtual void setStringValue(const std::string& text) = 0;
  virtual void setFont(bool isBold, TextColour colour) = 0;
  /// What a screen reader says of the text besides.
  virtual void setDescription(const std::string& description) = 0;
};

class ImageView : public virtual View {
 public:
  /// Shows the picture, or nothing when it is null.
  virtual void setImage(const Picture& image) = 0;
};

/// A list whose rows can be selected.
class ListView : public virtual View {
 public:
  /// Selects only this row, counted from 0. Selects none when it does not exist.
  virtual void selectRow(std::size_t row) = 0;
};

class Window {
 public:
  Window() = default;
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;
  virtual ~Window() = default;

  /// Centres the window on the screen and shows it.
  virtual void centre() = 0;
  /// Closes the window without asking the application's delegate.
  virtual void close() = 0;
};

/// Objects created from an interface description. Look-ups by the names in the description return null for an unknown
/// name or another type.
class Interface {
 public:
  Interface() = default;
  Interface(const Interface&) = delete;
  Interface& operator=(const Interface&) = delete;
  virtual ~Interface() = default;

  [[nodiscard]] virtual std::shared_ptr<View> view(const std::string& name) const = 0;
  [[nodiscard]] virtual std::shared_ptr<TextField> textField(const std::string& name) const {
    return std::dynamic_pointer_cast<TextField>(view(name));
  }
  [[nodiscard]] virtual std::shared_ptr<ImageView> imageView(const std::string& name) const {
    return std::dynamic_pointer_cast<ImageView>(view(name));
  }
  [[nodiscard]] virtual std::shared_ptr<ListView> listView(const std::string& name) const {
    return std::dynamic_pointer_cast<ListView>(view(name));
  }
  [[nodiscard]] virtual std::shared_ptr<Window> window(const std::string& name) const = 0;
};

struct Alert {
  enum class Style { warning, informational };

  std::string title;
  std::string message;
  std::string defaultButton;
  std::optional<std::string> alternateButton = {};  ///< nothing: the alert has one button
  Style style = Style::warning;
};

enum class AlertAnswer { defaultButton, alternateButton };

/// A panel for choosing a folder of the target volume.
struct OpenPanel {
  std::string title;
  std::string message;
  std::string prompt;  ///< caption of the button that confirms
  std::string startFolder;
  std::function<bool(const std::string& path)> shouldShowFilename;
};

/// Receives events of the application.
class ApplicationDelegate {
 public:
  ApplicationDelegate() = default;
  ApplicationDelegate(const ApplicationDelegate&) = delete;
  ApplicationDelegate& operator=(const ApplicationDelegate&) = delete;
  virtual ~ApplicationDelegate() = default;

  /// Called before the user closes the window. Return false to keep it open.
  [[nodiscard]] virtual bool windowShouldClose() = 0;
  [[nodiscard]] virtual bool applicationShouldTerminateAfterLastWindowClosed() const = 0;
};

/// The user interface.
class Toolkit {
 public:
  Toolkit() = default;
  Toolkit(const Toolkit&) = delete;
  Toolkit& operator=(const Toolkit&) = delete;
  virtual ~Toolkit() = default;

  /// Shows a modal alert and waits for the answer, which is the default one only when its button was pressed. A button
  /// without a caption gets a general one. Without a window: one line on standard error, and the default answer.
  virtual AlertAnswer runAlertPanel(const Alert& alert) = 0;

  /// Shows a modal panel with the folders of the target volume, in which one can be chosen or made; the chosen folder's
  /// path, or nothing when the person cancels.
  virtual std::optional<std::string> runOpenPanel(const OpenPanel& panel) = 0;

  /// Loads the interface description of this name from the installer's bundle and connects it to `owner`, which must
  /// outlive it. Fails when the description is missing or damaged.
  virtual Result<std::unique_ptr<Interface>> loadInterface(const std::string& name, InterfaceOwner& owner) = 0;

  /// The picture of that name in the installer's bundle; null when there is none that can be read.
  virtual Picture imageNamed(const std::string& name) = 0;
  /// The picture in the file; null when it cannot be read.
  virtual Picture imageWithContentsOfFile(const std::string& path) = 0;

  /// The delegate must outlive run().
  virtual void setApplicationDelegate(ApplicationDelegate* delegate) = 0;
  /// Handles what the person does, until the application ends.
  virtual void run() = 0;
};
