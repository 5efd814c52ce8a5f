// Names of levels and of the wire enumerations, as the command prints and accepts them.
#pragma once

#include <vur_dl/distlog.h>

#include <optional>
#include <string>
#include <string_view>

namespace distlog {

// A name is accepted in any case, with '-' or '_', and so is the number that stands behind it.
// Levels may be any number of 0 or more; the other enumerations only have the values that they
// name.
std::optional<int> parse_level(std::string_view text);
std::optional<VUR_DL_ADMIN_VURLoggerCategory> parse_category(std::string_view text);
std::optional<VUR_DL_ADMIN_VURLoggerVerbosity> parse_verbosity(std::string_view text);
std::optional<VUR_DL_ADMIN_VURLoggerPrintFormat> parse_print_format(std::string_view text);

// The name of a value; its number for a value without a name (anything may come from the network).
std::string level_name(int level);
std::string category_name(int category);
std::string verbosity_name(int verbosity);
std::string print_format_name(int format);
std::string state_name(int state);

// All names, separated by commas, for help texts and messages.
std::string level_names();
std::string category_names();
std::string verbosity_names();
std::string print_format_names();

}  // namespace distlog
