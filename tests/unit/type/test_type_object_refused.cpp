// SPDX-License-Identifier: Apache-2.0
// Types that have no description, and the messages about them.

#include <gtest/gtest.h>
#include <kolt/type_object.h>

#include <string>

#include "support/logger/log_capture.h"
#include "support/types/test_types.h"
#include "support/types/type_book.h"

namespace {

using support::MemberOf;
using support::TypeBook;

DDS_ReturnCode_t describe(const DDS_TypeCode *type) {
    DDS_OctetSeq information = DDS_SEQUENCE_INITIALIZER;
    DDS_OctetSeq mapping = DDS_SEQUENCE_INITIALIZER;
    const DDS_ReturnCode_t code =
        KOLT_TypeObject_describe(type, type->name, &information, &mapping);
    EXPECT_EQ(DDS_OctetSeq_get_length(&information) > 0, code == DDS_RETCODE_OK);
    EXPECT_EQ(DDS_OctetSeq_get_length(&mapping) > 0, code == DDS_RETCODE_OK);
    DDS_OctetSeq_finalize(&information);
    DDS_OctetSeq_finalize(&mapping);
    return code;
}

class NoTypeObject : public ::testing::Test {
  protected:
    void expect_unsupported(const DDS_TypeCode *part, const std::string &reason) {
        EXPECT_EQ(describe(book_.structure("Whole", DDS_FINAL_EXTENSIBILITY, {{"part", 0, part}})),
                  DDS_RETCODE_UNSUPPORTED)
            << reason;
        EXPECT_TRUE(log_.saw("Whole has no type object: " + reason));
    }
    const DDS_TypeCode *number() { return TypeBook::primitive(DDS_TK_LONG); }

    TypeBook book_;
    support::LogCapture log_;
};

TEST_F(NoTypeObject, Names) {
    DDS_TypeCode nameless = *support::point_type();
    nameless.name = nullptr;
    expect_unsupported(&nameless, "an unnamed type: no name of 1 to 256 characters");
    const std::string longest(256, 'n');
    EXPECT_EQ(describe(book_.structure(longest, DDS_FINAL_EXTENSIBILITY, {{longest, 0, number()}})),
              DDS_RETCODE_OK);
    const std::string longer(257, 'n');
    expect_unsupported(book_.structure(longer, DDS_FINAL_EXTENSIBILITY, {{"m", 0, number()}}),
                       longer + ": no name of 1 to 256 characters");
    const std::string member = ": a member without a name of 1 to 256 characters";
    expect_unsupported(book_.structure("S", DDS_FINAL_EXTENSIBILITY, {{longer, 0, number()}}),
                       "S" + member);
    expect_unsupported(book_.enumeration("E", DDS_FINAL_EXTENSIBILITY, {{"", 0}}), "E" + member);
}

TEST_F(NoTypeObject, NoMembers) {
    expect_unsupported(book_.structure("S", DDS_FINAL_EXTENSIBILITY, {}), "S: no members");
    expect_unsupported(book_.enumeration("E", DDS_FINAL_EXTENSIBILITY, {}), "E: no members");
    expect_unsupported(book_.unite("U", DDS_FINAL_EXTENSIBILITY, number(), {}), "U: no members");
}

TEST_F(NoTypeObject, Enumerations) {
    expect_unsupported(book_.enumeration("E", DDS_MUTABLE_EXTENSIBILITY, {{"A", 1}}),
                       "E: a mutable enumeration");
    expect_unsupported(book_.enumeration("E", DDS_FINAL_EXTENSIBILITY, {{"A", 1}, {"B", 1}}),
                       "E: two enumerators with one value");
    // Also behind collections and as a discriminator.
    const DDS_TypeCode *const twice =
        book_.enumeration("E", DDS_FINAL_EXTENSIBILITY, {{"A", 1}, {"B", 1}});
    expect_unsupported(book_.sequence(book_.array(twice, {2})), "E: two enumerators");
    expect_unsupported(
        book_.unite("U", DDS_FINAL_EXTENSIBILITY, twice, {MemberOf("m", 1, number()).labels({1})}),
        "E: two enumerators");
}

TEST_F(NoTypeObject, TwoDefaultBranches) {
    expect_unsupported(book_.unite("U", DDS_FINAL_EXTENSIBILITY, number(),
                                   {MemberOf("a", 1, number()).by_default(),
                                    MemberOf("b", 2, number()).by_default()}),
                       "U: more than one default branch");
}

TEST_F(NoTypeObject, TooManyElements) {
    const DDS_TypeCode *const inner = book_.array(TypeBook::primitive(DDS_TK_OCTET), {65536});
    expect_unsupported(book_.sequence(book_.array(inner, {65536})),
                       "an unnamed type: too many elements");
}

TEST_F(NoTypeObject, TooManyTypes) {
    TypeBook::Members members;
    for (unsigned i = 0; i < 1000; ++i) {
        members.emplace_back("m" + std::to_string(i), i,
                             book_.enumeration("E" + std::to_string(i), DDS_FINAL_EXTENSIBILITY,
                                               {{"A" + std::to_string(i), 0}}));
    }
    EXPECT_EQ(describe(book_.structure("Whole", DDS_FINAL_EXTENSIBILITY, members)),
              DDS_RETCODE_UNSUPPORTED);
    EXPECT_TRUE(log_.saw("consists of too many types"));
}

TEST_F(NoTypeObject, NoTopicType) {
    EXPECT_EQ(describe(support::color_type()), DDS_RETCODE_UNSUPPORTED);
    EXPECT_TRUE(log_.saw("neither a structure nor a union"));
}

// A type code can hold itself only by a mistake: nothing could stand for its record.
TEST_F(NoTypeObject, Recursion) {
    DDS_TypeCode list = *book_.sequence(number());
    DDS_TypeCode tree = *book_.structure("Tree", DDS_FINAL_EXTENSIBILITY, {{"children", 0, &list}});
    list.content_type = &tree;
    EXPECT_EQ(describe(&tree), DDS_RETCODE_BAD_PARAMETER);
}

TEST_F(NoTypeObject, Arguments) {
    DDS_OctetSeq information = DDS_SEQUENCE_INITIALIZER;
    DDS_OctetSeq mapping = DDS_SEQUENCE_INITIALIZER;
    const DDS_TypeCode *const type = support::point_type();
    EXPECT_EQ(KOLT_TypeObject_describe(nullptr, "T", &information, &mapping),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(KOLT_TypeObject_describe(type, nullptr, &information, &mapping),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(KOLT_TypeObject_describe(type, "T", nullptr, &mapping), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(KOLT_TypeObject_describe(type, "T", &information, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    // Sequences are used again.
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(KOLT_TypeObject_describe(support::everything_type(), "E", &information, &mapping),
                  DDS_RETCODE_OK);
        EXPECT_EQ(KOLT_TypeObject_describe(type, "T", &information, &mapping), DDS_RETCODE_OK);
        EXPECT_EQ(DDS_OctetSeq_get_length(&information), 100U);
    }
    DDS_OctetSeq_finalize(&information);
    DDS_OctetSeq_finalize(&mapping);
}

}  // namespace
