// SPDX-License-Identifier: Apache-2.0
// Each way to read a sample gives the same result, for a thousand types that are made up. The fuzz
// target fuzz_cdr makes the same checks on any number of types.
#include <gtest/gtest.h>
#include <kolt/cdr.h>

#include <cstdint>
#include <random>
#include <vector>

#include "support/cdr/cdr_checks.h"

namespace {

using support::Decisions;

// Returns random bytes for decisions.
std::vector<std::uint8_t> decisions_of(std::mt19937 *random, std::size_t count) {
    std::vector<std::uint8_t> bytes(count);
    for (std::uint8_t &byte : bytes) {
        byte = static_cast<std::uint8_t>((*random)());
    }
    return bytes;
}

class RandomTypes : public testing::TestWithParam<unsigned> {};

TEST_P(RandomTypes, EveryWayToReadThemSaysTheSame) {
    std::mt19937 random(GetParam());
    for (int i = 0; i < 250; ++i) {
        SCOPED_TRACE(i);
        const std::vector<std::uint8_t> description = decisions_of(&random, 20 + random() % 100);
        Decisions decisions(description.data(), description.size());
        const support::RandomType made(&decisions);
        const DDS_TypeCode *const type = made.type();
        const KOLT_TypePrograms *const programs = KOLT_TypePrograms_acquire(type);
        ASSERT_NE(programs, nullptr);
        DDS_DynamicData *const value = DDS_DynamicData_new(type, nullptr);
        const std::vector<std::uint8_t> content = decisions_of(&random, random() % 400);
        Decisions content_decisions(content.data(), content.size());
        support::checked_fill(value, &content_decisions);
        for (const DDS_UnsignedShort encapsulation : support::encapsulations_of(type)) {
            std::vector<std::uint8_t> bytes = support::checked_bytes(value, encapsulation);
            EXPECT_TRUE(support::check_sample(type, bytes.data(), bytes.size()));
            for (int edits = 0; edits < 3; ++edits) {
                bytes[random() % bytes.size()] = static_cast<std::uint8_t>(random() % 16);
                support::check_sample(type, bytes.data(), bytes.size());
                support::check_key(type, bytes.data(), bytes.size());
            }
        }
        if (made.shorter() != nullptr) {
            support::check_evolution(type, made.shorter(), value);
        }
        DDS_DynamicData_delete(value);
        KOLT_TypePrograms_release(programs);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomTypes, testing::Values(1U, 2U, 3U, 4U));

}  // namespace
