/* SPDX-License-Identifier: Apache-2.0 */
/* Conditions and waitsets (DDS 1.4, 2.2.2.1.6 to 2.2.2.1.9, 2.2.2.5.8, 2.2.2.5.9).
 *
 *  1. Conditions of any participants and domains may be attached to one waitset, and one condition
 *     to several waitsets. Attaching and detaching are allowed while a thread waits.
 *  2. A NULL `self` gives DDS_RETCODE_BAD_PARAMETER, NULL, 0 or false.
 *  3. Nothing here polls: a thread that waits sleeps until a condition triggers.
 *  4. The functions may be called from any thread. Deleting a condition or waitset while another
 *     thread uses it is an error of the caller.
 */
#pragma once

#include "kolt/entity.h"

KOLT_EXTERN_C_BEGIN

struct KOLT_ConditionImpl;
/* Any condition; every kind of condition begins with one. Its member is private to KOLT. */
typedef struct DDS_Condition {
    struct KOLT_ConditionImpl *_impl;
} DDS_Condition;
struct DDS_StatusCondition {
    DDS_Condition _condition;
};
typedef struct DDS_GuardCondition {
    DDS_Condition _condition;
} DDS_GuardCondition;
typedef struct DDS_ReadCondition {
    DDS_Condition _condition;
} DDS_ReadCondition;
typedef struct DDS_QueryCondition {
    DDS_ReadCondition _read_condition;
} DDS_QueryCondition;
typedef DDS_Condition *DDS_ConditionPtr;
KOLT_SEQUENCE_DECLARE(DDS_ConditionSeq, DDS_ConditionPtr, KOLT_EXPORT);
typedef struct DDS_WaitSet DDS_WaitSet;

/* True while the condition is triggered: a status condition while one of its enabled statuses has
 * changed, a guard condition while it is set, a read or query condition while the reader has
 * samples that it selects. */
KOLT_EXPORT DDS_Boolean DDS_Condition_get_trigger_value(DDS_Condition *self);

/* Returns the same object as a condition; NULL for NULL. */
KOLT_EXPORT DDS_Condition *DDS_StatusCondition_as_condition(DDS_StatusCondition *self);
/* Sets the statuses that trigger the condition; all of them do at first. Bits of statuses that the
 * entity does not have are ignored. When one of them has changed already, waits on the condition
 * end. */
KOLT_EXPORT DDS_ReturnCode_t DDS_StatusCondition_set_enabled_statuses(DDS_StatusCondition *self,
                                                                      DDS_StatusMask mask);
/* Returns the statuses as they were set, ignored bits included; 0 for NULL. */
KOLT_EXPORT DDS_StatusMask DDS_StatusCondition_get_enabled_statuses(DDS_StatusCondition *self);
/* Returns the entity whose condition it is. */
KOLT_EXPORT DDS_Entity *DDS_StatusCondition_get_entity(DDS_StatusCondition *self);

/* Creates a condition that the application triggers, not set. NULL when memory runs out. Delete it
 * with DDS_GuardCondition_delete. */
KOLT_EXPORT DDS_GuardCondition *DDS_GuardCondition_new(void);
/* Deletes the condition. PRECONDITION_NOT_MET while it is attached to a waitset. */
KOLT_EXPORT DDS_ReturnCode_t DDS_GuardCondition_delete(DDS_GuardCondition *self);
/* Returns the same object as a condition; NULL for NULL. */
KOLT_EXPORT DDS_Condition *DDS_GuardCondition_as_condition(DDS_GuardCondition *self);
/* Sets the condition (true) or resets it (false). It stays so until the next call; waiting does not
 * reset it. */
KOLT_EXPORT DDS_ReturnCode_t DDS_GuardCondition_set_trigger_value(DDS_GuardCondition *self,
                                                                  DDS_Boolean value);

/* Returns the same object as a condition; NULL for NULL. */
KOLT_EXPORT DDS_Condition *DDS_ReadCondition_as_condition(DDS_ReadCondition *self);
/* Return the reader that created the condition, and the masks that it was created with. */
KOLT_EXPORT DDS_DataReader *DDS_ReadCondition_get_datareader(DDS_ReadCondition *self);
KOLT_EXPORT DDS_SampleStateMask DDS_ReadCondition_get_sample_state_mask(DDS_ReadCondition *self);
KOLT_EXPORT DDS_ViewStateMask DDS_ReadCondition_get_view_state_mask(DDS_ReadCondition *self);
KOLT_EXPORT DDS_InstanceStateMask
DDS_ReadCondition_get_instance_state_mask(DDS_ReadCondition *self);

/* Returns the same object as a read condition; NULL for NULL. */
KOLT_EXPORT DDS_ReadCondition *DDS_QueryCondition_as_readcondition(DDS_QueryCondition *self);
/* Returns the expression, which belongs to the condition and does not change. */
KOLT_EXPORT const char *DDS_QueryCondition_get_query_expression(DDS_QueryCondition *self);
/* Copies the parameters into `parameters`, an initialised sequence of the caller's.
 * OUT_OF_RESOURCES when they do not fit in. */
KOLT_EXPORT DDS_ReturnCode_t DDS_QueryCondition_get_query_parameters(DDS_QueryCondition *self,
                                                                     DDS_StringSeq *parameters);
/* Replaces the parameters, which are copied, and judges by them the samples that the reader has
 * already. BAD_PARAMETER (and a log message) when they do not fit the expression; the old ones then
 * stay. */
KOLT_EXPORT DDS_ReturnCode_t
DDS_QueryCondition_set_query_parameters(DDS_QueryCondition *self, const DDS_StringSeq *parameters);

/* Creates an empty waitset. NULL when memory runs out. Delete it with DDS_WaitSet_delete. */
KOLT_EXPORT DDS_WaitSet *DDS_WaitSet_new(void);
/* Detaches all conditions and deletes the waitset. PRECONDITION_NOT_MET while a thread waits on
 * it. */
KOLT_EXPORT DDS_ReturnCode_t DDS_WaitSet_delete(DDS_WaitSet *self);
/* Attaches a condition; attaching it again is OK and has no effect. A condition that is triggered
 * ends a wait at once. */
KOLT_EXPORT DDS_ReturnCode_t DDS_WaitSet_attach_condition(DDS_WaitSet *self,
                                                          DDS_Condition *condition);
/* Detaches a condition. PRECONDITION_NOT_MET when it is not attached. */
KOLT_EXPORT DDS_ReturnCode_t DDS_WaitSet_detach_condition(DDS_WaitSet *self,
                                                          DDS_Condition *condition);
/* Copies pointers to the attached conditions into an initialised sequence of the caller's.
 * OUT_OF_RESOURCES when it has no room and cannot grow. */
KOLT_EXPORT DDS_ReturnCode_t DDS_WaitSet_get_conditions(DDS_WaitSet *self,
                                                        DDS_ConditionSeq *conditions);
/* Waits until a condition triggers; `active`, an initialised sequence, gets those that did. TIMEOUT
 * when none did within `timeout`, measured on the monotonic clock (`active` is then empty);
 * PRECONDITION_NOT_MET when another thread waits on the same waitset; OUT_OF_RESOURCES when
 * `active` has no room and cannot grow; BAD_PARAMETER for a negative `timeout`. With an empty
 * waitset it waits for a condition to be attached. */
KOLT_EXPORT DDS_ReturnCode_t DDS_WaitSet_wait(DDS_WaitSet *self, DDS_ConditionSeq *active,
                                              const DDS_Duration_t *timeout);

KOLT_EXTERN_C_END
