// SPDX-License-Identifier: Apache-2.0
// QoS profiles: where they come from, what their elements say, inheritance, topic filters.
#include <gtest/gtest.h>
#include <kolt/domain.h>

#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "support/config/qos_profiles.h"

namespace {

using support::factory;
using support::FactoryQos;
using support::ParticipantQos;
using support::PublisherQos;
using support::ReaderQos;
using support::Strings;
using support::SubscriberQos;
using support::TopicQos;
using support::WriterQos;

class QosProfiles : public support::QosProfilesTest {};

// ---- What elements say --------------------------------------------------------------------------

constexpr const char *kEverything = R"(
<qos_profile name="P">
  <domain_participant_qos>
    <user_data><value>AQID</value></user_data>
    <entity_factory><autoenable_created_entities>false</autoenable_created_entities></entity_factory>
    <property><value>
      <element><name>a</name><value> 1 </value><propagate>true</propagate></element>
      <element><name>b</name></element>
      <element><name>a</name><value>2</value></element>
    </value></property>
    <participant_name><name>the name</name></participant_name>
    <protocol><vendor_specific_entity>1</vendor_specific_entity></protocol>
  </domain_participant_qos>
  <publisher_qos>
    <presentation>
      <access_scope>TOPIC_PRESENTATION_QOS</access_scope>
      <coherent_access>true</coherent_access>
      <ordered_access>1</ordered_access>
    </presentation>
    <partition><name><element>one</element><element>two/*</element></name></partition>
    <group_data><value><element>1</element><element>0xff</element></value></group_data>
  </publisher_qos>
  <subscriber_qos>
    <presentation><access_scope>GROUP_PRESENTATION_QOS</access_scope></presentation>
  </subscriber_qos>
  <topic_qos>
    <topic_data><value/></topic_data>
    <durability><kind>PERSISTENT_DURABILITY_QOS</kind></durability>
    <durability_service>
      <service_cleanup_delay><sec>1</sec><nanosec>2</nanosec></service_cleanup_delay>
      <history_kind>KEEP_ALL_HISTORY_QOS</history_kind>
      <history_depth>3</history_depth>
      <max_samples>4</max_samples>
      <max_instances>LENGTH_UNLIMITED</max_instances>
      <max_samples_per_instance>6</max_samples_per_instance>
    </durability_service>
    <lifespan><duration><sec>7</sec></duration></lifespan>
    <transport_priority><value>-8</value></transport_priority>
  </topic_qos>
  <datawriter_qos>
    <durability><kind>TRANSIENT_LOCAL_DURABILITY_QOS</kind></durability>
    <deadline><period><sec>DURATION_ZERO_SEC</sec><nanosec>500000000</nanosec></period></deadline>
    <latency_budget><duration><sec>DURATION_INFINITE_SEC</sec>
      <nanosec>DURATION_INFINITE_NSEC</nanosec></duration></latency_budget>
    <liveliness>
      <kind>MANUAL_BY_PARTICIPANT_LIVELINESS_QOS</kind>
      <lease_duration><sec>10</sec></lease_duration>
    </liveliness>
    <reliability>
      <kind> BEST_EFFORT_RELIABILITY_QOS </kind>
      <max_blocking_time><sec>DURATION_INFINITY</sec></max_blocking_time>
    </reliability>
    <destination_order><kind>BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS</kind></destination_order>
    <history><kind>KEEP_ALL_HISTORY_QOS</kind><depth>9</depth></history>
    <resource_limits><max_samples>10</max_samples><max_instances>11</max_instances>
      <max_samples_per_instance>LENGTH_UNLIMITED</max_samples_per_instance></resource_limits>
    <ownership><kind>EXCLUSIVE_OWNERSHIP_QOS</kind></ownership>
    <ownership_strength><value>12</value></ownership_strength>
    <writer_data_lifecycle><autodispose_unregistered_instances>0</autodispose_unregistered_instances>
    </writer_data_lifecycle>
    <representation><value><element>XCDR2_DATA_REPRESENTATION</element>
      <element>XCDR_DATA_REPRESENTATION</element><element>AUTO_DATA_REPRESENTATION</element></value>
    </representation>
  </datawriter_qos>
  <datareader_qos>
    <time_based_filter><minimum_separation><nanosec>1</nanosec></minimum_separation></time_based_filter>
    <reader_data_lifecycle>
      <autopurge_nowriter_samples_delay><sec>1</sec></autopurge_nowriter_samples_delay>
    </reader_data_lifecycle>
    <type_consistency>
      <kind>DISALLOW_TYPE_COERCION</kind>
      <ignore_sequence_bounds>false</ignore_sequence_bounds>
      <ignore_string_bounds>false</ignore_string_bounds>
      <ignore_member_names>true</ignore_member_names>
      <prevent_type_widening>true</prevent_type_widening>
      <force_type_validation>true</force_type_validation>
    </type_consistency>
  </datareader_qos>
</qos_profile>)";

TEST_F(QosProfiles, EveryEntityAndPolicyIsRead) {
    ASSERT_EQ(add_library(kEverything), DDS_RETCODE_OK) << log_.text();

    ParticipantQos participant;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_participant_qos_from_profile(
                  factory(), participant.get(), "L", "P"),
              DDS_RETCODE_OK);
    ASSERT_EQ(DDS_OctetSeq_get_length(&participant->user_data.value), 3U);
    EXPECT_EQ(DDS_OctetSeq_get(&participant->user_data.value, 2), 3);
    EXPECT_FALSE(participant->entity_factory.autoenable_created_entities);
    EXPECT_STREQ(participant->participant_name.name, "the name");
    EXPECT_TRUE(participant->protocol.vendor_specific_entity);
    ASSERT_EQ(DDS_PropertySeq_get_length(&participant->property.value), 2U);
    const DDS_Property_t *a =
        DDS_PropertyQosPolicyHelper_lookup_property(&participant->property, "a");
    ASSERT_NE(a, nullptr);
    EXPECT_STREQ(a->value, "2");
    EXPECT_FALSE(a->propagate);
    const DDS_Property_t *b =
        DDS_PropertyQosPolicyHelper_lookup_property(&participant->property, "b");
    ASSERT_NE(b, nullptr);
    EXPECT_STREQ(b->value, "");

    PublisherQos publisher;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_publisher_qos_from_profile(
                  factory(), publisher.get(), "L", "P"),
              DDS_RETCODE_OK);
    EXPECT_EQ(publisher->presentation.access_scope, DDS_TOPIC_PRESENTATION_QOS);
    EXPECT_TRUE(publisher->presentation.coherent_access);
    EXPECT_TRUE(publisher->presentation.ordered_access);
    ASSERT_EQ(DDS_StringSeq_get_length(&publisher->partition.name), 2U);
    EXPECT_STREQ(DDS_StringSeq_get(&publisher->partition.name, 1), "two/*");
    ASSERT_EQ(DDS_OctetSeq_get_length(&publisher->group_data.value), 2U);
    EXPECT_EQ(DDS_OctetSeq_get(&publisher->group_data.value, 1), 255);

    SubscriberQos subscriber;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_subscriber_qos_from_profile(
                  factory(), subscriber.get(), "L", "P"),
              DDS_RETCODE_OK);
    EXPECT_EQ(subscriber->presentation.access_scope, DDS_GROUP_PRESENTATION_QOS);

    TopicQos topic;
    ASSERT_EQ(
        DDS_DomainParticipantFactory_get_topic_qos_from_profile(factory(), topic.get(), "L", "P"),
        DDS_RETCODE_OK);
    EXPECT_EQ(topic->durability.kind, DDS_PERSISTENT_DURABILITY_QOS);
    EXPECT_EQ(topic->durability_service.service_cleanup_delay.sec, 1);
    EXPECT_EQ(topic->durability_service.service_cleanup_delay.nanosec, 2U);
    EXPECT_EQ(topic->durability_service.history_kind, DDS_KEEP_ALL_HISTORY_QOS);
    EXPECT_EQ(topic->durability_service.history_depth, 3);
    EXPECT_EQ(topic->durability_service.max_samples, 4);
    EXPECT_EQ(topic->durability_service.max_instances, DDS_LENGTH_UNLIMITED);
    EXPECT_EQ(topic->durability_service.max_samples_per_instance, 6);
    EXPECT_EQ(topic->lifespan.duration.sec, 7);
    EXPECT_EQ(topic->lifespan.duration.nanosec, 0U);
    EXPECT_EQ(topic->transport_priority.value, -8);
}

TEST_F(QosProfiles, EveryEndpointPolicyIsRead) {
    ASSERT_EQ(add_library(kEverything), DDS_RETCODE_OK) << log_.text();

    WriterQos writer;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(factory(), writer.get(),
                                                                           "L", "P"),
              DDS_RETCODE_OK);
    EXPECT_EQ(writer->durability.kind, DDS_TRANSIENT_LOCAL_DURABILITY_QOS);
    EXPECT_EQ(writer->deadline.period.sec, 0);
    EXPECT_EQ(writer->deadline.period.nanosec, 500000000U);
    EXPECT_TRUE(DDS_Duration_is_infinite(&writer->latency_budget.duration));
    EXPECT_EQ(writer->liveliness.kind, DDS_MANUAL_BY_PARTICIPANT_LIVELINESS_QOS);
    EXPECT_EQ(writer->liveliness.lease_duration.sec, 10);
    EXPECT_EQ(writer->reliability.kind, DDS_BEST_EFFORT_RELIABILITY_QOS);
    EXPECT_TRUE(DDS_Duration_is_infinite(&writer->reliability.max_blocking_time));
    EXPECT_EQ(writer->destination_order.kind, DDS_BY_SOURCE_TIMESTAMP_DESTINATIONORDER_QOS);
    EXPECT_EQ(writer->history.kind, DDS_KEEP_ALL_HISTORY_QOS);
    EXPECT_EQ(writer->history.depth, 9);
    EXPECT_EQ(writer->resource_limits.max_samples, 10);
    EXPECT_EQ(writer->resource_limits.max_instances, 11);
    EXPECT_EQ(writer->resource_limits.max_samples_per_instance, DDS_LENGTH_UNLIMITED);
    EXPECT_EQ(writer->ownership.kind, DDS_EXCLUSIVE_OWNERSHIP_QOS);
    EXPECT_EQ(writer->ownership_strength.value, 12);
    EXPECT_FALSE(writer->writer_data_lifecycle.autodispose_unregistered_instances);
    ASSERT_EQ(DDS_ShortSeq_get_length(&writer->representation.value), 3U);
    EXPECT_EQ(DDS_ShortSeq_get(&writer->representation.value, 0), DDS_XCDR2_DATA_REPRESENTATION);
    EXPECT_EQ(DDS_ShortSeq_get(&writer->representation.value, 1), DDS_XCDR_DATA_REPRESENTATION);
    EXPECT_EQ(DDS_ShortSeq_get(&writer->representation.value, 2), DDS_AUTO_DATA_REPRESENTATION);

    ReaderQos reader;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_datareader_qos_from_profile(factory(), reader.get(),
                                                                           "L", "P"),
              DDS_RETCODE_OK);
    EXPECT_EQ(reader->time_based_filter.minimum_separation.nanosec, 1U);
    const auto &lifecycle = reader->reader_data_lifecycle;
    EXPECT_EQ(lifecycle.autopurge_nowriter_samples_delay.sec, 1);
    EXPECT_TRUE(DDS_Duration_is_infinite(&lifecycle.autopurge_disposed_samples_delay));
    EXPECT_EQ(reader->type_consistency.kind, DDS_DISALLOW_TYPE_COERCION);
    EXPECT_FALSE(reader->type_consistency.ignore_sequence_bounds);
    EXPECT_TRUE(reader->type_consistency.force_type_validation);
    // Members that the profile does not mention have the standard's default.
    EXPECT_EQ(reader->reliability.kind, DDS_BEST_EFFORT_RELIABILITY_QOS);
}

TEST_F(QosProfiles, AttributesOfXmlItselfMayStandAnywhere) {
    const std::string attributes =
        " xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\" xsi:schemaLocation=\"a b\" "
        "xsi:noNamespaceSchemaLocation=\"c\"";
    ASSERT_EQ(add("<dds" + attributes + "><qos_library name=\"L\"" + attributes + "><qos_profile" +
                  attributes + " name=\"P\"><datawriter_qos" + attributes + "><history" +
                  attributes + "><depth" + attributes +
                  ">5</depth></history></datawriter_qos></qos_profile></qos_library></dds>"),
              DDS_RETCODE_OK)
        << log_.text();
    WriterQos qos;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(factory(), qos.get(),
                                                                           "L", "P"),
              DDS_RETCODE_OK);
    EXPECT_EQ(qos->history.depth, 5);
}

TEST_F(QosProfiles, EntityThatIsNotMentionedHasTheDefault) {
    ASSERT_EQ(add_library("<qos_profile name=\"P\"/>"), DDS_RETCODE_OK);
    WriterQos qos;
    WriterQos fresh;
    qos->history.depth = 77;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(factory(), qos.get(),
                                                                           "L", "P"),
              DDS_RETCODE_OK);
    EXPECT_TRUE(DDS_DataWriterQos_equals(qos.get(), fresh.get()));
}

// ---- Names, inheritance, filters ----------------------------------------------------------------

TEST_F(QosProfiles, NamesComeInTheOrderOfLoading) {
    ASSERT_EQ(add("<dds><qos_library name=\"Z\"><qos_profile name=\"2\"/><qos_profile name=\"1\"/>"
                  "</qos_library><qos_library name=\"A\"/></dds>",
                  "1.xml"),
              DDS_RETCODE_OK);
    ASSERT_EQ(
        add("<dds><qos_library name=\"Z\"><qos_profile name=\"0\"/></qos_library></dds>", "2.xml"),
        DDS_RETCODE_OK);
    EXPECT_EQ(libraries(), (Strings{"Z", "A"}));
    EXPECT_EQ(profiles("Z"), (Strings{"2", "1", "0"}));
    EXPECT_EQ(profiles("A"), Strings{});
}

TEST_F(QosProfiles, BasesApplyFromTheOutermostOn) {
    ASSERT_EQ(
        add_library("<qos_profile name=\"Derived\" base_name=\"Middle\"><datawriter_qos>"
                    "<history><depth>3</depth></history></datawriter_qos></qos_profile>"
                    "<qos_profile name=\"Middle\" base_name=\"L::Base\"/>"
                    "<qos_profile name=\"Base\"><datawriter_qos><history><kind>KEEP_ALL_HISTORY_QOS"
                    "</kind><depth>2</depth></history><ownership_strength><value>5</value>"
                    "</ownership_strength></datawriter_qos></qos_profile>"),
        DDS_RETCODE_OK)
        << log_.text();
    ASSERT_EQ(add("<dds><qos_library name=\"M\"><qos_profile name=\"P\" base_name=\"L::Derived\">"
                  "<datawriter_qos><ownership_strength><value>6</value></ownership_strength>"
                  "</datawriter_qos></qos_profile></qos_library></dds>",
                  "b.xml"),
              DDS_RETCODE_OK)
        << log_.text();
    EXPECT_EQ(depth("Base"), 2);
    EXPECT_EQ(depth("Middle"), 2);
    EXPECT_EQ(depth("Derived"), 3);
    WriterQos qos;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(factory(), qos.get(),
                                                                           "M", "P"),
              DDS_RETCODE_OK);
    EXPECT_EQ(qos->history.kind, DDS_KEEP_ALL_HISTORY_QOS);
    EXPECT_EQ(qos->history.depth, 3);
    EXPECT_EQ(qos->ownership_strength.value, 6);
}

TEST_F(QosProfiles, ChainsOfBasesMayBeLong) {
    constexpr int kProfiles = 5000;
    std::string chain;
    for (int i = kProfiles; i > 0; --i) {
        chain += "<qos_profile name=\"" + std::to_string(i) + "\" base_name=\"" +
                 std::to_string(i - 1) + "\"/>\n";
    }
    const std::string root = profile("name=\"0\"", 31);
    ASSERT_EQ(add_library(chain + root), DDS_RETCODE_OK) << log_.text();
    EXPECT_EQ(depth(std::to_string(kProfiles).c_str()), 31);
    ASSERT_EQ(DDS_DomainParticipantFactory_unload_profiles(factory()), DDS_RETCODE_OK);
    log_.clear();
    EXPECT_EQ(add_library(chain + "<qos_profile name=\"0\" base_name=\"" +
                          std::to_string(kProfiles) + "\"/>"),
              DDS_RETCODE_ERROR);
    EXPECT_TRUE(log_.has(" is a base of itself")) << log_.text();
}

std::string default_name() {
    ParticipantQos qos;
    EXPECT_EQ(DDS_DomainParticipantFactory_get_default_participant_qos(factory(), qos.get()),
              DDS_RETCODE_OK);
    return qos->participant_name.name == nullptr ? "none" : qos->participant_name.name;
}

TEST_F(QosProfiles, TheDefaultProfileLoadedLastHolds) {
    const auto named = [](const std::string &attributes, const std::string &name) {
        return "<qos_profile " + attributes + "><participant_qos><participant_name><name>" + name +
               "</name></participant_name></participant_qos></qos_profile>";
    };
    EXPECT_EQ(default_name(), "none");
    ASSERT_EQ(
        add_library(named("name=\"A\" is_default_qos=\"true\"", "a") +
                    named("name=\"B\" is_default_qos=\" 1 \"", "b") +
                    named("name=\"C\" is_default_qos=\"false\"", "c") + named("name=\"D\"", "d")),
        DDS_RETCODE_OK)
        << log_.text();
    EXPECT_EQ(default_name(), "b");
    ASSERT_EQ(
        add_library(named("name=\"E\" base_name=\"C\" is_default_qos=\"true\"", "e"), "b.xml"),
        DDS_RETCODE_OK)
        << log_.text();
    EXPECT_EQ(default_name(), "e");
    // One that says nothing of participants leaves them to the standard's default.
    ASSERT_EQ(add_library(profile("name=\"F\" is_default_qos=\"true\"", 9), "c.xml"),
              DDS_RETCODE_OK);
    EXPECT_EQ(default_name(), "none");
    ASSERT_EQ(DDS_DomainParticipantFactory_unload_profiles(factory()), DDS_RETCODE_OK);
    EXPECT_EQ(default_name(), "none");
    ASSERT_EQ(add_library(named("name=\"A\" is_default_qos=\"true\"", "again")), DDS_RETCODE_OK);
    EXPECT_EQ(default_name(), "again");
}

TEST_F(QosProfiles, ListsOfABaseAreReplacedAndItsPropertiesKept) {
    ASSERT_EQ(add_library(
                  "<qos_profile name=\"B\"><publisher_qos><partition><name><element>a</element>"
                  "<element>b</element></name></partition></publisher_qos><participant_qos>"
                  "<property><value><element><name>x</name><value>1</value></element><element>"
                  "<name>y</name><value>1</value></element></value></property></participant_qos>"
                  "</qos_profile><qos_profile name=\"D\" base_name=\"B\"><publisher_qos><partition>"
                  "<name><element>c</element></name></partition></publisher_qos><participant_qos>"
                  "<property><value><element><name>y</name><value>2</value></element></value>"
                  "</property></participant_qos></qos_profile>"),
              DDS_RETCODE_OK)
        << log_.text();
    PublisherQos publisher;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_publisher_qos_from_profile(
                  factory(), publisher.get(), "L", "D"),
              DDS_RETCODE_OK);
    ASSERT_EQ(DDS_StringSeq_get_length(&publisher->partition.name), 1U);
    EXPECT_STREQ(DDS_StringSeq_get(&publisher->partition.name, 0), "c");
    ParticipantQos participant;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_participant_qos_from_profile(
                  factory(), participant.get(), "L", "D"),
              DDS_RETCODE_OK);
    ASSERT_EQ(DDS_PropertySeq_get_length(&participant->property.value), 2U);
    EXPECT_STREQ(DDS_PropertyQosPolicyHelper_lookup_property(&participant->property, "x")->value,
                 "1");
    EXPECT_STREQ(DDS_PropertyQosPolicyHelper_lookup_property(&participant->property, "y")->value,
                 "2");
}

std::string filtered(const char *filter, int depth) {
    return "<datawriter_qos topic_filter=\"" + std::string(filter) + "\"><history><depth>" +
           std::to_string(depth) + "</depth></history></datawriter_qos>";
}

TEST_F(QosProfiles, FirstMatchingTopicFilterIsTaken) {
    ASSERT_EQ(add_library("<qos_profile name=\"P\">" + filtered("vur/distlog", 2) +
                          filtered("vur/*/s?ate", 3) + filtered("vur/*", 4) + "</qos_profile>" +
                          "<qos_profile name=\"D\" base_name=\"P\">" + filtered("*/state", 5) +
                          filtered("*", 6) + "</qos_profile>"),
              DDS_RETCODE_OK);
    EXPECT_EQ(depth("P", "vur/distlog"), 2);
    EXPECT_EQ(depth("P", "vur/distlog/administration/state"), 3);
    EXPECT_EQ(depth("P", "vur/distlog/administration/command_request"), 4);
    EXPECT_EQ(depth("P", "VUR/distlog"), 1);
    EXPECT_EQ(depth("P"), 1) << "elements with a filter need a topic";
    EXPECT_EQ(depth("D", "a/state"), 5);
    EXPECT_EQ(depth("D", "vur/distlog"), 6);
    EXPECT_EQ(depth("D"), 6);
}

// ---- Sources ------------------------------------------------------------------------------------

TEST_F(QosProfiles, EnvironmentAndUserFileAreLoadedOnTheFirstLookUp) {
    const auto document = [](const char *library) {
        return "<dds><qos_library name=\"" + std::string(library) + "\"/></dds>";
    };
    const std::string one = write("one.xml", document("One"));
    const std::string two = write("two.xml", document("Two"));
    write("KOLT_QOS_PROFILES.xml", document("User"));
    setenv("KOLT_QOS_PROFILES", (one + ";; file://" + two + " ;" + one).c_str(), 1);
    EXPECT_EQ(libraries(), (Strings{"One", "Two", "User"}));
    EXPECT_TRUE(log_.lines().empty()) << log_.text();
}

TEST_F(QosProfiles, AbsentFileOfTheEnvironmentIsAnErrorOfLoadOnly) {
    setenv("KOLT_QOS_PROFILES", "/nowhere/profiles.xml", 1);
    EXPECT_EQ(libraries(), Strings{});
    EXPECT_TRUE(log_.has("/nowhere/profiles.xml: cannot open the file")) << log_.text();
    log_.clear();
    EXPECT_EQ(libraries(), Strings{});
    EXPECT_TRUE(log_.lines().empty()) << "a look-up tries once only";
    EXPECT_EQ(DDS_DomainParticipantFactory_load_profiles(factory()), DDS_RETCODE_ERROR);
    unsetenv("KOLT_QOS_PROFILES");
    EXPECT_EQ(DDS_DomainParticipantFactory_load_profiles(factory()), DDS_RETCODE_OK);
}

TEST_F(QosProfiles, WrongDocumentIsLeftOutAndTriedAgainByLoad) {
    const std::string wrong = write("wrong.xml", "<dds><qos_library/></dds>");
    const std::string right = write("right.xml", "<dds><qos_library name=\"Right\"/></dds>");
    setenv("KOLT_QOS_PROFILES", (wrong + ";" + right).c_str(), 1);
    EXPECT_EQ(DDS_DomainParticipantFactory_load_profiles(factory()), DDS_RETCODE_ERROR);
    EXPECT_EQ(libraries(), Strings{"Right"});
    write("wrong.xml", "<dds><qos_library name=\"Mended\"/></dds>");
    EXPECT_EQ(DDS_DomainParticipantFactory_load_profiles(factory()), DDS_RETCODE_OK);
    EXPECT_EQ(libraries(), (Strings{"Right", "Mended"}));
}

TEST_F(QosProfiles, ReloadReadsAnewAndUnloadForgets) {
    ASSERT_EQ(add_library(profile("name=\"P\"", 2)), DDS_RETCODE_OK);
    EXPECT_EQ(depth("P"), 2);
    ASSERT_EQ(add_library(profile("name=\"P\"", 3)), DDS_RETCODE_OK) << "loaded already";
    EXPECT_EQ(depth("P"), 2);
    EXPECT_EQ(DDS_DomainParticipantFactory_reload_profiles(factory()), DDS_RETCODE_OK);
    EXPECT_EQ(depth("P"), 3);
    EXPECT_EQ(DDS_DomainParticipantFactory_unload_profiles(factory()), DDS_RETCODE_OK);
    EXPECT_EQ(libraries(), Strings{});
    EXPECT_EQ(DDS_DomainParticipantFactory_reload_profiles(factory()), DDS_RETCODE_OK);
    EXPECT_EQ(libraries(), Strings{});
}

TEST_F(QosProfiles, FactoryQosNamesDocuments) {
    const std::string path = write("url.xml", "<dds><qos_library name=\"Url\"/></dds>");
    write("KOLT_QOS_PROFILES.xml", "<dds><qos_library name=\"User\"/></dds>");
    setenv("KOLT_QOS_PROFILES", "/nowhere.xml", 1);
    FactoryQos qos;
    ASSERT_EQ(DDS_DomainParticipantFactory_get_qos(factory(), qos.get()), DDS_RETCODE_OK);
    qos->profile.ignore_environment_profile = DDS_BOOLEAN_TRUE;
    qos->profile.ignore_user_profile = DDS_BOOLEAN_TRUE;
    const std::string url = "file://" + path;
    const char *urls[] = {url.c_str()};
    const char *fragments[] = {"<dds><qos_library name=\"Te", "xt\"/></dds>"};
    ASSERT_TRUE(DDS_StringSeq_from_array(&qos->profile.url_profile, const_cast<char **>(urls), 1));
    ASSERT_TRUE(
        DDS_StringSeq_from_array(&qos->profile.string_profile, const_cast<char **>(fragments), 2));
    ASSERT_EQ(DDS_DomainParticipantFactory_set_qos(factory(), qos.get()), DDS_RETCODE_OK);
    EXPECT_EQ(libraries(), (Strings{"Url", "Text"})) << log_.text();
    EXPECT_TRUE(log_.lines().empty()) << log_.text();

    qos->profile.ignore_user_profile = DDS_BOOLEAN_FALSE;
    ASSERT_TRUE(DDS_StringSeq_set_length(&qos->profile.url_profile, 0));
    ASSERT_EQ(DDS_DomainParticipantFactory_set_qos(factory(), qos.get()), DDS_RETCODE_OK);
    EXPECT_EQ(libraries(), (Strings{"Url", "Text", "User"})) << "what is loaded stays";
    EXPECT_EQ(DDS_DomainParticipantFactory_reload_profiles(factory()), DDS_RETCODE_OK);
    EXPECT_EQ(libraries(), (Strings{"User", "Text"}));
}

TEST_F(QosProfiles, NullIsRefused) {
    DDS_StringSeq names = DDS_SEQUENCE_INITIALIZER;
    WriterQos qos;
    EXPECT_EQ(DDS_DomainParticipantFactory_load_profiles(nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipantFactory_reload_profiles(nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipantFactory_unload_profiles(nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(KOLT_DomainParticipantFactory_add_profiles(factory(), nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipantFactory_get_qos_profile_libraries(factory(), nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipantFactory_get_qos_profiles(factory(), &names, nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(
        DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(factory(), nullptr, "L", "P"),
        DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipantFactory_get_datawriter_qos_from_profile(factory(), qos.get(),
                                                                           nullptr, "P"),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipantFactory_get_datawriter_qos_from_profile_w_topic_name(
                  factory(), qos.get(), "L", "P", nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(DDS_DomainParticipantFactory_create_participant_with_profile(factory(), 50, "no",
                                                                           "such", nullptr, 0U),
              nullptr);
}

TEST_F(QosProfiles, BearLookUpsFromManyThreads) {
    ASSERT_EQ(add_library(profile("name=\"P\"", 2)), DDS_RETCODE_OK);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int n = 0; n < 50; ++n) {
                EXPECT_EQ(depth("P"), 2);
            }
        });
    }
    for (int n = 0; n < 20; ++n) {
        // The profile is there before and after; no reader sees the time between.
        EXPECT_EQ(DDS_DomainParticipantFactory_reload_profiles(factory()), DDS_RETCODE_OK);
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
}

}  // namespace
