// SPDX-License-Identifier: Apache-2.0

#include "platform/window/qt/QtPalette.h"

namespace {

struct Shade {
  QPalette::ColorRole role;
  const char* light;
  const char* dark;
};
constexpr Shade shades[] = {
    {QPalette::Window, "#f1f1f2", "#2a2a2c"},      {QPalette::WindowText, "#1d1d1f", "#f0f0f2"},
    {QPalette::Base, "#ffffff", "#1e1e20"},        {QPalette::AlternateBase, "#f6f6f7", "#252527"},
    {QPalette::Text, "#1d1d1f", "#f0f0f2"},        {QPalette::PlaceholderText, "#66666b", "#a6a6ab"},
    {QPalette::Button, "#ffffff", "#59595d"},      {QPalette::ButtonText, "#1d1d1f", "#f4f4f6"},
    {QPalette::Highlight, "#0b63d8", "#2b70df"},   {QPalette::HighlightedText, "#ffffff", "#ffffff"},
    {QPalette::Mid, "#88888d", "#7f7f84"},         {QPalette::Dark, "#85858a", "#8e8e93"},
    {QPalette::Light, "#ffffff", "#3a3a3d"},       {QPalette::Midlight, "#e4e4e6", "#3a3a3d"},
    {QPalette::Shadow, "#9a9a9e", "#000000"},      {QPalette::ToolTipBase, "#ffffff", "#3a3a3d"},
    {QPalette::ToolTipText, "#1d1d1f", "#f0f0f2"}, {QPalette::Link, "#0b63d8", "#6aa5ff"},
    {QPalette::BrightText, "#ffffff", "#ffffff"}};

}  // namespace

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

Appearance wantedAppearance(const QPalette& desktop) {
  const QByteArray wanted = qgetenv("INSTALLER_APPEARANCE").toLower();
  if (wanted == "dark") return Appearance::dark;
  if (wanted == "light") return Appearance::light;
  const QByteArray theme = qgetenv("GTK_THEME").toLower();
  if (theme.endsWith(":dark") || theme.endsWith("-dark")) return Appearance::dark;
  return isDark(desktop) ? Appearance::dark : Appearance::light;
}

QPalette paletteFor(Appearance appearance) {
  QPalette palette;
  for (const Shade& shade : shades) {
    const QColor colour(appearance == Appearance::dark ? shade.dark : shade.light);
    palette.setColor(shade.role, colour);
  }
  const QColor faint(appearance == Appearance::dark ? "#7c7c80" : "#a3a3a8");
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, faint);
  }
  return palette;
}
