// SPDX-License-Identifier: Apache-2.0
// The types that the fuzzers of the codec know beforehand.
#pragma once

#include <vur_dl/distlog.h>

#include <cstdint>
#include <vector>

#include "support/types/test_types.h"

namespace fuzz {

using namespace support;

// In the order of the corpus: appended to, never reordered.
inline const std::vector<const DDS_TypeCode *> &fixed_types() {
    static const std::vector<const DDS_TypeCode *> kTypes = {
        everything_type(),
        message_type(),
        mutable_request_type(),
        final_request_type(),
        final_options_type(),
        mutable_options_type(),
        appendable_version2_type(),
        mutable_version2_type(),
        mutable_holder_type(),
        appendable_holder_type(),
        large_type(),
        appendable_choice_type(),
        VUR_DL_LogMessage_get_typecode(),
        VUR_DL_ADMIN_State_get_typecode(),
        VUR_DL_ADMIN_CommandRequest_get_typecode(),
        VUR_DL_ADMIN_CommandResponse_get_typecode(),
        VUR_DL_ADMIN_Command_get_typecode(),
        VUR_DL_HostAndAppId_get_typecode(),
        VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity_get_typecode(),
        appendable_options_type(),
        appendable_version1_type(),
        mutable_version1_type(),
        strict_version2_type(),
        final_holder_type(),
        final_choice_type(),
        mutable_choice_type(),
        fallback_type(),
        point_type(),
    };
    return kTypes;
}
// The first byte of an input chooses one of these; those past the end are types made up on the way.
constexpr std::uint8_t kTypeSelections = 32;

}  // namespace fuzz
