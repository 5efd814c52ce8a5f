// SPDX-License-Identifier: Apache-2.0
// Type support of messages: bytes and text.

#include <gtest/gtest.h>
#include <vur_dl/distlogSupport.h>

#include <array>
#include <cstring>
#include <string>

namespace {

TEST(DistlogTypeSupport, BytesAndText) {
    VUR_DL_LogMessage *const message = VUR_DL_LogMessageTypeSupport_create_data_ex(1);
    VUR_DL_LogMessage *const read = VUR_DL_LogMessageTypeSupport_create_data();
    ASSERT_NE(message, nullptr);
    ASSERT_NE(read, nullptr);
    std::strcpy(message->message, "bytes");
    std::array<char, 512> buffer = {};
    DDS_UnsignedLong length = buffer.size();
    ASSERT_TRUE(
        VUR_DL_LogMessageTypeSupport_serialize_data_to_cdr_buffer(buffer.data(), &length, message));
    ASSERT_TRUE(
        VUR_DL_LogMessageTypeSupport_deserialize_data_from_cdr_buffer(read, buffer.data(), length));
    EXPECT_STREQ(read->message, "bytes");
    length = buffer.size();
    ASSERT_TRUE(VUR_DL_LogMessageTypeSupport_serialize_data_to_cdr_buffer_ex(
        buffer.data(), &length, message, DDS_XCDR2_DATA_REPRESENTATION));
    EXPECT_EQ(buffer[1], KOLT_ENCAPSULATION_PL_CDR2_LE);
    const DDS_PrintFormatProperty property = {DDS_XML_PRINT_FORMAT, 0, 0, 1};
    length = buffer.size();
    ASSERT_EQ(
        VUR_DL_LogMessageTypeSupport_data_to_string(message, buffer.data(), &length, &property),
        DDS_RETCODE_OK);
    EXPECT_EQ(std::string(buffer.data()).rfind("<LogMessage><hostAndAppId>", 0), 0U);
    testing::internal::CaptureStdout();
    VUR_DL_LogMessageTypeSupport_print_data(message);
    EXPECT_EQ(testing::internal::GetCapturedStdout().front(), '\n') << "no description";
    EXPECT_EQ(VUR_DL_LogMessageTypeSupport_delete_data_ex(read, 1), DDS_RETCODE_OK);
    EXPECT_EQ(VUR_DL_LogMessageTypeSupport_delete_data(message), DDS_RETCODE_OK);
}

}  // namespace
