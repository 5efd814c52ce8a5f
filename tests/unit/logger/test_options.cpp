// SPDX-License-Identifier: Apache-2.0
// The options record: defaults, setters and getters with their messages, copies, comparison.
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "support/platform/process.h"
#include "vur_dl/Options.h"

namespace {

using support::StdoutCapture;

struct Delete {
    void operator()(VUR_DL_Options *options) const { VUR_DL_Options_delete(options); }
};
using OptionsPtr = std::unique_ptr<VUR_DL_Options, Delete>;

OptionsPtr create() {
    return OptionsPtr(VUR_DL_Options_createDefault());
}

TEST(Options, Defaults) {
    const OptionsPtr options = create();
    EXPECT_EQ(options->enabled, 1);
    EXPECT_EQ(VUR_DL_Options_isRemoteAdministrationEnabled(options.get()), 1);
    EXPECT_EQ(VUR_DL_Options_getFilterLevel(options.get()), 600);
    EXPECT_EQ(VUR_DL_Options_getDomainId(options.get()), 0);
    EXPECT_EQ(VUR_DL_Options_getQueueSize(options.get()), 128);
    EXPECT_EQ(VUR_DL_Options_getEchoToStdout(options.get()), 1);
    EXPECT_EQ(VUR_DL_Options_getLogInfrastructureMessages(options.get()), 1);
    EXPECT_EQ(VUR_DL_Options_getQosLibrary(options.get()), nullptr);
    EXPECT_EQ(VUR_DL_Options_getQosProfile(options.get()), nullptr);
    EXPECT_EQ(VUR_DL_Options_getApplicationKind(options.get()), nullptr);
    EXPECT_EQ(VUR_DL_Options_getDomainParticipant(options.get()), nullptr);
    EXPECT_EQ(options->cppDomainParticipant, nullptr);
    const DDS_ThreadSettings_t *settings = VUR_DL_Options_getThreadSettings(options.get());
    EXPECT_EQ(settings->mask, 0U);
    EXPECT_EQ(settings->priority, -9999999);
    EXPECT_EQ(settings->stack_size, -1);
    EXPECT_EQ(DDS_LongSeq_get_length(&settings->cpu_list), 0U);
    EXPECT_EQ(settings->cpu_rotation, DDS_THREAD_SETTINGS_CPU_NO_ROTATION);
}

TEST(Options, BoundsOfNumbers) {
    const OptionsPtr options = create();
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_Options_setFilterLevel(options.get(), 0), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_Options_setFilterLevel(options.get(), 650), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_Options_setFilterLevel(options.get(), -1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_Options_getFilterLevel(options.get()), 650);
    EXPECT_EQ(VUR_DL_Options_setDomainId(options.get(), 7), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_Options_setDomainId(options.get(), -1), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_Options_getDomainId(options.get()), 7);
    EXPECT_EQ(VUR_DL_Options_setDomainId(options.get(), 0), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_Options_setQueueSize(options.get(), 1), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_Options_setQueueSize(options.get(), 0), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_Options_getQueueSize(options.get()), 1);
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_Options_setFilterLevel: Filter Level must be positive or zero\n"
              "DL Error: VUR_DL_Options_setDomainId: Domain Id must be positive or zero\n"
              "DL Error: VUR_DL_Options_setQueueSize: Queue Size must be positive\n");
}

TEST(Options, BooleansAreStoredUnchanged) {
    const OptionsPtr options = create();
    EXPECT_EQ(VUR_DL_Options_setRemoteAdministrationEnabled(options.get(), 5), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_Options_isRemoteAdministrationEnabled(options.get()), 5);
    EXPECT_EQ(VUR_DL_Options_setEchoToStdout(options.get(), 2), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_Options_getEchoToStdout(options.get()), 2);
    EXPECT_EQ(VUR_DL_Options_setLogInfrastructureMessages(options.get(), -1), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_Options_getLogInfrastructureMessages(options.get()), -1);
}

TEST(Options, AbsentValuesAreRefused) {
    const OptionsPtr options = create();
    VUR_DL_Options_setQosLibrary(options.get(), "lib");
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_Options_setDomainParticipant(options.get(), nullptr),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_Options_setQosLibrary(options.get(), nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_Options_setQosProfile(options.get(), nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(VUR_DL_Options_setApplicationKind(options.get(), nullptr), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_STREQ(VUR_DL_Options_getQosLibrary(options.get()), "lib");
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_Options_setDomainParticipant: domainParticipant is null\n"
              "DL Error: VUR_DL_Options_setQoSLibrary: QoS Library is NULL\n"
              "DL Error: VUR_DL_Options_setQoSProfile: QoS Profile is NULL\n"
              "DL Error: VUR_DL_Options_setApplicationKind: application kind is NULL\n");
}

TEST(Options, SettersWithoutARecordReturnNoData) {
    DDS_DomainParticipant participant{};
    DDS_ThreadSettings_t settings = DDS_THREAD_SETTINGS_DEFAULT;
    const std::pair<const char *, std::function<DDS_ReturnCode_t()>> setters[] = {
        {"setDomainParticipant",
         [&] { return VUR_DL_Options_setDomainParticipant(nullptr, &participant); }},
        {"setRemoteAdministrationEnabled",
         [] { return VUR_DL_Options_setRemoteAdministrationEnabled(nullptr, 1); }},
        {"setFilterLevel", [] { return VUR_DL_Options_setFilterLevel(nullptr, 1); }},
        {"setDomainId", [] { return VUR_DL_Options_setDomainId(nullptr, 1); }},
        {"setQoSLibrary", [] { return VUR_DL_Options_setQosLibrary(nullptr, "a"); }},
        {"setQoSProfile", [] { return VUR_DL_Options_setQosProfile(nullptr, "a"); }},
        {"setQueueSize", [] { return VUR_DL_Options_setQueueSize(nullptr, 1); }},
        {"setThreadSettings", [&] { return VUR_DL_Options_setThreadSettings(nullptr, &settings); }},
        {"setApplicationKind", [] { return VUR_DL_Options_setApplicationKind(nullptr, "a"); }},
        {"setEchoToStdout", [] { return VUR_DL_Options_setEchoToStdout(nullptr, 1); }},
        {"setLogInfrastructureMessages",
         [] { return VUR_DL_Options_setLogInfrastructureMessages(nullptr, 1); }},
    };
    for (const auto &[name, setter] : setters) {
        StdoutCapture capture;
        EXPECT_EQ(static_cast<int>(setter()), 11) << name;
        EXPECT_EQ(capture.text(),
                  std::string("DL Error: VUR_DL_Options_") + name + ": VUR_DL_Options is null\n");
    }
}

TEST(Options, GettersWithoutARecordReturnTheirSentinel) {
    const auto text = [](const void *pointer) {
        return static_cast<long>(reinterpret_cast<std::intptr_t>(pointer));
    };
    const std::tuple<const char *, long, std::function<long()>> getters[] = {
        {"getDomainParticipant", 0,
         [&] { return text(VUR_DL_Options_getDomainParticipant(nullptr)); }},
        {"isRemoteAdministrationEnabled", 0,
         [] { return VUR_DL_Options_isRemoteAdministrationEnabled(nullptr); }},
        {"getFilterLevel", -1, [] { return VUR_DL_Options_getFilterLevel(nullptr); }},
        {"hetDomainId", -1, [] { return VUR_DL_Options_getDomainId(nullptr); }},
        {"getQoSLibrary", 0, [&] { return text(VUR_DL_Options_getQosLibrary(nullptr)); }},
        {"getQoSProfile", 0, [&] { return text(VUR_DL_Options_getQosProfile(nullptr)); }},
        {"getQueueSize", -1, [] { return VUR_DL_Options_getQueueSize(nullptr); }},
        {"getThreadSettings", 0, [&] { return text(VUR_DL_Options_getThreadSettings(nullptr)); }},
        {"getApplicationKind", 0, [&] { return text(VUR_DL_Options_getApplicationKind(nullptr)); }},
        {"getEchoToStdout", 0, [] { return VUR_DL_Options_getEchoToStdout(nullptr); }},
        {"getLogInfrastructureMessages", 0,
         [] { return VUR_DL_Options_getLogInfrastructureMessages(nullptr); }},
    };
    for (const auto &[name, sentinel, getter] : getters) {
        StdoutCapture capture;
        EXPECT_EQ(getter(), sentinel) << name;
        EXPECT_EQ(capture.text(),
                  std::string("DL Error: VUR_DL_Options_") + name + ": VUR_DL_Options is null\n");
    }
}

TEST(Options, DupIsEqualAndIndependent) {
    OptionsPtr options = create();
    VUR_DL_Options_setQosLibrary(options.get(), "library");
    VUR_DL_Options_setQosProfile(options.get(), "profile");
    VUR_DL_Options_setApplicationKind(options.get(), "kind");
    VUR_DL_Options_setQueueSize(options.get(), 7);
    DDS_ThreadSettings_t *settings = VUR_DL_Options_getThreadSettings(options.get());
    settings->stack_size = 65536;
    DDS_LongSeq_ensure_length(&settings->cpu_list, 1, 1);
    *DDS_LongSeq_get_reference(&settings->cpu_list, 0) = 3;
    const OptionsPtr copy(VUR_DL_Options_dup(options.get()));
    EXPECT_EQ(VUR_DL_Options_equals(options.get(), copy.get()), 1);
    options.reset();
    EXPECT_STREQ(VUR_DL_Options_getQosLibrary(copy.get()), "library");
    EXPECT_STREQ(VUR_DL_Options_getQosProfile(copy.get()), "profile");
    EXPECT_STREQ(VUR_DL_Options_getApplicationKind(copy.get()), "kind");
    EXPECT_EQ(DDS_LongSeq_get(&copy->threadSettings.cpu_list, 0), 3);
    EXPECT_EQ(VUR_DL_Options_dup(nullptr), nullptr);
}

TEST(Options, EveryFieldCountsInComparison) {
    DDS_DomainParticipant participant{};
    const std::function<void(VUR_DL_Options &)> changes[] = {
        [&](VUR_DL_Options &o) { o.domainParticipant = &participant; },
        [&](VUR_DL_Options &o) { o.cppDomainParticipant = &participant; },
        [](VUR_DL_Options &o) { o.enabled = 2; },
        [](VUR_DL_Options &o) { o.remoteAdministrationEnabled = 0; },
        [](VUR_DL_Options &o) { o.filterLevel = 1; },
        [](VUR_DL_Options &o) { o.domainId = 1; },
        [](VUR_DL_Options &o) { o.queueSize = 1; },
        [](VUR_DL_Options &o) { o.echoToStdout = 0; },
        [](VUR_DL_Options &o) { o.logInfrastructureMessages = 0; },
        [](VUR_DL_Options &o) { o.threadSettings.priority = 1; },
        [](VUR_DL_Options &o) { VUR_DL_Options_setQosLibrary(&o, "x"); },
        [](VUR_DL_Options &o) { VUR_DL_Options_setQosProfile(&o, "x"); },
        [](VUR_DL_Options &o) { VUR_DL_Options_setApplicationKind(&o, "x"); },
    };
    const OptionsPtr reference = create();
    for (const auto &change : changes) {
        const OptionsPtr changed = create();
        EXPECT_EQ(VUR_DL_Options_equals(reference.get(), changed.get()), 1);
        change(*changed);
        EXPECT_EQ(VUR_DL_Options_equals(reference.get(), changed.get()), 0);
        const OptionsPtr copy(VUR_DL_Options_dup(changed.get()));
        EXPECT_EQ(VUR_DL_Options_equals(changed.get(), copy.get()), 1);
    }
    EXPECT_EQ(VUR_DL_Options_equals(nullptr, nullptr), 0);
    EXPECT_EQ(VUR_DL_Options_equals(reference.get(), nullptr), 0);
    EXPECT_EQ(VUR_DL_Options_equals(nullptr, reference.get()), 0);
}

TEST(Options, CopyRefusesNulls) {
    const OptionsPtr options = create();
    StdoutCapture capture;
    EXPECT_EQ(VUR_DL_Options_copy(nullptr, options.get()), 0);
    EXPECT_EQ(VUR_DL_Options_copy(options.get(), nullptr), 0);
    EXPECT_EQ(capture.text(),
              "DL Error: VUR_DL_Options_copy: Pointer to destination VUR_DL_Options is NULL\n"
              "DL Error: VUR_DL_Options_copy: Pointer to origin VUR_DL_Option s is NULL\n");
}

TEST(Options, AnAbsentStringLeavesTheDestinations) {
    const OptionsPtr source = create();
    const OptionsPtr destination = create();
    VUR_DL_Options_setApplicationKind(destination.get(), "kept");
    EXPECT_EQ(VUR_DL_Options_copy(destination.get(), source.get()), 1);
    EXPECT_STREQ(VUR_DL_Options_getApplicationKind(destination.get()), "kept");
}

TEST(Options, DeleteReturnsNullAndFinalizeOfNullIsAnInfo) {
    EXPECT_EQ(VUR_DL_Options_delete(VUR_DL_Options_createDefault()), nullptr);
    StdoutCapture capture;
    VUR_DL_Options_finalize(nullptr);
    EXPECT_EQ(VUR_DL_Options_delete(nullptr), nullptr);
    EXPECT_EQ(capture.count("DL Info: VUR_DL_Options_finalize: VUR_DL_Options was already NULL"),
              2);
    EXPECT_EQ(capture.lines().size(), 2U);
}

TEST(Options, AStringMayBeSetToItself) {
    const OptionsPtr options = create();
    VUR_DL_Options_setApplicationKind(options.get(), "kind");
    EXPECT_EQ(VUR_DL_Options_setApplicationKind(options.get(),
                                                VUR_DL_Options_getApplicationKind(options.get())),
              DDS_RETCODE_OK);
    EXPECT_STREQ(VUR_DL_Options_getApplicationKind(options.get()), "kind");
}

}  // namespace
