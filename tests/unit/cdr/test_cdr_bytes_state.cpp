// SPDX-License-Identifier: Apache-2.0
// State, byte for byte. The clauses are those of DDS-XTypes 1.3.
#include <gtest/gtest.h>
#include <vur_dl/distlog.h>

#include "support/cdr/byte_lines.h"
#include "support/types/test_types.h"

namespace {

using support::ByteLines;
using support::expect_lines;

class StateBytes : public testing::Test {
  protected:
    StateBytes() : state_(VUR_DL_ADMIN_State_get_typecode()) {
        state_->hostAndAppId = {-3, 0x04030201};
        state_->administrationDomainId = 7;
        state_->state = VUR_DL_STATE_OPERATIONAL;
        support::set_text(state_->applicationKind, "rig 1");
        state_->filterLevel = 600;
        for (int i = 0; i < 5; ++i) {
            state_->vurLoggerVerbosities[i] = {static_cast<VUR_DL_ADMIN_VURLoggerCategory>(i),
                                               static_cast<VUR_DL_ADMIN_VURLoggerVerbosity>(5 - i)};
        }
        state_->vurLoggerPrintFormat = VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL;
    }
    void expect(DDS_DataRepresentationId_t representation, const ByteLines &lines) {
        expect_lines(VUR_DL_ADMIN_State_get_typecode(), state_.get(), representation, lines);
    }

    support::Record<VUR_DL_ADMIN_State> state_;
};

TEST_F(StateBytes, Xcdr1) {
    expect(DDS_XCDR_DATA_REPRESENTATION,
           {
               {"00 03 00 00", "00 02 00 00", "7.6.3.1.2: PL_CDR, nothing to fill up"},
               {"00 40 08 00", "40 00 00 08", "7.4.1.2: id 0, FLAG_M for a key; 8 bytes"},
               {"fd ff ff ff", "ff ff ff fd", "rtps_host_id"},
               {"01 02 03 04", "04 03 02 01", "rtps_app_id"},
               {"01 00 04 00", "00 01 00 04", "7.4.1.2: id 1; 4 bytes"},
               {"07 00 00 00", "00 00 00 07", "administrationDomainId"},
               {"02 00 04 00", "00 02 00 04", "7.4.1.2: id 2; 4 bytes"},
               {"01 00 00 00", "00 00 00 01", "state; 7.4.1.1: an enumeration is a long"},
               {"03 00 0a 00", "00 03 00 0a", "7.4.1.2: id 3; 10 bytes"},
               {"06 00 00 00", "00 00 00 06", "applicationKind: its length"},
               {"72 69 67 20 31 00", "72 69 67 20 31 00", "'rig 1'"},
               {"00 00", "00 00", "7.4.1.2: a header is aligned to 4"},
               {"04 00 04 00", "00 04 00 04", "7.4.1.2: id 4; 4 bytes"},
               {"58 02 00 00", "00 00 02 58", "filterLevel"},
               {"05 00 28 00", "00 05 00 28", "7.4.1.2: id 5; 5 elements of 8 bytes"},
               {"00 00 00 00 05 00 00 00", "00 00 00 00 00 00 00 05",
                "7.4.1.1: an array is its elements, without a count"},
               {"01 00 00 00 04 00 00 00", "00 00 00 01 00 00 00 04", "element 1"},
               {"02 00 00 00 03 00 00 00", "00 00 00 02 00 00 00 03", "element 2"},
               {"03 00 00 00 02 00 00 00", "00 00 00 03 00 00 00 02", "element 3"},
               {"04 00 00 00 01 00 00 00", "00 00 00 04 00 00 00 01", "element 4"},
               {"06 00 04 00", "00 06 00 04", "7.4.1.2: id 6; 4 bytes"},
               {"06 00 00 00", "00 00 00 06", "vurLoggerPrintFormat"},
               {"02 3f 00 00", "3f 02 00 00", "7.4.1.2: PID_LIST_END, length 0"},
           });
}

TEST_F(StateBytes, Xcdr2) {
    expect(DDS_XCDR2_DATA_REPRESENTATION,
           {
               {"00 0b 00 00", "00 0a 00 00", "7.6.3.1.2: PL_CDR2, nothing to fill up"},
               {"88 00 00 00", "00 00 00 88", "7.4.3.5: DHEADER, 136 bytes follow"},
               {"00 00 00 c0", "c0 00 00 00", "7.4.3.4.2: EMHEADER1, M, LC 4, id 0"},
               {"0c 00 00 00", "00 00 00 0c", "7.4.3.4.2: NEXTINT, 12 bytes"},
               {"08 00 00 00", "00 00 00 08", "7.4.3.5: DHEADER of an appendable structure"},
               {"fd ff ff ff", "ff ff ff fd", "rtps_host_id"},
               {"01 02 03 04", "04 03 02 01", "rtps_app_id"},
               {"01 00 00 20", "20 00 00 01", "7.4.3.4.2: LC 2 (4 bytes), id 1"},
               {"07 00 00 00", "00 00 00 07", "administrationDomainId"},
               {"02 00 00 20", "20 00 00 02", "7.4.3.4.2: LC 2, id 2"},
               {"01 00 00 00", "00 00 00 01", "state"},
               {"03 00 00 50", "50 00 00 03", "7.4.3.4.2: LC 5, the length is NEXTINT, id 3"},
               {"06 00 00 00", "00 00 00 06", "applicationKind: its length"},
               {"72 69 67 20 31 00", "72 69 67 20 31 00", "'rig 1'"},
               {"00 00", "00 00", "7.4.3.4.2: EMHEADER1 is aligned to 4"},
               {"04 00 00 20", "20 00 00 04", "7.4.3.4.2: LC 2, id 4"},
               {"58 02 00 00", "00 00 02 58", "filterLevel"},
               {"05 00 00 50", "50 00 00 05", "7.4.3.4.2: LC 5, the DHEADER is NEXTINT, id 5"},
               {"3c 00 00 00", "00 00 00 3c", "7.4.3.5: DHEADER of an array of structures"},
               {"08 00 00 00", "00 00 00 08", "7.4.3.5: DHEADER of each element"},
               {"00 00 00 00 05 00 00 00", "00 00 00 00 00 00 00 05", "element 0"},
               {"08 00 00 00", "00 00 00 08", "DHEADER"},
               {"01 00 00 00 04 00 00 00", "00 00 00 01 00 00 00 04", "element 1"},
               {"08 00 00 00", "00 00 00 08", "DHEADER"},
               {"02 00 00 00 03 00 00 00", "00 00 00 02 00 00 00 03", "element 2"},
               {"08 00 00 00", "00 00 00 08", "DHEADER"},
               {"03 00 00 00 02 00 00 00", "00 00 00 03 00 00 00 02", "element 3"},
               {"08 00 00 00", "00 00 00 08", "DHEADER"},
               {"04 00 00 00 01 00 00 00", "00 00 00 04 00 00 00 01", "element 4"},
               {"06 00 00 20", "20 00 00 06", "7.4.3.4.2: LC 2, id 6"},
               {"06 00 00 00", "00 00 00 06", "vurLoggerPrintFormat"},
           });
}

}  // namespace
