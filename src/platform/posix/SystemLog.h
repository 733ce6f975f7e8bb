#pragma once

#include "platform/Log.h"

/// Standard error and syslog.
class SystemLog : public Log {
 public:
  SystemLog();
  SystemLog(const SystemLog&) = delete;
  SystemLog& operator=(const SystemLog&) = delete;
  ~SystemLog() override;

  void write(std::string_view message) override;
};
