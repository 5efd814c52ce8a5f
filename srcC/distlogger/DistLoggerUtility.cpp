// SPDX-License-Identifier: Apache-2.0
// The sleep that applications may use.
#include "vur_dl/DistLoggerUtility.h"

#include "kolt/os.h"

void VUR_DL_Utility_sleep(int milliseconds) {
    constexpr int kMillisecondsPerSecond = 1000;
    // sic: the remainder of the milliseconds goes in as nanoseconds, see the header.
    const DDS_Duration_t duration{
        milliseconds / kMillisecondsPerSecond,
        static_cast<DDS_UnsignedLong>(milliseconds % kMillisecondsPerSecond)};
    KOLT_Utility_sleep(&duration);
}
