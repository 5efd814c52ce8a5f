// SPDX-License-Identifier: Apache-2.0
// A logger whose traffic is authenticated and encrypted (OMG DDS Security), by its XML document
// alone: a tool with the same document's properties reads it, one without hears nothing.
#include <gtest/gtest.h>
#include <kolt/domain.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/XMLConfig.h>

#include <dlfcn.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "support/platform/process.h"
#include "support/platform/work_folder.h"

namespace {

using support::ChildProcess;
using support::StdoutCapture;

constexpr int kDomain = 200;
constexpr const char *kOpenssl = "/usr/bin/openssl";

constexpr const char *kGovernance = R"(<?xml version="1.0" encoding="UTF-8"?>
<dds>
  <domain_access_rules>
    <domain_rule>
      <domains><id>200</id></domains>
      <allow_unauthenticated_participants>false</allow_unauthenticated_participants>
      <enable_join_access_control>true</enable_join_access_control>
      <discovery_protection_kind>ENCRYPT</discovery_protection_kind>
      <liveliness_protection_kind>ENCRYPT</liveliness_protection_kind>
      <rtps_protection_kind>NONE</rtps_protection_kind>
      <topic_access_rules>
        <topic_rule>
          <topic_expression>*</topic_expression>
          <enable_discovery_protection>true</enable_discovery_protection>
          <enable_liveliness_protection>true</enable_liveliness_protection>
          <enable_read_access_control>true</enable_read_access_control>
          <enable_write_access_control>true</enable_write_access_control>
          <metadata_protection_kind>ENCRYPT</metadata_protection_kind>
          <data_protection_kind>ENCRYPT</data_protection_kind>
        </topic_rule>
      </topic_access_rules>
    </domain_rule>
  </domain_access_rules>
</dds>
)";

constexpr const char *kPermissions = R"(<?xml version="1.0" encoding="UTF-8"?>
<dds>
  <permissions>
    <grant name="everybody of this test">
      <subject_name>CN=logger</subject_name>
      <validity>
        <not_before>2020-01-01T00:00:00</not_before><not_after>2100-01-01T00:00:00</not_after>
      </validity>
      <allow_rule>
        <domains><id>200</id></domains>
        <publish><topics><topic>*</topic></topics></publish>
        <subscribe><topics><topic>*</topic></topics></subscribe>
      </allow_rule>
      <default>DENY</default>
    </grant>
  </permissions>
</dds>
)";

// Returns the folder of the engine's plugins, which is the engine's own or one of its name below.
std::string plugin_folder() {
    Dl_info info = {};
    void *engine = dlsym(RTLD_DEFAULT, "dds_create_participant");
    if (engine == nullptr || dladdr(engine, &info) == 0) {
        return {};
    }
    const std::filesystem::path folder =
        std::filesystem::weakly_canonical(info.dli_fname).parent_path();
    for (const char *name : {"libddsc0debian", "."}) {
        const std::filesystem::path candidate = folder / name;
        if (std::filesystem::exists(candidate / "libdds_security_auth.so")) {
            return candidate.string();
        }
    }
    return {};
}

class SecuredLogger : public testing::Test {
  protected:
    void SetUp() override {
        plugins_ = plugin_folder();
        ASSERT_FALSE(plugins_.empty()) << "the engine's security plugins are not installed";
        ASSERT_EQ(access(kOpenssl, X_OK), 0) << kOpenssl << " is not installed";
        unsetenv("KOLT_QOS_PROFILES");
        make_certificates();
    }
    void TearDown() override {
        VUR_DL_DistLogger_finalizeInstance();
        DDS_DomainParticipantFactory_unload_profiles(DDS_DomainParticipantFactory_get_instance());
    }
    std::string path(const std::string &name) const { return folder_.path(name); }
    void write(const std::string &name, const std::string &content) const {
        folder_.write(name, content);
    }
    static void openssl(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), kOpenssl);
        ChildProcess process(arguments);
        ASSERT_EQ(process.wait(), 0) << arguments.at(1);
    }
    void make_certificates() const {
        const std::vector<std::string> key = {"-newkey", "ec", "-pkeyopt",
                                              "ec_paramgen_curve:prime256v1", "-nodes"};
        std::vector<std::string> authority = {"req",   "-x509",         "-days",   "3650",
                                              "-subj", "/CN=authority", "-keyout", path("ca.key"),
                                              "-out",  path("ca.pem")};
        authority.insert(authority.end(), key.begin(), key.end());
        openssl(authority);
        std::vector<std::string> request = {"req",          "-subj", "/CN=logger",  "-keyout",
                                            path("id.key"), "-out",  path("id.csr")};
        request.insert(request.end(), key.begin(), key.end());
        openssl(request);
        openssl({"x509", "-req", "-in", path("id.csr"), "-CA", path("ca.pem"), "-CAkey",
                 path("ca.key"), "-CAcreateserial", "-days", "3650", "-out", path("id.pem")});
        write_signed("governance", kGovernance);
        write_signed("permissions", kPermissions);
    }
    void write_signed(const std::string &name, const std::string &content) const {
        write(name + ".xml", content);
        openssl({"smime", "-sign", "-text", "-in", path(name + ".xml"), "-out", path(name + ".p7s"),
                 "-signer", path("ca.pem"), "-inkey", path("ca.key")});
    }
    static std::string property(const std::string &name, const std::string &value) {
        return "<element><name>dds.sec." + name + "</name><value>" + value + "</value></element>\n";
    }
    std::string properties(const std::string &identity) const {
        std::string all;
        const struct {
            const char *prefix;
            const char *library;
            const char *function;
        } plugins[] = {{"auth", "auth", "authentication"},
                       {"crypto", "crypto", "crypto"},
                       {"access", "ac", "access_control"}};
        for (const auto &plugin : plugins) {
            const std::string library = std::string(plugin.prefix) + ".library.";
            all +=
                property(library + "path", plugins_ + "/libdds_security_" + plugin.library + ".so");
            all += property(library + "init", std::string("init_") + plugin.function);
            all += property(library + "finalize", std::string("finalize_") + plugin.function);
        }
        all += property("auth.identity_ca", "file:" + path("ca.pem"));
        all += property("auth.private_key", "file:" + path("id.key"));
        all += property("auth.identity_certificate", "file:" + identity);
        all += property("access.permissions_ca", "file:" + path("ca.pem"));
        all += property("access.governance", "file:" + path("governance.p7s"));
        all += property("access.permissions", "file:" + path("permissions.p7s"));
        return all;
    }
    // A document with the logger and, in the profile `name`, the properties.
    std::string document(const std::string &name, const std::string &identity) const {
        return "<dds>\n<distributed_logger><enabled>true</enabled>"
               "<echo_to_stdout>false</echo_to_stdout>"
               "<log_infrastructure_messages>false</log_infrastructure_messages>"
               "</distributed_logger>\n<qos_library name=\"Secure\">\n<qos_profile name=\"" +
               name + "\" is_default_qos=\"true\"><domain_participant_qos><property><value>\n" +
               properties(identity) +
               "</value></property></domain_participant_qos></qos_profile>\n</qos_library>\n</dds>";
    }
    static std::vector<std::string> distlog(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), support::binary_path("distlog"));
        arguments.insert(arguments.end(), {"--domain", std::to_string(kDomain)});
        return arguments;
    }

    std::string plugins_;
    support::WorkFolder folder_;
};

TEST_F(SecuredLogger, IsReadByWhoHasTheKeysAndByNobodyElse) {
    write("logger.xml", document("distributed_logger", path("id.pem")));
    StdoutCapture capture;
    ASSERT_EQ(VUR_DL_XMLConfig_startFromFile(path("logger.xml").c_str(), nullptr, kDomain, "vault"),
              1)
        << capture.text();
    VUR_DL_DistLogger_info(VUR_DL_DistLogger_getInstance(), "for those who may read it");

    ChildProcess insider(distlog({"tail", "--history", "--count", "1", "--timeout", "30"}),
                         {{"KOLT_QOS_PROFILES", path("logger.xml")}});
    const std::optional<std::string> line = insider.read_line_with("for those who may read it");
    EXPECT_TRUE(line.has_value());
    EXPECT_EQ(insider.wait(), 0);
    // The insider has seen that the logger can be found; who has no keys does not find it.
    ChildProcess outsider(distlog({"ls", "--json", "--timeout", "2"}));
    EXPECT_TRUE(outsider.wait().has_value());
    for (const std::string &other : outsider.lines()) {
        EXPECT_EQ(other.find("vault"), std::string::npos) << other;
    }
    ChildProcess command(distlog({"set", "level", "vault", "debug", "--timeout", "30"}),
                         {{"KOLT_QOS_PROFILES", path("logger.xml")}});
    EXPECT_EQ(command.wait(std::chrono::seconds(60)), 0);
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(VUR_DL_DistLogger_getInstance()), 700);
}

TEST_F(SecuredLogger, AMissingCertificateIsSaid) {
    write("logger.xml", document("distributed_logger", path("absent.pem")));
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(path("logger.xml").c_str(), nullptr, kDomain, "vault"),
              0);
    EXPECT_EQ(capture.count("DL Error: VUR_DL_DDSEntities_create: Unable to create Domain "
                            "Participant"),
              1)
        << capture.text();
}

TEST_F(SecuredLogger, AForbiddenTopicIsNamed) {
    std::string permissions = kPermissions;
    const std::string every = "<publish><topics><topic>*</topic>";
    permissions.replace(permissions.find(every), every.size(),
                        "<publish><topics><topic>another topic</topic>");
    write_signed("permissions", permissions);
    write("logger.xml", document("distributed_logger", path("id.pem")));
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_XMLConfig_startFromFile(path("logger.xml").c_str(), nullptr, kDomain, "vault"),
              0);
    EXPECT_NE(
        capture.text().find("DL Error: VUR_DL_DDSEntities_create: Unable to create logMessage "
                            "DataWriter"),
        std::string::npos)
        << capture.text();
    EXPECT_NE(capture.text().find("the topic vur/distlog: the security permissions of the "
                                  "participant do not allow it"),
              std::string::npos)
        << capture.text();
}

}  // namespace
