// SPDX-License-Identifier: Apache-2.0
// The conversions of the texts inside `distributed_logger`.
#include <gtest/gtest.h>
#include <vur_dl/XMLConfig.h>

#include <cerrno>
#include <string>
#include <utility>

#include "support/config/xml_config.h"

namespace {

using support::errors;
using support::Lines;
using support::log_error;

class XmlConfigConversion : public testing::Test {
  protected:
    void SetUp() override {
        errors().clear();
        errno = 0;
    }
    // The messages since the last call, without line and method; the context's error is cleared.
    Lines take() {
        Lines result;
        for (const std::string &error : errors()) {
            result.push_back(error.substr(error.find(": ") + 2));
        }
        EXPECT_EQ(context_.error, result.empty() ? 0 : 1);
        context_.error = 0;
        errors().clear();
        return result;
    }
    DDS_XMLContext context_ = DDS_XML_CONTEXT_INITIALIZER;
};

TEST_F(XmlConfigConversion, FilterLevel) {
    const auto level = [&](const char *text) {
        return VUR_DL_XMLConfig_getFilterLevelFromString(text, &context_, log_error);
    };
    const std::pair<const char *, int> right[] = {
        {"SILENT", 0},   {"FATAL", 100}, {"SEVERE", 200}, {"ERROR", 300},   {"WARNING", 400},
        {"NOTICE", 500}, {"INFO", 600},  {"DEBUG", 700},  {"TRACE", 800},   {"650", 650},
        {" +7x", 7},     {"010", 10},    {"0x10", 0},     {"4294967296", 0}};
    for (const auto &[text, value] : right) {
        EXPECT_EQ(level(text), value) << text;
        EXPECT_EQ(take(), Lines{}) << text;
    }
    EXPECT_EQ(level(nullptr), -1);
    EXPECT_EQ(errors(), Lines{"0 VUR_DL_XMLConfig_getFilterLevelFromString: null string found for "
                              "filter level"});
    EXPECT_EQ(take().size(), 1U);
    for (const char *text : {"info", " INFO", "INFO ", "", "x1"}) {
        EXPECT_EQ(level(text), -1) << text;
        EXPECT_EQ(take(), Lines{"integer expected in XML text"}) << text;
    }
    for (const char *text : {"-1", "2147483648", "99999999999999999999"}) {
        EXPECT_EQ(level(text), -1) << text;
        EXPECT_EQ(take(), Lines{"negative integer not allowed for filter level"}) << text;
    }
}

TEST_F(XmlConfigConversion, QueueSize) {
    int size = 77;
    const auto convert = [&](const char *text) {
        VUR_DL_XMLConfig_getQueueSize(&size, text, &context_, log_error);
        return size;
    };
    const std::pair<const char *, int> right[] = {
        {"1", 1}, {"0x10", 16}, {"010", 8}, {" 12 messages", 12}, {"4294967297", 1}};
    for (const auto &[text, value] : right) {
        EXPECT_EQ(convert(text), value) << text;
        EXPECT_EQ(take(), Lines{}) << text;
    }
    size = 77;
    EXPECT_EQ(convert("many"), 77);
    EXPECT_EQ(take(), Lines{"integer expected in XML text"});
    for (const char *text : {"0", "-1", "2147483648", "4294967296"}) {
        EXPECT_EQ(convert(text), 77) << text;
        EXPECT_EQ(take(), Lines{"positive integer expected"}) << text;
    }
    EXPECT_EQ(convert("99999999999999999999"), 77);
    EXPECT_EQ(take(), Lines{"integer out of bounds in XML text"});
    // A range error that somebody else left behind counts, too.
    errno = ERANGE;
    EXPECT_EQ(convert("5"), 77);
    EXPECT_EQ(take(), Lines{"integer out of bounds in XML text"});
    errno = 0;
    EXPECT_EQ(convert("5"), 5);
}

TEST_F(XmlConfigConversion, ThreadMask) {
    DDS_ThreadSettingsKindMask mask = 0xFFU;
    const auto convert = [&](const std::string &text) {
        VUR_DL_XMLConfig_getThreadSettingsKindMask(&mask, text.c_str(), &context_, log_error);
        return mask;
    };
    const std::pair<const char *, DDS_ThreadSettingsKindMask> right[] = {
        {"", 0U},
        {" \t\n", 0U},
        {"mask_default", 0U},
        {"DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT", 0U},
        {"THREAD_SETTINGS_KIND_MASK_DEFAULT|STDIO", 2U},
        {"stdio | Floating_Point", 3U},
        {"DDS_THREAD_SETTINGS_REALTIME_PRIORITY", 8U},
        {"thread_settings_priority_enforce", 16U},
        {"PRIORITY_ENFORCE|REALTIME_PRIORITY|DDS_THREAD_SETTINGS_STDIO|FLOATING_POINT", 27U}};
    for (const auto &[text, value] : right) {
        EXPECT_EQ(convert(text), value) << text;
        EXPECT_EQ(take(), Lines{}) << text;
    }
    const std::pair<std::string, DDS_ThreadSettingsKindMask> names[] = {
        {"MASK_DEFAULT", 0U},
        {"DDS_THREAD_SETTINGS_KIND_MASK_DEFAULT", 0U},
        {"THREAD_SETTINGS_KIND_MASK_DEFAULT", 0U},
        {"FLOATING_POINT", 0x01U},
        {"DDS_THREAD_SETTINGS_FLOATING_POINT", 0x01U},
        {"THREAD_SETTINGS_FLOATING_POINT", 0x01U},
        {"STDIO", 0x02U},
        {"DDS_THREAD_SETTINGS_STDIO", 0x02U},
        {"THREAD_SETTINGS_STDIO", 0x02U},
        {"REALTIME_PRIORITY", 0x08U},
        {"DDS_THREAD_SETTINGS_REALTIME_PRIORITY", 0x08U},
        {"THREAD_SETTINGS_REALTIME_PRIORITY", 0x08U},
        {"PRIORITY_ENFORCE", 0x10U},
        {"DDS_THREAD_SETTINGS_PRIORITY_ENFORCE", 0x10U},
        {"THREAD_SETTINGS_PRIORITY_ENFORCE", 0x10U}};
    std::string all;
    for (const auto &[name, bits] : names) {
        EXPECT_EQ(convert(name), bits) << name;
        EXPECT_EQ(convert("STDIO|" + name), bits | 0x02U) << name;
        EXPECT_EQ(take(), Lines{}) << name;
        EXPECT_EQ(convert(name + "S"), 0U) << name;
        EXPECT_EQ(take(), Lines{"illegal value on thread mask XML tag"}) << name;
        all += (all.empty() ? "" : " | ") + name;
    }
    EXPECT_EQ(convert(all), 0x1BU);
    const std::pair<const char *, DDS_ThreadSettingsKindMask> wrong[] = {
        {"STDIO|", 2U}, {"STDIO||FLOATING_POINT", 2U}, {"|STDIO", 0U},
        {"4", 0U},      {"STDIO FLOATING_POINT", 0U},  {"STDIO|x|FLOATING_POINT", 2U}};
    for (const auto &[text, value] : wrong) {
        EXPECT_EQ(convert(text), value) << text;
        EXPECT_EQ(take(), Lines{"illegal value on thread mask XML tag"}) << text;
    }
    mask = 0x5AU;
    EXPECT_EQ(convert(std::string(2048, ' ')), 0x5AU);
    EXPECT_EQ(take(), Lines{"thread settings kind too long"});
    EXPECT_EQ(convert(std::string(2047, ' ')), 0U);
    EXPECT_EQ(take(), Lines{});
    VUR_DL_XMLConfig_getThreadSettingsKindMask(&mask, nullptr, &context_, log_error);
    EXPECT_EQ(take(), Lines{"error trimming thread settings mask string"});
}

TEST_F(XmlConfigConversion, FirstElementOfAMask) {
    char text[] = "one|two|three";
    char *rest = VUR_DL_XMLConfig_separateFirstElementFromMask(text);
    EXPECT_STREQ(text, "one");
    EXPECT_STREQ(rest, "two|three");
    char last[] = "one|";
    EXPECT_STREQ(VUR_DL_XMLConfig_separateFirstElementFromMask(last), "");
    char only[] = "one";
    EXPECT_EQ(VUR_DL_XMLConfig_separateFirstElementFromMask(only), nullptr);
}

TEST_F(XmlConfigConversion, ThreadPriority) {
    DDS_Long priority = 77;
    const auto convert = [&](const char *text) {
        VUR_DL_XMLConfig_getThreadPriority(&priority, text, &context_, log_error);
        return priority;
    };
    for (const char *name : {"DEFAULT", "HIGH", "ABOVE_NORMAL", "NORMAL", "BELOW_NORMAL", "LOW"}) {
        priority = 77;
        EXPECT_EQ(convert(("DDS_THREAD_PRIORITY_" + std::string(name)).c_str()), -9999999);
        priority = 77;
        EXPECT_EQ(convert(("thread_priority_" + std::string(name)).c_str()), -9999999);
    }
    for (const char *name : {"MAX_PRIORITY", "norm_priority", "Min_Priority"}) {
        priority = 77;
        EXPECT_EQ(convert(name), -9999999);
    }
    EXPECT_EQ(convert("10"), 10);
    EXPECT_EQ(convert("-5"), -5);
    EXPECT_EQ(convert("0x10"), 0);
    EXPECT_EQ(take(), Lines{});
    priority = 77;
    EXPECT_EQ(convert("abc"), 0);
    EXPECT_EQ(take(), Lines{"integer expected in XML text"});
}

TEST_F(XmlConfigConversion, ThreadStackSize) {
    DDS_Long size = 77;
    const auto convert = [&](const char *text) {
        VUR_DL_XMLConfig_getThreadStackSize(&size, text, &context_, log_error);
        return size;
    };
    EXPECT_EQ(convert("0"), 0);
    EXPECT_EQ(convert("0x400"), 1024);
    EXPECT_EQ(convert("020"), 16);
    EXPECT_EQ(convert("thread_stack_size_default"), -1);
    EXPECT_EQ(convert("DDS_THREAD_STACK_SIZE_DEFAULT"), -1);
    EXPECT_EQ(take(), Lines{});
    size = 77;
    EXPECT_EQ(convert("-1"), 77);
    EXPECT_EQ(take(), Lines{"positive integer expected"});
    EXPECT_EQ(convert("big"), 77);
    EXPECT_EQ(take(), Lines{"integer expected in XML text"});
    EXPECT_EQ(convert("99999999999999999999"), 77);
    EXPECT_EQ(take(), Lines{"integer out of bounds in XML text"});
    errno = ERANGE;  // left by others
    EXPECT_EQ(convert("5"), 77);
    EXPECT_EQ(take(), Lines{"integer out of bounds in XML text"});
    EXPECT_EQ(convert("THREAD_STACK_SIZE_DEFAULT"), -1) << "no number is converted";
    EXPECT_EQ(take(), Lines{});
}

TEST_F(XmlConfigConversion, CpuListAndRotation) {
    DDS_LongSeq list = DDS_SEQUENCE_INITIALIZER;
    const auto add = [&](const char *text) {
        VUR_DL_XMLConfig_addElementToThreadCpuList(&list, text, &context_, log_error);
    };
    add("3");
    add("0x11");
    EXPECT_EQ(take(), Lines{});
    add("x");
    EXPECT_EQ(take(), Lines{"integer expected in XML text"});
    add("-1");
    EXPECT_EQ(take(), Lines{"positive integer expected"});
    add("99999999999999999999");
    EXPECT_EQ(take(), Lines{"integer out of bounds in XML text"});
    ASSERT_EQ(DDS_LongSeq_get_length(&list), 5U);
    EXPECT_EQ(DDS_LongSeq_get_maximum(&list), 5U) << "it grows one by one";
    EXPECT_EQ(DDS_LongSeq_get(&list, 0), 3);
    EXPECT_EQ(DDS_LongSeq_get(&list, 1), 17);
    EXPECT_EQ(DDS_LongSeq_get(&list, 2), 0);
    DDS_LongSeq_finalize(&list);
    // A list that cannot grow.
    errno = 0;
    DDS_Long loaned[1] = {5};
    ASSERT_TRUE(DDS_LongSeq_loan_contiguous(&list, loaned, 1, 1));
    add("1");
    EXPECT_EQ(errors(), Lines{"0 VUR_DL_XMLConfig_addElementToCpuList: failed to ensure sequence "
                              "length"});
    EXPECT_EQ(take().size(), 1U);
    DDS_LongSeq_unloan(&list);

    DDS_ThreadSettingsCpuRotationKind rotation = DDS_THREAD_SETTINGS_CPU_NO_ROTATION;
    const auto rotate = [&](const char *text) {
        VUR_DL_XMLConfig_getThreadCpuRotation(&rotation, text, &context_, log_error);
        return rotation;
    };
    for (const char *prefix : {"", "THREAD_SETTINGS_", "dds_thread_settings_"}) {
        EXPECT_EQ(rotate((prefix + std::string("CPU_RR_ROTATION")).c_str()),
                  DDS_THREAD_SETTINGS_CPU_RR_ROTATION);
        EXPECT_EQ(rotate((prefix + std::string("cpu_no_rotation")).c_str()),
                  DDS_THREAD_SETTINGS_CPU_NO_ROTATION);
    }
    EXPECT_EQ(take(), Lines{});
    rotate("CPU_RR_ROTATION");
    EXPECT_EQ(rotate("0"), DDS_THREAD_SETTINGS_CPU_RR_ROTATION);
    EXPECT_EQ(errors(), Lines{"0 VUR_DL_XMLConfig_getCpuRotation: error getting cpu_rotation"});
    EXPECT_EQ(take().size(), 1U);
}

}  // namespace
