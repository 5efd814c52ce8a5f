/* SPDX-License-Identifier: Apache-2.0 */
/* The middleware's own logger: categories, a verbosity per category, a print format, a device.
 *
 * Sources are KOLT's own layer and the engine's log, which is mapped to levels and categories in
 * one table (kolt/src/log). A message passes when the verbosity of its category includes its level;
 * one that does not pass costs one load and one test. A process has one logger.
 */
#pragma once

#include "kolt/infrastructure.h"

KOLT_EXTERN_C_BEGIN

typedef enum KOLT_Config_LogCategory KOLT_ENUM_BASE {
    KOLT_CONFIG_LOG_CATEGORY_PLATFORM = 0,
    KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION = 1,
    KOLT_CONFIG_LOG_CATEGORY_DATABASE = 2,
    KOLT_CONFIG_LOG_CATEGORY_ENTITIES = 3,
    KOLT_CONFIG_LOG_CATEGORY_API = 4,
    KOLT_CONFIG_LOG_CATEGORY_DISCOVERY = 5,
    KOLT_CONFIG_LOG_CATEGORY_SECURITY = 6,
    KOLT_CONFIG_LOG_CATEGORY_USER = 7
} KOLT_Config_LogCategory;
#define KOLT_CONFIG_LOG_CATEGORY_COUNT 8

/* Level of a message; bit `level` of a verbosity lets it through. */
typedef enum KOLT_Config_LogLevel KOLT_ENUM_BASE {
    KOLT_CONFIG_LOG_LEVEL_FATAL_ERROR = 0,
    KOLT_CONFIG_LOG_LEVEL_ERROR = 1,
    KOLT_CONFIG_LOG_LEVEL_WARNING = 2,
    KOLT_CONFIG_LOG_LEVEL_STATUS_LOCAL = 3,
    KOLT_CONFIG_LOG_LEVEL_STATUS_REMOTE = 4,
    KOLT_CONFIG_LOG_LEVEL_DEBUG = 5
} KOLT_Config_LogLevel;

/* A mask: bit n lets messages of level n through. */
typedef enum KOLT_Config_LogVerbosity KOLT_ENUM_BASE {
    KOLT_CONFIG_LOG_VERBOSITY_SILENT = 0,
    KOLT_CONFIG_LOG_VERBOSITY_ERROR = 0x3,
    KOLT_CONFIG_LOG_VERBOSITY_WARNING = 0x7,
    KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL = 0xF,
    KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE = 0x1F,
    KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL = 0x3F
} KOLT_Config_LogVerbosity;

/* Which fields of a message are printed, in this order, before a colon and the text:
 *
 *   0x0100  time        2025-03-01T12:00:00.000000Z (UTC)
 *   0x0002  level       FATAL, ERROR, WARNING, LOCAL, REMOTE, DEBUG
 *   0x2000  [security]  with security messages
 *   0x1000  module      kolt or engine
 *   0x0004  category    category=entities
 *   0x0008  facility    facility=middleware
 *   0x0020  process     pid=4711
 *   0x0040  thread      tid=4712 (the system's thread identifier)
 *   0x0200  thread name thread=recv
 *   0x0800  message id  id=17
 *   0x0400  method      the function that reports
 *
 * and how the text is printed:
 *
 *   0x0010  on the line of the fields; without this bit it starts a line of its own
 *   0x0001  its lines as they stand; without this bit those after the first are indented
 *
 * The enumerators are the named formats; any other combination of these bits is a format, too. */
typedef enum KOLT_Config_LogPrintFormat KOLT_ENUM_BASE {
    KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL = 0x11, /* the text alone */
    KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT = 0x3412,
    KOLT_CONFIG_LOG_PRINT_FORMAT_TIMESTAMPED = 0x3512,
    KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG = 0x366F,
    KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE = 0x3E16,
    KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED = 0x3F16,
    KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL = 0x3F7F
} KOLT_Config_LogPrintFormat;

typedef enum KOLT_Config_LogFacility KOLT_ENUM_BASE {
    KOLT_CONFIG_LOG_FACILITY_MIDDLEWARE = 0,
    KOLT_CONFIG_LOG_FACILITY_USER = 1,
    KOLT_CONFIG_LOG_FACILITY_SECURITY_EVENT = 2,
    KOLT_CONFIG_LOG_FACILITY_SERVICE = 3
} KOLT_Config_LogFacility;

/* One formatted message, valid during the device's `write` only. `text` is formatted in the print
 * format and does not end in a newline. `message_id` numbers the messages of the process, from 1,
 * those of the engine included; it wraps. Messages of the category SECURITY are security messages.
 */
typedef struct KOLT_Config_LogMessage {
    const char *text;
    KOLT_Config_LogLevel level;
    DDS_Boolean is_security_message;
    DDS_UnsignedLong message_id;
    DDS_Duration_t timestamp; /* time since the epoch, seconds truncated to 31 bits */
    KOLT_Config_LogFacility facility;
} KOLT_Config_LogMessage;

/* Receives the messages. The record must live as long as it is installed.
 *
 * `write` runs on the thread that logs: an application's thread or a thread of the engine, also
 * inside KOLT functions and listeners. Several threads may run it at once. The logger holds no lock
 * of its own meanwhile, so that `write` may log, replace the device and change verbosities.
 *  - A device that a thread is writing to is not entered again by that thread: messages that its
 *    write causes go to standard output.
 *  - `write` must not wait for something that a logging thread may hold. A lock that it takes must
 *    never be held while something is logged (or must answer a second take with an error, as
 *    KOLT_GlobalLock_take does).
 *  - It must not call the engine: the engine may hold locks of its own.
 *
 * `close` is called once an installation, when the device was replaced and no thread is inside its
 * write; from then on the logger does not touch the record. */
typedef struct KOLT_Config_LoggerDevice {
    void *device_data;
    void (*write)(struct KOLT_Config_LoggerDevice *device, const KOLT_Config_LogMessage *message);
    void (*close)(struct KOLT_Config_LoggerDevice *device); /* may be NULL */
} KOLT_Config_LoggerDevice;

typedef struct KOLT_Config_Logger KOLT_Config_Logger;

/* The process's logger: always there, never NULL, not to be freed. It is ready before any code runs
 * and until the process ends. All functions below are thread-safe; with a NULL logger, getters give
 * SILENT, DEFAULT or NULL, setters do nothing. */
KOLT_EXPORT KOLT_Config_Logger *KOLT_Config_Logger_get_instance(void);
/* The highest verbosity, as a number, among all categories. */
KOLT_EXPORT KOLT_Config_LogVerbosity KOLT_Config_Logger_get_verbosity(KOLT_Config_Logger *self);
/* The verbosity of a category; SILENT for one that does not exist. */
KOLT_EXPORT KOLT_Config_LogVerbosity KOLT_Config_Logger_get_verbosity_by_category(
    KOLT_Config_Logger *self, KOLT_Config_LogCategory category);
/* Sets all categories. Default: ERROR. Any combination of level bits is a verbosity; other bits are
 * dropped. Takes effect at once; a message that is just being formatted may still appear. */
KOLT_EXPORT void KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger *self,
                                                  KOLT_Config_LogVerbosity verbosity);
/* The same for one category; one that does not exist is ignored. */
KOLT_EXPORT void KOLT_Config_Logger_set_verbosity_by_category(KOLT_Config_Logger *self,
                                                              KOLT_Config_LogCategory category,
                                                              KOLT_Config_LogVerbosity verbosity);
KOLT_EXPORT KOLT_Config_LogPrintFormat
KOLT_Config_Logger_get_print_format(KOLT_Config_Logger *self);
/* Sets the format of all messages from now on. Default: DEFAULT. False for 0 and for a mask with
 * bits that MAXIMAL does not have; the format then stays. */
KOLT_EXPORT DDS_Boolean KOLT_Config_Logger_set_print_format(
    KOLT_Config_Logger *self, KOLT_Config_LogPrintFormat print_format);
/* Installs a device; NULL goes back to standard output, where each message is a line. The device
 * that is replaced gets its `close` called. Normally that has happened when this function returns:
 * it waits for every `write` in progress on other threads, so the caller must not hold a lock that
 * such a write takes. Called from within a device's write it does not wait; the last thread to
 * leave the replaced device's write then closes it. Installing the device that is installed changes
 * nothing. False for a NULL logger, a device without `write`, or when memory runs out. */
KOLT_EXPORT DDS_Boolean KOLT_Config_Logger_set_output_device(KOLT_Config_Logger *self,
                                                             KOLT_Config_LoggerDevice *device);
/* The installed device; NULL for standard output. */
KOLT_EXPORT KOLT_Config_LoggerDevice *KOLT_Config_Logger_get_output_device(
    KOLT_Config_Logger *self);

/* Logs a message of KOLT's own layer or of an application (category USER). `method_name` names the
 * reporting function and may be NULL; `format` is as for printf, and newlines at the end of the
 * text are dropped. Formatting happens only when the category's verbosity lets the level pass.
 * Texts of any length are logged; when memory runs out, the first 511 characters. errno stays.
 * Thread-safe. */
KOLT_EXPORT void KOLT_Log_message(KOLT_Config_LogCategory category, KOLT_Config_LogLevel level,
                                  const char *method_name, const char *format, ...)
#if defined(__GNUC__)
    __attribute__((format(printf, 4, 5)))
#endif
    ;
/* True when a message of this kind would be written, or kept. One load and one test, but for errors
 * that are not written. */
KOLT_EXPORT DDS_Boolean KOLT_Log_is_enabled(KOLT_Config_LogCategory category,
                                            KOLT_Config_LogLevel level);

/* Keep what goes wrong on the calling thread while nobody may hear of it. From _keep_ on, the first
 * eight messages of this thread that are errors or fatal errors and that a verbosity drops are kept,
 * the engine's included. _tell_ ends that and logs those that the verbosities of that moment let
 * pass, _forget_ ends it and drops them. Without a _keep_ before, both do nothing. */
KOLT_EXPORT void KOLT_Log_keep_errors(void);
KOLT_EXPORT void KOLT_Log_tell_kept_errors(void);
KOLT_EXPORT void KOLT_Log_forget_kept_errors(void);

KOLT_EXTERN_C_END
