// SPDX-License-Identifier: Apache-2.0

#include "platform/macos/MacPreferences.h"

#include <utility>

#include "foundation/Format.h"
#include "platform/macos/Reference.h"
#include "platform/propertylist/PropertyList.h"

namespace {

// Values pass as property lists in bytes, which the program can read and write anyway.

Value fromCore(CFPropertyListRef list) {
  const Reference<CFDataRef> data(
      ::CFPropertyListCreateData(nullptr, list, kCFPropertyListBinaryFormat_v1_0, 0, nullptr));
  if (!data) return {};
  const auto* const bytes = reinterpret_cast<const char*>(::CFDataGetBytePtr(data.get()));
  auto value = readPropertyList({bytes, static_cast<std::size_t>(::CFDataGetLength(data.get()))});
  return value ? *std::move(value) : Value();
}

/// Empty when the value cannot be written as a property list.
Reference<CFPropertyListRef> toCore(const Value& value) {
  const auto text = writePropertyList(value);
  if (!text) return {};
  const Reference<CFDataRef> data(::CFDataCreate(nullptr, bytesOf(*text), static_cast<CFIndex>(text->size())));
  return Reference<CFPropertyListRef>(
      ::CFPropertyListCreateWithData(nullptr, data.get(), kCFPropertyListImmutable, nullptr, nullptr));
}

bool isDomainName(const std::string& domain) { return !domain.empty() && domain.find('/') == std::string::npos; }

}  // namespace

MacPreferences::~MacPreferences() {
  for (const std::string& domain : std::exchange(changed_, {})) synchronize(domain);
}

Value MacPreferences::copyAppValue(const std::string& key, const std::string& domain) {
  const auto coreKey = coreString(key);
  const auto application = coreString(domain);
  if (!isDomainName(domain) || !coreKey || !application) return {};
  const Reference<CFPropertyListRef> value(::CFPreferencesCopyAppValue(coreKey.get(), application.get()));
  return value ? fromCore(value.get()) : Value();
}

void MacPreferences::setAppValue(const std::string& key, Value value, const std::string& domain) {
  const auto coreKey = coreString(key);
  const auto application = coreString(domain);
  if (!isDomainName(domain) || !coreKey || !application) return;
  const auto coreValue = value.isNone() ? Reference<CFPropertyListRef>() : toCore(value);
  if (!value.isNone() && !coreValue) {
    log_.write(formatted("Could not write preferences %@: %@", domain, key));
    return;
  }
  ::CFPreferencesSetAppValue(coreKey.get(), coreValue.get(), application.get());
  changed_.insert(domain);
}

bool MacPreferences::synchronize(const std::string& domain) {
  const auto application = coreString(domain);
  if (!isDomainName(domain) || !application) return true;
  if (::CFPreferencesSynchronize(application.get(), kCFPreferencesCurrentUser, kCFPreferencesAnyHost) == 0) {
    log_.write(formatted("Could not write preferences %@", domain));
    return false;
  }
  changed_.erase(domain);
  return true;
}
