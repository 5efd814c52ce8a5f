// SPDX-License-Identifier: Apache-2.0
// The defaults that a participant keeps for what it creates.
#include "engine/entity/participant_scope.hpp"

#include "engine/qos/qos_check.hpp"

namespace kolt::engine {

ParticipantScope::ParticipantScope(DDS_DomainId_t domain_id, const DDS_DomainParticipantQos &qos)
    : Entity(EntityKind::kParticipant, &handle_._entity, 0),
      domain_id_(domain_id),
      qos_(tree_, qos) {}

bool ParticipantScope::autoenables() const {
    return is_enabled() && qos_.read([](const DDS_DomainParticipantQos &qos) {
        return qos.entity_factory.autoenable_created_entities != 0;
    });
}

// ---- Defaults -----------------------------------------------------------------------------------

template <>
DefaultQos<DDS_TopicQos> &ParticipantScope::default_of() {
    return default_topic_qos_;
}
template <>
DefaultQos<DDS_PublisherQos> &ParticipantScope::default_of() {
    return default_publisher_qos_;
}
template <>
DefaultQos<DDS_SubscriberQos> &ParticipantScope::default_of() {
    return default_subscriber_qos_;
}
template <>
DefaultQos<DDS_DataWriterQos> &ParticipantScope::default_of() {
    return default_writer_qos_;
}
template <>
DefaultQos<DDS_DataReaderQos> &ParticipantScope::default_of() {
    return default_reader_qos_;
}

template <typename Qos>
DDS_ReturnCode_t ParticipantScope::get_default(Qos *qos, const char *topic_name) {
    {
        const std::lock_guard lock(tree_);
        const DefaultQos<Qos> &own = default_of<Qos>();
        if (own.is_set()) {
            return own.get(qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
        }
    }
    return profile_default(qos, topic_name) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

template <typename Qos>
DDS_ReturnCode_t ParticipantScope::set_default(const Qos &qos, const char *method) {
    const DDS_ReturnCode_t checked = check_qos(qos, method);
    if (checked != DDS_RETCODE_OK) {
        return checked;
    }
    const std::lock_guard lock(tree_);
    return default_of<Qos>().set(qos) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
}

#define KOLT_INSTANTIATE_DEFAULTS(Qos)                                                 \
    template DDS_ReturnCode_t ParticipantScope::get_default<Qos>(Qos *, const char *); \
    template DDS_ReturnCode_t ParticipantScope::set_default<Qos>(const Qos &, const char *);
KOLT_INSTANTIATE_DEFAULTS(DDS_TopicQos)
KOLT_INSTANTIATE_DEFAULTS(DDS_PublisherQos)
KOLT_INSTANTIATE_DEFAULTS(DDS_SubscriberQos)
KOLT_INSTANTIATE_DEFAULTS(DDS_DataWriterQos)
KOLT_INSTANTIATE_DEFAULTS(DDS_DataReaderQos)
#undef KOLT_INSTANTIATE_DEFAULTS

}  // namespace kolt::engine
