/* SPDX-License-Identifier: Apache-2.0 */
/* The DDS entities of the logger: participant, topics, publisher, writers, subscriber, reader.
 *
 * The record is made when the logger is created and stays unchanged until the logger is finalised.
 * The accessors read one field and take no lock, so any thread may call them. Unless a comment says
 * otherwise, `self` must not be NULL.
 */
#pragma once

#include "kolt/domain.h"
#include "vur_dl/DistLogger.h"
#include "vur_dl/Options.h"
#include "vur_dl/distlogSupport.h"
#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

typedef struct VUR_DL_DDSEntities VUR_DL_DDSEntities;

#define VUR_DL_LOG_TOPIC_NAME "vur/distlog"
#define VUR_DL_STATE_TOPIC_NAME "vur/distlog/administration/state"
#define VUR_DL_COMMAND_REQUEST_TOPIC_NAME "vur/distlog/administration/command_request"
#define VUR_DL_COMMAND_RESPONSE_TOPIC_NAME "vur/distlog/administration/command_response"
#define VUR_DL_LOG_TYPE_NAME "com::vur::dl::LogMessage"
#define VUR_DL_STATE_TYPE_NAME "com::vur::dl::admin::State"
#define VUR_DL_COMMAND_REQUEST_TYPE_NAME "com::vur::dl::admin::CommandRequest"
#define VUR_DL_COMMAND_RESPONSE_TYPE_NAME "com::vur::dl::admin::CommandResponse"

/* Creates all entities as the logger's options ask. Returns the record, to be released with
 * VUR_DL_DDSEntities_destroy, or NULL, with a printed line, on failure. */
VUR_DL_EXPORT VUR_DL_DDSEntities *VUR_DL_DDSEntities_create(VUR_DL_DistLogger *distLogger,
                                                            DDS_DomainParticipantFactory *factory);
/* Deletes the entities and frees the record. NULL is allowed. */
VUR_DL_EXPORT void VUR_DL_DDSEntities_destroy(VUR_DL_DDSEntities *self);
/* Fills the record with zeros. Prints a line when `self` is NULL. */
VUR_DL_EXPORT void VUR_DL_DDSEntities_initialize(VUR_DL_DDSEntities *self);
/* Deletes the entities that the record created. Entities that it was handed or looked up stay. Goes
 * on after a failure, with a printed line, and returns the result of the last deletion. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_DDSEntities_deleteContainedEntities(VUR_DL_DDSEntities *self);

/* The following functions fill in the QoS that each entity is created with: the one of the options'
 * profile if that exists, else the default one, with the logger's own needs on top. The caller
 * finalises the filled record. An error of the middleware is returned as it is. Topic names are
 * compared without regard to case. */
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_DDSEntities_getDomainParticipantQos(
    VUR_DL_DDSEntities *self, DDS_DomainParticipantQos *qos, const VUR_DL_Options *options);
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_DDSEntities_getSubscriberQos(VUR_DL_DDSEntities *self,
                                                                   DDS_SubscriberQos *qos);
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_DDSEntities_getPublisherQos(VUR_DL_DDSEntities *self,
                                                                  DDS_PublisherQos *qos);
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_DDSEntities_getTopicQos(VUR_DL_DDSEntities *self,
                                                              DDS_TopicQos *qos,
                                                              const char *topicName);
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_DDSEntities_getDataWriterQos(VUR_DL_DDSEntities *self,
                                                                   DDS_DataWriterQos *qos,
                                                                   const char *topicName);
VUR_DL_EXPORT DDS_ReturnCode_t VUR_DL_DDSEntities_getDataReaderQos(VUR_DL_DDSEntities *self,
                                                                   DDS_DataReaderQos *qos,
                                                                   const char *topicName);
/* Returns a record without entities. With it the functions above tell the QoS that a logger with
 * these options would create its entities with, without creating a logger.
 *
 * The options and their strings are borrowed. The functions for topics, writers, readers,
 * publishers and subscribers take their defaults from the options' participant. That participant
 * may be one that is not enabled, so that nothing reaches the network. Without a participant those
 * functions fail with BAD_PARAMETER, unless the options' profile exists.
 *
 * Returns NULL, with a printed line, for NULL arguments and when memory runs out. Release the
 * record with VUR_DL_DDSEntities_destroy. */
VUR_DL_EXPORT VUR_DL_DDSEntities *VUR_DL_DDSEntities_createForQos(
    DDS_DomainParticipantFactory *factory, const VUR_DL_Options *options);
/* Returns 1 when the factory knows the library and the profile in it, by their exact names; else
 * 0, also for names that are NULL or empty. */
VUR_DL_EXPORT int VUR_DL_DDSEntities_doesQosLibraryAndProfileExist(VUR_DL_DDSEntities *self,
                                                                   const char *library,
                                                                   const char *profile);
/* Returns 1 once the first State sample has been written, else 0. The first reader that matches
 * triggers that sample. The argument is not used and may be NULL. */
VUR_DL_EXPORT int VUR_DL_DDSEntities_hasInitialStateBeenSent(const VUR_DL_DDSEntities *self);

/* Return the first and the second 4 bytes of the participant's RTPS GUID prefix as signed numbers.
 */
VUR_DL_EXPORT int VUR_DL_DDSEntities_getRtpsHostId(const VUR_DL_DDSEntities *self);
VUR_DL_EXPORT int VUR_DL_DDSEntities_getRtpsAppId(const VUR_DL_DDSEntities *self);
VUR_DL_EXPORT DDS_DomainParticipant *VUR_DL_DDSEntities_getDomainParticipant(
    const VUR_DL_DDSEntities *self);
VUR_DL_EXPORT VUR_DL_LogMessageDataWriter *VUR_DL_DDSEntities_getLogMessageWriter(
    const VUR_DL_DDSEntities *self);
VUR_DL_EXPORT VUR_DL_ADMIN_StateDataWriter *VUR_DL_DDSEntities_getStateWriter(
    const VUR_DL_DDSEntities *self);
/* Return NULL when remote administration is disabled. */
VUR_DL_EXPORT VUR_DL_ADMIN_CommandRequestDataReader *VUR_DL_DDSEntities_getCommandRequestReader(
    const VUR_DL_DDSEntities *self);
VUR_DL_EXPORT VUR_DL_ADMIN_CommandResponseDataWriter *VUR_DL_DDSEntities_getCommandResponseWriter(
    const VUR_DL_DDSEntities *self);

/* The callbacks of the State writer; `distLogger` is the logger. The first reader that matches
 * triggers the first State sample. That is a deferred write: the middleware asks for the data when
 * it sends them, and gets the logger's live State. */
VUR_DL_EXPORT void VUR_DL_DDSEntities_stateWriterOnPublicationMatched(
    void *distLogger, DDS_DataWriter *writer, const DDS_PublicationMatchedStatus *status);
VUR_DL_EXPORT void *VUR_DL_DDSEntities_stateWriterOnDataRequest(void *distLogger,
                                                                DDS_DataWriter *writer,
                                                                const DDS_Cookie_t *cookie);
VUR_DL_EXPORT void VUR_DL_DDSEntities_stateWriterOnDataReturn(void *distLogger,
                                                              DDS_DataWriter *writer, void *sample,
                                                              const DDS_Cookie_t *cookie);

VUR_DL_EXTERN_C_END
