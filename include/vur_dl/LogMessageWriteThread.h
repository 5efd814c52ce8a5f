/* SPDX-License-Identifier: Apache-2.0 */
/* The one thread of the logger, which publishes the queued messages. */
#pragma once

#include "kolt/config_logger.h"
#include "kolt/os.h"
#include "kolt/thread_settings.h"
#include "vur_dl/MessageQueue.h"
#include "vur_dl/distlogSupport.h"
#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

/* The thread and what it works with. The fields belong to the library. */
typedef struct VUR_DL_LogMessageWriteThread {
    KOLT_Thread *thread;                   /* NULL until started */
    VUR_DL_MessageQueue *q;                /* owned */
    KOLT_Config_Logger *vurLogger;         /* the middleware's logger */
    KOLT_Config_LogVerbosity logVerbosity; /* its verbosity for the communication category */
    int shouldRun;                         /* 0 asks the thread to end */
    VUR_DL_LogMessageDataWriter *logMessageWriter; /* borrowed */
    DDS_UnsignedLongLong threadId;                 /* of the running thread; 0 before and after */
} VUR_DL_LogMessageWriteThread;

/* Makes the queue and starts the thread. `writer` is borrowed and must outlive the thread.
 * `queueSize` is the capacity in messages, 1 or more. `threadSettings` gives priority, options and
 * stack size, and is read during the call only. Returns NULL, with a printed line and nothing left
 * behind, on failure. */
VUR_DL_EXPORT VUR_DL_LogMessageWriteThread *LogMessageWriteThread_create(
    VUR_DL_LogMessageDataWriter *writer, int queueSize, const DDS_ThreadSettings_t *threadSettings);
/* The thread's function; `self` is the record. Ends soon after `shouldRun` became 0: within one
 * wait of 100 ms, or one write. Messages that are still queued are not published. Returns NULL. */
VUR_DL_EXPORT void *LogMessageWriteThread_run(void *self);
/* Waits for the thread to end, deletes the queue and frees the record. The caller has to set
 * `shouldRun` to 0 before. NULL is allowed. */
VUR_DL_EXPORT void LogMessageWriteThread_delete(VUR_DL_LogMessageWriteThread *self);
/* Sets the middleware logger's verbosity for the communication category. */
VUR_DL_EXPORT void LogMessageWriteThread_setCommunicationsLogVerbosity(
    VUR_DL_LogMessageWriteThread *self, KOLT_Config_LogVerbosity verbosity);

VUR_DL_EXTERN_C_END
