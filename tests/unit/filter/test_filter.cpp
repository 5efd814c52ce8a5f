// SPDX-License-Identifier: Apache-2.0
// Content filters: grammar, types, absent fields, bytes, parameters, patterns.

#include <gtest/gtest.h>
#include <kolt/cdr.h>
#include <kolt/filter.h>

#include <atomic>
#include <limits>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/types/filter_sample.h"

namespace {

using filter_sample::compile;
using filter_sample::Filter;
using filter_sample::Sample;

bool matches(const Filter &filter, const std::vector<DDS_Octet> &bytes) {
    return KOLT_Filter_matches(filter.get(), bytes.data(), bytes.size()) != 0;
}

bool matches(const std::string &expression, const std::vector<const char *> &parameters = {}) {
    KOLT_FilterError error{};
    const auto filter = compile(expression, parameters, &error);
    EXPECT_TRUE(filter) << expression << ": " << error.text << " at " << error.column;
    return filter && matches(filter, Sample().bytes());
}

// ---- Expressions that hold, and their negations ----

class HoldsFor : public testing::TestWithParam<const char *> {};

TEST_P(HoldsFor, TheSample) {
    const std::string expression = GetParam();
    EXPECT_TRUE(matches(expression));
    EXPECT_FALSE(matches("NOT (" + expression + ")"));
    EXPECT_TRUE(matches("not not (" + expression + ")"));
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, HoldsFor,
    testing::Values("long_ = -5", "long_ <> 5", "long_ != 5", "long_ < -4", "long_ <= -5",
                    "long_ > -6", "long_ >= -5", "-5 = long_", "0 > long_", "octet = 0xC8",
                    "octet = 0xc8", "octet > 199.5", "short_ = -300", "short_ = -0x12C",
                    "ushort = +60000", "ulong = 4000000000", "ulong > long_",
                    "longlong < -8999999999999999999", "longlong > -9223372036854775808",
                    "ulonglong = 18000000000000000000", "ulonglong < 18446744073709551615",
                    "ulonglong > longlong", "long_ < ulonglong", "real = 0.1", "real = 1e-1",
                    "real < precise", "precise = 2.5", "precise > 2", "precise = .25E1",
                    "precise <> long_", "long_ BETWEEN -5 AND -5", "long_ between -10 and 0",
                    "long_ NOT BETWEEN 0 AND 10", "precise BETWEEN 2 AND 3.5",
                    "long_ BETWEEN short_ AND octet"));

INSTANTIATE_TEST_SUITE_P(
    OtherTypes, HoldsFor,
    testing::Values("flag = TRUE", "flag <> false", "flag = 1", "True = flag", "letter = 'q'",
                    "letter > 'a'", "letter BETWEEN 'a' AND 'z'", "color = 'BLUE'", "color = BLUE",
                    "BLUE = color", "color = 7", "color <> RED", "color > GREEN",
                    "color BETWEEN GREEN AND 'BLUE'", "color > long_", "text = 'it''s a text'",
                    "text = `it''s a text'", "text > 'it'", "text < 'j'", "text <> ''",
                    "text LIKE 'it%'", "text like '%text'", "text LIKE '*a?text'",
                    "text NOT LIKE 'x%'", "'it''s a text' LIKE text"));

INSTANTIATE_TEST_SUITE_P(Structure, HoldsFor,
                         testing::Values("point.x = 3", "point . y = -4", "point.x > point.y",
                                         "grid[0][0] = 0", "grid[1][2] = 50",
                                         "grid[0][2] < grid[1][0]", "list[0] = 11", "list[1] = 22",
                                         "choice.name = 'chosen'", "(long_ = -5)", "((long_ = -5))",
                                         "long_ = -5 AND octet = 200", "long_ = 0 OR octet = 200",
                                         "long_ = 0 AND octet = 0 OR flag = TRUE",
                                         "flag = TRUE OR long_ = 0 AND octet = 0",
                                         "(flag = TRUE OR long_ = 0) AND octet = 200",
                                         "NOT long_ = 0 AND octet = 200",
                                         "NOT (long_ = 0 AND octet = 200)",
                                         "long_=-5 AND(octet=200)", "\tlong_\n=\r-5 "));

TEST(Filter, PrecedenceIsNotThenAndThenOr) {
    for (int bits = 0; bits < 8; ++bits) {
        const auto term = [&](int bit) {
            return std::string((bits >> bit & 1) != 0 ? "long_ = -5" : "long_ = 0");
        };
        const bool a = (bits & 1) != 0;
        const bool b = (bits & 2) != 0;
        const bool c = (bits & 4) != 0;
        EXPECT_EQ(matches(term(0) + " OR " + term(1) + " AND " + term(2)), a || (b && c));
        EXPECT_EQ(matches(term(0) + " AND " + term(1) + " OR " + term(2)), (a && b) || c);
        EXPECT_EQ(matches("NOT " + term(0) + " AND " + term(1) + " OR NOT " + term(2)),
                  (!a && b) || !c);
        EXPECT_EQ(matches("(" + term(0) + " OR " + term(1) + ") AND NOT (" + term(2) + ")"),
                  (a || b) && !c);
    }
}

TEST(Filter, NothingIsEqualToNotANumber) {
    Sample sample;
    sample.record.precise = std::numeric_limits<double>::quiet_NaN();
    const auto bytes = sample.bytes();
    EXPECT_FALSE(matches(compile("precise = precise"), bytes));
    EXPECT_FALSE(matches(compile("precise < 0 OR precise >= 0"), bytes));
    EXPECT_FALSE(matches(compile("precise NOT BETWEEN 0 AND 1"), bytes));
    EXPECT_TRUE(matches(compile("precise <> 0"), bytes));
}

TEST(Filter, ComparesLargeNumbersExactly) {
    Sample sample;
    sample.record.longlong = 9007199254740993;  // 2^53 + 1: no double
    sample.record.precise = 9007199254740992.0;
    const auto bytes = sample.bytes();
    EXPECT_TRUE(matches(compile("longlong > precise"), bytes));
    EXPECT_TRUE(matches(compile("longlong <> 9007199254740992.0"), bytes));
    sample.record.longlong = -1;
    EXPECT_TRUE(matches(compile("longlong < ulonglong"), sample.bytes()));
}

TEST(Filter, CharactersCompareAsUnsigned) {
    Sample sample;
    sample.record.letter = static_cast<char>(0xE4);
    EXPECT_TRUE(matches(compile("letter > 'z'"), sample.bytes()));
}

// ---- Absent fields ----

TEST(Filter, ComparisonsWithAbsentFieldsAreFalse) {
    for (const char *field : {"list[2]", "list[4]", "choice.number"}) {
        const std::string name = field;
        for (const char *rest : {" = 0", " <> 0", " < 1", " > -1", " BETWEEN -1 AND 1",
                                 " NOT BETWEEN 5 AND 6", " = long_", " <> long_"}) {
            EXPECT_FALSE(matches(name + rest)) << name << rest;
        }
        EXPECT_TRUE(matches("NOT " + name + " = 0"));
    }
    Sample sample;
    sample.record.choice._d = 1;
    sample.record.choice.number = 17;
    const auto bytes = sample.bytes();
    EXPECT_TRUE(matches(compile("choice.number = 17"), bytes));
    EXPECT_FALSE(matches(compile("choice.name NOT LIKE 'x'"), bytes));
    EXPECT_FALSE(matches(compile("choice.name <> ''"), bytes));
}

TEST(Filter, OptionalMembersThatAreNotSetAreAbsent) {
    Sample sample;
    DDS_Long value = 0;
    for (const DDS_UnsignedShort encapsulation :
         {DDS_UnsignedShort{KOLT_ENCAPSULATION_CDR_LE},
          DDS_UnsignedShort{KOLT_ENCAPSULATION_D_CDR2_LE}}) {
        sample.record.maybe = nullptr;
        const auto without = sample.bytes(encapsulation);
        EXPECT_FALSE(matches(compile("maybe = 0"), without));
        EXPECT_FALSE(matches(compile("maybe <> 0"), without));
        EXPECT_TRUE(matches(compile("NOT maybe = 0"), without));
        sample.record.maybe = &value;
        const auto with = sample.bytes(encapsulation);
        EXPECT_TRUE(matches(compile("maybe = 0"), with));
    }
}

// ---- Bytes ----

TEST(Filter, ReadsBothRepresentations) {
    const auto filter = compile("text LIKE 'it%' AND grid[1][1] = 40 AND list[1] = 22");
    EXPECT_TRUE(matches(filter, Sample().bytes(KOLT_ENCAPSULATION_CDR_LE)));
    EXPECT_TRUE(matches(filter, Sample().bytes(KOLT_ENCAPSULATION_D_CDR2_LE)));
}

TEST(Filter, MalformedSamplesDoNotMatch) {
    const auto filter = compile("NOT (text = 'x' AND list[1] = 3)");
    const auto bytes = Sample().bytes();
    ASSERT_TRUE(matches(filter, bytes));
    // Cut before the text: without the field the condition does not hold.
    for (std::size_t length = 0; length < 60; ++length) {
        EXPECT_FALSE(KOLT_Filter_matches(filter.get(), bytes.data(), length)) << length;
    }
    EXPECT_FALSE(KOLT_Filter_matches(filter.get(), nullptr, 10));
    EXPECT_FALSE(KOLT_Filter_matches(nullptr, bytes.data(), bytes.size()));
}

// ---- Size ----

TEST(Filter, RefusesExcessiveNesting) {
    KOLT_FilterError error{};
    const auto nested = [](int depth) {
        return std::string(static_cast<std::size_t>(depth), '(') + "long_ = -5" +
               std::string(static_cast<std::size_t>(depth), ')');
    };
    EXPECT_TRUE(matches(nested(90)));
    EXPECT_FALSE(compile(nested(200), {}, &error));
    EXPECT_STREQ(error.text, "the expression is nested too deeply");
    EXPECT_FALSE(compile(nested(1000000)));
    std::string nots;
    for (int i = 0; i < 100000; ++i) {
        nots += "NOT ";
    }
    EXPECT_FALSE(compile(nots + "long_ = 1"));
}

TEST(Filter, LongChainsAreNoNesting) {
    std::string expression = "long_ = 0";
    for (int i = 0; i < 5000; ++i) {
        expression += i % 2 != 0 ? " OR octet = 1 AND flag = TRUE" : " OR long_ = 1";
    }
    EXPECT_FALSE(matches(expression));
    EXPECT_TRUE(matches(expression + " OR long_ = -5"));
}

TEST(Filter, ManyFieldsAreFine) {
    std::string expression = "flag = TRUE";
    for (const char *field : {"letter <> 'a'",   "octet > 0",       "short_ < 0",
                              "ushort > 0",      "long_ < 0",       "ulong > 0",
                              "longlong < 0",    "ulonglong > 0",   "real > 0",
                              "precise > 0",     "color > 0",       "text <> ''",
                              "point.x > 0",     "point.y < 0",     "grid[0][0] = 0",
                              "grid[0][1] = 10", "grid[0][2] = 20", "grid[1][0] = 30",
                              "grid[1][1] = 40", "list[0] = 11",    "choice.name = 'chosen'"}) {
        expression += std::string(" AND ") + field;
    }
    EXPECT_TRUE(matches(expression + " AND " + expression));
}

// ---- Parameters ----

TEST(FilterParameters, StandForConstants) {
    EXPECT_TRUE(matches("long_ = %0", {"-5"}));
    EXPECT_TRUE(matches("%0 = long_", {" -5 "}));
    EXPECT_TRUE(matches("long_ = %1 and octet = %0", {"200", "-5"}));
    EXPECT_TRUE(matches("long_ BETWEEN %0 AND %1", {"-6", "-4.5"}));
    EXPECT_TRUE(matches("octet = %0", {"0xC8"}));
    EXPECT_TRUE(matches("real = %0", {"0.1"}));
    EXPECT_TRUE(matches("flag = %0", {"true"}));
    EXPECT_TRUE(matches("flag = %0", {"1"}));
    EXPECT_TRUE(matches("color = %0 AND color = %1 AND color = %2", {"'BLUE'", "BLUE", "7"}));
    EXPECT_TRUE(matches("letter = %0 AND letter = %1", {"'q'", "q"}));
    EXPECT_TRUE(matches("text = %0 AND text = %1", {"'it''s a text'", "it's a text"}));
    EXPECT_TRUE(matches("text LIKE %0", {"%text"}));
    EXPECT_TRUE(matches("text <> %0", {"5"}));
    // One parameter, two types.
    EXPECT_TRUE(matches("precise > %0 AND text > %0", {"1"}));
    // More than are used.
    EXPECT_TRUE(matches("long_ = %0", {"-5", "unused"}));
    EXPECT_TRUE(matches("long_ = -5", {"unused"}));
}

TEST(FilterParameters, OfTheWrongTypeAreRefused) {
    const std::pair<const char *, const char *> table[] = {
        {"long_ = %0", "abc"},  {"long_ = %0", "'5'"}, {"long_ = %0", ""},
        {"long_ = %0", "5 5"},  {"long_ = %0", "%1"},  {"long_ = %0", "long_"},
        {"flag = %0", "yes"},   {"letter = %0", "qq"}, {"letter = %0", ""},
        {"color = %0", "PINK"}, {"color = %0", "1.5"}, {"color = %0", ""},
        {"precise = %0", "1e"},
    };
    for (const auto &[expression, parameter] : table) {
        KOLT_FilterError error{};
        EXPECT_FALSE(compile(expression, {parameter}, &error)) << expression << parameter;
        EXPECT_EQ(std::string(error.text).rfind("parameter %0: ", 0), 0U) << error.text;
        EXPECT_EQ(error.column, std::string(expression).find('%') + 1);
    }
}

TEST(FilterParameters, AreReplaced) {
    const auto bytes = Sample().bytes();
    const auto filter = compile("long_ = %0 OR text = %1", {"1", "x"});
    ASSERT_TRUE(filter);
    EXPECT_STREQ(KOLT_Filter_expression(filter.get()), "long_ = %0 OR text = %1");
    EXPECT_FALSE(matches(filter, bytes));
    const char *const fitting[] = {"-5", "y", "more"};
    EXPECT_TRUE(KOLT_Filter_set_parameters(filter.get(), fitting, 3, nullptr));
    EXPECT_TRUE(matches(filter, bytes));
    EXPECT_EQ(KOLT_Filter_parameter_count(filter.get()), 3U);
    DDS_Char *text = KOLT_Filter_get_parameter(filter.get(), 2);
    EXPECT_STREQ(text, "more");
    DDS_String_free(text);
    EXPECT_EQ(KOLT_Filter_get_parameter(filter.get(), 3), nullptr);

    KOLT_FilterError error{};
    const char *const wrong[] = {"five", "y"};
    EXPECT_FALSE(KOLT_Filter_set_parameters(filter.get(), wrong, 2, &error));
    EXPECT_EQ(error.column, 9U);
    EXPECT_FALSE(KOLT_Filter_set_parameters(filter.get(), fitting, 1, &error));
    EXPECT_NE(std::string(error.text).find("parameter %1 is missing"), std::string::npos);
    EXPECT_TRUE(matches(filter, bytes));
    EXPECT_EQ(KOLT_Filter_parameter_count(filter.get()), 3U);
}

// Both parameters change together: no evaluation may see one of each pair.
TEST(FilterParameters, AreReplacedAsAWholeWhileOthersEvaluate) {
    const auto bytes = Sample().bytes();
    const char *const low[] = {"-5", "-5"};
    const char *const high[] = {"100", "100"};
    const auto filter =
        compile("long_ = %0 AND long_ <> %1 OR long_ <> %0 AND long_ = %1", {low[0], low[1]});
    std::atomic<bool> running{true};
    std::atomic<int> torn{0};
    std::atomic<int> evaluated{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i) {
        threads.emplace_back([&] {
            while (running) {
                torn += matches(filter, bytes);
                ++evaluated;
            }
        });
    }
    for (int i = 0; i < 5000 || evaluated < 1000; ++i) {
        KOLT_Filter_set_parameters(filter.get(), i % 2 != 0 ? low : high, 2, nullptr);
    }
    running = false;
    for (auto &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(torn, 0);
}

// ---- Patterns ----

struct Pattern {
    const char *pattern;
    bool expected;
};

TEST(FilterLike, Patterns) {
    // The text is "it's a text".
    const Pattern table[] = {
        {"it's a text", true},
        {"it's a tex", false},
        {"it's a textx", false},
        {"", false},
        {"%", true},
        {"%%", true},
        {"*", true},
        {"it%", true},
        {"%text", true},
        {"%a%", true},
        {"%z%", false},
        {"___________", true},
        {"__________", false},
        {"____________", false},
        {"?t?s*t", true},
        {"%t", true},
        {"%s%t%x%t", true},
        {"%t%t%t%t", false},
        {"it%text%", true},
        {"%_", true},
        {"\\%", false},
        {"it's\\ a text", true},
        {"it\\_s a text", false},
        {"IT%", false},
        {"it's a text\\", false},
    };
    for (const auto &[pattern, expected] : table) {
        EXPECT_EQ(matches("text LIKE %0", {pattern}), expected) << pattern;
        EXPECT_EQ(matches("text NOT LIKE %0", {pattern}), !expected) << pattern;
    }
    Sample sample;
    std::string special = "100%_a\\";
    sample.record.text = special.data();
    EXPECT_TRUE(matches(compile(R"(text LIKE '100\%\_?\\')"), sample.bytes()));
    EXPECT_FALSE(matches(compile(R"(text LIKE '1000\_?\\')"), sample.bytes()));
    std::string empty;
    sample.record.text = empty.data();
    EXPECT_TRUE(
        matches(compile("text LIKE '' AND text LIKE '%' AND text NOT LIKE '_'"), sample.bytes()));
}

TEST(FilterLike, ManyWildcardsTakeNoExponentialTime) {
    Sample sample;
    std::string text(400, 'a');
    sample.record.text = text.data();
    std::string pattern;
    for (int i = 0; i < 100; ++i) {
        pattern += "a%";
    }
    EXPECT_FALSE(matches(compile("text LIKE '" + pattern + "b'"), sample.bytes()));
}

}  // namespace
