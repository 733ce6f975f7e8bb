// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QString>
#include <string>
#include <string_view>

[[nodiscard]] inline QString toQt(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
[[nodiscard]] inline std::string fromQt(const QString& text) { return text.toStdString(); }
