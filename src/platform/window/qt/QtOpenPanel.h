// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QWidget>
#include <optional>
#include <string>

#include "platform/Bundle.h"
#include "platform/FileSystem.h"
#include "platform/Toolkit.h"
#include "platform/User.h"

/// What the panel needs: the volume's folders, its texts, the order of names in the user's language, and alerts for
/// what goes wrong.
struct OpenPanelServices {
  FileSystem& files;
  const Bundle& bundle;
  const User& user;
  Toolkit& toolkit;
};

/// Shows the panel on the window and waits for the choice. Folders are read when they are opened.
[[nodiscard]] std::optional<std::string> askForFolder(const OpenPanel& panel, const OpenPanelServices& services,
                                                      QWidget* window);
