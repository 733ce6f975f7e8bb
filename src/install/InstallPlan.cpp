// SPDX-License-Identifier: Apache-2.0

#include "install/InstallPlan.h"

TreeSize InstallPlan::totalSize() const {
  TreeSize total;
  for (const PlannedGroup& group : groups_) {
    for (const PlannedBatch& batch : group.batches) {
      for (const PlannedItem& item : batch.items) {
        if (!item.isAttempted()) continue;
        total.bytes += item.size.bytes;
        total.allocated += item.size.allocated;
        total.files += item.size.files;
      }
    }
  }
  return total;
}
