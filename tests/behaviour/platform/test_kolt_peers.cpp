// SPDX-License-Identifier: Apache-2.0
// Writing to and reading from another process, and from many threads.
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/platform/process.h"
#include "support/platform/pubsub.h"

namespace {

using namespace support;

// ---- Another process ----------------------------------------------------------------------------

std::vector<std::string> echo(const char *representation) {
    return {helper_path("helper_kolt_echo"), "3", representation, own("")};
}

TEST(KoltPeers, ThroughTheNetworkAndBack) {
    for (const char *const representation : {"xcdr1", "xcdr2"}) {
        Node node(3, own("to_peer"));
        DDS_DataWriter *const writer = node.writer();
        DDS_Topic *const back = node.topic_of(message_plugin(), own("from_peer"));
        DDS_DataReader *const reader = node.reader({}, DDS_Topic_as_topicdescription(back));
        ChildProcess peer(echo(representation));
        ASSERT_TRUE(is_matched(writer));
        ASSERT_TRUE(is_matched(reader));
        for (int i = 0; i < 50; ++i) {
            ASSERT_EQ(write(writer, 1, i % 3, i, std::string(static_cast<std::size_t>(i), 'y')),
                      DDS_RETCODE_OK);
        }
        const auto got = take_at_least(reader, 50);
        ASSERT_EQ(got.size(), 50U);
        for (const Text &text : got) {
            EXPECT_TRUE(text.info.valid_data);
            EXPECT_EQ(text.text.size(), static_cast<std::size_t>(text.number));
        }
        Record<Message> key(message_type());
        key->id = {1, 1};
        key->level = 2;
        ASSERT_EQ(DDS_DataWriter_dispose(writer, key.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
        const auto gone = take_at_least(reader, 1);
        ASSERT_EQ(gone.size(), 1U);
        EXPECT_FALSE(gone[0].info.valid_data);
        EXPECT_EQ(gone[0].info.instance_state, DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
        EXPECT_EQ(gone[0].host, 1);
        EXPECT_EQ(gone[0].level, 2);
    }
}

// The last second with a sign on the wire, those around it, and the last that can be sent.
TEST(KoltPeers, TimeStampsAfter2038Arrive) {
    Node node(3, own("to_peer"));
    DDS_DataWriter *const writer = node.writer();
    DDS_Topic *const back = node.topic_of(message_plugin(), own("from_peer"));
    DDS_DataReader *const reader = node.reader({}, DDS_Topic_as_topicdescription(back));
    ChildProcess peer(echo("xcdr2"));
    ASSERT_TRUE(is_matched(writer));
    ASSERT_TRUE(is_matched(reader));
    Record<Message> message(message_type());
    for (const DDS_Time_t &stamp :
         {DDS_Time_t{0, 1}, DDS_Time_t{2147483646, 999999999}, DDS_Time_t{2147483647, 999999999},
          DDS_Time_t{2147483648, 0}, DDS_Time_t{4294967294, 999999999}}) {
        ASSERT_EQ(DDS_DataWriter_write_w_timestamp(writer, message.get(), DDS_HANDLE_NIL, &stamp),
                  DDS_RETCODE_OK);
        const auto got = take_at_least(reader, 1);
        ASSERT_EQ(got.size(), 1U) << stamp.sec;
        EXPECT_EQ(got[0].info.source_timestamp.sec, stamp.sec);
        EXPECT_EQ(got[0].info.source_timestamp.nanosec, stamp.nanosec);
    }
}

TEST(KoltPeers, LargeSamplesTravelInFragments) {
    Node node(3, own("to_peer"));
    DDS_DataWriter *const writer =
        node.writer({}, node.topic_of(large_plugin(), own("large_to_peer")));
    DDS_DataReader *const reader = node.reader(
        {}, DDS_Topic_as_topicdescription(node.topic_of(large_plugin(), own("large_from_peer"))));
    ChildProcess peer(echo("xcdr2"));
    ASSERT_TRUE(is_matched(writer));
    ASSERT_TRUE(is_matched(reader));
    Record<Large> large(large_type());
    constexpr DDS_Long kSize = 200001;
    ASSERT_TRUE(DDS_OctetSeq_set_length(&large->data, kSize));
    for (DDS_Long i = 0; i < kSize; ++i) {
        *DDS_OctetSeq_get_reference(&large->data, i) = static_cast<DDS_Octet>(i * 7);
    }
    large->far = 11;
    large->farther = 12;
    ASSERT_EQ(DDS_DataWriter_write(writer, large.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    Record<Large> got(large_type());
    DDS_SampleInfo info{};
    ASSERT_TRUE(eventually([&] {
        return DDS_DataReader_read_or_take_next_sample_untypedI(reader, DDS_BOOLEAN_TRUE, got.get(),
                                                                &info) == DDS_RETCODE_OK;
    }));
    EXPECT_TRUE(KOLT_Record_equals(large_type(), got.get(), large.get()));
}

// ---- Threads ------------------------------------------------------------------------------------

TEST(KoltPeers, ManyThreadsWriteWhileOneTakes) {
    constexpr int kThreads = 4;
    constexpr int kEach = 250;
    Node here(2);
    Node there(2);
    DDS_DataWriter *const writer = here.writer();
    DDS_DataReader *const reader = there.reader();
    DDS_DataReader *const local = here.reader();
    ASSERT_TRUE(is_matched(writer, 2));
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([=] {
            for (int i = 0; i < kEach; ++i) {
                EXPECT_EQ(write(writer, t, i % 5, i), DDS_RETCODE_OK);
            }
        });
    }
    const auto remote = take_at_least(reader, kThreads * kEach);
    const auto here_too = take_at_least(local, kThreads * kEach);
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(remote.size(), static_cast<std::size_t>(kThreads * kEach));
    EXPECT_EQ(here_too.size(), static_cast<std::size_t>(kThreads * kEach));
    // Of each thread and instance, in order.
    std::map<std::pair<int, int>, long long> last;
    for (const Text &text : remote) {
        const auto [it, fresh] = last.try_emplace({text.host, text.level}, text.number);
        if (!fresh) {
            EXPECT_LT(it->second, text.number);
            it->second = text.number;
        }
    }
}

// Samples in a reader's cache hold buffers of a writer that is gone.
TEST(KoltPeers, SamplesOutliveTheirWriter) {
    const int before = live_endpoints();
    {
        Node node(2);
        DDS_DataReader *const reader = node.reader();
        DDS_DataWriter *const writer = node.writer();
        ASSERT_TRUE(is_matched(reader));
        for (int i = 0; i < 20; ++i) {
            ASSERT_EQ(write(writer, 1, 1, i, "kept"), DDS_RETCODE_OK);
        }
        ASSERT_EQ(DDS_Publisher_delete_datawriter(node.publisher, writer), DDS_RETCODE_OK);
        std::size_t valid = 0;
        ASSERT_TRUE(is_matched(reader, 0));
        for (const Text &text : take(reader)) {
            if (!text.info.valid_data) {
                continue;
            }
            EXPECT_EQ(text.text, "kept");
            ++valid;
        }
        EXPECT_EQ(valid, 20U);
    }
    EXPECT_TRUE(eventually([&] { return live_endpoints() == before; }));
}

}  // namespace
