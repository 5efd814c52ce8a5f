// SPDX-License-Identifier: Apache-2.0
// The sequences of the platform's own types.
#include "kolt/sequence_define.h"

namespace {

// Elements that are plain memory.
#define KOLT_PLAIN_ELEMENT(Seq, T) \
    constexpr KOLT_SequenceElementType k##Seq = {#Seq, sizeof(T), nullptr, nullptr, nullptr}

KOLT_PLAIN_ELEMENT(DDS_BooleanSeq, DDS_Boolean);
KOLT_PLAIN_ELEMENT(DDS_OctetSeq, DDS_Octet);
KOLT_PLAIN_ELEMENT(DDS_CharSeq, DDS_Char);
KOLT_PLAIN_ELEMENT(DDS_ShortSeq, DDS_Short);
KOLT_PLAIN_ELEMENT(DDS_UnsignedShortSeq, DDS_UnsignedShort);
KOLT_PLAIN_ELEMENT(DDS_LongSeq, DDS_Long);
KOLT_PLAIN_ELEMENT(DDS_UnsignedLongSeq, DDS_UnsignedLong);
KOLT_PLAIN_ELEMENT(DDS_LongLongSeq, DDS_LongLong);
KOLT_PLAIN_ELEMENT(DDS_UnsignedLongLongSeq, DDS_UnsignedLongLong);
KOLT_PLAIN_ELEMENT(DDS_FloatSeq, DDS_Float);
KOLT_PLAIN_ELEMENT(DDS_DoubleSeq, DDS_Double);
KOLT_PLAIN_ELEMENT(DDS_InstanceHandleSeq, DDS_InstanceHandle_t);

DDS_Boolean initialize_string(void *element, const DDS_TypeAllocationParams_t *params) {
    auto *const string = static_cast<DDS_Char **>(element);
    *string = nullptr;
    if (!params->allocate_pointers) {
        return DDS_BOOLEAN_TRUE;
    }
    *string = DDS_String_alloc(0);
    return *string != nullptr;
}

void finalize_string(void *element, const DDS_TypeDeallocationParams_t *params) {
    auto *const string = static_cast<DDS_Char **>(element);
    if (params->delete_pointers) {
        DDS_String_free(*string);
    }
    *string = nullptr;
}

DDS_Boolean copy_string(void *destination, const void *source) {
    auto *const to = static_cast<DDS_Char **>(destination);
    const DDS_Char *const from = *static_cast<DDS_Char *const *>(source);
    return DDS_String_replace(to, from) != nullptr || from == nullptr;
}

constexpr KOLT_SequenceElementType kDdsStringSeq = {
    "DDS_StringSeq", sizeof(DDS_StringPtr), initialize_string, finalize_string, copy_string};

}  // namespace

KOLT_SEQUENCE_DEFINE(DDS_BooleanSeq, DDS_Boolean, &kDDS_BooleanSeq);
KOLT_SEQUENCE_DEFINE(DDS_OctetSeq, DDS_Octet, &kDDS_OctetSeq);
KOLT_SEQUENCE_DEFINE(DDS_CharSeq, DDS_Char, &kDDS_CharSeq);
KOLT_SEQUENCE_DEFINE(DDS_ShortSeq, DDS_Short, &kDDS_ShortSeq);
KOLT_SEQUENCE_DEFINE(DDS_UnsignedShortSeq, DDS_UnsignedShort, &kDDS_UnsignedShortSeq);
KOLT_SEQUENCE_DEFINE(DDS_LongSeq, DDS_Long, &kDDS_LongSeq);
KOLT_SEQUENCE_DEFINE(DDS_UnsignedLongSeq, DDS_UnsignedLong, &kDDS_UnsignedLongSeq);
KOLT_SEQUENCE_DEFINE(DDS_LongLongSeq, DDS_LongLong, &kDDS_LongLongSeq);
KOLT_SEQUENCE_DEFINE(DDS_UnsignedLongLongSeq, DDS_UnsignedLongLong, &kDDS_UnsignedLongLongSeq);
KOLT_SEQUENCE_DEFINE(DDS_FloatSeq, DDS_Float, &kDDS_FloatSeq);
KOLT_SEQUENCE_DEFINE(DDS_DoubleSeq, DDS_Double, &kDDS_DoubleSeq);
KOLT_SEQUENCE_DEFINE(DDS_InstanceHandleSeq, DDS_InstanceHandle_t, &kDDS_InstanceHandleSeq);
KOLT_SEQUENCE_DEFINE(DDS_StringSeq, DDS_StringPtr, &kDdsStringSeq);
