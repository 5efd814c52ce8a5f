// SPDX-License-Identifier: Apache-2.0
// Plugin support of the seven structured types: samples and key holders made, copied and freed.

#include <gtest/gtest.h>
#include <vur_dl/distlogPlugin.h>

#include <cstring>
#include <string>

#include "support/logger/log_capture.h"
#include "support/types/type_list.h"

namespace {

#define STRUCTURED(T)                                                                      \
    struct T##Support {                                                                    \
        using Record = T;                                                                  \
        static constexpr const char *kName = #T;                                           \
        static constexpr auto kCode = T##_get_typecode;                                    \
        static constexpr auto kInitialize = T##_initialize;                                \
        static constexpr auto kFinalize = T##_finalize;                                    \
        static constexpr auto kCreate = T##PluginSupport_create_data;                      \
        static constexpr auto kCreateEx = T##PluginSupport_create_data_ex;                 \
        static constexpr auto kCreateWithParams = T##PluginSupport_create_data_w_params;   \
        static constexpr auto kDestroy = T##PluginSupport_destroy_data;                    \
        static constexpr auto kDestroyEx = T##PluginSupport_destroy_data_ex;               \
        static constexpr auto kDestroyWithParams = T##PluginSupport_destroy_data_w_params; \
        static constexpr auto kCopy = T##PluginSupport_copy_data;                          \
        static constexpr auto kPrograms = T##Plugin_get_programs;                          \
    }
FOR_EACH_STRUCTURED_TYPE(STRUCTURED, SEMICOLON);
#undef STRUCTURED

#define SUPPORT_OF(T) T##Support
using Structured = testing::Types<FOR_EACH_STRUCTURED_TYPE(SUPPORT_OF, COMMA)>;
#undef SUPPORT_OF

template <typename Support>
class DistlogPluginSamples : public testing::Test {
  protected:
    using Record = typename Support::Record;

    DistlogPluginSamples() { EXPECT_TRUE(Support::kInitialize(&initial_)); }
    ~DistlogPluginSamples() override { Support::kFinalize(&initial_); }
    bool is_initial(const Record *record) {
        return record != nullptr && KOLT_Record_equals(Support::kCode(), record, &initial_) != 0;
    }

    Record initial_ = {};
    support::LogCapture log_;
};
TYPED_TEST_SUITE(DistlogPluginSamples, Structured);

TYPED_TEST(DistlogPluginSamples, EveryWayToMakeAndFree) {
    const DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    typename TypeParam::Record *record = TypeParam::kCreate();
    EXPECT_TRUE(this->is_initial(record));
    TypeParam::kDestroy(record);
    for (const DDS_Boolean allocate_pointers : {DDS_BOOLEAN_TRUE, DDS_BOOLEAN_FALSE}) {
        record = TypeParam::kCreateEx(allocate_pointers);
        EXPECT_TRUE(this->is_initial(record)) << "no type has members that are pointers";
        TypeParam::kDestroyEx(record, DDS_BOOLEAN_TRUE);
    }
    record = TypeParam::kCreateWithParams(&allocation);
    EXPECT_TRUE(this->is_initial(record));
    TypeParam::kDestroyWithParams(record, &deallocation);
    TypeParam::kDestroyWithParams(TypeParam::kCreate(), nullptr);
    TypeParam::kDestroy(nullptr);
    TypeParam::kDestroyEx(nullptr, DDS_BOOLEAN_TRUE);
    TypeParam::kDestroyWithParams(nullptr, &deallocation);
    EXPECT_EQ(this->log_.take(), "");
}

TYPED_TEST(DistlogPluginSamples, CreateNeedsMemoryForItsStrings) {
    DDS_TypeAllocationParams_t params = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    EXPECT_EQ(TypeParam::kCreateWithParams(nullptr), nullptr);
    EXPECT_EQ(this->log_.take(), "");
    params.allocate_memory = DDS_BOOLEAN_FALSE;
    EXPECT_EQ(TypeParam::kCreateWithParams(&params), nullptr);
    const std::string text = this->log_.take();
    EXPECT_NE(text.find(std::string(TypeParam::kName) + "PluginSupport_create_data_w_params"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("alloc_params->allocate_memory"), std::string::npos) << text;
    EXPECT_NE(text.find("false"), std::string::npos) << text;
}

TYPED_TEST(DistlogPluginSamples, CopyIsTheRecordsCopy) {
    typename TypeParam::Record *const copy = TypeParam::kCreate();
    ASSERT_NE(copy, nullptr);
    EXPECT_TRUE(TypeParam::kCopy(copy, &this->initial_));
    EXPECT_TRUE(this->is_initial(copy));
    EXPECT_FALSE(TypeParam::kCopy(copy, nullptr));
    EXPECT_FALSE(TypeParam::kCopy(nullptr, copy));
    TypeParam::kDestroy(copy);
}

TYPED_TEST(DistlogPluginSamples, ProgramsAreKept) {
    const KOLT_TypePrograms *const programs = TypeParam::kPrograms();
    ASSERT_NE(programs, nullptr);
    EXPECT_EQ(TypeParam::kPrograms(), programs);
    EXPECT_EQ(KOLT_TypePrograms_type(programs), TypeParam::kCode());
}

TEST(DistlogPluginCopies, AreDeep) {
    VUR_DL_LogMessage *const source = VUR_DL_LogMessagePluginSupport_create_data();
    VUR_DL_LogMessage *const copy = VUR_DL_LogMessagePluginSupport_create_data();
    std::strcpy(source->message, "oil pressure low");
    ASSERT_TRUE(VUR_DL_LogMessagePluginSupport_copy_data(copy, source));
    EXPECT_STREQ(copy->message, source->message);
    EXPECT_NE(copy->message, source->message);
    VUR_DL_LogMessagePluginSupport_destroy_data(copy);
    VUR_DL_LogMessagePluginSupport_destroy_data(source);
}

// ---- Key holders --------------------------------------------------------------------------------

template <typename T>
void expect_key_holders(T *(*create)(), T *(*create_ex)(DDS_Boolean), void (*destroy)(T *),
                        void (*destroy_ex)(T *, DDS_Boolean), const DDS_TypeCode *code) {
    SCOPED_TRACE(DDS_TypeCode_name(code));
    T *const key = create();
    T *const other = create_ex(DDS_BOOLEAN_TRUE);
    ASSERT_NE(key, nullptr);
    ASSERT_NE(other, nullptr);
    EXPECT_TRUE(KOLT_Record_equals(code, key, other)) << "both are initialised";
    destroy(key);
    destroy_ex(other, DDS_BOOLEAN_TRUE);
    destroy(nullptr);
    destroy_ex(nullptr, DDS_BOOLEAN_TRUE);
}

#define EXPECT_KEY_HOLDERS(T)                                                            \
    expect_key_holders<T>(T##PluginSupport_create_key, T##PluginSupport_create_key_ex,   \
                          T##PluginSupport_destroy_key, T##PluginSupport_destroy_key_ex, \
                          T##_get_typecode())

TEST(DistlogPluginKeyHolders, AreRecordsOfTheKeyedTypes) {
    EXPECT_KEY_HOLDERS(VUR_DL_HostAndAppId);
    EXPECT_KEY_HOLDERS(VUR_DL_LogMessage);
    EXPECT_KEY_HOLDERS(VUR_DL_ADMIN_State);
    EXPECT_KEY_HOLDERS(VUR_DL_ADMIN_CommandResponse);
}

TEST(DistlogPluginKeyHolders, OfTheIdentityAreItsMembers) {
    const VUR_DL_HostAndAppId identity = {3, 4};
    VUR_DL_HostAndAppId *const key = VUR_DL_HostAndAppIdPluginSupport_create_key();
    ASSERT_NE(key, nullptr);
    ASSERT_TRUE(VUR_DL_HostAndAppIdPlugin_instance_to_key(nullptr, key, &identity));
    VUR_DL_HostAndAppId back = {};
    ASSERT_TRUE(VUR_DL_HostAndAppIdPlugin_key_to_instance(nullptr, &back, key));
    EXPECT_EQ(back.rtps_host_id, 3);
    EXPECT_EQ(back.rtps_app_id, 4);
    VUR_DL_HostAndAppIdPluginSupport_destroy_key(key);
}

}  // namespace
