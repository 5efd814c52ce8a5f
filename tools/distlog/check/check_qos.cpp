// SPDX-License-Identifier: Apache-2.0
// The QoS in force, which the logger tells without being started.
#include "check/check_qos.hpp"

#include <fmt/format.h>
#include <vur_dl/DDSEntities.h>

#include <memory>

#include "command/failure.hpp"
#include "kolt_internal/owned_qos.hpp"
#include "net/endpoints.hpp"

namespace distlog::check {
namespace {

// A property that the logger adds to its State writer, whose first sample is written when a reader
// comes.
constexpr const char *kDeferredWrite = KOLT_DEFERRED_WRITE_PROPERTY;

using RegisterType = DDS_ReturnCode_t (*)(DDS_DomainParticipant *, const char *);
struct TopicRow {
    const char *name;
    const char *type_name;
    RegisterType register_type;
};
template <typename T>
constexpr TopicRow kRowOf{TypeOf<T>::kTopicName, TypeOf<T>::kTypeName, TypeOf<T>::kRegisterType};
constexpr TopicRow kLog = kRowOf<VUR_DL_LogMessage>;
constexpr TopicRow kState = kRowOf<VUR_DL_ADMIN_State>;
constexpr TopicRow kRequest = kRowOf<VUR_DL_ADMIN_CommandRequest>;
constexpr TopicRow kResponse = kRowOf<VUR_DL_ADMIN_CommandResponse>;

// The functions that return the QoS of one kind of entity: the logger's, a profile's, the default.
template <typename Qos>
struct Family {
    std::string_view kind;
    DDS_ReturnCode_t (*effective)(VUR_DL_DDSEntities *, Qos *, const char *topic);
    DDS_ReturnCode_t (*of_profile)(DDS_DomainParticipantFactory *, Qos *, const char *library,
                                   const char *profile, const char *topic);
    DDS_ReturnCode_t (*by_default)(DDS_DomainParticipant *, Qos *, const char *topic);
};

// Adapt functions that take no topic.
template <typename Qos, auto kFunction>
DDS_ReturnCode_t without_topic(VUR_DL_DDSEntities *record, Qos *qos, const char *) {
    return kFunction(record, qos);
}
template <typename Qos, auto kFunction>
DDS_ReturnCode_t without_topic(DDS_DomainParticipant *participant, Qos *qos, const char *) {
    return kFunction(participant, qos);
}
template <typename Qos, auto kFunction>
DDS_ReturnCode_t without_topic(DDS_DomainParticipantFactory *factory, Qos *qos, const char *library,
                               const char *profile, const char *) {
    return kFunction(factory, qos, library, profile);
}

constexpr Family<DDS_PublisherQos> kPublisher{
    "publisher", without_topic<DDS_PublisherQos, VUR_DL_DDSEntities_getPublisherQos>,
    without_topic<DDS_PublisherQos, DDS_DomainParticipantFactory_get_publisher_qos_from_profile>,
    without_topic<DDS_PublisherQos, DDS_DomainParticipant_get_default_publisher_qos>};
constexpr Family<DDS_SubscriberQos> kSubscriber{
    "subscriber", without_topic<DDS_SubscriberQos, VUR_DL_DDSEntities_getSubscriberQos>,
    without_topic<DDS_SubscriberQos, DDS_DomainParticipantFactory_get_subscriber_qos_from_profile>,
    without_topic<DDS_SubscriberQos, DDS_DomainParticipant_get_default_subscriber_qos>};
constexpr Family<DDS_TopicQos> kTopic{
    "topic", VUR_DL_DDSEntities_getTopicQos,
    DDS_DomainParticipantFactory_get_topic_qos_from_profile_w_topic_name,
    DDS_DomainParticipant_get_default_topic_qos_w_topic_name};
constexpr Family<DDS_DataWriterQos> kWriter{
    "datawriter", VUR_DL_DDSEntities_getDataWriterQos,
    DDS_DomainParticipantFactory_get_datawriter_qos_from_profile_w_topic_name,
    DDS_DomainParticipant_get_default_datawriter_qos_w_topic_name};
constexpr Family<DDS_DataReaderQos> kReader{
    "datareader", VUR_DL_DDSEntities_getDataReaderQos,
    DDS_DomainParticipantFactory_get_datareader_qos_from_profile_w_topic_name,
    DDS_DomainParticipant_get_default_datareader_qos_w_topic_name};

void demand(DDS_ReturnCode_t result, std::string_view what) {
    if (result != DDS_RETCODE_OK) {
        throw Failure(fmt::format("unable to find out about {}: {}", what,
                                  KOLT_ReturnCode_to_string(result)));
    }
}

// Creates everything that the logger would create, in a participant that is not enabled.
class DryRun {
  public:
    DryRun(VUR_DL_Options &options, MiddlewareLog &log) : options_(options), log_(log) {
        log_.take();
        kolt::qos::FactoryQos qos;
        demand(DDS_DomainParticipantFactory_get_qos(factory_, qos.get()), "the factory's QoS");
        qos->entity_factory.autoenable_created_entities = DDS_BOOLEAN_FALSE;
        demand(DDS_DomainParticipantFactory_set_qos(factory_, qos.get()), "the factory's QoS");
        renew_record();
        from_profile_ = VUR_DL_DDSEntities_doesQosLibraryAndProfileExist(
                            record_.get(), options_.qosLibrary, options_.qosProfile) != 0;
        log_.take();
    }
    ~DryRun() {
        options_.domainParticipant = nullptr;
        if (participant_ != nullptr) {
            DDS_DomainParticipant_delete_contained_entities(participant_);
            DDS_DomainParticipantFactory_delete_participant(factory_, participant_);
        }
    }
    DryRun(const DryRun &) = delete;
    DryRun &operator=(const DryRun &) = delete;

    std::vector<Entity> run() {
        add_participant();
        if (participant_ != nullptr) {
            options_.domainParticipant = participant_;
            renew_record();
            DDS_Topic *log_topic = add_topic(kLog);
            DDS_Topic *state_topic = add_topic(kState);
            DDS_Publisher *publisher = add_publisher();
            add_writer(publisher, log_topic, kLog);
            add_writer(publisher, state_topic, kState);
            if (options_.remoteAdministrationEnabled != 0) {
                DDS_Subscriber *subscriber = add_subscriber();
                DDS_Topic *request_topic = add_topic(kRequest);
                DDS_Topic *response_topic = add_topic(kResponse);
                add_reader(subscriber, request_topic, kRequest);
                add_writer(publisher, response_topic, kResponse);
            }
        }
        return std::move(entities_);
    }

  private:
    using RecordPtr = std::unique_ptr<VUR_DL_DDSEntities, void (*)(VUR_DL_DDSEntities *)>;

    void renew_record() {
        record_.reset(VUR_DL_DDSEntities_createForQos(factory_, &options_));
        if (record_ == nullptr) {
            throw Failure("out of memory");
        }
    }

    // Takes the entity down with its QoS, and why it could not be created, when it could not.
    template <typename Qos>
    void note(std::string_view kind, std::string_view topic, const Qos &effective, const Qos &said,
              bool created) {
        std::string refusal;
        for (const std::string &message : log_.take()) {
            refusal += (refusal.empty() ? "" : "; ") + message;
        }
        if (created) {
            refusal.clear();
        } else if (refusal.empty()) {
            refusal = "the middleware gives no reason";
        }
        entities_.push_back({kind, topic, policies_of(effective, said), refusal});
    }

    void add_participant() {
        kolt::qos::ParticipantQos effective(kolt::qos::kUnfilled);
        kolt::qos::ParticipantQos said;
        demand(
            VUR_DL_DDSEntities_getDomainParticipantQos(record_.get(), effective.get(), &options_),
            "the participant's QoS");
        demand(from_profile_
                   ? DDS_DomainParticipantFactory_get_participant_qos_from_profile(
                         factory_, said.get(), options_.qosLibrary, options_.qosProfile)
                   : DDS_DomainParticipantFactory_get_default_participant_qos(factory_, said.get()),
               "the participant's QoS");
        participant_ = DDS_DomainParticipantFactory_create_participant(
            factory_, static_cast<DDS_DomainId_t>(options_.domainId), effective.get(), nullptr,
            DDS_STATUS_MASK_NONE);
        note("participant", "", *effective, *said, participant_ != nullptr);
    }

    // Adds one entity, which `create(qos)` returns. With `possible` false the entity needs another
    // one that was refused: it is not tried and does not count as refused itself.
    template <typename Qos, typename Create>
    auto add(const Family<Qos> &family, const char *topic, bool possible, Create create) {
        kolt::qos::OwnedQos<Qos> effective(kolt::qos::kUnfilled);
        kolt::qos::OwnedQos<Qos> said;
        demand(family.effective(record_.get(), effective.get(), topic), family.kind);
        demand(from_profile_ ? family.of_profile(factory_, said.get(), options_.qosLibrary,
                                                 options_.qosProfile, topic)
                             : family.by_default(participant_, said.get(), topic),
               family.kind);
        const auto created = possible ? create(*effective) : nullptr;
        note(family.kind, topic == nullptr ? "" : topic, *effective, *said,
             !possible || created != nullptr);
        return created;
    }

    DDS_Topic *add_topic(const TopicRow &row) {
        return add(kTopic, row.name, true, [&](const DDS_TopicQos &qos) {
            demand(row.register_type(participant_, row.type_name), "a type");
            return DDS_DomainParticipant_create_topic(participant_, row.name, row.type_name, &qos,
                                                      nullptr, DDS_STATUS_MASK_NONE);
        });
    }

    DDS_Publisher *add_publisher() {
        return add(kPublisher, nullptr, true, [&](const DDS_PublisherQos &qos) {
            return DDS_DomainParticipant_create_publisher(participant_, &qos, nullptr,
                                                          DDS_STATUS_MASK_NONE);
        });
    }

    DDS_Subscriber *add_subscriber() {
        return add(kSubscriber, nullptr, true, [&](const DDS_SubscriberQos &qos) {
            return DDS_DomainParticipant_create_subscriber(participant_, &qos, nullptr,
                                                           DDS_STATUS_MASK_NONE);
        });
    }

    void add_writer(DDS_Publisher *publisher, DDS_Topic *topic, const TopicRow &row) {
        const bool possible = publisher != nullptr && topic != nullptr;
        add(kWriter, row.name, possible, [&](DDS_DataWriterQos &qos) {
            if (row.name == kState.name) {
                demand(DDS_PropertyQosPolicyHelper_assert_property(&qos.property, kDeferredWrite,
                                                                   "true", DDS_BOOLEAN_FALSE),
                       "a property");
            }
            return DDS_Publisher_create_datawriter(publisher, topic, &qos, nullptr,
                                                   DDS_STATUS_MASK_NONE);
        });
    }

    void add_reader(DDS_Subscriber *subscriber, DDS_Topic *topic, const TopicRow &row) {
        const bool possible = subscriber != nullptr && topic != nullptr;
        add(kReader, row.name, possible, [&](const DDS_DataReaderQos &qos) {
            return DDS_Subscriber_create_datareader(subscriber,
                                                    DDS_Topic_as_topicdescription(topic), &qos,
                                                    nullptr, DDS_STATUS_MASK_NONE);
        });
    }

    DDS_DomainParticipantFactory *factory_ = DDS_DomainParticipantFactory_get_instance();
    VUR_DL_Options &options_;
    MiddlewareLog &log_;
    RecordPtr record_{nullptr, VUR_DL_DDSEntities_destroy};
    DDS_DomainParticipant *participant_ = nullptr;
    bool from_profile_ = false;
    std::vector<Entity> entities_;
};

}  // namespace

std::vector<Entity> entities_of(VUR_DL_Options &options, MiddlewareLog &log) {
    return DryRun(options, log).run();
}

std::string name_of(const Entity &entity) {
    return entity.topic.empty() ? std::string(entity.kind)
                                : fmt::format("{} of {}", entity.kind, entity.topic);
}

}  // namespace distlog::check
