// SPDX-License-Identifier: Apache-2.0

// The pictures of the window.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Path.h"
#include "kit/Checks.h"
#include "kit/PictureFile.h"
#include "kit/TemplatePictures.h"

namespace {

/// A picture that the program asks for by name, and its place in the window, in points.
struct WantedPicture {
  std::string_view name;
  double width;
  double height;
};
constexpr std::array<WantedPicture, 8> wantedPictures = {{{"Product", 196, 460},
                                                          {"Installer", 56, 56},
                                                          {"Caution", 56, 56},
                                                          {"DotBlue", 12, 12},
                                                          {"DotGray", 12, 12},
                                                          {"checkmark", 56, 56},
                                                          {"Installer_Error", 56, 56},
                                                          {"GenericApplication", 28, 28}}};
/// In the order in which they are looked for.
constexpr std::array<std::string_view, 3> pictureTypes = {"icns", "tiff", "png"};
constexpr std::array<std::string_view, 8> otherPictureTypes = {"gif", "jpg", "jpeg", "webp",
                                                               "svg", "bmp", "heic", "pdf"};

// The window shows nothing larger.
constexpr std::size_t largestPictureFile = std::size_t{32} << 20U;
constexpr double mostPixels = 16 << 20U;

std::string sizeText(double width, double height) {
  return std::to_string(std::lround(width)) + " by " + std::to_string(std::lround(height));
}

void checkPictureFile(const InspectedBundle& bundle, const TreeItem& item, const WantedPicture* wanted,
                      Findings& findings) {
  const Place place{.file = item.path};
  const std::string bytes = bundle.read(item.path).value_or("");
  if (std::ranges::find(templatePictures(), bytes, &TemplatePicture::bytes) != templatePictures().end()) {
    return findings.add("pictures.template", place);
  }
  const PictureFile file = inspectPicture(bytes);
  const double width = file.width;
  const double height = file.height;
  if (file.format.empty()) return findings.add("pictures.format", place);
  if (!file.damage.empty()) return findings.add("pictures.damaged", place, {file.damage});
  if (item.size > largestPictureFile || width * height > mostPixels) {
    return findings.add("pictures.too-large", place, {sizeText(width, height)});
  }
  if (wanted == nullptr) return;
  constexpr double tolerance = 0.03;
  if (std::abs(width / height / (wanted->width / wanted->height) - 1) > tolerance) {
    findings.add("pictures.shape", place, {sizeText(width, height), sizeText(wanted->width, wanted->height)});
  } else if (width < 2 * wanted->width || height < 2 * wanted->height) {
    findings.add("pictures.small", place, {sizeText(width, height), sizeText(2 * wanted->width, 2 * wanted->height)});
  }
}

/// The name without its type, and the type.
struct PictureName {
  std::string name;
  std::string_view type;
};

PictureName pictureName(const std::string& path) {
  const std::string_view type = pathExtension(path);
  std::string name = lastPathComponent(path);
  if (!type.empty()) name.resize(name.size() - type.size() - 1);
  return {.name = std::move(name), .type = type};
}

bool isAmong(const auto& types, std::string_view type) { return std::ranges::find(types, type) != types.end(); }

/// In the resources or the folder of a language.
bool isWhereResourcesLie(const std::string& path) {
  const std::string folder = deletingLastPathComponent(path);
  return folder == resourcesFolder ||
         (deletingLastPathComponent(folder) == resourcesFolder && pathExtension(folder) == "lproj");
}

/// The picture of the same name that comes first: types are looked for one after the other, each in all languages.
std::string preferredTo(const InspectedBundle& bundle, const std::string& path) {
  const auto [name, type] = pictureName(path);
  const std::string folder = deletingLastPathComponent(path);
  const std::string english = InspectedBundle::localized("en", "");
  for (const std::string_view preferred : pictureTypes) {
    if (preferred == type) break;
    for (const std::string& place : {folder, english, std::string(resourcesFolder)}) {
      std::string other = joinPath(place, name + "." + std::string(preferred));
      if (bundle.item(other) != nullptr) return other.substr(resourcesFolder.size() + 1);
    }
  }
  return {};
}

void checkItem(const InspectedBundle& bundle, const TreeItem& item, Findings& findings) {
  const auto [name, type] = pictureName(item.path);
  constexpr std::string_view twice = "@2x";
  if (name.ends_with(twice) && (isAmong(pictureTypes, type) || isAmong(otherPictureTypes, type))) {
    const std::string plain = name.substr(0, name.size() - twice.size()) + "." + std::string(type);
    return findings.add("pictures.at-2x", {.file = item.path}, {plain});
  }
  const auto* const wanted = std::ranges::find(wantedPictures, name, &WantedPicture::name);
  const bool isWanted = wanted != wantedPictures.end();
  if (isAmong(pictureTypes, type)) {
    checkPictureFile(bundle, item, isWanted ? wanted : nullptr, findings);
    const std::string other = preferredTo(bundle, item.path);
    if (!other.empty()) findings.add("pictures.hidden-by", {.file = item.path}, {other});
  } else if (isWanted && isAmong(otherPictureTypes, type)) {
    findings.add("pictures.type", {.file = item.path}, {type});
  }
}

}  // namespace

bool hasPicture(const InspectedBundle& bundle, std::string_view name) {
  std::vector<std::string> folders = {std::string(resourcesFolder)};
  for (const std::string& language : bundle.languages()) folders.push_back(InspectedBundle::localized(language, ""));
  return std::ranges::any_of(folders, [&](const std::string& folder) {
    return std::ranges::any_of(pictureTypes, [&](std::string_view type) {
      return bundle.item(joinPath(folder, std::string(name) + "." + std::string(type))) != nullptr;
    });
  });
}

void checkPictures(const InspectedBundle& bundle, Findings& findings) {
  for (const TreeItem& item : bundle.items()) {
    if (item.type == ItemType::regularFile && isWhereResourcesLie(item.path)) checkItem(bundle, item, findings);
  }
  for (const WantedPicture& wanted : wantedPictures) {
    if (hasPicture(bundle, wanted.name)) continue;
    findings.add("pictures.missing", {.file = joinPath(resourcesFolder, std::string(wanted.name) + ".png")},
                 {wanted.name, sizeText(2 * wanted.width, 2 * wanted.height)});
  }
}
