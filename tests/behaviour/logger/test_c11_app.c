/* SPDX-License-Identifier: Apache-2.0 */
/* An application in C11 that sees nothing but the public headers: options, logging at every level,
 * getters, finalisation, and a second life. */
#include <stdio.h>
#include <string.h>
#include <vur_dl/vur_dl.h>

#define DOMAIN 105

static int g_failures = 0;

#define EXPECT(condition)                                                             \
    do {                                                                              \
        if (!(condition)) {                                                           \
            fprintf(stderr, "%s:%d: not true: %s\n", __FILE__, __LINE__, #condition); \
            ++g_failures;                                                             \
        }                                                                             \
    } while (0)

static VUR_DL_Options *make_options(void) {
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    EXPECT(options != NULL);
    EXPECT(VUR_DL_Options_setDomainId(options, DOMAIN) == DDS_RETCODE_OK);
    EXPECT(VUR_DL_Options_setFilterLevel(options, VUR_DL_DistLogger_get_debug_log_level()) ==
           DDS_RETCODE_OK);
    EXPECT(VUR_DL_Options_setQueueSize(options, 64) == DDS_RETCODE_OK);
    EXPECT(VUR_DL_Options_setApplicationKind(options, "c11") == DDS_RETCODE_OK);
    EXPECT(VUR_DL_Options_setEchoToStdout(options, 1) == DDS_RETCODE_OK);
    EXPECT(VUR_DL_Options_setLogInfrastructureMessages(options, 1) == DDS_RETCODE_OK);
    EXPECT(VUR_DL_Options_setRemoteAdministrationEnabled(options, 0) == DDS_RETCODE_OK);
    return options;
}

static void log_at_every_level(VUR_DL_DistLogger *logger) {
    VUR_DL_DistLogger_MessageParams params;
    VUR_DL_DistLogger_fatal(logger, "fatal");
    VUR_DL_DistLogger_severe(logger, "severe");
    VUR_DL_DistLogger_error(logger, "error");
    VUR_DL_DistLogger_warning(logger, "warning");
    VUR_DL_DistLogger_notice(logger, "notice");
    VUR_DL_DistLogger_info(logger, "info");
    VUR_DL_DistLogger_debug(logger, "debug");
    VUR_DL_DistLogger_trace(logger, "trace");
    VUR_DL_DistLogger_log(logger, 450, "between warning and notice");
    VUR_DL_DistLogger_logMessageWithLevelCategory(logger, 600, "categorised", "my.category");
    params.log_level = 600;
    params.message = "with everything";
    params.category = "my.category";
    params.timestamp.sec = 1234567890;
    params.timestamp.nanosec = 987654321;
    VUR_DL_DistLogger_logMessageWithParams(logger, &params);
}

static void live_once(void) {
    VUR_DL_Options *options = make_options();
    VUR_DL_DistLogger *logger;
    EXPECT(VUR_DL_DistLogger_setOptions(options) == 1);
    options = VUR_DL_Options_delete(options);
    EXPECT(options == NULL);

    logger = VUR_DL_DistLogger_getInstance();
    EXPECT(logger != NULL);
    EXPECT(VUR_DL_DistLogger_isDistLoggerRunning());
    EXPECT(VUR_DL_DistLogger_getFilterLevel(logger) == 700);
    log_at_every_level(logger);
    /* Everything but the trace message passed the filter. */
    EXPECT(VUR_DL_MessageQueue_getMessageId(VUR_DL_DistLogger_getMessageQueue()) == 10);

    options = VUR_DL_DistLogger_getOptions();
    EXPECT(options != NULL);
    EXPECT(VUR_DL_Options_getDomainId(options) == DOMAIN);
    EXPECT(VUR_DL_Options_getFilterLevel(options) == 700);
    EXPECT(VUR_DL_Options_getQueueSize(options) == 64);
    EXPECT(VUR_DL_Options_getEchoToStdout(options) == 1);
    EXPECT(VUR_DL_Options_getLogInfrastructureMessages(options) == 1);
    EXPECT(VUR_DL_Options_isRemoteAdministrationEnabled(options) == 0);
    EXPECT(strcmp(VUR_DL_Options_getApplicationKind(options), "c11") == 0);
    EXPECT(VUR_DL_Options_getQosLibrary(options) == NULL);
    EXPECT(VUR_DL_Options_getDomainParticipant(options) == NULL);

    EXPECT(VUR_DL_DistLogger_finalizeInstance() == 0);
    EXPECT(!VUR_DL_DistLogger_isDistLoggerRunning());
    EXPECT(VUR_DL_DistLogger_getOptions() == NULL);
    EXPECT(VUR_DL_DistLogger_getMessageQueue() == NULL);
}

int main(void) {
    EXPECT(VUR_DL_DistLogger_get_fatal_log_level() == 100);
    EXPECT(VUR_DL_DistLogger_get_error_log_level() == 300);
    EXPECT(VUR_DL_DistLogger_get_warning_log_level() == 400);
    EXPECT(VUR_DL_DistLogger_get_notice_log_level() == 500);
    EXPECT(VUR_DL_DistLogger_get_info_log_level() == 600);
    EXPECT(VUR_DL_DistLogger_get_debug_log_level() == 700);
    live_once();
    live_once();
    return g_failures == 0 ? 0 : 1;
}
