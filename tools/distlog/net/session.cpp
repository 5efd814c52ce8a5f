// SPDX-License-Identifier: Apache-2.0
// The command's presence in a domain: a participant with a publisher and a subscriber.
#include "net/session.hpp"

#include <fmt/format.h>
#include <kolt/config_logger.h>

#include <cstdio>
#include <cstring>

#include "command/failure.hpp"
#include "kolt_internal/owned_qos.hpp"

namespace distlog {
namespace {

void write_to_standard_error(KOLT_Config_LoggerDevice *, const KOLT_Config_LogMessage *message) {
    const std::size_t length = std::strlen(message->text);
    const bool ended = length > 0 && message->text[length - 1] == '\n';
    std::fprintf(stderr, "%s%s", message->text, ended ? "" : "\n");
}

}  // namespace

void divert_middleware_log() {
    static KOLT_Config_LoggerDevice device{nullptr, write_to_standard_error, nullptr};
    KOLT_Config_Logger_set_output_device(KOLT_Config_Logger_get_instance(), &device);
}

Session::Session(int domain_id) : domain_(domain_id) {
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    participant_ = DDS_DomainParticipantFactory_create_participant(factory, domain_id, nullptr,
                                                                   nullptr, DDS_STATUS_MASK_NONE);
    if (participant_ == nullptr) {
        throw Failure(fmt::format(
            "unable to join domain {}: CYCLONEDDS_URI must name a readable configuration, a "
            "network interface of it must be up, and the domain must have a free port",
            domain_id));
    }
    publisher_ = DDS_DomainParticipant_create_publisher(participant_, nullptr, nullptr,
                                                        DDS_STATUS_MASK_NONE);
    subscriber_ = DDS_DomainParticipant_create_subscriber(participant_, nullptr, nullptr,
                                                          DDS_STATUS_MASK_NONE);
    if (publisher_ == nullptr || subscriber_ == nullptr) {
        DDS_DomainParticipant_delete_contained_entities(participant_);
        DDS_DomainParticipantFactory_delete_participant(factory, participant_);
        throw Failure(
            fmt::format("unable to create a publisher and a subscriber in domain {}", domain_id));
    }
}

Session::~Session() {
    DDS_DomainParticipant_delete_contained_entities(participant_);
    DDS_DomainParticipantFactory_delete_participant(DDS_DomainParticipantFactory_get_instance(),
                                                    participant_);
    DDS_DomainParticipantFactory_finalize_instance();
}

Identity Session::self() const {
    kolt::qos::ParticipantQos qos;
    if (DDS_DomainParticipant_get_qos(participant_, qos.get()) != DDS_RETCODE_OK) {
        throw Failure("unable to read the participant's identity");
    }
    return {static_cast<std::int32_t>(qos->wire_protocol.rtps_host_id),
            static_cast<std::int32_t>(qos->wire_protocol.rtps_app_id)};
}

}  // namespace distlog
