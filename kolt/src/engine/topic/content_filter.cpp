// SPDX-License-Identifier: Apache-2.0
// Compiled filters, their parameters, and the report of what is wrong with either.
#include "engine/topic/content_filter.hpp"

#include <cstdint>
#include <string>
#include <vector>

#include "engine/barrier/barrier.hpp"
#include "filter/filter.hpp"

namespace kolt::engine {

namespace {

std::vector<const char *> texts(const DDS_StringSeq *parameters) {
    std::vector<const char *> result;
    const DDS_UnsignedLong count = parameters != nullptr ? DDS_StringSeq_get_length(parameters) : 0;
    for (DDS_UnsignedLong i = 0; i < count; ++i) {
        const char *const text = *DDS_StringSeq_get_reference(parameters, static_cast<DDS_Long>(i));
        result.push_back(text != nullptr ? text : "");
    }
    return result;
}

DDS_ReturnCode_t report(const kolt::filter::Error &error, const char *method) {
    if (error.column == 0) {
        return fail(DDS_RETCODE_BAD_PARAMETER, method, "wrong filter: %s", error.text.c_str());
    }
    return fail(DDS_RETCODE_BAD_PARAMETER, method, "wrong filter at column %zu: %s", error.column,
                error.text.c_str());
}

}  // namespace

ContentFilter::ContentFilter(std::shared_ptr<RegisteredType> type,
                             std::unique_ptr<kolt::filter::Filter> filter)
    : type_(std::move(type)), filter_(std::move(filter)) {}

ContentFilter::~ContentFilter() = default;

std::unique_ptr<ContentFilter> ContentFilter::create(std::shared_ptr<RegisteredType> type,
                                                     const char *expression,
                                                     const DDS_StringSeq *parameters,
                                                     const char *method) {
    kolt::filter::Error error;
    auto filter =
        kolt::filter::Filter::compile(*type->type_code(), expression, texts(parameters), error);
    if (filter == nullptr) {
        report(error, method);
        return nullptr;
    }
    return std::unique_ptr<ContentFilter>(new ContentFilter(std::move(type), std::move(filter)));
}

bool ContentFilter::accepts(const Serdata &serdata) const noexcept {
    return !serdata.has_data() || filter_->matches(serdata.bytes(), serdata.size());
}

const char *ContentFilter::expression() const {
    return filter_->expression().c_str();
}

DDS_ReturnCode_t ContentFilter::get_parameters(DDS_StringSeq *parameters) const {
    const auto current = filter_->parameters();
    const auto count = static_cast<DDS_Long>(current->size());
    if (DDS_StringSeq_ensure_length(parameters, count, count) == DDS_BOOLEAN_FALSE) {
        return DDS_RETCODE_OUT_OF_RESOURCES;
    }
    for (DDS_Long i = 0; i < count; ++i) {
        DDS_Char **const element = DDS_StringSeq_get_reference(parameters, i);
        if (DDS_String_replace(element, (*current)[static_cast<std::size_t>(i)].c_str()) ==
            nullptr) {
            return DDS_RETCODE_OUT_OF_RESOURCES;
        }
    }
    return DDS_RETCODE_OK;
}

DDS_ReturnCode_t ContentFilter::set_parameters(const DDS_StringSeq &parameters,
                                               const char *method) {
    kolt::filter::Error error;
    return filter_->set_parameters(texts(&parameters), error) ? DDS_RETCODE_OK
                                                              : report(error, method);
}

}  // namespace kolt::engine
