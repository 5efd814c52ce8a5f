// SPDX-License-Identifier: Apache-2.0
// A writer and a reader of one of the logger's topic types, and what they read.
#pragma once

#include <algorithm>
#include <functional>
#include <vector>

#include "support/platform/pubsub.h"
#include "support/types/topic_types.h"

namespace support {

// A participant with one of the topic types under a name that is not the type's own, a topic of it,
// and a reliable writer and reader that keep all samples and have found each other. A sample has
// arrived when its write returns.
template <typename T>
class TypedEndpoints {
  public:
    using Type = TopicType<T>;

    explicit TypedEndpoints(DDS_DomainId_t domain, const std::string &name = "typed")
        : node(domain) {
        EXPECT_EQ(Type::Support::register_type(node.participant, kRegisteredName), DDS_RETCODE_OK);
        topic =
            DDS_DomainParticipant_create_topic(node.participant, own(name).c_str(), kRegisteredName,
                                               nullptr, nullptr, DDS_STATUS_MASK_NONE);
        untyped_writer = node.writer({}, topic);
        untyped_reader = node.reader({}, DDS_Topic_as_topicdescription(topic));
        writer = Type::Write::narrow(untyped_writer);
        reader = Type::Read::narrow(untyped_reader);
        EXPECT_TRUE(is_matched(untyped_writer));
        EXPECT_TRUE(is_matched(untyped_reader));
    }

    void write(DDS_Long key, DDS_Long number) {
        Sample<T> sample(key, number);
        ASSERT_EQ(Type::Write::write(writer, sample.get(), DDS_HANDLE_NIL), DDS_RETCODE_OK);
    }

    static constexpr const char *kRegisteredName = "some name";

    Node node;
    DDS_Topic *topic = nullptr;
    DDS_DataWriter *untyped_writer = nullptr;
    DDS_DataReader *untyped_reader = nullptr;
    typename Type::Writer *writer = nullptr;
    typename Type::Reader *reader = nullptr;
};

// The two sequences of a read or take, which give back what they hold.
template <typename T>
class Received {
  public:
    using Type = TopicType<T>;

    explicit Received(typename Type::Reader *reader) : reader_(reader) {}
    ~Received() {
        EXPECT_EQ(give_back(), DDS_RETCODE_OK);
        Type::Seq::finalize(&data);
        DDS_SampleInfoSeq_finalize(&infos);
    }
    Received(const Received &) = delete;
    Received &operator=(const Received &) = delete;

    // Gives the sequences room of their own for `maximum` samples.
    void allocate(DDS_Long maximum) {
        ASSERT_TRUE(Type::Seq::set_maximum(&data, maximum));
        ASSERT_TRUE(DDS_SampleInfoSeq_set_maximum(&infos, maximum));
    }
    DDS_ReturnCode_t read() { return access(Type::Read::read); }
    DDS_ReturnCode_t take() { return access(Type::Read::take); }
    DDS_ReturnCode_t give_back() { return Type::Read::return_loan(reader_, &data, &infos); }

    DDS_UnsignedLong size() const { return Type::Seq::get_length(&data); }
    const T &at(DDS_Long index) const { return *Type::Seq::get_reference(&data, index); }
    const DDS_SampleInfo &info(DDS_Long index) const {
        return *DDS_SampleInfoSeq_get_reference(&infos, index);
    }
    // Returns the numbers of the samples, in order.
    std::vector<DDS_Long> numbers() const {
        std::vector<DDS_Long> result;
        for (DDS_UnsignedLong i = 0; i < size(); ++i) {
            result.push_back(Type::number(at(static_cast<DDS_Long>(i))));
        }
        return result;
    }
    // True when the samples are copies in the sequence's own elements.
    bool is_owned() const { return Type::Seq::has_ownership(&data) != DDS_BOOLEAN_FALSE; }

    typename Type::Sequence data = DDS_SEQUENCE_INITIALIZER;
    DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;

  private:
    template <typename Operation>
    DDS_ReturnCode_t access(Operation operation) {
        return operation(reader_, &data, &infos, DDS_LENGTH_UNLIMITED, DDS_ANY_SAMPLE_STATE,
                         DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
    }

    typename Type::Reader *reader_;
};

// A time stamp that no clock gives, write parameters with one, and whether a sample carries it.
constexpr DDS_Time_t kStamp = {1700000000, 123456789};

inline DDS_WriteParams_t params_of(DDS_InstanceHandle_t handle, const DDS_Time_t &stamp) {
    DDS_WriteParams_t params = DDS_WRITEPARAMS_DEFAULT;
    params.handle = handle;
    params.source_timestamp = stamp;
    return params;
}
inline void expect_stamp(const DDS_SampleInfo &info, const DDS_Time_t &stamp) {
    EXPECT_EQ(info.source_timestamp.sec, stamp.sec);
    EXPECT_EQ(info.source_timestamp.nanosec, stamp.nanosec);
}

// A read condition for everything; it goes with the reader.
inline DDS_ReadCondition *any_state(DDS_DataReader *reader) {
    return DDS_DataReader_create_readcondition(reader, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
                                               DDS_ANY_INSTANCE_STATE);
}

// A read or take that fills sequences, in one of its twelve forms.
template <typename T>
struct ReadForm {
    using Type = TopicType<T>;

    const char *name;
    bool take;
    bool by_condition;
    // Calls the form; it adds any state, the handle, and the condition.
    std::function<DDS_ReturnCode_t(typename Type::Reader *, typename Type::Sequence *,
                                   DDS_SampleInfoSeq *, DDS_Long)>
        call;
};

// All twelve forms. `handle` is for the forms of one instance, `previous` for those of the next.
template <typename T>
std::vector<ReadForm<T>> read_forms(DDS_InstanceHandle_t handle, DDS_InstanceHandle_t previous,
                                    DDS_ReadCondition *condition) {
    using Type = TopicType<T>;
    using Reader = typename Type::Reader;
    using Sequence = typename Type::Sequence;
    std::vector<ReadForm<T>> forms;
    const auto add = [&](const char *name, bool take, bool by_condition, auto call) {
        forms.push_back({name, take, by_condition, call});
    };
    const auto add_all = [&](bool take, auto all, auto instance, auto next) {
        add(take ? "take" : "read", take, false,
            [=](Reader *r, Sequence *d, DDS_SampleInfoSeq *i, DDS_Long m) {
                return all(r, d, i, m, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
                           DDS_ANY_INSTANCE_STATE);
            });
        add(take ? "take_instance" : "read_instance", take, false,
            [=](Reader *r, Sequence *d, DDS_SampleInfoSeq *i, DDS_Long m) {
                return instance(r, d, i, m, handle, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
                                DDS_ANY_INSTANCE_STATE);
            });
        add(take ? "take_next_instance" : "read_next_instance", take, false,
            [=](Reader *r, Sequence *d, DDS_SampleInfoSeq *i, DDS_Long m) {
                return next(r, d, i, m, previous, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
                            DDS_ANY_INSTANCE_STATE);
            });
    };
    const auto add_conditional = [&](bool take, auto all, auto instance, auto next) {
        add(take ? "take_w_condition" : "read_w_condition", take, true,
            [=](Reader *r, Sequence *d, DDS_SampleInfoSeq *i, DDS_Long m) {
                return all(r, d, i, m, condition);
            });
        add(take ? "take_instance_w_condition" : "read_instance_w_condition", take, true,
            [=](Reader *r, Sequence *d, DDS_SampleInfoSeq *i, DDS_Long m) {
                return instance(r, d, i, m, handle, condition);
            });
        add(take ? "take_next_instance_w_condition" : "read_next_instance_w_condition", take, true,
            [=](Reader *r, Sequence *d, DDS_SampleInfoSeq *i, DDS_Long m) {
                return next(r, d, i, m, previous, condition);
            });
    };
    using Read = typename Type::Read;
    add_all(false, Read::read, Read::read_instance, Read::read_next_instance);
    add_conditional(false, Read::read_w_condition, Read::read_instance_w_condition,
                    Read::read_next_instance_w_condition);
    add_all(true, Read::take, Read::take_instance, Read::take_next_instance);
    add_conditional(true, Read::take_w_condition, Read::take_instance_w_condition,
                    Read::take_next_instance_w_condition);
    return forms;
}

}  // namespace support
