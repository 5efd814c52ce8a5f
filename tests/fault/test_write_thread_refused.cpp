// SPDX-License-Identifier: Apache-2.0
// A write thread whose thread cannot be created: the queue goes, nothing is joined.
#include <gtest/gtest.h>

#include "support/platform/process.h"
#include "vur_dl/LogMessageWriteThread.h"

namespace {
int joins = 0;
}

extern "C" KOLT_Thread *KOLT_Thread_new(const char *name, DDS_Long, DDS_UnsignedLong, DDS_Long,
                                        KOLT_ThreadFunction, void *) {
    EXPECT_STREQ(name, "vDl#########Wri");
    return nullptr;
}

extern "C" int KOLT_Thread_delete(KOLT_Thread *) {
    ++joins;
    return 0;
}

TEST(WriteThreadRefused, LeavesNothingBehindAndJoinsNothing) {
    const DDS_ThreadSettings_t settings = DDS_THREAD_SETTINGS_DEFAULT;
    VUR_DL_LogMessageDataWriter writer{};
    support::StdoutCapture capture;
    EXPECT_EQ(LogMessageWriteThread_create(&writer, 10, &settings), nullptr);
    EXPECT_EQ(capture.text(), "DL Error: LogMessageWriteThread_create: Unable to create thread!\n");
    EXPECT_EQ(joins, 0);
}

TEST(WriteThreadRefused, ADeletedRecordWithoutAThreadJoinsNothing) {
    auto *self = static_cast<VUR_DL_LogMessageWriteThread *>(
        KOLT_Heap_allocate_zeroed(sizeof(VUR_DL_LogMessageWriteThread)));
    const VUR_DL_MessageQueueProperty property{3};
    self->q = VUR_DL_MessageQueue_new(&property);
    LogMessageWriteThread_delete(self);
    EXPECT_EQ(joins, 0);
}
