// SPDX-License-Identifier: Apache-2.0
// Waiting on conditions and signals without polling.
#include "net/waiting.hpp"

#include <fmt/format.h>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdint>

#include "command/failure.hpp"

namespace distlog {
namespace {

sigset_t stop_signals() {
    sigset_t set;
    sigemptyset(&set);
    sigaddset(&set, SIGINT);
    sigaddset(&set, SIGTERM);
    return set;
}

DDS_Duration_t remaining(const Deadline &deadline) {
    if (!deadline) {
        return DDS_DURATION_INFINITE;
    }
    const auto span = std::max(*deadline - Clock::now(), Clock::duration::zero());
    const auto seconds = std::chrono::floor<std::chrono::seconds>(span);
    const auto rest = std::chrono::duration_cast<std::chrono::nanoseconds>(span - seconds);
    return DDS_Duration_t{static_cast<DDS_Long>(seconds.count()),
                          static_cast<DDS_UnsignedLong>(rest.count())};
}

}  // namespace

Deadline deadline_after(std::chrono::duration<double> span) {
    return Clock::now() + std::chrono::duration_cast<Clock::duration>(span);
}

Deadline earlier(const Deadline &left, const Deadline &right) {
    if (!left || !right) {
        return left ? left : right;
    }
    return std::min(*left, *right);
}

bool is_over(const Deadline &deadline) {
    return deadline && Clock::now() >= *deadline;
}

StopSignal::StopSignal() {
    const sigset_t set = stop_signals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    // When the reader of our output goes away, a write fails instead of the process ending.
    std::signal(SIGPIPE, SIG_IGN);
    signals_ = signalfd(-1, &set, SFD_CLOEXEC);
    quit_ = eventfd(0, EFD_CLOEXEC);
    guard_ = DDS_GuardCondition_new();
    if (signals_ < 0 || quit_ < 0 || guard_ == nullptr) {
        throw Failure("unable to watch for signals");
    }
    thread_ = std::thread([this] { watch(); });
}

StopSignal::~StopSignal() {
    const std::uint64_t one = 1;
    // The counter of an eventfd always accepts this write.
    [[maybe_unused]] const ssize_t written = write(quit_, &one, sizeof one);
    thread_.join();
    DDS_GuardCondition_delete(guard_);
    close(signals_);
    close(quit_);
}

void StopSignal::raise() {
    raised_.store(true);
    DDS_GuardCondition_set_trigger_value(guard_, DDS_BOOLEAN_TRUE);
}

void StopSignal::watch() {
    pollfd watched[] = {{signals_, POLLIN, 0}, {quit_, POLLIN, 0}};
    while (poll(watched, 2, -1) < 0) {
    }
    if ((watched[0].revents & POLLIN) == 0) {
        return;
    }
    signalfd_siginfo info{};
    [[maybe_unused]] const ssize_t got = read(signals_, &info, sizeof info);
    raise();
    // From here on the signals have their default effect, on this thread, for the whole process.
    const sigset_t set = stop_signals();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
    while (poll(&watched[1], 1, -1) < 0) {
    }
}

Waiter::Waiter(const std::vector<DDS_Condition *> &conditions)
    : set_(DDS_WaitSet_new()), conditions_(conditions) {
    for (DDS_Condition *condition : conditions_) {
        if (set_ == nullptr || DDS_WaitSet_attach_condition(set_, condition) != DDS_RETCODE_OK) {
            throw Failure("unable to wait for samples");
        }
    }
}

Waiter::~Waiter() {
    for (DDS_Condition *condition : conditions_) {
        DDS_WaitSet_detach_condition(set_, condition);
    }
    DDS_WaitSet_delete(set_);
}

bool Waiter::wait(const Deadline &deadline) {
    DDS_ConditionSeq active = DDS_SEQUENCE_INITIALIZER;
    const DDS_Duration_t timeout = remaining(deadline);
    const DDS_ReturnCode_t result = DDS_WaitSet_wait(set_, &active, &timeout);
    DDS_ConditionSeq_finalize(&active);
    if (result != DDS_RETCODE_OK && result != DDS_RETCODE_TIMEOUT) {
        throw Failure(
            fmt::format("unable to wait for samples: {}", KOLT_ReturnCode_to_string(result)));
    }
    return result == DDS_RETCODE_OK;
}

}  // namespace distlog
