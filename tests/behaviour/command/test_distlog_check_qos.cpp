// SPDX-License-Identifier: Apache-2.0
// The QoS that distlog check shows, and its messages about profiles.
#include <gtest/gtest.h>
#include <kolt/config_logger.h>
#include <kolt/domain.h>
#include <vur_dl/DDSEntities.h>

#include <string>

#include "support/config/distlog_check.h"

namespace {

using support::check;
using support::contains;
using support::joined;
using support::Json;
using support::Lines;
using support::Outcome;

class DistlogCheckQos : public support::DistlogCheckTest {};

TEST_F(DistlogCheckQos, QosIsTheLoggers) {
    write_document(logger(""));
    const Json report = json();
    const Json log = policy(report, "datawriter", VUR_DL_LOG_TOPIC_NAME, "history");
    EXPECT_EQ(log["value"], (Json{{"kind", "KEEP_LAST_HISTORY_QOS"}, {"depth", 10}}));
    EXPECT_EQ(log["source"], "logger");
    EXPECT_EQ(policy(report, "datawriter", VUR_DL_STATE_TOPIC_NAME, "durability")["value"]["kind"],
              "TRANSIENT_LOCAL_DURABILITY_QOS");
    EXPECT_EQ(policy(report, "datawriter", VUR_DL_STATE_TOPIC_NAME, "property")["value"]["value"],
              (Json::array({{{"name", "dds.data_writer.enable_deferred_write"},
                             {"value", "true"},
                             {"propagate", false}}})));
    EXPECT_EQ(policy(report, "datareader", VUR_DL_COMMAND_REQUEST_TOPIC_NAME,
                     "latency_budget")["value"]["duration"],
              "infinite");
    EXPECT_EQ(policy(report, "datawriter", VUR_DL_LOG_TOPIC_NAME, "resource_limits")["source"],
              "default");
    EXPECT_EQ(report["profile"], nullptr);
}

TEST_F(DistlogCheckQos, TheDefaultProfileOfTheDocumentHolds) {
    const std::string writer =
        "<publisher_qos><group_data><value>AQI=</value></group_data></publisher_qos>"
        "<datawriter_qos topic_filter=\"vur/distlog\"><history><depth>50</depth></history>"
        "<lifespan><duration><sec>2</sec><nanosec>500000000</nanosec></duration></lifespan>"
        "<representation><value><element>XCDR2_DATA_REPRESENTATION</element></value>"
        "</representation></datawriter_qos>";
    write_document(logger("") + profile(writer));
    const Json report = json();
    EXPECT_EQ(report["profile"], "L::P");
    const Json representation =
        policy(report, "datawriter", VUR_DL_LOG_TOPIC_NAME, "representation");
    EXPECT_EQ(representation["value"]["value"], Json::array({"XCDR2_DATA_REPRESENTATION"}));
    EXPECT_EQ(representation["source"], "profile");
    EXPECT_EQ(policy(report, "datawriter", VUR_DL_LOG_TOPIC_NAME, "lifespan")["value"]["duration"],
              "2.5 s");
    // Without a profile of the application's choice, the logger has a depth of its own.
    const Json history = policy(report, "datawriter", VUR_DL_LOG_TOPIC_NAME, "history");
    EXPECT_EQ(history["value"]["depth"], 10);
    EXPECT_EQ(history["source"], "logger");
    EXPECT_EQ(history["profile"]["depth"], 50);
    EXPECT_EQ(policy(report, "datawriter", VUR_DL_STATE_TOPIC_NAME, "representation")["source"],
              "default");
    EXPECT_EQ(policy(report, "publisher", "", "group_data")["value"]["value"], Json::array({1, 2}));
    const Outcome text = check({"a.xml"});
    EXPECT_TRUE(contains(joined(text.out),
                         "  history                      logger   KEEP_LAST_HISTORY_QOS, depth 10 "
                         "(the profile says KEEP_LAST_HISTORY_QOS, depth 50)\n"))
        << joined(text.out);
    EXPECT_TRUE(contains(joined(text.out), "  in force: L::P (is_default_qos)\n"));
}

TEST_F(DistlogCheckQos, TheLoggersOwnProfileHoldsByItsName) {
    write_document(logger("") +
                   "<qos_library name=\"L\"><qos_profile name=\"Default\" is_default_qos=\"1\"/>"
                   "<qos_profile name=\"distributed_logger\"><datawriter_qos><history>"
                   "<depth>50</depth></history></datawriter_qos></qos_profile></qos_library>");
    const Json report = json();
    EXPECT_EQ(report["profile"], "L::distributed_logger");
    EXPECT_EQ(report["profile_chosen_by"], "by its name");
    EXPECT_EQ(policy(report, "datawriter", VUR_DL_LOG_TOPIC_NAME, "history")["value"]["depth"], 50);
    const Json other = json({"--profile", "L::Default"});
    EXPECT_EQ(other["profile"], "L::Default");
    EXPECT_EQ(other["profile_chosen_by"], "--profile");
}

TEST_F(DistlogCheckQos, AProfileThatTheApplicationNames) {
    write_document(logger("") + profile("<datawriter_qos><history><depth>50</depth></history>"
                                        "</datawriter_qos>",
                                        ""));
    const Json report = json({"--profile", "L::P"});
    EXPECT_EQ(report["profile"], "L::P");
    const Json history = policy(report, "datawriter", VUR_DL_LOG_TOPIC_NAME, "history");
    EXPECT_EQ(history["value"]["depth"], 50);
    EXPECT_EQ(history["source"], "profile");

    const Outcome missing = check({"--profile", "L::Q", "a.xml"});
    EXPECT_EQ(missing.code, 1);
    EXPECT_EQ(missing.err,
              Lines{"a.xml: warning: no QoS profile L::Q; the logger says \"QoS Library and "
                    "Profile cannot be found, using default QoS\" and does so; profiles: L::P"});
    ASSERT_FALSE(missing.out.empty());
    EXPECT_EQ(missing.out.front(), "a.xml: valid, 1 warning");
    const Outcome no_library = check({"--profile", "M::P", "a.xml"});
    EXPECT_EQ(no_library.code, 1);
    EXPECT_TRUE(contains(joined(no_library.err), "no QoS profile M::P"));
}

// The depth that the logger needs does not fit the limits of the profile: the middleware refuses.
TEST_F(DistlogCheckQos, QosThatTheMiddlewareRefusesIsAnError) {
    write_document(logger("") +
                   profile("<datawriter_qos><resource_limits><max_samples_per_instance>5"
                           "</max_samples_per_instance></resource_limits></datawriter_qos>"));
    const Outcome outcome = check({"a.xml"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(contains(joined(outcome.err),
                         "a.xml: error: the logger does not start: its datawriter of vur/distlog "
                         "is refused: "))
        << joined(outcome.err);
    EXPECT_TRUE(contains(joined(outcome.err), "history")) << joined(outcome.err);
    EXPECT_FALSE(library_starts(195));
}

TEST_F(DistlogCheckQos, PartitionsAndDisabledEntitiesAreTold) {
    write_document(logger("") + profile("<publisher_qos><partition><name><element>red</element>"
                                        "</name></partition></publisher_qos>"));
    Outcome outcome = check({"a.xml"});
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(contains(joined(outcome.err),
                         "a.xml: note: the publisher is in the partition red: monitors outside it, "
                         "distlog among them, do not meet the logger"));
    write_document(logger("") + profile("<participant_qos><entity_factory>"
                                        "<autoenable_created_entities>false"
                                        "</autoenable_created_entities></entity_factory>"
                                        "</participant_qos>"));
    outcome = check({"a.xml"});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_TRUE(contains(joined(outcome.err),
                         "a.xml: warning: autoenable_created_entities is false for the "
                         "participant"));
}

TEST_F(DistlogCheckQos, OtherSourcesOfProfilesCount) {
    write_document(
        "<qos_library name=\"E\"><qos_profile name=\"First\"><datawriter_qos><history>"
        "<kind>KEEP_ALL_HISTORY_QOS</kind></history></datawriter_qos></qos_profile>"
        "</qos_library>",
        "first.xml");
    write_document(
        "<qos_library name=\"U\"><qos_profile name=\"User\" base_name=\"E::First\" "
        "is_default_qos=\"1\"/></qos_library>",
        "KOLT_QOS_PROFILES.xml");
    write_document(logger(""));
    const Outcome outcome = check({"a.xml"}, {{"KOLT_QOS_PROFILES", "first.xml; missing.xml"}});
    EXPECT_EQ(outcome.code, 1);
    EXPECT_EQ(outcome.err, Lines{"missing.xml: warning: cannot open the file: No such file or "
                                 "directory"});
    const std::string text = joined(outcome.out);
    EXPECT_TRUE(contains(text,
                         "QoS profiles, in the order in which they are loaded\n"
                         "  first.xml (KOLT_QOS_PROFILES): E::First\n"
                         "  missing.xml (KOLT_QOS_PROFILES): not loaded\n"
                         "  KOLT_QOS_PROFILES.xml (working directory): U::User\n"
                         "  a.xml: no profiles\n"
                         "  in force: U::User (is_default_qos)\n"))
        << text;
    EXPECT_TRUE(contains(text, "(the profile says KEEP_ALL_HISTORY_QOS)")) << text;

    // The document itself may be among them.
    const Outcome same = check({"first.xml"}, {{"KOLT_QOS_PROFILES", "./first.xml"}});
    EXPECT_EQ(same.code, 0) << joined(same.err);
    const Outcome twice = check({"a.xml"}, {{"KOLT_QOS_PROFILES", "KOLT_QOS_PROFILES.xml"}});
    EXPECT_TRUE(contains(joined(twice.err),
                         "KOLT_QOS_PROFILES.xml:2: warning: unknown base "
                         "profile E::First"))
        << joined(twice.err);
}

// ---- The function that the command asks ---------------------------------------------------------

TEST(DdsEntitiesForQos, NeedsFactoryAndOptions) {
    support::StdoutCapture capture;
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    EXPECT_EQ(VUR_DL_DDSEntities_createForQos(nullptr, options), nullptr);
    EXPECT_EQ(VUR_DL_DDSEntities_createForQos(DDS_DomainParticipantFactory_get_instance(), nullptr),
              nullptr);
    EXPECT_EQ(capture.count("DL Error: VUR_DL_DDSEntities_createForQos: factory and options are "
                            "needed"),
              2);
    VUR_DL_Options_delete(options);
}

TEST(DdsEntitiesForQos, WithoutAParticipantOnlyTheParticipantsQosIsKnown) {
    KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(),
                                     KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    VUR_DL_Options *options = VUR_DL_Options_createDefault();
    VUR_DL_Options_setApplicationKind(options, "kind");
    VUR_DL_DDSEntities *entities =
        VUR_DL_DDSEntities_createForQos(DDS_DomainParticipantFactory_get_instance(), options);
    ASSERT_NE(entities, nullptr);
    DDS_DomainParticipantQos participant_qos;
    EXPECT_EQ(VUR_DL_DDSEntities_getDomainParticipantQos(entities, &participant_qos, options),
              DDS_RETCODE_OK);
    EXPECT_STREQ(participant_qos.participant_name.name, "kind");
    DDS_DomainParticipantQos_finalize(&participant_qos);
    DDS_PublisherQos publisher_qos;
    EXPECT_EQ(VUR_DL_DDSEntities_getPublisherQos(entities, &publisher_qos),
              DDS_RETCODE_BAD_PARAMETER);
    DDS_PublisherQos_finalize(&publisher_qos);
    VUR_DL_DDSEntities_destroy(entities);
    VUR_DL_Options_delete(options);
}

}  // namespace
