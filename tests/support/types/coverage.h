// SPDX-License-Identifier: Apache-2.0
// A record of the values that the fields of some samples have held.
#pragma once

#include <gtest/gtest.h>
#include <kolt/sequence.h>
#include <kolt/typecode.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <string>

namespace support {

// Keeps the values by the names of the fields; all elements of an array or sequence are one.
class Coverage {
  public:
    void add(const DDS_TypeCode &type, const void *value, const std::string &name) {
        switch (type.kind) {
            case DDS_TK_STRUCT:
                for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                    add_member(type, value, i, name);
                }
                break;
            case DDS_TK_UNION: {
                const auto kind = static_cast<DDS_UnsignedLong>(number<DDS_Enum>(value));
                integers_[name + "._d"].insert(kind);
                add_member(type, value, kind, name);
                break;
            }
            case DDS_TK_ARRAY:
                for (DDS_UnsignedLong i = 0; i < type.dimensions[0]; ++i) {
                    add_element(*type.content_type, value, i, name);
                }
                break;
            case DDS_TK_SEQUENCE: {
                const auto &sequence = *static_cast<const KOLT_Sequence *>(value);
                lengths_[name].insert(sequence._length);
                for (DDS_UnsignedLong i = 0; i < sequence._length; ++i) {
                    add_element(*type.content_type, sequence._contiguous_buffer, i, name);
                }
                break;
            }
            case DDS_TK_STRING:
                lengths_[name].insert(std::strlen(*static_cast<const char *const *>(value)));
                break;
            case DDS_TK_LONGLONG:
                integers_[name].insert(number<DDS_LongLong>(value));
                break;
            default:
                integers_[name].insert(number<DDS_Long>(value));
                break;
        }
    }

    void expect_all(const DDS_TypeCode &type, const std::string &name) {
        SCOPED_TRACE(name);
        switch (type.kind) {
            case DDS_TK_UNION:
                EXPECT_EQ(integers_[name + "._d"].size(), type.member_count) << "kinds";
                [[fallthrough]];
            case DDS_TK_STRUCT:
                for (DDS_UnsignedLong i = 0; i < type.member_count; ++i) {
                    expect_all(*type.members[i].type, name + "." + type.members[i].name);
                }
                break;
            case DDS_TK_SEQUENCE:
                EXPECT_EQ(lengths_[name].size(), type.bound + 1) << "from none to the bound";
                [[fallthrough]];
            case DDS_TK_ARRAY:
                expect_all(*type.content_type, name);
                break;
            case DDS_TK_STRING:
                EXPECT_EQ(lengths_[name].count(0), 1U) << "empty";
                EXPECT_EQ(lengths_[name].count(type.bound), 1U) << "full";
                EXPECT_GT(lengths_[name].size(), 40U);
                break;
            case DDS_TK_ENUM:
                EXPECT_EQ(integers_[name].size(), type.member_count) << "enumerators";
                break;
            case DDS_TK_LONGLONG:
                expect_ends(name, INT64_MIN, INT64_MAX);
                break;
            default:
                expect_ends(name, INT32_MIN, INT32_MAX);
                break;
        }
    }

  private:
    template <typename T>
    static T number(const void *value) {
        T result;
        std::memcpy(&result, value, sizeof(result));
        return result;
    }
    void add_member(const DDS_TypeCode &type, const void *record, DDS_UnsignedLong index,
                    const std::string &name) {
        add(*type.members[index].type,
            static_cast<const char *>(record) + type.access->member_offsets[index],
            name + "." + type.members[index].name);
    }
    void add_element(const DDS_TypeCode &type, const void *first, DDS_UnsignedLong index,
                     const std::string &name) {
        add(type, static_cast<const char *>(first) + index * type.access->record_size, name);
    }
    void expect_ends(const std::string &name, DDS_LongLong smallest, DDS_LongLong largest) {
        for (const DDS_LongLong end : {smallest, largest, DDS_LongLong{0}, DDS_LongLong{-1}}) {
            EXPECT_EQ(integers_[name].count(end), 1U) << end;
        }
        EXPECT_GT(integers_[name].size(), 1000U);
    }

    std::map<std::string, std::set<DDS_LongLong>> integers_;
    std::map<std::string, std::set<std::size_t>> lengths_;
};

}  // namespace support
