// SPDX-License-Identifier: Apache-2.0

#include "platform/propertylist/PropertyListPreferences.h"

#include <utility>
#include <vector>

#include "foundation/Format.h"
#include "foundation/Path.h"
#include "platform/propertylist/PropertyList.h"

namespace {

constexpr std::size_t maxPreferences = std::size_t{16} << 20U;

}  // namespace

PropertyListPreferences::~PropertyListPreferences() {
  std::vector<std::string> domains;
  for (const auto& [domain, changes] : changes_) domains.push_back(domain);
  for (const std::string& domain : domains) synchronize(domain);
}

bool PropertyListPreferences::isDomainName(const std::string& domain) {
  return !domain.empty() && domain.find('/') == std::string::npos;
}

std::string PropertyListPreferences::userFile(const std::string& domain) const {
  return joinPath({folders_.homeDirectory(), "Library", "Preferences", domain + ".plist"});
}

std::optional<Value::Dictionary> PropertyListPreferences::read(const std::string& path) const {
  const auto bytes = files_.readFile(path, maxPreferences + 1);
  if (!bytes && bytes.error().is(std::errc::no_such_file_or_directory)) return Value::Dictionary();
  Error problem = Error::posix(std::errc::file_too_large, path);
  if (!bytes) {
    problem = bytes.error();
  } else if (bytes->empty()) {
    return Value::Dictionary();  // a program was stopped while it wrote the file
  } else if (bytes->size() <= maxPreferences) {
    auto value = readPropertyList(*bytes);
    if (value && value->as<Value::Dictionary>() != nullptr) return std::move(*value->as<Value::Dictionary>());
    problem =
        value ? Error{"", 0, {{std::string(Error::localizedDescriptionKey), "it holds no dictionary"}}} : value.error();
  }
  // The file is read for every key.
  const auto [line, isNew] =
      complaints_.insert(formatted("Could not read preferences %@: %@", path, problem.description()));
  if (isNew) log_.write(*line);
  return std::nullopt;
}

Value PropertyListPreferences::copyAppValue(const std::string& key, const std::string& domain) {
  if (!isDomainName(domain)) return {};
  if (const auto changes = changes_.find(domain); changes != changes_.end()) {
    const auto change = changes->second.find(key);
    if (change != changes->second.end() && !change->second.isNone()) return change->second;
    if (change != changes->second.end()) return valueForAllUsers(key, domain);
  }
  if (const auto stored = read(userFile(domain))) {
    const auto found = stored->find(key);
    if (found != stored->end()) return found->second;
  }
  return valueForAllUsers(key, domain);
}

Value PropertyListPreferences::valueForAllUsers(const std::string& key, const std::string& domain) const {
  const auto stored = read(joinPath("/Library/Preferences", domain + ".plist"));
  if (!stored) return {};
  const auto found = stored->find(key);
  return found != stored->end() ? found->second : Value();
}

void PropertyListPreferences::setAppValue(const std::string& key, Value value, const std::string& domain) {
  if (isDomainName(domain)) changes_[domain].insert_or_assign(key, std::move(value));
}

bool PropertyListPreferences::synchronize(const std::string& domain) {
  const auto changes = changes_.find(domain);
  if (changes == changes_.end()) return true;
  const std::string path = userFile(domain);
  // Read again: other programs may have written to the domain since.
  auto dictionary = read(path);
  if (!dictionary) return false;
  for (const auto& [key, value] : changes->second) {
    if (value.isNone()) {
      dictionary->erase(key);
    } else {
      dictionary->insert_or_assign(key, value);
    }
  }
  Status written;
  if (const auto text = writePropertyList(std::move(*dictionary))) {
    written = files_.createDirectory(deletingLastPathComponent(path), 0700);
    if (written) written = files_.createFile(path, *text, 0600);
  } else {
    written = text.error();
  }
  if (!written) {
    log_.write(formatted("Could not write preferences %@: %@", path, written.error().description()));
    return false;
  }
  changes_.erase(domain);
  return true;
}
