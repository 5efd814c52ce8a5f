// SPDX-License-Identifier: Apache-2.0
// The type codes of the thirteen types, with the places of the members in the records and the
// records' functions.
//
// The tables refer to each other and to KOLT's standard type codes. So all of them are filled in
// when the first one is asked for, under the guard of a local static. From then on they are
// constant, and nothing ever frees them.

#include <cstddef>
#include <iterator>
#include <limits>

#include "type/type_list.hpp"
#include "vur_dl/distlog.h"

static_assert(sizeof(VUR_DL_ADMIN_VURLoggerVerbosity) == sizeof(DDS_Enum) &&
                  sizeof(VUR_DL_ADMIN_VURLoggerCategory) == sizeof(DDS_Enum) &&
                  sizeof(VUR_DL_ADMIN_VURLoggerPrintFormat) == sizeof(DDS_Enum) &&
                  sizeof(VUR_DL_ADMIN_StateKind) == sizeof(DDS_Enum) &&
                  sizeof(VUR_DL_ADMIN_CommandKind) == sizeof(DDS_Enum) &&
                  sizeof(VUR_DL_ADMIN_CommandResult) == sizeof(DDS_Enum),
              "an enumeration is carried as a 32-bit value");

namespace vur_dl {
namespace {

constexpr DDS_DataRepresentationMask kRepresentations =
    DDS_DATA_REPRESENTATION_MASK_XCDR | DDS_DATA_REPRESENTATION_MASK_XCDR2;

constexpr DDS_Long kDefaultDiscriminator = VUR_DL_SET_LOG_LEVEL;

// ---- The places of the members ----------------------------------------------------------------

template <typename T>
struct Offsets;

#define VUR_DL_DEFINE_OFFSETS(T, ...)                           \
    template <>                                                 \
    struct Offsets<T> {                                         \
        static constexpr std::size_t kValues[] = {__VA_ARGS__}; \
    }

VUR_DL_DEFINE_OFFSETS(VUR_DL_HostAndAppId, offsetof(VUR_DL_HostAndAppId, rtps_host_id),
                      offsetof(VUR_DL_HostAndAppId, rtps_app_id));
VUR_DL_DEFINE_OFFSETS(VUR_DL_LogMessage, offsetof(VUR_DL_LogMessage, hostAndAppId),
                      offsetof(VUR_DL_LogMessage, level), offsetof(VUR_DL_LogMessage, category),
                      offsetof(VUR_DL_LogMessage, message), offsetof(VUR_DL_LogMessage, messageId));
VUR_DL_DEFINE_OFFSETS(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity,
                      offsetof(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity, category),
                      offsetof(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity, verbosity));
VUR_DL_DEFINE_OFFSETS(VUR_DL_ADMIN_State, offsetof(VUR_DL_ADMIN_State, hostAndAppId),
                      offsetof(VUR_DL_ADMIN_State, administrationDomainId),
                      offsetof(VUR_DL_ADMIN_State, state),
                      offsetof(VUR_DL_ADMIN_State, applicationKind),
                      offsetof(VUR_DL_ADMIN_State, filterLevel),
                      offsetof(VUR_DL_ADMIN_State, vurLoggerVerbosities),
                      offsetof(VUR_DL_ADMIN_State, vurLoggerPrintFormat));
VUR_DL_DEFINE_OFFSETS(
    VUR_DL_ADMIN_Command,
    offsetof(VUR_DL_ADMIN_Command, _u) + offsetof(VUR_DL_ADMIN_Command_u, filterLevel),
    offsetof(VUR_DL_ADMIN_Command, _u) + offsetof(VUR_DL_ADMIN_Command_u, categoryAndVerbosity),
    offsetof(VUR_DL_ADMIN_Command, _u) + offsetof(VUR_DL_ADMIN_Command_u, printFormat));
VUR_DL_DEFINE_OFFSETS(VUR_DL_ADMIN_CommandRequest,
                      offsetof(VUR_DL_ADMIN_CommandRequest, targetHostAndAppId),
                      offsetof(VUR_DL_ADMIN_CommandRequest, originatorHostAndAppId),
                      offsetof(VUR_DL_ADMIN_CommandRequest, invocation),
                      offsetof(VUR_DL_ADMIN_CommandRequest, command));
VUR_DL_DEFINE_OFFSETS(VUR_DL_ADMIN_CommandResponse,
                      offsetof(VUR_DL_ADMIN_CommandResponse, hostAndAppId),
                      offsetof(VUR_DL_ADMIN_CommandResponse, originatorHostAndAppId),
                      offsetof(VUR_DL_ADMIN_CommandResponse, invocation),
                      offsetof(VUR_DL_ADMIN_CommandResponse, commandResult),
                      offsetof(VUR_DL_ADMIN_CommandResponse, message));

template <typename T>
concept Structured = requires {
    Offsets<T>::kValues;
};

template <typename T>
constexpr DDS_SampleAccessInfo make_access_info() noexcept {
    DDS_SampleAccessInfo info = {};
    info.language_binding = KOLT_LANGUAGE_BINDING_PLAIN_RECORD;
    info.record_size = sizeof(T);
    info.record_alignment = alignof(T);
    if constexpr (Structured<T>) {
        info.member_count = std::size(Offsets<T>::kValues);
        info.member_offsets = Offsets<T>::kValues;
    }
    if constexpr (requires { &T::_d; }) {
        info.discriminator_offset = offsetof(T, _d);
    }
    return info;
}

template <typename T>
constexpr DDS_SampleAccessInfo kAccessInfo = make_access_info<T>();

template <typename T>
constexpr DDS_TypePluginInfo kPluginInfo = {initialize_record<T>, finalize_record<T>,
                                            copy_record<T>};

// ---- Members ----------------------------------------------------------------------------------

struct Enumerator {
    const char *name;
    DDS_Enum value;
};

struct Member {
    const char *name;
    const DDS_TypeCode *type;
    bool is_key = false;
};

DDS_AnnotationParameterValue integer_value(DDS_TCKind kind, DDS_LongLong integer) noexcept {
    DDS_AnnotationParameterValue value = {};
    value.kind = kind;
    value.value.integer = integer;
    return value;
}

// Sets default, minimum and maximum to the natural ones of the member's type.
void annotate(DDS_TypeCodeMember &member) noexcept {
    using Long = std::numeric_limits<DDS_Long>;
    using LongLong = std::numeric_limits<DDS_LongLong>;
    const DDS_TCKind kind = member.type->kind;
    switch (kind) {
        case DDS_TK_LONG:
            member.default_value = integer_value(kind, 0);
            member.minimum = integer_value(kind, Long::min());
            member.maximum = integer_value(kind, Long::max());
            break;
        case DDS_TK_LONGLONG:
            member.default_value = integer_value(kind, 0);
            member.minimum = integer_value(kind, LongLong::min());
            member.maximum = integer_value(kind, LongLong::max());
            break;
        case DDS_TK_ENUM:
            member.default_value = integer_value(kind, 0);
            break;
        case DDS_TK_STRING:
            member.default_value.kind = kind;
            member.default_value.value.string = "";
            break;
        default:
            break;
    }
}

// ---- Type codes -------------------------------------------------------------------------------

// A type code together with the members that it points to.
template <std::size_t kMemberCount>
struct Table {
    DDS_TypeCode code;
    DDS_TypeCodeMember members[kMemberCount];
};

template <typename T, std::size_t kCount>
void describe(Table<kCount> &table, DDS_TCKind kind, DDS_ExtensibilityKind extensibility) noexcept {
    DDS_TypeCode &code = table.code;
    code.kind = kind;
    code.extensibility = extensibility;
    code.name = TypeOf<T>::kName;
    code.representations = kRepresentations;
    code.member_count = kCount;
    code.members = table.members;
    code.access = &kAccessInfo<T>;
    code.plugin = &kPluginInfo<T>;
}

template <typename T, std::size_t kCount>
void make_enumeration(Table<kCount> &table, const Enumerator (&enumerators)[kCount]) noexcept {
    describe<T>(table, DDS_TK_ENUM, DDS_APPENDABLE_EXTENSIBILITY);
    for (std::size_t i = 0; i < kCount; ++i) {
        table.members[i].name = enumerators[i].name;
        table.members[i].id = static_cast<DDS_UnsignedLong>(i);
        table.members[i].ordinal = enumerators[i].value;
    }
}

// Fills in members whose ids run from `first_id` in declaration order.
template <std::size_t kCount>
void fill_members(Table<kCount> &table, const Member (&members)[kCount],
                  DDS_UnsignedLong first_id) noexcept {
    for (std::size_t i = 0; i < kCount; ++i) {
        DDS_TypeCodeMember &member = table.members[i];
        member.name = members[i].name;
        member.id = first_id + static_cast<DDS_UnsignedLong>(i);
        member.type = members[i].type;
        member.is_key = members[i].is_key ? DDS_BOOLEAN_TRUE : DDS_BOOLEAN_FALSE;
        // A reader that cannot read the key of a mutable type cannot use the sample.
        member.is_must_understand = table.code.extensibility == DDS_MUTABLE_EXTENSIBILITY
                                        ? member.is_key
                                        : DDS_BOOLEAN_FALSE;
        annotate(member);
    }
}

template <typename T, std::size_t kCount>
void make_structure(Table<kCount> &table, DDS_ExtensibilityKind extensibility,
                    const Member (&members)[kCount]) noexcept {
    static_assert(kCount == std::size(Offsets<T>::kValues));
    describe<T>(table, DDS_TK_STRUCT, extensibility);
    fill_members(table, members, 0);
}

DDS_TypeCode make_string(DDS_UnsignedLong bound) noexcept {
    DDS_TypeCode code = {};
    code.kind = DDS_TK_STRING;
    code.representations = kRepresentations;
    code.bound = bound;
    return code;
}

constexpr DDS_UnsignedLong kVerbositiesDimensions[] = {VUR_DL_ADMIN_VUR_LOGGER_CATEGORY_COUNT};
// One label for each branch of the union.
constexpr DDS_Long kCommandLabels[] = {VUR_DL_SET_LOG_LEVEL, VUR_DL_SET_VUR_LOGGER_LEVEL,
                                       VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT};

// All tables. The anonymous type codes are those of strings, the array and the sequence.
struct Tables {
    Table<2> host_and_app_id = {};
    Table<5> log_message = {};
    Table<6> verbosity = {};
    Table<5> category = {};
    Table<7> print_format = {};
    Table<2> category_and_verbosity = {};
    Table<4> state_kind = {};
    Table<7> state = {};
    Table<3> command_kind = {};
    Table<3> command = {};
    Table<4> command_request = {};
    Table<3> command_result = {};
    Table<5> command_response = {};

    DDS_TypeCode category_string = make_string(VUR_DL_LOG_MESSAGE_CATEGORY_BOUND);
    DDS_TypeCode message_string = make_string(VUR_DL_LOG_MESSAGE_MESSAGE_BOUND);
    DDS_TypeCode application_kind_string = make_string(VUR_DL_ADMIN_STATE_APPLICATION_KIND_BOUND);
    DDS_TypeCode response_string = make_string(VUR_DL_ADMIN_COMMAND_RESPONSE_MESSAGE_BOUND);
    DDS_TypeCode verbosities_array = {};
    DDS_TypeCode verbosities_sequence = {};

    const DDS_TypeCode *long_type = DDS_TypeCodeFactory_get_primitive_tc(DDS_TK_LONG);
    const DDS_TypeCode *long_long_type = DDS_TypeCodeFactory_get_primitive_tc(DDS_TK_LONGLONG);

    Tables() noexcept {
        make_enumerations();
        make_collections();
        make_command();
        make_structures();
    }

  private:
    void make_enumerations() noexcept;
    void make_collections() noexcept;
    void make_structures() noexcept;
    void make_command() noexcept;
};

#define VUR_DL_ENUMERATOR(name) \
    { #name, name }

void Tables::make_enumerations() noexcept {
    make_enumeration<VUR_DL_ADMIN_VURLoggerVerbosity>(
        verbosity, {VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT),
                    VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR),
                    VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING),
                    VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL),
                    VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE),
                    VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL)});
    make_enumeration<VUR_DL_ADMIN_VURLoggerCategory>(
        category, {VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_CATEGORY_PLATFORM),
                   VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION),
                   VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_CATEGORY_DATABASE),
                   VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_CATEGORY_ENTITIES),
                   VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API)});
    make_enumeration<VUR_DL_ADMIN_VURLoggerPrintFormat>(
        print_format, {VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT),
                       VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_TIMESTAMPED),
                       VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE),
                       VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED),
                       VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG),
                       VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL),
                       VUR_DL_ENUMERATOR(VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL)});
    make_enumeration<VUR_DL_ADMIN_StateKind>(
        state_kind,
        {VUR_DL_ENUMERATOR(VUR_DL_STATE_INITIALIZING), VUR_DL_ENUMERATOR(VUR_DL_STATE_OPERATIONAL),
         VUR_DL_ENUMERATOR(VUR_DL_STATE_NONOPERATIONAL),
         VUR_DL_ENUMERATOR(VUR_DL_STATE_SHUTTING_DOWN)});
    make_enumeration<VUR_DL_ADMIN_CommandKind>(
        command_kind,
        {VUR_DL_ENUMERATOR(VUR_DL_SET_LOG_LEVEL), VUR_DL_ENUMERATOR(VUR_DL_SET_VUR_LOGGER_LEVEL),
         VUR_DL_ENUMERATOR(VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT)});
    make_enumeration<VUR_DL_ADMIN_CommandResult>(
        command_result, {VUR_DL_ENUMERATOR(VUR_DL_COMMAND_RESULT_OK),
                         VUR_DL_ENUMERATOR(VUR_DL_COMMAND_RESULT_NOT_SUPPORTED),
                         VUR_DL_ENUMERATOR(VUR_DL_COMMAND_RESULT_ERROR)});
}

#undef VUR_DL_ENUMERATOR

void Tables::make_collections() noexcept {
    verbosities_array.kind = DDS_TK_ARRAY;
    verbosities_array.representations = kRepresentations;
    verbosities_array.dimension_count = 1;
    verbosities_array.dimensions = kVerbositiesDimensions;
    verbosities_array.content_type = &category_and_verbosity.code;

    verbosities_sequence.kind = DDS_TK_SEQUENCE;
    verbosities_sequence.representations = kRepresentations;
    verbosities_sequence.bound = VUR_DL_ADMIN_VUR_LOGGER_CATEGORY_COUNT;
    verbosities_sequence.content_type = &category_and_verbosity.code;
}

// Makes the nested types first, because a member's type is read when the member is filled in.
void Tables::make_structures() noexcept {
    make_structure<VUR_DL_HostAndAppId>(
        host_and_app_id, DDS_APPENDABLE_EXTENSIBILITY,
        {{"rtps_host_id", long_type, true}, {"rtps_app_id", long_type, true}});
    make_structure<VUR_DL_LogMessage>(log_message, DDS_MUTABLE_EXTENSIBILITY,
                                      {{"hostAndAppId", &host_and_app_id.code, true},
                                       {"level", long_type, true},
                                       {"category", &category_string},
                                       {"message", &message_string},
                                       {"messageId", long_long_type}});
    make_structure<VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity>(
        category_and_verbosity, DDS_APPENDABLE_EXTENSIBILITY,
        {{"category", &category.code}, {"verbosity", &verbosity.code}});
    make_structure<VUR_DL_ADMIN_State>(state, DDS_MUTABLE_EXTENSIBILITY,
                                       {{"hostAndAppId", &host_and_app_id.code, true},
                                        {"administrationDomainId", long_type},
                                        {"state", &state_kind.code},
                                        {"applicationKind", &application_kind_string},
                                        {"filterLevel", long_type},
                                        {"vurLoggerVerbosities", &verbosities_array},
                                        {"vurLoggerPrintFormat", &print_format.code}});
    make_structure<VUR_DL_ADMIN_CommandRequest>(command_request, DDS_MUTABLE_EXTENSIBILITY,
                                                {{"targetHostAndAppId", &host_and_app_id.code},
                                                 {"originatorHostAndAppId", &host_and_app_id.code},
                                                 {"invocation", long_type},
                                                 {"command", &command.code}});
    make_structure<VUR_DL_ADMIN_CommandResponse>(command_response, DDS_MUTABLE_EXTENSIBILITY,
                                                 {{"hostAndAppId", &host_and_app_id.code, true},
                                                  {"originatorHostAndAppId", &host_and_app_id.code},
                                                  {"invocation", long_type},
                                                  {"commandResult", &command_result.code},
                                                  {"message", &response_string}});
}

void Tables::make_command() noexcept {
    describe<VUR_DL_ADMIN_Command>(command, DDS_TK_UNION, DDS_MUTABLE_EXTENSIBILITY);
    command.code.discriminator_type = &command_kind.code;
    command.code.default_discriminator = kDefaultDiscriminator;
    fill_members(command,
                 {{"filterLevel", long_type},
                  {"categoryAndVerbosity", &verbosities_sequence},
                  {"printFormat", &print_format.code}},
                 1);
    for (std::size_t i = 0; i < std::size(kCommandLabels); ++i) {
        command.members[i].labels = &kCommandLabels[i];
        command.members[i].label_count = 1;
    }
}

const Tables &tables() noexcept {
    static const Tables kInstance;
    return kInstance;
}

}  // namespace
}  // namespace vur_dl

#define VUR_DL_DEFINE_TYPE_INFORMATION(T, table)                   \
    const DDS_TypeCode *T##_get_typecode(void) {                   \
        return &vur_dl::tables().table.code;                       \
    }                                                              \
    const DDS_SampleAccessInfo *T##_get_sample_access_info(void) { \
        return &vur_dl::kAccessInfo<T>;                            \
    }                                                              \
    const DDS_TypePluginInfo *T##_get_type_plugin_info(void) {     \
        return &vur_dl::kPluginInfo<T>;                            \
    }

VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_HostAndAppId, host_and_app_id)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_LogMessage, log_message)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_VURLoggerVerbosity, verbosity)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_VURLoggerCategory, category)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_VURLoggerPrintFormat, print_format)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity, category_and_verbosity)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_StateKind, state_kind)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_State, state)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_CommandKind, command_kind)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_Command, command)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_CommandRequest, command_request)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_CommandResult, command_result)
VUR_DL_DEFINE_TYPE_INFORMATION(VUR_DL_ADMIN_CommandResponse, command_response)

DDS_Long VUR_DL_ADMIN_Command_getDefaultDiscriminator(void) {
    return vur_dl::kDefaultDiscriminator;
}
