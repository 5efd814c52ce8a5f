// SPDX-License-Identifier: Apache-2.0
// Publication of the logger's State: the first sample, later ones, and the fields that mirror the
// middleware's logger.
#include <mutex>

#include "DDSEntitiesRecord.hpp"
#include "DistLoggerRecord.hpp"
#include "fork.hpp"
#include "kolt_internal/no_cancellation.hpp"
#include "report.hpp"
#include "state_owner.hpp"
#include "vur_dl/EnumTranslators.h"

namespace {

using vur_dl::report;
using vur_dl::state_owner;

// ---- What the owner of the State does --------------------------------------------------------

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

// Publishes the State to the first reader that was found.
bool publish_first(VUR_DL_DistLogger &self, DDS_DataWriter *writer) {
    if (VUR_DL_DDSEntities_gInitialStateSent != 0 ||
        DDS_InstanceHandle_is_valid(self.loggerStateInstanceHandle) ||
        !publish_initial_state(self, writer)) {
        return false;
    }
    vur_dl::store_relaxed(VUR_DL_DDSEntities_gInitialStateSent, 1);
    return true;
}

// Publishes the State once more. True also when there is nobody to publish it to yet.
bool publish(VUR_DL_DistLogger &self) {
    static constexpr char kMethodName[] = "VUR_DL_DistLogger_writeState";
    if (!VUR_DL_DDSEntities_hasInitialStateBeenSent(self._ddsEntities)) {
        return true;
    }
    VUR_DL_ADMIN_StateDataWriter *writer = VUR_DL_DDSEntities_getStateWriter(self._ddsEntities);
    if (writer == nullptr) {
        report("could not get DL state data writer", kMethodName);
        return false;
    }
    DDS_DataWriter *untyped_writer = VUR_DL_ADMIN_StateDataWriter_as_datawriter(writer);
    if (untyped_writer == nullptr) {
        report("could not get State DataWriter as DDS DataWriter", kMethodName);
        return false;
    }
    DDS_Entity *entity = DDS_DataWriter_as_entity(untyped_writer);
    if (entity == nullptr) {
        report("could not get DataWriter as DDS Entity", kMethodName);
        return false;
    }
    if (!DDS_Entity_is_enabled(entity)) {
        return true;
    }
    if (VUR_DL_ADMIN_StateDataWriter_write(writer, self.state, self.loggerStateInstanceHandle) !=
        DDS_RETCODE_OK) {
        report("Unable to write State in DataWriter", kMethodName);
        return false;
    }
    return true;
}

void refresh_verbosities(VUR_DL_ADMIN_State &state) {
    KOLT_Config_Logger *logger = KOLT_Config_Logger_get_instance();
    int index = 0;
    for (VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity &entry : state.vurLoggerVerbosities) {
        const auto category = static_cast<KOLT_Config_LogCategory>(index++);
        entry.category = VUR_DL_translateFromVURLoggerCategoryToDLCategory(category);
        entry.verbosity = VUR_DL_translateFromVURLoggerVerbosityToDLVerbosity(
            KOLT_Config_Logger_get_verbosity_by_category(logger, category));
    }
}

void refresh_print_format(VUR_DL_ADMIN_State &state) {
    state.vurLoggerPrintFormat = VUR_DL_translateFromVURLoggerPrintFormatToDLPrintFormat(
        KOLT_Config_Logger_get_print_format(KOLT_Config_Logger_get_instance()));
}

void refresh(VUR_DL_DistLogger &self, std::uint32_t wishes) {
    if ((wishes & vur_dl::kRefreshKind) != 0) {
        self.state->state = vur_dl::state_kind(self);
    }
    if ((wishes & vur_dl::kRefreshFilterLevel) != 0) {
        self.state->filterLevel = vur_dl::load_relaxed(self.filterLevel);
    }
    if ((wishes & vur_dl::kRefreshVerbosities) != 0) {
        refresh_verbosities(*self.state);
    }
    if ((wishes & vur_dl::kRefreshPrintFormat) != 0) {
        refresh_print_format(*self.state);
    }
}

// Carries wishes out. The caller owns the State and holds no lock.
bool fulfil(VUR_DL_DistLogger &self, std::uint32_t wishes, DDS_DataWriter *matched_writer) {
    vur_dl::about_to_call_middleware();
    refresh(self, wishes);
    if ((wishes & vur_dl::kPublishFirst) != 0 && publish_first(self, matched_writer)) {
        return true;  // the first sample shows everything that another one would
    }
    return (wishes & vur_dl::kPublish) == 0 || publish(self);
}

}  // namespace

// ---- The owner -------------------------------------------------------------------------------

vur_dl::StateOwner &vur_dl::state_owner() {
    static StateOwner instance;
    return instance;
}

bool vur_dl::StateOwner::carry_out(VUR_DL_DistLogger &logger, std::uint32_t wishes) {
    if (is_child_without_logger()) {
        return false;
    }
    const kolt::NoCancellation no_cancellation;
    {
        const std::lock_guard<LeafMutex> lock(mutex_);
        if (!is_open_) {
            return true;
        }
        noted_ |= wishes;
        if (is_owned_) {
            return true;
        }
        is_owned_ = true;
    }
    bool published = true;
    while (const std::uint32_t next = next_wishes()) {
        published = fulfil(logger, next, matched_writer_) && published;
    }
    return published;
}

void vur_dl::StateOwner::publish_first(VUR_DL_DistLogger &logger, DDS_DataWriter *writer) {
    matched_writer_ = writer;
    carry_out(logger, kPublishFirst);
}

std::uint32_t vur_dl::StateOwner::next_wishes() {
    const std::lock_guard<LeafMutex> lock(mutex_);
    const std::uint32_t wishes = noted_;
    noted_ = 0;
    if (wishes == 0) {
        is_owned_ = false;
        free_.notify_all();
    }
    return wishes;
}

void vur_dl::StateOwner::open() {
    const std::lock_guard<LeafMutex> lock(mutex_);
    is_open_ = true;
    noted_ = 0;
}

void vur_dl::StateOwner::close() {
    std::unique_lock<LeafMutex> lock(mutex_);
    is_open_ = false;
    free_.wait(lock, [this] { return !is_owned_; });
}

// ---- The callbacks and functions of the public headers ------------------------------------------

void VUR_DL_DDSEntities_stateWriterOnPublicationMatched(void *dist_logger, DDS_DataWriter *writer,
                                                        const DDS_PublicationMatchedStatus *) {
    if (VUR_DL_DDSEntities_hasInitialStateBeenSent(nullptr) != 0) {
        return;
    }
    if (writer == nullptr) {
        report("Could not get DL state data writer", __func__);
        return;
    }
    state_owner().publish_first(*static_cast<VUR_DL_DistLogger *>(dist_logger), writer);
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
    return state_owner().carry_out(*self, vur_dl::kPublish) ? 1 : 0;
}

void VUR_DL_DistLogger_updateVURLoggerCategoryAndVerbosityState(VUR_DL_DistLogger *self) {
    if (KOLT_Config_Logger_get_instance() == nullptr) {
        report("Unable to get VUR Logger", __func__);
        return;
    }
    state_owner().carry_out(*self, vur_dl::kRefreshVerbosities);
}

void VUR_DL_DistLogger_updateVURLoggerPrintFormatState(VUR_DL_DistLogger *self) {
    if (KOLT_Config_Logger_get_instance() == nullptr) {
        report("Unable to get VUR Logger", __func__);
        return;
    }
    state_owner().carry_out(*self, vur_dl::kRefreshPrintFormat);
}
