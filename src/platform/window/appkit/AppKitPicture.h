// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include <string>

#include "platform/FileSystem.h"
#include "platform/InterfaceOwner.h"
#include "platform/window/appkit/ObjectReference.h"

class AppKitPicture : public Image {
 public:
  explicit AppKitPicture(NSImage* owned) : image_(owned) {}

  [[nodiscard]] NSImage* image() const { return image_.get(); }

 private:
  ObjectReference<NSImage> image_;
};

/// Null when the file cannot be read or is no picture.
[[nodiscard]] Picture readPicture(const FileSystem& files, const std::string& path);

/// Nil for none.
[[nodiscard]] NSImage* imageOf(const Picture& picture);
