// SPDX-License-Identifier: Apache-2.0
// The lives of instances between our writers and readers and idlc's, in processes of their own: an
// instance disposed or unregistered on one side is so on the other, with the right key.
#include <gtest/gtest.h>
#include <kolt/dds_c.h>
#include <vur_dl/DDSEntities.h>
#include <vur_dl/distlogSupport.h>

#include <algorithm>
#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "live_logger.h"
#include "support/platform/pubsub.h"

namespace {

using interop::Fields;
using support::ChildProcess;

// A participant with the type of log messages and a topic that only this process and its peers
// know. Deletes everything with the scope.
class Node {
  public:
    explicit Node(DDS_DomainId_t domain) : topic_name(support::own("instances")) {
        participant = DDS_DomainParticipantFactory_create_participant(
            DDS_DomainParticipantFactory_get_instance(), domain, nullptr, nullptr,
            DDS_STATUS_MASK_NONE);
        EXPECT_EQ(VUR_DL_LogMessageTypeSupport_register_type(participant, VUR_DL_LOG_TYPE_NAME),
                  DDS_RETCODE_OK);
        topic = DDS_DomainParticipant_create_topic(participant, topic_name.c_str(),
                                                   VUR_DL_LOG_TYPE_NAME, nullptr, nullptr,
                                                   DDS_STATUS_MASK_NONE);
        EXPECT_NE(topic, nullptr);
    }
    ~Node() {
        EXPECT_EQ(DDS_DomainParticipant_delete_contained_entities(participant), DDS_RETCODE_OK);
        EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(
                      DDS_DomainParticipantFactory_get_instance(), participant),
                  DDS_RETCODE_OK);
    }
    Node(const Node &) = delete;
    Node &operator=(const Node &) = delete;

    VUR_DL_LogMessageDataWriter *writer() const {
        support::WriterQos qos;
        qos->reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        qos->durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
        qos->history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        qos->writer_data_lifecycle.autodispose_unregistered_instances = DDS_BOOLEAN_FALSE;
        const DDS_DataRepresentationId_t xcdr2 = DDS_XCDR2_DATA_REPRESENTATION;
        EXPECT_TRUE(DDS_ShortSeq_from_array(&qos->representation.value, &xcdr2, 1));
        return VUR_DL_LogMessageDataWriter_narrow(DDS_Publisher_create_datawriter(
            DDS_DomainParticipant_create_publisher(participant, nullptr, nullptr,
                                                   DDS_STATUS_MASK_NONE),
            topic, qos.get(), nullptr, DDS_STATUS_MASK_NONE));
    }
    VUR_DL_LogMessageDataReader *reader() const {
        support::ReaderQos qos;
        qos->reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        qos->history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        return VUR_DL_LogMessageDataReader_narrow(DDS_Subscriber_create_datareader(
            DDS_DomainParticipant_create_subscriber(participant, nullptr, nullptr,
                                                    DDS_STATUS_MASK_NONE),
            DDS_Topic_as_topicdescription(topic), qos.get(), nullptr, DDS_STATUS_MASK_NONE));
    }

    std::string topic_name;
    DDS_DomainParticipant *participant = nullptr;
    DDS_Topic *topic = nullptr;
};

// A sample on the stack.
class Message {
  public:
    Message(int host, int app, int level, long long id = 0, const char *text = "") {
        EXPECT_TRUE(VUR_DL_LogMessage_initialize(&message_));
        message_.hostAndAppId = {host, app};
        message_.level = level;
        message_.messageId = id;
        EXPECT_NE(DDS_String_replace(&message_.category, "pump"), nullptr);
        EXPECT_NE(DDS_String_replace(&message_.message, text), nullptr);
    }
    ~Message() { VUR_DL_LogMessage_finalize(&message_); }
    Message(const Message &) = delete;
    Message &operator=(const Message &) = delete;
    VUR_DL_LogMessage *get() { return &message_; }
    VUR_DL_LogMessage *operator->() { return &message_; }

  private:
    VUR_DL_LogMessage message_;
};

// ---- From us to idlc ----------------------------------------------------------------------------

class InstancesToIdlc : public ::testing::Test {
  protected:
    void start(int domain) {
        node_.emplace(domain);
        writer_ = node_->writer();
        ASSERT_NE(writer_, nullptr);
        monitor_.emplace(std::vector<std::string>{support::helper_path("peer_monitor"),
                                                  std::to_string(domain), node_->topic_name});
        ASSERT_TRUE(support::is_matched(VUR_DL_LogMessageDataWriter_as_datawriter(writer_)));
    }
    // The next line about messages or instances.
    Fields next() {
        return interop::read_until(*monitor_,
                                   [](const Fields &fields) { return fields[0] != "matched"; });
    }

    std::optional<Node> node_;
    VUR_DL_LogMessageDataWriter *writer_ = nullptr;
    std::optional<ChildProcess> monitor_;
};

TEST_F(InstancesToIdlc, DisposeAndUnregisterArriveWithTheirKeys) {
    ASSERT_NO_FATAL_FAILURE(start(147));
    Message first(0x01020304, -5, 300, 1, "hot");
    Message second(-2147483647 - 1, 2147483647, -1, 2, "cold");
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_write(writer_, first.get(), DDS_HANDLE_NIL),
              DDS_RETCODE_OK);
    EXPECT_EQ(next(), (Fields{"sample", "alive", "16909060", "-5", "300", "1", "pump", "hot"}));
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_write(writer_, second.get(), DDS_HANDLE_NIL),
              DDS_RETCODE_OK);
    EXPECT_EQ(next(),
              (Fields{"sample", "alive", "-2147483648", "2147483647", "-1", "2", "pump", "cold"}));

    ASSERT_EQ(VUR_DL_LogMessageDataWriter_dispose(writer_, first.get(), DDS_HANDLE_NIL),
              DDS_RETCODE_OK);
    EXPECT_EQ(next(), (Fields{"instance", "disposed", "16909060", "-5", "300"}));
    ASSERT_EQ(
        VUR_DL_LogMessageDataWriter_unregister_instance(writer_, second.get(), DDS_HANDLE_NIL),
        DDS_RETCODE_OK);
    EXPECT_EQ(next(), (Fields{"instance", "no_writers", "-2147483648", "2147483647", "-1"}));

    // Both live again.
    first->messageId = 3;
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_write(writer_, first.get(), DDS_HANDLE_NIL),
              DDS_RETCODE_OK);
    EXPECT_EQ(next(), (Fields{"sample", "alive", "16909060", "-5", "300", "3", "pump", "hot"}));
    second->messageId = 4;
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_write(writer_, second.get(), DDS_HANDLE_NIL),
              DDS_RETCODE_OK);
    EXPECT_EQ(next(),
              (Fields{"sample", "alive", "-2147483648", "2147483647", "-1", "4", "pump", "cold"}));
    interop::dismiss(*monitor_);
}

TEST_F(InstancesToIdlc, AHandleIsAsGoodAsAKey) {
    ASSERT_NO_FATAL_FAILURE(start(147));
    Message message(1, 2, 300, 1, "hot");
    const DDS_InstanceHandle_t handle =
        VUR_DL_LogMessageDataWriter_register_instance(writer_, message.get());
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_write(writer_, message.get(), handle), DDS_RETCODE_OK);
    EXPECT_EQ(next()[0], "sample");
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_dispose(writer_, message.get(), handle), DDS_RETCODE_OK);
    EXPECT_EQ(next(), (Fields{"instance", "disposed", "1", "2", "300"}));
    // A disposed instance that loses its writer stays disposed.
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_unregister_instance(writer_, message.get(), handle),
              DDS_RETCODE_OK);
    Message other(1, 2, 400, 2, "cold");
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_write(writer_, other.get(), DDS_HANDLE_NIL),
              DDS_RETCODE_OK);
    EXPECT_EQ(next(), (Fields{"sample", "alive", "1", "2", "400", "2", "pump", "cold"}));
    interop::dismiss(*monitor_);
}

// ---- From idlc to us ----------------------------------------------------------------------------

struct Received {
    int host = 0;
    int app = 0;
    int level = 0;
    long long id = 0;
    std::string category;
    std::string message;
    DDS_SampleInfo info{};
};

class InstancesFromIdlc : public ::testing::Test {
  protected:
    void start(int domain) {
        node_.emplace(domain);
        reader_ = node_->reader();
        ASSERT_NE(reader_, nullptr);
        source_.emplace(std::vector<std::string>{support::helper_path("peer_writer"),
                                                 std::to_string(domain), node_->topic_name});
        ASSERT_TRUE(run("matched 1"));
        ASSERT_TRUE(support::is_matched(VUR_DL_LogMessageDataReader_as_datareader(reader_)));
    }
    bool run(const std::string &line) {
        source_->say(line);
        const std::optional<std::string> answer = source_->read_line();
        EXPECT_EQ(answer.value_or("nothing"), "ok") << line;
        return answer == "ok";
    }
    std::vector<Received> take_all() {
        std::vector<Received> all;
        VUR_DL_LogMessageSeq samples = DDS_SEQUENCE_INITIALIZER;
        DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
        if (VUR_DL_LogMessageDataReader_take(reader_, &samples, &infos, DDS_LENGTH_UNLIMITED,
                                             DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
                                             DDS_ANY_INSTANCE_STATE) != DDS_RETCODE_OK) {
            return all;
        }
        for (DDS_Long i = 0; i < static_cast<DDS_Long>(VUR_DL_LogMessageSeq_get_length(&samples));
             ++i) {
            all.push_back(convert(*VUR_DL_LogMessageSeq_get_reference(&samples, i),
                                  *DDS_SampleInfoSeq_get_reference(&infos, i)));
        }
        EXPECT_EQ(VUR_DL_LogMessageDataReader_return_loan(reader_, &samples, &infos),
                  DDS_RETCODE_OK);
        return all;
    }
    // Waits for the one sample that the source's last line has caused.
    Received take_one() {
        std::vector<Received> all;
        EXPECT_TRUE(support::eventually([&] { return !(all = take_all()).empty(); }));
        EXPECT_EQ(all.size(), 1U);
        return all.empty() ? Received{} : all[0];
    }
    // Without data the sample still has the key of its instance.
    static Received convert(const VUR_DL_LogMessage &sample, const DDS_SampleInfo &info) {
        Received received{sample.hostAndAppId.rtps_host_id,
                          sample.hostAndAppId.rtps_app_id,
                          sample.level,
                          0,
                          "",
                          "",
                          info};
        if (info.valid_data) {
            received.id = sample.messageId;
            received.category = sample.category;
            received.message = sample.message;
        }
        return received;
    }
    // The handle stands for the key.
    void expect_handle(DDS_InstanceHandle_t handle, int host, int app, int level) const {
        Message key(0, 0, 0);
        EXPECT_EQ(VUR_DL_LogMessageDataReader_get_key_value(reader_, key.get(), handle),
                  DDS_RETCODE_OK);
        EXPECT_EQ(key->hostAndAppId.rtps_host_id, host);
        EXPECT_EQ(key->hostAndAppId.rtps_app_id, app);
        EXPECT_EQ(key->level, level);
        EXPECT_EQ(VUR_DL_LogMessageDataReader_lookup_instance(reader_, key.get()), handle);
    }
    static void expect_key(const Received &received, int host, int app, int level) {
        EXPECT_EQ(received.host, host);
        EXPECT_EQ(received.app, app);
        EXPECT_EQ(received.level, level);
    }
    static void expect_state(const Received &received, bool valid, DDS_InstanceStateKind instance,
                             DDS_ViewStateKind view) {
        EXPECT_EQ(received.info.valid_data != DDS_BOOLEAN_FALSE, valid);
        EXPECT_EQ(received.info.instance_state, instance);
        EXPECT_EQ(received.info.view_state, view);
        EXPECT_EQ(received.info.sample_state, DDS_NOT_READ_SAMPLE_STATE);
    }

    std::optional<Node> node_;
    VUR_DL_LogMessageDataReader *reader_ = nullptr;
    std::optional<ChildProcess> source_;
};

TEST_F(InstancesFromIdlc, ALifeIsToldByTheSampleInfos) {
    ASSERT_NO_FATAL_FAILURE(start(148));
    ASSERT_TRUE(run("write -7 8 300 9000000000 pump hot"));
    Received received = take_one();
    expect_key(received, -7, 8, 300);
    expect_state(received, true, DDS_ALIVE_INSTANCE_STATE, DDS_NEW_VIEW_STATE);
    EXPECT_EQ(received.id, 9000000000);
    EXPECT_EQ(received.category, "pump");
    EXPECT_EQ(received.message, "hot");
    const DDS_InstanceHandle_t instance = received.info.instance_handle;
    const DDS_InstanceHandle_t publication = received.info.publication_handle;
    EXPECT_NE(instance, DDS_HANDLE_NIL);
    EXPECT_NE(publication, DDS_HANDLE_NIL);

    ASSERT_TRUE(run("write -7 8 300 2 pump warm"));
    received = take_one();
    expect_state(received, true, DDS_ALIVE_INSTANCE_STATE, DDS_NOT_NEW_VIEW_STATE);
    EXPECT_EQ(received.info.instance_handle, instance);

    ASSERT_TRUE(run("dispose -7 8 300"));
    received = take_one();
    expect_key(received, -7, 8, 300);
    expect_state(received, false, DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE, DDS_NOT_NEW_VIEW_STATE);
    EXPECT_EQ(received.info.instance_handle, instance);
    EXPECT_EQ(received.info.publication_handle, publication);
    expect_handle(instance, -7, 8, 300);

    // Alive again: a new generation, which is a new instance to the view.
    ASSERT_TRUE(run("write -7 8 300 3 pump again"));
    received = take_one();
    expect_state(received, true, DDS_ALIVE_INSTANCE_STATE, DDS_NEW_VIEW_STATE);
    EXPECT_EQ(received.info.disposed_generation_count, 1);
    EXPECT_EQ(received.info.no_writers_generation_count, 0);

    ASSERT_TRUE(run("unregister -7 8 300"));
    received = take_one();
    expect_key(received, -7, 8, 300);
    expect_state(received, false, DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE, DDS_NOT_NEW_VIEW_STATE);
    EXPECT_EQ(received.info.disposed_generation_count, 1);
    interop::dismiss(*source_);
}

TEST_F(InstancesFromIdlc, KeysAreKeptApart) {
    ASSERT_NO_FATAL_FAILURE(start(149));
    const int keys[][3] = {{1, 2, 100}, {1, 2, 200}, {2, 1, 100}, {-1, 0, 100}};
    std::vector<DDS_InstanceHandle_t> handles;
    for (const auto &key : keys) {
        char line[80];
        std::snprintf(line, sizeof line, "write %d %d %d 1 c m", key[0], key[1], key[2]);
        ASSERT_TRUE(run(line));
        const Received received = take_one();
        expect_key(received, key[0], key[1], key[2]);
        EXPECT_EQ(received.info.view_state, DDS_NEW_VIEW_STATE);
        handles.push_back(received.info.instance_handle);
        expect_handle(received.info.instance_handle, key[0], key[1], key[2]);
    }
    // Only the one that is named goes.
    ASSERT_TRUE(run("dispose 2 1 100"));
    const Received gone = take_one();
    EXPECT_EQ(gone.info.instance_handle, handles[2]);
    expect_key(gone, 2, 1, 100);
    // The end of the writer is that of the others.
    interop::dismiss(*source_);
    std::vector<Received> orphans;
    ASSERT_TRUE(support::eventually([&] {
        for (const Received &received : take_all()) {
            orphans.push_back(received);
        }
        return orphans.size() >= 3;
    }));
    EXPECT_EQ(orphans.size(), 3U);
    for (const Received &orphan : orphans) {
        EXPECT_FALSE(orphan.info.valid_data);
        EXPECT_EQ(orphan.info.instance_state, DDS_NOT_ALIVE_NO_WRITERS_INSTANCE_STATE);
        const auto handle = std::find(handles.begin(), handles.end(), orphan.info.instance_handle);
        ASSERT_NE(handle, handles.end());
        const auto index = handle - handles.begin();
        EXPECT_NE(index, 2);
        expect_key(orphan, keys[index][0], keys[index][1], keys[index][2]);
    }
}

}  // namespace
