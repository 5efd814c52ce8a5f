// SPDX-License-Identifier: Apache-2.0
// The C functions of content filters.

#include "kolt/filter.h"

#include <algorithm>
#include <memory>
#include <new>
#include <span>

#include "filter/filter.hpp"

struct KOLT_Filter {
    std::unique_ptr<kolt::filter::Filter> filter;
};

namespace {

constexpr DDS_UnsignedLong kMaximumParameters = 100;

void fill(KOLT_FilterError *out, const kolt::filter::Error &error) {
    if (out != nullptr) {
        out->column = static_cast<DDS_UnsignedLong>(error.column);
        const std::size_t length = std::min(error.text.size(), sizeof out->text - 1);
        std::copy_n(error.text.data(), length, out->text);
        out->text[length] = '\0';
    }
}

void fill(KOLT_FilterError *out, const char *text) {
    if (out != nullptr) {
        out->column = 0;
        const std::size_t length = std::char_traits<char>::length(text);
        std::copy_n(text, length + 1, out->text);
    }
}

bool are_valid(const DDS_Char *const *parameters, DDS_UnsignedLong count) {
    return count <= kMaximumParameters && (parameters != nullptr || count == 0);
}

}  // namespace

KOLT_Filter *KOLT_Filter_new(const DDS_TypeCode *type, const DDS_Char *expression,
                             const DDS_Char *const *parameters, DDS_UnsignedLong parameter_count,
                             KOLT_FilterError *error) {
    if (type == nullptr || expression == nullptr || !are_valid(parameters, parameter_count)) {
        fill(error, "bad parameter");
        return nullptr;
    }
    kolt::filter::Error what;
    auto filter = kolt::filter::Filter::compile(*type, expression,
                                                std::span(parameters, parameter_count), what);
    if (filter == nullptr) {
        fill(error, what);
        return nullptr;
    }
    auto *self = new (std::nothrow) KOLT_Filter{std::move(filter)};
    if (self == nullptr) {
        fill(error, "out of memory");
    }
    return self;
}

void KOLT_Filter_delete(KOLT_Filter *self) {
    delete self;
}

DDS_Boolean KOLT_Filter_matches(const KOLT_Filter *self, const DDS_Octet *bytes,
                                std::size_t length) {
    return self != nullptr && bytes != nullptr && self->filter->matches(bytes, length);
}

DDS_Boolean KOLT_Filter_set_parameters(KOLT_Filter *self, const DDS_Char *const *parameters,
                                       DDS_UnsignedLong parameter_count, KOLT_FilterError *error) {
    if (self == nullptr || !are_valid(parameters, parameter_count)) {
        fill(error, "bad parameter");
        return DDS_BOOLEAN_FALSE;
    }
    kolt::filter::Error what;
    const bool is_set = self->filter->set_parameters(std::span(parameters, parameter_count), what);
    if (!is_set) {
        fill(error, what);
    }
    return is_set;
}

const DDS_Char *KOLT_Filter_expression(const KOLT_Filter *self) {
    return self != nullptr ? self->filter->expression().c_str() : nullptr;
}

DDS_UnsignedLong KOLT_Filter_parameter_count(const KOLT_Filter *self) {
    return self != nullptr ? static_cast<DDS_UnsignedLong>(self->filter->parameters()->size()) : 0;
}

DDS_Char *KOLT_Filter_get_parameter(const KOLT_Filter *self, DDS_UnsignedLong index) {
    if (self == nullptr) {
        return nullptr;
    }
    const auto parameters = self->filter->parameters();
    return index < parameters->size() ? DDS_String_dup((*parameters)[index].c_str()) : nullptr;
}
