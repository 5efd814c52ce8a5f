// SPDX-License-Identifier: Apache-2.0
// distlog check as a test runs it, in a working directory of its own.
#pragma once

#include <gtest/gtest.h>
#include <kolt/config_logger.h>
#include <kolt/domain.h>
#include <vur_dl/DistLogger.h>
#include <vur_dl/XMLConfig.h>

#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "support/platform/process.h"
#include "support/platform/work_folder.h"

namespace support {

using Json = nlohmann::json;
using Lines = std::vector<std::string>;

inline std::string joined(const Lines &lines) {
    std::string text;
    for (const std::string &line : lines) {
        text += line + "\n";
    }
    return text;
}

inline bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

struct Outcome {
    int code = -1;
    Lines out;
    Lines err;
};

inline Outcome check(const Lines &arguments, const ChildProcess::Environment &environment = {},
                     const std::string &input = "") {
    Lines command{binary_path("distlog"), "check"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    ChildProcess distlog(command, environment);
    if (!input.empty()) {
        distlog.say(input);
    }
    distlog.close_input();
    Outcome outcome;
    outcome.code = distlog.wait().value_or(-1);
    outcome.out = distlog.lines();
    outcome.err = distlog.lines(ChildProcess::Stream::kErr);
    return outcome;
}

// Every test has a working directory of its own and no profiles from elsewhere.
class DistlogCheckTest : public testing::Test {
  protected:
    void SetUp() override {
        folder_.enter();
        unsetenv("KOLT_QOS_PROFILES");
    }

    static void write(const std::string &name, const std::string &text) {
        std::ofstream(name, std::ios::binary) << text;
    }
    // A document "a.xml" with this content from line 2 on.
    static void write_document(const std::string &content, const std::string &name = "a.xml") {
        write(name, "<dds>\n" + content + "\n</dds>\n");
    }
    static std::string logger(const std::string &content) {
        return "<distributed_logger>\n<enabled>true</enabled>\n" + content +
               "\n</distributed_logger>";
    }
    static std::string profile(const std::string &content,
                               const std::string &attributes = "is_default_qos=\"true\"") {
        return "<qos_library name=\"L\"><qos_profile name=\"P\" " + attributes + ">\n" + content +
               "\n</qos_profile></qos_library>";
    }
    // The one line of `distlog check --json a.xml`.
    static Json json(Lines arguments = {}, int expected = 0) {
        arguments.insert(arguments.end(), {"--json", "a.xml"});
        const Outcome outcome = check(arguments);
        EXPECT_EQ(outcome.code, expected) << joined(outcome.out);
        EXPECT_TRUE(outcome.err.empty()) << joined(outcome.err);
        EXPECT_EQ(outcome.out.size(), 1U);
        return outcome.out.empty() ? Json() : Json::parse(outcome.out.front());
    }
    static Json policy(const Json &report, const std::string &entity, const std::string &topic,
                       const std::string &name) {
        for (const Json &each : report["entities"]) {
            if (each["entity"] == entity && (topic.empty() || each["topic"] == topic)) {
                return each["policies"][name];
            }
        }
        ADD_FAILURE() << "no " << entity << " of " << topic;
        return Json();
    }
    // True when a logger starts from a.xml. It is finalised again at once.
    static bool library_starts(int domain) {
        KOLT_Config_Logger_set_verbosity(KOLT_Config_Logger_get_instance(),
                                         KOLT_CONFIG_LOG_VERBOSITY_SILENT);
        StdoutCapture quiet;
        const bool starts = VUR_DL_XMLConfig_startFromFile("a.xml", nullptr, domain, nullptr) == 1;
        VUR_DL_DistLogger_finalizeInstance();
        VUR_DL_DistLogger_setOptions(nullptr);
        DDS_DomainParticipantFactory_finalize_instance();
        return starts;
    }

    WorkFolder folder_;
};

}  // namespace support
