// SPDX-License-Identifier: Apache-2.0
// The calling thread's identifier, cached per thread.
#pragma once

#include <cstdint>

namespace kolt::os {

// 0 until the thread first asks. initial-exec: read relative to the thread pointer, without the
// call that the default model of a shared library makes.
extern constinit thread_local std::uint64_t cached_thread_id
    __attribute__((tls_model("initial-exec")));

std::uint64_t fetch_thread_id();

// As KOLT_Thread_current_id, which a program may replace; the locks must not be fooled by that.
inline std::uint64_t current_thread_id() {
    const std::uint64_t id = cached_thread_id;
    return id != 0 ? id : fetch_thread_id();
}

}  // namespace kolt::os
