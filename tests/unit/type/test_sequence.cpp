// SPDX-License-Identifier: Apache-2.0
// Typed sequences: state, growth, elements, and the reports of failures.

#include <gtest/gtest.h>
#include <kolt/config_logger.h>
#include <kolt/sequence.h>

#include <cstdint>
#include <cstring>

#include "support/platform/huge_allocations.h"
#include "support/types/named_sequence.h"

namespace {

using namespace support;

TEST_F(SequenceTest, ZeroBytesAreAnEmptySequence) {
    NamedSeq seq{};
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 0U);
    EXPECT_EQ(seq._sequence_init, KOLT_SEQUENCE_MAGIC);
    EXPECT_EQ(NamedSeq_get_length(&seq), 0U);
    EXPECT_TRUE(NamedSeq_set_maximum(&seq, 2));
    EXPECT_TRUE(NamedSeq_finalize(&seq));
    EXPECT_EQ(log_.take(), "");
}

TEST_F(SequenceTest, GarbageBytesAreAnEmptySequence) {
    NamedSeq seq;
    std::memset(static_cast<void *>(&seq), 0xa5, sizeof(seq));
    EXPECT_TRUE(NamedSeq_set_length(&seq, 1));
    EXPECT_EQ(NamedSeq_get_length(&seq), 1U);
    EXPECT_EQ(seq._absolute_maximum, KOLT_SEQUENCE_ABSOLUTE_MAXIMUM);
    EXPECT_TRUE(NamedSeq_has_ownership(&seq));
    EXPECT_TRUE(NamedSeq_finalize(&seq));
}

TEST_F(SequenceTest, InitializerMakesTheInitialState) {
    NamedSeq by_macro = DDS_SEQUENCE_INITIALIZER;
    NamedSeq by_function;
    EXPECT_TRUE(NamedSeq_initialize(&by_function));
    EXPECT_EQ(by_macro._sequence_init, by_function._sequence_init);
    EXPECT_EQ(by_macro._absolute_maximum, by_function._absolute_maximum);
    EXPECT_EQ(by_macro._owned, by_function._owned);
    EXPECT_TRUE(NamedSeq_check_invariantsI(&by_macro, "f"));
}

// Whoever writes a fresh record writes it once.
TEST_F(SequenceTest, InitializeForgetsWhatTheRecordHeld) {
    NamedSeq seq{};
    ASSERT_TRUE(NamedSeq_set_length(&seq, 2));
    Named *const buffer = NamedSeq_get_contiguous_buffer(&seq);
    EXPECT_TRUE(NamedSeq_initialize(&seq));
    EXPECT_EQ(NamedSeq_get_contiguous_buffer(&seq), nullptr);
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 0U);
    EXPECT_EQ(g_live, 2) << "the buffer is not freed";
    NamedSeq_delete_bufferI(&seq, buffer, 2);
    EXPECT_EQ(g_live, 0);
}

// Failures have the same results when nothing is logged.
TEST_F(SequenceTest, ResultsDoNotDependOnTheLog) {
    KOLT_Config_Logger *const logger = KOLT_Config_Logger_get_instance();
    KOLT_Config_Logger_set_verbosity(logger, KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    NamedSeq seq{};
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, -1));
    EXPECT_FALSE(NamedSeq_unloan(&seq));
    EXPECT_EQ(NamedSeq_get_reference(&seq, 0), nullptr);
    EXPECT_FALSE(NamedSeq_initialize(nullptr));
    seq._length = 1;
    EXPECT_FALSE(NamedSeq_check_invariantsI(&seq, "f"));
    EXPECT_EQ(log_.take(), "");
    KOLT_Config_Logger_set_verbosity(logger, KOLT_CONFIG_LOG_VERBOSITY_ERROR);
    EXPECT_FALSE(NamedSeq_check_invariantsI(&seq, "f"));
    EXPECT_TRUE(log_.saw("invariant: length > maximum"));
}

TEST_F(SequenceTest, NullArguments) {
    EXPECT_FALSE(NamedSeq_initialize(nullptr));
    EXPECT_TRUE(log_.saw("self"));
    EXPECT_FALSE(NamedSeq_set_maximum(nullptr, 1));
    EXPECT_TRUE(log_.saw("NamedSeq_set_maximum"));
    EXPECT_EQ(NamedSeq_get_maximum(nullptr), 0U);
    EXPECT_TRUE(log_.saw("self"));
    EXPECT_EQ(NamedSeq_get_length(nullptr), 0U);
    EXPECT_TRUE(log_.saw("self"));
    EXPECT_EQ(NamedSeq_get_reference(nullptr, 0), nullptr);
    EXPECT_TRUE(log_.saw("self"));
    EXPECT_EQ(NamedSeq_get(nullptr, 0).name, nullptr);
    EXPECT_TRUE(log_.saw("self"));
    NamedSeq seq{};
    EXPECT_EQ(NamedSeq_copy(&seq, nullptr), nullptr);
    EXPECT_TRUE(log_.saw("src"));
    EXPECT_EQ(NamedSeq_copy(nullptr, &seq), nullptr);
    EXPECT_TRUE(log_.saw("self"));
    EXPECT_FALSE(NamedSeq_set_element_allocation_params(&seq, nullptr));
    EXPECT_TRUE(log_.saw("params"));
    EXPECT_FALSE(NamedSeq_set_element_deallocation_params(&seq, nullptr));
    EXPECT_TRUE(log_.saw("params"));
    EXPECT_FALSE(NamedSeq_get_read_tokenI(&seq, nullptr, nullptr));
    EXPECT_TRUE(log_.saw("token (NULL)"));
}

TEST_F(SequenceTest, SetLengthGrowsExactly) {
    NamedSeq seq{};
    EXPECT_TRUE(NamedSeq_set_length(&seq, 3));
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 3U);
    EXPECT_EQ(NamedSeq_get_length(&seq), 3U);
    for (DDS_Long i = 0; i < 3; ++i) {
        EXPECT_STREQ(NamedSeq_get_reference(&seq, i)->name, "");
    }
    EXPECT_TRUE(NamedSeq_set_length(&seq, 1));
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 3U);
    EXPECT_TRUE(NamedSeq_finalize(&seq));
    EXPECT_EQ(g_live, 0);
}

// The buffer has room to spare that the maximum does not show.
TEST_F(SequenceTest, GrowingOneByOneMovesTheBufferSeldom) {
    DDS_LongSeq seq = DDS_SEQUENCE_INITIALIZER;
    int moves = 0;
    for (DDS_Long length = 1; length <= 20000; ++length) {
        const DDS_Long *const before = DDS_LongSeq_get_contiguous_buffer(&seq);
        ASSERT_TRUE(DDS_LongSeq_ensure_length(&seq, length, length));
        ASSERT_EQ(DDS_LongSeq_get_maximum(&seq), static_cast<DDS_UnsignedLong>(length));
        ASSERT_EQ(*DDS_LongSeq_get_reference(&seq, length - 1), 0);
        *DDS_LongSeq_get_reference(&seq, length - 1) = length;
        moves += DDS_LongSeq_get_contiguous_buffer(&seq) != before ? 1 : 0;
    }
    EXPECT_LT(moves, 100);
    for (DDS_Long i = 0; i < 20000; ++i) {
        ASSERT_EQ(*DDS_LongSeq_get_reference(&seq, i), i + 1);
    }
    DDS_LongSeq_finalize(&seq);
}

// What lies beyond the length is initialised anew, as everywhere.
TEST_F(SequenceTest, GrowingForgetsWhatIsBeyondTheLength) {
    DDS_LongSeq seq = DDS_SEQUENCE_INITIALIZER;
    ASSERT_TRUE(DDS_LongSeq_set_length(&seq, 3));
    for (DDS_Long i = 0; i < 3; ++i) {
        *DDS_LongSeq_get_reference(&seq, i) = 7;
    }
    ASSERT_TRUE(DDS_LongSeq_set_length(&seq, 1));
    ASSERT_TRUE(DDS_LongSeq_set_maximum(&seq, 4));
    ASSERT_TRUE(DDS_LongSeq_set_length(&seq, 4));
    EXPECT_EQ(*DDS_LongSeq_get_reference(&seq, 0), 7);
    EXPECT_EQ(*DDS_LongSeq_get_reference(&seq, 1), 0);
    EXPECT_EQ(*DDS_LongSeq_get_reference(&seq, 2), 0);
    DDS_LongSeq_finalize(&seq);
}

TEST_F(SequenceTest, ShrinkingTheMaximumKeepsTheFirst) {
    NamedSeq seq{};
    ASSERT_TRUE(NamedSeq_set_length(&seq, 4));
    for (DDS_Long i = 0; i < 4; ++i) {
        NamedSeq_get_reference(&seq, i)->number = i;
    }
    DDS_String_replace(&NamedSeq_get_reference(&seq, 1)->name, "second");
    EXPECT_TRUE(NamedSeq_set_maximum(&seq, 2));
    EXPECT_EQ(NamedSeq_get_length(&seq), 2U);
    EXPECT_EQ(NamedSeq_get(&seq, 1).number, 1);
    EXPECT_STREQ(NamedSeq_get(&seq, 1).name, "second");
    EXPECT_EQ(g_live, 2);
    EXPECT_TRUE(NamedSeq_finalize(&seq));
    EXPECT_EQ(g_live, 0);
    EXPECT_EQ(NamedSeq_get_contiguous_buffer(&seq), nullptr);
}

TEST_F(SequenceTest, SetMaximumRefusals) {
    NamedSeq seq{};
    ASSERT_TRUE(NamedSeq_set_absolute_maximum(&seq, 5));
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, -1));
    EXPECT_TRUE(log_.saw("max size must be positive"));
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, 6));
    EXPECT_TRUE(log_.saw("new max cannot be larger than absolute maximum"));
    ASSERT_TRUE(NamedSeq_set_maximum(&seq, 5));
    for (const DDS_Long limit : {4, 0, -1}) {
        EXPECT_FALSE(NamedSeq_set_absolute_maximum(&seq, limit));
        EXPECT_TRUE(log_.saw("new absolute max cannot be smaller than max"));
    }
    EXPECT_FALSE(NamedSeq_set_length(&seq, 6));
    EXPECT_TRUE(log_.saw("insufficient space: 5 available, 6 requested"));
    EXPECT_FALSE(NamedSeq_set_length(&seq, -1));
    EXPECT_TRUE(log_.saw("insufficient space"));
    EXPECT_FALSE(NamedSeq_ensure_length(&seq, 3, 2));
    EXPECT_TRUE(log_.saw("insufficient space: 2 available, 3 requested"));
    EXPECT_TRUE(NamedSeq_finalize(&seq));

    DDS_SeqElementTypeAllocationParams_t params = {1, 0, 0};
    ASSERT_TRUE(NamedSeq_set_element_allocation_params(&seq, &params));
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, 1));
    EXPECT_TRUE(log_.saw("allocate_memory must be true"));
    EXPECT_FALSE(NamedSeq_finalize(&seq)) << "which is set_maximum of 0";
    EXPECT_TRUE(log_.saw("allocate_memory must be true"));
}

// The log names the first check that fails.
TEST_F(SequenceTest, SetMaximumChecksInTheirOrder) {
    NamedSeq seq{};
    Named buffer[1] = {};
    Named *pointers[1] = {buffer};
    ASSERT_TRUE(NamedSeq_set_absolute_maximum(&seq, 5));
    ASSERT_TRUE(NamedSeq_loan_discontiguous(&seq, pointers, 1, 1));
    seq._elementAllocParams.allocate_memory = DDS_BOOLEAN_FALSE;
    seq._length = 2;
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, -1));
    EXPECT_TRUE(log_.saw("invariant: length > maximum"));
    seq._length = 1;
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, -1));
    EXPECT_TRUE(log_.saw("allocate_memory must be true"));
    seq._elementAllocParams.allocate_memory = DDS_BOOLEAN_TRUE;
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, -1));
    EXPECT_TRUE(log_.saw("max size must be positive"));
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, 6));
    EXPECT_TRUE(log_.saw("new max cannot be larger than absolute maximum"));
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, 1)) << "even the maximum that it has";
    EXPECT_TRUE(log_.saw("buffer must not be loaned"));
    ASSERT_TRUE(NamedSeq_unloan(&seq));
    EXPECT_TRUE(NamedSeq_set_maximum(&seq, 0));
}

TEST_F(SequenceTest, EnsureLengthGrowsToTheMaximumOnlyWhenNeeded) {
    NamedSeq seq{};
    EXPECT_TRUE(NamedSeq_ensure_length(&seq, 2, 10));
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 10U);
    EXPECT_EQ(NamedSeq_get_length(&seq), 2U);
    EXPECT_TRUE(NamedSeq_ensure_length(&seq, 9, 100));
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 10U);
    g_fail_initialize_after = 0;
    EXPECT_FALSE(NamedSeq_ensure_length(&seq, 11, 12));
    EXPECT_TRUE(log_.saw("insufficient space: 10 available, 12 requested"));
    g_fail_initialize_after = -1;
    EXPECT_EQ(NamedSeq_get_length(&seq), 9U);
    EXPECT_TRUE(NamedSeq_finalize(&seq));
}

TEST_F(SequenceTest, AFailedSetMaximumChangesNothing) {
    NamedSeq seq{};
    ASSERT_TRUE(NamedSeq_set_length(&seq, 2));
    const Named *const buffer = NamedSeq_get_contiguous_buffer(&seq);
    g_fail_initialize_after = 1;
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, 4));
    EXPECT_TRUE(log_.saw("initialize_w_params"));
    g_fail_initialize_after = -1;
    g_fail_copy = true;
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, 4));
    EXPECT_TRUE(log_.saw("copy contiguous buffer"));
    g_fail_copy = false;
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 2U);
    EXPECT_EQ(NamedSeq_get_length(&seq), 2U);
    EXPECT_EQ(NamedSeq_get_contiguous_buffer(&seq), buffer);
    EXPECT_EQ(g_live, 2);
    EXPECT_TRUE(NamedSeq_finalize(&seq));
}

TEST_F(SequenceTest, OutOfMemoryIsAResult) {
    // More than any address space holds.
    constexpr KOLT_SequenceElementType kHuge = {"HugeSeq", SIZE_MAX / 4, nullptr, nullptr, nullptr};
    NamedSeq seq{};
    auto *const untyped = reinterpret_cast<KOLT_Sequence *>(&seq);
    EXPECT_FALSE(KOLT_Sequence_set_maximum(untyped, &kHuge, 8));
    EXPECT_TRUE(log_.saw("out of memory: 8 elements"));
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 0U);
}

TEST_F(SequenceTest, IndexOutOfBounds) {
    NamedSeq seq{};
    ASSERT_TRUE(NamedSeq_set_length(&seq, 2));
    NamedSeq_get_reference(&seq, 0)->number = 77;
    EXPECT_EQ(NamedSeq_get_reference(&seq, 2), nullptr);
    EXPECT_TRUE(log_.saw("index out of bounds"));
    EXPECT_EQ(NamedSeq_get_reference(&seq, -1), nullptr);
    EXPECT_TRUE(log_.saw("index out of bounds"));
    EXPECT_EQ(NamedSeq_get(&seq, 2).number, 77);
    EXPECT_TRUE(log_.saw("index out of bounds"));
    EXPECT_EQ(NamedSeq_get(&seq, -5).number, 77);
    EXPECT_TRUE(log_.saw("index out of bounds"));
    EXPECT_TRUE(NamedSeq_set_length(&seq, 0));
    EXPECT_EQ(NamedSeq_get(&seq, 0).number, 77);
    EXPECT_TRUE(NamedSeq_finalize(&seq));
    EXPECT_EQ(NamedSeq_get(&seq, 0).number, 0);
}

TEST_F(SequenceTest, AllocationParametersOnlyWhileEmpty) {
    NamedSeq seq{};
    EXPECT_TRUE(NamedSeq_get_element_pointers_allocation(&seq));
    EXPECT_TRUE(NamedSeq_set_element_pointers_allocation(&seq, DDS_BOOLEAN_FALSE));
    EXPECT_FALSE(NamedSeq_get_element_pointers_allocation(&seq));
    ASSERT_TRUE(NamedSeq_set_maximum(&seq, 1));
    EXPECT_EQ(seq._contiguous_buffer[0].name, nullptr);
    EXPECT_FALSE(NamedSeq_set_element_pointers_allocation(&seq, DDS_BOOLEAN_TRUE));
    EXPECT_TRUE(log_.saw(
        "Pointers allocation policy can be configured only when the maximum size of the sequence "
        "is 0"));
    const DDS_SeqElementTypeAllocationParams_t params = {1, 1, 1};
    EXPECT_FALSE(NamedSeq_set_element_allocation_params(&seq, &params));
    EXPECT_TRUE(log_.saw(
        "Member allocation parameters can be configured only when the maximum size of the sequence "
        "is 0"));
    const DDS_SeqElementTypeDeallocationParams_t release = {0, 0};
    EXPECT_TRUE(NamedSeq_set_element_deallocation_params(&seq, &release));
    EXPECT_EQ(NamedSeq_get_element_deallocation_params(&seq)->delete_pointers, 0);
    EXPECT_TRUE(NamedSeq_finalize(&seq));
    EXPECT_TRUE(NamedSeq_set_element_allocation_params(&seq, &params));
    EXPECT_EQ(NamedSeq_get_element_allocation_params(&seq)->allocate_optional_members, 1);
}

TEST_F(SequenceTest, Invariants) {
    NamedSeq seq = DDS_SEQUENCE_INITIALIZER;
    Named element{};
    Named *pointer = &element;
    const auto broken = [&](const char *text) {
        EXPECT_FALSE(NamedSeq_check_invariantsI(&seq, "the_function"));
        EXPECT_TRUE(log_.saw(text));
        seq = DDS_SEQUENCE_INITIALIZER;
    };
    seq._sequence_init = 0;
    broken("invariant: uninitialized");
    seq._contiguous_buffer = &element;
    seq._discontiguous_buffer = &pointer;
    broken("invariant: both buffers are non-NULL");
    seq._length = 1;
    broken("invariant: length > maximum");
    seq._discontiguous_buffer = &pointer;
    broken("invariant: sequence owns memory but has discontiguous buffer");
    seq._maximum = 1;
    broken("invariant: maximum > 0 but buffer is NULL");
    seq._maximum = 2;
    seq._absolute_maximum = 1;
    seq._contiguous_buffer = &element;
    broken("invariant: maximum > absolute_maximum");
    seq._length = 1;
    EXPECT_FALSE(NamedSeq_check_invariantsI(&seq, "the_function"));
    EXPECT_TRUE(log_.saw("the_function"));
    EXPECT_FALSE(NamedSeq_set_maximum(&seq, 1));
    EXPECT_TRUE(log_.saw("invariant: length > maximum"));
}

TEST_F(SequenceTest, DeleteBuffer) {
    NamedSeq seq{};
    ASSERT_TRUE(NamedSeq_set_length(&seq, 2));
    Named *const buffer = NamedSeq_get_contiguous_buffer(&seq);
    seq._contiguous_buffer = nullptr;
    seq._maximum = seq._length = 0;
    NamedSeq_delete_bufferI(&seq, buffer, 2);
    EXPECT_EQ(g_live, 0);
    NamedSeq_delete_bufferI(&seq, nullptr, 0);
}

TEST_F(SequenceTest, Strings) {
    DDS_StringSeq seq{};
    ASSERT_TRUE(DDS_StringSeq_set_length(&seq, 2));
    EXPECT_STREQ(DDS_StringSeq_get(&seq, 0), "");
    DDS_String_replace(DDS_StringSeq_get_reference(&seq, 1), "x");
    DDS_StringSeq copy{};
    EXPECT_NE(DDS_StringSeq_copy(&copy, &seq), nullptr);
    EXPECT_STREQ(DDS_StringSeq_get(&copy, 1), "x");
    EXPECT_NE(DDS_StringSeq_get(&copy, 1), DDS_StringSeq_get(&seq, 1));
    EXPECT_TRUE(DDS_StringSeq_finalize(&seq));
    EXPECT_TRUE(DDS_StringSeq_finalize(&copy));
    EXPECT_TRUE(DDS_StringSeq_set_element_pointers_allocation(&seq, DDS_BOOLEAN_FALSE));
    ASSERT_TRUE(DDS_StringSeq_set_length(&seq, 1));
    EXPECT_EQ(DDS_StringSeq_get(&seq, 0), nullptr);
    EXPECT_NE(DDS_StringSeq_copy(&copy, &seq), nullptr);
    EXPECT_EQ(DDS_StringSeq_get(&copy, 0), nullptr);
    EXPECT_TRUE(DDS_StringSeq_finalize(&seq));
    EXPECT_TRUE(DDS_StringSeq_finalize(&copy));
}

}  // namespace
