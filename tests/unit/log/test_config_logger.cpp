// SPDX-License-Identifier: Apache-2.0
// The middleware's logger: verbosities, print formats, devices.

#include <gtest/gtest.h>
#include <kolt/config_logger.h>
#include <kolt/os.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <functional>
#include <memory>
#include <mutex>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace {

KOLT_Config_Logger *logger() {
    return KOLT_Config_Logger_get_instance();
}

struct Line {
    std::string text;
    KOLT_Config_LogMessage message;
};

// A device that keeps what it gets, and does what a test wants to be done inside a write.
class Device {
  public:
    explicit Device(std::function<void(const KOLT_Config_LogMessage &)> inside = {})
        : inside_(std::move(inside)) {}
    ~Device() {
        if (KOLT_Config_Logger_get_output_device(logger()) == &device_) {
            KOLT_Config_Logger_set_output_device(logger(), nullptr);
        }
    }
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;

    KOLT_Config_LoggerDevice *get() { return &device_; }
    bool install() { return KOLT_Config_Logger_set_output_device(logger(), &device_); }
    int closed() const { return closed_; }
    std::vector<Line> lines() const {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    std::string last() const {
        const std::lock_guard lock(mutex_);
        return lines_.empty() ? "" : lines_.back().text;
    }

  private:
    static void write(KOLT_Config_LoggerDevice *device, const KOLT_Config_LogMessage *message) {
        auto *self = static_cast<Device *>(device->device_data);
        {
            const std::lock_guard lock(self->mutex_);
            self->lines_.push_back({message->text, *message});
        }
        if (self->inside_) {
            self->inside_(*message);
        }
        EXPECT_EQ(self->closed_, 0) << "written to after close";
    }
    static void close(KOLT_Config_LoggerDevice *device) {
        ++static_cast<Device *>(device->device_data)->closed_;
    }

    std::function<void(const KOLT_Config_LogMessage &)> inside_;
    mutable std::mutex mutex_;
    std::vector<Line> lines_;
    std::atomic<int> closed_{0};
    KOLT_Config_LoggerDevice device_{this, write, close};
};

// Each test runs in a process of its own under ctest; this makes them independent without it, too.
class ConfigLogger : public testing::Test {
  protected:
    void SetUp() override {
        KOLT_Config_Logger_set_verbosity(logger(), KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
        KOLT_Config_Logger_set_print_format(logger(), KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL);
    }
    void TearDown() override {
        KOLT_Config_Logger_set_output_device(logger(), nullptr);
        KOLT_Config_Logger_set_verbosity(logger(), KOLT_CONFIG_LOG_VERBOSITY_ERROR);
        KOLT_Config_Logger_set_print_format(logger(), KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
    }
};

void log_user(const char *text) {
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_USER, KOLT_CONFIG_LOG_LEVEL_ERROR, "f", "%s", text);
}

// ---- Verbosity ----

TEST(ConfigLoggerDefaults, AreErrorAndDefault) {
    ASSERT_NE(logger(), nullptr);
    EXPECT_EQ(logger(), KOLT_Config_Logger_get_instance());
    EXPECT_EQ(KOLT_Config_Logger_get_verbosity(logger()), KOLT_CONFIG_LOG_VERBOSITY_ERROR);
    EXPECT_EQ(KOLT_Config_Logger_get_print_format(logger()), KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
    EXPECT_EQ(KOLT_Config_Logger_get_output_device(logger()), nullptr);
}

TEST_F(ConfigLogger, VerbosityIsPerCategory) {
    KOLT_Config_Logger_set_verbosity(logger(), KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    for (int i = 0; i < KOLT_CONFIG_LOG_CATEGORY_COUNT; ++i) {
        const auto category = static_cast<KOLT_Config_LogCategory>(i);
        EXPECT_EQ(KOLT_Config_Logger_get_verbosity_by_category(logger(), category),
                  KOLT_CONFIG_LOG_VERBOSITY_SILENT);
        KOLT_Config_Logger_set_verbosity_by_category(logger(), category,
                                                     KOLT_CONFIG_LOG_VERBOSITY_WARNING);
        for (int j = 0; j < KOLT_CONFIG_LOG_CATEGORY_COUNT; ++j) {
            EXPECT_EQ(
                KOLT_Config_Logger_get_verbosity_by_category(
                    logger(), static_cast<KOLT_Config_LogCategory>(j)),
                i == j ? KOLT_CONFIG_LOG_VERBOSITY_WARNING : KOLT_CONFIG_LOG_VERBOSITY_SILENT);
        }
        EXPECT_EQ(KOLT_Config_Logger_get_verbosity(logger()), KOLT_CONFIG_LOG_VERBOSITY_WARNING);
        KOLT_Config_Logger_set_verbosity_by_category(logger(), category,
                                                     KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    }
}

struct Passes {
    KOLT_Config_LogVerbosity verbosity;
    std::array<bool, 6> levels;
};

TEST_F(ConfigLogger, VerbosityIsAMaskOfLevels) {
    const Passes table[] = {
        {KOLT_CONFIG_LOG_VERBOSITY_SILENT, {}},
        {KOLT_CONFIG_LOG_VERBOSITY_ERROR, {true, true}},
        {KOLT_CONFIG_LOG_VERBOSITY_WARNING, {true, true, true}},
        {KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL, {true, true, true, true}},
        {KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE, {true, true, true, true, true}},
        {KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL, {true, true, true, true, true, true}},
        {static_cast<KOLT_Config_LogVerbosity>(0x21), {true, false, false, false, false, true}},
    };
    Device device;
    ASSERT_TRUE(device.install());
    for (const auto &row : table) {
        KOLT_Config_Logger_set_verbosity(logger(), row.verbosity);
        EXPECT_EQ(KOLT_Config_Logger_get_verbosity(logger()), row.verbosity);
        for (int i = 0; i < 6; ++i) {
            const auto level = static_cast<KOLT_Config_LogLevel>(i);
            const auto before = device.lines().size();
            KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, level, "f", "text");
            const bool expected = row.levels[static_cast<std::size_t>(i)];
            EXPECT_EQ(device.lines().size() - before, expected ? 1U : 0U);
            EXPECT_EQ(KOLT_Log_is_enabled(KOLT_CONFIG_LOG_CATEGORY_API, level), expected);
        }
    }
}

TEST_F(ConfigLogger, UnknownCategoriesAndLevelsAreSilent) {
    Device device;
    device.install();
    for (const int bad : {8, 100, -1}) {
        const auto category = static_cast<KOLT_Config_LogCategory>(bad);
        const auto level = static_cast<KOLT_Config_LogLevel>(bad);
        EXPECT_EQ(KOLT_Config_Logger_get_verbosity_by_category(logger(), category),
                  KOLT_CONFIG_LOG_VERBOSITY_SILENT);
        KOLT_Config_Logger_set_verbosity_by_category(logger(), category,
                                                     KOLT_CONFIG_LOG_VERBOSITY_SILENT);
        EXPECT_FALSE(KOLT_Log_is_enabled(category, KOLT_CONFIG_LOG_LEVEL_ERROR));
        EXPECT_FALSE(KOLT_Log_is_enabled(KOLT_CONFIG_LOG_CATEGORY_API, level));
        KOLT_Log_message(category, KOLT_CONFIG_LOG_LEVEL_ERROR, "f", "text");
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, level, "f", "text");
    }
    EXPECT_TRUE(device.lines().empty());
    EXPECT_EQ(KOLT_Config_Logger_get_verbosity(logger()), KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
}

TEST_F(ConfigLogger, NullLoggerIsHarmless) {
    EXPECT_EQ(KOLT_Config_Logger_get_verbosity(nullptr), KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    EXPECT_EQ(KOLT_Config_Logger_get_verbosity_by_category(nullptr, KOLT_CONFIG_LOG_CATEGORY_API),
              KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    KOLT_Config_Logger_set_verbosity(nullptr, KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    KOLT_Config_Logger_set_verbosity_by_category(nullptr, KOLT_CONFIG_LOG_CATEGORY_API,
                                                 KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    EXPECT_EQ(KOLT_Config_Logger_get_verbosity(logger()), KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
    EXPECT_EQ(KOLT_Config_Logger_get_print_format(nullptr), KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
    EXPECT_FALSE(KOLT_Config_Logger_set_print_format(nullptr, KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG));
    EXPECT_FALSE(KOLT_Config_Logger_set_output_device(nullptr, nullptr));
    EXPECT_EQ(KOLT_Config_Logger_get_output_device(nullptr), nullptr);
}

// ---- Formats ----

TEST_F(ConfigLogger, EachNamedFormatPrintsItsFields) {
    const std::string time = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6}Z )";
    const std::string where =
        " pid=" + std::to_string(getpid()) + " tid=" + std::to_string(gettid()) + " thread=tester ";
    const std::vector<std::pair<KOLT_Config_LogPrintFormat, std::string>> formats = {
        {KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL, "one\ntwo"},
        {KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT, "WARNING kolt method: one\n    two"},
        {KOLT_CONFIG_LOG_PRINT_FORMAT_TIMESTAMPED, time + "WARNING kolt method: one\n    two"},
        {KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE,
         R"(WARNING kolt category=entities thread=tester id=\d+ method: one)"
         "\n    two"},
        {KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED,
         time + R"(WARNING kolt category=entities thread=tester id=\d+ method: one)" + "\n    two"},
        {KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG,
         "WARNING kolt category=entities facility=middleware" + where + "method:\none\ntwo"},
        {KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL,
         time + "WARNING kolt category=entities facility=middleware" + where +
             R"(id=\d+ method: one)" + "\ntwo"},
    };
    char name[32] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    pthread_setname_np(pthread_self(), "tester");
    Device device;
    device.install();
    for (const auto &[mask, pattern] : formats) {
        ASSERT_TRUE(KOLT_Config_Logger_set_print_format(logger(), mask));
        EXPECT_EQ(KOLT_Config_Logger_get_print_format(logger()), mask);
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_ENTITIES, KOLT_CONFIG_LOG_LEVEL_WARNING, "method",
                         "one\ntw%c\n", 'o');
        EXPECT_TRUE(std::regex_match(device.last(), std::regex(pattern)))
            << device.last() << "\nagainst " << pattern;
    }
    pthread_setname_np(pthread_self(), name);
}

TEST_F(ConfigLogger, AnyCombinationOfKnownBitsIsAFormat) {
    Device device;
    device.install();
    const auto level_and_text = static_cast<KOLT_Config_LogPrintFormat>(0x12);
    ASSERT_TRUE(KOLT_Config_Logger_set_print_format(logger(), level_and_text));
    log_user("text");
    EXPECT_EQ(device.last(), "ERROR: text");
    for (const int bad : {0, 0x80, 0x4000, 0x3412 | 0x80, 0x10000, -1}) {
        EXPECT_FALSE(KOLT_Config_Logger_set_print_format(
            logger(), static_cast<KOLT_Config_LogPrintFormat>(bad)));
        EXPECT_EQ(KOLT_Config_Logger_get_print_format(logger()), level_and_text);
    }
}

TEST_F(ConfigLogger, SecurityMessagesAreMarked) {
    Device device;
    device.install();
    KOLT_Config_Logger_set_print_format(logger(), KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_SECURITY, KOLT_CONFIG_LOG_LEVEL_FATAL_ERROR, nullptr,
                     "text");
    EXPECT_EQ(device.last(), "FATAL [security] kolt: text");
    EXPECT_TRUE(device.lines().back().message.is_security_message);
    EXPECT_EQ(device.lines().back().message.facility, KOLT_CONFIG_LOG_FACILITY_SECURITY_EVENT);
    log_user("text");
    EXPECT_FALSE(device.lines().back().message.is_security_message);
}

TEST_F(ConfigLogger, MessageRecordIsFilled) {
    Device device;
    device.install();
    const auto before = std::time(nullptr);
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_STATUS_REMOTE, "f", "a");
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_USER, KOLT_CONFIG_LOG_LEVEL_DEBUG, "f", "b");
    const auto after = std::time(nullptr);
    const auto lines = device.lines();
    ASSERT_EQ(lines.size(), 2U);
    const auto &first = lines[0].message;
    const auto &second = lines[1].message;
    EXPECT_EQ(first.level, KOLT_CONFIG_LOG_LEVEL_STATUS_REMOTE);
    EXPECT_EQ(first.facility, KOLT_CONFIG_LOG_FACILITY_MIDDLEWARE);
    EXPECT_EQ(second.facility, KOLT_CONFIG_LOG_FACILITY_USER);
    EXPECT_EQ(second.message_id, first.message_id + 1);
    // time() may lag behind the clock by a tick.
    EXPECT_GE(first.timestamp.sec + 1, before);
    EXPECT_LE(first.timestamp.sec, after + 1);
    EXPECT_LT(first.timestamp.nanosec, 1'000'000'000U);
}

TEST_F(ConfigLogger, LongTextsArriveWhole) {
    Device device;
    device.install();
    KOLT_Config_Logger_set_print_format(logger(), KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL);
    for (const std::size_t length : {0U, 510U, 511U, 512U, 513U, 1023U, 1024U, 5000U, 100000U}) {
        const std::string text(length, 'x');
        log_user(text.c_str());
        const auto last = device.last();
        EXPECT_EQ(last.substr(last.size() - length), text);
        EXPECT_EQ(std::count(last.begin(), last.end(), 'x'), static_cast<std::ptrdiff_t>(length));
    }
}

TEST_F(ConfigLogger, KeepsErrno) {
    Device device([](const auto &) { errno = EINTR; });
    device.install();
    errno = ENOENT;
    log_user("text");
    EXPECT_EQ(errno, ENOENT);
}

// ---- Devices ----

TEST_F(ConfigLogger, DeviceIsReplacedAndClosedOnce) {
    Device first;
    Device second;
    EXPECT_TRUE(first.install());
    EXPECT_EQ(KOLT_Config_Logger_get_output_device(logger()), first.get());
    EXPECT_TRUE(first.install());
    EXPECT_EQ(first.closed(), 0);
    EXPECT_TRUE(second.install());
    EXPECT_EQ(first.closed(), 1);
    log_user("text");
    EXPECT_TRUE(first.lines().empty());
    EXPECT_EQ(second.last(), "text");
    EXPECT_TRUE(KOLT_Config_Logger_set_output_device(logger(), nullptr));
    EXPECT_EQ(second.closed(), 1);
    EXPECT_EQ(KOLT_Config_Logger_get_output_device(logger()), nullptr);
}

TEST_F(ConfigLogger, RefusesADeviceThatCannotWrite) {
    KOLT_Config_LoggerDevice device{};
    EXPECT_FALSE(KOLT_Config_Logger_set_output_device(logger(), &device));
    EXPECT_EQ(KOLT_Config_Logger_get_output_device(logger()), nullptr);
}

TEST_F(ConfigLogger, DeviceWithoutCloseIsFine) {
    static int written = 0;
    KOLT_Config_LoggerDevice device{};
    device.write = [](KOLT_Config_LoggerDevice *, const KOLT_Config_LogMessage *) { ++written; };
    EXPECT_TRUE(KOLT_Config_Logger_set_output_device(logger(), &device));
    log_user("text");
    EXPECT_EQ(written, 1);
    EXPECT_TRUE(KOLT_Config_Logger_set_output_device(logger(), nullptr));
}

TEST_F(ConfigLogger, StandardOutputGetsOneLineAMessage) {
    testing::internal::CaptureStdout();
    log_user("first\n");
    log_user("second");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "first\nsecond\n");
}

TEST_F(ConfigLogger, MessagesFromWithinAWriteGoToStandardOutput) {
    Device device([](const auto &) { log_user("from within"); });
    device.install();
    testing::internal::CaptureStdout();
    log_user("from without");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "from within\n");
    EXPECT_EQ(device.lines().size(), 1U);
    EXPECT_EQ(device.last(), "from without");
}

TEST_F(ConfigLogger, AnotherThreadMayEnterMeanwhile) {
    std::atomic<bool> nested{false};
    Device device([&](const auto &) {
        if (!nested.exchange(true)) {
            std::thread([] { log_user("second"); }).join();
        }
    });
    device.install();
    log_user("first");
    EXPECT_EQ(device.lines().size(), 2U);
}

TEST_F(ConfigLogger, DeviceMayReplaceItselfFromWithin) {
    Device next;
    Device *self = nullptr;
    int closed_inside = -1;
    Device device([&](const auto &) {
        EXPECT_TRUE(next.install());
        log_user("to the next");
        closed_inside = self->closed();
    });
    self = &device;
    device.install();
    log_user("text");
    EXPECT_EQ(closed_inside, 0);
    EXPECT_EQ(device.closed(), 1);
    EXPECT_EQ(next.last(), "to the next");
}

TEST_F(ConfigLogger, ReplacingWaitsForWritersOnOtherThreads) {
    KOLT_Semaphore *entered = KOLT_Semaphore_new(0);
    KOLT_Semaphore *may_leave = KOLT_Semaphore_new(0);
    std::atomic<bool> left{false};
    Device device([&](const auto &) {
        KOLT_Semaphore_give(entered);
        KOLT_Semaphore_take(may_leave, nullptr);
        left = true;
    });
    device.install();
    std::thread writer([] { log_user("text"); });
    KOLT_Semaphore_take(entered, nullptr);
    std::atomic<bool> replaced{false};
    std::thread replacer([&] {
        KOLT_Config_Logger_set_output_device(logger(), nullptr);
        EXPECT_TRUE(left);
        EXPECT_EQ(device.closed(), 1);
        replaced = true;
    });
    while (KOLT_Config_Logger_get_output_device(logger()) != nullptr) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(replaced);
    EXPECT_EQ(device.closed(), 0);
    KOLT_Semaphore_give(may_leave);
    writer.join();
    replacer.join();
    EXPECT_TRUE(replaced);
    KOLT_Semaphore_delete(entered);
    KOLT_Semaphore_delete(may_leave);
}

// Devices come, are freed right after set_output_device has returned, and go, while threads log.
TEST_F(ConfigLogger, DevicesMayBeFreedOnceReplaced) {
    std::atomic<bool> running{true};
    std::atomic<int> written{0};
    auto current = std::make_unique<Device>([&](const auto &) { ++written; });
    current->install();
    std::vector<std::thread> threads;
    for (int t = 0; t < 3; ++t) {
        threads.emplace_back([&] {
            while (running) {
                log_user("text");
            }
        });
    }
    for (int i = 0; i < 300 || written < 100; ++i) {
        auto next = std::make_unique<Device>([&](const auto &) { ++written; });
        next->install();
        EXPECT_EQ(current->closed(), 1);
        current = std::move(next);
        KOLT_Config_Logger_set_verbosity(logger(), i % 2 != 0 ? KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL
                                                              : KOLT_CONFIG_LOG_VERBOSITY_ERROR);
    }
    running = false;
    for (auto &thread : threads) {
        thread.join();
    }
    KOLT_Config_Logger_set_output_device(logger(), nullptr);
    EXPECT_EQ(current->closed(), 1);
}

}  // namespace
