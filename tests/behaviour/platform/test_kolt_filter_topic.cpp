// SPDX-License-Identifier: Apache-2.0
// Content-filtered topics.
#include <gtest/gtest.h>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

class FilterTopic : public ::testing::Test {
  protected:
    DDS_ContentFilteredTopic *create(const char *expression, DDS_StringSeq *parameters,
                                     const char *name = "filtered") {
        return DDS_DomainParticipant_create_contentfilteredtopic(
            node_.participant, name, node_.topic, expression, parameters);
    }

    Node node_{7};
};

TEST_F(FilterTopic, OnlyWhatMatchesArrives) {
    Strings parameters({"-5", "2"});
    DDS_ContentFilteredTopic *const filtered =
        create("id.host = %0 and level >= %1", parameters.get());
    ASSERT_NE(filtered, nullptr);
    DDS_TopicDescription *const description =
        DDS_ContentFilteredTopic_as_topicdescription(filtered);
    EXPECT_STREQ(DDS_TopicDescription_get_name(description), "filtered");
    EXPECT_STREQ(DDS_TopicDescription_get_type_name(description), kMessageTypeName);
    EXPECT_EQ(DDS_TopicDescription_get_participant(description), node_.participant);
    EXPECT_EQ(DDS_ContentFilteredTopic_get_related_topic(filtered), node_.topic);
    EXPECT_STREQ(DDS_ContentFilteredTopic_get_filter_expression(filtered),
                 "id.host = %0 and level >= %1");
    EXPECT_EQ(DDS_Topic_narrow(description), nullptr);
    EXPECT_EQ(DDS_ContentFilteredTopic_narrow(description), filtered);
    EXPECT_EQ(DDS_ContentFilteredTopic_narrow(DDS_Topic_as_topicdescription(node_.topic)), nullptr);
    EXPECT_EQ(DDS_DomainParticipant_lookup_topicdescription(node_.participant, "filtered"),
              description);

    DDS_DataReader *const reader = node_.reader({}, description);
    DDS_DataReader *const all = node_.reader();
    EXPECT_EQ(DDS_DataReader_get_topicdescription(reader), description);
    Node there(7);
    DDS_DataWriter *const writer = there.writer();
    ASSERT_TRUE(is_matched(writer, 2));
    int number = 0;
    for (const int host : {-5, 5}) {
        for (int level = 0; level < 4; ++level) {
            ASSERT_EQ(write(writer, host, level, number++), DDS_RETCODE_OK);
        }
    }
    ASSERT_EQ(take_at_least(all, 8).size(), 8U);
    const auto got = take_at_least(reader, 2);
    ASSERT_EQ(got.size(), 2U);
    for (const Text &text : got) {
        EXPECT_EQ(text.host, -5);
        EXPECT_GE(text.level, 2);
    }
}

TEST_F(FilterTopic, ParametersChangeWhileReadersExist) {
    Strings parameters({"1"});
    DDS_ContentFilteredTopic *const filtered = create("level = %0", parameters.get());
    DDS_DataReader *const reader =
        node_.reader({}, DDS_ContentFilteredTopic_as_topicdescription(filtered));
    DDS_DataReader *const all = node_.reader();
    DDS_DataWriter *const writer = node_.writer();
    ASSERT_TRUE(is_matched(writer, 2));
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 2, 2), DDS_RETCODE_OK);
    ASSERT_EQ(take_at_least(all, 2).size(), 2U);
    Strings other({"2"});
    ASSERT_EQ(DDS_ContentFilteredTopic_set_expression_parameters(filtered, other.get()),
              DDS_RETCODE_OK);
    Strings wrong({"two"});
    EXPECT_EQ(DDS_ContentFilteredTopic_set_expression_parameters(filtered, wrong.get()),
              DDS_RETCODE_BAD_PARAMETER);
    Strings copy({});
    ASSERT_EQ(DDS_ContentFilteredTopic_get_expression_parameters(filtered, copy.get()),
              DDS_RETCODE_OK);
    ASSERT_EQ(copy.size(), 1U);
    EXPECT_EQ(copy.at(0), "2");
    ASSERT_EQ(write(writer, 1, 1, 3), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 2, 4), DDS_RETCODE_OK);
    ASSERT_EQ(take_at_least(all, 2).size(), 2U);
    const auto got = take_at_least(reader, 2);
    ASSERT_EQ(got.size(), 2U);
    EXPECT_EQ(got[0].number + got[1].number, 5);
}

// The end of an instance reaches every reader that got a sample of it, although a key lacks the
// other members that the filter asks for.
TEST_F(FilterTopic, DisposalPasses) {
    DDS_ContentFilteredTopic *const filtered = create("number > 10", nullptr);
    DDS_DataReader *const reader =
        node_.reader({}, DDS_ContentFilteredTopic_as_topicdescription(filtered));
    DDS_DataWriter *const writer = node_.writer();
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 11), DDS_RETCODE_OK);
    ASSERT_EQ(take_at_least(reader, 1).size(), 1U);
    Record<Message> key(message_type());
    key->id = {1, 1};
    key->level = 1;
    ASSERT_EQ(DDS_DataWriter_dispose(writer, key.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    const auto got = take_at_least(reader, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_FALSE(got[0].info.valid_data);
    EXPECT_EQ(got[0].info.instance_state, DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
}

TEST_F(FilterTopic, WrongOnesAreRefused) {
    EXPECT_EQ(create("level = ", nullptr), nullptr);
    EXPECT_EQ(create("nosuch = 1", nullptr), nullptr);
    EXPECT_EQ(create("level = %0", nullptr), nullptr);
    Strings text({"text"});
    EXPECT_EQ(create("level = %0", text.get()), nullptr);
    EXPECT_EQ(create(nullptr, nullptr), nullptr);
    DDS_ContentFilteredTopic *const filtered = create("level = 1", nullptr);
    ASSERT_NE(filtered, nullptr);
    EXPECT_EQ(create("level = 1", nullptr), nullptr);  // the name is taken
    EXPECT_EQ(create("level = 1", nullptr,
                     DDS_TopicDescription_get_name(DDS_Topic_as_topicdescription(node_.topic))),
              nullptr);
    // The related topic stays while it is filtered, the filter while it is read.
    EXPECT_EQ(DDS_DomainParticipant_delete_topic(node_.participant, node_.topic),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    DDS_DataReader *const reader =
        node_.reader({}, DDS_ContentFilteredTopic_as_topicdescription(filtered));
    EXPECT_EQ(DDS_DomainParticipant_delete_contentfilteredtopic(node_.participant, filtered),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_Subscriber_delete_datareader(node_.subscriber, reader), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_delete_contentfilteredtopic(node_.participant, filtered),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_delete_topic(node_.participant, node_.topic), DDS_RETCODE_OK);
}

// A participant that does not enable what is created in it.
class DisabledFilterTopic : public ::testing::Test {
  protected:
    void SetUp() override {
        DDS_DomainParticipantQos *const qos = qos_.get();
        qos->entity_factory.autoenable_created_entities = DDS_BOOLEAN_FALSE;
        ASSERT_EQ(DDS_DomainParticipant_set_qos(node_.participant, qos), DDS_RETCODE_OK);
        topic_ = DDS_DomainParticipant_create_topic(node_.participant, own("late").c_str(),
                                                    kMessageTypeName, nullptr, nullptr,
                                                    DDS_STATUS_MASK_NONE);
        Strings none({});
        filtered_ = DDS_DomainParticipant_create_contentfilteredtopic(
            node_.participant, "late_filter", topic_, "level > 1", none.get());
        ASSERT_NE(filtered_, nullptr);
    }

    Node node_{7};
    ParticipantQos qos_;
    DDS_Topic *topic_ = nullptr;
    DDS_ContentFilteredTopic *filtered_ = nullptr;
};

TEST_F(DisabledFilterTopic, IsEnabledWithItsTopic) {
    DDS_TopicDescription *const description =
        DDS_ContentFilteredTopic_as_topicdescription(filtered_);
    DDS_DataReader *const early = node_.reader({}, description);
    EXPECT_EQ(early, nullptr) << "the topic is disabled";
    ASSERT_EQ(DDS_Entity_enable(DDS_Topic_as_entity(topic_)), DDS_RETCODE_OK);
    DDS_DataReader *const reader = node_.reader({}, description);
    ASSERT_NE(reader, nullptr);
    DDS_DataWriter *const writer = node_.writer({}, topic_);
    ASSERT_TRUE(is_matched(writer));
    for (const int level : {1, 2}) {
        ASSERT_EQ(write(writer, 1, level, level), DDS_RETCODE_OK);
    }
    const auto got = take_at_least(reader, 1);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(got[0].level, 2);
}

TEST_F(DisabledFilterTopic, MayBeDeletedBeforeItsTopicIsEnabled) {
    EXPECT_EQ(DDS_DomainParticipant_delete_contentfilteredtopic(node_.participant, filtered_),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_Entity_enable(DDS_Topic_as_entity(topic_)), DDS_RETCODE_OK);
}

}  // namespace
