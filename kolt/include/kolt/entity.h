/* Entities in general (DDS 1.4, 2.2.2.1), and the types of all of them.
 *
 * Entities are made and deleted by their parents and are handled by pointer. Their functions may be
 * called from any thread; to delete an entity while another thread uses it is the caller's error.
 * Listener callbacks run on the engine's threads, one at a time per entity; they may read, write
 * and create, but must not delete their own entity.
 */
#ifndef KOLT_ENTITY_H
#define KOLT_ENTITY_H

#include "kolt/status.h"

KOLT_EXTERN_C_BEGIN

struct KOLT_EntityImpl;
/* What every entity record begins with. Private to KOLT. */
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
 * says. OK also when it is enabled already; PRECONDITION_NOT_MET when its factory is disabled. */
KOLT_EXPORT DDS_ReturnCode_t DDS_Entity_enable(DDS_Entity *self);
KOLT_EXPORT DDS_Boolean DDS_Entity_is_enabled(DDS_Entity *self);
/* Statuses that changed since they were last read by a getter or handled by a listener. */
KOLT_EXPORT DDS_StatusMask DDS_Entity_get_status_changes(DDS_Entity *self);
/* The entity's one status condition; it lives as long as the entity. */
KOLT_EXPORT DDS_StatusCondition *DDS_Entity_get_statuscondition(DDS_Entity *self);
/* Unique in the domain; DDS_HANDLE_NIL for NULL. */
KOLT_EXPORT DDS_InstanceHandle_t DDS_Entity_get_instance_handle(DDS_Entity *self);

/* Each entity, seen as an entity: NULL for NULL. */
KOLT_EXPORT DDS_Entity *DDS_DomainParticipant_as_entity(DDS_DomainParticipant *self);
KOLT_EXPORT DDS_Entity *DDS_Publisher_as_entity(DDS_Publisher *self);
KOLT_EXPORT DDS_Entity *DDS_Subscriber_as_entity(DDS_Subscriber *self);
KOLT_EXPORT DDS_Entity *DDS_DataWriter_as_entity(DDS_DataWriter *self);
KOLT_EXPORT DDS_Entity *DDS_DataReader_as_entity(DDS_DataReader *self);
KOLT_EXPORT DDS_Entity *DDS_Topic_as_entity(DDS_Topic *self);

KOLT_EXTERN_C_END

#endif /* KOLT_ENTITY_H */
