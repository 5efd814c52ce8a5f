// SPDX-License-Identifier: Apache-2.0
// The bounded queue: order, numbers, text limits, messages dropped when it is full.
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "support/platform/process.h"
#include "vur_dl/MessageQueue.h"

namespace {

using support::StdoutCapture;

constexpr DDS_Duration_t kNoWait{0, 0};
constexpr DDS_Duration_t kShort{0, 20'000'000};
constexpr DDS_Duration_t kLong{30, 0};

struct Delete {
    void operator()(VUR_DL_MessageQueue *queue) const { VUR_DL_MessageQueue_delete(queue); }
};
using QueuePtr = std::unique_ptr<VUR_DL_MessageQueue, Delete>;

QueuePtr create(DDS_Long size) {
    const VUR_DL_MessageQueueProperty property{size};
    return QueuePtr(VUR_DL_MessageQueue_new(&property));
}

int push(const QueuePtr &queue, std::string text, std::string category = "", DDS_Long level = 600) {
    VUR_DL_LogMessagePlusTime item{};
    item.message.hostAndAppId.rtps_host_id = 11;
    item.message.hostAndAppId.rtps_app_id = 22;
    item.message.level = level;
    item.message.message = text.data();
    item.message.category = category.data();
    item.message.messageId = -7;
    item.writeTime = {5, 6};
    const int result = VUR_DL_MessageQueue_push(queue.get(), &item);
    // The queue must not depend on what the caller does with its texts.
    std::fill(text.begin(), text.end(), '?');
    std::fill(category.begin(), category.end(), '?');
    return result;
}

TEST(MessageQueue, HandsOutInOrderWithEverything) {
    const QueuePtr queue = create(4);
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageQueueProperty(queue.get()), 4);
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageId(queue.get()), 0);
    EXPECT_EQ(push(queue, "one", "first", 300), 1);
    EXPECT_EQ(push(queue, "two"), 1);
    EXPECT_EQ(VUR_DL_MessageQueue_getMessageId(queue.get()), 2);
    const VUR_DL_LogMessagePlusTime *front = VUR_DL_MessageQueue_front(queue.get(), &kNoWait);
    ASSERT_NE(front, nullptr);
    EXPECT_STREQ(front->message.message, "one");
    EXPECT_STREQ(front->message.category, "first");
    EXPECT_EQ(front->message.level, 300);
    EXPECT_EQ(front->message.hostAndAppId.rtps_host_id, 11);
    EXPECT_EQ(front->message.hostAndAppId.rtps_app_id, 22);
    EXPECT_EQ(front->message.messageId, 1);
    EXPECT_EQ(front->writeTime.sec, 5);
    EXPECT_EQ(front->writeTime.nanosec, 6U);
    VUR_DL_MessageQueue_pop(queue.get());
    front = VUR_DL_MessageQueue_front(queue.get(), &kNoWait);
    ASSERT_NE(front, nullptr);
    EXPECT_STREQ(front->message.message, "two");
    EXPECT_EQ(front->message.messageId, 2);
    VUR_DL_MessageQueue_pop(queue.get());
}

TEST(MessageQueue, AFullQueueDropsSilentlyAndUsesUpANumber) {
    const QueuePtr queue = create(1);
    StdoutCapture capture;
    EXPECT_EQ(push(queue, "kept"), 1);
    EXPECT_EQ(push(queue, "dropped"), 0);
    EXPECT_EQ(capture.text(), "");
    ASSERT_NE(VUR_DL_MessageQueue_front(queue.get(), &kNoWait), nullptr);
    VUR_DL_MessageQueue_pop(queue.get());
    EXPECT_EQ(push(queue, "third"), 1);
    const VUR_DL_LogMessagePlusTime *front = VUR_DL_MessageQueue_front(queue.get(), &kNoWait);
    ASSERT_NE(front, nullptr);
    EXPECT_EQ(front->message.messageId, 3);
    EXPECT_STREQ(front->message.message, "third");
}

class MessageQueueTexts : public testing::TestWithParam<std::pair<std::size_t, std::size_t>> {};

TEST_P(MessageQueueTexts, MessagesAreCutAt4096) {
    const auto [length, kept] = GetParam();
    const QueuePtr queue = create(1);
    const std::string text(length, 'm');
    ASSERT_EQ(push(queue, text), 1);
    const VUR_DL_LogMessagePlusTime *front = VUR_DL_MessageQueue_front(queue.get(), &kNoWait);
    ASSERT_NE(front, nullptr);
    EXPECT_EQ(front->message.message, text.substr(0, std::min<std::size_t>(length, 4096)));
    EXPECT_EQ(std::string(front->message.message).size(), kept);
    VUR_DL_MessageQueue_pop(queue.get());
}
INSTANTIATE_TEST_SUITE_P(Lengths, MessageQueueTexts,
                         testing::Values(std::pair{0, 0}, std::pair{127, 127}, std::pair{128, 128},
                                         std::pair{4096, 4096}, std::pair{4097, 4096},
                                         std::pair{5000, 4096}, std::pair{200000, 4096}));

class MessageQueueCategories : public testing::TestWithParam<std::pair<std::size_t, std::size_t>> {
};

TEST_P(MessageQueueCategories, CategoriesAreCutAt512) {
    const auto [length, kept] = GetParam();
    const QueuePtr queue = create(1);
    ASSERT_EQ(push(queue, "text", std::string(length, 'c')), 1);
    const VUR_DL_LogMessagePlusTime *front = VUR_DL_MessageQueue_front(queue.get(), &kNoWait);
    ASSERT_NE(front, nullptr);
    EXPECT_EQ(front->message.category, std::string(kept, 'c'));
    VUR_DL_MessageQueue_pop(queue.get());
}
INSTANTIATE_TEST_SUITE_P(Lengths, MessageQueueCategories,
                         testing::Values(std::pair{0, 0}, std::pair{31, 31}, std::pair{32, 32},
                                         std::pair{512, 512}, std::pair{513, 512},
                                         std::pair{9000, 512}));

TEST(MessageQueue, ArbitraryBytesSurvive) {
    const QueuePtr queue = create(2);
    std::string text;
    for (int byte = 255; byte > 0; --byte) {
        text.push_back(static_cast<char>(byte));
    }
    ASSERT_EQ(push(queue, text), 1);
    const VUR_DL_LogMessagePlusTime *front = VUR_DL_MessageQueue_front(queue.get(), &kNoWait);
    ASSERT_NE(front, nullptr);
    EXPECT_EQ(front->message.message, text);
}

TEST(MessageQueue, AnEmptyQueueGivesNullAfterTheTimeWithoutALine) {
    const QueuePtr queue = create(1);
    StdoutCapture capture;
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(VUR_DL_MessageQueue_front(queue.get(), &kShort), nullptr);
    EXPECT_GE(std::chrono::steady_clock::now() - before, std::chrono::milliseconds(20));
    EXPECT_EQ(capture.text(), "");
}

TEST(MessageQueue, FrontTwiceNeedsTwoTokensAndGivesTheSameElement) {
    const QueuePtr queue = create(2);
    push(queue, "one");
    const VUR_DL_LogMessagePlusTime *first = VUR_DL_MessageQueue_front(queue.get(), &kNoWait);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(VUR_DL_MessageQueue_front(queue.get(), &kNoWait), nullptr);
    push(queue, "two");
    EXPECT_EQ(first, VUR_DL_MessageQueue_front(queue.get(), &kNoWait));
}

TEST(MessageQueue, PopOnAnEmptyQueueDoesNothing) {
    const QueuePtr queue = create(1);
    StdoutCapture capture;
    VUR_DL_MessageQueue_pop(queue.get());
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(push(queue, "one"), 1);
}

TEST(MessageQueue, DeletingAQueueFreesItsMessages) {
    // The leak checker of the sanitizer builds judges.
    const QueuePtr queue = create(3);
    push(queue, std::string(1000, 'm'), std::string(100, 'c'));
    push(queue, "short");
    push(queue, std::string(1000, 'm'));
}

TEST(MessageQueue, ReusedElementsShowNothingOfFormerMessages) {
    const QueuePtr queue = create(1);
    for (const std::size_t length : {100U, 3000U, 5U, 0U}) {
        ASSERT_EQ(push(queue, std::string(length, 'x'), std::string(length, 'y')), 1);
        const VUR_DL_LogMessagePlusTime *front = VUR_DL_MessageQueue_front(queue.get(), &kNoWait);
        ASSERT_NE(front, nullptr);
        EXPECT_EQ(front->message.message, std::string(length, 'x'));
        EXPECT_EQ(std::string(std::min<std::size_t>(length, 512), 'y'), front->message.category);
        VUR_DL_MessageQueue_pop(queue.get());
    }
}

TEST(MessageQueue, ManyProducersOneConsumer) {
    constexpr int kThreads = 4;
    constexpr int kEach = 5000;
    const QueuePtr queue = create(kThreads * kEach);
    std::vector<std::jthread> producers;
    for (int t = 0; t < kThreads; ++t) {
        producers.emplace_back([&queue, t] {
            for (int i = 0; i < kEach; ++i) {
                push(queue, std::to_string(i), "", t);
            }
        });
    }
    std::vector<int> next(kThreads, 0);
    for (int received = 1; received <= kThreads * kEach; ++received) {
        const VUR_DL_LogMessagePlusTime *front = VUR_DL_MessageQueue_front(queue.get(), &kLong);
        ASSERT_NE(front, nullptr);
        EXPECT_EQ(front->message.messageId, received);
        int &expected = next.at(static_cast<std::size_t>(front->message.level));
        EXPECT_EQ(front->message.message, std::to_string(expected++));
        VUR_DL_MessageQueue_pop(queue.get());
    }
    EXPECT_EQ(VUR_DL_MessageQueue_front(queue.get(), &kNoWait), nullptr);
}

}  // namespace
