// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Predicate.h"

/// Attributes of what a query finds, and keys of its predicate: the name in its folder, and the full path.
inline constexpr std::string_view kMDItemFSName = "kMDItemFSName";
inline constexpr std::string_view kMDItemPath = "kMDItemPath";

/// A search for files and folders by their attributes. It gathers its results while the run loop runs, a bounded piece
/// of work each time, so that a window stays alive. One query serves any number of searches, one after another.
class MetadataQuery {
 public:
  MetadataQuery() = default;
  MetadataQuery(const MetadataQuery&) = delete;
  MetadataQuery& operator=(const MetadataQuery&) = delete;
  virtual ~MetadataQuery() = default;

  /// What is searched for, in terms of the attributes above. Counts from the next start on.
  virtual void setPredicate(const Predicate& predicate) = 0;

  /// The folders that are searched, each with everything below it but without itself, hidden items and the content of
  /// packages included. Links are found, not followed. Counts from the next start on.
  virtual void setSearchScopes(const std::vector<std::string>& folders) = 0;

  /// Begins to gather; the results of an earlier search are gone. False when there is no predicate.
  virtual bool startQuery() = 0;

  /// From the start until everything is found, or until it is stopped. What cannot be read, or goes away meanwhile, is
  /// passed over.
  [[nodiscard]] virtual bool isGathering() const = 0;

  /// Gathers no more; what was found stays.
  virtual void stopQuery() = 0;

  // Results are in ascending byte order of their paths once gathering has ended, in no particular order before.
  [[nodiscard]] virtual std::size_t resultCount() const = 0;

  /// An attribute of a result; empty for one that it does not have. `index` is below resultCount().
  [[nodiscard]] virtual std::string valueOfAttribute(std::string_view attribute,
                                                     std::size_t forResultAtIndex) const = 0;
};

class MetadataQueries {
 public:
  MetadataQueries() = default;
  MetadataQueries(const MetadataQueries&) = delete;
  MetadataQueries& operator=(const MetadataQueries&) = delete;
  virtual ~MetadataQueries() = default;

  /// The query must not outlive this.
  [[nodiscard]] virtual std::unique_ptr<MetadataQuery> makeQuery() = 0;
};
