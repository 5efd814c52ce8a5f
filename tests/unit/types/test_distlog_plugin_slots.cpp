// SPDX-License-Identifier: Apache-2.0
// The plugin records of the four topic types: the function in each slot, and its job.

#include <gtest/gtest.h>

#include <vector>

#include "support/types/attached_plugin.h"

namespace {

using namespace support;

// ---- What is in the slots -----------------------------------------------------------------------

// The slots that hold the same thing for every topic type.
void expect_common_slots(const KOLT_TypePlugin &plugin, const DDS_TypeCode *code) {
    EXPECT_EQ(plugin.create_sample, KOLT_TypePlugin_create_sample);
    EXPECT_EQ(plugin.destroy_sample, KOLT_TypePlugin_destroy_sample);
    EXPECT_EQ(plugin.serialize, KOLT_TypePlugin_serialize);
    EXPECT_EQ(plugin.deserialize, KOLT_TypePlugin_deserialize);
    EXPECT_EQ(plugin.get_sample, KOLT_TypePlugin_get_sample);
    EXPECT_EQ(plugin.get_serialized_sample_min_size,
              KOLT_TypePlugin_get_serialized_sample_min_size);
    EXPECT_EQ(plugin.get_serialized_sample_size, KOLT_TypePlugin_get_serialized_sample_size);
    EXPECT_EQ(plugin.get_deserialized_sample_max_size, nullptr);
    EXPECT_EQ(plugin.serialized_key_to_keyhash, nullptr);
    EXPECT_EQ(plugin.type_code, code);
    EXPECT_EQ(plugin.get_buffer, KOLT_TypePlugin_get_buffer);
    EXPECT_EQ(plugin.get_buffer_w_params, nullptr);
    EXPECT_EQ(plugin.return_buffer, KOLT_TypePlugin_return_buffer);
    EXPECT_EQ(plugin.return_buffer_w_params, nullptr);
    EXPECT_EQ(plugin.get_writer_loaned_sample, nullptr);
    EXPECT_EQ(plugin.return_writer_loaned_sample, nullptr);
    EXPECT_EQ(plugin.return_writer_loaned_sample_from_cookie, nullptr);
    EXPECT_EQ(plugin.validate_writer_loaned_sample, nullptr);
    EXPECT_EQ(plugin.set_writer_loaned_sample_serialized_state, nullptr);
    EXPECT_STREQ(plugin.endpoint_type_name, DDS_TypeCode_name(code));
    EXPECT_EQ(plugin.type_code_name, nullptr);
    EXPECT_EQ(plugin.version.major, 2);
    EXPECT_EQ(plugin.version.minor, 0);
    EXPECT_EQ(plugin.version.release, 0);
    EXPECT_EQ(plugin.version.revision, 0);
    EXPECT_FALSE(plugin.is_metadata_type);
}

void expect_empty_key_slots(const KOLT_TypePlugin &plugin) {
    EXPECT_EQ(plugin.instance_to_keyhash, nullptr);
    EXPECT_EQ(plugin.serialized_sample_to_keyhash, nullptr);
    EXPECT_EQ(plugin.get_key, nullptr);
    EXPECT_EQ(plugin.return_key, nullptr);
    EXPECT_EQ(plugin.get_serialized_key_max_size, nullptr);
    EXPECT_EQ(plugin.instance_to_key, nullptr);
    EXPECT_EQ(plugin.key_to_instance, nullptr);
    EXPECT_EQ(plugin.serialize_key, nullptr);
    EXPECT_EQ(plugin.deserialize_key, nullptr);
    EXPECT_EQ(plugin.deserialize_key_sample, nullptr);
}

#define EXPECT_TYPE_SLOTS(plugin, T)                                                              \
    expect_common_slots(plugin, T##_get_typecode());                                              \
    EXPECT_EQ((plugin).on_participant_attached, T##Plugin_on_participant_attached);               \
    EXPECT_EQ((plugin).on_participant_detached, T##Plugin_on_participant_detached);               \
    EXPECT_EQ((plugin).on_endpoint_attached, T##Plugin_on_endpoint_attached);                     \
    EXPECT_EQ((plugin).on_endpoint_detached, T##Plugin_on_endpoint_detached);                     \
    EXPECT_EQ((plugin).copy_sample, T##Plugin_copy_sample);                                       \
    EXPECT_EQ((plugin).finalize_optional_members, T##Plugin_finalize_optional_members);           \
    EXPECT_EQ((plugin).return_sample, T##Plugin_return_sample);                                   \
    EXPECT_EQ((plugin).get_serialized_sample_max_size, T##Plugin_get_serialized_sample_max_size); \
    EXPECT_EQ((plugin).get_key_kind, T##Plugin_get_key_kind)

#define EXPECT_KEY_SLOTS(plugin, T)                                                           \
    EXPECT_EQ((plugin).instance_to_keyhash, KOLT_TypePlugin_instance_to_keyhash);             \
    EXPECT_EQ((plugin).serialized_sample_to_keyhash, T##Plugin_serialized_sample_to_keyhash); \
    EXPECT_EQ((plugin).get_key, KOLT_TypePlugin_get_key);                                     \
    EXPECT_EQ((plugin).return_key, KOLT_TypePlugin_return_key);                               \
    EXPECT_EQ((plugin).get_serialized_key_max_size, T##Plugin_get_serialized_key_max_size);   \
    EXPECT_EQ((plugin).instance_to_key, T##Plugin_instance_to_key);                           \
    EXPECT_EQ((plugin).key_to_instance, T##Plugin_key_to_instance);                           \
    EXPECT_EQ((plugin).serialize_key, KOLT_TypePlugin_serialize_key);                         \
    EXPECT_EQ((plugin).deserialize_key, T##Plugin_deserialize_key);                           \
    EXPECT_EQ((plugin).deserialize_key_sample, KOLT_TypePlugin_deserialize_key_sample)

TEST(DistlogPluginSlots, KeyedTypes) {
    const Plugin<VUR_DL_LogMessage> message;
    EXPECT_TYPE_SLOTS(*message, VUR_DL_LogMessage);
    EXPECT_KEY_SLOTS(*message, VUR_DL_LogMessage);
    const Plugin<VUR_DL_ADMIN_State> state;
    EXPECT_TYPE_SLOTS(*state, VUR_DL_ADMIN_State);
    EXPECT_KEY_SLOTS(*state, VUR_DL_ADMIN_State);
    const Plugin<VUR_DL_ADMIN_CommandResponse> response;
    EXPECT_TYPE_SLOTS(*response, VUR_DL_ADMIN_CommandResponse);
    EXPECT_KEY_SLOTS(*response, VUR_DL_ADMIN_CommandResponse);
}

TEST(DistlogPluginSlots, UnkeyedTypeHasNoKeyOperations) {
    const Plugin<VUR_DL_ADMIN_CommandRequest> request;
    EXPECT_TYPE_SLOTS(*request, VUR_DL_ADMIN_CommandRequest);
    expect_empty_key_slots(*request);
}

TEST(DistlogPluginSlots, KeyKinds) {
    EXPECT_EQ(VUR_DL_HostAndAppIdPlugin_get_key_kind(), 2);
    EXPECT_EQ(VUR_DL_LogMessagePlugin_get_key_kind(), 2);
    EXPECT_EQ(VUR_DL_ADMIN_StatePlugin_get_key_kind(), 2);
    EXPECT_EQ(VUR_DL_ADMIN_CommandResponsePlugin_get_key_kind(), 2);
    EXPECT_EQ(VUR_DL_ADMIN_CommandRequestPlugin_get_key_kind(), 0);
    EXPECT_EQ(VUR_DL_ADMIN_CommandPlugin_get_key_kind(), 0);
    EXPECT_EQ(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosityPlugin_get_key_kind(), 0);
}

TEST(DistlogPluginSlots, DeletingNothingIsHarmless) {
    VUR_DL_LogMessagePlugin_delete(nullptr);
}

// ---- What the slots do --------------------------------------------------------------------------

template <typename T>
class DistlogPluginJobs : public testing::Test {};
TYPED_TEST_SUITE(DistlogPluginJobs, TopicTypes, TopicTypeName);

TYPED_TEST(DistlogPluginJobs, AttachmentKeepsThePrograms) {
    Attached<TypeParam> attached;
    const KOLT_TypePrograms *const programs =
        KOLT_TypePlugin_ParticipantData_programs(attached.participant);
    EXPECT_EQ(programs, TopicType<TypeParam>::get_programs());
    EXPECT_EQ(KOLT_TypePlugin_EndpointData_programs(attached.writer), programs);
    EXPECT_EQ(KOLT_TypePrograms_type(programs), attached.plugin->type_code);
    const KOLT_TypePluginEndpointInfo info = {KOLT_TYPE_PLUGIN_READER, DDS_XCDR_DATA_REPRESENTATION,
                                              0};
    EXPECT_EQ(attached.plugin->on_endpoint_attached(nullptr, &info, 1, nullptr), nullptr);
    EXPECT_EQ(attached.plugin->on_endpoint_attached(attached.participant, nullptr, 1, nullptr),
              nullptr);
    attached.plugin->on_participant_detached(nullptr);
}

TYPED_TEST(DistlogPluginJobs, MakesCopiesAndReusesSamples) {
    Attached<TypeParam> attached;
    Sample<TypeParam> initial;
    Filled<TypeParam> filled;
    auto *const made = static_cast<TypeParam *>(attached.plugin->create_sample(attached.reader));
    ASSERT_NE(made, nullptr);
    EXPECT_TRUE(equal(*made, *initial));
    ASSERT_TRUE(attached.plugin->copy_sample(attached.reader, made, filled.get()));
    EXPECT_TRUE(equal(*made, *filled));
    EXPECT_FALSE(attached.plugin->copy_sample(attached.reader, made, nullptr));
    attached.plugin->finalize_optional_members(attached.reader, made, DDS_BOOLEAN_TRUE);
    EXPECT_TRUE(equal(*made, *filled)) << "no type has optional members";
    attached.plugin->destroy_sample(attached.reader, made);

    void *handle = nullptr;
    void *const pooled = attached.plugin->get_sample(attached.reader, &handle);
    ASSERT_NE(pooled, nullptr);
    EXPECT_TRUE(equal(*static_cast<TypeParam *>(pooled), *initial));
    attached.plugin->return_sample(attached.reader, pooled, handle);
    EXPECT_EQ(attached.plugin->get_sample(attached.reader, &handle), pooled) << "the same again";
    attached.plugin->return_sample(attached.reader, pooled, handle);
}

TYPED_TEST(DistlogPluginJobs, SerialisesInEveryEncapsulation) {
    Attached<TypeParam> attached;
    const KOLT_TypePlugin &plugin = *attached.plugin;
    Filled<TypeParam> sample;
    for (const DDS_UnsignedShort encapsulation : kMutableEncapsulations) {
        SCOPED_TRACE(encapsulation);
        std::vector<DDS_Octet> bytes = attached.bytes_of(plugin.serialize, *sample, encapsulation);
        EXPECT_EQ(bytes[1], encapsulation);
        EXPECT_EQ(
            plugin.get_serialized_sample_size(attached.writer, 1, encapsulation, 0, sample.get()),
            bytes.size());
        EXPECT_EQ(
            plugin.get_serialized_sample_size(attached.writer, 0, encapsulation, 0, sample.get()),
            bytes.size() - 4)
            << "without the header";
        EXPECT_GE(plugin.get_serialized_sample_max_size(attached.writer, 1, encapsulation, 0),
                  bytes.size());
        EXPECT_LE(plugin.get_serialized_sample_min_size(attached.writer, 1, encapsulation, 0),
                  bytes.size());
        EXPECT_GT(plugin.get_serialized_sample_min_size(attached.writer, 1, encapsulation, 0), 4U);
        Sample<TypeParam> read;
        ASSERT_TRUE(attached.read_back(plugin.deserialize, bytes, read.get()));
        EXPECT_TRUE(equal(*read, *sample));
        bytes.resize(bytes.size() / 2);
        EXPECT_FALSE(attached.read_back(plugin.deserialize, bytes, read.get())) << "cut off";
    }
}

TYPED_TEST(DistlogPluginJobs, WritersHaveBuffers) {
    Attached<TypeParam> attached;
    const KOLT_TypePlugin &plugin = *attached.plugin;
    EXPECT_EQ(KOLT_TypePlugin_EndpointData_max_size(attached.writer),
              plugin.get_serialized_sample_max_size(attached.writer, DDS_BOOLEAN_FALSE,
                                                    KOLT_ENCAPSULATION_PL_CDR2_LE, 0))
        << "worked out once";
    KOLT_CdrStream stream = {};
    ASSERT_TRUE(plugin.get_buffer(attached.writer, &stream, 100));
    EXPECT_GE(stream.length, 100U);
    const DDS_Octet *const kept = stream.buffer;
    plugin.return_buffer(attached.writer, &stream);
    EXPECT_EQ(stream.buffer, nullptr);
    ASSERT_TRUE(plugin.get_buffer(attached.writer, &stream, 100));
    EXPECT_EQ(stream.buffer, kept);
    plugin.return_buffer(attached.writer, &stream);
    EXPECT_FALSE(plugin.get_buffer(attached.reader, &stream, 100)) << "readers need none";
}

}  // namespace
