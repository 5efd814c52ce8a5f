/* SPDX-License-Identifier: Apache-2.0 */
/* The logger's types from C: the headers are C, the records are plain, NULL is survived. */

#include <stdio.h>
#include <string.h>
#include <vur_dl/distlogSupport.h>

static int failures = 0;

#define CHECK(condition)                                                    \
    do {                                                                    \
        if (!(condition)) {                                                 \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition); \
            ++failures;                                                     \
        }                                                                   \
    } while (0)

_Static_assert(sizeof(VUR_DL_ADMIN_StateKind) == 4, "an enumeration takes four bytes");
_Static_assert(sizeof(VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity) == 8, "two of them take eight");

static void check_records(void) {
    VUR_DL_ADMIN_CommandRequest request;
    VUR_DL_ADMIN_CommandRequest copy;
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity element;
    CHECK(VUR_DL_ADMIN_CommandRequest_initialize(&request));
    CHECK(VUR_DL_ADMIN_CommandRequest_initialize(&copy));
    request.command._d = VUR_DL_SET_VUR_LOGGER_LEVEL;
    CHECK(VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_set_length(
        &request.command._u.categoryAndVerbosity, 1));
    VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_get_reference(
        &request.command._u.categoryAndVerbosity, 0)
        ->verbosity = VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL;
    CHECK(VUR_DL_ADMIN_CommandRequest_copy(&copy, &request));
    element =
        VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_get(&copy.command._u.categoryAndVerbosity, 0);
    CHECK(element.verbosity == VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL);
    VUR_DL_ADMIN_CommandRequest_finalize(&request);
    VUR_DL_ADMIN_CommandRequest_finalize(&copy);
}

static void check_sequences(void) {
    VUR_DL_LogMessageSeq sequence = DDS_SEQUENCE_INITIALIZER;
    CHECK(VUR_DL_LogMessageSeq_set_length(&sequence, 2));
    CHECK(strcmp(VUR_DL_LogMessageSeq_get_reference(&sequence, 1)->message, "") == 0);
    CHECK(VUR_DL_LogMessageSeq_finalize(&sequence));
}

static void check_support(void) {
    const DDS_PrintFormatProperty property = DDS_PRINT_FORMAT_PROPERTY_DEFAULT;
    char buffer[1024];
    DDS_UnsignedLong length = sizeof(buffer);
    VUR_DL_LogMessage *const message = VUR_DL_LogMessageTypeSupport_create_data();
    CHECK(message != NULL);
    CHECK(VUR_DL_LogMessageTypeSupport_serialize_data_to_cdr_buffer(buffer, &length, message));
    CHECK(VUR_DL_LogMessageTypeSupport_deserialize_data_from_cdr_buffer(message, buffer, length));
    length = sizeof(buffer);
    CHECK(VUR_DL_LogMessageTypeSupport_data_to_string(message, buffer, &length, &property) ==
          DDS_RETCODE_OK);
    CHECK(strstr(buffer, "rtps_host_id: 0") != NULL);
    CHECK(VUR_DL_LogMessageTypeSupport_delete_data(message) == DDS_RETCODE_OK);
}

static void check_nulls(void) {
    CHECK(!VUR_DL_ADMIN_State_initialize(NULL));
    VUR_DL_ADMIN_State_finalize(NULL);
    CHECK(!VUR_DL_ADMIN_State_copy(NULL, NULL));
    CHECK(VUR_DL_ADMIN_StateSeq_get_length(NULL) == 0);
    CHECK(VUR_DL_ADMIN_StateTypeSupport_register_type(NULL, NULL) == DDS_RETCODE_ERROR);
    CHECK(VUR_DL_ADMIN_StateTypeSupport_delete_data(NULL) == DDS_RETCODE_OK);
    CHECK(VUR_DL_ADMIN_StateDataWriter_narrow(NULL) == NULL);
    CHECK(VUR_DL_ADMIN_StateDataWriter_write(NULL, NULL, DDS_HANDLE_NIL) ==
          DDS_RETCODE_BAD_PARAMETER);
    CHECK(VUR_DL_ADMIN_StateDataReader_narrow(NULL) == NULL);
    CHECK(VUR_DL_ADMIN_StateDataReader_return_loan(NULL, NULL, NULL) == DDS_RETCODE_BAD_PARAMETER);
}

int main(void) {
    check_records();
    check_sequences();
    check_support();
    check_nulls();
    return failures == 0 ? 0 : 1;
}
