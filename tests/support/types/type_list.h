// SPDX-License-Identifier: Apache-2.0
// The list of the logger's types, for tests that stamp something for each of them.
#pragma once

#include <vur_dl/distlog.h>

// The formatter would run the lists together.
// clang-format off

// X(type) for each structure and union; BETWEEN() stands between them.
#define FOR_EACH_STRUCTURED_TYPE(X, BETWEEN) \
    X(VUR_DL_HostAndAppId) \
    BETWEEN() X(VUR_DL_LogMessage) \
    BETWEEN() X(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity) \
    BETWEEN() X(VUR_DL_ADMIN_State) \
    BETWEEN() X(VUR_DL_ADMIN_Command) \
    BETWEEN() X(VUR_DL_ADMIN_CommandRequest) \
    BETWEEN() X(VUR_DL_ADMIN_CommandResponse)

// X(type) for each of the thirteen types, in the order of the IDL file.
#define FOR_EACH_TYPE(X, BETWEEN) \
    X(VUR_DL_HostAndAppId) \
    BETWEEN() X(VUR_DL_LogMessage) \
    BETWEEN() X(VUR_DL_ADMIN_VURLoggerVerbosity) \
    BETWEEN() X(VUR_DL_ADMIN_VURLoggerCategory) \
    BETWEEN() X(VUR_DL_ADMIN_VURLoggerPrintFormat) \
    BETWEEN() X(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity) \
    BETWEEN() X(VUR_DL_ADMIN_StateKind) \
    BETWEEN() X(VUR_DL_ADMIN_State) \
    BETWEEN() X(VUR_DL_ADMIN_CommandKind) \
    BETWEEN() X(VUR_DL_ADMIN_Command) \
    BETWEEN() X(VUR_DL_ADMIN_CommandRequest) \
    BETWEEN() X(VUR_DL_ADMIN_CommandResult) \
    BETWEEN() X(VUR_DL_ADMIN_CommandResponse)

// clang-format on

// For BETWEEN: definitions follow each other, template arguments are separated.
#define SEMICOLON() ;
#define COMMA() ,
