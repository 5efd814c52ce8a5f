// SPDX-License-Identifier: Apache-2.0
// Keeps a thread from being cancelled while it holds something.
#pragma once

#include <pthread.h>

namespace kolt {

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

}  // namespace kolt
