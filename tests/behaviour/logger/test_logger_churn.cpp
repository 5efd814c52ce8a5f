// SPDX-License-Identifier: Apache-2.0
// Creating and finalising the logger over and over leaves nothing behind.
#include <dirent.h>
#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <string>

#include "support/logger/logger.h"
#include "support/platform/process.h"

namespace {

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kOwnAllocator = true;
#elif defined(__has_feature)
constexpr bool kOwnAllocator = __has_feature(address_sanitizer) || __has_feature(thread_sanitizer);
#else
constexpr bool kOwnAllocator = false;
#endif

struct Footprint {
    int threads = 0;
    int descriptors = 0;
    std::size_t allocated = 0;
};

int thread_count() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == "Threads:") {
            int count = 0;
            status >> count;
            return count;
        }
    }
    return -1;
}

int descriptor_count() {
    DIR *folder = opendir("/proc/self/fd");
    int count = 0;
    while (readdir(folder) != nullptr) {
        ++count;
    }
    closedir(folder);
    return count;
}

Footprint footprint() {
    return Footprint{thread_count(), descriptor_count(), mallinfo2().uordblks};
}

void round(int domain) {
    const support::Logger logger({.domain = domain, .forward = true, .kind = "churn"});
    ASSERT_NE(logger.get(), nullptr);
    logger.log(600, "still here");
}

// The rounds are spread over several processes, which run side by side: a round waits for the write
// thread to notice that it is to end.
class LoggerChurn : public ::testing::TestWithParam<int> {};

TEST_P(LoggerChurn, LeavesNothingBehind) {
    constexpr int kWarmUp = 100;
    constexpr int kLeastStretches = 5;
    constexpr int kMostStretches = 40;
    constexpr int kRounds = 50;
    // The engine keeps about fifty bytes of each participant that there ever was.
    constexpr std::size_t kBytesPerRound = 128;
    const int domain = 106 + GetParam();
    support::StdoutCapture capture;
    for (int i = 0; i < kWarmUp; ++i) {
        ASSERT_NO_FATAL_FAILURE(round(domain));
    }
    const Footprint before = footprint();
    Footprint after = before;
    // Tables and the allocator's own lists grow for a while; what leaks grows in every stretch.
    std::size_t smallest_growth = SIZE_MAX;
    const auto is_steady = [&] {
        return kOwnAllocator || smallest_growth < kRounds * kBytesPerRound;
    };
    for (int stretch = 0; stretch < kLeastStretches || (!is_steady() && stretch < kMostStretches);
         ++stretch) {
        const std::size_t allocated = after.allocated;
        for (int i = 0; i < kRounds; ++i) {
            ASSERT_NO_FATAL_FAILURE(round(domain));
        }
        after = footprint();
        const std::size_t growth = after.allocated - std::min(after.allocated, allocated);
        smallest_growth = std::min(smallest_growth, growth);
    }
    EXPECT_EQ(capture.text(), "");
    // A thread that has been joined may be listed for a moment longer, with what it holds open,
    // also when the count before was taken.
    EXPECT_TRUE(support::eventually([&] { return thread_count() <= before.threads; }))
        << thread_count() << " threads, " << before.threads << " before";
    EXPECT_TRUE(support::eventually([&] { return descriptor_count() <= before.descriptors; }))
        << descriptor_count() << " descriptors, " << before.descriptors << " before";
    EXPECT_TRUE(is_steady()) << smallest_growth << " bytes at the least in " << kRounds
                             << " rounds";
}

INSTANTIATE_TEST_SUITE_P(Process, LoggerChurn, ::testing::Range(0, 4));

}  // namespace
