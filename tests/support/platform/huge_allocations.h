// SPDX-License-Identifier: Apache-2.0
// For one source of a test program: an allocation that can't succeed is a NULL, under the
// sanitizers as well, which would rather end the program.
#pragma once

#define SUPPORT_SANITIZER_OPTIONS(function)                                         \
    extern "C" __attribute__((visibility("default"), used)) const char *function(); \
    extern "C" const char *function() {                                             \
        return "allocator_may_return_null=1";                                       \
    }
SUPPORT_SANITIZER_OPTIONS(__asan_default_options)
SUPPORT_SANITIZER_OPTIONS(__tsan_default_options)
