// SPDX-License-Identifier: Apache-2.0
// The process's logger for tests.
#include "support/logger/logger.h"

namespace support {

bool store_options(const LoggerOptions &options) {
    VUR_DL_Options *record = VUR_DL_Options_createDefault();
    if (record == nullptr) {
        return false;
    }
    bool ok = VUR_DL_Options_setDomainId(record, options.domain) == DDS_RETCODE_OK &&
              VUR_DL_Options_setFilterLevel(record, options.filter_level) == DDS_RETCODE_OK &&
              VUR_DL_Options_setQueueSize(record, options.queue_size) == DDS_RETCODE_OK &&
              VUR_DL_Options_setEchoToStdout(record, options.echo ? 1 : 0) == DDS_RETCODE_OK &&
              VUR_DL_Options_setLogInfrastructureMessages(record, options.forward ? 1 : 0) ==
                  DDS_RETCODE_OK &&
              VUR_DL_Options_setRemoteAdministrationEnabled(record, options.remote ? 1 : 0) ==
                  DDS_RETCODE_OK;
    if (ok && !options.kind.empty()) {
        ok = VUR_DL_Options_setApplicationKind(record, options.kind.c_str()) == DDS_RETCODE_OK;
    }
    if (ok && options.participant != nullptr) {
        ok = VUR_DL_Options_setDomainParticipant(record, options.participant) == DDS_RETCODE_OK;
    }
    ok = ok && VUR_DL_DistLogger_setOptions(record) == 1;
    VUR_DL_Options_delete(record);
    return ok;
}

Logger::Logger(const LoggerOptions &options)
    : logger_(store_options(options) ? VUR_DL_DistLogger_getInstance() : nullptr) {}

Logger::~Logger() {
    VUR_DL_DistLogger_finalizeInstance();
}

void Logger::log(int level, const std::string &message, const std::string &category) const {
    VUR_DL_DistLogger_logMessageWithLevelCategory(logger_, level, message.c_str(),
                                                  category.c_str());
}

}  // namespace support
