// SPDX-License-Identifier: Apache-2.0
// The command's presence in a domain: a participant with a publisher and a subscriber.
#pragma once

#include <kolt/domain.h>

#include <chrono>
#include <optional>

#include "net/identity.hpp"

namespace distlog {

// Sends the middleware's own messages to standard error, so that standard output holds only what
// the command was asked for. To be called before any other function of the middleware.
void divert_middleware_log();

// Joins a domain and leaves it again.
class Session {
  public:
    // Throws Failure when the domain cannot be joined. Endpoints must be gone before their session.
    explicit Session(int domain_id);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    int domain() const { return domain_; }
    DDS_DomainParticipant *participant() const { return participant_; }
    DDS_Publisher *publisher() const { return publisher_; }
    DDS_Subscriber *subscriber() const { return subscriber_; }
    // Returns the participant's own ids, by which requests name their sender.
    Identity self() const;

  private:
    int domain_;
    DDS_DomainParticipant *participant_ = nullptr;
    DDS_Publisher *publisher_ = nullptr;
    DDS_Subscriber *subscriber_ = nullptr;
};

}  // namespace distlog
