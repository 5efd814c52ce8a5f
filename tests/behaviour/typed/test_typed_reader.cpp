// SPDX-License-Identifier: Apache-2.0
// Typed data readers: every form of read and take, for each of the topic types.

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <map>
#include <numeric>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "support/logger/log_capture.h"
#include "support/types/typed_endpoints.h"

namespace {

using namespace support;

constexpr DDS_DomainId_t kDomain = 178;
using Numbers = std::vector<DDS_Long>;

template <typename T>
class TypedReader : public testing::Test {};
TYPED_TEST_SUITE(TypedReader, TopicTypes, TopicTypeName);

// ---- Reading and taking -------------------------------------------------------------------------

// Three samples of two instances, 1 and 3 of the first and 2 of the second, or of the one that a
// type without a key has.
template <typename T>
class Written {
  public:
    explicit Written(TypedEndpoints<T> &ends) : ends_(ends) { again(); }

    // Empties the reader's cache, and writes.
    void again() {
        using Type = TopicType<T>;
        Received<T> received(ends_.reader);
        received.take();
        ASSERT_EQ(received.give_back(), DDS_RETCODE_OK);
        ends_.write(100, 1);
        ends_.write(200, 2);
        ends_.write(100, 3);
        ASSERT_EQ(received.read(), DDS_RETCODE_OK);
        by_handle_.clear();
        for (DDS_UnsignedLong i = 0; i < received.size(); ++i) {
            const auto index = static_cast<DDS_Long>(i);
            by_handle_[received.info(index).instance_handle].push_back(
                Type::number(received.at(index)));
        }
        ASSERT_EQ(by_handle_.size(), Type::kKeyed ? 2U : 1U);
        ASSERT_EQ(by_handle_.count(DDS_HANDLE_NIL), 0U);
    }
    // The instances in the order of their handles.
    DDS_InstanceHandle_t first() const { return by_handle_.begin()->first; }
    DDS_InstanceHandle_t last() const { return by_handle_.rbegin()->first; }
    const Numbers &of(DDS_InstanceHandle_t handle) const { return by_handle_.at(handle); }
    // In the order in which a reader that does not look at instances gives them.
    Numbers all() const {
        Numbers numbers;
        for (const auto &[handle, some] : by_handle_) {
            numbers.insert(numbers.end(), some.begin(), some.end());
        }
        std::sort(numbers.begin(), numbers.end());
        return numbers;
    }

    // Returns what a form brings that was made with last() as its handle, and NIL before the next.
    Numbers expected(const std::string &form) const {
        if (form.find("next_instance") != std::string::npos) {
            return of(first());
        }
        return form.find("instance") != std::string::npos ? of(last()) : all();
    }

  private:
    TypedEndpoints<T> &ends_;
    std::map<DDS_InstanceHandle_t, Numbers> by_handle_;
};

Numbers sorted(Numbers numbers) {
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

// The samples are lent, or copied into the sequences' own room. Reading leaves them, taking does
// not.
template <typename T>
void expect_every_form(bool lent) {
    TypedEndpoints<T> ends(kDomain);
    Written<T> written(ends);
    for (const ReadForm<T> &form :
         read_forms<T>(written.last(), DDS_HANDLE_NIL, any_state(ends.untyped_reader))) {
        SCOPED_TRACE(form.name);
        written.again();
        Received<T> received(ends.reader);
        if (!lent) {
            received.allocate(5);
        }
        ASSERT_EQ(form.call(ends.reader, &received.data, &received.infos, DDS_LENGTH_UNLIMITED),
                  DDS_RETCODE_OK);
        EXPECT_EQ(received.is_owned(), !lent);
        EXPECT_EQ(TopicType<T>::Seq::get_pointers(&received.data) != nullptr, lent);
        EXPECT_EQ(TopicType<T>::Seq::get_maximum(&received.data), lent ? received.size() : 5U);
        EXPECT_EQ(DDS_SampleInfoSeq_get_length(&received.infos), received.size());
        const Numbers expected = written.expected(form.name);
        EXPECT_EQ(sorted(received.numbers()), sorted(expected));
        EXPECT_EQ(received.info(0).sample_state, DDS_READ_SAMPLE_STATE);
        EXPECT_EQ(received.give_back(), DDS_RETCODE_OK);
        EXPECT_TRUE(received.is_owned());
        EXPECT_EQ(received.size(), lent ? 0U : expected.size()) << "copies stay";

        Received<T> left(ends.reader);
        const DDS_ReturnCode_t result = left.read();
        const std::size_t remaining = form.take ? 3 - expected.size() : 3;
        EXPECT_EQ(result, remaining != 0 ? DDS_RETCODE_OK : DDS_RETCODE_NO_DATA);
        EXPECT_EQ(left.size(), remaining);
    }
}

TYPED_TEST(TypedReader, EveryFormLends) {
    expect_every_form<TypeParam>(true);
}
TYPED_TEST(TypedReader, EveryFormCopies) {
    expect_every_form<TypeParam>(false);
}

TYPED_TEST(TypedReader, EveryFormBringsAtMostSoMany) {
    using Seq = typename TopicType<TypeParam>::Seq;
    TypedEndpoints<TypeParam> ends(kDomain);
    Written<TypeParam> written(ends);
    for (const ReadForm<TypeParam> &form :
         read_forms<TypeParam>(written.first(), DDS_HANDLE_NIL, any_state(ends.untyped_reader))) {
        SCOPED_TRACE(form.name);
        written.again();
        Received<TypeParam> lent(ends.reader);
        ASSERT_EQ(form.call(ends.reader, &lent.data, &lent.infos, 1), DDS_RETCODE_OK);
        EXPECT_EQ(lent.size(), 1U);
        written.again();
        Received<TypeParam> copied(ends.reader);
        copied.allocate(1);
        ASSERT_EQ(form.call(ends.reader, &copied.data, &copied.infos, DDS_LENGTH_UNLIMITED),
                  DDS_RETCODE_OK)
            << "as many as there is room for";
        EXPECT_EQ(copied.size(), 1U);
        EXPECT_EQ(Seq::get_maximum(&copied.data), 1U) << "a caller's buffer does not grow";
        written.again();
        ASSERT_EQ(form.call(ends.reader, &copied.data, &copied.infos, 1), DDS_RETCODE_OK);
        EXPECT_EQ(copied.size(), 1U);
    }
}

TYPED_TEST(TypedReader, EveryFormWithoutDataEmptiesTheSequence) {
    TypedEndpoints<TypeParam> ends(kDomain);
    Written<TypeParam> written(ends);
    DDS_ReadCondition *const condition = any_state(ends.untyped_reader);
    const auto forms = read_forms<TypeParam>(written.last(), written.last(), condition);
    {
        Received<TypeParam> received(ends.reader);
        ASSERT_EQ(received.take(), DDS_RETCODE_OK);
    }
    for (const ReadForm<TypeParam> &form : forms) {
        SCOPED_TRACE(form.name);
        for (const bool lent : {true, false}) {
            Received<TypeParam> received(ends.reader);
            if (!lent) {
                received.allocate(2);
                TopicType<TypeParam>::Seq::set_length(&received.data, 2);
                DDS_SampleInfoSeq_set_length(&received.infos, 2);
            }
            EXPECT_EQ(form.call(ends.reader, &received.data, &received.infos, DDS_LENGTH_UNLIMITED),
                      DDS_RETCODE_NO_DATA);
            EXPECT_EQ(received.size(), 0U);
            EXPECT_EQ(DDS_SampleInfoSeq_get_length(&received.infos), 0U);
            EXPECT_TRUE(received.is_owned());
        }
    }
}

// One instance after the other, until there is none; no instance comes twice.
TYPED_TEST(TypedReader, WalksOverTheInstances) {
    using Read = typename TopicType<TypeParam>::Read;
    TypedEndpoints<TypeParam> ends(kDomain);
    Written<TypeParam> written(ends);
    std::vector<DDS_InstanceHandle_t> handles;
    DDS_InstanceHandle_t previous = DDS_HANDLE_NIL;
    Received<TypeParam> received(ends.reader);
    DDS_ReturnCode_t result = DDS_RETCODE_ERROR;
    while ((result = Read::read_next_instance(ends.reader, &received.data, &received.infos,
                                              DDS_LENGTH_UNLIMITED, previous, DDS_ANY_SAMPLE_STATE,
                                              DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE)) ==
           DDS_RETCODE_OK) {
        previous = received.info(0).instance_handle;
        handles.push_back(previous);
        EXPECT_EQ(received.numbers(), written.of(previous));
        ASSERT_EQ(received.give_back(), DDS_RETCODE_OK);
        ASSERT_LE(handles.size(), 2U);
    }
    EXPECT_EQ(result, DDS_RETCODE_NO_DATA);
    ASSERT_FALSE(handles.empty());
    EXPECT_EQ(handles.front(), written.first());
    EXPECT_EQ(handles.back(), written.last());
}

// ---- The next sample ----------------------------------------------------------------------------

TYPED_TEST(TypedReader, NextSampleIsTheNextThatWasNotRead) {
    using Read = typename TopicType<TypeParam>::Read;
    TypedEndpoints<TypeParam> ends(kDomain);
    Sample<TypeParam> sample(7, 7);
    DDS_SampleInfo info = {};
    EXPECT_EQ(Read::read_next_sample(ends.reader, sample.get(), &info), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(Read::take_next_sample(ends.reader, sample.get(), &info), DDS_RETCODE_NO_DATA);
    EXPECT_EQ(sample.number(), 7) << "untouched";
    for (DDS_Long number = 1; number <= 4; ++number) {
        ends.write(100, number);
    }
    ASSERT_EQ(Read::read_next_sample(ends.reader, sample.get(), &info), DDS_RETCODE_OK);
    EXPECT_EQ(sample.number(), 1);
    EXPECT_TRUE(info.valid_data);
    EXPECT_EQ(info.sample_state, DDS_NOT_READ_SAMPLE_STATE);
    ASSERT_EQ(Read::take_next_sample(ends.reader, sample.get(), &info), DDS_RETCODE_OK);
    EXPECT_EQ(sample.number(), 2) << "1 was read";
    ASSERT_EQ(Read::read_next_sample(ends.reader, sample.get(), &info), DDS_RETCODE_OK);
    EXPECT_EQ(sample.number(), 3);
    Received<TypeParam> received(ends.reader);
    ASSERT_EQ(received.take(), DDS_RETCODE_OK);
    EXPECT_EQ(received.numbers(), (Numbers{1, 3, 4}));

    LogCapture log;
    for (const auto operation : {Read::read_next_sample, Read::take_next_sample}) {
        EXPECT_EQ(operation(ends.reader, nullptr, &info), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter: received_data"));
        EXPECT_EQ(operation(ends.reader, sample.get(), nullptr), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter: info"));
        EXPECT_EQ(operation(nullptr, sample.get(), &info), DDS_RETCODE_BAD_PARAMETER);
        EXPECT_TRUE(log.saw("bad parameter"));
    }
}

// ---- What selects -------------------------------------------------------------------------------

TYPED_TEST(TypedReader, StatesSelect) {
    using Type = TopicType<TypeParam>;
    TypedEndpoints<TypeParam> ends(kDomain);
    ends.write(100, 1);
    Received<TypeParam> received(ends.reader);
    const auto read = [&](DDS_SampleStateMask samples, DDS_ViewStateMask views,
                          DDS_InstanceStateMask instances) {
        EXPECT_EQ(received.give_back(), DDS_RETCODE_OK);
        Type::Read::read(ends.reader, &received.data, &received.infos, DDS_LENGTH_UNLIMITED,
                         samples, views, instances);
        return received.numbers();
    };
    constexpr DDS_ViewStateMask kAnyView = DDS_ANY_VIEW_STATE;
    constexpr DDS_InstanceStateMask kAny = DDS_ANY_INSTANCE_STATE;
    EXPECT_EQ(read(DDS_READ_SAMPLE_STATE, kAnyView, kAny), Numbers{});
    EXPECT_EQ(read(DDS_ANY_SAMPLE_STATE, DDS_NOT_NEW_VIEW_STATE, kAny), Numbers{});
    EXPECT_EQ(read(DDS_ANY_SAMPLE_STATE, kAnyView, DDS_NOT_ALIVE_INSTANCE_STATE), Numbers{});
    EXPECT_EQ(read(DDS_NOT_READ_SAMPLE_STATE, DDS_NEW_VIEW_STATE, DDS_ALIVE_INSTANCE_STATE),
              Numbers{1});
    ends.write(100, 2);
    EXPECT_EQ(read(DDS_READ_SAMPLE_STATE, kAnyView, kAny), Numbers{1});
    EXPECT_EQ(read(DDS_NOT_READ_SAMPLE_STATE, DDS_NEW_VIEW_STATE, kAny), Numbers{});
    EXPECT_EQ(read(DDS_NOT_READ_SAMPLE_STATE, DDS_NOT_NEW_VIEW_STATE, kAny), Numbers{2});
    if (Type::kKeyed) {
        Sample<TypeParam> sample(100);
        ASSERT_EQ(Type::Write::dispose(ends.writer, sample.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
        EXPECT_EQ(read(DDS_ANY_SAMPLE_STATE, kAnyView, DDS_ALIVE_INSTANCE_STATE), Numbers{});
        EXPECT_EQ(read(DDS_ANY_SAMPLE_STATE, kAnyView, DDS_NOT_ALIVE_DISPOSED_INSTANCE_STATE),
                  (Numbers{1, 2, 0}));
    }
}

// Read conditions select by states, query conditions by content besides.
TYPED_TEST(TypedReader, ConditionsSelect) {
    using Type = TopicType<TypeParam>;
    TypedEndpoints<TypeParam> ends(kDomain);
    Written<TypeParam> written(ends);
    ends.write(100, 4);
    DDS_ReadCondition *const unread = DDS_DataReader_create_readcondition(
        ends.untyped_reader, DDS_NOT_READ_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    Strings parameters({"2"});
    DDS_QueryCondition *const query = DDS_DataReader_create_querycondition(
        ends.untyped_reader, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE,
        (std::string(Type::kNumberMember) + " <= %0").c_str(), parameters.get());
    ASSERT_NE(query, nullptr);
    const auto expected = [&](const std::string &form, Numbers selected) {
        // Of the instance that the form is about.
        if (form.find("instance") == std::string::npos) {
            return selected;
        }
        Numbers of =
            written.of(form.find("next") != std::string::npos ? written.first() : written.last());
        if (std::find(of.begin(), of.end(), 1) != of.end()) {
            of.push_back(4);
        }
        std::erase_if(selected, [&](DDS_Long number) {
            return std::find(of.begin(), of.end(), number) == of.end();
        });
        return selected;
    };
    for (const auto &[condition, selected] :
         {std::pair{DDS_QueryCondition_as_readcondition(query), Numbers{1, 2}},
          std::pair{unread, Numbers{4}}}) {
        for (const ReadForm<TypeParam> &form :
             read_forms<TypeParam>(written.last(), DDS_HANDLE_NIL, condition)) {
            if (!form.by_condition) {
                continue;
            }
            SCOPED_TRACE(form.name);
            written.again();
            ends.write(100, 4);
            Received<TypeParam> received(ends.reader);
            const DDS_ReturnCode_t result =
                form.call(ends.reader, &received.data, &received.infos, DDS_LENGTH_UNLIMITED);
            Numbers wanted = expected(form.name, selected);
            // The next instance is the next that has what the condition wants.
            if (wanted.empty() && std::string(form.name).find("next") != std::string::npos) {
                wanted = selected;
            }
            EXPECT_EQ(sorted(received.numbers()), wanted);
            EXPECT_EQ(result, wanted.empty() ? DDS_RETCODE_NO_DATA : DDS_RETCODE_OK);
        }
    }
}

// ---- Threads ------------------------------------------------------------------------------------

// Each sample is lent to one of them.
TEST(TypedReaderThreads, TakeSideBySide) {
    constexpr DDS_Long kSamples = 300;
    constexpr int kThreads = 3;
    TypedEndpoints<VUR_DL_LogMessage> ends(kDomain);
    std::vector<Numbers> taken(kThreads);
    std::atomic<DDS_Long> total{0};
    std::vector<std::thread> threads;
    for (Numbers &mine : taken) {
        threads.emplace_back([&] {
            Received<VUR_DL_LogMessage> received(ends.reader);
            const bool all = eventually([&] {
                const DDS_ReturnCode_t result = VUR_DL_LogMessageDataReader_take(
                    ends.reader, &received.data, &received.infos, 7, DDS_ANY_SAMPLE_STATE,
                    DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
                if (result == DDS_RETCODE_OK) {
                    for (const DDS_Long number : received.numbers()) {
                        mine.push_back(number);
                    }
                    total += static_cast<DDS_Long>(received.size());
                    EXPECT_EQ(received.give_back(), DDS_RETCODE_OK);
                } else {
                    EXPECT_EQ(result, DDS_RETCODE_NO_DATA);
                }
                return total == kSamples;
            });
            EXPECT_TRUE(all);
        });
    }
    for (DDS_Long number = 1; number <= kSamples; ++number) {
        ends.write(100 * (number % 4), number);
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    Numbers all;
    for (const Numbers &mine : taken) {
        EXPECT_EQ(std::set<DDS_Long>(mine.begin(), mine.end()).size(), mine.size());
        all.insert(all.end(), mine.begin(), mine.end());
    }
    Numbers expected(kSamples);
    std::iota(expected.begin(), expected.end(), 1);
    EXPECT_EQ(sorted(all), expected);
}

}  // namespace
