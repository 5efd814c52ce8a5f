/* SPDX-License-Identifier: Apache-2.0 */
/* A logger with options of the application's own: domain, name, filter level, no echo, and a larger
 * queue for bursts. */
#include <stdio.h>
#include <vur_dl/vur_dl.h>

static int set_options(void) {
    int stored = 0;
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    if (options == NULL) {
        return 0;
    }
    /* Each setter refuses values that are out of bounds and prints why. */
    if (VUR_DL_Options_setDomainId(options, 0) == DDS_RETCODE_OK &&
        VUR_DL_Options_setApplicationKind(options, "tank-controller") == DDS_RETCODE_OK &&
        VUR_DL_Options_setFilterLevel(options, VUR_DL_DistLogger_get_debug_log_level()) ==
            DDS_RETCODE_OK &&
        VUR_DL_Options_setQueueSize(options, 1000) == DDS_RETCODE_OK &&
        VUR_DL_Options_setEchoToStdout(options, 0) == DDS_RETCODE_OK) {
        /* The logger keeps a copy, for the first VUR_DL_DistLogger_getInstance. */
        stored = VUR_DL_DistLogger_setOptions(options);
    }
    VUR_DL_Options_delete(options);
    return stored;
}

int main(void) {
    int i;
    VUR_DL_DistLogger *logger;
    if (!set_options()) {
        return 1;
    }
    logger = VUR_DL_DistLogger_getInstance();
    if (logger == NULL) {
        return 1;
    }
    for (i = 0; i < 100; ++i) {
        char text[64];
        snprintf(text, sizeof text, "level %d %%", 100 - i);
        VUR_DL_DistLogger_logMessageWithLevelCategory(
            logger, i < 90 ? VUR_DL_DistLogger_get_debug_log_level() : 400, text, "tank");
    }
    VUR_DL_Utility_sleep(1000);
    return VUR_DL_DistLogger_finalizeInstance();
}
