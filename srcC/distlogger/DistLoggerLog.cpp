// SPDX-License-Identifier: Apache-2.0
// The log path on the caller's thread: stamp, check, echo, filter, queue.
#include <atomic>
#include <cstdint>

#include "DistLoggerRecord.hpp"
#include "fork.hpp"
#include "logger_lock.hpp"
#include "report.hpp"

namespace {

using vur_dl::report;

std::atomic<KOLT_Clock *> process_clock{nullptr};

// True when a call with valid arguments would have no effect. A record that is not the logger, or a
// wrong argument, is left to the checks under the lock.
bool has_no_effect(const VUR_DL_DistLogger *self, int level) {
    return level > vur_dl::effect_threshold.load(std::memory_order_relaxed) && self != nullptr &&
           self == vur_dl::load_relaxed(VUR_DL_DistLogger_instance);
}

// Converts seconds and 2^-32 seconds to seconds and nanoseconds, rounding up to whole nanoseconds.
DDS_Time_t to_dds_time(DDS_LongLong seconds, DDS_UnsignedLong fraction) {
    // 2^61 / 10^9, rounded: fraction * 2^29 divided by it is fraction * 10^9 / 2^32.
    constexpr std::uint64_t kUnitsPerNanosecond = 2305843009U;
    constexpr DDS_UnsignedLong kMaxNanoseconds = 999'999'999U;
    constexpr DDS_LongLong kMaxCarrySeconds = 4294967294LL;
    auto nanoseconds = static_cast<DDS_UnsignedLong>((static_cast<std::uint64_t>(fraction) << 29U) /
                                                     kUnitsPerNanosecond);
    if (fraction != 0 && fraction != kUnitsPerNanosecond) {
        ++nanoseconds;
    }
    if (nanoseconds > kMaxNanoseconds && seconds <= kMaxCarrySeconds) {
        nanoseconds -= kMaxNanoseconds + 1;
        ++seconds;
    }
    return {seconds, nanoseconds};
}

// Returns why the call is refused, or NULL.
const char *refusal(const VUR_DL_DistLogger *self, const VUR_DL_DistLogger_MessageParams *params) {
    if (self == nullptr) {
        return "self is NULL";
    }
    if (params == nullptr) {
        return "Message params is NULL";
    }
    if (params->message == nullptr) {
        return "Message to be logged is NULL";
    }
    if (params->category == nullptr) {
        return "Message category is NULL";
    }
    if (params->timestamp.sec < 0) {
        return "Invalid message timestamp";
    }
    return nullptr;
}

void enqueue(VUR_DL_DistLogger &self, const VUR_DL_DistLogger_MessageParams &params) {
    VUR_DL_LogMessagePlusTime item;
    item.message.hostAndAppId.rtps_host_id = VUR_DL_DDSEntities_getRtpsHostId(self._ddsEntities);
    item.message.hostAndAppId.rtps_app_id = VUR_DL_DDSEntities_getRtpsAppId(self._ddsEntities);
    item.message.level = params.log_level;
    // The queue copies the texts and does not write to them.
    item.message.category = const_cast<DDS_Char *>(params.category);
    item.message.message = const_cast<DDS_Char *>(params.message);
    item.message.messageId = 0;  // given by the queue
    item.writeTime = params.timestamp;
    static_cast<void>(VUR_DL_MessageQueue_push(self.q, &item));
}

// Checks, echoes and queues one message. The caller holds the lock.
void log_locked(VUR_DL_DistLogger *self, const VUR_DL_DistLogger_MessageParams *params) {
    static constexpr char kMethodName[] = "VUR_DL_DistLogger_logMessageWithParams";
    if (const char *why = refusal(self, params)) {
        report(why, kMethodName);
        return;
    }
    if (self != VUR_DL_DistLogger_instance || gVUR_DL_DistLogger_beingDestroyed != 0) {
        return;
    }
    const DDS_UnsignedLongLong thread_id = KOLT_Thread_current_id();
    if (thread_id == 0) {
        report("Unable to get current thread Id, message missed", kMethodName,
               vur_dl::kLevelWarning);
        return;
    }
    // A message that the middleware logs while the write thread publishes must not cause another
    // message to publish.
    if (vur_dl::load_relaxed(self->logMessageWriteThread->threadId) == thread_id) {
        return;
    }
    // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): refusal() has turned a NULL text away.
    if (vur_dl::load_relaxed(self->options->echoToStdout) == 1 && params->message[0] != '\0') {
        static_cast<void>(VUR_DL_DistLogger_printMessage(params->message, "", params->log_level));
    }
    if (vur_dl::is_operational(*self) &&
        params->log_level <= vur_dl::load_relaxed(self->filterLevel)) {
        enqueue(*self, *params);
    }
}

// Stamps the message with the time and logs it. Not inlined, so that a call without effect saves no
// registers for it.
[[gnu::noinline]] void stamp_and_log(VUR_DL_DistLogger *self, int level, const char *message,
                                     const char *category) {
    DDS_LongLong seconds = 0;
    DDS_UnsignedLong fraction = 0;
    // The clock is not read through the record, which another thread may be finalising. Without a
    // clock there never was a logger, and the checks that follow turn the call away.
    KOLT_Clock *clock = vur_dl::log_clock();
    if (clock != nullptr && KOLT_Clock_get_time(clock, &seconds, &fraction) != 0) {
        report("Unable to get current Time from internal clock",
               "VUR_DL_DistLogger_logMessageWithLevelCategory");
        return;
    }
    const VUR_DL_DistLogger_MessageParams params{level, message, category,
                                                 to_dds_time(seconds, fraction)};
    VUR_DL_DistLogger_logMessageWithParams(self, &params);
}

// Logs at a level. A call without effect ends here, before two more calls.
inline void log_at(VUR_DL_DistLogger *self, int level, const char *message) {
    if (message == nullptr || !has_no_effect(self, level)) {
        VUR_DL_DistLogger_logMessageWithLevelCategory(self, level, message, "");
    }
}

}  // namespace

KOLT_Clock *vur_dl::log_clock() {
    return process_clock.load(std::memory_order_acquire);
}

KOLT_Clock *vur_dl::create_log_clock() {
    KOLT_Clock *clock = log_clock();
    if (clock == nullptr) {
        clock = KOLT_Clock_new();
        process_clock.store(clock, std::memory_order_release);
    }
    return clock;
}

void VUR_DL_DistLogger_fatal(VUR_DL_DistLogger *self, const char *message) {
    log_at(self, vur_dl::kLevelFatal, message);
}
void VUR_DL_DistLogger_severe(VUR_DL_DistLogger *self, const char *message) {
    log_at(self, vur_dl::kLevelSevere, message);
}
void VUR_DL_DistLogger_error(VUR_DL_DistLogger *self, const char *message) {
    log_at(self, vur_dl::kLevelError, message);
}
void VUR_DL_DistLogger_warning(VUR_DL_DistLogger *self, const char *message) {
    log_at(self, vur_dl::kLevelWarning, message);
}
void VUR_DL_DistLogger_notice(VUR_DL_DistLogger *self, const char *message) {
    log_at(self, vur_dl::kLevelNotice, message);
}
void VUR_DL_DistLogger_info(VUR_DL_DistLogger *self, const char *message) {
    log_at(self, vur_dl::kLevelInfo, message);
}
void VUR_DL_DistLogger_debug(VUR_DL_DistLogger *self, const char *message) {
    log_at(self, vur_dl::kLevelDebug, message);
}
void VUR_DL_DistLogger_trace(VUR_DL_DistLogger *self, const char *message) {
    log_at(self, vur_dl::kLevelTrace, message);
}
void VUR_DL_DistLogger_log(VUR_DL_DistLogger *self, int level, const char *message) {
    log_at(self, level, message);
}

int VUR_DL_DistLogger_get_fatal_log_level(void) {
    return vur_dl::kLevelFatal;
}
int VUR_DL_DistLogger_get_error_log_level(void) {
    return vur_dl::kLevelError;
}
int VUR_DL_DistLogger_get_warning_log_level(void) {
    return vur_dl::kLevelWarning;
}
int VUR_DL_DistLogger_get_notice_log_level(void) {
    return vur_dl::kLevelNotice;
}
int VUR_DL_DistLogger_get_info_log_level(void) {
    return vur_dl::kLevelInfo;
}
int VUR_DL_DistLogger_get_debug_log_level(void) {
    return vur_dl::kLevelDebug;
}

void VUR_DL_DistLogger_logMessageWithLevelCategory(VUR_DL_DistLogger *self, int log_level,
                                                   const char *message, const char *category) {
    if (message != nullptr && category != nullptr && has_no_effect(self, log_level)) {
        return;
    }
    stamp_and_log(self, log_level, message, category);
}

void VUR_DL_DistLogger_logMessageWithParams(VUR_DL_DistLogger *self,
                                            const VUR_DL_DistLogger_MessageParams *params) {
    if (refusal(self, params) == nullptr && has_no_effect(self, params->log_level)) {
        return;
    }
    if (vur_dl::is_child_without_logger()) {
        return;
    }
    if (!vur_dl::take_logger_lock_to_log()) {
        report("Unable to lock: It is not safe to log message", __func__);
        return;
    }
    log_locked(self, params);
    if (!vur_dl::give_logger_lock_after_log()) {
        report("Unable to unlock when logging message.", __func__);
    }
}
