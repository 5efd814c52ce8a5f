// SPDX-License-Identifier: Apache-2.0
// The writer that an instance of a reader had its last sample of, and which others the reader's cache
// listens to (DDS 1.4, 2.2.3.9 and 2.2.3.17). The cache decides so itself, and does not tell.
#pragma once

#include <cstring>

#include "engine/cyclone/cyclone.hpp"

namespace kolt::engine {

class InstanceOwner {
  public:
    struct Rules {
        bool exclusive = false;            // ownership
        bool by_source_timestamp = false;  // destination order
    };

    // True when the cache takes what the writer says of the instance.
    bool accepts(const Rules &rules, const ddsi_writer_info &writer,
                 const ddsi_serdata &sample) const {
        const std::int64_t time = sample.timestamp.v;
        if (rules.by_source_timestamp && (time < time_ || (time == time_ && !precedes(writer)))) {
            return false;
        }
        if (!rules.exclusive || !is_live_ || writer.iid == writer_.iid) {
            return true;
        }
        return writer.ownership_strength != writer_.ownership_strength
                   ? writer.ownership_strength > writer_.ownership_strength
                   : precedes(writer);
    }
    // Notes what the cache took.
    void note(const ddsi_writer_info &writer, const ddsi_serdata &sample) {
        writer_ = writer;
        time_ = sample.timestamp.v;
        is_live_ = true;
    }
    // Notes that a writer has left the instance.
    void leave(std::uint64_t writer) { is_live_ = is_live_ && writer_.iid != writer; }

  private:
    bool precedes(const ddsi_writer_info &writer) const {
        return (is_live_ && writer.iid == writer_.iid) ||
               std::memcmp(&writer.guid, &writer_.guid, sizeof writer.guid) < 0;
    }

    ddsi_writer_info writer_{};
    std::int64_t time_ = INT64_MIN;
    bool is_live_ = false;
};

}  // namespace kolt::engine
