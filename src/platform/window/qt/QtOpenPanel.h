#pragma once

#include <QWidget>
#include <optional>
#include <string>

#include "platform/Bundle.h"
#include "platform/FileSystem.h"
#include "platform/Toolkit.h"

/// What the panel needs: the volume's folders, its texts, and alerts for what goes wrong.
struct OpenPanelServices {
  FileSystem& files;
  const Bundle& bundle;
  Toolkit& toolkit;
};

/// Shows the panel on the window and waits for the choice. Folders are read when they are opened.
[[nodiscard]] std::optional<std::string> askForFolder(const OpenPanel& panel, const OpenPanelServices& services,
                                                      QWidget* window);

/// The folder that the text names, as an absolute path without "." and ".."; empty when the text is no such path.
[[nodiscard]] std::string folderNamed(std::string_view text);
