// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <memory>

#include "platform/MetadataQuery.h"
#include "platform/files/Volume.h"
#include "platform/processes/DescriptorRunLoop.h"

/// Queries that look for themselves: there is no index, the folders of the volume are walked.
class FolderQueries : public MetadataQueries {
 public:
  FolderQueries(const Volume& volume, DescriptorRunLoop& runLoop) : volume_(volume), runLoop_(runLoop) {}

  [[nodiscard]] std::unique_ptr<MetadataQuery> makeQuery() override;

 private:
  const Volume& volume_;
  DescriptorRunLoop& runLoop_;
};
