// SPDX-License-Identifier: Apache-2.0
// The logger's record, and the declarations about it that the files of the logger share.
#pragma once

#include <atomic>

#include "gate.hpp"
#include "relaxed.hpp"
#include "vur_dl/DDSEntities.h"
#include "vur_dl/DistLogger.h"

// NOLINTBEGIN(readability-identifier-naming): the members of this C family are camelCase.
struct VUR_DL_DistLogger {
    VUR_DL_Options *options;  // the stored options, shared; or defaults of this logger's own
    DDS_Long filterLevel;     // read by log calls, written by remote commands
    VUR_DL_DDSEntities *_ddsEntities;
    VUR_DL_ADMIN_State *state;  // what is published; touched by its owner (state_owner.hpp)
    DDS_Cookie_t stateCookie;
    DDS_InstanceHandle_t loggerStateInstanceHandle;
    VUR_DL_LogMessageWriteThread *logMessageWriteThread;
    VUR_DL_MessageQueue *q;                     // owned by the write thread
    KOLT_Config_LoggerDevice *ddsLoggerDevice;  // installed device, or NULL
    KOLT_Clock *clock;                          // log_clock()
    DDS_Long stateKind;                         // what log calls go by; `state` follows it
};
// NOLINTEND(readability-identifier-naming)

// The singleton, or NULL. Written under gVUR_DL_DistLogger_lock.
extern VUR_DL_DistLogger *VUR_DL_DistLogger_instance;
// The stored options. Written under gVUR_DL_DistLogger_lock, or during finalisation.
extern VUR_DL_Options *gVUR_DL_DistLogger_currentOptions;

namespace vur_dl {

inline VUR_DL_ADMIN_StateKind state_kind(const VUR_DL_DistLogger &self) {
    return static_cast<VUR_DL_ADMIN_StateKind>(load_relaxed(self.stateKind));
}

inline bool is_operational(const VUR_DL_DistLogger &self) {
    return state_kind(self) == VUR_DL_STATE_OPERATIONAL;
}

// ---- The threshold ------------------------------------------------------------------------------
// The threshold is the level above which log calls have no effect at all: neither an echo nor a
// queued message. Log calls compare with it before they read a clock or take a lock. It is derived
// from the options' echo, the filter level and the State of the logger in force. Whoever changes
// one of them refreshes the threshold afterwards; refreshes follow one another, so that the last
// one has seen every change, and when one returns its change is in force.

extern std::atomic<int> effect_threshold;

// Derives the threshold from this logger from now on; from none with NULL, which must happen before
// the logger is released.
void watch_threshold_of(const VUR_DL_DistLogger *self);
void refresh_threshold();
// Refreshes the threshold after a change in an options record, if it is the watched logger's.
void refresh_threshold_after(const VUR_DL_Options *options);
// For a forked child: watches no logger, whatever the parent's threads were about.
void forget_threshold_of_parent();

// ---- The clock ----------------------------------------------------------------------------------
// Log calls read the clock before they take the lock, when another thread may be finalising the
// logger. So the clock, once made, lives as long as the process, and one logger after another
// shares it.

KOLT_Clock *create_log_clock();  // under gVUR_DL_DistLogger_lock; NULL when memory runs out
KOLT_Clock *log_clock();         // NULL before the first logger

// ---- The gates ----------------------------------------------------------------------------------

// Lets the middleware's messages into the distributed log only while finalisation is not under way.
//
// Finalisation calls the middleware while it holds the logger lock. The middleware may log on
// another thread, with locks of its own held, and that thread would wait for the logger lock: a
// deadlock. So finalisation closes the gate first and waits until every forwarded message has left.
// From then on the middleware's messages are printed instead of logged.
extern Gate forwarding_gate;

// Lets commands in while there is a write thread, whose settings they change.
extern Gate command_gate;

}  // namespace vur_dl
