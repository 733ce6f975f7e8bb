// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"

/// A key of the strings table "installer", which makes the installer a product's.
struct ConfigurationKey {
  enum class Kind {
    text,
    name,  ///< of files or folders
    flag,  ///< "yes" or "no"
    list,  ///< words with blanks between them
    paths  ///< absolute paths with semicolons between them
  };
  std::string_view name;
  Kind kind;
};

inline constexpr std::array configurationKeys = {
    ConfigurationKey{"company_name", ConfigurationKey::Kind::name},
    ConfigurationKey{"product_name", ConfigurationKey::Kind::name},
    ConfigurationKey{"app_plist", ConfigurationKey::Kind::text},
    ConfigurationKey{"product_version", ConfigurationKey::Kind::text},
    ConfigurationKey{"installer_identifier", ConfigurationKey::Kind::text},
    ConfigurationKey{"copyright", ConfigurationKey::Kind::text},
    ConfigurationKey{"languages", ConfigurationKey::Kind::list},
    ConfigurationKey{"hosts", ConfigurationKey::Kind::list},
    ConfigurationKey{"payload", ConfigurationKey::Kind::text},
    ConfigurationKey{"external_editors", ConfigurationKey::Kind::name},
    ConfigurationKey{"external_editor_applications", ConfigurationKey::Kind::paths},
    ConfigurationKey{"aperture_page", ConfigurationKey::Kind::flag},
    ConfigurationKey{"identifier_file", ConfigurationKey::Kind::flag},
    ConfigurationKey{"lightroom_preset", ConfigurationKey::Kind::name},
    ConfigurationKey{"remove_earlier", ConfigurationKey::Kind::flag}};

/// What the key "hosts" may name.
inline constexpr std::array<std::string_view, 3> hostKinds = {"photoshop", "lightroom", "aperture"};

/// What the maker has chosen. The names are in InstallerTexts.h.
class Configuration {
 public:
  explicit Configuration(const Platform& platform) : bundle_(platform.bundles.mainBundle()) {}

  /// Name of the folder beside the bundle with the payload that packing puts into it; empty when it is there already.
  [[nodiscard]] std::string payloadBeside() const { return text("payload"); }

  /// Whether hosts of this kind are looked for. Aperture only is when it is named.
  [[nodiscard]] bool offersHost(std::string_view kind) const;

  /// Name of the maker's photo editor that is told which other editors there are; empty when it is told nothing.
  [[nodiscard]] std::string externalEditors() const;
  /// Paths of the maker's applications that are among them where they are installed.
  [[nodiscard]] std::vector<std::string> externalEditorApplications() const;

  [[nodiscard]] bool hasAperturePage() const { return isYes("aperture_page"); }
  [[nodiscard]] bool hasIdentifierFile() const { return isYes("identifier_file"); }
  [[nodiscard]] bool removesEarlierInstalls() const { return isYes("remove_earlier"); }
  /// Name of the application in /Applications that a preset makes one of Lightroom's external editors; empty: none.
  [[nodiscard]] std::string lightroomPreset() const;

 private:
  [[nodiscard]] std::string text(std::string_view key, std::string_view whenMissing = "") const;
  [[nodiscard]] bool isYes(std::string_view key) const { return text(key) == "yes"; }

  const Bundle& bundle_;
};
