// SPDX-License-Identifier: Apache-2.0
// Samples that cannot be deserialised: a reader drops each of them once, and none of them hides the
// samples behind it.
#include <gtest/gtest.h>

#include <atomic>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

// Takes a message with a negative number for malformed.
DDS_Boolean deserialize_positive(KOLT_TypePluginEndpointData *data, void **sample,
                                 DDS_Boolean *drop, KOLT_CdrStream *stream, DDS_Boolean header,
                                 DDS_Boolean body, void *qos) {
    const DDS_Boolean done =
        KOLT_TypePlugin_deserialize(data, sample, drop, stream, header, body, qos);
    return done != DDS_BOOLEAN_FALSE && static_cast<const Message *>(*sample)->number >= 0
               ? DDS_BOOLEAN_TRUE
               : DDS_BOOLEAN_FALSE;
}

const KOLT_TypePlugin &positive_plugin() {
    static const KOLT_TypePlugin plugin = [] {
        KOLT_TypePlugin p = message_plugin();
        p.deserialize = deserialize_positive;
        p.endpoint_type_name = "test::Positive";
        return p;
    }();
    return plugin;
}

// A writer and a reader, in the cache of which lie the messages that a test writes.
class KoltMalformedSamples : public testing::Test {
  protected:
    void SetUp() override {
        DDS_Topic *const topic = node_.topic_of(positive_plugin(), own("positive"));
        writer_ = node_.writer({}, topic);
        reader_ = node_.reader({}, DDS_Topic_as_topicdescription(topic));
        ASSERT_TRUE(is_matched(writer_));
    }
    void put(int level, long long number) {
        ASSERT_EQ(write(writer_, 1, level, number), DDS_RETCODE_OK);
    }
    std::vector<Text> get(const KOLT_ReadSelection &selection) {
        return access(reader_, selection, &code_);
    }
    static KOLT_ReadSelection one(bool take) {
        KOLT_ReadSelection result = selection(take);
        result.max_samples = 1;
        return result;
    }

    Node node_{20};
    DDS_DataWriter *writer_ = nullptr;
    DDS_DataReader *reader_ = nullptr;
    DDS_ReturnCode_t code_ = DDS_RETCODE_ERROR;
};

TEST_F(KoltMalformedSamples, TakingOneSkipsThem) {
    for (const long long number : {-1, -2, 3, -4, 5, -6}) {
        put(1, number);
    }
    for (const long long number : {3, 5}) {
        const auto got = get(one(true));
        ASSERT_EQ(got.size(), 1U);
        EXPECT_EQ(got[0].number, number);
    }
    EXPECT_TRUE(get(one(true)).empty());
    EXPECT_EQ(code_, DDS_RETCODE_NO_DATA);
}

TEST_F(KoltMalformedSamples, ReadingOneSkipsThem) {
    for (const long long number : {-1, -2, 3, 4}) {
        put(1, number);
    }
    for (const DDS_SampleStateMask state : {DDS_NOT_READ_SAMPLE_STATE, DDS_READ_SAMPLE_STATE}) {
        const auto got = get(one(false));
        ASSERT_EQ(got.size(), 1U);
        EXPECT_EQ(got[0].number, 3);
        EXPECT_EQ(got[0].info.sample_state, state);
    }
    EXPECT_EQ(get(selection(false)).size(), 2U);
}

TEST_F(KoltMalformedSamples, ReadingSeveralYieldsWhatIsLeft) {
    for (const long long number : {1, -2, 3, -4}) {
        put(1, number);
    }
    KOLT_ReadSelection two = one(false);
    two.max_samples = 2;
    auto got = get(two);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(got[0].number, 1);
    got = get(two);
    ASSERT_EQ(got.size(), 2U);
    EXPECT_EQ(got[1].number, 3);
}

TEST_F(KoltMalformedSamples, NothingElseIsNoData) {
    for (int i = 1; i <= 40; ++i) {
        put(i, -i);
    }
    for (const bool take : {false, true}) {
        EXPECT_TRUE(get(one(take)).empty());
        EXPECT_EQ(code_, DDS_RETCODE_NO_DATA);
    }
}

TEST_F(KoltMalformedSamples, TheNextInstanceIsTheNextWithASampleToRead) {
    put(1, -1);
    put(2, -2);
    put(3, 3);
    put(4, -4);
    for (const bool take : {false, true}) {
        KOLT_ReadSelection next = one(take);
        next.scope = KOLT_READ_NEXT_INSTANCE;
        const auto got = get(next);
        ASSERT_EQ(got.size(), 1U);
        EXPECT_EQ(got[0].level, 3);
        next.handle = got[0].info.instance_handle;
        EXPECT_TRUE(get(next).empty());
        EXPECT_EQ(code_, DDS_RETCODE_NO_DATA);
    }
}

TEST_F(KoltMalformedSamples, AnInstanceOfNothingElseIsNoData) {
    put(1, -1);
    put(1, -2);
    Record<Message> key(message_type());
    key->id = {1, 1};
    key->level = 1;
    KOLT_ReadSelection instance = one(true);
    instance.scope = KOLT_READ_INSTANCE;
    instance.handle = DDS_DataReader_lookup_instance(reader_, key.get());
    ASSERT_NE(instance.handle, DDS_HANDLE_NIL);
    EXPECT_TRUE(get(instance).empty());
    EXPECT_EQ(code_, DDS_RETCODE_NO_DATA);
    EXPECT_TRUE(get(selection(true)).empty());
}

TEST_F(KoltMalformedSamples, ConditionsSkipThem) {
    for (const long long number : {-1, -2, 3}) {
        put(1, number);
    }
    DDS_ReadCondition *const condition = DDS_DataReader_create_readcondition(
        reader_, DDS_NOT_READ_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    ASSERT_NE(condition, nullptr);
    KOLT_ReadSelection fresh = one(false);
    fresh.condition = condition;
    const auto got = get(fresh);
    ASSERT_EQ(got.size(), 1U);
    EXPECT_EQ(got[0].number, 3);
    EXPECT_TRUE(get(fresh).empty());
    EXPECT_EQ(DDS_DataReader_delete_readcondition(reader_, condition), DDS_RETCODE_OK);

    put(2, -4);
    put(2, 5);
    Strings parameters{"2"};
    DDS_QueryCondition *const query = DDS_DataReader_create_querycondition(
        reader_, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE, "level = %0",
        parameters.get());
    ASSERT_NE(query, nullptr);
    KOLT_ReadSelection second = one(false);
    second.condition = DDS_QueryCondition_as_readcondition(query);
    for (const bool take : {false, true}) {
        second.take = take;
        const auto matching = get(second);
        ASSERT_EQ(matching.size(), 1U);
        EXPECT_EQ(matching[0].number, 5);
    }
}

TEST_F(KoltMalformedSamples, CopiesSkipThem) {
    for (const long long number : {-1, 2, -3}) {
        put(1, number);
    }
    Record<Message> record(message_type());
    DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
    ASSERT_TRUE(DDS_SampleInfoSeq_set_maximum(&infos, 1));
    void **loan = nullptr;
    DDS_UnsignedLong count = 0;
    const KOLT_ReadSelection all = selection(true);
    const auto take_copy = [&] {
        return DDS_DataReader_read_or_take_untypedI(
            reader_, &all, DDS_SampleInfoSeq_get_length(&infos), 1, DDS_BOOLEAN_TRUE, record.get(),
            sizeof(Message), &loan, &count, &infos);
    };
    ASSERT_EQ(take_copy(), DDS_RETCODE_OK);
    EXPECT_EQ(count, 1U);
    EXPECT_EQ(record->number, 2);
    EXPECT_EQ(take_copy(), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(DDS_SampleInfoSeq_get_length(&infos), 0U);
    DDS_SampleInfoSeq_finalize(&infos);
}

// Counts the messages that tell of a sample that cannot be deserialised.
class DropCounter {
  public:
    DropCounter() {
        KOLT_Config_Logger_set_verbosity_by_category(
            logger(), KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION, KOLT_CONFIG_LOG_VERBOSITY_WARNING);
        KOLT_Config_Logger_set_output_device(logger(), &device_);
    }
    ~DropCounter() { KOLT_Config_Logger_set_output_device(logger(), nullptr); }
    DropCounter(const DropCounter &) = delete;
    DropCounter &operator=(const DropCounter &) = delete;
    int count() const { return count_.load(); }

  private:
    static KOLT_Config_Logger *logger() { return KOLT_Config_Logger_get_instance(); }
    static void note(KOLT_Config_LoggerDevice *device, const KOLT_Config_LogMessage *message) {
        if (std::string(message->text).find("cannot be deserialised") != std::string::npos) {
            ++static_cast<DropCounter *>(device->device_data)->count_;
        }
    }

    std::atomic<int> count_{0};
    KOLT_Config_LoggerDevice device_ = {this, note, nullptr};
};

// A sample that a read has found malformed is not found again by the next.
TEST_F(KoltMalformedSamples, EachIsDroppedOnce) {
    put(1, -1);
    put(1, 2);
    const DropCounter drops;
    Record<Message> message(message_type());
    DDS_SampleInfo info{};
    EXPECT_EQ(DDS_DataReader_read_or_take_next_sample_untypedI(reader_, DDS_BOOLEAN_FALSE,
                                                               message.get(), &info),
              DDS_RETCODE_OK);
    EXPECT_EQ(message->number, 2);
    EXPECT_EQ(get(selection(false)).size(), 1U);
    EXPECT_EQ(get(selection(true)).size(), 1U);
    EXPECT_EQ(drops.count(), 1);
}

TEST_F(KoltMalformedSamples, AreCountedAsLost) {
    for (const long long number : {-1, 2, -3}) {
        put(1, number);
    }
    EXPECT_EQ(get(selection(true)).size(), 1U);
    EXPECT_NE(
        DDS_Entity_get_status_changes(DDS_DataReader_as_entity(reader_)) & DDS_SAMPLE_LOST_STATUS,
        0U);
    DDS_SampleLostStatus status{};
    ASSERT_EQ(DDS_DataReader_get_sample_lost_status(reader_, &status), DDS_RETCODE_OK);
    EXPECT_EQ(status.total_count, 2);
    EXPECT_EQ(status.total_count_change, 2);
    put(1, -4);
    EXPECT_TRUE(get(selection(false)).empty());
    ASSERT_EQ(DDS_DataReader_get_sample_lost_status(reader_, &status), DDS_RETCODE_OK);
    EXPECT_EQ(status.total_count, 3);
    EXPECT_EQ(status.total_count_change, 1);
}

}  // namespace
