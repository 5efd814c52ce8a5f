// SPDX-License-Identifier: Apache-2.0
// The locks that each thread holds, counted in builds with asserts.
#include "lock_rules.hpp"

#ifndef NDEBUG

#include <cassert>

namespace {

thread_local int leaf_locks = 0;
thread_local int logger_locks = 0;
thread_local int allowances = 0;

}  // namespace

void vur_dl::leaf_lock_taken() {
    ++leaf_locks;
}
void vur_dl::leaf_lock_given() {
    --leaf_locks;
}
void vur_dl::logger_lock_taken() {
    ++logger_locks;
}
void vur_dl::logger_lock_given() {
    --logger_locks;
}

void vur_dl::about_to_call_middleware() {
    assert(leaf_locks == 0);
    assert(logger_locks == 0 || allowances > 0);
}

vur_dl::MiddlewareCallsAllowed::MiddlewareCallsAllowed() {
    ++allowances;
}
vur_dl::MiddlewareCallsAllowed::~MiddlewareCallsAllowed() {
    --allowances;
}

#endif
