// SPDX-License-Identifier: Apache-2.0
// Default participant and endpoint data, and the generic slot operations of type plugins.
#include <gtest/gtest.h>
#include <kolt/type_plugin.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "support/types/test_types.h"

namespace {

using namespace support;

std::atomic<int> g_live{0};
std::atomic<int> g_fail_after{-1};

void *create_message() {
    if (g_fail_after >= 0 && g_fail_after-- == 0) {
        return nullptr;
    }
    auto *const message = static_cast<Message *>(std::calloc(1, sizeof(Message)));
    const DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    KOLT_Record_initialize_w_params(message_type(), message, &params);
    ++g_live;
    return message;
}
void destroy_message(void *message) {
    const DDS_TypeDeallocationParams_t params = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    KOLT_Record_finalize_w_params(message_type(), message, &params);
    std::free(message);
    --g_live;
}

DDS_UnsignedLong max_size(KOLT_TypePluginEndpointData *endpoint, DDS_Boolean include,
                          DDS_UnsignedShort encapsulation, DDS_UnsignedLong alignment) {
    DDS_Boolean overflow = DDS_BOOLEAN_FALSE;
    return KOLT_TypePlugin_get_serialized_sample_max_size(endpoint, &overflow, include,
                                                          encapsulation, alignment);
}

class TypePlugin : public ::testing::Test {
  protected:
    void SetUp() override {
        g_live = 0;
        g_fail_after = -1;
        const KOLT_TypePluginParticipantInfo info = {3};
        participant_ = KOLT_TypePlugin_ParticipantData_new(&info);
        KOLT_TypePlugin_ParticipantData_set_programs(participant_,
                                                     KOLT_TypePrograms_acquire(message_type()));
        attach(KOLT_TYPE_PLUGIN_WRITER, 0);
        ASSERT_NE(endpoint_, nullptr);
        ASSERT_TRUE(KOLT_TypePlugin_EndpointData_create_md5_stream(endpoint_, 12, 12));
        ASSERT_TRUE(KOLT_TypePlugin_EndpointData_create_writer_pool(
            endpoint_, max_size, KOLT_TypePlugin_get_serialized_sample_size));
    }
    void TearDown() override {
        KOLT_TypePlugin_EndpointData_delete(endpoint_);
        KOLT_TypePlugin_ParticipantData_delete(participant_);
        EXPECT_EQ(g_live, 0);
    }
    void attach(KOLT_TypePluginEndpointKind kind, DDS_UnsignedLong initial_samples) {
        KOLT_TypePlugin_EndpointData_delete(endpoint_);
        const KOLT_TypePluginEndpointInfo info = {kind, DDS_XCDR2_DATA_REPRESENTATION,
                                                  initial_samples};
        endpoint_ = KOLT_TypePlugin_EndpointData_new(
            participant_, &info, create_message, destroy_message, create_message, destroy_message);
    }

    KOLT_TypePluginParticipantData *participant_ = nullptr;
    KOLT_TypePluginEndpointData *endpoint_ = nullptr;
};

TEST_F(TypePlugin, ProgramsComeFromTheParticipant) {
    const Programs programs(message_type());
    EXPECT_EQ(KOLT_TypePlugin_ParticipantData_programs(participant_), programs);
    EXPECT_EQ(KOLT_TypePlugin_EndpointData_programs(endpoint_), programs);
    EXPECT_EQ(KOLT_TypePlugin_ParticipantData_programs(nullptr), nullptr);
    EXPECT_EQ(KOLT_TypePlugin_EndpointData_programs(nullptr), nullptr);
    KOLT_TypePlugin_ParticipantData_delete(nullptr);
    KOLT_TypePlugin_EndpointData_delete(nullptr);
}

TEST_F(TypePlugin, SamplesAreReused) {
    attach(KOLT_TYPE_PLUGIN_READER, 2);
    EXPECT_EQ(g_live, 2);
    void *handle = nullptr;
    void *const first = KOLT_TypePlugin_get_sample(endpoint_, &handle);
    void *const second = KOLT_TypePlugin_get_sample(endpoint_, &handle);
    EXPECT_EQ(g_live, 2);
    void *const third = KOLT_TypePlugin_get_sample(endpoint_, nullptr);
    EXPECT_EQ(g_live, 3);
    KOLT_TypePlugin_return_sample(endpoint_, second, handle);
    EXPECT_EQ(KOLT_TypePlugin_get_sample(endpoint_, &handle), second);
    for (void *const sample : {first, second, third}) {
        KOLT_TypePlugin_return_sample(endpoint_, sample, handle);
    }
    void *const own = KOLT_TypePlugin_create_sample(endpoint_);
    EXPECT_EQ(g_live, 4);
    KOLT_TypePlugin_destroy_sample(endpoint_, own);
    EXPECT_EQ(g_live, 3);
    KOLT_TypePlugin_return_sample(endpoint_, nullptr, nullptr);
}

TEST_F(TypePlugin, SamplesThatCantBeMade) {
    g_fail_after = 1;
    attach(KOLT_TYPE_PLUGIN_READER, 2);
    EXPECT_EQ(endpoint_, nullptr);
    EXPECT_EQ(g_live, 0);
    g_fail_after = -1;
    attach(KOLT_TYPE_PLUGIN_READER, 0);
    g_fail_after = 0;
    EXPECT_EQ(KOLT_TypePlugin_get_sample(endpoint_, nullptr), nullptr);
    g_fail_after = 0;
    EXPECT_EQ(KOLT_TypePlugin_get_key(endpoint_, nullptr), nullptr);
}

TEST_F(TypePlugin, ThePoolKeepsOnlySoMany) {
    std::vector<void *> samples;
    for (int i = 0; i < 100; ++i) {
        samples.push_back(KOLT_TypePlugin_get_sample(endpoint_, nullptr));
    }
    EXPECT_EQ(g_live, 100);
    for (void *const sample : samples) {
        KOLT_TypePlugin_return_sample(endpoint_, sample, nullptr);
    }
    EXPECT_LE(g_live, 40);
    EXPECT_GT(g_live, 0);
}

TEST_F(TypePlugin, KeysOnlyForKeyedTypes) {
    void *const key = KOLT_TypePlugin_get_key(endpoint_, nullptr);
    EXPECT_NE(key, nullptr);
    KOLT_TypePlugin_return_key(endpoint_, key, nullptr);
    KOLT_TypePlugin_EndpointData_delete(endpoint_);
    const KOLT_TypePluginEndpointInfo info = {KOLT_TYPE_PLUGIN_READER, 0, 0};
    endpoint_ = KOLT_TypePlugin_EndpointData_new(participant_, &info, create_message,
                                                 destroy_message, nullptr, nullptr);
    ASSERT_NE(endpoint_, nullptr);
    EXPECT_EQ(KOLT_TypePlugin_get_key(endpoint_, nullptr), nullptr);
    KOLT_KeyHash hash{};
    Record<Message> message(message_type());
    EXPECT_FALSE(KOLT_TypePlugin_instance_to_keyhash(endpoint_, &hash, message.get(), 0))
        << "no key stream";
    KOLT_CdrStream buffer{};
    EXPECT_FALSE(KOLT_TypePlugin_get_buffer(endpoint_, &buffer, 8)) << "no writer pool";
    EXPECT_EQ(KOLT_TypePlugin_EndpointData_new(participant_, &info, create_message, destroy_message,
                                               create_message, nullptr),
              nullptr);
}

TEST_F(TypePlugin, SerializeAndDeserialize) {
    Record<Message> message(message_type());
    message->id = {1, 2};
    set_text(message->text, "hello");
    DDS_Octet bytes[256] = {};
    KOLT_CdrStream stream;
    KOLT_CdrStream_set(&stream, bytes, sizeof(bytes));
    ASSERT_TRUE(KOLT_TypePlugin_serialize(endpoint_, message.get(), &stream, DDS_BOOLEAN_TRUE,
                                          KOLT_ENCAPSULATION_PL_CDR2_LE, DDS_BOOLEAN_TRUE,
                                          nullptr));
    EXPECT_EQ(stream.encapsulation, KOLT_ENCAPSULATION_PL_CDR2_LE);
    const Programs programs(message_type());
    const Bytes expected = serialize(programs, KOLT_ENCAPSULATION_PL_CDR2_LE, message.get());
    EXPECT_EQ(to_hex(Bytes(bytes, bytes + stream.position)), to_hex(expected));
    EXPECT_EQ(KOLT_TypePlugin_get_serialized_sample_size(
                  endpoint_, DDS_BOOLEAN_TRUE, KOLT_ENCAPSULATION_PL_CDR2_LE, 0, message.get()),
              expected.size());
    EXPECT_EQ(KOLT_TypePlugin_get_serialized_sample_size(
                  endpoint_, DDS_BOOLEAN_FALSE, KOLT_ENCAPSULATION_PL_CDR2_LE, 0, message.get()),
              expected.size() - 4);

    Record<Message> back(message_type());
    void *sample = back.get();
    DDS_Boolean drop = DDS_BOOLEAN_TRUE;
    KOLT_CdrStream_set(&stream, bytes, expected.size());
    ASSERT_TRUE(KOLT_TypePlugin_deserialize(endpoint_, &sample, &drop, &stream, DDS_BOOLEAN_TRUE,
                                            DDS_BOOLEAN_TRUE, nullptr));
    EXPECT_FALSE(drop);
    EXPECT_EQ(stream.position, expected.size());
    EXPECT_TRUE(KOLT_Record_equals(message_type(), back.get(), message.get()));

    // Header and body in two steps.
    Record<Message> again(message_type());
    sample = again.get();
    KOLT_CdrStream_set(&stream, bytes, expected.size());
    ASSERT_TRUE(KOLT_TypePlugin_deserialize(endpoint_, &sample, nullptr, &stream, DDS_BOOLEAN_TRUE,
                                            DDS_BOOLEAN_FALSE, nullptr));
    EXPECT_EQ(stream.position, 4U);
    ASSERT_TRUE(KOLT_TypePlugin_deserialize(endpoint_, &sample, nullptr, &stream, DDS_BOOLEAN_FALSE,
                                            DDS_BOOLEAN_TRUE, nullptr));
    EXPECT_TRUE(KOLT_Record_equals(message_type(), again.get(), message.get()));
}

TEST_F(TypePlugin, Failures) {
    Record<Message> message(message_type());
    DDS_Octet bytes[16] = {};
    KOLT_CdrStream stream;
    KOLT_CdrStream_set(&stream, bytes, sizeof(bytes));
    const auto serialize = [&](const void *sample, DDS_UnsignedShort encapsulation) {
        stream.position = 0;
        return KOLT_TypePlugin_serialize(endpoint_, sample, &stream, DDS_BOOLEAN_TRUE,
                                         encapsulation, DDS_BOOLEAN_TRUE, nullptr);
    };
    EXPECT_FALSE(serialize(message.get(), KOLT_ENCAPSULATION_PL_CDR2_LE)) << "too small";
    EXPECT_FALSE(serialize(nullptr, KOLT_ENCAPSULATION_PL_CDR2_LE));
    EXPECT_FALSE(serialize(message.get(), KOLT_ENCAPSULATION_CDR2_LE)) << "not the type's";
    void *nothing = nullptr;
    KOLT_CdrStream_set(&stream, bytes, sizeof(bytes));
    EXPECT_FALSE(KOLT_TypePlugin_deserialize(endpoint_, &nothing, nullptr, &stream, 1, 1, nullptr));
    void *sample = message.get();
    KOLT_CdrStream_set(&stream, nullptr, 10);
    EXPECT_FALSE(KOLT_TypePlugin_deserialize(endpoint_, &sample, nullptr, &stream, 1, 1, nullptr));
    EXPECT_FALSE(KOLT_TypePlugin_deserialize(endpoint_, &sample, nullptr, nullptr, 1, 1, nullptr));
    stream.position = 99;
    EXPECT_FALSE(KOLT_TypePlugin_deserialize(nullptr, &sample, nullptr, &stream, 1, 1, nullptr));
    KOLT_CdrStream_set(nullptr, bytes, 1);
}

TEST_F(TypePlugin, KeysOnTheWire) {
    Record<Message> message(message_type());
    message->id = {1, 2};
    message->level = 3;
    message->number = 4;
    DDS_Octet bytes[256] = {};
    KOLT_CdrStream stream;
    KOLT_CdrStream_set(&stream, bytes, sizeof(bytes));
    ASSERT_TRUE(KOLT_TypePlugin_serialize_key(endpoint_, message.get(), &stream, 1,
                                              KOLT_ENCAPSULATION_PL_CDR2_LE, 1, nullptr));
    EXPECT_EQ(to_hex(Bytes(bytes, bytes + stream.position)), "000b0000 01000000 02000000 03000000");
    Record<Message> key(message_type());
    void *holder = key.get();
    KOLT_CdrStream_set(&stream, bytes, stream.position);
    ASSERT_TRUE(
        KOLT_TypePlugin_deserialize_key(endpoint_, &holder, nullptr, &stream, 1, 1, nullptr));
    EXPECT_EQ(key->level, 3);
    EXPECT_EQ(key->number, 0);

    KOLT_CdrStream_set(&stream, bytes, sizeof(bytes));
    ASSERT_TRUE(KOLT_TypePlugin_serialize(endpoint_, message.get(), &stream, 1,
                                          KOLT_ENCAPSULATION_PL_CDR_LE, 1, nullptr));
    Record<Message> of_sample(message_type());
    holder = of_sample.get();
    KOLT_CdrStream_set(&stream, bytes, stream.position);
    ASSERT_TRUE(KOLT_TypePlugin_deserialize_key_sample(endpoint_, &holder, nullptr, &stream, 1, 1,
                                                       nullptr));
    EXPECT_EQ(of_sample->id.app, 2);
    EXPECT_EQ(of_sample->number, 0);
}

TEST_F(TypePlugin, KeyHash) {
    Record<Message> message(message_type());
    message->id = {1, 2};
    message->level = 3;
    KOLT_KeyHash hash{};
    ASSERT_TRUE(KOLT_TypePlugin_instance_to_keyhash(endpoint_, &hash, message.get(),
                                                    KOLT_ENCAPSULATION_PL_CDR_LE));
    EXPECT_EQ(hash.length, 16U);
    EXPECT_EQ(to_hex(Bytes(hash.value, hash.value + 16)), "00000001 00000002 00000003 00000000");
    EXPECT_FALSE(KOLT_TypePlugin_instance_to_keyhash(endpoint_, nullptr, message.get(), 0));
    EXPECT_FALSE(KOLT_TypePlugin_instance_to_keyhash(endpoint_, &hash, nullptr, 0));
}

TEST_F(TypePlugin, Sizes) {
    DDS_Boolean overflow = DDS_BOOLEAN_TRUE;
    EXPECT_EQ(KOLT_TypePlugin_get_serialized_sample_max_size(endpoint_, &overflow, DDS_BOOLEAN_TRUE,
                                                             KOLT_ENCAPSULATION_PL_CDR2_LE, 0),
              152U);
    EXPECT_FALSE(overflow);
    EXPECT_EQ(KOLT_TypePlugin_get_serialized_sample_max_size(endpoint_, &overflow, 0,
                                                             KOLT_ENCAPSULATION_PL_CDR_LE, 0),
              140U);
    EXPECT_EQ(KOLT_TypePlugin_get_serialized_sample_max_size(endpoint_, &overflow, 0, 0, 0), 148U)
        << "an encapsulation that is not the type's: the endpoint's own";
    EXPECT_EQ(KOLT_TypePlugin_get_serialized_sample_min_size(endpoint_, 0,
                                                             KOLT_ENCAPSULATION_PL_CDR2_LE, 0),
              68U);
    EXPECT_EQ(KOLT_TypePlugin_get_serialized_key_max_size(endpoint_, &overflow, 0,
                                                          KOLT_ENCAPSULATION_CDR2_BE, 0),
              12U);
    EXPECT_EQ(KOLT_TypePlugin_get_serialized_key_max_size(endpoint_, &overflow, DDS_BOOLEAN_TRUE,
                                                          KOLT_ENCAPSULATION_PL_CDR_LE, 0),
              4U + 12 + 8 + 4);
    // Padding before the first member counts.
    EXPECT_EQ(KOLT_TypePlugin_get_serialized_sample_min_size(endpoint_, 0,
                                                             KOLT_ENCAPSULATION_PL_CDR2_LE, 1),
              71U);
    KOLT_TypePlugin_EndpointData_set_max_size(endpoint_, 148);
    EXPECT_EQ(KOLT_TypePlugin_EndpointData_max_size(endpoint_), 148U);
}

TEST_F(TypePlugin, UnboundedSizeOverflows) {
    KOLT_TypePlugin_ParticipantData_set_programs(participant_,
                                                 KOLT_TypePrograms_acquire(large_type()));
    DDS_Boolean overflow = DDS_BOOLEAN_FALSE;
    EXPECT_EQ(KOLT_TypePlugin_get_serialized_sample_max_size(endpoint_, &overflow, DDS_BOOLEAN_TRUE,
                                                             KOLT_ENCAPSULATION_PL_CDR2_LE, 0),
              KOLT_CDR_MAX_SERIALIZED_SIZE_UNBOUNDED);
    EXPECT_TRUE(overflow);
    ASSERT_TRUE(KOLT_TypePlugin_EndpointData_create_writer_pool(
        endpoint_, max_size, KOLT_TypePlugin_get_serialized_sample_size));
    KOLT_CdrStream buffer{};
    ASSERT_TRUE(KOLT_TypePlugin_get_buffer(endpoint_, &buffer, 1000000));
    EXPECT_GE(buffer.length, 1000000U);
    KOLT_TypePlugin_return_buffer(endpoint_, &buffer);
}

TEST_F(TypePlugin, BuffersAreReused) {
    KOLT_CdrStream first{};
    KOLT_CdrStream second{};
    ASSERT_TRUE(KOLT_TypePlugin_get_buffer(endpoint_, &first, 100));
    ASSERT_TRUE(KOLT_TypePlugin_get_buffer(endpoint_, &second, 100));
    EXPECT_NE(first.buffer, second.buffer);
    EXPECT_GE(first.length, 100U);
    EXPECT_EQ(first.position, 0U);
    const DDS_Octet *const kept = first.buffer;
    std::memset(first.buffer, 1, first.length);
    KOLT_TypePlugin_return_buffer(endpoint_, &first);
    EXPECT_EQ(first.buffer, nullptr);
    ASSERT_TRUE(KOLT_TypePlugin_get_buffer(endpoint_, &first, 90));
    EXPECT_EQ(first.buffer, kept);
    KOLT_TypePlugin_return_buffer(endpoint_, &first);
    KOLT_TypePlugin_return_buffer(endpoint_, &second);
    EXPECT_FALSE(KOLT_TypePlugin_get_buffer(endpoint_, &first, 153)) << "no sample is that large";
    KOLT_TypePlugin_return_buffer(endpoint_, nullptr);
}

TEST_F(TypePlugin, ABufferMayOutliveTheEndpoint) {
    KOLT_CdrStream buffer{};
    ASSERT_TRUE(KOLT_TypePlugin_get_buffer(endpoint_, &buffer, 100));
    KOLT_TypePlugin_EndpointData_delete(endpoint_);
    endpoint_ = nullptr;
    std::memset(buffer.buffer, 1, buffer.length);
    KOLT_TypePlugin_return_buffer(nullptr, &buffer);
}

TEST_F(TypePlugin, PoolsFromManyThreads) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([this] {
            Record<Message> message(message_type());
            KOLT_KeyHash hash{};
            for (int round = 0; round < 500; ++round) {
                KOLT_CdrStream buffer{};
                ASSERT_TRUE(KOLT_TypePlugin_get_buffer(endpoint_, &buffer, 152));
                ASSERT_TRUE(KOLT_TypePlugin_serialize(endpoint_, message.get(), &buffer, 1,
                                                      KOLT_ENCAPSULATION_PL_CDR2_LE, 1, nullptr));
                void *sample = KOLT_TypePlugin_get_sample(endpoint_, nullptr);
                buffer.length = buffer.position;
                buffer.position = 0;
                ASSERT_TRUE(KOLT_TypePlugin_deserialize(endpoint_, &sample, nullptr, &buffer, 1, 1,
                                                        nullptr));
                ASSERT_TRUE(KOLT_TypePlugin_instance_to_keyhash(endpoint_, &hash, sample, 0));
                KOLT_TypePlugin_return_sample(endpoint_, sample, nullptr);
                KOLT_TypePlugin_return_buffer(endpoint_, &buffer);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

}  // namespace
