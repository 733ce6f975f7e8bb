// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <QObject>
#include <functional>

#include "platform/window/Bindings.h"

/// The binding with the name (bindText, bindEnabled, …) for the control; empty when there is none of that name for that
/// kind of control.
[[nodiscard]] ShowValue makeBinding(const std::string& name, QObject& control);

/// Fills a list with rows; what is selected stays selected, and rows that only change their ticks stay in their place.
/// `genericPicture` stands in for a row without one.
[[nodiscard]] ShowValue makeRowsBinding(QObject& control, std::function<Picture()> genericPicture);
