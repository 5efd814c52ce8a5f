// SPDX-License-Identifier: Apache-2.0
// The store of QoS profiles.

#include "qos/profile_store.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <new>

#include "kolt/config_logger.h"
#include "qos/profile_document.hpp"

namespace kolt::qos {
namespace {

constexpr const char *kEnvironmentVariable = "KOLT_QOS_PROFILES";
constexpr const char *kUserFile = "KOLT_QOS_PROFILES.xml";

// The names under which messages about documents are logged. A look-up that causes a load logs
// under the name of the load.
constexpr const char *kLoadMethod = "DDS_DomainParticipantFactory_load_profiles";
constexpr const char *kReloadMethod = "DDS_DomainParticipantFactory_reload_profiles";
constexpr const char *kAddMethod = "KOLT_DomainParticipantFactory_add_profiles";

const std::vector<std::string> kNoStrings;

// The origin of a document.
struct Source {
    bool is_text;      // the document itself, not its path
    bool is_optional;  // no error when the file is not there
    std::string value;

    // Identifies the document: two paths of one file are one source.
    std::string key() const {
        if (is_text) {
            return "text:" + value;
        }
        const std::string path = xml::path_of(value);
        const std::unique_ptr<char, void (*)(void *)> real(realpath(path.c_str(), nullptr),
                                                           std::free);
        return "file:" + (real == nullptr ? path : std::string(real.get()));
    }
    bool exists() const {
        const std::unique_ptr<char, void (*)(void *)> real(realpath(value.c_str(), nullptr),
                                                           std::free);
        return real != nullptr;
    }
};

struct Library {
    std::string name;
    std::vector<std::string> profile_names;  // in order
    std::map<std::string, const Profile *, std::less<>> profiles;
};

struct Sources {
    std::vector<std::string> urls;
    std::string text;
    bool ignore_environment = false;
    bool ignore_user = false;

    bool operator==(const Sources &) const = default;
};

std::vector<std::string> strings_of(const DDS_StringSeq &sequence) {
    std::vector<std::string> strings;
    const auto length = static_cast<DDS_Long>(DDS_StringSeq_get_length(&sequence));
    for (DDS_Long i = 0; i < length; ++i) {
        const char *string = *DDS_StringSeq_get_reference(&sequence, i);
        if (string != nullptr) {
            strings.emplace_back(string);
        }
    }
    return strings;
}

// The fragments of a document in one. What goes beyond the largest document is left out, but for
// one byte, which makes the parser refuse it.
std::string joined(const DDS_StringSeq &fragments) {
    std::string text;
    const auto length = static_cast<DDS_Long>(DDS_StringSeq_get_length(&fragments));
    for (DDS_Long i = 0; i < length; ++i) {
        const char *fragment = *DDS_StringSeq_get_reference(&fragments, i);
        const std::size_t room = DDS_XML_MAX_DOCUMENT_SIZE + 1U - text.size();
        if (fragment != nullptr) {
            text.append(fragment, strnlen(fragment, room));
        }
    }
    return text;
}

bool set_strings(DDS_StringSeq &sequence, const std::vector<std::string> &strings) {
    const auto length = static_cast<DDS_Long>(strings.size());
    if (!DDS_StringSeq_ensure_length(&sequence, length, length)) {
        return false;
    }
    for (DDS_Long i = 0; i < length; ++i) {
        const std::string &string = strings[static_cast<std::size_t>(i)];
        if (DDS_String_replace(DDS_StringSeq_get_reference(&sequence, i), string.c_str()) ==
            nullptr) {
            return false;
        }
    }
    return true;
}

}  // namespace

struct ProfileStore::State {
    // An error, logged only when the lock is free: a log device may come back to the store.
    struct Problem {
        KOLT_Config_LogCategory category;
        std::string text;
    };
    using Problems = std::vector<Problem>;

    // Runs `call(state, problems)` with the lock held. Nothing that it throws leaves this function.
    template <typename Call>
    static DDS_ReturnCode_t guarded(State *self, const char *method_name, Call call) noexcept {
        if (self == nullptr) {
            return DDS_RETCODE_OUT_OF_RESOURCES;
        }
        Problems problems;
        DDS_ReturnCode_t result = DDS_RETCODE_OUT_OF_RESOURCES;
        try {
            const std::lock_guard<std::mutex> guard(self->mutex);
            result = call(*self, problems);
        } catch (const std::bad_alloc &) {
            result = DDS_RETCODE_OUT_OF_RESOURCES;
        }
        for (const Problem &problem : problems) {
            KOLT_Log_message(problem.category, KOLT_CONFIG_LOG_LEVEL_ERROR, method_name, "%s",
                             problem.text.c_str());
        }
        return result;
    }

    DDS_ReturnCode_t load(Problems &problems);
    DDS_ReturnCode_t load_source(const Source &source, Problems &problems);
    // Loads the sources that were not loaded yet. A wrong document is reported and left out.
    void load_if_new(Problems &problems) {
        if (is_new) {
            load(problems);
        }
    }
    DDS_ReturnCode_t add(const char *path_or_url, Problems &problems);
    void clear();
    std::vector<Source> current_sources() const;
    void insert(std::string key, std::unique_ptr<ProfileDocument> document);
    Library &library(const std::string &name);
    const Profile *find(std::string_view library_name, std::string_view profile_name) const;
    const Profile *find_or_report(const char *library_name, const char *profile_name,
                                  Problems &problems) const;
    std::string library_list() const;

    std::mutex mutex;    // guards all that follows
    bool is_new = true;  // sources were named that no load has seen
    Sources sources;
    std::vector<std::string> added_urls;
    std::map<std::string, std::unique_ptr<ProfileDocument>> documents;  // by the source's key
    std::vector<std::unique_ptr<Library>> libraries;                    // in order
    std::map<std::string, Library *, std::less<>> libraries_by_name;
    const Profile *default_profile = nullptr;
};

std::vector<Source> ProfileStore::State::current_sources() const {
    std::vector<Source> result;
    const char *environment =
        sources.ignore_environment ? nullptr : std::getenv(kEnvironmentVariable);
    std::string_view rest = environment == nullptr ? "" : environment;
    while (!rest.empty()) {
        const std::string_view path = rest.substr(0, rest.find(';'));
        if (!trim(path).empty()) {
            result.push_back({false, false, std::string(trim(path))});
        }
        rest.remove_prefix(std::min(rest.size(), path.size() + 1));
    }
    if (!sources.ignore_user) {
        result.push_back({false, true, kUserFile});
    }
    for (const std::string &url : sources.urls) {
        result.push_back({false, false, url});
    }
    if (!trim(sources.text).empty()) {
        result.push_back({true, false, sources.text});
    }
    for (const std::string &url : added_urls) {
        result.push_back({false, false, url});
    }
    return result;
}

DDS_ReturnCode_t ProfileStore::State::load(Problems &problems) {
    is_new = false;
    DDS_ReturnCode_t result = DDS_RETCODE_OK;
    for (const Source &source : current_sources()) {
        if (source.is_optional && !source.exists()) {
            continue;
        }
        const DDS_ReturnCode_t code = load_source(source, problems);
        result = code == DDS_RETCODE_OK ? result : code;
    }
    return result;
}

DDS_ReturnCode_t ProfileStore::State::load_source(const Source &source, Problems &problems) {
    std::string key = source.key();
    if (documents.contains(key)) {
        return DDS_RETCODE_OK;
    }
    const std::string name = source.is_text ? "string_profile" : source.value;
    static const std::vector<DDS_XMLExtensionClass *> kNoClasses;
    xml::DocumentParser parser(kNoClasses);
    xml::ObjectPtr root =
        source.is_text ? parser.parse_text(source.value, name) : parser.parse_file(source.value);
    ReadError error;
    if (root == nullptr) {
        error = {parser.error()};
    }
    auto document = std::make_unique<ProfileDocument>();
    const auto find_other = [this](const std::string &library_name, const std::string &profile) {
        return find(library_name, profile);
    };
    if (root == nullptr || !document->read(std::move(root), find_other, error)) {
        problems.push_back({KOLT_CONFIG_LOG_CATEGORY_PLATFORM, error.text(name)});
        return error.code;
    }
    insert(std::move(key), std::move(document));
    return DDS_RETCODE_OK;
}

void ProfileStore::State::insert(std::string key, std::unique_ptr<ProfileDocument> document) {
    try {
        for (const std::string &library_name : document->libraries()) {
            library(library_name);
        }
        for (const auto &profile : document->profiles()) {
            Library &owner = library(profile->library);
            owner.profile_names.push_back(profile->name);
            owner.profiles.emplace(profile->name, profile.get());
            default_profile = profile->is_default ? profile.get() : default_profile;
        }
        documents.emplace(std::move(key), std::move(document));
    } catch (const std::bad_alloc &) {
        // Rather no profiles than half of them.
        clear();
        throw;
    }
}

DDS_ReturnCode_t ProfileStore::State::add(const char *path_or_url, Problems &problems) {
    // Documents that were named before come first, so that this one can refer to them.
    load_if_new(problems);
    const DDS_ReturnCode_t result = load_source({false, false, path_or_url}, problems);
    const bool is_known =
        std::find(added_urls.begin(), added_urls.end(), path_or_url) != added_urls.end();
    if (result == DDS_RETCODE_OK && !is_known) {
        added_urls.emplace_back(path_or_url);
    }
    return result;
}

void ProfileStore::State::clear() {
    default_profile = nullptr;
    libraries_by_name.clear();
    libraries.clear();
    documents.clear();
}

Library &ProfileStore::State::library(const std::string &name) {
    const auto found = libraries_by_name.find(name);
    if (found != libraries_by_name.end()) {
        return *found->second;
    }
    libraries.push_back(std::make_unique<Library>());
    libraries.back()->name = name;
    libraries_by_name.emplace(name, libraries.back().get());
    return *libraries.back();
}

const Profile *ProfileStore::State::find(std::string_view library_name,
                                         std::string_view profile_name) const {
    const auto found = libraries_by_name.find(library_name);
    if (found == libraries_by_name.end()) {
        return nullptr;
    }
    const auto profile = found->second->profiles.find(profile_name);
    return profile == found->second->profiles.end() ? nullptr : profile->second;
}

std::string ProfileStore::State::library_list() const {
    std::string list;
    for (const auto &each : libraries) {
        list += (list.empty() ? "" : ", ") + each->name;
    }
    return list.empty() ? "none is loaded" : list;
}

const Profile *ProfileStore::State::find_or_report(const char *library_name,
                                                   const char *profile_name,
                                                   Problems &problems) const {
    const Profile *profile = find(library_name, profile_name);
    if (profile != nullptr) {
        return profile;
    }
    const auto found = libraries_by_name.find(std::string_view(library_name));
    if (found == libraries_by_name.end()) {
        problems.push_back(
            {KOLT_CONFIG_LOG_CATEGORY_API,
             std::string("no QoS library \"") + library_name + "\"; libraries: " + library_list()});
        return nullptr;
    }
    std::string list;
    for (const std::string &name : found->second->profile_names) {
        list += (list.empty() ? "" : ", ") + name;
    }
    problems.push_back({KOLT_CONFIG_LOG_CATEGORY_API,
                        std::string("no QoS profile \"") + profile_name + "\" in the library \"" +
                            library_name + "\"; profiles: " + (list.empty() ? "none" : list)});
    return nullptr;
}

namespace {

// Applies the chosen element of every profile in the chain of bases, the outermost base first.
// False when memory runs out; elements were checked when they were loaded. `applied` counts them.
template <typename Qos>
bool apply_chain(const Profile &profile, const char *topic_name, Qos &qos, std::size_t &applied) {
    std::vector<const ProfileElement *> elements;
    for (const Profile *link = &profile; link != nullptr; link = link->base) {
        if (const ProfileElement *element = link->find(kKindOf<Qos>, topic_name)) {
            elements.push_back(element);
        }
    }
    applied = elements.size();
    ReadError error;
    ProfileReader reader(error);
    for (auto element = elements.rbegin(); element != elements.rend(); ++element) {
        if (!reader.read((*element)->object, qos)) {
            return false;
        }
    }
    return true;
}

}  // namespace

ProfileStore::ProfileStore() : state_(new (std::nothrow) State) {}
ProfileStore::~ProfileStore() {
    delete state_;
}

DDS_ReturnCode_t ProfileStore::set_sources(const DDS_ProfileQosPolicy &policy) {
    return State::guarded(state_, __func__, [&](State &state, auto &) {
        Sources sources;
        sources.urls = strings_of(policy.url_profile);
        sources.text = joined(policy.string_profile);
        sources.ignore_environment = policy.ignore_environment_profile != DDS_BOOLEAN_FALSE;
        sources.ignore_user = policy.ignore_user_profile != DDS_BOOLEAN_FALSE;
        if (sources != state.sources) {
            state.sources = std::move(sources);
            state.is_new = true;
        }
        return DDS_RETCODE_OK;
    });
}

DDS_ReturnCode_t ProfileStore::add_source(const char *path_or_url) {
    return State::guarded(state_, kAddMethod, [&](State &state, auto &problems) {
        return state.add(path_or_url, problems);
    });
}

DDS_ReturnCode_t ProfileStore::load() {
    return State::guarded(state_, kLoadMethod,
                          [&](State &state, auto &problems) { return state.load(problems); });
}

DDS_ReturnCode_t ProfileStore::reload() {
    return State::guarded(state_, kReloadMethod, [&](State &state, auto &problems) {
        state.clear();
        return state.load(problems);
    });
}

DDS_ReturnCode_t ProfileStore::unload() {
    return State::guarded(state_, __func__, [&](State &state, auto &) {
        state.clear();
        state.added_urls.clear();
        state.is_new = false;
        return DDS_RETCODE_OK;
    });
}

void ProfileStore::reset() {
    State::guarded(state_, __func__, [&](State &state, auto &) {
        state.clear();
        state.added_urls.clear();
        state.sources = {};
        state.is_new = true;
        return DDS_RETCODE_OK;
    });
}

DDS_ReturnCode_t ProfileStore::library_names(DDS_StringSeq &names) {
    return State::guarded(state_, kLoadMethod, [&](State &state, auto &problems) {
        state.load_if_new(problems);
        std::vector<std::string> strings;
        for (const auto &library : state.libraries) {
            strings.push_back(library->name);
        }
        return set_strings(names, strings) ? DDS_RETCODE_OK : DDS_RETCODE_OUT_OF_RESOURCES;
    });
}

DDS_ReturnCode_t ProfileStore::profile_names(DDS_StringSeq &names, const char *library_name) {
    return State::guarded(state_, kLoadMethod, [&](State &state, auto &problems) {
        state.load_if_new(problems);
        const auto found = state.libraries_by_name.find(std::string_view(library_name));
        const bool exists = found != state.libraries_by_name.end();
        if (!set_strings(names, exists ? found->second->profile_names : kNoStrings)) {
            return DDS_RETCODE_OUT_OF_RESOURCES;
        }
        return exists ? DDS_RETCODE_OK : DDS_RETCODE_BAD_PARAMETER;
    });
}

template <typename Qos>
DDS_ReturnCode_t ProfileStore::get_qos(Qos &qos, const char *library_name, const char *profile_name,
                                       const char *topic_name, const char *method_name) {
    return State::guarded(state_, method_name, [&](State &state, auto &problems) {
        state.load_if_new(problems);
        const Profile *profile = state.find_or_report(library_name, profile_name, problems);
        if (profile == nullptr) {
            return DDS_RETCODE_BAD_PARAMETER;
        }
        OwnedQos<Qos> result;
        std::size_t applied = 0;
        if (!apply_chain(*profile, topic_name, *result, applied)) {
            return DDS_RETCODE_OUT_OF_RESOURCES;
        }
        std::swap(qos, *result);
        return DDS_RETCODE_OK;
    });
}

template <typename Qos>
bool ProfileStore::default_qos(Qos &qos, const char *topic_name) {
    bool has_default = false;
    State::guarded(state_, kLoadMethod, [&](State &state, auto &problems) {
        state.load_if_new(problems);
        OwnedQos<Qos> result;
        std::size_t applied = 0;
        has_default = state.default_profile != nullptr &&
                      apply_chain(*state.default_profile, topic_name, *result, applied) &&
                      applied > 0;
        if (has_default) {
            std::swap(qos, *result);
        }
        return DDS_RETCODE_OK;
    });
    return has_default;
}

#define KOLT_INSTANTIATE(Qos)                                                          \
    template DDS_ReturnCode_t ProfileStore::get_qos(Qos &, const char *, const char *, \
                                                    const char *, const char *);       \
    template bool ProfileStore::default_qos(Qos &, const char *)
KOLT_INSTANTIATE(DDS_DomainParticipantQos);
KOLT_INSTANTIATE(DDS_PublisherQos);
KOLT_INSTANTIATE(DDS_SubscriberQos);
KOLT_INSTANTIATE(DDS_TopicQos);
KOLT_INSTANTIATE(DDS_DataWriterQos);
KOLT_INSTANTIATE(DDS_DataReaderQos);
#undef KOLT_INSTANTIATE

ProfileStore &profile_store() {
    alignas(ProfileStore) static unsigned char memory[sizeof(ProfileStore)];
    static ProfileStore *store = new (memory) ProfileStore;
    return *store;
}

}  // namespace kolt::qos
