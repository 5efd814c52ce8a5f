// SPDX-License-Identifier: Apache-2.0
// Heap, clock, sleep and thread settings.

#include <gtest/gtest.h>
#include <kolt/os.h>
#include <kolt/thread_settings.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>

namespace {

TEST(OsHeap, AllocatesAndFails) {
    void *memory = KOLT_Heap_allocate(100);
    ASSERT_NE(memory, nullptr);
    std::memset(memory, 1, 100);
    KOLT_Heap_free(memory);

    auto *bytes = static_cast<unsigned char *>(KOLT_Heap_allocate_zeroed(1000));
    ASSERT_NE(bytes, nullptr);
    EXPECT_TRUE(std::all_of(bytes, bytes + 1000, [](unsigned char byte) { return byte == 0; }));
    KOLT_Heap_free(bytes);

    void *empty = KOLT_Heap_allocate(0);
    EXPECT_NE(empty, nullptr);
    KOLT_Heap_free(empty);
    KOLT_Heap_free(nullptr);
}

std::int64_t wall_nanoseconds() {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return std::int64_t{now.tv_sec} * 1'000'000'000 + now.tv_nsec;
}

// Rounds a fraction up to nanoseconds.
std::int64_t nanoseconds_of(DDS_UnsignedLong fraction) {
    return static_cast<std::int64_t>((std::uint64_t{fraction} * 1'000'000'000U + 0xffffffffU) >>
                                     32U);
}

TEST(OsClock, IsTheSystemsClock) {
    auto *clock = KOLT_Clock_new();
    ASSERT_NE(clock, nullptr);
    for (int i = 0; i < 1000; ++i) {
        DDS_LongLong seconds = 0;
        DDS_UnsignedLong fraction = 0;
        const auto before = wall_nanoseconds();
        ASSERT_EQ(KOLT_Clock_get_time(clock, &seconds, &fraction), 0);
        const auto after = wall_nanoseconds();
        const auto between = seconds * 1'000'000'000 + nanoseconds_of(fraction);
        EXPECT_LE(before, between);
        EXPECT_LE(between, after);
    }
    KOLT_Clock_delete(clock);
}

TEST(OsClock, RefusesNull) {
    auto *clock = KOLT_Clock_new();
    DDS_LongLong seconds = 0;
    DDS_UnsignedLong fraction = 0;
    EXPECT_EQ(KOLT_Clock_get_time(nullptr, &seconds, &fraction), EINVAL);
    EXPECT_EQ(KOLT_Clock_get_time(clock, nullptr, &fraction), EINVAL);
    EXPECT_EQ(KOLT_Clock_get_time(clock, &seconds, nullptr), EINVAL);
    KOLT_Clock_delete(clock);
    KOLT_Clock_delete(nullptr);
}

std::chrono::nanoseconds sleep_for(DDS_Duration_t duration) {
    const auto start = std::chrono::steady_clock::now();
    KOLT_Utility_sleep(&duration);
    return std::chrono::steady_clock::now() - start;
}

TEST(OsSleep, SleepsAtLeastTheTime) {
    EXPECT_GE(sleep_for({0, 20'000'000}), std::chrono::milliseconds(20));
    EXPECT_GE(sleep_for({1, 100'000'000}), std::chrono::milliseconds(1100));
    const DDS_Duration_t nothing = {0, 0};
    EXPECT_EQ(KOLT_Utility_sleep(&nothing), DDS_RETCODE_OK);
}

// The last is -1 nanosecond, as arithmetic on signed numbers makes it.
TEST(OsSleep, RefusesWhatIsNoDuration) {
    EXPECT_EQ(KOLT_Utility_sleep(nullptr), DDS_RETCODE_BAD_PARAMETER);
    const DDS_Duration_t wrong[] = {
        {-1, 0}, {0, 1'000'000'000}, {0, static_cast<DDS_UnsignedLong>(-1)}};
    for (const DDS_Duration_t &duration : wrong) {
        EXPECT_EQ(KOLT_Utility_sleep(&duration), DDS_RETCODE_BAD_PARAMETER)
            << duration.sec << " " << duration.nanosec;
    }
}

TEST(OsSleep, ReturnsAtOnceForNothing) {
    KOLT_Utility_sleep(nullptr);
    EXPECT_LT(sleep_for({-1000, 0}), std::chrono::seconds(500));
    EXPECT_LT(sleep_for({0, 0}), std::chrono::seconds(500));
}

TEST(ThreadSettings, DefaultsAreTheDefaults) {
    DDS_ThreadSettings_t settings = DDS_THREAD_SETTINGS_DEFAULT;
    EXPECT_EQ(settings.mask, 0U);
    EXPECT_EQ(settings.priority, -9999999);
    EXPECT_EQ(settings.stack_size, -1);
    EXPECT_EQ(DDS_LongSeq_get_length(&settings.cpu_list), 0U);
    EXPECT_EQ(settings.cpu_rotation, DDS_THREAD_SETTINGS_CPU_NO_ROTATION);
    DDS_ThreadSettings_t other;
    std::memset(static_cast<void *>(&other), 0x5a, sizeof other);
    EXPECT_TRUE(DDS_ThreadSettings_t_initialize(&other));
    EXPECT_TRUE(DDS_ThreadSettings_is_equal(&settings, &other));
    EXPECT_TRUE(DDS_ThreadSettings_t_finalize(&other));
    EXPECT_TRUE(DDS_ThreadSettings_t_finalize(&other));
}

TEST(ThreadSettings, CopiesDeeply) {
    DDS_ThreadSettings_t source = DDS_THREAD_SETTINGS_DEFAULT;
    source.mask = DDS_THREAD_SETTINGS_STDIO;
    source.priority = 5;
    source.stack_size = 65536;
    source.cpu_rotation = DDS_THREAD_SETTINGS_CPU_RR_ROTATION;
    const DDS_Long processors[] = {0, 2, 3};
    ASSERT_TRUE(DDS_LongSeq_from_array(&source.cpu_list, processors, 3));
    DDS_ThreadSettings_t copy = DDS_THREAD_SETTINGS_DEFAULT;
    ASSERT_TRUE(DDS_ThreadSettings_t_copy(&copy, &source));
    EXPECT_TRUE(DDS_ThreadSettings_is_equal(&copy, &source));
    EXPECT_TRUE(DDS_ThreadSettings_t_copy(&copy, &copy));
    *DDS_LongSeq_get_reference(&source.cpu_list, 1) = 7;
    EXPECT_EQ(DDS_LongSeq_get(&copy.cpu_list, 1), 2);
    DDS_ThreadSettings_t_finalize(&source);
    DDS_ThreadSettings_t_finalize(&copy);
}

TEST(ThreadSettings, EveryMemberCounts) {
    DDS_ThreadSettings_t base = DDS_THREAD_SETTINGS_DEFAULT;
    DDS_ThreadSettings_t other = DDS_THREAD_SETTINGS_DEFAULT;
    const auto differs = [&] { return !DDS_ThreadSettings_is_equal(&base, &other); };
    EXPECT_FALSE(differs());
    other.mask = 1;
    EXPECT_TRUE(differs());
    other = base;
    other.priority = 0;
    EXPECT_TRUE(differs());
    other = base;
    other.stack_size = 0;
    EXPECT_TRUE(differs());
    other = base;
    other.cpu_rotation = DDS_THREAD_SETTINGS_CPU_RR_ROTATION;
    EXPECT_TRUE(differs());
    other = base;
    DDS_LongSeq_ensure_length(&other.cpu_list, 1, 1);
    *DDS_LongSeq_get_reference(&other.cpu_list, 0) = 0;
    EXPECT_TRUE(differs());
    DDS_LongSeq_ensure_length(&base.cpu_list, 1, 1);
    *DDS_LongSeq_get_reference(&base.cpu_list, 0) = 1;
    EXPECT_TRUE(differs());
    *DDS_LongSeq_get_reference(&base.cpu_list, 0) = 0;
    EXPECT_FALSE(differs());
    DDS_ThreadSettings_t_finalize(&base);
    DDS_ThreadSettings_t_finalize(&other);
}

TEST(ThreadSettings, RefusesNull) {
    DDS_ThreadSettings_t settings = DDS_THREAD_SETTINGS_DEFAULT;
    EXPECT_FALSE(DDS_ThreadSettings_t_initialize(nullptr));
    EXPECT_FALSE(DDS_ThreadSettings_t_finalize(nullptr));
    EXPECT_FALSE(DDS_ThreadSettings_t_copy(nullptr, &settings));
    EXPECT_FALSE(DDS_ThreadSettings_t_copy(&settings, nullptr));
    EXPECT_FALSE(DDS_ThreadSettings_is_equal(nullptr, nullptr));
    EXPECT_FALSE(DDS_ThreadSettings_is_equal(&settings, nullptr));
}

}  // namespace
