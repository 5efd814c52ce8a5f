/* SPDX-License-Identifier: Apache-2.0 */
/* Entities in general (DDS 1.4, 2.2.2.1), and the types of all of them.
 *
 *  1. Parents create and delete entities. A pointer to one is valid until the entity is deleted.
 *     The functions of an entity may be called from any thread; deleting it while another thread
 *     uses it is an error of the caller.
 *  2. An entity is enabled at creation when its parent is enabled and the parent's entity factory
 *     policy says so (the default), otherwise by DDS_Entity_enable. A disabled one has no
 *     counterpart in the network: QoS (immutable policies included), listener and conditions can be
 *     set, statuses stay at zero, and functions that need the network give
 *     DDS_RETCODE_NOT_ENABLED.
 *  3. Listener callbacks run on a thread of the participant's, the listener thread, which begins with
 *     the first listener: one at a time, in the order of what happened, with no lock of the engine's
 *     or KOLT's held. A callback may call every function, also those that create, write and delete,
 *     its own entity included. What changes again before its callback is called is told by one
 *     callback; so that of on_data_available takes until there are no more data. A callback that
 *     does not return holds up those of its participant and nothing else.
 *  4. A listener handles a status when the status is in its mask and the callback is not NULL.
 *     A status that an entity's own listener does not handle goes to the listener of its publisher
 *     or subscriber, and then to that of its participant. A status that none of them handles is
 *     kept until a getter or a later listener of the entity itself asks for it. A callback that is
 *     called resets the changes of its status, as a getter does (DDS 1.4, 2.2.4.1).
 *  5. Functions that replace or remove a listener, and those that delete an entity, wait for a
 *     callback of that listener or about that entity to end, except when called from a callback of
 *     the same participant: then none comes after it. They must not be called with a lock held that
 *     the callback takes; nor may callbacks of two participants wait so for each other.
 *  6. Statuses and their changes are read without waiting, beside a write that is blocked, too.
 *  7. Called on other threads are the data requests of deferred writes (publication.h), on the writing
 *     one, and the devices of the middleware's log (config_logger.h), on the one that logs.
 */
#pragma once

#include "kolt/status.h"

KOLT_EXTERN_C_BEGIN

struct KOLT_EntityImpl;
/* Begins the record of every entity. Its member is private to KOLT. */
typedef struct DDS_Entity {
    struct KOLT_EntityImpl *_impl;
} DDS_Entity;

typedef struct DDS_DomainParticipantFactory DDS_DomainParticipantFactory;
typedef struct DDS_DomainParticipant {
    DDS_Entity _entity;
} DDS_DomainParticipant;
typedef struct DDS_Publisher {
    DDS_Entity _entity;
} DDS_Publisher;
typedef struct DDS_Subscriber {
    DDS_Entity _entity;
} DDS_Subscriber;
typedef struct DDS_DataWriter {
    DDS_Entity _entity;
} DDS_DataWriter;
typedef struct DDS_DataReader {
    DDS_Entity _entity;
} DDS_DataReader;
/* A topic or a content-filtered topic, seen as what a reader is created for. */
typedef struct DDS_TopicDescription {
    DDS_Entity _entity;
} DDS_TopicDescription;
typedef struct DDS_Topic {
    DDS_TopicDescription _description;
} DDS_Topic;
typedef struct DDS_ContentFilteredTopic {
    DDS_TopicDescription _description;
} DDS_ContentFilteredTopic;
typedef struct DDS_StatusCondition DDS_StatusCondition;

/* Enables an entity that was created disabled, and its contained ones as the entity factory policy
 * says (DDS 1.4, 2.2.2.1.1.7). OK also when it is enabled already; PRECONDITION_NOT_MET when the
 * entity that created it, or the topic of a reader or writer, is disabled; the engine's code (and a
 * log message) when the engine cannot create its part. Must not run on two threads at once for the
 * same entity. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Entity_enable(DDS_Entity *self);
/* True once the entity is enabled; false for NULL. */
KOLT_EXPORT DDS_Boolean DDS_Entity_is_enabled(DDS_Entity *self);
/* Returns the statuses that changed since they were last read by a getter or handled by a listener;
 * 0 for NULL and for a disabled entity. */
KOLT_EXPORT DDS_StatusMask DDS_Entity_get_status_changes(DDS_Entity *self);
/* Returns the entity's one status condition, which belongs to the entity: it lives as long as that
 * and leaves its waitsets when the entity is deleted. NULL for NULL. */
KOLT_EXPORT DDS_StatusCondition *DDS_Entity_get_statuscondition(DDS_Entity *self);
/* Returns the handle of the entity, which is unique in the domain; DDS_HANDLE_NIL for NULL and for
 * a disabled entity. */
KOLT_EXPORT DDS_InstanceHandle_t DDS_Entity_get_instance_handle(DDS_Entity *self);

/* Return the same object as an entity; NULL for NULL. */
KOLT_EXPORT DDS_Entity *DDS_DomainParticipant_as_entity(DDS_DomainParticipant *self);
KOLT_EXPORT DDS_Entity *DDS_Publisher_as_entity(DDS_Publisher *self);
KOLT_EXPORT DDS_Entity *DDS_Subscriber_as_entity(DDS_Subscriber *self);
KOLT_EXPORT DDS_Entity *DDS_DataWriter_as_entity(DDS_DataWriter *self);
KOLT_EXPORT DDS_Entity *DDS_DataReader_as_entity(DDS_DataReader *self);
KOLT_EXPORT DDS_Entity *DDS_Topic_as_entity(DDS_Topic *self);

KOLT_EXTERN_C_END
