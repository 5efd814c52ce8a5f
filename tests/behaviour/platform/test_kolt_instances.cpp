// SPDX-License-Identifier: Apache-2.0
// Instances of keyed topics: handles, keys, disposing and unregistering.
#include <gtest/gtest.h>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

TEST(KoltInstances, DisposeTellsTheKeyAlone) {
    Node here(1);
    Node there(1);
    DDS_DataWriter *const writer = here.writer();
    DDS_DataReader *const reader = there.reader();
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 5, 6, 1, "data"), DDS_RETCODE_OK);
    ASSERT_EQ(take_at_least(reader, 1).size(), 1U);
    Record<Message> key(message_type());
    key->id = {5, 1};
    key->level = 6;
    key->number = 99;
    set_text(key->text, "ignored");
    ASSERT_EQ(DDS_DataWriter_dispose(writer, key.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    const auto got = take_at_least(reader, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_FALSE(got[0].info.valid_data);
    EXPECT_EQ(got[0].info.instance_state, DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
    EXPECT_EQ(got[0].host, 5);
    EXPECT_EQ(got[0].level, 6);
    EXPECT_EQ(got[0].number, 0);
    EXPECT_EQ(got[0].text, "");
}

TEST(KoltInstances, DisposeByHandleAlone) {
    Node here(1);
    Node there(1);
    DDS_DataWriter *const writer = here.writer();
    DDS_DataReader *const reader = there.reader();
    ASSERT_TRUE(is_matched(writer));
    Record<Message> message(message_type());
    message->id = {5, 1};
    message->level = 6;
    const DDS_InstanceHandle_t handle = DDS_DataWriter_register_instance(writer, message.get());
    ASSERT_NE(handle, DDS_HANDLE_NIL);
    ASSERT_EQ(DDS_DataWriter_write(writer, message.get(), handle), DDS_RETCODE_OK);
    ASSERT_EQ(take_at_least(reader, 1).size(), 1U);
    ASSERT_EQ(DDS_DataWriter_dispose(writer, nullptr, handle), DDS_RETCODE_OK);
    const auto got = take_at_least(reader, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_FALSE(got[0].info.valid_data);
    EXPECT_EQ(got[0].host, 5);
    EXPECT_EQ(got[0].level, 6);
    EXPECT_EQ(DDS_DataWriter_dispose(writer, nullptr, DDS_HANDLE_NIL), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DataWriter_dispose(writer, nullptr, handle + 1000),
              DDS_RETCODE_PRECONDITION_NOT_MET);
}

TEST(KoltInstances, UnregisterDisposesUnlessToldOtherwise) {
    for (const bool autodispose : {true, false}) {
        Node here(1);
        Node there(1);
        DDS_DataWriter *const writer = here.writer([&](DDS_DataWriterQos &qos) {
            qos.writer_data_lifecycle.autodispose_unregistered_instances = autodispose;
        });
        DDS_DataReader *const reader = there.reader();
        ASSERT_TRUE(is_matched(writer));
        ASSERT_EQ(write(writer, 5, 6, 1), DDS_RETCODE_OK);
        ASSERT_EQ(take_at_least(reader, 1).size(), 1U);
        Record<Message> key(message_type());
        key->id = {5, 1};
        key->level = 6;
        ASSERT_EQ(DDS_DataWriter_unregister_instance(writer, key.get(), DDS_HANDLE_NIL),
                  DDS_RETCODE_OK);
        const auto got = take_at_least(reader, 1);
        ASSERT_EQ(got.size(), 1U);
        EXPECT_FALSE(got[0].info.valid_data);
        EXPECT_EQ(got[0].info.instance_state, autodispose
                                                  ? DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE
                                                  : DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE);
        EXPECT_EQ(DDS_DataWriter_unregister_instance(writer, key.get(), DDS_HANDLE_NIL),
                  DDS_RETCODE_PRECONDITION_NOT_MET);
    }
}

TEST(KoltInstances, HandlesNameInstances) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    Record<Message> one(message_type());
    one->level = 1;
    Record<Message> two(message_type());
    two->level = 2;
    EXPECT_EQ(DDS_DataWriter_lookup_instance(writer, one.get()), DDS_HANDLE_NIL);
    const DDS_InstanceHandle_t handle = DDS_DataWriter_register_instance(writer, one.get());
    ASSERT_NE(handle, DDS_HANDLE_NIL);
    EXPECT_EQ(DDS_DataWriter_register_instance(writer, one.get()), handle);
    EXPECT_EQ(DDS_DataWriter_lookup_instance(writer, one.get()), handle);
    EXPECT_EQ(DDS_DataWriter_write(writer, one.get(), handle), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DataWriter_write(writer, two.get(), handle), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DataWriter_write(writer, two.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    const DDS_InstanceHandle_t implicit = DDS_DataWriter_lookup_instance(writer, two.get());
    EXPECT_NE(implicit, DDS_HANDLE_NIL);
    EXPECT_NE(implicit, handle);

    Record<Message> key(message_type());
    EXPECT_EQ(DDS_DataWriter_get_key_value(writer, key.get(), implicit), DDS_RETCODE_OK);
    EXPECT_EQ(key->level, 2);
    EXPECT_EQ(DDS_DataWriter_get_key_value(writer, key.get(), implicit + 1000),
              DDS_RETCODE_BAD_PARAMETER);

    ASSERT_EQ(take_at_least(reader, 2).size(), 2U);
    EXPECT_EQ(DDS_DataReader_lookup_instance(reader, one.get()), handle);
    Record<Message> readers(message_type());
    EXPECT_EQ(DDS_DataReader_get_key_value(reader, readers.get(), implicit), DDS_RETCODE_OK);
    EXPECT_EQ(readers->level, 2);
    EXPECT_EQ(DDS_DataReader_get_key_value(reader, readers.get(), implicit + 1000),
              DDS_RETCODE_BAD_PARAMETER);
}

// An instance that its writer has unregistered is forgotten, and comes back as another one.
TEST(KoltInstances, UnregisteringForgetsTheInstance) {
    for (const bool autodispose : {true, false}) {
        Node node(1);
        DDS_DataWriter *const writer = node.writer([&](DDS_DataWriterQos &qos) {
            qos.writer_data_lifecycle.autodispose_unregistered_instances = autodispose;
        });
        Record<Message> message(message_type());
        message->level = 77;
        const DDS_InstanceHandle_t first = DDS_DataWriter_register_instance(writer, message.get());
        ASSERT_NE(first, DDS_HANDLE_NIL);
        ASSERT_EQ(DDS_DataWriter_unregister_instance(writer, message.get(), first), DDS_RETCODE_OK);
        EXPECT_EQ(DDS_DataWriter_lookup_instance(writer, message.get()), DDS_HANDLE_NIL);
        EXPECT_NE(DDS_DataWriter_register_instance(writer, message.get()), first);
    }
}

TEST(KoltInstances, DeletingTheWriterForgetsItsInstances) {
    Node node(1);
    Record<Message> message(message_type());
    message->level = 77;
    DDS_DataWriter *writer = node.writer();
    const DDS_InstanceHandle_t first = DDS_DataWriter_register_instance(writer, message.get());
    ASSERT_NE(first, DDS_HANDLE_NIL);
    ASSERT_EQ(DDS_Publisher_delete_datawriter(node.publisher, writer), DDS_RETCODE_OK);
    writer = node.writer();
    EXPECT_NE(DDS_DataWriter_register_instance(writer, message.get()), first);
}

// Two writers of one instance know it under one handle, until both have unregistered it.
TEST(KoltInstances, AnInstanceLivesAsLongAsAWriterHasRegisteredIt) {
    Node node(1);
    DDS_DataWriter *const one = node.writer();
    DDS_DataWriter *const two = node.writer();
    Record<Message> message(message_type());
    message->level = 78;
    const DDS_InstanceHandle_t handle = DDS_DataWriter_register_instance(one, message.get());
    ASSERT_EQ(DDS_DataWriter_register_instance(two, message.get()), handle);
    ASSERT_EQ(DDS_DataWriter_unregister_instance(one, message.get(), handle), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DataWriter_register_instance(one, message.get()), handle);
}

// Two topics have instances of one key, and another topic's are not a reader's or writer's own.
TEST(KoltInstances, InstancesOfAnotherTopicAreUnknown) {
    Node node(1);
    DDS_Topic *const other = node.topic_of(message_plugin(), own("other"));
    DDS_DataWriter *const writer = node.writer({}, other);
    DDS_DataReader *const its_reader = node.reader({}, DDS_Topic_as_topicdescription(other));
    DDS_DataWriter *const foreign_writer = node.writer();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    ASSERT_TRUE(is_matched(foreign_writer));
    ASSERT_EQ(write(writer, 5, 6, 1), DDS_RETCODE_OK);
    const auto got = take_at_least(its_reader, 1);
    ASSERT_EQ(got.size(), 1U);
    const DDS_InstanceHandle_t handle = got[0].info.instance_handle;
    Record<Message> key(message_type());
    key->id = {5, 1};
    key->level = 6;
    EXPECT_EQ(DDS_DataReader_lookup_instance(its_reader, key.get()), handle);
    EXPECT_EQ(DDS_DataReader_get_key_value(its_reader, key.get(), handle), DDS_RETCODE_OK);

    EXPECT_EQ(DDS_DataReader_lookup_instance(reader, key.get()), DDS_HANDLE_NIL);
    EXPECT_EQ(DDS_DataReader_get_key_value(reader, key.get(), handle), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DataWriter_lookup_instance(foreign_writer, key.get()), DDS_HANDLE_NIL);
    EXPECT_EQ(DDS_DataWriter_get_key_value(foreign_writer, key.get(), handle),
              DDS_RETCODE_BAD_PARAMETER);
    KOLT_ReadSelection one = selection(false);
    one.scope = KOLT_READ_INSTANCE;
    one.handle = handle;
    DDS_ReturnCode_t code = DDS_RETCODE_OK;
    access(reader, one, &code);
    EXPECT_EQ(code, DDS_RETCODE_BAD_PARAMETER);
    access(its_reader, one, &code);
    EXPECT_EQ(code, DDS_RETCODE_NO_DATA);

    ASSERT_EQ(write(foreign_writer, 5, 6, 1), DDS_RETCODE_OK);
    ASSERT_EQ(take_at_least(reader, 1).size(), 1U);
    EXPECT_EQ(DDS_DataReader_get_key_value(reader, key.get(), handle), DDS_RETCODE_OK);
}

}  // namespace
