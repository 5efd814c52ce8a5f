// The command's presence in a domain: a participant, and the logger's four topics.
#pragma once

#include <kolt/domain.h>

#include <chrono>
#include <optional>

#include "net/identity.hpp"

namespace distlog {

// Sends the middleware's own messages to standard error: standard output belongs to what the
// command was asked for. To be called before anything else of the middleware.
void divert_middleware_log();

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
    // The participant's own ids: what the command calls itself in requests.
    Identity self() const;

  private:
    int domain_;
    DDS_DomainParticipant *participant_ = nullptr;
    DDS_Publisher *publisher_ = nullptr;
    DDS_Subscriber *subscriber_ = nullptr;
};

}  // namespace distlog
