// SPDX-License-Identifier: Apache-2.0
// A plugin record of one of the topic types, and what is attached through it.
#pragma once

#include <array>
#include <vector>

#include "support/types/topic_types.h"

namespace support {

// A plugin record that goes with the scope.
template <typename T>
class Plugin {
  public:
    Plugin() : plugin_(TopicType<T>::new_plugin()) { EXPECT_NE(plugin_, nullptr); }
    ~Plugin() { TopicType<T>::delete_plugin(plugin_); }
    Plugin(const Plugin &) = delete;
    Plugin &operator=(const Plugin &) = delete;
    const KOLT_TypePlugin &operator*() const { return *plugin_; }
    const KOLT_TypePlugin *operator->() const { return plugin_; }

  private:
    KOLT_TypePlugin *plugin_;
};

// The encapsulations of the types, all of which are mutable.
constexpr std::array<DDS_UnsignedShort, 4> kMutableEncapsulations = {
    KOLT_ENCAPSULATION_PL_CDR_BE, KOLT_ENCAPSULATION_PL_CDR_LE, KOLT_ENCAPSULATION_PL_CDR2_BE,
    KOLT_ENCAPSULATION_PL_CDR2_LE};

// A participant, a writer and a reader of the type, attached and detached through the record.
template <typename T>
class Attached {
  public:
    Attached() {
        const KOLT_TypePluginParticipantInfo info = {40};
        participant = plugin->on_participant_attached(nullptr, &info, 1, nullptr, nullptr);
        EXPECT_NE(participant, nullptr);
        writer = attach(KOLT_TYPE_PLUGIN_WRITER);
        reader = attach(KOLT_TYPE_PLUGIN_READER);
        EXPECT_NE(writer, nullptr);
        EXPECT_NE(reader, nullptr);
    }
    ~Attached() {
        plugin->on_endpoint_detached(reader);
        plugin->on_endpoint_detached(writer);
        plugin->on_participant_detached(participant);
    }
    Attached(const Attached &) = delete;
    Attached &operator=(const Attached &) = delete;

    KOLT_TypePluginEndpointData *attach(KOLT_TypePluginEndpointKind kind) {
        const KOLT_TypePluginEndpointInfo info = {kind, DDS_XCDR2_DATA_REPRESENTATION, 0};
        return plugin->on_endpoint_attached(participant, &info, 1, nullptr);
    }
    // Returns the bytes that `write` (serialize or serialize_key) makes of the sample.
    template <typename Write>
    std::vector<DDS_Octet> bytes_of(Write write, const T &sample, DDS_UnsignedShort encapsulation) {
        std::vector<DDS_Octet> buffer(8192);
        KOLT_CdrStream stream = {};
        KOLT_CdrStream_set(&stream, buffer.data(), buffer.size());
        EXPECT_TRUE(write(writer, &sample, &stream, 1, encapsulation, 1, nullptr));
        buffer.resize(stream.position);
        return buffer;
    }
    // Reads them back with `read` (deserialize, deserialize_key or deserialize_key_sample).
    template <typename Read>
    bool read_back(Read read, std::vector<DDS_Octet> &bytes, T *sample) {
        KOLT_CdrStream stream = {};
        KOLT_CdrStream_set(&stream, bytes.data(), bytes.size());
        void *target = sample;
        DDS_Boolean drop = DDS_BOOLEAN_TRUE;
        const bool done = read(reader, &target, &drop, &stream, 1, 1, nullptr) != 0;
        EXPECT_FALSE(drop);
        EXPECT_EQ(target, sample);
        return done;
    }

    Plugin<T> plugin;
    KOLT_TypePluginParticipantData *participant = nullptr;
    KOLT_TypePluginEndpointData *writer = nullptr;
    KOLT_TypePluginEndpointData *reader = nullptr;
};

}  // namespace support
