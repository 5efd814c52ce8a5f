// SPDX-License-Identifier: Apache-2.0
// Remote commands: taken from the command reader, carried out, answered.
#include <atomic>

#include "DistLoggerRecord.hpp"
#include "fork.hpp"
#include "kolt_internal/no_cancellation.hpp"
#include "lock_rules.hpp"
#include "report.hpp"
#include "state_owner.hpp"
#include "vur_dl/EnumTranslators.h"

namespace {

using vur_dl::report;

void set_log_level(VUR_DL_DistLogger &self, const VUR_DL_ADMIN_Command &command,
                   VUR_DL_ADMIN_CommandResponse &response) {
    constexpr char kTrouble[] = "DistLogger: Trouble setting new Filter Level.";
    if (VUR_DL_DistLogger_setFilterLevel(&self, command._u.filterLevel) == 0) {
        return;
    }
    response.commandResult = VUR_DL_COMMAND_RESULT_ERROR;
    DDS_String_replace(&response.message, kTrouble);
    report(kTrouble, "VUR_DL_DistLogger_processCommand", vur_dl::kLevelWarning);
}

void set_verbosities(VUR_DL_DistLogger &self, const VUR_DL_ADMIN_Command &command) {
    const VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq &pairs = command._u.categoryAndVerbosity;
    const auto length =
        static_cast<DDS_Long>(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_get_length(&pairs));
    for (DDS_Long i = 0; i < length; ++i) {
        const VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity &pair =
            *VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_get_reference(&pairs, i);
        static_cast<void>(VUR_DL_DistLogger_setVURLoggerVerbosityByCategory(
            &self, VUR_DL_translateFromDLCategoryToVURLoggerCategory(pair.category),
            VUR_DL_translateFromDLVerbosityToVURLoggerVerbosity(pair.verbosity)));
    }
}

// Carries out the command and fills in the result. False: the command stays unanswered.
bool carry_out(VUR_DL_DistLogger &self, const VUR_DL_ADMIN_Command &command,
               VUR_DL_ADMIN_CommandResponse &response) {
    switch (static_cast<int>(command._d)) {
        case VUR_DL_SET_LOG_LEVEL:
            set_log_level(self, command, response);
            return true;
        case VUR_DL_SET_VUR_LOGGER_LEVEL:
            set_verbosities(self, command);
            return true;
        case VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT:
            if (VUR_DL_DistLogger_setVURLoggerPrintFormat(
                    &self, VUR_DL_translateFromDLPrintFormatToVURLoggerPrintFormat(
                               command._u.printFormat)) == 0) {
                report("Unable to set Logger print format", "VUR_DL_DistLogger_processCommand");
                return false;
            }
            return true;
        default:
            response.commandResult = VUR_DL_COMMAND_RESULT_NOT_SUPPORTED;
            return true;
    }
}

void answer(VUR_DL_DistLogger &self, const VUR_DL_ADMIN_CommandRequest &request,
            VUR_DL_ADMIN_CommandResponse &response) {
    VUR_DL_HostAndAppId_copy(&response.hostAndAppId, &self.state->hostAndAppId);
    VUR_DL_HostAndAppId_copy(&response.originatorHostAndAppId, &request.originatorHostAndAppId);
    response.invocation = request.invocation;
    response.commandResult = VUR_DL_COMMAND_RESULT_OK;
    if (!carry_out(self, request.command, response)) {
        return;
    }
    vur_dl::about_to_call_middleware();
    if (VUR_DL_ADMIN_CommandResponseDataWriter_write(
            VUR_DL_DDSEntities_getCommandResponseWriter(self._ddsEntities), &response,
            DDS_HANDLE_NIL) != DDS_RETCODE_OK) {
        report("Unable to write Command Response", "VUR_DL_DistLogger_processCommand");
    }
}

}  // namespace

vur_dl::Gate vur_dl::command_gate;

void VUR_DL_DistLogger_CommandRequestListener_on_data_available(void *dist_logger,
                                                                DDS_DataReader *reader) {
    auto *self = static_cast<VUR_DL_DistLogger *>(dist_logger);
    if (!vur_dl::is_operational(*self)) {
        return;  // requests wait in the reader
    }
    VUR_DL_ADMIN_CommandRequestDataReader *request_reader =
        VUR_DL_ADMIN_CommandRequestDataReader_narrow(reader);
    if (request_reader == nullptr) {
        report("Unable to narrow DataReader", __func__);
        return;
    }
    vur_dl::about_to_call_middleware();
    VUR_DL_ADMIN_CommandRequestSeq requests = DDS_SEQUENCE_INITIALIZER;
    DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
    const DDS_ReturnCode_t taken = VUR_DL_ADMIN_CommandRequestDataReader_take(
        request_reader, &requests, &infos, DDS_LENGTH_UNLIMITED, DDS_ANY_SAMPLE_STATE,
        DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    if (taken == DDS_RETCODE_NO_DATA) {
        return;
    }
    if (taken != DDS_RETCODE_OK) {
        report("Unable to take ComandRequest from DataReader", __func__);  // sic
        return;
    }
    const auto length = static_cast<DDS_Long>(VUR_DL_ADMIN_CommandRequestSeq_get_length(&requests));
    for (DDS_Long i = 0; i < length; ++i) {
        if (DDS_SampleInfoSeq_get_reference(&infos, i)->valid_data) {
            VUR_DL_DistLogger_processCommand(
                self, VUR_DL_ADMIN_CommandRequestSeq_get_reference(&requests, i));
        }
    }
    if (VUR_DL_ADMIN_CommandRequestDataReader_return_loan(request_reader, &requests, &infos) !=
        DDS_RETCODE_OK) {
        report("Unable to return loan in CommandRequest's DataReader", __func__);
    }
}

void VUR_DL_DistLogger_processCommand(VUR_DL_DistLogger *self,
                                      const VUR_DL_ADMIN_CommandRequest *request) {
    const kolt::NoCancellation no_cancellation;
    if (vur_dl::is_child_without_logger() || !vur_dl::command_gate.enter()) {
        return;  // there is no logger, or it is being torn down
    }
    VUR_DL_ADMIN_CommandResponse response;
    if (VUR_DL_ADMIN_CommandResponse_initialize(&response)) {
        answer(*self, *request, response);
    } else {
        report("Unable to initialize Command Response", __func__);
    }
    VUR_DL_ADMIN_CommandResponse_finalize(&response);
    vur_dl::command_gate.leave();
}

int VUR_DL_DistLogger_setVURLoggerVerbosityByCategory(VUR_DL_DistLogger *self,
                                                      KOLT_Config_LogCategory category,
                                                      KOLT_Config_LogVerbosity verbosity) {
    KOLT_Config_Logger_set_verbosity_by_category(KOLT_Config_Logger_get_instance(), category,
                                                 verbosity);
    if (category == KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION) {
        LogMessageWriteThread_setCommunicationsLogVerbosity(self->logMessageWriteThread, verbosity);
    }
    VUR_DL_DistLogger_updateVURLoggerCategoryAndVerbosityState(self);
    if (VUR_DL_DistLogger_writeState(self) != 1) {
        report("Unable to write Verbosity State", __func__, vur_dl::kLevelWarning);
        return 0;
    }
    return 1;
}

int VUR_DL_DistLogger_setVURLoggerPrintFormat(VUR_DL_DistLogger *self,
                                              KOLT_Config_LogPrintFormat format) {
    KOLT_Config_Logger *logger = KOLT_Config_Logger_get_instance();
    if (logger == nullptr) {
        report("Unable to get VUR Logger", __func__);
        return 0;
    }
    if (!KOLT_Config_Logger_set_print_format(logger, format)) {
        report("Unable to set PrintFormat", __func__);
        return 0;
    }
    // Publishes the format in force, read back from the middleware's logger.
    VUR_DL_DistLogger_updateVURLoggerPrintFormatState(self);
    if (VUR_DL_DistLogger_writeState(self) != 1) {
        report("Unable to write PrintFormat State", __func__, vur_dl::kLevelWarning);
        return 0;
    }
    return 1;
}

int VUR_DL_DistLogger_getFilterLevel(const VUR_DL_DistLogger *self) {
    return vur_dl::load_relaxed(self->filterLevel);
}

int VUR_DL_DistLogger_setFilterLevel(VUR_DL_DistLogger *self, int level) {
    if (level < 0) {
        return 1;
    }
    if (std::atomic_ref<DDS_Long>(self->filterLevel).exchange(level) == level) {
        return 0;
    }
    vur_dl::refresh_threshold();
    vur_dl::state_owner().carry_out(*self, vur_dl::kRefreshFilterLevel);
    if (VUR_DL_DistLogger_writeState(self) == 0) {
        report("Unable to write State", __func__, vur_dl::kLevelWarning);
    }
    return 0;
}
