/* SPDX-License-Identifier: Apache-2.0 */
/* The participant factory and participants (DDS 1.4, 2.2.2.2). The conventions of publication.h
 * about QoS and listeners hold here, too. Every function may be called from any thread. */
#pragma once

#include "kolt/publication.h"
#include "kolt/qos.h"
#include "kolt/subscription.h"
#include "kolt/topic.h"
#include "kolt/type_plugin.h"

KOLT_EXTERN_C_BEGIN

/* The listener of a participant is called for the statuses of its topics, publishers, subscribers
 * and endpoints that their own listeners do not handle. Each part carries its own listener data. */
typedef struct DDS_DomainParticipantListener {
    DDS_TopicListener topic_listener;
    DDS_PublisherListener publisher_listener;
    DDS_SubscriberListener subscriber_listener;
} DDS_DomainParticipantListener;

/* ---- Factory ------------------------------------------------------------------------------- */

/* Returns the factory of the process; never NULL. */
KOLT_EXPORT DDS_DomainParticipantFactory *DDS_DomainParticipantFactory_get_instance(void);
/* Releases what the factory holds (profiles, defaults). PRECONDITION_NOT_MET while participants
 * exist. The factory can be used again afterwards. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_finalize_instance(void);
/* Creates a participant. NULL (and a log message) for a domain id outside 0 to 230 (RTPS 2.3,
 * 9.6.1.1), for inconsistent QoS, or when the engine cannot create its part. NULL or
 * DDS_PARTICIPANT_QOS_DEFAULT for `qos` means the default. */
KOLT_EXPORT DDS_DomainParticipant *DDS_DomainParticipantFactory_create_participant(
    DDS_DomainParticipantFactory *self, DDS_DomainId_t domain_id,
    const DDS_DomainParticipantQos *qos, const DDS_DomainParticipantListener *listener,
    DDS_StatusMask mask);
/* Marks that are recognised by their address; they hold no QoS. */
KOLT_EXPORT extern const DDS_DomainParticipantQos DDS_PARTICIPANT_QOS_DEFAULT;
KOLT_EXPORT extern const DDS_TopicQos DDS_TOPIC_QOS_DEFAULT;
KOLT_EXPORT extern const DDS_PublisherQos DDS_PUBLISHER_QOS_DEFAULT;
KOLT_EXPORT extern const DDS_SubscriberQos DDS_SUBSCRIBER_QOS_DEFAULT;
/* Deletes a participant. PRECONDITION_NOT_MET while it contains entities, or when it wraps an
 * engine participant (see KOLT_DomainParticipant_unwrap) or does not exist any more. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_delete_participant(
    DDS_DomainParticipantFactory *self, DDS_DomainParticipant *participant);
/* Returns any one participant of the domain; NULL when there is none. */
KOLT_EXPORT DDS_DomainParticipant *DDS_DomainParticipantFactory_lookup_participant(
    DDS_DomainParticipantFactory *self, DDS_DomainId_t domain_id);
/* Get and set the QoS of participants that are created without QoS of their own. It is the one that
 * was set, else the default of the loaded profiles, else that of the standard. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_default_participant_qos(
    DDS_DomainParticipantFactory *self, DDS_DomainParticipantQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_set_default_participant_qos(
    DDS_DomainParticipantFactory *self, const DDS_DomainParticipantQos *qos);
/* Get and set the factory's own QoS: whether participants are enabled at creation, and where
 * profiles are. A change takes effect from then on. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_qos(
    DDS_DomainParticipantFactory *self, DDS_DomainParticipantFactoryQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_set_qos(
    DDS_DomainParticipantFactory *self, const DDS_DomainParticipantFactoryQos *qos);

/* ---- QoS profiles (OMG DDS-XML 1.0, clause 7.3.2) -------------------------------------------- */

/* Load, load anew and forget the documents that the factory's profile QoS and the environment name.
 * load_profiles leaves documents alone that are loaded already. OK also when there is none. ERROR
 * (and log messages with file and line) when one cannot be read or is wrong; the others are loaded
 * all the same. */
KOLT_EXPORT DDS_ReturnCode_t
DDS_DomainParticipantFactory_load_profiles(DDS_DomainParticipantFactory *self);
KOLT_EXPORT DDS_ReturnCode_t
DDS_DomainParticipantFactory_reload_profiles(DDS_DomainParticipantFactory *self);
KOLT_EXPORT DDS_ReturnCode_t
DDS_DomainParticipantFactory_unload_profiles(DDS_DomainParticipantFactory *self);
/* Loads one more document, a path or a file URL, after the documents named above, whose profiles it
 * may refer to. ERROR (and a log message) when it cannot be read or is wrong; it is then not
 * loaded. Loading it again is OK and changes nothing; reload_profiles reads it anew,
 * unload_profiles forgets it. */
KOLT_EXPORT DDS_ReturnCode_t
KOLT_DomainParticipantFactory_add_profiles(DDS_DomainParticipantFactory *self, const char *url);
/* Copy the names of the libraries, and of the profiles of a library (BAD_PARAMETER when there is no
 * such library; the sequence is then empty). `names` is an initialised sequence of the caller's. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_qos_profile_libraries(
    DDS_DomainParticipantFactory *self, DDS_StringSeq *names);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_qos_profiles(
    DDS_DomainParticipantFactory *self, DDS_StringSeq *names, const char *library_name);
/* Get the QoS of a profile into an initialised record. A profile that does not mention the entity
 * gives the default. For topics, writers and readers the forms with a topic name choose the first
 * element whose `topic_filter` matches. BAD_PARAMETER when there is no such library or profile; the
 * record is then unchanged. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_participant_qos_from_profile(
    DDS_DomainParticipantFactory *self, DDS_DomainParticipantQos *qos, const char *library_name,
    const char *profile_name);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_publisher_qos_from_profile(
    DDS_DomainParticipantFactory *self, DDS_PublisherQos *qos, const char *library_name,
    const char *profile_name);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_subscriber_qos_from_profile(
    DDS_DomainParticipantFactory *self, DDS_SubscriberQos *qos, const char *library_name,
    const char *profile_name);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_topic_qos_from_profile(
    DDS_DomainParticipantFactory *self, DDS_TopicQos *qos, const char *library_name,
    const char *profile_name);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_topic_qos_from_profile_w_topic_name(
    DDS_DomainParticipantFactory *self, DDS_TopicQos *qos, const char *library_name,
    const char *profile_name, const char *topic_name);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(
    DDS_DomainParticipantFactory *self, DDS_DataWriterQos *qos, const char *library_name,
    const char *profile_name);
KOLT_EXPORT DDS_ReturnCode_t
DDS_DomainParticipantFactory_get_datawriter_qos_from_profile_w_topic_name(
    DDS_DomainParticipantFactory *self, DDS_DataWriterQos *qos, const char *library_name,
    const char *profile_name, const char *topic_name);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipantFactory_get_datareader_qos_from_profile(
    DDS_DomainParticipantFactory *self, DDS_DataReaderQos *qos, const char *library_name,
    const char *profile_name);
KOLT_EXPORT DDS_ReturnCode_t
DDS_DomainParticipantFactory_get_datareader_qos_from_profile_w_topic_name(
    DDS_DomainParticipantFactory *self, DDS_DataReaderQos *qos, const char *library_name,
    const char *profile_name, const char *topic_name);
/* Creates a participant with the QoS of a profile; NULL also when there is no such profile. */
KOLT_EXPORT DDS_DomainParticipant *DDS_DomainParticipantFactory_create_participant_with_profile(
    DDS_DomainParticipantFactory *self, DDS_DomainId_t domain_id, const char *library_name,
    const char *profile_name, const DDS_DomainParticipantListener *listener, DDS_StatusMask mask);

/* ---- Participants of applications that use the engine directly ----------------------------- */

/* Wraps a participant that the application created with the engine (its entity handle). The wrapper
 * is made once per handle and can be used like any participant; the engine's participant stays the
 * application's and must outlive it. NULL (and a log message) when the handle is not that of a
 * participant. */
KOLT_EXPORT DDS_DomainParticipant *KOLT_DomainParticipant_wrap(int32_t engine_participant);
/* Deletes the wrapper, not the participant. PRECONDITION_NOT_MET while it contains entities. */
KOLT_EXPORT DDS_ReturnCode_t KOLT_DomainParticipant_unwrap(DDS_DomainParticipant *self);
/* Returns the engine's handle of a participant; 0 or less for NULL. */
KOLT_EXPORT int32_t KOLT_DomainParticipant_engine_handle(DDS_DomainParticipant *self);

/* ---- Participant --------------------------------------------------------------------------- */

/* Returns the factory that owns a participant; NULL for NULL. */
KOLT_EXPORT DDS_DomainParticipantFactory *DDS_DomainParticipant_get_participant_factoryI(
    DDS_DomainParticipant *self);
/* Returns the domain id; 0 for NULL. */
KOLT_EXPORT DDS_DomainId_t DDS_DomainParticipant_get_domain_id(DDS_DomainParticipant *self);
/* Copies the QoS into an initialised record. `wire_protocol` holds the identifiers in force; zeros
 * while the participant is disabled. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_get_qos(DDS_DomainParticipant *self,
                                                           DDS_DomainParticipantQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_set_qos(DDS_DomainParticipant *self,
                                                           const DDS_DomainParticipantQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_set_listener(
    DDS_DomainParticipant *self, const DDS_DomainParticipantListener *listener,
    DDS_StatusMask mask);

/* Makes a type known under a name. The plugin record is copied. The same plugin under the same name
 * again is OK; another type under a name that is taken is PRECONDITION_NOT_MET. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_register_type(DDS_DomainParticipant *self,
                                                                 const char *type_name,
                                                                 const KOLT_TypePlugin *plugin,
                                                                 void *registration_data);
/* Forgets a type. PRECONDITION_NOT_MET while topics of the type exist; BAD_PARAMETER for an unknown
 * name. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_unregister_type(DDS_DomainParticipant *self,
                                                                   const char *type_name);

/* Creates a topic. NULL (and a log message) when the type is not registered, the name is taken or
 * not allowed (a name is made of letters, digits, '_' and '/', and begins neither with a digit nor
 * with "DCPS"), or the QoS is inconsistent. */
KOLT_EXPORT DDS_Topic *DDS_DomainParticipant_create_topic(
    DDS_DomainParticipant *self, const char *topic_name, const char *type_name,
    const DDS_TopicQos *qos, const DDS_TopicListener *listener, DDS_StatusMask mask);
/* Deletes a topic. PRECONDITION_NOT_MET while readers, writers or content-filtered topics use
 * it. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_delete_topic(DDS_DomainParticipant *self,
                                                                DDS_Topic *topic);
/* Creates a content-filtered topic. NULL (and a log message, with the position) for a wrong filter
 * expression or parameter, a topic of another participant, or a name that is taken.
 * `expression_parameters` may be NULL when the expression uses none; expression and parameters are
 * copied. See kolt/filter.h for the grammar. It is enabled with its topic. */
KOLT_EXPORT DDS_ContentFilteredTopic *DDS_DomainParticipant_create_contentfilteredtopic(
    DDS_DomainParticipant *self, const char *name, DDS_Topic *related_topic,
    const char *filter_expression, const DDS_StringSeq *expression_parameters);
/* Deletes a content-filtered topic. PRECONDITION_NOT_MET while readers use it. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_delete_contentfilteredtopic(
    DDS_DomainParticipant *self, DDS_ContentFilteredTopic *topic);
/* Returns the topic or content-filtered topic of that name in this participant; NULL when there is
 * none. */
KOLT_EXPORT DDS_TopicDescription *DDS_DomainParticipant_lookup_topicdescription(
    DDS_DomainParticipant *self, const char *name);

/* Create publishers and subscribers. NULL (and a log message) for inconsistent QoS or no memory.
 * With NULL for `qos`, or the mark, the participant's default is used. */
KOLT_EXPORT DDS_Publisher *DDS_DomainParticipant_create_publisher(
    DDS_DomainParticipant *self, const DDS_PublisherQos *qos, const DDS_PublisherListener *listener,
    DDS_StatusMask mask);
/* Deletes a publisher. PRECONDITION_NOT_MET while it has writers. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_delete_publisher(DDS_DomainParticipant *self,
                                                                    DDS_Publisher *publisher);
KOLT_EXPORT DDS_Subscriber *DDS_DomainParticipant_create_subscriber(
    DDS_DomainParticipant *self, const DDS_SubscriberQos *qos,
    const DDS_SubscriberListener *listener, DDS_StatusMask mask);
/* Deletes a subscriber. PRECONDITION_NOT_MET while it has readers. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_delete_subscriber(DDS_DomainParticipant *self,
                                                                     DDS_Subscriber *subscriber);
/* Deletes everything in the participant, in the right order. PRECONDITION_NOT_MET when a reader has
 * loans out: it stays, and so do its subscriber and topic. */
KOLT_EXPORT DDS_ReturnCode_t
DDS_DomainParticipant_delete_contained_entities(DDS_DomainParticipant *self);
/* True when the handle is that of a topic, publisher, subscriber, writer or reader in this
 * participant. */
KOLT_EXPORT DDS_Boolean DDS_DomainParticipant_contains_entity(DDS_DomainParticipant *self,
                                                              DDS_InstanceHandle_t handle);
/* Asserts the liveliness of the writers whose liveliness is MANUAL_BY_PARTICIPANT. NOT_ENABLED. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_assert_liveliness(DDS_DomainParticipant *self);
/* Gets the time of the system clock, by which samples are stamped. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_get_current_time(DDS_DomainParticipant *self,
                                                                    DDS_Time_t *current_time);

/* Get and set the default QoS of what the participant creates. The forms with a topic name take the
 * loaded profiles' defaults (`is_default_qos`, `topic_filter`) for that name into account. */
KOLT_EXPORT DDS_ReturnCode_t
DDS_DomainParticipant_get_default_publisher_qos(DDS_DomainParticipant *self, DDS_PublisherQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_set_default_publisher_qos(
    DDS_DomainParticipant *self, const DDS_PublisherQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_get_default_subscriber_qos(
    DDS_DomainParticipant *self, DDS_SubscriberQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_set_default_subscriber_qos(
    DDS_DomainParticipant *self, const DDS_SubscriberQos *qos);
KOLT_EXPORT DDS_ReturnCode_t
DDS_DomainParticipant_get_default_topic_qos(DDS_DomainParticipant *self, DDS_TopicQos *qos);
KOLT_EXPORT DDS_ReturnCode_t
DDS_DomainParticipant_set_default_topic_qos(DDS_DomainParticipant *self, const DDS_TopicQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_get_default_topic_qos_w_topic_name(
    DDS_DomainParticipant *self, DDS_TopicQos *qos, const char *topic_name);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_get_default_datawriter_qos(
    DDS_DomainParticipant *self, DDS_DataWriterQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_set_default_datawriter_qos(
    DDS_DomainParticipant *self, const DDS_DataWriterQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_get_default_datawriter_qos_w_topic_name(
    DDS_DomainParticipant *self, DDS_DataWriterQos *qos, const char *topic_name);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_get_default_datareader_qos(
    DDS_DomainParticipant *self, DDS_DataReaderQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_set_default_datareader_qos(
    DDS_DomainParticipant *self, const DDS_DataReaderQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DomainParticipant_get_default_datareader_qos_w_topic_name(
    DDS_DomainParticipant *self, DDS_DataReaderQos *qos, const char *topic_name);

KOLT_EXTERN_C_END
