// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <functional>
#include <optional>
#include <string>

#include "hosts/HostModel.h"
#include "install/PrivilegedTools.h"
#include "platform/Platform.h"

/// Where the list is; empty when the maker has no editor that reads one.
[[nodiscard]] std::string externalEditorsList(Platform& platform);

/// What the list says, once that is there of which `exists` says so.
[[nodiscard]] std::string externalEditorsText(const Platform& platform, const HostList& foundHosts,
                                              const std::function<bool(const std::string& path)>& exists);

/// Lists the editors that the maker's photo editor offers: the newest Photoshop among the hosts and the maker's
/// applications that are present. The list is replaced in one step; where there is nothing to list, it is removed.
/// Returns the path of the list when it was written.
std::optional<std::string> configureLumatraExternalEditors(Platform& platform, PrivilegedTools& tools,
                                                           const HostList& foundHosts);
