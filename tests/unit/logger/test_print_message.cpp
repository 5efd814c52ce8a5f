// The one routine through which the library prints.
#include <gtest/gtest.h>

#include "support/platform/process.h"
#include "vur_dl/DistLogger.h"

namespace {

using support::StdoutCapture;

TEST(PrintMessage, LineIsLevelMethodAndText) {
    StdoutCapture capture;
    EXPECT_EQ(0U, VUR_DL_DistLogger_printMessage("Unable to create clock", "method", 300));
    EXPECT_EQ("DL Error: method: Unable to create clock\n", capture.text());
}

TEST(PrintMessage, NullTextsGiveFour) {
    const std::string line =
        "DL Error: VUR_DL_DistLogger_printMessage: String passed as parameter is NULL.\n";
    StdoutCapture capture;
    EXPECT_EQ(4U, VUR_DL_DistLogger_printMessage(nullptr, "method", 300));
    EXPECT_EQ(4U, VUR_DL_DistLogger_printMessage("text", nullptr, 300));
    EXPECT_EQ(line + line, capture.text());
}

TEST(PrintMessage, EmptyMessageGivesThree) {
    StdoutCapture capture;
    EXPECT_EQ(3U, VUR_DL_DistLogger_printMessage("", "method", 300));
    EXPECT_EQ("DL Error: VUR_DL_DistLogger_printMessage: Message to print is empty.\n",
              capture.text());
}

TEST(PrintMessage, NoSecondNewline) {
    StdoutCapture capture;
    EXPECT_EQ(0U, VUR_DL_DistLogger_printMessage("one\n", "", 600));
    EXPECT_EQ("DL Info: : one\n", capture.text());
}

TEST(PrintMessage, LevelsWithoutANameAreSilent) {
    StdoutCapture capture;
    for (int level : {1, 0, -5, 150, 900}) {
        EXPECT_EQ(0U, VUR_DL_DistLogger_printMessage("text", "m", level));
    }
    EXPECT_EQ(5, capture.count("DL Silent: m: text"));
}

}  // namespace
