// SPDX-License-Identifier: Apache-2.0
// Readers and writers find each other by what their types have in common, and by the types' names
// where one has no description.

#include <gtest/gtest.h>
#include <kolt/dds_c.h>

#include <string>
#include <vector>

#include "support/logger/log_capture.h"
#include "support/platform/pubsub.h"
#include "support/types/type_book.h"

namespace {

using support::MemberOf;
using support::Node;

constexpr DDS_DomainId_t kDomain = 168;

// support::Message's plugin for a type code that may be another, under a name that may be.
KOLT_TypePlugin plugin_of(const DDS_TypeCode *code, const char *name) {
    KOLT_TypePlugin plugin = support::message_plugin();
    plugin.type_code = code;
    plugin.endpoint_type_name = name;
    return plugin;
}

// A writer and a reader of one topic in two participants.
class TypeMatching : public ::testing::Test {
  protected:
    void connect(const KOLT_TypePlugin &written, const KOLT_TypePlugin &read) {
        const std::string name = support::own("matching" + std::to_string(++topics_));
        writer_ = sender_.writer({}, sender_.topic_of(written, name));
        reader_ =
            receiver_.reader({}, DDS_Topic_as_topicdescription(receiver_.topic_of(read, name)));
        ASSERT_NE(writer_, nullptr);
        ASSERT_NE(reader_, nullptr);
    }
    void expect_delivery() {
        ASSERT_TRUE(support::is_matched(writer_));
        ASSERT_EQ(support::write(writer_, 7, 300, 42, "through"), DDS_RETCODE_OK);
        const std::vector<support::Text> texts = support::take_at_least(reader_, 1);
        ASSERT_EQ(texts.size(), 1U);
        EXPECT_EQ(texts[0].text, "through");
    }
    void expect_refusal() {
        DDS_RequestedIncompatibleQosStatus status{};
        EXPECT_TRUE(support::eventually([&] {
            return DDS_DataReader_get_requested_incompatible_qos_status(reader_, &status) ==
                       DDS_RETCODE_OK &&
                   status.total_count > 0;
        }));
        DDS_SubscriptionMatchedStatus matched{};
        EXPECT_EQ(DDS_DataReader_get_subscription_matched_status(reader_, &matched),
                  DDS_RETCODE_OK);
        EXPECT_EQ(matched.total_count, 0);
    }

    support::TypeBook book_;
    int topics_ = 0;
    Node sender_{kDomain};
    Node receiver_{kDomain};
    DDS_DataWriter *writer_ = nullptr;
    DDS_DataReader *reader_ = nullptr;
};

TEST_F(TypeMatching, OneTypeUnderTwoNames) {
    connect(plugin_of(support::message_type(), "one::Message"),
            plugin_of(support::message_type(), "two::modules::Message"));
    expect_delivery();
}

TEST_F(TypeMatching, TwoVersionsOfAType) {
    connect(plugin_of(support::mutable_version1_type(), "Version"),
            plugin_of(support::mutable_version2_type(), "Version"));
    EXPECT_TRUE(support::is_matched(writer_));
}

// Members of one id have one name and types that go together, and a member that must be
// understood is there on both sides.
TEST_F(TypeMatching, DifferentTypesOfOneName) {
    const auto make = [this](const char *member, DDS_TCKind kind) {
        return book_.structure("Different", DDS_MUTABLE_EXTENSIBILITY,
                               {{member, 0, support::TypeBook::primitive(kind)}});
    };
    connect(plugin_of(make("value", DDS_TK_LONG), "Different"),
            plugin_of(make("value", DDS_TK_DOUBLE), "Different"));
    expect_refusal();
    connect(plugin_of(make("name", DDS_TK_LONG), "Renamed"),
            plugin_of(make("other", DDS_TK_LONG), "Renamed"));
    expect_refusal();
}

TEST_F(TypeMatching, AMemberThatMustBeUnderstood) {
    connect(plugin_of(support::strict_version2_type(), "Strict"),
            plugin_of(support::mutable_version1_type(), "Strict"));
    expect_refusal();
}

TEST_F(TypeMatching, EnumerationsAreOfOneExtensibility) {
    const auto make = [this](DDS_ExtensibilityKind extensibility) {
        const DDS_TypeCode *const kind = book_.enumeration("Kind", extensibility, {{"ONE", 1}});
        return book_.structure("Enumerated", DDS_MUTABLE_EXTENSIBILITY, {{"kind", 0, kind}});
    };
    connect(plugin_of(make(DDS_FINAL_EXTENSIBILITY), "Enumerated"),
            plugin_of(make(DDS_APPENDABLE_EXTENSIBILITY), "Enumerated"));
    expect_refusal();
}

// ---- Types without a description ----------------------------------------------------------------

// A type that the standard has no object for works as it always did, and the log says so.
TEST_F(TypeMatching, ATypeWithoutDescriptionGoesByItsName) {
    KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(),
                                     KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL);
    support::LogCapture log;
    DDS_TypeCode nameless = *support::message_type();
    nameless.name = nullptr;
    connect(plugin_of(&nameless, "Nameless"), plugin_of(&nameless, "Nameless"));
    expect_delivery();
    EXPECT_TRUE(log.saw("the type Nameless is announced by its name alone"));
}

// One side without a description is enough for the names to decide.
TEST_F(TypeMatching, OnlyOneSideIsDescribed) {
    DDS_TypeCode nameless = *support::message_type();
    nameless.name = nullptr;
    connect(plugin_of(&nameless, "Half"), plugin_of(support::message_type(), "Half"));
    expect_delivery();
}

TEST_F(TypeMatching, AMutableUnionGoesByItsName) {
    connect(plugin_of(support::mutable_request_type(), "Request"),
            plugin_of(support::mutable_request_type(), "Request"));
    EXPECT_TRUE(support::is_matched(writer_));
}

// A participant may keep its descriptions to itself. Types that would not match do, then.
TEST_F(TypeMatching, AParticipantMayAnnounceNamesAlone) {
    DDS_DomainParticipantFactory *const factory = DDS_DomainParticipantFactory_get_instance();
    support::ParticipantQos qos;
    ASSERT_EQ(DDS_PropertyQosPolicyHelper_add_property(
                  &qos->property, "dds.participant.announce_types", "false", DDS_BOOLEAN_FALSE),
              DDS_RETCODE_OK);
    DDS_DomainParticipant *const silent = DDS_DomainParticipantFactory_create_participant(
        factory, kDomain, qos.get(), nullptr, DDS_STATUS_MASK_NONE);
    ASSERT_NE(silent, nullptr);
    const DDS_TypeCode *const other = book_.structure(
        "Other", DDS_MUTABLE_EXTENSIBILITY, {{"id", 0, support::TypeBook::primitive(DDS_TK_LONG)}});
    const KOLT_TypePlugin plugin = plugin_of(other, "Silent");
    ASSERT_EQ(DDS_DomainParticipant_register_type(silent, "Silent", &plugin, nullptr),
              DDS_RETCODE_OK);
    const std::string name = support::own("silent");
    DDS_Topic *const topic = DDS_DomainParticipant_create_topic(
        silent, name.c_str(), "Silent", nullptr, nullptr, DDS_STATUS_MASK_NONE);
    DDS_Publisher *const publisher =
        DDS_DomainParticipant_create_publisher(silent, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    writer_ = DDS_Publisher_create_datawriter(publisher, topic, &DDS_DATAWRITER_QOS_DEFAULT,
                                              nullptr, DDS_STATUS_MASK_NONE);
    // The same type code, described, and another one.
    DDS_Topic *const described = receiver_.topic_of(plugin, name);
    DDS_Topic *const different =
        sender_.topic_of(plugin_of(support::message_type(), "Silent"), name);
    ASSERT_NE(receiver_.reader({}, DDS_Topic_as_topicdescription(described)), nullptr);
    ASSERT_NE(sender_.reader({}, DDS_Topic_as_topicdescription(different)), nullptr);
    EXPECT_TRUE(support::is_matched(writer_, 2));
    EXPECT_EQ(DDS_DomainParticipant_delete_contained_entities(silent), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory, silent), DDS_RETCODE_OK);
}

// Types that the engine would refuse as a topic's never reach it.
TEST_F(TypeMatching, WhatTheEngineRefusesGoesByItsName) {
    const DDS_TypeCode *const empty = book_.enumeration("Empty", DDS_APPENDABLE_EXTENSIBILITY, {});
    const DDS_TypeCode *const twice =
        book_.enumeration("Twice", DDS_APPENDABLE_EXTENSIBILITY, {{"A", 1}, {"B", 1}});
    const DDS_TypeCode *const changing =
        book_.enumeration("Changing", DDS_MUTABLE_EXTENSIBILITY, {{"A", 1}});
    const DDS_TypeCode *const nothing = book_.structure("Nothing", DDS_FINAL_EXTENSIBILITY, {});
    const DDS_TypeCode *const two_defaults = book_.unite(
        "TwoDefaults", DDS_FINAL_EXTENSIBILITY, support::TypeBook::primitive(DDS_TK_LONG),
        {MemberOf("a", 1, book_.string()).by_default(),
         MemberOf("b", 2, book_.string()).by_default()});
    const DDS_TypeCode *const long_named =
        book_.enumeration(std::string(257, 'x'), DDS_FINAL_EXTENSIBILITY, {{"A", 1}});
    for (const DDS_TypeCode *part : {empty, twice, changing, nothing, two_defaults, long_named}) {
        const std::string name = std::string("With") + std::to_string(part->kind) + part->name;
        const std::string registered = name.substr(0, 40);
        const DDS_TypeCode *const whole =
            book_.structure(name, DDS_MUTABLE_EXTENSIBILITY, {{"part", 0, part}});
        connect(plugin_of(whole, registered.c_str()), plugin_of(whole, registered.c_str()));
        EXPECT_TRUE(support::is_matched(writer_)) << part->name;
        DDS_Publisher_delete_datawriter(sender_.publisher, writer_);
        DDS_Subscriber_delete_datareader(receiver_.subscriber, reader_);
    }
}

}  // namespace
