// SPDX-License-Identifier: Apache-2.0
// Type codes and the operations on records that interpret them.
#include <gtest/gtest.h>
#include <kolt/cdr.h>
#include <kolt/sequence.h>
#include <kolt/typecode.h>

#include <cstring>

#include "support/types/test_types.h"

namespace {

using namespace support;

constexpr DDS_TypeAllocationParams_t kAllocate = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
constexpr DDS_TypeDeallocationParams_t kDeallocate = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;

TEST(TypeCode, Getters) {
    const DDS_TypeCode *const type = message_type();
    EXPECT_EQ(DDS_TypeCode_kind(type), DDS_TK_STRUCT);
    EXPECT_STREQ(DDS_TypeCode_name(type), "Test::Message");
    EXPECT_EQ(DDS_TypeCode_member_count(type), 5U);
    EXPECT_STREQ(DDS_TypeCode_member(type, 2)->name, "category");
    EXPECT_EQ(DDS_TypeCode_member(type, 5), nullptr);
    EXPECT_EQ(DDS_TypeCode_find_member_by_name(type, "text"), DDS_TypeCode_member(type, 3));
    EXPECT_EQ(DDS_TypeCode_find_member_by_name(type, "nothing"), nullptr);
    EXPECT_EQ(DDS_TypeCode_find_member_by_id(type, 4), DDS_TypeCode_member(type, 4));
    EXPECT_EQ(DDS_TypeCode_find_member_by_id(type, 9), nullptr);
    EXPECT_TRUE(DDS_TypeCode_is_keyed(type));
    EXPECT_FALSE(DDS_TypeCode_is_keyed(point_type()));
    EXPECT_FALSE(DDS_TypeCode_is_keyed(color_type()));
}

TEST(TypeCode, NullsAreHarmless) {
    EXPECT_EQ(DDS_TypeCode_kind(nullptr), DDS_TK_NULL);
    EXPECT_EQ(DDS_TypeCode_name(nullptr), nullptr);
    EXPECT_EQ(DDS_TypeCode_member_count(nullptr), 0U);
    EXPECT_EQ(DDS_TypeCode_member(nullptr, 0), nullptr);
    EXPECT_EQ(DDS_TypeCode_find_member_by_name(message_type(), nullptr), nullptr);
    EXPECT_EQ(DDS_TypeCode_find_member_by_id(nullptr, 0), nullptr);
    EXPECT_FALSE(DDS_TypeCode_is_keyed(nullptr));
    EXPECT_EQ(DDS_TypeCode_get_native_encapsulation(nullptr, 0), 65535U);
}

TEST(TypeCode, Primitives) {
    for (int kind = DDS_TK_BOOLEAN; kind <= DDS_TK_DOUBLE; ++kind) {
        const DDS_TypeCode *const type =
            DDS_TypeCodeFactory_get_primitive_tc(static_cast<DDS_TCKind>(kind));
        ASSERT_NE(type, nullptr) << kind;
        EXPECT_EQ(type->kind, kind);
        EXPECT_NE(type->name, nullptr);
    }
    EXPECT_EQ(DDS_TypeCodeFactory_get_primitive_tc(DDS_TK_STRUCT), nullptr);
    EXPECT_EQ(DDS_TypeCodeFactory_get_primitive_tc(DDS_TK_NULL), nullptr);
}

// DDS-XTypes 1.3, 7.6.3.1.2, table 60.
TEST(TypeCode, NativeEncapsulations) {
    const auto of = [](const DDS_TypeCode *type, DDS_DataRepresentationId_t representation) {
        return DDS_TypeCode_get_native_encapsulation(type, representation);
    };
    EXPECT_EQ(of(point_type(), DDS_XCDR_DATA_REPRESENTATION), KOLT_ENCAPSULATION_CDR_LE);
    EXPECT_EQ(of(point_type(), DDS_XCDR2_DATA_REPRESENTATION), KOLT_ENCAPSULATION_CDR2_LE);
    EXPECT_EQ(of(id_type(), DDS_XCDR_DATA_REPRESENTATION), KOLT_ENCAPSULATION_CDR_LE);
    EXPECT_EQ(of(id_type(), DDS_XCDR2_DATA_REPRESENTATION), KOLT_ENCAPSULATION_D_CDR2_LE);
    EXPECT_EQ(of(message_type(), DDS_XCDR_DATA_REPRESENTATION), KOLT_ENCAPSULATION_PL_CDR_LE);
    EXPECT_EQ(of(message_type(), DDS_XCDR2_DATA_REPRESENTATION), KOLT_ENCAPSULATION_PL_CDR2_LE);
    EXPECT_EQ(of(message_type(), DDS_AUTO_DATA_REPRESENTATION), KOLT_ENCAPSULATION_PL_CDR_LE);
    EXPECT_EQ(of(message_type(), DDS_XML_DATA_REPRESENTATION), KOLT_ENCAPSULATION_INVALID);
    DDS_TypeCode second = *point_type();
    second.representations = DDS_DATA_REPRESENTATION_MASK_XCDR2;
    EXPECT_EQ(of(&second, DDS_XCDR_DATA_REPRESENTATION), KOLT_ENCAPSULATION_INVALID);
    EXPECT_EQ(of(&second, DDS_AUTO_DATA_REPRESENTATION), KOLT_ENCAPSULATION_CDR2_LE);
}

TEST(Record, InitialValues) {
    Record<Everything> record(everything_type());
    ASSERT_TRUE(record.ok());
    EXPECT_EQ(record->flag, 0);
    EXPECT_EQ(record->real, 0.0);
    EXPECT_EQ(record->color, RED) << "the first enumerator";
    EXPECT_STREQ(record->text, "");
    EXPECT_EQ(record->colors[1], RED);
    EXPECT_EQ(DDS_OctetSeq_get_maximum(&record->octets), 8U);
    EXPECT_EQ(record->octets._absolute_maximum, 8U);
    EXPECT_EQ(DDS_LongLongSeq_get_maximum(&record->numbers), 0U);
    EXPECT_EQ(record->numbers._absolute_maximum, KOLT_SEQUENCE_ABSOLUTE_MAXIMUM);
    EXPECT_EQ(PointSeq_get_maximum(&record->path), 3U);
    EXPECT_FALSE(PointSeq_set_maximum(&record->path, 4));
}

TEST(Record, InitialValuesOfAUnion) {
    Record<Choice> choice(mutable_choice_type());
    ASSERT_TRUE(choice.ok());
    EXPECT_EQ(choice->_d, 0);
    EXPECT_EQ(choice->_u.number, 0);
    EXPECT_EQ(IdSeq_get_maximum(&choice->_u.ids), 5U);
    EXPECT_EQ(choice->_u.ids._absolute_maximum, 5U);
    EXPECT_STREQ(choice->_u.text, "");
}

TEST(Record, DefaultAnnotations) {
    Record<Version2> record(mutable_version2_type());
    ASSERT_TRUE(record.ok());
    EXPECT_EQ(record->b, 7);
    EXPECT_STREQ(record->extra, "none");
}

TEST(Record, WithoutMemoryBuffersStay) {
    DDS_TypeAllocationParams_t params = kAllocate;
    params.allocate_memory = DDS_BOOLEAN_FALSE;
    Message message{};
    EXPECT_TRUE(KOLT_Record_initialize_w_params(message_type(), &message, &params));
    EXPECT_EQ(message.category, nullptr);

    Record<Message> kept(message_type());
    DDS_Char *const buffer = kept->category;
    set_text(buffer, "old");
    kept->level = 5;
    EXPECT_TRUE(KOLT_Record_initialize_w_params(message_type(), kept.get(), &params));
    EXPECT_EQ(kept->category, buffer);
    EXPECT_STREQ(kept->category, "");
    EXPECT_EQ(kept->level, 0);

    Record<Choice> choice(final_choice_type());
    ASSERT_TRUE(IdSeq_set_length(&choice->_u.ids, 2));
    EXPECT_TRUE(KOLT_Record_initialize_w_params(final_choice_type(), choice.get(), &params));
    EXPECT_EQ(IdSeq_get_length(&choice->_u.ids), 0U);
    EXPECT_EQ(IdSeq_get_maximum(&choice->_u.ids), 5U);
}

TEST(Record, NullsAreHarmless) {
    Message message{};
    EXPECT_FALSE(KOLT_Record_initialize_w_params(nullptr, &message, &kAllocate));
    EXPECT_FALSE(KOLT_Record_initialize_w_params(message_type(), nullptr, &kAllocate));
    EXPECT_FALSE(KOLT_Record_initialize_w_params(message_type(), &message, nullptr));
    KOLT_Record_finalize_w_params(message_type(), nullptr, &kDeallocate);
    KOLT_Record_finalize_w_params(message_type(), &message, nullptr);
    EXPECT_FALSE(KOLT_Record_copy(message_type(), &message, nullptr));
    EXPECT_FALSE(KOLT_Record_copy(message_type(), nullptr, &message));
    EXPECT_FALSE(KOLT_Record_copy_key(nullptr, &message, &message));
    EXPECT_FALSE(KOLT_Record_equals(message_type(), &message, nullptr));
}

TEST(Record, FinalizeIsRepeatable) {
    Message message{};
    ASSERT_TRUE(KOLT_Record_initialize_w_params(message_type(), &message, &kAllocate));
    KOLT_Record_finalize_w_params(message_type(), &message, &kDeallocate);
    EXPECT_EQ(message.text, nullptr);
    KOLT_Record_finalize_w_params(message_type(), &message, &kDeallocate);
    Everything everything{};
    KOLT_Record_finalize_w_params(everything_type(), &everything, &kDeallocate);
}

TEST(Record, CopyIsDeepAndEqual) {
    Record<Everything> source(everything_type());
    Record<Everything> copy(everything_type());
    fill_everything(source.get());
    EXPECT_FALSE(KOLT_Record_equals(everything_type(), source.get(), copy.get()));
    EXPECT_TRUE(KOLT_Record_copy(everything_type(), copy.get(), source.get()));
    EXPECT_TRUE(KOLT_Record_equals(everything_type(), source.get(), copy.get()));
    EXPECT_NE(copy->text, source->text);
    EXPECT_NE(DDS_StringSeq_get(&copy->names, 0), DDS_StringSeq_get(&source->names, 0));
    DDS_String_replace(DDS_StringSeq_get_reference(&copy->names, 0), "other");
    EXPECT_FALSE(KOLT_Record_equals(everything_type(), source.get(), copy.get()));
    EXPECT_STREQ(DDS_StringSeq_get(&source->names, 0), "one");
    EXPECT_TRUE(KOLT_Record_copy(everything_type(), copy.get(), copy.get()));
}

TEST(Record, CopyGoesIntoTheBuffersThatAreThere) {
    Record<Message> source(message_type());
    Record<Message> copy(message_type());
    const DDS_Char *const buffer = copy->text;
    set_text(source->text, "hello");
    EXPECT_TRUE(KOLT_Record_copy(message_type(), copy.get(), source.get()));
    EXPECT_EQ(copy->text, buffer);
    EXPECT_STREQ(copy->text, "hello");
}

TEST(Record, CopyKeepsToTheBound) {
    Record<Message> source(message_type());
    Record<Message> copy(message_type());
    set_text(copy->category, "before");
    // 16 characters fit, 17 do not.
    DDS_String_replace(&source->category, "0123456789abcdef");
    EXPECT_TRUE(KOLT_Record_copy(message_type(), copy.get(), source.get()));
    EXPECT_STREQ(copy->category, "0123456789abcdef");
    DDS_String_replace(&source->category, "0123456789abcdefX");
    source->id = {4, 5};
    EXPECT_FALSE(KOLT_Record_copy(message_type(), copy.get(), source.get()));
    EXPECT_STREQ(copy->category, "0123456789abcdef");
    EXPECT_EQ(copy->id.app, 5) << "what was copied before stays";
    DDS_String_free(source->category);
    source->category = nullptr;
    EXPECT_FALSE(KOLT_Record_copy(message_type(), copy.get(), source.get()));
    source->category = DDS_String_alloc(16);
    DDS_Char *const taken = copy->category;
    copy->category = nullptr;
    EXPECT_FALSE(KOLT_Record_copy(message_type(), copy.get(), source.get()));
    copy->category = taken;
}

TEST(Record, CopyKeepsToTheBoundOfElements) {
    Record<Everything> source(everything_type());
    Record<Everything> copy(everything_type());
    ASSERT_TRUE(DDS_StringSeq_set_length(&source->names, 1));
    DDS_String_replace(DDS_StringSeq_get_reference(&source->names, 0), "12345678");
    EXPECT_TRUE(KOLT_Record_copy(everything_type(), copy.get(), source.get()));
    DDS_String_replace(DDS_StringSeq_get_reference(&source->names, 0), "123456789");
    EXPECT_FALSE(KOLT_Record_copy(everything_type(), copy.get(), source.get()));
}

TEST(Record, CopyOfAUnionTakesTheSelectedBranchOnly) {
    Record<Choice> source(mutable_choice_type());
    Record<Choice> copy(mutable_choice_type());
    source->_d = 2;
    source->_u.number = 1;
    set_text(source->_u.text, "s");
    ASSERT_TRUE(IdSeq_set_length(&source->_u.ids, 1));
    *IdSeq_get_reference(&source->_u.ids, 0) = {7, 8};
    copy->_u.number = 99;
    set_text(copy->_u.text, "c");
    EXPECT_TRUE(KOLT_Record_copy(mutable_choice_type(), copy.get(), source.get()));
    EXPECT_EQ(copy->_d, 2);
    EXPECT_EQ(copy->_u.number, 99);
    EXPECT_STREQ(copy->_u.text, "c");
    EXPECT_EQ(IdSeq_get(&copy->_u.ids, 0).app, 8);
    EXPECT_TRUE(KOLT_Record_equals(mutable_choice_type(), copy.get(), source.get()));

    source->_d = 7;
    EXPECT_TRUE(KOLT_Record_copy(mutable_choice_type(), copy.get(), source.get()));
    EXPECT_EQ(copy->_d, 7);
    EXPECT_EQ(IdSeq_get_length(&copy->_u.ids), 1U);
}

TEST(Record, DefaultBranch) {
    Record<Fallback> source(fallback_type());
    Record<Fallback> copy(fallback_type());
    source->_d = 200;
    source->_u.small = 3;
    source->_u.wide = 4;
    EXPECT_TRUE(KOLT_Record_copy(fallback_type(), copy.get(), source.get()));
    EXPECT_EQ(copy->_u.small, 3);
    EXPECT_EQ(copy->_u.wide, 0);
}

TEST(Record, OptionalMembers) {
    Record<Options> source(final_options_type());
    Record<Options> copy(final_options_type());
    ASSERT_TRUE(source.ok());
    EXPECT_EQ(source->number, nullptr);
    DDS_TypeAllocationParams_t params = kAllocate;
    params.allocate_optional_members = DDS_BOOLEAN_TRUE;
    ASSERT_TRUE(KOLT_Record_initialize_w_params(final_options_type(), source.get(), &params));
    ASSERT_NE(source->text, nullptr);
    set_text(*source->text, "t");
    *source->number = 6;
    EXPECT_TRUE(KOLT_Record_copy(final_options_type(), copy.get(), source.get()));
    EXPECT_NE(copy->number, source->number);
    EXPECT_EQ(*copy->number, 6);
    EXPECT_STREQ(*copy->text, "t");
    EXPECT_TRUE(KOLT_Record_equals(final_options_type(), copy.get(), source.get()));

    Record<Options> empty(final_options_type());
    EXPECT_FALSE(KOLT_Record_equals(final_options_type(), copy.get(), empty.get()));
    EXPECT_TRUE(KOLT_Record_copy(final_options_type(), copy.get(), empty.get()));
    EXPECT_EQ(copy->text, nullptr);
}

TEST(Record, CopyKey) {
    Record<Message> source(message_type());
    Record<Message> copy(message_type());
    source->id = {1, 2};
    source->level = 3;
    source->number = 4;
    set_text(source->text, "not a key");
    EXPECT_TRUE(KOLT_Record_copy_key(message_type(), copy.get(), source.get()));
    EXPECT_EQ(copy->id.app, 2);
    EXPECT_EQ(copy->level, 3);
    EXPECT_EQ(copy->number, 0);
    EXPECT_STREQ(copy->text, "");
    Point from = {1, 2};
    Point to = {0, 0};
    EXPECT_TRUE(KOLT_Record_copy_key(point_type(), &to, &from)) << "no key members: nothing to do";
    EXPECT_EQ(to.x, 0);
}

TEST(Record, PluginFunctionsServeNestedValues) {
    static int initialized;
    static int finalized;
    static int copied;
    initialized = finalized = copied = 0;
    static const DDS_TypePluginInfo plugin = {
        [](void *record, const DDS_TypeAllocationParams_t *params) {
            ++initialized;
            return KOLT_Record_initialize_w_params(id_type(), record, params);
        },
        [](void *record, const DDS_TypeDeallocationParams_t *params) {
            ++finalized;
            KOLT_Record_finalize_w_params(id_type(), record, params);
        },
        [](void *destination, const void *source) {
            ++copied;
            return KOLT_Record_copy(id_type(), destination, source);
        }};
    DDS_TypeCode id = *id_type();
    id.plugin = &plugin;
    DDS_TypeCodeMember members[5];
    std::memcpy(members, message_type()->members, sizeof(members));
    members[0].type = &id;
    DDS_TypeCode type = *message_type();
    type.members = members;
    {
        Record<Message> a(&type);
        Record<Message> b(&type);
        EXPECT_TRUE(KOLT_Record_copy(&type, a.get(), b.get()));
    }
    EXPECT_EQ(initialized, 2);
    EXPECT_EQ(copied, 1);
    EXPECT_EQ(finalized, 2);
}

std::string printed(const DDS_TypeCode *type, const void *record, const char *description,
                    DDS_UnsignedLong indent) {
    ::testing::internal::CaptureStdout();
    KOLT_Record_print(type, record, description, indent);
    std::fflush(stdout);
    return ::testing::internal::GetCapturedStdout();
}

TEST(RecordPrint, Structures) {
    Record<Message> message(message_type());
    message->id = {1, 2};
    message->level = -3;
    set_text(message->category, "c");
    DDS_String_free(message->text);
    message->text = nullptr;
    EXPECT_EQ(printed(message_type(), message.get(), "message", 0),
              "message:\n"
              "   id:\n"
              "      host: 1\n"
              "      app: 2\n"
              "   level: -3\n"
              "   category: \"c\"\n"
              "   text: NULL\n"
              "   number: 0\n");
    EXPECT_EQ(printed(message_type(), nullptr, "message", 1), "   message:\nNULL\n");
    EXPECT_EQ(printed(message_type(), nullptr, nullptr, 0), "\nNULL\n");
}

TEST(RecordPrint, Unions) {
    Record<Choice> choice(mutable_choice_type());
    EXPECT_EQ(printed(mutable_choice_type(), choice.get(), "c", 0),
              "c:\n   _d: 0\n   _u.number: 0\n");
    choice->_d = 1;
    ASSERT_TRUE(IdSeq_set_length(&choice->_u.ids, 1));
    EXPECT_EQ(printed(mutable_choice_type(), choice.get(), "c", 0),
              "c:\n   _d: 1\n   _u.ids[0]:\n      host: 0\n      app: 0\n");
    choice->_d = 9;
    EXPECT_EQ(printed(mutable_choice_type(), choice.get(), "c", 0), "c:\n   _d: 9\n");

    // Element pointers are followed.
    Id element = {3, 4};
    Id *pointers[] = {&element};
    ASSERT_TRUE(IdSeq_finalize(&choice->_u.ids));
    ASSERT_TRUE(IdSeq_loan_discontiguous(&choice->_u.ids, pointers, 1, 1));
    choice->_d = 1;
    EXPECT_EQ(printed(mutable_choice_type(), choice.get(), "c", 0),
              "c:\n   _d: 1\n   _u.ids[0]:\n      host: 3\n      app: 4\n");
    ASSERT_TRUE(IdSeq_unloan(&choice->_u.ids));
}

TEST(RecordPrint, Enumerations) {
    const DDS_Enum green = GREEN;
    const DDS_Enum unknown = 77;
    EXPECT_EQ(printed(color_type(), &green, "color", 1), "   color:\n      Test_Color GREEN (2)\n");
    EXPECT_EQ(printed(color_type(), &unknown, nullptr, 0), "\n   Test_Color (77)\n");
    EXPECT_EQ(printed(color_type(), nullptr, "color", 0), "color:\nNULL\n");
}

TEST(RecordPrint, AllKinds) {
    Record<Everything> record(everything_type());
    fill_everything(record.get());
    const std::string text = printed(everything_type(), record.get(), "e", 0);
    for (const char *line :
         {"   flag: true\n", "   wide: -2\n", "   octet: 0xfe\n", "   real: 1.5\n",
          "   letter: 'k'\n", "   positive: 65535\n", "   word: 4000000000\n",
          "   largest: 72623859790382856\n", "   single: -0.25\n",
          "   color: Test_Color BLUE (5)\n", "   matrix[5]: 6\n",
          "   points[1]:\n      x: 2\n      y: -2\n", "   colors[0]: Test_Color GREEN (2)\n",
          "   octets[2]: 0x07\n", "   numbers[1]: -1\n", "   names[1]: \"eight888\"\n",
          "   path[0]:\n      x: 5\n", "   id:\n      host: 10\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
    }
}

}  // namespace
