// SPDX-License-Identifier: Apache-2.0
// Threads: name, priority, stack size, identifier, and refusals of the system.

#include <gtest/gtest.h>
#include <kolt/config_logger.h>
#include <kolt/os.h>
#include <kolt/thread_settings.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "support/logger/log_capture.h"

namespace {

// The properties of a thread, as the thread itself reads them.
struct Self {
    std::string name;
    std::uint64_t id = 0;
    int policy = -1;
    int priority = -1;
    int nice_value = 100;
    std::size_t stack_size = 0;
    bool takes_sigterm = true;
    bool takes_sigsegv = false;
};

void *look_at_self(void *argument) {
    auto *self = static_cast<Self *>(argument);
    char name[32] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    self->name = name;
    self->id = KOLT_Thread_current_id();
    sched_param parameters{};
    pthread_getschedparam(pthread_self(), &self->policy, &parameters);
    self->priority = parameters.sched_priority;
    self->nice_value = getpriority(PRIO_PROCESS, static_cast<id_t>(gettid()));
    pthread_attr_t attributes;
    pthread_getattr_np(pthread_self(), &attributes);
    pthread_attr_getstacksize(&attributes, &self->stack_size);
    pthread_attr_destroy(&attributes);
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    self->takes_sigterm = sigismember(&blocked, SIGTERM) == 0;
    self->takes_sigsegv = sigismember(&blocked, SIGSEGV) == 0;
    return nullptr;
}

constexpr DDS_Long kDefaultPriority = DDS_THREAD_PRIORITY_DEFAULT;
constexpr DDS_Long kDefaultStack = DDS_THREAD_STACK_SIZE_DEFAULT;

// The warnings and errors that are logged in a scope, without anything but their texts.
class LoggedLines : public support::LogCapture {
  public:
    LoggedLines() {
        auto *logger = KOLT_Config_Logger_get_instance();
        KOLT_Config_Logger_set_verbosity(logger, KOLT_CONFIG_LOG_VERBOSITY_WARNING);
        KOLT_Config_Logger_set_print_format(logger, KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL);
    }
};

TEST(OsThread, RunsWithItsNameAndWithoutSignals) {
    Self self;
    auto *thread =
        KOLT_Thread_new("vDl#########Wri", kDefaultPriority, 0, kDefaultStack, look_at_self, &self);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(KOLT_Thread_delete(thread), 0);
    EXPECT_EQ(self.name, "vDl#########Wri");
    EXPECT_FALSE(self.takes_sigterm);
    EXPECT_TRUE(self.takes_sigsegv);
    EXPECT_NE(self.id, 0U);
    EXPECT_NE(self.id, KOLT_Thread_current_id());
}

TEST(OsThread, CutsLongNamesAndKeepsTheCreatorsWithoutOne) {
    Self self;
    KOLT_Thread_delete(KOLT_Thread_new("0123456789abcdefXYZ", kDefaultPriority, 0, kDefaultStack,
                                       look_at_self, &self));
    EXPECT_EQ(self.name, "0123456789abcde");
    char own[32] = "";
    pthread_getname_np(pthread_self(), own, sizeof own);
    KOLT_Thread_delete(
        KOLT_Thread_new(nullptr, kDefaultPriority, 0, kDefaultStack, look_at_self, &self));
    EXPECT_EQ(self.name, own);
}

TEST(OsThread, CreatorsSignalsAreAsBefore) {
    Self self;
    KOLT_Thread_delete(
        KOLT_Thread_new("x", kDefaultPriority, 0, kDefaultStack, look_at_self, &self));
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_EQ(sigismember(&blocked, SIGTERM), 0);
}

TEST(OsThread, IdentifierIsStableAndItsOwn) {
    const auto id = KOLT_Thread_current_id();
    EXPECT_EQ(id, static_cast<DDS_UnsignedLongLong>(gettid()));
    EXPECT_EQ(KOLT_Thread_current_id(), id);
    std::thread([&] { EXPECT_NE(KOLT_Thread_current_id(), id); }).join();
}

TEST(OsThread, AForkedChildHasAnIdentifierOfItsOwn) {
    ASSERT_EQ(KOLT_Thread_current_id(), static_cast<DDS_UnsignedLongLong>(gettid()));
    const pid_t child = fork();
    if (child == 0) {
        _exit(KOLT_Thread_current_id() == static_cast<DDS_UnsignedLongLong>(gettid()) ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

TEST(OsThread, StackSizeIsRoundedUp) {
    Self self;
    KOLT_Thread_delete(KOLT_Thread_new("s", kDefaultPriority, 0, 1'000'001, look_at_self, &self));
    EXPECT_GE(self.stack_size, 1'000'001U);
    EXPECT_EQ(self.stack_size % static_cast<std::size_t>(sysconf(_SC_PAGESIZE)), 0U);
}

TEST(OsThread, RefusedStackSizeFallsBackWithWarning) {
    Self usual;
    KOLT_Thread_delete(
        KOLT_Thread_new("s", kDefaultPriority, 0, kDefaultStack, look_at_self, &usual));
    for (const DDS_Long size : {0, 1, -2}) {
        const LoggedLines lines;
        Self self;
        auto *thread = KOLT_Thread_new("s", kDefaultPriority, DDS_THREAD_SETTINGS_PRIORITY_ENFORCE,
                                       size, look_at_self, &self);
        ASSERT_NE(thread, nullptr);
        KOLT_Thread_delete(thread);
        EXPECT_EQ(self.stack_size, usual.stack_size);
        EXPECT_EQ(lines.count(KOLT_CONFIG_LOG_LEVEL_WARNING,
                              "thread stack size " + std::to_string(size) + " refused"),
                  1);
    }
}

TEST(OsThread, LessUrgentPriorityIsItsNegatedNiceValue) {
    Self self;
    auto *thread = KOLT_Thread_new("n", -7, DDS_THREAD_SETTINGS_PRIORITY_ENFORCE, kDefaultStack,
                                   look_at_self, &self);
    ASSERT_NE(thread, nullptr);
    KOLT_Thread_delete(thread);
    EXPECT_EQ(self.nice_value, 7);
    EXPECT_EQ(self.policy, SCHED_OTHER);
    // The creator keeps its own.
    EXPECT_NE(getpriority(PRIO_PROCESS, static_cast<id_t>(gettid())), 7);
}

class OsThreadRefused : public testing::TestWithParam<DDS_UnsignedLong> {};

TEST_P(OsThreadRefused, EnforcedFailsOtherwiseFallsBack) {
    constexpr DDS_Long kImpossible = 1000;
    const LoggedLines lines;
    Self self;
    auto *thread =
        KOLT_Thread_new("p", kImpossible, GetParam(), kDefaultStack, look_at_self, &self);
    ASSERT_NE(thread, nullptr);
    EXPECT_EQ(KOLT_Thread_delete(thread), 0);
    EXPECT_EQ(self.policy, SCHED_OTHER);
    EXPECT_EQ(lines.count(KOLT_CONFIG_LOG_LEVEL_WARNING, "thread priority 1000 refused"), 1);

    Self untouched;
    EXPECT_EQ(KOLT_Thread_new("p", kImpossible, GetParam() | DDS_THREAD_SETTINGS_PRIORITY_ENFORCE,
                              kDefaultStack, look_at_self, &untouched),
              nullptr);
    EXPECT_EQ(untouched.id, 0U);
    EXPECT_GE(lines.count(KOLT_CONFIG_LOG_LEVEL_ERROR, "refused"), 1);
}

INSTANTIATE_TEST_SUITE_P(Policies, OsThreadRefused,
                         testing::Values(DDS_UnsignedLong{0},
                                         DDS_UnsignedLong{DDS_THREAD_SETTINGS_REALTIME_PRIORITY}));

// The system grants real-time priorities to some users only. The result must agree with what it
// says to a thread that asks by itself.
TEST(OsThread, RealtimePriorityAsTheSystemGrants) {
    bool granted = false;
    std::thread([&] {
        sched_param parameters{};
        parameters.sched_priority = 3;
        granted = pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters) == 0;
    }).join();
    const LoggedLines lines;
    Self self;
    constexpr DDS_UnsignedLong kRealtime = DDS_THREAD_SETTINGS_REALTIME_PRIORITY;
    auto *thread = KOLT_Thread_new("rt", 3, kRealtime, kDefaultStack, look_at_self, &self);
    ASSERT_NE(thread, nullptr);
    KOLT_Thread_delete(thread);
    EXPECT_EQ(self.policy, granted ? SCHED_FIFO : SCHED_OTHER);
    EXPECT_EQ(self.priority, granted ? 3 : 0);
    EXPECT_EQ(lines.count(KOLT_CONFIG_LOG_LEVEL_WARNING, "thread priority 3 refused"),
              granted ? 0 : 1);

    auto *enforced =
        KOLT_Thread_new("rt", kDefaultPriority, kRealtime | DDS_THREAD_SETTINGS_PRIORITY_ENFORCE,
                        kDefaultStack, look_at_self, &self);
    EXPECT_EQ(enforced != nullptr, granted);
    EXPECT_EQ(KOLT_Thread_delete(enforced), 0);
}

struct Suicide {
    KOLT_Semaphore *ready = KOLT_Semaphore_new(0);
    KOLT_Thread *self = nullptr;
    int result = 0;
};

void *join_self(void *argument) {
    auto *suicide = static_cast<Suicide *>(argument);
    KOLT_Semaphore_take(suicide->ready, nullptr);
    suicide->result = KOLT_Thread_delete(suicide->self);
    return nullptr;
}

TEST(OsThread, DoesNotJoinItself) {
    Suicide suicide;
    suicide.self = KOLT_Thread_new("self", kDefaultPriority, 0, kDefaultStack, join_self, &suicide);
    ASSERT_NE(suicide.self, nullptr);
    KOLT_Semaphore_give(suicide.ready);
    EXPECT_EQ(KOLT_Thread_delete(suicide.self), 0);
    EXPECT_EQ(suicide.result, EDEADLK);
    KOLT_Semaphore_delete(suicide.ready);
}

TEST(OsThread, RefusesNullFunctionAndIgnoresNullThread) {
    EXPECT_EQ(KOLT_Thread_new("n", kDefaultPriority, 0, kDefaultStack, nullptr, nullptr), nullptr);
    EXPECT_EQ(KOLT_Thread_delete(nullptr), 0);
}

}  // namespace
