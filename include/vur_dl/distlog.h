/* SPDX-License-Identifier: Apache-2.0 */
/* The logger's data types as records in memory.
 *
 * Four of the thirteen types are topic types: LogMessage, State, CommandRequest, CommandResponse.
 * The others are nested in these. Each record has a type code that describes it member for member,
 * and the type code drives every operation on the record. idl/distlog.idl describes the types on
 * the wire.
 *
 *  1. A string is a buffer that belongs to its record, with room for the bound given beside it plus
 *     the terminating NUL. The record's initialisation makes it, its finalisation frees it. Texts
 *     are copied into it, never past the bound. In a record that is only read (written to DDS,
 *     copied from) the buffer may be replaced by a shorter one (DDS_String_replace).
 *  2. A record belongs to one thread at a time. Type codes, access and plugin information are
 *     constant, live as long as the process and may be used by all threads at once.
 *  3. Members marked "key" identify the instance (DDS 1.4, 2.2.2.2.2).
 */
#pragma once

#include "kolt/sequence.h"
#include "kolt/typecode.h"
#include "vur_dl/export.h"

VUR_DL_EXTERN_C_BEGIN

/* The longest texts in characters, without the terminating NUL. */
#define VUR_DL_LOG_MESSAGE_CATEGORY_BOUND 512
#define VUR_DL_LOG_MESSAGE_MESSAGE_BOUND 4096
#define VUR_DL_ADMIN_STATE_APPLICATION_KIND_BOUND 256
#define VUR_DL_ADMIN_COMMAND_RESPONSE_MESSAGE_BOUND 2048
/* The number of categories of the middleware's logger that can be administered: the length of a
 * State's array and the bound of a command's sequence. */
#define VUR_DL_ADMIN_VUR_LOGGER_CATEGORY_COUNT 5

/* The operations of every type. T stands for the record type.
 *
 * - T_initialize: T_initialize_ex with both flags true.
 * - T_initialize_ex: T_initialize_w_params with the default parameters, of which
 *   allocate_pointers and allocate_memory are set from the flags.
 * - T_initialize_w_params: Sets every member to its initial value: 0, the first enumerator, "",
 *   the union's default branch. With allocate_memory, which is for records that own nothing yet,
 *   strings get new buffers and the union's sequence its five elements. Without it, a string
 *   buffer that is there is emptied and kept, a NULL stays NULL, and the sequence's length becomes
 *   0. False when an argument is NULL or memory runs out; the members done so far stay, and the
 *   caller finalises the record.
 * - T_finalize: T_finalize_ex with delete_pointers true.
 * - T_finalize_w_return: The same; always returns true.
 * - T_finalize_ex: T_finalize_w_params with the default parameters, of which delete_pointers is
 *   set from the flag. NULL is ignored.
 * - T_finalize_w_params: Frees what the record owns: strings become NULL, the sequence empty.
 *   Numbers stay as they are. Repeating it is harmless. NULLs are ignored.
 * - T_finalize_optional_members: Does nothing, since no type has optional members.
 * - T_copy: Copies deeply, member by member in declaration order, into an initialised record. Of a
 *   union it copies the discriminator and then only the branch that it selects. False when an
 *   argument is NULL, when a source string is NULL or longer than its bound (nothing is written
 *   past the bound), when the destination has no buffer for a string, or when memory runs out;
 *   the members copied so far stay.
 * - T_get_typecode: Returns the type's type code, the same object at every call. Never NULL.
 * - T_get_sample_access_info: Returns where the members lie in the record. Never NULL.
 * - T_get_type_plugin_info: Returns the functions above as generic code calls them. Never NULL.
 */
#define VUR_DL_TYPE_DECLARE(T)                                                                     \
    VUR_DL_EXPORT DDS_Boolean T##_initialize(T *self);                                             \
    VUR_DL_EXPORT DDS_Boolean T##_initialize_ex(T *self, DDS_Boolean allocate_pointers,            \
                                                DDS_Boolean allocate_memory);                      \
    VUR_DL_EXPORT DDS_Boolean T##_initialize_w_params(T *self,                                     \
                                                      const DDS_TypeAllocationParams_t *params);   \
    VUR_DL_EXPORT void T##_finalize(T *self);                                                      \
    VUR_DL_EXPORT DDS_Boolean T##_finalize_w_return(T *self);                                      \
    VUR_DL_EXPORT void T##_finalize_ex(T *self, DDS_Boolean delete_pointers);                      \
    VUR_DL_EXPORT void T##_finalize_w_params(T *self, const DDS_TypeDeallocationParams_t *params); \
    VUR_DL_EXPORT void T##_finalize_optional_members(T *self, DDS_Boolean delete_pointers);        \
    VUR_DL_EXPORT DDS_Boolean T##_copy(T *destination, const T *source);                           \
    VUR_DL_EXPORT const DDS_TypeCode *T##_get_typecode(void);                                      \
    VUR_DL_EXPORT const DDS_SampleAccessInfo *T##_get_sample_access_info(void);                    \
    VUR_DL_EXPORT const DDS_TypePluginInfo *T##_get_type_plugin_info(void)

/* ---- VUR::DL ------------------------------------------------------------------------------- */

/* "VUR::DL::HostAndAppId": the identity of one application, taken from its participant's RTPS
 * identity. Both members are its key. */
typedef struct VUR_DL_HostAndAppId {
    DDS_Long rtps_host_id; /* key */
    DDS_Long rtps_app_id;  /* key */
} VUR_DL_HostAndAppId;
VUR_DL_TYPE_DECLARE(VUR_DL_HostAndAppId);
KOLT_SEQUENCE_DECLARE(VUR_DL_HostAndAppIdSeq, VUR_DL_HostAndAppId, VUR_DL_EXPORT);

/* "VUR::DL::LogMessage": one published log message. */
typedef struct VUR_DL_LogMessage {
    VUR_DL_HostAndAppId hostAndAppId; /* key: who logged it */
    DDS_Long level;                   /* key: 100 fatal to 800 trace, smaller is more severe */
    DDS_Char *category;               /* at most 512 characters */
    DDS_Char *message;                /* at most 4096 characters */
    DDS_LongLong messageId;           /* the process's running number of the message */
} VUR_DL_LogMessage;
VUR_DL_TYPE_DECLARE(VUR_DL_LogMessage);
KOLT_SEQUENCE_DECLARE(VUR_DL_LogMessageSeq, VUR_DL_LogMessage, VUR_DL_EXPORT);

/* ---- VUR::DL::ADMIN: the middleware's logger ------------------------------------------------ */

/* "VUR::DL::ADMIN::VURLoggerVerbosity": the amount that a category of the middleware's
 * logger reports. */
typedef enum VUR_DL_ADMIN_VURLoggerVerbosity KOLT_ENUM_BASE {
    VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT = 0,
    VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR = 1,
    VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING = 2,
    VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL = 3,
    VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE = 4,
    VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL = 5
} VUR_DL_ADMIN_VURLoggerVerbosity;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_VURLoggerVerbosity);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_VURLoggerVerbositySeq, VUR_DL_ADMIN_VURLoggerVerbosity,
                      VUR_DL_EXPORT);

/* "VUR::DL::ADMIN::VURLoggerCategory": the categories of the middleware's logger. */
typedef enum VUR_DL_ADMIN_VURLoggerCategory KOLT_ENUM_BASE {
    VUR_DL_KOLT_CONFIG_LOG_CATEGORY_PLATFORM = 0,
    VUR_DL_KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION = 1,
    VUR_DL_KOLT_CONFIG_LOG_CATEGORY_DATABASE = 2,
    VUR_DL_KOLT_CONFIG_LOG_CATEGORY_ENTITIES = 3,
    VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API = 4
} VUR_DL_ADMIN_VURLoggerCategory;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_VURLoggerCategory);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_VURLoggerCategorySeq, VUR_DL_ADMIN_VURLoggerCategory,
                      VUR_DL_EXPORT);

/* "VUR::DL::ADMIN::VURLoggerPrintFormat": the format in which the middleware's logger
 * prints. */
typedef enum VUR_DL_ADMIN_VURLoggerPrintFormat KOLT_ENUM_BASE {
    VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT = 0,
    VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_TIMESTAMPED = 1,
    VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE = 2,
    VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED = 3,
    VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG = 4,
    VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL = 5,
    VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL = 6
} VUR_DL_ADMIN_VURLoggerPrintFormat;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_VURLoggerPrintFormat);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_VURLoggerPrintFormatSeq, VUR_DL_ADMIN_VURLoggerPrintFormat,
                      VUR_DL_EXPORT);

/* "VUR::DL::ADMIN::VURLoggerCategoryAndVerbosity": one category with its verbosity. */
typedef struct VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity {
    VUR_DL_ADMIN_VURLoggerCategory category;
    VUR_DL_ADMIN_VURLoggerVerbosity verbosity;
} VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq,
                      VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity, VUR_DL_EXPORT);

/* ---- VUR::DL::ADMIN: the state of a logger -------------------------------------------------- */

/* "VUR::DL::ADMIN::StateKind": the phase of its life that a logger is in. */
typedef enum VUR_DL_ADMIN_StateKind KOLT_ENUM_BASE {
    VUR_DL_STATE_INITIALIZING = 0,
    VUR_DL_STATE_OPERATIONAL = 1,
    VUR_DL_STATE_NONOPERATIONAL = 2,
    VUR_DL_STATE_SHUTTING_DOWN = 3
} VUR_DL_ADMIN_StateKind;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_StateKind);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_StateKindSeq, VUR_DL_ADMIN_StateKind, VUR_DL_EXPORT);

/* "VUR::DL::ADMIN::State": the description that each logger publishes of itself. */
typedef struct VUR_DL_ADMIN_State {
    VUR_DL_HostAndAppId hostAndAppId; /* key: whose state it is */
    DDS_Long administrationDomainId;  /* the DDS domain of the logger's entities */
    VUR_DL_ADMIN_StateKind state;
    DDS_Char *applicationKind; /* at most 256 characters: the kind of application */
    DDS_Long filterLevel;      /* messages up to this level are published */
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity
        vurLoggerVerbosities[VUR_DL_ADMIN_VUR_LOGGER_CATEGORY_COUNT]; /* one per category */
    VUR_DL_ADMIN_VURLoggerPrintFormat vurLoggerPrintFormat;
} VUR_DL_ADMIN_State;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_State);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_StateSeq, VUR_DL_ADMIN_State, VUR_DL_EXPORT);

/* ---- VUR::DL::ADMIN: commands --------------------------------------------------------------- */

/* "VUR::DL::ADMIN::CommandKind": the command of a request; selects the branch of a Command. */
typedef enum VUR_DL_ADMIN_CommandKind KOLT_ENUM_BASE {
    VUR_DL_SET_LOG_LEVEL = 0,
    VUR_DL_SET_VUR_LOGGER_LEVEL = 1,
    VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT = 2
} VUR_DL_ADMIN_CommandKind;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_CommandKind);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_CommandKindSeq, VUR_DL_ADMIN_CommandKind, VUR_DL_EXPORT);

/* The branches of a Command. They lie side by side: in memory all three exist at once. */
typedef struct VUR_DL_ADMIN_Command_u {
    DDS_Long filterLevel; /* VUR_DL_SET_LOG_LEVEL: the new filter level */
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq
        categoryAndVerbosity; /* VUR_DL_SET_VUR_LOGGER_LEVEL: at most 5 elements */
    VUR_DL_ADMIN_VURLoggerPrintFormat printFormat; /* VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT */
} VUR_DL_ADMIN_Command_u;

/* "VUR::DL::ADMIN::Command": a command with its argument. `_d` selects the branch that counts; only
 * that one goes onto the wire. */
typedef struct VUR_DL_ADMIN_Command {
    /* NOLINTBEGIN(readability-identifier-naming): the IDL to C mapping calls a union's members so. */
    VUR_DL_ADMIN_CommandKind _d;
    VUR_DL_ADMIN_Command_u _u;
    /* NOLINTEND(readability-identifier-naming) */
} VUR_DL_ADMIN_Command;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_Command);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_CommandSeq, VUR_DL_ADMIN_Command, VUR_DL_EXPORT);
/* Returns `_d` of a freshly initialised command: VUR_DL_SET_LOG_LEVEL. */
VUR_DL_EXPORT DDS_Long VUR_DL_ADMIN_Command_getDefaultDiscriminator(void);

/* "VUR::DL::ADMIN::CommandRequest": a request of an administration tool to one logger. It has no
 * key: each logger selects the requests that name it. */
typedef struct VUR_DL_ADMIN_CommandRequest {
    VUR_DL_HostAndAppId targetHostAndAppId;     /* the logger that is to execute it */
    VUR_DL_HostAndAppId originatorHostAndAppId; /* the tool that asks */
    DDS_Long invocation;                        /* the tool's number for this request */
    VUR_DL_ADMIN_Command command;
} VUR_DL_ADMIN_CommandRequest;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_CommandRequest);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_CommandRequestSeq, VUR_DL_ADMIN_CommandRequest, VUR_DL_EXPORT);

/* "VUR::DL::ADMIN::CommandResult": the outcome of a command. */
typedef enum VUR_DL_ADMIN_CommandResult KOLT_ENUM_BASE {
    VUR_DL_COMMAND_RESULT_OK = 0,
    VUR_DL_COMMAND_RESULT_NOT_SUPPORTED = 1,
    VUR_DL_COMMAND_RESULT_ERROR = 2
} VUR_DL_ADMIN_CommandResult;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_CommandResult);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_CommandResultSeq, VUR_DL_ADMIN_CommandResult, VUR_DL_EXPORT);

/* "VUR::DL::ADMIN::CommandResponse": the answer to one request. */
typedef struct VUR_DL_ADMIN_CommandResponse {
    VUR_DL_HostAndAppId hostAndAppId;           /* key: the logger that answers */
    VUR_DL_HostAndAppId originatorHostAndAppId; /* from the request */
    DDS_Long invocation;                        /* from the request */
    VUR_DL_ADMIN_CommandResult commandResult;
    DDS_Char *message; /* at most 2048 characters: the outcome in words */
} VUR_DL_ADMIN_CommandResponse;
VUR_DL_TYPE_DECLARE(VUR_DL_ADMIN_CommandResponse);
KOLT_SEQUENCE_DECLARE(VUR_DL_ADMIN_CommandResponseSeq, VUR_DL_ADMIN_CommandResponse, VUR_DL_EXPORT);

VUR_DL_EXTERN_C_END
