// SPDX-License-Identifier: Apache-2.0
// The process's logger for tests: created with given options, finalised with the scope.
#pragma once

#include <vur_dl/DistLogger.h>
#include <vur_dl/Options.h>

#include <string>

namespace support {

// Quiet by default, without echo and forwarding, so that a test sees only its own messages.
struct LoggerOptions {
    int domain = 0;
    int filter_level = 600;
    int queue_size = 128;
    bool echo = false;
    bool forward = false;
    bool remote = true;
    std::string kind = {};
    DDS_DomainParticipant *participant = nullptr;
};

// Stores the options for the next creation; false when they are refused.
bool store_options(const LoggerOptions &options);

class Logger {
  public:
    // `get` is NULL when the creation failed.
    explicit Logger(const LoggerOptions &options);
    ~Logger();
    Logger(const Logger &) = delete;
    Logger &operator=(const Logger &) = delete;

    VUR_DL_DistLogger *get() const { return logger_; }
    // Logs a message. May be called when the creation failed.
    void log(int level, const std::string &message, const std::string &category = "") const;

  private:
    VUR_DL_DistLogger *logger_;
};

}  // namespace support
