// SPDX-License-Identifier: Apache-2.0
// The translations between the middleware logger's scales and the ones on the wire.
#include <gtest/gtest.h>

#include "vur_dl/EnumTranslators.h"

namespace {

template <typename E>
E as(int value) {
    return static_cast<E>(value);
}

TEST(EnumTranslators, CategoriesBeyondEntitiesAreApiOnTheWire) {
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(static_cast<int>(VUR_DL_translateFromVURLoggerCategoryToDLCategory(
                      as<KOLT_Config_LogCategory>(i))),
                  i);
    }
    for (int i : {4, 5, 6, 7, 100, -1}) {
        EXPECT_EQ(VUR_DL_translateFromVURLoggerCategoryToDLCategory(as<KOLT_Config_LogCategory>(i)),
                  VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API)
            << i;
    }
}

TEST(EnumTranslators, WireCategoriesOutOfRangeAreApi) {
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(static_cast<int>(VUR_DL_translateFromDLCategoryToVURLoggerCategory(
                      as<VUR_DL_ADMIN_VURLoggerCategory>(i))),
                  i);
    }
    for (int i : {5, 9, -3}) {
        EXPECT_EQ(VUR_DL_translateFromDLCategoryToVURLoggerCategory(
                      as<VUR_DL_ADMIN_VURLoggerCategory>(i)),
                  KOLT_CONFIG_LOG_CATEGORY_API)
            << i;
    }
}

TEST(EnumTranslators, VerbositiesThatAreNoneOfTheNamedOnesAreWarnings) {
    const int pairs[][2] = {{0, 0}, {3, 1}, {7, 2}, {15, 3}, {31, 4}, {63, 5}};
    for (const auto &[middleware, wire] : pairs) {
        EXPECT_EQ(static_cast<int>(VUR_DL_translateFromVURLoggerVerbosityToDLVerbosity(
                      as<KOLT_Config_LogVerbosity>(middleware))),
                  wire);
        EXPECT_EQ(static_cast<int>(VUR_DL_translateFromDLVerbosityToVURLoggerVerbosity(
                      as<VUR_DL_ADMIN_VURLoggerVerbosity>(wire))),
                  middleware);
    }
    for (int mask : {1, 2, 5, 62}) {
        EXPECT_EQ(
            VUR_DL_translateFromVURLoggerVerbosityToDLVerbosity(as<KOLT_Config_LogVerbosity>(mask)),
            VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING);
    }
    EXPECT_EQ(VUR_DL_translateFromDLVerbosityToVURLoggerVerbosity(
                  as<VUR_DL_ADMIN_VURLoggerVerbosity>(17)),
              KOLT_CONFIG_LOG_VERBOSITY_WARNING);
}

TEST(EnumTranslators, PrintFormatsThatAreNoneOfTheNamedOnesAreTheDefault) {
    const int pairs[][2] = {{13330, 0}, {13586, 1}, {15894, 2}, {16150, 3},
                            {13935, 4}, {17, 5},    {16255, 6}};
    for (const auto &[middleware, wire] : pairs) {
        EXPECT_EQ(static_cast<int>(VUR_DL_translateFromVURLoggerPrintFormatToDLPrintFormat(
                      as<KOLT_Config_LogPrintFormat>(middleware))),
                  wire);
        EXPECT_EQ(static_cast<int>(VUR_DL_translateFromDLPrintFormatToVURLoggerPrintFormat(
                      as<VUR_DL_ADMIN_VURLoggerPrintFormat>(wire))),
                  middleware);
    }
    EXPECT_EQ(VUR_DL_translateFromVURLoggerPrintFormatToDLPrintFormat(
                  as<KOLT_Config_LogPrintFormat>(0x3413)),
              VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
    EXPECT_EQ(VUR_DL_translateFromDLPrintFormatToVURLoggerPrintFormat(
                  as<VUR_DL_ADMIN_VURLoggerPrintFormat>(7)),
              KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
}

TEST(EnumTranslators, MiddlewareLevelsNeverBecomeSevereOrTrace) {
    const int expected[] = {100, 300, 400, 500, 600, 700};
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(VUR_DL_translateFromVURLoggerLogLevelToDLLevel(as<KOLT_Config_LogLevel>(i)),
                  expected[i]);
    }
    EXPECT_EQ(VUR_DL_translateFromVURLoggerLogLevelToDLLevel(as<KOLT_Config_LogLevel>(6)), 600);
    EXPECT_EQ(VUR_DL_translateFromVURLoggerLogLevelToDLLevel(as<KOLT_Config_LogLevel>(-1)), 600);
}

TEST(EnumTranslators, OnlyExactLevelsHaveALabel) {
    const std::pair<int, const char *> labels[] = {
        {100, "DL Fatal"},  {200, "DL Severe"}, {300, "DL Error"},  {400, "DL Warning"},
        {500, "DL Notice"}, {600, "DL Info"},   {700, "DL Debug"},  {800, "DL Trace"},
        {0, "DL Silent"},   {-1, "DL Silent"},  {250, "DL Silent"}, {801, "DL Silent"}};
    for (const auto &[level, label] : labels) {
        char text[VUR_DL_LOG_LEVEL_LABEL_SIZE] = {};
        EXPECT_EQ(VUR_DL_translateFromDLLogLevelToString(level, text), DDS_RETCODE_OK);
        EXPECT_STREQ(text, label);
    }
    EXPECT_EQ(VUR_DL_translateFromDLLogLevelToString(100, nullptr), DDS_RETCODE_BAD_PARAMETER);
}

}  // namespace
