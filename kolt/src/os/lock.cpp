// SPDX-License-Identifier: Apache-2.0
// KOLT_GlobalLock and KOLT_Mutex: one lock, static or created.

#include <cerrno>
#include <new>

#include "kolt/os.h"
#include "os/owned_lock.hpp"

using kolt::os::OwnedLock;

struct KOLT_Mutex {
    std::uint32_t state = 0;
    std::uint64_t owner = 0;
};

int KOLT_GlobalLock_take(KOLT_GlobalLock *lock) {
    return lock != nullptr ? OwnedLock(lock->_state, lock->_owner).take() : EINVAL;
}

int KOLT_GlobalLock_give(KOLT_GlobalLock *lock) {
    return lock != nullptr ? OwnedLock(lock->_state, lock->_owner).give() : EINVAL;
}

KOLT_Mutex *KOLT_Mutex_new(void) {
    void *memory = KOLT_Heap_allocate(sizeof(KOLT_Mutex));
    return memory != nullptr ? new (memory) KOLT_Mutex() : nullptr;
}

void KOLT_Mutex_delete(KOLT_Mutex *self) {
    KOLT_Heap_free(self);
}

int KOLT_Mutex_take(KOLT_Mutex *self) {
    return self != nullptr ? OwnedLock(self->state, self->owner).take() : EINVAL;
}

int KOLT_Mutex_give(KOLT_Mutex *self) {
    return self != nullptr ? OwnedLock(self->state, self->owner).give() : EINVAL;
}
