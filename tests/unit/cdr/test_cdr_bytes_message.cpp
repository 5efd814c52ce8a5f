// SPDX-License-Identifier: Apache-2.0
// LogMessage, byte for byte. The clauses are those of DDS-XTypes 1.3.
#include <gtest/gtest.h>
#include <vur_dl/distlog.h>

#include "support/cdr/byte_lines.h"
#include "support/types/test_types.h"

namespace {

using support::ByteLines;
using support::expect_lines;

class MessageBytes : public testing::Test {
  protected:
    MessageBytes() : message_(VUR_DL_LogMessage_get_typecode()) {}

    void expect(DDS_DataRepresentationId_t representation, const ByteLines &lines) {
        expect_lines(VUR_DL_LogMessage_get_typecode(), message_.get(), representation, lines);
    }
    void fill() {
        message_->hostAndAppId = {0x01020304, -2};
        message_->level = 300;
        support::set_text(message_->category, "pump");
        support::set_text(message_->message, "it is hot");
        message_->messageId = 0x0102030405060708;
    }

    support::Record<VUR_DL_LogMessage> message_;
};

TEST_F(MessageBytes, Xcdr1) {
    fill();
    expect(
        DDS_XCDR_DATA_REPRESENTATION,
        {
            {"00 03 00 00", "00 02 00 00", "7.6.3.1.2: PL_CDR, nothing to fill up"},
            {"00 40 08 00", "40 00 00 08", "7.4.1.2: id 0 in 14 bits, FLAG_M for a key; 8 bytes"},
            {"04 03 02 01", "01 02 03 04", "rtps_host_id; 7.4.1.1: an appendable type is plain"},
            {"fe ff ff ff", "ff ff ff fe", "rtps_app_id"},
            {"01 40 04 00", "40 01 00 04", "7.4.1.2: id 1, FLAG_M for a key; 4 bytes"},
            {"2c 01 00 00", "00 00 01 2c", "level"},
            {"02 00 09 00", "00 02 00 09", "7.4.1.2: id 2; 9 bytes of value, padding not counted"},
            {"05 00 00 00", "00 00 00 05", "category; 7.4.1.1: characters and the NUL"},
            {"70 75 6d 70 00", "70 75 6d 70 00", "'pump'"},
            {"00 00 00", "00 00 00", "7.4.1.2: a header is aligned to 4"},
            {"03 00 0e 00", "00 03 00 0e", "7.4.1.2: id 3; 14 bytes"},
            {"0a 00 00 00", "00 00 00 0a", "message: its length"},
            {"69 74 20 69 73 20 68 6f 74 00", "69 74 20 69 73 20 68 6f 74 00", "'it is hot'"},
            {"00 00", "00 00", "7.4.1.2: a header is aligned to 4"},
            {"04 00 08 00", "00 04 00 08", "7.4.1.2: id 4; 8 bytes"},
            // Byte 60, and yet no padding.
            {"08 07 06 05 04 03 02 01", "01 02 03 04 05 06 07 08",
             "messageId; 7.4.1.2: alignment counts from behind the header"},
            {"02 3f 00 00", "3f 02 00 00", "7.4.1.2: PID_LIST_END, length 0"},
        });
}

TEST_F(MessageBytes, Xcdr2) {
    fill();
    expect(DDS_XCDR2_DATA_REPRESENTATION,
           {
               {"00 0b 00 00", "00 0a 00 00", "7.6.3.1.2: PL_CDR2, nothing to fill up"},
               {"4c 00 00 00", "00 00 00 4c", "7.4.3.5: DHEADER, 76 bytes follow"},
               {"00 00 00 c0", "c0 00 00 00", "7.4.3.4.2: EMHEADER1, M, LC 4, id 0"},
               {"0c 00 00 00", "00 00 00 0c", "7.4.3.4.2: NEXTINT, 12 bytes"},
               {"08 00 00 00", "00 00 00 08", "7.4.3.5: DHEADER of an appendable structure"},
               {"04 03 02 01", "01 02 03 04", "rtps_host_id"},
               {"fe ff ff ff", "ff ff ff fe", "rtps_app_id"},
               {"01 00 00 a0", "a0 00 00 01", "7.4.3.4.2: M, LC 2 (4 bytes), id 1"},
               {"2c 01 00 00", "00 00 01 2c", "level"},
               {"02 00 00 50", "50 00 00 02", "7.4.3.4.2: LC 5, the length is NEXTINT, id 2"},
               {"05 00 00 00", "00 00 00 05", "category: its length"},
               {"70 75 6d 70 00", "70 75 6d 70 00", "'pump'"},
               {"00 00 00", "00 00 00", "7.4.3.4.2: EMHEADER1 is aligned to 4"},
               {"03 00 00 50", "50 00 00 03", "7.4.3.4.2: LC 5, id 3"},
               {"0a 00 00 00", "00 00 00 0a", "message: its length"},
               {"69 74 20 69 73 20 68 6f 74 00", "69 74 20 69 73 20 68 6f 74 00", "'it is hot'"},
               {"00 00", "00 00", "7.4.3.4.2: EMHEADER1 is aligned to 4"},
               {"04 00 00 30", "30 00 00 04", "7.4.3.4.2: LC 3 (8 bytes), id 4"},
               {"08 07 06 05 04 03 02 01", "01 02 03 04 05 06 07 08",
                "messageId; 7.4.2: nothing is aligned to more than 4"},
           });
}

// An empty string is its NUL.
TEST_F(MessageBytes, OfAFreshMessage) {
    expect(DDS_XCDR_DATA_REPRESENTATION,
           {
               {"00 03 00 00", "00 02 00 00", "PL_CDR"},
               {"00 40 08 00", "40 00 00 08", "id 0"},
               {"00 00 00 00 00 00 00 00", "00 00 00 00 00 00 00 00", "hostAndAppId"},
               {"01 40 04 00 00 00 00 00", "40 01 00 04 00 00 00 00", "level"},
               {"02 00 05 00 01 00 00 00", "00 02 00 05 00 00 00 01", "category: 1 character"},
               {"00 00 00 00", "00 00 00 00", "its NUL, and 3 bytes to the next header"},
               {"03 00 05 00 01 00 00 00", "00 03 00 05 00 00 00 01", "message"},
               {"00 00 00 00", "00 00 00 00", "its NUL, and 3 bytes to the next header"},
               {"04 00 08 00", "00 04 00 08", "id 4"},
               {"00 00 00 00 00 00 00 00", "00 00 00 00 00 00 00 00", "messageId"},
               {"02 3f 00 00", "3f 02 00 00", "PID_LIST_END"},
           });
}

}  // namespace
