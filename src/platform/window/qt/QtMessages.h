// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Log.h"

/// As long as this lives, what Qt has to say goes to the log, each message once, and nothing of it to the terminal.
/// Where Qt would end the process, it ends with one line on standard error and the status of a service that is not
/// available.
class QtMessages {
 public:
  explicit QtMessages(Log& log);
  ~QtMessages();
  QtMessages(const QtMessages&) = delete;
  QtMessages& operator=(const QtMessages&) = delete;
};

/// The library behind TIFF pictures complains about damaged ones on the terminal; not any more after this. It is the
/// one that Qt's plug-in for the format loads.
void silenceTiff();
