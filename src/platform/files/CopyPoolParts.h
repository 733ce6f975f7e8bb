// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <new>
#include <utility>

#include "platform/files/CopyPool.h"
#include "platform/files/SystemCalls.h"

struct CopyPool::Item {
  explicit Item(Request asked) : request(std::move(asked)) {}

  void note(const CopyErrors& errors, const std::string& subject) {
    if (errors.content == 0 && errors.attribute == 0) return;
    const std::lock_guard guard(mutex);
    if (errors.content != 0 && outcome.content) outcome.content = systemError(errors.content, subject);
    if (errors.attribute != 0 && outcome.attributes) outcome.attributes = systemError(errors.attribute, subject);
    hasFailed = hasFailed || errors.content != 0;
  }

  Request request;
  std::atomic<bool> hasFailed = false;
  std::atomic<bool> lacksMemory = false;
  std::atomic<std::size_t> parts = 1;  ///< jobs and folders that are not finished; the item is done at 0
  std::mutex mutex;
  Outcome outcome;
};

/// A folder being copied. It gets its attributes when the last one who holds it lets go: what is still put into it
/// would change its modification time.
struct CopyPool::Folder {
  Folder(std::shared_ptr<Item> copied, FileDescriptor from, FileDescriptor to)
      : item(std::move(copied)), source(std::move(from)), target(std::move(to)) {
    ++item->parts;
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;
  ~Folder() {
    try {
      if (!item->hasFailed) {
        item->note(copyAttributes(source.get(), target.get(), item->request.attributes), item->request.sourceName);
      }
    } catch (const std::bad_alloc&) {
      item->lacksMemory = item->hasFailed = true;  // telling of it needs memory, too
    }
    --item->parts;
  }

  std::shared_ptr<Item> item;
  FileDescriptor source;
  FileDescriptor target;
};
