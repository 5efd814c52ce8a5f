// SPDX-License-Identifier: Apache-2.0
// The data requests of a writer that are in progress: callbacks on the writing threads.
#pragma once

#include <condition_variable>
#include <mutex>

namespace kolt::engine {

class DataRequests {
  public:
    // Lives from before the listener is looked up until its last callback has returned.
    class InProgress {
      public:
        explicit InProgress(DataRequests &requests) : requests_(requests), outer_(t_innermost) {
            t_innermost = this;
            const std::lock_guard lock(requests_.mutex_);
            ++requests_.count_;
        }
        ~InProgress() {
            t_innermost = outer_;
            const std::lock_guard lock(requests_.mutex_);
            if (--requests_.count_ == 0) {
                requests_.idle_.notify_all();
            }
        }
        InProgress(const InProgress &) = delete;
        InProgress &operator=(const InProgress &) = delete;

      private:
        friend class DataRequests;

        DataRequests &requests_;
        const InProgress *const outer_;
    };

    // Waits until no request is in progress, unless called from within one.
    void wait() {
        for (const InProgress *request = t_innermost; request != nullptr;
             request = request->outer_) {
            if (&request->requests_ == this) {
                return;
            }
        }
        std::unique_lock lock(mutex_);
        idle_.wait(lock, [&] { return count_ == 0; });
    }

  private:
    static inline thread_local const InProgress *t_innermost = nullptr;

    std::mutex mutex_;
    std::condition_variable idle_;
    int count_ = 0;
};

}  // namespace kolt::engine
