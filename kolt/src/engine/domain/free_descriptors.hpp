// SPDX-License-Identifier: Apache-2.0
// Whether the process can open files.
#pragma once

#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cstddef>

namespace kolt::engine {

// True when the process can open `kCount` more file descriptors. Tries it.
template <std::size_t kCount>
bool has_free_descriptors() {
    std::array<int, kCount> opened{};
    std::size_t count = 0;
    while (count < kCount && (opened[count] = eventfd(0, EFD_CLOEXEC)) >= 0) {
        ++count;
    }
    for (std::size_t i = 0; i < count; ++i) {
        close(opened[i]);
    }
    return count == kCount;
}

}  // namespace kolt::engine
