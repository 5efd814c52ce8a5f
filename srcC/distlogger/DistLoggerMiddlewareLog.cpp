// SPDX-License-Identifier: Apache-2.0
// The middleware's own log: forwarded into the distributed log, and silenced during creation.
#include <cstdio>
#include <cstring>

#include "DistLoggerRecord.hpp"
#include "kolt_internal/no_cancellation.hpp"
#include "report.hpp"
#include "vur_dl/EnumTranslators.h"

namespace {

using vur_dl::report;

constexpr char kForwardedCategory[] = "com.vur.kolt.config.Logger";

void print_as_it_stands(const char *text) {
    const std::size_t length = text != nullptr ? std::strlen(text) : 0;
    if (length > 0) {
        std::printf("%s%s", text, text[length - 1] == '\n' ? "" : "\n");
    }
}

}  // namespace

vur_dl::Gate vur_dl::forwarding_gate;

KOLT_Config_LoggerDevice VUR_DL_DistLogger_localDevice = {nullptr, VUR_DL_DistLogger_writeDevice,
                                                          nullptr};

void VUR_DL_DistLogger_writeDevice(KOLT_Config_LoggerDevice *,
                                   const KOLT_Config_LogMessage *message) {
    // Who were cancelled inside would keep finalisation waiting.
    const kolt::NoCancellation no_cancellation;
    if (!VUR_DL_DistLogger_isDistLoggerRunning() || !vur_dl::forwarding_gate.enter()) {
        print_as_it_stands(message->text);
        return;
    }
    VUR_DL_DistLogger_logMessageWithLevelCategory(
        vur_dl::load_acquire(VUR_DL_DistLogger_instance),
        VUR_DL_translateFromVURLoggerLogLevelToDLLevel(message->level), message->text,
        kForwardedCategory);
    vur_dl::forwarding_gate.leave();
}

void VUR_DL_DistLogger_maskSystemVerbosity(KOLT_Config_LogVerbosity mask[8],
                                           DDS_DomainParticipantFactory *factory) {
    // Loads the profiles first, because they may configure the verbosities that are saved here.
    if (DDS_DomainParticipantFactory_load_profiles(factory) != DDS_RETCODE_OK) {
        report("Unable to load profiles", __func__, vur_dl::kLevelWarning);
    }
    KOLT_Config_Logger *logger = KOLT_Config_Logger_get_instance();
    if (logger == nullptr) {
        report("Unable to get VUR Logger", __func__);
        return;
    }
    for (int category = 0; category < KOLT_CONFIG_LOG_CATEGORY_COUNT; ++category) {
        mask[category] = KOLT_Config_Logger_get_verbosity_by_category(
            logger, static_cast<KOLT_Config_LogCategory>(category));
    }
    KOLT_Config_Logger_set_verbosity(logger, KOLT_CONFIG_LOG_VERBOSITY_SILENT);
}

void VUR_DL_DistLogger_unmaskSystemVerbosity(const KOLT_Config_LogVerbosity mask[8]) {
    KOLT_Config_Logger *logger = KOLT_Config_Logger_get_instance();
    if (logger == nullptr) {
        report("Unable to get VUR Logger", __func__);
        return;
    }
    for (int category = 0; category < KOLT_CONFIG_LOG_CATEGORY_COUNT; ++category) {
        KOLT_Config_Logger_set_verbosity_by_category(
            logger, static_cast<KOLT_Config_LogCategory>(category), mask[category]);
    }
}
