// SPDX-License-Identifier: Apache-2.0
// The operations that every one of the thirteen types has, and the common properties of their type
// codes.

#include <gtest/gtest.h>
#include <kolt/cdr.h>
#include <vur_dl/distlog.h>

#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "support/types/type_list.h"

namespace {

#define TYPE(T)                                                                  \
    struct T##Operations {                                                       \
        using Record = T;                                                        \
        static constexpr const char *kRecordName = #T;                           \
        static constexpr auto kInitialize = T##_initialize;                      \
        static constexpr auto kInitializeEx = T##_initialize_ex;                 \
        static constexpr auto kInitializeWithParams = T##_initialize_w_params;   \
        static constexpr auto kFinalize = T##_finalize;                          \
        static constexpr auto kFinalizeWithReturn = T##_finalize_w_return;       \
        static constexpr auto kFinalizeEx = T##_finalize_ex;                     \
        static constexpr auto kFinalizeWithParams = T##_finalize_w_params;       \
        static constexpr auto kFinalizeOptional = T##_finalize_optional_members; \
        static constexpr auto kCopy = T##_copy;                                  \
        static constexpr auto kCode = T##_get_typecode;                          \
        static constexpr auto kAccess = T##_get_sample_access_info;              \
        static constexpr auto kPlugin = T##_get_type_plugin_info;                \
    }
FOR_EACH_TYPE(TYPE, SEMICOLON);
#undef TYPE

#define OPERATIONS_OF(T) T##Operations
using AllTypes = testing::Types<FOR_EACH_TYPE(OPERATIONS_OF, COMMA)>;
#undef OPERATIONS_OF

struct RecordName {
    template <typename Type>
    // NOLINTNEXTLINE(readability-identifier-naming): GoogleTest calls it so.
    static std::string GetName(int) {
        return Type::kRecordName;
    }
};

constexpr DDS_TypeAllocationParams_t kAllocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
constexpr DDS_TypeDeallocationParams_t kDeallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;

template <typename Type>
class DistlogOperations : public testing::Test {
  protected:
    using Record = typename Type::Record;

    // A record that was never touched holds anything.
    static Record garbage() {
        Record record;
        std::memset(static_cast<void *>(&record), 0xa5, sizeof(record));
        return record;
    }
    static bool equal(const Record &left, const Record &right) {
        if constexpr (std::is_enum_v<Record>) {
            return left == right;
        } else {
            return KOLT_Record_equals(Type::kCode(), &left, &right) != 0;
        }
    }
};
TYPED_TEST_SUITE(DistlogOperations, AllTypes, RecordName);

TYPED_TEST(DistlogOperations, EveryWayToInitialiseIsTheSame) {
    auto first = this->garbage();
    auto second = this->garbage();
    auto third = this->garbage();
    auto fourth = this->garbage();
    ASSERT_TRUE(TypeParam::kInitialize(&first));
    ASSERT_TRUE(TypeParam::kInitializeEx(&second, DDS_BOOLEAN_TRUE, DDS_BOOLEAN_TRUE));
    ASSERT_TRUE(TypeParam::kInitializeWithParams(&third, &kAllocation));
    ASSERT_TRUE(TypeParam::kInitializeEx(&fourth, DDS_BOOLEAN_FALSE, DDS_BOOLEAN_TRUE))
        << "no type has members that are pointers";
    EXPECT_TRUE(this->equal(first, second));
    EXPECT_TRUE(this->equal(first, third));
    EXPECT_TRUE(this->equal(first, fourth));
    // Once more, without memory: what is there stays, and is emptied.
    ASSERT_TRUE(TypeParam::kInitializeEx(&second, DDS_BOOLEAN_TRUE, DDS_BOOLEAN_FALSE));
    EXPECT_TRUE(this->equal(first, second));
    for (auto *record : {&first, &second, &third, &fourth}) {
        TypeParam::kFinalize(record);
    }
}

TYPED_TEST(DistlogOperations, EveryWayToFinaliseIsRepeatable) {
    typename TypeParam::Record record = {};
    ASSERT_TRUE(TypeParam::kInitialize(&record));
    TypeParam::kFinalize(&record);
    TypeParam::kFinalize(&record);
    ASSERT_TRUE(TypeParam::kInitialize(&record)) << "and the record can be used again";
    for (const DDS_Boolean delete_pointers : {DDS_BOOLEAN_FALSE, DDS_BOOLEAN_TRUE}) {
        TypeParam::kFinalizeEx(&record, delete_pointers);
    }
    ASSERT_TRUE(TypeParam::kInitialize(&record));
    TypeParam::kFinalizeWithParams(&record, &kDeallocation);
    TypeParam::kFinalizeWithParams(&record, &kDeallocation);
    ASSERT_TRUE(TypeParam::kInitialize(&record));
    EXPECT_TRUE(TypeParam::kFinalizeWithReturn(&record));
    EXPECT_TRUE(TypeParam::kFinalizeWithReturn(&record));
}

TYPED_TEST(DistlogOperations, NullArguments) {
    typename TypeParam::Record record = {};
    EXPECT_FALSE(TypeParam::kInitialize(nullptr));
    EXPECT_FALSE(TypeParam::kInitializeEx(nullptr, DDS_BOOLEAN_TRUE, DDS_BOOLEAN_TRUE));
    EXPECT_FALSE(TypeParam::kInitializeWithParams(nullptr, &kAllocation));
    EXPECT_FALSE(TypeParam::kInitializeWithParams(&record, nullptr));
    ASSERT_TRUE(TypeParam::kInitialize(&record));
    EXPECT_FALSE(TypeParam::kCopy(nullptr, &record));
    EXPECT_FALSE(TypeParam::kCopy(&record, nullptr));
    EXPECT_FALSE(TypeParam::kCopy(nullptr, nullptr));
    TypeParam::kFinalize(nullptr);
    TypeParam::kFinalizeEx(nullptr, DDS_BOOLEAN_TRUE);
    TypeParam::kFinalizeWithParams(nullptr, &kDeallocation);
    TypeParam::kFinalizeWithParams(nullptr, nullptr);
    TypeParam::kFinalizeOptional(nullptr, DDS_BOOLEAN_TRUE);
    EXPECT_TRUE(TypeParam::kFinalizeWithReturn(nullptr));
    typename TypeParam::Record other = {};
    ASSERT_TRUE(TypeParam::kInitialize(&other));
    TypeParam::kFinalizeWithParams(&record, nullptr);
    EXPECT_TRUE(this->equal(record, other)) << "nothing happens without parameters";
    TypeParam::kFinalize(&record);
    TypeParam::kFinalize(&other);
}

TYPED_TEST(DistlogOperations, ThereAreNoOptionalMembers) {
    typename TypeParam::Record record = {};
    typename TypeParam::Record copy = {};
    ASSERT_TRUE(TypeParam::kInitialize(&record));
    ASSERT_TRUE(TypeParam::kInitialize(&copy));
    for (const DDS_Boolean delete_pointers : {DDS_BOOLEAN_FALSE, DDS_BOOLEAN_TRUE}) {
        TypeParam::kFinalizeOptional(&record, delete_pointers);
        EXPECT_TRUE(this->equal(record, copy)) << "nothing is freed";
    }
    EXPECT_TRUE(TypeParam::kCopy(&copy, &record));
    EXPECT_TRUE(this->equal(record, copy));
    TypeParam::kFinalize(&record);
    TypeParam::kFinalize(&copy);
}

TYPED_TEST(DistlogOperations, TablesAreTheSameAtEveryCall) {
    const DDS_TypeCode *const code = TypeParam::kCode();
    ASSERT_NE(code, nullptr);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([code] {
            EXPECT_EQ(TypeParam::kCode(), code);
            EXPECT_EQ(TypeParam::kAccess(), TypeParam::kAccess());
            EXPECT_EQ(TypeParam::kPlugin(), TypeParam::kPlugin());
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    ASSERT_NE(TypeParam::kAccess(), nullptr);
    EXPECT_EQ(TypeParam::kAccess()->language_binding, KOLT_LANGUAGE_BINDING_PLAIN_RECORD);
    EXPECT_EQ(TypeParam::kAccess()->record_size, sizeof(typename TypeParam::Record));
    EXPECT_EQ(TypeParam::kAccess()->record_alignment, alignof(typename TypeParam::Record));
    EXPECT_EQ(TypeParam::kPlugin(), code->plugin);
    std::string record_name = DDS_TypeCode_name(code);
    for (std::size_t at = 0; (at = record_name.find("::", at)) != std::string::npos;) {
        record_name.replace(at, 2, "_");
    }
    EXPECT_EQ(record_name, TypeParam::kRecordName);
}

TYPED_TEST(DistlogOperations, PluginInformationIsTheOperations) {
    const DDS_TypePluginInfo *const plugin = TypeParam::kPlugin();
    ASSERT_NE(plugin, nullptr);
    auto record = this->garbage();
    auto expected = this->garbage();
    ASSERT_TRUE(plugin->initialize_w_params(&record, &kAllocation));
    ASSERT_TRUE(TypeParam::kInitialize(&expected));
    EXPECT_TRUE(this->equal(record, expected));
    EXPECT_TRUE(plugin->copy(&record, &expected));
    EXPECT_FALSE(plugin->copy(&record, nullptr));
    EXPECT_FALSE(plugin->initialize_w_params(nullptr, &kAllocation));
    plugin->finalize_w_params(&record, &kDeallocation);
    plugin->finalize_w_params(nullptr, &kDeallocation);
    TypeParam::kFinalize(&expected);
}

TYPED_TEST(DistlogOperations, BothRepresentationsAreAllowedAndServed) {
    const DDS_TypeCode *const code = TypeParam::kCode();
    EXPECT_EQ(code->representations, 5U) << "bits 0 and 2";
    const KOLT_TypePrograms *const programs = KOLT_TypePrograms_acquire(code);
    ASSERT_NE(programs, nullptr);
    typename TypeParam::Record record = {};
    ASSERT_TRUE(TypeParam::kInitialize(&record));
    for (const DDS_DataRepresentationId_t representation :
         {DDS_XCDR_DATA_REPRESENTATION, DDS_XCDR2_DATA_REPRESENTATION}) {
        const DDS_UnsignedShort native =
            DDS_TypeCode_get_native_encapsulation(code, representation);
        ASSERT_NE(native, KOLT_ENCAPSULATION_INVALID);
        EXPECT_GT(KOLT_Cdr_serialized_size(programs, native, &record), 0U);
        EXPECT_GT(KOLT_Cdr_serialized_size(programs, native ^ 1U, &record), 0U);
    }
    EXPECT_EQ(DDS_TypeCode_get_native_encapsulation(code, DDS_XML_DATA_REPRESENTATION),
              KOLT_ENCAPSULATION_INVALID);
    TypeParam::kFinalize(&record);
    KOLT_TypePrograms_release(programs);
}

void expect_integers(const DDS_TypeCodeMember &member, DDS_LongLong smallest,
                     DDS_LongLong largest) {
    EXPECT_EQ(member.default_value.kind, member.type->kind);
    EXPECT_EQ(member.default_value.value.integer, 0);
    EXPECT_EQ(member.minimum.kind, member.type->kind);
    EXPECT_EQ(member.minimum.value.integer, smallest);
    EXPECT_EQ(member.maximum.kind, member.type->kind);
    EXPECT_EQ(member.maximum.value.integer, largest);
}

// Defaults, minima and maxima are those of the members' types; no member is optional.
TYPED_TEST(DistlogOperations, AnnotationsAreTheNaturalOnes) {
    const DDS_TypeCode *const code = TypeParam::kCode();
    for (DDS_UnsignedLong i = 0; i < DDS_TypeCode_member_count(code); ++i) {
        const DDS_TypeCodeMember &member = *DDS_TypeCode_member(code, i);
        SCOPED_TRACE(member.name);
        EXPECT_FALSE(member.is_optional);
        if (code->kind == DDS_TK_ENUM) {
            EXPECT_EQ(member.type, nullptr);
            continue;
        }
        switch (member.type->kind) {
            case DDS_TK_LONG:
                expect_integers(member, std::numeric_limits<DDS_Long>::min(),
                                std::numeric_limits<DDS_Long>::max());
                break;
            case DDS_TK_LONGLONG:
                expect_integers(member, std::numeric_limits<DDS_LongLong>::min(),
                                std::numeric_limits<DDS_LongLong>::max());
                break;
            case DDS_TK_STRING:
                EXPECT_EQ(member.default_value.kind, DDS_TK_STRING);
                EXPECT_STREQ(member.default_value.value.string, "");
                EXPECT_EQ(member.minimum.kind, DDS_TK_NULL);
                EXPECT_EQ(member.maximum.kind, DDS_TK_NULL);
                break;
            case DDS_TK_ENUM:
                EXPECT_EQ(member.default_value.kind, DDS_TK_ENUM);
                EXPECT_EQ(member.default_value.value.integer, 0);
                break;
            default:
                EXPECT_EQ(member.default_value.kind, DDS_TK_NULL);
                EXPECT_EQ(member.minimum.kind, DDS_TK_NULL);
                EXPECT_EQ(member.maximum.kind, DDS_TK_NULL);
                break;
        }
    }
}

}  // namespace
