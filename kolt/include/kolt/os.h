/* SPDX-License-Identifier: Apache-2.0 */
/* Operating-system services: heap, locks, semaphore, buffers, list, threads and time.
 *
 *  1. Every name here is an ordinary exported function of libkolt, so that a program may put one of
 *     its own in its place (a test that makes the n-th allocation fail). The list alone is inline.
 *  2. Functions that return an int give 0 on success and an error number (errno.h) otherwise.
 *     Functions that create give NULL on failure. Functions that delete accept NULL.
 *  3. No function may be called from a signal handler, and none is safe against cancellation of its
 *     thread. Only KOLT_Thread_new and KOLT_Thread_delete log (kolt/config_logger.h, category
 *     PLATFORM).
 *  4. An object may be deleted only when no thread is inside one of its functions.
 *
 * Linux only: the locks and the semaphore stand on futex(2).
 */
#pragma once

#include "kolt/infrastructure.h"

KOLT_EXTERN_C_BEGIN

/* ---- Heap --------------------------------------------------------------------------------- */

/* `size` bytes, aligned for every fundamental type, content undefined. A size of 0 gives a pointer
 * that may be freed. NULL when memory runs out. Free it with KOLT_Heap_free. Thread-safe. */
KOLT_EXPORT void *KOLT_Heap_allocate(size_t size);
/* The same with all bytes zero: an empty record. */
KOLT_EXPORT void *KOLT_Heap_allocate_zeroed(size_t size);
/* Gives memory of the two functions above back. NULL is ignored. */
KOLT_EXPORT void KOLT_Heap_free(void *memory);

/* ---- Global lock -------------------------------------------------------------------------- */

/* A lock that needs no creation: a static object with the initialiser below is ready before any
 * code runs. The initialiser is all zero bytes. Uncontended, taking and giving cost one atomic
 * instruction each and never enter the kernel. The fields are private. */
typedef struct KOLT_GlobalLock {
    DDS_UnsignedLong _state;     /* 0 free, 1 taken, 2 taken and somebody may be waiting */
    DDS_UnsignedLongLong _owner; /* thread that holds it (KOLT_Thread_current_id), or 0 */
} KOLT_GlobalLock;
#define KOLT_GLOBAL_LOCK_INITIALIZER \
    { 0U, 0U }

/* Waits, without limit, until the lock is free, and takes it. 0 on success; EDEADLK, at once, when
 * the calling thread holds it already; EINVAL for NULL. Not fair: a thread that comes by may be
 * faster than one that waits. */
KOLT_EXPORT int KOLT_GlobalLock_take(KOLT_GlobalLock *lock);
/* Gives the lock back. 0 on success; EPERM when the calling thread does not hold it; EINVAL for
 * NULL. */
KOLT_EXPORT int KOLT_GlobalLock_give(KOLT_GlobalLock *lock);

/* ---- Mutex -------------------------------------------------------------------------------- */

typedef struct KOLT_Mutex KOLT_Mutex;

/* A new mutex, free. NULL when memory runs out. Delete it with KOLT_Mutex_delete. */
KOLT_EXPORT KOLT_Mutex *KOLT_Mutex_new(void);
/* Frees the mutex, which nobody may hold. NULL is ignored. */
KOLT_EXPORT void KOLT_Mutex_delete(KOLT_Mutex *self);
/* As KOLT_GlobalLock_take and KOLT_GlobalLock_give, results included. */
KOLT_EXPORT int KOLT_Mutex_take(KOLT_Mutex *self);
KOLT_EXPORT int KOLT_Mutex_give(KOLT_Mutex *self);

/* ---- Counting semaphore ------------------------------------------------------------------- */

/* A counting semaphore that is cheap for the thread that gives. A waiter that has just been busy
 * does not go to sleep at once: for about two milliseconds it naps in growing slices of tens of
 * microseconds and looks again after each. A giver enters the kernel only when a waiter is asleep,
 * or when so many tokens lie there (the backlog, below) that a napping waiter must come at once.
 * No thread spins, and a waiter that finds nothing costs no processor time. */
typedef struct KOLT_Semaphore KOLT_Semaphore;

typedef enum KOLT_SemaphoreResult KOLT_ENUM_BASE {
    KOLT_SEMAPHORE_OK = 0,      /* a token was taken or given */
    KOLT_SEMAPHORE_TIMEOUT = 1, /* no token came in time */
    KOLT_SEMAPHORE_ERROR = 2    /* NULL, or the count would overflow, or the system failed */
} KOLT_SemaphoreResult;

/* Largest count. */
#define KOLT_SEMAPHORE_MAXIMUM_COUNT 2147483647
/* Tokens at which a give ends a nap, unless set otherwise. */
#define KOLT_SEMAPHORE_DEFAULT_BACKLOG 32

/* A new semaphore holding `initial` tokens, 0 to KOLT_SEMAPHORE_MAXIMUM_COUNT. NULL for a negative
 * count or when memory runs out. Delete it with KOLT_Semaphore_delete. */
KOLT_EXPORT KOLT_Semaphore *KOLT_Semaphore_new(DDS_Long initial);
/* Frees the semaphore, which nobody may be waiting on. NULL is ignored. */
KOLT_EXPORT void KOLT_Semaphore_delete(KOLT_Semaphore *self);
/* Sets how many tokens may pile up before a give wakes a napping waiter: the longest backlog that a
 * nap may cause. A queue of n places wants no more than n / 4. 1 makes every give wake at once.
 * Values below 1 count as 1. To be called before the semaphore is shared. NULL is ignored. */
KOLT_EXPORT void KOLT_Semaphore_set_backlog(KOLT_Semaphore *self, DDS_Long tokens);
/* Takes a token, waiting for one at most `timeout`, measured on the monotonic clock; without limit
 * when it is infinite or NULL. A zero or negative timeout does not wait. What the giver did before
 * its give has happened before the take returns KOLT_SEMAPHORE_OK. */
KOLT_EXPORT KOLT_SemaphoreResult KOLT_Semaphore_take(KOLT_Semaphore *self,
                                                     const DDS_Duration_t *timeout);
/* Puts a token in and, if a waiter sleeps, wakes one. Never blocks. KOLT_SEMAPHORE_ERROR for NULL
 * and when the count is KOLT_SEMAPHORE_MAXIMUM_COUNT already. Thread-safe. */
KOLT_EXPORT KOLT_SemaphoreResult KOLT_Semaphore_give(KOLT_Semaphore *self);
/* The number of tokens at this moment; 0 for NULL. For tests and statistics. */
KOLT_EXPORT DDS_Long KOLT_Semaphore_get_count(const KOLT_Semaphore *self);

/* ---- Pool of fixed-size buffers ----------------------------------------------------------- */

/* Buffers of one size. With `initial` equal to `maximum` they lie in one block that is allocated,
 * and touched page by page, at creation: getting one never allocates. Getting and returning take
 * constant time. Not thread-safe: the caller's lock guards a pool that is shared. */
typedef struct KOLT_BufferPool KOLT_BufferPool;

/* A pool of buffers of `element_size` bytes (at least 1), each aligned to `alignment` (a power of
 * two). `initial` of them (0 or more) exist at once; more are made, in growing blocks, up to
 * `maximum` (at least 1 and at least `initial`), or without limit with DDS_LENGTH_UNLIMITED. With
 * `zero_on_get` a buffer is filled with zeros each time it is handed out; otherwise its content is
 * undefined. NULL when an argument is out of bounds or memory runs out. */
KOLT_EXPORT KOLT_BufferPool *KOLT_BufferPool_new(size_t element_size, size_t alignment,
                                                 DDS_Long initial, DDS_Long maximum,
                                                 DDS_Boolean zero_on_get);
/* Frees all buffers, also those that were not returned, and the pool. NULL is ignored. */
KOLT_EXPORT void KOLT_BufferPool_delete(KOLT_BufferPool *self);
/* A buffer, the one returned last if there is one; NULL when `maximum` buffers are handed out,
 * memory runs out, or self is NULL. */
KOLT_EXPORT void *KOLT_BufferPool_get(KOLT_BufferPool *self);
/* Takes a buffer back that KOLT_BufferPool_get of the same pool handed out. NULLs are ignored. */
KOLT_EXPORT void KOLT_BufferPool_return_buffer(KOLT_BufferPool *self, void *buffer);
/* How many buffers are handed out; 0 for NULL. */
KOLT_EXPORT DDS_Long KOLT_BufferPool_get_outstanding(const KOLT_BufferPool *self);

/* ---- Intrusive list ----------------------------------------------------------------------- */

/* A doubly linked list whose nodes are fields of the elements. It owns nothing and locks nothing.
 * An all-zero list is empty; an all-zero node is in no list. A node is in one list at a time. */
typedef struct KOLT_ListNode {
    struct KOLT_ListNode *previous;
    struct KOLT_ListNode *next;
} KOLT_ListNode;

typedef struct KOLT_List {
    KOLT_ListNode *first;
    KOLT_ListNode *last;
    DDS_Long count;
} KOLT_List;

static inline void KOLT_ListNode_initialize(KOLT_ListNode *node) {
    node->previous = NULL;
    node->next = NULL;
}

static inline void KOLT_List_initialize(KOLT_List *self) {
    self->first = NULL;
    self->last = NULL;
    self->count = 0;
}

static inline DDS_Long KOLT_List_get_count(const KOLT_List *self) {
    return self->count;
}

/* The oldest node, still in the list; NULL when the list is empty. */
static inline KOLT_ListNode *KOLT_List_first(const KOLT_List *self) {
    return self->first;
}

/* Appends a node that is in no list. */
static inline void KOLT_List_add_to_back(KOLT_List *self, KOLT_ListNode *node) {
    node->previous = self->last;
    node->next = NULL;
    if (self->last != NULL) {
        self->last->next = node;
    } else {
        self->first = node;
    }
    self->last = node;
    ++self->count;
}

/* Unlinks a node of this list. */
static inline void KOLT_List_remove(KOLT_List *self, KOLT_ListNode *node) {
    if (node->previous != NULL) {
        node->previous->next = node->next;
    } else {
        self->first = node->next;
    }
    if (node->next != NULL) {
        node->next->previous = node->previous;
    } else {
        self->last = node->previous;
    }
    KOLT_ListNode_initialize(node);
    --self->count;
}

/* Unlinks the oldest node and returns it; NULL when the list is empty. */
static inline KOLT_ListNode *KOLT_List_remove_first(KOLT_List *self) {
    KOLT_ListNode *node = self->first;
    if (node != NULL) {
        KOLT_List_remove(self, node);
    }
    return node;
}

/* ---- Threads ------------------------------------------------------------------------------ */

typedef struct KOLT_Thread KOLT_Thread;
typedef void *(*KOLT_ThreadFunction)(void *argument);

/* Longest thread name, terminator not counted; longer names are cut. */
#define KOLT_THREAD_NAME_MAX_LENGTH 15

/* Starts a joinable thread that runs `function(argument)`; what the function returns is dropped.
 *
 *  name        shown by ps, top and debuggers, as it stands. NULL: the name of the creator.
 *  priority    DDS_THREAD_PRIORITY_DEFAULT (-9999999): policy and priority of the creating thread.
 *              Otherwise, with REALTIME_PRIORITY in `options`, the SCHED_FIFO priority (1 to 99 on
 *              Linux); without it, the urgency within SCHED_OTHER, -19 to 20, which is the negated
 *              nice value. In both a larger number is more urgent.
 *  options     bits of DDS_ThreadSettingsKindMask (kolt/thread_settings.h). FLOATING_POINT and
 *              STDIO ask for what every thread has on this platform. REALTIME_PRIORITY with the
 *              default priority asks for the lowest SCHED_FIFO priority. Other bits are ignored.
 *  stack_size  in bytes, rounded up to whole pages; -1: the system's default.
 *
 * A priority that the system refuses (out of range, or no permission) fails the creation when
 * options has PRIORITY_ENFORCE; otherwise the thread gets the default one and a warning is logged.
 * A stack size that is refused (too small, negative, not to be had) always falls back to the
 * default with a warning. The new thread takes no asynchronous signals: they are the application's.
 *
 * The thread has its priority and name before `function` starts and before this function returns.
 * NULL when function is NULL, the thread cannot be made (logged) or memory runs out. End it with
 * KOLT_Thread_delete. Thread-safe. */
KOLT_EXPORT KOLT_Thread *KOLT_Thread_new(const char *name, DDS_Long priority,
                                         DDS_UnsignedLong options, DDS_Long stack_size,
                                         KOLT_ThreadFunction function, void *argument);
/* Waits, without limit, until the thread's function has returned, and frees the thread. It does not
 * ask the function to return. 0 on success, also for NULL; EDEADLK, and nothing freed, when it is
 * called on that very thread; what pthread_join gives otherwise. One caller for each thread. */
KOLT_EXPORT int KOLT_Thread_delete(KOLT_Thread *self);
/* The system's identifier of the calling thread (the TID that ps -L shows), the same for the whole
 * life of the thread and unique among living threads; never 0. Kept per thread: one memory access
 * after the first call. */
KOLT_EXPORT DDS_UnsignedLongLong KOLT_Thread_current_id(void);

/* ---- Time --------------------------------------------------------------------------------- */

/* The system clock: wall time, which the administrator may set back and forth. */
typedef struct KOLT_Clock KOLT_Clock;

/* A new clock. NULL when memory runs out. Delete it with KOLT_Clock_delete. */
KOLT_EXPORT KOLT_Clock *KOLT_Clock_new(void);
/* NULL is ignored. */
KOLT_EXPORT void KOLT_Clock_delete(KOLT_Clock *self);
/* The time since the Unix epoch, without entering the kernel: whole seconds, and the rest in units
 * of 2^-32 second. Of the units that stand for a nanosecond the largest one is given, so that
 * rounding up returns exactly the nanoseconds that the system said. 0 on success; EINVAL for a
 * NULL; an error number when the system has no such clock. Thread-safe. */
KOLT_EXPORT int KOLT_Clock_get_time(KOLT_Clock *self, DDS_LongLong *seconds,
                                    DDS_UnsignedLong *fraction);

/* Sleeps at least `duration` on the monotonic clock, signals notwithstanding; for the infinite one
 * that is 68 years. BAD_PARAMETER, at once, for NULL, a negative duration, and nanoseconds of a second
 * or more. */
KOLT_EXPORT DDS_ReturnCode_t KOLT_Utility_sleep(const DDS_Duration_t *duration);

KOLT_EXTERN_C_END
