// SPDX-License-Identifier: Apache-2.0
// Fuzzes content filters: the first line of the input is an expression, the next one a parameter,
// the rest a serialised sample. A filter that compiles must give the same answer twice for the rest
// of the input, for a sound sample, and for that sample cut short.

#include <kolt/cdr.h>
#include <kolt/filter.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "support/types/filter_sample.h"

namespace {

std::string take_line(std::string_view &input) {
    const std::size_t end = input.find('\n');
    std::string line(input.substr(0, end));
    input.remove_prefix(end == std::string_view::npos ? input.size() : end + 1);
    return line;
}

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

void match_twice(const KOLT_Filter *filter, const std::vector<DDS_Octet> &bytes) {
    const DDS_Boolean first = KOLT_Filter_matches(filter, bytes.data(), bytes.size());
    require(KOLT_Filter_matches(filter, bytes.data(), bytes.size()) == first);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const std::vector<DDS_Octet> sound =
        filter_sample::Sample().bytes(KOLT_ENCAPSULATION_D_CDR2_LE);
    std::string_view input(reinterpret_cast<const char *>(data), size);
    const std::string expression = take_line(input);
    const std::string parameter = take_line(input);
    const std::vector<DDS_Octet> bytes(input.begin(), input.end());

    const char *const parameters[] = {parameter.c_str(), "1", "text"};
    KOLT_FilterError error{};
    KOLT_Filter *filter =
        KOLT_Filter_new(&filter_sample::Types::record(), expression.c_str(), parameters, 3, &error);
    if (filter == nullptr) {
        require(error.text[0] != '\0');
        require(error.column <= expression.size() + 1);
        return 0;
    }
    match_twice(filter, bytes);
    match_twice(filter, sound);
    match_twice(filter, {sound.begin(), sound.begin() + static_cast<long>(size % sound.size())});
    if (KOLT_Filter_set_parameters(filter, parameters + 1, 2, nullptr)) {
        match_twice(filter, sound);
    }
    KOLT_Filter_delete(filter);
    return 0;
}
