// SPDX-License-Identifier: Apache-2.0
// The DDS entities that a logger would have, and the QoS that each would be created with.
#pragma once

#include <vur_dl/Options.h>

#include <string>
#include <string_view>
#include <vector>

#include "check/check_log.hpp"
#include "check/check_policies.hpp"

namespace distlog::check {

struct Entity {
    std::string_view kind;   // "participant", "publisher", "subscriber", "topic", "datawriter", ...
    std::string_view topic;  // "" for those that have none
    std::vector<Policy> policies;
    // The reason why the logger could not create it; empty when it could.
    std::string refusal;
};

// Returns the entities that a logger with `options` would have. Asks the logger's own functions,
// and creates each entity in a participant that is never enabled: the engine is not started, and
// nothing reaches the network. The profiles must be loaded; `options` name the one to use, if any.
// Their participant is set and cleared.
std::vector<Entity> entities_of(VUR_DL_Options &options, MiddlewareLog &log);

// Returns a name for messages: "participant", "datawriter of vur/distlog".
std::string name_of(const Entity &entity);

}  // namespace distlog::check
