// SPDX-License-Identifier: Apache-2.0
// One document of QoS profiles: its libraries and profiles, checked.
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "qos/profile_reader.hpp"
#include "xml/xml_parser.hpp"

namespace kolt::qos {

enum class EntityKind { kParticipant, kPublisher, kSubscriber, kTopic, kDataWriter, kDataReader };

template <typename Qos>
constexpr EntityKind kKindOf = EntityKind::kParticipant;
template <>
inline constexpr EntityKind kKindOf<DDS_PublisherQos> = EntityKind::kPublisher;
template <>
inline constexpr EntityKind kKindOf<DDS_SubscriberQos> = EntityKind::kSubscriber;
template <>
inline constexpr EntityKind kKindOf<DDS_TopicQos> = EntityKind::kTopic;
template <>
inline constexpr EntityKind kKindOf<DDS_DataWriterQos> = EntityKind::kDataWriter;
template <>
inline constexpr EntityKind kKindOf<DDS_DataReaderQos> = EntityKind::kDataReader;

// The QoS of one kind of entity, for the topics whose names match a filter.
struct ProfileElement {
    EntityKind kind;
    std::string topic_filter;  // a pattern as of fnmatch(3); empty: every topic
    const DDS_XMLObject *object;
};

struct Profile {
    std::string library;
    std::string name;
    std::string base_library;  // both empty: no base
    std::string base_name;
    const Profile *base = nullptr;
    bool is_default = false;
    DDS_UnsignedLong line = 0;
    std::vector<ProfileElement> elements;

    // The element for an entity; nullptr when the profile has none. See ProfileStore::get_qos.
    const ProfileElement *find(EntityKind kind, const char *topic_name) const;
};

// "Library::Profile"
std::string qualified_name(std::string_view library, std::string_view profile);

class ProfileDocument {
  public:
    // Finds a profile of another document; nullptr when there is none.
    using FindProfile =
        std::function<const Profile *(const std::string &library, const std::string &name)>;

    // Reads a document: everything in it is checked, bases are linked. False when it is wrong, or
    // defines a profile that `find_other` knows already.
    bool read(xml::ObjectPtr root, const FindProfile &find_other, ReadError &error);

    // Libraries, in order, also those without profiles. A library may stand twice.
    const std::vector<std::string> &libraries() const { return libraries_; }
    const std::vector<std::unique_ptr<Profile>> &profiles() const { return profiles_; }

  private:
    bool read_library(const DDS_XMLObject *element, ReadError &error);
    bool read_profile(const DDS_XMLObject *element, const std::string &library, ReadError &error);
    bool read_element(const DDS_XMLObject *element, Profile &profile, ReadError &error);
    bool link_bases(const FindProfile &find_other, ReadError &error);
    bool check_cycles(ReadError &error) const;

    xml::ObjectPtr root_;  // what the profiles' elements point into
    std::vector<std::string> libraries_;
    std::vector<std::unique_ptr<Profile>> profiles_;
};

}  // namespace kolt::qos
