// SPDX-License-Identifier: Apache-2.0
// distlog set format: the print format of the middleware's own log.
#include <fmt/format.h>

#include "set/administration.hpp"
#include "text/names.hpp"

namespace distlog {
namespace {

using PrintFormat = VUR_DL_ADMIN_VURLoggerPrintFormat;

PrintFormat format_argument(const std::string &text) {
    const std::optional<PrintFormat> format = parse_print_format(text);
    if (!format) {
        throw CLI::ValidationError(
            "FORMAT", fmt::format("'{}' is not a print format: {}", text, print_format_names()));
    }
    return *format;
}

}  // namespace

void add_set_format(CLI::App &set, Action &action) {
    CLI::App *command =
        set.add_subcommand("format", "Set the print format of the middleware's own log");
    const auto options = add_set_options(*command);
    const auto format = std::make_shared<PrintFormat>();
    command
        ->add_option_function<std::string>(
            "FORMAT", [format](const std::string &text) { *format = format_argument(text); },
            "One of " + print_format_names())
        ->required();
    command->callback([&action, options, format] {
        action = [options, format] {
            const FillCommand fill = [format](VUR_DL_ADMIN_Command &request) {
                request._d = VUR_DL_SET_VUR_LOGGER_PRINT_FORMAT;
                request._u.printFormat = *format;
            };
            return Administration(*options).tell_all(
                fill, "print format set to " + print_format_name(*format));
        };
    });
}

}  // namespace distlog
