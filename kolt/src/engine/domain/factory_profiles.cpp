// SPDX-License-Identifier: Apache-2.0
// The factory's functions for QoS profiles.

#include "kolt/config_logger.h"
#include "kolt/domain.h"
#include "qos/profile_store.hpp"
#include "qos/qos_values.hpp"

namespace {

using kolt::qos::profile_store;

template <typename Qos>
DDS_ReturnCode_t get_from_profile(const DDS_DomainParticipantFactory *self, Qos *qos,
                                  const char *library_name, const char *profile_name,
                                  const char *topic_name, const char *method_name) {
    if (self == nullptr || qos == nullptr || library_name == nullptr || profile_name == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return profile_store().get_qos(*qos, library_name, profile_name, topic_name, method_name);
}

}  // namespace

DDS_ReturnCode_t DDS_DomainParticipantFactory_load_profiles(DDS_DomainParticipantFactory *self) {
    return self == nullptr ? DDS_RETCODE_BAD_PARAMETER : profile_store().load();
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_reload_profiles(DDS_DomainParticipantFactory *self) {
    return self == nullptr ? DDS_RETCODE_BAD_PARAMETER : profile_store().reload();
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_unload_profiles(DDS_DomainParticipantFactory *self) {
    return self == nullptr ? DDS_RETCODE_BAD_PARAMETER : profile_store().unload();
}

DDS_ReturnCode_t KOLT_DomainParticipantFactory_add_profiles(DDS_DomainParticipantFactory *self,
                                                            const char *url) {
    if (self == nullptr || url == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return profile_store().add_source(url);
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_get_qos_profile_libraries(
    DDS_DomainParticipantFactory *self, DDS_StringSeq *names) {
    if (self == nullptr || names == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    return profile_store().library_names(*names);
}

DDS_ReturnCode_t DDS_DomainParticipantFactory_get_qos_profiles(DDS_DomainParticipantFactory *self,
                                                               DDS_StringSeq *names,
                                                               const char *library_name) {
    if (self == nullptr || names == nullptr || library_name == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const DDS_ReturnCode_t result = profile_store().profile_names(*names, library_name);
    // Only a warning: applications ask in this way, too, whether there is such a library.
    if (result == DDS_RETCODE_BAD_PARAMETER) {
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_WARNING, __func__,
                         "no QoS library \"%s\"", library_name);
    }
    return result;
}

// Define the two families: without a topic name, and with one, which is required.
#define KOLT_DEFINE_FROM_PROFILE(entity, Qos)                                              \
    DDS_ReturnCode_t DDS_DomainParticipantFactory_get_##entity##_qos_from_profile(         \
        DDS_DomainParticipantFactory *self, Qos *qos, const char *library_name,            \
        const char *profile_name) {                                                        \
        return get_from_profile(self, qos, library_name, profile_name, nullptr, __func__); \
    }
#define KOLT_DEFINE_FROM_PROFILE_W_TOPIC_NAME(entity, Qos)                                      \
    KOLT_DEFINE_FROM_PROFILE(entity, Qos)                                                       \
    DDS_ReturnCode_t DDS_DomainParticipantFactory_get_##entity##_qos_from_profile_w_topic_name( \
        DDS_DomainParticipantFactory *self, Qos *qos, const char *library_name,                 \
        const char *profile_name, const char *topic_name) {                                     \
        if (topic_name == nullptr) {                                                            \
            return DDS_RETCODE_BAD_PARAMETER;                                                   \
        }                                                                                       \
        return get_from_profile(self, qos, library_name, profile_name, topic_name, __func__);   \
    }

KOLT_DEFINE_FROM_PROFILE(participant, DDS_DomainParticipantQos)
KOLT_DEFINE_FROM_PROFILE(publisher, DDS_PublisherQos)
KOLT_DEFINE_FROM_PROFILE(subscriber, DDS_SubscriberQos)
KOLT_DEFINE_FROM_PROFILE_W_TOPIC_NAME(topic, DDS_TopicQos)
KOLT_DEFINE_FROM_PROFILE_W_TOPIC_NAME(datawriter, DDS_DataWriterQos)
KOLT_DEFINE_FROM_PROFILE_W_TOPIC_NAME(datareader, DDS_DataReaderQos)

DDS_DomainParticipant *DDS_DomainParticipantFactory_create_participant_with_profile(
    DDS_DomainParticipantFactory *self, DDS_DomainId_t domain_id, const char *library_name,
    const char *profile_name, const DDS_DomainParticipantListener *listener, DDS_StatusMask mask) {
    kolt::qos::OwnedQos<DDS_DomainParticipantQos> qos;
    const DDS_ReturnCode_t result =
        get_from_profile(self, qos.get(), library_name, profile_name, nullptr, __func__);
    if (result != DDS_RETCODE_OK) {
        KOLT_Log_message(KOLT_CONFIG_LOG_CATEGORY_API, KOLT_CONFIG_LOG_LEVEL_ERROR, __func__,
                         "no QoS from the profile: %s", KOLT_ReturnCode_to_string(result));
        return nullptr;
    }
    return DDS_DomainParticipantFactory_create_participant(self, domain_id, qos.get(), listener,
                                                           mask);
}
