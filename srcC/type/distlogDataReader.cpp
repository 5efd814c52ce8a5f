// SPDX-License-Identifier: Apache-2.0
// Typed data readers: the untyped reader, whose samples go into typed sequences as copies or loans.

#include "type/type_list.hpp"
#include "type/typed_entity.hpp"
#include "vur_dl/distlogSupport.h"

namespace {

// The operations of a type's sequence that reading needs.
template <typename T>
struct SequenceOf;

#define VUR_DL_DEFINE_SEQUENCE_OF(T, type_name)                                 \
    template <>                                                                 \
    struct SequenceOf<T> {                                                      \
        static constexpr auto kGetLength = T##Seq_get_length;                   \
        static constexpr auto kSetLength = T##Seq_set_length;                   \
        static constexpr auto kGetMaximum = T##Seq_get_maximum;                 \
        static constexpr auto kHasOwnership = T##Seq_has_ownership;             \
        static constexpr auto kContiguous = T##Seq_get_contiguous_buffer;       \
        static constexpr auto kDiscontiguous = T##Seq_get_discontiguous_buffer; \
        static constexpr auto kLoan = T##Seq_loan_discontiguous;                \
        static constexpr auto kUnloan = T##Seq_unloan;                          \
    };
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_SEQUENCE_OF)
#undef VUR_DL_DEFINE_SEQUENCE_OF

template <typename T, typename Reader>
Reader *narrow(DDS_DataReader *reader, const char *method_name) noexcept {
    static_assert(sizeof(Reader) == sizeof(DDS_DataReader));
    if (reader == nullptr) {
        vur_dl::log_error(method_name, "null reader");
        return nullptr;
    }
    if (!vur_dl::is_type(DDS_DataReader_get_endpoint_type_name(reader), vur_dl::TypeOf<T>::kName)) {
        vur_dl::log_error(method_name, "wrong type reader");
        return nullptr;
    }
    return reinterpret_cast<Reader *>(reader);
}

template <typename Reader>
DDS_DataReader *untyped(Reader *reader) noexcept {
    return reader == nullptr ? nullptr : &reader->_parent;
}

template <typename Reader>
DDS_DataReader *widen(Reader *reader, const char *method_name) noexcept {
    if (reader == nullptr) {
        vur_dl::log_error(method_name, "null reader");
    }
    return untyped(reader);
}

// Selects samples of all instances by their states; of_instance() narrows this to one instance.
KOLT_ReadSelection by_states(DDS_Boolean take, DDS_Long max_samples,
                             DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,
                             DDS_InstanceStateMask instance_states) noexcept {
    KOLT_ReadSelection selection = {};
    selection.take = take;
    selection.scope = KOLT_READ_ALL;
    selection.handle = DDS_HANDLE_NIL;
    selection.sample_states = sample_states;
    selection.view_states = view_states;
    selection.instance_states = instance_states;
    selection.max_samples = max_samples;
    return selection;
}

KOLT_ReadSelection by_condition(DDS_Boolean take, DDS_Long max_samples,
                                DDS_ReadCondition *condition) noexcept {
    KOLT_ReadSelection selection = by_states(take, max_samples, 0, 0, 0);
    selection.condition = condition;
    return selection;
}

KOLT_ReadSelection of_instance(KOLT_ReadSelection selection, KOLT_ReadScope scope,
                               DDS_InstanceHandle_t handle) noexcept {
    selection.scope = scope;
    selection.handle = handle;
    return selection;
}

// Delivers a loan by putting it into the sequence, copies by setting the sequence's length.
template <typename T>
DDS_ReturnCode_t deliver(DDS_DataReader *reader, typename vur_dl::TypeOf<T>::Sequence *received,
                         DDS_SampleInfoSeq *info_seq, void **loan,
                         DDS_UnsignedLong count) noexcept {
    using Sequence = SequenceOf<T>;
    const auto length = static_cast<DDS_Long>(count);
    if (loan == nullptr) {
        return Sequence::kSetLength(received, length) ? DDS_RETCODE_OK : DDS_RETCODE_ERROR;
    }
    if (!Sequence::kLoan(received, reinterpret_cast<T **>(loan), length, length)) {
        DDS_DataReader_return_loan_untypedI(reader, loan, count, info_seq);
        return DDS_RETCODE_ERROR;
    }
    return DDS_RETCODE_OK;
}

template <typename T>
DDS_ReturnCode_t read_or_take(DDS_DataReader *reader, const KOLT_ReadSelection &selection,
                              typename vur_dl::TypeOf<T>::Sequence *received,
                              DDS_SampleInfoSeq *info_seq, const char *method_name) noexcept {
    using Sequence = SequenceOf<T>;
    if (!vur_dl::require(received, method_name, "received_data")) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    void **loan = nullptr;
    DDS_UnsignedLong count = 0;
    const DDS_ReturnCode_t result = DDS_DataReader_read_or_take_untypedI(
        reader, &selection, Sequence::kGetLength(received), Sequence::kGetMaximum(received),
        Sequence::kHasOwnership(received), Sequence::kContiguous(received), sizeof(T), &loan,
        &count, info_seq);
    if (result == DDS_RETCODE_NO_DATA) {
        return Sequence::kSetLength(received, 0) ? DDS_RETCODE_NO_DATA : DDS_RETCODE_ERROR;
    }
    return result == DDS_RETCODE_OK ? deliver<T>(reader, received, info_seq, loan, count) : result;
}

// Reads or takes by a condition. Refuses a NULL condition, which would select by states.
template <typename T>
DDS_ReturnCode_t read_or_take_with_condition(DDS_DataReader *reader,
                                             const KOLT_ReadSelection &selection,
                                             typename vur_dl::TypeOf<T>::Sequence *received,
                                             DDS_SampleInfoSeq *info_seq,
                                             const char *method_name) noexcept {
    return vur_dl::require(selection.condition, method_name, "condition")
               ? read_or_take<T>(reader, selection, received, info_seq, method_name)
               : DDS_RETCODE_BAD_PARAMETER;
}

template <typename T>
DDS_ReturnCode_t return_loan(DDS_DataReader *reader, typename vur_dl::TypeOf<T>::Sequence *received,
                             DDS_SampleInfoSeq *info_seq, const char *method_name) noexcept {
    using Sequence = SequenceOf<T>;
    if (!vur_dl::require(reader, method_name, "reader") ||
        !vur_dl::require(received, method_name, "received_data") ||
        !vur_dl::require(info_seq, method_name, "info_seq")) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    if (Sequence::kHasOwnership(received) && DDS_SampleInfoSeq_has_ownership(info_seq)) {
        return DDS_RETCODE_OK;
    }
    // The maximum counts, because the caller may have shortened the length.
    const DDS_ReturnCode_t result = DDS_DataReader_return_loan_untypedI(
        reader, reinterpret_cast<void **>(Sequence::kDiscontiguous(received)),
        Sequence::kGetMaximum(received), info_seq);
    if (result != DDS_RETCODE_OK) {
        return result;
    }
    if (!Sequence::kUnloan(received)) {
        vur_dl::log_error(method_name, "unloan sequence");
        return DDS_RETCODE_ERROR;
    }
    return DDS_RETCODE_OK;
}

}  // namespace

#define VUR_DL_DEFINE_READER_STATES(T, type_name)                                                  \
    DDS_ReturnCode_t T##DataReader_read_or_takeI(                                                  \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                   \
        DDS_Long max_samples, DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,    \
        DDS_InstanceStateMask instance_states, DDS_Boolean take) {                                 \
        return read_or_take<T>(                                                                    \
            untyped(self),                                                                         \
            by_states(take, max_samples, sample_states, view_states, instance_states),             \
            received_data, info_seq, __func__);                                                    \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_read_or_take_instanceI(                                         \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                   \
        DDS_Long max_samples, DDS_InstanceHandle_t handle, DDS_SampleStateMask sample_states,      \
        DDS_ViewStateMask view_states, DDS_InstanceStateMask instance_states, DDS_Boolean take) {  \
        return read_or_take<T>(                                                                    \
            untyped(self),                                                                         \
            of_instance(by_states(take, max_samples, sample_states, view_states, instance_states), \
                        KOLT_READ_INSTANCE, handle),                                               \
            received_data, info_seq, __func__);                                                    \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_read_or_take_next_instanceI(                                    \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                   \
        DDS_Long max_samples, DDS_InstanceHandle_t previous_handle,                                \
        DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,                          \
        DDS_InstanceStateMask instance_states, DDS_Boolean take) {                                 \
        return read_or_take<T>(                                                                    \
            untyped(self),                                                                         \
            of_instance(by_states(take, max_samples, sample_states, view_states, instance_states), \
                        KOLT_READ_NEXT_INSTANCE, previous_handle),                                 \
            received_data, info_seq, __func__);                                                    \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_READER_STATES)

#define VUR_DL_DEFINE_READER_CONDITIONS(T, type_name)                                             \
    DDS_ReturnCode_t T##DataReader_read_or_take_w_conditionI(                                     \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                  \
        DDS_Long max_samples, DDS_ReadCondition *condition, DDS_Boolean take) {                   \
        return read_or_take_with_condition<T>(untyped(self),                                      \
                                              by_condition(take, max_samples, condition),         \
                                              received_data, info_seq, __func__);                 \
    }                                                                                             \
    DDS_ReturnCode_t T##DataReader_read_or_take_instance_w_conditionI(                            \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                  \
        DDS_Long max_samples, DDS_InstanceHandle_t handle, DDS_ReadCondition *condition,          \
        DDS_Boolean take) {                                                                       \
        return read_or_take_with_condition<T>(                                                    \
            untyped(self),                                                                        \
            of_instance(by_condition(take, max_samples, condition), KOLT_READ_INSTANCE, handle),  \
            received_data, info_seq, __func__);                                                   \
    }                                                                                             \
    DDS_ReturnCode_t T##DataReader_read_or_take_next_instance_w_conditionI(                       \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                  \
        DDS_Long max_samples, DDS_InstanceHandle_t previous_handle, DDS_ReadCondition *condition, \
        DDS_Boolean take) {                                                                       \
        return read_or_take_with_condition<T>(                                                    \
            untyped(self),                                                                        \
            of_instance(by_condition(take, max_samples, condition), KOLT_READ_NEXT_INSTANCE,      \
                        previous_handle),                                                         \
            received_data, info_seq, __func__);                                                   \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_READER_CONDITIONS)

// The public forms of one access: `access` is read or take, and `is_take` says which.
#define VUR_DL_DEFINE_READER_ACCESS(T, access, is_take)                                            \
    DDS_ReturnCode_t T##DataReader_##access(                                                       \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                   \
        DDS_Long max_samples, DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,    \
        DDS_InstanceStateMask instance_states) {                                                   \
        return T##DataReader_read_or_takeI(self, received_data, info_seq, max_samples,             \
                                           sample_states, view_states, instance_states, is_take);  \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_##access##_w_condition(                                         \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                   \
        DDS_Long max_samples, DDS_ReadCondition *condition) {                                      \
        return T##DataReader_read_or_take_w_conditionI(self, received_data, info_seq, max_samples, \
                                                       condition, is_take);                        \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_##access##_next_sample(T##DataReader *self, T *received_data,   \
                                                          DDS_SampleInfo *sample_info) {           \
        return T##DataReader_read_or_take_next_sample_I(self, received_data, sample_info,          \
                                                        is_take);                                  \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_##access##_instance(                                            \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                   \
        DDS_Long max_samples, DDS_InstanceHandle_t handle, DDS_SampleStateMask sample_states,      \
        DDS_ViewStateMask view_states, DDS_InstanceStateMask instance_states) {                    \
        return T##DataReader_read_or_take_instanceI(self, received_data, info_seq, max_samples,    \
                                                    handle, sample_states, view_states,            \
                                                    instance_states, is_take);                     \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_##access##_instance_w_condition(                                \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                   \
        DDS_Long max_samples, DDS_InstanceHandle_t handle, DDS_ReadCondition *condition) {         \
        return T##DataReader_read_or_take_instance_w_conditionI(                                   \
            self, received_data, info_seq, max_samples, handle, condition, is_take);               \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_##access##_next_instance(                                       \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                   \
        DDS_Long max_samples, DDS_InstanceHandle_t previous_handle,                                \
        DDS_SampleStateMask sample_states, DDS_ViewStateMask view_states,                          \
        DDS_InstanceStateMask instance_states) {                                                   \
        return T##DataReader_read_or_take_next_instanceI(                                          \
            self, received_data, info_seq, max_samples, previous_handle, sample_states,            \
            view_states, instance_states, is_take);                                                \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_##access##_next_instance_w_condition(                           \
        T##DataReader *self, T##Seq *received_data, DDS_SampleInfoSeq *info_seq,                   \
        DDS_Long max_samples, DDS_InstanceHandle_t previous_handle,                                \
        DDS_ReadCondition *condition) {                                                            \
        return T##DataReader_read_or_take_next_instance_w_conditionI(                              \
            self, received_data, info_seq, max_samples, previous_handle, condition, is_take);      \
    }

#define VUR_DL_DEFINE_READER_ACCESSES(T, type_name)         \
    VUR_DL_DEFINE_READER_ACCESS(T, read, DDS_BOOLEAN_FALSE) \
    VUR_DL_DEFINE_READER_ACCESS(T, take, DDS_BOOLEAN_TRUE)
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_READER_ACCESSES)

#define VUR_DL_DEFINE_READER_SAMPLES(T, type_name)                                                 \
    T##DataReader *T##DataReader_narrow(DDS_DataReader *reader) {                                  \
        return narrow<T, T##DataReader>(reader, __func__);                                         \
    }                                                                                              \
    DDS_DataReader *T##DataReader_as_datareader(T##DataReader *self) {                             \
        return widen(self, __func__);                                                              \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_read_or_take_next_sample_I(                                     \
        T##DataReader *self, T *received_data, DDS_SampleInfo *sample_info, DDS_Boolean take) {    \
        return vur_dl::require(received_data, __func__, "received_data")                           \
                   ? DDS_DataReader_read_or_take_next_sample_untypedI(untyped(self), take,         \
                                                                      received_data, sample_info)  \
                   : DDS_RETCODE_BAD_PARAMETER;                                                    \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_return_loan(T##DataReader *self, T##Seq *received_data,         \
                                               DDS_SampleInfoSeq *info_seq) {                      \
        return return_loan<T>(untyped(self), received_data, info_seq, __func__);                   \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_get_key_value(T##DataReader *self, T *key_holder,               \
                                                 DDS_InstanceHandle_t handle) {                    \
        return DDS_DataReader_get_key_value(untyped(self), key_holder, handle);                    \
    }                                                                                              \
    DDS_InstanceHandle_t T##DataReader_lookup_instance(T##DataReader *self, const T *key_holder) { \
        return DDS_DataReader_lookup_instance(untyped(self), key_holder);                          \
    }                                                                                              \
    DDS_ReturnCode_t T##DataReader_is_data_consistent(                                             \
        T##DataReader *self, DDS_Boolean *is_data_consistent, const T *sample,                     \
        const DDS_SampleInfo *sample_info) {                                                       \
        return DDS_DataReader_is_data_consistent(untyped(self), is_data_consistent, sample,        \
                                                 sample_info);                                     \
    }
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_READER_SAMPLES)

#define VUR_DL_DEFINE_READER_INJECTION(T, change)                                          \
    DDS_ReturnCode_t T##DataReader_add_##change##_to_remote_writer_queue(                  \
        T##DataReader *self, const T *sample, const DDS_WriteParams_t *params) {           \
        return DDS_DataReader_add_##change##_to_remote_writer_queue(untyped(self), sample, \
                                                                    params);               \
    }
#define VUR_DL_DEFINE_READER_INJECTIONS(T, type_name) \
    VUR_DL_DEFINE_READER_INJECTION(T, sample)         \
    VUR_DL_DEFINE_READER_INJECTION(T, dispose)        \
    VUR_DL_DEFINE_READER_INJECTION(T, unregister)
VUR_DL_FOR_EACH_TOPIC_TYPE(VUR_DL_DEFINE_READER_INJECTIONS)
