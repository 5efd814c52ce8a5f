// SPDX-License-Identifier: Apache-2.0
// How the library reports about itself: the lines that its functions print when something fails.
#pragma once

#include "levels.hpp"

namespace vur_dl {

// Prints one line on standard output: the level's label, the function that reports, the message.
void report(const char *message, const char *method, int level = kLevelError);

}  // namespace vur_dl
