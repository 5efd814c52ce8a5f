// Type support, typed writers and typed readers, over DDS within one participant.

#include <gtest/gtest.h>
#include <kolt/condition.h>
#include <vur_dl/distlogSupport.h>

#include <array>
#include <cstring>
#include <set>
#include <string>

#include "support/log_capture.h"

namespace {

constexpr DDS_DomainId_t kDomain = 41;
constexpr DDS_Duration_t kDeadline = {20, 0};

// ---- Without entities ---------------------------------------------------------------------------

TEST(DistlogTypeSupport, Registration) {
    EXPECT_EQ(VUR_DL_LogMessageTypeSupport_register_type(nullptr, "name"), DDS_RETCODE_ERROR);
    EXPECT_EQ(VUR_DL_LogMessageTypeSupport_unregister_type(nullptr, "name"), DDS_RETCODE_ERROR);
    EXPECT_STREQ(VUR_DL_LogMessageTypeSupport_get_type_name(), "VUR::DL::LogMessage");
    EXPECT_STREQ(VUR_DL_ADMIN_StateTypeSupport_get_type_name(), "VUR::DL::ADMIN::State");
    EXPECT_STREQ(VUR_DL_ADMIN_CommandRequestTypeSupport_get_type_name(),
                 "VUR::DL::ADMIN::CommandRequest");
    EXPECT_STREQ(VUR_DL_ADMIN_CommandResponseTypeSupport_get_type_name(),
                 "VUR::DL::ADMIN::CommandResponse");
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_get_typecode(), VUR_DL_ADMIN_State_get_typecode());
    VUR_DL_LogMessageTypeSupport_finalize();
}

TEST(DistlogTypeSupport, ResultsAreReturnCodes) {
    VUR_DL_ADMIN_State state = {};
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_initialize_data(nullptr), DDS_RETCODE_ERROR);
    ASSERT_EQ(VUR_DL_ADMIN_StateTypeSupport_initialize_data(&state), DDS_RETCODE_OK);
    VUR_DL_ADMIN_State *const copy = VUR_DL_ADMIN_StateTypeSupport_create_data();
    ASSERT_NE(copy, nullptr);
    std::strcpy(state.applicationKind, "pump");
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_copy_data(copy, &state), DDS_RETCODE_OK);
    EXPECT_STREQ(copy->applicationKind, "pump");
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_copy_data(nullptr, &state), DDS_RETCODE_ERROR);
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_delete_data(copy), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_finalize_data(&state), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_initialize_data_ex(&state, 1, 0), DDS_RETCODE_OK);
    EXPECT_EQ(state.applicationKind, nullptr);
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_finalize_data_ex(&state, 1), DDS_RETCODE_OK);
}

TEST(DistlogTypeSupport, BytesAndText) {
    VUR_DL_LogMessage *const message = VUR_DL_LogMessageTypeSupport_create_data_ex(1);
    VUR_DL_LogMessage *const read = VUR_DL_LogMessageTypeSupport_create_data();
    ASSERT_NE(message, nullptr);
    ASSERT_NE(read, nullptr);
    std::strcpy(message->message, "bytes");
    std::array<char, 512> buffer = {};
    DDS_UnsignedLong length = buffer.size();
    ASSERT_TRUE(
        VUR_DL_LogMessageTypeSupport_serialize_data_to_cdr_buffer(buffer.data(), &length, message));
    ASSERT_TRUE(
        VUR_DL_LogMessageTypeSupport_deserialize_data_from_cdr_buffer(read, buffer.data(), length));
    EXPECT_STREQ(read->message, "bytes");
    length = buffer.size();
    ASSERT_TRUE(VUR_DL_LogMessageTypeSupport_serialize_data_to_cdr_buffer_ex(
        buffer.data(), &length, message, DDS_XCDR2_DATA_REPRESENTATION));
    EXPECT_EQ(buffer[1], KOLT_ENCAPSULATION_PL_CDR2_LE);
    const DDS_PrintFormatProperty property = {DDS_XML_PRINT_FORMAT, 0, 0, 1};
    length = buffer.size();
    ASSERT_EQ(
        VUR_DL_LogMessageTypeSupport_data_to_string(message, buffer.data(), &length, &property),
        DDS_RETCODE_OK);
    EXPECT_EQ(std::string(buffer.data()).rfind("<LogMessage><hostAndAppId>", 0), 0U);
    testing::internal::CaptureStdout();
    VUR_DL_LogMessageTypeSupport_print_data(message);
    EXPECT_EQ(testing::internal::GetCapturedStdout().front(), '\n') << "no description";
    EXPECT_EQ(VUR_DL_LogMessageTypeSupport_delete_data_ex(read, 1), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_LogMessageTypeSupport_delete_data(message), DDS_RETCODE_OK);
}

// ---- With entities ------------------------------------------------------------------------------

// One participant with a reliable, transient-local writer and reader of messages.
class DistlogEndpoints : public testing::Test {
  protected:
    void SetUp() override {
        factory_ = DDS_DomainParticipantFactory_get_instance();
        participant_ = DDS_DomainParticipantFactory_create_participant(
            factory_, kDomain, &DDS_PARTICIPANT_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
        ASSERT_NE(participant_, nullptr);
        publisher_ = DDS_DomainParticipant_create_publisher(
            participant_, &DDS_PUBLISHER_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
        subscriber_ = DDS_DomainParticipant_create_subscriber(
            participant_, &DDS_SUBSCRIBER_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
        ASSERT_EQ(
            VUR_DL_LogMessageTypeSupport_register_type(participant_, "com::vur::dl::LogMessage"),
            DDS_RETCODE_OK);
        topic_ = makeTopic("messages", "com::vur::dl::LogMessage");
        ASSERT_NE(topic_, nullptr);
        writer_ = VUR_DL_LogMessageDataWriter_narrow(makeWriter(topic_));
        reader_ = VUR_DL_LogMessageDataReader_narrow(makeReader(topic_));
        ASSERT_NE(writer_, nullptr);
        ASSERT_NE(reader_, nullptr);
        message_ = VUR_DL_LogMessageTypeSupport_create_data();
    }
    void TearDown() override {
        VUR_DL_LogMessageTypeSupport_delete_data(message_);
        if (participant_ != nullptr) {
            EXPECT_EQ(DDS_DomainParticipant_delete_contained_entities(participant_),
                      DDS_RETCODE_OK);
            EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory_, participant_),
                      DDS_RETCODE_OK);
        }
    }

    DDS_Topic *makeTopic(const char *name, const char *type_name) {
        return DDS_DomainParticipant_create_topic(
            participant_, name, type_name, &DDS_TOPIC_QOS_DEFAULT, nullptr, DDS_STATUS_MASK_NONE);
    }
    DDS_DataWriter *makeWriter(DDS_Topic *topic) {
        DDS_DataWriterQos qos;
        DDS_DataWriterQos_initialize(&qos);
        DDS_Publisher_get_default_datawriter_qos(publisher_, &qos);
        qos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        qos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
        qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        DDS_DataWriter *const writer =
            DDS_Publisher_create_datawriter(publisher_, topic, &qos, nullptr, DDS_STATUS_MASK_NONE);
        DDS_DataWriterQos_finalize(&qos);
        return writer;
    }
    DDS_DataReader *makeReader(DDS_Topic *topic) {
        DDS_DataReaderQos qos;
        DDS_DataReaderQos_initialize(&qos);
        DDS_Subscriber_get_default_datareader_qos(subscriber_, &qos);
        qos.reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        qos.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS;
        qos.history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        DDS_DataReader *const reader = DDS_Subscriber_create_datareader(
            subscriber_, DDS_Topic_as_topicdescription(topic), &qos, nullptr, DDS_STATUS_MASK_NONE);
        DDS_DataReaderQos_finalize(&qos);
        return reader;
    }

    void write(DDS_Long level, const char *text) {
        message_->level = level;
        std::strcpy(message_->message, text);
        ASSERT_EQ(VUR_DL_LogMessageDataWriter_write(writer_, message_, DDS_HANDLE_NIL),
                  DDS_RETCODE_OK);
    }
    // Waits until the reader has something that was not read.
    void waitForData(DDS_DataReader *reader,
                     DDS_InstanceStateMask instance_states = DDS_ANY_INSTANCE_STATE) {
        DDS_ReadCondition *const condition = DDS_DataReader_create_readcondition(
            reader, DDS_NOT_READ_SAMPLE_STATE, DDS_ANY_VIEW_STATE, instance_states);
        ASSERT_NE(condition, nullptr);
        DDS_WaitSet *const waitset = DDS_WaitSet_new();
        DDS_ConditionSeq active = DDS_SEQUENCE_INITIALIZER;
        DDS_Condition *const any = DDS_ReadCondition_as_condition(condition);
        ASSERT_EQ(DDS_WaitSet_attach_condition(waitset, any), DDS_RETCODE_OK);
        EXPECT_EQ(DDS_WaitSet_wait(waitset, &active, &kDeadline), DDS_RETCODE_OK);
        DDS_ConditionSeq_finalize(&active);
        DDS_WaitSet_detach_condition(waitset, any);
        DDS_WaitSet_delete(waitset);
        DDS_DataReader_delete_readcondition(reader, condition);
    }
    void waitForMessages() { waitForData(untypedReader()); }
    DDS_DataReader *untypedReader() { return VUR_DL_LogMessageDataReader_as_datareader(reader_); }
    DDS_ReturnCode_t take(VUR_DL_LogMessageSeq *data, DDS_SampleInfoSeq *info,
                          DDS_Long maximum = DDS_LENGTH_UNLIMITED) {
        return VUR_DL_LogMessageDataReader_take(reader_, data, info, maximum, DDS_ANY_SAMPLE_STATE,
                                                DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    }
    DDS_ReturnCode_t read(VUR_DL_LogMessageSeq *data, DDS_SampleInfoSeq *info,
                          DDS_Long maximum = DDS_LENGTH_UNLIMITED) {
        return VUR_DL_LogMessageDataReader_read(reader_, data, info, maximum, DDS_ANY_SAMPLE_STATE,
                                                DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    }
    void expectLogged(const char *text) {
        const std::string logged = log_.take();
        EXPECT_NE(logged.find(text), std::string::npos) << "logged: " << logged;
    }

    DDS_DomainParticipantFactory *factory_ = nullptr;
    DDS_DomainParticipant *participant_ = nullptr;
    DDS_Publisher *publisher_ = nullptr;
    DDS_Subscriber *subscriber_ = nullptr;
    DDS_Topic *topic_ = nullptr;
    VUR_DL_LogMessageDataWriter *writer_ = nullptr;
    VUR_DL_LogMessageDataReader *reader_ = nullptr;
    VUR_DL_LogMessage *message_ = nullptr;
    VUR_DL_LogMessageSeq data_ = DDS_SEQUENCE_INITIALIZER;
    DDS_SampleInfoSeq info_ = DDS_SEQUENCE_INITIALIZER;
    support::LogCapture log_;
};

TEST_F(DistlogEndpoints, NarrowingChecksTheType) {
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_as_datawriter(writer_), &writer_->_parent);
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_narrow(nullptr), nullptr);
    expectLogged("null writer");
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_as_datawriter(nullptr), nullptr);
    expectLogged("null writer");
    EXPECT_EQ(VUR_DL_LogMessageDataReader_narrow(nullptr), nullptr);
    expectLogged("null reader");
    EXPECT_EQ(VUR_DL_LogMessageDataReader_as_datareader(nullptr), nullptr);
    expectLogged("null reader");

    ASSERT_EQ(VUR_DL_ADMIN_StateTypeSupport_register_type(participant_, "any name"),
              DDS_RETCODE_OK);
    DDS_Topic *const topic = makeTopic("states", "any name");
    DDS_DataWriter *const writer = makeWriter(topic);
    DDS_DataReader *const reader = makeReader(topic);
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_narrow(writer), nullptr);
    expectLogged("wrong type writer");
    EXPECT_EQ(VUR_DL_LogMessageDataReader_narrow(reader), nullptr);
    expectLogged("wrong type reader");
    EXPECT_NE(VUR_DL_ADMIN_StateDataWriter_narrow(writer), nullptr) << "whatever its name";
    EXPECT_NE(VUR_DL_ADMIN_StateDataReader_narrow(reader), nullptr);
}

TEST_F(DistlogEndpoints, RegistrationIsTheParticipants) {
    EXPECT_EQ(VUR_DL_LogMessageTypeSupport_register_type(participant_, "com::vur::dl::LogMessage"),
              DDS_RETCODE_OK)
        << "once more";
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_register_type(participant_, "com::vur::dl::LogMessage"),
              DDS_RETCODE_PRECONDITION_NOT_MET)
        << "the name is taken";
    EXPECT_EQ(
        VUR_DL_LogMessageTypeSupport_unregister_type(participant_, "com::vur::dl::LogMessage"),
        DDS_RETCODE_PRECONDITION_NOT_MET)
        << "a topic has it";
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_register_type(participant_, "spare"), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_ADMIN_StateTypeSupport_unregister_type(participant_, "spare"), DDS_RETCODE_OK);
}

TEST_F(DistlogEndpoints, WriterHasNoLoans) {
    VUR_DL_LogMessage *sample = message_;
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_get_loan(writer_, &sample), DDS_RETCODE_UNSUPPORTED);
    EXPECT_EQ(sample, message_);
    expectLogged("get_loan() only supported for topic-types with transfer mode shmem-ref");
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_discard_loan(writer_, sample), DDS_RETCODE_UNSUPPORTED);
    expectLogged("discard_loan() only supported for topic-types with transfer mode shmem-ref");
}

TEST_F(DistlogEndpoints, WriterMakesSamples) {
    const DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    VUR_DL_LogMessage *sample = VUR_DL_LogMessageDataWriter_create_data(writer_);
    ASSERT_NE(sample, nullptr);
    EXPECT_STREQ(sample->message, "");
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_delete_data(writer_, sample), DDS_RETCODE_OK);
    sample = VUR_DL_LogMessageDataWriter_create_data_w_params(writer_, &allocation);
    ASSERT_NE(sample, nullptr);
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_delete_data_w_params(writer_, sample, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    expectLogged("dealloc_params");
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_delete_data_w_params(writer_, sample, &deallocation),
              DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_create_data(nullptr), nullptr);
    expectLogged("writer");
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_create_data_w_params(writer_, nullptr), nullptr);
    expectLogged("alloc_params");
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_delete_data(writer_, nullptr), DDS_RETCODE_BAD_PARAMETER);
    expectLogged("sample");
}

TEST_F(DistlogEndpoints, TakesALoanAndGivesItBack) {
    write(100, "first");
    write(100, "second");
    waitForMessages();
    ASSERT_EQ(take(&data_, &info_), DDS_RETCODE_OK);
    ASSERT_EQ(VUR_DL_LogMessageSeq_get_length(&data_), 2U);
    EXPECT_FALSE(VUR_DL_LogMessageSeq_has_ownership(&data_));
    EXPECT_NE(VUR_DL_LogMessageSeq_get_discontiguous_buffer(&data_), nullptr);
    EXPECT_STREQ(VUR_DL_LogMessageSeq_get_reference(&data_, 0)->message, "first");
    EXPECT_STREQ(VUR_DL_LogMessageSeq_get_reference(&data_, 1)->message, "second");
    EXPECT_TRUE(DDS_SampleInfoSeq_get_reference(&info_, 1)->valid_data);
    EXPECT_EQ(take(&data_, &info_), DDS_RETCODE_PRECONDITION_NOT_MET) << "a loan is out";
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_length(&data_, 1)) << "shortened by the application";
    EXPECT_EQ(VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, &info_), DDS_RETCODE_OK);
    EXPECT_TRUE(VUR_DL_LogMessageSeq_has_ownership(&data_));
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_maximum(&data_), 0U);
    EXPECT_TRUE(DDS_SampleInfoSeq_has_ownership(&info_));
    EXPECT_EQ(take(&data_, &info_), DDS_RETCODE_NO_DATA);
}

TEST_F(DistlogEndpoints, ReadLeavesTheSamples) {
    write(100, "stays");
    waitForMessages();
    for (int i = 0; i < 2; ++i) {
        ASSERT_EQ(read(&data_, &info_), DDS_RETCODE_OK);
        EXPECT_EQ(DDS_SampleInfoSeq_get_reference(&info_, 0)->sample_state,
                  i == 0 ? DDS_NOT_READ_SAMPLE_STATE : DDS_READ_SAMPLE_STATE);
        ASSERT_EQ(VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, &info_), DDS_RETCODE_OK);
    }
}

TEST_F(DistlogEndpoints, CopiesIntoTheCallersBuffer) {
    for (int i = 0; i < 3; ++i) {
        write(200, std::to_string(i).c_str());
    }
    waitForMessages();
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_maximum(&data_, 2));
    ASSERT_TRUE(DDS_SampleInfoSeq_set_maximum(&info_, 2));
    ASSERT_EQ(take(&data_, &info_), DDS_RETCODE_OK);
    ASSERT_EQ(VUR_DL_LogMessageSeq_get_length(&data_), 2U) << "as many as there is room for";
    EXPECT_TRUE(VUR_DL_LogMessageSeq_has_ownership(&data_));
    EXPECT_STREQ(VUR_DL_LogMessageSeq_get_reference(&data_, 1)->message, "1");
    EXPECT_EQ(VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, &info_), DDS_RETCODE_OK)
        << "nothing was lent";
    ASSERT_EQ(take(&data_, &info_), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_length(&data_), 1U);
    EXPECT_EQ(take(&data_, &info_), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_length(&data_), 0U);
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_maximum(&data_), 2U);
    VUR_DL_LogMessageSeq_finalize(&data_);
    DDS_SampleInfoSeq_finalize(&info_);
}

TEST_F(DistlogEndpoints, WrongCallsAreRefused) {
    EXPECT_EQ(take(nullptr, &info_), DDS_RETCODE_BAD_PARAMETER);
    expectLogged("received_data");
    EXPECT_EQ(take(&data_, nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(take(&data_, &info_, 0), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_LogMessageDataReader_take_w_condition(reader_, &data_, &info_, 1, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_LogMessageDataReader_return_loan(reader_, nullptr, &info_),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    std::array<VUR_DL_LogMessage *, 1> pointers = {message_};
    ASSERT_TRUE(VUR_DL_LogMessageSeq_loan_discontiguous(&data_, pointers.data(), 1, 1));
    EXPECT_EQ(VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, &info_),
              DDS_RETCODE_PRECONDITION_NOT_MET)
        << "not lent by the reader";
    EXPECT_FALSE(VUR_DL_LogMessageSeq_has_ownership(&data_));
    VUR_DL_LogMessageSeq_unloan(&data_);
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_write(writer_, nullptr, DDS_HANDLE_NIL),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_write(nullptr, message_, DDS_HANDLE_NIL),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_SampleInfo sample_info = {};
    EXPECT_EQ(VUR_DL_LogMessageDataReader_take_next_sample(reader_, nullptr, &sample_info),
              DDS_RETCODE_BAD_PARAMETER);
}

TEST_F(DistlogEndpoints, NextSample) {
    DDS_SampleInfo sample_info = {};
    VUR_DL_LogMessage *const received = VUR_DL_LogMessageTypeSupport_create_data();
    EXPECT_EQ(VUR_DL_LogMessageDataReader_read_next_sample(reader_, received, &sample_info),
              DDS_RETCODE_NO_DATA);
    write(300, "next");
    waitForMessages();
    ASSERT_EQ(VUR_DL_LogMessageDataReader_read_next_sample(reader_, received, &sample_info),
              DDS_RETCODE_OK);
    EXPECT_STREQ(received->message, "next");
    EXPECT_EQ(VUR_DL_LogMessageDataReader_take_next_sample(reader_, received, &sample_info),
              DDS_RETCODE_NO_DATA)
        << "it was read already";
    VUR_DL_LogMessageTypeSupport_delete_data(received);
}

TEST_F(DistlogEndpoints, TimeStampsAndParameters) {
    const DDS_Time_t time = {1700000000, 123456789};
    message_->level = 1;
    ASSERT_EQ(
        VUR_DL_LogMessageDataWriter_write_w_timestamp(writer_, message_, DDS_HANDLE_NIL, &time),
        DDS_RETCODE_OK);
    DDS_WriteParams_t params = DDS_WRITEPARAMS_DEFAULT;
    params.source_timestamp = {1700000001, 1};
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_write_w_params(writer_, message_, &params),
              DDS_RETCODE_OK);
    waitForMessages();
    ASSERT_EQ(take(&data_, &info_), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_SampleInfoSeq_get_length(&info_), 2U);
    const DDS_SampleInfo &first = *DDS_SampleInfoSeq_get_reference(&info_, 0);
    EXPECT_EQ(first.source_timestamp.sec, time.sec);
    EXPECT_EQ(first.source_timestamp.nanosec, time.nanosec);
    EXPECT_EQ(DDS_SampleInfoSeq_get_reference(&info_, 1)->source_timestamp.sec, 1700000001);
    VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, &info_);
}

TEST_F(DistlogEndpoints, LevelsAreInstances) {
    message_->hostAndAppId = {7, 8};
    write(100, "a");
    write(200, "b");
    write(100, "c");
    waitForMessages();
    const DDS_InstanceHandle_t handle =
        VUR_DL_LogMessageDataReader_lookup_instance(reader_, message_);
    ASSERT_NE(handle, DDS_HANDLE_NIL);
    VUR_DL_LogMessage *const key = VUR_DL_LogMessageTypeSupport_create_data();
    ASSERT_EQ(VUR_DL_LogMessageDataReader_get_key_value(reader_, key, handle), DDS_RETCODE_OK);
    EXPECT_EQ(key->level, 100);
    EXPECT_EQ(key->hostAndAppId.rtps_app_id, 8);
    VUR_DL_LogMessageTypeSupport_delete_data(key);
    ASSERT_EQ(VUR_DL_LogMessageDataReader_read_instance(
                  reader_, &data_, &info_, DDS_LENGTH_UNLIMITED, handle, DDS_ANY_SAMPLE_STATE,
                  DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE),
              DDS_RETCODE_OK);
    ASSERT_EQ(VUR_DL_LogMessageSeq_get_length(&data_), 2U);
    EXPECT_STREQ(VUR_DL_LogMessageSeq_get_reference(&data_, 1)->message, "c");
    VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, &info_);
    // One instance after the other.
    std::set<DDS_Long> levels;
    DDS_InstanceHandle_t previous = DDS_HANDLE_NIL;
    while (VUR_DL_LogMessageDataReader_take_next_instance(
               reader_, &data_, &info_, DDS_LENGTH_UNLIMITED, previous, DDS_ANY_SAMPLE_STATE,
               DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE) == DDS_RETCODE_OK) {
        previous = DDS_SampleInfoSeq_get_reference(&info_, 0)->instance_handle;
        EXPECT_TRUE(levels.insert(VUR_DL_LogMessageSeq_get_reference(&data_, 0)->level).second);
        VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, &info_);
    }
    EXPECT_EQ(levels, (std::set<DDS_Long>{100, 200}));
}

TEST_F(DistlogEndpoints, WriterKnowsInstances) {
    message_->level = 500;
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_lookup_instance(writer_, message_), DDS_HANDLE_NIL);
    const DDS_InstanceHandle_t handle =
        VUR_DL_LogMessageDataWriter_register_instance(writer_, message_);
    ASSERT_NE(handle, DDS_HANDLE_NIL);
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_lookup_instance(writer_, message_), handle);
    VUR_DL_LogMessage *const key = VUR_DL_LogMessageTypeSupport_create_data();
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_get_key_value(writer_, key, handle), DDS_RETCODE_OK);
    EXPECT_EQ(key->level, 500);
    VUR_DL_LogMessageTypeSupport_delete_data(key);
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_write(writer_, message_, handle), DDS_RETCODE_OK);
    ASSERT_EQ(VUR_DL_LogMessageDataWriter_dispose(writer_, message_, handle), DDS_RETCODE_OK);
    waitForData(untypedReader(), DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
    ASSERT_EQ(take(&data_, &info_), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_SampleInfoSeq_get_reference(&info_, 0)->instance_state,
              DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE);
    VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, &info_);
    EXPECT_EQ(VUR_DL_LogMessageDataWriter_unregister_instance(writer_, message_, handle),
              DDS_RETCODE_OK);
}

TEST_F(DistlogEndpoints, Conditions) {
    write(100, "first");
    waitForMessages();
    ASSERT_EQ(read(&data_, &info_), DDS_RETCODE_OK);
    VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, &info_);
    write(100, "second");
    waitForMessages();
    DDS_ReadCondition *const unread = DDS_DataReader_create_readcondition(
        untypedReader(), DDS_NOT_READ_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    ASSERT_EQ(VUR_DL_LogMessageDataReader_take_w_condition(reader_, &data_, &info_,
                                                           DDS_LENGTH_UNLIMITED, unread),
              DDS_RETCODE_OK);
    ASSERT_EQ(VUR_DL_LogMessageSeq_get_length(&data_), 1U);
    EXPECT_STREQ(VUR_DL_LogMessageSeq_get_reference(&data_, 0)->message, "second");
    DDS_Boolean consistent = DDS_BOOLEAN_FALSE;
    EXPECT_EQ(VUR_DL_LogMessageDataReader_is_data_consistent(
                  reader_, &consistent, VUR_DL_LogMessageSeq_get_reference(&data_, 0),
                  DDS_SampleInfoSeq_get_reference(&info_, 0)),
              DDS_RETCODE_OK);
    EXPECT_TRUE(consistent);
    VUR_DL_LogMessageDataReader_return_loan(reader_, &data_, &info_);
    EXPECT_EQ(DDS_DataReader_delete_readcondition(untypedReader(), unread), DDS_RETCODE_OK);
}

TEST_F(DistlogEndpoints, InjectionIsNotOffered) {
    EXPECT_EQ(VUR_DL_LogMessageDataReader_add_sample_to_remote_writer_queue(
                  reader_, message_, &DDS_WRITEPARAMS_DEFAULT),
              DDS_RETCODE_UNSUPPORTED);
    EXPECT_EQ(VUR_DL_LogMessageDataReader_add_dispose_to_remote_writer_queue(
                  reader_, message_, &DDS_WRITEPARAMS_DEFAULT),
              DDS_RETCODE_UNSUPPORTED);
    EXPECT_EQ(VUR_DL_LogMessageDataReader_add_unregister_to_remote_writer_queue(
                  reader_, message_, &DDS_WRITEPARAMS_DEFAULT),
              DDS_RETCODE_UNSUPPORTED);
}

TEST_F(DistlogEndpoints, RequestsTravelWithTheirCommand) {
    ASSERT_EQ(VUR_DL_ADMIN_CommandRequestTypeSupport_register_type(participant_, "request"),
              DDS_RETCODE_OK);
    DDS_Topic *const topic = makeTopic("requests", "request");
    auto *const writer = VUR_DL_ADMIN_CommandRequestDataWriter_narrow(makeWriter(topic));
    auto *const reader = VUR_DL_ADMIN_CommandRequestDataReader_narrow(makeReader(topic));
    ASSERT_NE(writer, nullptr);
    ASSERT_NE(reader, nullptr);
    auto *const request = VUR_DL_ADMIN_CommandRequestDataWriter_create_data(writer);
    request->invocation = 17;
    request->command._d = VUR_DL_SET_VUR_LOGGER_LEVEL;
    auto *const sequence = &request->command._u.categoryAndVerbosity;
    ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(sequence, 5));
    for (DDS_Long i = 0; i < 5; ++i) {
        VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_get_reference(sequence, i)->category =
            static_cast<VUR_DL_ADMIN_VURLoggerCategory>(4 - i);
    }
    EXPECT_EQ(VUR_DL_ADMIN_CommandRequestDataWriter_register_instance(writer, request),
              DDS_HANDLE_NIL)
        << "no key, no instance";
    ASSERT_EQ(VUR_DL_ADMIN_CommandRequestDataWriter_write(writer, request, DDS_HANDLE_NIL),
              DDS_RETCODE_OK);
    waitForData(VUR_DL_ADMIN_CommandRequestDataReader_as_datareader(reader));
    VUR_DL_ADMIN_CommandRequestSeq received = DDS_SEQUENCE_INITIALIZER;
    ASSERT_EQ(VUR_DL_ADMIN_CommandRequestDataReader_take(
                  reader, &received, &info_, DDS_LENGTH_UNLIMITED, DDS_ANY_SAMPLE_STATE,
                  DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE),
              DDS_RETCODE_OK);
    EXPECT_TRUE(KOLT_Record_equals(VUR_DL_ADMIN_CommandRequest_get_typecode(), request,
                                   VUR_DL_ADMIN_CommandRequestSeq_get_reference(&received, 0)));
    EXPECT_EQ(VUR_DL_ADMIN_CommandRequestDataReader_return_loan(reader, &received, &info_),
              DDS_RETCODE_OK);
    VUR_DL_ADMIN_CommandRequestDataWriter_delete_data(writer, request);
}

}  // namespace
