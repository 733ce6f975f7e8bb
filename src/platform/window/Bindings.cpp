// SPDX-License-Identifier: Apache-2.0

#include "platform/window/Bindings.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <utility>

#include "foundation/Format.h"

namespace {

std::string_view lastKey(std::string_view path) { return path.substr(path.rfind('.') + 1); }

// So many changes are shown at once. While more follow within this time, one is shown in each such time.
constexpr int changesAtOnce = 8;
constexpr std::chrono::milliseconds restingTime(50);

/// What takes time to show, and shows nothing else than itself.
bool mayWait(std::string_view property) {
  return property == "bindText" || property == "bindName" || property == "bindImage" || property == "bindRows" ||
         property == "bindProgress";
}

}  // namespace

std::optional<std::string> plainText(const ShownValue& value) {
  if (const auto* const text = std::get_if<std::string>(&value)) return *text;
  if (const auto* const text = std::get_if<RichText>(&value)) return text->string();
  if (std::holds_alternative<std::monostate>(value)) return std::string();
  return std::nullopt;
}

ShowValue showFlag(std::function<void(bool)> set) {
  return [set = std::move(set)](const ShownValue& value) {
    const auto* const flag = std::get_if<bool>(&value);
    if (flag != nullptr) set(*flag);
    return flag != nullptr;
  };
}

ShowValue showPicture(std::function<void(const Picture&)> set) {
  return [set = std::move(set)](const ShownValue& value) {
    const auto* const picture = std::get_if<Picture>(&value);
    if (picture == nullptr && !std::holds_alternative<std::monostate>(value)) return false;
    set(picture != nullptr ? *picture : nullptr);
    return true;
  };
}

ShowValue showProgress(std::function<void(std::optional<double>)> set) {
  return [set = std::move(set)](const ShownValue& value) {
    const auto* const done = std::get_if<double>(&value);
    if (done == nullptr && !std::holds_alternative<std::monostate>(value)) return false;
    const bool isKnown = done != nullptr && std::isfinite(*done);
    set(isKnown ? std::optional(std::clamp(*done, 0.0, 1.0)) : std::nullopt);
    return true;
  };
}

Bindings::Bindings(InterfaceOwner& owner, BindingServices services) : owner_(owner), services_(std::move(services)) {
  observe(owner_);
}

Bindings::Index Bindings::bind(std::shared_ptr<BoundControl> control, std::string property, std::string_view source,
                               ShowValue show) {
  Binding& binding = bindings_.emplace_back();
  binding.control = std::move(control);
  binding.property = std::move(property);
  binding.isNegated = source.starts_with('!');
  binding.path = source.substr(binding.isNegated ? 1 : 0);
  binding.show = std::move(show);
  resolve(binding);
  return bindings_.size() - 1;
}

void Bindings::showAll() {
  for (Index i = 0; i < bindings_.size(); ++i) show(i);
}

void Bindings::show(Index index) {
  Binding& binding = bindings_[index];
  if (!binding.control->exists()) return;
  binding.isBehind = mayWait(binding.property) && binding.control->isOnHiddenPage();
  if (!binding.isBehind) read(binding, /*mayBePutOff=*/true);
}

void Bindings::catchUp(const BoundControl* control) {
  const std::weak_ptr<bool> alive = alive_;
  for (Index i = 0; !alive.expired() && i < bindings_.size(); ++i) {
    Binding& binding = bindings_[i];
    const bool isMeant = control == nullptr || binding.control.get() == control;
    if (!binding.isBehind || !isMeant || !binding.control->exists()) continue;
    if (control == nullptr && binding.control->isOnHiddenPage()) continue;
    binding.isBehind = false;
    read(binding, /*mayBePutOff=*/false);
  }
}

Bindings::KeptValue Bindings::keptValueIn(const ShownValue& value) {
  if (const auto* const flag = std::get_if<bool>(&value)) return *flag;
  if (const auto* const text = std::get_if<std::string>(&value)) return *text;
  if (const auto* const text = std::get_if<RichText>(&value)) return *text;
  if (const auto* const number = std::get_if<double>(&value)) return *number;
  return {};
}

void Bindings::read(Binding& binding, bool mayBePutOff) {
  if (binding.object == nullptr) return;
  std::optional<ShownValue> value;
  const bool couldRead = attempt(*binding.control, [&] { value = binding.object->shownValue(lastKey(binding.path)); });
  if (!couldRead || !binding.control->exists()) return;
  if (!value) return complain(*binding.control, "nobody has the property " + binding.path);
  if (auto* const flag = std::get_if<bool>(&*value)) *flag = *flag != binding.isNegated;
  KeptValue kept = keptValueIn(*value);
  binding.isBehind = false;
  if (kept != KeptValue()) {
    if (kept == binding.shown) return;
    binding.isBehind = mayBePutOff && mayWait(binding.property) && changesTooFast(binding);
    if (binding.isBehind) return;
  }
  binding.shown = std::move(kept);
  binding.shownAt = std::chrono::steady_clock::now();
  if (binding.show(*value)) return;
  complain(*binding.control, formatted("%@ cannot show the value of %@", binding.property, binding.path));
}

bool Bindings::changesTooFast(Binding& binding) {
  const auto now = std::chrono::steady_clock::now();
  const bool hasRested = now - std::exchange(binding.changedAt, now) >= restingTime;
  binding.changesInARow = hasRested ? 1 : binding.changesInARow + 1;
  if (binding.changesInARow <= changesAtOnce || now - binding.shownAt >= restingTime) return false;
  services_.catchUpAfter(restingTime);
  return true;
}

void Bindings::resolve(Binding& binding) {
  binding.object = &owner_;
  std::string_view rest = binding.path;
  attempt(*binding.control, [&] {
    for (std::size_t end = 0; binding.object != nullptr && (end = rest.find('.')) != std::string_view::npos;) {
      InterfaceOwner* const holder = std::exchange(binding.object, nullptr);
      binding.object = holder->objectForKey(rest.substr(0, end));
      if (binding.object == nullptr) complain(*binding.control, "nobody has the property " + binding.path);
      rest.remove_prefix(end + 1);
    }
  });
  if (binding.object != nullptr) observe(*binding.object);
}

void Bindings::observe(InterfaceOwner& object) {
  auto& observation = observations_[&object];
  if (observation != nullptr) return;
  observation = object.observe([this, &object](std::string_view key, KeyValueObserving::Moment moment) {
    if (moment == KeyValueObserving::Moment::didChange) return changed(object, key);
    changeBegins(object, key);
  });
}

void Bindings::changeBegins(const InterfaceOwner& object, std::string_view key) {
  for (Binding& binding : bindings_) {
    if (binding.object == &object && lastKey(binding.path) == key) ++binding.changesBegun;
  }
}

void Bindings::changed(const InterfaceOwner& object, std::string_view key) {
  const std::weak_ptr<bool> alive = alive_;
  const std::string path = std::string(key) + '.';
  for (Index i = 0; !alive.expired() && i < bindings_.size(); ++i) {
    Binding& binding = bindings_[i];
    if (!binding.control->exists()) continue;
    const bool leadsThere = &object == &owner_ && binding.path.starts_with(path);
    if (leadsThere) resolve(binding);
    const bool isMeant = binding.object == &object && lastKey(binding.path) == key;
    if (isMeant && binding.changesBegun > 0) --binding.changesBegun;
    if (leadsThere || isMeant || binding.changesBegun > 0) show(i);
  }
}

void Bindings::setFlag(Index index, bool isOn) {
  Binding& binding = bindings_[index];
  binding.shown = {};  // the click has changed what is seen
  if (binding.object != nullptr) {
    attempt(*binding.control, [&] {
      if (binding.object->setShownValue(lastKey(binding.path), isOn != binding.isNegated)) return;
      complain(*binding.control, "nobody takes a flag for " + binding.path);
    });
  }
  show(index);
}

void Bindings::setTicked(Index index, std::size_t row, bool isTicked) {
  const Binding& binding = bindings_[index];
  if (binding.object == nullptr) return;
  attempt(*binding.control, [&] {
    if (binding.object->setTicked(lastKey(binding.path), row, isTicked)) return;
    complain(*binding.control, "nobody takes a tick for " + binding.path);
  });
}

void Bindings::setOnce(const BoundControl& control, std::string_view key) {
  attempt(control, [&] {
    if (!owner_.setShownValue(key, true)) complain(control, formatted("nobody takes a flag for %@", key));
  });
}

void Bindings::perform(const std::string& action, const BoundControl& sender) {
  const std::weak_ptr<bool> alive = alive_;
  const std::string name = sender.name();  // the action may end the sender
  bool isDone = false;
  const bool wentWell = attempt(sender, [&] { isDone = owner_.performAction(action, name); });
  if (alive.expired() || isDone || !wentWell || services_.performOwnAction(action)) return;
  complain(sender, "nobody performs " + action);
}

void Bindings::typed(const std::string& text, const BoundControl& control) {
  // Texts are only read, whatever the owner answers.
  attempt(control, [&] { static_cast<void>(owner_.textShouldChange(text)); });
}

bool Bindings::attempt(const BoundControl& control, const std::function<void()>& what) {
  const std::weak_ptr<bool> alive = alive_;
  try {
    what();
    return true;
  } catch (const std::exception& exception) {
    if (!alive.expired()) complain(control, exception.what());
    return false;
  }
}

void Bindings::complain(const BoundControl& control, std::string_view what) {
  std::string line = formatted("Interface %@, control \"%@\": %@", services_.interfaceName, control.name(), what);
  const auto [complaint, isNew] = complaints_.insert(std::move(line));
  if (isNew) services_.log.write(*complaint);
}
