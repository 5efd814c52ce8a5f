// SPDX-License-Identifier: Apache-2.0
// The middleware's own log while a document is checked: it is kept instead of printed.
#pragma once

#include <kolt/config_logger.h>

#include <string>
#include <vector>

namespace distlog::check {

class MiddlewareLog {
  public:
    // Collects the middleware's messages until its end, without the fields in front of their text.
    MiddlewareLog();
    ~MiddlewareLog();
    MiddlewareLog(const MiddlewareLog &) = delete;
    MiddlewareLog &operator=(const MiddlewareLog &) = delete;

    // Returns the messages that have come since the last call.
    std::vector<std::string> take();

  private:
    KOLT_Config_LoggerDevice device_;
    KOLT_Config_LogPrintFormat format_;
    std::vector<std::string> messages_;
};

}  // namespace distlog::check
