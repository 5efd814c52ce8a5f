// SPDX-License-Identifier: Apache-2.0
// QoS libraries that the library takes, and what in them has no effect.
#pragma once

#include "check/check_document.hpp"
#include "check/check_problem.hpp"

namespace distlog::check {

// Warns of text between profiles and of elements that another one in the same place overrules. The
// document's libraries are loaded: their elements and values are right.
void check_libraries(const Document &document, Problems &problems);

}  // namespace distlog::check
