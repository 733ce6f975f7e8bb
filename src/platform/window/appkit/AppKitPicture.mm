// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitPicture.h"

namespace {

constexpr std::size_t largestFile = std::size_t{32} << 20U;

}  // namespace

Picture readPicture(const FileSystem& files, const std::string& path) {
  const auto bytes = files.readFile(path, largestFile);
  if (!bytes) return nullptr;
  @autoreleasepool {
    NSData* const data = [NSData dataWithBytes:bytes->data() length:bytes->size()];
    NSImage* const image = [[NSImage alloc] initWithData:data];
    return image != nil ? std::make_shared<AppKitPicture>(image) : nullptr;
  }
}

NSImage* imageOf(const Picture& picture) {
  const auto* const shown = dynamic_cast<const AppKitPicture*>(picture.get());
  return shown != nullptr ? shown->image() : nil;
}
