// SPDX-License-Identifier: Apache-2.0
// The typed sequences of the entity API.
#include "kolt/condition.h"
#include "kolt/sequence_define.h"
#include "kolt/status.h"

namespace {

// The elements may be pointers, which are copied as they stand.
template <typename T>
constexpr KOLT_SequenceElementType plain(const char *name) {
    return {name, sizeof(T), nullptr, nullptr, nullptr};  // NOLINT(bugprone-sizeof-expression)
}
constexpr KOLT_SequenceElementType kSampleInfo = plain<DDS_SampleInfo>("DDS_SampleInfoSeq");
constexpr KOLT_SequenceElementType kCondition = plain<DDS_ConditionPtr>("DDS_ConditionSeq");

}  // namespace

KOLT_SEQUENCE_DEFINE(DDS_SampleInfoSeq, DDS_SampleInfo, &kSampleInfo);
// NOLINTNEXTLINE(bugprone-sizeof-expression)
KOLT_SEQUENCE_DEFINE(DDS_ConditionSeq, DDS_ConditionPtr, &kCondition);
