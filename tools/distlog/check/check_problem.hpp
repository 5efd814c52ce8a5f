// SPDX-License-Identifier: Apache-2.0
// A problem that distlog check finds in a document, and the list of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace distlog::check {

enum class Severity {
    kError,    // the document is refused
    kWarning,  // it is accepted, but something in it does not do what it seems to say
    kNote      // worth knowing, nothing to mend
};

struct Problem {
    Severity severity;
    std::string source;      // the document, as the user named it
    std::uint32_t line = 0;  // from 1; 0: none in particular
    std::string text;
};

class Problems {
  public:
    void add(Severity severity, std::string source, std::uint32_t line, std::string text) {
        add({severity, std::move(source), line, std::move(text)});
    }
    void add(Problem problem) { list_.push_back(std::move(problem)); }
    const std::vector<Problem> &list() const { return list_; }
    std::size_t count(Severity severity) const {
        std::size_t count = 0;
        for (const Problem &problem : list_) {
            count += problem.severity == severity ? 1U : 0U;
        }
        return count;
    }

  private:
    std::vector<Problem> list_;
};

}  // namespace distlog::check
