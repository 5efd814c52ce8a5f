// SPDX-License-Identifier: Apache-2.0
// Creations that fail, and the reason that the middleware's log gives for it.
#include <gtest/gtest.h>
#include <kolt/dds_c.h>
#include <sys/resource.h>
#include <unistd.h>
#include <vur_dl/DistLogger.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "support/logger/logger.h"
#include "support/platform/process.h"

namespace {

using support::Logger;
using support::StdoutCapture;

const std::vector<std::string> kNoParticipant = {
    "DL Error: VUR_DL_DDSEntities_create: Unable to create Domain Participant",
    "DL Error: VUR_DL_DistLogger_createInstance: Unable to create DDSEntities",
    "DL Error: VUR_DistLogger_getInstance: Unable to create DistLogger singleton!"};

// Returns what a creation that fails prints.
std::vector<std::string> lines_of_failure(int domain) {
    StdoutCapture capture;
    const Logger logger({.domain = domain});
    EXPECT_EQ(logger.get(), nullptr);
    return capture.lines();
}

// True when a line below the first three, which are `prescribed`, holds `reason`, and no other does.
void expect_reason(const std::vector<std::string> &lines,
                   const std::vector<std::string> &prescribed, const std::string &reason) {
    ASSERT_GT(lines.size(), prescribed.size()) << "no reason";
    EXPECT_TRUE(std::equal(prescribed.begin(), prescribed.end(), lines.begin()));
    std::string all;
    for (const std::string &line : lines) {
        all += line + "\n";
    }
    EXPECT_NE(all.find(reason), std::string::npos) << all;
    EXPECT_EQ(all.find(reason), all.rfind(reason)) << all;
}

TEST(LoggerRefusals, AMissingInterfaceIsNamed) {
    setenv("CYCLONEDDS_URI",
           "<CycloneDDS><Domain Id='any'><General><Interfaces><NetworkInterface name='nosuch0'/>"
           "</Interfaces></General></Domain></CycloneDDS>",
           1);
    expect_reason(lines_of_failure(59), kNoParticipant, "nosuch0");
    // Each attempt says why, and leaves nothing for the next.
    expect_reason(lines_of_failure(59), kNoParticipant, "nosuch0");
}

TEST(LoggerRefusals, AConfigurationThatCannotBeReadIsNamed) {
    setenv("CYCLONEDDS_URI", "file:///no/such/configuration.xml", 1);
    expect_reason(lines_of_failure(59), kNoParticipant, "/no/such/configuration.xml");
}

TEST(LoggerRefusals, ADomainBeyondTheLastIsNamed) {
    expect_reason(lines_of_failure(231), kNoParticipant, "231");
}

// Lowers the number of file descriptors that the process may have, for a scope.
class DescriptorsLeft {
  public:
    explicit DescriptorsLeft(int left) {
        EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &before_), 0);
        const int lowest_free = dup(STDOUT_FILENO);
        close(lowest_free);
        struct rlimit few = before_;
        few.rlim_cur = static_cast<rlim_t>(lowest_free + left);
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &few), 0);
    }
    ~DescriptorsLeft() { EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before_), 0); }
    DescriptorsLeft(const DescriptorsLeft &) = delete;
    DescriptorsLeft &operator=(const DescriptorsLeft &) = delete;

  private:
    struct rlimit before_ {};
};

// The engine itself does not survive it when some of them are missing.
TEST(LoggerRefusals, TooFewFileDescriptorsAreSaid) {
#if defined(__SANITIZE_ADDRESS__)
    constexpr int kFewest = 2;  // the sanitizer needs them itself
#else
    constexpr int kFewest = 0;
#endif
    for (int left = kFewest; left < 10; ++left) {
        StdoutCapture capture;
        {
            const DescriptorsLeft few(left);
            const Logger logger({.domain = 59});
            EXPECT_EQ(logger.get(), nullptr);
        }
        expect_reason(capture.lines(), kNoParticipant, "file descriptors");
    }
    const Logger logger({.domain = 59});
    EXPECT_NE(logger.get(), nullptr);
}

TEST(LoggerRefusals, AVerbosityThatShowsNoErrorsShowsNoReason) {
    KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(),
                                     KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    EXPECT_EQ(lines_of_failure(231), kNoParticipant);
}

TEST(LoggerRefusals, AParticipantThatIsNotEnabledIsRefused) {
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    DDS_DomainParticipantFactoryQos qos;
    ASSERT_EQ(DDS_DomainParticipantFactoryQos_initialize(&qos), DDS_RETCODE_OK);
    ASSERT_EQ(DDS_DomainParticipantFactory_get_qos(factory, &qos), DDS_RETCODE_OK);
    qos.entity_factory.autoenable_created_entities = DDS_BOOLEAN_FALSE;
    ASSERT_EQ(DDS_DomainParticipantFactory_set_qos(factory, &qos), DDS_RETCODE_OK);
    DDS_DomainParticipant *participant = DDS_DomainParticipantFactory_create_participant(
        factory, 59, nullptr, nullptr, DDS_STATUS_MASK_NONE);
    ASSERT_NE(participant, nullptr);
    // One that is handed in, and the logger's own.
    for (DDS_DomainParticipant *const used :
         {participant, static_cast<DDS_DomainParticipant *>(nullptr)}) {
        StdoutCapture capture;
        const Logger logger({.domain = 59, .participant = used});
        EXPECT_EQ(logger.get(), nullptr);
        expect_reason(
            capture.lines(),
            {"DL Error: VUR_DL_DDSEntities_create: Unable to get Domain Participant QoS to create "
             "update HostId and AppId:",
             kNoParticipant[1], kNoParticipant[2]},
            "not enabled");
    }
    ASSERT_EQ(DDS_Entity_enable(DDS_DomainParticipant_as_entity(participant)), DDS_RETCODE_OK);
    {
        const Logger logger({.domain = 59, .participant = participant});
        EXPECT_NE(logger.get(), nullptr);
    }
    EXPECT_EQ(DDS_DomainParticipantFactory_delete_participant(factory, participant),
              DDS_RETCODE_OK);
}

TEST(LoggerRefusals, ACreationThatSucceedsTellsNothing) {
    EXPECT_EQ(lines_of_failure(231).size(), kNoParticipant.size() + 1);
    StdoutCapture capture;
    const Logger logger({.domain = 59});
    EXPECT_NE(logger.get(), nullptr);
    EXPECT_EQ(capture.text(), "");
}

}  // namespace
