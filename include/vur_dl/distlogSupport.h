/* SPDX-License-Identifier: Apache-2.0 */
/* Type support, typed data writers and typed data readers of the four topic types.
 *
 * The functions are those of the IDL to C mapping of DDS 1.4. They do the same as the untyped ones
 * of kolt/publication.h and kolt/subscription.h, for samples of one type, and have their results.
 * One macro declares each family; the comment at the macro describes the operations.
 *
 *  1. A typed writer or reader is the untyped one under another type: _narrow, which checks the
 *     type, and _as_datawriter / _as_datareader return the same address. The caller frees nothing;
 *     the publisher or subscriber deletes the untyped one.
 *  2. Writers and readers may be used by any number of threads. A sequence belongs to one thread.
 *  3. A NULL where a pointer is required gives DDS_RETCODE_BAD_PARAMETER, NULL or DDS_HANDLE_NIL.
 *     The typed function logs a wrong call (category API) under its own name.
 */
#pragma once

#include "kolt/domain.h"
#include "kolt/publication.h"
#include "kolt/subscription.h"
#include "vur_dl/distlogPlugin.h"

VUR_DL_EXTERN_C_BEGIN

/* Type support (DDS 1.4, 2.2.2.3.6).
 *
 * - TTypeSupport_register_type: Makes the type known to a participant under `type_name`, which
 *   need not be the type's own name. ERROR for a NULL participant or when memory runs out;
 *   otherwise the result of DDS_DomainParticipant_register_type.
 * - TTypeSupport_unregister_type: The reverse. ERROR for a NULL participant; otherwise the
 *   result of DDS_DomainParticipant_unregister_type.
 * - TTypeSupport_get_type_name: Returns the name in the type code, for example
 *   "VUR::DL::LogMessage".
 * - TTypeSupport_get_typecode: T_get_typecode.
 * - TTypeSupport_create_data, _create_data_ex, _create_data_w_params: Return a new sample, to be
 *   freed with a delete_data function, as TPluginSupport_create_data and its variants do.
 * - TTypeSupport_delete_data, _delete_data_ex, _delete_data_w_params: Free such a sample. OK.
 * - TTypeSupport_initialize_data, _initialize_data_ex, _initialize_data_w_params: T_initialize
 *   and its variants. OK or ERROR.
 * - TTypeSupport_finalize_data, _finalize_data_ex, _finalize_data_w_params: T_finalize and its
 *   variants. OK.
 * - TTypeSupport_finalize: Does nothing.
 * - TTypeSupport_copy_data: T_copy. OK or ERROR.
 * - TTypeSupport_print_data: Prints a sample on standard output.
 * - TTypeSupport_serialize_data_to_cdr_buffer, _ex,
 *   TTypeSupport_deserialize_data_from_cdr_buffer: Convert to bytes and back, as
 *   TPlugin_serialize_to_cdr_buffer and its variants do. True on success.
 * - TTypeSupport_data_to_string: TPlugin_data_to_string.
 */
#define VUR_DL_TYPE_SUPPORT_DECLARE(T)                                                           \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_register_type(                                 \
        DDS_DomainParticipant *participant, const char *type_name);                              \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_unregister_type(                               \
        DDS_DomainParticipant *participant, const char *type_name);                              \
    VUR_DL_EXPORT const char *T##TypeSupport_get_type_name(void);                                \
    VUR_DL_EXPORT const DDS_TypeCode *T##TypeSupport_get_typecode(void);                         \
    VUR_DL_EXPORT T *T##TypeSupport_create_data(void);                                           \
    VUR_DL_EXPORT T *T##TypeSupport_create_data_ex(DDS_Boolean allocate_pointers);               \
    VUR_DL_EXPORT T *T##TypeSupport_create_data_w_params(                                        \
        const DDS_TypeAllocationParams_t *params);                                               \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_delete_data(T *sample);                        \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_delete_data_ex(T *sample,                      \
                                                                 DDS_Boolean delete_pointers);   \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_delete_data_w_params(                          \
        T *sample, const DDS_TypeDeallocationParams_t *params);                                  \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_initialize_data(T *sample);                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_initialize_data_ex(                            \
        T *sample, DDS_Boolean allocate_pointers, DDS_Boolean allocate_memory);                  \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_initialize_data_w_params(                      \
        T *sample, const DDS_TypeAllocationParams_t *params);                                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_finalize_data(T *sample);                      \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_finalize_data_ex(T *sample,                    \
                                                                   DDS_Boolean delete_pointers); \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_finalize_data_w_params(                        \
        T *sample, const DDS_TypeDeallocationParams_t *params);                                  \
    VUR_DL_EXPORT void T##TypeSupport_finalize(void);                                            \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_copy_data(T *destination, const T *source);    \
    VUR_DL_EXPORT void T##TypeSupport_print_data(const T *sample);                               \
    VUR_DL_EXPORT DDS_Boolean T##TypeSupport_serialize_data_to_cdr_buffer(                       \
        DDS_Char *buffer, DDS_UnsignedLong *length, const T *sample);                            \
    VUR_DL_EXPORT DDS_Boolean T##TypeSupport_serialize_data_to_cdr_buffer_ex(                    \
        DDS_Char *buffer, DDS_UnsignedLong *length, const T *sample,                             \
        DDS_DataRepresentationId_t representation);                                              \
    VUR_DL_EXPORT DDS_Boolean T##TypeSupport_deserialize_data_from_cdr_buffer(                   \
        T *sample, const DDS_Char *buffer, DDS_UnsignedLong length);                             \
    VUR_DL_EXPORT DDS_ReturnCode_t T##TypeSupport_data_to_string(                                \
        const T *sample, DDS_Char *string, DDS_UnsignedLong *length,                             \
        const DDS_PrintFormatProperty *property)

/* Typed writer (DDS 1.4, 2.2.2.4.2).
 *
 * - TDataWriter_narrow: Returns the writer as a typed one. Returns NULL, and logs it, for NULL
 *   ("null writer") and for a writer of another type ("wrong type writer"). The name under which
 *   the type was registered does not matter.
 * - TDataWriter_as_datawriter: The reverse. Returns NULL, and logs it, for NULL.
 * - TDataWriter_create_data, _create_data_w_params: Return a new sample, to be freed with the
 *   writer's delete_data functions. NULL when memory runs out or when the parameters forbid memory.
 * - TDataWriter_delete_data, _delete_data_w_params: Free such a sample.
 * - TDataWriter_get_loan, _discard_loan: Return UNSUPPORTED, and log it: these types have no
 *   samples in memory that is shared with readers. `*sample` stays as it is.
 * - The others: Do what DDS_DataWriter_<operation> does.
 */
#define VUR_DL_DATA_WRITER_DECLARE(T)                                                              \
    typedef struct T##DataWriter {                                                                 \
        DDS_DataWriter _parent;                                                                    \
    } T##DataWriter;                                                                               \
    VUR_DL_EXPORT T##DataWriter *T##DataWriter_narrow(DDS_DataWriter *writer);                     \
    VUR_DL_EXPORT DDS_DataWriter *T##DataWriter_as_datawriter(T##DataWriter *self);                \
    VUR_DL_EXPORT T *T##DataWriter_create_data(T##DataWriter *self);                               \
    VUR_DL_EXPORT T *T##DataWriter_create_data_w_params(                                           \
        T##DataWriter *self, const DDS_TypeAllocationParams_t *alloc_params);                      \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_delete_data(T##DataWriter *self, T *sample);      \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_delete_data_w_params(                             \
        T##DataWriter *self, T *sample, const DDS_TypeDeallocationParams_t *dealloc_params);       \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_get_loan(T##DataWriter *self, T **sample);        \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_discard_loan(T##DataWriter *self, T *sample);     \
    VUR_DL_EXPORT DDS_InstanceHandle_t T##DataWriter_register_instance(T##DataWriter *self,        \
                                                                       const T *sample);           \
    VUR_DL_EXPORT DDS_InstanceHandle_t T##DataWriter_register_instance_w_timestamp(                \
        T##DataWriter *self, const T *sample, const DDS_Time_t *source_timestamp);                 \
    VUR_DL_EXPORT DDS_InstanceHandle_t T##DataWriter_register_instance_w_params(                   \
        T##DataWriter *self, const T *sample, const DDS_WriteParams_t *params);                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_unregister_instance(                              \
        T##DataWriter *self, const T *sample, DDS_InstanceHandle_t handle);                        \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_unregister_instance_w_timestamp(                  \
        T##DataWriter *self, const T *sample, DDS_InstanceHandle_t handle,                         \
        const DDS_Time_t *source_timestamp);                                                       \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_unregister_instance_w_params(                     \
        T##DataWriter *self, const T *sample, const DDS_WriteParams_t *params);                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_write(T##DataWriter *self, const T *sample,       \
                                                       DDS_InstanceHandle_t handle);               \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_write_w_timestamp(                                \
        T##DataWriter *self, const T *sample, DDS_InstanceHandle_t handle,                         \
        const DDS_Time_t *source_timestamp);                                                       \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_write_w_params(                                   \
        T##DataWriter *self, const T *sample, const DDS_WriteParams_t *params);                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_dispose(T##DataWriter *self, const T *sample,     \
                                                         DDS_InstanceHandle_t handle);             \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_dispose_w_timestamp(                              \
        T##DataWriter *self, const T *sample, DDS_InstanceHandle_t handle,                         \
        const DDS_Time_t *source_timestamp);                                                       \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_dispose_w_params(                                 \
        T##DataWriter *self, const T *sample, const DDS_WriteParams_t *params);                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataWriter_get_key_value(T##DataWriter *self, T *key_holder, \
                                                               DDS_InstanceHandle_t handle);       \
    VUR_DL_EXPORT DDS_InstanceHandle_t T##DataWriter_lookup_instance(T##DataWriter *self,          \
                                                                     const T *key_holder)

/* The common forms of read and take: `take` is false for a read and true for a take.
 * TDataReader_read is TDataReader_read_or_takeI with false, TDataReader_take with true, and so on.
 */
#define VUR_DL_DATA_READER_DECLARE_INTERNAL(T)                                                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_read_or_takeI(                                   \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                  \
        DDS_Long max_samples, DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,   \
        DDS_InstanceStateMask instance_states, DDS_Boolean take);                                 \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_read_or_take_w_conditionI(                       \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                  \
        DDS_Long max_samples, DDS_ReadCondition *condition, DDS_Boolean take);                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_read_or_take_next_sample_I(                      \
        T##DataReader *self, T *received_data, DDS_SampleInfo *sample_info, DDS_Boolean take);    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_read_or_take_instanceI(                          \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                  \
        DDS_Long max_samples, DDS_InstanceHandle_t handle, DDS_SampleStateMask sample_states,     \
        DDS_ViewStateMask view_states, DDS_InstanceStateMask instance_states, DDS_Boolean take);  \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_read_or_take_instance_w_conditionI(              \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                  \
        DDS_Long max_samples, DDS_InstanceHandle_t handle, DDS_ReadCondition *condition,          \
        DDS_Boolean take);                                                                        \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_read_or_take_next_instanceI(                     \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                  \
        DDS_Long max_samples, DDS_InstanceHandle_t previous_handle,                               \
        DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,                         \
        DDS_InstanceStateMask instance_states, DDS_Boolean take);                                 \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_read_or_take_next_instance_w_conditionI(         \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                  \
        DDS_Long max_samples, DDS_InstanceHandle_t previous_handle, DDS_ReadCondition *condition, \
        DDS_Boolean take)

/* A read or take delivers the samples in one of two ways (DDS 1.4, 2.2.2.5.3.8):
 *
 *   as copies  when the caller's sequences own elements (maximum above 0)
 *   as a loan  when they own none; _return_loan must give the reader's samples back
 */
#define VUR_DL_DATA_READER_DECLARE_ACCESS(T, access)                                            \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_##access(                                      \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                \
        DDS_Long max_samples, DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states, \
        DDS_InstanceStateMask instance_states);                                                 \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_##access##_w_condition(                        \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                \
        DDS_Long max_samples, DDS_ReadCondition *condition);                                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_##access##_next_sample(                        \
        T##DataReader *self, T *received_data, DDS_SampleInfo *sample_info);                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_##access##_instance(                           \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                \
        DDS_Long max_samples, DDS_InstanceHandle_t handle, DDS_SampleStateMask sample_states,   \
        DDS_ViewStateMask view_states, DDS_InstanceStateMask instance_states);                  \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_##access##_instance_w_condition(               \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                \
        DDS_Long max_samples, DDS_InstanceHandle_t handle, DDS_ReadCondition *condition);       \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_##access##_next_instance(                      \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                \
        DDS_Long max_samples, DDS_InstanceHandle_t previous_handle,                             \
        DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,                       \
        DDS_InstanceStateMask instance_states);                                                 \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_##access##_next_instance_w_condition(          \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                \
        DDS_Long max_samples, DDS_InstanceHandle_t previous_handle, DDS_ReadCondition *condition)

/* Typed reader (DDS 1.4, 2.2.2.5.3).
 *
 * - TDataReader_narrow, _as_datareader: Do what the writer's do ("null reader", "wrong type
 *   reader").
 * - TDataReader_read, _take and variants: Deliver at most `max_samples` samples
 *   (DDS_LENGTH_UNLIMITED: as many as there are). Return OK; NO_DATA, with the data sequence's
 *   length 0; otherwise the result of DDS_DataReader_read_or_take_untypedI.
 *     _w_condition    delivers the samples that the condition selects
 *     _next_sample    copies the next sample that was not read into the caller's initialised record
 *     _instance       delivers samples of one instance
 *     _next_instance  delivers samples of the first instance with data after `previous_handle`;
 *                     DDS_HANDLE_NIL begins
 * - TDataReader_return_loan: Gives a loan back. Both sequences are then empty and owning. Returns
 *   OK, also when nothing was lent; PRECONDITION_NOT_MET when the sequences are not a loan of this
 *   reader.
 * - TDataReader_get_key_value, _lookup_instance: Lead from handle to key and back while the
 *   instance is known: as long as there are samples of it to read, or a writer that has not
 *   unregistered it. For one that is gone they return BAD_PARAMETER and DDS_HANDLE_NIL. Its key is
 *   in the sample that reported its end: the key members of that sample are set although
 *   `valid_data` is false.
 * - The others: Do what DDS_DataReader_<operation> does.
 */
#define VUR_DL_DATA_READER_DECLARE(T)                                                              \
    typedef struct T##DataReader {                                                                 \
        DDS_DataReader _parent;                                                                    \
    } T##DataReader;                                                                               \
    VUR_DL_EXPORT T##DataReader *T##DataReader_narrow(DDS_DataReader *reader);                     \
    VUR_DL_EXPORT DDS_DataReader *T##DataReader_as_datareader(T##DataReader *self);                \
    VUR_DL_DATA_READER_DECLARE_ACCESS(T, read);                                                    \
    VUR_DL_DATA_READER_DECLARE_ACCESS(T, take);                                                    \
    VUR_DL_DATA_READER_DECLARE_INTERNAL(T);                                                        \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_return_loan(                                      \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq);                  \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_get_key_value(T##DataReader *self, T *key_holder, \
                                                               DDS_InstanceHandle_t handle);       \
    VUR_DL_EXPORT DDS_InstanceHandle_t T##DataReader_lookup_instance(T##DataReader *self,          \
                                                                     const T *key_holder);         \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_is_data_consistent(                               \
        T##DataReader *self, DDS_Boolean *is_data_consistent, const T *sample,                     \
        const DDS_SampleInfo *sample_info);                                                        \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_add_sample_to_remote_writer_queue(                \
        T##DataReader *self, const T *sample, const DDS_WriteParams_t *params);                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_add_dispose_to_remote_writer_queue(               \
        T##DataReader *self, const T *sample, const DDS_WriteParams_t *params);                    \
    VUR_DL_EXPORT DDS_ReturnCode_t T##DataReader_add_unregister_to_remote_writer_queue(            \
        T##DataReader *self, const T *sample, const DDS_WriteParams_t *params)

/* ---- The four topic types ------------------------------------------------------------------- */

VUR_DL_TYPE_SUPPORT_DECLARE(VUR_DL_LogMessage);
VUR_DL_DATA_WRITER_DECLARE(VUR_DL_LogMessage);
VUR_DL_DATA_READER_DECLARE(VUR_DL_LogMessage);

VUR_DL_TYPE_SUPPORT_DECLARE(VUR_DL_ADMIN_State);
VUR_DL_DATA_WRITER_DECLARE(VUR_DL_ADMIN_State);
VUR_DL_DATA_READER_DECLARE(VUR_DL_ADMIN_State);

VUR_DL_TYPE_SUPPORT_DECLARE(VUR_DL_ADMIN_CommandRequest);
VUR_DL_DATA_WRITER_DECLARE(VUR_DL_ADMIN_CommandRequest);
VUR_DL_DATA_READER_DECLARE(VUR_DL_ADMIN_CommandRequest);

VUR_DL_TYPE_SUPPORT_DECLARE(VUR_DL_ADMIN_CommandResponse);
VUR_DL_DATA_WRITER_DECLARE(VUR_DL_ADMIN_CommandResponse);
VUR_DL_DATA_READER_DECLARE(VUR_DL_ADMIN_CommandResponse);

VUR_DL_EXTERN_C_END
