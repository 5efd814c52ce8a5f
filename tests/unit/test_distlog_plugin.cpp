// The type plugins of the logger's types: slots, sample life cycle, bytes, keys, sizes, printing.

#include <gtest/gtest.h>
#include <vur_dl/distlogPlugin.h>

#include <array>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "support/log_capture.h"
#include "support/test_types.h"

namespace {

using Buffer = std::vector<char>;

struct MessageDeleter {
    void operator()(VUR_DL_LogMessage *message) const {
        VUR_DL_LogMessagePluginSupport_destroy_data(message);
    }
};
using Message = std::unique_ptr<VUR_DL_LogMessage, MessageDeleter>;

Message makeMessage() {
    Message message(VUR_DL_LogMessagePluginSupport_create_data());
    message->hostAndAppId = {11, -12};
    message->level = 300;
    std::strcpy(message->category, "engine");
    std::strcpy(message->message, "oil pressure low");
    message->messageId = 1LL << 40;
    return message;
}

// ---- Slots ------------------------------------------------------------------------------------

struct PluginDeleter {
    void operator()(KOLT_TypePlugin *plugin) const { VUR_DL_LogMessagePlugin_delete(plugin); }
};
using Plugin = std::unique_ptr<KOLT_TypePlugin, PluginDeleter>;

// The slots that hold the same thing for every topic type.
void expectCommonSlots(const KOLT_TypePlugin &plugin, const DDS_TypeCode *code) {
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

#define EXPECT_TYPE_SLOTS(plugin, T)                                                              \
    expectCommonSlots(plugin, T##_get_typecode());                                                \
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
    const Plugin message(VUR_DL_LogMessagePlugin_new());
    ASSERT_NE(message, nullptr);
    EXPECT_TYPE_SLOTS(*message, VUR_DL_LogMessage);
    EXPECT_KEY_SLOTS(*message, VUR_DL_LogMessage);
    EXPECT_STREQ(message->endpoint_type_name, "VUR::DL::LogMessage");
    const Plugin state(VUR_DL_ADMIN_StatePlugin_new());
    ASSERT_NE(state, nullptr);
    EXPECT_TYPE_SLOTS(*state, VUR_DL_ADMIN_State);
    EXPECT_KEY_SLOTS(*state, VUR_DL_ADMIN_State);
    const Plugin response(VUR_DL_ADMIN_CommandResponsePlugin_new());
    ASSERT_NE(response, nullptr);
    EXPECT_TYPE_SLOTS(*response, VUR_DL_ADMIN_CommandResponse);
    EXPECT_KEY_SLOTS(*response, VUR_DL_ADMIN_CommandResponse);
}

TEST(DistlogPluginSlots, UnkeyedTypeHasNoKeyOperations) {
    const Plugin plugin(VUR_DL_ADMIN_CommandRequestPlugin_new());
    ASSERT_NE(plugin, nullptr);
    EXPECT_TYPE_SLOTS(*plugin, VUR_DL_ADMIN_CommandRequest);
    EXPECT_EQ(plugin->instance_to_keyhash, nullptr);
    EXPECT_EQ(plugin->serialized_sample_to_keyhash, nullptr);
    EXPECT_EQ(plugin->get_key, nullptr);
    EXPECT_EQ(plugin->return_key, nullptr);
    EXPECT_EQ(plugin->get_serialized_key_max_size, nullptr);
    EXPECT_EQ(plugin->instance_to_key, nullptr);
    EXPECT_EQ(plugin->key_to_instance, nullptr);
    EXPECT_EQ(plugin->serialize_key, nullptr);
    EXPECT_EQ(plugin->deserialize_key, nullptr);
    EXPECT_EQ(plugin->deserialize_key_sample, nullptr);
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

// ---- Samples ----------------------------------------------------------------------------------

TEST(DistlogPluginSamples, CreateNeedsMemoryForItsStrings) {
    support::LogCapture log;
    DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    EXPECT_EQ(VUR_DL_LogMessagePluginSupport_create_data_w_params(nullptr), nullptr);
    params.allocate_memory = DDS_BOOLEAN_FALSE;
    EXPECT_EQ(VUR_DL_LogMessagePluginSupport_create_data_w_params(&params), nullptr);
    const std::string text = log.take();
    EXPECT_NE(text.find("VUR_DL_LogMessagePluginSupport_create_data_w_params"), std::string::npos);
    EXPECT_NE(text.find("alloc_params->allocate_memory"), std::string::npos) << text;
    EXPECT_NE(text.find("false"), std::string::npos) << text;
}

TEST(DistlogPluginSamples, EveryWayToMakeAndFree) {
    const DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    VUR_DL_ADMIN_State *const state =
        VUR_DL_ADMIN_StatePluginSupport_create_data_w_params(&allocation);
    ASSERT_NE(state, nullptr);
    EXPECT_STREQ(state->applicationKind, "");
    VUR_DL_ADMIN_StatePluginSupport_destroy_data_w_params(state, &deallocation);
    VUR_DL_ADMIN_CommandRequest *const request =
        VUR_DL_ADMIN_CommandRequestPluginSupport_create_data_ex(DDS_BOOLEAN_TRUE);
    ASSERT_NE(request, nullptr);
    EXPECT_EQ(request->command._u.categoryAndVerbosity._maximum, 5U);
    VUR_DL_ADMIN_CommandRequestPluginSupport_destroy_data_ex(request, DDS_BOOLEAN_TRUE);
    VUR_DL_LogMessage *const key = VUR_DL_LogMessagePluginSupport_create_key();
    ASSERT_NE(key, nullptr);
    VUR_DL_LogMessagePluginSupport_destroy_key(key);
    VUR_DL_LogMessagePluginSupport_destroy_data(nullptr);
    VUR_DL_LogMessagePluginSupport_destroy_data_w_params(nullptr, &deallocation);
    VUR_DL_LogMessagePluginSupport_destroy_data_w_params(
        VUR_DL_LogMessagePluginSupport_create_data(), nullptr);
}

TEST(DistlogPluginSamples, CopyIsTheRecordsCopy) {
    const Message source = makeMessage();
    const Message copy(VUR_DL_LogMessagePluginSupport_create_data());
    ASSERT_TRUE(VUR_DL_LogMessagePluginSupport_copy_data(copy.get(), source.get()));
    EXPECT_STREQ(copy->message, source->message);
    EXPECT_FALSE(VUR_DL_LogMessagePluginSupport_copy_data(copy.get(), nullptr));
    EXPECT_TRUE(VUR_DL_LogMessagePlugin_copy_sample(nullptr, copy.get(), source.get()));
}

// ---- Bytes ------------------------------------------------------------------------------------

class DistlogPluginBytes : public testing::TestWithParam<DDS_DataRepresentationId_t> {};

TEST_P(DistlogPluginBytes, SizeQueryThenSerialiseThenRead) {
    const Message message = makeMessage();
    DDS_UnsignedLong size = 0;
    ASSERT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(nullptr, &size, message.get(),
                                                                   GetParam()));
    ASSERT_GT(size, 4U);
    Buffer buffer(size);
    DDS_UnsignedLong length = size;
    ASSERT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(buffer.data(), &length,
                                                                   message.get(), GetParam()));
    EXPECT_EQ(length, size);
    const Message read(VUR_DL_LogMessagePluginSupport_create_data());
    ASSERT_TRUE(
        VUR_DL_LogMessagePlugin_deserialize_from_cdr_buffer(read.get(), buffer.data(), length));
    EXPECT_TRUE(KOLT_Record_equals(VUR_DL_LogMessage_get_typecode(), read.get(), message.get()));
    length = size - 1;
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(buffer.data(), &length,
                                                                    message.get(), GetParam()));
}

TEST_P(DistlogPluginBytes, EveryBranchOfACommandComesBack) {
    for (const VUR_DL_ADMIN_CommandKind kind :
         {VUR_DL_SET_LOG_LEVEL, VUR_DL_SET_VUR_LOGGER_LEVEL, VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT}) {
        VUR_DL_ADMIN_CommandRequest *const request =
            VUR_DL_ADMIN_CommandRequestPluginSupport_create_data();
        VUR_DL_ADMIN_CommandRequest *const read =
            VUR_DL_ADMIN_CommandRequestPluginSupport_create_data();
        request->invocation = 7;
        request->command._d = kind;
        request->command._u.filterLevel = 400;
        ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(
            &request->command._u.categoryAndVerbosity, 5));
        request->command._u.printFormat = VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL;
        std::array<char, 512> buffer = {};
        DDS_UnsignedLong length = buffer.size();
        ASSERT_TRUE(VUR_DL_ADMIN_CommandRequestPlugin_serialize_to_cdr_buffer_ex(
            buffer.data(), &length, request, GetParam()));
        ASSERT_TRUE(VUR_DL_ADMIN_CommandRequestPlugin_deserialize_from_cdr_buffer(
            read, buffer.data(), length));
        EXPECT_TRUE(KOLT_Record_equals(VUR_DL_ADMIN_CommandRequest_get_typecode(), read, request));
        EXPECT_EQ(read->command._d, kind);
        VUR_DL_ADMIN_CommandRequestPluginSupport_destroy_data(request);
        VUR_DL_ADMIN_CommandRequestPluginSupport_destroy_data(read);
    }
}

INSTANTIATE_TEST_SUITE_P(Representations, DistlogPluginBytes,
                         testing::Values(DDS_XCDR_DATA_REPRESENTATION,
                                         DDS_XCDR2_DATA_REPRESENTATION));

TEST(DistlogPluginSerialize, AutomaticIsXcdr1) {
    const Message message = makeMessage();
    std::array<char, 1024> automatic = {};
    std::array<char, 1024> xcdr1 = {};
    DDS_UnsignedLong automatic_length = automatic.size();
    DDS_UnsignedLong xcdr1_length = xcdr1.size();
    ASSERT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer(automatic.data(), &automatic_length,
                                                                message.get()));
    ASSERT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(
        xcdr1.data(), &xcdr1_length, message.get(), DDS_XCDR_DATA_REPRESENTATION));
    EXPECT_EQ(automatic, xcdr1);
    EXPECT_EQ(automatic[1], KOLT_ENCAPSULATION_PL_CDR_LE);
}

// The bytes that docs/wire-format.md shows.
TEST(DistlogPluginSerialize, MessageBytes) {
    const Message message(VUR_DL_LogMessagePluginSupport_create_data());
    message->hostAndAppId = {0x01020304, 0x05060708};
    message->level = 300;
    std::strcpy(message->category, "pump");
    std::strcpy(message->message, "hot");
    message->messageId = 9;
    const auto bytes = [&message](DDS_DataRepresentationId_t representation) {
        Buffer buffer(256);
        DDS_UnsignedLong length = 256;
        EXPECT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(
            buffer.data(), &length, message.get(), representation));
        return support::toHex(support::Bytes(buffer.begin(), buffer.begin() + length));
    };
    EXPECT_EQ(bytes(DDS_XCDR_DATA_REPRESENTATION),
              support::toHex(support::fromHex(
                  "00030000 00400800 04030201 08070605 01400400 2c010000 02000900 05000000"
                  "70756d70 00000000 03000800 04000000 686f7400 04000800 09000000 00000000"
                  "023f0000")));
    EXPECT_EQ(bytes(DDS_XCDR2_DATA_REPRESENTATION),
              support::toHex(support::fromHex(
                  "000b0000 44000000 000000c0 0c000000 08000000 04030201 08070605 010000a0"
                  "2c010000 02000050 05000000 70756d70 00000000 03000050 04000000 686f7400"
                  "04000030 09000000 00000000")));
}

TEST(DistlogPluginSerialize, RequestBytes) {
    VUR_DL_ADMIN_CommandRequest *const request =
        VUR_DL_ADMIN_CommandRequestPluginSupport_create_data();
    request->targetHostAndAppId = {1, 2};
    request->originatorHostAndAppId = {3, 4};
    request->invocation = 5;
    request->command._u.filterLevel = 800;
    Buffer buffer(256);
    DDS_UnsignedLong length = 256;
    ASSERT_TRUE(VUR_DL_ADMIN_CommandRequestPlugin_serialize_to_cdr_buffer_ex(
        buffer.data(), &length, request, DDS_XCDR2_DATA_REPRESENTATION));
    VUR_DL_ADMIN_CommandRequestPluginSupport_destroy_data(request);
    EXPECT_EQ(support::toHex(support::Bytes(buffer.begin(), buffer.begin() + length)),
              support::toHex(support::fromHex(
                  "000b0000 4c000000 00000040 0c000000 08000000 01000000 02000000 01000040"
                  "0c000000 08000000 03000000 04000000 02000020 05000000 03000040 14000000"
                  "10000000 000000a0 00000000 01000020 20030000")));
}

TEST(DistlogPluginSerialize, RefusesWhatItCannotWrite) {
    const Message message = makeMessage();
    std::array<char, 8192> buffer = {};
    DDS_UnsignedLong length = buffer.size();
    EXPECT_FALSE(
        VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer(buffer.data(), nullptr, message.get()));
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer(buffer.data(), &length, nullptr));
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(
        buffer.data(), &length, message.get(), DDS_XML_DATA_REPRESENTATION));
    DDS_String_replace(&message->category, std::string(513, 'c').c_str());
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer(nullptr, &length, message.get()));
    length = buffer.size();
    EXPECT_FALSE(
        VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer(buffer.data(), &length, message.get()));
}

TEST(DistlogPluginSerialize, RefusesWhatItCannotRead) {
    const Message message = makeMessage();
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_deserialize_from_cdr_buffer(message.get(), nullptr, 4));
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_deserialize_from_cdr_buffer(nullptr, "", 0));
    const std::array<char, 8> broken = {0, 0x55, 0, 0, 1, 2, 3, 4};
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_deserialize_from_cdr_buffer(message.get(), broken.data(),
                                                                     broken.size()));
}

TEST(DistlogPluginSerialize, ProgramsAreKept) {
    EXPECT_NE(VUR_DL_LogMessagePlugin_get_programs(), nullptr);
    EXPECT_EQ(VUR_DL_LogMessagePlugin_get_programs(), VUR_DL_LogMessagePlugin_get_programs());
    EXPECT_EQ(KOLT_TypePrograms_type(VUR_DL_ADMIN_CommandPlugin_get_programs()),
              VUR_DL_ADMIN_Command_get_typecode());
}

// ---- Sizes ------------------------------------------------------------------------------------

TEST(DistlogPluginSizes, BoundTheLargestSample) {
    const Message message = makeMessage();
    std::memset(message->category, 'c', 512);
    message->category[512] = '\0';
    std::memset(message->message, 'm', 4096);
    message->message[4096] = '\0';
    for (const DDS_DataRepresentationId_t representation :
         {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
        DDS_UnsignedLong size = 0;
        ASSERT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(
            nullptr, &size, message.get(), representation));
        const DDS_UnsignedShort encapsulation =
            DDS_TypeCode_get_native_encapsulation(VUR_DL_LogMessage_get_typecode(), representation);
        const DDS_UnsignedLong largest = VUR_DL_LogMessagePlugin_get_serialized_sample_max_size(
            nullptr, DDS_BOOLEAN_TRUE, encapsulation, 0);
        EXPECT_GE(largest, size);
        EXPECT_LT(largest, size + 16);
        EXPECT_EQ(VUR_DL_LogMessagePlugin_get_serialized_sample_max_size(nullptr, DDS_BOOLEAN_FALSE,
                                                                         encapsulation, 0),
                  largest - 4);
    }
}

TEST(DistlogPluginSizes, OfEnumerationsAndKeys) {
    EXPECT_EQ(VUR_DL_ADMIN_StateKindPlugin_get_serialized_sample_max_size(
                  nullptr, DDS_BOOLEAN_FALSE, KOLT_ENCAPSULATION_CDR_LE, 0),
              4U);
    // Two longs: 8 bytes of key. A level makes 12, below the 16 of a key hash.
    EXPECT_EQ(VUR_DL_HostAndAppIdPlugin_get_serialized_key_max_size_for_keyhash(
                  nullptr, KOLT_ENCAPSULATION_CDR2_BE, 0),
              8U);
    EXPECT_EQ(VUR_DL_LogMessagePlugin_get_serialized_key_max_size_for_keyhash(
                  nullptr, KOLT_ENCAPSULATION_CDR2_BE, 0),
              12U);
    EXPECT_EQ(VUR_DL_ADMIN_StatePlugin_get_serialized_key_max_size_for_keyhash(
                  nullptr, KOLT_ENCAPSULATION_CDR2_BE, 0),
              8U);
}

// ---- Endpoints --------------------------------------------------------------------------------

class DistlogPluginEndpoint : public testing::Test {
  protected:
    void SetUp() override {
        const KOLT_TypePluginParticipantInfo info = {40};
        participant_ =
            VUR_DL_LogMessagePlugin_on_participant_attached(nullptr, &info, 1, nullptr, nullptr);
        ASSERT_NE(participant_, nullptr);
        writer_ = attach(KOLT_TYPE_PLUGIN_WRITER);
        ASSERT_NE(writer_, nullptr);
    }
    void TearDown() override {
        VUR_DL_LogMessagePlugin_on_endpoint_detached(writer_);
        VUR_DL_LogMessagePlugin_on_participant_detached(participant_);
    }
    KOLT_TypePluginEndpointData *attach(KOLT_TypePluginEndpointKind kind) {
        const KOLT_TypePluginEndpointInfo info = {kind, DDS_XCDR2_DATA_REPRESENTATION, 0};
        return VUR_DL_LogMessagePlugin_on_endpoint_attached(participant_, &info, 1, nullptr);
    }
    // The key hash by way of the sample's bytes.
    KOLT_KeyHash hashOfBytes(const VUR_DL_LogMessage &message) {
        std::array<char, 8192> buffer = {};
        DDS_UnsignedLong length = buffer.size();
        EXPECT_TRUE(VUR_DL_LogMessagePlugin_serialize_to_cdr_buffer_ex(
            buffer.data(), &length, &message, DDS_XCDR2_DATA_REPRESENTATION));
        KOLT_CdrStream stream = {};
        KOLT_CdrStream_set(&stream, reinterpret_cast<DDS_Octet *>(buffer.data()), length);
        KOLT_KeyHash hash = {};
        EXPECT_TRUE(VUR_DL_LogMessagePlugin_serialized_sample_to_keyhash(
            writer_, &stream, &hash, DDS_BOOLEAN_TRUE, nullptr));
        return hash;
    }

    KOLT_TypePluginParticipantData *participant_ = nullptr;
    KOLT_TypePluginEndpointData *writer_ = nullptr;
};

TEST_F(DistlogPluginEndpoint, NeedsParticipantData) {
    const KOLT_TypePluginEndpointInfo info = {KOLT_TYPE_PLUGIN_READER, DDS_XCDR_DATA_REPRESENTATION,
                                              0};
    EXPECT_EQ(VUR_DL_LogMessagePlugin_on_endpoint_attached(nullptr, &info, 1, nullptr), nullptr);
    VUR_DL_LogMessagePlugin_on_participant_detached(nullptr);
}

TEST_F(DistlogPluginEndpoint, MakesSamplesAndTakesThemBack) {
    KOLT_TypePluginEndpointData *const reader = attach(KOLT_TYPE_PLUGIN_READER);
    ASSERT_NE(reader, nullptr);
    void *handle = nullptr;
    void *const sample = KOLT_TypePlugin_get_sample(reader, &handle);
    ASSERT_NE(sample, nullptr);
    EXPECT_STREQ(static_cast<VUR_DL_LogMessage *>(sample)->message, "");
    VUR_DL_LogMessagePlugin_return_sample(reader, sample, handle);
    void *const fresh = KOLT_TypePlugin_create_sample(reader);
    ASSERT_NE(fresh, nullptr);
    KOLT_TypePlugin_destroy_sample(reader, fresh);
    VUR_DL_LogMessagePlugin_on_endpoint_detached(reader);
}

TEST_F(DistlogPluginEndpoint, WritersHaveBuffersOfTheSizeThatIsNeeded) {
    const DDS_UnsignedLong largest = VUR_DL_LogMessagePlugin_get_serialized_sample_max_size(
        writer_, DDS_BOOLEAN_FALSE, KOLT_ENCAPSULATION_PL_CDR2_LE, 0);
    EXPECT_EQ(KOLT_TypePlugin_EndpointData_max_size(writer_), largest);
    KOLT_CdrStream stream = {};
    ASSERT_TRUE(KOLT_TypePlugin_get_buffer(writer_, &stream, 100));
    EXPECT_GE(stream.length, 100U);
    KOLT_TypePlugin_return_buffer(writer_, &stream);
}

TEST_F(DistlogPluginEndpoint, KeysAreIdentityAndLevel) {
    const Message message = makeMessage();
    const Message key(VUR_DL_LogMessagePluginSupport_create_key());
    ASSERT_TRUE(VUR_DL_LogMessagePlugin_instance_to_key(writer_, key.get(), message.get()));
    EXPECT_EQ(key->hostAndAppId.rtps_host_id, 11);
    EXPECT_EQ(key->hostAndAppId.rtps_app_id, -12);
    EXPECT_EQ(key->level, 300);
    EXPECT_STREQ(key->message, "") << "no more than the key";
    const Message back(VUR_DL_LogMessagePluginSupport_create_data());
    ASSERT_TRUE(VUR_DL_LogMessagePlugin_key_to_instance(writer_, back.get(), key.get()));
    EXPECT_EQ(back->level, 300);
    EXPECT_FALSE(VUR_DL_LogMessagePlugin_instance_to_key(writer_, nullptr, message.get()));
}

TEST_F(DistlogPluginEndpoint, MessagesThatDifferInLevelAreDifferentInstances) {
    const Message message = makeMessage();
    const KOLT_KeyHash first = hashOfBytes(*message);
    KOLT_KeyHash direct = {};
    ASSERT_TRUE(KOLT_TypePlugin_instance_to_keyhash(writer_, &direct, message.get(),
                                                    KOLT_ENCAPSULATION_PL_CDR2_LE));
    EXPECT_EQ(std::memcmp(first.value, direct.value, 16), 0) << "from bytes and from the record";
    // Twelve bytes of key fit a key hash as they are: big-endian, filled with zeros.
    const std::array<DDS_Octet, 16> expected = {0, 0, 0, 11, 0xff, 0xff, 0xff, 0xf4,
                                                0, 0, 1, 44, 0,    0,    0,    0};
    EXPECT_EQ(std::memcmp(first.value, expected.data(), 16), 0);
    std::strcpy(message->message, "another text");
    const KOLT_KeyHash same = hashOfBytes(*message);
    EXPECT_EQ(std::memcmp(first.value, same.value, 16), 0);
    message->level = 301;
    const KOLT_KeyHash other = hashOfBytes(*message);
    EXPECT_NE(std::memcmp(first.value, other.value, 16), 0);
}

TEST_F(DistlogPluginEndpoint, KeyPayloadsComeBack) {
    const Message message = makeMessage();
    std::array<DDS_Octet, 64> buffer = {};
    KOLT_CdrStream stream = {};
    KOLT_CdrStream_set(&stream, buffer.data(), buffer.size());
    ASSERT_TRUE(KOLT_TypePlugin_serialize_key(writer_, message.get(), &stream, 1,
                                              KOLT_ENCAPSULATION_PL_CDR2_LE, 1, nullptr));
    KOLT_CdrStream in = {};
    KOLT_CdrStream_set(&in, buffer.data(), stream.position);
    const Message read(VUR_DL_LogMessagePluginSupport_create_data());
    void *sample = read.get();
    DDS_Boolean drop = DDS_BOOLEAN_FALSE;
    ASSERT_TRUE(
        VUR_DL_LogMessagePlugin_deserialize_key(writer_, &sample, &drop, &in, 1, 1, nullptr));
    EXPECT_EQ(read->level, 300);
    EXPECT_EQ(read->hostAndAppId.rtps_app_id, -12);
    sample = nullptr;
    KOLT_CdrStream_set(&in, buffer.data(), stream.position);
    EXPECT_FALSE(
        VUR_DL_LogMessagePlugin_deserialize_key(writer_, &sample, &drop, &in, 1, 1, nullptr));
}

TEST_F(DistlogPluginEndpoint, BrokenBytesHaveNoKeyHash) {
    std::array<DDS_Octet, 8> broken = {0, 0x0b, 0, 0, 0xff, 0xff, 0xff, 0x7f};
    KOLT_CdrStream stream = {};
    KOLT_CdrStream_set(&stream, broken.data(), broken.size());
    KOLT_KeyHash hash = {};
    EXPECT_FALSE(
        VUR_DL_LogMessagePlugin_serialized_sample_to_keyhash(writer_, &stream, &hash, 1, nullptr));
    EXPECT_FALSE(
        VUR_DL_LogMessagePlugin_serialized_sample_to_keyhash(nullptr, &stream, &hash, 1, nullptr));
}

// ---- Text -------------------------------------------------------------------------------------

TEST(DistlogPluginText, MissingArguments) {
    const Message message = makeMessage();
    const DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(VUR_DL_LogMessagePlugin_data_to_string(message.get(), nullptr, nullptr, &property),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_LogMessagePlugin_data_to_string(nullptr, nullptr, &length, &property),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_LogMessagePlugin_data_to_string(message.get(), nullptr, &length, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST(DistlogPluginText, AsksForLengthThenRenders) {
    const Message message = makeMessage();
    const DDS_PrintFormatProperty property = {DDS_JSON_PRINT_FORMAT, 0, 0, 0};
    DDS_UnsignedLong length = 0;
    ASSERT_EQ(VUR_DL_LogMessagePlugin_data_to_string(message.get(), nullptr, &length, &property),
              DDS_RETCODE_OK);
    const std::string expected =
        R"({"hostAndAppId":{"rtps_host_id":11,"rtps_app_id":-12},"level":300,"category":"engine",)"
        R"("message":"oil pressure low","messageId":1099511627776})";
    EXPECT_EQ(length, expected.size() + 1);
    Buffer text(length);
    DDS_UnsignedLong tooShort = length - 1;
    EXPECT_EQ(
        VUR_DL_LogMessagePlugin_data_to_string(message.get(), text.data(), &tooShort, &property),
        DDS_RETCODE_OUT_OF_RESOURCES);
    EXPECT_EQ(tooShort, length);
    ASSERT_EQ(
        VUR_DL_LogMessagePlugin_data_to_string(message.get(), text.data(), &length, &property),
        DDS_RETCODE_OK);
    EXPECT_EQ(std::string(text.data()), expected);
}

TEST(DistlogPluginText, SampleThatCannotBeSerialised) {
    const Message message = makeMessage();
    DDS_String_replace(&message->message, nullptr);
    const DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(VUR_DL_LogMessagePlugin_data_to_string(message.get(), nullptr, &length, &property),
              DDS_RETCODE_ERROR);
}

TEST(DistlogPluginText, UnknownFormat) {
    const Message message = makeMessage();
    const DDS_PrintFormatProperty property = {static_cast<DDS_PrintFormatKind>(3), 0, 0, 0};
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(VUR_DL_LogMessagePlugin_data_to_string(message.get(), nullptr, &length, &property),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST(DistlogPluginText, PrintsNull) {
    testing::internal::CaptureStdout();
    VUR_DL_LogMessagePluginSupport_print_data(nullptr, "sample", 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "sample:\nNULL\n");
    testing::internal::CaptureStdout();
    VUR_DL_ADMIN_CommandPluginSupport_print_data(nullptr, nullptr, 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "\nNULL\n");
}

// Every line of a print but its indentation and values.
bool hasLine(const std::string &text, const std::string &name) {
    return text.find(" " + name + ":") != std::string::npos;
}

TEST(DistlogPluginText, PrintsEveryMember) {
    const Message message = makeMessage();
    testing::internal::CaptureStdout();
    VUR_DL_LogMessagePluginSupport_print_data(message.get(), "sample", 0);
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_EQ(text.rfind("sample:\n", 0), 0U) << text;
    for (const char *name : {"hostAndAppId", "rtps_host_id", "rtps_app_id", "level", "category",
                             "message", "messageId"}) {
        EXPECT_TRUE(hasLine(text, name)) << name << " in " << text;
    }
    EXPECT_NE(text.find("oil pressure low"), std::string::npos);
}

TEST(DistlogPluginText, PrintsTheSelectedBranchOnly) {
    VUR_DL_ADMIN_Command command = {};
    ASSERT_TRUE(VUR_DL_ADMIN_Command_initialize(&command));
    ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(
        &command._u.categoryAndVerbosity, 2));
    const std::array<const char *, 3> branches = {"_u.filterLevel", "_u.categoryAndVerbosity",
                                                  "_u.printFormat"};
    for (DDS_Long d = 0; d < 4; ++d) {
        command._d = static_cast<VUR_DL_ADMIN_CommandKind>(d);
        testing::internal::CaptureStdout();
        VUR_DL_ADMIN_CommandPluginSupport_print_data(&command, "command", 1);
        const std::string text = testing::internal::GetCapturedStdout();
        EXPECT_TRUE(hasLine(text, "_d")) << text;
        for (DDS_Long branch = 0; branch < 3; ++branch) {
            const bool found =
                text.find(branches[static_cast<size_t>(branch)]) != std::string::npos;
            EXPECT_EQ(found, branch == d) << text;
        }
    }
    VUR_DL_ADMIN_Command_finalize(&command);
}

TEST(DistlogPluginText, EnumerationsPrintWithTheirRecordsName) {
    const VUR_DL_ADMIN_VURLoggerVerbosity verbosity = VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING;
    testing::internal::CaptureStdout();
    VUR_DL_ADMIN_VURLoggerVerbosityPluginSupport_print_data(&verbosity, "verbosity", 0);
    const std::string text = testing::internal::GetCapturedStdout();
    EXPECT_NE(text.find("verbosity"), std::string::npos);
    EXPECT_NE(text.find("VUR_DL_ADMIN_VURLoggerVerbosity"), std::string::npos) << text;
    EXPECT_NE(text.find("VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING"), std::string::npos) << text;
    testing::internal::CaptureStdout();
    VUR_DL_ADMIN_VURLoggerVerbosityPluginSupport_print_data(nullptr, "verbosity", 0);
    EXPECT_NE(testing::internal::GetCapturedStdout().find("NULL"), std::string::npos);
}

}  // namespace
