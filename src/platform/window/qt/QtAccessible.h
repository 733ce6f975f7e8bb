// SPDX-License-Identifier: Apache-2.0

#pragma once

class QListWidget;

/// Has screen readers told what Qt leaves out: the roles that a description gives to plain widgets and labels
/// ("heading", "list", "listItem", "group"), and rows that can be ticked. Progress is told now and then only. Once for
/// the application.
void prepareAccessibility();

/// Says that the tick of the row has changed.
void announceTick(QListWidget& list, int row);
