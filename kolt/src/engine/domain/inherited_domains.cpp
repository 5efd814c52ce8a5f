// SPDX-License-Identifier: Apache-2.0
// Counts that a forked child can look at without a lock.
#include "engine/domain/inherited_domains.hpp"

#include <pthread.h>

#include <array>
#include <atomic>
#include <cstddef>

namespace kolt::engine {

namespace {

struct Domain {
    std::atomic<int> participants{0};
    std::atomic<bool> is_inherited{false};
};
static_assert(std::atomic<int>::is_always_lock_free && std::atomic<bool>::is_always_lock_free);

// The ids that a domain can have (DDS-RTPS 2.3, 9.6.1: its ports must fit into 16 bits).
constinit std::array<Domain, 233> domains;

// nullptr for an id that no domain has.
Domain *find(DDS_DomainId_t id) {
    const auto index = static_cast<std::size_t>(id);
    return id >= 0 && index < domains.size() ? &domains[index] : nullptr;
}

void become_child() {
    for (Domain &domain : domains) {
        if (domain.participants.exchange(0) > 0) {
            domain.is_inherited = true;
        }
    }
}

// Fails only without memory, and then there is nobody to tell.
[[maybe_unused]] const int kRegistered = pthread_atfork(nullptr, nullptr, become_child);

}  // namespace

void note_participant(DDS_DomainId_t domain) {
    if (Domain *const known = find(domain)) {
        ++known->participants;
    }
}

void forget_participant(DDS_DomainId_t domain) {
    if (Domain *const known = find(domain)) {
        --known->participants;
    }
}

bool is_inherited(DDS_DomainId_t domain) {
    const Domain *const known = find(domain);
    return known != nullptr && known->is_inherited;
}

}  // namespace kolt::engine
