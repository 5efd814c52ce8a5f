// SPDX-License-Identifier: Apache-2.0
// What is due when. Everything that is in here has one time, which may be kNever.
#pragma once

#include <set>
#include <utility>

#include "engine/cyclone/timer.hpp"

namespace kolt::engine {

template <typename What>
class DueTimes {
  public:
    // May throw std::bad_alloc; nothing else here needs memory.
    void add(MonotonicTime time, const What &what) { times_.emplace(time, what); }
    void move(MonotonicTime from, MonotonicTime to, const What &what) noexcept {
        auto node = times_.extract({from, what});
        node.value().first = to;
        times_.insert(std::move(node));
    }
    void remove(MonotonicTime time, const What &what) noexcept { times_.erase({time, what}); }
    void clear() noexcept { times_.clear(); }

    // Returns the earliest time; kNever when there is none.
    MonotonicTime earliest() const { return times_.empty() ? kNever : times_.begin()->first; }
    // Returns what is due first; nullptr when nothing is due.
    const What *first(MonotonicTime now) const {
        return earliest() <= now ? &times_.begin()->second : nullptr;
    }

  private:
    std::set<std::pair<MonotonicTime, What>> times_;
};

}  // namespace kolt::engine
