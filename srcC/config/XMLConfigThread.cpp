// SPDX-License-Identifier: Apache-2.0
// The `thread` child of the element: its conversions and its writer.

#include <cstring>

#include "XMLConfigParse.hpp"

namespace {

using vur_dl::NamedInteger;
using vur_dl::report_parse_error;

constexpr std::size_t kMaskBufferSize = 2048;

constexpr NamedInteger kMaskNames[] = {
    {"MASK_DEFAULT", 0},
    {"DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT", 0},
    {"THREAD_SETTINGS_KIND_MASK_DEFAULT", 0},
    {"FLOATING_POINT", DDS_THREAD_SETTINGS_FLOATING_POINT},
    {"DDS_THREAD_SETTINGS_FLOATING_POINT", DDS_THREAD_SETTINGS_FLOATING_POINT},
    {"THREAD_SETTINGS_FLOATING_POINT", DDS_THREAD_SETTINGS_FLOATING_POINT},
    {"STDIO", DDS_THREAD_SETTINGS_STDIO},
    {"DDS_THREAD_SETTINGS_STDIO", DDS_THREAD_SETTINGS_STDIO},
    {"THREAD_SETTINGS_STDIO", DDS_THREAD_SETTINGS_STDIO},
    {"REALTIME_PRIORITY", DDS_THREAD_SETTINGS_REALTIME_PRIORITY},
    {"DDS_THREAD_SETTINGS_REALTIME_PRIORITY", DDS_THREAD_SETTINGS_REALTIME_PRIORITY},
    {"THREAD_SETTINGS_REALTIME_PRIORITY", DDS_THREAD_SETTINGS_REALTIME_PRIORITY},
    {"PRIORITY_ENFORCE", DDS_THREAD_SETTINGS_PRIORITY_ENFORCE},
    {"DDS_THREAD_SETTINGS_PRIORITY_ENFORCE", DDS_THREAD_SETTINGS_PRIORITY_ENFORCE},
    {"THREAD_SETTINGS_PRIORITY_ENFORCE", DDS_THREAD_SETTINGS_PRIORITY_ENFORCE}};

constexpr NamedInteger kPriorityNames[] = {
    {"DDS_THREAD_PRIORITY_DEFAULT", DDS_THREAD_PRIORITY_DEFAULT},
    {"THREAD_PRIORITY_DEFAULT", DDS_THREAD_PRIORITY_DEFAULT},
    {"DDS_THREAD_PRIORITY_HIGH", DDS_THREAD_PRIORITY_HIGH},
    {"THREAD_PRIORITY_HIGH", DDS_THREAD_PRIORITY_HIGH},
    {"MAX_PRIORITY", DDS_THREAD_PRIORITY_HIGH},
    {"DDS_THREAD_PRIORITY_ABOVE_NORMAL", DDS_THREAD_PRIORITY_ABOVE_NORMAL},
    {"THREAD_PRIORITY_ABOVE_NORMAL", DDS_THREAD_PRIORITY_ABOVE_NORMAL},
    {"DDS_THREAD_PRIORITY_NORMAL", DDS_THREAD_PRIORITY_NORMAL},
    {"THREAD_PRIORITY_NORMAL", DDS_THREAD_PRIORITY_NORMAL},
    {"NORM_PRIORITY", DDS_THREAD_PRIORITY_NORMAL},
    {"DDS_THREAD_PRIORITY_BELOW_NORMAL", DDS_THREAD_PRIORITY_BELOW_NORMAL},
    {"THREAD_PRIORITY_BELOW_NORMAL", DDS_THREAD_PRIORITY_BELOW_NORMAL},
    {"DDS_THREAD_PRIORITY_LOW", DDS_THREAD_PRIORITY_LOW},
    {"THREAD_PRIORITY_LOW", DDS_THREAD_PRIORITY_LOW},
    {"MIN_PRIORITY", DDS_THREAD_PRIORITY_LOW}};

constexpr NamedInteger kStackSizeNames[] = {
    {"DDS_THREAD_STACK_SIZE_DEFAULT", DDS_THREAD_STACK_SIZE_DEFAULT},
    {"THREAD_STACK_SIZE_DEFAULT", DDS_THREAD_STACK_SIZE_DEFAULT}};

constexpr NamedInteger kRotationNames[] = {
    {"CPU_NO_ROTATION", DDS_THREAD_SETTINGS_CPU_NO_ROTATION},
    {"DDS_THREAD_SETTINGS_CPU_NO_ROTATION", DDS_THREAD_SETTINGS_CPU_NO_ROTATION},
    {"THREAD_SETTINGS_CPU_NO_ROTATION", DDS_THREAD_SETTINGS_CPU_NO_ROTATION},
    {"CPU_RR_ROTATION", DDS_THREAD_SETTINGS_CPU_RR_ROTATION},
    {"DDS_THREAD_SETTINGS_CPU_RR_ROTATION", DDS_THREAD_SETTINGS_CPU_RR_ROTATION},
    {"THREAD_SETTINGS_CPU_RR_ROTATION", DDS_THREAD_SETTINGS_CPU_RR_ROTATION}};

// The names that the writer uses; the first match counts.
constexpr NamedInteger kSavedMaskNames[] = {
    {"THREAD_SETTINGS_FLOATING_POINT", DDS_THREAD_SETTINGS_FLOATING_POINT},
    {"THREAD_SETTINGS_STDIO", DDS_THREAD_SETTINGS_STDIO},
    {"THREAD_SETTINGS_REALTIME_PRIORITY", DDS_THREAD_SETTINGS_REALTIME_PRIORITY},
    {"THREAD_SETTINGS_PRIORITY_ENFORCE", DDS_THREAD_SETTINGS_PRIORITY_ENFORCE}};
constexpr NamedInteger kSavedPriorityNames[] = {
    {"THREAD_PRIORITY_DEFAULT", DDS_THREAD_PRIORITY_DEFAULT},
    {"THREAD_PRIORITY_HIGH", DDS_THREAD_PRIORITY_HIGH},
    {"THREAD_PRIORITY_ABOVE_NORMAL", DDS_THREAD_PRIORITY_ABOVE_NORMAL},
    {"THREAD_PRIORITY_NORMAL", DDS_THREAD_PRIORITY_NORMAL},
    {"THREAD_PRIORITY_BELOW_NORMAL", DDS_THREAD_PRIORITY_BELOW_NORMAL},
    {"THREAD_PRIORITY_LOW", DDS_THREAD_PRIORITY_LOW}};

// Takes the white space of XML away from both ends, in place. False for nullptr.
bool trim(char *text) {
    if (text == nullptr) {
        return false;
    }
    constexpr char kWhiteSpace[] = " \t\r\n";
    const char *start = text + std::strspn(text, kWhiteSpace);
    std::size_t length = std::strlen(start);
    while (length > 0 && std::strchr(kWhiteSpace, start[length - 1]) != nullptr) {
        --length;
    }
    std::memmove(text, start, length);
    text[length] = '\0';
    return true;
}

void save_mask(DDS_ThreadSettingsKindMask mask, DDS_XMLSaveContext *context) {
    DDS_XMLSaveContext_indent(context);
    DDS_XMLSaveContext_freeform(context, "<mask>");
    const char *separator = "";
    for (const NamedInteger &row : kSavedMaskNames) {
        if ((mask & static_cast<DDS_ThreadSettingsKindMask>(row.value)) != 0U) {
            DDS_XMLSaveContext_freeform(context, "%s%s", separator, row.name);
            separator = " | ";
        }
    }
    DDS_XMLSaveContext_freeform(context, "</mask>\n");
}

// Writes the priority. sic: a number is indented twice, here and by the helper that writes it.
void save_priority(DDS_Long priority, DDS_XMLSaveContext *context) {
    DDS_XMLSaveContext_indent(context);
    for (const NamedInteger &row : kSavedPriorityNames) {
        if (row.value == priority) {
            DDS_XMLSaveContext_freeform(context, "<priority>%s</priority>\n", row.name);
            return;
        }
    }
    DDS_XMLHelper_save_long("priority", priority, nullptr, DDS_BOOLEAN_FALSE, context);
}

// Writes the rotation. False for one that has no name: a program in C may have put any number
// there, so the value is copied as a number before it is compared.
bool save_rotation(const DDS_ThreadSettings_t &settings, DDS_XMLSaveContext *context) {
    const char *name = nullptr;
    int rotation = 0;
    static_assert(sizeof(rotation) == sizeof(settings.cpu_rotation));
    std::memcpy(&rotation, &settings.cpu_rotation, sizeof(rotation));
    if (rotation == DDS_THREAD_SETTINGS_CPU_NO_ROTATION) {
        name = "THREAD_SETTINGS_CPU_NO_ROTATION";
    } else if (rotation == DDS_THREAD_SETTINGS_CPU_RR_ROTATION) {
        name = "THREAD_SETTINGS_CPU_RR_ROTATION";
    } else {
        return false;
    }
    DDS_XMLHelper_save_string("cpu_rotation", name, nullptr, DDS_BOOLEAN_FALSE, context);
    return true;
}

}  // namespace

void VUR_DL_XMLConfig_getThreadSettingsKindMask(
    DDS_ThreadSettingsKindMask *thread_settings_mask, const char *element_text,
    DDS_XMLContext *context, VUR_DL_XMLConfig_ParseErrorLogFunction log_function) {
    constexpr const char *kTrimFailed = "error trimming thread settings mask string";
    char buffer[kMaskBufferSize];
    const std::size_t length = element_text == nullptr ? 0 : std::strlen(element_text);
    if (length >= sizeof(buffer)) {
        report_parse_error("thread settings kind too long", __func__, context, log_function);
        return;
    }
    *thread_settings_mask = 0U;
    if (element_text == nullptr) {
        report_parse_error(kTrimFailed, __func__, context, log_function);
        return;
    }
    std::memcpy(buffer, element_text, length + 1);
    trim(buffer);
    if (buffer[0] == '\0') {
        return;
    }
    for (char *item = buffer; item != nullptr;) {
        char *next = VUR_DL_XMLConfig_separateFirstElementFromMask(item);
        trim(item);
        const NamedInteger *row = vur_dl::find_name(kMaskNames, item);
        if (row == nullptr) {
            report_parse_error("illegal value on thread mask XML tag", __func__, context,
                               log_function);
            return;
        }
        *thread_settings_mask |= static_cast<DDS_ThreadSettingsKindMask>(row->value);
        item = next;
    }
}

char *VUR_DL_XMLConfig_separateFirstElementFromMask(char *string) {
    char *bar = string == nullptr ? nullptr : std::strchr(string, '|');
    if (bar == nullptr) {
        return nullptr;
    }
    *bar = '\0';
    return bar + 1;
}

void VUR_DL_XMLConfig_getThreadPriority(DDS_Long *integer, const char *text,
                                        DDS_XMLContext *context,
                                        VUR_DL_XMLConfig_ParseErrorLogFunction log_function) {
    const char *given = text == nullptr ? "" : text;
    if (const NamedInteger *row = vur_dl::find_name(kPriorityNames, given)) {
        *integer = row->value;
    } else if (!vur_dl::read_integer(given, vur_dl::kBaseTen, *integer)) {
        report_parse_error("integer expected in XML text", __func__, context, log_function);
    }
}

void VUR_DL_XMLConfig_getThreadStackSize(DDS_Long *integer, const char *text,
                                         DDS_XMLContext *context,
                                         VUR_DL_XMLConfig_ParseErrorLogFunction log_function) {
    int value = 0;
    const NamedInteger *row = text == nullptr ? nullptr : vur_dl::find_name(kStackSizeNames, text);
    if (row != nullptr) {
        *integer = row->value;
    } else if (vur_dl::read_bounded_integer(text, 0, value, __func__, context, log_function)) {
        *integer = value;
    }
}

void VUR_DL_XMLConfig_addElementToThreadCpuList(
    DDS_LongSeq *sequence, const char *text, DDS_XMLContext *context,
    VUR_DL_XMLConfig_ParseErrorLogFunction log_function) {
    constexpr const char *kMethodName = "VUR_DL_XMLConfig_addElementToCpuList";  // sic
    const auto length = static_cast<DDS_Long>(DDS_LongSeq_get_length(sequence) + 1U);
    if (!DDS_LongSeq_ensure_length(sequence, length, length)) {
        report_parse_error("failed to ensure sequence length", kMethodName, context, log_function);
        return;
    }
    int value = 0;
    if (vur_dl::read_bounded_integer(text, 0, value, kMethodName, context, log_function)) {
        *DDS_LongSeq_get_reference(sequence, length - 1) = value;
    }
}

void VUR_DL_XMLConfig_getThreadCpuRotation(DDS_ThreadSettingsCpuRotationKind *result,
                                           const char *text, DDS_XMLContext *context,
                                           VUR_DL_XMLConfig_ParseErrorLogFunction log_function) {
    const NamedInteger *row = text == nullptr ? nullptr : vur_dl::find_name(kRotationNames, text);
    if (row == nullptr) {
        // The function's name in the message: sic.
        report_parse_error("error getting cpu_rotation", "VUR_DL_XMLConfig_getCpuRotation", context,
                           log_function);
        return;
    }
    *result = static_cast<DDS_ThreadSettingsCpuRotationKind>(row->value);
}

void VUR_DL_XMLConfig_saveThreadSettings(const char *tag_name,
                                         const DDS_ThreadSettings_t *thread_settings,
                                         DDS_XMLSaveContext *context) {
    const DDS_ThreadSettings_t defaults = DDS_THREAD_SETTINGS_DEFAULT;
    if (DDS_ThreadSettings_is_equal(thread_settings, &defaults)) {
        return;
    }
    DDS_XMLHelper_save_tag(tag_name, DDS_XML_OPEN_TAG, context);
    save_mask(thread_settings->mask, context);
    save_priority(thread_settings->priority, context);
    if (thread_settings->stack_size != DDS_THREAD_STACK_SIZE_DEFAULT) {
        DDS_XMLHelper_save_long("stack_size", thread_settings->stack_size, nullptr,
                                DDS_BOOLEAN_FALSE, context);
    }
    DDS_XMLHelper_save_long_seq("cpu_list", &thread_settings->cpu_list, nullptr, context);
    if (!save_rotation(*thread_settings, context)) {
        context->error = 1;
        return;
    }
    DDS_XMLHelper_save_tag(tag_name, DDS_XML_CLOSE_TAG, context);
}
