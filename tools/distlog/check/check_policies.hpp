// SPDX-License-Identifier: Apache-2.0
// The policies of a QoS record, one by one: their values, and who decided them.
#pragma once

#include <kolt/qos.h>

#include <string>
#include <string_view>
#include <vector>

#include "text/output.hpp"

namespace distlog::check {

struct Policy {
    std::string_view name;  // the member of the record, and the element in a profile
    bool important;         // shown even at its default
    // Objects: the policy's members, with the names that XML has.
    Json value;     // what the logger uses
    Json standard;  // the standard's default
    Json said;      // what the profile says, the logger's own needs left aside

    bool is_standard() const { return value == standard; }
    // "default", "profile" or "logger": who it is from.
    std::string_view source() const;
};

// All policies of an entity's effective QoS. The important ones come first.
std::vector<Policy> policies_of(const DDS_DomainParticipantQos &effective,
                                const DDS_DomainParticipantQos &said);
std::vector<Policy> policies_of(const DDS_PublisherQos &effective, const DDS_PublisherQos &said);
std::vector<Policy> policies_of(const DDS_SubscriberQos &effective, const DDS_SubscriberQos &said);
std::vector<Policy> policies_of(const DDS_TopicQos &effective, const DDS_TopicQos &said);
std::vector<Policy> policies_of(const DDS_DataWriterQos &effective, const DDS_DataWriterQos &said);
std::vector<Policy> policies_of(const DDS_DataReaderQos &effective, const DDS_DataReaderQos &said);

// A policy's value on one line.
std::string policy_text(std::string_view name, const Json &value);

}  // namespace distlog::check
