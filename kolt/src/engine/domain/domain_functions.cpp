// SPDX-License-Identifier: Apache-2.0
// The C functions of the factory and of participants.
#include "engine/cyclone/convert.hpp"
#include "engine/domain/participant.hpp"
#include "engine/domain/participant_factory.hpp"
#include "engine/publication/publisher.hpp"
#include "engine/subscription/subscriber.hpp"
#include "engine/topic/topic.hpp"

using namespace kolt::engine;  // NOLINT: this file is nothing but the face of that namespace

extern "C" {
// Marks that are recognised by their address.
const DDS_DomainParticipantQos DDS_PARTICIPANT_QOS_DEFAULT = {};
const DDS_TopicQos DDS_TOPIC_QOS_DEFAULT = {};
const DDS_PublisherQos DDS_PUBLISHER_QOS_DEFAULT = {};
const DDS_SubscriberQos DDS_SUBSCRIBER_QOS_DEFAULT = {};
}

// ---- Factory ------------------------------------------------------------------------------------

DDS_DomainParticipantFactory *DDS_DomainParticipantFactory_get_instance(void) {
    return &Factory::instance();
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_finalize_instance(void) {
    return guarded(__func__,
                   [](const char *method) { return Factory::instance().finalize(method); });
}

DDS_DomainParticipant *DDS_DomainParticipantFactory_create_participant(
    DDS_DomainParticipantFactory *self, DDS_DomainId_t domain_id,
    const DDS_DomainParticipantQos *qos, const DDS_DomainParticipantListener *listener,
    DDS_StatusMask mask) {
    return forward(self, __func__, &Factory::create_participant, domain_id, qos, listener, mask);
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_delete_participant(
    DDS_DomainParticipantFactory *self, DDS_DomainParticipant *participant) {
    return forward(self, __func__, &Factory::delete_participant,
                   required_as<Participant>(participant, "participant"));
}

DDS_DomainParticipant *DDS_DomainParticipantFactory_lookup_participant(
    DDS_DomainParticipantFactory *self, DDS_DomainId_t domain_id) {
    return forward(self, __func__, &Factory::lookup_participant, domain_id);
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_get_default_participant_qos(
    DDS_DomainParticipantFactory *self, DDS_DomainParticipantQos *qos) {
    return forward(self, __func__, &Factory::get_default_participant_qos, required(qos, "qos"));
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_set_default_participant_qos(
    DDS_DomainParticipantFactory *self, const DDS_DomainParticipantQos *qos) {
    return forward(self, __func__, &Factory::set_default_participant_qos,
                   required_value(qos, "qos"));
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_get_qos(DDS_DomainParticipantFactory *self,
                                                      DDS_DomainParticipantFactoryQos *qos) {
    return forward(self, __func__, &Factory::get_qos, required(qos, "qos"));
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_set_qos(DDS_DomainParticipantFactory *self,
                                                      const DDS_DomainParticipantFactoryQos *qos) {
    return forward(self, __func__, &Factory::set_qos, required_value(qos, "qos"));
}

DDS_DomainParticipant *KOLT_DomainParticipant_wrap(std::int32_t engine_participant) {
    return guarded(__func__, [&](const char *method) {
        return Factory::instance().wrap(engine_participant, method);
    });
}

DDS_ReturnCode_t KOLT_DomainParticipant_unwrap(DDS_DomainParticipant *self) {
    return with<Participant>(self, __func__, [](Participant &participant, const char *method) {
        return Factory::instance().unwrap(&participant, method);
    });
}

std::int32_t KOLT_DomainParticipant_engine_handle(DDS_DomainParticipant *self) {
    const Participant *const participant = Participant::of(self);
    return participant != nullptr ? participant->engine() : 0;
}

// ---- Participant --------------------------------------------------------------------------------

DDS_DomainParticipantFactory *DDS_DomainParticipant_get_participant_factoryI(
    DDS_DomainParticipant *self) {
    return self != nullptr ? &Factory::instance() : nullptr;
}

DDS_DomainId_t DDS_DomainParticipant_get_domain_id(DDS_DomainParticipant *self) {
    return forward(self, __func__, &Participant::domain_id);
}

DDS_ReturnCode_t DDS_DomainParticipant_get_qos(DDS_DomainParticipant *self,
                                               DDS_DomainParticipantQos *qos) {
    return forward(self, __func__, &Participant::get_qos, required(qos, "qos"));
}

DDS_ReturnCode_t DDS_DomainParticipant_set_qos(DDS_DomainParticipant *self,
                                               const DDS_DomainParticipantQos *qos) {
    return forward(self, __func__, &Participant::set_qos, required_value(qos, "qos"));
}

DDS_ReturnCode_t DDS_DomainParticipant_set_listener(DDS_DomainParticipant *self,
                                                    const DDS_DomainParticipantListener *listener,
                                                    DDS_StatusMask mask) {
    return forward(self, __func__, &Participant::set_listener, listener, mask);
}

DDS_ReturnCode_t DDS_DomainParticipant_register_type(DDS_DomainParticipant *self,
                                                     const char *type_name,
                                                     const KOLT_TypePlugin *plugin,
                                                     void *registration_data) {
    if (type_name == nullptr || *type_name == '\0') {
        return bad_parameter(__func__, "type_name");
    }
    if (plugin == nullptr || plugin->type_code == nullptr ||
        plugin->endpoint_type_name == nullptr) {
        return bad_parameter(__func__, "plugin");
    }
    return forward(self, __func__, &Participant::register_type, type_name, *plugin,
                   registration_data);
}

DDS_ReturnCode_t DDS_DomainParticipant_unregister_type(DDS_DomainParticipant *self,
                                                       const char *type_name) {
    return forward(self, __func__, &Participant::unregister_type, required(type_name, "type_name"));
}

DDS_Topic *DDS_DomainParticipant_create_topic(DDS_DomainParticipant *self, const char *topic_name,
                                              const char *type_name, const DDS_TopicQos *qos,
                                              const DDS_TopicListener *listener,
                                              DDS_StatusMask mask) {
    return forward(self, __func__, &Participant::create_topic, required(topic_name, "topic_name"),
                   required(type_name, "type_name"), qos, listener, mask);
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_topic(DDS_DomainParticipant *self, DDS_Topic *topic) {
    return forward(self, __func__, &Participant::delete_topic, required_as<Topic>(topic, "topic"));
}

DDS_ContentFilteredTopic *DDS_DomainParticipant_create_contentfilteredtopic(
    DDS_DomainParticipant *self, const char *name, DDS_Topic *related_topic,
    const char *filter_expression, const DDS_StringSeq *expression_parameters) {
    return forward(self, __func__, &Participant::create_filtered_topic, required(name, "name"),
                   required_as<Topic>(related_topic, "related_topic"),
                   required(filter_expression, "filter_expression"), expression_parameters);
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_contentfilteredtopic(
    DDS_DomainParticipant *self, DDS_ContentFilteredTopic *topic) {
    return forward(self, __func__, &Participant::delete_filtered_topic,
                   required_as<ContentFilteredTopic>(topic, "topic"));
}

DDS_TopicDescription *DDS_DomainParticipant_lookup_topicdescription(DDS_DomainParticipant *self,
                                                                    const char *name) {
    return forward(self, __func__, &Participant::lookup_topic, required(name, "name"));
}

DDS_Publisher *DDS_DomainParticipant_create_publisher(DDS_DomainParticipant *self,
                                                      const DDS_PublisherQos *qos,
                                                      const DDS_PublisherListener *listener,
                                                      DDS_StatusMask mask) {
    return forward(self, __func__, &Participant::create_publisher, qos, listener, mask);
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_publisher(DDS_DomainParticipant *self,
                                                        DDS_Publisher *publisher) {
    return forward(self, __func__, &Participant::delete_publisher,
                   required_as<Publisher>(publisher, "publisher"));
}

DDS_Subscriber *DDS_DomainParticipant_create_subscriber(DDS_DomainParticipant *self,
                                                        const DDS_SubscriberQos *qos,
                                                        const DDS_SubscriberListener *listener,
                                                        DDS_StatusMask mask) {
    return forward(self, __func__, &Participant::create_subscriber, qos, listener, mask);
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_subscriber(DDS_DomainParticipant *self,
                                                         DDS_Subscriber *subscriber) {
    return forward(self, __func__, &Participant::delete_subscriber,
                   required_as<Subscriber>(subscriber, "subscriber"));
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_contained_entities(DDS_DomainParticipant *self) {
    return forward(self, __func__, &Participant::delete_contained_entities);
}

DDS_Boolean DDS_DomainParticipant_contains_entity(DDS_DomainParticipant *self,
                                                  DDS_InstanceHandle_t handle) {
    return with<Participant>(self, __func__, [&](Participant &p) {
        return p.contains(handle) ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_assert_liveliness(DDS_DomainParticipant *self) {
    return forward<Participant>(self, __func__, assert_liveliness);
}

DDS_ReturnCode_t DDS_DomainParticipant_get_current_time(DDS_DomainParticipant *self,
                                                        DDS_Time_t *current_time) {
    return forward<Participant>(
        self, __func__,
        [](Participant &, DDS_Time_t *now) {
            *now = from_engine_time(dds_time());
            return DDS_RETCODE_OK;
        },
        required(current_time, "current_time"));
}

#define KOLT_DEFINE_DEFAULT(function, Qos)                                                   \
    DDS_ReturnCode_t DDS_DomainParticipant_get_default_##function##_qos(                     \
        DDS_DomainParticipant *self, Qos *qos) {                                             \
        return forward(self, __func__, &Participant::get_default<Qos>, required(qos, "qos"), \
                       nullptr);                                                             \
    }                                                                                        \
    DDS_ReturnCode_t DDS_DomainParticipant_set_default_##function##_qos(                     \
        DDS_DomainParticipant *self, const Qos *qos) {                                       \
        return forward(self, __func__, &Participant::set_default<Qos>,                       \
                       required_value(qos, "qos"));                                          \
    }
KOLT_DEFINE_DEFAULT(publisher, DDS_PublisherQos)
KOLT_DEFINE_DEFAULT(subscriber, DDS_SubscriberQos)
KOLT_DEFINE_DEFAULT(topic, DDS_TopicQos)
KOLT_DEFINE_DEFAULT(datawriter, DDS_DataWriterQos)
KOLT_DEFINE_DEFAULT(datareader, DDS_DataReaderQos)
#undef KOLT_DEFINE_DEFAULT

#define KOLT_DEFINE_GET_DEFAULT_W_TOPIC_NAME(function, Qos)                                  \
    DDS_ReturnCode_t DDS_DomainParticipant_get_default_##function##_qos_w_topic_name(        \
        DDS_DomainParticipant *self, Qos *qos, const char *topic_name) {                     \
        return forward(self, __func__, &Participant::get_default<Qos>, required(qos, "qos"), \
                       topic_name);                                                          \
    }
KOLT_DEFINE_GET_DEFAULT_W_TOPIC_NAME(topic, DDS_TopicQos)
KOLT_DEFINE_GET_DEFAULT_W_TOPIC_NAME(datawriter, DDS_DataWriterQos)
KOLT_DEFINE_GET_DEFAULT_W_TOPIC_NAME(datareader, DDS_DataReaderQos)
#undef KOLT_DEFINE_GET_DEFAULT_W_TOPIC_NAME
