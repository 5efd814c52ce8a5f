// SPDX-License-Identifier: Apache-2.0
// CommandRequest and Command, byte for byte, with every branch. The clauses are those of DDS-XTypes
// 1.3.
#include <gtest/gtest.h>
#include <vur_dl/distlog.h>

#include "support/cdr/byte_lines.h"
#include "support/types/test_types.h"

namespace {

using support::ByteLines;
using support::expect_lines;
using support::joined;

// A command, and what it is on the wire without its frame: the lines between the union's header and
// its end, and how many bytes they are.
struct Case {
    const char *name;
    DDS_Enum kind;
    unsigned elements;  // of the sequence
    ByteLines xcdr1;
    unsigned char size1;
    ByteLines xcdr2;
    unsigned char size2;
};

const ByteLines kOneElement1 = {{"03 00 00 00 05 00 00 00", "00 00 00 03 00 00 00 05",
                                 "7.4.1.1: category and verbosity, plain"}};
const ByteLines kOneElement2 = {
    {"08 00 00 00", "00 00 00 08", "7.4.3.5: DHEADER of an appendable structure"},
    {"03 00 00 00 05 00 00 00", "00 00 00 03 00 00 00 05", "category and verbosity"}};

const std::vector<Case> &cases() {
    static const std::vector<Case> all = {
        {"FilterLevel",
         VUR_DL_SET_LOG_LEVEL,
         0,
         {
             {"00 40 04 00", "40 00 00 04", "7.4.1.2: the discriminator is member 0, FLAG_M"},
             {"00 00 00 00", "00 00 00 00", "VUR_DL_SET_LOG_LEVEL"},
             {"01 00 04 00", "00 01 00 04", "7.4.1.2: id 1; 4 bytes"},
             {"20 03 00 00", "00 00 03 20", "filterLevel"},
         },
         16,
         {
             {"00 00 00 a0", "a0 00 00 00", "7.4.3.4.2: M, LC 2, the discriminator is member 0"},
             {"00 00 00 00", "00 00 00 00", "VUR_DL_SET_LOG_LEVEL"},
             {"01 00 00 20", "20 00 00 01", "7.4.3.4.2: LC 2, id 1"},
             {"20 03 00 00", "00 00 03 20", "filterLevel"},
         },
         16},
        {"NoCategory",
         VUR_DL_SET_VUR_LOGGER_LEVEL,
         0,
         {
             {"00 40 04 00", "40 00 00 04", "7.4.1.2: the discriminator"},
             {"01 00 00 00", "00 00 00 01", "VUR_DL_SET_VUR_LOGGER_LEVEL"},
             {"02 00 04 00", "00 02 00 04", "7.4.1.2: id 2; 4 bytes"},
             {"00 00 00 00", "00 00 00 00", "7.4.1.1: a sequence is its length, and no elements"},
         },
         16,
         {
             {"00 00 00 a0", "a0 00 00 00", "7.4.3.4.2: the discriminator"},
             {"01 00 00 00", "00 00 00 01", "VUR_DL_SET_VUR_LOGGER_LEVEL"},
             {"02 00 00 50", "50 00 00 02", "7.4.3.4.2: LC 5, the DHEADER is NEXTINT, id 2"},
             {"04 00 00 00", "00 00 00 04", "7.4.3.5: DHEADER of a sequence of structures"},
             {"00 00 00 00", "00 00 00 00", "no elements"},
         },
         20},
        {"FiveCategories", VUR_DL_SET_VUR_LOGGER_LEVEL, 5,
         joined({{
                     {"00 40 04 00", "40 00 00 04", "7.4.1.2: the discriminator"},
                     {"01 00 00 00", "00 00 00 01", "VUR_DL_SET_VUR_LOGGER_LEVEL"},
                     {"02 00 2c 00", "00 02 00 2c", "7.4.1.2: id 2; 44 bytes"},
                     {"05 00 00 00", "00 00 00 05", "5 elements"},
                 },
                 kOneElement1,
                 kOneElement1,
                 kOneElement1,
                 kOneElement1,
                 kOneElement1}),
         56,
         joined({{
                     {"00 00 00 a0", "a0 00 00 00", "7.4.3.4.2: the discriminator"},
                     {"01 00 00 00", "00 00 00 01", "VUR_DL_SET_VUR_LOGGER_LEVEL"},
                     {"02 00 00 50", "50 00 00 02", "7.4.3.4.2: LC 5, id 2"},
                     {"40 00 00 00", "00 00 00 40", "7.4.3.5: DHEADER of the sequence, 64 bytes"},
                     {"05 00 00 00", "00 00 00 05", "5 elements"},
                 },
                 kOneElement2,
                 kOneElement2,
                 kOneElement2,
                 kOneElement2,
                 kOneElement2}),
         80},
        {"PrintFormat",
         VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT,
         0,
         {
             {"00 40 04 00", "40 00 00 04", "7.4.1.2: the discriminator"},
             {"02 00 00 00", "00 00 00 02", "VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT"},
             {"03 00 04 00", "00 03 00 04", "7.4.1.2: id 3; 4 bytes"},
             {"04 00 00 00", "00 00 00 04", "printFormat"},
         },
         16,
         {
             {"00 00 00 a0", "a0 00 00 00", "7.4.3.4.2: the discriminator"},
             {"02 00 00 00", "00 00 00 02", "VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT"},
             {"03 00 00 20", "20 00 00 03", "7.4.3.4.2: LC 2, id 3"},
             {"04 00 00 00", "00 00 00 04", "printFormat"},
         },
         16},
        {"Unknown",
         17,
         0,
         {
             {"00 40 04 00", "40 00 00 04", "7.4.1.2: the discriminator"},
             {"11 00 00 00", "00 00 00 11", "a kind that selects no branch"},
         },
         8,
         {
             {"00 00 00 a0", "a0 00 00 00", "7.4.3.4.2: the discriminator"},
             {"11 00 00 00", "00 00 00 11", "a kind that selects no branch"},
         },
         8},
    };
    return all;
}

void fill(VUR_DL_ADMIN_Command *command, const Case &c) {
    command->_d = static_cast<VUR_DL_ADMIN_CommandKind>(c.kind);
    command->_u.filterLevel = 800;
    command->_u.printFormat = VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG;
    auto *const sequence = &command->_u.categoryAndVerbosity;
    ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(
        sequence, static_cast<DDS_Long>(c.elements)));
    for (unsigned i = 0; i < c.elements; ++i) {
        sequence->_contiguous_buffer[i] = {VUR_DL_KOLT_CONFIG_LOG_CATEGORY_ENTITIES,
                                           VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL};
    }
}

// A line that holds a number of 32 bits.
class NumberLine {
  public:
    NumberLine(unsigned char number, const char *why) : why_(why) {
        const char digits[] = "0123456789abcdef";
        const char text[] = {digits[number >> 4], digits[number & 15], '\0'};
        little_ = std::string(text) + "000000";
        big_ = std::string("000000") + text;
    }
    support::ByteLine line() const { return {little_.c_str(), big_.c_str(), why_}; }

  private:
    std::string little_, big_;
    const char *why_;
};

class RequestBytes : public testing::TestWithParam<Case> {};

TEST_P(RequestBytes, CommandInXcdr1) {
    support::Record<VUR_DL_ADMIN_Command> command(VUR_DL_ADMIN_Command_get_typecode());
    fill(command.get(), GetParam());
    expect_lines(VUR_DL_ADMIN_Command_get_typecode(), command.get(), DDS_XCDR_DATA_REPRESENTATION,
                 joined({{{"00 03 00 00", "00 02 00 00", "7.6.3.1.2: PL_CDR"}},
                         GetParam().xcdr1,
                         {{"02 3f 00 00", "3f 02 00 00", "7.4.1.2: PID_LIST_END"}}}));
}

TEST_P(RequestBytes, CommandInXcdr2) {
    support::Record<VUR_DL_ADMIN_Command> command(VUR_DL_ADMIN_Command_get_typecode());
    fill(command.get(), GetParam());
    const NumberLine size(GetParam().size2, "7.4.3.5: DHEADER");
    expect_lines(VUR_DL_ADMIN_Command_get_typecode(), command.get(), DDS_XCDR2_DATA_REPRESENTATION,
                 joined({{{"00 0b 00 00", "00 0a 00 00", "7.6.3.1.2: PL_CDR2"}, size.line()},
                         GetParam().xcdr2}));
}

class RequestOf {
  public:
    explicit RequestOf(const Case &c) : record_(VUR_DL_ADMIN_CommandRequest_get_typecode()) {
        record_->targetHostAndAppId = {1, -2};
        record_->originatorHostAndAppId = {3, 4};
        record_->invocation = 0x05060708;
        fill(&record_->command, c);
    }
    const void *get() { return record_.get(); }

  private:
    support::Record<VUR_DL_ADMIN_CommandRequest> record_;
};

TEST_P(RequestBytes, Xcdr1) {
    RequestOf request(GetParam());
    const unsigned size = GetParam().size1 + 4U;  // with the end of its list
    const char digits[] = "0123456789abcdef";
    const char text[] = {digits[size >> 4], digits[size & 15], '\0'};
    const std::string little = std::string("0300") + text + "00";
    const std::string big = std::string("000300") + text;
    expect_lines(
        VUR_DL_ADMIN_CommandRequest_get_typecode(), request.get(), DDS_XCDR_DATA_REPRESENTATION,
        joined({{
                    {"00 03 00 00", "00 02 00 00", "7.6.3.1.2: PL_CDR, nothing to fill up"},
                    {"00 00 08 00", "00 00 00 08", "7.4.1.2: id 0, no key; 8 bytes"},
                    {"01 00 00 00 fe ff ff ff", "00 00 00 01 ff ff ff fe", "target"},
                    {"01 00 08 00", "00 01 00 08", "7.4.1.2: id 1; 8 bytes"},
                    {"03 00 00 00 04 00 00 00", "00 00 00 03 00 00 00 04", "originator"},
                    {"02 00 04 00", "00 02 00 04", "7.4.1.2: id 2; 4 bytes"},
                    {"08 07 06 05", "05 06 07 08", "invocation"},
                    {little.c_str(), big.c_str(), "7.4.1.2: id 3; the union with its own list"},
                },
                GetParam().xcdr1,
                {
                    {"02 3f 00 00", "3f 02 00 00", "7.4.1.2: PID_LIST_END of the union"},
                    {"02 3f 00 00", "3f 02 00 00", "7.4.1.2: PID_LIST_END"},
                }}));
}

TEST_P(RequestBytes, Xcdr2) {
    RequestOf request(GetParam());
    const unsigned char size = GetParam().size2;
    const NumberLine whole(static_cast<unsigned char>(20 + 20 + 8 + 12 + size), "7.4.3.5: DHEADER");
    const NumberLine member(static_cast<unsigned char>(4 + size), "7.4.3.4.2: NEXTINT");
    const NumberLine inner(size, "7.4.3.5: DHEADER of the union");
    expect_lines(
        VUR_DL_ADMIN_CommandRequest_get_typecode(), request.get(), DDS_XCDR2_DATA_REPRESENTATION,
        joined({{
                    {"00 0b 00 00", "00 0a 00 00", "7.6.3.1.2: PL_CDR2, nothing to fill up"},
                    whole.line(),
                    {"00 00 00 40", "40 00 00 00", "7.4.3.4.2: LC 4, id 0"},
                    {"0c 00 00 00", "00 00 00 0c", "7.4.3.4.2: NEXTINT"},
                    {"08 00 00 00", "00 00 00 08", "7.4.3.5: DHEADER"},
                    {"01 00 00 00 fe ff ff ff", "00 00 00 01 ff ff ff fe", "target"},
                    {"01 00 00 40", "40 00 00 01", "7.4.3.4.2: LC 4, id 1"},
                    {"0c 00 00 00", "00 00 00 0c", "7.4.3.4.2: NEXTINT"},
                    {"08 00 00 00", "00 00 00 08", "7.4.3.5: DHEADER"},
                    {"03 00 00 00 04 00 00 00", "00 00 00 03 00 00 00 04", "originator"},
                    {"02 00 00 20", "20 00 00 02", "7.4.3.4.2: LC 2, id 2"},
                    {"08 07 06 05", "05 06 07 08", "invocation"},
                    {"03 00 00 40", "40 00 00 03", "7.4.3.4.2: LC 4, id 3"},
                    member.line(),
                    inner.line(),
                },
                GetParam().xcdr2}));
}

INSTANTIATE_TEST_SUITE_P(Commands, RequestBytes, testing::ValuesIn(cases()),
                         [](const auto &one) { return one.param.name; });

}  // namespace
