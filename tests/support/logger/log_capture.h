// SPDX-License-Identifier: Apache-2.0
// The middleware's log while a test looks: an output device that keeps the messages.
#pragma once

#include <gtest/gtest.h>
#include <kolt/config_logger.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace support {

struct LogLine {
    std::string text;
    KOLT_Config_LogLevel level;
    bool is_security;
    std::thread::id thread;  // the one that logged
};

// The logger's output device for a scope. May be written to by any thread.
class LogCapture {
  public:
    LogCapture() { KOLT_Config_Logger_set_output_device(logger(), &device_); }
    ~LogCapture() { KOLT_Config_Logger_set_output_device(logger(), nullptr); }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    // Returns the messages that contain `part`.
    std::vector<LogLine> lines(const std::string &part = "") const {
        const std::lock_guard lock(mutex_);
        std::vector<LogLine> found;
        for (const LogLine &line : lines_) {
            if (line.text.find(part) != std::string::npos) {
                found.push_back(line);
            }
        }
        return found;
    }
    bool has(const std::string &part) const { return !lines(part).empty(); }
    // Returns how many messages of the level contain `part`.
    int count(KOLT_Config_LogLevel level, const std::string &part) const {
        const std::vector<LogLine> found = lines(part);
        return static_cast<int>(std::count_if(
            found.begin(), found.end(), [&](const LogLine &line) { return line.level == level; }));
    }
    // Returns the messages, one a line.
    std::string text() const { return joined(lines()); }
    // Forgets the messages.
    void clear() {
        const std::lock_guard lock(mutex_);
        lines_.clear();
    }

    // Returns the messages, one a line, and forgets them.
    std::string take() {
        const std::lock_guard lock(mutex_);
        return joined(std::exchange(lines_, {}));
    }
    // Succeeds when a message contains `part`. Forgets the messages.
    testing::AssertionResult saw(const std::string &part) {
        const std::string logged = take();
        if (logged.find(part) != std::string::npos) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << "\"" << part << "\" is not in \"" << logged << "\"";
    }

  private:
    static std::string joined(const std::vector<LogLine> &lines) {
        std::string all;
        for (const LogLine &line : lines) {
            all += line.text + "\n";
        }
        return all;
    }
    static KOLT_Config_Logger *logger() { return KOLT_Config_Logger_get_instance(); }
    static void write(KOLT_Config_LoggerDevice *device, const KOLT_Config_LogMessage *message) {
        auto *const self = static_cast<LogCapture *>(device->device_data);
        const std::lock_guard lock(self->mutex_);
        self->lines_.push_back({message->text, message->level, message->is_security_message != 0,
                                std::this_thread::get_id()});
    }

    mutable std::mutex mutex_;
    std::vector<LogLine> lines_;
    KOLT_Config_LoggerDevice device_{this, write, nullptr};
};

}  // namespace support
