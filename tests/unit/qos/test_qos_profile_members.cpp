// SPDX-License-Identifier: Apache-2.0
// Every member of every QoS record can be set by a profile, and by nothing else; every enumerator
// and every symbolic duration has its value. The lists of members and names that the tests must
// cover come from the error messages of the reader itself and from the records' own types.
#include <gtest/gtest.h>
#include <kolt/domain.h>
#include <kolt/xml.h>

#include <algorithm>
#include <functional>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "support/config/qos_profiles.h"
#include "support/config/xml_document.h"

namespace {

using support::factory;
using support::Strings;

// ---- The records --------------------------------------------------------------------------------

// Converts to anything: as many of them as initialise a record, so many members it has.
struct Anything {
    template <typename T>
    operator T() const;
};
template <typename Record, typename... Fields>
consteval std::size_t member_count() {
    if constexpr (requires { Record{Fields{}..., Anything{}}; }) {
        return member_count<Record, Fields..., Anything>();
    } else {
        return sizeof...(Fields);
    }
}
static_assert(member_count<DDS_HistoryQosPolicy>() == 2);
static_assert(member_count<DDS_UserDataQosPolicy>() == 1);

// A member of a policy, content of its element that is not the default, and what that stands for.
template <typename Qos>
struct Row {
    std::string policy;
    std::string member;
    std::string content;
    std::size_t members_of_policy;
    bool (*holds)(const Qos &qos);
    void (*reset)(Qos &qos, const Qos &other);

    std::string element(const std::string &tag) const {
        return "<" + tag + "><" + policy + "><" + member + ">" + content + "</" + member + "></" +
               policy + "></" + tag + ">";
    }
};

bool same(const DDS_Duration_t &value, const DDS_Duration_t &expected) {
    return value.sec == expected.sec && value.nanosec == expected.nanosec;
}
bool same(const DDS_OctetSeq &value, const std::vector<DDS_Octet> &expected) {
    bool equal = DDS_OctetSeq_get_length(&value) == expected.size();
    for (std::size_t i = 0; equal && i < expected.size(); ++i) {
        equal = DDS_OctetSeq_get(&value, static_cast<DDS_Long>(i)) == expected[i];
    }
    return equal;
}
bool same(const DDS_ShortSeq &value, const std::vector<DDS_Short> &expected) {
    bool equal = DDS_ShortSeq_get_length(&value) == expected.size();
    for (std::size_t i = 0; equal && i < expected.size(); ++i) {
        equal = DDS_ShortSeq_get(&value, static_cast<DDS_Long>(i)) == expected[i];
    }
    return equal;
}
bool same(const DDS_StringSeq &value, const Strings &expected) {
    bool equal = DDS_StringSeq_get_length(&value) == expected.size();
    for (std::size_t i = 0; equal && i < expected.size(); ++i) {
        equal = DDS_StringSeq_get(&value, static_cast<DDS_Long>(i)) == expected[i];
    }
    return equal;
}
// One property, which is to be propagated.
bool same(const DDS_PropertySeq &value, const Strings &expected) {
    const DDS_Property_t *property = DDS_PropertySeq_get_length(&value) == 1U
                                         ? DDS_PropertySeq_get_reference(&value, 0)
                                         : nullptr;
    return property != nullptr && property->name == expected.at(0) &&
           property->value == expected.at(1) && property->propagate != DDS_BOOLEAN_FALSE;
}
bool same(const DDS_Char *value, const std::string &expected) {
    return value != nullptr && value == expected;
}
template <typename T>
requires std::is_arithmetic_v<T> || std::is_enum_v<T>
bool same(const T &value, const T &expected) {
    return value == expected;
}

template <typename T>
void assign(T &value, const T &source) {
    value = source;
}
void assign(DDS_OctetSeq &value, const DDS_OctetSeq &source) {
    DDS_OctetSeq_copy(&value, &source);
}
void assign(DDS_ShortSeq &value, const DDS_ShortSeq &source) {
    DDS_ShortSeq_copy(&value, &source);
}
void assign(DDS_StringSeq &value, const DDS_StringSeq &source) {
    DDS_StringSeq_copy(&value, &source);
}
void assign(DDS_PropertySeq &value, const DDS_PropertySeq &source) {
    DDS_PropertySeq_copy(&value, &source);
}
void assign(DDS_Char *&value, DDS_Char *const &source) {
    DDS_String_replace(&value, source);
}

// ROW(policy, member, content, value)
#define ROW(policy, member, content, ...)                                                \
    Row<Qos> {                                                                           \
#policy, #member, content, member_count<decltype(Qos::policy)>(),                      \
            [](const Qos &qos) { return same(qos.policy.member, __VA_ARGS__); },               \
            [](Qos &qos, const Qos &other) { assign(qos.policy.member, other.policy.member); } \
    }

constexpr const char *kSpan = "<sec>7</sec><nanosec>8</nanosec>";
constexpr DDS_Duration_t kSevenAndALittle{7, 8U};
constexpr const char *kOctets = "<element>1</element><element>0xff</element>";
const std::vector<DDS_Octet> &octets() {
    static const std::vector<DDS_Octet> kValue{1, 255};
    return kValue;
}

template <typename Qos>
using Rows = std::vector<Row<Qos>>;

template <typename Qos>
Rows<Qos> operator+(Rows<Qos> left, const Rows<Qos> &right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

template <typename Qos>
Rows<Qos> marked() {
    return {ROW(protocol, vendor_specific_entity, "true", DDS_BOOLEAN_TRUE)};
}
template <typename Qos>
Rows<Qos> with_properties() {
    return {ROW(property, value,
                "<element><name>n</name><value>v</value><propagate>true</propagate></element>",
                Strings{"n", "v"}),
            ROW(user_data, value, kOctets, octets())};
}
template <typename Qos>
Rows<Qos> factory_rows() {
    return {ROW(entity_factory, autoenable_created_entities, "false", DDS_BOOLEAN_FALSE)};
}
template <typename Qos>
Rows<Qos> group_rows() {
    return factory_rows<Qos>() + marked<Qos>() +
           Rows<Qos>{ROW(presentation, access_scope, "GROUP_PRESENTATION_QOS",
                         DDS_GROUP_PRESENTATION_QOS),
                     ROW(presentation, coherent_access, "true", DDS_BOOLEAN_TRUE),
                     ROW(presentation, ordered_access, "1", DDS_BOOLEAN_TRUE),
                     ROW(partition, name, "<element>a</element><element>b*</element>",
                         Strings{"a", "b*"}),
                     ROW(group_data, value, kOctets, octets())};
}
// Returns the members that topics, writers and readers have.
template <typename Qos>
Rows<Qos> common_rows() {
    return marked<Qos>() +
           Rows<Qos>{
               ROW(durability, kind, "PERSISTENT_DURABILITY_QOS", DDS_PERSISTENT_DURABILITY_QOS),
               ROW(deadline, period, kSpan, kSevenAndALittle),
               ROW(latency_budget, duration, kSpan, kSevenAndALittle),
               ROW(liveliness, kind, "MANUAL_BY_TOPIC_LIVELINESS_QOS",
                   DDS_MANUAL_BY_TOPIC_LIVELINESS_QOS),
               ROW(liveliness, lease_duration, kSpan, kSevenAndALittle),
               ROW(reliability, max_blocking_time, kSpan, kSevenAndALittle),
               ROW(destination_order, kind, "BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS",
                   DDS_BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS),
               ROW(history, kind, "KEEP_ALL_HISTORY_QOS", DDS_KEEP_ALL_HISTORY_QOS),
               ROW(history, depth, "9", 9),
               ROW(resource_limits, max_samples, "10", 10),
               ROW(resource_limits, max_instances, " 11 ", 11),
               ROW(resource_limits, max_samples_per_instance, "0x0C", 12),
               ROW(ownership, kind, "EXCLUSIVE_OWNERSHIP_QOS", DDS_EXCLUSIVE_OWNERSHIP_QOS),
               ROW(representation, value,
                   "<element>XCDR2_DATA_REPRESENTATION</element>"
                   "<element>XCDR_DATA_REPRESENTATION</element>",
                   std::vector<DDS_Short>{DDS_XCDR2_DATA_REPRESENTATION,
                                          DDS_XCDR_DATA_REPRESENTATION})};
}
// Returns the members that topics and writers have.
template <typename Qos>
Rows<Qos> sending_rows() {
    return common_rows<Qos>() +
           Rows<Qos>{ROW(durability_service, service_cleanup_delay, kSpan, kSevenAndALittle),
                     ROW(durability_service, history_kind, "KEEP_ALL_HISTORY_QOS",
                         DDS_KEEP_ALL_HISTORY_QOS),
                     ROW(durability_service, history_depth, "2", 2),
                     ROW(durability_service, max_samples, "3", 3),
                     ROW(durability_service, max_instances, "4", 4),
                     ROW(durability_service, max_samples_per_instance, "5", 5),
                     ROW(transport_priority, value, "-8", -8),
                     ROW(lifespan, duration, kSpan, kSevenAndALittle)};
}

Rows<DDS_DomainParticipantQos> participant_rows() {
    using Qos = DDS_DomainParticipantQos;
    return factory_rows<Qos>() + marked<Qos>() + with_properties<Qos>() +
           Rows<Qos>{ROW(participant_name, name, " a name ", " a name ")};
}
Rows<DDS_TopicQos> topic_rows() {
    using Qos = DDS_TopicQos;
    return sending_rows<Qos>() + Rows<Qos>{ROW(reliability, kind, "RELIABLE_RELIABILITY_QOS",
                                               DDS_RELIABLE_RELIABILITY_QOS),
                                           ROW(topic_data, value, kOctets, octets())};
}
Rows<DDS_DataWriterQos> writer_rows() {
    using Qos = DDS_DataWriterQos;
    return sending_rows<Qos>() + with_properties<Qos>() +
           Rows<Qos>{ROW(reliability, kind, "BEST_EFFORT_RELIABILITY_QOS",
                         DDS_BEST_EFFORT_RELIABILITY_QOS),
                     ROW(ownership_strength, value, "12", 12),
                     ROW(writer_data_lifecycle, autodispose_unregistered_instances, "0",
                         DDS_BOOLEAN_FALSE)};
}
Rows<DDS_DataReaderQos> reader_rows() {
    using Qos = DDS_DataReaderQos;
    return common_rows<Qos>() + with_properties<Qos>() +
           Rows<Qos>{
               ROW(reliability, kind, "RELIABLE_RELIABILITY_QOS", DDS_RELIABLE_RELIABILITY_QOS),
               ROW(time_based_filter, minimum_separation, kSpan, kSevenAndALittle),
               ROW(reader_data_lifecycle, autopurge_nowriter_samples_delay, kSpan,
                   kSevenAndALittle),
               ROW(reader_data_lifecycle, autopurge_disposed_samples_delay, kSpan,
                   kSevenAndALittle),
               ROW(type_consistency, kind, "DISALLOW_TYPE_COERCION", DDS_DISALLOW_TYPE_COERCION),
               ROW(type_consistency, ignore_sequence_bounds, "false", DDS_BOOLEAN_FALSE),
               ROW(type_consistency, ignore_string_bounds, "0", DDS_BOOLEAN_FALSE),
               ROW(type_consistency, ignore_member_names, "true", DDS_BOOLEAN_TRUE),
               ROW(type_consistency, prevent_type_widening, "1", DDS_BOOLEAN_TRUE),
               ROW(type_consistency, force_type_validation, "true", DDS_BOOLEAN_TRUE)};
}

// ---- Reading them -------------------------------------------------------------------------------

template <typename Qos>
struct Functions {
    using Get = std::function<DDS_ReturnCode_t(Qos *)>;
    DDS_ReturnCode_t (*initialize)(Qos *);
    DDS_ReturnCode_t (*finalize)(Qos *);
    DDS_Boolean (*equals)(const Qos *, const Qos *);
    std::vector<Get> get;  // of the profile P of the library L, in every way
};

#define FUNCTIONS(Qos, ...)                               \
    Functions<Qos> {                                      \
        Qos##_initialize, Qos##_finalize, Qos##_equals, { \
            __VA_ARGS__                                   \
        }                                                 \
    }
#define PLAIN(Qos, name)                                                                       \
    [](Qos *qos) {                                                                             \
        return DDS_DomainParticipantFactory_get_##name##_qos_from_profile(factory(), qos, "L", \
                                                                          "P");                \
    }
#define WITH_TOPIC(Qos, name)                                                           \
    [](Qos *qos) {                                                                      \
        return DDS_DomainParticipantFactory_get_##name##_qos_from_profile_w_topic_name( \
            factory(), qos, "L", "P", "vur/distlog");                                   \
    }

class QosProfileMembers : public support::QosProfilesTest {
  protected:
    void forget() const {
        ASSERT_EQ(DDS_DomainParticipantFactory_unload_profiles(factory()), DDS_RETCODE_OK);
        log_.clear();
    }
    DDS_ReturnCode_t load(const std::string &element) const {
        forget();
        return add_library("<qos_profile name=\"P\">" + element + "</qos_profile>");
    }

    // The row's value is read back, in every way, and everything else is the default.
    template <typename Qos>
    void expect_row(const Row<Qos> &row, const std::string &tag,
                    const Functions<Qos> &functions) const {
        SCOPED_TRACE(row.element(tag));
        ASSERT_EQ(load(row.element(tag)), DDS_RETCODE_OK) << log_.text();
        for (const auto &get : functions.get) {
            Qos fresh;
            Qos qos;
            functions.initialize(&fresh);
            functions.initialize(&qos);
            EXPECT_FALSE(row.holds(fresh)) << "the default";
            EXPECT_EQ(get(&qos), DDS_RETCODE_OK);
            EXPECT_TRUE(row.holds(qos));
            row.reset(qos, fresh);
            EXPECT_TRUE(functions.equals(&qos, &fresh)) << "something else has changed";
            functions.finalize(&qos);
            functions.finalize(&fresh);
        }
    }

    // Returns the names that may stand in an element, from the reader's message about one that may
    // not; nothing when the element holds a value.
    Strings expected_in(const Strings &path) const {
        std::string open;
        std::string close;
        for (const std::string &tag : path) {
            open += "<" + tag + ">";
            close.insert(0, "</" + tag + ">");
        }
        EXPECT_EQ(load(open + "<no_such/>" + close), DDS_RETCODE_ERROR) << open;
        const std::string marker = "; expected: ";
        const std::string text = log_.text();
        const std::size_t place = text.find(marker);
        EXPECT_NE(place, std::string::npos) << text;
        if (text.find("expected: a value") != std::string::npos) {
            return {};
        }
        return split(text.substr(place + marker.size()));
    }
    static Strings split(const std::string &list) {
        Strings names;
        std::istringstream stream(list.substr(0, list.find('\n')));
        for (std::string name; std::getline(stream >> std::ws, name, ',');) {
            names.push_back(name);
        }
        return names;
    }
    // The paths of all elements that hold a value.
    void collect_grammar(const Strings &path, std::set<std::string> &leaves) const {
        const Strings names = expected_in(path);
        if (names.empty()) {
            std::string leaf;
            for (const std::string &tag : path) {
                leaf += "/" + tag;
            }
            leaves.insert(leaf);
        }
        for (const std::string &name : names) {
            Strings longer = path;
            longer.push_back(name);
            collect_grammar(longer, leaves);
        }
    }
    static void collect_leaves(const DDS_XMLObject *object, const std::string &path,
                               std::set<std::string> &leaves) {
        const std::string own = path + "/" + support::tag_of(object);
        const DDS_XMLObject *child = DDS_XMLObject_get_first_child(object);
        if (child == nullptr) {
            leaves.insert(own);
        }
        for (; child != nullptr; child = DDS_XMLObject_get_next_sibling(child)) {
            collect_leaves(child, own, leaves);
        }
    }

    // Rows for one kind of entity: each is read back, and together they are all that there is.
    // `unreadable`: policies of the record that no document can set.
    template <typename Qos>
    void expect_all(const std::string &tag, const Rows<Qos> &rows, const Functions<Qos> &functions,
                    std::size_t unreadable = 0) const {
        std::set<std::string> tested;
        for (const Row<Qos> &row : rows) {
            expect_row(row, tag, functions);
            EXPECT_EQ(expected_in({tag, row.policy}).size(), row.members_of_policy) << row.policy;
            const support::ParserPtr parser(DDS_XMLParser_new());
            ASSERT_EQ(support::parse(parser, "<dds>" + row.element(tag) + "</dds>"),
                      DDS_RETCODE_OK);
            collect_leaves(DDS_XMLObject_get_first_child(DDS_XMLParser_get_root(parser.get())), "",
                           tested);
        }
        std::set<std::string> known;
        collect_grammar({tag}, known);
        EXPECT_EQ(tested, known);
        EXPECT_EQ(expected_in({tag}).size() + unreadable, member_count<Qos>());
    }
};

TEST_F(QosProfileMembers, OfParticipants) {
    const auto functions =
        FUNCTIONS(DDS_DomainParticipantQos, PLAIN(DDS_DomainParticipantQos, participant));
    // Only the engine knows a participant's place on the network.
    expect_all("domain_participant_qos", participant_rows(), functions, 1);
    expect_all("participant_qos", participant_rows(), functions, 1);
}

TEST_F(QosProfileMembers, OfPublishers) {
    expect_all("publisher_qos", group_rows<DDS_PublisherQos>(),
               FUNCTIONS(DDS_PublisherQos, PLAIN(DDS_PublisherQos, publisher)));
}

TEST_F(QosProfileMembers, OfSubscribers) {
    expect_all("subscriber_qos", group_rows<DDS_SubscriberQos>(),
               FUNCTIONS(DDS_SubscriberQos, PLAIN(DDS_SubscriberQos, subscriber)));
}

TEST_F(QosProfileMembers, OfTopics) {
    expect_all(
        "topic_qos", topic_rows(),
        FUNCTIONS(DDS_TopicQos, PLAIN(DDS_TopicQos, topic), WITH_TOPIC(DDS_TopicQos, topic)));
}

TEST_F(QosProfileMembers, OfWriters) {
    expect_all("datawriter_qos", writer_rows(),
               FUNCTIONS(DDS_DataWriterQos, PLAIN(DDS_DataWriterQos, datawriter),
                         WITH_TOPIC(DDS_DataWriterQos, datawriter)));
}

TEST_F(QosProfileMembers, OfReaders) {
    expect_all("datareader_qos", reader_rows(),
               FUNCTIONS(DDS_DataReaderQos, PLAIN(DDS_DataReaderQos, datareader),
                         WITH_TOPIC(DDS_DataReaderQos, datareader)));
}

// ---- Names of values ----------------------------------------------------------------------------

TEST_F(QosProfileMembers, EveryEnumeratorHasItsValue) {
    using Qos = DDS_DataReaderQos;
    struct Enumeration {
        Strings path;
        int (*value)(const Qos &qos);
        std::vector<std::pair<std::string, int>> names;
    };
    const Enumeration enumerations[] = {
        {{"durability", "kind"},
         [](const Qos &qos) { return static_cast<int>(qos.durability.kind); },
         {{"VOLATILE_DURABILITY_QOS", 0},
          {"TRANSIENT_LOCAL_DURABILITY_QOS", 1},
          {"TRANSIENT_DURABILITY_QOS", 2},
          {"PERSISTENT_DURABILITY_QOS", 3}}},
        {{"ownership", "kind"},
         [](const Qos &qos) { return static_cast<int>(qos.ownership.kind); },
         {{"SHARED_OWNERSHIP_QOS", 0}, {"EXCLUSIVE_OWNERSHIP_QOS", 1}}},
        {{"liveliness", "kind"},
         [](const Qos &qos) { return static_cast<int>(qos.liveliness.kind); },
         {{"AUTOMATIC_LIVELINESS_QOS", 0},
          {"MANUAL_BY_PARTICIPANT_LIVELINESS_QOS", 1},
          {"MANUAL_BY_TOPIC_LIVELINESS_QOS", 2}}},
        {{"reliability", "kind"},
         [](const Qos &qos) { return static_cast<int>(qos.reliability.kind); },
         {{"BEST_EFFORT_RELIABILITY_QOS", 0}, {"RELIABLE_RELIABILITY_QOS", 1}}},
        {{"destination_order", "kind"},
         [](const Qos &qos) { return static_cast<int>(qos.destination_order.kind); },
         {{"BY_RECEPTION_TIMESTAMP_DESTINATIONORDER_QOS", 0},
          {"BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS", 1}}},
        {{"history", "kind"},
         [](const Qos &qos) { return static_cast<int>(qos.history.kind); },
         {{"KEEP_LAST_HISTORY_QOS", 0}, {"KEEP_ALL_HISTORY_QOS", 1}}},
        {{"type_consistency", "kind"},
         [](const Qos &qos) { return static_cast<int>(qos.type_consistency.kind); },
         {{"DISALLOW_TYPE_COERCION", 0}, {"ALLOW_TYPE_COERCION", 1}}},
        {{"representation", "value", "element"},
         [](const Qos &qos) { return int{DDS_ShortSeq_get(&qos.representation.value, 0)}; },
         {{"XCDR_DATA_REPRESENTATION", DDS_XCDR_DATA_REPRESENTATION},
          {"XML_DATA_REPRESENTATION", DDS_XML_DATA_REPRESENTATION},
          {"XCDR2_DATA_REPRESENTATION", DDS_XCDR2_DATA_REPRESENTATION},
          {"AUTO_DATA_REPRESENTATION", DDS_AUTO_DATA_REPRESENTATION}}},
    };
    for (const Enumeration &enumeration : enumerations) {
        std::string open;
        std::string close;
        for (const std::string &tag : enumeration.path) {
            open += "<" + tag + ">";
            close.insert(0, "</" + tag + ">");
        }
        const auto element = [&](const std::string &text) {
            return "<datareader_qos>" + open + text + close + "</datareader_qos>";
        };
        std::string known;
        for (const auto &[name, value] : enumeration.names) {
            known += (known.empty() ? "" : ", ") + name;
            support::ReaderQos qos;
            ASSERT_EQ(load(element(name)), DDS_RETCODE_OK) << log_.text();
            EXPECT_EQ(DDS_DomainParticipantFactory_get_datareader_qos_from_profile(
                          factory(), qos.get(), "L", "P"),
                      DDS_RETCODE_OK);
            EXPECT_EQ(enumeration.value(*qos.get()), value) << name;
        }
        EXPECT_EQ(load(element("DDS_" + enumeration.names[0].first)), DDS_RETCODE_ERROR);
        EXPECT_TRUE(log_.has("; expected: " + known)) << log_.text();
    }
}

TEST_F(QosProfileMembers, AccessScopesHaveTheirValues) {
    const std::pair<const char *, DDS_PresentationQosPolicyAccessScopeKind> rows[] = {
        {"INSTANCE_PRESENTATION_QOS", DDS_INSTANCE_PRESENTATION_QOS},
        {"TOPIC_PRESENTATION_QOS", DDS_TOPIC_PRESENTATION_QOS},
        {"GROUP_PRESENTATION_QOS", DDS_GROUP_PRESENTATION_QOS}};
    for (const auto &[name, value] : rows) {
        ASSERT_EQ(load("<publisher_qos><presentation><access_scope>" + std::string(name) +
                       "</access_scope></presentation></publisher_qos>"),
                  DDS_RETCODE_OK)
            << log_.text();
        support::PublisherQos qos;
        EXPECT_EQ(DDS_DomainParticipantFactory_get_publisher_qos_from_profile(factory(), qos.get(),
                                                                              "L", "P"),
                  DDS_RETCODE_OK);
        EXPECT_EQ(qos->presentation.access_scope, value);
    }
}

TEST_F(QosProfileMembers, DurationsHaveSymbolicNames) {
    struct Span {
        std::string content;
        DDS_Duration_t value;
    };
    const DDS_Duration_t infinite = DDS_DURATION_INFINITE;
    const Span rows[] = {
        {"", {0, 0U}},
        {"<sec>1</sec>", {1, 0U}},
        {"<nanosec>2</nanosec>", {0, 2U}},
        {"<nanosec>2</nanosec><sec>1</sec>", {1, 2U}},
        {"<sec>DURATION_ZERO_SEC</sec><nanosec>DURATION_ZERO_NSEC</nanosec>", {0, 0U}},
        {"<sec>0x10</sec><nanosec>999999999</nanosec>", {16, 999999999U}},
        {"<sec>2147483646</sec>", {2147483646, 0U}},
        {"<sec>2147483647</sec>", infinite},
        {"<sec>DURATION_INFINITY</sec>", infinite},
        {"<sec>DURATION_INFINITE_SEC</sec>", infinite},
        {"<sec>DURATION_INFINITY</sec><nanosec>DURATION_INFINITY</nanosec>", infinite},
        {"<sec>DURATION_INFINITE_SEC</sec><nanosec>DURATION_INFINITE_NSEC</nanosec>", infinite},
        {"<nanosec>DURATION_INFINITE_NSEC</nanosec><sec>DURATION_INFINITE_SEC</sec>", infinite},
        {"<sec>DURATION_INFINITE_SEC</sec><nanosec>5</nanosec>", infinite},
    };
    for (const Span &row : rows) {
        SCOPED_TRACE(row.content);
        ASSERT_EQ(load("<datawriter_qos><latency_budget><duration>" + row.content +
                       "</duration></latency_budget></datawriter_qos>"),
                  DDS_RETCODE_OK)
            << log_.text();
        support::WriterQos qos;
        EXPECT_EQ(DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(factory(), qos.get(),
                                                                               "L", "P"),
                  DDS_RETCODE_OK);
        EXPECT_TRUE(same(qos->latency_budget.duration, row.value));
    }
}

}  // namespace
