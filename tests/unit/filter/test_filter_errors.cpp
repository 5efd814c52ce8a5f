// SPDX-License-Identifier: Apache-2.0
// Content filters: refused expressions, with the place and the reason.

#include <gtest/gtest.h>
#include <kolt/filter.h>

#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "support/types/filter_sample.h"

namespace {

using filter_sample::compile;
using filter_sample::Filter;
using filter_sample::Types;

struct Wrong {
    const char *expression;
    unsigned column;
    const char *text;
};

// NOLINTNEXTLINE(readability-identifier-naming): the name that GoogleTest looks for
void PrintTo(const Wrong &wrong, std::ostream *stream) {
    *stream << wrong.expression;
}

class Refuses : public testing::TestWithParam<Wrong> {};

TEST_P(Refuses, WithPlaceAndReason) {
    const Wrong &wrong = GetParam();
    KOLT_FilterError error{};
    EXPECT_FALSE(compile(wrong.expression, {"1"}, &error));
    EXPECT_EQ(error.column, wrong.column) << error.text;
    EXPECT_NE(std::string(error.text).find(wrong.text), std::string::npos) << error.text;
    // Without a place for the error, too.
    EXPECT_FALSE(compile(wrong.expression, {"1"}));
}

INSTANTIATE_TEST_SUITE_P(
    Syntax, Refuses,
    testing::Values(
        Wrong{"", 1, "field, constant or parameter expected"},
        Wrong{"  ", 3, "field, constant or parameter expected"},
        Wrong{"long_", 6, "comparison operator"}, Wrong{"long_ 5", 7, "comparison operator"},
        Wrong{"long_ = ", 9, "field, constant or parameter expected"},
        Wrong{"long_ == 5", 8, "field, constant or parameter expected"},
        Wrong{"long_ = 5 5", 11, "AND, OR or the end"}, Wrong{"(long_ = 5", 11, "')' expected"},
        Wrong{"long_ = 5)", 10, "AND, OR or the end"}, Wrong{"long_ = 5 AND", 14, "expected"},
        Wrong{"AND long_ = 5", 1, "expected"}, Wrong{"long_ NOT = 5", 11, "after NOT"},
        Wrong{"long_ BETWEEN 1", 16, "AND expected"},
        Wrong{"long_ BETWEEN 1 OR 2", 17, "AND expected"},
        Wrong{"5 BETWEEN 1 AND 2", 1, "BETWEEN needs a field"},
        Wrong{"text = 'abc", 8, "without closing quote"}, Wrong{"long_ = 12x", 9, "malformed"},
        Wrong{"long_ = 1.5.5", 9, "malformed"}, Wrong{"long_ = 0x", 9, "malformed"},
        Wrong{"long_ = 1e", 9, "malformed"}, Wrong{"long_ = 99999999999999999999", 9, "64 bits"},
        Wrong{"long_ = -9223372036854775809", 9, "64 bits"}, Wrong{"long_ # 5", 7, "unexpected"},
        Wrong{"long_ = %", 9, "a parameter is"}, Wrong{"long_ = %100", 9, "a parameter is"},
        Wrong{"1 = 1", 1, "needs a field"}, Wrong{"%0 = %0", 1, "needs a field"},
        Wrong{"point. = 1", 8, "member name expected"}, Wrong{"list[] = 1", 6, "index expected"},
        Wrong{"list[-1] = 1", 6, "index expected"}, Wrong{"list[1 = 1", 8, "']' expected"}));

INSTANTIATE_TEST_SUITE_P(
    Types, Refuses,
    testing::Values(
        Wrong{"nothing = 1", 1, "'nothing' is not a member of Record"},
        Wrong{"1 = nothing", 5, "'nothing' is not a member of Record"},
        Wrong{"long_ = 1 AND point.z = 1", 21, "'z' is not a member of Point"},
        Wrong{"long_.x = 1", 7, "has no members"}, Wrong{"point = 1", 1, "constructed type"},
        Wrong{"list = 1", 1, "constructed type"}, Wrong{"long_[0] = 1", 6, "has no elements"},
        Wrong{"list[5] = 1", 5, "past the sequence's bound"},
        Wrong{"list[0][0] = 1", 5, "one index"}, Wrong{"grid[1] = 1", 5, "2 dimension"},
        Wrong{"grid[2][0] = 1", 5, "past the end"}, Wrong{"grid[0][3] = 1", 5, "past the end"},
        Wrong{"long_ = 'x'", 9, "cannot compare a number with the string 'x'"},
        Wrong{"long_ = TRUE", 9, "cannot compare a number with a boolean"},
        Wrong{"text = 5", 8, "cannot compare a string with a number"},
        Wrong{"flag = 2", 8, "cannot compare a boolean"},
        Wrong{"flag = 'TRUE'", 8, "cannot compare a boolean"},
        Wrong{"letter = 'qq'", 10, "cannot compare a character"},
        Wrong{"color = 'PINK'", 9, "'PINK' is not an enumerator of Color"},
        Wrong{"color = PINK", 9, "'PINK' is not an enumerator of Color"},
        Wrong{"color = 1.5", 9, "cannot compare an enumeration"},
        Wrong{"text = long_", 6, "cannot compare a string with a number"},
        Wrong{"flag = long_", 6, "cannot compare a boolean with a number"},
        Wrong{"long_ LIKE '%'", 7, "LIKE compares strings"}, Wrong{"long_ LIKE 5", 7, "LIKE"},
        Wrong{"long_ BETWEEN 'a' AND 2", 15, "cannot compare"},
        Wrong{"long_ BETWEEN 1 AND text", 21, "cannot compare"},
        Wrong{"long_ = %1", 9, "parameter %1 is missing, there are 1"}));

TEST(FilterErrors, RefusesBadArguments) {
    KOLT_FilterError error{};
    EXPECT_EQ(KOLT_Filter_new(nullptr, "long_ = 1", nullptr, 0, &error), nullptr);
    EXPECT_EQ(KOLT_Filter_new(&Types::record(), nullptr, nullptr, 0, &error), nullptr);
    EXPECT_EQ(KOLT_Filter_new(&Types::record(), "long_ = 1", nullptr, 1, &error), nullptr);
    EXPECT_STREQ(error.text, "bad parameter");
    const auto *primitive = DDS_TypeCodeFactory_get_primitive_tc(DDS_TK_LONG);
    EXPECT_EQ(KOLT_Filter_new(primitive, "long_ = 1", nullptr, 0, &error), nullptr);
    EXPECT_STREQ(error.text, "only structures can be filtered");
    EXPECT_FALSE(compile("long_ = %0", {nullptr}, &error));
    EXPECT_STREQ(error.text, "a parameter is NULL");
    EXPECT_FALSE(KOLT_Filter_set_parameters(nullptr, nullptr, 0, &error));
    EXPECT_EQ(KOLT_Filter_expression(nullptr), nullptr);
    EXPECT_EQ(KOLT_Filter_parameter_count(nullptr), 0U);
    EXPECT_EQ(KOLT_Filter_get_parameter(nullptr, 0), nullptr);
    KOLT_Filter_delete(nullptr);
}

TEST(FilterErrors, LongErrorsAreCut) {
    KOLT_FilterError error{};
    EXPECT_FALSE(compile("text = " + std::string(1000, 'x'), {}, &error));
    EXPECT_EQ(std::strlen(error.text), sizeof error.text - 1);
}

}  // namespace
