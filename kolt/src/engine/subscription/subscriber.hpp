// Subscribers.
#pragma once

#include "engine/endpoint/endpoint_group.hpp"

namespace kolt::engine {

class Subscriber final : public EndpointGroup<SubscriberTraits> {
  public:
    Subscriber(Participant &participant, const DDS_SubscriberQos &qos)
        : EndpointGroup(participant, qos) {}

    // Calls on_data_available for each reader with news.
    void notify_readers();
    // Calls on_data_on_readers of this subscriber's or the participant's listener. False when there
    // is none.
    bool dispatch_data_on_readers();
};

}  // namespace kolt::engine
