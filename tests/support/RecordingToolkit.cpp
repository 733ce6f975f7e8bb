// SPDX-License-Identifier: Apache-2.0

#include "support/RecordingToolkit.h"

namespace {

class RecordingInterface : public Interface {
 public:
  explicit RecordingInterface(std::shared_ptr<RecordingWindow> window) : window_(std::move(window)) {}

  [[nodiscard]] std::shared_ptr<View> view(const std::string& name) const override { return window_->view(name); }
  [[nodiscard]] std::shared_ptr<TextField> textField(const std::string& name) const override {
    return window_->view(name);
  }
  [[nodiscard]] std::shared_ptr<ImageView> imageView(const std::string& name) const override {
    return window_->view(name);
  }
  [[nodiscard]] std::shared_ptr<ListView> listView(const std::string& name) const override {
    return window_->view(name);
  }
  [[nodiscard]] std::shared_ptr<Window> window(const std::string& /*name*/) const override { return window_; }

 private:
  std::shared_ptr<RecordingWindow> window_;
};

}  // namespace

void RecordingView::addSubview(const std::shared_ptr<View>& view) {
  subviews.push_back(view);
  if (auto* const recording = dynamic_cast<RecordingView*>(view.get())) recording->superview_ = weak_from_this();
}

std::shared_ptr<RecordingView> RecordingWindow::view(const std::string& viewName) {
  if (missing.contains(viewName)) return nullptr;
  auto& found = views[viewName];
  if (found == nullptr) found = std::make_shared<RecordingView>();
  return found;
}

AlertAnswer RecordingToolkit::runAlertPanel(const Alert& alert) {
  alerts.push_back(alert);
  return answer;
}

std::optional<std::string> RecordingToolkit::runOpenPanel(const OpenPanel& panel) {
  panels.push_back(panel);
  return chosenFolder;
}

Result<std::unique_ptr<Interface>> RecordingToolkit::loadInterface(const std::string& name, InterfaceOwner& /*owner*/) {
  if (missingInterfaces.contains(name)) return Error::posix(std::errc::no_such_file_or_directory, name);
  auto& window = interfaces.emplace_back(std::make_shared<RecordingWindow>());
  window->name = name;
  window->missing = missingViews;
  return std::unique_ptr<Interface>(std::make_unique<RecordingInterface>(window));
}
