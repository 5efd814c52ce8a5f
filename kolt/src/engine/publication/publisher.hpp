// Publishers.
#pragma once

#include "engine/endpoint/endpoint_group.hpp"

namespace kolt::engine {

class Publisher final : public EndpointGroup<PublisherTraits> {
  public:
    Publisher(Participant &participant, const DDS_PublisherQos &qos)
        : EndpointGroup(participant, qos) {}

    DDS_ReturnCode_t wait_for_acknowledgments(const DDS_Duration_t &max_wait, const char *method);
};

}  // namespace kolt::engine
