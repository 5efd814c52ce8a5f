// SPDX-License-Identifier: Apache-2.0
// Names of levels and of the wire enumerations, as the command prints and accepts them.
#pragma once

#include <vur_dl/distlog.h>

#include <optional>
#include <string>
#include <string_view>

namespace distlog {

// Accept a name in any letter case, with '-' or '_', or the number that it stands for. A level may
// be any number of 0 or more. The other enumerations have only the values that they name.
std::optional<int> parse_level(std::string_view text);
std::optional<VUR_DL_ADMIN_VURLoggerCategory> parse_category(std::string_view text);
std::optional<VUR_DL_ADMIN_VURLoggerVerbosity> parse_verbosity(std::string_view text);
std::optional<VUR_DL_ADMIN_VURLoggerPrintFormat> parse_print_format(std::string_view text);

// Return the name of a value, or its number when it has no name: any value may come from the
// network.
std::string level_name(int level);
std::string category_name(int category);
std::string verbosity_name(int verbosity);
std::string print_format_name(int format);
std::string state_name(int state);

// Return all names, separated by commas, for help texts and messages.
std::string level_names();
std::string category_names();
std::string verbosity_names();
std::string print_format_names();

}  // namespace distlog
