// The middleware's own log while a document is checked: kept, instead of printed.
#pragma once

#include <kolt/config_logger.h>

#include <string>
#include <vector>

namespace distlog::check {

class MiddlewareLog {
  public:
    // Until its end, errors of the middleware come here, without the fields in front of their text.
    MiddlewareLog();
    ~MiddlewareLog();
    MiddlewareLog(const MiddlewareLog &) = delete;
    MiddlewareLog &operator=(const MiddlewareLog &) = delete;

    // What has come since the last call.
    std::vector<std::string> take();

  private:
    KOLT_Config_LoggerDevice device_;
    KOLT_Config_LogPrintFormat format_;
    std::vector<std::string> messages_;
};

}  // namespace distlog::check
