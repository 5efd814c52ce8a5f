// SPDX-License-Identifier: Apache-2.0
// Writes that wait for room: how they end, and what is said of them.
#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <string>
#include <thread>

#include "support/logger/log_capture.h"
#include "support/platform/pubsub.h"

namespace {

using namespace support;

constexpr int kDomain = 6;

void blocking(DDS_DataWriterQos &qos) {
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    qos.reliability.max_blocking_time = DDS_DURATION_INFINITE;
}
void impatient(DDS_DataWriterQos &qos) {
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    qos.reliability.max_blocking_time = {0, 1000000};
}
void room_for_one(DDS_DataReaderQos &qos) {
    qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
    qos.resource_limits.max_samples = 1;
    qos.resource_limits.max_samples_per_instance = 1;
}

// Writes from a thread of its own until a write fails.
class Writing {
  public:
    explicit Writing(DDS_DataWriter *writer, const std::string &text)
        : thread_([this, writer, text] {
              while ((result_ = write(writer, 1, 1, written_, text)) == DDS_RETCODE_OK) {
                  ++written_;
              }
              ended_ = true;
          }) {}
    ~Writing() { thread_.join(); }
    Writing(const Writing &) = delete;
    Writing &operator=(const Writing &) = delete;

    int written() const { return written_; }
    // Waits for the write that fails, and returns its result.
    DDS_ReturnCode_t result() {
        EXPECT_TRUE(eventually([&] { return ended_.load(); }));
        return result_;
    }
    // Waits until a write has not returned for some time.
    bool is_blocked() {
        return eventually([this, last = -1]() mutable {
            const int before = last;
            last = written_;
            return last > 0 && last == before;
        });
    }

  private:
    std::atomic<int> written_{0};
    std::atomic<DDS_ReturnCode_t> result_{DDS_RETCODE_OK};
    std::atomic<bool> ended_{false};
    std::thread thread_;
};

TEST(KoltBlockedWrites, WaitForAReaderOfThisProcessCanBeEnded) {
    Node node(kDomain);
    DDS_DataWriter *const writer = node.writer(blocking);
    DDS_DataReader *const full = node.reader(room_for_one);
    DDS_DataReader *const roomy = node.reader();
    ASSERT_TRUE(is_matched(writer, 2));
    Writing writing(writer, "text");
    ASSERT_TRUE(eventually([&] {
        return (DDS_Entity_get_status_changes(DDS_DataReader_as_entity(full)) &
                DDS_SAMPLE_REJECTED_STATUS) != 0;
    }));
    EXPECT_EQ(KOLT_DataWriter_end_writes(writer), DDS_RETCODE_OK);
    EXPECT_EQ(writing.result(), DDS_RETCODE_TIMEOUT);
    EXPECT_EQ(writing.written(), 1);
    EXPECT_EQ(write(writer, 1, 1, 3), DDS_RETCODE_TIMEOUT);
    // Nothing came twice, and the reader with room has what the other one had no room for.
    EXPECT_EQ(take(full).size(), 1U);
    EXPECT_LE(take(roomy).size(), 2U);
    EXPECT_EQ(KOLT_DataWriter_end_writes(nullptr), DDS_RETCODE_BAD_PARAMETER);
}

TEST(KoltBlockedWrites, WaitForAReaderOfAnotherProcessCanBeEnded) {
    const std::string suffix = own("");
    ChildProcess peer({helper_path("helper_kolt_echo"), std::to_string(kDomain), "xcdr2", suffix});
    Node node(kDomain, "to_peer" + suffix);
    DDS_DataWriter *const writer = node.writer(blocking);
    ASSERT_TRUE(is_matched(writer));
    peer.signal(SIGSTOP);
    Writing writing(writer, std::string(60, 'x'));
    ASSERT_TRUE(writing.is_blocked());
    EXPECT_EQ(KOLT_DataWriter_end_writes(writer), DDS_RETCODE_OK);
    EXPECT_EQ(writing.result(), DDS_RETCODE_TIMEOUT);
    EXPECT_EQ(write(writer, 1, 1, 3), DDS_RETCODE_TIMEOUT);
    EXPECT_EQ(DDS_Publisher_delete_datawriter(node.publisher, writer), DDS_RETCODE_OK);
    peer.signal(SIGCONT);
}

// One line when a writer begins to time out, one when it writes again, whatever lies between.
TEST(KoltBlockedWrites, TimingOutIsToldOnce) {
    LogCapture capture;
    Node node(kDomain);
    DDS_DataWriter *const writer = node.writer(impatient);
    DDS_DataReader *const full = node.reader(room_for_one);
    ASSERT_TRUE(is_matched(writer));
    KOLT_Config_Logger *const logger = KOLT_Config_Logger_get_instance();
    KOLT_Config_Logger_set_verbosity_by_category(logger, KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION,
                                                 KOLT_CONFIG_LOG_VERBOSITY_WARNING);
    const auto count = [&](const char *text) {
        return capture.count(KOLT_CONFIG_LOG_LEVEL_WARNING, text);
    };
    for (int round = 0; round < 5; ++round) {
        ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
        for (int i = 0; i < 5; ++i) {
            ASSERT_EQ(write(writer, 1, 1, 2), DDS_RETCODE_TIMEOUT);
        }
        EXPECT_TRUE(eventually([&] { return count("times out") == 1; }));
        take(full);
    }
    EXPECT_EQ(count("writes again"), 0) << "those that passed were few";
    EXPECT_TRUE(eventually([&] {
        EXPECT_EQ(write(writer, 1, 1, 3), DDS_RETCODE_OK);
        take(full);
        return count("writes again") == 1;
    }));
    EXPECT_EQ(count("times out"), 1);
}

}  // namespace
