// SPDX-License-Identifier: Apache-2.0
// distlog check: examines configuration documents and shows what would be in force with them.
#include "check/check.hpp"

#include <fmt/format.h>
#include <sys/mman.h>
#include <unistd.h>
#include <vur_dl/XMLConfig.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "check/check_engine.hpp"
#include "check/check_libraries.hpp"
#include "check/check_log.hpp"
#include "check/check_report.hpp"
#include "command/failure.hpp"

namespace distlog {
namespace {

using check::Report;
using check::Severity;

struct CheckOptions {
    std::vector<std::string> files;
    std::string library;  // library and name of the profile that the application names in code
    std::string profile;
    int domain = 0;  // that the application joins
    bool all = false;
    bool json = false;
};

// Copies standard input into a file that can be read more than once.
class InputCopy {
  public:
    InputCopy() : fd_(memfd_create("stdin", MFD_CLOEXEC)) {
        std::array<char, 16384> buffer;
        bool copied = fd_ >= 0;
        bool ended = false;
        while (copied && !ended) {
            const ssize_t count = read(STDIN_FILENO, buffer.data(), buffer.size());
            ended = count == 0;
            copied =
                count >= 0 && write(fd_, buffer.data(), static_cast<std::size_t>(count)) == count;
        }
        if (!copied) {
            throw Failure(fmt::format("cannot read standard input: {}", std::strerror(errno)));
        }
    }
    ~InputCopy() { close(fd_); }
    InputCopy(const InputCopy &) = delete;
    InputCopy &operator=(const InputCopy &) = delete;

    std::string path() const { return fmt::format("/proc/self/fd/{}", fd_); }

  private:
    int fd_;
};

bool is_loaded(const Report &report, const std::string &wanted) {
    for (const check::ProfileSource &source : report.profiles.sources) {
        if (std::find(source.profiles.begin(), source.profiles.end(), wanted) !=
            source.profiles.end()) {
            return true;
        }
    }
    return false;
}

// Chooses the profile: first the one that the application names, then the logger's own, then the
// default one.
void choose_profile(const CheckOptions &options, Report &report) {
    VUR_DL_Options *logger = report.document.options();
    report.profile = report.profiles.default_profile;
    report.chosen_by = "is_default_qos";
    if (!options.profile.empty()) {
        VUR_DL_Options_setQosLibrary(logger, options.library.c_str());
        VUR_DL_Options_setQosProfile(logger, options.profile.c_str());
        const std::string wanted = options.library + "::" + options.profile;
        if (is_loaded(report, wanted)) {
            report.profile = wanted;
            report.chosen_by = "--profile";
            return;
        }
        report.problems.add(
            Severity::kWarning, report.document.name(), 0,
            fmt::format("no QoS profile {}; the logger says \"QoS Library and Profile cannot be "
                        "found, using default QoS\" and does so; profiles: {}",
                        wanted, report.profiles.list()));
    } else if (report.document.logger_line() != 0 &&
               VUR_DL_XMLConfig_chooseQosProfile(logger) != 0 && logger->qosProfile != nullptr) {
        report.profile = fmt::format("{}::{}", logger->qosLibrary, logger->qosProfile);
        report.chosen_by = "by its name";
    }
}

const check::Policy &policy_of(const check::Entity &entity, std::string_view name) {
    for (const check::Policy &policy : entity.policies) {
        if (policy.name == name) {
            return policy;
        }
    }
    throw Failure(fmt::format("no policy {}", name));
}

// Adds problems for QoS that keeps the logger from starting or its messages from arriving.
void judge_entities(Report &report) {
    const auto add = [&](Severity severity, std::string text) {
        report.problems.add(severity, report.document.name(), 0, std::move(text));
    };
    for (const check::Entity &entity : report.entities) {
        const std::string name = name_of(entity);
        if (!entity.refusal.empty()) {
            add(Severity::kError, fmt::format("the logger does not start: its {} is refused: {}",
                                              name, entity.refusal));
        }
        const bool is_group = entity.kind == "publisher" || entity.kind == "subscriber";
        if (is_group && !policy_of(entity, "partition").is_standard()) {
            add(Severity::kNote,
                fmt::format("the {} is in the partition {}: monitors outside it, distlog among "
                            "them, do not meet the logger",
                            name,
                            check::policy_text("partition", policy_of(entity, "partition").value)));
        }
        if ((is_group || entity.kind == "participant") &&
            !policy_of(entity, "entity_factory").is_standard()) {
            add(Severity::kWarning,
                fmt::format("autoenable_created_entities is false for the {}: what the logger "
                            "creates in it is never enabled, and nothing is published",
                            name));
        }
    }
}

void judge_logger(Report &report) {
    const check::Document &document = report.document;
    if (document.logger_line() == 0) {
        report.problems.add(Severity::kNote, document.name(), 0,
                            "no element <distributed_logger>: no logger is started from this "
                            "document");
    } else if (document.options()->enabled == 0) {
        report.problems.add(Severity::kNote, document.name(), document.logger_line(),
                            document.line_of("enabled") != 0
                                ? "the logger stays off: <enabled> is false"
                                : "the logger stays off: there is no <enabled>true</enabled>");
    }
}

std::unique_ptr<Report> examine(const std::string &file, const CheckOptions &options) {
    check::MiddlewareLog log;
    const std::unique_ptr<InputCopy> input = file == "-" ? std::make_unique<InputCopy>() : nullptr;
    auto report = std::make_unique<Report>(input == nullptr ? file : input->path(),
                                           input == nullptr ? file : "stdin");
    const bool well_formed = report->document.read(report->problems);
    log.take();  // these messages stand among the problems already
    if (!well_formed) {
        return report;
    }
    report->profiles = load_profiles(report->document, log, report->problems);
    if (!report->has_errors()) {
        check_libraries(report->document, report->problems);
        choose_profile(options, *report);
        judge_logger(*report);
        report->entities = entities_of(*report->document.options(), log);
        judge_entities(*report);
        check::check_engine(options.domain, report->document.name(), log, report->problems);
    }
    return report;
}

int check_all(const CheckOptions &options) {
    Output output;
    bool fine = true;
    bool first = true;
    for (const std::string &file : options.files) {
        const std::unique_ptr<Report> report = examine(file, options);
        fine = fine && report->is_fine();
        if (options.json) {
            output.line(to_line(to_json(*report)));
        } else {
            if (!first) {
                output.line("");
                output.flush();
            }
            print_problems(*report);
            print_text(*report, options.all, output);
        }
        output.flush();
        first = false;
    }
    return fine ? kExitOk : kExitFailure;
}

void set_profile(CheckOptions &options, const std::string &text) {
    const std::size_t separator = text.find("::");
    if (separator == std::string::npos || separator == 0 || separator + 2 == text.size()) {
        throw CLI::ValidationError(
            "--profile",
            fmt::format("'{}' is not LIBRARY::PROFILE: two names joined by '::'", text));
    }
    options.library = text.substr(0, separator);
    options.profile = text.substr(separator + 2);
}

}  // namespace

void add_check(CLI::App &app, Action &action) {
    CLI::App *command = app.add_subcommand(
        "check", "Check configuration documents, and show what would be in force");
    command->footer(
        "No logger is started, and nobody in the domain hears of the check. The exit code is 0\n"
        "when there is nothing to mend, 1 when there are errors or warnings. QoS profiles that\n"
        "the environment variable KOLT_QOS_PROFILES and the working directory name are taken\n"
        "into account, and the engine's configuration, CYCLONEDDS_URI, is tried.");
    const auto options = std::make_shared<CheckOptions>();
    command->add_option("FILE", options->files, "XML documents, each for itself; - for stdin")
        ->required();
    command
        ->add_option_function<std::string>(
            "--profile", [options](const std::string &text) { set_profile(*options, text); },
            "The QoS profile that the application names in its code (qosLibrary, qosProfile)")
        ->type_name("LIBRARY::PROFILE");
    command
        ->add_option("--domain", options->domain,
                     "The domain for which the engine's configuration is tried")
        ->type_name("N")
        ->check(CLI::Range(0, 230))
        ->capture_default_str();
    command->add_flag("--all", options->all,
                      "Show policies at the standard's default, too (JSON always has them)");
    command->add_flag("--json", options->json, "One JSON object a line for each document");
    command->callback([&action, options] { action = [options] { return check_all(*options); }; });
}

}  // namespace distlog
