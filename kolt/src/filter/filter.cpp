// SPDX-License-Identifier: Apache-2.0
// Content filters: a compiled expression with its parameters.

#include "filter/filter.hpp"

#include <exception>
#include <new>
#include <utility>

namespace kolt::filter {

namespace {

// Runs `body` and turns what it throws into an error. The one exception barrier of filters.
template <typename Result, typename Body>
Result guarded(Error &error, Result failed, Body body) noexcept {
    try {
        return body();
    } catch (Error &thrown) {
        error = std::move(thrown);
    } catch (const std::exception &) {
        // Short enough to need no memory.
        error.text = "out of memory";
        error.column = 0;
    }
    return failed;
}

}  // namespace

std::unique_ptr<Filter> Filter::compile(const DDS_TypeCode &type, std::string_view expression,
                                        std::span<const char *const> parameters,
                                        Error &error) noexcept {
    return guarded(error, std::unique_ptr<Filter>(), [&] {
        if (type.kind != DDS_TK_STRUCT) {
            throw Error{"only structures can be filtered", 0};
        }
        Program program = parse(type, expression);
        auto values = convert(program, parameters);
        std::string text(expression);
        const KOLT_TypePrograms *codec = KOLT_TypePrograms_acquire(&type);
        if (codec == nullptr) {
            throw Error{"the type cannot be serialised", 0};
        }
        // Nothing after the acquisition throws: the constructor moves.
        auto *filter = new (std::nothrow)
            Filter(std::move(program), codec, std::move(text), std::move(values));
        if (filter == nullptr) {
            KOLT_TypePrograms_release(codec);
            throw std::bad_alloc();
        }
        return std::unique_ptr<Filter>(filter);
    });
}

Filter::Filter(Program program, const KOLT_TypePrograms *codec, std::string expression,
               std::shared_ptr<const Parameters> parameters)
    : program_(std::move(program)),
      codec_(codec),
      expression_(std::move(expression)),
      parameters_(std::move(parameters)) {}

Filter::~Filter() {
    KOLT_TypePrograms_release(codec_);
}

bool Filter::matches(const std::uint8_t *bytes, std::size_t length) const noexcept {
    // Without parameters there is nothing that could be replaced meanwhile.
    if (program_.parameter_uses.empty()) {
        return evaluate(program_, {}, codec_, bytes, length);
    }
    const auto parameters = current();
    return evaluate(program_, parameters->values, codec_, bytes, length);
}

bool Filter::set_parameters(std::span<const char *const> parameters, Error &error) noexcept {
    return guarded(error, false, [&] {
        auto replacement = convert(program_, parameters);
        const std::lock_guard lock(mutex_);
        parameters_.swap(replacement);
        return true;
    });
}

std::shared_ptr<const std::vector<std::string>> Filter::parameters() const noexcept {
    auto parameters = current();
    const auto *texts = &parameters->texts;
    return {std::move(parameters), texts};
}

std::shared_ptr<const Filter::Parameters> Filter::current() const {
    const std::lock_guard lock(mutex_);
    return parameters_;
}

std::shared_ptr<const Filter::Parameters> Filter::convert(const Program &program,
                                                          std::span<const char *const> parameters) {
    auto result = std::make_shared<Parameters>();
    for (const char *text : parameters) {
        if (text == nullptr) {
            throw Error{"a parameter is NULL", 0};
        }
        result->texts.emplace_back(text);
    }
    for (const ParameterUse &use : program.parameter_uses) {
        const std::string name = "parameter %" + std::to_string(use.index);
        if (use.index >= result->texts.size()) {
            throw Error{name + " is missing, there are " + std::to_string(result->texts.size()),
                        use.column};
        }
        try {
            result->values.push_back(parameter_to_constant(result->texts[use.index], *use.type));
        } catch (const Error &error) {
            throw Error{name + ": " + error.text, use.column};
        }
    }
    return result;
}

}  // namespace kolt::filter
