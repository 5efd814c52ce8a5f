// SPDX-License-Identifier: Apache-2.0
// Publication of the logger's State: the first sample, later ones, and the fields that mirror the
// middleware's logger.
#include "DDSEntitiesRecord.hpp"
#include "DistLoggerRecord.hpp"
#include "report.hpp"
#include "vur_dl/EnumTranslators.h"

namespace {

using vur_dl::report;

using StateLock = std::lock_guard<std::recursive_mutex>;

bool publish_initial_state(VUR_DL_DistLogger &self, DDS_DataWriter *writer) {
    constexpr char kMethodName[] = "VUR_DL_DDSEntities_stateWriterOnPublicationMatched";
    auto *state_writer = VUR_DL_ADMIN_StateDataWriter_narrow(writer);
    self.loggerStateInstanceHandle =
        VUR_DL_ADMIN_StateDataWriter_register_instance(state_writer, self.state);
    if (!DDS_InstanceHandle_is_valid(self.loggerStateInstanceHandle)) {
        report("Unable to register the State instance", kMethodName);
        return false;
    }
    if (!DDS_Cookie_from_pointer(&self.stateCookie, self.state)) {
        report("Unable to get cookie from pointer", kMethodName);
        return false;
    }
    DDS_WriteParams_t params = DDS_WRITEPARAMS_DEFAULT;
    params.cookie = self.stateCookie;
    params.handle = self.loggerStateInstanceHandle;
    if (VUR_DL_ADMIN_StateDataWriter_write_w_params(state_writer, self.state, &params) !=
        DDS_RETCODE_OK) {
        report("Unable to write initial distributed logger state information", kMethodName);
        return false;
    }
    return true;
}

}  // namespace

std::recursive_mutex &vur_dl::state_lock() {
    static std::recursive_mutex lock;
    return lock;
}

void VUR_DL_DDSEntities_stateWriterOnPublicationMatched(void *dist_logger, DDS_DataWriter *writer,
                                                        const DDS_PublicationMatchedStatus *) {
    const StateLock lock(vur_dl::state_lock());
    if (VUR_DL_DDSEntities_gInitialStateSent != 0) {
        return;
    }
    if (writer == nullptr) {
        report("Could not get DL state data writer", __func__);
        return;
    }
    auto &self = *static_cast<VUR_DL_DistLogger *>(dist_logger);
    if (DDS_InstanceHandle_is_valid(self.loggerStateInstanceHandle)) {
        return;
    }
    if (publish_initial_state(self, writer)) {
        vur_dl::store_relaxed(VUR_DL_DDSEntities_gInitialStateSent, 1);
    }
}

void *VUR_DL_DDSEntities_stateWriterOnDataRequest(void *, DDS_DataWriter *,
                                                  const DDS_Cookie_t *cookie) {
    return DDS_Cookie_to_pointer(cookie);
}

void VUR_DL_DDSEntities_stateWriterOnDataReturn(void *, DDS_DataWriter *, void *,
                                                const DDS_Cookie_t *) {
    // The lent record is the logger's live State: there is nothing to release.
}

int VUR_DL_DistLogger_writeState(VUR_DL_DistLogger *self) {
    if (self == nullptr || self->_ddsEntities == nullptr) {
        report("could not get DL entities", __func__);
        return 0;
    }
    const StateLock lock(vur_dl::state_lock());
    if (!VUR_DL_DDSEntities_hasInitialStateBeenSent(self->_ddsEntities)) {
        return 1;
    }
    VUR_DL_ADMIN_StateDataWriter *writer = VUR_DL_DDSEntities_getStateWriter(self->_ddsEntities);
    if (writer == nullptr) {
        report("could not get DL state data writer", __func__);
        return 0;
    }
    DDS_DataWriter *untyped_writer = VUR_DL_ADMIN_StateDataWriter_as_datawriter(writer);
    if (untyped_writer == nullptr) {
        report("could not get State DataWriter as DDS DataWriter", __func__);
        return 0;
    }
    DDS_Entity *entity = DDS_DataWriter_as_entity(untyped_writer);
    if (entity == nullptr) {
        report("could not get DataWriter as DDS Entity", __func__);
        return 0;
    }
    if (!DDS_Entity_is_enabled(entity)) {
        return 1;
    }
    if (VUR_DL_ADMIN_StateDataWriter_write(writer, self->state, self->loggerStateInstanceHandle) !=
        DDS_RETCODE_OK) {
        report("Unable to write State in DataWriter", __func__);
        return 0;
    }
    return 1;
}

void VUR_DL_DistLogger_updateVURLoggerCategoryAndVerbosityState(VUR_DL_DistLogger *self) {
    KOLT_Config_Logger *logger = KOLT_Config_Logger_get_instance();
    if (logger == nullptr) {
        report("Unable to get VUR Logger", __func__);
        return;
    }
    const StateLock lock(vur_dl::state_lock());
    int index = 0;
    for (VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity &entry : self->state->vurLoggerVerbosities) {
        const auto category = static_cast<KOLT_Config_LogCategory>(index++);
        entry.category = VUR_DL_translateFromVURLoggerCategoryToDLCategory(category);
        entry.verbosity = VUR_DL_translateFromVURLoggerVerbosityToDLVerbosity(
            KOLT_Config_Logger_get_verbosity_by_category(logger, category));
    }
}

void VUR_DL_DistLogger_updateVURLoggerPrintFormatState(VUR_DL_DistLogger *self) {
    KOLT_Config_Logger *logger = KOLT_Config_Logger_get_instance();
    if (logger == nullptr) {
        report("Unable to get VUR Logger", __func__);
        return;
    }
    const StateLock lock(vur_dl::state_lock());
    self->state->vurLoggerPrintFormat = VUR_DL_translateFromVURLoggerPrintFormatToDLPrintFormat(
        KOLT_Config_Logger_get_print_format(logger));
}
