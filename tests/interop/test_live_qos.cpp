// SPDX-License-Identifier: Apache-2.0
// QoS that an XML document gives the logger's own entities, without a line of code, as another
// process hears of it through discovery.
#include <gtest/gtest.h>
#include <kolt/domain.h>
#include <vur_dl/DDSEntities.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/XMLConfig.h>

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <optional>
#include <string>

#include "live_logger.h"

namespace {

using interop::Fields;
using support::ChildProcess;
using support::StdoutCapture;

constexpr const char *kLogger =
    "<distributed_logger><enabled>true</enabled><echo_to_stdout>false</echo_to_stdout>"
    "<log_infrastructure_messages>false</log_infrastructure_messages></distributed_logger>";

// The QoS of an endpoint, by the columns of peer_endpoints.
struct Endpoint {
    std::string reliability;
    std::string durability;
    std::string history;
    std::string depth;
    std::string limits;
    std::string partitions;
    std::string representations;
    std::string user_data;

    bool operator==(const Endpoint &) const = default;
};
std::ostream &operator<<(std::ostream &out, const Endpoint &e) {
    return out << e.reliability << ' ' << e.durability << ' ' << e.history << ' ' << e.depth << ' '
               << e.limits << ' ' << e.partitions << ' ' << e.representations << ' ' << e.user_data;
}

class LiveQos : public testing::Test {
  protected:
    void SetUp() override {
        unsetenv("KOLT_QOS_PROFILES");
        path_ = "/tmp/vur_dl_live_qos_" + std::to_string(getpid()) + ".xml";
    }
    void TearDown() override {
        VUR_DL_DistLogger_finalizeInstance();
        DDS_DomainParticipantFactory_unload_profiles(DDS_DomainParticipantFactory_get_instance());
        std::remove(path_.c_str());
    }
    const char *write(const std::string &content) const {
        std::ofstream(path_) << "<dds>\n" << content << "\n</dds>\n";
        return path_.c_str();
    }
    bool start(int domain, const std::string &library) {
        watcher_.emplace(Fields{support::helper_path("peer_endpoints"), std::to_string(domain)});
        EXPECT_EQ(interop::read_until(*watcher_, "watching").size(), 1U);
        return VUR_DL_XMLConfig_startFromFile(write(library + kLogger), nullptr, domain,
                                              interop::kind().c_str()) == 1;
    }
    // A line of the observer, which may have come already; no fields when none comes.
    Fields heard(const std::function<bool(const Fields &)> &wanted) {
        for (const std::string &line : watcher_->lines()) {
            if (wanted(interop::split(line))) {
                return interop::split(line);
            }
        }
        return interop::read_until(*watcher_, wanted);
    }
    Endpoint endpoint(const std::string &what, const std::string &topic) {
        return endpoint_of(
            heard([&](const Fields &line) { return line[0] == what && line.at(1) == topic; }));
    }
    static Endpoint endpoint_of(const Fields &line) {
        if (line.size() != 12U) {
            ADD_FAILURE() << "no such endpoint";
            return {};
        }
        return {line[2], line[3],  line[4], line[5], line[6] + "," + line[7] + "," + line[8],
                line[9], line[10], line[11]};
    }

    std::string path_;
    std::optional<ChildProcess> watcher_;
};

// The engine's numbers of the kinds, and of what was not said.
constexpr const char *kReliable = "1";
constexpr const char *kVolatile = "0";
constexpr const char *kTransientLocal = "1";
constexpr const char *kKeepLast = "0";
constexpr const char *kKeepAll = "1";
constexpr const char *kUnlimited = "-1,-1,-1";
constexpr const char *kXcdr1 = "0";
constexpr const char *kXcdr2 = "2";

constexpr const char *kOwnProfile = R"(
<qos_library name="Base">
  <qos_profile name="Site">
    <domain_participant_qos>
      <user_data><value>aGVsbG8=</value></user_data>
      <property><value>
        <element><name>site.rack</name><value>7</value></element>
        <element><name>site.room</name><value>1</value></element>
      </value></property>
    </domain_participant_qos>
  </qos_profile>
</qos_library>
<qos_library name="Ours">
  <qos_profile name="other" is_default_qos="true">
    <datawriter_qos><user_data><value>bm90IG1l</value></user_data></datawriter_qos>
  </qos_profile>
  <qos_profile name="distributed_logger" base_name="Base::Site">
    <domain_participant_qos>
      <property><value><element><name>site.room</name><value>2</value></element></value></property>
    </domain_participant_qos>
    <publisher_qos>
      <partition><name><element>plant</element><element>line 1</element></name></partition>
    </publisher_qos>
    <subscriber_qos><partition><name><element>admin</element></name></partition></subscriber_qos>
    <datawriter_qos topic_filter="vur/distlog">
      <history><kind>KEEP_ALL_HISTORY_QOS</kind></history>
      <resource_limits><max_samples>5000</max_samples><max_instances>8</max_instances>
        <max_samples_per_instance>4000</max_samples_per_instance></resource_limits>
      <representation><value><element>XCDR2_DATA_REPRESENTATION</element></value></representation>
      <user_data><value>bG9n</value></user_data>
    </datawriter_qos>
    <datawriter_qos topic_filter="vur/distlog/administration/*">
      <history><depth>3</depth></history>
    </datawriter_qos>
    <datareader_qos topic_filter="*/command_request">
      <history><kind>KEEP_ALL_HISTORY_QOS</kind></history>
      <user_data><value>Y21k</value></user_data>
    </datareader_qos>
  </qos_profile>
</qos_library>
)";

TEST_F(LiveQos, TheProfileOfTheLoggersNameIsItsOwn) {
    StdoutCapture capture;
    ASSERT_TRUE(start(205, kOwnProfile)) << capture.text();
    EXPECT_EQ(capture.text(), "");

    EXPECT_EQ(endpoint("writer", VUR_DL_LOG_TOPIC_NAME),
              (Endpoint{kReliable, kTransientLocal, kKeepAll, "1", "5000,8,4000", "plant,line 1",
                        kXcdr2, "log"}));
    // The logger forces the reliability and durability that it needs; the rest is the profile's.
    EXPECT_EQ(endpoint("writer", VUR_DL_STATE_TOPIC_NAME),
              (Endpoint{kReliable, kTransientLocal, kKeepLast, "3", kUnlimited, "plant,line 1",
                        kXcdr1, ""}));
    EXPECT_EQ(
        endpoint("writer", VUR_DL_COMMAND_RESPONSE_TOPIC_NAME),
        (Endpoint{kReliable, kVolatile, kKeepLast, "3", kUnlimited, "plant,line 1", kXcdr1, ""}));
    EXPECT_EQ(endpoint("reader", VUR_DL_COMMAND_REQUEST_TOPIC_NAME),
              (Endpoint{kReliable, kVolatile, kKeepAll, "1", kUnlimited, "admin",
                        std::string(kXcdr1) + "," + kXcdr2, "cmd"}));
    const Fields participant_line = heard([](const Fields &line) {
        return line[0] == "participant" && line.at(1) == interop::kind();
    });
    EXPECT_EQ(participant_line, (Fields{"participant", interop::kind(), "hello"}));
    interop::dismiss(*watcher_);

    // Properties are the process's own business: they are in force, and are not announced.
    DDS_DomainParticipant *participant = DDS_DomainParticipantFactory_lookup_participant(
        DDS_DomainParticipantFactory_get_instance(), 205);
    ASSERT_NE(participant, nullptr);
    DDS_DomainParticipantQos qos;
    ASSERT_EQ(DDS_DomainParticipantQos_initialize(&qos), DDS_RETCODE_OK);
    EXPECT_EQ(DDS_DomainParticipant_get_qos(participant, &qos), DDS_RETCODE_OK);
    const auto property = [&](const char *name) -> std::string {
        const DDS_Property_t *found =
            DDS_PropertyQosPolicyHelper_lookup_property(&qos.property, name);
        return found == nullptr ? "none" : found->value;
    };
    EXPECT_EQ(property("site.rack"), "7");
    EXPECT_EQ(property("site.room"), "2");
    DDS_DomainParticipantQos_finalize(&qos);
}

// The default profile of the process applies to the logger, too, but for the history, which the
// logger sets without a profile of its own.
TEST_F(LiveQos, TheDefaultProfileAppliesButForTheHistory) {
    StdoutCapture capture;
    ASSERT_TRUE(start(206, R"(
<qos_library name="L">
  <qos_profile name="P" is_default_qos="true">
    <publisher_qos><partition><name><element>plant</element></name></partition></publisher_qos>
    <datawriter_qos>
      <history><kind>KEEP_ALL_HISTORY_QOS</kind></history>
      <resource_limits><max_samples>5000</max_samples></resource_limits>
      <representation><value><element>XCDR2_DATA_REPRESENTATION</element></value></representation>
    </datawriter_qos>
  </qos_profile>
</qos_library>)"))
        << capture.text();
    EXPECT_EQ(capture.text(), "");
    EXPECT_EQ(
        endpoint("writer", VUR_DL_LOG_TOPIC_NAME),
        (Endpoint{kReliable, kTransientLocal, kKeepLast, "10", "5000,-1,-1", "plant", kXcdr2, ""}));
    interop::dismiss(*watcher_);
}

// Security properties reach the engine's plugins, which say what they think of them.
TEST_F(LiveQos, SecurityPropertiesReachTheEngine) {
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(write(R"(
<qos_library name="L">
  <qos_profile name="distributed_logger">
    <domain_participant_qos>
      <property><value>
        <element><name>dds.sec.auth.library.path</name><value>dds_security_auth</value></element>
        <element><name>dds.sec.auth.library.init</name><value>init_authentication</value></element>
      </value></property>
    </domain_participant_qos>
  </qos_profile>
</qos_library>)" + std::string(kLogger)),
                                             nullptr, 207, nullptr),
              0);
    EXPECT_EQ(capture.count("DL Error: VUR_DL_DDSEntities_create: Unable to create Domain "
                            "Participant"),
              1)
        << capture.text();
    EXPECT_EQ(
        capture.count("DL Error: VUR_DL_XMLConfig_startFromFile: Distributed Logger could not "
                      "be started"),
        1)
        << capture.text();
}

}  // namespace
