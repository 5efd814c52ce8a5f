/* SPDX-License-Identifier: Apache-2.0 */
/* Translations between the middleware logger's scales and the ones on the wire. Pure functions. */
#pragma once

#include "kolt/config_logger.h"
#include "vur_dl/distlog.h"
#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

/* The room in bytes that a level's label needs, the terminating NUL included. */
#define VUR_DL_LOG_LEVEL_LABEL_SIZE 11

/* Map platform, communication, database and entities to themselves, every other value to API. */
VUR_DL_EXPORT VUR_DL_ADMIN_VURLoggerCategory
VUR_DL_translateFromVURLoggerCategoryToDLCategory(KOLT_Config_LogCategory category);
VUR_DL_EXPORT KOLT_Config_LogCategory
VUR_DL_translateFromDLCategoryToVURLoggerCategory(VUR_DL_ADMIN_VURLoggerCategory category);
/* Map each named verbosity to itself, every other value to warning. */
VUR_DL_EXPORT VUR_DL_ADMIN_VURLoggerVerbosity
VUR_DL_translateFromVURLoggerVerbosityToDLVerbosity(KOLT_Config_LogVerbosity verbosity);
VUR_DL_EXPORT KOLT_Config_LogVerbosity
VUR_DL_translateFromDLVerbosityToVURLoggerVerbosity(VUR_DL_ADMIN_VURLoggerVerbosity verbosity);
/* Map each of the seven named formats to itself, every other value to the default format. */
VUR_DL_EXPORT VUR_DL_ADMIN_VURLoggerPrintFormat
VUR_DL_translateFromVURLoggerPrintFormatToDLPrintFormat(KOLT_Config_LogPrintFormat format);
VUR_DL_EXPORT KOLT_Config_LogPrintFormat
VUR_DL_translateFromDLPrintFormatToVURLoggerPrintFormat(VUR_DL_ADMIN_VURLoggerPrintFormat format);
/* Returns 100 for fatal, 300 for error, 400 for warning, 500 for local status, 600 for remote
 * status, 700 for debug, and 600 for every other value. */
VUR_DL_EXPORT int VUR_DL_translateFromVURLoggerLogLevelToDLLevel(KOLT_Config_LogLevel level);
/* Writes the level's label into a buffer of at least VUR_DL_LOG_LEVEL_LABEL_SIZE bytes: "DL Fatal"
 * to "DL Trace" for 100 to 800, "DL Silent" for any other level. Returns OK, or BAD_PARAMETER for a
 * NULL buffer. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_translateFromDLLogLevelToString(int level, char *label);

VUR_DL_EXTERN_C_END
