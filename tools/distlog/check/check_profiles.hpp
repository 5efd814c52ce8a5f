// SPDX-License-Identifier: Apache-2.0
// The sources of a process's QoS profiles, and the profile that is in force.
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
    // The profile with `is_default_qos`; empty when there is none.
    std::string default_profile;

    // Returns every "Library::Profile" that can be used, for messages.
    std::string list() const;
};

// Loads the same profiles as an application that starts its logger from the document, into a
// factory that is as at the start of a process. Reports a problem in the document as an error.
// Reports a problem in another source, which is loaded nevertheless or left out, as a warning.
Profiles load_profiles(const Document &document, MiddlewareLog &log, Problems &problems);

}  // namespace distlog::check
