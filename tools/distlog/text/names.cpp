// SPDX-License-Identifier: Apache-2.0
// Names of levels and of the wire enumerations: one table each, and one way to search all of them.
#include "text/names.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <span>

namespace distlog {
namespace {

// A value with the name that the command uses for it.
struct Name {
    std::string_view text;
    int value;
};

constexpr std::array kLevels{Name{"silent", 0},  Name{"fatal", 100},   Name{"severe", 200},
                             Name{"error", 300}, Name{"warning", 400}, Name{"notice", 500},
                             Name{"info", 600},  Name{"debug", 700},   Name{"trace", 800}};

constexpr std::array kCategories{
    Name{"platform", VUR_DL_KOLT_CONFIG_LOG_CATEGORY_PLATFORM},
    Name{"communication", VUR_DL_KOLT_CONFIG_LOG_CATEGORY_COMMUNICATION},
    Name{"database", VUR_DL_KOLT_CONFIG_LOG_CATEGORY_DATABASE},
    Name{"entities", VUR_DL_KOLT_CONFIG_LOG_CATEGORY_ENTITIES},
    Name{"api", VUR_DL_KOLT_CONFIG_LOG_CATEGORY_API}};

constexpr std::array kVerbosities{
    Name{"silent", VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_SILENT},
    Name{"error", VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_ERROR},
    Name{"warning", VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_WARNING},
    Name{"status_local", VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_LOCAL},
    Name{"status_remote", VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_REMOTE},
    Name{"status_all", VUR_DL_KOLT_CONFIG_LOG_VERBOSITY_STATUS_ALL}};

constexpr std::array kPrintFormats{
    Name{"default", VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEFAULT},
    Name{"timestamped", VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_TIMESTAMPED},
    Name{"verbose", VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE},
    Name{"verbose_timestamped", VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_VERBOSE_TIMESTAMPED},
    Name{"debug", VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_DEBUG},
    Name{"minimal", VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MINIMAL},
    Name{"maximal", VUR_DL_KOLT_CONFIG_LOG_PRINT_FORMAT_MAXIMAL}};

constexpr std::array kStates{Name{"initializing", VUR_DL_STATE_INITIALIZING},
                             Name{"operational", VUR_DL_STATE_OPERATIONAL},
                             Name{"nonoperational", VUR_DL_STATE_NONOPERATIONAL},
                             Name{"shutting_down", VUR_DL_STATE_SHUTTING_DOWN}};

std::string normalized(std::string_view text) {
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), [](unsigned char c) {
        return c == '-' ? '_' : static_cast<char>(std::tolower(c));
    });
    return result;
}

std::optional<int> parse_number(std::string_view text) {
    int value = 0;
    const char *end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || rest != end) {
        return std::nullopt;
    }
    return value;
}

std::optional<int> parse_name(std::span<const Name> names, std::string_view text) {
    const std::string wanted = normalized(text);
    const auto found =
        std::find_if(names.begin(), names.end(), [&](const Name &n) { return n.text == wanted; });
    return found == names.end() ? std::nullopt : std::optional<int>(found->value);
}

// Reads a value that has a name, given by that name or as a number.
template <typename Enumeration>
std::optional<Enumeration> parse_named(std::span<const Name> names, std::string_view text) {
    std::optional<int> value = parse_name(names, text);
    if (!value) {
        value = parse_number(text);
    }
    const bool named = value && std::any_of(names.begin(), names.end(),
                                            [&](const Name &n) { return n.value == *value; });
    return named ? std::optional<Enumeration>(static_cast<Enumeration>(*value)) : std::nullopt;
}

std::string name_of(std::span<const Name> names, int value) {
    const auto found =
        std::find_if(names.begin(), names.end(), [&](const Name &n) { return n.value == value; });
    return found == names.end() ? fmt::format("{}", value) : std::string(found->text);
}

std::string list_of(std::span<const Name> names) {
    std::string result;
    for (const Name &name : names) {
        result += result.empty() ? "" : ", ";
        result += name.text;
    }
    return result;
}

}  // namespace

std::optional<int> parse_level(std::string_view text) {
    const std::optional<int> named = parse_name(kLevels, text);
    const std::optional<int> value = named ? named : parse_number(text);
    return value && *value >= 0 ? value : std::nullopt;
}

std::optional<VUR_DL_ADMIN_VURLoggerCategory> parse_category(std::string_view text) {
    return parse_named<VUR_DL_ADMIN_VURLoggerCategory>(kCategories, text);
}

std::optional<VUR_DL_ADMIN_VURLoggerVerbosity> parse_verbosity(std::string_view text) {
    return parse_named<VUR_DL_ADMIN_VURLoggerVerbosity>(kVerbosities, text);
}

std::optional<VUR_DL_ADMIN_VURLoggerPrintFormat> parse_print_format(std::string_view text) {
    return parse_named<VUR_DL_ADMIN_VURLoggerPrintFormat>(kPrintFormats, text);
}

std::string level_name(int level) {
    return name_of(kLevels, level);
}
std::string category_name(int category) {
    return name_of(kCategories, category);
}
std::string verbosity_name(int verbosity) {
    return name_of(kVerbosities, verbosity);
}
std::string print_format_name(int format) {
    return name_of(kPrintFormats, format);
}
std::string state_name(int state) {
    return name_of(kStates, state);
}

std::string level_names() {
    return list_of(kLevels);
}
std::string category_names() {
    return list_of(kCategories);
}
std::string verbosity_names() {
    return list_of(kVerbosities);
}
std::string print_format_names() {
    return list_of(kPrintFormats);
}

}  // namespace distlog
