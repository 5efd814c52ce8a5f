// SPDX-License-Identifier: Apache-2.0
// Typed data readers: wrong calls and what they say, loans, keys, and what is not offered.

#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "support/logger/log_capture.h"
#include "support/types/typed_endpoints.h"

namespace {

using namespace support;

constexpr DDS_DomainId_t kDomain = 180;

template <typename T>
class TypedReaderErrors : public testing::Test {};
TYPED_TEST_SUITE(TypedReaderErrors, TopicTypes, TopicTypeName);

// A reader with one sample, and all forms of reading its instance.
template <typename T>
struct OneSample {
    OneSample() : ends(kDomain) {
        ends.write(100, 1);
        Received<T> received(ends.reader);
        EXPECT_EQ(received.read(), DDS_RETCODE_OK);
        handle = received.info(0).instance_handle;
    }
    std::vector<ReadForm<T>> forms() {
        if (condition == nullptr) {
            condition = any_state(ends.untyped_reader);
        }
        return read_forms<T>(handle, DDS_HANDLE_NIL, condition);
    }

    TypedEndpoints<T> ends;
    DDS_InstanceHandle_t handle = DDS_HANDLE_NIL;
    DDS_ReadCondition *condition = nullptr;
};

// ---- Arguments ----------------------------------------------------------------------------------

TYPED_TEST(TypedReaderErrors, EveryFormWantsItsArguments) {
    OneSample<TypeParam> one;
    auto *const reader = one.ends.reader;
    LogCapture log;
    for (const ReadForm<TypeParam> &form : one.forms()) {
        SCOPED_TRACE(form.name);
        Received<TypeParam> received(reader);
        EXPECT_EQ(form.call(reader, nullptr, &received.infos, 1), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter: received_data"));
        EXPECT_EQ(form.call(reader, &received.data, nullptr, 1), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter: info_seq"));
        EXPECT_EQ(form.call(nullptr, &received.data, &received.infos, 1),
                  DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter"));
        for (const DDS_Long wrong : {0, -2, -2147483647}) {
            EXPECT_EQ(form.call(reader, &received.data, &received.infos, wrong),
                      DDS_RETCODE_BAD_PARAMETER);
            EXPECT_TRUE(log.saw("bad parameter: max_samples"));
        }
        EXPECT_EQ(received.size(), 0U);
        EXPECT_TRUE(received.is_owned());
    }
}

TYPED_TEST(TypedReaderErrors, ConditionsAreTheReadersOwn) {
    OneSample<TypeParam> one;
    TypedEndpoints<TypeParam> others(kDomain, "other");
    LogCapture log;
    for (DDS_ReadCondition *const wrong :
         {static_cast<DDS_ReadCondition *>(nullptr), any_state(others.untyped_reader)}) {
        for (const ReadForm<TypeParam> &form :
             read_forms<TypeParam>(one.handle, DDS_HANDLE_NIL, wrong)) {
            if (!form.by_condition) {
                continue;
            }
            SCOPED_TRACE(form.name);
            Received<TypeParam> received(one.ends.reader);
            EXPECT_EQ(form.call(one.ends.reader, &received.data, &received.infos, 1),
                      DDS_RETCODE_BAD_PARAMETER);
            EXPECT_TRUE(log.saw("bad parameter: condition"));
        }
    }
}

TYPED_TEST(TypedReaderErrors, HandlesAreThoseOfInstances) {
    OneSample<TypeParam> one;
    DDS_ReadCondition *const condition = any_state(one.ends.untyped_reader);
    LogCapture log;
    for (const DDS_InstanceHandle_t wrong : {DDS_HANDLE_NIL, one.handle + 1000}) {
        for (const ReadForm<TypeParam> &form :
             read_forms<TypeParam>(wrong, DDS_HANDLE_NIL, condition)) {
            const std::string name = form.name;
            if (name.find("_instance") == std::string::npos ||
                name.find("_next") != std::string::npos) {
                continue;
            }
            SCOPED_TRACE(name);
            Received<TypeParam> received(one.ends.reader);
            EXPECT_EQ(form.call(one.ends.reader, &received.data, &received.infos, 1),
                      DDS_RETCODE_BAD_PARAMETER);
            EXPECT_TRUE(log.saw("handle"));
        }
    }
    // The walk begins with any handle: what comes after it counts.
    for (const ReadForm<TypeParam> &form :
         read_forms<TypeParam>(one.handle, one.handle - 1, condition)) {
        if (std::string(form.name).find("read_next") == std::string::npos) {
            continue;
        }
        Received<TypeParam> received(one.ends.reader);
        EXPECT_EQ(form.call(one.ends.reader, &received.data, &received.infos, 1), DDS_RETCODE_OK)
            << form.name;
    }
}

// ---- Sequences (DDS 1.4, 2.2.2.5.3.8) -----------------------------------------------------------

// The two sequences are alike, and own what is in them.
TYPED_TEST(TypedReaderErrors, EveryFormWantsSequencesThatFit) {
    using Seq = typename TopicType<TypeParam>::Seq;
    OneSample<TypeParam> one;
    auto *const reader = one.ends.reader;
    LogCapture log;
    const char *const kUnlike =
        "the data and the info sequence differ in length, maximum or ownership";
    for (const ReadForm<TypeParam> &form : one.forms()) {
        SCOPED_TRACE(form.name);
        Received<TypeParam> received(reader);
        const auto expect_refused = [&](const char *text, DDS_Long max_samples = 1) {
            EXPECT_EQ(form.call(reader, &received.data, &received.infos, max_samples),
                      DDS_RETCODE_PRECONDITION_NOT_MET);
            EXPECT_TRUE(log.saw(text));
        };
        ASSERT_TRUE(Seq::set_maximum(&received.data, 2));
        expect_refused(kUnlike);
        ASSERT_TRUE(DDS_SampleInfoSeq_set_maximum(&received.infos, 2));
        ASSERT_TRUE(Seq::set_length(&received.data, 1));
        expect_refused(kUnlike);
        ASSERT_TRUE(Seq::set_length(&received.data, 0));
        expect_refused("max_samples exceeds the maximum of the sequences", 3);
        ASSERT_TRUE(Seq::set_maximum(&received.data, 0));
        ASSERT_TRUE(DDS_SampleInfoSeq_set_maximum(&received.infos, 0));

        // Lent by somebody else.
        std::array<TypeParam *, 1> pointers = {nullptr};
        DDS_SampleInfo info = {};
        ASSERT_TRUE(Seq::loan_pointers(&received.data, pointers.data(), 0, 1));
        ASSERT_TRUE(DDS_SampleInfoSeq_set_maximum(&received.infos, 1));
        expect_refused(kUnlike);
        ASSERT_TRUE(DDS_SampleInfoSeq_set_maximum(&received.infos, 0));
        ASSERT_TRUE(DDS_SampleInfoSeq_loan_contiguous(&received.infos, &info, 0, 1));
        expect_refused("the sequences hold a loan");
        ASSERT_TRUE(Seq::unloan(&received.data));
        ASSERT_TRUE(DDS_SampleInfoSeq_unloan(&received.infos));
    }
}

TYPED_TEST(TypedReaderErrors, ALoanIsReturnedBeforeTheNext) {
    OneSample<TypeParam> one;
    LogCapture log;
    Received<TypeParam> received(one.ends.reader);
    ASSERT_EQ(received.read(), DDS_RETCODE_OK);
    for (const ReadForm<TypeParam> &form : one.forms()) {
        EXPECT_EQ(form.call(one.ends.reader, &received.data, &received.infos, 1),
                  DDS_RETCODE_PRECONDITION_NOT_MET)
            << form.name;
        EXPECT_TRUE(log.saw("the sequences hold a loan"));
    }
    EXPECT_EQ(received.size(), 1U) << "the loan is as it was";
    EXPECT_EQ(DDS_Subscriber_delete_datareader(one.ends.node.subscriber, one.ends.untyped_reader),
              DDS_RETCODE_PRECONDITION_NOT_MET);
}

// ---- Returning loans ----------------------------------------------------------------------------

TYPED_TEST(TypedReaderErrors, LoansGoBackToTheReaderThatLent) {
    using Type = TopicType<TypeParam>;
    OneSample<TypeParam> one;
    TypedEndpoints<TypeParam> others(kDomain, "other");
    auto *const reader = one.ends.reader;
    one.ends.write(100, 2);
    Received<TypeParam> first(reader);
    Received<TypeParam> second(reader);
    ASSERT_EQ(first.read(), DDS_RETCODE_OK);
    ASSERT_EQ(second.read(), DDS_RETCODE_OK) << "any number may be out";
    LogCapture log;
    EXPECT_EQ(Type::Read::return_loan(reader, nullptr, &first.infos), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: received_data"));
    EXPECT_EQ(Type::Read::return_loan(reader, &first.data, nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: info_seq"));
    EXPECT_EQ(Type::Read::return_loan(nullptr, &first.data, &first.infos),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter"));
    EXPECT_EQ(Type::Read::return_loan(others.reader, &first.data, &first.infos),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_TRUE(log.saw("the data sequence does not hold a loan of this reader"));
    EXPECT_EQ(Type::Read::return_loan(reader, &first.data, &second.infos),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_TRUE(log.saw("the info sequence belongs to another loan"));
    Received<TypeParam> neither(reader);
    EXPECT_EQ(Type::Read::return_loan(reader, &first.data, &neither.infos),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_TRUE(log.saw("the info sequence belongs to another loan"));
    EXPECT_EQ(Type::Read::return_loan(reader, &neither.data, &first.infos),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_TRUE(log.saw("the data sequence does not hold a loan of this reader"));
    EXPECT_FALSE(first.is_owned());
    EXPECT_EQ(first.numbers(), (std::vector<DDS_Long>{1, 2})) << "all of it is still lent";

    ASSERT_TRUE(Type::Seq::set_length(&first.data, 1)) << "shortened by the application";
    EXPECT_EQ(first.give_back(), DDS_RETCODE_OK);
    EXPECT_TRUE(first.is_owned());
    EXPECT_EQ(Type::Seq::get_maximum(&first.data), 0U);
    EXPECT_EQ(DDS_SampleInfoSeq_get_maximum(&first.infos), 0U);
    EXPECT_EQ(first.give_back(), DDS_RETCODE_OK) << "nothing is lent any more";
    EXPECT_EQ(second.numbers(), (std::vector<DDS_Long>{1, 2}));
    EXPECT_EQ(second.give_back(), DDS_RETCODE_OK);
}

// A sequence that may not become so long takes no loan: it goes back at once.
TYPED_TEST(TypedReaderErrors, ALoanThatDoesNotFitGoesBack) {
    using Type = TopicType<TypeParam>;
    OneSample<TypeParam> one;
    one.ends.write(100, 2);
    LogCapture log;
    for (const ReadForm<TypeParam> &form : one.forms()) {
        if (form.take) {
            continue;
        }
        SCOPED_TRACE(form.name);
        Received<TypeParam> received(one.ends.reader);
        ASSERT_TRUE(Type::Seq::set_absolute_maximum(&received.data, 1));
        EXPECT_EQ(form.call(one.ends.reader, &received.data, &received.infos, DDS_LENGTH_UNLIMITED),
                  DDS_RETCODE_ERROR);
        EXPECT_TRUE(log.saw("new max cannot be larger than absolute maximum"));
        EXPECT_TRUE(received.is_owned());
        EXPECT_TRUE(DDS_SampleInfoSeq_has_ownership(&received.infos));
        ASSERT_TRUE(Type::Seq::set_absolute_maximum(&received.data, 2));
        ASSERT_TRUE(DDS_SampleInfoSeq_set_absolute_maximum(&received.infos, 1));
        EXPECT_EQ(form.call(one.ends.reader, &received.data, &received.infos, DDS_LENGTH_UNLIMITED),
                  DDS_RETCODE_ERROR);
        EXPECT_TRUE(log.saw("the info sequence cannot take a loan"));
        EXPECT_TRUE(received.is_owned());
    }
    DDS_DataReader_delete_contained_entities(one.ends.untyped_reader);
    EXPECT_EQ(DDS_Subscriber_delete_datareader(one.ends.node.subscriber, one.ends.untyped_reader),
              DDS_RETCODE_OK)
        << "no loan is out";
}

// The reader does not return a buffer that the application has lent to the sequence.
TYPED_TEST(TypedReaderErrors, ForeignLoansStay) {
    using Type = TopicType<TypeParam>;
    OneSample<TypeParam> one;
    Sample<TypeParam> sample;
    std::array<TypeParam *, 1> pointers = {sample.get()};
    LogCapture log;
    Received<TypeParam> received(one.ends.reader);
    ASSERT_TRUE(Type::Seq::loan_pointers(&received.data, pointers.data(), 1, 1));
    EXPECT_EQ(received.give_back(), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_TRUE(log.saw("the data sequence does not hold a loan of this reader"));
    EXPECT_FALSE(received.is_owned());
    ASSERT_TRUE(Type::Seq::unloan(&received.data));
    ASSERT_TRUE(Type::Seq::loan_contiguous(&received.data, sample.get(), 1, 1));
    EXPECT_EQ(received.give_back(), DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_TRUE(log.saw("the data sequence does not hold a loan of this reader"));
    EXPECT_FALSE(received.is_owned());
    ASSERT_TRUE(Type::Seq::unloan(&received.data));
}

// ---- What is not offered ------------------------------------------------------------------------

TYPED_TEST(TypedReaderErrors, DataAreAlwaysConsistent) {
    using Read = typename TopicType<TypeParam>::Read;
    OneSample<TypeParam> one;
    auto *const reader = one.ends.reader;
    Received<TypeParam> received(reader);
    ASSERT_EQ(received.read(), DDS_RETCODE_OK);
    DDS_Boolean consistent = DDS_BOOLEAN_FALSE;
    EXPECT_EQ(Read::is_data_consistent(reader, &consistent, &received.at(0), &received.info(0)),
              DDS_RETCODE_OK);
    EXPECT_TRUE(consistent);
    LogCapture log;
    EXPECT_EQ(Read::is_data_consistent(nullptr, &consistent, &received.at(0), &received.info(0)),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter"));
    EXPECT_EQ(Read::is_data_consistent(reader, nullptr, &received.at(0), &received.info(0)),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: is_data_consistent"));
    EXPECT_EQ(Read::is_data_consistent(reader, &consistent, nullptr, &received.info(0)),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: sample"));
    EXPECT_EQ(Read::is_data_consistent(reader, &consistent, &received.at(0), nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_TRUE(log.saw("bad parameter: info"));
}

TYPED_TEST(TypedReaderErrors, SamplesAreNotInjected) {
    using Read = typename TopicType<TypeParam>::Read;
    OneSample<TypeParam> one;
    auto *const reader = one.ends.reader;
    Sample<TypeParam> sample;
    LogCapture log;
    for (const auto operation : {Read::add_sample, Read::add_dispose, Read::add_unregister}) {
        EXPECT_EQ(operation(reader, sample.get(), &DDS_WRITEPARAMS_DEFAULT),
                  DDS_RETCODE_UNSUPPORTED);
        EXPECT_TRUE(log.saw("samples cannot be injected on behalf of remote writers"));
        EXPECT_EQ(operation(reader, nullptr, &DDS_WRITEPARAMS_DEFAULT), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter: sample"));
        EXPECT_EQ(operation(reader, sample.get(), nullptr), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter: params"));
        EXPECT_EQ(operation(nullptr, sample.get(), &DDS_WRITEPARAMS_DEFAULT),
                  DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter"));
    }
}

}  // namespace
