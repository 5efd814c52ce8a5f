// SPDX-License-Identifier: Apache-2.0
// Broken input: refused without reading past its end, and without leaving a record that can't be
// used.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <random>

#include "support/types/test_types.h"

namespace {

using namespace support;

// A copy of exactly the size of the input, so that the address sanitizer sees every byte too many.
struct Exact {
    explicit Exact(const Bytes &bytes)
        : size(bytes.size()), memory(std::make_unique<std::uint8_t[]>(bytes.size())) {
        if (size > 0) {
            std::memcpy(memory.get(), bytes.data(), size);
        }
    }
    std::size_t size;
    std::unique_ptr<std::uint8_t[]> memory;
};

template <typename T>
bool reads(const DDS_TypeCode *type, const Bytes &bytes, T *record) {
    const Programs programs(type);
    const Exact input(bytes);
    return KOLT_Cdr_deserialize(programs, input.memory.get(), input.size, record) != 0;
}

template <typename T>
bool reads(const DDS_TypeCode *type, const std::string &hex) {
    Record<T> record(type);
    return reads(type, from_hex(hex), record.get());
}

std::vector<unsigned> encapsulations_of(const DDS_TypeCode *type) {
    std::vector<unsigned> all;
    for (const DDS_DataRepresentationId_t representation :
         {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
        const unsigned native = DDS_TypeCode_get_native_encapsulation(type, representation);
        all.push_back(native);
        all.push_back(native ^ 1U);
    }
    return all;
}

// Every prefix and every single changed byte of a valid sample; after each, a valid one is read.
template <typename T>
void mutilate(const DDS_TypeCode *type, T *record, bool prefixes_fail) {
    const Programs programs(type);
    Record<T> target(type);
    for (const unsigned encapsulation : encapsulations_of(type)) {
        const Bytes valid = serialize(programs, encapsulation, record);
        ASSERT_FALSE(valid.empty());
        for (std::size_t length = 0; length < valid.size(); ++length) {
            const bool read =
                reads(type, Bytes(valid.begin(), valid.begin() + static_cast<long>(length)),
                      target.get());
            if (prefixes_fail) {
                EXPECT_FALSE(read) << encapsulation << " prefix of " << length;
            }
        }
        for (std::size_t at = 0; at < valid.size(); ++at) {
            for (const int value : {0x00, 0x01, 0x7f, 0x80, 0xff}) {
                Bytes changed = valid;
                changed[at] = static_cast<std::uint8_t>(value);
                reads(type, changed, target.get());
                DDS_Octet key[512];
                std::size_t key_length = sizeof(key);
                const Exact input(changed);
                for (const DDS_Boolean key_only : {DDS_BOOLEAN_FALSE, DDS_BOOLEAN_TRUE}) {
                    key_length = sizeof(key);
                    KOLT_Cdr_key_of_serialized(programs, input.memory.get(), input.size, key_only,
                                               key, &key_length);
                }
                for (DDS_UnsignedLong member = 0; member < DDS_TypeCode_member_count(type);
                     ++member) {
                    KOLT_CdrValue found{};
                    const KOLT_CdrPathStep path[] = {{0, member}, {1, 1}, {0, 0}};
                    for (std::size_t steps = 1; steps <= 3; ++steps) {
                        KOLT_Cdr_find_field(programs, input.memory.get(), input.size, path, steps,
                                            &found);
                    }
                }
            }
        }
        EXPECT_TRUE(reads(type, valid, target.get()));
        EXPECT_TRUE(KOLT_Record_equals(type, target.get(), record));
    }
}

TEST(Malformed, EverythingMutilated) {
    Record<Everything> record(everything_type());
    fill_everything(record.get());
    mutilate(everything_type(), record.get(), true);
}

TEST(Malformed, MessageMutilated) {
    Record<Message> message(message_type());
    set_text(message->text, "some text");
    mutilate(message_type(), message.get(), true);
}

TEST(Malformed, RequestMutilated) {
    Record<Request> request(mutable_request_type());
    request->choice._d = 1;
    ASSERT_TRUE(IdSeq_set_length(&request->choice._u.ids, 2));
    mutilate(mutable_request_type(), request.get(), true);
    Record<Request> plain(final_request_type());
    plain->choice._d = 1;
    ASSERT_TRUE(IdSeq_set_length(&plain->choice._u.ids, 2));
    mutilate(final_request_type(), plain.get(), true);
}

TEST(Malformed, OptionsMutilated) {
    for (const DDS_TypeCode *type :
         {final_options_type(), appendable_options_type(), mutable_options_type()}) {
        Record<Options> options(type);
        DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
        params.allocate_optional_members = DDS_BOOLEAN_TRUE;
        ASSERT_TRUE(KOLT_Record_initialize_w_params(type, options.get(), &params));
        mutilate(type, options.get(), false);
    }
}

TEST(Malformed, HolderMutilated) {
    for (const DDS_TypeCode *type :
         {final_holder_type(), appendable_holder_type(), mutable_holder_type()}) {
        Record<Holder> holder(type);
        set_text(holder->name, "abc");
        mutilate(type, holder.get(), false);
    }
}

TEST(Malformed, RandomBytes) {
    std::mt19937 random(20);
    Record<Request> request(mutable_request_type());
    Record<Everything> everything(everything_type());
    for (int i = 0; i < 20000; ++i) {
        Bytes bytes(4 + random() % 96);
        for (std::uint8_t &byte : bytes) {
            byte = static_cast<std::uint8_t>(random() % 4 == 0 ? random() : 0);
        }
        bytes[0] = 0;
        bytes[1] = static_cast<std::uint8_t>(random() % 12);
        reads(mutable_request_type(), bytes, request.get());
        reads(everything_type(), bytes, everything.get());
    }
}

TEST(Malformed, Encapsulations) {
    EXPECT_FALSE(reads<Point>(point_type(), ""));
    EXPECT_FALSE(reads<Point>(point_type(), "000100"));
    EXPECT_TRUE(reads<Point>(point_type(), "00010000 01000200"));
    EXPECT_FALSE(reads<Point>(point_type(), "00030000 01000200")) << "PL_CDR of a final type";
    EXPECT_FALSE(reads<Point>(point_type(), "00090000 01000200")) << "D_CDR2 of a final type";
    EXPECT_FALSE(reads<Point>(point_type(), "00040000 01000200")) << "XML";
    EXPECT_FALSE(reads<Point>(point_type(), "80010000 01000200"));
    EXPECT_FALSE(reads<Point>(point_type(), "ffff0000 01000200"));
    EXPECT_FALSE(reads<Message>(message_type(), "00010000 023f0000"));
    EXPECT_FALSE(reads<Point>(point_type(), "00010001 01000200")) << "a byte of it is padding";
}

TEST(Malformed, Strings) {
    const std::string head = "000b0000";
    EXPECT_FALSE(reads<Message>(message_type(), head + "0a000000 02000050 02000000 'ab'"))
        << "no terminator";
    EXPECT_TRUE(reads<Message>(message_type(), head + "0a000000 02000050 02000000 'a' 00"));
    EXPECT_TRUE(reads<Message>(message_type(), head + "08000000 02000050 00000000"))
        << "a string without even its terminator is taken for an empty one";
    EXPECT_FALSE(reads<Message>(message_type(), head + "0a000000 02000050 ffffffff 'a' 00"));
    EXPECT_FALSE(
        reads<Message>(message_type(), head + "1a000000 02000050 12000000 '0123456789abcdefX' 00"))
        << "one more than the bound";
    EXPECT_TRUE(
        reads<Message>(message_type(), head + "19000000 02000050 11000000 '0123456789abcdef' 00"));
}

TEST(Malformed, Sequences) {
    // More elements than the bound, or than there are bytes.
    EXPECT_FALSE(reads<Choice>(final_choice_type(),
                               "00010000 01000000 06000000" + std::string(6 * 16, '0')));
    EXPECT_FALSE(reads<Choice>(final_choice_type(), "00010000 01000000 02000000 0000000000000000"));
    EXPECT_FALSE(reads<Large>(large_type(), "000b0000 08000000 00000050 ffffff7f"));
    EXPECT_FALSE(reads<Large>(large_type(), "00030000 0000 0400 ffffffff 023f0000"));
    EXPECT_FALSE(reads<Large>(large_type(), "00030000 013f 0800 00000000 ffffffff ffffffff"));
}

TEST(Malformed, ParameterLists) {
    const std::string head = "00030000";
    EXPECT_TRUE(reads<Message>(message_type(), head + "023f0000"));
    EXPECT_FALSE(reads<Message>(message_type(), head)) << "no sentinel";
    EXPECT_FALSE(reads<Message>(message_type(), head + "0100 0400 01000000")) << "no sentinel";
    EXPECT_FALSE(reads<Message>(message_type(), head + "0100 0300 01000000 023f0000"))
        << "shorter than its value";
    EXPECT_FALSE(reads<Message>(message_type(), head + "0100 ff00 01000000 023f0000"));
    EXPECT_FALSE(reads<Message>(message_type(), head + "013f 0400 01000000 023f0000"))
        << "an extended header of another length";
    EXPECT_FALSE(reads<Message>(message_type(), head + "043f 0000 023f0000")) << "reserved";
    EXPECT_TRUE(reads<Message>(message_type(), head + "6300 0000 023f0000"));
    EXPECT_FALSE(reads<Message>(message_type(), head + "6340 0000 023f0000"))
        << "unknown, and must be understood";
    EXPECT_FALSE(reads<Message>(message_type(), head + "013f 0800 63000040 00000000 023f0000"));
}

TEST(Malformed, MemberHeaders) {
    const std::string head = "000b0000";
    EXPECT_TRUE(reads<Message>(message_type(), head + "00000000"));
    EXPECT_FALSE(reads<Message>(message_type(), head + "04000000")) << "the list is longer";
    EXPECT_FALSE(reads<Message>(message_type(), head + "04000000 01000020")) << "no value";
    EXPECT_TRUE(reads<Message>(message_type(), head + "08000000 63000020 00000000"));
    EXPECT_FALSE(reads<Message>(message_type(), head + "08000000 630000a0 00000000"))
        << "unknown, and must be understood";
    EXPECT_FALSE(reads<Message>(message_type(), head + "08000000 63000070 ffffffff"));
    EXPECT_FALSE(reads<Message>(message_type(), head + "06000000 01000000 0100"))
        << "one byte for a long";
    EXPECT_FALSE(reads<Choice>(mutable_choice_type(), head + "00000000")) << "no discriminator";
    EXPECT_FALSE(reads<Choice>(mutable_choice_type(), head + "10000000 01000020 00000000"
                                                             "000000a0 00000000"))
        << "a branch before the discriminator";
    EXPECT_TRUE(reads<Choice>(mutable_choice_type(), head + "08000000 000000a0 00000000"));
}

TEST(Malformed, Arguments) {
    const Programs programs(point_type());
    Point point{};
    DDS_Octet bytes[16] = {0, 1};
    std::size_t length = 0;
    EXPECT_FALSE(KOLT_Cdr_deserialize(nullptr, bytes, 8, &point));
    EXPECT_FALSE(KOLT_Cdr_deserialize(programs, nullptr, 8, &point));
    EXPECT_FALSE(KOLT_Cdr_deserialize(programs, bytes, 8, nullptr));
    EXPECT_FALSE(KOLT_Cdr_serialize(programs, 1, &point, bytes, sizeof(bytes), nullptr));
    EXPECT_FALSE(KOLT_Cdr_serialize(programs, 1, nullptr, bytes, sizeof(bytes), &length));
    EXPECT_FALSE(KOLT_Cdr_serialize(programs, 77, &point, bytes, sizeof(bytes), &length));
    EXPECT_EQ(KOLT_Cdr_serialized_size(nullptr, 1, &point), 0U);
    EXPECT_EQ(KOLT_Cdr_serialized_size(programs, 65535, &point), 0U);
    EXPECT_EQ(KOLT_Cdr_serialized_max_size(nullptr, 1), 0U);
    EXPECT_EQ(KOLT_TypePrograms_acquire(nullptr), nullptr);
    EXPECT_EQ(KOLT_TypePrograms_type(nullptr), nullptr);
    KOLT_TypePrograms_release(nullptr);
}

TEST(Malformed, TypeCodes) {
    const auto refused = [](const DDS_TypeCode &type) {
        const KOLT_TypePrograms *const programs = KOLT_TypePrograms_acquire(&type);
        KOLT_TypePrograms_release(programs);
        return programs == nullptr;
    };
    EXPECT_TRUE(refused(*DDS_TypeCodeFactory_get_primitive_tc(DDS_TK_LONG)));
    DDS_TypeCode type = *point_type();
    EXPECT_FALSE(refused(type));
    type.access = nullptr;
    EXPECT_TRUE(refused(type));

    DDS_SampleAccessInfo access = *point_type()->access;
    access.record_size = 3;
    type.access = &access;
    EXPECT_TRUE(refused(type)) << "a member outside the record";

    DDS_TypeCodeMember members[2] = {point_type()->members[0], point_type()->members[1]};
    type = *point_type();
    type.members = members;
    members[1].id = members[0].id;
    EXPECT_TRUE(refused(type));
    members[1].id = 0x10000000;
    EXPECT_TRUE(refused(type));
    members[1].id = 1;
    members[1].type = nullptr;
    EXPECT_TRUE(refused(type));
    // A structure in itself.
    DDS_TypeCode sequence{};
    sequence.kind = DDS_TK_SEQUENCE;
    sequence.content_type = &type;
    members[1].type = &sequence;
    access.record_size = 200;
    type.access = &access;
    EXPECT_TRUE(refused(type));

    DDS_TypeCode choice = *mutable_choice_type();
    choice.discriminator_type = DDS_TypeCodeFactory_get_primitive_tc(DDS_TK_FLOAT);
    EXPECT_TRUE(refused(choice));
}

}  // namespace
