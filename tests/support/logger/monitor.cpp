// SPDX-License-Identifier: Apache-2.0
// An administration tool for tests.
#include "support/logger/monitor.h"

#include <algorithm>
#include <stdexcept>

#include "support/platform/process.h"

namespace support {
namespace {

// The number of requests that no test sends.
constexpr int kHandshake = -4711;

void check(bool ok, const char *what) {
    if (!ok) {
        throw std::runtime_error(what);
    }
}

Ids to_ids(const VUR_DL_HostAndAppId &ids) {
    return Ids{ids.rtps_host_id, ids.rtps_app_id};
}

LogSample convert(const VUR_DL_LogMessage &sample, const DDS_SampleInfo &info) {
    return LogSample{to_ids(sample.hostAndAppId),
                     sample.level,
                     sample.category,
                     sample.message,
                     sample.messageId,
                     info.source_timestamp};
}

StateSample convert(const VUR_DL_ADMIN_State &sample, const DDS_SampleInfo &info) {
    StateSample result;
    result.sender = to_ids(sample.hostAndAppId);
    result.valid = info.valid_data != DDS_BOOLEAN_FALSE;
    result.instance_state = info.instance_state;
    if (result.valid) {
        result.domain = sample.administrationDomainId;
        result.state = sample.state;
        result.kind = sample.applicationKind;
        result.filter_level = sample.filterLevel;
        std::copy(std::begin(sample.vurLoggerVerbosities), std::end(sample.vurLoggerVerbosities),
                  result.verbosities.begin());
        result.format = sample.vurLoggerPrintFormat;
    }
    return result;
}

ResponseSample convert(const VUR_DL_ADMIN_CommandResponse &sample, const DDS_SampleInfo &) {
    return ResponseSample{to_ids(sample.hostAndAppId), to_ids(sample.originatorHostAndAppId),
                          sample.invocation, sample.commandResult, sample.message};
}

DDS_Topic *make_topic(DDS_DomainParticipant *participant, const char *name, const char *type_name,
                      DDS_ReturnCode_t (*register_type)(DDS_DomainParticipant *, const char *)) {
    check(register_type(participant, type_name) == DDS_RETCODE_OK, "register type");
    DDS_Topic *topic = DDS_DomainParticipant_create_topic(participant, name, type_name, nullptr,
                                                          nullptr, DDS_STATUS_MASK_NONE);
    check(topic != nullptr, "create topic");
    return topic;
}

// A reliable reader that keeps everything until it is taken.
DDS_DataReader *make_reader(DDS_DomainParticipant *participant, DDS_Topic *topic,
                            DDS_DurabilityQosPolicyKind durability) {
    DDS_Subscriber *subscriber = DDS_DomainParticipant_create_subscriber(
        participant, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataReaderQos qos;
    DDS_DataReaderQos_initialize(&qos);
    qos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    qos.durability.kind = durability;
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    DDS_DataReader *reader = DDS_Subscriber_create_datareader(
        subscriber, DDS_Topic_as_topicdescription(topic), &qos, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataReaderQos_finalize(&qos);
    check(reader != nullptr, "create reader");
    return reader;
}

DDS_DataWriter *make_writer(DDS_DomainParticipant *participant, DDS_Topic *topic) {
    DDS_Publisher *publisher =
        DDS_DomainParticipant_create_publisher(participant, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataWriterQos qos;
    DDS_DataWriterQos_initialize(&qos);
    qos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    DDS_DataWriter *writer =
        DDS_Publisher_create_datawriter(publisher, topic, &qos, nullptr, DDS_STATUS_MASK_NONE);
    DDS_DataWriterQos_finalize(&qos);
    check(writer != nullptr, "create writer");
    return writer;
}

int matched_writers(DDS_DataReader *reader) {
    DDS_SubscriptionMatchedStatus status{};
    DDS_DataReader_get_subscription_matched_status(reader, &status);
    return status.current_count;
}

int matched_readers(DDS_DataWriter *writer) {
    DDS_PublicationMatchedStatus status{};
    DDS_DataWriter_get_publication_matched_status(writer, &status);
    return status.current_count;
}

// Takes all samples of one of the three topics; `take` gives the types.
template <typename Seq, typename TypedReader, typename Result>
void take_all(TypedReader *reader,
              DDS_ReturnCode_t (*take)(TypedReader *, Seq *, DDS_SampleInfoSeq *, DDS_Long,
                                       DDS_SampleStateMask, DDS_ViewStateMask,
                                       DDS_InstanceStateMask),
              DDS_ReturnCode_t (*return_loan)(TypedReader *, Seq *, DDS_SampleInfoSeq *),
              bool invalid_too, std::vector<Result> &results) {
    Seq samples = DDS_SEQUENCE_INITIALIZER;
    DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
    const DDS_ReturnCode_t result =
        take(reader, &samples, &infos, DDS_LENGTH_UNLIMITED, DDS_ANY_SAMPLE_STATE,
             DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    if (result == DDS_RETCODE_NO_DATA) {
        return;
    }
    check(result == DDS_RETCODE_OK, "take");
    for (DDS_UnsignedLong i = 0; i < samples._length; ++i) {
        const DDS_SampleInfo &info =
            *DDS_SampleInfoSeq_get_reference(&infos, static_cast<DDS_Long>(i));
        if (info.valid_data || invalid_too) {
            results.push_back(convert(samples._discontiguous_buffer != nullptr
                                          ? *samples._discontiguous_buffer[i]
                                          : samples._contiguous_buffer[i],
                                      info));
        }
    }
    check(return_loan(reader, &samples, &infos) == DDS_RETCODE_OK, "return loan");
}

}  // namespace

struct Monitor::Endpoints {
    DDS_DomainParticipant *participant = nullptr;
    DDS_DataReader *log = nullptr;
    DDS_DataReader *state = nullptr;
    DDS_DataReader *responses = nullptr;
    DDS_DataWriter *requests = nullptr;
};

Monitor::Monitor(const Settings &settings) : endpoints_(std::make_unique<Endpoints>()) {
    DDS_DomainParticipant *participant = DDS_DomainParticipantFactory_create_participant(
        DDS_DomainParticipantFactory_get_instance(), settings.domain, nullptr, nullptr,
        DDS_STATUS_MASK_NONE);
    check(participant != nullptr, "create participant");
    endpoints_->participant = participant;
    if (settings.log) {
        DDS_Topic *topic = make_topic(participant, VUR_DL_LOG_TOPIC_NAME, VUR_DL_LOG_TYPE_NAME,
                                      VUR_DL_LogMessageTypeSupport_register_type);
        endpoints_->log = make_reader(participant, topic, settings.durability);
    }
    if (settings.state) {
        DDS_Topic *topic = make_topic(participant, VUR_DL_STATE_TOPIC_NAME, VUR_DL_STATE_TYPE_NAME,
                                      VUR_DL_ADMIN_StateTypeSupport_register_type);
        endpoints_->state = make_reader(participant, topic, DDS_TRANSIENT_LOCAL_DURABILITY_QOS);
    }
    if (settings.commands) {
        DDS_Topic *answer = make_topic(participant, VUR_DL_COMMAND_RESPONSE_TOPIC_NAME,
                                       VUR_DL_COMMAND_RESPONSE_TYPE_NAME,
                                       VUR_DL_ADMIN_CommandResponseTypeSupport_register_type);
        endpoints_->responses = make_reader(participant, answer, DDS_VOLATILE_DURABILITY_QOS);
        DDS_Topic *request = make_topic(participant, VUR_DL_COMMAND_REQUEST_TOPIC_NAME,
                                        VUR_DL_COMMAND_REQUEST_TYPE_NAME,
                                        VUR_DL_ADMIN_CommandRequestTypeSupport_register_type);
        endpoints_->requests = make_writer(participant, request);
    }
}

Monitor::~Monitor() {
    DDS_DomainParticipant_delete_contained_entities(endpoints_->participant);
    DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory_get_instance(),
                                                    endpoints_->participant);
}

const std::vector<LogSample> &Monitor::log() {
    take_all<VUR_DL_LogMessageSeq>(VUR_DL_LogMessageDataReader_narrow(endpoints_->log),
                                   VUR_DL_LogMessageDataReader_take,
                                   VUR_DL_LogMessageDataReader_return_loan, false, log_);
    return log_;
}

const std::vector<StateSample> &Monitor::states() {
    take_all<VUR_DL_ADMIN_StateSeq>(VUR_DL_ADMIN_StateDataReader_narrow(endpoints_->state),
                                    VUR_DL_ADMIN_StateDataReader_take,
                                    VUR_DL_ADMIN_StateDataReader_return_loan, true, states_);
    return states_;
}

const std::vector<ResponseSample> &Monitor::responses() {
    take_all<VUR_DL_ADMIN_CommandResponseSeq>(
        VUR_DL_ADMIN_CommandResponseDataReader_narrow(endpoints_->responses),
        VUR_DL_ADMIN_CommandResponseDataReader_take,
        VUR_DL_ADMIN_CommandResponseDataReader_return_loan, false, responses_);
    std::erase_if(responses_, [this](const ResponseSample &response) {
        const bool shake = response.invocation == kHandshake;
        if (shake) {
            shaken_.insert(response.responder);
        }
        return shake;
    });
    return responses_;
}

bool Monitor::wait_for_log(std::size_t count) {
    return eventually([&] { return log().size() >= count; });
}

bool Monitor::wait_for_log_writers(int count) {
    return eventually([&] { return matched_writers(endpoints_->log) == count; });
}

bool Monitor::wait_for_states(std::size_t count) {
    return eventually([&] {
        const std::vector<StateSample> &all = states();
        return static_cast<std::size_t>(std::count_if(
                   all.begin(), all.end(), [](const auto &s) { return s.valid; })) >= count;
    });
}

bool Monitor::wait_for_state(const std::function<bool(const StateSample &)> &wanted) {
    return eventually([&] {
        const std::vector<StateSample> &all = states();
        return std::any_of(all.begin(), all.end(), wanted);
    });
}

bool Monitor::wait_for_responses(std::size_t count) {
    return eventually([&] { return responses().size() >= count; });
}

bool Monitor::handshake(const Ids &target, int level) {
    const auto set_level = [level](VUR_DL_ADMIN_Command &command) {
        command._d = VUR_DL_SET_LOG_LEVEL;
        command._u.filterLevel = level;
    };
    return eventually([&] {
        return matched_readers(endpoints_->requests) > 0 &&
               request(target, kHandshake, set_level) &&
               eventually([&] { return (responses(), shaken_.count(target) != 0); },
                          std::chrono::milliseconds(200));
    });
}

bool Monitor::nobody_takes_requests() {
    return matched_readers(endpoints_->requests) == 0;
}

StateSample Monitor::last_state() {
    const std::vector<StateSample> &all = states();
    const auto last =
        std::find_if(all.rbegin(), all.rend(), [](const StateSample &s) { return s.valid; });
    return last == all.rend() ? StateSample{} : *last;
}

bool Monitor::request(const Ids &target, int invocation,
                      const std::function<void(VUR_DL_ADMIN_Command &)> &fill) {
    VUR_DL_ADMIN_CommandRequest request;
    check(VUR_DL_ADMIN_CommandRequest_initialize(&request), "initialise request");
    request.targetHostAndAppId = VUR_DL_HostAndAppId{target.host, target.app};
    request.originatorHostAndAppId = VUR_DL_HostAndAppId{ids().host, ids().app};
    request.invocation = invocation;
    fill(request.command);
    const DDS_ReturnCode_t result = VUR_DL_ADMIN_CommandRequestDataWriter_write(
        VUR_DL_ADMIN_CommandRequestDataWriter_narrow(endpoints_->requests), &request,
        DDS_HANDLE_NIL);
    VUR_DL_ADMIN_CommandRequest_finalize(&request);
    return result == DDS_RETCODE_OK;
}

Ids Monitor::ids() const {
    DDS_DomainParticipantQos qos;
    DDS_DomainParticipantQos_initialize(&qos);
    check(DDS_DomainParticipant_get_qos(endpoints_->participant, &qos) == DDS_RETCODE_OK,
          "participant QoS");
    const Ids result{static_cast<std::int32_t>(qos.wire_protocol.rtps_host_id),
                     static_cast<std::int32_t>(qos.wire_protocol.rtps_app_id)};
    DDS_DomainParticipantQos_finalize(&qos);
    return result;
}

DDS_DomainParticipant *Monitor::participant() const {
    return endpoints_->participant;
}

}  // namespace support
