// SPDX-License-Identifier: Apache-2.0
// Heap: the C library's allocator behind functions that a program may replace.

#include <cstdlib>

#include "kolt/os.h"

void *KOLT_Heap_allocate(std::size_t size) {
    // malloc(0) may give NULL, which would read as "memory ran out".
    return std::malloc(size != 0 ? size : 1);
}

void *KOLT_Heap_allocate_zeroed(std::size_t size) {
    return std::calloc(1, size != 0 ? size : 1);
}

void KOLT_Heap_free(void *memory) {
    std::free(memory);
}
