// SPDX-License-Identifier: Apache-2.0
// The time within which a last write has to be done.
#pragma once

#include "kolt/dds_c.h"
#include "kolt/os.h"

namespace vur_dl {

// Ends the writer's writes, for good, unless it goes before the time is over: what blocks for longer
// would hold up the end of the logger for as long as the slowest reader likes.
class WriteDeadline {
  public:
    // `writer` may be NULL. When no thread can be made to watch the time, the writes end at once.
    WriteDeadline(DDS_DataWriter *writer, const DDS_Duration_t &within);
    ~WriteDeadline();
    WriteDeadline(const WriteDeadline &) = delete;
    WriteDeadline &operator=(const WriteDeadline &) = delete;

  private:
    static void *watch(void *self);

    DDS_DataWriter *const writer_;
    const DDS_Duration_t within_;
    KOLT_Semaphore *done_ = nullptr;
    KOLT_Thread *thread_ = nullptr;
};

}  // namespace vur_dl
