// distlog set verbosity: how much each category of the middleware's own log says.
#include <fmt/format.h>

#include <algorithm>

#include "administration.hpp"
#include "names.hpp"

namespace distlog {
namespace {

using CategoryAndVerbosity = VUR_DL_ADMIN_VURLoggerCategoryAndVerbosity;
using Entries = std::vector<CategoryAndVerbosity>;

[[noreturn]] void refuse(const std::string &message) {
    throw CLI::ValidationError("CATEGORY=VERBOSITY", message);
}

void addEntry(VUR_DL_ADMIN_VURLoggerCategory category, VUR_DL_ADMIN_VURLoggerVerbosity verbosity,
              Entries &entries) {
    if (std::any_of(entries.begin(), entries.end(),
                    [&](const auto &entry) { return entry.category == category; })) {
        refuse(fmt::format("'{}' is given twice", categoryName(category)));
    }
    entries.push_back(CategoryAndVerbosity{category, verbosity});
}

// "CATEGORY=VERBOSITY", or "all=VERBOSITY" for the five categories.
void parseEntry(const std::string &text, Entries &entries) {
    const std::size_t equals = text.find('=');
    if (equals == std::string::npos) {
        refuse(fmt::format("'{}' has no '='", text));
    }
    const std::string category_text = text.substr(0, equals);
    const auto category = parseCategory(category_text);
    if (!category && category_text != "all") {
        refuse(fmt::format("'{}' is no category: all, {}", category_text, categoryNames()));
    }
    const auto verbosity = parseVerbosity(text.substr(equals + 1));
    if (!verbosity) {
        refuse(fmt::format("'{}' is no verbosity: {}", text.substr(equals + 1), verbosityNames()));
    }
    if (category) {
        addEntry(*category, *verbosity, entries);
        return;
    }
    for (int i = 0; i < VUR_DL_ADMIN_VUR_LOGGER_CATEGORY_COUNT; ++i) {
        addEntry(static_cast<VUR_DL_ADMIN_VURLoggerCategory>(i), *verbosity, entries);
    }
}

FillCommand verbosityCommand(const Entries &entries) {
    return [entries](VUR_DL_ADMIN_Command &command) {
        command._d = VUR_DL_SET_VUR_LOGGER_LEVEL;
        if (!VUR_DL_ADMIN_VURLoggerCategoryAndVerbositySeq_from_array(
                &command._u.categoryAndVerbosity, entries.data(),
                static_cast<DDS_Long>(entries.size()))) {
            throw Failure("memory ran out");
        }
    };
}

std::string describe(const Entries &entries) {
    std::string text = "verbosity set:";
    for (const CategoryAndVerbosity &entry : entries) {
        text += fmt::format(" {}={}", categoryName(entry.category), verbosityName(entry.verbosity));
    }
    return text;
}

}  // namespace

void addSetVerbosity(CLI::App &set, Action &action) {
    CLI::App *command =
        set.add_subcommand("verbosity", "Set the verbosity of the middleware's own log");
    const auto options = addSetOptions(*command);
    const auto entries = std::make_shared<Entries>();
    command
        ->add_option_function<std::vector<std::string>>(
            "CATEGORY=VERBOSITY",
            [entries](const std::vector<std::string> &texts) {
                for (const std::string &text : texts) {
                    parseEntry(text, *entries);
                }
            },
            "Categories: all, " + categoryNames() + "; verbosities: " + verbosityNames())
        ->required();
    command->callback([&action, options, entries] {
        action = [options, entries] {
            return Administration(*options).tellAll(verbosityCommand(*entries), describe(*entries));
        };
    });
}

}  // namespace distlog
