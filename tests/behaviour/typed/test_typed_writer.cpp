// SPDX-License-Identifier: Apache-2.0
// Typed data writers: every operation, for each of the topic types.

#include <gtest/gtest.h>

#include <vector>

#include "support/logger/log_capture.h"
#include "support/types/typed_endpoints.h"

namespace {

using namespace support;

constexpr DDS_DomainId_t kDomain = 176;

template <typename T>
class TypedWriter : public testing::Test {};
TYPED_TEST_SUITE(TypedWriter, TopicTypes, TopicTypeName);

// ---- Samples ------------------------------------------------------------------------------------

TYPED_TEST(TypedWriter, MakesAndFreesSamples) {
    using Write = typename TopicType<TypeParam>::Write;
    TypedEndpoints<TypeParam> ends(kDomain);
    DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    Sample<TypeParam> initial;
    LogCapture log;
    TypeParam *sample = Write::create_data(ends.writer);
    ASSERT_NE(sample, nullptr);
    EXPECT_TRUE(equal(*sample, *initial));
    EXPECT_EQ(Write::delete_data(ends.writer, sample), DDS_RETCODE_OK);
    sample = Write::create_data_w_params(ends.writer, &allocation);
    ASSERT_NE(sample, nullptr);
    EXPECT_TRUE(equal(*sample, *initial));
    EXPECT_EQ(Write::delete_data_w_params(ends.writer, sample, &deallocation), DDS_RETCODE_OK);
    EXPECT_EQ(log.take(), "");
    allocation.allocate_memory = DDS_BOOLEAN_FALSE;
    EXPECT_EQ(Write::create_data_w_params(ends.writer, &allocation), nullptr);
    EXPECT_TRUE(log.saw("alloc_params->allocate_memory"));
}

TYPED_TEST(TypedWriter, NamesTheArgumentThatIsMissing) {
    using Write = typename TopicType<TypeParam>::Write;
    TypedEndpoints<TypeParam> ends(kDomain);
    const DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    Sample<TypeParam> sample;
    LogCapture log;
    EXPECT_EQ(Write::create_data(nullptr), nullptr);
    EXPECT_TRUE(log.saw("bad parameter: writer"));
    EXPECT_EQ(Write::create_data_w_params(nullptr, &allocation), nullptr);
    EXPECT_TRUE(log.saw("bad parameter: writer"));
    EXPECT_EQ(Write::create_data_w_params(ends.writer, nullptr), nullptr);
    EXPECT_TRUE(log.saw("bad parameter: alloc_params"));
    EXPECT_EQ(Write::delete_data(nullptr, sample.get()), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: writer"));
    EXPECT_EQ(Write::delete_data(ends.writer, nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: sample"));
    EXPECT_EQ(Write::delete_data_w_params(nullptr, sample.get(), &deallocation),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: writer"));
    EXPECT_EQ(Write::delete_data_w_params(ends.writer, nullptr, &deallocation),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: sample"));
    EXPECT_EQ(Write::delete_data_w_params(ends.writer, sample.get(), nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: dealloc_params"));
}

TYPED_TEST(TypedWriter, NeverLends) {
    using Write = typename TopicType<TypeParam>::Write;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> sample;
    LogCapture log;
    TypeParam *loan = sample.get();
    for (auto *const writer : {ends.writer, static_cast<decltype(ends.writer)>(nullptr)}) {
        EXPECT_EQ(Write::get_loan(writer, &loan), DDS_RETCODE_UNSUPPORTED);
        EXPECT_EQ(loan, sample.get());
        EXPECT_TRUE(
            log.saw("get_loan() only supported for topic-types with transfer mode shmem-ref"));
        EXPECT_EQ(Write::discard_loan(writer, sample.get()), DDS_RETCODE_UNSUPPORTED);
        EXPECT_TRUE(
            log.saw("discard_loan() only supported for topic-types with transfer mode shmem-ref"));
    }
}

// ---- Writing ------------------------------------------------------------------------------------

TYPED_TEST(TypedWriter, WritesInThreeForms) {
    using Type = TopicType<TypeParam>;
    using Write = typename Type::Write;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> sample(100, 1);
    DDS_Time_t before = DDS_TIME_INVALID;
    ASSERT_EQ(DDS_DomainParticipant_get_current_time(ends.node.participant, &before),
              DDS_RETCODE_OK);
    ASSERT_EQ(Write::write(ends.writer, sample.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    Type::set_number(sample.get(), 2);
    ASSERT_EQ(Write::write_w_params(ends.writer, sample.get(), &DDS_WRITEPARAMS_DEFAULT),
              DDS_RETCODE_OK);
    Type::set_number(sample.get(), 3);
    ASSERT_EQ(Write::write_w_timestamp(ends.writer, sample.get(), DDS_HANDLE_NIL, &kStamp),
              DDS_RETCODE_OK);
    Type::set_number(sample.get(), 4);
    const DDS_WriteParams_t params = params_of(DDS_HANDLE_NIL, {1700000001, 5});
    ASSERT_EQ(Write::write_w_params(ends.writer, sample.get(), &params), DDS_RETCODE_OK);

    Received<TypeParam> received(ends.reader);
    ASSERT_EQ(received.take(), DDS_RETCODE_OK);
    ASSERT_EQ(received.numbers(), (std::vector<DDS_Long>{1, 2, 3, 4}));
    for (DDS_Long i = 0; i < 2; ++i) {
        EXPECT_GE(received.info(i).source_timestamp.sec, before.sec) << "the time of the call";
        EXPECT_LE(received.info(i).source_timestamp.sec, before.sec + 60);
    }
    expect_stamp(received.info(2), kStamp);
    expect_stamp(received.info(3), params.source_timestamp);
    for (DDS_Long i = 0; i < 4; ++i) {
        EXPECT_TRUE(received.info(i).valid_data);
        EXPECT_EQ(Type::key(received.at(i)), 100);
        EXPECT_EQ(received.info(i).publication_handle,
                  DDS_Entity_get_instance_handle(DDS_DataWriter_as_entity(ends.untyped_writer)));
    }
}

TYPED_TEST(TypedWriter, EveryMemberArrives) {
    TypedEndpoints<TypeParam> ends(kDomain);
    Filled<TypeParam> sample;
    ASSERT_EQ(TopicType<TypeParam>::Write::write(ends.writer, sample.get(), DDS_HANDLE_NIL),
              DDS_RETCODE_OK);
    Received<TypeParam> received(ends.reader);
    ASSERT_EQ(received.take(), DDS_RETCODE_OK);
    ASSERT_EQ(received.size(), 1U);
    EXPECT_TRUE(equal(received.at(0), *sample));
}

TYPED_TEST(TypedWriter, RefusesWrongWrites) {
    using Write = typename TopicType<TypeParam>::Write;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> sample(100, 1);
    const DDS_Time_t too_many_nanoseconds = {1, 1000000000};
    const DDS_WriteParams_t wrong_time = params_of(DDS_HANDLE_NIL, too_many_nanoseconds);
    LogCapture log;
    EXPECT_EQ(Write::write(nullptr, sample.get(), DDS_HANDLE_NIL), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter"));
    EXPECT_EQ(Write::write(ends.writer, nullptr, DDS_HANDLE_NIL), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: sample"));
    EXPECT_EQ(Write::write_w_timestamp(ends.writer, nullptr, DDS_HANDLE_NIL, &kStamp),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: sample"));
    EXPECT_EQ(Write::write_w_params(ends.writer, nullptr, &DDS_WRITEPARAMS_DEFAULT),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: sample"));
    EXPECT_EQ(Write::write_w_params(ends.writer, sample.get(), nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: params"));
    for (const DDS_Time_t *const time :
         {static_cast<const DDS_Time_t *>(nullptr), &DDS_TIME_INVALID, &too_many_nanoseconds}) {
        EXPECT_EQ(Write::write_w_timestamp(ends.writer, sample.get(), DDS_HANDLE_NIL, time),
                  DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter: source_timestamp"));
    }
    EXPECT_EQ(Write::write_w_params(ends.writer, sample.get(), &wrong_time),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: source_timestamp"));
    Received<TypeParam> received(ends.reader);
    EXPECT_EQ(received.take(), DDS_RETCODE_NO_DATA) << "nothing of it was written";
}

}  // namespace
