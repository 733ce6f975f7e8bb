// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "platform/Log.h"

/// Standard error, and syslog where the system has one.
class SystemLog : public Log {
 public:
  SystemLog();
  SystemLog(const SystemLog&) = delete;
  SystemLog& operator=(const SystemLog&) = delete;
  ~SystemLog() override;

  void write(std::string_view message) override;

 private:
  bool hasSyslog_;
};
