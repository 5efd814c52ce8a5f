// SPDX-License-Identifier: Apache-2.0
// The logger's types when the middleware cannot give what they ask for: each failure is a result,
// and what was made before it is undone.
#include <gtest/gtest.h>
#include <kolt/dynamic_data.h>
#include <kolt/os.h>

#include "support/platform/faults.h"
#include "support/types/topic_types.h"

FAULT_POINT(void *, KOLT_Heap_allocate, (std::size_t size), (size), nullptr)
FAULT_POINT(void *, KOLT_Heap_allocate_zeroed, (std::size_t size), (size), nullptr)
FAULT_POINT(const KOLT_TypePrograms *, KOLT_TypePrograms_acquire, (const DDS_TypeCode *type),
            (type), nullptr)
// Initialises the record and fails all the same, so that there are members to be freed.
FAULT_POINT(DDS_Boolean, KOLT_Record_initialize_w_params,
            (const DDS_TypeCode *type, void *record, const DDS_TypeAllocationParams_t *params),
            (type, record, params), (real(type, record, params), DDS_BOOLEAN_FALSE))
FAULT_POINT(KOLT_TypePluginParticipantData *, KOLT_TypePlugin_ParticipantData_new,
            (const KOLT_TypePluginParticipantInfo *info), (info), nullptr)
FAULT_POINT(KOLT_TypePluginEndpointData *, KOLT_TypePlugin_EndpointData_new,
            (KOLT_TypePluginParticipantData * participant, const KOLT_TypePluginEndpointInfo *info,
             void *(*create)(void), void (*destroy)(void *), void *(*create_key)(void),
             void (*destroy_key)(void *)),
            (participant, info, create, destroy, create_key, destroy_key), nullptr)
FAULT_POINT(DDS_Boolean, KOLT_TypePlugin_EndpointData_create_md5_stream,
            (KOLT_TypePluginEndpointData * data, DDS_UnsignedLong key, DDS_UnsignedLong keyhash),
            (data, key, keyhash), DDS_BOOLEAN_FALSE)
FAULT_POINT(DDS_Boolean, KOLT_TypePlugin_EndpointData_create_writer_pool,
            (KOLT_TypePluginEndpointData * data,
             DDS_UnsignedLong (*max_size)(KOLT_TypePluginEndpointData *, DDS_Boolean,
                                          DDS_UnsignedShort, DDS_UnsignedLong),
             DDS_UnsignedLong (*size)(KOLT_TypePluginEndpointData *, DDS_Boolean, DDS_UnsignedShort,
                                      DDS_UnsignedLong, const void *)),
            (data, max_size, size), DDS_BOOLEAN_FALSE)
FAULT_POINT(DDS_DynamicData *, DDS_DynamicData_new,
            (const DDS_TypeCode *type, const DDS_DynamicDataProperty_t *property), (type, property),
            nullptr)
FAULT_POINT(DDS_ReturnCode_t, DDS_DynamicData_from_cdr_buffer,
            (DDS_DynamicData * data, const DDS_Char *buffer, DDS_UnsignedLong length),
            (data, buffer, length), DDS_RETCODE_OUT_OF_RESOURCES)
// The functions that undo always work. Their calls are counted.
FAULT_POINT(void, KOLT_TypePlugin_ParticipantData_delete, (KOLT_TypePluginParticipantData * data),
            (data), void())
FAULT_POINT(void, KOLT_TypePlugin_EndpointData_delete, (KOLT_TypePluginEndpointData * data), (data),
            void())

namespace {

using namespace support;

template <typename T>
class DistlogTypesFault : public testing::Test {
  protected:
    void SetUp() override { Faults::clear(); }
    void TearDown() override { Faults::clear(); }
    // The next call of the function fails, and no other of any function.
    static void fail(const char *function) {
        Faults::heal();
        Faults::fail_call(function);
    }
};
TYPED_TEST_SUITE(DistlogTypesFault, TopicTypes, TopicTypeName);

TYPED_TEST(DistlogTypesFault, PluginsThatCannotBeMade) {
    using Type = TopicType<TypeParam>;
    this->fail("KOLT_Heap_allocate_zeroed");
    EXPECT_EQ(Type::new_plugin(), nullptr);
    this->fail("KOLT_Heap_allocate_zeroed");
    DDS_DomainParticipant never_used = {};
    EXPECT_EQ(Type::Support::register_type(&never_used, "name"), DDS_RETCODE_ERROR);
}

TYPED_TEST(DistlogTypesFault, SamplesThatCannotBeMade) {
    using Support = typename TopicType<TypeParam>::Support;
    const DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    for (const char *const function :
         {"KOLT_Heap_allocate_zeroed", "KOLT_Record_initialize_w_params"}) {
        SCOPED_TRACE(function);
        this->fail(function);
        EXPECT_EQ(Support::create_data(), nullptr);
        this->fail(function);
        EXPECT_EQ(Support::create_data_ex(DDS_BOOLEAN_TRUE), nullptr);
        this->fail(function);
        EXPECT_EQ(Support::create_data_w_params(&params), nullptr);
    }
    TypeParam record = {};
    this->fail("KOLT_Record_initialize_w_params");
    EXPECT_EQ(Support::initialize_data(&record), DDS_RETCODE_ERROR);
    Support::finalize_data(&record);
}

// A participant, and endpoints of it, attached through the plugin record.
template <typename T>
class Attachment {
  public:
    Attachment() : plugin_(TopicType<T>::new_plugin()) {}
    ~Attachment() {
        if (participant != nullptr) {
            plugin_->on_participant_detached(participant);
        }
        TopicType<T>::delete_plugin(plugin_);
    }
    Attachment(const Attachment &) = delete;
    Attachment &operator=(const Attachment &) = delete;

    bool attach() {
        const KOLT_TypePluginParticipantInfo info = {0};
        participant = plugin_->on_participant_attached(nullptr, &info, 1, nullptr, nullptr);
        return participant != nullptr;
    }
    // Attaches an endpoint and detaches it again.
    bool attach(KOLT_TypePluginEndpointKind kind) {
        const KOLT_TypePluginEndpointInfo info = {kind, DDS_XCDR_DATA_REPRESENTATION, 0};
        KOLT_TypePluginEndpointData *const data =
            plugin_->on_endpoint_attached(participant, &info, 1, nullptr);
        if (data != nullptr) {
            plugin_->on_endpoint_detached(data);
        }
        return data != nullptr;
    }

    KOLT_TypePluginParticipantData *participant = nullptr;

  private:
    KOLT_TypePlugin *plugin_;
};

TYPED_TEST(DistlogTypesFault, ParticipantsThatCannotBeAttached) {
    Attachment<TypeParam> attachment;
    this->fail("KOLT_TypePlugin_ParticipantData_new");
    EXPECT_FALSE(attachment.attach());
    EXPECT_EQ(Faults::calls("KOLT_TypePlugin_ParticipantData_delete"), 0);
    this->fail("KOLT_TypePrograms_acquire");
    EXPECT_FALSE(attachment.attach());
    EXPECT_EQ(Faults::calls("KOLT_TypePlugin_ParticipantData_delete"), 1)
        << "participant data without programs are of no use";
    EXPECT_TRUE(attachment.attach());
}

TYPED_TEST(DistlogTypesFault, EndpointsThatCannotBeAttached) {
    Attachment<TypeParam> attachment;
    ASSERT_TRUE(attachment.attach());
    for (const auto kind : {KOLT_TYPE_PLUGIN_WRITER, KOLT_TYPE_PLUGIN_READER}) {
        SCOPED_TRACE(kind);
        Faults::clear();
        this->fail("KOLT_TypePlugin_EndpointData_new");
        EXPECT_FALSE(attachment.attach(kind));
        EXPECT_EQ(Faults::calls("KOLT_TypePlugin_EndpointData_delete"), 0);
        this->fail("KOLT_TypePlugin_EndpointData_create_md5_stream");
        EXPECT_EQ(attachment.attach(kind), !TopicType<TypeParam>::kKeyed)
            << "only keyed types have one";
        this->fail("KOLT_TypePlugin_EndpointData_create_writer_pool");
        EXPECT_EQ(attachment.attach(kind), kind == KOLT_TYPE_PLUGIN_READER)
            << "only writers have one";
        EXPECT_TRUE(attachment.attach(kind));
        EXPECT_EQ(Faults::calls("KOLT_TypePlugin_EndpointData_delete"), 3)
            << "by the plugin itself, or detached";
    }
}

TYPED_TEST(DistlogTypesFault, TextThatCannotBeMade) {
    using Support = typename TopicType<TypeParam>::Support;
    Filled<TypeParam> sample;
    const DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
    DDS_UnsignedLong length = 0;
    const auto render = [&] {
        return Support::data_to_string(sample.get(), nullptr, &length, &property);
    };
    this->fail("KOLT_Heap_allocate");
    EXPECT_EQ(render(), DDS_RETCODE_ERROR);
    this->fail("DDS_DynamicData_new");
    EXPECT_EQ(render(), DDS_RETCODE_ERROR);
    this->fail("DDS_DynamicData_from_cdr_buffer");
    EXPECT_EQ(render(), DDS_RETCODE_OUT_OF_RESOURCES) << "as the middleware says";
    EXPECT_EQ(length, 0U);
    EXPECT_EQ(render(), DDS_RETCODE_OK);
}

// The first conversion of a type compiles its programs. No other test converts an identity.
TEST(DistlogTypesFaultPrograms, ThatCannotBeHadAreAskedForAgain) {
    VUR_DL_HostAndAppId identity = {1, 2};
    DDS_UnsignedLong length = 0;
    const DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
    Faults::fail_call("KOLT_TypePrograms_acquire");
    EXPECT_EQ(VUR_DL_HostAndAppIdPlugin_get_programs(), nullptr);
    Faults::fail_call("KOLT_TypePrograms_acquire");
    EXPECT_FALSE(VUR_DL_HostAndAppIdPlugin_serialize_to_cdr_buffer(nullptr, &length, &identity));
    Faults::fail_call("KOLT_TypePrograms_acquire");
    EXPECT_FALSE(VUR_DL_HostAndAppIdPlugin_deserialize_from_cdr_buffer(&identity, "", 0));
    Faults::fail_call("KOLT_TypePrograms_acquire");
    EXPECT_EQ(VUR_DL_HostAndAppIdPlugin_data_to_string(&identity, nullptr, &length, &property),
              DDS_RETCODE_ERROR);
    Faults::clear();
    EXPECT_TRUE(VUR_DL_HostAndAppIdPlugin_serialize_to_cdr_buffer(nullptr, &length, &identity));
    EXPECT_NE(VUR_DL_HostAndAppIdPlugin_get_programs(), nullptr);
}

}  // namespace
