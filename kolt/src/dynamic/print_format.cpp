// SPDX-License-Identifier: Apache-2.0
// Print formats: makes the formatter's format of the property that a caller gives.

#include "kolt/print_format.h"

namespace {

constexpr DDS_UnsignedLong kIndentWidth = 4;

}  // namespace

DDS_ReturnCode_t DDS_PrintFormatProperty_to_print_format(const DDS_PrintFormatProperty *self,
                                                         DDS_PrintFormat *format) {
    if (self == nullptr || format == nullptr) {
        return DDS_RETCODE_BAD_PARAMETER;
    }
    switch (self->kind) {
        case DDS_DEFAULT_PRINT_FORMAT:
        case DDS_XML_PRINT_FORMAT:
        case DDS_JSON_PRINT_FORMAT:
            break;
        default:
            return DDS_RETCODE_BAD_PARAMETER;
    }
    const bool pretty = self->pretty_print != 0;
    *format = {self->kind, pretty ? kIndentWidth : 0, pretty ? "\n" : "", self->enum_as_int,
               self->include_root_elements};
    return DDS_RETCODE_OK;
}
