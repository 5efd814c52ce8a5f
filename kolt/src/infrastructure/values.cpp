// SPDX-License-Identifier: Apache-2.0
// Return-code names, times, instance handles and cookies.
#include <array>
#include <cstring>

#include "kolt/infrastructure.h"

extern "C" {
// The extern declarations of the header give these external linkage, which a C++ const would not
// have.
const DDS_Time_t DDS_TIME_INVALID = {DDS_TIME_INVALID_SEC, DDS_TIME_INVALID_NSEC};
const DDS_Duration_t DDS_DURATION_INFINITE = {DDS_DURATION_INFINITE_SEC,
                                              DDS_DURATION_INFINITE_NSEC};
const DDS_Duration_t DDS_DURATION_ZERO = {DDS_DURATION_ZERO_SEC, DDS_DURATION_ZERO_NSEC};
}

namespace {

constexpr std::array<const char *, 13> kReturnCodeNames = {
    "DDS_RETCODE_OK",
    "DDS_RETCODE_ERROR",
    "DDS_RETCODE_UNSUPPORTED",
    "DDS_RETCODE_BAD_PARAMETER",
    "DDS_RETCODE_PRECONDITION_NOT_MET",
    "DDS_RETCODE_OUT_OF_RESOURCES",
    "DDS_RETCODE_NOT_ENABLED",
    "DDS_RETCODE_IMMUTABLE_POLICY",
    "DDS_RETCODE_INCONSISTENT_POLICY",
    "DDS_RETCODE_ALREADY_DELETED",
    "DDS_RETCODE_TIMEOUT",
    "DDS_RETCODE_NO_DATA",
    "DDS_RETCODE_ILLEGAL_OPERATION",
};
static_assert(kReturnCodeNames.size() == DDS_RETCODE_ILLEGAL_OPERATION + 1);

// Returns how many bytes of a cookie's value count, whatever its length field says.
std::size_t cookie_size(const DDS_Cookie_t &cookie) {
    return cookie.length < sizeof(cookie.value) ? cookie.length : sizeof(cookie.value);
}

}  // namespace

const char *KOLT_ReturnCode_to_string(DDS_ReturnCode_t code) {
    const auto index = static_cast<std::size_t>(code);
    return index < kReturnCodeNames.size() ? kReturnCodeNames[index] : "DDS_RETCODE_UNKNOWN";
}

DDS_Boolean DDS_Duration_is_infinite(const DDS_Duration_t *duration) {
    return duration != nullptr && duration->sec == DDS_DURATION_INFINITE_SEC &&
           duration->nanosec == DDS_DURATION_INFINITE_NSEC;
}

DDS_Boolean DDS_InstanceHandle_is_valid(DDS_InstanceHandle_t handle) {
    return handle != DDS_HANDLE_NIL;
}

void DDS_Cookie_t_initialize(DDS_Cookie_t *self) {
    if (self != nullptr) {
        *self = DDS_Cookie_t{};
    }
}

void DDS_Cookie_t_finalize(DDS_Cookie_t *self) {
    DDS_Cookie_t_initialize(self);
}

DDS_Boolean DDS_Cookie_t_copy(DDS_Cookie_t *self, const DDS_Cookie_t *source) {
    if (self == nullptr || source == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    *self = *source;
    return DDS_BOOLEAN_TRUE;
}

DDS_Boolean DDS_Cookie_equals(const DDS_Cookie_t *left, const DDS_Cookie_t *right) {
    if (left == nullptr || right == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    return left->length == right->length &&
           std::memcmp(left->value, right->value, cookie_size(*left)) == 0;
}

DDS_Boolean DDS_Cookie_from_pointer(DDS_Cookie_t *self, const void *pointer) {
    static_assert(sizeof(pointer) <= sizeof(self->value));
    if (self == nullptr) {
        return DDS_BOOLEAN_FALSE;
    }
    DDS_Cookie_t_initialize(self);
    std::memcpy(self->value, &pointer, sizeof(pointer));
    self->length = sizeof(pointer);
    return DDS_BOOLEAN_TRUE;
}

void *DDS_Cookie_to_pointer(const DDS_Cookie_t *self) {
    void *pointer = nullptr;
    if (self != nullptr && self->length == sizeof(pointer)) {
        std::memcpy(&pointer, self->value, sizeof(pointer));
    }
    return pointer;
}
