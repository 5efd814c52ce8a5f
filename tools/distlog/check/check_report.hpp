// SPDX-License-Identifier: Apache-2.0
// The findings of distlog check about one document, and their output.
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
    std::string profile;           // the profile in force; empty: none
    std::string_view chosen_by;    // the reason why it is in force
    std::vector<Entity> entities;  // empty when the document has errors

    bool has_errors() const { return problems.count(Severity::kError) != 0; }
    // True when there is nothing to mend.
    bool is_fine() const { return !has_errors() && problems.count(Severity::kWarning) == 0; }
    // Returns the findings in one phrase.
    std::string verdict() const;
};

// Prints the problems to standard error, each on a line: "document:line: error: text".
void print_problems(const Report &report);
// Prints everything else to standard output; with `all` also the policies at the standard's
// default.
void print_text(const Report &report, bool all, Output &output);
// Returns everything as one JSON object.
Json to_json(const Report &report);

}  // namespace distlog::check
