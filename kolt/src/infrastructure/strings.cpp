// SPDX-License-Identifier: Apache-2.0
// The strings that records own.
#include <cstdlib>
#include <cstring>

#include "kolt/infrastructure.h"

DDS_Char *DDS_String_alloc(std::size_t length) {
    if (length == SIZE_MAX) {
        return nullptr;
    }
    return static_cast<DDS_Char *>(std::calloc(length + 1, sizeof(DDS_Char)));
}

DDS_Char *DDS_String_dup(const DDS_Char *source) {
    if (source == nullptr) {
        return nullptr;
    }
    const std::size_t size = std::strlen(source) + 1;
    auto *const copy = static_cast<DDS_Char *>(std::malloc(size));
    if (copy != nullptr) {
        std::memcpy(copy, source, size);
    }
    return copy;
}

void DDS_String_free(DDS_Char *string) {
    std::free(string);
}

DDS_Char *DDS_String_replace(DDS_Char **string, const DDS_Char *source) {
    if (string == nullptr) {
        return nullptr;
    }
    DDS_Char *copy = nullptr;
    if (source != nullptr) {
        // The copy comes first: `source` may point into the string that is replaced.
        copy = DDS_String_dup(source);
        if (copy == nullptr) {
            return nullptr;
        }
    }
    DDS_String_free(*string);
    *string = copy;
    return copy;
}
