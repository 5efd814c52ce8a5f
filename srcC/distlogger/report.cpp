// SPDX-License-Identifier: Apache-2.0
// The library's reports go where every line of it goes: through the exported print routine.
#include "report.hpp"

#include "vur_dl/DistLogger.h"

void vur_dl::report(const char *message, const char *method, int level) {
    VUR_DL_DistLogger_printMessage(message, method, level);
}
