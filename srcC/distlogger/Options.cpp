// SPDX-License-Identifier: Apache-2.0
// The options record as a whole: defaults, copies, comparison, release.
#include "vur_dl/Options.h"

#include <cstring>

#include "kolt/os.h"
#include "report.hpp"

namespace {

using vur_dl::report;

constexpr int kDefaultFilterLevel = vur_dl::kLevelInfo;
constexpr DDS_UnsignedLong kDefaultQueueSize = 128;

// Duplicates a string that is set; an absent one leaves the destination alone.
bool copy_string(DDS_Char *&destination, const DDS_Char *source, const char *failure) {
    if (source == nullptr) {
        return true;
    }
    destination = DDS_String_dup(source);
    if (destination == nullptr) {
        report(failure, "VUR_DL_Options_copy");
        return false;
    }
    return true;
}

bool equal_strings(const DDS_Char *left, const DDS_Char *right) {
    if (left == nullptr || right == nullptr) {
        return left == right;
    }
    return std::strcmp(left, right) == 0;
}

void free_string(DDS_Char *&string) {
    if (string != nullptr) {
        DDS_String_free(string);
        string = nullptr;
    }
}

}  // namespace

void VUR_DL_Options_initialize(VUR_DL_Options *self) {
    std::memset(self, 0, sizeof *self);
    self->enabled = 1;
    self->remoteAdministrationEnabled = 1;
    self->filterLevel = kDefaultFilterLevel;
    self->domainId = 0;
    self->queueSize = kDefaultQueueSize;
    DDS_ThreadSettings_t_initialize(&self->threadSettings);
    self->logInfrastructureMessages = 1;
    self->echoToStdout = 1;
}

VUR_DL_Options *VUR_DL_Options_createDefault(void) {
    auto *self = static_cast<VUR_DL_Options *>(KOLT_Heap_allocate(sizeof(VUR_DL_Options)));
    if (self == nullptr) {
        report("Unable to allocate memory for VUR_DL_Options", __func__, vur_dl::kLevelWarning);
        return nullptr;
    }
    VUR_DL_Options_initialize(self);
    return self;
}

int VUR_DL_Options_copy(VUR_DL_Options *self, const VUR_DL_Options *other) {
    if (self == nullptr) {
        report("Pointer to destination VUR_DL_Options is NULL", __func__);
        return 0;
    }
    if (other == nullptr) {
        report("Pointer to origin VUR_DL_Option s is NULL", __func__);  // sic
        return 0;
    }
    self->enabled = other->enabled;
    self->remoteAdministrationEnabled = other->remoteAdministrationEnabled;
    self->filterLevel = other->filterLevel;
    self->queueSize = other->queueSize;
    self->domainId = other->domainId;
    self->echoToStdout = other->echoToStdout;
    self->logInfrastructureMessages = other->logInfrastructureMessages;
    if (!copy_string(self->applicationKind, other->applicationKind,
                     "Unable to to copy Application Kind") ||  // sic
        !copy_string(self->qosLibrary, other->qosLibrary, "Unable to copy QoS library") ||
        !copy_string(self->qosProfile, other->qosProfile, "Unable to copy QoS profile")) {
        return 0;
    }
    static_cast<void>(DDS_ThreadSettings_t_copy(&self->threadSettings, &other->threadSettings));
    self->domainParticipant = other->domainParticipant;
    self->cppDomainParticipant = other->cppDomainParticipant;
    return 1;
}

int VUR_DL_Options_equals(const VUR_DL_Options *self, const VUR_DL_Options *other) {
    if (self == nullptr || other == nullptr) {
        return 0;
    }
    const bool equal = self->domainParticipant == other->domainParticipant &&
                       self->cppDomainParticipant == other->cppDomainParticipant &&
                       self->enabled == other->enabled &&
                       self->remoteAdministrationEnabled == other->remoteAdministrationEnabled &&
                       self->filterLevel == other->filterLevel &&
                       self->domainId == other->domainId && self->queueSize == other->queueSize &&
                       self->echoToStdout == other->echoToStdout &&
                       self->logInfrastructureMessages == other->logInfrastructureMessages &&
                       DDS_ThreadSettings_is_equal(&self->threadSettings, &other->threadSettings) &&
                       equal_strings(self->qosLibrary, other->qosLibrary) &&
                       equal_strings(self->qosProfile, other->qosProfile) &&
                       equal_strings(self->applicationKind, other->applicationKind);
    return equal ? 1 : 0;
}

VUR_DL_Options *VUR_DL_Options_dup(const VUR_DL_Options *other) {
    if (other == nullptr) {
        return nullptr;
    }
    VUR_DL_Options *self = VUR_DL_Options_createDefault();
    if (self != nullptr && VUR_DL_Options_copy(self, other) == 0) {
        self = VUR_DL_Options_delete(self);
    }
    return self;
}

void VUR_DL_Options_finalize(VUR_DL_Options *self) {
    if (self == nullptr) {
        report("VUR_DL_Options was already NULL", __func__, vur_dl::kLevelInfo);
        return;
    }
    DDS_ThreadSettings_t_finalize(&self->threadSettings);
    free_string(self->qosLibrary);
    free_string(self->qosProfile);
    free_string(self->applicationKind);
}

VUR_DL_Options *VUR_DL_Options_delete(VUR_DL_Options *self) {
    VUR_DL_Options_finalize(self);
    KOLT_Heap_free(self);
    return nullptr;
}
