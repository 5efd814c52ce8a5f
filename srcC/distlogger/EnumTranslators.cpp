// SPDX-License-Identifier: Apache-2.0
// Translations between the middleware logger's scales and the ones on the wire: one table each.
#include "vur_dl/EnumTranslators.h"

#include <array>
#include <cstring>
#include <string_view>
#include <utility>

#include "levels.hpp"

namespace {

template <typename From, typename To, std::size_t kCount>
using Table = std::array<std::pair<From, To>, kCount>;

template <typename From, typename To, std::size_t kCount>
constexpr To forward(const Table<From, To, kCount> &table, From value, To otherwise) {
    for (const auto &[from, to] : table) {
        if (from == value) {
            return to;
        }
    }
    return otherwise;
}

template <typename From, typename To, std::size_t kCount>
constexpr From backward(const Table<From, To, kCount> &table, To value, From otherwise) {
    for (const auto &[from, to] : table) {
        if (to == value) {
            return from;
        }
    }
    return otherwise;
}

constexpr Table<KOLT_Config_LogCategory, VUR_DL_ADMIN_VURLoggerCategory, 4> kCategories{{
    {KOLT_CONFIG_LOG_CATEGORY_PLATFORM, VUR_DL_KOLT_CONFIG_LOG_CATEGORY_PLATFORM},
    {KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION, VUR_DL_KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    {KOLT_CONFIG_LOG_CATEGORY_DATABASE, VUR_DL_KOLT_CONFIG_LOG_CATEGORY_DATABASE},
    {KOLT_CONFIG_LOG_CATEGORY_ENTITIES, VUR_DL_KOLT_CONFIG_LOG_CATEGORY_ENTITIES},
}};

constexpr Table<KOLT_Config_LogVerbosity, VUR_DL_ADMIN_VURLoggerVerbosity, 5> kVerbosities{{
    {KOLT_CONFIG_LOG_VERBOSITY_SILENT, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT},
    {KOLT_CONFIG_LOG_VERBOSITY_ERROR, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR},
    {KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL},
    {KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE},
    {KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL},
}};

constexpr Table<KOLT_Config_LogPrintFormat, VUR_DL_ADMIN_VURLoggerPrintFormat, 7> kPrintFormats{{
    {KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT},
    {KOLT_CONFIG_LOG_PRINT_FORMAT_TIMESTAMPED, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_TIMESTAMPED},
    {KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE},
    {KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED,
     VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED},
    {KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG},
    {KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL},
    {KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL},
}};

constexpr Table<KOLT_Config_LogLevel, int, 6> kLevels{{
    {KOLT_CONFIG_LOG_LEVEL_FATAL_ERROR, vur_dl::kLevelFatal},
    {KOLT_CONFIG_LOG_LEVEL_ERROR, vur_dl::kLevelError},
    {KOLT_CONFIG_LOG_LEVEL_WARNING, vur_dl::kLevelWarning},
    {KOLT_CONFIG_LOG_LEVEL_STATUS_LOCAL, vur_dl::kLevelNotice},
    {KOLT_CONFIG_LOG_LEVEL_STATUS_REMOTE, vur_dl::kLevelInfo},
    {KOLT_CONFIG_LOG_LEVEL_DEBUG, vur_dl::kLevelDebug},
}};

constexpr Table<int, std::string_view, 8> kLabels{{
    {vur_dl::kLevelFatal, "DL Fatal"},
    {vur_dl::kLevelSevere, "DL Severe"},
    {vur_dl::kLevelError, "DL Error"},
    {vur_dl::kLevelWarning, "DL Warning"},
    {vur_dl::kLevelNotice, "DL Notice"},
    {vur_dl::kLevelInfo, "DL Info"},
    {vur_dl::kLevelDebug, "DL Debug"},
    {vur_dl::kLevelTrace, "DL Trace"},
}};
constexpr std::string_view kSilentLabel = "DL Silent";

constexpr bool every_label_fits() {
    for (const auto &[level, label] : kLabels) {
        if (label.size() >= VUR_DL_LOG_LEVEL_LABEL_SIZE) {
            return false;
        }
    }
    return kSilentLabel.size() < VUR_DL_LOG_LEVEL_LABEL_SIZE;
}
static_assert(every_label_fits());

}  // namespace

VUR_DL_ADMIN_VURLoggerCategory VUR_DL_translateFromVURLoggerCategoryToDLCategory(
    KOLT_Config_LogCategory category) {
    return forward(kCategories, category, VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API);
}

KOLT_Config_LogCategory VUR_DL_translateFromDLCategoryToVURLoggerCategory(
    VUR_DL_ADMIN_VURLoggerCategory category) {
    return backward(kCategories, category, KOLT_CONFIG_LOG_CATEGORY_API);
}

VUR_DL_ADMIN_VURLoggerVerbosity VUR_DL_translateFromVURLoggerVerbosityToDLVerbosity(
    KOLT_Config_LogVerbosity verbosity) {
    return forward(kVerbosities, verbosity, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING);
}

KOLT_Config_LogVerbosity VUR_DL_translateFromDLVerbosityToVURLoggerVerbosity(
    VUR_DL_ADMIN_VURLoggerVerbosity verbosity) {
    return backward(kVerbosities, verbosity, KOLT_CONFIG_LOG_VERBOSITY_WARNING);
}

VUR_DL_ADMIN_VURLoggerPrintFormat VUR_DL_translateFromVURLoggerPrintFormatToDLPrintFormat(
    KOLT_Config_LogPrintFormat format) {
    return forward(kPrintFormats, format, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
}

KOLT_Config_LogPrintFormat VUR_DL_translateFromDLPrintFormatToVURLoggerPrintFormat(
    VUR_DL_ADMIN_VURLoggerPrintFormat format) {
    return backward(kPrintFormats, format, KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
}

int VUR_DL_translateFromVURLoggerLogLevelToDLLevel(KOLT_Config_LogLevel level) {
    return forward(kLevels, level, vur_dl::kLevelInfo);
}

DDS_ReturnCode_t VUR_DL_translateFromDLLogLevelToString(int level, char *label) {
    if (label == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const std::string_view text = forward(kLabels, level, kSilentLabel);
    std::memcpy(label, text.data(), text.size());
    label[text.size()] = '\0';
    return DDS_RETCODE_OK;
}
