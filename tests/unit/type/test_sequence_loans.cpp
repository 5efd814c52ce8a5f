// SPDX-License-Identifier: Apache-2.0
// Typed sequences: loans, copies and arrays.

#include <gtest/gtest.h>
#include <kolt/sequence.h>

#include "support/types/named_sequence.h"

namespace {

using namespace support;

using SequenceLoans = SequenceTest;

TEST_F(SequenceLoans, ContiguousLoan) {
    NamedSeq seq{};
    Named buffer[3] = {{1, nullptr}, {2, nullptr}, {3, nullptr}};
    EXPECT_TRUE(NamedSeq_loan_contiguous(&seq, buffer, 2, 3));
    EXPECT_FALSE(NamedSeq_has_ownership(&seq));
    EXPECT_EQ(NamedSeq_get_reference(&seq, 1), &buffer[1]);
    EXPECT_EQ(NamedSeq_get_contiguous_buffer(&seq), buffer);
    EXPECT_TRUE(NamedSeq_set_length(&seq, 3));
    EXPECT_FALSE(NamedSeq_set_length(&seq, 4));
    EXPECT_TRUE(log_.saw("does not own"));
    EXPECT_FALSE(NamedSeq_finalize(&seq));
    EXPECT_TRUE(log_.saw("buffer must not be loaned"));
    EXPECT_EQ(NamedSeq_get_contiguous_buffer(&seq), buffer);
    EXPECT_FALSE(NamedSeq_loan_contiguous(&seq, buffer, 1, 1));
    EXPECT_TRUE(log_.saw("max size must be 0"));
    EXPECT_TRUE(NamedSeq_unloan(&seq));
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 0U);
    EXPECT_TRUE(NamedSeq_has_ownership(&seq));
    EXPECT_FALSE(NamedSeq_unloan(&seq));
    EXPECT_TRUE(log_.saw("buffer must be loaned"));
}

TEST_F(SequenceLoans, LoanChecksInTheirOrder) {
    NamedSeq seq{};
    Named buffer[1] = {};
    Named *pointers[1] = {buffer};
    EXPECT_FALSE(NamedSeq_loan_contiguous(&seq, nullptr, -1, 1));
    EXPECT_TRUE(log_.saw("negative argument"));
    EXPECT_FALSE(NamedSeq_loan_contiguous(&seq, nullptr, 2, 1));
    EXPECT_TRUE(log_.saw("insufficient space: 1 available, 2 requested"));
    EXPECT_FALSE(NamedSeq_loan_contiguous(&seq, nullptr, 0, 1));
    EXPECT_TRUE(log_.saw("NULL buffer can't have non-zero maximum"));
    EXPECT_FALSE(NamedSeq_loan_discontiguous(&seq, nullptr, 0, 1));
    EXPECT_TRUE(log_.saw("NULL buffer can't have non-zero maximum"));
    ASSERT_TRUE(NamedSeq_set_absolute_maximum(&seq, 0));
    EXPECT_FALSE(NamedSeq_loan_discontiguous(&seq, pointers, 1, 1));
    EXPECT_TRUE(log_.saw("new max cannot be larger than absolute maximum"));
    EXPECT_TRUE(NamedSeq_loan_contiguous(&seq, nullptr, 0, 0));
    EXPECT_FALSE(NamedSeq_has_ownership(&seq));
    EXPECT_TRUE(NamedSeq_unloan(&seq));
}

TEST_F(SequenceLoans, DiscontiguousLoan) {
    NamedSeq seq{};
    Named first = {1, nullptr};
    Named second = {2, nullptr};
    Named *pointers[] = {&first, &second};
    EXPECT_TRUE(NamedSeq_loan_discontiguous(&seq, pointers, 2, 2));
    EXPECT_EQ(NamedSeq_get_discontiguous_buffer(&seq), pointers);
    EXPECT_EQ(NamedSeq_get_discontiguous_bufferI(&seq), pointers);
    EXPECT_EQ(NamedSeq_get_contiguous_bufferI(&seq), nullptr);
    EXPECT_EQ(NamedSeq_get_reference(&seq, 1), &second);
    EXPECT_EQ(NamedSeq_get(&seq, 0).number, 1);
    int token = 0;
    EXPECT_TRUE(NamedSeq_set_read_tokenI(&seq, &token, nullptr));
    void *token1 = nullptr;
    void *token2 = &token;
    EXPECT_TRUE(NamedSeq_get_read_tokenI(&seq, &token1, &token2));
    EXPECT_EQ(token1, &token);
    EXPECT_EQ(token2, nullptr);
    EXPECT_TRUE(NamedSeq_unloan(&seq));
    EXPECT_TRUE(NamedSeq_get_read_tokenI(&seq, &token1, &token2));
    EXPECT_EQ(token1, nullptr);
}

TEST_F(SequenceLoans, CopyTakesTheMaximumOfTheSource) {
    NamedSeq source{};
    NamedSeq copy{};
    ASSERT_TRUE(NamedSeq_ensure_length(&source, 2, 7));
    NamedSeq_get_reference(&source, 1)->number = 5;
    DDS_String_replace(&NamedSeq_get_reference(&source, 1)->name, "deep");
    EXPECT_EQ(NamedSeq_copy(&copy, &source), &copy);
    EXPECT_EQ(NamedSeq_get_maximum(&copy), 7U);
    EXPECT_EQ(NamedSeq_get_length(&copy), 2U);
    EXPECT_STREQ(NamedSeq_get(&copy, 1).name, "deep");
    EXPECT_NE(NamedSeq_get(&copy, 1).name, NamedSeq_get(&source, 1).name);
    EXPECT_EQ(NamedSeq_copy(&copy, &copy), &copy);
    EXPECT_EQ(NamedSeq_get_length(&copy), 2U);
    EXPECT_TRUE(NamedSeq_finalize(&source));
    EXPECT_TRUE(NamedSeq_finalize(&copy));
    EXPECT_EQ(g_live, 0);
}

TEST_F(SequenceLoans, CopyWithoutAllocationGrowsThroughTheLength) {
    NamedSeq source{};
    NamedSeq copy{};
    ASSERT_TRUE(NamedSeq_ensure_length(&source, 2, 7));
    EXPECT_TRUE(NamedSeq_copy_no_alloc(&copy, &source));
    EXPECT_EQ(NamedSeq_get_maximum(&copy), 2U) << "by the length, not to the source's maximum";
    ASSERT_TRUE(NamedSeq_set_absolute_maximum(&copy, 2));
    ASSERT_TRUE(NamedSeq_set_length(&source, 3));
    EXPECT_FALSE(NamedSeq_copy_no_alloc(&copy, &source));
    EXPECT_TRUE(log_.saw("insufficient space: 2 available, 3 requested"));
    EXPECT_EQ(NamedSeq_copy(&copy, &source), nullptr);
    EXPECT_TRUE(log_.saw("new max cannot be larger than absolute maximum"));
    g_fail_copy = true;
    ASSERT_TRUE(NamedSeq_set_length(&source, 1));
    EXPECT_FALSE(NamedSeq_copy_no_alloc(&copy, &source));
    EXPECT_TRUE(log_.saw("copy element"));
    g_fail_copy = false;
    EXPECT_TRUE(NamedSeq_finalize(&source));
    EXPECT_TRUE(NamedSeq_finalize(&copy));
}

TEST_F(SequenceLoans, CopyFromAndToLoans) {
    NamedSeq source{};
    Named first = {1, DDS_String_dup("a")};
    Named *pointers[] = {&first, nullptr};
    ASSERT_TRUE(NamedSeq_loan_discontiguous(&source, pointers, 1, 2));
    NamedSeq copy{};
    EXPECT_NE(NamedSeq_copy(&copy, &source), nullptr);
    EXPECT_STREQ(NamedSeq_get(&copy, 0).name, "a");
    ASSERT_TRUE(NamedSeq_set_length(&source, 2));
    EXPECT_EQ(NamedSeq_copy(&copy, &source), nullptr);
    EXPECT_TRUE(log_.saw("Unexpected NULL discontiguous buffer in the sequence"));
    ASSERT_TRUE(NamedSeq_set_length(&source, 1));

    NamedSeq loaned{};
    Named target = {0, nullptr};
    ASSERT_TRUE(NamedSeq_loan_contiguous(&loaned, &target, 0, 1));
    EXPECT_TRUE(NamedSeq_copy_no_alloc(&loaned, &source));
    EXPECT_EQ(target.number, 1);
    NamedSeq two{};
    ASSERT_TRUE(NamedSeq_set_length(&two, 2));
    EXPECT_FALSE(NamedSeq_copy_no_alloc(&loaned, &two));
    EXPECT_TRUE(log_.saw("sequence does not own its buffer"));
    EXPECT_EQ(NamedSeq_copy(&loaned, &two), nullptr);
    EXPECT_TRUE(log_.saw("buffer must not be loaned"));
    EXPECT_TRUE(NamedSeq_unloan(&loaned));
    EXPECT_TRUE(NamedSeq_unloan(&source));
    EXPECT_TRUE(NamedSeq_finalize(&copy));
    EXPECT_TRUE(NamedSeq_finalize(&two));
    DDS_String_free(first.name);
    DDS_String_free(target.name);
}

TEST_F(SequenceLoans, Arrays) {
    DDS_LongSeq seq = DDS_SEQUENCE_INITIALIZER;
    const DDS_Long values[] = {3, 1, 4};
    EXPECT_TRUE(DDS_LongSeq_from_array(&seq, values, 3));
    EXPECT_EQ(DDS_LongSeq_get_length(&seq), 3U);
    DDS_Long out[4] = {};
    EXPECT_TRUE(DDS_LongSeq_to_array(&seq, out, 4));
    EXPECT_EQ(out[2], 4);
    EXPECT_FALSE(DDS_LongSeq_to_array(&seq, out, 2));
    EXPECT_TRUE(log_.saw("copying array sequence"));
    EXPECT_FALSE(DDS_LongSeq_from_array(&seq, nullptr, 2));
    EXPECT_TRUE(log_.saw("loan contiguous array"));
    ASSERT_TRUE(DDS_LongSeq_finalize(&seq));
    ASSERT_TRUE(DDS_LongSeq_set_absolute_maximum(&seq, 2));
    EXPECT_FALSE(DDS_LongSeq_from_array(&seq, values, 3));
    EXPECT_TRUE(log_.saw("copy array sequence"));
}

}  // namespace
