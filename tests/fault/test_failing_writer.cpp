// SPDX-License-Identifier: Apache-2.0
// A log writer that fails on every write, loudly: what the middleware says about it must not become
// more messages to write.
#include <gtest/gtest.h>
#include <kolt/dds_c.h>

#include <atomic>

#include "support/logger/logger.h"
#include "support/platform/process.h"

namespace {
std::atomic<int> writes{0};
}

extern "C" DDS_ReturnCode_t DDS_DataWriter_write_w_timestamp(DDS_DataWriter *, const void *,
                                                             DDS_InstanceHandle_t,
                                                             const DDS_Time_t *) {
    KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION, KOLT_CONFIG_LOG_LEVEL_ERROR,
                     "DDS_DataWriter_write_w_timestamp", "the test refuses every write");
    ++writes;
    return DDS_RETCODE_ERROR;
}

TEST(FailingWriter, DoesNotFeedItself) {
    const support::Logger logger({.domain = 162, .filter_level = 800, .forward = true});
    ASSERT_NE(logger.get(), nullptr);
    support::StdoutCapture capture;
    constexpr int kMessages = 20;
    for (int i = 0; i < kMessages; ++i) {
        logger.log(100, "message");
    }
    ASSERT_TRUE(support::eventually([] { return writes == kMessages; }));
    // Were the failures fed back, they would be in the queue before this one.
    logger.log(100, "the last");
    ASSERT_TRUE(support::eventually([] { return writes == kMessages + 1; }));
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageId(VUR_DL_DistLogger_getMessageQueue()), kMessages + 1);
    EXPECT_EQ(capture.count("the test refuses every write"), 0) << capture.text();
    EXPECT_TRUE(support::eventually([&] {
        return capture.count(
                   "DL Error: LogMessageWriteThread_run: Unable to write LogMessage in "
                   "DataWriter") == kMessages + 1;
    })) << capture.text();
}
