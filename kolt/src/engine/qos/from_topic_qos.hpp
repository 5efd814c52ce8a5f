// SPDX-License-Identifier: Apache-2.0
// The policies that a topic's QoS shares with an endpoint's.
#pragma once

#include "kolt/qos.h"

namespace kolt::engine {

// Copies them into `qos` (DDS 1.4, 2.2.2.4.1.15). False when memory runs out.
template <typename EndpointQos>
bool copy_from_topic_qos(EndpointQos *qos, const DDS_TopicQos &topic_qos);

}  // namespace kolt::engine
