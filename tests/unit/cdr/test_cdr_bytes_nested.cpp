// SPDX-License-Identifier: Apache-2.0
// The nested types by themselves, byte for byte. The clauses are those of DDS-XTypes 1.3.
#include <gtest/gtest.h>
#include <vur_dl/distlog.h>

#include "support/cdr/byte_lines.h"
#include "support/types/test_types.h"

namespace {

using support::expect_lines;

TEST(NestedBytes, HostAndAppId) {
    const VUR_DL_HostAndAppId identity = {0x01020304, -2};
    const DDS_TypeCode *const type = VUR_DL_HostAndAppId_get_typecode();
    expect_lines(type, &identity, DDS_XCDR_DATA_REPRESENTATION,
                 {
                     {"00 01 00 00", "00 00 00 00", "7.6.3.1.2: CDR, an appendable type is plain"},
                     {"04 03 02 01", "01 02 03 04", "rtps_host_id"},
                     {"fe ff ff ff", "ff ff ff fe", "rtps_app_id"},
                 });
    expect_lines(type, &identity, DDS_XCDR2_DATA_REPRESENTATION,
                 {
                     {"00 09 00 00", "00 08 00 00", "7.6.3.1.2: D_CDR2"},
                     {"08 00 00 00", "00 00 00 08", "7.4.3.5: DHEADER"},
                     {"04 03 02 01", "01 02 03 04", "rtps_host_id"},
                     {"fe ff ff ff", "ff ff ff fe", "rtps_app_id"},
                 });
}

TEST(NestedBytes, CategoryAndVerbosity) {
    const VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity pair = {
        VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL};
    const DDS_TypeCode *const type = VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity_get_typecode();
    expect_lines(type, &pair, DDS_XCDR_DATA_REPRESENTATION,
                 {
                     {"00 01 00 00", "00 00 00 00", "7.6.3.1.2: CDR"},
                     {"04 00 00 00", "00 00 00 04", "category; 7.4.1.1: an enumeration is a long"},
                     {"05 00 00 00", "00 00 00 05", "verbosity"},
                 });
    expect_lines(type, &pair, DDS_XCDR2_DATA_REPRESENTATION,
                 {
                     {"00 09 00 00", "00 08 00 00", "7.6.3.1.2: D_CDR2"},
                     {"08 00 00 00", "00 00 00 08", "7.4.3.5: DHEADER"},
                     {"04 00 00 00", "00 00 00 04", "category"},
                     {"05 00 00 00", "00 00 00 05", "verbosity"},
                 });
}

// 7.4.1.1 and 7.4.2: four bytes without a header, whatever the extensibility says; every
// enumerator, and one that does not exist.
TEST(NestedBytes, Enumerations) {
    for (const DDS_TypeCode *type :
         {VUR_DL_ADMIN_VURLoggerVerbosity_get_typecode(),
          VUR_DL_ADMIN_VURLoggerCategory_get_typecode(),
          VUR_DL_ADMIN_VURLoggerPrintFormat_get_typecode(), VUR_DL_ADMIN_StateKind_get_typecode(),
          VUR_DL_ADMIN_CommandKind_get_typecode(), VUR_DL_ADMIN_CommandResult_get_typecode()}) {
        for (DDS_UnsignedLong i = 0; i <= DDS_TypeCode_member_count(type); ++i) {
            const auto value = static_cast<DDS_Enum>(i);
            const std::string digit = "0" + std::to_string(i);
            const std::string little = digit + "000000";
            const std::string big = "000000" + digit;
            expect_lines(type, &value, DDS_XCDR_DATA_REPRESENTATION,
                         {{"00 01 00 00", "00 00 00 00", "7.6.3.1.2: CDR"},
                          {little.c_str(), big.c_str(), "the value"}});
            expect_lines(type, &value, DDS_XCDR2_DATA_REPRESENTATION,
                         {{"00 07 00 00", "00 06 00 00", "7.6.3.1.2: CDR2"},
                          {little.c_str(), big.c_str(), "the value"}});
        }
    }
}

}  // namespace
