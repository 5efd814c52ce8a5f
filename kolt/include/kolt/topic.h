/* SPDX-License-Identifier: Apache-2.0 */
/* Topics and content-filtered topics (DDS 1.4, 2.2.2.3).
 *
 * A content-filtered topic filters in the reader: samples that do not match are received and
 * dropped before they reach the reader's cache. The grammar is that of DDS 1.4, annex B, see
 * kolt/filter.h. Samples without data (an instance is disposed or has lost its writers) always
 * pass. A NULL `self` gives DDS_RETCODE_BAD_PARAMETER or NULL.
 */
#pragma once

#include "kolt/entity.h"
#include "kolt/qos.h"

KOLT_EXTERN_C_BEGIN

/* A callback that is NULL is not called. */
typedef struct DDS_TopicListener {
    void *listener_data;
    void (*on_inconsistent_topic)(void *listener_data, DDS_Topic *topic,
                                  const DDS_InconsistentTopicStatus *status);
} DDS_TopicListener;

/* Return the name of the topic, and the name under which its type is registered. Both belong to the
 * topic. */
KOLT_EXPORT const char *DDS_TopicDescription_get_name(DDS_TopicDescription *self);
KOLT_EXPORT const char *DDS_TopicDescription_get_type_name(DDS_TopicDescription *self);
/* Returns the participant that created it. */
KOLT_EXPORT DDS_DomainParticipant *DDS_TopicDescription_get_participant(DDS_TopicDescription *self);

/* Returns the same object as a topic description; NULL for NULL. */
KOLT_EXPORT DDS_TopicDescription *DDS_Topic_as_topicdescription(DDS_Topic *self);
/* Returns the topic behind a description; NULL for NULL and for a content-filtered topic. */
KOLT_EXPORT DDS_Topic *DDS_Topic_narrow(DDS_TopicDescription *self);
/* Copies the QoS into an initialised record of the caller's. OUT_OF_RESOURCES when memory runs
 * out. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Topic_get_qos(DDS_Topic *self, DDS_TopicQos *qos);
/* Replaces the QoS, which is copied. INCONSISTENT_POLICY, or IMMUTABLE_POLICY on an enabled topic
 * (and a log message that names the policy); UNSUPPORTED for a change of a policy that the standard
 * lets change but the engine does not (deadline, latency budget: policies by which readers and
 * writers are matched). */
KOLT_EXPORT DDS_ReturnCode_t DDS_Topic_set_qos(DDS_Topic *self, const DDS_TopicQos *qos);
/* Replaces the listener (the record is copied; NULL removes it). */
KOLT_EXPORT DDS_ReturnCode_t DDS_Topic_set_listener(DDS_Topic *self,
                                                    const DDS_TopicListener *listener,
                                                    DDS_StatusMask mask);
/* Reads the status into `*status` and resets its changes. The engine does not look for inconsistent
 * topics: the counts stay 0. */
KOLT_EXPORT DDS_ReturnCode_t
DDS_Topic_get_inconsistent_topic_status(DDS_Topic *self, DDS_InconsistentTopicStatus *status);

/* Returns the same object as a topic description; NULL for NULL. */
KOLT_EXPORT DDS_TopicDescription *DDS_ContentFilteredTopic_as_topicdescription(
    DDS_ContentFilteredTopic *self);
/* Returns the content-filtered topic behind a description; NULL for NULL and for a plain topic. */
KOLT_EXPORT DDS_ContentFilteredTopic *DDS_ContentFilteredTopic_narrow(DDS_TopicDescription *self);
/* Returns the topic that is filtered. */
KOLT_EXPORT DDS_Topic *DDS_ContentFilteredTopic_get_related_topic(DDS_ContentFilteredTopic *self);
/* Returns the filter expression, which belongs to the topic. */
KOLT_EXPORT const char *DDS_ContentFilteredTopic_get_filter_expression(
    DDS_ContentFilteredTopic *self);
/* Copies the parameters into `parameters`, an initialised sequence of the caller's.
 * OUT_OF_RESOURCES when they do not fit in. */
KOLT_EXPORT DDS_ReturnCode_t DDS_ContentFilteredTopic_get_expression_parameters(
    DDS_ContentFilteredTopic *self, DDS_StringSeq *parameters);
/* Replaces the parameters, which are copied, also while readers exist: samples that arrive from
 * then on are judged by the new ones. BAD_PARAMETER (and a log message) when they do not fit the
 * expression; the old ones then stay. */
KOLT_EXPORT DDS_ReturnCode_t DDS_ContentFilteredTopic_set_expression_parameters(
    DDS_ContentFilteredTopic *self, const DDS_StringSeq *parameters);

KOLT_EXTERN_C_END
