// SPDX-License-Identifier: Apache-2.0
// The layout of the two records that the logger exchanges with output devices, whatever language
// they are written in: field by field, on a 64-bit platform with natural alignment.

#include <cstddef>

#include "kolt/config_logger.h"

namespace {

static_assert(offsetof(KOLT_Config_LoggerDevice, device_data) == 0);
static_assert(offsetof(KOLT_Config_LoggerDevice, write) == 8);
static_assert(offsetof(KOLT_Config_LoggerDevice, close) == 16);
static_assert(sizeof(KOLT_Config_LoggerDevice) == 24);

static_assert(offsetof(KOLT_Config_LogMessage, text) == 0);
static_assert(offsetof(KOLT_Config_LogMessage, level) == 8);
static_assert(offsetof(KOLT_Config_LogMessage, is_security_message) == 12);
static_assert(offsetof(KOLT_Config_LogMessage, message_id) == 16);
static_assert(offsetof(KOLT_Config_LogMessage, timestamp) == 20);
static_assert(offsetof(KOLT_Config_LogMessage, facility) == 28);
static_assert(sizeof(KOLT_Config_LogMessage) == 32);

static_assert(sizeof(KOLT_Config_LogLevel) == 4);
static_assert(sizeof(KOLT_Config_LogFacility) == 4);
static_assert(sizeof(DDS_Boolean) == 1);
static_assert(offsetof(DDS_Duration_t, sec) == 0);
static_assert(offsetof(DDS_Duration_t, nanosec) == 4);
static_assert(sizeof(DDS_Duration_t) == 8);

}  // namespace
