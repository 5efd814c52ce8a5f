// SPDX-License-Identifier: Apache-2.0
// The one routine through which the library prints.
#include <gtest/gtest.h>

#include "support/platform/process.h"
#include "vur_dl/DistLogger.h"

namespace {

using support::StdoutCapture;

TEST(PrintMessage, LineIsLevelMethodAndText) {
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_DistLogger_printMessage("Unable to create clock", "method", 300), 0U);
    EXPECT_EQ(capture.text(), "DL Error: method: Unable to create clock\n");
}

TEST(PrintMessage, NullTextsGiveFour) {
    const std::string line =
        "DL Error: VUR_DL_DistLogger_printMessage: String passed as parameter is NULL.\n";
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_DistLogger_printMessage(nullptr, "method", 300), 4U);
    EXPECT_EQ(VUR_DL_DistLogger_printMessage("text", nullptr, 300), 4U);
    EXPECT_EQ(capture.text(), line + line);
}

TEST(PrintMessage, EmptyMessageGivesThree) {
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_DistLogger_printMessage("", "method", 300), 3U);
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_DistLogger_printMessage: Message to print is empty.\n");
}

TEST(PrintMessage, NoSecondNewline) {
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_DistLogger_printMessage("one\n", "", 600), 0U);
    EXPECT_EQ(capture.text(), "DL Info: : one\n");
}

TEST(PrintMessage, LevelsWithoutANameAreSilent) {
    StdoutCapture capture;
    for (int level : {1, 0, -5, 150, 900}) {
        EXPECT_EQ(VUR_DL_DistLogger_printMessage("text", "m", level), 0U);
    }
    EXPECT_EQ(capture.count("DL Silent: m: text"), 5);
}

}  // namespace
