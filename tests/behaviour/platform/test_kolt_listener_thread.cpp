// SPDX-License-Identifier: Apache-2.0
// What a listener callback may do, and what waits for it: callbacks run on a thread of the
// participant's, with no lock held.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

#include "support/platform/pubsub.h"

namespace {

using namespace support;

constexpr int kDomain = 6;

// A listener of readers or writers that calls a function, which is given the entity.
struct Hook {
    std::function<void(DDS_DataReader *)> data;
    std::function<void(DDS_DataWriter *)> matched;
    std::atomic<int> calls{0};

    static Hook &of(void *self) { return *static_cast<Hook *>(self); }
    static void on_data(void *self, DDS_DataReader *reader) {
        of(self).data(reader);
        ++of(self).calls;
    }
    static void on_matched(void *self, DDS_DataWriter *writer,
                           const DDS_PublicationMatchedStatus *) {
        of(self).matched(writer);
        ++of(self).calls;
    }
    DDS_DataReaderListener reader_listener() {
        DDS_DataReaderListener listener{};
        listener.listener_data = this;
        listener.on_data_available = on_data;
        return listener;
    }
    DDS_DataWriterListener writer_listener() {
        DDS_DataWriterListener listener{};
        listener.listener_data = this;
        listener.on_publication_matched = on_matched;
        return listener;
    }
};

void one_sample(DDS_DataReaderQos &qos) {
    qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
}
void one_sample_kept(DDS_DataWriterQos &qos) {
    qos.history.kind = DDS_KEEP_LAST_HISTORY_QOS;
}

// Writes until it is told to stop.
class Flood {
  public:
    explicit Flood(DDS_DataWriter *writer)
        : thread_([this, writer] {
              while (!stop_) {
                  write(writer, 1, 1, 1);
              }
          }) {}
    ~Flood() {
        stop_ = true;
        thread_.join();
    }
    Flood(const Flood &) = delete;
    Flood &operator=(const Flood &) = delete;

  private:
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

// ---- What a callback may do ---------------------------------------------------------------------

TEST(KoltListenerThread, CallbackWritesItsOwnTopicThroughAnotherWriter) {
    Node node(kDomain);
    DDS_DataWriter *const echo = node.writer();
    Hook hook;
    std::atomic<int> taken{0};
    hook.data = [&](DDS_DataReader *reader) {
        for (const Text &text : take(reader)) {
            ++taken;
            if (text.number < 100) {
                write(echo, 2, 2, text.number + 1);
            }
        }
    };
    const DDS_DataReaderListener listener = hook.reader_listener();
    node.reader({}, nullptr, &listener, DDS_DATA_AVAILABLE_STATUS);
    DDS_DataWriter *const writer = node.writer();
    ASSERT_TRUE(is_matched(writer));
    ASSERT_TRUE(is_matched(echo));
    ASSERT_EQ(write(writer, 1, 1, 0), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return taken == 101; })) << taken;
}

TEST(KoltListenerThread, MatchedCallbackCreatesEndpointsOfTheTopic) {
    Node node(kDomain);
    Hook hook;
    DDS_DataReader *made = nullptr;
    hook.matched = [&](DDS_DataWriter *) {
        if (made == nullptr) {
            made = node.reader();
            EXPECT_NE(node.writer(), nullptr);
        }
    };
    const DDS_DataWriterListener listener = hook.writer_listener();
    node.writer({}, nullptr, &listener, DDS_PUBLICATION_MATCHED_STATUS);
    node.reader();
    EXPECT_TRUE(eventually([&] { return hook.calls >= 2; }));
    EXPECT_NE(made, nullptr);
}

TEST(KoltListenerThread, TwoReadersAnswerEachOthersTopic) {
    Node node(kDomain, own("pings"));
    Node other(kDomain, own("pongs"));
    DDS_DataWriter *const ping = node.writer();
    DDS_DataWriter *const pong = other.writer();
    Hook pongs, pings;
    std::atomic<int> answers{0};
    const auto answer = [&](DDS_DataWriter *writer) {
        return [&answers, writer](DDS_DataReader *reader) {
            for (const Text &text : take(reader)) {
                if (text.number < 200) {
                    write(writer, text.host, 1, text.number + 1);
                }
                ++answers;
            }
        };
    };
    pings.data = answer(pong);
    pongs.data = answer(ping);
    // Each node reads what the other one writes.
    const std::string ping_name =
        DDS_TopicDescription_get_name(DDS_Topic_as_topicdescription(node.topic));
    const std::string pong_name =
        DDS_TopicDescription_get_name(DDS_Topic_as_topicdescription(other.topic));
    const auto read_from = [](Node &reader_node, const std::string &name, Hook &hook) {
        DDS_Topic *const topic = DDS_DomainParticipant_create_topic(
            reader_node.participant, name.c_str(), kMessageTypeName, &DDS_TOPIC_QOS_DEFAULT,
            nullptr, DDS_STATUS_MASK_NONE);
        const DDS_DataReaderListener listener = hook.reader_listener();
        return reader_node.reader({}, DDS_Topic_as_topicdescription(topic), &listener,
                                  DDS_DATA_AVAILABLE_STATUS);
    };
    ASSERT_NE(read_from(other, ping_name, pings), nullptr);
    ASSERT_NE(read_from(node, pong_name, pongs), nullptr);
    ASSERT_TRUE(is_matched(ping));
    ASSERT_TRUE(is_matched(pong));
    std::thread serve([&] {
        for (int i = 0; i < 20; ++i) {
            write(ping, i, 1, 0);
        }
    });
    for (int i = 20; i < 40; ++i) {
        write(pong, i, 1, 0);
    }
    serve.join();
    EXPECT_TRUE(eventually([&] { return answers == 40 * 201; })) << answers;
}

TEST(KoltListenerThread, SubscribersCallbackDeletesAnotherReader) {
    Node node(kDomain);
    DDS_DataWriter *const writer = node.writer();
    DDS_DataReader *const victim = node.reader();
    DDS_DataReader *const reader = node.reader();
    ASSERT_TRUE(is_matched(writer, 2));
    std::atomic<DDS_ReturnCode_t> result{DDS_RETCODE_ERROR};
    Hook hook;
    hook.data = [&](DDS_DataReader *told) {
        take(told);
        if (told == reader) {
            result = DDS_Subscriber_delete_datareader(node.subscriber, victim);
        }
    };
    DDS_SubscriberListener listener{};
    listener.reader_listener = hook.reader_listener();
    ASSERT_EQ(DDS_Subscriber_set_listener(node.subscriber, &listener, DDS_DATA_AVAILABLE_STATUS),
              DDS_RETCODE_OK);
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return result == DDS_RETCODE_OK; }));
    EXPECT_TRUE(is_matched(writer, 1));
    DDS_Subscriber_set_listener(node.subscriber, nullptr, 0);
}

TEST(KoltListenerThread, CallbackDeletesItsOwnReader) {
    Node node(kDomain);
    DDS_DataWriter *const writer = node.writer();
    std::atomic<DDS_ReturnCode_t> result{DDS_RETCODE_ERROR};
    Hook hook;
    hook.data = [&](DDS_DataReader *reader) {
        result = DDS_Subscriber_delete_datareader(node.subscriber, reader);
    };
    const DDS_DataReaderListener listener = hook.reader_listener();
    node.reader({}, nullptr, &listener, DDS_DATA_AVAILABLE_STATUS);
    ASSERT_TRUE(is_matched(writer));
    ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
    EXPECT_TRUE(eventually([&] { return hook.calls == 1; }));
    EXPECT_EQ(result, DDS_RETCODE_OK);
    EXPECT_TRUE(is_matched(writer, 0));
}

// ---- What happens beside arriving samples -------------------------------------------------------

TEST(KoltListenerThread, EndpointsComeAndGoWhileSamplesArrive) {
    Node node(kDomain);
    Hook hook;
    hook.data = [](DDS_DataReader *reader) { take(reader); };
    DDS_DomainParticipantListener listener{};
    listener.subscriber_listener.reader_listener = hook.reader_listener();
    ASSERT_EQ(DDS_DomainParticipant_set_listener(node.participant, &listener, DDS_STATUS_MASK_ALL),
              DDS_RETCODE_OK);
    DDS_DataWriter *const writer = node.writer(one_sample_kept);
    {
        const Flood flood(writer);
        for (int round = 0; round < 200; ++round) {
            DDS_DataReader *const reader = node.reader(one_sample);
            ASSERT_NE(reader, nullptr);
            DDS_StatusCondition *const condition =
                DDS_Entity_get_statuscondition(DDS_DataReader_as_entity(reader));
            for (int i = 0; i < 20; ++i) {
                ASSERT_EQ(DDS_StatusCondition_set_enabled_statuses(
                              condition, i % 2 == 0 ? DDS_DATA_AVAILABLE_STATUS : 0),
                          DDS_RETCODE_OK);
            }
            ASSERT_EQ(DDS_Subscriber_delete_datareader(node.subscriber, reader), DDS_RETCODE_OK);
        }
    }
    EXPECT_EQ(DDS_DomainParticipant_set_listener(node.participant, nullptr, 0), DDS_RETCODE_OK);
}

// ---- What waits ---------------------------------------------------------------------------------

TEST(KoltListenerThread, DeletionAndReplacementWaitForTheCallback) {
    Node node(kDomain);
    DDS_DataWriter *const writer = node.writer(one_sample_kept);
    for (const bool deletes : {false, true}) {
        std::promise<void> entered, go_on;
        std::atomic<bool> ended{false};
        Hook hook;
        hook.data = [&](DDS_DataReader *reader) {
            take(reader);
            if (hook.calls == 0) {
                entered.set_value();
                go_on.get_future().wait();
                ended = true;
            }
        };
        const DDS_DataReaderListener listener = hook.reader_listener();
        DDS_DataReader *const reader =
            node.reader(one_sample, nullptr, &listener, DDS_DATA_AVAILABLE_STATUS);
        ASSERT_TRUE(is_matched(writer));
        ASSERT_EQ(write(writer, 1, 1, 1), DDS_RETCODE_OK);
        entered.get_future().wait();
        std::atomic<bool> returned{false};
        std::thread other([&] {
            if (deletes) {
                EXPECT_EQ(DDS_Subscriber_delete_datareader(node.subscriber, reader),
                          DDS_RETCODE_OK);
            } else {
                EXPECT_EQ(DDS_DataReader_set_listener(reader, nullptr, 0), DDS_RETCODE_OK);
            }
            EXPECT_TRUE(ended);
            returned = true;
        });
        // Writing goes on meanwhile: no thread of the engine is held up.
        EXPECT_EQ(write(writer, 1, 1, 2), DDS_RETCODE_OK);
        EXPECT_FALSE(returned);
        go_on.set_value();
        other.join();
        if (!deletes) {
            ASSERT_EQ(DDS_Subscriber_delete_datareader(node.subscriber, reader), DDS_RETCODE_OK);
        }
    }
}

TEST(KoltListenerThread, RemovalWaitsForADataRequest) {
    Node node(kDomain);
    Record<Message> live(message_type());
    struct Requests {
        Message *sample;
        std::promise<void> entered, go_on;
        std::atomic<bool> ended{false};
    } requests{live.get(), {}, {}, {}};
    DDS_DataWriterListener listener{};
    listener.listener_data = &requests;
    listener.on_data_request = [](void *data, DDS_DataWriter *, const DDS_Cookie_t *) -> void * {
        auto &r = *static_cast<Requests *>(data);
        r.entered.set_value();
        r.go_on.get_future().wait();
        r.ended = true;
        return r.sample;
    };
    DDS_DataWriter *const writer = node.writer([](DDS_DataWriterQos &qos) {
        DDS_PropertyQosPolicyHelper_assert_property(&qos.property, KOLT_DEFERRED_WRITE_PROPERTY,
                                                    "true", DDS_BOOLEAN_FALSE);
    });
    ASSERT_EQ(DDS_DataWriter_set_listener(writer, &listener, DDS_STATUS_MASK_NONE), DDS_RETCODE_OK);
    std::thread writing([&] {
        DDS_WriteParams_t params = DDS_WRITEPARAMS_DEFAULT;
        DDS_Cookie_from_pointer(&params.cookie, live.get());
        EXPECT_EQ(DDS_DataWriter_write_w_params(writer, live.get(), &params), DDS_RETCODE_OK);
    });
    requests.entered.get_future().wait();
    std::thread removing([&] {
        EXPECT_EQ(DDS_DataWriter_set_listener(writer, nullptr, 0), DDS_RETCODE_OK);
        EXPECT_TRUE(requests.ended);
    });
    // From here on the removal has nothing left to do but to wait.
    EXPECT_TRUE(
        eventually([&] { return DDS_DataWriter_get_listener(writer).on_data_request == nullptr; }));
    requests.go_on.set_value();
    removing.join();
    writing.join();
}

// A write that waits for room holds the engine's lock of its entity throughout.
TEST(KoltListenerThread, StatusesCanBeReadBesideABlockedWrite) {
    Node node(kDomain);
    DDS_DataWriter *const writer = node.writer([](DDS_DataWriterQos &qos) {
        qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        qos.reliability.max_blocking_time = {20, 0};
    });
    node.reader([](DDS_DataReaderQos &qos) {
        qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        qos.resource_limits.max_samples = 1;
        qos.resource_limits.max_samples_per_instance = 1;
    });
    ASSERT_TRUE(is_matched(writer));
    std::atomic<bool> blocked{true};
    std::thread writing([&] {
        write(writer, 1, 1, 1);
        write(writer, 1, 1, 2);
        blocked = false;
    });
    DDS_DataReader *const reader = DDS_Subscriber_lookup_datareader(
        node.subscriber, DDS_TopicDescription_get_name(DDS_Topic_as_topicdescription(node.topic)));
    ASSERT_TRUE(eventually([&] {
        return (DDS_Entity_get_status_changes(DDS_DataReader_as_entity(reader)) &
                DDS_SAMPLE_REJECTED_STATUS) != 0;
    }));
    DDS_PublicationMatchedStatus status{};
    EXPECT_EQ(DDS_DataWriter_get_publication_matched_status(writer, &status), DDS_RETCODE_OK);
    EXPECT_EQ(status.current_count, 1);
    EXPECT_TRUE(blocked);
    while (blocked) {
        take(reader);
    }
    writing.join();
}

}  // namespace
