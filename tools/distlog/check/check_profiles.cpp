// SPDX-License-Identifier: Apache-2.0
// Loads QoS profiles and reports the problems in them.
#include "check/check_profiles.hpp"

#include <kolt/domain.h>

#include <charconv>
#include <cstdlib>
#include <filesystem>

#include "check/check_text.hpp"
#include "command/failure.hpp"

namespace distlog::check {
namespace {

constexpr const char *kVariable = "KOLT_QOS_PROFILES";
constexpr const char *kUserFile = "KOLT_QOS_PROFILES.xml";

std::vector<ProfileSource> sources_of(const Document &document) {
    std::vector<ProfileSource> sources;
    const char *variable = std::getenv(kVariable);
    std::string_view rest = variable == nullptr ? "" : variable;
    while (!rest.empty()) {
        const std::string_view path = rest.substr(0, rest.find(';'));
        if (!trimmed(path).empty()) {
            sources.push_back({std::string(trimmed(path)), kVariable, false});
        }
        rest.remove_prefix(std::min(rest.size(), path.size() + 1));
    }
    std::error_code error;
    if (std::filesystem::exists(kUserFile, error)) {
        sources.push_back({kUserFile, "working directory", false});
    }
    // A document that is also among the other sources is loaded in its place there.
    for (ProfileSource &source : sources) {
        source.is_document = std::filesystem::equivalent(source.name, document.path(), error);
        if (source.is_document) {
            return sources;
        }
    }
    sources.push_back({document.path(), "document", true});
    return sources;
}

bool is_true(const char *text) {
    const std::string_view value = text == nullptr ? "" : trimmed(text);
    return value == "true" || value == "1";
}

// Reads the names of a loaded document's profiles, and the last one among them that is the default.
void read_names(const DDS_XMLObject *root, ProfileSource &source, std::string &default_profile) {
    const auto next = [](const DDS_XMLObject *object) {
        return DDS_XMLObject_get_next_sibling(object);
    };
    for (const DDS_XMLObject *library = DDS_XMLObject_get_first_child(root); library != nullptr;
         library = next(library)) {
        if (std::string_view(DDS_XMLObject_get_tag_name(library)) != "qos_library") {
            continue;
        }
        const std::string prefix = std::string(DDS_XMLObject_get_attribute(library, "name")) + "::";
        for (const DDS_XMLObject *profile = DDS_XMLObject_get_first_child(library);
             profile != nullptr; profile = next(profile)) {
            source.profiles.push_back(prefix + DDS_XMLObject_get_attribute(profile, "name"));
            if (is_true(DDS_XMLObject_get_attribute(profile, "is_default_qos"))) {
                default_profile = source.profiles.back();
            }
        }
    }
}

// Takes the middleware's "source:12: text" or "source: text" apart.
Problem problem_of(std::string_view message, const std::string &source, const std::string &name,
                   Severity severity) {
    Problem problem{severity, name, 0, std::string(message)};
    if (!message.starts_with(source + ":")) {
        return problem;
    }
    message.remove_prefix(source.size() + 1);
    const auto [end, error] =
        std::from_chars(message.data(), message.data() + message.size(), problem.line);
    if (error == std::errc()) {
        message.remove_prefix(static_cast<std::size_t>(end - message.data()) + 1);
    }
    problem.text = trimmed(message);
    return problem;
}

}  // namespace

std::string Profiles::list() const {
    std::string text;
    for (const ProfileSource &source : sources) {
        for (const std::string &profile : source.profiles) {
            text += (text.empty() ? "" : ", ") + profile;
        }
    }
    return text.empty() ? "none is loaded" : text;
}

Profiles load_profiles(const Document &document, MiddlewareLog &log, Problems &problems) {
    DDS_DomainParticipantFactory *factory = DDS_DomainParticipantFactory_get_instance();
    if (DDS_DomainParticipantFactory_finalize_instance() != DDS_RETCODE_OK ||
        DDS_DomainParticipantFactory_unload_profiles(factory) != DDS_RETCODE_OK) {
        throw Failure("unable to reset the QoS profiles");
    }
    log.take();
    Profiles result{sources_of(document), {}};
    for (ProfileSource &source : result.sources) {
        const std::string name = source.is_document ? document.name() : source.name;
        source.loaded = KOLT_DomainParticipantFactory_add_profiles(factory, source.name.c_str()) ==
                        DDS_RETCODE_OK;
        const Severity severity = source.is_document ? Severity::kError : Severity::kWarning;
        for (const std::string &message : log.take()) {
            problems.add(problem_of(message, source.name, name, severity));
        }
        const ParserPtr parser(DDS_XMLParser_new(), DDS_XMLParser_delete);
        if (source.loaded &&
            DDS_XMLParser_parse_file(parser.get(), source.name.c_str()) == DDS_RETCODE_OK) {
            read_names(DDS_XMLParser_get_root(parser.get()), source, result.default_profile);
        }
        source.name = name;
    }
    return result;
}

}  // namespace distlog::check
