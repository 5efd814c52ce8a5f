/* SPDX-License-Identifier: Apache-2.0 */
/* The smallest application: it logs, and finalises the logger at the end. */
#include <vur_dl/vur_dl.h>

int main(void) {
    VUR_DL_DistLogger *logger = VUR_DL_DistLogger_getInstance();
    if (logger == NULL) {
        return 1; /* the reason has been printed */
    }
    VUR_DL_DistLogger_info(logger, "Hello, distributed log");
    VUR_DL_DistLogger_debug(logger, "This one is echoed, but the filter keeps it here");
    VUR_DL_DistLogger_logMessageWithLevelCategory(logger, 400, "The tank is nearly empty", "tank");

    /* Messages that are still queued when the logger is finalised are not published. */
    VUR_DL_Utility_sleep(1000);
    return VUR_DL_DistLogger_finalizeInstance();
}
