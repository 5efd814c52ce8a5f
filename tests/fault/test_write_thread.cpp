// SPDX-License-Identifier: Apache-2.0
// The write thread, with the middleware's write replaced by one that the test controls.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "support/platform/process.h"
#include "vur_dl/LogMessageWriteThread.h"

namespace {

using support::StdoutCapture;
using namespace std::chrono_literals;

struct Write {
    DDS_LongLong id;
    DDS_Time_t time;
    std::string text;
};

// The results of the replaced write, and the calls that it has seen.
struct Writes {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<Write> seen;
    std::vector<DDS_ReturnCode_t> results;  // of the next writes; OK when it runs out

    bool wait_for(std::size_t count, std::chrono::milliseconds within = support::kPatience) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, within, [&] { return seen.size() >= count; });
    }
};
Writes writes;

}  // namespace

extern "C" DDS_ReturnCode_t DDS_DataWriter_write_w_timestamp(DDS_DataWriter *, const void *sample,
                                                             DDS_InstanceHandle_t handle,
                                                             const DDS_Time_t *time) {
    EXPECT_EQ(handle, DDS_HANDLE_NIL);
    const auto &message = *static_cast<const VUR_DL_LogMessage *>(sample);
    const std::lock_guard lock(writes.mutex);
    writes.seen.push_back({message.messageId, *time, message.message});
    writes.changed.notify_all();
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    if (!writes.results.empty()) {
        result = writes.results.front();
        writes.results.erase(writes.results.begin());
    }
    return result;
}

namespace {

class WriteThread : public testing::Test {
  protected:
    void SetUp() override {
        writes.seen.clear();
        writes.results.clear();
    }
    void start() {
        const DDS_ThreadSettings_t settings = DDS_THREAD_SETTINGS_DEFAULT;
        self_ = LogMessageWriteThread_create(&writer_, 10, &settings);
        ASSERT_NE(self_, nullptr);
    }
    void TearDown() override {
        if (self_ != nullptr) {
            std::atomic_ref(self_->shouldRun) = 0;
            LogMessageWriteThread_delete(self_);
        }
    }
    int push(std::string text, DDS_Time_t time = {1, 2}) {
        std::string category;
        VUR_DL_LogMessagePlusTime item{};
        item.message.message = text.data();
        item.message.category = category.data();
        item.writeTime = time;
        return VUR_DL_MessageQueue_push(self_->q, &item);
    }
    VUR_DL_LogMessageDataWriter writer_{};
    VUR_DL_LogMessageWriteThread *self_ = nullptr;
};

TEST_F(WriteThread, PublishesInOrderWithTheTimeOfTheLogCall) {
    start();
    push("one", {100, 5});
    push("two", {200, 6});
    ASSERT_TRUE(writes.wait_for(2));
    EXPECT_EQ(writes.seen[0].id, 1);
    EXPECT_EQ(writes.seen[0].text, "one");
    EXPECT_EQ(writes.seen[0].time.sec, 100);
    EXPECT_EQ(writes.seen[0].time.nanosec, 5U);
    EXPECT_EQ(writes.seen[1].id, 2);
    EXPECT_EQ(writes.seen[1].time.sec, 200);
}

TEST_F(WriteThread, AnIdleThreadEndsSoonAfterItIsToldTo) {
    start();
    const auto before = std::chrono::steady_clock::now();
    std::atomic_ref(self_->shouldRun) = 0;
    LogMessageWriteThread_delete(self_);
    self_ = nullptr;
    // One wait of 100 ms; the rest is for a machine that has other things to do.
    EXPECT_LT(std::chrono::steady_clock::now() - before, 5s);
}

TEST_F(WriteThread, AnErrorLosesThatMessageOnly) {
    writes.results = {DDS_RETCODE_ERROR};
    StdoutCapture capture;
    start();
    push("lost");
    push("next");
    ASSERT_TRUE(writes.wait_for(2));
    EXPECT_EQ(writes.seen[1].text, "next");
    const std::string line =
        "DL Error: LogMessageWriteThread_run: Unable to write LogMessage in DataWriter";
    EXPECT_TRUE(support::eventually([&] { return capture.count(line) == 1; })) << capture.text();
}

TEST_F(WriteThread, AMessageThatTimedOutIsWrittenAgainAfterTheNextPush) {
    writes.results = {DDS_RETCODE_TIMEOUT};
    StdoutCapture capture;
    start();
    push("first");
    ASSERT_TRUE(writes.wait_for(1));
    EXPECT_FALSE(writes.wait_for(2, 400ms)) << "retried without a push";
    push("second");
    ASSERT_TRUE(writes.wait_for(2));
    EXPECT_EQ(writes.seen[1].text, "first");
    push("third");
    ASSERT_TRUE(writes.wait_for(3));
    EXPECT_EQ(writes.seen[2].text, "second");
    EXPECT_EQ(capture.text(), "");
}

TEST_F(WriteThread, MessagesLeftAtTheEndAreNotPublished) {
    start();
    std::atomic_ref(self_->shouldRun) = 0;
    // Until the thread has noticed, a push may still be taken; afterwards none is.
    ASSERT_TRUE(support::eventually([&] {
        const std::size_t before = writes.seen.size();
        push("late");
        return !writes.wait_for(before + 1, 300ms);
    }));
}

TEST_F(WriteThread, KeepsTheCommunicationVerbosity) {
    start();
    KOLT_Config_Logger *logger = KOLT_Config_Logger_get_instance();
    EXPECT_EQ(self_->vurLogger, logger);
    EXPECT_EQ(self_->logVerbosity, KOLT_Config_Logger_get_verbosity_by_category(
                                       logger, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION));
    LogMessageWriteThread_setCommunicationsLogVerbosity(self_,
                                                        KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL);
    EXPECT_EQ(self_->logVerbosity, KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL);
    EXPECT_EQ(KOLT_Config_Logger_get_verbosity_by_category(logger,
                                                           KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION),
              KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL);
}

TEST_F(WriteThread, ItsIdIsThatOfAThread) {
    start();
    EXPECT_TRUE(support::eventually([&] { return std::atomic_ref(self_->threadId).load() != 0; }));
    EXPECT_NE(std::atomic_ref(self_->threadId).load(), KOLT_Thread_current_id());
}

TEST(WriteThreadRecord, DeletingNothingDoesNothing) {
    LogMessageWriteThread_delete(nullptr);
    StdoutCapture capture;
    EXPECT_EQ(capture.text(), "");
}

}  // namespace
