// SPDX-License-Identifier: Apache-2.0
// The filter of a content-filtered topic or a query condition, over serialised samples.
#pragma once

#include <memory>

#include "engine/data/registered_type.hpp"
#include "engine/data/serdata.hpp"
#include "kolt/sequence.h"

namespace kolt::filter {
class Filter;
}

namespace kolt::engine {

class ContentFilter {
  public:
    // nullptr, and a log message that tells where, for an expression or parameters that are wrong
    // for the type.
    static std::unique_ptr<ContentFilter> create(std::shared_ptr<RegisteredType> type,
                                                 const char *expression,
                                                 const DDS_StringSeq *parameters,
                                                 const char *method);
    ~ContentFilter();
    ContentFilter(const ContentFilter &) = delete;
    ContentFilter &operator=(const ContentFilter &) = delete;

    // True for a sample that the filter lets through. Samples without data pass always: readers
    // must learn that an instance is gone. Malformed samples do not pass. May run while parameters
    // are being set.
    bool accepts(const Serdata &serdata) const noexcept;

    const char *expression() const;
    DDS_ReturnCode_t get_parameters(DDS_StringSeq *parameters) const;
    // Replaces the parameters. BAD_PARAMETER, and a log message, when they do not fit the
    // expression; the old ones then stay.
    DDS_ReturnCode_t set_parameters(const DDS_StringSeq &parameters, const char *method);

  private:
    ContentFilter(std::shared_ptr<RegisteredType> type,
                  std::unique_ptr<kolt::filter::Filter> filter);

    std::shared_ptr<RegisteredType> type_;
    std::unique_ptr<kolt::filter::Filter> filter_;
};

}  // namespace kolt::engine
