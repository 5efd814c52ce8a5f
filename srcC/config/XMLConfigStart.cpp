// SPDX-License-Identifier: Apache-2.0
// Starting the logger from parsed options, and from a file.

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

#include "distlogger/report.hpp"
#include "kolt/domain.h"
#include "vur_dl/DistLogger.h"
#include "vur_dl/XMLConfig.h"

namespace {

using vur_dl::report;

constexpr const char *kFromFileMethod = "VUR_DL_XMLConfig_startFromFile";

__attribute__((format(printf, 1, 2))) void report_from_file(const char *format, ...) {
    char message[1024];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(message, sizeof(message), format, arguments);
    va_end(arguments);
    report(message, kFromFileMethod);
}

void report_parse_error(const char *message, const char *method, DDS_UnsignedLong line) {
    char text[1024];
    std::snprintf(text, sizeof(text), "line %u: %s", line, message);
    report(text, method);
}

// True, with a printed line, when there is nothing to start.
bool has_nothing_to_start(const VUR_DL_Options &options, const char *method) {
    if (options.enabled == 0) {
        report("DL not enabled in XML Options. It won't be created", method, vur_dl::kLevelInfo);
        return true;
    }
    if (VUR_DL_DistLogger_isDistLoggerRunning()) {
        report("DL already running. XML Options don't apply", method, vur_dl::kLevelInfo);
        return true;
    }
    return false;
}

// Starts the logger with the options. 0, with a printed line, on failure.
int start(VUR_DL_Options &options, const char *application_kind, const char *method) {
    if (application_kind != nullptr &&
        VUR_DL_Options_setApplicationKind(&options, application_kind) != DDS_RETCODE_OK) {
        report("could not set the application kind", method);
        return 0;
    }
    if (!VUR_DL_DistLogger_setOptions(&options)) {
        report("could not set DL options; instance already created", method);
        return 0;
    }
    if (VUR_DL_DistLogger_getInstance() == nullptr) {
        report("Distributed Logger could not be started", method);
        return 0;
    }
    return 1;
}

// Owns a list of names, of libraries or of profiles.
class Names {
  public:
    Names() { DDS_StringSeq_initialize(&names_); }
    ~Names() { DDS_StringSeq_finalize(&names_); }
    Names(const Names &) = delete;
    Names &operator=(const Names &) = delete;

    DDS_StringSeq *get() { return &names_; }
    DDS_Long count() const { return static_cast<DDS_Long>(DDS_StringSeq_get_length(&names_)); }
    const char *at(DDS_Long index) const { return *DDS_StringSeq_get_reference(&names_, index); }
    bool contain(const char *name) const {
        for (DDS_Long i = 0; i < count(); ++i) {
            if (std::strcmp(at(i), name) == 0) {
                return true;
            }
        }
        return false;
    }

  private:
    DDS_StringSeq names_;
};

// Starts the logger in a participant that the logger creates.
int start_in_domain(VUR_DL_Options &options, int domain_id, const char *application_kind) {
    if (has_nothing_to_start(options, kFromFileMethod)) {
        return 1;
    }
    if (VUR_DL_Options_setDomainId(&options, domain_id) != DDS_RETCODE_OK) {
        report("invalid domain id", kFromFileMethod);
        return 0;
    }
    return start(options, application_kind, kFromFileMethod);
}

// Names the logger's own profile in the options, from the first library that has it. Leaves them
// alone when none has. False when memory runs out.
bool set_own_profile(VUR_DL_Options &options, DDS_DomainParticipantFactory *factory) {
    Names libraries;
    if (DDS_DomainParticipantFactory_get_qos_profile_libraries(factory, libraries.get()) !=
        DDS_RETCODE_OK) {
        return false;
    }
    for (DDS_Long i = 0; i < libraries.count(); ++i) {
        Names profiles;
        if (DDS_DomainParticipantFactory_get_qos_profiles(factory, profiles.get(),
                                                          libraries.at(i)) != DDS_RETCODE_OK) {
            return false;
        }
        if (profiles.contain(VUR_DL_XML_CONFIG_QOS_PROFILE)) {
            return VUR_DL_Options_setQosLibrary(&options, libraries.at(i)) == DDS_RETCODE_OK &&
                   VUR_DL_Options_setQosProfile(&options, VUR_DL_XML_CONFIG_QOS_PROFILE) ==
                       DDS_RETCODE_OK;
        }
    }
    return true;
}

}  // namespace

int VUR_DL_XMLConfig_chooseQosProfile(VUR_DL_Options *options) {
    if (options == nullptr) {
        report("no options given", __func__);
        return 0;
    }
    if (options->qosLibrary != nullptr || options->qosProfile != nullptr) {
        return 1;
    }
    if (!set_own_profile(*options, DDS_DomainParticipantFactory_get_instance())) {
        report("could not choose the QoS profile", __func__);
        return 0;
    }
    return 1;
}

int VUR_DL_XMLConfig_startWithXMLConfiguration(DDS_DomainParticipant *domain_participant,
                                               VUR_DL_Options *options,
                                               const char *application_kind) {
    if (options == nullptr) {
        report("no options found in XML configuration", __func__);
        return 0;
    }
    if (domain_participant == nullptr) {
        report("invalid DomainParticipant", __func__);
        return 0;
    }
    if (has_nothing_to_start(*options, __func__)) {
        return 1;
    }
    VUR_DL_Options_setDomainParticipant(options, domain_participant);
    return start(*options, application_kind, __func__);
}

int VUR_DL_XMLConfig_startFromFile(const char *path, DDS_DomainParticipant *domain_participant,
                                   int domain_id, const char *application_kind) {
    using ClassPtr = std::unique_ptr<DDS_XMLExtensionClass, void (*)(DDS_XMLExtensionClass *)>;
    using ParserPtr = std::unique_ptr<DDS_XMLParser, void (*)(DDS_XMLParser *)>;

    if (path == nullptr) {
        report("no path given", __func__);
        return 0;
    }
    const ClassPtr extension_class(VUR_DL_XMLConfig_createXMLExtensionClass(report_parse_error),
                                   VUR_DL_XMLConfig_destroyXMLExtensionClass);
    const ParserPtr parser(DDS_XMLParser_new(), DDS_XMLParser_delete);
    if (extension_class == nullptr || parser == nullptr ||
        DDS_XMLParser_register_extension_class(parser.get(), extension_class.get()) !=
            DDS_RETCODE_OK) {
        report("could not create the XML parser", __func__);
        return 0;
    }
    if (DDS_XMLParser_parse_file(parser.get(), path) != DDS_RETCODE_OK) {
        report_from_file("%s, line %u: %s", path, DDS_XMLParser_get_error_line(parser.get()),
                         DDS_XMLParser_get_error_message(parser.get()));
        return 0;
    }
    if (KOLT_DomainParticipantFactory_add_profiles(DDS_DomainParticipantFactory_get_instance(),
                                                   path) != DDS_RETCODE_OK) {
        report_from_file("%s: could not load the QoS profiles", path);
        return 0;
    }
    const VUR_DL_XMLConfig *config =
        VUR_DL_XMLConfig_getXMLConfigFromXMLRoot(DDS_XMLParser_get_root(parser.get()));
    if (config == nullptr) {
        report_from_file("%s: no element <distributed_logger>", path);
        return 0;
    }
    VUR_DL_Options *options = VUR_DL_XMLConfig_getDLOptions(config);
    if (!VUR_DL_XMLConfig_chooseQosProfile(options)) {
        return 0;
    }
    if (domain_participant != nullptr) {
        return VUR_DL_XMLConfig_startWithXMLConfiguration(domain_participant, options,
                                                          application_kind);
    }
    return start_in_domain(*options, domain_id, application_kind);
}
