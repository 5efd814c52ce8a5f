// SPDX-License-Identifier: Apache-2.0
// The rule about locks and calls into the middleware, checked where asserts are on.
//
// A thread enters a function of a DDS entity, which may block and may call the application back,
// without a lock of the logger. The one exception is the logger lock during creation and during the
// disabling of the logger.
#pragma once

#include <mutex>

namespace vur_dl {

#ifdef NDEBUG

inline void leaf_lock_taken() {}
inline void leaf_lock_given() {}
inline void logger_lock_taken() {}
inline void logger_lock_given() {}
inline void about_to_call_middleware() {}
class MiddlewareCallsAllowed {
  public:
    MiddlewareCallsAllowed() {}
    MiddlewareCallsAllowed(const MiddlewareCallsAllowed &) = delete;
    MiddlewareCallsAllowed &operator=(const MiddlewareCallsAllowed &) = delete;
};

#else

// Count the locks of the calling thread. A leaf lock is one that nothing is called under.
void leaf_lock_taken();
void leaf_lock_given();
void logger_lock_taken();
void logger_lock_given();

// Asserts that the calling thread may enter the middleware.
void about_to_call_middleware();

// Lets the calling thread enter the middleware with the logger lock while it lives.
class MiddlewareCallsAllowed {
  public:
    MiddlewareCallsAllowed();
    ~MiddlewareCallsAllowed();
    MiddlewareCallsAllowed(const MiddlewareCallsAllowed &) = delete;
    MiddlewareCallsAllowed &operator=(const MiddlewareCallsAllowed &) = delete;
};

#endif

// A mutex that nothing is called under: neither the middleware nor a function that takes a lock.
class LeafMutex {
  public:
    constexpr LeafMutex() = default;
    void lock() {
        mutex_.lock();
        leaf_lock_taken();
    }
    void unlock() {
        leaf_lock_given();
        mutex_.unlock();
    }

  private:
    std::mutex mutex_;
};

}  // namespace vur_dl
