// SPDX-License-Identifier: Apache-2.0
// Typed readers and writers of the logger's topics, owned by scope.
#pragma once

#include <fmt/format.h>
#include <vur_dl/DDSEntities.h>
#include <vur_dl/distlogSupport.h>

#include <memory>
#include <utility>

#include "command/failure.hpp"
#include "kolt_internal/owned_qos.hpp"
#include "net/session.hpp"

namespace distlog {

// The typed functions of one topic type, gathered under names that templates can use.
template <typename T>
struct TypeOf;

#define DISTLOG_TOPIC_TYPE(T, TOPIC_NAME, TYPE_NAME)                        \
    template <>                                                             \
    struct TypeOf<T> {                                                      \
        using Seq = T##Seq;                                                 \
        using Reader = T##DataReader;                                       \
        using Writer = T##DataWriter;                                       \
        static constexpr const char *kTopicName = TOPIC_NAME;               \
        static constexpr const char *kTypeName = TYPE_NAME;                 \
        static constexpr auto kRegisterType = T##TypeSupport_register_type; \
        static constexpr auto kCreateData = T##TypeSupport_create_data;     \
        static constexpr auto kDeleteData = T##TypeSupport_delete_data;     \
        static constexpr auto kReferenceAt = T##Seq_get_reference;          \
        static constexpr auto kLength = T##Seq_get_length;                  \
        static constexpr auto kNarrowReader = T##DataReader_narrow;         \
        static constexpr auto kTake = T##DataReader_take;                   \
        static constexpr auto kReturnLoan = T##DataReader_return_loan;      \
        static constexpr auto kNarrowWriter = T##DataWriter_narrow;         \
        static constexpr auto kWrite = T##DataWriter_write;                 \
    }

DISTLOG_TOPIC_TYPE(VUR_DL_LogMessage, VUR_DL_LOG_TOPIC_NAME, VUR_DL_LOG_TYPE_NAME);
DISTLOG_TOPIC_TYPE(VUR_DL_ADMIN_State, VUR_DL_STATE_TOPIC_NAME, VUR_DL_STATE_TYPE_NAME);
DISTLOG_TOPIC_TYPE(VUR_DL_ADMIN_CommandRequest, VUR_DL_COMMAND_REQUEST_TOPIC_NAME,
                   VUR_DL_COMMAND_REQUEST_TYPE_NAME);
DISTLOG_TOPIC_TYPE(VUR_DL_ADMIN_CommandResponse, VUR_DL_COMMAND_RESPONSE_TOPIC_NAME,
                   VUR_DL_COMMAND_RESPONSE_TYPE_NAME);
#undef DISTLOG_TOPIC_TYPE

// Returns the topic of a type, which is created at the first call. Throws Failure.
template <typename T>
DDS_Topic *topic_of(const Session &session) {
    using Type = TypeOf<T>;
    DDS_TopicDescription *known =
        DDS_DomainParticipant_lookup_topicdescription(session.participant(), Type::kTopicName);
    if (DDS_Topic *topic = DDS_Topic_narrow(known)) {
        return topic;
    }
    DDS_Topic *topic = nullptr;
    if (Type::kRegisterType(session.participant(), Type::kTypeName) == DDS_RETCODE_OK) {
        topic = DDS_DomainParticipant_create_topic(session.participant(), Type::kTopicName,
                                                   Type::kTypeName, nullptr, nullptr,
                                                   DDS_STATUS_MASK_NONE);
    }
    if (topic == nullptr) {
        throw Failure(fmt::format("unable to create topic {}", Type::kTopicName));
    }
    return topic;
}

// Says how a reader keeps samples until they are taken.
struct ReaderSettings {
    DDS_DurabilityQosPolicyKind durability = DDS_VOLATILE_DURABILITY_QOS;
    DDS_HistoryQosPolicyKind history = DDS_KEEP_ALL_HISTORY_QOS;
    DDS_Long depth = 1;
    DDS_Long max_samples = DDS_LENGTH_UNLIMITED;
};

// A reliable reader with a condition that triggers while there are samples in it.
template <typename T>
class Reader {
  public:
    using Type = TypeOf<T>;

    // Throws Failure.
    Reader(const Session &session, const ReaderSettings &settings)
        : subscriber_(session.subscriber()) {
        kolt::qos::ReaderQos qos;
        qos->reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        qos->durability.kind = settings.durability;
        qos->history.kind = settings.history;
        qos->history.depth = settings.depth;
        qos->resource_limits.max_samples = settings.max_samples;
        untyped_ = DDS_Subscriber_create_datareader(
            subscriber_, DDS_Topic_as_topicdescription(topic_of<T>(session)), qos.get(), nullptr,
            DDS_STATUS_MASK_NONE);
        typed_ = Type::kNarrowReader(untyped_);
        condition_ = typed_ == nullptr ? nullptr
                                       : DDS_DataReader_create_readcondition(
                                             untyped_, DDS_ANY_SAMPLE_STATE, DDS_ANY_VIEW_STATE,
                                             DDS_ANY_INSTANCE_STATE);
        if (condition_ == nullptr) {
            throw Failure(fmt::format("unable to read topic {}", Type::kTopicName));
        }
    }
    ~Reader() {
        DDS_DataReader_delete_readcondition(untyped_, condition_);
        DDS_Subscriber_delete_datareader(subscriber_, untyped_);
    }
    Reader(const Reader &) = delete;
    Reader &operator=(const Reader &) = delete;

    DDS_Condition *condition() const { return DDS_ReadCondition_as_condition(condition_); }

    // Returns the number of writers that are matched at this moment.
    int matched_writers() const {
        DDS_SubscriptionMatchedStatus status{};
        DDS_DataReader_get_subscription_matched_status(untyped_, &status);
        return status.current_count;
    }

    // Takes the samples and passes each to `visit(const T &, const DDS_SampleInfo &)`. Then calls
    // `finish()` while the samples are still on loan. Throws Failure when the reader fails.
    template <typename Visit, typename Finish>
    void take(Visit visit, Finish finish) {
        typename Type::Seq samples = DDS_SEQUENCE_INITIALIZER;
        DDS_SampleInfoSeq infos = DDS_SEQUENCE_INITIALIZER;
        const DDS_ReturnCode_t result =
            Type::kTake(typed_, &samples, &infos, DDS_LENGTH_UNLIMITED, DDS_ANY_SAMPLE_STATE,
                        DDS_ANY_VIEW_STATE, DDS_ANY_INSTANCE_STATE);
        if (result == DDS_RETCODE_NO_DATA) {
            return;
        }
        if (result != DDS_RETCODE_OK) {
            throw Failure(fmt::format("unable to take from topic {}: {}", Type::kTopicName,
                                      KOLT_ReturnCode_to_string(result)));
        }
        const auto give_back = [&](typename Type::Seq *) {
            Type::kReturnLoan(typed_, &samples, &infos);
        };
        const std::unique_ptr<typename Type::Seq, decltype(give_back)> loan(&samples, give_back);
        const auto count = static_cast<DDS_Long>(Type::kLength(&samples));
        for (DDS_Long i = 0; i < count; ++i) {
            visit(*Type::kReferenceAt(&samples, i), *DDS_SampleInfoSeq_get_reference(&infos, i));
        }
        finish();
    }
    template <typename Visit>
    void take(Visit visit) {
        take(std::move(visit), [] {});
    }

  private:
    DDS_Subscriber *subscriber_;
    DDS_DataReader *untyped_ = nullptr;
    typename Type::Reader *typed_ = nullptr;
    DDS_ReadCondition *condition_ = nullptr;
};

// A reliable writer that keeps everything until it is acknowledged, with a condition that triggers
// when a reader comes or goes.
template <typename T>
class Writer {
  public:
    using Type = TypeOf<T>;

    // Throws Failure.
    explicit Writer(const Session &session) : publisher_(session.publisher()) {
        kolt::qos::WriterQos qos;
        qos->reliability.kind = DDS_RELIABLE_RELIABILITY_QOS;
        qos->reliability.max_blocking_time = DDS_Duration_t{1, 0};
        qos->history.kind = DDS_KEEP_ALL_HISTORY_QOS;
        untyped_ = DDS_Publisher_create_datawriter(publisher_, topic_of<T>(session), qos.get(),
                                                   nullptr, DDS_STATUS_MASK_NONE);
        typed_ = Type::kNarrowWriter(untyped_);
        if (typed_ == nullptr) {
            throw Failure(fmt::format("unable to write topic {}", Type::kTopicName));
        }
        DDS_StatusCondition_set_enabled_statuses(status_condition(),
                                                 DDS_PUBLICATION_MATCHED_STATUS);
    }
    ~Writer() { DDS_Publisher_delete_datawriter(publisher_, untyped_); }
    Writer(const Writer &) = delete;
    Writer &operator=(const Writer &) = delete;

    DDS_Condition *match_condition() const {
        return DDS_StatusCondition_as_condition(status_condition());
    }
    // Returns the number of readers that have ever matched; resets the condition.
    int matched_readers_in_total() const {
        DDS_PublicationMatchedStatus status{};
        DDS_DataWriter_get_publication_matched_status(untyped_, &status);
        return status.total_count;
    }
    DDS_ReturnCode_t write(const T &sample) {
        return Type::kWrite(typed_, &sample, DDS_HANDLE_NIL);
    }

  private:
    DDS_StatusCondition *status_condition() const {
        return DDS_Entity_get_statuscondition(DDS_DataWriter_as_entity(untyped_));
    }

    DDS_Publisher *publisher_;
    DDS_DataWriter *untyped_ = nullptr;
    typename Type::Writer *typed_ = nullptr;
};

// Owns a sample with its strings and sequences allocated.
template <typename T>
struct SampleDeleter {
    void operator()(T *sample) const { TypeOf<T>::kDeleteData(sample); }
};
template <typename T>
using Sample = std::unique_ptr<T, SampleDeleter<T>>;
template <typename T>
Sample<T> make_sample() {
    Sample<T> sample(TypeOf<T>::kCreateData());
    if (sample == nullptr) {
        throw Failure("out of memory");
    }
    return sample;
}

}  // namespace distlog
