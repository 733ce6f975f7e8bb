// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <map>
#include <stdexcept>
#include <string>
#include <utility>

#include "platform/Toolkit.h"

/// An owner whose properties are a table, and who notes the actions that it is asked for.
class SampleOwner : public InterfaceOwner {
 public:
  std::map<std::string, ShownValue, std::less<>> values;
  std::string done;  ///< "action sender;" for each

  /// Changes a property as the program does, with its announcements.
  void change(const std::string& key, ShownValue value) {
    willChangeValueForKey(key);
    values[key] = std::move(value);
    didChangeValueForKey(key);
  }

  [[nodiscard]] std::optional<ShownValue> shownValue(std::string_view key) const override {
    const auto found = values.find(key);
    return found == values.end() ? std::nullopt : std::optional(found->second);
  }
  bool setTicked(std::string_view key, std::size_t row, bool isTicked) override {
    std::get<std::vector<ListRow>>(values.find(key)->second).at(row).isTicked = isTicked;
    return true;
  }
  bool performAction(std::string_view action, const std::string& sender) override {
    if (action == "unheardOf:") return false;
    if (action == "fail:") throw std::logic_error("failed");
    done += std::string(action) + " " + sender + ";";
    return true;
  }
};
