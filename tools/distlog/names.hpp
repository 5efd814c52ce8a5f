// Names of levels and of the wire enumerations, as the command prints and accepts them.
#ifndef DISTLOG_NAMES_HPP
#define DISTLOG_NAMES_HPP

#include <vur_dl/distlog.h>

#include <optional>
#include <string>
#include <string_view>

namespace distlog {

// A name is accepted in any case, with '-' or '_', and so is the number that stands behind it.
// Levels may be any number of 0 or more; the other enumerations only have the values that they
// name.
std::optional<int> parseLevel(std::string_view text);
std::optional<VUR_DL_ADMIN_VURLoggerCategory> parseCategory(std::string_view text);
std::optional<VUR_DL_ADMIN_VURLoggerVerbosity> parseVerbosity(std::string_view text);
std::optional<VUR_DL_ADMIN_VURLoggerPrintFormat> parsePrintFormat(std::string_view text);

// The name of a value; its number for a value without a name (anything may come from the network).
std::string levelName(int level);
std::string categoryName(int category);
std::string verbosityName(int verbosity);
std::string printFormatName(int format);
std::string stateName(int state);

// All names, separated by commas, for help texts and messages.
std::string levelNames();
std::string categoryNames();
std::string verbosityNames();
std::string printFormatNames();

}  // namespace distlog

#endif  // DISTLOG_NAMES_HPP
