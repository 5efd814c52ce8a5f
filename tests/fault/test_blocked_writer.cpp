// SPDX-License-Identifier: Apache-2.0
// A State or a response whose write does not return: log calls, changes and the detaching of the
// logger do not wait for it.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <kolt/dds_c.h>
#include <vur_dl/DDSEntities.h>

#include <atomic>
#include <condition_variable>
#include <functional>
#include <future>
#include <mutex>
#include <string>
#include <thread>

#include "support/logger/logger.h"
#include "support/logger/monitor.h"
#include "support/platform/process.h"

namespace {

using support::kPatience;
using support::Logger;
using support::Monitor;
using support::StateSample;

// Holds the next write of a type back, before it reaches the platform, until it is let go. Later
// writes pass.
class HeldWrite {
  public:
    static void arm(const std::string &type) {
        const std::lock_guard lock(mutex());
        awaited_type = type;
        is_held = false;
    }
    static void let_go() {
        const std::lock_guard lock(mutex());
        is_held = false;
        changed().notify_all();
    }
    static bool wait_until_held() {
        return support::eventually([] {
            const std::lock_guard lock(mutex());
            return is_held;
        });
    }
    static void pass(DDS_DataWriter *writer) {
        std::unique_lock lock(mutex());
        if (!awaited_type.empty() &&
            DDS_DataWriter_get_endpoint_type_name(writer) == awaited_type) {
            awaited_type.clear();
            is_held = true;
            changed().wait(lock, [] { return !is_held; });
        }
    }

  private:
    static std::mutex &mutex() {
        static std::mutex instance;
        return instance;
    }
    static std::condition_variable &changed() {
        static std::condition_variable instance;
        return instance;
    }
    static inline std::string awaited_type;
    static inline bool is_held = false;
};

// Runs something on a thread of its own, and looks whether it comes back.
class Task {
  public:
    explicit Task(const std::function<void()> &work) : ended_(done_.get_future()) {
        thread_ = std::thread([this, work] {
            work();
            done_.set_value();
        });
    }
    ~Task() {
        HeldWrite::let_go();
        thread_.join();
    }
    Task(const Task &) = delete;
    Task &operator=(const Task &) = delete;

    bool ends() { return ended_.wait_for(kPatience) == std::future_status::ready; }
    bool is_under_way() {
        return ended_.wait_for(std::chrono::seconds(0)) != std::future_status::ready;
    }

  private:
    std::promise<void> done_;
    std::future<void> ended_;
    std::thread thread_;
};

// A logger whose State has been published to a monitor.
class BlockedWriter : public ::testing::Test {
  protected:
    void meet(int domain) {
        monitor_ = std::make_unique<Monitor>(Monitor::Settings{.domain = domain, .log = false});
        logger_ = std::make_unique<Logger>(support::LoggerOptions{.domain = domain});
        ASSERT_NE(logger_->get(), nullptr);
        ASSERT_TRUE(monitor_->wait_for_state(
            [](const StateSample &s) { return s.state == VUR_DL_STATE_OPERATIONAL; }));
    }
    void expect_that_finalising_goes_on_behind(Task &held) {
        VUR_DL_DistLogger *logger = logger_->get();
        std::atomic<int> result{-1};
        Task finalise([&] { result = VUR_DL_DistLogger_finalizeInstance(); });
        EXPECT_TRUE(
            support::eventually([] { return VUR_DL_DistLogger_isDistLoggerRunning() == 0; }));
        Task log([&] { VUR_DL_DistLogger_fatal(logger, "while a write is held up"); });
        EXPECT_TRUE(log.ends());
        EXPECT_TRUE(held.is_under_way());
        HeldWrite::let_go();
        EXPECT_TRUE(held.ends());
        EXPECT_TRUE(finalise.ends());
        EXPECT_EQ(result, 0);
        EXPECT_TRUE(monitor_->wait_for_state([](const StateSample &s) {
            return s.valid && s.state == VUR_DL_STATE_NONOPERATIONAL;
        }));
    }

    std::unique_ptr<Monitor> monitor_;
    std::unique_ptr<Logger> logger_;
};

TEST_F(BlockedWriter, AResponseHoldsUpNeitherFinalisationNorLogCalls) {
    ASSERT_NO_FATAL_FAILURE(meet(41));
    VUR_DL_ADMIN_CommandRequest request;
    ASSERT_TRUE(VUR_DL_ADMIN_CommandRequest_initialize(&request));
    request.command._d = VUR_DL_SET_LOG_LEVEL;
    request.command._u.filterLevel = 700;
    HeldWrite::arm("VUR::DL::ADMIN::CommandResponse");
    {
        Task command([&] { VUR_DL_DistLogger_processCommand(logger_->get(), &request); });
        ASSERT_TRUE(HeldWrite::wait_until_held());
        expect_that_finalising_goes_on_behind(command);
    }
    VUR_DL_ADMIN_CommandRequest_finalize(&request);
}

TEST_F(BlockedWriter, AResponseToARequestHoldsUpNoLogCall) {
    ASSERT_NO_FATAL_FAILURE(meet(42));
    const support::Ids target = monitor_->last_state().sender;
    ASSERT_TRUE(monitor_->handshake(target, 600));
    HeldWrite::arm("VUR::DL::ADMIN::CommandResponse");
    // The request may be carried out on the thread that sends it.
    Task ask([&] {
        EXPECT_TRUE(monitor_->request(target, 1, [](VUR_DL_ADMIN_Command &command) {
            command._d = VUR_DL_SET_LOG_LEVEL;
            command._u.filterLevel = 700;
        }));
    });
    ASSERT_TRUE(HeldWrite::wait_until_held());
    // Finalisation waits for the callback, but not with the logger lock.
    Task log([&] {
        EXPECT_TRUE(
            support::eventually([] { return VUR_DL_DistLogger_isDistLoggerRunning() == 0; }));
        VUR_DL_DistLogger_fatal(logger_->get(), "while a response is held up");
        HeldWrite::let_go();
    });
    EXPECT_EQ(VUR_DL_DistLogger_finalizeInstance(), 0);
    EXPECT_TRUE(log.ends());
}

TEST_F(BlockedWriter, AStateHoldsUpNeitherFinalisationNorLogCalls) {
    ASSERT_NO_FATAL_FAILURE(meet(43));
    HeldWrite::arm("VUR::DL::ADMIN::State");
    Task change([&] { VUR_DL_DistLogger_setFilterLevel(logger_->get(), 700); });
    ASSERT_TRUE(HeldWrite::wait_until_held());
    expect_that_finalising_goes_on_behind(change);
}

TEST_F(BlockedWriter, AChangeThatComesWhileAStateIsWrittenIsPublishedAfterIt) {
    ASSERT_NO_FATAL_FAILURE(meet(44));
    HeldWrite::arm("VUR::DL::ADMIN::State");
    Task first([&] { VUR_DL_DistLogger_setFilterLevel(logger_->get(), 700); });
    ASSERT_TRUE(HeldWrite::wait_until_held());
    Task second([&] {
        EXPECT_EQ(VUR_DL_DistLogger_setFilterLevel(logger_->get(), 800), 0);
        EXPECT_EQ(VUR_DL_DistLogger_setVURLoggerPrintFormat(logger_->get(),
                                                            KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL),
                  1);
    });
    EXPECT_TRUE(second.ends());
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), 800);
    HeldWrite::let_go();
    EXPECT_TRUE(first.ends());
    EXPECT_TRUE(monitor_->wait_for_state([](const StateSample &s) {
        return s.valid && s.filter_level == 800 &&
               s.format == VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL;
    }));
    // The first State went out as it was when its write began.
    EXPECT_TRUE(monitor_->wait_for_state(
        [](const StateSample &s) { return s.valid && s.filter_level == 700; }));
}

TEST_F(BlockedWriter, ALoggerThatIsDisabledMeanwhileQueuesNothingMore) {
    ASSERT_NO_FATAL_FAILURE(meet(45));
    HeldWrite::arm("VUR::DL::ADMIN::State");
    Task change([&] { VUR_DL_DistLogger_setFilterLevel(logger_->get(), 700); });
    ASSERT_TRUE(HeldWrite::wait_until_held());
    Task disable(VUR_DL_DistLogger_disable);
    EXPECT_TRUE(disable.ends());
    VUR_DL_DistLogger_fatal(logger_->get(), "too late");
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageId(VUR_DL_DistLogger_getMessageQueue()), 0);
}

}  // namespace

// The real function, after the test has let the write pass.
extern "C" DDS_ReturnCode_t DDS_DataWriter_write(DDS_DataWriter *writer, const void *sample,
                                                 DDS_InstanceHandle_t handle) {
    static const auto real =
        reinterpret_cast<decltype(&DDS_DataWriter_write)>(dlsym(RTLD_NEXT, "DDS_DataWriter_write"));
    HeldWrite::pass(writer);
    return real(writer, sample, handle);
}
