// SPDX-License-Identifier: Apache-2.0
// The thread that watches the time of a last write.
#include "write_deadline.hpp"

namespace vur_dl {

WriteDeadline::WriteDeadline(DDS_DataWriter *writer, const DDS_Duration_t &within)
    : writer_(writer), within_(within) {
    if (writer_ == nullptr) {
        return;
    }
    done_ = KOLT_Semaphore_new(0);
    if (done_ != nullptr) {
        thread_ = KOLT_Thread_new("vDl.deadline", DDS_THREAD_PRIORITY_DEFAULT,
                                  DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT,
                                  DDS_THREAD_STACK_SIZE_DEFAULT, watch, this);
    }
    if (thread_ == nullptr) {
        KOLT_DataWriter_end_writes(writer_);
    }
}

WriteDeadline::~WriteDeadline() {
    if (thread_ != nullptr) {
        KOLT_Semaphore_give(done_);
        KOLT_Thread_delete(thread_);
    }
    KOLT_Semaphore_delete(done_);
}

void *WriteDeadline::watch(void *self) {
    const auto &deadline = *static_cast<WriteDeadline *>(self);
    if (KOLT_Semaphore_take(deadline.done_, &deadline.within_) == KOLT_SEMAPHORE_TIMEOUT) {
        KOLT_DataWriter_end_writes(deadline.writer_);
    }
    return nullptr;
}

}  // namespace vur_dl
