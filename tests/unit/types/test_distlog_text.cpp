// SPDX-License-Identifier: Apache-2.0
// The logger's types as text, in every print format and with every option of it.

#include <gtest/gtest.h>
#include <kolt/dynamic_data.h>
#include <vur_dl/distlogPlugin.h>

#include <string>
#include <vector>

#include "support/types/test_types.h"
#include "support/types/type_list.h"

namespace {

using support::set_text;

// ---- data_to_string -----------------------------------------------------------------------------

#define STRUCTURED(T)                                                     \
    struct T##Text {                                                      \
        using Value = T;                                                  \
        static constexpr auto kCode = T##_get_typecode;                   \
        static constexpr auto kToString = T##Plugin_data_to_string;       \
        static constexpr auto kPrint = T##PluginSupport_print_data;       \
        static constexpr auto kBytes = T##Plugin_serialize_to_cdr_buffer; \
    }
FOR_EACH_STRUCTURED_TYPE(STRUCTURED, SEMICOLON);
#undef STRUCTURED

void fill(VUR_DL_HostAndAppId *identity) {
    *identity = {1, -2};
}
void fill(VUR_DL_LogMessage *message) {
    fill(&message->hostAndAppId);
    message->level = 300;
    set_text(message->category, "a \"b\" <c> & d");
    set_text(message->message, "line");
    message->messageId = INT64_MIN;
}
void fill(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity *pair) {
    *pair = {VUR_DL_KOLT_CONFIG_LOG_CATEGORY_DATABASE, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL};
}
void fill(VUR_DL_ADMIN_State *state) {
    fill(&state->hostAndAppId);
    state->state = VUR_DL_STATE_SHUTTING_DOWN;
    set_text(state->applicationKind, "rig");
    state->filterLevel = 800;
    for (auto &pair : state->vurLoggerVerbosities) {
        fill(&pair);
    }
}
void fill(VUR_DL_ADMIN_Command *command) {
    command->_d = VUR_DL_SET_VUR_LOGGER_LEVEL;
    auto *const sequence = &command->_u.categoryAndVerbosity;
    ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(sequence, 2));
    for (int i = 0; i < 2; ++i) {
        fill(&sequence->_contiguous_buffer[i]);
    }
}
void fill(VUR_DL_ADMIN_CommandRequest *request) {
    fill(&request->targetHostAndAppId);
    request->invocation = 9;
    fill(&request->command);
}
void fill(VUR_DL_ADMIN_CommandResponse *response) {
    fill(&response->hostAndAppId);
    response->commandResult = VUR_DL_COMMAND_RESULT_NOT_SUPPORTED;
    set_text(response->message, "no");
}

template <typename Type>
std::string text_of(const typename Type::Value *sample, const DDS_PrintFormatProperty &property) {
    DDS_UnsignedLong size = 0;
    EXPECT_EQ(Type::kToString(sample, nullptr, &size, &property), DDS_RETCODE_OK);
    std::vector<char> text(size, '#');
    for (const DDS_UnsignedLong too_small : {DDS_UnsignedLong{0}, DDS_UnsignedLong{1}, size - 1}) {
        DDS_UnsignedLong length = too_small;
        EXPECT_EQ(Type::kToString(sample, text.data(), &length, &property),
                  DDS_RETCODE_OUT_OF_RESOURCES);
        EXPECT_EQ(length, size) << "what it takes";
        EXPECT_EQ(text, std::vector<char>(size, '#')) << "and nothing is written";
    }
    DDS_UnsignedLong length = size + 10;
    text.resize(length, '#');
    EXPECT_EQ(Type::kToString(sample, text.data(), &length, &property), DDS_RETCODE_OK);
    EXPECT_EQ(length, size);
    EXPECT_EQ(std::string(text.data()).size(), size - 1);
    EXPECT_EQ(text[size], '#');
    return text.data();
}

// The formatter's text of the sample's bytes.
template <typename Type>
std::string formatted(const typename Type::Value *sample, const DDS_PrintFormatProperty &property) {
    DDS_UnsignedLong size = 0;
    EXPECT_TRUE(Type::kBytes(nullptr, &size, sample));
    std::vector<char> bytes(size);
    EXPECT_TRUE(Type::kBytes(bytes.data(), &size, sample));
    DDS_DynamicData *const data = DDS_DynamicData_new(Type::kCode(), nullptr);
    EXPECT_EQ(DDS_DynamicData_from_cdr_buffer(data, bytes.data(), size), DDS_RETCODE_OK);
    DDS_PrintFormat format = {};
    EXPECT_EQ(DDS_PrintFormatProperty_to_print_format(&property, &format), DDS_RETCODE_OK);
    DDS_UnsignedLong length = 0;
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data, nullptr, &length, &format),
              DDS_RETCODE_OK);
    std::vector<char> text(length);
    EXPECT_EQ(DDS_DynamicDataFormatter_to_string_w_format(data, text.data(), &length, &format),
              DDS_RETCODE_OK);
    DDS_DynamicData_delete(data);
    return text.data();
}

template <typename Type>
class DistlogText : public testing::Test {
  protected:
    DistlogText() : sample_(Type::kCode()) { fill(sample_.get()); }

    support::Record<typename Type::Value> sample_;
};
#define TEXT_OF(T) T##Text
using Structured = testing::Types<FOR_EACH_STRUCTURED_TYPE(TEXT_OF, COMMA)>;
#undef TEXT_OF
TYPED_TEST_SUITE(DistlogText, Structured);

TYPED_TEST(DistlogText, EveryFormatWithEveryOption) {
    for (const DDS_PrintFormatKind kind :
         {DDS_DEFAULT_PRINT_FORMAT, DDS_XML_PRINT_FORMAT, DDS_JSON_PRINT_FORMAT}) {
        for (unsigned options = 0; options < 8; ++options) {
            SCOPED_TRACE(testing::Message() << "kind " << kind << " options " << options);
            const DDS_PrintFormatProperty property = {kind, static_cast<DDS_Boolean>(options & 1),
                                                      static_cast<DDS_Boolean>((options >> 1) & 1),
                                                      static_cast<DDS_Boolean>((options >> 2) & 1)};
            const auto *const sample = this->sample_.get();
            const std::string text = text_of<TypeParam>(sample, property);
            EXPECT_EQ(text, formatted<TypeParam>(sample, property));
            EXPECT_EQ(text.find('\n') != std::string::npos, property.pretty_print != 0) << text;
            const std::string type_name = DDS_TypeCode_name(TypeParam::kCode());
            const std::string root = type_name.substr(type_name.rfind(':') + 1);
            const std::string begin = kind == DDS_XML_PRINT_FORMAT    ? "<" + root + ">"
                                      : kind == DDS_JSON_PRINT_FORMAT ? "\"" + root + "\":"
                                                                      : "";
            if (begin.empty()) {
                continue;
            }
            EXPECT_EQ(text.find(begin) != std::string::npos, property.include_root_elements != 0)
                << text;
        }
    }
}

TYPED_TEST(DistlogText, Failures) {
    const DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
    DDS_UnsignedLong length = 0;
    const auto *const sample = this->sample_.get();
    EXPECT_EQ(TypeParam::kToString(nullptr, nullptr, &length, &property),
              DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(TypeParam::kToString(sample, nullptr, nullptr, &property), DDS_RETCODE_BAD_PARAMETER);
    EXPECT_EQ(TypeParam::kToString(sample, nullptr, &length, nullptr), DDS_RETCODE_BAD_PARAMETER);
    for (const int kind : {-1, 3, 1000}) {
        DDS_PrintFormatProperty unknown = property;
        unknown.kind = static_cast<DDS_PrintFormatKind>(kind);
        EXPECT_EQ(TypeParam::kToString(sample, nullptr, &length, &unknown),
                  DDS_RETCODE_BAD_PARAMETER);
    }
}

TEST(DistlogTextOfMessages, AStringThatCannotBeSerialised) {
    support::Record<VUR_DL_LogMessage> message(VUR_DL_LogMessage_get_typecode());
    const DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
    DDS_UnsignedLong length = 0;
    DDS_String_replace(&message->message, std::string(4097, 'x').c_str());
    EXPECT_EQ(VUR_DL_LogMessagePlugin_data_to_string(message.get(), nullptr, &length, &property),
              DDS_RETCODE_ERROR)
        << "longer than its bound";
    DDS_String_replace(&message->message, nullptr);
    EXPECT_EQ(VUR_DL_LogMessagePlugin_data_to_string(message.get(), nullptr, &length, &property),
              DDS_RETCODE_ERROR);
}

TEST(DistlogTextOfMessages, WhatMustBeEscapedIs) {
    support::Record<VUR_DL_LogMessage> message(VUR_DL_LogMessage_get_typecode());
    fill(message.get());
    set_text(message->message, "line\nline");
    EXPECT_EQ(text_of<VUR_DL_LogMessageText>(message.get(), {DDS_JSON_PRINT_FORMAT, 0, 0, 0}),
              R"({"hostAndAppId":{"rtps_host_id":1,"rtps_app_id":-2},"level":300,)"
              R"("category":"a \"b\" <c> & d","message":"line\nline",)"
              R"("messageId":-9223372036854775808})");
    EXPECT_EQ(text_of<VUR_DL_LogMessageText>(message.get(), {DDS_XML_PRINT_FORMAT, 0, 0, 1}),
              "<LogMessage><hostAndAppId><rtps_host_id>1</rtps_host_id><rtps_app_id>-2"
              "</rtps_app_id></hostAndAppId><level>300</level><category>a \"b\" &lt;c&gt; &amp; d"
              "</category><message>line\nline</message><messageId>-9223372036854775808"
              "</messageId></LogMessage>");
}

TEST(DistlogTextOfStates, EveryMember) {
    support::Record<VUR_DL_ADMIN_State> state(VUR_DL_ADMIN_State_get_typecode());
    fill(state.get());
    std::string elements;
    for (int i = 0; i < 5; ++i) {
        elements += std::string(i == 0 ? "" : ",") + R"({"category":2,"verbosity":5})";
    }
    EXPECT_EQ(text_of<VUR_DL_ADMIN_StateText>(state.get(), {DDS_JSON_PRINT_FORMAT, 0, 1, 0}),
              R"({"hostAndAppId":{"rtps_host_id":1,"rtps_app_id":-2},"administrationDomainId":0,)"
              R"("state":3,"applicationKind":"rig","filterLevel":800,"vurLoggerVerbosities":[)" +
                  elements + R"(],"vurLoggerPrintFormat":0})");
}

// ---- print_data ---------------------------------------------------------------------------------

template <typename Type>
std::string printed(const typename Type::Value *sample, const char *description,
                    DDS_UnsignedLong indent) {
    testing::internal::CaptureStdout();
    Type::kPrint(sample, description, indent);
    return testing::internal::GetCapturedStdout();
}

// A NULL sample is the description's line, and "NULL" on the next, whatever the type.
TYPED_TEST(DistlogText, PrintsNull) {
    EXPECT_EQ(printed<TypeParam>(nullptr, "sample", 0), "sample:\nNULL\n");
    EXPECT_EQ(printed<TypeParam>(nullptr, "sample", 2), "      sample:\nNULL\n");
    EXPECT_EQ(printed<TypeParam>(nullptr, nullptr, 1), "   \nNULL\n");
}

TEST(DistlogPrint, Messages) {
    support::Record<VUR_DL_LogMessage> message(VUR_DL_LogMessage_get_typecode());
    fill(message.get());
    EXPECT_EQ(printed<VUR_DL_LogMessageText>(message.get(), "m", 0),
              "m:\n"
              "   hostAndAppId:\n"
              "      rtps_host_id: 1\n"
              "      rtps_app_id: -2\n"
              "   level: 300\n"
              "   category: \"a \"b\" <c> & d\"\n"
              "   message: \"line\"\n"
              "   messageId: -9223372036854775808\n");
    DDS_String_replace(&message->message, nullptr);
    EXPECT_NE(
        printed<VUR_DL_LogMessageText>(message.get(), nullptr, 1).find("\n      message: NULL\n"),
        std::string::npos);
}

constexpr char kPairLines[] =
    "category: VUR_DL_ADMIN_VURLoggerCategory VUR_DL_KOLT_CONFIG_LOG_CATEGORY_DATABASE (2)\n";

TEST(DistlogPrint, StatesWithEveryElement) {
    support::Record<VUR_DL_ADMIN_State> state(VUR_DL_ADMIN_State_get_typecode());
    fill(state.get());
    const std::string text = printed<VUR_DL_ADMIN_StateText>(state.get(), "s", 0);
    EXPECT_NE(text.find("   state: VUR_DL_ADMIN_StateKind VUR_DL_STATE_SHUTTING_DOWN (3)\n"),
              std::string::npos)
        << text;
    for (int i = 0; i < 5; ++i) {
        EXPECT_NE(
            text.find("   vurLoggerVerbosities[" + std::to_string(i) + "]:\n      " + kPairLines),
            std::string::npos)
            << text;
    }
    EXPECT_EQ(text.find("vurLoggerVerbosities[5]"), std::string::npos);
}

TEST(DistlogPrint, CommandsWithTheSelectedBranch) {
    support::Record<VUR_DL_ADMIN_Command> command(VUR_DL_ADMIN_Command_get_typecode());
    fill(command.get());
    const std::string pair = std::string("      ") + kPairLines +
                             "      verbosity: VUR_DL_ADMIN_VURLoggerVerbosity "
                             "VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL (5)\n";
    EXPECT_EQ(printed<VUR_DL_ADMIN_CommandText>(command.get(), "c", 0),
              "c:\n"
              "   _d: VUR_DL_ADMIN_CommandKind VUR_DL_SET_VUR_LOGGER_LEVEL (1)\n"
              "   _u.categoryAndVerbosity[0]:\n" +
                  pair + "   _u.categoryAndVerbosity[1]:\n" + pair);
    command->_d = VUR_DL_SET_LOG_LEVEL;
    command->_u.filterLevel = -1;
    EXPECT_EQ(printed<VUR_DL_ADMIN_CommandText>(command.get(), "c", 0),
              "c:\n   _d: VUR_DL_ADMIN_CommandKind VUR_DL_SET_LOG_LEVEL (0)\n"
              "   _u.filterLevel: -1\n");
    command->_d = VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT;
    EXPECT_EQ(printed<VUR_DL_ADMIN_CommandText>(command.get(), "c", 0),
              "c:\n   _d: VUR_DL_ADMIN_CommandKind VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT (2)\n"
              "   _u.printFormat: VUR_DL_ADMIN_VURLoggerPrintFormat "
              "VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT (0)\n");
    command->_d = static_cast<VUR_DL_ADMIN_CommandKind>(3);
    EXPECT_EQ(printed<VUR_DL_ADMIN_CommandText>(command.get(), "c", 0),
              "c:\n   _d: VUR_DL_ADMIN_CommandKind (3)\n");
}

// Elements that are loaned are reached through their pointers.
TEST(DistlogPrint, CommandsWithALoanedSequence) {
    support::Record<VUR_DL_ADMIN_Command> command(VUR_DL_ADMIN_Command_get_typecode());
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity pair = {};
    fill(&pair);
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity *pointers[] = {&pair};
    auto *const sequence = &command->_u.categoryAndVerbosity;
    ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_finalize(sequence));
    ASSERT_TRUE(
        VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_loan_discontiguous(sequence, pointers, 1, 1));
    command->_d = VUR_DL_SET_VUR_LOGGER_LEVEL;
    EXPECT_NE(printed<VUR_DL_ADMIN_CommandText>(command.get(), "c", 0).find(kPairLines),
              std::string::npos);
    ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_unloan(sequence));
}

template <typename T>
void expect_enumeration(void (*print)(const T *, const char *, DDS_UnsignedLong),
                        const DDS_TypeCode *code, const char *record_name) {
    const auto captured = [print](const T *value, const char *description,
                                  DDS_UnsignedLong indent) {
        testing::internal::CaptureStdout();
        print(value, description, indent);
        return testing::internal::GetCapturedStdout();
    };
    for (DDS_UnsignedLong i = 0; i < DDS_TypeCode_member_count(code); ++i) {
        const auto value = static_cast<T>(i);
        const std::string line = std::string(record_name) + " " +
                                 DDS_TypeCode_member(code, i)->name + " (" + std::to_string(i) +
                                 ")\n";
        EXPECT_EQ(captured(&value, "value", 0), "value:\n   " + line);
        EXPECT_EQ(captured(&value, nullptr, 1), "   \n      " + line);
    }
    const auto unknown = static_cast<T>(77);
    EXPECT_EQ(captured(&unknown, "value", 0), "value:\n   " + std::string(record_name) + " (77)\n");
    EXPECT_EQ(captured(nullptr, "value", 1), "   value:\nNULL\n");
    EXPECT_EQ(captured(nullptr, nullptr, 0), "\nNULL\n");
}

#define EXPECT_ENUMERATION(T) \
    expect_enumeration<T>(T##PluginSupport_print_data, T##_get_typecode(), #T)

TEST(DistlogPrint, Enumerations) {
    EXPECT_ENUMERATION(VUR_DL_ADMIN_VURLoggerVerbosity);
    EXPECT_ENUMERATION(VUR_DL_ADMIN_VURLoggerCategory);
    EXPECT_ENUMERATION(VUR_DL_ADMIN_VURLoggerPrintFormat);
    EXPECT_ENUMERATION(VUR_DL_ADMIN_StateKind);
    EXPECT_ENUMERATION(VUR_DL_ADMIN_CommandKind);
    EXPECT_ENUMERATION(VUR_DL_ADMIN_CommandResult);
}

}  // namespace
