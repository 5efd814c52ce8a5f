// SPDX-License-Identifier: Apache-2.0
// Peers that behave as a test wants.
#include "support/logger/fake_peer.h"

#include <stdexcept>

#include "support/platform/process.h"

namespace support {
namespace {

template <typename T>
T *checked(T *made, const char *what) {
    if (made == nullptr) {
        throw std::runtime_error(what);
    }
    return made;
}

DDS_Topic *topic_of(DDS_DomainParticipant *participant, const char *name, const char *type_name,
                    DDS_ReturnCode_t (*register_type)(DDS_DomainParticipant *, const char *)) {
    if (DDS_Topic *known =
            DDS_Topic_narrow(DDS_DomainParticipant_lookup_topicdescription(participant, name))) {
        return known;
    }
    register_type(participant, type_name);
    return checked(DDS_DomainParticipant_create_topic(participant, name, type_name, nullptr,
                                                      nullptr, DDS_STATUS_MASK_NONE),
                   "create topic");
}

DDS_DataWriter *make_writer(DDS_Publisher *publisher, DDS_Topic *topic,
                            DDS_DurabilityQosPolicyKind durability, DDS_Long depth) {
    DDS_DataWriterQos qos;
    DDS_DataWriterQos_initialize(&qos);
    qos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    qos.durability.kind = durability;
    qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
    qos.history.depth = depth;
    DDS_DataWriter *writer =
        DDS_Publisher_create_datawriter(publisher, topic, &qos, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataWriterQos_finalize(&qos);
    return checked(writer, "create writer");
}

}  // namespace

FakeParticipant::FakeParticipant(int domain)
    : participant_(checked(DDS_DomainParticipantFactory_create_participant(
                               DDS_DomainParticipantFactory_get_instance(), domain, nullptr,
                               nullptr, DDS_STATUS_MASK_NONE),
                           "create participant")) {}

FakeParticipant::~FakeParticipant() {
    DDS_DomainParticipant_delete_contained_entities(participant_);
    DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory_get_instance(),
                                                    participant_);
}

FakeSender::FakeSender(const FakeParticipant &participant, Ids ids)
    : publisher_(DDS_DomainParticipant_create_publisher(participant.get(), nullptr, nullptr,
                                                        DDS_STATUS_MASK_NONE)),
      writer_(make_writer(publisher_,
                          topic_of(participant.get(), VUR_DL_LOG_TOPIC_NAME, VUR_DL_LOG_TYPE_NAME,
                                   VUR_DL_LogMessageTypeSupport_register_type),
                          DDS_TRANSIENT_LOCAL_DURABILITY_QOS, 10)),
      ids_(ids) {}

FakeSender::~FakeSender() {
    DDS_Publisher_delete_datawriter(publisher_, writer_);
}

bool FakeSender::wait_for_readers(int count) {
    return eventually([&] {
        DDS_PublicationMatchedStatus status{};
        DDS_DataWriter_get_publication_matched_status(writer_, &status);
        return status.current_count == count;
    });
}

bool FakeSender::write(std::int64_t id, int level, const std::string &message,
                       const std::string &category) {
    std::string message_copy = message;
    std::string category_copy = category;
    VUR_DL_LogMessage sample{};
    sample.hostAndAppId = VUR_DL_HostAndAppId{ids_.host, ids_.app};
    sample.level = level;
    sample.message = message_copy.data();
    sample.category = category_copy.data();
    sample.messageId = id;
    const DDS_Duration_t patience{static_cast<DDS_Long>(kPatience.count()), 0};
    return VUR_DL_LogMessageDataWriter_write(VUR_DL_LogMessageDataWriter_narrow(writer_), &sample,
                                             DDS_HANDLE_NIL) == DDS_RETCODE_OK &&
           DDS_DataWriter_wait_for_acknowledgments(writer_, &patience) == DDS_RETCODE_OK;
}

FakeResponder::FakeResponder(const FakeParticipant &participant) {
    DDS_Topic *request = topic_of(participant.get(), VUR_DL_COMMAND_REQUEST_TOPIC_NAME,
                                  VUR_DL_COMMAND_REQUEST_TYPE_NAME,
                                  VUR_DL_ADMIN_CommandRequestTypeSupport_register_type);
    DDS_Topic *response = topic_of(participant.get(), VUR_DL_COMMAND_RESPONSE_TOPIC_NAME,
                                   VUR_DL_COMMAND_RESPONSE_TYPE_NAME,
                                   VUR_DL_ADMIN_CommandResponseTypeSupport_register_type);
    DDS_DataReaderQos qos;
    DDS_DataReaderQos_initialize(&qos);
    qos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    requests_ =
        checked(DDS_Subscriber_create_datareader(
                    DDS_DomainParticipant_create_subscriber(participant.get(), nullptr, nullptr,
                                                            DDS_STATUS_MASK_NONE),
                    DDS_Topic_as_topicdescription(request), &qos, nullptr, DDS_STATUS_MASK_NONE),
                "create reader");
    DDS_DataReaderQos_finalize(&qos);
    responses_ = make_writer(DDS_DomainParticipant_create_publisher(participant.get(), nullptr,
                                                                    nullptr, DDS_STATUS_MASK_NONE),
                             response, DDS_VOLATILE_DURABILITY_QOS, 10);
}

bool FakeResponder::answer_one(VUR_DL_ADMIN_CommandResult result, const std::string &message) {
    VUR_DL_ADMIN_CommandRequest request;
    VUR_DL_ADMIN_CommandRequest_initialize(&request);
    const bool asked = eventually([&] {
        DDS_SampleInfo info;
        return VUR_DL_ADMIN_CommandRequestDataReader_take_next_sample(
                   VUR_DL_ADMIN_CommandRequestDataReader_narrow(requests_), &request, &info) ==
                   DDS_RETCODE_OK &&
               info.valid_data;
    });
    std::string text = message;
    VUR_DL_ADMIN_CommandResponse response{};
    response.hostAndAppId = request.targetHostAndAppId;
    response.originatorHostAndAppId = request.originatorHostAndAppId;
    response.invocation = request.invocation;
    response.commandResult = result;
    response.message = text.data();
    VUR_DL_ADMIN_CommandRequest_finalize(&request);
    return asked && VUR_DL_ADMIN_CommandResponseDataWriter_write(
                        VUR_DL_ADMIN_CommandResponseDataWriter_narrow(responses_), &response,
                        DDS_HANDLE_NIL) == DDS_RETCODE_OK;
}

}  // namespace support
