#include "platform/posix/SystemLog.h"

#include <syslog.h>

#include <iostream>

#include "foundation/Text.h"

SystemLog::SystemLog() { ::openlog("Installer", LOG_PID, LOG_USER); }
SystemLog::~SystemLog() { ::closelog(); }

void SystemLog::write(std::string_view message) {
  const std::string line = onOneLine(message);
  std::cerr << line + '\n';
  ::syslog(LOG_NOTICE, "%s", line.c_str());
}
