// SPDX-License-Identifier: Apache-2.0
// Dynamic data that free themselves, and the values of their members.
#pragma once

#include <gtest/gtest.h>
#include <kolt/dynamic_data.h>

#include <memory>
#include <string>
#include <vector>

namespace support {

constexpr DDS_DynamicDataMemberId kNoId = DDS_MEMBER_ID_INVALID;  // beside a name

struct DataDeleter {
    void operator()(DDS_DynamicData *data) const { DDS_DynamicData_delete(data); }
};
using Data = std::unique_ptr<DDS_DynamicData, DataDeleter>;

inline Data make(const DDS_TypeCode *type) {
    return Data(DDS_DynamicData_new(type, &DDS_DYNAMIC_DATA_PROPERTY_DEFAULT));
}

inline DDS_Long get_long(const Data &data, const char *name) {
    DDS_Long value = -999;
    EXPECT_EQ(DDS_DynamicData_get_long(data.get(), &value, name, kNoId), DDS_RETCODE_OK) << name;
    return value;
}

inline std::string get_string(const Data &data, const char *name) {
    DDS_Char *value = nullptr;
    EXPECT_EQ(DDS_DynamicData_get_string(data.get(), &value, nullptr, name, kNoId), DDS_RETCODE_OK)
        << name;
    const std::string text = value == nullptr ? "" : value;
    DDS_String_free(value);
    return text;
}

// The bytes of a value; empty when it cannot be serialised.
inline std::vector<char> to_bytes(const Data &data, DDS_DataRepresentationId_t representation) {
    DDS_UnsignedLong size = 0;
    EXPECT_EQ(DDS_DynamicData_to_cdr_buffer_ex(data.get(), nullptr, &size, representation),
              DDS_RETCODE_OK);
    std::vector<char> bytes(size);
    EXPECT_EQ(DDS_DynamicData_to_cdr_buffer_ex(data.get(), bytes.data(), &size, representation),
              DDS_RETCODE_OK);
    return bytes;
}

inline DDS_ReturnCode_t from_bytes(const Data &data, const std::vector<char> &bytes) {
    return DDS_DynamicData_from_cdr_buffer(data.get(), bytes.data(),
                                           static_cast<DDS_UnsignedLong>(bytes.size()));
}

}  // namespace support
