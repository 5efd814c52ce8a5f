// SPDX-License-Identifier: Apache-2.0
// Commands from an administration tool that idlc made, in a process of its own, and the State that
// it reads.
#include <gtest/gtest.h>
#include <kolt/config_logger.h>

#include <memory>
#include <string>

#include "live_logger.h"

namespace {

using interop::Fields;
using support::ChildProcess;
using support::Ids;

// The fields of the tool's lines.
constexpr std::size_t kInvocation = 5;
constexpr std::size_t kResult = 6;
constexpr std::size_t kMessage = 7;
constexpr std::size_t kStateKind = 4;
constexpr std::size_t kFilterLevel = 5;
constexpr std::size_t kVerbosities = 6;
constexpr std::size_t kFormat = 11;
constexpr std::size_t kApplicationKind = 12;
constexpr std::size_t kStateFields = 13;

class LiveCommands : public ::testing::Test {
  protected:
    void start(int domain) {
        domain_ = domain;
        logger_ = std::make_unique<interop::LiveLogger>(domain, 600);
        ASSERT_NE(logger_->get(), nullptr);
        target_ = logger_->ids(domain);
        ASSERT_NE(target_, Ids{});
    }

    // Has a tool send one request; the State before it and the response to it.
    void ask(const std::string &kind, const std::string &value, int invocation) {
        tool_ = std::make_unique<ChildProcess>(
            std::vector<std::string>{support::helper_path("peer_request"), std::to_string(domain_),
                                     std::to_string(target_.host), std::to_string(target_.app),
                                     kind, value, std::to_string(invocation)});
        const Fields self = interop::read_until(*tool_, "self");
        ASSERT_EQ(self.size(), 3U);
        before_ = interop::read_until(*tool_, "state");
        ASSERT_EQ(before_.size(), kStateFields);
        // States that come before the response are looked for among all lines.
        response_ = interop::read_until(*tool_, "response");
        ASSERT_EQ(response_.size(), kMessage + 1);
        EXPECT_EQ(
            Fields(response_.begin() + 1, response_.begin() + kInvocation),
            (Fields{std::to_string(target_.host), std::to_string(target_.app), self[1], self[2]}));
        EXPECT_EQ(response_[kInvocation], std::to_string(invocation));
    }
    // A State with `value` in `field` has come to the tool, or comes.
    bool shows_state(std::size_t field, const std::string &value) {
        return support::eventually([&] {
            for (const std::string &line : tool_->lines()) {
                const Fields fields = interop::split(line);
                if (fields[0] == "state" && fields.size() == kStateFields &&
                    fields[field] == value) {
                    return true;
                }
            }
            return false;
        });
    }

    int domain_ = 0;
    std::unique_ptr<interop::LiveLogger> logger_;
    Ids target_;
    std::unique_ptr<ChildProcess> tool_;
    Fields before_;
    Fields response_;
};

TEST_F(LiveCommands, TheFilterLevelIsSet) {
    ASSERT_NO_FATAL_FAILURE(start(140));
    ASSERT_NO_FATAL_FAILURE(ask("level", "725", 31));
    EXPECT_EQ(response_[kResult], "0");
    EXPECT_EQ(response_[kMessage], "");
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), 725);
    EXPECT_TRUE(shows_state(kFilterLevel, "725"));

    EXPECT_EQ(before_[3], "140");
    EXPECT_EQ(before_[kStateKind], "1");
    EXPECT_EQ(before_[kFilterLevel], "600");
    EXPECT_EQ(before_[kApplicationKind], interop::kind());
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(before_[kVerbosities + i].substr(0, 2), std::to_string(i) + ":");
    }
    interop::dismiss(*tool_);
}

TEST_F(LiveCommands, TwoVerbositiesAreSet) {
    ASSERT_NO_FATAL_FAILURE(start(141));
    ASSERT_NO_FATAL_FAILURE(ask("verbosity", "3:5,2:0", 2147483647));
    EXPECT_EQ(response_[kResult], "0");
    KOLT_Config_Logger *const config = KOLT_Config_Logger_get_instance();
    EXPECT_EQ(
        KOLT_Config_Logger_get_verbosity_by_category(config, KOLT_CONFIG_LOG_CATEGORY_ENTITIES),
        KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
    EXPECT_EQ(
        KOLT_Config_Logger_get_verbosity_by_category(config, KOLT_CONFIG_LOG_CATEGORY_DATABASE),
        KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    EXPECT_TRUE(shows_state(kVerbosities + 3, "3:5"));
    EXPECT_TRUE(shows_state(kVerbosities + 2, "2:0"));
    interop::dismiss(*tool_);
}

TEST_F(LiveCommands, ThePrintFormatIsSet) {
    ASSERT_NO_FATAL_FAILURE(start(142));
    ASSERT_NO_FATAL_FAILURE(ask("format", "4", -1));
    EXPECT_EQ(response_[kResult], "0");
    EXPECT_EQ(KOLT_Config_Logger_get_print_format(KOLT_Config_Logger_get_instance()),
              KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG);
    EXPECT_TRUE(shows_state(kFormat, "4"));
    interop::dismiss(*tool_);
}

TEST_F(LiveCommands, ACommandOfALaterVersionIsNotSupported) {
    ASSERT_NO_FATAL_FAILURE(start(143));
    ASSERT_NO_FATAL_FAILURE(ask("colour", "green", 7));
    EXPECT_EQ(response_[kResult], "1");
    EXPECT_EQ(response_[kMessage], "");
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), 600);
    interop::dismiss(*tool_);
}

TEST_F(LiveCommands, ANegativeLevelIsAnError) {
    ASSERT_NO_FATAL_FAILURE(start(144));
    const std::string text = "DistLogger: Trouble setting new Filter Level.";
    support::StdoutCapture capture;
    ASSERT_NO_FATAL_FAILURE(ask("level", "-5", 8));
    EXPECT_EQ(response_[kResult], "2");
    EXPECT_EQ(response_[kMessage], text);
    EXPECT_EQ(VUR_DL_DistLogger_getFilterLevel(logger_->get()), 600);
    EXPECT_EQ(capture.count("DL Warning: VUR_DL_DistLogger_processCommand: " + text), 1);
    interop::dismiss(*tool_);
}

TEST_F(LiveCommands, TheEndOfTheLoggerIsSeen) {
    ASSERT_NO_FATAL_FAILURE(start(145));
    ASSERT_NO_FATAL_FAILURE(ask("level", "600", 9));
    EXPECT_EQ(response_[kResult], "0");
    logger_->end();
    EXPECT_TRUE(shows_state(kStateKind, "2"));
    const Fields gone = interop::read_until(*tool_, "instance");
    ASSERT_EQ(gone.size(), 4U);
    EXPECT_EQ(gone[2], std::to_string(target_.host));
    EXPECT_EQ(gone[3], std::to_string(target_.app));
    EXPECT_NE(gone[1], "alive");
    interop::dismiss(*tool_);
}

}  // namespace
