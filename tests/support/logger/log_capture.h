// What the middleware's logger says while a test looks.
#pragma once

#include <gtest/gtest.h>
#include <kolt/config_logger.h>

#include <mutex>
#include <string>
#include <utility>

namespace support {

class LogCapture {
  public:
    LogCapture() { KOLT_Config_Logger_set_output_device(logger(), &device_); }
    ~LogCapture() { KOLT_Config_Logger_set_output_device(logger(), nullptr); }
    LogCapture(const LogCapture &) = delete;
    LogCapture &operator=(const LogCapture &) = delete;

    // What was logged since the last call, one message after the other.
    std::string take() {
        const std::lock_guard lock(mutex_);
        return std::exchange(text_, {});
    }
    // Whether `text` was logged since the last call. Begins anew.
    testing::AssertionResult saw(const std::string &text) {
        const std::string logged = take();
        if (logged.find(text) != std::string::npos) {
            return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << "\"" << text << "\" is not in \"" << logged << "\"";
    }

  private:
    static KOLT_Config_Logger *logger() { return KOLT_Config_Logger_get_instance(); }
    static void write(KOLT_Config_LoggerDevice *device, const KOLT_Config_LogMessage *message) {
        auto *const self = static_cast<LogCapture *>(device->device_data);
        const std::lock_guard lock(self->mutex_);
        self->text_ += message->text;
        self->text_ += '\n';
    }

    std::mutex mutex_;
    std::string text_;
    KOLT_Config_LoggerDevice device_{this, write, nullptr};
};

}  // namespace support
