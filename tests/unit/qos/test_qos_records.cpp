// SPDX-License-Identifier: Apache-2.0
// QoS records: the standard's defaults, deep copies, comparison, properties.
#include <gtest/gtest.h>
#include <kolt/domain.h>
#include <kolt/qos.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

namespace {

// The functions of one record type.
template <typename Qos>
struct Functions;
#define QOS_FUNCTIONS(Qos)                                   \
    template <>                                              \
    struct Functions<Qos> {                                  \
        static constexpr auto initialize = Qos##_initialize; \
        static constexpr auto finalize = Qos##_finalize;     \
        static constexpr auto copy = Qos##_copy;             \
        static constexpr auto equals = Qos##_equals;         \
    }
QOS_FUNCTIONS(DDS_DomainParticipantFactoryQos);
QOS_FUNCTIONS(DDS_DomainParticipantQos);
QOS_FUNCTIONS(DDS_TopicQos);
QOS_FUNCTIONS(DDS_PublisherQos);
QOS_FUNCTIONS(DDS_SubscriberQos);
QOS_FUNCTIONS(DDS_DataWriterQos);
QOS_FUNCTIONS(DDS_DataReaderQos);

template <typename Qos>
class Record {
  public:
    Record() {
        // Must not depend on the former contents of the memory.
        std::memset(&qos_, 0x5A, sizeof(qos_));
        EXPECT_EQ(Functions<Qos>::initialize(&qos_), DDS_RETCODE_OK);
    }
    ~Record() { EXPECT_EQ(Functions<Qos>::finalize(&qos_), DDS_RETCODE_OK); }
    Record(const Record &) = delete;
    Record &operator=(const Record &) = delete;
    Qos *operator->() { return &qos_; }
    Qos *get() { return &qos_; }

  private:
    Qos qos_;
};

template <typename Qos>
class QosRecord : public testing::Test {};
using Records =
    testing::Types<DDS_DomainParticipantFactoryQos, DDS_DomainParticipantQos, DDS_TopicQos,
                   DDS_PublisherQos, DDS_SubscriberQos, DDS_DataWriterQos, DDS_DataReaderQos>;
TYPED_TEST_SUITE(QosRecord, Records);

TYPED_TEST(QosRecord, FreshRecordsAreEqual) {
    Record<TypeParam> left;
    Record<TypeParam> right;
    EXPECT_TRUE(Functions<TypeParam>::equals(left.get(), right.get()));
}

TYPED_TEST(QosRecord, RefusesNull) {
    using F = Functions<TypeParam>;
    Record<TypeParam> qos;
    EXPECT_EQ(F::initialize(nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(F::finalize(nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(F::copy(nullptr, qos.get()), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(F::copy(qos.get(), nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_FALSE(F::equals(nullptr, qos.get()));
    EXPECT_FALSE(F::equals(qos.get(), nullptr));
    EXPECT_FALSE(F::equals(nullptr, nullptr));
}

TYPED_TEST(QosRecord, CanBeInitialisedAgainAfterFinalising) {
    using F = Functions<TypeParam>;
    Record<TypeParam> fresh;
    TypeParam qos;
    ASSERT_EQ(F::initialize(&qos), DDS_RETCODE_OK);
    EXPECT_EQ(F::finalize(&qos), DDS_RETCODE_OK);
    EXPECT_EQ(F::finalize(&qos), DDS_RETCODE_OK);
    ASSERT_EQ(F::initialize(&qos), DDS_RETCODE_OK);
    EXPECT_TRUE(F::equals(&qos, fresh.get()));
    EXPECT_EQ(F::finalize(&qos), DDS_RETCODE_OK);
}

TYPED_TEST(QosRecord, CopyOntoItselfChangesNothing) {
    using F = Functions<TypeParam>;
    Record<TypeParam> qos;
    Record<TypeParam> fresh;
    EXPECT_EQ(F::copy(qos.get(), qos.get()), DDS_RETCODE_OK);
    EXPECT_TRUE(F::equals(qos.get(), fresh.get()));
}

template <typename Qos>
void expect_common_endpoint_defaults(Qos &qos) {
    EXPECT_EQ(qos.durability.kind, DDS_VOLATILE_DURABILITY_QOS);
    EXPECT_TRUE(DDS_Duration_is_infinite(&qos.deadline.period));
    EXPECT_EQ(qos.latency_budget.duration.sec, 0);
    EXPECT_EQ(qos.latency_budget.duration.nanosec, 0U);
    EXPECT_EQ(qos.liveliness.kind, DDS_AUTOMATIC_LIVELINESS_QOS);
    EXPECT_TRUE(DDS_Duration_is_infinite(&qos.liveliness.lease_duration));
    EXPECT_EQ(qos.reliability.max_blocking_time.sec, 0);
    EXPECT_EQ(qos.reliability.max_blocking_time.nanosec, 100000000U);
    EXPECT_EQ(qos.destination_order.kind, DDS_BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS);
    EXPECT_EQ(qos.history.kind, DDS_KEEP_LAST_HISTORY_QOS);
    EXPECT_EQ(qos.history.depth, 1);
    EXPECT_EQ(qos.resource_limits.max_samples, DDS_LENGTH_UNLIMITED);
    EXPECT_EQ(qos.resource_limits.max_instances, DDS_LENGTH_UNLIMITED);
    EXPECT_EQ(qos.resource_limits.max_samples_per_instance, DDS_LENGTH_UNLIMITED);
    EXPECT_EQ(qos.ownership.kind, DDS_SHARED_OWNERSHIP_QOS);
    EXPECT_EQ(DDS_ShortSeq_get_length(&qos.representation.value), 0U);
    EXPECT_FALSE(qos.protocol.vendor_specific_entity);
}

template <typename Qos>
void expect_writing_side_defaults(Qos &qos) {
    EXPECT_EQ(qos.durability_service.service_cleanup_delay.sec, 0);
    EXPECT_EQ(qos.durability_service.history_kind, DDS_KEEP_LAST_HISTORY_QOS);
    EXPECT_EQ(qos.durability_service.history_depth, 1);
    EXPECT_EQ(qos.durability_service.max_samples, DDS_LENGTH_UNLIMITED);
    EXPECT_EQ(qos.durability_service.max_instances, DDS_LENGTH_UNLIMITED);
    EXPECT_EQ(qos.durability_service.max_samples_per_instance, DDS_LENGTH_UNLIMITED);
    EXPECT_EQ(qos.transport_priority.value, 0);
    EXPECT_TRUE(DDS_Duration_is_infinite(&qos.lifespan.duration));
}

TEST(QosDefaults, Topic) {
    Record<DDS_TopicQos> qos;
    expect_common_endpoint_defaults(*qos.get());
    expect_writing_side_defaults(*qos.get());
    EXPECT_EQ(qos->reliability.kind, DDS_BEST_EFFORT_RELIABILITY_QOS);
    EXPECT_EQ(DDS_OctetSeq_get_length(&qos->topic_data.value), 0U);
}

TEST(QosDefaults, DataWriter) {
    Record<DDS_DataWriterQos> qos;
    expect_common_endpoint_defaults(*qos.get());
    expect_writing_side_defaults(*qos.get());
    EXPECT_EQ(qos->reliability.kind, DDS_RELIABLE_RELIABILITY_QOS);
    EXPECT_EQ(qos->ownership_strength.value, 0);
    EXPECT_TRUE(qos->writer_data_lifecycle.autodispose_unregistered_instances);
    EXPECT_EQ(DDS_OctetSeq_get_length(&qos->user_data.value), 0U);
    EXPECT_EQ(DDS_PropertySeq_get_length(&qos->property.value), 0U);
}

TEST(QosDefaults, DataReader) {
    Record<DDS_DataReaderQos> qos;
    expect_common_endpoint_defaults(*qos.get());
    EXPECT_EQ(qos->reliability.kind, DDS_BEST_EFFORT_RELIABILITY_QOS);
    EXPECT_EQ(qos->time_based_filter.minimum_separation.sec, 0);
    EXPECT_EQ(qos->time_based_filter.minimum_separation.nanosec, 0U);
    const auto &lifecycle = qos->reader_data_lifecycle;
    EXPECT_TRUE(DDS_Duration_is_infinite(&lifecycle.autopurge_nowriter_samples_delay));
    EXPECT_TRUE(DDS_Duration_is_infinite(&lifecycle.autopurge_disposed_samples_delay));
    EXPECT_EQ(qos->type_consistency.kind, DDS_ALLOW_TYPE_COERCION);
    EXPECT_TRUE(qos->type_consistency.ignore_sequence_bounds);
    EXPECT_TRUE(qos->type_consistency.ignore_string_bounds);
    EXPECT_FALSE(qos->type_consistency.ignore_member_names);
    EXPECT_FALSE(qos->type_consistency.prevent_type_widening);
    EXPECT_FALSE(qos->type_consistency.force_type_validation);
}

TEST(QosDefaults, PublisherAndSubscriber) {
    Record<DDS_PublisherQos> publisher;
    EXPECT_EQ(publisher->presentation.access_scope, DDS_INSTANCE_PRESENTATION_QOS);
    EXPECT_FALSE(publisher->presentation.coherent_access);
    EXPECT_FALSE(publisher->presentation.ordered_access);
    EXPECT_EQ(DDS_StringSeq_get_length(&publisher->partition.name), 0U);
    EXPECT_TRUE(publisher->entity_factory.autoenable_created_entities);
    Record<DDS_SubscriberQos> subscriber;
    EXPECT_EQ(subscriber->presentation.access_scope, DDS_INSTANCE_PRESENTATION_QOS);
    EXPECT_EQ(DDS_OctetSeq_get_length(&subscriber->group_data.value), 0U);
    EXPECT_TRUE(subscriber->entity_factory.autoenable_created_entities);
}

TEST(QosDefaults, ParticipantAndFactory) {
    Record<DDS_DomainParticipantQos> participant;
    EXPECT_TRUE(participant->entity_factory.autoenable_created_entities);
    EXPECT_EQ(participant->participant_name.name, nullptr);
    EXPECT_EQ(participant->wire_protocol.rtps_host_id, 0U);
    EXPECT_FALSE(participant->protocol.vendor_specific_entity);
    Record<DDS_DomainParticipantFactoryQos> factory;
    EXPECT_TRUE(factory->entity_factory.autoenable_created_entities);
    EXPECT_EQ(DDS_StringSeq_get_length(&factory->profile.url_profile), 0U);
    EXPECT_EQ(DDS_StringSeq_get_length(&factory->profile.string_profile), 0U);
    EXPECT_FALSE(factory->profile.ignore_environment_profile);
    EXPECT_FALSE(factory->profile.ignore_user_profile);
}

// Changes that equals() must see, each on a fresh record.
template <typename Qos>
struct Change {
    const char *name;
    void (*apply)(Qos &qos);
};

template <typename Qos, std::size_t kCount>
void expect_each_change_seen_and_copied(const Change<Qos> (&changes)[kCount]) {
    using F = Functions<Qos>;
    for (const auto &change : changes) {
        SCOPED_TRACE(change.name);
        Record<Qos> fresh;
        Record<Qos> changed;
        change.apply(*changed.get());
        EXPECT_FALSE(F::equals(fresh.get(), changed.get()));
        EXPECT_FALSE(F::equals(changed.get(), fresh.get()));
        Record<Qos> copy;
        EXPECT_EQ(F::copy(copy.get(), changed.get()), DDS_RETCODE_OK);
        EXPECT_TRUE(F::equals(copy.get(), changed.get()));
        // Back again: a copy also shrinks lists and removes strings.
        EXPECT_EQ(F::copy(copy.get(), fresh.get()), DDS_RETCODE_OK);
        EXPECT_TRUE(F::equals(copy.get(), fresh.get()));
    }
}

void set_octets(DDS_OctetSeq &sequence, const std::string &text) {
    std::vector<DDS_Octet> bytes(text.begin(), text.end());
    ASSERT_TRUE(
        DDS_OctetSeq_from_array(&sequence, bytes.data(), static_cast<DDS_Long>(bytes.size())));
}

void add_string(DDS_StringSeq &sequence, const char *string) {
    const auto length = static_cast<DDS_Long>(DDS_StringSeq_get_length(&sequence));
    ASSERT_TRUE(DDS_StringSeq_ensure_length(&sequence, length + 1, length + 1));
    ASSERT_NE(DDS_String_replace(DDS_StringSeq_get_reference(&sequence, length), string), nullptr);
}

void add_property(DDS_PropertyQosPolicy &policy, const char *name, const char *value) {
    ASSERT_EQ(DDS_PropertyQosPolicyHelper_add_property(&policy, name, value, DDS_BOOLEAN_TRUE),
              DDS_RETCODE_OK);
}

TEST(QosCopy, DataWriter) {
    using Qos = DDS_DataWriterQos;
    const Change<Qos> changes[] = {
        {"durability", [](Qos &q) { q.durability.kind = DDS_TRANSIENT_LOCAL_DURABILITY_QOS; }},
        {"durability_service", [](Qos &q) { q.durability_service.max_samples = 7; }},
        {"cleanup", [](Qos &q) { q.durability_service.service_cleanup_delay.nanosec = 7; }},
        {"deadline",
         [](Qos &q) {
             q.deadline.period = {1, 2};
         }},
        {"latency_budget", [](Qos &q) { q.latency_budget.duration.sec = 3; }},
        {"liveliness", [](Qos &q) { q.liveliness.kind = DDS_MANUAL_BY_TOPIC_LIVELINESS_QOS; }},
        {"reliability", [](Qos &q) { q.reliability.kind = DDS_BEST_EFFORT_RELIABILITY_QOS; }},
        {"blocking", [](Qos &q) { q.reliability.max_blocking_time.sec = 1; }},
        {"destination_order",
         [](Qos &q) { q.destination_order.kind = DDS_BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS; }},
        {"history", [](Qos &q) { q.history.depth = 10; }},
        {"resource_limits", [](Qos &q) { q.resource_limits.max_instances = 1; }},
        {"transport_priority", [](Qos &q) { q.transport_priority.value = -4; }},
        {"lifespan",
         [](Qos &q) {
             q.lifespan.duration = {9, 0};
         }},
        {"user_data", [](Qos &q) { set_octets(q.user_data.value, "bytes"); }},
        {"ownership", [](Qos &q) { q.ownership.kind = DDS_EXCLUSIVE_OWNERSHIP_QOS; }},
        {"ownership_strength", [](Qos &q) { q.ownership_strength.value = 12; }},
        {"lifecycle",
         [](Qos &q) { q.writer_data_lifecycle.autodispose_unregistered_instances = 0; }},
        {"representation",
         [](Qos &q) {
             const DDS_Short ids[] = {DDS_XCDR2_DATA_REPRESENTATION};
             ASSERT_TRUE(DDS_ShortSeq_from_array(&q.representation.value, ids, 1));
         }},
        {"property", [](Qos &q) { add_property(q.property, "name", "value"); }},
        {"protocol", [](Qos &q) { q.protocol.vendor_specific_entity = DDS_BOOLEAN_TRUE; }}};
    expect_each_change_seen_and_copied(changes);
}

TEST(QosCopy, OtherRecords) {
    const Change<DDS_DomainParticipantQos> participant[] = {
        {"user_data", [](auto &q) { set_octets(q.user_data.value, "u"); }},
        {"entity_factory", [](auto &q) { q.entity_factory.autoenable_created_entities = 0; }},
        {"property", [](auto &q) { add_property(q.property, "", ""); }},
        {"name", [](auto &q) { q.participant_name.name = DDS_String_dup("me"); }},
        {"host", [](auto &q) { q.wire_protocol.rtps_host_id = 1; }},
        {"app", [](auto &q) { q.wire_protocol.rtps_app_id = 1; }}};
    expect_each_change_seen_and_copied(participant);
    const Change<DDS_PublisherQos> publisher[] = {
        {"access_scope", [](auto &q) { q.presentation.access_scope = DDS_TOPIC_PRESENTATION_QOS; }},
        {"partition",
         [](auto &q) {
             add_string(q.partition.name, "one");
             add_string(q.partition.name, "two");
         }},
        {"group_data", [](auto &q) { set_octets(q.group_data.value, "g"); }}};
    expect_each_change_seen_and_copied(publisher);
    const Change<DDS_SubscriberQos> subscriber[] = {
        {"coherent", [](auto &q) { q.presentation.coherent_access = DDS_BOOLEAN_TRUE; }},
        {"partition", [](auto &q) { add_string(q.partition.name, ""); }}};
    expect_each_change_seen_and_copied(subscriber);
    const Change<DDS_TopicQos> topic[] = {
        {"topic_data", [](auto &q) { set_octets(q.topic_data.value, "t"); }},
        {"history", [](auto &q) { q.history.kind = DDS_KEEP_ALL_HISTORY_QOS; }}};
    expect_each_change_seen_and_copied(topic);
    const Change<DDS_DataReaderQos> reader[] = {
        {"filter", [](auto &q) { q.time_based_filter.minimum_separation.sec = 1; }},
        {"purge", [](auto &q) { q.reader_data_lifecycle.autopurge_disposed_samples_delay = {}; }},
        {"consistency", [](auto &q) { q.type_consistency.kind = DDS_DISALLOW_TYPE_COERCION; }}};
    expect_each_change_seen_and_copied(reader);
    const Change<DDS_DomainParticipantFactoryQos> factory[] = {
        {"url", [](auto &q) { add_string(q.profile.url_profile, "file:///a.xml"); }},
        {"string", [](auto &q) { add_string(q.profile.string_profile, "<dds/>"); }},
        {"environment", [](auto &q) { q.profile.ignore_environment_profile = 1; }}};
    expect_each_change_seen_and_copied(factory);
}

TEST(QosCopy, IsDeep) {
    Record<DDS_DomainParticipantQos> copy;
    {
        Record<DDS_DomainParticipantQos> source;
        source->participant_name.name = DDS_String_dup("source");
        add_property(source->property, "name", "value");
        ASSERT_EQ(DDS_DomainParticipantQos_copy(copy.get(), source.get()), DDS_RETCODE_OK);
        source->participant_name.name[0] = 'S';
    }
    EXPECT_STREQ(copy->participant_name.name, "source");
    const DDS_Property_t *property =
        DDS_PropertyQosPolicyHelper_lookup_property(&copy->property, "name");
    ASSERT_NE(property, nullptr);
    EXPECT_STREQ(property->value, "value");
    EXPECT_TRUE(property->propagate);
}

TEST(PropertyHelper, AddsAssertsFindsRemoves) {
    Record<DDS_DataWriterQos> qos;
    DDS_PropertyQosPolicy *policy = &qos->property;
    using namespace std::string_literals;
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_lookup_property(policy, "a"), nullptr);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_add_property(policy, "a", "1", 0), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_add_property(policy, "a", "2", 0),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_assert_property(policy, "b", "2", 0), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_assert_property(policy, "c", "3", 1), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_assert_property(policy, "a", "one", 1), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_PropertySeq_get_length(&policy->value), 3U);
    const auto value_of = [&](const char *name) {
        const auto *property = DDS_PropertyQosPolicyHelper_lookup_property(policy, name);
        return property == nullptr ? "none"s : std::string(property->value);
    };
    EXPECT_EQ(value_of("a"), "one");
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_remove_property(policy, "a"), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_remove_property(policy, "a"),
              DDS_RETCODE_PRECONDITION_NOT_MET);
    EXPECT_EQ(DDS_PropertySeq_get_length(&policy->value), 2U);
    EXPECT_EQ(value_of("a"), "none");
    EXPECT_EQ(value_of("b"), "2");
    EXPECT_EQ(value_of("c"), "3");
    // Order is kept.
    EXPECT_STREQ(DDS_PropertySeq_get_reference(&policy->value, 0)->name, "b");
    EXPECT_STREQ(DDS_PropertySeq_get_reference(&policy->value, 1)->name, "c");
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_remove_property(policy, "c"), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_remove_property(policy, "b"), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_PropertySeq_get_length(&policy->value), 0U);
}

TEST(PropertyHelper, RefusesNull) {
    Record<DDS_DataWriterQos> qos;
    DDS_PropertyQosPolicy *policy = &qos->property;
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_add_property(nullptr, "a", "b", 0),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_add_property(policy, nullptr, "b", 0),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_add_property(policy, "a", nullptr, 0),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_assert_property(policy, nullptr, "b", 0),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_remove_property(nullptr, "a"), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_lookup_property(nullptr, "a"), nullptr);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_lookup_property(policy, nullptr), nullptr);
    EXPECT_EQ(DDS_PropertySeq_get_length(&policy->value), 0U);
}

// A property whose name was never set is none.
TEST(PropertyHelper, SkipsPropertiesWithoutName) {
    Record<DDS_DataWriterQos> qos;
    ASSERT_TRUE(DDS_PropertySeq_ensure_length(&qos->property.value, 1, 1));
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_lookup_property(&qos->property, ""), nullptr);
    EXPECT_EQ(DDS_PropertyQosPolicyHelper_assert_property(&qos->property, "a", "b", 0),
              DDS_RETCODE_OK);
    EXPECT_EQ(DDS_PropertySeq_get_length(&qos->property.value), 2U);
}

}  // namespace
