// SPDX-License-Identifier: Apache-2.0
// The calling thread's identifier.

#include "os/thread_id.hpp"

#include <pthread.h>
#include <unistd.h>

#include "kolt/os.h"

namespace kolt::os {

constinit thread_local std::uint64_t cached_thread_id __attribute__((tls_model("initial-exec"))) =
    0;

std::uint64_t fetch_thread_id() {
    cached_thread_id = static_cast<std::uint64_t>(gettid());
    return cached_thread_id;
}

namespace {

// The thread that forks is another one in the child. Fails only without memory, and then there is
// nobody to tell.
[[maybe_unused]] const int kRegistered =
    pthread_atfork(nullptr, nullptr, [] { cached_thread_id = 0; });

}  // namespace

}  // namespace kolt::os

DDS_UnsignedLongLong KOLT_Thread_current_id(void) {
    return kolt::os::current_thread_id();
}
