// SPDX-License-Identifier: Apache-2.0
// Taking and giving gVUR_DL_DistLogger_lock, and keeping a thread from being cancelled meanwhile.
#pragma once

namespace vur_dl {

// Take and give the logger lock. False when the platform refuses, and in the child of a process with
// a logger, where it may be taken for ever. Between the two the thread is not cancelled.
bool take_logger_lock();
bool give_logger_lock();
// The same for the log path, which meets no cancellation point between the two but where it prints, and
// printing keeps the thread from being cancelled itself.
bool take_logger_lock_to_log();
bool give_logger_lock_after_log();

}  // namespace vur_dl
