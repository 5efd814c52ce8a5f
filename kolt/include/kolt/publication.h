/* SPDX-License-Identifier: Apache-2.0 */
/* Publishers and data writers (DDS 1.4, 2.2.2.4).
 *
 * Conventions of this header, beside those of infrastructure.h and entity.h:
 *  1. Getters of QoS copy into an initialised record of the caller's. Setters give
 *     INCONSISTENT_POLICY, or IMMUTABLE_POLICY on an enabled entity, with a log message that names
 *     the policy; and UNSUPPORTED for a change that the standard allows but the engine does not
 *     make (partition, deadline, latency budget: policies by which readers and writers are
 *     matched).
 *  2. Getters of a status read it into the caller's record and reset its changes. A disabled entity
 *     gives zeros.
 *  3. Durations of 0 do not wait, the infinite one waits without limit, and negative ones give
 *     BAD_PARAMETER.
 */
#pragma once

#include "kolt/entity.h"
#include "kolt/qos.h"
#include "kolt/topic.h"

KOLT_EXTERN_C_BEGIN

/* ---- Write parameters ---------------------------------------------------------------------- */

/* Carries the parameters of a write, dispose or (un)register beside the sample. With an invalid
 * source time stamp (the default; `sec` is negative) the time of the call is used; other time stamps
 * reach from 1970 to 2106 (seconds 0 to 4294967294), which is what a message can hold, and give
 * BAD_PARAMETER beyond. A cookie of length 0 stands for none. */
typedef struct DDS_WriteParams_t {
    DDS_Time_t source_timestamp;
    DDS_Cookie_t cookie;
    DDS_InstanceHandle_t handle;
} DDS_WriteParams_t;
/* No time stamp, no cookie, DDS_HANDLE_NIL. */
KOLT_EXPORT extern const DDS_WriteParams_t DDS_WRITEPARAMS_DEFAULT;

/* ---- Listeners ----------------------------------------------------------------------------- */

/* The property of a data writer that makes writes with a cookie deferred ones, when its value is
 * "true": see DDS_DataWriterListener. */
#define KOLT_DEFERRED_WRITE_PROPERTY "dds.data_writer.enable_deferred_write"

/* A callback that is NULL is not called.
 *
 * Deferred writes: with KOLT_DEFERRED_WRITE_PROPERTY set to "true", a write that carries a cookie
 * asks `on_data_request` for its data at the moment when the writer needs them, which is when it
 * serialises the sample for its history, and gives them back through `on_data_return`. The sample
 * that was passed to the write is not read and may be NULL. Both callbacks are called on the
 * writing thread, whatever the listener's mask, and only on the listener of the writer itself. */
typedef struct DDS_DataWriterListener {
    void *listener_data;
    void (*on_offered_deadline_missed)(void *listener_data, DDS_DataWriter *writer,
                                       const DDS_OfferedDeadlineMissedStatus *status);
    void (*on_offered_incompatible_qos)(void *listener_data, DDS_DataWriter *writer,
                                        const DDS_OfferedIncompatibleQosStatus *status);
    void (*on_liveliness_lost)(void *listener_data, DDS_DataWriter *writer,
                               const DDS_LivelinessLostStatus *status);
    void (*on_publication_matched)(void *listener_data, DDS_DataWriter *writer,
                                   const DDS_PublicationMatchedStatus *status);
    void *(*on_data_request)(void *listener_data, DDS_DataWriter *writer,
                             const DDS_Cookie_t *cookie);
    void (*on_data_return)(void *listener_data, DDS_DataWriter *writer, void *sample,
                           const DDS_Cookie_t *cookie);
} DDS_DataWriterListener;
/* The listener of a publisher is called for the statuses of its writers that their own listeners do
 * not handle. */
typedef DDS_DataWriterListener DDS_PublisherListener;

/* ---- Publisher ----------------------------------------------------------------------------- */

/* Creates a writer for a topic. NULL (and a log message) for inconsistent QoS, a representation
 * that the type does not allow, a topic of another participant, or no memory. Delete it with
 * DDS_Publisher_delete_datawriter. With NULL for `qos`, or DDS_DATAWRITER_QOS_DEFAULT, the
 * publisher's default is used; with DDS_DATAWRITER_QOS_USE_TOPIC_QOS that default with the topic's
 * policies copied in. The default is what was set for the publisher, else for the participant, else
 * what the loaded profiles say for the topic, else the standard's. */
KOLT_EXPORT DDS_DataWriter *DDS_Publisher_create_datawriter(DDS_Publisher *self, DDS_Topic *topic,
                                                            const DDS_DataWriterQos *qos,
                                                            const DDS_DataWriterListener *listener,
                                                            DDS_StatusMask mask);
/* Marks that are recognised by their address; they hold no QoS. */
KOLT_EXPORT extern const DDS_DataWriterQos DDS_DATAWRITER_QOS_DEFAULT;
KOLT_EXPORT extern const DDS_DataWriterQos DDS_DATAWRITER_QOS_USE_TOPIC_QOS;
/* Deletes a writer. PRECONDITION_NOT_MET when it does not belong to this publisher. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Publisher_delete_datawriter(DDS_Publisher *self,
                                                             DDS_DataWriter *writer);
/* Deletes all writers of the publisher. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Publisher_delete_contained_entities(DDS_Publisher *self);
/* Returns any one writer of the publisher for the topic name; NULL when there is none. */
KOLT_EXPORT DDS_DataWriter *DDS_Publisher_lookup_datawriter(DDS_Publisher *self,
                                                            const char *topic_name);
KOLT_EXPORT DDS_ReturnCode_t DDS_Publisher_get_qos(DDS_Publisher *self, DDS_PublisherQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_Publisher_set_qos(DDS_Publisher *self,
                                                   const DDS_PublisherQos *qos);
/* Replaces the listener (the record is copied; NULL removes it). It is called for changes from now
 * on. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Publisher_set_listener(DDS_Publisher *self,
                                                        const DDS_PublisherListener *listener,
                                                        DDS_StatusMask mask);
/* Get and set the QoS of writers that are created without QoS of their own. Setting gives
 * INCONSISTENT_POLICY for QoS that no writer could have. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Publisher_get_default_datawriter_qos(DDS_Publisher *self,
                                                                      DDS_DataWriterQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_Publisher_set_default_datawriter_qos(DDS_Publisher *self,
                                                                      const DDS_DataWriterQos *qos);
/* Replaces the policies of `writer_qos` that topics have, too, by those of `topic_qos`.
 * OUT_OF_RESOURCES when memory runs out. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Publisher_copy_from_topic_qos(DDS_Publisher *self,
                                                               DDS_DataWriterQos *writer_qos,
                                                               const DDS_TopicQos *topic_qos);
/* Waits until reliable readers have acknowledged everything that the publisher's writers wrote.
 * TIMEOUT when they have not within `max_wait`, NOT_ENABLED. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Publisher_wait_for_acknowledgments(DDS_Publisher *self,
                                                                    const DDS_Duration_t *max_wait);
/* Returns the participant that created it. */
KOLT_EXPORT DDS_DomainParticipant *DDS_Publisher_get_participant(DDS_Publisher *self);

/* ---- Data writer --------------------------------------------------------------------------- */

KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_get_qos(DDS_DataWriter *self, DDS_DataWriterQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_set_qos(DDS_DataWriter *self,
                                                    const DDS_DataWriterQos *qos);
/* Replaces the listener (the record is copied; NULL removes it). When a status in `mask` has
 * changed already (a reader matched before the listener came), its callback is called now, on the
 * listener thread. Waits for a deferred write in progress to give its data back, except when called
 * from its on_data_request or on_data_return. OUT_OF_RESOURCES, and the listener as it was, when the
 * listener thread cannot be started. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_set_listener(DDS_DataWriter *self,
                                                         const DDS_DataWriterListener *listener,
                                                         DDS_StatusMask mask);
/* Ends the writes of the writer, for good: one that waits for room, on whatever thread, ends, and it and
 * all later ones return TIMEOUT at once. For the time before a writer is deleted, which waits for a
 * write in progress. A write that waits for a reader of another process has then sent nothing; one that
 * waits for a reader of this process has reached all readers but those without room, and ends within
 * some 10 ms. May be called from any thread. BAD_PARAMETER for NULL. */
KOLT_EXPORT DDS_ReturnCode_t KOLT_DataWriter_end_writes(DDS_DataWriter *self);
/* Returns the listener in force; all members are NULL when there is none. */
KOLT_EXPORT DDS_DataWriterListener DDS_DataWriter_get_listener(DDS_DataWriter *self);
/* Return the topic that the writer was created for, and the publisher that created it. */
KOLT_EXPORT DDS_Topic *DDS_DataWriter_get_topic(DDS_DataWriter *self);
KOLT_EXPORT DDS_Publisher *DDS_DataWriter_get_publisher(DDS_DataWriter *self);
/* Returns the endpoint type name of the writer's type plugin, by which typed writers narrow. It
 * belongs to the plugin. */
KOLT_EXPORT const char *DDS_DataWriter_get_endpoint_type_name(DDS_DataWriter *self);
/* Waits until reliable readers have acknowledged everything written so far. TIMEOUT when they have
 * not within `max_wait`, NOT_ENABLED. */
KOLT_EXPORT DDS_ReturnCode_t
DDS_DataWriter_wait_for_acknowledgments(DDS_DataWriter *self, const DDS_Duration_t *max_wait);
/* Asserts manual liveliness (DDS 1.4, 2.2.2.4.2.22); writing asserts it as well. NOT_ENABLED. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_assert_liveliness(DDS_DataWriter *self);
KOLT_EXPORT DDS_ReturnCode_t
DDS_DataWriter_get_liveliness_lost_status(DDS_DataWriter *self, DDS_LivelinessLostStatus *status);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_get_offered_deadline_missed_status(
    DDS_DataWriter *self, DDS_OfferedDeadlineMissedStatus *status);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_get_offered_incompatible_qos_status(
    DDS_DataWriter *self, DDS_OfferedIncompatibleQosStatus *status);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_get_publication_matched_status(
    DDS_DataWriter *self, DDS_PublicationMatchedStatus *status);
/* Copies the instance handles of the readers that the writer is matched with. OUT_OF_RESOURCES when
 * `handles` has no room and cannot grow, NOT_ENABLED. */
KOLT_EXPORT DDS_ReturnCode_t
DDS_DataWriter_get_matched_subscriptions(DDS_DataWriter *self, DDS_InstanceHandleSeq *handles);

/* Samples are records of the writer's type. Writing: BAD_PARAMETER for a NULL sample or a handle of
 * another instance, NOT_ENABLED, TIMEOUT when room in the history does not come up in the writer's
 * max_blocking_time, ERROR when the sample cannot be serialised (a string longer than its bound).
 * `handle` may be DDS_HANDLE_NIL: the instance is then found by the sample's key. Writing registers
 * the instance. The sample is serialised before the function returns. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_write(DDS_DataWriter *self, const void *sample,
                                                  DDS_InstanceHandle_t handle);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_write_w_timestamp(DDS_DataWriter *self,
                                                              const void *sample,
                                                              DDS_InstanceHandle_t handle,
                                                              const DDS_Time_t *source_timestamp);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_write_w_params(DDS_DataWriter *self, const void *sample,
                                                           const DDS_WriteParams_t *params);
/* Registers the instance of the sample's key; again is allowed and gives the same handle, which is
 * valid until the instance is unregistered or the writer deleted. Nothing is sent, the time stamp has
 * no effect. DDS_HANDLE_NIL on failure and for unkeyed types. */
KOLT_EXPORT DDS_InstanceHandle_t DDS_DataWriter_register_instance(DDS_DataWriter *self,
                                                                  const void *sample);
KOLT_EXPORT DDS_InstanceHandle_t DDS_DataWriter_register_instance_w_timestamp(
    DDS_DataWriter *self, const void *sample, const DDS_Time_t *source_timestamp);
KOLT_EXPORT DDS_InstanceHandle_t DDS_DataWriter_register_instance_w_params(
    DDS_DataWriter *self, const void *sample, const DDS_WriteParams_t *params);
/* Unregistering says that this writer will not write the instance again, and by default disposes it
 * (writer_data_lifecycle); disposing says that the instance has ceased to be. With a handle the
 * sample may be NULL, otherwise its key members count. Results as for writing; PRECONDITION_NOT_MET
 * for a handle that is not that of a registered instance of the writer, for unregistering an
 * instance that is not registered, and for an unkeyed type. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_unregister_instance(DDS_DataWriter *self,
                                                                const void *sample,
                                                                DDS_InstanceHandle_t handle);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_unregister_instance_w_timestamp(
    DDS_DataWriter *self, const void *sample, DDS_InstanceHandle_t handle,
    const DDS_Time_t *source_timestamp);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_unregister_instance_w_params(
    DDS_DataWriter *self, const void *sample, const DDS_WriteParams_t *params);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_dispose(DDS_DataWriter *self, const void *sample,
                                                    DDS_InstanceHandle_t handle);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_dispose_w_timestamp(DDS_DataWriter *self,
                                                                const void *sample,
                                                                DDS_InstanceHandle_t handle,
                                                                const DDS_Time_t *source_timestamp);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_dispose_w_params(DDS_DataWriter *self,
                                                             const void *sample,
                                                             const DDS_WriteParams_t *params);
/* Fills the key members of `key_holder`, an initialised record. BAD_PARAMETER for a handle that is
 * not that of an instance of the writer, NOT_ENABLED. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_get_key_value(DDS_DataWriter *self, void *key_holder,
                                                          DDS_InstanceHandle_t handle);
/* Returns the handle of the key's instance; DDS_HANDLE_NIL when the writer does not know it. */
KOLT_EXPORT DDS_InstanceHandle_t DDS_DataWriter_lookup_instance(DDS_DataWriter *self,
                                                                const void *key_holder);
/* Create and free a sample of the writer's type, by its type plugin. NULL when memory runs out. */
KOLT_EXPORT void *DDS_DataWriter_create_data(DDS_DataWriter *self);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataWriter_delete_data(DDS_DataWriter *self, void *sample);

KOLT_EXTERN_C_END
