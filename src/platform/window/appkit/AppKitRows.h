// SPDX-License-Identifier: Apache-2.0

#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <vector>

#include "platform/InterfaceOwner.h"

/// A list of choices: a tick, a picture, a text and a smaller one below it. The space bar ticks the selected row.
@interface InstallerTable : NSTableView {
 @private
  std::vector<ListRow>* rows_;
  std::function<void(std::size_t row, bool isTicked)>* ticked_;
}
- (void)setUp;
- (void)setTicked:(std::function<void(std::size_t row, bool isTicked)>)ticked;
/// What is selected stays selected.
- (void)showRows:(const std::vector<ListRow>&)rows;
- (const std::vector<ListRow>&)shownRows;
@end
