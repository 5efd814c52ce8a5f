// SPDX-License-Identifier: Apache-2.0
// The process's QoS profiles, from the documents that the factory's profile QoS and the environment
// name. Every function may be called from any thread.
//
// Documents are loaded on the first look-up, or by load(), in this order: those that the
// environment variable KOLT_QOS_PROFILES names (paths or file:// URLs, separated by semicolons),
// the file KOLT_QOS_PROFILES.xml in the working directory, the profile QoS's url_profile, its
// string_profile. A document is loaded whole or, when anything in it is wrong, not at all. A base
// profile must stand in the same document or in one loaded before. Of several profiles marked
// `is_default_qos` the one loaded last holds.
#pragma once

#include <string_view>

#include "kolt/qos.h"

namespace kolt::qos {

class ProfileStore {
  public:
    ProfileStore();
    ~ProfileStore();
    ProfileStore(const ProfileStore &) = delete;
    ProfileStore &operator=(const ProfileStore &) = delete;

    // Remembers the sources of profiles. New ones are loaded at the next look-up or load();
    // profiles of a source that is not named any more stay until reload().
    DDS_ReturnCode_t set_sources(const DDS_ProfileQosPolicy &sources);

    // Adds a document to the sources, behind all others, and loads it. A document that is wrong is
    // not added. An added one stays among the sources until unload().
    DDS_ReturnCode_t add_source(const char *path_or_url);

    // Loads what is not loaded yet. ERROR when a document is wrong; the others are loaded all the
    // same, and the wrong one is tried again by the next load().
    DDS_ReturnCode_t load();
    DDS_ReturnCode_t reload();
    // Forgets all profiles. Look-ups find none until load(), reload() or set_sources().
    DDS_ReturnCode_t unload();
    // Forgets profiles and sources: the state at the start of the process.
    void reset();

    // Names of the libraries, and of the profiles of a library (BAD_PARAMETER when it is unknown),
    // in the order in which they were loaded.
    DDS_ReturnCode_t library_names(DDS_StringSeq &names);
    DDS_ReturnCode_t profile_names(DDS_StringSeq &names, const char *library_name);

    // QoS as a profile says: the standard's default with the chosen element of every profile in the
    // chain of bases applied, the outermost base first. The element chosen is the first whose
    // topic_filter matches; without a topic name (nullptr) it is the first without a filter, or
    // with the filter "*". BAD_PARAMETER, and `qos` unchanged, for an unknown library or profile,
    // which is logged as a message of `method_name`.
    template <typename Qos>
    DDS_ReturnCode_t get_qos(Qos &qos, const char *library_name, const char *profile_name,
                             const char *topic_name, const char *method_name);

    // QoS as the default profile (`is_default_qos`) says. False, and `qos` unchanged, when there is
    // no default profile, or when neither it nor a base of it has an element for this kind of
    // entity and this topic.
    template <typename Qos>
    bool default_qos(Qos &qos, const char *topic_name);

    bool default_participant_qos(DDS_DomainParticipantQos *qos) {
        return default_qos(*qos, nullptr);
    }
    bool default_publisher_qos(DDS_PublisherQos *qos) { return default_qos(*qos, nullptr); }
    bool default_subscriber_qos(DDS_SubscriberQos *qos) { return default_qos(*qos, nullptr); }
    // `topic_name` may be nullptr.
    bool default_topic_qos(const char *topic_name, DDS_TopicQos *qos) {
        return default_qos(*qos, topic_name);
    }
    bool default_datawriter_qos(const char *topic_name, DDS_DataWriterQos *qos) {
        return default_qos(*qos, topic_name);
    }
    bool default_datareader_qos(const char *topic_name, DDS_DataReaderQos *qos) {
        return default_qos(*qos, topic_name);
    }

  private:
    struct State;
    State *state_;  // nullptr when memory ran out at the start; every function then fails
};

// The one of this process. It is never destroyed, so that it outlives every other static object.
ProfileStore &profile_store();

}  // namespace kolt::qos
