// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>
#include <vector>

#include "platform/Platform.h"

/// An entry of the payload that is not installed.
struct SkippedEntry {
  enum class Reason {
    hidden,
    notPartOfProduct,  ///< loose in the mirror of the volume, outside the product folders
    lightroomOnly,     ///< a Lightroom plug-in, and Lightroom was not selected
    noFileOrFolder,    ///< a link, pipe, socket or device outside a package
  };
  std::string path;
  Reason reason;
};

/// Entries of one part of the payload, in the order in which they are installed.
struct PayloadPart {
  std::vector<WalkedItem> items;
  std::vector<SkippedEntry> skipped;
  std::vector<Error> unreadable;  ///< folders whose content is unknown
};

/// The entries of a folder of the payload that are installed beside each other.
struct ProductFolder {
  std::string path;
  std::vector<WalkedItem> items = {};
};

/// Payload in the resources of the installer's bundle: "files" holds a folder for each kind. Reads the disk on each
/// call.
class Payload {
 public:
  explicit Payload(Platform& platform);
  /// The same in another folder than the bundle's own.
  Payload(Platform& platform, std::string root);

  /// The mirror of the boot volume.
  [[nodiscard]] std::string hostIndependentFolder() const;
  /// The folder with this name.
  [[nodiscard]] std::string folder(std::string_view name) const;

  /// The packages of the mirror; those for Lightroom only when it was selected.
  [[nodiscard]] PayloadPart packages(bool isLightRoomSelected) const;

  /// Folders of the maker's in the mirror's Application Support, and what is directly in each that is not a package.
  /// What is skipped or unreadable is added to `part`. Returns none without a company
  /// name, which would match the folders of all makers.
  [[nodiscard]] std::vector<ProductFolder> productFolders(PayloadPart& part) const;

  /// Packages and files at any depth below a folder of the payload. Empty when the payload has no such folder.
  [[nodiscard]] PayloadPart filesBelow(const std::string& folder) const;

 private:
  [[nodiscard]] bool isInProductFolder(const std::string& path) const;

  Platform& platform_;
  std::string root_;
  std::string company_;
};
