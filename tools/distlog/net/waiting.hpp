// SPDX-License-Identifier: Apache-2.0
// Waiting without polling: for samples, for a point in time, and for the user's wish to stop.
#pragma once

#include <kolt/condition.h>

#include <atomic>
#include <chrono>
#include <optional>
#include <thread>
#include <vector>

namespace distlog {

using Clock = std::chrono::steady_clock;
// A point in time; empty for no deadline.
using Deadline = std::optional<Clock::time_point>;

Deadline deadline_after(std::chrono::duration<double> span);
Deadline earlier(const Deadline &left, const Deadline &right);
bool is_over(const Deadline &deadline);

// Turns SIGINT and SIGTERM into a condition. A second signal ends the process at once. To be made
// before any other thread, so that every thread has the signals blocked and this one gets them.
class StopSignal {
  public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal &) = delete;
    StopSignal &operator=(const StopSignal &) = delete;

    bool raised() const { return raised_.load(); }
    // Triggers the condition without a signal, for example when standard output is gone.
    void raise();
    DDS_Condition *condition() const { return DDS_GuardCondition_as_condition(guard_); }

  private:
    void watch();

    int signals_ = -1;  // signalfd
    int quit_ = -1;     // eventfd that ends the thread
    std::atomic<bool> raised_{false};
    DDS_GuardCondition *guard_ = nullptr;
    std::thread thread_;
};

// Waits for any of several conditions. The conditions must outlive it.
class Waiter {
  public:
    explicit Waiter(const std::vector<DDS_Condition *> &conditions);
    ~Waiter();
    Waiter(const Waiter &) = delete;
    Waiter &operator=(const Waiter &) = delete;

    // Returns when a condition is triggered (true) or the deadline is over (false).
    bool wait(const Deadline &deadline);

  private:
    DDS_WaitSet *set_;
    std::vector<DDS_Condition *> conditions_;
};

}  // namespace distlog
