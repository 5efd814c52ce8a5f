// SPDX-License-Identifier: Apache-2.0
// Reading one document of QoS profiles.

#include "qos/profile_document.hpp"

#include <fnmatch.h>

#include <algorithm>
#include <map>
#include <set>

#include "kolt_internal/xml_attributes.hpp"

namespace kolt::qos {
namespace {

// Reads the element into a default record, to see whether it is right.
template <typename Qos>
bool check_element(const DDS_XMLObject *element, ReadError &error) {
    OwnedQos<Qos> qos;
    return ProfileReader(error).read(element, *qos);
}

struct ElementRow {
    std::string_view tag_name;
    EntityKind kind;
    bool has_topic;
    bool (*check)(const DDS_XMLObject *element, ReadError &error);
};

template <typename Qos>
constexpr ElementRow element_row(std::string_view tag_name, bool has_topic) {
    return {tag_name, kKindOf<Qos>, has_topic, check_element<Qos>};
}

constexpr ElementRow kElements[] = {
    element_row<DDS_DomainParticipantQos>("domain_participant_qos", false),
    element_row<DDS_DomainParticipantQos>("participant_qos", false),
    element_row<DDS_PublisherQos>("publisher_qos", false),
    element_row<DDS_SubscriberQos>("subscriber_qos", false),
    element_row<DDS_TopicQos>("topic_qos", true),
    element_row<DDS_DataWriterQos>("datawriter_qos", true),
    element_row<DDS_DataReaderQos>("datareader_qos", true)};

bool fail(const DDS_XMLObject *element, ReadError &error, const std::string &message) {
    return error.set(DDS_XMLObject_get_line_number(element), message);
}

std::string tag_of(const DDS_XMLObject *element) {
    return std::string("<") + DDS_XMLObject_get_tag_name(element) + ">";
}

// False when the element has an attribute that is not among `known`.
bool check_attributes(const DDS_XMLObject *element, std::initializer_list<std::string_view> known,
                      ReadError &error) {
    const char *unknown =
        unknown_attribute(DDS_XMLObject_get_attributes(element), [&](std::string_view name) {
            return std::find(known.begin(), known.end(), name) != known.end();
        });
    if (unknown == nullptr) {
        return true;
    }
    std::string expected;
    for (const std::string_view name : known) {
        expected += expected.empty() ? "" : ", ";
        expected += name;
    }
    return fail(element, error,
                std::string("unknown attribute \"") + unknown + "\" of " + tag_of(element) +
                    "; expected: " + expected);
}

bool read_name(const DDS_XMLObject *element, std::string &name, ReadError &error) {
    const char *value = DDS_XMLObject_get_attribute(element, "name");
    if (value == nullptr || value[0] == '\0') {
        return fail(element, error, tag_of(element) + " needs the attribute \"name\"");
    }
    name = value;
    // It could not be told from the parts of a base_name.
    if (name.find("::") != std::string::npos) {
        return fail(element, error, "a name must not contain \"::\": \"" + name + "\"");
    }
    return true;
}

bool read_is_default(const DDS_XMLObject *element, bool &is_default, ReadError &error) {
    const char *text = DDS_XMLObject_get_attribute(element, "is_default_qos");
    if (text == nullptr) {
        return true;
    }
    const auto value = value_of_name(trim(text), kBooleanNames);
    if (!value) {
        return fail(element, error,
                    std::string("wrong value of is_default_qos: \"") + text +
                        "\"; expected: " + list_of_names(kBooleanNames));
    }
    is_default = *value != 0;
    return true;
}

// No name that it could match is longer, and what a wild pattern costs grows with its square.
constexpr std::size_t kMaxFilterLength = 1024;

bool read_filter(const DDS_XMLObject *element, std::string &filter, ReadError &error) {
    const char *text = DDS_XMLObject_get_attribute(element, "topic_filter");
    filter = text == nullptr ? "" : text;
    return filter.size() <= kMaxFilterLength ||
           fail(element, error,
                "the topic_filter is longer than " + std::to_string(kMaxFilterLength) + " bytes");
}

// "Library::Profile", or a profile of the same library.
bool read_base(const DDS_XMLObject *element, Profile &profile, ReadError &error) {
    const char *text = DDS_XMLObject_get_attribute(element, "base_name");
    if (text == nullptr) {
        return true;
    }
    const std::string_view base = text;
    const std::size_t separator = base.find("::");
    const bool is_qualified = separator != std::string_view::npos;
    profile.base_library = is_qualified ? base.substr(0, separator) : profile.library;
    profile.base_name = is_qualified ? base.substr(separator + 2) : base;
    if (profile.base_library.empty() || profile.base_name.empty()) {
        return fail(
            element, error,
            std::string("wrong base_name \"") + text + "\"; expected: Profile or Library::Profile");
    }
    return true;
}

}  // namespace

std::string qualified_name(std::string_view library, std::string_view profile) {
    return std::string(library) + "::" + std::string(profile);
}

const ProfileElement *Profile::find(EntityKind kind, const char *topic_name) const {
    for (const ProfileElement &element : elements) {
        if (element.kind != kind) {
            continue;
        }
        const bool is_general = element.topic_filter.empty() || element.topic_filter == "*";
        const bool matches =
            is_general ||
            (topic_name != nullptr && fnmatch(element.topic_filter.c_str(), topic_name, 0) == 0);
        if (matches) {
            return &element;
        }
    }
    return nullptr;
}

// Reads the libraries. Elements beside them belong to others (extension classes, other parts of
// DDS-XML) and are passed over.
bool ProfileDocument::read(xml::ObjectPtr root, const FindProfile &find_other, ReadError &error) {
    root_ = std::move(root);
    const DDS_XMLObject *child = DDS_XMLObject_get_first_child(root_.get());
    for (; child != nullptr; child = DDS_XMLObject_get_next_sibling(child)) {
        const std::string_view tag_name = DDS_XMLObject_get_tag_name(child);
        if (tag_name == "qos_library" && !read_library(child, error)) {
            return false;
        }
    }
    return link_bases(find_other, error) && check_cycles(error);
}

bool ProfileDocument::read_library(const DDS_XMLObject *element, ReadError &error) {
    std::string name;
    if (!check_attributes(element, {"name"}, error) || !read_name(element, name, error)) {
        return false;
    }
    const DDS_XMLObject *child = DDS_XMLObject_get_first_child(element);
    for (; child != nullptr; child = DDS_XMLObject_get_next_sibling(child)) {
        if (std::string_view(DDS_XMLObject_get_tag_name(child)) != "qos_profile") {
            return fail(
                child, error,
                "unknown element " + tag_of(child) + " in <qos_library>; expected: qos_profile");
        }
        if (!read_profile(child, name, error)) {
            return false;
        }
    }
    libraries_.push_back(std::move(name));
    return true;
}

bool ProfileDocument::read_profile(const DDS_XMLObject *element, const std::string &library,
                                   ReadError &error) {
    auto profile = std::make_unique<Profile>();
    profile->library = library;
    profile->line = DDS_XMLObject_get_line_number(element);
    if (!check_attributes(element, {"name", "base_name", "is_default_qos"}, error) ||
        !read_name(element, profile->name, error) || !read_base(element, *profile, error) ||
        !read_is_default(element, profile->is_default, error)) {
        return false;
    }
    const DDS_XMLObject *child = DDS_XMLObject_get_first_child(element);
    for (; child != nullptr; child = DDS_XMLObject_get_next_sibling(child)) {
        if (!read_element(child, *profile, error)) {
            return false;
        }
    }
    profiles_.push_back(std::move(profile));
    return true;
}

bool ProfileDocument::read_element(const DDS_XMLObject *element, Profile &profile,
                                   ReadError &error) {
    const std::string_view tag_name = DDS_XMLObject_get_tag_name(element);
    std::string expected;
    for (const ElementRow &row : kElements) {
        expected += expected.empty() ? "" : ", ";
        expected += row.tag_name;
        if (row.tag_name != tag_name) {
            continue;
        }
        const bool attributes_are_right =
            row.has_topic ? check_attributes(element, {"name", "topic_filter"}, error)
                          : check_attributes(element, {"name"}, error);
        if (!attributes_are_right || !row.check(element, error)) {
            return false;
        }
        std::string filter;
        if (!read_filter(element, filter, error)) {
            return false;
        }
        profile.elements.push_back({row.kind, std::move(filter), element});
        return true;
    }
    return fail(element, error,
                "unknown element " + tag_of(element) + " in <qos_profile>; expected: " + expected);
}

bool ProfileDocument::link_bases(const FindProfile &find_other, ReadError &error) {
    std::map<std::string, const Profile *> own;
    for (const auto &profile : profiles_) {
        const std::string name = qualified_name(profile->library, profile->name);
        if (find_other(profile->library, profile->name) != nullptr ||
            !own.emplace(name, profile.get()).second) {
            return error.set(profile->line, "the profile " + name + " is defined already");
        }
    }
    for (const auto &profile : profiles_) {
        if (profile->base_name.empty()) {
            continue;
        }
        const std::string name = qualified_name(profile->base_library, profile->base_name);
        const auto found = own.find(name);
        profile->base = found != own.end() ? found->second
                                           : find_other(profile->base_library, profile->base_name);
        if (profile->base == nullptr) {
            return error.set(profile->line, "unknown base profile " + name +
                                                "; expected: a profile of this document or of one "
                                                "loaded before");
        }
    }
    return true;
}

bool ProfileDocument::check_cycles(ReadError &error) const {
    // Profiles whose chain of bases is known to end.
    std::set<const Profile *> ending;
    for (const auto &profile : profiles_) {
        std::set<const Profile *> chain;
        const Profile *link = profile.get();
        while (link != nullptr && !ending.contains(link)) {
            if (!chain.insert(link).second) {
                return error.set(link->line, "the profile " +
                                                 qualified_name(link->library, link->name) +
                                                 " is a base of itself");
            }
            link = link->base;
        }
        ending.merge(chain);
    }
    return true;
}

}  // namespace kolt::qos
