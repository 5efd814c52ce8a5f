// SPDX-License-Identifier: Apache-2.0
// The children of the element `distributed_logger`, in one table.
#include "check/check_elements.hpp"

#include <fmt/format.h>
#include <kolt/xml.h>
#include <vur_dl/XMLConfig.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "text/names.hpp"

namespace distlog::check {
namespace {

// ---- Conversions: the library's own -----------------------------------------------------------

void ignore_error(const char *, const char *, DDS_UnsignedLong) {}

// Calls `convert(context)`; false when it reports an error.
template <typename Convert>
bool converts(Convert convert) {
    DDS_XMLContext context = DDS_XML_CONTEXT_INITIALIZER;
    errno = 0;
    convert(&context);
    return context.error == 0;
}

bool is_boolean(const char *text) {
    return converts([&](DDS_XMLContext *context) {
        DDS_Boolean value = DDS_BOOLEAN_FALSE;
        DDS_XMLHelper_str_to_boolean(&value, text, context);
    });
}

// True when a number stands at the start of the text, where the library reads it.
bool starts_with_number(const char *text) {
    text += std::strspn(text, " \t\r\n\v\f");
    text += text[0] == '+' || text[0] == '-' ? 1 : 0;
    return text[0] >= '0' && text[0] <= '9';
}

// True when the library's converter for integers accepts the text.
template <auto kConvert>
bool is_integer(const char *text) {
    return converts([&](DDS_XMLContext *context) {
        int value = 0;
        kConvert(&value, text, context, ignore_error);
    });
}
template <auto kConvert>
std::optional<int> number_in(const char *text) {
    int value = 0;
    const bool converted =
        converts([&](DDS_XMLContext *context) { kConvert(&value, text, context, ignore_error); });
    return converted && starts_with_number(text) ? std::optional<int>(value) : std::nullopt;
}

void convert_level(int *value, const char *text, DDS_XMLContext *context,
                   VUR_DL_XMLConfig_ParseErrorLogFunction log) {
    *value = VUR_DL_XMLConfig_getFilterLevelFromString(text, context, log);
}
void append_cpu(int *value, const char *text, DDS_XMLContext *context,
                VUR_DL_XMLConfig_ParseErrorLogFunction log) {
    DDS_LongSeq list = DDS_SEQUENCE_INITIALIZER;
    VUR_DL_XMLConfig_addElementToThreadCpuList(&list, text, context, log);
    *value = DDS_LongSeq_get_length(&list) == 0 ? 0 : DDS_LongSeq_get(&list, 0);
    DDS_LongSeq_finalize(&list);
}

bool is_mask(const char *text) {
    return converts([&](DDS_XMLContext *context) {
        DDS_ThreadSettingsKindMask mask = 0;
        VUR_DL_XMLConfig_getThreadSettingsKindMask(&mask, text, context, ignore_error);
    });
}

bool is_rotation(const char *text) {
    return converts([&](DDS_XMLContext *context) {
        DDS_ThreadSettingsCpuRotationKind rotation = DDS_THREAD_SETTINGS_CPU_NO_ROTATION;
        VUR_DL_XMLConfig_getThreadCpuRotation(&rotation, text, context, ignore_error);
    });
}

// ---- Options ----------------------------------------------------------------------------------

std::string boolean_text(int value) {
    return value != 0 ? "true" : "false";
}

Json mask_names(const VUR_DL_Options &options) {
    constexpr struct {
        const char *name;
        DDS_ThreadSettingsKindMask bit;
    } kBits[] = {{"FLOATING_POINT", DDS_THREAD_SETTINGS_FLOATING_POINT},
                 {"STDIO", DDS_THREAD_SETTINGS_STDIO},
                 {"REALTIME_PRIORITY", DDS_THREAD_SETTINGS_REALTIME_PRIORITY},
                 {"PRIORITY_ENFORCE", DDS_THREAD_SETTINGS_PRIORITY_ENFORCE}};
    Json names = Json::array();
    for (const auto &row : kBits) {
        if ((options.threadSettings.mask & row.bit) != 0U) {
            names.push_back(row.name);
        }
    }
    return names;
}

Json cpu_numbers(const VUR_DL_Options &options) {
    const DDS_LongSeq &list = options.threadSettings.cpu_list;
    Json numbers = Json::array();
    for (DDS_UnsignedLong i = 0; i < DDS_LongSeq_get_length(&list); ++i) {
        numbers.push_back(DDS_LongSeq_get(&list, static_cast<DDS_Long>(i)));
    }
    return numbers;
}

std::string joined(const Json &array, std::string_view separator, std::string_view empty) {
    std::string text;
    for (const Json &element : array) {
        text += (text.empty() ? "" : std::string(separator)) +
                (element.is_string() ? element.get<std::string>() : element.dump());
    }
    return text.empty() ? std::string(empty) : text;
}

// Returns the value, or null for the default, which stands for "the system's".
Json unless_default(DDS_Long value, DDS_Long default_value) {
    return value == default_value ? Json() : Json(value);
}

const char *rotation_name(const VUR_DL_Options &options) {
    return options.threadSettings.cpu_rotation == DDS_THREAD_SETTINGS_CPU_RR_ROTATION
               ? "CPU_RR_ROTATION"
               : "CPU_NO_ROTATION";
}

// ---- The table --------------------------------------------------------------------------------

using Options = VUR_DL_Options;
constexpr auto kQueueSize = VUR_DL_XMLConfig_getQueueSize;
constexpr auto kPriority = VUR_DL_XMLConfig_getThreadPriority;
constexpr auto kStackSize = VUR_DL_XMLConfig_getThreadStackSize;
constexpr std::string_view kLogger = "distributed_logger";
constexpr std::string_view kBoolean = "true, false, 1, 0";

const Element kElements[] = {
    {kLogger, "enabled", DL_XMLCONFIG_ENABLED_TAG, kBoolean, is_boolean, nullptr, 0,
     [](const Options &o) { return Json(o.enabled != 0); },
     [](const Options &o) { return boolean_text(o.enabled); }},
    {kLogger, "filter_level", DL_XMLCONFIG_FILTER_LEVEL_TAG,
     "SILENT, FATAL, SEVERE, ERROR, WARNING, NOTICE, INFO, DEBUG, TRACE (in capitals, without "
     "blanks around them), or a decimal number of 0 or more",
     is_integer<convert_level>, number_in<convert_level>, 10,
     [](const Options &o) { return Json(o.filterLevel); },
     [](const Options &o) {
         const std::string name = level_name(o.filterLevel);
         const std::string number = fmt::format("{}", o.filterLevel);
         return name == number ? number : fmt::format("{} ({})", number, name);
     }},
    {kLogger, "queue_size", DL_XMLCONFIG_QUEUE_SIZE_TAG, "a number from 1 to 2147483647",
     is_integer<kQueueSize>, number_in<kQueueSize>, 0,
     [](const Options &o) { return Json(o.queueSize); },
     [](const Options &o) { return fmt::format("{} messages", o.queueSize); }},
    {kLogger, "echo_to_stdout", DL_XMLCONFIG_ECHO_TO_STDOUT_TAG, kBoolean, is_boolean, nullptr, 0,
     [](const Options &o) { return Json(o.echoToStdout != 0); },
     [](const Options &o) { return boolean_text(o.echoToStdout); }},
    {kLogger, "log_infrastructure_messages", DL_XMLCONFIG_LOG_INFRASTRUCTURE_MESSAGES_TAG, kBoolean,
     is_boolean, nullptr, 0,
     [](const Options &o) { return Json(o.logInfrastructureMessages != 0); },
     [](const Options &o) { return boolean_text(o.logInfrastructureMessages); }},
    {kLogger, "thread", DL_XMLCONFIG_THREAD_TAG, "", nullptr, nullptr, 0, nullptr, nullptr},
    {"thread", "mask", DL_XMLCONFIG_THREAD_MASK_TAG,
     "MASK_DEFAULT, FLOATING_POINT, STDIO, REALTIME_PRIORITY, PRIORITY_ENFORCE, joined by '|'",
     is_mask, nullptr, 0, mask_names,
     [](const Options &o) { return joined(mask_names(o), " | ", "none"); }},
    {"thread", "priority", DL_XMLCONFIG_THREAD_PRIORITY_TAG,
     "a decimal number, or THREAD_PRIORITY_DEFAULT, THREAD_PRIORITY_HIGH, "
     "THREAD_PRIORITY_ABOVE_NORMAL, THREAD_PRIORITY_NORMAL, THREAD_PRIORITY_BELOW_NORMAL, "
     "THREAD_PRIORITY_LOW",
     is_integer<kPriority>, number_in<kPriority>, 10,
     [](const Options &o) {
         return unless_default(o.threadSettings.priority, DDS_THREAD_PRIORITY_DEFAULT);
     },
     [](const Options &o) {
         return o.threadSettings.priority == DDS_THREAD_PRIORITY_DEFAULT
                    ? "the system's"
                    : fmt::format("{}", o.threadSettings.priority);
     }},
    {"thread", "stack_size", DL_XMLCONFIG_THREAD_STACK_SIZE_TAG,
     "a number of bytes, 0 or more, or THREAD_STACK_SIZE_DEFAULT", is_integer<kStackSize>,
     number_in<kStackSize>, 0,
     [](const Options &o) {
         return unless_default(o.threadSettings.stack_size, DDS_THREAD_STACK_SIZE_DEFAULT);
     },
     [](const Options &o) {
         return o.threadSettings.stack_size == DDS_THREAD_STACK_SIZE_DEFAULT
                    ? "the system's"
                    : fmt::format("{} bytes", o.threadSettings.stack_size);
     }},
    {"thread", "cpu_list", DL_XMLCONFIG_THREAD_CPU_LIST_TAG, "", nullptr, nullptr, 0, cpu_numbers,
     [](const Options &o) { return joined(cpu_numbers(o), ", ", "any"); }},
    {"cpu_list", "element", DL_XMLCONFIG_THREAD_CPU_LIST_TAG,
     "the number of a processor, 0 or more", is_integer<append_cpu>, number_in<append_cpu>, 0,
     nullptr, nullptr},
    {"thread", "cpu_rotation", DL_XMLCONFIG_THREAD_CPU_ROTATION_TAG,
     "CPU_NO_ROTATION, CPU_RR_ROTATION", is_rotation, nullptr, 0,
     [](const Options &o) { return Json(rotation_name(o)); },
     [](const Options &o) { return std::string(rotation_name(o)); }},
};

}  // namespace

std::span<const Element> elements() {
    return kElements;
}

const Element *find_element(std::string_view name) {
    for (const Element &element : kElements) {
        if (element.name == name) {
            return &element;
        }
    }
    return nullptr;
}

std::string child_names(std::string_view parent) {
    std::string names;
    for (const Element &element : kElements) {
        if (element.parent == parent) {
            names += (names.empty() ? "" : ", ") + std::string(element.name);
        }
    }
    return names;
}

std::string path_of(const Element &element) {
    return element.parent == kLogger ? std::string(element.name)
                                     : fmt::format("{}/{}", element.parent, element.name);
}

}  // namespace distlog::check
