// SPDX-License-Identifier: Apache-2.0
// Whether the policies of a QoS record are in range and fit each other (DDS 1.4, 2.2.3), and
// whether a change of them is allowed.
#pragma once

#include "engine/barrier/barrier.hpp"
#include "kolt/qos.h"

namespace kolt::engine {

// OK, or INCONSISTENT_POLICY and a log message that names the policies.
DDS_ReturnCode_t check_qos(const DDS_DomainParticipantQos &qos, const char *method);
DDS_ReturnCode_t check_qos(const DDS_TopicQos &qos, const char *method);
DDS_ReturnCode_t check_qos(const DDS_PublisherQos &qos, const char *method);
DDS_ReturnCode_t check_qos(const DDS_SubscriberQos &qos, const char *method);
DDS_ReturnCode_t check_qos(const DDS_DataWriterQos &qos, const char *method);
DDS_ReturnCode_t check_qos(const DDS_DataReaderQos &qos, const char *method);

// OK, or IMMUTABLE_POLICY and a log message that names a policy which cannot change on an enabled
// entity but differs between the two.
DDS_ReturnCode_t check_change(const DDS_DomainParticipantQos &from,
                              const DDS_DomainParticipantQos &to, const char *method);
DDS_ReturnCode_t check_change(const DDS_TopicQos &from, const DDS_TopicQos &to, const char *method);
DDS_ReturnCode_t check_change(const DDS_PublisherQos &from, const DDS_PublisherQos &to,
                              const char *method);
DDS_ReturnCode_t check_change(const DDS_SubscriberQos &from, const DDS_SubscriberQos &to,
                              const char *method);
DDS_ReturnCode_t check_change(const DDS_DataWriterQos &from, const DDS_DataWriterQos &to,
                              const char *method);
DDS_ReturnCode_t check_change(const DDS_DataReaderQos &from, const DDS_DataReaderQos &to,
                              const char *method);

}  // namespace kolt::engine
