// SPDX-License-Identifier: Apache-2.0
// The logger's records and their type codes.

#include <gtest/gtest.h>
#include <vur_dl/distlog.h>

#include <array>
#include <cstring>
#include <limits>
#include <string>
#include <thread>
#include <vector>

namespace {

// ---- Type codes -------------------------------------------------------------------------------

struct ExpectedMember {
    const char *name;
    DDS_TCKind kind;
    const char *type_name;  // NULL for primitive and anonymous types
    DDS_UnsignedLong bound;
    bool is_key;
};

void expect_structure(const DDS_TypeCode *code, const char *name,
                      DDS_ExtensibilityKind extensibility,
                      const std::vector<ExpectedMember> &members, DDS_UnsignedLong first_id = 0) {
    SCOPED_TRACE(name);
    EXPECT_STREQ(DDS_TypeCode_name(code), name);
    EXPECT_EQ(code->extensibility, extensibility);
    EXPECT_EQ(code->representations, 5U);
    ASSERT_EQ(DDS_TypeCode_member_count(code), members.size());
    for (DDS_UnsignedLong i = 0; i < members.size(); ++i) {
        const DDS_TypeCodeMember &member = *DDS_TypeCode_member(code, i);
        SCOPED_TRACE(members[i].name);
        EXPECT_STREQ(member.name, members[i].name);
        EXPECT_EQ(member.id, first_id + i);
        EXPECT_EQ(DDS_TypeCode_kind(member.type), members[i].kind);
        const DDS_TypeCode *const primitive = DDS_TypeCodeFactory_get_primitive_tc(members[i].kind);
        if (primitive != nullptr) {
            EXPECT_EQ(member.type, primitive);
        } else {
            EXPECT_STREQ(DDS_TypeCode_name(member.type), members[i].type_name);
        }
        EXPECT_EQ(member.type->bound, members[i].bound);
        EXPECT_EQ(member.is_key != 0, members[i].is_key);
        EXPECT_FALSE(member.is_optional);
    }
}

constexpr const char *kIdentity = "VUR::DL::HostAndAppId";

TEST(DistlogTypeCodes, HostAndAppId) {
    const DDS_TypeCode *const code = VUR_DL_HostAndAppId_get_typecode();
    EXPECT_EQ(DDS_TypeCode_kind(code), DDS_TK_STRUCT);
    expect_structure(code, kIdentity, DDS_APPENDABLE_EXTENSIBILITY,
                     {{"rtps_host_id", DDS_TK_LONG, nullptr, 0, true},
                      {"rtps_app_id", DDS_TK_LONG, nullptr, 0, true}});
    EXPECT_TRUE(DDS_TypeCode_is_keyed(code));
}

TEST(DistlogTypeCodes, LogMessage) {
    const DDS_TypeCode *const code = VUR_DL_LogMessage_get_typecode();
    EXPECT_EQ(DDS_TypeCode_kind(code), DDS_TK_STRUCT);
    expect_structure(code, "VUR::DL::LogMessage", DDS_MUTABLE_EXTENSIBILITY,
                     {{"hostAndAppId", DDS_TK_STRUCT, kIdentity, 0, true},
                      {"level", DDS_TK_LONG, nullptr, 0, true},
                      {"category", DDS_TK_STRING, nullptr, 512, false},
                      {"message", DDS_TK_STRING, nullptr, 4096, false},
                      {"messageId", DDS_TK_LONGLONG, nullptr, 0, false}});
    EXPECT_TRUE(DDS_TypeCode_is_keyed(code));
    EXPECT_EQ(DDS_TypeCode_member(code, 0)->type, VUR_DL_HostAndAppId_get_typecode());
}

TEST(DistlogTypeCodes, CategoryAndVerbosity) {
    const DDS_TypeCode *const code = VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity_get_typecode();
    EXPECT_EQ(DDS_TypeCode_kind(code), DDS_TK_STRUCT);
    expect_structure(code, "VUR::DL::ADMIN::VURLoggerCategoryAndVerbosity",
                     DDS_APPENDABLE_EXTENSIBILITY,
                     {{"category", DDS_TK_ENUM, "VUR::DL::ADMIN::VURLoggerCategory", 0, false},
                      {"verbosity", DDS_TK_ENUM, "VUR::DL::ADMIN::VURLoggerVerbosity", 0, false}});
    EXPECT_FALSE(DDS_TypeCode_is_keyed(code));
}

TEST(DistlogTypeCodes, State) {
    const DDS_TypeCode *const code = VUR_DL_ADMIN_State_get_typecode();
    EXPECT_EQ(DDS_TypeCode_kind(code), DDS_TK_STRUCT);
    expect_structure(
        code, "VUR::DL::ADMIN::State", DDS_MUTABLE_EXTENSIBILITY,
        {{"hostAndAppId", DDS_TK_STRUCT, kIdentity, 0, true},
         {"administrationDomainId", DDS_TK_LONG, nullptr, 0, false},
         {"state", DDS_TK_ENUM, "VUR::DL::ADMIN::StateKind", 0, false},
         {"applicationKind", DDS_TK_STRING, nullptr, 256, false},
         {"filterLevel", DDS_TK_LONG, nullptr, 0, false},
         {"vurLoggerVerbosities", DDS_TK_ARRAY, nullptr, 0, false},
         {"vurLoggerPrintFormat", DDS_TK_ENUM, "VUR::DL::ADMIN::VURLoggerPrintFormat", 0, false}});
    const DDS_TypeCode &array = *DDS_TypeCode_member(code, 5)->type;
    ASSERT_EQ(array.dimension_count, 1U);
    EXPECT_EQ(array.dimensions[0], 5U);
    EXPECT_EQ(array.content_type, VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity_get_typecode());
    EXPECT_TRUE(DDS_TypeCode_is_keyed(code));
}

TEST(DistlogTypeCodes, Command) {
    const DDS_TypeCode *const code = VUR_DL_ADMIN_Command_get_typecode();
    EXPECT_EQ(DDS_TypeCode_kind(code), DDS_TK_UNION);
    expect_structure(
        code, "VUR::DL::ADMIN::Command", DDS_MUTABLE_EXTENSIBILITY,
        {{"filterLevel", DDS_TK_LONG, nullptr, 0, false},
         {"categoryAndVerbosity", DDS_TK_SEQUENCE, nullptr, 5, false},
         {"printFormat", DDS_TK_ENUM, "VUR::DL::ADMIN::VURLoggerPrintFormat", 0, false}},
        1);
    EXPECT_EQ(code->discriminator_type, VUR_DL_ADMIN_CommandKind_get_typecode());
    EXPECT_EQ(code->default_discriminator, 0);
    for (DDS_UnsignedLong i = 0; i < 3; ++i) {
        const DDS_TypeCodeMember &member = *DDS_TypeCode_member(code, i);
        ASSERT_EQ(member.label_count, 1U);
        EXPECT_EQ(member.labels[0], static_cast<DDS_Long>(i));
        EXPECT_FALSE(member.is_default_label);
    }
    EXPECT_EQ(DDS_TypeCode_member(code, 1)->type->content_type,
              VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity_get_typecode());
    EXPECT_EQ(VUR_DL_ADMIN_Command_getDefaultDiscriminator(), VUR_DL_SET_LOG_LEVEL);
}

TEST(DistlogTypeCodes, CommandRequestAndResponse) {
    const DDS_TypeCode *const request = VUR_DL_ADMIN_CommandRequest_get_typecode();
    expect_structure(request, "VUR::DL::ADMIN::CommandRequest", DDS_MUTABLE_EXTENSIBILITY,
                     {{"targetHostAndAppId", DDS_TK_STRUCT, kIdentity, 0, false},
                      {"originatorHostAndAppId", DDS_TK_STRUCT, kIdentity, 0, false},
                      {"invocation", DDS_TK_LONG, nullptr, 0, false},
                      {"command", DDS_TK_UNION, "VUR::DL::ADMIN::Command", 0, false}});
    EXPECT_FALSE(DDS_TypeCode_is_keyed(request));
    const DDS_TypeCode *const response = VUR_DL_ADMIN_CommandResponse_get_typecode();
    expect_structure(response, "VUR::DL::ADMIN::CommandResponse", DDS_MUTABLE_EXTENSIBILITY,
                     {{"hostAndAppId", DDS_TK_STRUCT, kIdentity, 0, true},
                      {"originatorHostAndAppId", DDS_TK_STRUCT, kIdentity, 0, false},
                      {"invocation", DDS_TK_LONG, nullptr, 0, false},
                      {"commandResult", DDS_TK_ENUM, "VUR::DL::ADMIN::CommandResult", 0, false},
                      {"message", DDS_TK_STRING, nullptr, 2048, false}});
    EXPECT_TRUE(DDS_TypeCode_is_keyed(response));
}

void expect_enumeration(const DDS_TypeCode *code, const char *name,
                        const std::vector<const char *> &enumerators) {
    SCOPED_TRACE(name);
    EXPECT_EQ(DDS_TypeCode_kind(code), DDS_TK_ENUM);
    EXPECT_STREQ(DDS_TypeCode_name(code), name);
    EXPECT_EQ(code->extensibility, DDS_APPENDABLE_EXTENSIBILITY);
    EXPECT_EQ(code->representations, 5U);
    ASSERT_EQ(DDS_TypeCode_member_count(code), enumerators.size());
    for (DDS_UnsignedLong i = 0; i < enumerators.size(); ++i) {
        EXPECT_STREQ(DDS_TypeCode_member(code, i)->name, enumerators[i]);
        EXPECT_EQ(DDS_TypeCode_member(code, i)->ordinal, static_cast<DDS_Long>(i));
    }
}

TEST(DistlogTypeCodes, Enumerations) {
    expect_enumeration(
        VUR_DL_ADMIN_VURLoggerVerbosity_get_typecode(), "VUR::DL::ADMIN::VURLoggerVerbosity",
        {"VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT", "VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR",
         "VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING",
         "VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL",
         "VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE",
         "VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL"});
    expect_enumeration(
        VUR_DL_ADMIN_VURLoggerCategory_get_typecode(), "VUR::DL::ADMIN::VURLoggerCategory",
        {"VUR_DL_KOLT_CONFIG_LOG_CATEGORY_PLATFORM",
         "VUR_DL_KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION",
         "VUR_DL_KOLT_CONFIG_LOG_CATEGORY_DATABASE", "VUR_DL_KOLT_CONFIG_LOG_CATEGORY_ENTITIES",
         "VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API"});
    expect_enumeration(
        VUR_DL_ADMIN_VURLoggerPrintFormat_get_typecode(), "VUR::DL::ADMIN::VURLoggerPrintFormat",
        {"VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT",
         "VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_TIMESTAMPED",
         "VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE",
         "VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED",
         "VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG", "VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL",
         "VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL"});
    expect_enumeration(VUR_DL_ADMIN_StateKind_get_typecode(), "VUR::DL::ADMIN::StateKind",
                       {"VUR_DL_STATE_INITIALIZING", "VUR_DL_STATE_OPERATIONAL",
                        "VUR_DL_STATE_NONOPERATIONAL", "VUR_DL_STATE_SHUTTING_DOWN"});
    expect_enumeration(VUR_DL_ADMIN_CommandKind_get_typecode(), "VUR::DL::ADMIN::CommandKind",
                       {"VUR_DL_SET_LOG_LEVEL", "VUR_DL_SET_VUR_LOGGER_LEVEL",
                        "VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT"});
    expect_enumeration(VUR_DL_ADMIN_CommandResult_get_typecode(), "VUR::DL::ADMIN::CommandResult",
                       {"VUR_DL_COMMAND_RESULT_OK", "VUR_DL_COMMAND_RESULT_NOT_SUPPORTED",
                        "VUR_DL_COMMAND_RESULT_ERROR"});
}

TEST(DistlogTypeCodes, AnnotationsAreTheNaturalOnes) {
    const DDS_TypeCode *const code = VUR_DL_LogMessage_get_typecode();
    const DDS_TypeCodeMember &level = *DDS_TypeCode_member(code, 1);
    EXPECT_EQ(level.default_value.value.integer, 0);
    EXPECT_EQ(level.minimum.value.integer, std::numeric_limits<DDS_Long>::min());
    EXPECT_EQ(level.maximum.value.integer, std::numeric_limits<DDS_Long>::max());
    const DDS_TypeCodeMember &category = *DDS_TypeCode_member(code, 2);
    EXPECT_EQ(category.default_value.kind, DDS_TK_STRING);
    EXPECT_STREQ(category.default_value.value.string, "");
    EXPECT_EQ(category.minimum.kind, DDS_TK_NULL);
    const DDS_TypeCodeMember &id = *DDS_TypeCode_member(code, 4);
    EXPECT_EQ(id.default_value.kind, DDS_TK_LONGLONG);
    EXPECT_EQ(id.minimum.value.integer, std::numeric_limits<DDS_LongLong>::min());
    EXPECT_EQ(id.maximum.value.integer, std::numeric_limits<DDS_LongLong>::max());
    const DDS_TypeCodeMember &state = *DDS_TypeCode_member(VUR_DL_ADMIN_State_get_typecode(), 2);
    EXPECT_EQ(state.default_value.kind, DDS_TK_ENUM);
    EXPECT_EQ(state.default_value.value.integer, 0);
}

// The first calls may come on several threads at once.
TEST(DistlogTypeCodes, EveryCallGivesTheSameObject) {
    std::array<const DDS_TypeCode *, 8> seen = {};
    std::vector<std::thread> threads;
    for (const DDS_TypeCode *&code : seen) {
        threads.emplace_back([&code] { code = VUR_DL_ADMIN_CommandRequest_get_typecode(); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    for (const DDS_TypeCode *code : seen) {
        EXPECT_EQ(code, VUR_DL_ADMIN_CommandRequest_get_typecode());
        EXPECT_EQ(DDS_TypeCode_member(code, 3)->type, VUR_DL_ADMIN_Command_get_typecode());
    }
}

TEST(DistlogTypeCodes, AccessAndPluginInformation) {
    const DDS_SampleAccessInfo *const state = VUR_DL_ADMIN_State_get_sample_access_info();
    EXPECT_EQ(state, VUR_DL_ADMIN_State_get_typecode()->access);
    EXPECT_EQ(state->language_binding, KOLT_LANGUAGE_BINDING_PLAIN_RECORD);
    EXPECT_EQ(state->record_size, sizeof(VUR_DL_ADMIN_State));
    ASSERT_EQ(state->member_count, 7U);
    EXPECT_EQ(state->member_offsets[5], offsetof(VUR_DL_ADMIN_State, vurLoggerVerbosities));
    const DDS_SampleAccessInfo *const command = VUR_DL_ADMIN_Command_get_sample_access_info();
    ASSERT_EQ(command->member_count, 3U);
    EXPECT_EQ(command->discriminator_offset, offsetof(VUR_DL_ADMIN_Command, _d));
    EXPECT_EQ(command->member_offsets[2], offsetof(VUR_DL_ADMIN_Command, _u.printFormat));
    EXPECT_EQ(VUR_DL_LogMessage_get_type_plugin_info(), VUR_DL_LogMessage_get_typecode()->plugin);
    EXPECT_NE(VUR_DL_ADMIN_StateKind_get_type_plugin_info(), nullptr);
}

// ---- Records: initialise ----------------------------------------------------------------------

// A record that was never touched holds anything.
template <typename T>
T garbage() {
    T record;
    std::memset(static_cast<void *>(&record), 0xa5, sizeof(record));
    return record;
}

TEST(DistlogRecords, FreshLogMessage) {
    auto message = garbage<VUR_DL_LogMessage>();
    ASSERT_TRUE(VUR_DL_LogMessage_initialize(&message));
    EXPECT_EQ(message.hostAndAppId.rtps_host_id, 0);
    EXPECT_EQ(message.hostAndAppId.rtps_app_id, 0);
    EXPECT_EQ(message.level, 0);
    EXPECT_STREQ(message.category, "");
    EXPECT_STREQ(message.message, "");
    EXPECT_EQ(message.messageId, 0);
    // The buffers hold the bound and its NUL.
    std::memset(message.category, 'c', 512);
    message.category[512] = '\0';
    std::memset(message.message, 'm', 4096);
    message.message[4096] = '\0';
    VUR_DL_LogMessage_finalize(&message);
}

TEST(DistlogRecords, FreshState) {
    auto state = garbage<VUR_DL_ADMIN_State>();
    ASSERT_TRUE(VUR_DL_ADMIN_State_initialize(&state));
    EXPECT_EQ(state.administrationDomainId, 0);
    EXPECT_EQ(state.state, VUR_DL_STATE_INITIALIZING);
    EXPECT_STREQ(state.applicationKind, "");
    EXPECT_EQ(state.filterLevel, 0);
    for (const VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity &element : state.vurLoggerVerbosities) {
        EXPECT_EQ(element.category, VUR_DL_KOLT_CONFIG_LOG_CATEGORY_PLATFORM);
        EXPECT_EQ(element.verbosity, VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT);
    }
    EXPECT_EQ(state.vurLoggerPrintFormat, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
    VUR_DL_ADMIN_State_finalize(&state);
}

TEST(DistlogRecords, FreshCommand) {
    auto command = garbage<VUR_DL_ADMIN_Command>();
    ASSERT_TRUE(VUR_DL_ADMIN_Command_initialize(&command));
    EXPECT_EQ(command._d, VUR_DL_SET_LOG_LEVEL);
    EXPECT_EQ(command._u.filterLevel, 0);
    EXPECT_EQ(command._u.categoryAndVerbosity._length, 0U);
    EXPECT_EQ(command._u.categoryAndVerbosity._maximum, 5U);
    EXPECT_EQ(command._u.categoryAndVerbosity._absolute_maximum, 5U);
    EXPECT_NE(command._u.categoryAndVerbosity._contiguous_buffer, nullptr);
    EXPECT_EQ(command._u.printFormat, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT);
    VUR_DL_ADMIN_Command_finalize(&command);
}

TEST(DistlogRecords, FreshEnumeration) {
    auto kind = garbage<VUR_DL_ADMIN_StateKind>();
    ASSERT_TRUE(VUR_DL_ADMIN_StateKind_initialize(&kind));
    EXPECT_EQ(kind, VUR_DL_STATE_INITIALIZING);
    kind = VUR_DL_STATE_SHUTTING_DOWN;
    VUR_DL_ADMIN_StateKind_finalize(&kind);
    EXPECT_EQ(kind, VUR_DL_STATE_SHUTTING_DOWN);
}

TEST(DistlogRecords, WithoutMemoryStringsThatAreNullStayNull) {
    VUR_DL_LogMessage message = {};
    message.level = 7;
    ASSERT_TRUE(VUR_DL_LogMessage_initialize_ex(&message, DDS_BOOLEAN_TRUE, DDS_BOOLEAN_FALSE));
    EXPECT_EQ(message.level, 0);
    EXPECT_EQ(message.category, nullptr);
    EXPECT_EQ(message.message, nullptr);
    VUR_DL_LogMessage_finalize(&message);
}

TEST(DistlogRecords, WithoutMemoryBuffersAreEmptiedAndKept) {
    VUR_DL_ADMIN_CommandResponse response = {};
    ASSERT_TRUE(VUR_DL_ADMIN_CommandResponse_initialize(&response));
    DDS_Char *const buffer = response.message;
    std::strcpy(response.message, "done");
    ASSERT_TRUE(
        VUR_DL_ADMIN_CommandResponse_initialize_ex(&response, DDS_BOOLEAN_TRUE, DDS_BOOLEAN_FALSE));
    EXPECT_EQ(response.message, buffer);
    EXPECT_STREQ(response.message, "");
    VUR_DL_ADMIN_CommandResponse_finalize(&response);

    VUR_DL_ADMIN_Command command = {};
    ASSERT_TRUE(VUR_DL_ADMIN_Command_initialize(&command));
    auto *const sequence = &command._u.categoryAndVerbosity;
    ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(sequence, 3));
    ASSERT_TRUE(VUR_DL_ADMIN_Command_initialize_ex(&command, DDS_BOOLEAN_TRUE, DDS_BOOLEAN_FALSE));
    EXPECT_EQ(sequence->_length, 0U);
    EXPECT_EQ(sequence->_maximum, 5U);
    VUR_DL_ADMIN_Command_finalize(&command);
}

TEST(DistlogRecords, NullArguments) {
    const DDS_TypeAllocationParams_t allocation = DDS_TYPE_ALLOCATION_PARAMS_DEFAULT;
    const DDS_TypeDeallocationParams_t deallocation = DDS_TYPE_DEALLOCATION_PARAMS_DEFAULT;
    VUR_DL_LogMessage message = {};
    EXPECT_FALSE(VUR_DL_LogMessage_initialize(nullptr));
    EXPECT_FALSE(VUR_DL_LogMessage_initialize_ex(nullptr, 1, 1));
    EXPECT_FALSE(VUR_DL_LogMessage_initialize_w_params(nullptr, &allocation));
    EXPECT_FALSE(VUR_DL_LogMessage_initialize_w_params(&message, nullptr));
    ASSERT_TRUE(VUR_DL_LogMessage_initialize(&message));
    EXPECT_FALSE(VUR_DL_LogMessage_copy(nullptr, &message));
    EXPECT_FALSE(VUR_DL_LogMessage_copy(&message, nullptr));
    VUR_DL_LogMessage_finalize(nullptr);
    VUR_DL_LogMessage_finalize_ex(nullptr, 1);
    VUR_DL_LogMessage_finalize_w_params(nullptr, &deallocation);
    VUR_DL_LogMessage_finalize_optional_members(nullptr, 1);
    VUR_DL_LogMessage_finalize_w_params(&message, nullptr);
    EXPECT_NE(message.message, nullptr) << "nothing is done without parameters";
    EXPECT_TRUE(VUR_DL_LogMessage_finalize_w_return(&message));
    EXPECT_TRUE(VUR_DL_LogMessage_finalize_w_return(nullptr));
}

// ---- Records: finalise -------------------------------------------------------------------------

TEST(DistlogRecords, FinalisingTwiceIsHarmless) {
    VUR_DL_LogMessage message = {};
    ASSERT_TRUE(VUR_DL_LogMessage_initialize(&message));
    message.level = 300;
    VUR_DL_LogMessage_finalize(&message);
    EXPECT_EQ(message.category, nullptr);
    EXPECT_EQ(message.message, nullptr);
    EXPECT_EQ(message.level, 300) << "numbers stay";
    VUR_DL_LogMessage_finalize(&message);
    ASSERT_TRUE(VUR_DL_LogMessage_initialize(&message)) << "and it can be initialised again";
    VUR_DL_LogMessage_finalize(&message);

    VUR_DL_ADMIN_CommandRequest request = {};
    ASSERT_TRUE(VUR_DL_ADMIN_CommandRequest_initialize(&request));
    VUR_DL_ADMIN_CommandRequest_finalize(&request);
    EXPECT_EQ(request.command._u.categoryAndVerbosity._maximum, 0U);
    EXPECT_EQ(request.command._u.categoryAndVerbosity._contiguous_buffer, nullptr);
    VUR_DL_ADMIN_CommandRequest_finalize(&request);
}

// ---- Records: copy -----------------------------------------------------------------------------

TEST(DistlogRecords, CopyOfAMessageIsDeep) {
    VUR_DL_LogMessage source = {};
    VUR_DL_LogMessage copy = {};
    ASSERT_TRUE(VUR_DL_LogMessage_initialize(&source));
    ASSERT_TRUE(VUR_DL_LogMessage_initialize(&copy));
    source.hostAndAppId = {1, -2};
    source.level = 500;
    std::strcpy(source.category, "net");
    std::memset(source.message, 'x', 4096);
    source.message[4096] = '\0';
    source.messageId = -1;
    DDS_Char *const buffer = copy.message;
    ASSERT_TRUE(VUR_DL_LogMessage_copy(&copy, &source));
    EXPECT_EQ(copy.message, buffer) << "copied into the buffer that is there";
    EXPECT_TRUE(KOLT_Record_equals(VUR_DL_LogMessage_get_typecode(), &copy, &source));
    source.message[0] = 'y';
    EXPECT_EQ(copy.message[0], 'x');
    VUR_DL_LogMessage_finalize(&source);
    VUR_DL_LogMessage_finalize(&copy);
}

TEST(DistlogRecords, CopyNeverOverrunsAString) {
    VUR_DL_LogMessage source = {};
    VUR_DL_LogMessage copy = {};
    ASSERT_TRUE(VUR_DL_LogMessage_initialize(&source));
    ASSERT_TRUE(VUR_DL_LogMessage_initialize(&copy));
    source.hostAndAppId = {3, 4};
    const std::string too_long(513, 'c');
    ASSERT_NE(DDS_String_replace(&source.category, too_long.c_str()), nullptr);
    EXPECT_FALSE(VUR_DL_LogMessage_copy(&copy, &source));
    EXPECT_EQ(copy.hostAndAppId.rtps_app_id, 4) << "what was copied before stays";
    ASSERT_NE(DDS_String_replace(&source.category, too_long.substr(1).c_str()), nullptr);
    EXPECT_TRUE(VUR_DL_LogMessage_copy(&copy, &source));
    DDS_String_replace(&source.category, nullptr);
    EXPECT_FALSE(VUR_DL_LogMessage_copy(&copy, &source)) << "a NULL string";
    VUR_DL_LogMessage_finalize(&source);
    VUR_DL_LogMessage_finalize(&copy);

    VUR_DL_LogMessage bare = {};
    VUR_DL_LogMessage full = {};
    ASSERT_TRUE(VUR_DL_LogMessage_initialize(&full));
    EXPECT_FALSE(VUR_DL_LogMessage_copy(&bare, &full)) << "a destination without buffers";
    VUR_DL_LogMessage_finalize(&full);
}

class DistlogCommandCopy : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(VUR_DL_ADMIN_Command_initialize(&source_));
        ASSERT_TRUE(VUR_DL_ADMIN_Command_initialize(&copy_));
        source_._u.filterLevel = 100;
        auto *const sequence = &source_._u.categoryAndVerbosity;
        ASSERT_TRUE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(sequence, 2));
        VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_get_reference(sequence, 1)->category =
            VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API;
        source_._u.printFormat = VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG;
        copy_._u.filterLevel = 800;
        copy_._u.printFormat = VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL;
    }
    void TearDown() override {
        VUR_DL_ADMIN_Command_finalize(&source_);
        VUR_DL_ADMIN_Command_finalize(&copy_);
    }

    VUR_DL_ADMIN_Command source_ = {};
    VUR_DL_ADMIN_Command copy_ = {};
};

TEST_F(DistlogCommandCopy, OfTheSequenceLeavesTheOtherBranches) {
    source_._d = VUR_DL_SET_VUR_LOGGER_LEVEL;
    ASSERT_TRUE(VUR_DL_ADMIN_Command_copy(&copy_, &source_));
    EXPECT_EQ(copy_._d, VUR_DL_SET_VUR_LOGGER_LEVEL);
    ASSERT_EQ(copy_._u.categoryAndVerbosity._length, 2U);
    EXPECT_EQ(copy_._u.categoryAndVerbosity._contiguous_buffer[1].category,
              VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API);
    EXPECT_EQ(copy_._u.filterLevel, 800);
    EXPECT_EQ(copy_._u.printFormat, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL);
}

TEST_F(DistlogCommandCopy, OfANumberLeavesTheOtherBranches) {
    source_._d = VUR_DL_SET_LOG_LEVEL;
    ASSERT_TRUE(VUR_DL_ADMIN_Command_copy(&copy_, &source_));
    EXPECT_EQ(copy_._u.filterLevel, 100);
    EXPECT_EQ(copy_._u.categoryAndVerbosity._length, 0U);
    EXPECT_EQ(copy_._u.printFormat, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL);
    source_._d = VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT;
    source_._u.filterLevel = 1;
    ASSERT_TRUE(VUR_DL_ADMIN_Command_copy(&copy_, &source_));
    EXPECT_EQ(copy_._u.printFormat, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG);
    EXPECT_EQ(copy_._u.filterLevel, 100);
}

TEST_F(DistlogCommandCopy, OfAnUnknownDiscriminatorCopiesNoBranch) {
    source_._d = static_cast<VUR_DL_ADMIN_CommandKind>(17);
    ASSERT_TRUE(VUR_DL_ADMIN_Command_copy(&copy_, &source_));
    EXPECT_EQ(static_cast<DDS_Long>(copy_._d), 17);
    EXPECT_EQ(copy_._u.filterLevel, 800);
    EXPECT_EQ(copy_._u.categoryAndVerbosity._length, 0U);
    EXPECT_EQ(copy_._u.printFormat, VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL);
}

TEST(DistlogRecords, CopyOfAStateTakesTheWholeArray) {
    VUR_DL_ADMIN_State source = {};
    VUR_DL_ADMIN_State copy = {};
    ASSERT_TRUE(VUR_DL_ADMIN_State_initialize(&source));
    ASSERT_TRUE(VUR_DL_ADMIN_State_initialize(&copy));
    for (DDS_Long i = 0; i < 5; ++i) {
        source.vurLoggerVerbosities[i].category = static_cast<VUR_DL_ADMIN_VURLoggerCategory>(i);
        source.vurLoggerVerbosities[i].verbosity =
            static_cast<VUR_DL_ADMIN_VURLoggerVerbosity>(5 - i);
    }
    ASSERT_TRUE(VUR_DL_ADMIN_State_copy(&copy, &source));
    EXPECT_EQ(std::memcmp(copy.vurLoggerVerbosities, source.vurLoggerVerbosities,
                          sizeof(source.vurLoggerVerbosities)),
              0);
    VUR_DL_ADMIN_State_finalize(&source);
    VUR_DL_ADMIN_State_finalize(&copy);
}

}  // namespace
