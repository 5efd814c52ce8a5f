/* SPDX-License-Identifier: Apache-2.0 */
/* The distributed logger: one per process.
 *
 * An application calls VUR_DL_DistLogger_setOptions if it wants other options than the defaults,
 * then VUR_DL_DistLogger_getInstance, then logs, and calls VUR_DL_DistLogger_finalizeInstance at
 * the end. A finalised logger can be created again.
 *
 *  1. Every function here may be called from any thread.
 *  2. A log call stamps the time, filters, and copies the message onto a bounded queue, from which
 *     a thread of the library publishes it. The call never waits for the network or for room in the
 *     queue; while another thread creates or finalises the logger, it waits until that thread has
 *     published the State: half a second at most when it finalises. A message that finds the queue
 *     full is dropped; the gap in the message numbers shows it.
 *  3. A failure prints one line on standard output: "<level name>: <function>: <text>".
 *  4. A forked child of a process in which a logger runs has no logger and gets none: log calls
 *     return at once, and nothing is published in the parent's name. So start the logger after
 *     daemon().
 *     A child that is forked before the logger is created or after it was finalised may create one,
 *     unless the process had another participant in its domain at that time.
 *  5. The library, once loaded, stays: dlclose() leaves a running logger running.
 *  6. Do not log from a signal handler.
 *  7. A thread that is cancelled (pthread_cancel, deferred as by default) within one of these functions
 *     goes on until the function has released what it holds.
 */
#pragma once

#include "kolt/config_logger.h"
#include "kolt/domain.h"
#include "kolt/os.h"
#include "vur_dl/LogMessageWriteThread.h"
#include "vur_dl/MessageQueue.h"
#include "vur_dl/Options.h"
#include "vur_dl/distlog.h"
#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

/* The logger. Its fields belong to the library. */
typedef struct VUR_DL_DistLogger VUR_DL_DistLogger;

/* ---- Lifecycle ----------------------------------------------------------------------------- */

/* Stores a copy of `options` for the next creation. NULL clears the stored options, so that the
 * next creation uses the defaults. Returns 1 on success; 0, with a printed line, when the logger
 * exists already, when memory runs out, when the lock fails, or in the child of a process with a
 * logger. */
VUR_DL_EXPORT int VUR_DL_DistLogger_setOptions(const VUR_DL_Options *options);
/* Returns the stored options. They belong to the library and are valid until they are replaced or
 * the logger is finalised. Returns NULL when none were set, also while a logger runs with the
 * defaults. */
VUR_DL_EXPORT VUR_DL_Options *VUR_DL_DistLogger_getOptions(void);
/* Returns the logger. The first call creates it with its DDS entities, its thread and its State.
 * Returns NULL, with a printed line that says why, when the logger cannot be created or is being
 * finalised; a later call tries again. The middleware's log is silent meanwhile; after a failure
 * it tells the errors that it kept to itself. Returns NULL with a line in the child of a process
 * with a logger, too. */
VUR_DL_EXPORT VUR_DL_DistLogger *VUR_DL_DistLogger_getInstance(void);
/* Does the same with a participant factory of the caller's choice. */
VUR_DL_EXPORT VUR_DL_DistLogger *VUR_DL_DistLogger_getInstanceI(
    DDS_DomainParticipantFactory *factory);
/* Tears the logger down: publishes a last, non-operational State, ends the thread, deletes the
 * entities and the stored options. Messages that are still queued are not published. Returns 0 on
 * success, also when there was no logger and in the child of a process with one; 1, with a printed
 * line, when the lock fails. Does not wait for slow readers: the last State has half a second, and
 * the engine lingers at most a second for each writer with data that readers have not acknowledged.
 * Must not be called from a listener callback of the middleware. */
VUR_DL_EXPORT int VUR_DL_DistLogger_finalizeInstance(void);
/* Returns 1 while the logger exists and is not being finalised, else 0, as in a forked child. Takes
 * no lock. */
VUR_DL_EXPORT int VUR_DL_DistLogger_isDistLoggerRunning(void);
/* Return the queue and the write thread of the logger, whose counters an application may watch.
 * Return NULL when there is no logger. The pointers are valid until the logger is finalised. Take
 * no lock. */
VUR_DL_EXPORT VUR_DL_MessageQueue *VUR_DL_DistLogger_getMessageQueue(void);
VUR_DL_EXPORT VUR_DL_LogMessageWriteThread *VUR_DL_DistLogger_getLogMessageWriteThread(void);

/* ---- Logging ------------------------------------------------------------------------------- */

/* One message with everything about it. The record and its texts are read during the call only. */
typedef struct VUR_DL_DistLogger_MessageParams {
    DDS_Long log_level;   /* 100 fatal to 800 trace, or any other number */
    const char *message;  /* at most 4096 bytes are published, the last character perhaps in part */
    const char *category; /* at most 512 bytes are published; "" for none */
    DDS_Time_t timestamp; /* source time stamp of the sample; seconds not negative */
} VUR_DL_DistLogger_MessageParams;

/* Log at a level with the category "". `self` is the logger that VUR_DL_DistLogger_getInstance
 * returned. The text is copied. The functions do not report whether the message was queued,
 * filtered or dropped. A NULL argument prints a line. A call for a logger that was finalised does
 * nothing. */
VUR_DL_EXPORT void VUR_DL_DistLogger_fatal(VUR_DL_DistLogger *self, const char *message);
VUR_DL_EXPORT void VUR_DL_DistLogger_severe(VUR_DL_DistLogger *self, const char *message);
VUR_DL_EXPORT void VUR_DL_DistLogger_error(VUR_DL_DistLogger *self, const char *message);
VUR_DL_EXPORT void VUR_DL_DistLogger_warning(VUR_DL_DistLogger *self, const char *message);
VUR_DL_EXPORT void VUR_DL_DistLogger_notice(VUR_DL_DistLogger *self, const char *message);
VUR_DL_EXPORT void VUR_DL_DistLogger_info(VUR_DL_DistLogger *self, const char *message);
VUR_DL_EXPORT void VUR_DL_DistLogger_debug(VUR_DL_DistLogger *self, const char *message);
VUR_DL_EXPORT void VUR_DL_DistLogger_trace(VUR_DL_DistLogger *self, const char *message);
/* Logs at any level; a smaller number is more severe. */
VUR_DL_EXPORT void VUR_DL_DistLogger_log(VUR_DL_DistLogger *self, int level, const char *message);
/* Logs with a category, stamped with the current time. */
VUR_DL_EXPORT void VUR_DL_DistLogger_logMessageWithLevelCategory(VUR_DL_DistLogger *self,
                                                                 int logLevel, const char *message,
                                                                 const char *category);
/* Logs with everything given by the caller. */
VUR_DL_EXPORT void VUR_DL_DistLogger_logMessageWithParams(
    VUR_DL_DistLogger *self, const VUR_DL_DistLogger_MessageParams *params);

/* Return the named levels, for language bindings that can call functions but not read macros.
 * Severe (200) and trace (800) have no function. */
VUR_DL_EXPORT int VUR_DL_DistLogger_get_fatal_log_level(void);
VUR_DL_EXPORT int VUR_DL_DistLogger_get_error_log_level(void);
VUR_DL_EXPORT int VUR_DL_DistLogger_get_warning_log_level(void);
VUR_DL_EXPORT int VUR_DL_DistLogger_get_notice_log_level(void);
VUR_DL_EXPORT int VUR_DL_DistLogger_get_info_log_level(void);
VUR_DL_EXPORT int VUR_DL_DistLogger_get_debug_log_level(void);

/* ---- Administration ------------------------------------------------------------------------ */

/* These need the logger: unlike log calls they must not run while, or after, another thread finalises
 * it. */

/* Returns the filter level in force, which remote commands may have changed. `self` must be the
 * logger. Takes no lock. */
VUR_DL_EXPORT int VUR_DL_DistLogger_getFilterLevel(const VUR_DL_DistLogger *self);
/* Sets the filter level and publishes the State if the level changed. Returns 0 on success; 1 for a
 * negative level, which changes nothing. */
VUR_DL_EXPORT int VUR_DL_DistLogger_setFilterLevel(VUR_DL_DistLogger *self, int level);
/* Sets the middleware logger's verbosity for a category and publishes the State. Returns 1 on
 * success; 0, with a printed line, when the State could not be published. */
VUR_DL_EXPORT int VUR_DL_DistLogger_setVURLoggerVerbosityByCategory(
    VUR_DL_DistLogger *self, KOLT_Config_LogCategory category, KOLT_Config_LogVerbosity verbosity);
/* Sets the middleware logger's print format and publishes the State. Returns 1 on success; 0, with
 * a printed line, when the format is refused or the State could not be published. */
VUR_DL_EXPORT int VUR_DL_DistLogger_setVURLoggerPrintFormat(VUR_DL_DistLogger *self,
                                                            KOLT_Config_LogPrintFormat format);
/* Publishes the State as it is now. While another thread publishes it, or a call further up on this
 * one, this is left to that thread, which publishes again; no call waits for it. Returns 1 on
 * success, also when it was left to another or when no State reader has matched yet and there is
 * nothing to write; 0, with a printed line, on failure. */
VUR_DL_EXPORT int VUR_DL_DistLogger_writeState(VUR_DL_DistLogger *self);
/* Refresh the State's copy of the middleware logger's settings, without publishing it. */
VUR_DL_EXPORT void VUR_DL_DistLogger_updateVURLoggerCategoryAndVerbosityState(
    VUR_DL_DistLogger *self);
VUR_DL_EXPORT void VUR_DL_DistLogger_updateVURLoggerPrintFormatState(VUR_DL_DistLogger *self);
/* Carries out one remote command and answers it. */
VUR_DL_EXPORT void VUR_DL_DistLogger_processCommand(VUR_DL_DistLogger *self,
                                                    const VUR_DL_ADMIN_CommandRequest *request);
/* The data-available callback of the command reader; `distLogger` is the logger. */
VUR_DL_EXPORT void VUR_DL_DistLogger_CommandRequestListener_on_data_available(
    void *distLogger, DDS_DataReader *reader);

/* ---- The middleware's own log --------------------------------------------------------------- */

/* The device that brings the middleware's messages into the distributed log. */
VUR_DL_EXPORT extern KOLT_Config_LoggerDevice VUR_DL_DistLogger_localDevice;
/* The device's `write`: logs the message under the category "com.vur.kolt.config.Logger", or prints
 * it when the logger is not running. */
VUR_DL_EXPORT void VUR_DL_DistLogger_writeDevice(KOLT_Config_LoggerDevice *device,
                                                 const KOLT_Config_LogMessage *message);
/* Loads the factory's profiles, saves the verbosity of each of the 8 categories in `mask`, and
 * silences the middleware's logger. Leaves the mask alone, and prints a line, when the middleware
 * has no logger. */
VUR_DL_EXPORT void VUR_DL_DistLogger_maskSystemVerbosity(KOLT_Config_LogVerbosity mask[8],
                                                         DDS_DomainParticipantFactory *factory);
/* Sets the 8 verbosities back to the saved ones. */
VUR_DL_EXPORT void VUR_DL_DistLogger_unmaskSystemVerbosity(const KOLT_Config_LogVerbosity mask[8]);

/* ---- Printing ------------------------------------------------------------------------------- */

/* Prints "<level name>: <methodName>: <message>" on standard output, with a newline unless the
 * message ends in one. Returns 0 when it was printed. Returns 3 for an empty message and 4 for a
 * NULL, and prints a line about that instead. May be called at any time, also without a logger. */
VUR_DL_EXPORT unsigned int VUR_DL_DistLogger_printMessage(const char *message,
                                                          const char *methodName, int logLevel);

/* ---- Inside the lifecycle: not meant to be called by applications --------------------------- */

/* Serialises creation, finalisation, setOptions and every log call. */
VUR_DL_EXPORT extern KOLT_GlobalLock gVUR_DL_DistLogger_lock;
/* 1 once the logger has been created; 0 again at the end of finalisation. */
VUR_DL_EXPORT extern int gVUR_DL_DistLogger_initialized;
/* 1 from the moment when finalisation detaches the logger until it has been destroyed. */
VUR_DL_EXPORT extern int gVUR_DL_DistLogger_beingDestroyed;
/* Builds one logger. Returns NULL, with a printed line and nothing left behind, on failure. */
VUR_DL_EXPORT VUR_DL_DistLogger *VUR_DL_DistLogger_createInstance(
    DDS_DomainParticipantFactory *factory);
/* Fills the record with zeros. Prints a line when `self` is NULL. */
VUR_DL_EXPORT void VUR_DL_DistLogger_initialize(VUR_DL_DistLogger *self);
/* Releases a logger that is complete or built in part; `self` may be NULL. Always returns NULL. */
VUR_DL_EXPORT VUR_DL_DistLogger *VUR_DL_DistLogger_destroy(VUR_DL_DistLogger *self);
/* Marks the logger non-operational, publishes that, and tells the write thread to end. */
VUR_DL_EXPORT void VUR_DL_DistLogger_disable(void);

VUR_DL_EXTERN_C_END
