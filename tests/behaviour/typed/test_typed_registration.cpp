// SPDX-License-Identifier: Apache-2.0
// The topic types registered with a participant, under any name, and unregistered; writers and
// readers narrowed to them.

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "support/logger/log_capture.h"
#include "support/types/typed_endpoints.h"

namespace {

using namespace support;

constexpr DDS_DomainId_t kDomain = 184;

template <typename T>
class TypedRegistration : public testing::Test {};
TYPED_TEST_SUITE(TypedRegistration, TopicTypes, TopicTypeName);

TYPED_TEST(TypedRegistration, TakesAnyNameThatIsFree) {
    using Support = typename TopicType<TypeParam>::Support;
    Node node(kDomain);
    EXPECT_EQ(Support::register_type(node.participant, "one name"), DDS_RETCODE_OK);
    EXPECT_EQ(Support::register_type(node.participant, "one name"), DDS_RETCODE_OK) << "again";
    EXPECT_EQ(Support::register_type(node.participant, "another"), DDS_RETCODE_OK);
    EXPECT_EQ(Support::register_type(node.participant, Support::get_type_name()), DDS_RETCODE_OK);
    LogCapture log;
    EXPECT_EQ(Support::register_type(node.participant, kMessageTypeName),
              DDS_RETCODE_PRECONDITION_NOT_MET)
        << "the name of another type";
    EXPECT_NE(log.take(), "");
    EXPECT_EQ(Support::register_type(node.participant, nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: type_name"));
    EXPECT_EQ(Support::unregister_type(node.participant, nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: type_name"));
}

TYPED_TEST(TypedRegistration, EndsWhenNoTopicHasTheType) {
    using Support = typename TopicType<TypeParam>::Support;
    TypedEndpoints<TypeParam> ends(kDomain);
    DDS_DomainParticipant *const participant = ends.node.participant;
    const char *const name = TypedEndpoints<TypeParam>::kRegisteredName;
    LogCapture log;
    EXPECT_EQ(Support::unregister_type(participant, name), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_NE(log.take(), "");
    ASSERT_EQ(DDS_DomainParticipant_delete_contained_entities(participant), DDS_RETCODE_OK);
    EXPECT_EQ(Support::unregister_type(participant, name), DDS_RETCODE_OK);
    log.take();
    EXPECT_NE(Support::unregister_type(participant, name), DDS_RETCODE_OK) << "it is gone";
    EXPECT_NE(log.take(), "");
}

// ---- Narrowing ----------------------------------------------------------------------------------

// The functions of writers, and those of readers.
template <typename T>
using WriteOf = typename TopicType<T>::Write;
template <typename T>
using ReadOf = typename TopicType<T>::Read;

template <template <typename> typename Side, typename Other, typename Mine, typename Untyped,
          typename Typed>
void expect_narrows_to(Untyped *untyped, Typed *typed, LogCapture &log) {
    SCOPED_TRACE(TopicType<Other>::kTypeName);
    auto *const narrowed = Side<Other>::narrow(untyped);
    if constexpr (std::is_same_v<Other, Mine>) {
        EXPECT_EQ(narrowed, typed);
        EXPECT_EQ(log.take(), "");
    } else {
        EXPECT_EQ(narrowed, nullptr);
        EXPECT_TRUE(log.saw(std::string("wrong type ") + Side<Mine>::kEntity));
    }
}

// The name in the type code counts; the one that the type was registered under says nothing.
template <template <typename> typename Side, typename T, typename Untyped, typename Typed>
void expect_narrowing(Untyped *untyped, Typed *typed) {
    EXPECT_STREQ(Side<T>::get_endpoint_type_name(untyped), TopicType<T>::kTypeName);
    LogCapture log;
    expect_narrows_to<Side, VUR_DL_LogMessage, T>(untyped, typed, log);
    expect_narrows_to<Side, VUR_DL_ADMIN_State, T>(untyped, typed, log);
    expect_narrows_to<Side, VUR_DL_ADMIN_CommandRequest, T>(untyped, typed, log);
    expect_narrows_to<Side, VUR_DL_ADMIN_CommandResponse, T>(untyped, typed, log);
    EXPECT_EQ(Side<T>::widen(typed), untyped);
    EXPECT_EQ(log.take(), "");
    const std::string missing = std::string("null ") + Side<T>::kEntity;
    EXPECT_EQ(Side<T>::narrow(nullptr), nullptr);
    EXPECT_TRUE(log.saw(missing));
    EXPECT_EQ(Side<T>::widen(nullptr), nullptr);
    EXPECT_TRUE(log.saw(missing));
}

TYPED_TEST(TypedRegistration, WritersNarrow) {
    TypedEndpoints<TypeParam> ends(kDomain);
    expect_narrowing<WriteOf, TypeParam>(ends.untyped_writer, ends.writer);
}
TYPED_TEST(TypedRegistration, ReadersNarrow) {
    TypedEndpoints<TypeParam> ends(kDomain);
    expect_narrowing<ReadOf, TypeParam>(ends.untyped_reader, ends.reader);
}

}  // namespace
