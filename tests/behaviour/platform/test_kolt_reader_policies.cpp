// SPDX-License-Identifier: Apache-2.0
// Policies that decide what stays in a reader: TIME_BASED_FILTER and READER_DATA_LIFECYCLE.
#include <gtest/gtest.h>

#include <chrono>
#include <map>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

constexpr DDS_Duration_t kAnHour = {3600, 0};
constexpr DDS_Duration_t kAMoment = {0, 20'000'000};

auto separated_by(const DDS_Duration_t &separation) {
    return [separation](DDS_DataReaderQos &qos) {
        qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        qos.time_based_filter.minimum_separation = separation;
    };
}

auto purging(const DDS_Duration_t &without_writers, const DDS_Duration_t &disposed) {
    return [=](DDS_DataReaderQos &qos) {
        qos.reader_data_lifecycle.autopurge_nowriter_samples_delay = without_writers;
        qos.reader_data_lifecycle.autopurge_disposed_samples_delay = disposed;
    };
}

void leaves_instances(DDS_DataWriterQos &qos) {
    qos.writer_data_lifecycle.autodispose_unregistered_instances = DDS_BOOLEAN_FALSE;
}

void change(DDS_DataReader *reader, const std::function<void(DDS_DataReaderQos &)> &adjust) {
    ReaderQos qos;
    ASSERT_EQ(DDS_DataReader_get_qos(reader, &*qos), DDS_RETCODE_OK);
    adjust(*qos);
    ASSERT_EQ(DDS_DataReader_set_qos(reader, &*qos), DDS_RETCODE_OK);
}

std::vector<long long> numbers_of(const std::vector<Text> &texts) {
    std::vector<long long> numbers;
    for (const Text &text : texts) {
        numbers.push_back(text.info.valid_data ? text.number : -1);
    }
    return numbers;
}

DDS_ReturnCode_t dispose(DDS_DataWriter *writer, int host, int level) {
    Record<Message> key(message_type());
    key->id = {host, 1};
    key->level = level;
    return DDS_DataWriter_dispose(writer, key.get(), DDS_HANDLE_NIL);
}

// Returns the levels, which are keys, of the instances that the reader holds samples of.
std::map<int, std::size_t> held(DDS_DataReader *reader) {
    std::map<int, std::size_t> samples;
    for (const Text &text : access(reader, selection(false))) {
        ++samples[text.level];
    }
    return samples;
}

// ---- TIME_BASED_FILTER --------------------------------------------------------------------------

TEST(TimeBasedFilter, OneSampleOfEachInstanceAPeriodAndTheLastOneInTheEnd) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader(separated_by({0, 100'000'000}));
    ASSERT_TRUE(is_matched(writer));
    const auto begin = std::chrono::steady_clock::now();
    constexpr long long kLast = 999;
    for (long long i = 0; i <= kLast; ++i) {
        for (int level = 0; level < 3; ++level) {
            ASSERT_EQ(write(writer, 1, level, i), DDS_RETCODE_OK);
        }
    }
    std::map<int, std::vector<long long>> got;
    EXPECT_TRUE(eventually([&] {
        for (const Text &text : take(reader)) {
            got[text.level].push_back(text.number);
        }
        return got.size() == 3 && got[0].back() == kLast && got[1].back() == kLast &&
               got[2].back() == kLast;
    }));
    const auto periods =
        (std::chrono::steady_clock::now() - begin) / std::chrono::milliseconds(100);
    for (const auto &[level, numbers] : got) {
        EXPECT_EQ(numbers.front(), 0);
        EXPECT_LE(numbers.size(), static_cast<std::size_t>(periods) + 1);
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
    }
}

TEST(TimeBasedFilter, AnotherParticipantsSamplesToo) {
    Node here(1);
    Node there(1);
    DDS_DataWriter *const writer = here.writer();
    DDS_DataReader *const reader = there.reader(separated_by(kAnHour));
    ASSERT_TRUE(is_matched(writer));
    for (long long i = 0; i < 20; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    ASSERT_EQ(write(writer, 1, 2, 0), DDS_RETCODE_OK);
    EXPECT_EQ(numbers_of(take_at_least(reader, 2)), (std::vector<long long>{0, 0}));
}

TEST(TimeBasedFilter, TheLastSampleOfABestEffortWriterToo) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer(
        [](DDS_DataWriterQos &qos) { qos.reliability.kind = DDS_BEST_EFFORT_RELIABILITY_QOS; });
    DDS_DataReader *const reader = node.reader([](DDS_DataReaderQos &qos) {
        separated_by({0, 200'000'000})(qos);
        qos.reliability.kind = DDS_BEST_EFFORT_RELIABILITY_QOS;
    });
    ASSERT_TRUE(is_matched(writer));
    for (long long i = 0; i < 20; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    EXPECT_TRUE(eventually([&] {
        const auto got = take(reader);
        return !got.empty() && got.back().number == 19;
    }));
}

TEST(TimeBasedFilter, WhatIsKeptComesBeforeTheEndOfItsInstance) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader(separated_by(kAnHour));
    ASSERT_TRUE(is_matched(writer));
    for (long long i = 0; i < 4; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    EXPECT_EQ(numbers_of(take(reader)), (std::vector<long long>{0}));
    ASSERT_EQ(dispose(writer, 1, 1), DDS_RETCODE_OK);
    const auto rest = take(reader);
    ASSERT_FALSE(rest.empty());
    EXPECT_EQ(rest.front().number, 3);
    EXPECT_EQ(rest.front().info.instance_state, DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
}

TEST(TimeBasedFilter, WhatIsKeptComesBeforeTheEndOfItsWriter) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer(leaves_instances);
    DDS_DataWriter *const other = node.writer(leaves_instances);
    DDS_DataReader *const reader = node.reader(separated_by(kAnHour));
    ASSERT_TRUE(is_matched(writer) && is_matched(other));
    for (long long i = 0; i < 4; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
        ASSERT_EQ(write(other, 1, 2, 10 + i), DDS_RETCODE_OK);
    }
    EXPECT_EQ(take(reader).size(), 2U);
    ASSERT_EQ(DDS_Publisher_delete_datawriter(node.publisher, writer), DDS_RETCODE_OK);
    const auto rest = take_at_least(reader, 1);
    ASSERT_EQ(rest.size(), 1U);
    EXPECT_EQ(rest.front().number, 3);
    EXPECT_EQ(rest.front().info.instance_state, DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE);
}

TEST(TimeBasedFilter, WhatTheTopicFiltersOutBeginsNoPeriod) {
    Node node(1);
    Strings none({});
    DDS_ContentFilteredTopic *const filtered = DDS_DomainParticipant_create_contentfilteredtopic(
        node.participant, own("large numbers").c_str(), node.topic, "number > 5", none.get());
    ASSERT_NE(filtered, nullptr);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader =
        node.reader(separated_by(kAnHour), DDS_ContentFilteredTopic_as_topicdescription(filtered));
    ASSERT_TRUE(is_matched(writer));
    for (long long i = 0; i < 10; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    EXPECT_EQ(numbers_of(take(reader)), (std::vector<long long>{6}));
}

TEST(TimeBasedFilter, AShorterPeriodHoldsAtOnce) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader(separated_by(kAnHour));
    ASSERT_TRUE(is_matched(writer));
    for (long long i = 0; i < 4; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    EXPECT_EQ(numbers_of(take(reader)), (std::vector<long long>{0}));
    change(reader, separated_by({0, 0}));
    EXPECT_EQ(numbers_of(take_at_least(reader, 1)), (std::vector<long long>{3}));
    for (long long i = 4; i < 8; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    EXPECT_EQ(numbers_of(take_at_least(reader, 4)), (std::vector<long long>{4, 5, 6, 7}));
    change(reader, separated_by(kAnHour));
    for (long long i = 8; i < 12; ++i) {
        ASSERT_EQ(write(writer, 1, 1, i), DDS_RETCODE_OK);
    }
    EXPECT_EQ(numbers_of(take(reader)), (std::vector<long long>{8}));
}

TEST(TimeBasedFilter, AFullReaderGetsWhatIsKeptWhenItHasRoom) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer([](DDS_DataWriterQos &qos) {
        qos.reliability.max_blocking_time = {0, 1'000'000};
    });
    DDS_DataReader *const reader = node.reader([](DDS_DataReaderQos &qos) {
        separated_by(kAMoment)(qos);
        qos.resource_limits = {1, DDS_LENGTH_UNLIMITED, 1};
    });
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 0), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] {
        DDS_SampleRejectedStatus rejected{};
        return DDS_DataReader_get_sample_rejected_status(reader, &rejected) == DDS_RETCODE_OK &&
               rejected.total_count > 1;
    }));
    EXPECT_EQ(write(writer, 1, 1, 2), DDS_RETCODE_TIMEOUT) << "there is no room for one more";
    EXPECT_EQ(numbers_of(take(reader)), (std::vector<long long>{0}));
    EXPECT_EQ(numbers_of(take_at_least(reader, 1)), (std::vector<long long>{1}));
}

auto owning(int strength) {
    return [strength](DDS_DataWriterQos &qos) {
        qos.ownership.kind = DDS_EXCLUSIVE_OWNERSHIP_QOS;
        qos.ownership_strength.value = strength;
    };
}

void of_one_owner(DDS_DataReaderQos &qos) {
    qos.ownership.kind = DDS_EXCLUSIVE_OWNERSHIP_QOS;
}

TEST(TimeBasedFilter, OfSharedInstancesTheLastWriterCounts) {
    Node node(1);
    DDS_DataWriter *const first =
        node.writer([](DDS_DataWriterQos &qos) { qos.ownership_strength.value = 5; });
    DDS_DataWriter *const last = node.writer();
    DDS_DataReader *const reader = node.reader(separated_by(kAnHour));
    ASSERT_TRUE(is_matched(first) && is_matched(last));
    ASSERT_EQ(write(first, 1, 1, 0), DDS_RETCODE_OK);
    ASSERT_EQ(write(first, 1, 1, 1), DDS_RETCODE_OK);
    ASSERT_EQ(write(last, 1, 1, 2), DDS_RETCODE_OK);
    EXPECT_EQ(numbers_of(take(reader)), (std::vector<long long>{0}));
    change(reader, separated_by({0, 0}));
    EXPECT_EQ(numbers_of(take_at_least(reader, 1)), (std::vector<long long>{2}));
}

TEST(TimeBasedFilter, ADisposeThatTheReaderIgnoresEndsNoPeriod) {
    Node node(1);
    DDS_DataWriter *const weak = node.writer(owning(1));
    DDS_DataWriter *const owner = node.writer(owning(2));
    DDS_DataReader *const reader = node.reader([](DDS_DataReaderQos &qos) {
        separated_by(kAnHour)(qos);
        of_one_owner(qos);
    });
    ASSERT_TRUE(is_matched(weak) && is_matched(owner));
    for (long long i = 0; i < 5; ++i) {
        ASSERT_EQ(write(owner, 1, 1, i), DDS_RETCODE_OK);
        ASSERT_EQ(dispose(weak, 1, 1), DDS_RETCODE_OK);
    }
    EXPECT_EQ(numbers_of(take(reader)), (std::vector<long long>{0}));
}

TEST(TimeBasedFilter, AWeakerOwnerDoesNotReplaceWhatIsKept) {
    Node node(1);
    DDS_DataWriter *const weak = node.writer(owning(1));
    DDS_DataWriter *const owner = node.writer(owning(2));
    DDS_DataReader *const reader = node.reader([](DDS_DataReaderQos &qos) {
        separated_by(kAnHour)(qos);
        of_one_owner(qos);
    });
    ASSERT_TRUE(is_matched(weak) && is_matched(owner));
    for (long long i = 0; i < 3; ++i) {
        ASSERT_EQ(write(owner, 1, 1, i), DDS_RETCODE_OK);
        ASSERT_EQ(write(weak, 1, 1, 100 + i), DDS_RETCODE_OK);
    }
    EXPECT_EQ(numbers_of(take(reader)), (std::vector<long long>{0}));
    change(reader, [](DDS_DataReaderQos &qos) { qos.time_based_filter.minimum_separation = {}; });
    EXPECT_EQ(numbers_of(take_at_least(reader, 1)), (std::vector<long long>{2}));
}

TEST(TimeBasedFilter, WhoInheritsAnInstanceIsFilteredToo) {
    Node node(1);
    DDS_DataWriter *const weak = node.writer(owning(1));
    const auto leaving = [](DDS_DataWriterQos &qos) {
        owning(2)(qos);
        leaves_instances(qos);
    };
    DDS_DataWriter *const owner = node.writer(leaving);
    DDS_DataReader *const reader = node.reader([](DDS_DataReaderQos &qos) {
        separated_by(kAnHour)(qos);
        of_one_owner(qos);
    });
    ASSERT_TRUE(is_matched(weak) && is_matched(owner));
    ASSERT_EQ(write(owner, 1, 1, 0), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_Publisher_delete_datawriter(node.publisher, owner), DDS_RETCODE_OK);
    ASSERT_TRUE(is_matched(reader));
    for (long long i = 1; i < 6; ++i) {
        ASSERT_EQ(write(weak, 1, 1, i), DDS_RETCODE_OK);
    }
    EXPECT_EQ(numbers_of(take(reader)), (std::vector<long long>{0}));
    change(reader, [](DDS_DataReaderQos &qos) { qos.time_based_filter.minimum_separation = {}; });
    EXPECT_EQ(numbers_of(take_at_least(reader, 1)), (std::vector<long long>{5}));
}

// ---- READER_DATA_LIFECYCLE ----------------------------------------------------------------------

TEST(ReaderDataLifecycle, DisposedInstancesArePurged) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader(purging(DDS_DURATION_INFINITE, kAMoment));
    DDS_DataReader *const keeper = node.reader();
    ASSERT_TRUE(is_matched(writer, 2));
    for (int level = 0; level < 4; ++level) {
        ASSERT_EQ(write(writer, 1, level, level), DDS_RETCODE_OK);
    }
    EXPECT_EQ(held(reader).size(), 4U);
    ASSERT_EQ(dispose(writer, 1, 1), DDS_RETCODE_OK);
    ASSERT_EQ(dispose(writer, 1, 3), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return held(reader).size() == 2; }));
    EXPECT_TRUE(held(reader).contains(0) && held(reader).contains(2));
    EXPECT_EQ(held(keeper).size(), 4U) << "the default is to keep them";
}

TEST(ReaderDataLifecycle, InstancesWithoutWritersArePurged) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer(leaves_instances);
    DDS_DataWriter *const other = node.writer(leaves_instances);
    DDS_DataReader *const reader = node.reader(purging(kAMoment, DDS_DURATION_INFINITE));
    DDS_DataReader *const keeper = node.reader();
    ASSERT_TRUE(is_matched(writer, 2) && is_matched(other, 2));
    for (int level = 0; level < 3; ++level) {
        ASSERT_EQ(write(writer, 1, level, level), DDS_RETCODE_OK);
    }
    ASSERT_EQ(write(other, 1, 2, 2), DDS_RETCODE_OK);
    Record<Message> key(message_type());
    key->id = {1, 1};
    key->level = 0;
    ASSERT_EQ(DDS_DataWriter_unregister_instance(writer, key.get(), DDS_HANDLE_NIL),
              DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return !held(reader).contains(0); }));
    EXPECT_EQ(held(reader).size(), 2U);
    ASSERT_EQ(DDS_Publisher_delete_datawriter(node.publisher, writer), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return !held(reader).contains(1); }));
    EXPECT_TRUE(held(reader).contains(2)) << "the other writer is there";
    EXPECT_EQ(held(keeper).size(), 3U);
}

TEST(ReaderDataLifecycle, AnInstanceThatComesToLifeAgainStays) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader(purging(DDS_DURATION_INFINITE, kAMoment));
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    ASSERT_EQ(dispose(writer, 1, 1), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 1, 2), DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 2, 3), DDS_RETCODE_OK);
    ASSERT_EQ(dispose(writer, 1, 2), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return !held(reader).contains(2); }));
    EXPECT_TRUE(held(reader).contains(1));
}

TEST(ReaderDataLifecycle, ADelayThatIsSetLaterHoldsForWhatIsThere) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer(leaves_instances);
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer));
    for (int level = 0; level < 3; ++level) {
        ASSERT_EQ(write(writer, 1, level, level), DDS_RETCODE_OK);
    }
    ASSERT_EQ(dispose(writer, 1, 0), DDS_RETCODE_OK);
    change(reader, purging(kAMoment, kAMoment));
    EXPECT_TRUE(eventually([&] { return held(reader).size() == 2; }));
    ASSERT_EQ(DDS_Publisher_delete_datawriter(node.publisher, writer), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return held(reader).empty(); }));
}

TEST(ReaderDataLifecycle, ADelayThatChangesHoldsForWhatHasEnded) {
    Node node(1);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const reader = node.reader(purging(kAnHour, DDS_DURATION_INFINITE));
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    ASSERT_EQ(dispose(writer, 1, 1), DDS_RETCODE_OK);
    change(reader, purging(kAnHour, kAMoment));
    EXPECT_TRUE(eventually([&] { return held(reader).empty(); }));

    change(reader, purging(kAnHour, {0, 300'000'000}));
    ASSERT_EQ(write(writer, 1, 2, 1), DDS_RETCODE_OK);
    ASSERT_EQ(dispose(writer, 1, 2), DDS_RETCODE_OK);
    change(reader, purging(kAMoment, DDS_DURATION_INFINITE));
    // An instance that ends later shows that the clock has gone on.
    DDS_DataWriter *const leaving = node.writer(leaves_instances);
    ASSERT_TRUE(is_matched(leaving));
    ASSERT_EQ(write(leaving, 1, 3, 1), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_Publisher_delete_datawriter(node.publisher, leaving), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return !held(reader).contains(3); }));
    EXPECT_TRUE(held(reader).contains(2));
}

TEST(ReaderDataLifecycle, WhatTheReaderIgnoresDoesNotCount) {
    Node node(1);
    DDS_DataWriter *const weak = node.writer(owning(1));
    DDS_DataWriter *const owner = node.writer(owning(2));
    DDS_DataReader *const reader = node.reader([](DDS_DataReaderQos &qos) {
        purging(DDS_DURATION_INFINITE, kAMoment)(qos);
        of_one_owner(qos);
    });
    ASSERT_TRUE(is_matched(weak) && is_matched(owner));
    ASSERT_EQ(write(owner, 1, 1, 1), DDS_RETCODE_OK);
    ASSERT_EQ(dispose(owner, 1, 1), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] {
        EXPECT_EQ(write(weak, 1, 1, 2), DDS_RETCODE_OK);
        EXPECT_EQ(dispose(weak, 1, 1), DDS_RETCODE_OK);
        return held(reader).empty();
    }));
}

}  // namespace
