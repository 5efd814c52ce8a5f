// SPDX-License-Identifier: Apache-2.0
// Elements that own a string, are counted and can fail.
#include "support/types/named_sequence.h"

#include <kolt/sequence_define.h>

namespace support {

int g_live = 0;
int g_fail_initialize_after = -1;
bool g_fail_copy = false;

namespace {

DDS_Boolean initialize_named(void *element, const DDS_TypeAllocationParams_t *params) {
    auto *const named = static_cast<Named *>(element);
    if (g_fail_initialize_after == 0) {
        return DDS_BOOLEAN_FALSE;
    }
    if (g_fail_initialize_after > 0) {
        --g_fail_initialize_after;
    }
    named->number = 0;
    named->name = params->allocate_pointers ? DDS_String_alloc(15) : nullptr;
    ++g_live;
    return DDS_BOOLEAN_TRUE;
}
void finalize_named(void *element, const DDS_TypeDeallocationParams_t *) {
    auto *const named = static_cast<Named *>(element);
    if (named->name != nullptr) {
        --g_live;
    }
    DDS_String_free(named->name);
    named->name = nullptr;
}
DDS_Boolean copy_named(void *destination, const void *source) {
    auto *const to = static_cast<Named *>(destination);
    const auto *const from = static_cast<const Named *>(source);
    if (g_fail_copy) {
        return DDS_BOOLEAN_FALSE;
    }
    to->number = from->number;
    return DDS_String_replace(&to->name, from->name) != nullptr;
}
constexpr KOLT_SequenceElementType kNamed = {"NamedSeq", sizeof(Named), initialize_named,
                                             finalize_named, copy_named};
}  // namespace

KOLT_SEQUENCE_DEFINE(NamedSeq, Named, &kNamed);

}  // namespace support
