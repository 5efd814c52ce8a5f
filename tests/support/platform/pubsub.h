// SPDX-License-Identifier: Apache-2.0
// Participants, writers and readers of support::Message for tests of the entity API.
#pragma once

#include <kolt/dds_c.h>

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "kolt_internal/owned_qos.hpp"
#include "support/platform/process.h"
#include "support/types/test_types.h"

namespace support {

using kolt::qos::FactoryQos;
using kolt::qos::ParticipantQos;
using kolt::qos::PublisherQos;
using kolt::qos::ReaderQos;
using kolt::qos::SubscriberQos;
using kolt::qos::TopicQos;
using kolt::qos::WriterQos;

constexpr const char *kMessageTypeName = "test::Message";

// Returns `name` made unique to this process: tests that run at the same time do not meet.
std::string own(const std::string &name);

// Plugins made of KOLT's generic operations: of support::Message, keyed by id and level, and of
// support::Point and support::Large, which have no key.
const KOLT_TypePlugin &message_plugin();
const KOLT_TypePlugin &point_plugin();
const KOLT_TypePlugin &large_plugin();
// Returns the number of endpoint data that the plugins have made and not yet deleted.
int live_endpoints();

// A participant with the Message type and one topic of it. Deletes everything with the scope.
class Node {
  public:
    explicit Node(DDS_DomainId_t domain, const std::string &topic_name = own("messages"),
                  const DDS_TopicQos *topic_qos = nullptr);
    ~Node();
    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;

    // Creates a writer or reader of the topic. `adjust` changes the default QoS, reliable here.
    DDS_DataWriter *writer(const std::function<void(DDS_DataWriterQos &)> &adjust = {},
                           DDS_Topic *topic = nullptr,
                           const DDS_DataWriterListener *listener = nullptr,
                           DDS_StatusMask mask = DDS_STATUS_MASK_NONE);
    DDS_DataReader *reader(const std::function<void(DDS_DataReaderQos &)> &adjust = {},
                           DDS_TopicDescription *topic = nullptr,
                           const DDS_DataReaderListener *listener = nullptr,
                           DDS_StatusMask mask = DDS_STATUS_MASK_NONE);

    // Creates a topic of another plugin's type, under the type's own name.
    DDS_Topic *topic_of(const KOLT_TypePlugin &plugin, const std::string &name);

    DDS_DomainParticipantFactory *factory;
    DDS_DomainParticipant *participant;
    DDS_Topic *topic;
    DDS_Publisher *publisher;
    DDS_Subscriber *subscriber;
};

// A message by value.
struct Text {
    int host = 0;
    int level = 0;
    long long number = 0;
    std::string text;
    DDS_SampleInfo info{};
};

// Writes one message. With a handle other than NIL it is passed on.
DDS_ReturnCode_t write(DDS_DataWriter *writer, int host, int level, long long number,
                       const std::string &text = "hello",
                       DDS_InstanceHandle_t handle = DDS_HANDLE_NIL);

// Returns the selection of all samples, for the functions below.
KOLT_ReadSelection selection(bool take);

// Reads or takes through a loan, which is returned. `code` gets the result of the read.
std::vector<Text> access(DDS_DataReader *reader, const KOLT_ReadSelection &selection,
                         DDS_ReturnCode_t *code = nullptr);
std::vector<Text> take(DDS_DataReader *reader);
// Takes until there are `count` messages or the deadline has passed.
std::vector<Text> take_at_least(DDS_DataReader *reader, std::size_t count);

// Waits until the endpoints know of `count` peers.
bool is_matched(DDS_DataWriter *writer, int count = 1);
bool is_matched(DDS_DataReader *reader, int count = 1);

// A sequence of strings for a filter.
class Strings {
  public:
    Strings(std::initializer_list<const char *> texts);
    ~Strings() { DDS_StringSeq_finalize(&seq_); }
    Strings(const Strings &) = delete;
    Strings &operator=(const Strings &) = delete;
    DDS_StringSeq *get() { return &seq_; }
    std::string at(DDS_Long index) const;
    DDS_UnsignedLong size() const { return DDS_StringSeq_get_length(&seq_); }

  private:
    DDS_StringSeq seq_{};
};

}  // namespace support
