// SPDX-License-Identifier: Apache-2.0

#include "platform/posix/SystemLog.h"

#include <paths.h>
#include <sys/syslog.h>
#include <syslog.h>
#include <unistd.h>

#include <iostream>

#include "foundation/Text.h"

SystemLog::SystemLog() : hasSyslog_(::access(_PATH_LOG, W_OK) == 0) {
  // Without it, the C library would look for it again with every line.
  if (hasSyslog_) ::openlog("Installer", LOG_PID, LOG_USER);
}

SystemLog::~SystemLog() { ::closelog(); }

void SystemLog::write(std::string_view message) {
  const std::string line = onOneLine(message);
  std::cerr << line + '\n';
  if (hasSyslog_) ::syslog(LOG_NOTICE, "%s", line.c_str());
}
