// SPDX-License-Identifier: Apache-2.0
// Content filters: a compiled expression with its parameters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "filter/error.hpp"
#include "filter/program.hpp"
#include "kolt/cdr.h"

namespace kolt::filter {

// Grammar, types and meaning are told in kolt/filter.h. No function throws.
class Filter {
  public:
    // Null, with `error` filled, when the expression or a parameter is wrong for the type or memory
    // runs out. The type code must outlive the filter.
    static std::unique_ptr<Filter> compile(const DDS_TypeCode &type, std::string_view expression,
                                           std::span<const char *const> parameters,
                                           Error &error) noexcept;
    ~Filter();
    Filter(const Filter &) = delete;
    Filter &operator=(const Filter &) = delete;

    // True when the sample, encapsulation header included, matches. Thread-safe, also with
    // set_parameters.
    bool matches(const std::uint8_t *bytes, std::size_t length) const noexcept;

    // Replaces all parameters. False, with `error` filled and the old ones in force, when one that
    // the expression uses is missing or of the wrong type. Evaluations in progress end with the old
    // ones.
    bool set_parameters(std::span<const char *const> parameters, Error &error) noexcept;

    const std::string &expression() const noexcept { return expression_; }
    // The texts of the parameters in force; they live as long as the result.
    std::shared_ptr<const std::vector<std::string>> parameters() const noexcept;

  private:
    // The parameters in force: replaced as a whole, never changed.
    struct Parameters {
        std::vector<std::string> texts;
        std::vector<Constant> values;  // one for each use in the program
    };

    Filter(Program program, const KOLT_TypePrograms *codec, std::string expression,
           std::shared_ptr<const Parameters> parameters);

    static std::shared_ptr<const Parameters> convert(const Program &program,
                                                     std::span<const char *const> parameters);
    std::shared_ptr<const Parameters> current() const;

    const Program program_;
    const KOLT_TypePrograms *const codec_;
    const std::string expression_;
    mutable std::mutex mutex_;  // guards the pointer below, not what it points to
    std::shared_ptr<const Parameters> parameters_;
};

}  // namespace kolt::filter
