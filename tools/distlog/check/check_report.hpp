// What distlog check found out about one document, and how it is printed.
#pragma once

#include <string>
#include <vector>

#include "check/check_document.hpp"
#include "check/check_problem.hpp"
#include "check/check_profiles.hpp"
#include "check/check_qos.hpp"
#include "text/output.hpp"

namespace distlog::check {

struct Report {
    Report(std::string path, std::string name) : document(std::move(path), std::move(name)) {}

    Document document;
    Problems problems;
    Profiles profiles;
    std::string profile;           // the profile that holds; empty: none
    std::string_view chosen_by;    // what makes it hold
    std::vector<Entity> entities;  // empty when the document is wrong

    bool has_errors() const { return problems.count(Severity::kError) != 0; }
    // Nothing that ought to be mended.
    bool is_fine() const { return !has_errors() && problems.count(Severity::kWarning) == 0; }
    // In one phrase.
    std::string verdict() const;
};

// Problems, one a line, "document:line: error: text", to standard error.
void print_problems(const Report &report);
// Everything else, to standard output. `all`: also the policies at the standard's default.
void print_text(const Report &report, bool all, Output &output);
// The whole as one JSON object.
Json to_json(const Report &report);

}  // namespace distlog::check
