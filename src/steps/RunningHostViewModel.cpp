// SPDX-License-Identifier: Apache-2.0

#include "steps/RunningHostViewModel.h"

#include "foundation/Exception.h"
#include "payload/InstallerTexts.h"
#include "steps/PageResource.h"

namespace {

void readFormat(const Platform& platform, std::string_view name, RichText& format, RichText& text) {
  try {
    format = richTextFormat(platform, name);
  } catch (const Exception& exception) {
    platform.log.write(exception.what());
    text = RichText("nil");
  }
}

void fillIn(const Platform& platform, const RichText& format, std::string_view placeholder, std::string_view name,
            RichText& text) {
  RichText filledIn = format;
  if (!filledIn.replaceOccurrences(placeholder, name)) return;
  fillInNames(platform, filledIn);
  text = std::move(filledIn);
}

}  // namespace

RunningHostViewModel::RunningHostViewModel(Platform& platform) : platform_(platform) {
  readFormat(platform, "host_running", runningFormatString_, runningText_);
  readFormat(platform, "proceed", notRunningFormatString_, notRunningText_);
  const Bundle& bundle = platform.bundles.mainBundle();
  stepIndicatorLabelText_ = bundle.localizedString("running_blue_dot");
  mainLabelText_ = bundle.localizedString("host_running_title");
  thankYou_ = bundle.localizedString("thank_you");
}

void RunningHostViewModel::setHostName(const std::string& hostName) {
  willChangeValueForKey("informativeText");
  fillIn(platform_, runningFormatString_, "%HOSTNAME%", hostName, runningText_);
  fillIn(platform_, notRunningFormatString_, "%PRODUCTNAME%", shownProductName(platform_), notRunningText_);
  didChangeValueForKey("informativeText");
}

void RunningHostViewModel::setHostIsRunning(bool running) {
  willChangeValueForKey("informativeText");
  hostRunning_ = running;
  didChangeValueForKey("informativeText");
}

std::optional<ShownValue> RunningHostViewModel::shownValue(std::string_view key) const {
  if (key == "informativeText") return informativeText();
  return std::nullopt;
}
