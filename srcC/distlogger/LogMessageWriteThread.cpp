// SPDX-License-Identifier: Apache-2.0
// The write thread: waits on the queue and publishes each message in place.
#include "vur_dl/LogMessageWriteThread.h"

#include "lock_rules.hpp"
#include "relaxed.hpp"
#include "report.hpp"

namespace {

using vur_dl::report;

// The time after which an idle thread looks whether it has to end.
constexpr DDS_Duration_t kBlockingTime{0, 100'000'000};
// The thread's name, which fits the 16 bytes that the system has for it.
constexpr char kThreadName[] = "vDl#########Wri";
static_assert(sizeof kThreadName == 16);
// The level of the report about a thread that could not be joined. It has no name of its own, so
// the line begins with "DL Silent".
constexpr int kLevelOfJoinFailure = 1;

// Writes the oldest message and removes it from the queue.
void publish_front(VUR_DL_LogMessageWriteThread &self, const VUR_DL_LogMessagePlusTime &front) {
    vur_dl::about_to_call_middleware();
    const DDS_ReturnCode_t result = VUR_DL_LogMessageDataWriter_write_w_timestamp(
        self.logMessageWriter, &front.message, DDS_HANDLE_NIL, &front.writeTime);
    if (result == DDS_RETCODE_TIMEOUT) {
        // The message stays at the front and is written again after the next push. Retrying at once
        // would only wait for the same slow reader.
        return;
    }
    if (result != DDS_RETCODE_OK) {
        report("Unable to write LogMessage in DataWriter", "LogMessageWriteThread_run");
    }
    VUR_DL_MessageQueue_pop(self.q);
}

// Makes the queue and starts the thread. False, with a printed line, on failure.
bool start(VUR_DL_LogMessageWriteThread &self, int queue_size,
           const DDS_ThreadSettings_t &settings) {
    constexpr char kMethodName[] = "LogMessageWriteThread_create";
    self.vurLogger = KOLT_Config_Logger_get_instance();
    if (self.vurLogger == nullptr) {
        report("Unable to access to VUR Logger", kMethodName);
        return false;
    }
    self.logVerbosity = KOLT_Config_Logger_get_verbosity_by_category(
        self.vurLogger, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION);
    const VUR_DL_MessageQueueProperty property{queue_size};
    self.q = VUR_DL_MessageQueue_new(&property);
    if (self.q == nullptr) {
        report("Unable to create Message Queue", kMethodName);
        return false;
    }
    vur_dl::store_relaxed(self.shouldRun, 1);
    // Which processors the thread runs on is left to the system.
    self.thread = KOLT_Thread_new(kThreadName, settings.priority, settings.mask,
                                  settings.stack_size, LogMessageWriteThread_run, &self);
    if (self.thread == nullptr) {
        report("Unable to create thread!", kMethodName);
        return false;
    }
    return true;
}

}  // namespace

VUR_DL_LogMessageWriteThread *LogMessageWriteThread_create(
    VUR_DL_LogMessageDataWriter *writer, int queue_size,
    const DDS_ThreadSettings_t *thread_settings) {
    auto *self = static_cast<VUR_DL_LogMessageWriteThread *>(
        KOLT_Heap_allocate_zeroed(sizeof(VUR_DL_LogMessageWriteThread)));
    if (self == nullptr) {
        report("Unable to allocate memory for LogMessageWriteThread", __func__);
        return nullptr;
    }
    self->logMessageWriter = writer;
    if (!start(*self, queue_size, *thread_settings)) {
        LogMessageWriteThread_delete(self);
        return nullptr;
    }
    return self;
}

void *LogMessageWriteThread_run(void *argument) {
    auto &self = *static_cast<VUR_DL_LogMessageWriteThread *>(argument);
    const DDS_UnsignedLongLong id = KOLT_Thread_current_id();
    vur_dl::store_relaxed(self.threadId, id);
    if (id == 0) {
        report("Unable to get WrteThread ID.", __func__);  // sic
        return nullptr;
    }
    while (vur_dl::load_relaxed(self.shouldRun) == 1) {
        const VUR_DL_LogMessagePlusTime *front = VUR_DL_MessageQueue_front(self.q, &kBlockingTime);
        if (front != nullptr) {
            publish_front(self, *front);
        }
    }
    return nullptr;
}

void LogMessageWriteThread_delete(VUR_DL_LogMessageWriteThread *self) {
    if (self == nullptr) {
        return;
    }
    if (self->thread != nullptr && KOLT_Thread_delete(self->thread) != 0) {
        report("Error deleting Distributed logger thread.", __func__, kLevelOfJoinFailure);
    }
    vur_dl::store_relaxed(self->threadId, 0);
    VUR_DL_MessageQueue_delete(self->q);
    KOLT_Heap_free(self);
}

void LogMessageWriteThread_setCommunicationsLogVerbosity(VUR_DL_LogMessageWriteThread *self,
                                                         KOLT_Config_LogVerbosity verbosity) {
    KOLT_Config_Logger_set_verbosity_by_category(self->vurLogger,
                                                 KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION, verbosity);
    vur_dl::store_relaxed(self->logVerbosity, verbosity);
}
