// SPDX-License-Identifier: Apache-2.0
// The sequences of the thirteen types.

#include "kolt/sequence_define.h"
#include "type/type_list.hpp"
#include "vur_dl/distlog.h"

namespace {

template <typename T>
constexpr KOLT_SequenceElementType kElementType = {
    vur_dl::TypeOf<T>::kSequenceName, sizeof(T), vur_dl::initialize_record<T>,
    vur_dl::finalize_record<T>, vur_dl::copy_record<T>};

}  // namespace

#define VUR_DL_DEFINE_SEQUENCE(T, type_name) KOLT_SEQUENCE_DEFINE(T##Seq, T, &kElementType<T>);
VUR_DL_FOR_EACH_TYPE(VUR_DL_DEFINE_SEQUENCE)
