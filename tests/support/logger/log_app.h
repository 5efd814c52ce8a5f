// SPDX-License-Identifier: Apache-2.0
// The application of helper_log_app in a process of its own.
#pragma once

#include <string>

#include "support/platform/process.h"

namespace support {

class LogApp {
  public:
    LogApp() : process_({helper_path("helper_log_app")}) {}

    // Has the application carry out a line; false when it failed or has gone.
    bool run(const std::string &line) {
        process_.say(line);
        // Echoed messages may come before the answer.
        for (;;) {
            const std::optional<std::string> answer = process_.read_line();
            if (!answer || *answer == "failed") {
                return false;
            }
            if (*answer == "ok") {
                return true;
            }
        }
    }
    // Has the application carry out a line that ends it, which it does not answer.
    void say(const std::string &line) { process_.say(line); }
    ChildProcess &process() { return process_; }
    // Ends the application in good order and returns its exit code.
    std::optional<int> end() {
        process_.close_input();
        return process_.wait();
    }

  private:
    ChildProcess process_;
};

}  // namespace support
