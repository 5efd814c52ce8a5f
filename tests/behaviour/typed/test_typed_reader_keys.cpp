// SPDX-License-Identifier: Apache-2.0
// Typed data readers: instances by key and handle, from the first sample until they are forgotten.

#include <gtest/gtest.h>

#include <vector>

#include "support/logger/log_capture.h"
#include "support/types/typed_endpoints.h"

namespace {

using namespace support;

constexpr DDS_DomainId_t kDomain = 182;

template <typename T>
class TypedReaderKeys : public testing::Test {};
TYPED_TEST_SUITE(TypedReaderKeys, KeyedTopicTypes, TopicTypeName);

TYPED_TEST(TypedReaderKeys, HandlesAndKeysNameInstances) {
    using Read = typename TopicType<TypeParam>::Read;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> key(100);
    EXPECT_EQ(Read::lookup_instance(ends.reader, key.get()), DDS_HANDLE_NIL);
    ends.write(100, 1);
    ends.write(200, 2);
    const DDS_InstanceHandle_t handle = Read::lookup_instance(ends.reader, key.get());
    ASSERT_NE(handle, DDS_HANDLE_NIL);
    Received<TypeParam> received(ends.reader);
    ASSERT_EQ(received.read(), DDS_RETCODE_OK);
    EXPECT_EQ(received.info(0).instance_handle == handle, received.numbers()[0] == 1);
    Sample<TypeParam> holder(0, 77);
    ASSERT_EQ(Read::get_key_value(ends.reader, holder.get(), handle), DDS_RETCODE_OK);
    EXPECT_EQ(holder.key(), 100);
    EXPECT_EQ(holder.number(), 77) << "no more than the key";

    LogCapture log;
    for (const DDS_InstanceHandle_t wrong : {DDS_HANDLE_NIL, handle + 1000}) {
        EXPECT_EQ(Read::get_key_value(ends.reader, holder.get(), wrong), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("the handle is not that of an instance"));
    }
    EXPECT_EQ(Read::get_key_value(ends.reader, nullptr, handle), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: key_holder"));
    EXPECT_EQ(Read::get_key_value(nullptr, holder.get(), handle), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter"));
    EXPECT_EQ(Read::lookup_instance(ends.reader, nullptr), DDS_HANDLE_NIL);
    EXPECT_TRUE(log.saw("bad parameter: key_holder"));
    EXPECT_EQ(Read::lookup_instance(nullptr, key.get()), DDS_HANDLE_NIL);
    EXPECT_TRUE(log.saw("bad parameter"));
}

// The reader knows an instance for as long as it has samples of it or one of its writers lives.
TYPED_TEST(TypedReaderKeys, TheKeyOfAnInstanceGoesWithIt) {
    using Type = TopicType<TypeParam>;
    using Read = typename Type::Read;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> key(100);
    Sample<TypeParam> holder;
    Received<TypeParam> received(ends.reader);
    ends.write(100, 1);
    ASSERT_EQ(received.take(), DDS_RETCODE_OK);
    const DDS_InstanceHandle_t handle = received.info(0).instance_handle;
    ASSERT_EQ(received.give_back(), DDS_RETCODE_OK);
    EXPECT_EQ(Read::get_key_value(ends.reader, holder.get(), handle), DDS_RETCODE_OK)
        << "alive, though nothing is left to read";

    ASSERT_EQ(Type::Write::dispose(ends.writer, key.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    ASSERT_EQ(received.take(), DDS_RETCODE_OK);
    ASSERT_EQ(received.size(), 1U);
    EXPECT_FALSE(received.info(0).valid_data);
    EXPECT_EQ(received.info(0).instance_handle, handle);
    EXPECT_EQ(Type::key(received.at(0)), 100) << "the sample that tells of it has the key";
    ASSERT_EQ(received.give_back(), DDS_RETCODE_OK);
    EXPECT_EQ(Read::get_key_value(ends.reader, holder.get(), handle), DDS_RETCODE_OK)
        << "disposed, but its writer has it yet";
    EXPECT_EQ(Read::lookup_instance(ends.reader, key.get()), handle);

    ASSERT_EQ(Type::Write::unregister_instance(ends.writer, key.get(), DDS_HANDLE_NIL),
              DDS_RETCODE_OK);
    while (received.take() == DDS_RETCODE_OK) {
        EXPECT_EQ(Type::key(received.at(0)), 100);
        ASSERT_EQ(received.give_back(), DDS_RETCODE_OK);
    }
    EXPECT_TRUE(eventually([&] {
        return Read::get_key_value(ends.reader, holder.get(), handle) == DDS_RETCODE_BAD_PARAMETER;
    })) << "no writer and no sample left";
    EXPECT_EQ(Read::lookup_instance(ends.reader, key.get()), DDS_HANDLE_NIL);
    EXPECT_EQ(Read::read_instance(ends.reader, &received.data, &received.infos,
                                  DDS_LENGTH_UNLIMITED, handle, DDS_ANY_SAMPLE_STATE,
                                  DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE),
              DDS_RETCODE_BAD_PARAMETER);
    // It comes back as a new one.
    ends.write(100, 2);
    ASSERT_EQ(received.take(), DDS_RETCODE_OK);
    EXPECT_EQ(received.info(0).view_state, DDS_NEW_VIEW_STATE);
    EXPECT_NE(received.info(0).instance_handle, handle);
    EXPECT_EQ(Type::key(received.at(0)), 100);
}

// A registered instance is one that the process keeps, until it is unregistered.
TYPED_TEST(TypedReaderKeys, TheKeyOfARegisteredInstanceStays) {
    using Type = TopicType<TypeParam>;
    using Read = typename Type::Read;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> key(100, 1);
    Sample<TypeParam> holder;
    const DDS_InstanceHandle_t handle = Type::Write::register_instance(ends.writer, key.get());
    ASSERT_EQ(Type::Write::write(ends.writer, key.get(), handle), DDS_RETCODE_OK);
    Received<TypeParam> received(ends.reader);
    ASSERT_EQ(received.take(), DDS_RETCODE_OK);
    ASSERT_EQ(received.give_back(), DDS_RETCODE_OK);
    EXPECT_EQ(received.take(), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(Read::get_key_value(ends.reader, holder.get(), handle), DDS_RETCODE_OK);
    EXPECT_EQ(holder.key(), 100);

    ASSERT_EQ(Type::Write::unregister_instance(ends.writer, key.get(), handle), DDS_RETCODE_OK);
    ASSERT_EQ(received.take(), DDS_RETCODE_OK);
    ASSERT_EQ(received.give_back(), DDS_RETCODE_OK);
    EXPECT_EQ(received.take(), DDS_RETCODE_NO_DATA);
    EXPECT_TRUE(eventually([&] {
        return Read::get_key_value(ends.reader, holder.get(), handle) == DDS_RETCODE_BAD_PARAMETER;
    }));
}

// Without a key there is one nameless instance.
TEST(TypedReaderUnkeyed, HasNoKeys) {
    using Request = VUR_DL_ADMIN_CommandRequest;
    using Read = TopicType<Request>::Read;
    TypedEndpoints<Request> ends(kDomain);
    ends.write(1, 2);
    Received<Request> received(ends.reader);
    ASSERT_EQ(received.read(), DDS_RETCODE_OK);
    Sample<Request> holder(1, 77);
    EXPECT_EQ(Read::lookup_instance(ends.reader, holder.get()), DDS_HANDLE_NIL);
    LogCapture log;
    EXPECT_EQ(Read::get_key_value(ends.reader, holder.get(), received.info(0).instance_handle),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("the handle is not that of an instance"));
    EXPECT_EQ(holder.number(), 77);
}

}  // namespace
