// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <optional>
#include <string>

#include "hosts/LightRoomHostModel.h"
#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// Where the preset is that makes the product one of Lightroom's external editors.
[[nodiscard]] std::string lightroomPresetFile(Platform& platform);

/// Makes the application in /Applications with this name one of Lightroom's external editors. A preset for it that is
/// there already stays, because Lightroom knows it by its identifier. Returns the path of the preset, or nothing when
/// it could not be written.
std::optional<std::string> installLightroomPreset(Platform& platform, PrivilegedTools& tools,
                                                  const LightRoomHostModel& lightroom, const std::string& application);
