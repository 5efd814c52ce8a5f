// SPDX-License-Identifier: Apache-2.0
// Getters and setters of the options record, each with its own bounds and messages.
#include "DistLoggerRecord.hpp"
#include "report.hpp"
#include "vur_dl/Options.h"

namespace {

using vur_dl::report;

// Returns a field, or the sentinel, with a printed line, for a NULL record.
template <typename T, typename Result>
Result get(const VUR_DL_Options *self, T VUR_DL_Options::*field, Result sentinel,
           const char *method) {
    if (self == nullptr) {
        report("VUR_DL_Options is null", method);
        return sentinel;
    }
    return static_cast<Result>(self->*field);
}

// Sets a field, unless `refusal` is set: it then holds the reason why the value is out of bounds.
template <typename T, typename V>
DDS_ReturnCode_t set(VUR_DL_Options *self, T VUR_DL_Options::*field, V value, const char *refusal,
                     const char *method) {
    if (self == nullptr) {
        report("VUR_DL_Options is null", method);
        return DDS_RETCODE_NO_DATA;
    }
    if (refusal != nullptr) {
        report(refusal, method);
        return DDS_RETCODE_BAD_PARAMETER;
    }
    self->*field = static_cast<T>(value);
    return DDS_RETCODE_OK;
}

struct StringMessages {
    const char *absent;
    const char *out_of_memory;
    const char *method;
};

DDS_ReturnCode_t set_string(VUR_DL_Options *self, DDS_Char *VUR_DL_Options::*field,
                            const char *value, const StringMessages &messages) {
    if (self == nullptr) {
        report("VUR_DL_Options is null", messages.method);
        return DDS_RETCODE_NO_DATA;
    }
    if (value == nullptr) {
        report(messages.absent, messages.method);
        return DDS_RETCODE_BAD_PARAMETER;
    }
    if (value == self->*field) {
        return DDS_RETCODE_OK;  // the record's own string, which the next line would free
    }
    DDS_String_free(self->*field);
    self->*field = DDS_String_dup(value);
    if (self->*field == nullptr) {
        report(messages.out_of_memory, messages.method);
        return DDS_RETCODE_ERROR;
    }
    return DDS_RETCODE_OK;
}

}  // namespace

DDS_DomainParticipant *VUR_DL_Options_getDomainParticipant(const VUR_DL_Options *self) {
    return get<DDS_DomainParticipant *, DDS_DomainParticipant *>(
        self, &VUR_DL_Options::domainParticipant, nullptr, __func__);
}

DDS_ReturnCode_t VUR_DL_Options_setDomainParticipant(VUR_DL_Options *self,
                                                     DDS_DomainParticipant *domain_participant) {
    return set(self, &VUR_DL_Options::domainParticipant, domain_participant,
               domain_participant == nullptr ? "domainParticipant is null" : nullptr, __func__);
}

int VUR_DL_Options_isRemoteAdministrationEnabled(const VUR_DL_Options *self) {
    return get(self, &VUR_DL_Options::remoteAdministrationEnabled, 0, __func__);
}

DDS_ReturnCode_t VUR_DL_Options_setRemoteAdministrationEnabled(VUR_DL_Options *self, int enabled) {
    return set(self, &VUR_DL_Options::remoteAdministrationEnabled, enabled, nullptr, __func__);
}

int VUR_DL_Options_getFilterLevel(const VUR_DL_Options *self) {
    return get(self, &VUR_DL_Options::filterLevel, -1, __func__);
}

DDS_ReturnCode_t VUR_DL_Options_setFilterLevel(VUR_DL_Options *self, int filter_level) {
    return set(self, &VUR_DL_Options::filterLevel, filter_level,
               filter_level < 0 ? "Filter Level must be positive or zero" : nullptr, __func__);
}

int VUR_DL_Options_getDomainId(const VUR_DL_Options *self) {
    return get(self, &VUR_DL_Options::domainId, -1, "VUR_DL_Options_hetDomainId");  // sic
}

DDS_ReturnCode_t VUR_DL_Options_setDomainId(VUR_DL_Options *self, int domain_id) {
    return set(self, &VUR_DL_Options::domainId, domain_id,
               domain_id < 0 ? "Domain Id must be positive or zero" : nullptr, __func__);
}

const char *VUR_DL_Options_getQosLibrary(const VUR_DL_Options *self) {
    return get<DDS_Char *, const char *>(self, &VUR_DL_Options::qosLibrary, nullptr,
                                         "VUR_DL_Options_getQoSLibrary");  // sic: QoS
}

DDS_ReturnCode_t VUR_DL_Options_setQosLibrary(VUR_DL_Options *self, const char *qos_library) {
    return set_string(self, &VUR_DL_Options::qosLibrary, qos_library,
                      {"QoS Library is NULL", "Unable to allocate memory for qosLibrary",
                       "VUR_DL_Options_setQoSLibrary"});  // sic: QoS
}

const char *VUR_DL_Options_getQosProfile(const VUR_DL_Options *self) {
    return get<DDS_Char *, const char *>(self, &VUR_DL_Options::qosProfile, nullptr,
                                         "VUR_DL_Options_getQoSProfile");  // sic: QoS
}

DDS_ReturnCode_t VUR_DL_Options_setQosProfile(VUR_DL_Options *self, const char *qos_profile) {
    return set_string(self, &VUR_DL_Options::qosProfile, qos_profile,
                      {"QoS Profile is NULL", "Unable to allocate memory for qosProfile",
                       "VUR_DL_Options_setQoSProfile"});  // sic: QoS
}

int VUR_DL_Options_getQueueSize(const VUR_DL_Options *self) {
    return get(self, &VUR_DL_Options::queueSize, -1, __func__);
}

DDS_ReturnCode_t VUR_DL_Options_setQueueSize(VUR_DL_Options *self, int queue_size) {
    return set(self, &VUR_DL_Options::queueSize, queue_size,
               queue_size < 1 ? "Queue Size must be positive" : nullptr, __func__);
}

DDS_ThreadSettings_t *VUR_DL_Options_getThreadSettings(VUR_DL_Options *self) {
    if (self == nullptr) {
        report("VUR_DL_Options is null", __func__);
        return nullptr;
    }
    return &self->threadSettings;
}

DDS_ReturnCode_t VUR_DL_Options_setThreadSettings(VUR_DL_Options *self,
                                                  const DDS_ThreadSettings_t *thread_settings) {
    if (self == nullptr) {
        report("VUR_DL_Options is null", __func__);
        return DDS_RETCODE_NO_DATA;
    }
    if (!DDS_ThreadSettings_t_copy(&self->threadSettings, thread_settings)) {
        report("couldn't copy thread settings", __func__);
        return DDS_RETCODE_ERROR;
    }
    return DDS_RETCODE_OK;
}

const char *VUR_DL_Options_getApplicationKind(const VUR_DL_Options *self) {
    return get<DDS_Char *, const char *>(self, &VUR_DL_Options::applicationKind, nullptr, __func__);
}

DDS_ReturnCode_t VUR_DL_Options_setApplicationKind(VUR_DL_Options *self,
                                                   const char *application_kind) {
    return set_string(
        self, &VUR_DL_Options::applicationKind, application_kind,
        {"application kind is NULL", "Unable to allocate memory for Application Kind", __func__});
}

int VUR_DL_Options_getEchoToStdout(const VUR_DL_Options *self) {
    return get(self, &VUR_DL_Options::echoToStdout, 0, __func__);
}

DDS_ReturnCode_t VUR_DL_Options_setEchoToStdout(VUR_DL_Options *self, int echo_to_stdout) {
    if (self == nullptr) {
        report("VUR_DL_Options is null", __func__);
        return DDS_RETCODE_NO_DATA;
    }
    // The running logger shares this record, so other threads may log meanwhile.
    vur_dl::store_relaxed(self->echoToStdout, echo_to_stdout);
    vur_dl::refresh_threshold_after(self);
    return DDS_RETCODE_OK;
}

int VUR_DL_Options_getLogInfrastructureMessages(const VUR_DL_Options *self) {
    return get(self, &VUR_DL_Options::logInfrastructureMessages, 0, __func__);
}

DDS_ReturnCode_t VUR_DL_Options_setLogInfrastructureMessages(VUR_DL_Options *self, int log) {
    return set(self, &VUR_DL_Options::logInfrastructureMessages, log, nullptr, __func__);
}
