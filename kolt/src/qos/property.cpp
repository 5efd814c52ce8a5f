// SPDX-License-Identifier: Apache-2.0
// The property policy: its sequence type and the functions that find, set and remove a property.

#include <cstring>

#include "kolt/sequence_define.h"
#include "qos/qos_values.hpp"

namespace {

DDS_Boolean initialize_property(void *element, const DDS_TypeAllocationParams_t *) {
    kolt::qos::initialize(*static_cast<DDS_Property_t *>(element));
    return DDS_BOOLEAN_TRUE;
}

void finalize_property(void *element, const DDS_TypeDeallocationParams_t *) {
    kolt::qos::finalize(*static_cast<DDS_Property_t *>(element));
}

DDS_Boolean copy_property(void *destination, const void *source) {
    const bool copied = kolt::qos::copy(*static_cast<DDS_Property_t *>(destination),
                                        *static_cast<const DDS_Property_t *>(source));
    return copied ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
}

constexpr KOLT_SequenceElementType kPropertyElement = {"DDS_PropertySeq", sizeof(DDS_Property_t),
                                                       initialize_property, finalize_property,
                                                       copy_property};

// Returns the index of the property with that name; -1 when the sequence has none.
DDS_Long find_property(const DDS_PropertySeq &properties, const char *name) {
    const auto length = static_cast<DDS_Long>(DDS_PropertySeq_get_length(&properties));
    for (DDS_Long i = 0; i < length; ++i) {
        const DDS_Property_t *property = DDS_PropertySeq_get_reference(&properties, i);
        if (property->name != nullptr && std::strcmp(property->name, name) == 0) {
            return i;
        }
    }
    return -1;
}

DDS_ReturnCode_t append_property(DDS_PropertySeq &properties, const char *name, const char *value,
                                 DDS_Boolean propagate) {
    const auto length = static_cast<DDS_Long>(DDS_PropertySeq_get_length(&properties));
    if (!DDS_PropertySeq_ensure_length(&properties, length + 1, length + 1)) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    DDS_Property_t *property = DDS_PropertySeq_get_reference(&properties, length);
    if (DDS_String_replace(&property->name, name) == nullptr ||
        DDS_String_replace(&property->value, value) == nullptr) {
        DDS_PropertySeq_set_length(&properties, length);
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    property->propagate = propagate;
    return DDS_RETCODE_OK;
}

}  // namespace

KOLT_SEQUENCE_DEFINE(DDS_PropertySeq, DDS_Property_t, &kPropertyElement);

DDS_ReturnCode_t DDS_PropertyQosPolicyHelper_assert_property(DDS_PropertyQosPolicy *policy,
                                                             const char *name, const char *value,
                                                             DDS_Boolean propagate) {
    if (policy == nullptr || name == nullptr || value == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const DDS_Long index = find_property(policy->value, name);
    if (index < 0) {
        return append_property(policy->value, name, value, propagate);
    }
    DDS_Property_t *property = DDS_PropertySeq_get_reference(&policy->value, index);
    if (DDS_String_replace(&property->value, value) == nullptr) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    property->propagate = propagate;
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t DDS_PropertyQosPolicyHelper_add_property(DDS_PropertyQosPolicy *policy,
                                                          const char *name, const char *value,
                                                          DDS_Boolean propagate) {
    if (policy == nullptr || name == nullptr || value == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    if (find_property(policy->value, name) >= 0) {
        return DDS_RETCODE_PRECONDITION_NOT_MET;
    }
    return append_property(policy->value, name, value, propagate);
}

DDS_Property_t *DDS_PropertyQosPolicyHelper_lookup_property(const DDS_PropertyQosPolicy *policy,
                                                            const char *name) {
    if (policy == nullptr || name == nullptr) {
        return nullptr;
    }
    const DDS_Long index = find_property(policy->value, name);
    return index < 0 ? nullptr : DDS_PropertySeq_get_reference(&policy->value, index);
}

DDS_ReturnCode_t DDS_PropertyQosPolicyHelper_remove_property(DDS_PropertyQosPolicy *policy,
                                                             const char *name) {
    if (policy == nullptr || name == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    const DDS_Long index = find_property(policy->value, name);
    if (index < 0) {
        return DDS_RETCODE_PRECONDITION_NOT_MET;
    }
    // The elements behind it move up by one; the removed one ends last and is emptied, since the
    // sequence keeps what lies beyond its length.
    const auto length = static_cast<DDS_Long>(DDS_PropertySeq_get_length(&policy->value));
    for (DDS_Long i = index; i + 1 < length; ++i) {
        DDS_Property_t *gap = DDS_PropertySeq_get_reference(&policy->value, i);
        DDS_Property_t *next = DDS_PropertySeq_get_reference(&policy->value, i + 1);
        const DDS_Property_t moved = *gap;
        *gap = *next;
        *next = moved;
    }
    kolt::qos::finalize(*DDS_PropertySeq_get_reference(&policy->value, length - 1));
    DDS_PropertySeq_set_length(&policy->value, length - 1);
    return DDS_RETCODE_OK;
}
