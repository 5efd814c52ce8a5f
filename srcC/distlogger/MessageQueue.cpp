// SPDX-License-Identifier: Apache-2.0
// The bounded queue: its elements lie in one block, texts are copied in, ids follow the order of
// the pushes.
#include "vur_dl/MessageQueue.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

#include "kolt/os.h"
#include "lock_rules.hpp"
#include "relaxed.hpp"
#include "report.hpp"

namespace {

using vur_dl::report;

constexpr std::size_t kInlineMessageSize = 128;
constexpr std::size_t kInlineCategorySize = 32;
constexpr std::size_t kMaxMessageLength = 4096;
constexpr std::size_t kMaxCategoryLength = 512;

// NOLINTBEGIN(readability-identifier-naming): the members of this C family are camelCase.
struct VUR_DL_MessageQueueElement {
    KOLT_ListNode node;
    VUR_DL_LogMessagePlusTime messagePlusTime;  // its texts: the inline buffers, or heap strings
    char inlineMessage[kInlineMessageSize];
    char inlineCategory[kInlineCategorySize];
};
// NOLINTEND(readability-identifier-naming)
static_assert(offsetof(VUR_DL_MessageQueueElement, node) == 0, "a node is its element's address");

// Returns the element that a node begins.
VUR_DL_MessageQueueElement *element_of(KOLT_ListNode *node) {
    return reinterpret_cast<VUR_DL_MessageQueueElement *>(node);
}

// Copies `source` into the inline buffer if it fits, into a new heap string of at most `max_length`
// characters otherwise. NULL when memory runs out.
DDS_Char *copy_text(const DDS_Char *source, char *inline_buffer, std::size_t inline_size,
                    std::size_t max_length) {
    const std::size_t length = std::strlen(source);
    if (length < inline_size) {
        std::memcpy(inline_buffer, source, length + 1);
        return inline_buffer;
    }
    const std::size_t kept = std::min(length, max_length);
    DDS_Char *copy = DDS_String_alloc(kept);
    if (copy != nullptr) {
        std::memcpy(copy, source, kept);
        copy[kept] = '\0';
    }
    return copy;
}

void free_texts(VUR_DL_MessageQueueElement &element) {
    VUR_DL_LogMessage &message = element.messagePlusTime.message;
    if (message.message != element.inlineMessage) {
        DDS_String_free(message.message);
    }
    if (message.category != element.inlineCategory) {
        DDS_String_free(message.category);
    }
}

}  // namespace

// NOLINTBEGIN(readability-identifier-naming): the members of this C family are camelCase.
struct VUR_DL_MessageQueue {
    VUR_DL_MessageQueueProperty property;
    KOLT_Mutex *mutex;         // guards elementPool, queue and the writing of messageId
    KOLT_Semaphore *countSem;  // a token for each message that _front has not handed out
    KOLT_BufferPool *elementPool;
    KOLT_List queue;
    DDS_LongLong messageId;  // pushes so far
};
// NOLINTEND(readability-identifier-naming)

namespace {

bool create_parts(VUR_DL_MessageQueue &self) {
    static constexpr char kMethodName[] = "VUR_DL_MessageQueue_new";
    self.mutex = KOLT_Mutex_new();
    if (self.mutex == nullptr) {
        report("Unable to create mutex", kMethodName);
        return false;
    }
    self.countSem = KOLT_Semaphore_new(0);
    if (self.countSem == nullptr) {
        report("Unable to create counting semaphore", kMethodName);
        return false;
    }
    // A consumer that naps must wake before the queue is full.
    constexpr DDS_Long kBacklogFraction = 4;
    KOLT_Semaphore_set_backlog(self.countSem,
                               std::min<DDS_Long>(self.property.queueSize / kBacklogFraction,
                                                  KOLT_SEMAPHORE_DEFAULT_BACKLOG));
    self.elementPool =
        KOLT_BufferPool_new(sizeof(VUR_DL_MessageQueueElement), alignof(VUR_DL_MessageQueueElement),
                            self.property.queueSize, self.property.queueSize, DDS_BOOLEAN_TRUE);
    if (self.elementPool == nullptr) {
        report("Unable to create element pool", kMethodName);
        return false;
    }
    KOLT_List_initialize(&self.queue);
    return true;
}

// Copies the item with its texts. On failure the element owns nothing.
bool fill(VUR_DL_MessageQueueElement &element, const VUR_DL_LogMessagePlusTime &item,
          DDS_LongLong message_id) {
    static constexpr char kMethodName[] = "VUR_DL_MessageQueue_push";
    KOLT_ListNode_initialize(&element.node);
    element.messagePlusTime = item;
    VUR_DL_LogMessage &message = element.messagePlusTime.message;
    message.messageId = message_id;
    // The copied pointers are the caller's texts, which must not be freed here.
    message.message = nullptr;
    message.category = nullptr;
    message.message = copy_text(item.message.message, element.inlineMessage, kInlineMessageSize,
                                kMaxMessageLength);
    if (message.message == nullptr) {
        report("Unable to allocate message", kMethodName);
        return false;
    }
    message.category = copy_text(item.message.category, element.inlineCategory, kInlineCategorySize,
                                 kMaxCategoryLength);
    if (message.category == nullptr) {
        report("Unable to allocate category", kMethodName);
        free_texts(element);
        return false;
    }
    return true;
}

// Take and give the mutex, under which nothing is called. False when the platform refuses.
bool take(const VUR_DL_MessageQueue &self) {
    if (KOLT_Mutex_take(self.mutex) != 0) {
        return false;
    }
    vur_dl::leaf_lock_taken();
    return true;
}

bool give(const VUR_DL_MessageQueue &self) {
    vur_dl::leaf_lock_given();
    return KOLT_Mutex_give(self.mutex) == 0;
}

// Numbers the message and queues a copy of it. False when it is dropped. The caller holds the
// mutex.
bool enqueue(VUR_DL_MessageQueue &self, const VUR_DL_LogMessagePlusTime &item) {
    vur_dl::store_relaxed(self.messageId, self.messageId + 1);
    if (KOLT_List_get_count(&self.queue) >= self.property.queueSize) {
        return false;
    }
    void *buffer = KOLT_BufferPool_get(self.elementPool);
    if (buffer == nullptr) {
        report("Unable to get new queue element", "VUR_DL_MessageQueue_push");
        return false;
    }
    auto *element = static_cast<VUR_DL_MessageQueueElement *>(buffer);
    if (!fill(*element, item, self.messageId)) {
        KOLT_BufferPool_return_buffer(self.elementPool, element);
        return false;
    }
    KOLT_List_add_to_back(&self.queue, &element->node);
    return true;
}

// Removes the oldest message. False when there is none. The caller holds the mutex, or no other
// thread uses the queue.
bool remove_first(VUR_DL_MessageQueue &self) {
    KOLT_ListNode *node = KOLT_List_remove_first(&self.queue);
    if (node == nullptr) {
        return false;
    }
    VUR_DL_MessageQueueElement *element = element_of(node);
    free_texts(*element);
    KOLT_BufferPool_return_buffer(self.elementPool, element);
    return true;
}

}  // namespace

VUR_DL_MessageQueue *VUR_DL_MessageQueue_new(const VUR_DL_MessageQueueProperty *property) {
    auto *self =
        static_cast<VUR_DL_MessageQueue *>(KOLT_Heap_allocate_zeroed(sizeof(VUR_DL_MessageQueue)));
    if (self == nullptr) {
        report("Unable to allocate memory for Message Queue", __func__);
        return nullptr;
    }
    self->property = *property;
    if (!create_parts(*self)) {
        VUR_DL_MessageQueue_delete(self);
        return nullptr;
    }
    return self;
}

void VUR_DL_MessageQueue_delete(VUR_DL_MessageQueue *self) {
    if (self == nullptr) {
        return;
    }
    KOLT_Mutex_delete(self->mutex);
    KOLT_Semaphore_delete(self->countSem);
    if (self->elementPool != nullptr) {
        while (remove_first(*self)) {
        }
        KOLT_BufferPool_delete(self->elementPool);
    }
    KOLT_Heap_free(self);
}

int VUR_DL_MessageQueue_push(VUR_DL_MessageQueue *self, const VUR_DL_LogMessagePlusTime *item) {
    if (!take(*self)) {
        report("Unable to take message queue mutex", __func__);
        return 0;
    }
    const bool queued = enqueue(*self, *item);
    if (!give(*self)) {
        report("Unable to give message queue mutex", __func__);
    }
    if (queued && KOLT_Semaphore_give(self->countSem) != KOLT_SEMAPHORE_OK) {
        report("Unable to give message queue counting semaphore", __func__);
    }
    return queued ? 1 : 0;
}

VUR_DL_LogMessagePlusTime *VUR_DL_MessageQueue_front(VUR_DL_MessageQueue *self,
                                                     const DDS_Duration_t *timeout) {
    static constexpr char kMethodName[] = "VUR_DL_MEssageQueue_front";  // sic
    const KOLT_SemaphoreResult taken = KOLT_Semaphore_take(self->countSem, timeout);
    if (taken != KOLT_SEMAPHORE_OK) {
        if (taken == KOLT_SEMAPHORE_ERROR) {
            report("Unable to take message queue counting semaphore", kMethodName);
        }
        return nullptr;
    }
    if (!take(*self)) {
        report("Unable to take message queue mutex", kMethodName);
        return nullptr;
    }
    KOLT_ListNode *first = KOLT_List_first(&self->queue);
    if (!give(*self)) {
        report("Unable to give message queue mutex", kMethodName);
    }
    // There may be tokens without elements: after a push whose semaphore failed, or after a front
    // without a pop.
    return first == nullptr ? nullptr : &element_of(first)->messagePlusTime;
}

void VUR_DL_MessageQueue_pop(VUR_DL_MessageQueue *self) {
    if (!take(*self)) {
        report("Unable to take message queue mutex", __func__);
        return;
    }
    remove_first(*self);
    if (!give(*self)) {
        report("Unable to give message queue mutex", __func__);
    }
}

int VUR_DL_MessageQueue_getMessageQueueProperty(const VUR_DL_MessageQueue *self) {
    return self->property.queueSize;
}

DDS_LongLong VUR_DL_MessageQueue_getMessageId(const VUR_DL_MessageQueue *self) {
    return vur_dl::load_relaxed(self->messageId);
}
