// The C functions of the factory and of participants.
#include "engine/cyclone/convert.hpp"
#include "engine/domain/participant.hpp"
#include "engine/domain/participant_factory.hpp"
#include "engine/publication/publisher.hpp"
#include "engine/subscription/subscriber.hpp"
#include "engine/topic/topic.hpp"

using namespace kolt::engine;  // NOLINT: this file is nothing but the face of that namespace

extern "C" {
// Compared by address only.
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
    return guarded(__func__, [method = __func__] { return Factory::instance().finalize(method); });
}

DDS_DomainParticipant *DDS_DomainParticipantFactory_create_participant(
    DDS_DomainParticipantFactory *self, DDS_DomainId_t domain_id,
    const DDS_DomainParticipantQos *qos, const DDS_DomainParticipantListener *listener,
    DDS_StatusMask mask) {
    return with<Factory>(self, __func__, [&, method = __func__](Factory &factory) {
        return factory.create_participant(domain_id, qos, listener, mask, method);
    });
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_delete_participant(
    DDS_DomainParticipantFactory *self, DDS_DomainParticipant *participant) {
    if (participant == nullptr) {
        return bad_parameter(__func__, "participant");
    }
    return with<Factory>(self, __func__, [&, method = __func__](Factory &factory) {
        return factory.delete_participant(Participant::of(participant), method);
    });
}

DDS_DomainParticipant *DDS_DomainParticipantFactory_lookup_participant(
    DDS_DomainParticipantFactory *self, DDS_DomainId_t domain_id) {
    return with<Factory>(self, __func__,
                         [&](Factory &factory) { return factory.lookup_participant(domain_id); });
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_get_default_participant_qos(
    DDS_DomainParticipantFactory *self, DDS_DomainParticipantQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<Factory>(
        self, __func__, [&](Factory &factory) { return factory.get_default_participant_qos(qos); });
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_set_default_participant_qos(
    DDS_DomainParticipantFactory *self, const DDS_DomainParticipantQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<Factory>(self, __func__, [&, method = __func__](Factory &factory) {
        return factory.set_default_participant_qos(*qos, method);
    });
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_get_qos(DDS_DomainParticipantFactory *self,
                                                      DDS_DomainParticipantFactoryQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<Factory>(self, __func__, [&](Factory &factory) { return factory.get_qos(qos); });
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_set_qos(DDS_DomainParticipantFactory *self,
                                                      const DDS_DomainParticipantFactoryQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<Factory>(self, __func__, [&](Factory &factory) { return factory.set_qos(*qos); });
}

DDS_DomainParticipant *KOLT_DomainParticipant_wrap(std::int32_t engine_participant) {
    return guarded(__func__, [&, method = __func__] {
        return Factory::instance().wrap(engine_participant, method);
    });
}

DDS_ReturnCode_t KOLT_DomainParticipant_unwrap(DDS_DomainParticipant *self) {
    return with<Participant>(self, __func__, [method = __func__](Participant &participant) {
        return Factory::instance().unwrap(&participant, method);
    });
}

std::int32_t KOLT_DomainParticipant_engine_handle(DDS_DomainParticipant *self) {
    return self != nullptr ? Participant::of(self)->engine() : 0;
}

// ---- Participant --------------------------------------------------------------------------------

DDS_DomainParticipantFactory *DDS_DomainParticipant_get_participant_factoryI(
    DDS_DomainParticipant *self) {
    return self != nullptr ? &Factory::instance() : nullptr;
}

DDS_DomainId_t DDS_DomainParticipant_get_domain_id(DDS_DomainParticipant *self) {
    return with<Participant>(self, __func__, [](Participant &p) { return p.domain_id(); });
}

DDS_ReturnCode_t DDS_DomainParticipant_get_qos(DDS_DomainParticipant *self,
                                               DDS_DomainParticipantQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<Participant>(self, __func__, [&](Participant &p) { return p.get_qos(qos); });
}

DDS_ReturnCode_t DDS_DomainParticipant_set_qos(DDS_DomainParticipant *self,
                                               const DDS_DomainParticipantQos *qos) {
    if (qos == nullptr) {
        return bad_parameter(__func__, "qos");
    }
    return with<Participant>(
        self, __func__, [&, method = __func__](Participant &p) { return p.set_qos(*qos, method); });
}

DDS_ReturnCode_t DDS_DomainParticipant_set_listener(DDS_DomainParticipant *self,
                                                    const DDS_DomainParticipantListener *listener,
                                                    DDS_StatusMask mask) {
    return with<Participant>(self, __func__, [&](Participant &p) {
        p.listener().set(listener, mask);
        return DDS_RETCODE_OK;
    });
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
    return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {
        return p.register_type(type_name, *plugin, registration_data, method);
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_unregister_type(DDS_DomainParticipant *self,
                                                       const char *type_name) {
    if (type_name == nullptr) {
        return bad_parameter(__func__, "type_name");
    }
    return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {
        return p.unregister_type(type_name, method);
    });
}

DDS_Topic *DDS_DomainParticipant_create_topic(DDS_DomainParticipant *self, const char *topic_name,
                                              const char *type_name, const DDS_TopicQos *qos,
                                              const DDS_TopicListener *listener,
                                              DDS_StatusMask mask) {
    if (topic_name == nullptr || type_name == nullptr) {
        bad_parameter(__func__, topic_name == nullptr ? "topic_name" : "type_name");
        return nullptr;
    }
    return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {
        return p.create_topic(topic_name, type_name, qos, listener, mask, method);
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_topic(DDS_DomainParticipant *self, DDS_Topic *topic) {
    if (topic == nullptr) {
        return bad_parameter(__func__, "topic");
    }
    return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {
        return p.delete_topic(Topic::of(topic), method);
    });
}

DDS_ContentFilteredTopic *DDS_DomainParticipant_create_contentfilteredtopic(
    DDS_DomainParticipant *self, const char *name, DDS_Topic *related_topic,
    const char *filter_expression, const DDS_StringSeq *expression_parameters) {
    if (name == nullptr || related_topic == nullptr || filter_expression == nullptr) {
        bad_parameter(__func__, name == nullptr            ? "name"
                                : related_topic == nullptr ? "related_topic"
                                                           : "filter_expression");
        return nullptr;
    }
    return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {
        return p.create_filtered_topic(name, Topic::of(related_topic), filter_expression,
                                       expression_parameters, method);
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_contentfilteredtopic(
    DDS_DomainParticipant *self, DDS_ContentFilteredTopic *topic) {
    if (topic == nullptr) {
        return bad_parameter(__func__, "topic");
    }
    return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {
        return p.delete_filtered_topic(ContentFilteredTopic::of(topic), method);
    });
}

DDS_TopicDescription *DDS_DomainParticipant_lookup_topicdescription(DDS_DomainParticipant *self,
                                                                    const char *name) {
    if (name == nullptr) {
        bad_parameter(__func__, "name");
        return nullptr;
    }
    return with<Participant>(self, __func__, [&](Participant &p) { return p.lookup_topic(name); });
}

DDS_Publisher *DDS_DomainParticipant_create_publisher(DDS_DomainParticipant *self,
                                                      const DDS_PublisherQos *qos,
                                                      const DDS_PublisherListener *listener,
                                                      DDS_StatusMask mask) {
    return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {
        return p.create_publisher(qos, listener, mask, method);
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_publisher(DDS_DomainParticipant *self,
                                                        DDS_Publisher *publisher) {
    if (publisher == nullptr) {
        return bad_parameter(__func__, "publisher");
    }
    return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {
        return p.delete_publisher(Publisher::of(publisher), method);
    });
}

DDS_Subscriber *DDS_DomainParticipant_create_subscriber(DDS_DomainParticipant *self,
                                                        const DDS_SubscriberQos *qos,
                                                        const DDS_SubscriberListener *listener,
                                                        DDS_StatusMask mask) {
    return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {
        return p.create_subscriber(qos, listener, mask, method);
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_subscriber(DDS_DomainParticipant *self,
                                                         DDS_Subscriber *subscriber) {
    if (subscriber == nullptr) {
        return bad_parameter(__func__, "subscriber");
    }
    return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {
        return p.delete_subscriber(Subscriber::of(subscriber), method);
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_delete_contained_entities(DDS_DomainParticipant *self) {
    return with<Participant>(self, __func__, [method = __func__](Participant &p) {
        return p.delete_contained_entities(method);
    });
}

DDS_Boolean DDS_DomainParticipant_contains_entity(DDS_DomainParticipant *self,
                                                  DDS_InstanceHandle_t handle) {
    return with<Participant>(self, __func__, [&](Participant &p) {
        return p.contains(handle) ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_assert_liveliness(DDS_DomainParticipant *self) {
    return with<Participant>(self, __func__, [method = __func__](Participant &p) {
        if (!p.is_enabled()) {
            return not_enabled(method);
        }
        return to_return_code(dds_assert_liveliness(p.engine()));
    });
}

DDS_ReturnCode_t DDS_DomainParticipant_get_current_time(DDS_DomainParticipant *self,
                                                        DDS_Time_t *current_time) {
    if (current_time == nullptr) {
        return bad_parameter(__func__, "current_time");
    }
    return with<Participant>(self, __func__, [&](Participant &) {
        *current_time = from_engine_time(dds_time());
        return DDS_RETCODE_OK;
    });
}

#define KOLT_DEFINE_GET_DEFAULT(function, Qos)                                                 \
    DDS_ReturnCode_t DDS_DomainParticipant_get_default_##function##_qos(                       \
        DDS_DomainParticipant *self, Qos *qos) {                                               \
        if (qos == nullptr) return bad_parameter(__func__, "qos");                             \
        return with<Participant>(self, __func__,                                               \
                                 [&](Participant &p) { return p.get_default(qos, nullptr); }); \
    }                                                                                          \
    DDS_ReturnCode_t DDS_DomainParticipant_set_default_##function##_qos(                       \
        DDS_DomainParticipant *self, const Qos *qos) {                                         \
        if (qos == nullptr) return bad_parameter(__func__, "qos");                             \
        return with<Participant>(self, __func__, [&, method = __func__](Participant &p) {      \
            return p.set_default(*qos, method);                                                \
        });                                                                                    \
    }
KOLT_DEFINE_GET_DEFAULT(publisher, DDS_PublisherQos)
KOLT_DEFINE_GET_DEFAULT(subscriber, DDS_SubscriberQos)
KOLT_DEFINE_GET_DEFAULT(topic, DDS_TopicQos)
KOLT_DEFINE_GET_DEFAULT(datawriter, DDS_DataWriterQos)
KOLT_DEFINE_GET_DEFAULT(datareader, DDS_DataReaderQos)
#undef KOLT_DEFINE_GET_DEFAULT

#define KOLT_DEFINE_GET_DEFAULT_W_TOPIC_NAME(function, Qos)                                       \
    DDS_ReturnCode_t DDS_DomainParticipant_get_default_##function##_qos_w_topic_name(             \
        DDS_DomainParticipant *self, Qos *qos, const char *topic_name) {                          \
        if (qos == nullptr) return bad_parameter(__func__, "qos");                                \
        return with<Participant>(self, __func__,                                                  \
                                 [&](Participant &p) { return p.get_default(qos, topic_name); }); \
    }
KOLT_DEFINE_GET_DEFAULT_W_TOPIC_NAME(topic, DDS_TopicQos)
KOLT_DEFINE_GET_DEFAULT_W_TOPIC_NAME(datawriter, DDS_DataWriterQos)
KOLT_DEFINE_GET_DEFAULT_W_TOPIC_NAME(datareader, DDS_DataReaderQos)
#undef KOLT_DEFINE_GET_DEFAULT_W_TOPIC_NAME
