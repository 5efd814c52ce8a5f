/* A small helper that the library offers to applications. */
#pragma once

#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

/* Sleeps ms / 1000 seconds and ms % 1000 NANOseconds: 1500 sleeps one second and 500 nanoseconds.
 * Kept for programs that rely on it; the library does not call it. Zero or less returns at once. */
VUR_DL_EXPORT void VUR_DL_Utility_sleep(int milliseconds);

VUR_DL_EXTERN_C_END
