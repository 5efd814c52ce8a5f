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
 *  3. Listener callbacks run on the engine's threads, or on the thread that installs a listener or
 *     writes to a reader in the same process; one at a time per listener. They may read, write,
 *     create and install listeners. They must not delete their own entity, and must not write
 *     through the writer whose write they are called from (a reader's callback on the writing
 *     thread).
 *  4. A listener handles a status when the status is in its mask and the callback is not NULL.
 *     A status that an entity's own listener does not handle goes to the listener of its publisher
 *     or subscriber, and then to that of its participant. A status that none of them handles is
 *     kept until a getter or a later listener asks for it.
 *  5. When a function that replaces or removes a listener has returned, no callback of the old one
 *     runs on another thread. When an entity has been deleted, no callback about it runs.
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
