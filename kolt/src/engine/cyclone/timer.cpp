// SPDX-License-Identifier: Apache-2.0
// A timed event of the engine.
#include "engine/cyclone/timer.hpp"

#include <dds/ddsi/q_xevent.h>

#include "engine/cyclone/domain_parts.h"

namespace kolt::engine {

MonotonicTime monotonic_now() {
    return ddsrt_time_monotonic().v;
}

Timer::Timer(ddsi_domaingv *domain, OnDue on_due, void *owner)
    : on_due_(on_due),
      owner_(owner),
      event_(qxev_callback(kolt_domain_events(domain), {kNever}, run, this)) {}

Timer::~Timer() {
    delete_xevent_callback(event_);
}

void Timer::call_at(MonotonicTime time) {
    resched_xevent_if_earlier(event_, {time});
}

void Timer::run(xevent *event, void *timer, ddsrt_mtime_t) {
    const Timer &self = *static_cast<Timer *>(timer);
    resched_xevent_if_earlier(event, {self.on_due_(self.owner_)});
}

}  // namespace kolt::engine
