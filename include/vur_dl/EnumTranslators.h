/* Translations between the middleware logger's scales and the ones on the wire. Pure functions. */
#pragma once

#include "kolt/config_logger.h"
#include "vur_dl/distlog.h"
#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

/* Room that a level's label needs, terminator included. */
#define VUR_DL_LOG_LEVEL_LABEL_SIZE 11

/* Platform, communication, database and entities map to themselves, all others to API. */
VUR_DL_EXPORT VUR_DL_ADMIN_VURLoggerCategory
VUR_DL_translateFromVURLoggerCategoryToDLCategory(KOLT_Config_LogCategory category);
VUR_DL_EXPORT KOLT_Config_LogCategory
VUR_DL_translateFromDLCategoryToVURLoggerCategory(VUR_DL_ADMIN_VURLoggerCategory category);
/* Anything that is none of the named verbosities is a warning. */
VUR_DL_EXPORT VUR_DL_ADMIN_VURLoggerVerbosity
VUR_DL_translateFromVURLoggerVerbosityToDLVerbosity(KOLT_Config_LogVerbosity verbosity);
VUR_DL_EXPORT KOLT_Config_LogVerbosity
VUR_DL_translateFromDLVerbosityToVURLoggerVerbosity(VUR_DL_ADMIN_VURLoggerVerbosity verbosity);
/* Anything that is none of the seven named formats is the default one. */
VUR_DL_EXPORT VUR_DL_ADMIN_VURLoggerPrintFormat
VUR_DL_translateFromVURLoggerPrintFormatToDLPrintFormat(KOLT_Config_LogPrintFormat format);
VUR_DL_EXPORT KOLT_Config_LogPrintFormat
VUR_DL_translateFromDLPrintFormatToVURLoggerPrintFormat(VUR_DL_ADMIN_VURLoggerPrintFormat format);
/* Fatal 100, error 300, warning 400, local status 500, remote status 600, debug 700; else 600. */
VUR_DL_EXPORT int VUR_DL_translateFromVURLoggerLogLevelToDLLevel(KOLT_Config_LogLevel level);
/* Writes "DL Fatal" to "DL Trace" for 100 to 800, "DL Silent" for any other level, into a buffer of
 * at least VUR_DL_LOG_LEVEL_LABEL_SIZE bytes. BAD_PARAMETER for a NULL buffer. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_translateFromDLLogLevelToString(int level, char *label);

VUR_DL_EXTERN_C_END
