// SPDX-License-Identifier: Apache-2.0
// Initialise, finalise, copy and compare any value that a QoS record is made of. A described record
// (qos_description.hpp) is handled member by member; strings and sequences are owned.
#pragma once

#include <cstring>
#include <type_traits>

#include "kolt_internal/owned_qos.hpp"
#include "qos/qos_description.hpp"

namespace kolt::qos {

// The typed functions of a sequence type, by type.
template <typename Seq>
struct SequenceFunctions;

#define KOLT_SEQUENCE_FUNCTIONS(Seq)                                                              \
    template <>                                                                                   \
    struct SequenceFunctions<Seq> {                                                               \
        static bool initialize(Seq *self) { return Seq##_initialize(self) != DDS_BOOLEAN_FALSE; } \
        static bool finalize(Seq *self) { return Seq##_finalize(self) != DDS_BOOLEAN_FALSE; }     \
        static bool copy(Seq *self, const Seq *source) {                                          \
            return Seq##_copy(self, source) != nullptr;                                           \
        }                                                                                         \
        static DDS_Long length(const Seq *self) {                                                 \
            return static_cast<DDS_Long>(Seq##_get_length(self));                                 \
        }                                                                                         \
        static bool ensure_length(Seq *self, DDS_Long length) {                                   \
            return Seq##_ensure_length(self, length, length) != DDS_BOOLEAN_FALSE;                \
        }                                                                                         \
        static auto *at(const Seq *self, DDS_Long index) {                                        \
            return Seq##_get_reference(self, index);                                              \
        }                                                                                         \
    }
KOLT_SEQUENCE_FUNCTIONS(DDS_OctetSeq);
KOLT_SEQUENCE_FUNCTIONS(DDS_ShortSeq);
KOLT_SEQUENCE_FUNCTIONS(DDS_StringSeq);
KOLT_SEQUENCE_FUNCTIONS(DDS_PropertySeq);
#undef KOLT_SEQUENCE_FUNCTIONS

template <typename T>
concept SequenceType = requires {
    &SequenceFunctions<T>::length;
};

// Makes the default in memory of any content.
template <typename T>
void initialize(T &value) {
    if constexpr (SequenceType<T>) {
        SequenceFunctions<T>::initialize(&value);
    } else if constexpr (Described<T>) {
        for_each_member<T>([&](const auto &row) {
            if constexpr (std::is_same_v<decltype(row.default_value), NoDefault>) {
                initialize(value.*(row.place));
            } else {
                value.*(row.place) = row.default_value;
            }
        });
    } else {
        value = T{};
    }
}

// Frees what the value owns; it can be initialised or finalised again.
template <typename T>
void finalize(T &value) {
    if constexpr (SequenceType<T>) {
        SequenceFunctions<T>::finalize(&value);
    } else if constexpr (Described<T>) {
        for_each_member<T>([&](const auto &row) { finalize(value.*(row.place)); });
    } else if constexpr (std::is_same_v<T, DDS_Char *>) {
        DDS_String_free(value);
        value = nullptr;
    }
}

// Deep copy. False when memory runs out; the value is then intact but partly the old one.
template <typename T>
bool copy(T &value, const T &source) {
    if constexpr (SequenceType<T>) {
        return SequenceFunctions<T>::copy(&value, &source);
    } else if constexpr (Described<T>) {
        return all_members<T>(
            [&](const auto &row) { return copy(value.*(row.place), source.*(row.place)); });
    } else if constexpr (std::is_same_v<T, DDS_Char *>) {
        return DDS_String_replace(&value, source) != nullptr || source == nullptr;
    } else {
        value = source;
        return true;
    }
}

template <typename T>
bool equals(const T &left, const T &right) {
    if constexpr (SequenceType<T>) {
        using Functions = SequenceFunctions<T>;
        const DDS_Long length = Functions::length(&left);
        if (length != Functions::length(&right)) {
            return false;
        }
        for (DDS_Long i = 0; i < length; ++i) {
            if (!equals(*Functions::at(&left, i), *Functions::at(&right, i))) {
                return false;
            }
        }
        return true;
    } else if constexpr (Described<T>) {
        return all_members<T>(
            [&](const auto &row) { return equals(left.*(row.place), right.*(row.place)); });
    } else if constexpr (std::is_same_v<T, DDS_Char *>) {
        return left == right ||
               (left != nullptr && right != nullptr && std::strcmp(left, right) == 0);
    } else {
        return left == right;
    }
}

}  // namespace kolt::qos
