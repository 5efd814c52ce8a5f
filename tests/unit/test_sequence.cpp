// Typed sequences: state, growth, loans, copies, and what is reported of failures.
#include <gtest/gtest.h>
#include <kolt/config_logger.h>
#include <kolt/sequence_define.h>

#include <cstring>
#include <string>
#include <vector>

#include "support/test_types.h"

// An allocation that can't succeed is a result here, under the sanitizers as well.
#define SANITIZER_OPTIONS(function)                                                 \
    extern "C" __attribute__((visibility("default"), used)) const char *function(); \
    extern "C" const char *function() {                                             \
        return "allocator_may_return_null=1";                                       \
    }
SANITIZER_OPTIONS(__asan_default_options)
SANITIZER_OPTIONS(__tsan_default_options)

// Not all of the family is used here, so that it needs a linkage.
namespace test_sequence {

// An element that owns a string and can be told to fail.
struct Named {
    DDS_Long number;
    DDS_Char *name;
};
KOLT_SEQUENCE_DECLARE(NamedSeq, Named, );

int g_live = 0;
int g_fail_initialize_after = -1;
bool g_fail_copy = false;

DDS_Boolean initializeNamed(void *element, const DDS_TypeAllocationParams_t *params) {
    auto *const named = static_cast<Named *>(element);
    if (g_fail_initialize_after == 0) return DDS_BOOLEAN_FALSE;
    if (g_fail_initialize_after > 0) --g_fail_initialize_after;
    named->number = 0;
    named->name = params->allocate_pointers ? DDS_String_alloc(15) : nullptr;
    ++g_live;
    return DDS_BOOLEAN_TRUE;
}
void finalizeNamed(void *element, const DDS_TypeDeallocationParams_t *) {
    auto *const named = static_cast<Named *>(element);
    if (named->name != nullptr) --g_live;
    DDS_String_free(named->name);
    named->name = nullptr;
}
DDS_Boolean copyNamed(void *destination, const void *source) {
    auto *const to = static_cast<Named *>(destination);
    const auto *const from = static_cast<const Named *>(source);
    if (g_fail_copy) return DDS_BOOLEAN_FALSE;
    to->number = from->number;
    return DDS_String_replace(&to->name, from->name) != nullptr;
}
constexpr KOLT_SequenceElementType kNamed = {"NamedSeq", sizeof(Named), initializeNamed,
                                             finalizeNamed, copyNamed};
KOLT_SEQUENCE_DEFINE(NamedSeq, Named, &kNamed);

}  // namespace test_sequence

namespace {

using namespace test_sequence;  // NOLINT

// What the middleware logger writes while the object lives.
class LogCapture {
  public:
    LogCapture() {
        device_.device_data = this;
        device_.write = [](KOLT_Config_LoggerDevice *device,
                           const KOLT_Config_LogMessage *message) {
            static_cast<LogCapture *>(device->device_data)->text_ += message->text;
        };
        device_.close = nullptr;
        KOLT_Config_Logger_set_output_device(KOLT_Config_Logger_get_instance(), &device_);
    }
    ~LogCapture() {
        KOLT_Config_Logger_set_output_device(KOLT_Config_Logger_get_instance(), nullptr);
    }
    // True when `text` was logged since the last call.
    bool saw(const std::string &text) {
        const bool found = text_.find(text) != std::string::npos;
        if (!found) ADD_FAILURE() << "\"" << text << "\" is not in \"" << text_ << "\"";
        text_.clear();
        return found;
    }
    bool silent() const { return text_.empty(); }

  private:
    KOLT_Config_LoggerDevice device_{};
    std::string text_;
};

class SequenceTest : public ::testing::Test {
  protected:
    void SetUp() override {
        g_live = 0;
        g_fail_initialize_after = -1;
        g_fail_copy = false;
    }
    LogCapture log_;
};

TEST_F(SequenceTest, ZeroBytesAreAnEmptySequence) {
    NamedSeq seq{};
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 0U);
    EXPECT_EQ(seq._sequence_init, KOLT_SEQUENCE_MAGIC);
    EXPECT_EQ(NamedSeq_get_length(&seq), 0U);
    EXPECT_TRUE(NamedSeq_set_maximum(&seq, 2));
    EXPECT_TRUE(NamedSeq_finalize(&seq));
    EXPECT_TRUE(log_.silent());
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

TEST_F(SequenceTest, ShrinkingTheMaximumKeepsTheFirst) {
    NamedSeq seq{};
    ASSERT_TRUE(NamedSeq_set_length(&seq, 4));
    for (DDS_Long i = 0; i < 4; ++i) NamedSeq_get_reference(&seq, i)->number = i;
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
    EXPECT_FALSE(NamedSeq_set_absolute_maximum(&seq, 1));
    EXPECT_TRUE(log_.saw("new absolute max cannot be smaller than max"));
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
}

TEST_F(SequenceTest, EnsureLengthGrowsToTheMaximumOnlyWhenNeeded) {
    NamedSeq seq{};
    EXPECT_TRUE(NamedSeq_ensure_length(&seq, 2, 10));
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 10U);
    EXPECT_EQ(NamedSeq_get_length(&seq), 2U);
    EXPECT_TRUE(NamedSeq_ensure_length(&seq, 9, 100));
    EXPECT_EQ(NamedSeq_get_maximum(&seq), 10U);
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

TEST_F(SequenceTest, ContiguousLoan) {
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

TEST_F(SequenceTest, LoanChecksInTheirOrder) {
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

TEST_F(SequenceTest, DiscontiguousLoan) {
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

TEST_F(SequenceTest, CopyTakesTheMaximumOfTheSource) {
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

TEST_F(SequenceTest, CopyFromAndToLoans) {
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

TEST_F(SequenceTest, Arrays) {
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

TEST(Strings, ReplaceDupFree) {
    DDS_Char *string = nullptr;
    EXPECT_STREQ(DDS_String_replace(&string, "abc"), "abc");
    EXPECT_STREQ(DDS_String_replace(&string, string + 1), "bc");
    EXPECT_EQ(DDS_String_replace(&string, nullptr), nullptr);
    EXPECT_EQ(string, nullptr);
    EXPECT_EQ(DDS_String_replace(nullptr, "abc"), nullptr);
    EXPECT_EQ(DDS_String_dup(nullptr), nullptr);
    EXPECT_EQ(DDS_String_alloc(SIZE_MAX), nullptr);
    DDS_Char *const buffer = DDS_String_alloc(3);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(buffer[i], '\0');
    DDS_String_free(buffer);
    DDS_String_free(nullptr);
}

TEST(Values, CookiesTimesNames) {
    DDS_Cookie_t cookie;
    DDS_Cookie_t_initialize(&cookie);
    EXPECT_EQ(DDS_Cookie_to_pointer(&cookie), nullptr);
    int target = 0;
    EXPECT_TRUE(DDS_Cookie_from_pointer(&cookie, &target));
    DDS_Cookie_t copy;
    EXPECT_TRUE(DDS_Cookie_t_copy(&copy, &cookie));
    EXPECT_TRUE(DDS_Cookie_equals(&copy, &cookie));
    EXPECT_EQ(DDS_Cookie_to_pointer(&copy), &target);
    DDS_Cookie_t_finalize(&copy);
    DDS_Cookie_t_finalize(&copy);
    EXPECT_FALSE(DDS_Cookie_equals(&copy, &cookie));
    EXPECT_FALSE(DDS_Cookie_equals(nullptr, &cookie));
    EXPECT_FALSE(DDS_Cookie_t_copy(nullptr, &cookie));
    EXPECT_FALSE(DDS_Cookie_from_pointer(nullptr, &target));
    EXPECT_STREQ(KOLT_ReturnCode_to_string(DDS_RETCODE_TIMEOUT), "DDS_RETCODE_TIMEOUT");
    EXPECT_STREQ(KOLT_ReturnCode_to_string(DDS_RETCODE_ILLEGAL_OPERATION),
                 "DDS_RETCODE_ILLEGAL_OPERATION");
    EXPECT_TRUE(DDS_Duration_is_infinite(&DDS_DURATION_INFINITE));
    EXPECT_FALSE(DDS_Duration_is_infinite(&DDS_DURATION_ZERO));
    EXPECT_FALSE(DDS_Duration_is_infinite(nullptr));
    EXPECT_EQ(DDS_TIME_INVALID.sec, -1);
    EXPECT_FALSE(DDS_InstanceHandle_is_valid(DDS_HANDLE_NIL));
    EXPECT_TRUE(DDS_InstanceHandle_is_valid(1));
}

}  // namespace
