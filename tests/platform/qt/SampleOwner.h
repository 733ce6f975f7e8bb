#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/Toolkit.h"

/// An owner whose properties are a table, and who notes what is done to it.
class SampleOwner : public InterfaceOwner {
 public:
  std::map<std::string, ShownValue, std::less<>> values;
  std::map<std::string, InterfaceOwner*, std::less<>> objects;
  std::string done;  ///< "action sender;", "key=1;", "key[row]=1;" and "typed x;"
  std::function<void()> onAction = [] {};

  /// Changes a property as the program does, with its announcements.
  void change(const std::string& key, ShownValue value) {
    willChangeValueForKey(key);
    values[key] = std::move(value);
    didChangeValueForKey(key);
  }

  [[nodiscard]] ShownValue shownValue(std::string_view key) const override {
    const auto found = values.find(key);
    if (found == values.end()) throw UnknownKey(key);
    return found->second;
  }
  void setShownValue(std::string_view key, const ShownValue& value) override {
    done += std::string(key) + (std::get<bool>(value) ? "=1;" : "=0;");
    if (keepsChanges) change(std::string(key), value);
  }
  void setTicked(std::string_view key, std::size_t row, bool isTicked) override {
    done += std::string(key) + "[" + std::to_string(row) + (isTicked ? "]=1;" : "]=0;");
    if (!keepsChanges) return;
    auto rows = std::get<std::vector<ListRow>>(values.find(key)->second);
    rows.at(row).isTicked = isTicked;
    change(std::string(key), rows);
  }
  [[nodiscard]] InterfaceOwner* objectForKey(std::string_view key) override {
    const auto found = objects.find(key);
    if (found == objects.end()) throw UnknownKey(key);
    return found->second;
  }
  void performAction(std::string_view action, const std::string& sender) override {
    if (action == "unheardOf:" || action == "quit:" || action == "hide:" || action == "about:")
      throw UnknownKey(action);
    done += std::string(action) + " " + sender + ";";
    onAction();
  }
  [[nodiscard]] bool textShouldChange(std::string_view replacement) override {
    done += "typed " + (replacement == "\n" ? "return" : std::string(replacement)) + ";";
    return false;
  }

  bool keepsChanges = true;
};
