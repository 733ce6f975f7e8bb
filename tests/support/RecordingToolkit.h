// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "platform/Toolkit.h"

/// A part of a window that is not there: notes how it is set up.
class RecordingView : public virtual TextField,
                      public virtual ImageView,
                      public virtual ListView,
                      public std::enable_shared_from_this<RecordingView> {
 public:
  bool isHidden = true;
  Rect place;
  std::optional<std::size_t> selectedRow;
  std::vector<std::shared_ptr<View>> subviews;

  void setHidden(bool hidden) override { isHidden = hidden; }
  [[nodiscard]] Rect frame() const override { return place; }
  void setFrame(const Rect& frame) override { place = frame; }
  void addSubview(const std::shared_ptr<View>& view) override;
  [[nodiscard]] std::shared_ptr<View> superview() const override { return superview_.lock(); }
  void setStringValue(const std::string& /*value*/) override {}
  void setFont(bool /*isBold*/, TextColour /*colour*/) override {}
  void setDescription(const std::string& /*description*/) override {}
  void setImage(const Picture& /*picture*/) override {}
  void selectRow(std::size_t row) override { selectedRow = row; }

 private:
  std::weak_ptr<View> superview_;
};

/// What was made of an interface description. Has every view that it is asked for, but the missing ones.
struct RecordingWindow : Window {
  std::string name;
  std::set<std::string> missing;
  std::map<std::string, std::shared_ptr<RecordingView>> views = {};
  int closed = 0;

  /// The view of the name, made when it is first asked for.
  std::shared_ptr<RecordingView> view(const std::string& viewName);
  void centre() override {}
  void close() override { ++closed; }
};

/// A toolkit without windows, whose person answers as a test wants.
class RecordingToolkit : public Toolkit {
 public:
  std::vector<Alert> alerts;
  AlertAnswer answer = AlertAnswer::defaultButton;
  std::vector<OpenPanel> panels;
  std::optional<std::string> chosenFolder = std::nullopt;
  std::vector<std::shared_ptr<RecordingWindow>> interfaces;  ///< in the order in which they were made
  std::set<std::string> missingViews;
  std::set<std::string> missingInterfaces;

  AlertAnswer runAlertPanel(const Alert& alert) override;
  std::optional<std::string> runOpenPanel(const OpenPanel& panel) override;
  Result<std::unique_ptr<Interface>> loadInterface(const std::string& name, InterfaceOwner& owner) override;
  Picture imageNamed(const std::string& /*name*/) override { return nullptr; }
  Picture imageWithContentsOfFile(const std::string& /*path*/) override { return nullptr; }
  void setApplicationDelegate(ApplicationDelegate* /*delegate*/) override {}
  void run() override {}
};
