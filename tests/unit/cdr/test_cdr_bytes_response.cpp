// SPDX-License-Identifier: Apache-2.0
// CommandResponse, byte for byte, with every result. The clauses are those of DDS-XTypes 1.3.
#include <gtest/gtest.h>
#include <vur_dl/distlog.h>

#include "support/cdr/byte_lines.h"
#include "support/types/test_types.h"

namespace {

using support::ByteLine;
using support::ByteLines;
using support::expect_lines;
using support::joined;

struct Case {
    VUR_DL_ADMIN_CommandResult result;
    ByteLine line;
};

class ResponseBytes : public testing::TestWithParam<Case> {
  protected:
    ResponseBytes() : response_(VUR_DL_ADMIN_CommandResponse_get_typecode()) {
        response_->hostAndAppId = {1, 2};
        response_->originatorHostAndAppId = {3, -4};
        response_->invocation = 0x05060708;
        response_->commandResult = GetParam().result;
        support::set_text(response_->message, "ok");
    }
    void expect(DDS_DataRepresentationId_t representation, const ByteLines &lines) {
        expect_lines(VUR_DL_ADMIN_CommandResponse_get_typecode(), response_.get(), representation,
                     lines);
    }

    support::Record<VUR_DL_ADMIN_CommandResponse> response_;
};

TEST_P(ResponseBytes, Xcdr1) {
    expect(DDS_XCDR_DATA_REPRESENTATION,
           joined({{
                       {"00 03 00 00", "00 02 00 00", "7.6.3.1.2: PL_CDR, nothing to fill up"},
                       {"00 40 08 00", "40 00 00 08", "7.4.1.2: id 0, FLAG_M for a key; 8 bytes"},
                       {"01 00 00 00 02 00 00 00", "00 00 00 01 00 00 00 02", "hostAndAppId"},
                       // Its members are keys of their own type, but it is not a key here.
                       {"01 00 08 00", "00 01 00 08", "7.4.1.2: id 1, no key; 8 bytes"},
                       {"03 00 00 00 fc ff ff ff", "00 00 00 03 ff ff ff fc", "originator"},
                       {"02 00 04 00", "00 02 00 04", "7.4.1.2: id 2; 4 bytes"},
                       {"08 07 06 05", "05 06 07 08", "invocation"},
                       {"03 00 04 00", "00 03 00 04", "7.4.1.2: id 3; 4 bytes"},
                   },
                   {GetParam().line},
                   {
                       {"04 00 07 00", "00 04 00 07", "7.4.1.2: id 4; 7 bytes"},
                       {"03 00 00 00", "00 00 00 03", "message: its length"},
                       {"6f 6b 00", "6f 6b 00", "'ok'"},
                       {"00", "00", "7.4.1.2: a header is aligned to 4"},
                       {"02 3f 00 00", "3f 02 00 00", "7.4.1.2: PID_LIST_END, length 0"},
                   }}));
}

TEST_P(ResponseBytes, Xcdr2) {
    expect(DDS_XCDR2_DATA_REPRESENTATION,
           joined({{
                       {"00 0b 00 01", "00 0a 00 01", "7.6.3.1.2: PL_CDR2, a byte to fill up"},
                       {"43 00 00 00", "00 00 00 43", "7.4.3.5: DHEADER, 67 bytes follow"},
                       {"00 00 00 c0", "c0 00 00 00", "7.4.3.4.2: EMHEADER1, M, LC 4, id 0"},
                       {"0c 00 00 00", "00 00 00 0c", "7.4.3.4.2: NEXTINT, 12 bytes"},
                       {"08 00 00 00", "00 00 00 08", "7.4.3.5: DHEADER"},
                       {"01 00 00 00 02 00 00 00", "00 00 00 01 00 00 00 02", "hostAndAppId"},
                       {"01 00 00 40", "40 00 00 01", "7.4.3.4.2: LC 4, id 1"},
                       {"0c 00 00 00", "00 00 00 0c", "7.4.3.4.2: NEXTINT, 12 bytes"},
                       {"08 00 00 00", "00 00 00 08", "7.4.3.5: DHEADER"},
                       {"03 00 00 00 fc ff ff ff", "00 00 00 03 ff ff ff fc", "originator"},
                       {"02 00 00 20", "20 00 00 02", "7.4.3.4.2: LC 2 (4 bytes), id 2"},
                       {"08 07 06 05", "05 06 07 08", "invocation"},
                       {"03 00 00 20", "20 00 00 03", "7.4.3.4.2: LC 2, id 3"},
                   },
                   {GetParam().line},
                   {
                       {"04 00 00 50", "50 00 00 04", "7.4.3.4.2: LC 5, id 4"},
                       {"03 00 00 00", "00 00 00 03", "message: its length"},
                       {"6f 6b 00", "6f 6b 00", "'ok'; nothing is aligned behind it"},
                   }}));
}

INSTANTIATE_TEST_SUITE_P(
    Results, ResponseBytes,
    testing::Values(Case{VUR_DL_COMMAND_RESULT_OK, {"00 00 00 00", "00 00 00 00", "OK"}},
                    Case{VUR_DL_COMMAND_RESULT_NOT_SUPPORTED,
                         {"01 00 00 00", "00 00 00 01", "NOT_SUPPORTED"}},
                    Case{VUR_DL_COMMAND_RESULT_ERROR, {"02 00 00 00", "00 00 00 02", "ERROR"}},
                    Case{static_cast<VUR_DL_ADMIN_CommandResult>(77),
                         {"4d 00 00 00", "00 00 00 4d", "a result that is not known here"}}));

}  // namespace
