// SPDX-License-Identifier: Apache-2.0
// The sequences of the logger's types: the rules of the family, and that all thirteen have it.

#include <gtest/gtest.h>
#include <vur_dl/distlog.h>

#include <array>
#include <cstring>
#include <string>

#include "support/logger/log_capture.h"
#include "support/types/type_list.h"

namespace {

// ---- All thirteen families ----------------------------------------------------------------------

// One family: its record, its sequence, and the functions that a walk through its life needs.
#define FAMILY(T)                                                                        \
    struct T##Family {                                                                   \
        using Record = T;                                                                \
        using Sequence = T##Seq;                                                         \
        static constexpr const char *kName = #T "Seq";                                   \
        static constexpr auto kInitializeRecord = T##_initialize;                        \
        static constexpr auto kFinalizeRecord = T##_finalize;                            \
        static constexpr auto kCode = T##_get_typecode;                                  \
        static constexpr auto kInitialize = T##Seq_initialize;                           \
        static constexpr auto kFinalize = T##Seq_finalize;                               \
        static constexpr auto kGetMaximum = T##Seq_get_maximum;                          \
        static constexpr auto kSetMaximum = T##Seq_set_maximum;                          \
        static constexpr auto kGetLength = T##Seq_get_length;                            \
        static constexpr auto kSetLength = T##Seq_set_length;                            \
        static constexpr auto kEnsureLength = T##Seq_ensure_length;                      \
        static constexpr auto kSetAbsolute = T##Seq_set_absolute_maximum;                \
        static constexpr auto kGet = T##Seq_get;                                         \
        static constexpr auto kGetReference = T##Seq_get_reference;                      \
        static constexpr auto kCopy = T##Seq_copy;                                       \
        static constexpr auto kFromArray = T##Seq_from_array;                            \
        static constexpr auto kToArray = T##Seq_to_array;                                \
        static constexpr auto kLoan = T##Seq_loan_contiguous;                            \
        static constexpr auto kLoanPointers = T##Seq_loan_discontiguous;                 \
        static constexpr auto kUnloan = T##Seq_unloan;                                   \
        static constexpr auto kHasOwnership = T##Seq_has_ownership;                      \
        static constexpr auto kCopyNoAlloc = T##Seq_copy_no_alloc;                       \
        static constexpr auto kCopyNoAllocI = T##Seq_copy_no_allocI;                     \
        static constexpr auto kContiguous = T##Seq_get_contiguous_buffer;                \
        static constexpr auto kContiguousI = T##Seq_get_contiguous_bufferI;              \
        static constexpr auto kDiscontiguous = T##Seq_get_discontiguous_buffer;          \
        static constexpr auto kDiscontiguousI = T##Seq_get_discontiguous_bufferI;        \
        static constexpr auto kSetPointers = T##Seq_set_element_pointers_allocation;     \
        static constexpr auto kGetPointers = T##Seq_get_element_pointers_allocation;     \
        static constexpr auto kSetAllocation = T##Seq_set_element_allocation_params;     \
        static constexpr auto kGetAllocation = T##Seq_get_element_allocation_params;     \
        static constexpr auto kSetDeallocation = T##Seq_set_element_deallocation_params; \
        static constexpr auto kGetDeallocation = T##Seq_get_element_deallocation_params; \
        static constexpr auto kSetTokens = T##Seq_set_read_tokenI;                       \
        static constexpr auto kGetTokens = T##Seq_get_read_tokenI;                       \
        static constexpr auto kDeleteBuffer = T##Seq_delete_bufferI;                     \
        static constexpr auto kCheck = T##Seq_check_invariantsI;                         \
    }
FOR_EACH_TYPE(FAMILY, SEMICOLON);
#undef FAMILY

#define FAMILY_OF(T) T##Family
using Families = testing::Types<FOR_EACH_TYPE(FAMILY_OF, COMMA)>;
#undef FAMILY_OF

template <typename Family>
class DistlogSequences : public testing::Test {
  protected:
    using Record = typename Family::Record;
    using Sequence = typename Family::Sequence;

    ~DistlogSequences() override { Family::kFinalize(&sequence_); }

    static bool is_initial(const Record &record) {
        Record initial = {};
        EXPECT_TRUE(Family::kInitializeRecord(&initial));
        const bool equal = KOLT_Record_equals(Family::kCode(), &record, &initial) != 0;
        Family::kFinalizeRecord(&initial);
        return equal;
    }

    Sequence sequence_ = {};
    support::LogCapture log_;
};
TYPED_TEST_SUITE(DistlogSequences, Families);

TYPED_TEST(DistlogSequences, GarbageBecomesAnEmptySequence) {
    std::memset(static_cast<void *>(&this->sequence_), 0x5a, sizeof(this->sequence_));
    EXPECT_EQ(TypeParam::kGetMaximum(&this->sequence_), 0U);
    EXPECT_EQ(TypeParam::kGetLength(&this->sequence_), 0U);
    EXPECT_TRUE(TypeParam::kHasOwnership(&this->sequence_));
    EXPECT_EQ(this->sequence_._sequence_init, 29508);
    EXPECT_EQ(this->sequence_._absolute_maximum, 2147483647U);
    EXPECT_TRUE(TypeParam::kCheck(&this->sequence_, "test"));
}

TYPED_TEST(DistlogSequences, GrowsByExactlyWhatIsNeededWithInitialElements) {
    ASSERT_TRUE(TypeParam::kInitialize(&this->sequence_));
    ASSERT_TRUE(TypeParam::kSetAbsolute(&this->sequence_, 4));
    ASSERT_TRUE(TypeParam::kSetLength(&this->sequence_, 3));
    EXPECT_EQ(TypeParam::kGetMaximum(&this->sequence_), 3U);
    const typename TypeParam::Record first = TypeParam::kGet(&this->sequence_, 0);
    EXPECT_EQ(std::memcmp(&first, TypeParam::kGetReference(&this->sequence_, 0), sizeof(first)), 0)
        << "a shallow copy";
    for (DDS_Long i = 0; i < 3; ++i) {
        EXPECT_TRUE(this->is_initial(*TypeParam::kGetReference(&this->sequence_, i)));
    }
    ASSERT_TRUE(TypeParam::kSetMaximum(&this->sequence_, 1));
    EXPECT_EQ(TypeParam::kGetLength(&this->sequence_), 1U);
    ASSERT_TRUE(TypeParam::kEnsureLength(&this->sequence_, 2, 4));
    EXPECT_EQ(TypeParam::kGetLength(&this->sequence_), 2U);
    EXPECT_EQ(TypeParam::kGetMaximum(&this->sequence_), 4U);
    ASSERT_TRUE(TypeParam::kFinalize(&this->sequence_));
    EXPECT_EQ(TypeParam::kGetMaximum(&this->sequence_), 0U);
    EXPECT_EQ(this->log_.take(), "");
}

TYPED_TEST(DistlogSequences, CopiesDeeplyToAndFromArrays) {
    std::array<typename TypeParam::Record, 2> array = {};
    for (typename TypeParam::Record &record : array) {
        ASSERT_TRUE(TypeParam::kInitializeRecord(&record));
    }
    ASSERT_TRUE(TypeParam::kFromArray(&this->sequence_, array.data(), 2));
    typename TypeParam::Sequence copy = {};
    ASSERT_EQ(TypeParam::kCopy(&copy, &this->sequence_), &copy);
    ASSERT_TRUE(TypeParam::kToArray(&copy, array.data(), 2));
    EXPECT_TRUE(this->is_initial(array[1]));
    EXPECT_NE(copy._contiguous_buffer, this->sequence_._contiguous_buffer);
    ASSERT_TRUE(TypeParam::kFinalize(&copy));
    for (typename TypeParam::Record &record : array) {
        TypeParam::kFinalizeRecord(&record);
    }
    EXPECT_EQ(this->log_.take(), "");
}

TYPED_TEST(DistlogSequences, LendsAndReturnsBuffers) {
    std::array<typename TypeParam::Record, 2> array = {};
    ASSERT_TRUE(TypeParam::kLoan(&this->sequence_, array.data(), 1, 2));
    EXPECT_FALSE(TypeParam::kHasOwnership(&this->sequence_));
    EXPECT_EQ(TypeParam::kGetReference(&this->sequence_, 0), array.data());
    EXPECT_FALSE(TypeParam::kFinalize(&this->sequence_));
    EXPECT_NE(this->log_.take().find("buffer must not be loaned"), std::string::npos);
    EXPECT_EQ(TypeParam::kGetLength(&this->sequence_), 1U) << "the loan stays";
    ASSERT_TRUE(TypeParam::kUnloan(&this->sequence_));
    std::array<typename TypeParam::Record *, 2> pointers = {&array[1], &array[0]};
    ASSERT_TRUE(TypeParam::kLoanPointers(&this->sequence_, pointers.data(), 2, 2));
    EXPECT_EQ(TypeParam::kGetReference(&this->sequence_, 0), &array[1]);
    ASSERT_TRUE(TypeParam::kUnloan(&this->sequence_));
    EXPECT_TRUE(TypeParam::kHasOwnership(&this->sequence_));
}

TYPED_TEST(DistlogSequences, ReportsUnderItsOwnName) {
    EXPECT_FALSE(TypeParam::kSetMaximum(&this->sequence_, -1));
    const std::string text = this->log_.take();
    EXPECT_NE(text.find(std::string(TypeParam::kName) + "_set_maximum"), std::string::npos) << text;
    EXPECT_NE(text.find("max size must be positive"), std::string::npos) << text;
}

TYPED_TEST(DistlogSequences, CopiesIntoTheRoomThatIsThere) {
    std::array<typename TypeParam::Record, 2> array = {};
    for (typename TypeParam::Record &record : array) {
        ASSERT_TRUE(TypeParam::kInitializeRecord(&record));
    }
    ASSERT_TRUE(TypeParam::kSetLength(&this->sequence_, 2));
    typename TypeParam::Sequence copy = {};
    ASSERT_TRUE(TypeParam::kLoan(&copy, array.data(), 0, 1));
    EXPECT_FALSE(TypeParam::kCopyNoAlloc(&copy, &this->sequence_));
    EXPECT_TRUE(this->log_.saw("sequence does not own its buffer"));
    ASSERT_TRUE(TypeParam::kUnloan(&copy));
    ASSERT_TRUE(TypeParam::kLoan(&copy, array.data(), 0, 2));
    EXPECT_TRUE(TypeParam::kCopyNoAlloc(&copy, &this->sequence_));
    EXPECT_EQ(TypeParam::kGetLength(&copy), 2U);
    EXPECT_TRUE(TypeParam::kCopyNoAllocI(&copy, &this->sequence_));
    ASSERT_TRUE(TypeParam::kUnloan(&copy));
    // Pointers of a loan are followed, unless one is missing.
    std::array<typename TypeParam::Record *, 2> pointers = {&array[0], nullptr};
    ASSERT_TRUE(TypeParam::kLoanPointers(&copy, pointers.data(), 1, 2));
    EXPECT_TRUE(TypeParam::kCopyNoAlloc(&this->sequence_, &copy));
    EXPECT_EQ(TypeParam::kGetLength(&this->sequence_), 1U);
    ASSERT_TRUE(TypeParam::kSetLength(&copy, 2));
    EXPECT_FALSE(TypeParam::kCopyNoAllocI(&this->sequence_, &copy));
    EXPECT_TRUE(this->log_.saw("Unexpected NULL discontiguous buffer in the sequence"));
    ASSERT_TRUE(TypeParam::kUnloan(&copy));
    for (typename TypeParam::Record &record : array) {
        TypeParam::kFinalizeRecord(&record);
    }
}

TYPED_TEST(DistlogSequences, ShowsItsBuffersAndTokens) {
    ASSERT_TRUE(TypeParam::kSetMaximum(&this->sequence_, 1));
    EXPECT_EQ(TypeParam::kContiguous(&this->sequence_), this->sequence_._contiguous_buffer);
    EXPECT_EQ(TypeParam::kContiguousI(&this->sequence_), this->sequence_._contiguous_buffer);
    EXPECT_EQ(TypeParam::kDiscontiguous(&this->sequence_), nullptr);
    EXPECT_EQ(TypeParam::kDiscontiguousI(&this->sequence_), nullptr);
    ASSERT_TRUE(TypeParam::kSetMaximum(&this->sequence_, 0));
    typename TypeParam::Record record = {};
    std::array<typename TypeParam::Record *, 1> pointers = {&record};
    ASSERT_TRUE(TypeParam::kLoanPointers(&this->sequence_, pointers.data(), 1, 1));
    EXPECT_EQ(TypeParam::kDiscontiguous(&this->sequence_), pointers.data());
    EXPECT_EQ(TypeParam::kDiscontiguousI(&this->sequence_), pointers.data());
    EXPECT_EQ(TypeParam::kContiguous(&this->sequence_), nullptr);
    int one = 1;
    int two = 2;
    void *first = nullptr;
    void *second = nullptr;
    ASSERT_TRUE(TypeParam::kSetTokens(&this->sequence_, &one, &two));
    ASSERT_TRUE(TypeParam::kGetTokens(&this->sequence_, &first, &second));
    EXPECT_EQ(first, &one);
    EXPECT_EQ(second, &two);
    EXPECT_FALSE(TypeParam::kGetTokens(&this->sequence_, nullptr, &second));
    EXPECT_TRUE(this->log_.saw("token (NULL)"));
    EXPECT_FALSE(TypeParam::kGetTokens(&this->sequence_, &first, nullptr));
    EXPECT_TRUE(this->log_.saw("token (NULL)"));
    ASSERT_TRUE(TypeParam::kUnloan(&this->sequence_));
    ASSERT_TRUE(TypeParam::kGetTokens(&this->sequence_, &first, &second));
    EXPECT_EQ(first, nullptr) << "they belong to the loan";
    EXPECT_EQ(second, nullptr);
}

TYPED_TEST(DistlogSequences, ElementParametersAreSetWhileItIsEmpty) {
    auto *const sequence = &this->sequence_;
    EXPECT_TRUE(TypeParam::kGetPointers(sequence));
    EXPECT_TRUE(TypeParam::kSetPointers(sequence, DDS_BOOLEAN_FALSE));
    EXPECT_FALSE(TypeParam::kGetPointers(sequence));
    DDS_SeqElementTypeAllocationParams_t params = {1, 1, 1};
    EXPECT_TRUE(TypeParam::kSetAllocation(sequence, &params));
    EXPECT_TRUE(TypeParam::kGetAllocation(sequence)->allocate_pointers);
    EXPECT_TRUE(TypeParam::kGetAllocation(sequence)->allocate_optional_members);
    ASSERT_TRUE(TypeParam::kSetMaximum(sequence, 1));
    EXPECT_FALSE(TypeParam::kSetPointers(sequence, DDS_BOOLEAN_FALSE));
    EXPECT_TRUE(this->log_.saw(
        "Pointers allocation policy can be configured only when the maximum size of the sequence "
        "is 0"));
    EXPECT_FALSE(TypeParam::kSetAllocation(sequence, &params));
    EXPECT_TRUE(this->log_.saw(
        "Member allocation parameters can be configured only when the maximum size of the sequence "
        "is 0"));
    EXPECT_TRUE(TypeParam::kGetDeallocation(sequence)->delete_pointers);
    EXPECT_TRUE(TypeParam::kGetDeallocation(sequence)->delete_optional_members);
    const DDS_SeqElementTypeDeallocationParams_t release = {1, 0};
    EXPECT_TRUE(TypeParam::kSetDeallocation(sequence, &release)) << "at any time";
    EXPECT_FALSE(TypeParam::kGetDeallocation(sequence)->delete_optional_members);
    EXPECT_FALSE(TypeParam::kSetAllocation(sequence, nullptr));
    EXPECT_TRUE(this->log_.saw("bad parameter: params"));
    EXPECT_FALSE(TypeParam::kSetDeallocation(sequence, nullptr));
    EXPECT_TRUE(this->log_.saw("bad parameter: params"));
    ASSERT_TRUE(TypeParam::kSetMaximum(sequence, 0));
    params.allocate_memory = DDS_BOOLEAN_FALSE;
    ASSERT_TRUE(TypeParam::kSetAllocation(sequence, &params));
    EXPECT_FALSE(TypeParam::kSetMaximum(sequence, 1));
    EXPECT_TRUE(this->log_.saw("allocate_memory must be true"));
}

TYPED_TEST(DistlogSequences, InitialisingForgetsAndBuffersAreDeletedByHand) {
    ASSERT_TRUE(TypeParam::kSetLength(&this->sequence_, 2));
    typename TypeParam::Record *const buffer = TypeParam::kContiguous(&this->sequence_);
    ASSERT_TRUE(TypeParam::kInitialize(&this->sequence_));
    EXPECT_EQ(TypeParam::kContiguous(&this->sequence_), nullptr);
    EXPECT_EQ(TypeParam::kGetMaximum(&this->sequence_), 0U);
    TypeParam::kDeleteBuffer(&this->sequence_, buffer, 2);
    TypeParam::kDeleteBuffer(&this->sequence_, nullptr, 0);
    EXPECT_EQ(this->log_.take(), "");
}

// Every operation says that it wants a sequence, under its own name.
TYPED_TEST(DistlogSequences, NothingIsNoSequence) {
    typename TypeParam::Sequence *const none = nullptr;
    const auto said = [&](const char *operation) {
        return this->log_.saw(std::string(TypeParam::kName) + "_" + operation);
    };
    typename TypeParam::Record record = {};
    std::array<typename TypeParam::Record *, 1> pointers = {&record};
    void *token = nullptr;
    const DDS_SeqElementTypeAllocationParams_t allocation = {1, 0, 1};
    const DDS_SeqElementTypeDeallocationParams_t release = {1, 1};
#define EXPECT_REFUSED(call, operation) \
    EXPECT_FALSE(TypeParam::call);      \
    EXPECT_TRUE(said(operation))
    EXPECT_REFUSED(kInitialize(none), "initialize");
    EXPECT_REFUSED(kFinalize(none), "finalize");
    EXPECT_REFUSED(kGetMaximum(none), "get_maximum");
    EXPECT_REFUSED(kSetMaximum(none, 1), "set_maximum");
    EXPECT_REFUSED(kGetLength(none), "get_length");
    EXPECT_REFUSED(kSetLength(none, 1), "set_length");
    EXPECT_REFUSED(kEnsureLength(none, 1, 1), "ensure_length");
    EXPECT_REFUSED(kSetAbsolute(none, 1), "set_absolute_maximum");
    EXPECT_REFUSED(kGetReference(none, 0), "get_reference");
    EXPECT_REFUSED(kCopy(none, &this->sequence_), "copy");
    EXPECT_REFUSED(kCopyNoAlloc(none, &this->sequence_), "copy_no_alloc");
    EXPECT_REFUSED(kCopyNoAllocI(none, &this->sequence_), "copy_no_allocI");
    EXPECT_REFUSED(kFromArray(none, &record, 1), "from_array");
    EXPECT_REFUSED(kToArray(none, &record, 1), "to_array");
    EXPECT_REFUSED(kLoan(none, &record, 1, 1), "loan_contiguous");
    EXPECT_REFUSED(kLoanPointers(none, pointers.data(), 1, 1), "loan_discontiguous");
    EXPECT_REFUSED(kUnloan(none), "unloan");
    EXPECT_REFUSED(kContiguous(none), "get_contiguous_buffer");
    EXPECT_REFUSED(kContiguousI(none), "get_contiguous_bufferI");
    EXPECT_REFUSED(kDiscontiguous(none), "get_discontiguous_buffer");
    EXPECT_REFUSED(kDiscontiguousI(none), "get_discontiguous_bufferI");
    EXPECT_REFUSED(kHasOwnership(none), "has_ownership");
    EXPECT_REFUSED(kSetPointers(none, 1), "set_element_pointers_allocation");
    EXPECT_REFUSED(kGetPointers(none), "get_element_pointers_allocation");
    EXPECT_REFUSED(kSetAllocation(none, &allocation), "set_element_allocation_params");
    EXPECT_REFUSED(kGetAllocation(none), "get_element_allocation_params");
    EXPECT_REFUSED(kSetDeallocation(none, &release), "set_element_deallocation_params");
    EXPECT_REFUSED(kGetDeallocation(none), "get_element_deallocation_params");
    EXPECT_REFUSED(kGetTokens(none, &token, &token), "get_read_tokenI");
    EXPECT_REFUSED(kSetTokens(none, nullptr, nullptr), "set_read_tokenI");
    EXPECT_REFUSED(kCheck(none, "test"), "check_invariantsI");
#undef EXPECT_REFUSED
    const typename TypeParam::Record zero = {};
    const typename TypeParam::Record got = TypeParam::kGet(none, 0);
    EXPECT_EQ(std::memcmp(&got, &zero, sizeof(zero)), 0);
    EXPECT_TRUE(said("get"));
    TypeParam::kDeleteBuffer(none, nullptr, 0);
    EXPECT_TRUE(said("delete_bufferI"));
    EXPECT_EQ(TypeParam::kCopy(&this->sequence_, nullptr), nullptr);
    EXPECT_TRUE(this->log_.saw("bad parameter: src"));
    EXPECT_FALSE(TypeParam::kCopyNoAlloc(&this->sequence_, nullptr));
    EXPECT_TRUE(this->log_.saw("bad parameter: src"));
}

// ---- The rules, on messages ---------------------------------------------------------------------

class LogMessageSeq : public testing::Test {
  protected:
    ~LogMessageSeq() override {
        if (!VUR_DL_LogMessageSeq_has_ownership(&sequence_)) {
            VUR_DL_LogMessageSeq_unloan(&sequence_);
        }
        VUR_DL_LogMessageSeq_finalize(&sequence_);
    }
    VUR_DL_LogMessage &at(DDS_Long index) {
        return *VUR_DL_LogMessageSeq_get_reference(&sequence_, index);
    }

    VUR_DL_LogMessageSeq sequence_ = {};
    support::LogCapture log_;
};

TEST_F(LogMessageSeq, ZeroFilledCanGrowWithoutInitialise) {
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_maximum(&sequence_), 0U);
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_length(&sequence_), 0U);
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_maximum(&sequence_, 2));
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_maximum(&sequence_), 2U);
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_length(&sequence_), 0U);
    EXPECT_STREQ(sequence_._contiguous_buffer[1].message, "") << "initialised up to the maximum";
}

TEST_F(LogMessageSeq, ShrinkingTheMaximumTruncates) {
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_length(&sequence_, 4));
    for (DDS_Long i = 0; i < 4; ++i) {
        at(i).level = 100 * i;
        std::strcpy(at(i).message, std::to_string(i).c_str());
    }
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_maximum(&sequence_, 2));
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_length(&sequence_), 2U);
    EXPECT_EQ(at(1).level, 100);
    EXPECT_STREQ(at(1).message, "1");
}

TEST_F(LogMessageSeq, IndexesOutOfBounds) {
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_length(&sequence_, 2));
    at(0).level = 42;
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_reference(&sequence_, 2), nullptr);
    EXPECT_TRUE(log_.saw("index out of bounds"));
    EXPECT_EQ(VUR_DL_LogMessageSeq_get(&sequence_, 2).level, 42) << "element 0 instead";
    EXPECT_TRUE(log_.saw("index out of bounds"));
    EXPECT_EQ(VUR_DL_LogMessageSeq_get(&sequence_, -1).level, 42);
    EXPECT_TRUE(log_.saw("index out of bounds"));
    EXPECT_EQ(VUR_DL_LogMessageSeq_get(&sequence_, 1).message, at(1).message) << "shallow";
}

TEST_F(LogMessageSeq, AbsoluteMaximum) {
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_maximum(&sequence_, 5));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_set_absolute_maximum(&sequence_, 1));
    EXPECT_TRUE(log_.saw("new absolute max cannot be smaller than max"));
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_absolute_maximum(&sequence_, 6));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_set_maximum(&sequence_, 7));
    EXPECT_TRUE(log_.saw("new max cannot be larger than absolute maximum"));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_set_length(&sequence_, 7));
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_maximum(&sequence_), 5U) << "as it was";
}

TEST_F(LogMessageSeq, CommandsTakeFiveCategories) {
    VUR_DL_ADMIN_Command command = {};
    ASSERT_TRUE(VUR_DL_ADMIN_Command_initialize(&command));
    auto *const sequence = &command._u.categoryAndVerbosity;
    EXPECT_FALSE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_maximum(sequence, 6));
    EXPECT_TRUE(log_.saw("new max cannot be larger than absolute maximum"));
    EXPECT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(sequence, 5));
    VUR_DL_ADMIN_Command_finalize(&command);
}

TEST_F(LogMessageSeq, LoansNeedAnEmptySequence) {
    std::array<VUR_DL_LogMessage, 1> array = {};
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_maximum(&sequence_, 1));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_loan_contiguous(&sequence_, array.data(), 1, 1));
    EXPECT_TRUE(log_.saw("max size must be 0"));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_unloan(&sequence_));
    EXPECT_TRUE(log_.saw("buffer must be loaned"));
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_maximum(&sequence_, 0));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_loan_contiguous(&sequence_, array.data(), -1, 1));
    EXPECT_TRUE(log_.saw("negative argument"));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_loan_contiguous(&sequence_, nullptr, 0, 1));
    EXPECT_TRUE(log_.saw("NULL buffer can't have non-zero maximum"));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_loan_contiguous(&sequence_, array.data(), 2, 1));
    EXPECT_TRUE(VUR_DL_LogMessageSeq_has_ownership(&sequence_));
}

TEST_F(LogMessageSeq, CopiesWithoutGrowingWhenAskedTo) {
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_length(&sequence_, 2));
    std::strcpy(at(1).message, "second");
    VUR_DL_LogMessageSeq copy = {};
    std::array<VUR_DL_LogMessage, 1> array = {};
    ASSERT_TRUE(VUR_DL_LogMessageSeq_loan_contiguous(&copy, array.data(), 0, 1));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_copy_no_alloc(&copy, &sequence_));
    EXPECT_NE(log_.take(), "");
    ASSERT_TRUE(VUR_DL_LogMessageSeq_unloan(&copy));
    ASSERT_EQ(VUR_DL_LogMessageSeq_copy(&copy, &sequence_), &copy);
    EXPECT_STREQ(VUR_DL_LogMessageSeq_get_reference(&copy, 1)->message, "second");
    EXPECT_TRUE(VUR_DL_LogMessageSeq_finalize(&copy));
    EXPECT_EQ(VUR_DL_LogMessageSeq_copy(&copy, nullptr), nullptr);
    EXPECT_TRUE(log_.saw("src"));
    EXPECT_EQ(VUR_DL_LogMessageSeq_copy(nullptr, &copy), nullptr);
    EXPECT_TRUE(log_.saw("self"));
}

TEST_F(LogMessageSeq, AFailedGrowthLeavesTheSequenceAsItWas) {
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_length(&sequence_, 1));
    // An element that cannot be copied: its text is longer than the bound.
    DDS_Char *const own = at(0).category;
    const std::string too_long(600, 'x');
    at(0).category = DDS_String_dup(too_long.c_str());
    EXPECT_FALSE(VUR_DL_LogMessageSeq_set_maximum(&sequence_, 3));
    EXPECT_TRUE(log_.saw("copy contiguous buffer"));
    EXPECT_EQ(VUR_DL_LogMessageSeq_get_maximum(&sequence_), 1U);
    EXPECT_STREQ(at(0).category, too_long.c_str());
    DDS_String_free(at(0).category);
    at(0).category = own;
}

TEST_F(LogMessageSeq, ElementParametersAreForEmptySequences) {
    DDS_SeqElementTypeAllocationParams_t params =
        *VUR_DL_LogMessageSeq_get_element_allocation_params(&sequence_);
    EXPECT_TRUE(params.allocate_memory);
    params.allocate_memory = DDS_BOOLEAN_FALSE;
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_element_allocation_params(&sequence_, &params));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_set_maximum(&sequence_, 1));
    EXPECT_TRUE(log_.saw("allocate_memory must be true"));
    params.allocate_memory = DDS_BOOLEAN_TRUE;
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_element_allocation_params(&sequence_, &params));
    ASSERT_TRUE(VUR_DL_LogMessageSeq_set_maximum(&sequence_, 1));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_set_element_allocation_params(&sequence_, &params));
    EXPECT_TRUE(log_.saw(
        "Member allocation parameters can be configured only when the maximum size of the sequence "
        "is 0"));
    EXPECT_FALSE(VUR_DL_LogMessageSeq_set_element_pointers_allocation(&sequence_, 0));
    EXPECT_TRUE(log_.saw(
        "Pointers allocation policy can be configured only when the maximum size of the sequence "
        "is 0"));
}

}  // namespace
