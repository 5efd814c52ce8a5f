// SPDX-License-Identifier: Apache-2.0
// Taking and giving gVUR_DL_DistLogger_lock, and keeping a thread from being cancelled meanwhile.
#pragma once

#include <pthread.h>

namespace vur_dl {

// Keeps the calling thread from being cancelled while it lives. A thread that were cancelled within
// a critical section would leave it locked for ever.
class NoCancellation {
  public:
    NoCancellation() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before_); }
    ~NoCancellation() { pthread_setcancelstate(before_, nullptr); }
    NoCancellation(const NoCancellation &) = delete;
    NoCancellation &operator=(const NoCancellation &) = delete;

  private:
    int before_ = PTHREAD_CANCEL_ENABLE;
};

// Take and give the logger lock. False when the platform refuses, and in the child of a process with
// a logger, where it may be taken for ever. Between the two the thread is not cancelled.
bool take_logger_lock();
bool give_logger_lock();

}  // namespace vur_dl
