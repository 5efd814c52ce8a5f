// SPDX-License-Identifier: Apache-2.0
// The children of the element: the parser's callbacks turn their tags and texts into options, and
// the options are written back.

#include <cstring>
#include <optional>

#include "XMLConfigParse.hpp"
#include "distlogger/report.hpp"
#include "vur_dl/DistLogger.h"

namespace {

using vur_dl::NamedInteger;
using vur_dl::report;
using vur_dl::report_parse_error;

struct TagRow {
    const char *name;
    DL_XMLConfig_TagType state;
};

constexpr TagRow kChildTags[] = {
    {"filter_level", DL_XMLCONFIG_FILTER_LEVEL_TAG},
    {"enabled", DL_XMLCONFIG_ENABLED_TAG},
    {"thread", DL_XMLCONFIG_THREAD_TAG},
    {"queue_size", DL_XMLCONFIG_QUEUE_SIZE_TAG},
    {"echo_to_stdout", DL_XMLCONFIG_ECHO_TO_STDOUT_TAG},
    {"log_infrastructure_messages", DL_XMLCONFIG_LOG_INFRASTRUCTURE_MESSAGES_TAG}};

constexpr TagRow kThreadTags[] = {{"mask", DL_XMLCONFIG_THREAD_MASK_TAG},
                                  {"priority", DL_XMLCONFIG_THREAD_PRIORITY_TAG},
                                  {"stack_size", DL_XMLCONFIG_THREAD_STACK_SIZE_TAG},
                                  {"cpu_list", DL_XMLCONFIG_THREAD_CPU_LIST_TAG},
                                  {"cpu_rotation", DL_XMLCONFIG_THREAD_CPU_ROTATION_TAG}};

constexpr NamedInteger kLevels[] = {{"SILENT", 0},  {"FATAL", 100},   {"SEVERE", 200},
                                    {"ERROR", 300}, {"WARNING", 400}, {"NOTICE", 500},
                                    {"INFO", 600},  {"DEBUG", 700},   {"TRACE", 800}};

bool same(const char *left, const char *right) {
    return std::strcmp(left, right) == 0;
}

template <std::size_t kCount>
std::optional<DL_XMLConfig_TagType> state_of(const TagRow (&tags)[kCount], const char *tag_name) {
    for (const TagRow &row : tags) {
        if (same(row.name, tag_name)) {
            return row.state;
        }
    }
    return std::nullopt;
}

// Returns the tag that ends a state; "" for the outer one.
const char *tag_of(DL_XMLConfig_TagType state) {
    for (const TagRow &row : kChildTags) {
        if (row.state == state) {
            return row.name;
        }
    }
    for (const TagRow &row : kThreadTags) {
        if (row.state == state) {
            return row.name;
        }
    }
    return "";
}

// One end tag with its text, and the options that it sets.
struct EndTag {
    VUR_DL_Options &options;
    const char *text;
    DDS_XMLContext *context;
    VUR_DL_XMLConfig_ParseErrorLogFunction log;
    const char *method;

    int boolean() const {
        DDS_Boolean value = DDS_BOOLEAN_FALSE;
        DDS_XMLHelper_str_to_boolean(&value, text, context);
        return value != DDS_BOOLEAN_FALSE ? 1 : 0;
    }

    // Sets the level. Reports a text that is not a level and returns false.
    bool set_filter_level() const {
        const int level = VUR_DL_XMLConfig_getFilterLevelFromString(text, context, log);
        if (level == -1) {
            report_parse_error("invalid filter level string in XML configuration", method, context,
                               log);
            return false;
        }
        VUR_DL_Options_setFilterLevel(&options, level);
        return true;
    }

    void set_queue_size() const {
        int size = 0;
        VUR_DL_XMLConfig_getQueueSize(&size, text, context, log);
        if (VUR_DL_Options_setQueueSize(&options, size) != DDS_RETCODE_OK) {
            report("Unable to set queue size", method);
        }
    }
};

// Acts on the end of the child that `state` stands for. Returns the state afterwards.
DL_XMLConfig_TagType end_child(DL_XMLConfig_TagType state, const EndTag &tag) {
    DDS_ThreadSettings_t &thread = tag.options.threadSettings;
    switch (state) {
        case DL_XMLCONFIG_FILTER_LEVEL_TAG:
            return tag.set_filter_level() ? DL_XMLCONFIG_OTHER : state;
        case DL_XMLCONFIG_ENABLED_TAG:
            tag.options.enabled = tag.boolean();
            return DL_XMLCONFIG_OTHER;
        case DL_XMLCONFIG_ECHO_TO_STDOUT_TAG:
            tag.options.echoToStdout = tag.boolean();
            return DL_XMLCONFIG_OTHER;
        case DL_XMLCONFIG_LOG_INFRASTRUCTURE_MESSAGES_TAG:
            tag.options.logInfrastructureMessages = tag.boolean();
            return DL_XMLCONFIG_OTHER;
        case DL_XMLCONFIG_QUEUE_SIZE_TAG:
            tag.set_queue_size();
            return DL_XMLCONFIG_OTHER;
        case DL_XMLCONFIG_THREAD_MASK_TAG:
            VUR_DL_XMLConfig_getThreadSettingsKindMask(&thread.mask, tag.text, tag.context,
                                                       tag.log);
            return DL_XMLCONFIG_THREAD_TAG;
        case DL_XMLCONFIG_THREAD_PRIORITY_TAG:
            VUR_DL_XMLConfig_getThreadPriority(&thread.priority, tag.text, tag.context, tag.log);
            return DL_XMLCONFIG_THREAD_TAG;
        case DL_XMLCONFIG_THREAD_STACK_SIZE_TAG:
            VUR_DL_XMLConfig_getThreadStackSize(&thread.stack_size, tag.text, tag.context, tag.log);
            return DL_XMLCONFIG_THREAD_TAG;
        case DL_XMLCONFIG_THREAD_CPU_ROTATION_TAG:
            VUR_DL_XMLConfig_getThreadCpuRotation(&thread.cpu_rotation, tag.text, tag.context,
                                                  tag.log);
            return DL_XMLCONFIG_THREAD_TAG;
        case DL_XMLCONFIG_THREAD_CPU_LIST_TAG:
            return DL_XMLCONFIG_THREAD_TAG;
        case DL_XMLCONFIG_THREAD_TAG:
        case DL_XMLCONFIG_OTHER:
            break;
    }
    return DL_XMLCONFIG_OTHER;
}

// Returns the level of the running logger, which remote commands may have changed; without a
// running logger, the parsed level.
int level_to_save(const VUR_DL_Options &options) {
    if (VUR_DL_DistLogger_isDistLoggerRunning()) {
        if (const VUR_DL_DistLogger *logger = VUR_DL_DistLogger_getInstance()) {
            return VUR_DL_DistLogger_getFilterLevel(logger);
        }
    }
    return options.filterLevel;
}

void save_filter_level(int level, DDS_XMLSaveContext *context) {
    for (const NamedInteger &row : kLevels) {
        if (row.value == level) {
            DDS_XMLSaveContext_freeform(context, "<filter_level>%s</filter_level>\n", row.name);
            return;
        }
    }
    DDS_XMLSaveContext_freeform(context, "<filter_level>%u</filter_level>\n",
                                static_cast<unsigned int>(level));
}

}  // namespace

void VUR_DL_XMLConfig_onStartElement(DDS_XMLObject *self, const char *tag_name, const char **,
                                     DDS_XMLContext *) {
    auto &config = *reinterpret_cast<VUR_DL_XMLConfig *>(self);
    auto state = state_of(kChildTags, tag_name);
    if (!state && config.currentStatus == DL_XMLCONFIG_THREAD_TAG) {
        state = state_of(kThreadTags, tag_name);
    }
    config.currentStatus = state.value_or(config.currentStatus);
}

void VUR_DL_XMLConfig_onEndElement(DDS_XMLObject *self, const char *tag_name,
                                   const char *element_text, DDS_XMLContext *context) {
    auto &config = *reinterpret_cast<VUR_DL_XMLConfig *>(self);
    if (config.extensionListener == nullptr) {
        report("invalid extension listener", __func__);
        return;
    }
    const auto log = config.extensionListener->parserErrorLogFunction;
    if (log == nullptr) {
        report("invalid log parse error function pointer", __func__);
        return;
    }
    VUR_DL_Options &options = *config.parsedDLOptions;
    if (config.currentStatus == DL_XMLCONFIG_THREAD_CPU_LIST_TAG && same(tag_name, "element")) {
        VUR_DL_XMLConfig_addElementToThreadCpuList(&options.threadSettings.cpu_list, element_text,
                                                   context, log);
    } else if (same(tag_name, tag_of(config.currentStatus))) {
        config.currentStatus =
            end_child(config.currentStatus, {options, element_text, context, log, __func__});
    }
}

int VUR_DL_XMLConfig_getFilterLevelFromString(const char *string, DDS_XMLContext *context,
                                              VUR_DL_XMLConfig_ParseErrorLogFunction log_function) {
    if (string == nullptr) {
        report_parse_error("null string found for filter level", __func__, context, log_function);
        return -1;
    }
    for (const NamedInteger &row : kLevels) {
        if (same(row.name, string)) {
            return row.value;
        }
    }
    int level = 0;
    if (!vur_dl::read_integer(string, vur_dl::kBaseTen, level)) {
        report_parse_error("integer expected in XML text", __func__, context, log_function);
        return -1;
    }
    if (level < 0) {
        report_parse_error("negative integer not allowed for filter level", __func__, context,
                           log_function);
        return -1;
    }
    return level;
}

void VUR_DL_XMLConfig_getQueueSize(int *integer, const char *string, DDS_XMLContext *context,
                                   VUR_DL_XMLConfig_ParseErrorLogFunction log_function) {
    int size = 0;
    if (vur_dl::read_bounded_integer(string, 1, size, __func__, context, log_function)) {
        *integer = size;
    }
}

void VUR_DL_XMLConfig_save(const DDS_XMLObject *self, DDS_XMLSaveContext *save_context) {
    const auto boolean = [](int value) { return value != 0 ? "true" : "false"; };

    DDS_XMLSaveContext_indent(save_context);
    DDS_XMLSaveContext_freeform(save_context, "<distributed_logger>\n");
    ++save_context->depth;
    DDS_XMLSaveContext_indent(save_context);
    const VUR_DL_Options *options =
        VUR_DL_XMLConfig_getDLOptions(reinterpret_cast<const VUR_DL_XMLConfig *>(self));
    if (options == nullptr) {
        save_context->error = 1;
        return;
    }
    save_filter_level(level_to_save(*options), save_context);
    DDS_XMLSaveContext_indent(save_context);
    DDS_XMLSaveContext_freeform(save_context, "<enabled>%s</enabled>\n", boolean(options->enabled));
    // sic: these two lines are not indented.
    DDS_XMLSaveContext_freeform(save_context, "<echo_to_stdout>%s</echo_to_stdout>\n",
                                boolean(options->echoToStdout));
    DDS_XMLSaveContext_freeform(save_context,
                                "<log_infrastructure_messages>%s</log_infrastructure_messages>\n",
                                boolean(options->logInfrastructureMessages));
    VUR_DL_XMLConfig_saveThreadSettings("thread", &options->threadSettings, save_context);
    if (save_context->error != 0) {
        return;
    }
    DDS_XMLSaveContext_indent(save_context);
    DDS_XMLSaveContext_freeform(save_context, "<queue_size>%d</queue_size>\n",
                                static_cast<int>(options->queueSize));
    --save_context->depth;
    DDS_XMLSaveContext_indent(save_context);
    DDS_XMLSaveContext_freeform(save_context, "</distributed_logger>\n");
}
