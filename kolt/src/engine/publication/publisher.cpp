// SPDX-License-Identifier: Apache-2.0
// Publishers: the group of endpoints for writers, and waiting for acknowledgments.
#include "engine/publication/publisher.hpp"

#include <algorithm>
#include <chrono>

#include "engine/endpoint/endpoint_group_definitions.hpp"
#include "engine/publication/data_writer.hpp"

namespace kolt::engine {

template class EndpointGroup<PublisherTraits>;

// Waits for one writer after the other, for all of them within the one span.
DDS_ReturnCode_t Publisher::wait_for_acknowledgments(const DDS_Duration_t &max_wait,
                                                     const char *method) {
    using Clock = std::chrono::steady_clock;
    if (!is_enabled()) {
        return not_enabled(method);
    }
    // A writer may be deleted meanwhile; the engine then rejects its handle.
    std::vector<dds_entity_t> writers;
    {
        const std::lock_guard lock(participant_.tree());
        for (const auto &writer : endpoints_) {
            if (writer->is_enabled()) {
                writers.push_back(writer->engine());
            }
        }
    }
    const dds_duration_t span = to_engine(max_wait);
    const Clock::time_point start = Clock::now();
    for (const dds_entity_t writer : writers) {
        dds_duration_t left = span;
        if (span != cyclone::kInfinity) {
            const auto spent =
                std::chrono::duration_cast<std::chrono::nanoseconds>(Clock::now() - start);
            left = std::max<dds_duration_t>(span - spent.count(), 0);
        }
        const dds_return_t result = dds_wait_for_acks(writer, left);
        if (result < 0) {
            return to_return_code(result);
        }
    }
    return DDS_RETCODE_OK;
}

}  // namespace kolt::engine
