// SPDX-License-Identifier: Apache-2.0

#include "platform/window/appkit/AppKitRows.h"

#include <utility>

#include "platform/window/appkit/AppKitControls.h"
#include "platform/window/appkit/AppKitPicture.h"

namespace {

constexpr CGFloat rowHeight = 40;
constexpr CGFloat detailSize = 11;

/// The text, and the detail in a line of its own.
NSAttributedString* textOf(const ListRow& row) {
  NSMutableParagraphStyle* const style = [[[NSMutableParagraphStyle alloc] init] autorelease];
  [style setLineBreakMode:NSLineBreakByTruncatingMiddle];
  NSMutableAttributedString* const made = [[[NSMutableAttributedString alloc] init] autorelease];
  const auto append = [&](const std::string& text, CGFloat size, NSColor* colour) {
    NSString* const shown = toObject(text);
    if (shown == nil) return;
    NSMutableDictionary* const attributes = [NSMutableDictionary dictionary];
    [attributes setObject:[NSFont systemFontOfSize:size] forKey:NSFontAttributeName];
    [attributes setObject:colour forKey:NSForegroundColorAttributeName];
    [attributes setObject:style forKey:NSParagraphStyleAttributeName];
    ObjectReference<NSAttributedString> piece([[NSAttributedString alloc] initWithString:shown attributes:attributes]);
    [made appendAttributedString:piece.get()];
  };
  append(row.text, usualTextSize, [NSColor controlTextColor]);
  if (!row.detail.empty()) append("\n" + row.detail, detailSize, [NSColor disabledControlTextColor]);
  return made;
}

void addColumn(NSTableView* table, NSString* name, CGFloat width, NSCell* cell) {
  ObjectReference<NSTableColumn> column([[NSTableColumn alloc] initWithIdentifier:name]);
  [column.get() setWidth:width];
  [column.get() setDataCell:cell];
  [table addTableColumn:column.get()];
}

}  // namespace

@implementation InstallerTable
- (void)setUp {
  rows_ = new std::vector<ListRow>();
  ObjectReference<NSButtonCell> tick([[NSButtonCell alloc] init]);
  [tick.get() setButtonType:NSSwitchButton];
  [tick.get() setTitle:@""];
  addColumn(self, @"tick", 22, tick.get());
  ObjectReference<NSImageCell> picture([[NSImageCell alloc] init]);
  addColumn(self, @"picture", 32, picture.get());
  ObjectReference<NSTextFieldCell> text([[NSTextFieldCell alloc] init]);
  [text.get() setEditable:NO];
  addColumn(self, @"text", 320, text.get());
  [self setHeaderView:nil];
  [self setRowHeight:rowHeight];
  [self setAllowsMultipleSelection:NO];
  [self setDataSource:(id)self];
  [self setDelegate:(id)self];
}
- (void)dealloc {
  [self setDataSource:nil];
  [self setDelegate:nil];
  delete rows_;
  delete ticked_;
  [super dealloc];
}
- (void)setTicked:(std::function<void(std::size_t row, bool isTicked)>)ticked {
  delete std::exchange(ticked_, new std::function<void(std::size_t, bool)>(std::move(ticked)));
}
- (void)showRows:(const std::vector<ListRow>&)rows {
  const NSInteger selected = [self selectedRow];
  *rows_ = rows;
  [self reloadData];
  if (selected >= 0 && selected < [self numberOfRows]) {
    [self selectRowIndexes:[NSIndexSet indexSetWithIndex:static_cast<NSUInteger>(selected)] byExtendingSelection:NO];
  }
}
- (const std::vector<ListRow>&)shownRows {
  return *rows_;
}
- (void)tick:(NSInteger)row isTicked:(bool)isTicked {
  if (row < 0 || row >= [self numberOfRows] || ticked_ == nullptr) return;
  [[self retain] autorelease];
  const std::function<void(std::size_t, bool)> ticked = *ticked_;
  ticked(static_cast<std::size_t>(row), isTicked);
}
- (void)keyDown:(NSEvent*)event {
  const NSInteger row = [self selectedRow];
  if ([[event characters] isEqualToString:@" "] && row >= 0) {
    [self tick:row isTicked:!(*rows_)[static_cast<std::size_t>(row)].isTicked];
  } else {
    [super keyDown:event];
  }
}
- (NSInteger)numberOfRowsInTableView:(NSTableView*)table {
  return rows_ != nullptr ? static_cast<NSInteger>(rows_->size()) : 0;
}
- (id)tableView:(NSTableView*)table objectValueForTableColumn:(NSTableColumn*)column row:(NSInteger)row {
  const ListRow& shown = (*rows_)[static_cast<std::size_t>(row)];
  if ([[column identifier] isEqual:@"tick"]) return [NSNumber numberWithBool:shown.isTicked];
  if ([[column identifier] isEqual:@"picture"]) return imageOf(shown.picture);
  return textOf(shown);
}
- (void)tableView:(NSTableView*)table
    setObjectValue:(id)value
    forTableColumn:(NSTableColumn*)column
               row:(NSInteger)row {
  if ([[column identifier] isEqual:@"tick"]) [self tick:row isTicked:[value boolValue]];
}
// The texts are not for editing.
- (BOOL)tableView:(NSTableView*)table shouldEditTableColumn:(NSTableColumn*)column row:(NSInteger)row {
  return NO;
}
@end
