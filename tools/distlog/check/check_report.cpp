// SPDX-License-Identifier: Apache-2.0
// Reports of distlog check as text and as JSON.
#include "check/check_report.hpp"

#include <fmt/format.h>

#include <cstdio>

#include "text/text.hpp"

namespace distlog::check {
namespace {

constexpr std::string_view kRow = "  {:<28} {:<8} {}";

std::string_view word_for(Severity severity) {
    switch (severity) {
        case Severity::kError:
            return "error";
        case Severity::kWarning:
            return "warning";
        case Severity::kNote:
            break;
    }
    return "note";
}

std::string counted(std::size_t count, std::string_view what) {
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

void row(Output &output, std::string_view name, std::string_view source, std::string_view value) {
    std::string line = fmt::format(kRow, name, source, printable(value));
    line.erase(line.find_last_not_of(' ') + 1);
    output.line(line);
}

// An option that no element of a document sets.
struct CodeOption {
    std::string_view name;
    Json value;
    std::string text;
};
std::vector<CodeOption> code_options(const VUR_DL_Options &options) {
    return {{"remote_administration", options.remoteAdministrationEnabled != 0,
             options.remoteAdministrationEnabled != 0 ? "true" : "false"},
            {"domain_id", options.domainId, fmt::format("{}", options.domainId)},
            {"domain_participant", Json(), "one of the logger's own"},
            {"application_kind", Json(), "none"}};
}

void print_options(const Report &report, Output &output) {
    const Document &document = report.document;
    output.line("");
    output.line(
        document.logger_line() == 0
            ? std::string("Options of a logger that code starts (no <distributed_logger>)")
            : fmt::format("Options (<distributed_logger> in line {})", document.logger_line()));
    for (const Element &element : elements()) {
        if (element.text == nullptr) {
            continue;
        }
        const std::uint32_t line = document.line_of(element.name);
        row(output, path_of(element), line == 0 ? "default" : fmt::format("line {}", line),
            element.text(*document.options()));
    }
    for (const CodeOption &option : code_options(*document.options())) {
        row(output, option.name, "code", option.text);
    }
}

void print_profiles(const Report &report, Output &output) {
    output.line("");
    output.line("QoS profiles, in the order in which they are loaded");
    for (const ProfileSource &source : report.profiles.sources) {
        std::string list;
        for (const std::string &profile : source.profiles) {
            list += (list.empty() ? "" : ", ") + profile;
        }
        const std::string_view none = source.loaded ? "no profiles" : "not loaded";
        const std::string why = source.is_document ? "" : fmt::format(" ({})", source.why);
        output.line(fmt::format("  {}{}: {}", printable(source.name), why,
                                list.empty() ? std::string(none) : printable(list)));
    }
    output.line(report.profile.empty() ? std::string("  in force: none")
                                       : fmt::format("  in force: {} ({})",
                                                     printable(report.profile), report.chosen_by));
}

// Returns the value and, where the logger overrules the profile, the value that the profile has.
std::string value_text(const Policy &policy) {
    const std::string text = policy_text(policy.name, policy.value);
    return policy.said == policy.standard || policy.said == policy.value
               ? text
               : fmt::format("{} (the profile says {})", text,
                             policy_text(policy.name, policy.said));
}

void print_entities(const Report &report, bool all, Output &output) {
    output.line("");
    output.line("QoS, from the standard's default, the profile, or what the logger needs");
    for (const Entity &entity : report.entities) {
        output.line("");
        output.line(name_of(entity));
        for (const Policy &policy : entity.policies) {
            if (all || policy.important || policy.said != policy.standard) {
                row(output, policy.name, policy.source(), value_text(policy));
            }
        }
    }
}

Json problems_to_json(const Problems &problems) {
    Json array = Json::array();
    for (const Problem &problem : problems.list()) {
        array.push_back(Json{{"severity", word_for(problem.severity)},
                             {"file", problem.source},
                             {"line", problem.line == 0 ? Json() : Json(problem.line)},
                             {"message", problem.text}});
    }
    return array;
}

Json options_to_json(const Document &document) {
    Json object = Json::object();
    for (const Element &element : elements()) {
        if (element.value == nullptr) {
            continue;
        }
        const std::uint32_t line = document.line_of(element.name);
        object[path_of(element)] = Json{{"value", element.value(*document.options())},
                                        {"source", line == 0 ? "default" : "document"},
                                        {"line", line == 0 ? Json() : Json(line)}};
    }
    for (const CodeOption &option : code_options(*document.options())) {
        object[std::string(option.name)] =
            Json{{"value", option.value}, {"source", "code"}, {"line", Json()}};
    }
    return object;
}

Json entities_to_json(const std::vector<Entity> &entities) {
    Json array = Json::array();
    for (const Entity &entity : entities) {
        Json policies = Json::object();
        for (const Policy &policy : entity.policies) {
            policies[std::string(policy.name)] = Json{
                {"value", policy.value}, {"source", policy.source()}, {"profile", policy.said}};
        }
        array.push_back(Json{{"entity", entity.kind},
                             {"topic", entity.topic.empty() ? Json() : Json(entity.topic)},
                             {"policies", policies}});
    }
    return array;
}

}  // namespace

std::string Report::verdict() const {
    if (has_errors()) {
        return fmt::format("not valid, {}", counted(problems.count(Severity::kError), "error"));
    }
    std::string text = "valid";
    if (document.logger_line() == 0) {
        text += ", starts no logger";
    } else if (document.options()->enabled == 0) {
        text += ", the logger stays off";
    }
    const std::size_t warnings = problems.count(Severity::kWarning);
    return warnings == 0 ? text : fmt::format("{}, {}", text, counted(warnings, "warning"));
}

void print_problems(const Report &report) {
    for (const Problem &problem : report.problems.list()) {
        const std::string line = problem.line == 0 ? "" : fmt::format("{}:", problem.line);
        fmt::print(stderr, "{}:{} {}: {}\n", printable(problem.source), line,
                   word_for(problem.severity), printable(problem.text));
    }
    std::fflush(stderr);
}

void print_text(const Report &report, bool all, Output &output) {
    output.line(fmt::format("{}: {}", printable(report.document.name()), report.verdict()));
    if (!report.has_errors()) {
        print_options(report, output);
        print_profiles(report, output);
        print_entities(report, all, output);
    }
}

Json to_json(const Report &report) {
    const bool known = !report.has_errors();
    Json sources = Json::array();
    for (const ProfileSource &source : report.profiles.sources) {
        sources.push_back(Json{{"file", source.name},
                               {"named_by", source.why},
                               {"loaded", source.loaded},
                               {"profiles", source.profiles}});
    }
    return Json{{"file", report.document.name()},
                {"verdict", report.verdict()},
                {"valid", known},
                {"enabled", known ? Json(report.document.logger_line() != 0 &&
                                         report.document.options()->enabled != 0)
                                  : Json()},
                {"problems", problems_to_json(report.problems)},
                {"options", known ? options_to_json(report.document) : Json()},
                {"profile_sources", sources},
                {"profile", report.profile.empty() ? Json() : Json(report.profile)},
                {"profile_chosen_by", report.profile.empty() ? Json() : Json(report.chosen_by)},
                {"entities", known ? entities_to_json(report.entities) : Json()}};
}

}  // namespace distlog::check
