/* SPDX-License-Identifier: Apache-2.0 */
/* The sleep that the library offers to applications. */
#pragma once

#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

/* Sleeps ms / 1000 seconds and ms % 1000 NANOseconds (sic): 1500 sleeps one second and 500
 * nanoseconds. Zero or less returns at once. The library does not call it. */
VUR_DL_EXPORT void VUR_DL_Utility_sleep(int milliseconds);

VUR_DL_EXTERN_C_END
