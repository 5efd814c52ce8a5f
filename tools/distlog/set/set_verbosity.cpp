// SPDX-License-Identifier: Apache-2.0
// distlog set verbosity: how much each category of the middleware's own log says.
#include <fmt/format.h>

#include <algorithm>

#include "command/failure.hpp"
#include "set/administration.hpp"
#include "text/names.hpp"

namespace distlog {
namespace {

using CategoryAndVerbosity = VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity;
using Entries = std::vector<CategoryAndVerbosity>;

[[noreturn]] void refuse(const std::string &message) {
    throw CLI::ValidationError("CATEGORY=VERBOSITY", message);
}

void add_entry(VUR_DL_ADMIN_VURLoggerCategory category, VUR_DL_ADMIN_VURLoggerVerbosity verbosity,
               Entries &entries) {
    if (std::any_of(entries.begin(), entries.end(),
                    [&](const auto &entry) { return entry.category == category; })) {
        refuse(fmt::format("'{}' is given twice", category_name(category)));
    }
    entries.push_back(CategoryAndVerbosity{category, verbosity});
}

// Reads "CATEGORY=VERBOSITY", or "all=VERBOSITY" for the five categories.
void parse_entry(const std::string &text, Entries &entries) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
        refuse(fmt::format("'{}' has no '=': a category and a verbosity, like api=warning", text));
    }
    const std::string category_text = text.substr(0, equals);
    const auto category = parse_category(category_text);
    if (!category && category_text != "all") {
        refuse(fmt::format("'{}' is not a category: all, {}", category_text, category_names()));
    }
    const auto verbosity = parse_verbosity(text.substr(equals + 1));
    if (!verbosity) {
        refuse(
            fmt::format("'{}' is not a verbosity: {}", text.substr(equals + 1), verbosity_names()));
    }
    if (category) {
        add_entry(*category, *verbosity, entries);
        return;
    }
    for (int i = 0; i < VUR_DL_ADMIN_VUR_LOGGER_CATEGORY_COUNT; ++i) {
        add_entry(static_cast<VUR_DL_ADMIN_VURLoggerCategory>(i), *verbosity, entries);
    }
}

FillCommand verbosity_command(const Entries &entries) {
    return [entries](VUR_DL_ADMIN_Command &command) {
        command._d = VUR_DL_SET_VUR_LOGGER_LEVEL;
        if (!VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_from_array(
                &command._u.categoryAndVerbosity, entries.data(),
                static_cast<DDS_Long>(entries.size()))) {
            throw Failure("out of memory");
        }
    };
}

std::string describe(const Entries &entries) {
    std::string text = "verbosity set:";
    for (const CategoryAndVerbosity &entry : entries) {
        text +=
            fmt::format(" {}={}", category_name(entry.category), verbosity_name(entry.verbosity));
    }
    return text;
}

}  // namespace

void add_set_verbosity(CLI::App &set, Action &action) {
    CLI::App *command =
        set.add_subcommand("verbosity", "Set the verbosity of the middleware's own log");
    const auto options = add_set_options(*command);
    const auto entries = std::make_shared<Entries>();
    command
        ->add_option_function<std::vector<std::string>>(
            "CATEGORY=VERBOSITY",
            [entries](const std::vector<std::string> &texts) {
                for (const std::string &text : texts) {
                    parse_entry(text, *entries);
                }
            },
            "Categories: all, " + category_names() + "; verbosities: " + verbosity_names())
        ->required();
    command->callback([&action, options, entries] {
        action = [options, entries] {
            return Administration(*options).tell_all(verbosity_command(*entries),
                                                     describe(*entries));
        };
    });
}

}  // namespace distlog
