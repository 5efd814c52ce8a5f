// Where a process takes QoS profiles from, and which of them holds.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "check/check_document.hpp"
#include "check/check_log.hpp"
#include "check/check_problem.hpp"

namespace distlog::check {

struct ProfileSource {
    std::string name;
    std::string_view why;  // "KOLT_QOS_PROFILES", "working directory" or "document"
    bool is_document;      // the one that is checked
    bool loaded = false;
    std::vector<std::string> profiles = {};  // "Library::Profile"
};

struct Profiles {
    std::vector<ProfileSource> sources;  // in the order in which they are loaded
    // The one of `is_default_qos`; empty when there is none.
    std::string default_profile;

    // Every "Library::Profile" that can be used, for messages.
    std::string list() const;
};

// Loads what an application that starts its logger from the document loads, into a factory that is
// as it is at the start of a process. What is wrong in the document is an error, what is wrong in
// the others, which are loaded all the same or left out, a warning.
Profiles load_profiles(const Document &document, MiddlewareLog &log, Problems &problems);

}  // namespace distlog::check
