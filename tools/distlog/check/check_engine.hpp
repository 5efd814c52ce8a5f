// SPDX-License-Identifier: Apache-2.0
// The engine's configuration, which the environment variable CYCLONEDDS_URI names.
#pragma once

#include <string>

#include "check/check_log.hpp"
#include "check/check_problem.hpp"

namespace distlog::check {

// Adds an error for each reason why the engine does not start in a domain with the configuration of
// the environment; `document` is what they are reported about. Starts the engine, with its messages
// turned off, and ends it: nobody in the domain hears of it.
void check_engine(int domain_id, const std::string &document, MiddlewareLog &log,
                  Problems &problems);

}  // namespace distlog::check
