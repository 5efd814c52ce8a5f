// SPDX-License-Identifier: Apache-2.0
// Marks a thread as one that uses the engine's memory, which is freed when no thread can.
#pragma once

#include "engine/cyclone/cyclone.hpp"

namespace kolt::engine {

// Lets the engine's records that this thread looks at live until it has done. May be nested.
class Awake {
  public:
    explicit Awake(const ddsi_domaingv *domain) : thread_(lookup_thread_state()) {
        thread_state_awake(thread_, domain);
    }
    ~Awake() { thread_state_asleep(thread_); }
    Awake(const Awake &) = delete;
    Awake &operator=(const Awake &) = delete;

  private:
    thread_state *const thread_;
};

// Returns the domain that the calling thread has last been awake in, such as that of the entity which
// it has just created.
inline ddsi_domaingv *last_domain() {
    return static_cast<ddsi_domaingv *>(ddsrt_atomic_ldvoidp(&lookup_thread_state()->gv));
}

}  // namespace kolt::engine
