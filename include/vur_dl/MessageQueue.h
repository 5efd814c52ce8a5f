/* SPDX-License-Identifier: Apache-2.0 */
/* The bounded queue between the threads that log and the one thread that publishes.
 *
 * Any number of threads push. One consumer waits with _front, publishes the message that it gets,
 * and then calls _pop. A push onto a full queue drops the message instead of waiting, but still
 * uses up a message number. The elements come from one block that is made with the queue. A text of
 * at most 127 characters and a category of at most 31 lie in the element, longer ones on the heap.
 * Unless a comment says otherwise, arguments must not be NULL.
 */
#pragma once

#include "kolt/infrastructure.h"
#include "vur_dl/distlog.h"
#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

/* A message and the source time stamp that it is published with. */
typedef struct VUR_DL_LogMessagePlusTime {
    VUR_DL_LogMessage message;
    DDS_Time_t writeTime;
} VUR_DL_LogMessagePlusTime;

/* How a queue is made. */
typedef struct VUR_DL_MessageQueueProperty {
    DDS_Long queueSize; /* capacity in messages, 1 or more */
} VUR_DL_MessageQueueProperty;

typedef struct VUR_DL_MessageQueue VUR_DL_MessageQueue;

/* Returns a new, empty queue, to be released with VUR_DL_MessageQueue_delete; NULL, with a printed
 * line, when a part of it cannot be made. */
VUR_DL_EXPORT VUR_DL_MessageQueue *VUR_DL_MessageQueue_new(
    const VUR_DL_MessageQueueProperty *property);
/* Frees the queue and the messages in it. No thread may be inside one of its functions. NULL is
 * allowed. */
VUR_DL_EXPORT void VUR_DL_MessageQueue_delete(VUR_DL_MessageQueue *self);
/* Copies `item` to the back and numbers it: 1, 2, 3 ... in the order of the pushes. Texts are cut
 * to 4096 and categories to 512 characters. Returns 1 when the message was queued; 0 when the queue
 * is full or, with a printed line, when memory or a lock fails. Any thread may call it. */
VUR_DL_EXPORT int VUR_DL_MessageQueue_push(VUR_DL_MessageQueue *self,
                                           const VUR_DL_LogMessagePlusTime *item);
/* Waits at most `timeout` for a message and returns the oldest one, which stays in the queue; NULL
 * when none came. Each push lets one call return: a second _front without a _pop waits for another
 * push and then returns the same, oldest message. The pointer is valid until _pop. Only the
 * consumer may call it. */
VUR_DL_EXPORT VUR_DL_LogMessagePlusTime *VUR_DL_MessageQueue_front(VUR_DL_MessageQueue *self,
                                                                   const DDS_Duration_t *timeout);
/* Removes the oldest message; does nothing on an empty queue. Only the consumer may call it. */
VUR_DL_EXPORT void VUR_DL_MessageQueue_pop(VUR_DL_MessageQueue *self);
/* Returns the capacity in messages. Any thread may call it; it takes no lock. */
VUR_DL_EXPORT int VUR_DL_MessageQueue_getMessageQueueProperty(const VUR_DL_MessageQueue *self);
/* Returns the number of pushes so far, successful or not. Any thread may call it; it takes no
 * lock. */
VUR_DL_EXPORT DDS_LongLong VUR_DL_MessageQueue_getMessageId(const VUR_DL_MessageQueue *self);

VUR_DL_EXTERN_C_END
