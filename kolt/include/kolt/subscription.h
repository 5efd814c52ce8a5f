/* SPDX-License-Identifier: Apache-2.0 */
/* Subscribers and data readers (DDS 1.4, 2.2.2.5). The conventions of publication.h hold here, too.
 *
 * Samples lie serialised in the reader's cache; reading makes records of them. A sample that cannot
 * be deserialised is dropped with a log message, and the others are delivered.
 */
#pragma once

#include "kolt/condition.h"
#include "kolt/entity.h"
#include "kolt/publication.h"
#include "kolt/qos.h"
#include "kolt/topic.h"

KOLT_EXTERN_C_BEGIN

/* ---- Listeners: a callback that is NULL is not called --------------------------------------- */

typedef struct DDS_DataReaderListener {
    void *listener_data;
    void (*on_requested_deadline_missed)(void *listener_data, DDS_DataReader *reader,
                                         const DDS_RequestedDeadlineMissedStatus *status);
    void (*on_requested_incompatible_qos)(void *listener_data, DDS_DataReader *reader,
                                          const DDS_RequestedIncompatibleQosStatus *status);
    void (*on_sample_rejected)(void *listener_data, DDS_DataReader *reader,
                               const DDS_SampleRejectedStatus *status);
    void (*on_liveliness_changed)(void *listener_data, DDS_DataReader *reader,
                                  const DDS_LivelinessChangedStatus *status);
    void (*on_data_available)(void *listener_data, DDS_DataReader *reader);
    void (*on_subscription_matched)(void *listener_data, DDS_DataReader *reader,
                                    const DDS_SubscriptionMatchedStatus *status);
    void (*on_sample_lost)(void *listener_data, DDS_DataReader *reader,
                           const DDS_SampleLostStatus *status);
} DDS_DataReaderListener;

/* The listener of a subscriber is called for the statuses of its readers that their own listeners
 * do not handle. */
typedef struct DDS_SubscriberListener {
    DDS_DataReaderListener reader_listener;
    void (*on_data_on_readers)(void *listener_data, DDS_Subscriber *subscriber);
} DDS_SubscriberListener;

/* ---- Subscriber ---------------------------------------------------------------------------- */

/* Creates a reader of a topic or content-filtered topic. NULL (and a log message) for a NULL or
 * foreign topic, inconsistent QoS, a representation that the type does not allow, or no memory.
 * Delete it with DDS_Subscriber_delete_datareader. `qos` as for DDS_Publisher_create_datawriter. */
KOLT_EXPORT DDS_DataReader *DDS_Subscriber_create_datareader(DDS_Subscriber *self,
                                                             DDS_TopicDescription *topic,
                                                             const DDS_DataReaderQos *qos,
                                                             const DDS_DataReaderListener *listener,
                                                             DDS_StatusMask mask);
/* Marks that are recognised by their address; they hold no QoS. */
KOLT_EXPORT extern const DDS_DataReaderQos DDS_DATAREADER_QOS_DEFAULT;
KOLT_EXPORT extern const DDS_DataReaderQos DDS_DATAREADER_QOS_USE_TOPIC_QOS;
/* Deletes a reader. PRECONDITION_NOT_MET when it does not belong to this subscriber, has loans out,
 * or has conditions. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Subscriber_delete_datareader(DDS_Subscriber *self,
                                                              DDS_DataReader *reader);
/* Deletes all readers of the subscriber with their conditions, attached ones included.
 * PRECONDITION_NOT_MET when a reader has loans out; that one stays. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Subscriber_delete_contained_entities(DDS_Subscriber *self);
/* Returns any one reader of the subscriber that was created for a topic description of this name;
 * NULL when there is none. */
KOLT_EXPORT DDS_DataReader *DDS_Subscriber_lookup_datareader(DDS_Subscriber *self,
                                                             const char *topic_name);
KOLT_EXPORT DDS_ReturnCode_t DDS_Subscriber_get_qos(DDS_Subscriber *self, DDS_SubscriberQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_Subscriber_set_qos(DDS_Subscriber *self,
                                                    const DDS_SubscriberQos *qos);
/* Replaces the listener (the record is copied; NULL removes it). It is called for changes from now
 * on. While `on_data_on_readers` is handled, readers' `on_data_available` is called only
 * through DDS_Subscriber_notify_datareaders. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Subscriber_set_listener(DDS_Subscriber *self,
                                                         const DDS_SubscriberListener *listener,
                                                         DDS_StatusMask mask);
/* Get and set the QoS of readers that are created without QoS of their own. Setting gives
 * INCONSISTENT_POLICY for QoS that no reader could have. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Subscriber_get_default_datareader_qos(DDS_Subscriber *self,
                                                                       DDS_DataReaderQos *qos);
KOLT_EXPORT DDS_ReturnCode_t
DDS_Subscriber_set_default_datareader_qos(DDS_Subscriber *self, const DDS_DataReaderQos *qos);
/* Replaces the policies of `reader_qos` that topics have, too, by those of `topic_qos`.
 * OUT_OF_RESOURCES when memory runs out. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Subscriber_copy_from_topic_qos(DDS_Subscriber *self,
                                                                DDS_DataReaderQos *reader_qos,
                                                                const DDS_TopicQos *topic_qos);
/* Lets on_data_available be called, on the listener thread, for each reader that has data for which no
 * listener was called yet. NOT_ENABLED. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Subscriber_notify_datareaders(DDS_Subscriber *self);
/* Returns the participant that created it. */
KOLT_EXPORT DDS_DomainParticipant *DDS_Subscriber_get_participant(DDS_Subscriber *self);

/* ---- Data reader --------------------------------------------------------------------------- */

KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_get_qos(DDS_DataReader *self, DDS_DataReaderQos *qos);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_set_qos(DDS_DataReader *self,
                                                    const DDS_DataReaderQos *qos);
/* Replaces the listener (the record is copied; NULL removes it). When a status in `mask` has
 * changed already (data arrived before the listener came), its callback is called now, on the
 * listener thread. OUT_OF_RESOURCES, and the listener as it was, when that cannot be started. A NULL
 * reader is an absent reader and gives OK: there is nothing to listen to. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_set_listener(DDS_DataReader *self,
                                                         const DDS_DataReaderListener *listener,
                                                         DDS_StatusMask mask);
/* Returns the listener in force; all members are NULL when there is none. */
KOLT_EXPORT DDS_DataReaderListener DDS_DataReader_get_listener(DDS_DataReader *self);
/* Return the topic description that the reader was created for, and the subscriber that created
 * it. */
KOLT_EXPORT DDS_TopicDescription *DDS_DataReader_get_topicdescription(DDS_DataReader *self);
KOLT_EXPORT DDS_Subscriber *DDS_DataReader_get_subscriber(DDS_DataReader *self);
/* Returns the endpoint type name of the reader's type plugin, by which typed readers narrow. It
 * belongs to the plugin. */
KOLT_EXPORT const char *DDS_DataReader_get_endpoint_type_name(DDS_DataReader *self);
/* Deletes all conditions; PRECONDITION_NOT_MET, and nothing deleted, when one is attached to a
 * waitset. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_delete_contained_entities(DDS_DataReader *self);
/* A volatile reader gets no history: OK at once. For the others UNSUPPORTED (and a log message):
 * the engine does not tell when the history of the matched writers has arrived. */
KOLT_EXPORT DDS_ReturnCode_t
DDS_DataReader_wait_for_historical_data(DDS_DataReader *self, const DDS_Duration_t *max_wait);
KOLT_EXPORT DDS_ReturnCode_t
DDS_DataReader_get_sample_rejected_status(DDS_DataReader *self, DDS_SampleRejectedStatus *status);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_get_liveliness_changed_status(
    DDS_DataReader *self, DDS_LivelinessChangedStatus *status);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_get_requested_deadline_missed_status(
    DDS_DataReader *self, DDS_RequestedDeadlineMissedStatus *status);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_get_requested_incompatible_qos_status(
    DDS_DataReader *self, DDS_RequestedIncompatibleQosStatus *status);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_get_subscription_matched_status(
    DDS_DataReader *self, DDS_SubscriptionMatchedStatus *status);
/* Samples that never came, and those that cannot be deserialised, which a read passes over. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_get_sample_lost_status(DDS_DataReader *self,
                                                                   DDS_SampleLostStatus *status);
/* Copies the instance handles of the writers that the reader is matched with. OUT_OF_RESOURCES when
 * `handles` has no room and cannot grow, NOT_ENABLED. */
KOLT_EXPORT DDS_ReturnCode_t
DDS_DataReader_get_matched_publications(DDS_DataReader *self, DDS_InstanceHandleSeq *handles);

/* Create conditions, which belong to the reader. NULL (and a log message) for a mask that selects
 * nothing, a wrong query expression, a disabled reader, or no memory; and for a query condition
 * beyond 31 of a reader or 256 of the process. Samples without data satisfy every query. */
KOLT_EXPORT DDS_ReadCondition *DDS_DataReader_create_readcondition(
    DDS_DataReader *self, DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,
    DDS_InstanceStateMask instance_states);
KOLT_EXPORT DDS_QueryCondition *DDS_DataReader_create_querycondition(
    DDS_DataReader *self, DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,
    DDS_InstanceStateMask instance_states, const char *query_expression,
    const DDS_StringSeq *query_parameters);
/* Deletes a read or query condition. PRECONDITION_NOT_MET when it does not belong to this reader or
 * is attached to a waitset. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_delete_readcondition(DDS_DataReader *self,
                                                                 DDS_ReadCondition *condition);

/* Selects the instances that a read or take is about. */
typedef enum KOLT_ReadScope KOLT_ENUM_BASE {
    KOLT_READ_ALL = 0,          /* every instance */
    KOLT_READ_INSTANCE = 1,     /* the instance `handle` */
    KOLT_READ_NEXT_INSTANCE = 2 /* the first instance with data after `handle` */
} KOLT_ReadScope;
typedef struct KOLT_ReadSelection {
    DDS_Boolean take;
    KOLT_ReadScope scope;
    DDS_InstanceHandle_t handle;
    DDS_ReadCondition *condition; /* NULL: the three masks count */
    DDS_SampleStateMask sample_states;
    DDS_ViewStateMask view_states;
    DDS_InstanceStateMask instance_states;
    DDS_Long max_samples; /* 1 or more, or DDS_LENGTH_UNLIMITED */
} KOLT_ReadSelection;

/* Reads or takes samples untyped; all typed reads and takes end here (DDS 1.4, 2.2.2.5.3.8).
 *
 * The four `data_` arguments describe the caller's data sequence:
 *   - when it owns a buffer (maximum above 0), samples of `element_size` bytes are copied into it,
 *     at most its maximum;
 *   - when its maximum is 0, samples are loaned: `*loan` becomes an array of `*count` sample
 *     pointers, `info_seq` is loaned, too, and both go back through
 *     DDS_DataReader_return_loan_untypedI. Any number of loans may be out at once.
 *
 * The order of instances in KOLT_READ_NEXT_INSTANCE is that of the handles' numbers;
 * DDS_HANDLE_NIL comes before all.
 *
 * A sample that cannot be deserialised is dropped, with a log message, by the first read or take that
 * comes upon it. It may leave a read with fewer samples than max_samples, but never with none while
 * there are others to read.
 *
 * `*loan` is NULL and `*count` 0 unless the result is OK. Other results:
 *   - NO_DATA: no sample is selected, or the instance has none;
 *   - BAD_PARAMETER: a NULL, max_samples of 0 or below -1, a condition of another reader, or a
 *     handle that is not that of an instance;
 *   - PRECONDITION_NOT_MET: the sequences differ in length, maximum or ownership, or hold a loan,
 *     or max_samples exceeds the maximum of an owning one;
 *   - OUT_OF_RESOURCES, NOT_ENABLED. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_read_or_take_untypedI(
    DDS_DataReader *self, const KOLT_ReadSelection *selection, DDS_UnsignedLong data_length,
    DDS_UnsignedLong data_maximum, DDS_Boolean data_owned, void *data_contiguous_buffer,
    size_t element_size, void ***loan, DDS_UnsignedLong *count, DDS_SampleInfoSeq *info_seq);
/* Gives a loan back. PRECONDITION_NOT_MET when `loan`, which may be NULL, and the info sequence's
 * buffer are not those of one loan of this reader; both sequences then keep what they hold. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_return_loan_untypedI(DDS_DataReader *self, void **loan,
                                                                 DDS_UnsignedLong count,
                                                                 DDS_SampleInfoSeq *info_seq);
/* Reads or takes the next sample that was not read yet, as a copy in the caller's initialised
 * record. NO_DATA when there is none, NOT_ENABLED. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_read_or_take_next_sample_untypedI(DDS_DataReader *self,
                                                                              DDS_Boolean take,
                                                                              void *sample,
                                                                              DDS_SampleInfo *info);
/* Fills the key members of `key_holder`, an initialised record; the others stay. BAD_PARAMETER (and
 * a log message) for a handle that is not that of an instance, and for an unkeyed type;
 * NOT_ENABLED.
 *
 * An instance is known while the reader has samples of it, taken ones not counted, or a writer of
 * it lives and has not unregistered it: also when it is disposed and nothing is left to read. When
 * the last writer has gone and the last sample was taken, the instance is gone: its handle then
 * gives BAD_PARAMETER, its key no handle, and should it come back it is a new instance, under
 * another handle. (Only an instance that a writer of this process has registered stays known
 * until that writer unregisters it or is deleted.) An application that wants to know which instance has gone therefore keeps the key beside
 * the handle, or takes it from the sample that tells of the end: a sample without data
 * (`valid_data` is false) has its key members set, and only these. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_get_key_value(DDS_DataReader *self, void *key_holder,
                                                          DDS_InstanceHandle_t handle);
/* Returns the handle of the key's instance; DDS_HANDLE_NIL when the reader does not know it (yet, or
 * any more: see DDS_DataReader_get_key_value), and for an unkeyed type. */
KOLT_EXPORT DDS_InstanceHandle_t DDS_DataReader_lookup_instance(DDS_DataReader *self,
                                                                const void *key_holder);
/* Sets `*is_data_consistent` to true: loaned samples are copies that nothing overwrites. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_is_data_consistent(DDS_DataReader *self,
                                                               DDS_Boolean *is_data_consistent,
                                                               const void *sample,
                                                               const DDS_SampleInfo *info);
/* Give UNSUPPORTED (and a log message) once the arguments are checked: the engine does not let
 * samples be injected on behalf of remote writers. */
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_add_sample_to_remote_writer_queue(
    DDS_DataReader *self, const void *sample, const DDS_WriteParams_t *params);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_add_dispose_to_remote_writer_queue(
    DDS_DataReader *self, const void *sample, const DDS_WriteParams_t *params);
KOLT_EXPORT DDS_ReturnCode_t DDS_DataReader_add_unregister_to_remote_writer_queue(
    DDS_DataReader *self, const void *sample, const DDS_WriteParams_t *params);

KOLT_EXTERN_C_END
