// SPDX-License-Identifier: Apache-2.0
// Strings, cookies, times, return codes and handles.

#include <gtest/gtest.h>
#include <kolt/infrastructure.h>

#include <cstdint>

#include "support/platform/huge_allocations.h"

namespace {

TEST(Strings, ReplaceDupFree) {
    DDS_Char *string = nullptr;
    EXPECT_STREQ(DDS_String_replace(&string, "abc"), "abc");
    EXPECT_STREQ(DDS_String_replace(&string, string + 1), "bc");
    EXPECT_EQ(DDS_String_replace(&string, nullptr), nullptr);
    EXPECT_EQ(string, nullptr);
    EXPECT_EQ(DDS_String_replace(nullptr, "abc"), nullptr);
    EXPECT_EQ(DDS_String_dup(nullptr), nullptr);
    EXPECT_EQ(DDS_String_alloc(SIZE_MAX), nullptr);
    DDS_Char *const buffer = DDS_String_alloc(3);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(buffer[i], '\0');
    }
    DDS_String_free(buffer);
    DDS_String_free(nullptr);
}

TEST(Values, CookiesTimesNames) {
    DDS_Cookie_t cookie;
    DDS_Cookie_t_initialize(&cookie);
    EXPECT_EQ(DDS_Cookie_to_pointer(&cookie), nullptr);
    int target = 0;
    EXPECT_TRUE(DDS_Cookie_from_pointer(&cookie, &target));
    DDS_Cookie_t copy;
    EXPECT_TRUE(DDS_Cookie_t_copy(&copy, &cookie));
    EXPECT_TRUE(DDS_Cookie_equals(&copy, &cookie));
    EXPECT_EQ(DDS_Cookie_to_pointer(&copy), &target);
    DDS_Cookie_t_finalize(&copy);
    DDS_Cookie_t_finalize(&copy);
    EXPECT_FALSE(DDS_Cookie_equals(&copy, &cookie));
    EXPECT_FALSE(DDS_Cookie_equals(nullptr, &cookie));
    EXPECT_FALSE(DDS_Cookie_t_copy(nullptr, &cookie));
    EXPECT_FALSE(DDS_Cookie_from_pointer(nullptr, &target));
    EXPECT_STREQ(KOLT_ReturnCode_to_string(DDS_RETCODE_TIMEOUT), "DDS_RETCODE_TIMEOUT");
    EXPECT_STREQ(KOLT_ReturnCode_to_string(DDS_RETCODE_ILLEGAL_OPERATION),
                 "DDS_RETCODE_ILLEGAL_OPERATION");
    EXPECT_TRUE(DDS_Duration_is_infinite(&DDS_DURATION_INFINITE));
    EXPECT_FALSE(DDS_Duration_is_infinite(&DDS_DURATION_ZERO));
    EXPECT_FALSE(DDS_Duration_is_infinite(nullptr));
    EXPECT_EQ(DDS_TIME_INVALID.sec, -1);
    EXPECT_FALSE(DDS_InstanceHandle_is_valid(DDS_HANDLE_NIL));
    EXPECT_TRUE(DDS_InstanceHandle_is_valid(1));
}

}  // namespace
